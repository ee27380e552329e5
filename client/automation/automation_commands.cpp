#include "client/automation/automation.h"

#include "client/export/table_export.h"
#include "platform/grid/db_grid.h"
#include "platform/grid/editors.h"
#include "platform/toolkit/handler.h"
#include "platform/toolkit/page_control.h"

#include <QAbstractButton>
#include <QApplication>
#include <QGroupBox>
#include <QKeyEvent>
#include <QMdiArea>
#include <QPixmap>
#include <QPlainTextEdit>

namespace {

QObject *findByPath(const TComponentOwner &owner, const QString &path)
{
    const QString first = path.section(u'.', 0, 0);
    const QString rest = path.section(u'.', 1);
    QObject *found = owner.findComponent(first);
    if (found && rest.isEmpty())
        return found;
    if (const auto *frame = dynamic_cast<TComponentOwner *>(found))
        return findByPath(*frame, rest);
    return nullptr;
}

QString captionOf(const QWidget &widget)
{
    if (const auto *button = qobject_cast<const QAbstractButton *>(&widget))
        return button->text();
    if (const auto *box = qobject_cast<const QGroupBox *>(&widget))
        return box->title();
    return {};
}

QJsonObject describe(const QWidget &widget)
{
    QJsonObject description {
        { QStringLiteral("name"), widget.objectName() },
        { QStringLiteral("class"), QString::fromLatin1(widget.metaObject()->className()) },
        { QStringLiteral("caption"), captionOf(widget) },
        { QStringLiteral("enabled"), widget.isEnabled() },
        { QStringLiteral("visible"), widget.isVisible() },
        { QStringLiteral("focused"), widget.hasFocus() },
    };
    if (const auto *edit = qobject_cast<const QLineEdit *>(&widget))
        description[u"text"] = edit->text();
    if (const auto *memo = qobject_cast<const QPlainTextEdit *>(&widget))
        description[u"text"] = memo->toPlainText();
    if (const auto *combo = qobject_cast<const TDBComboBoxEh *>(&widget)) {
        description[u"text"] = combo->text();
        description[u"items"] = QJsonArray::fromStringList(combo->items());
        description[u"itemIndex"] = combo->itemIndex();
    }
    if (const auto *button = qobject_cast<const QAbstractButton *>(&widget); button && button->isCheckable())
        description[u"checked"] = button->isChecked();
    if (const auto *pages = qobject_cast<const TPageControl *>(&widget))
        description[u"itemIndex"] = pages->activePageIndex();
    return description;
}

QWidget *focusTarget(QWidget *widget) { return widget->focusProxy() ? widget->focusProxy() : widget; }

Qt::KeyboardModifiers modifiersOf(const QJsonObject &arguments)
{
    Qt::KeyboardModifiers modifiers;
    for (const QJsonValue &name : arguments[u"modifiers"].toArray()) {
        const QString text = name.toString().toLower();
        modifiers |= text == u"ctrl" ? Qt::ControlModifier
            : text == u"shift"       ? Qt::ShiftModifier
            : text == u"alt"         ? Qt::AltModifier
                                     : Qt::NoModifier;
    }
    return modifiers;
}

int columnOf(const TDBGridEh &grid, const QJsonObject &arguments)
{
    const QString field = arguments[u"field"].toString();
    const int column = grid.columnIndex(field);
    if (column < 0)
        throw Exception(QStringLiteral("表格没有字段“%1”").arg(field));
    return column;
}

int rowOf(const TDBGridEh &grid, const QJsonObject &arguments)
{
    const int row = arguments[u"row"].toInt();
    if (row < 0 || row >= grid.rowCount())
        throw Exception(QStringLiteral("表格没有第 %1 行").arg(row));
    return row;
}

QString footerKind(FooterKind kind)
{
    switch (kind) {
    case FooterKind::StaticText:
        return QStringLiteral("text");
    case FooterKind::Sum:
        return QStringLiteral("sum");
    case FooterKind::Count:
        return QStringLiteral("count");
    case FooterKind::None:
        break;
    }
    return QStringLiteral("none");
}

} // namespace

TForm *Automation::form(const QJsonObject &arguments) const
{
    const QString name = arguments[u"form"].toString();
    for (TForm *form : m_window->forms())
        if (form->objectName() == name)
            return form;
    if (name.isEmpty() && m_window->activeForm())
        return m_window->activeForm();
    throw Exception(name.isEmpty() ? QStringLiteral("没有打开的窗口") : QStringLiteral("没有打开名为“%1”的窗口").arg(name));
}

QWidget *Automation::control(const QJsonObject &arguments) const
{
    const QString path = arguments[u"control"].toString();
    auto *widget = qobject_cast<QWidget *>(findByPath(*form(arguments), path));
    if (!widget)
        throw Exception(QStringLiteral("没有名为“%1”的控件").arg(path));
    return widget;
}

TDBGridEh *Automation::view(const QJsonObject &arguments) const
{
    const QString path = arguments[u"view"].toString() + QStringLiteral(".DataViewGrid");
    auto *grid = qobject_cast<TDBGridEh *>(findByPath(*form(arguments), path));
    if (!grid)
        throw Exception(QStringLiteral("没有名为“%1”的表格").arg(arguments[u"view"].toString()));
    return grid;
}

QJsonObject Automation::open(const QJsonObject &arguments)
{
    m_window->openScreen(arguments[u"screen"].toString());
    const TForm *active = m_window->activeForm();
    return { { QStringLiteral("form"), active ? QJsonValue(active->objectName()) : QJsonValue() } };
}

QJsonObject Automation::forms(const QJsonObject &)
{
    QJsonArray names;
    for (const TForm *form : m_window->forms())
        names.append(form->objectName());
    return { { QStringLiteral("forms"), names } };
}

QJsonObject Automation::activate(const QJsonObject &arguments)
{
    form(arguments)->showForm();
    return {};
}

QJsonObject Automation::close(const QJsonObject &arguments)
{
    const bool closed = form(arguments)->parentWidget()->close();
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    return { { QStringLiteral("closed"), closed } };
}

QJsonObject Automation::controls(const QJsonObject &arguments)
{
    QJsonArray descriptions;
    for (const QObject *component : form(arguments)->components())
        if (const auto *widget = qobject_cast<const QWidget *>(component))
            descriptions.append(describe(*widget));
    return { { QStringLiteral("controls"), descriptions } };
}

QJsonObject Automation::get(const QJsonObject &arguments) { return describe(*control(arguments)); }

QJsonObject Automation::set(const QJsonObject &arguments)
{
    QWidget *widget = control(arguments);
    if (!widget->isEnabled())
        throw Exception(QStringLiteral("控件“%1”不可用").arg(widget->objectName()));
    focusTarget(widget)->setFocus(Qt::TabFocusReason);
    if (auto *button = qobject_cast<QAbstractButton *>(widget); button && arguments.contains(u"checked")) {
        if (button->isChecked() != arguments[u"checked"].toBool())
            button->click();
    }
    if (auto *combo = qobject_cast<TDBComboBoxEh *>(widget)) {
        if (arguments.contains(u"itemIndex"))
            combo->setItemIndex(arguments[u"itemIndex"].toInt());
        else if (arguments.contains(u"text"))
            combo->setText(arguments[u"text"].toString());
    } else if (auto *edit = qobject_cast<QLineEdit *>(widget); edit && arguments.contains(u"text")) {
        edit->setText(arguments[u"text"].toString());
        edit->setModified(true);
    } else if (auto *memo = qobject_cast<QPlainTextEdit *>(widget)) {
        QStringList lines;
        for (const QJsonValue &line : arguments[u"lines"].toArray())
            lines.append(line.toString());
        memo->setPlainText(arguments.contains(u"lines") ? lines.join(u'\n') : arguments[u"text"].toString());
    }
    if (arguments[u"leave"].toBool(true)) {
        QKeyEvent tab(QEvent::KeyPress, Qt::Key_Tab, Qt::NoModifier, QStringLiteral("\t"));
        QApplication::sendEvent(focusTarget(widget), &tab);
    }
    return {};
}

QJsonObject Automation::key(const QJsonObject &arguments)
{
    QWidget *target = focusTarget(control(arguments));
    target->setFocus(Qt::TabFocusReason);
    const QKeySequence sequence(arguments[u"key"].toString());
    if (sequence.isEmpty())
        throw Exception(QStringLiteral("不认识的按键“%1”").arg(arguments[u"key"].toString()));
    const Qt::Key key = sequence[0].key();
    const QString text = key < 0x1000000 ? QString(QChar(key)).toLower() : QString();
    QKeyEvent press(QEvent::KeyPress, key, modifiersOf(arguments), text);
    QApplication::sendEvent(target, &press);
    QKeyEvent release(QEvent::KeyRelease, key, modifiersOf(arguments), text);
    QApplication::sendEvent(target, &release);
    return {};
}

QJsonObject Automation::query(const QJsonObject &arguments)
{
    form(arguments);
    m_window->query();
    return {};
}

QJsonObject Automation::click(const QJsonObject &arguments)
{
    auto *button = qobject_cast<QAbstractButton *>(control(arguments));
    if (!button)
        throw Exception(QStringLiteral("控件“%1”不是按钮").arg(arguments[u"control"].toString()));
    button->click();
    return {};
}

QJsonObject Automation::page(const QJsonObject &arguments)
{
    auto *sheet = qobject_cast<TTabSheet *>(control(arguments));
    for (QWidget *parent = sheet; parent; parent = parent->parentWidget()) {
        if (auto *pages = qobject_cast<TPageControl *>(parent)) {
            pages->setActivePage(sheet);
            return {};
        }
    }
    throw Exception(QStringLiteral("控件“%1”不是页").arg(arguments[u"control"].toString()));
}

QJsonObject Automation::columns(const QJsonObject &arguments)
{
    const TDBGridEh *grid = view(arguments);
    QJsonArray columns;
    for (int index = 0; index < grid->columnCount(); ++index) {
        const Column &column = grid->column(index);
        QJsonArray footers;
        for (const ColumnFooter &footer : column.footers)
            footers.append(QJsonObject { { QStringLiteral("kind"), footerKind(footer.kind) }, { QStringLiteral("text"), footer.value } });
        columns.append(QJsonObject { { QStringLiteral("field"), column.fieldName }, { QStringLiteral("caption"), column.caption },
            { QStringLiteral("width"), column.width }, { QStringLiteral("visible"), column.visible },
            { QStringLiteral("frozen"), index < grid->frozenColumns() }, { QStringLiteral("footers"), footers } });
    }
    return { { QStringLiteral("columns"), columns } };
}

QJsonObject Automation::rows(const QJsonObject &arguments)
{
    const TDBGridEh *grid = view(arguments);
    const int from = qMax(0, arguments[u"from"].toInt(0));
    const int end = int(qMin<qint64>(grid->rowCount(), from + qint64(arguments[u"count"].toInt(grid->rowCount()))));
    QJsonArray rows;
    for (int row = from; row < end; ++row) {
        QJsonArray cells;
        for (int column = 0; column < grid->columnCount(); ++column)
            cells.append(grid->cellText(row, column));
        rows.append(cells);
    }
    return { { QStringLiteral("rows"), rows }, { QStringLiteral("total"), grid->rowCount() } };
}

QJsonObject Automation::footer(const QJsonObject &arguments)
{
    const TDBGridEh *grid = view(arguments);
    QJsonArray rows;
    for (int row = 0; row < grid->footerRowCount(); ++row) {
        QJsonArray texts;
        for (int column = 0; column < grid->columnCount(); ++column)
            texts.append(grid->footerText(row, column));
        rows.append(texts);
    }
    return { { QStringLiteral("rows"), rows } };
}

QJsonObject Automation::title(const QJsonObject &arguments)
{
    TDBGridEh *grid = view(arguments);
    grid->clickTitle(columnOf(*grid, arguments), modifiersOf(arguments));
    return {};
}

QJsonObject Automation::cell(const QJsonObject &arguments)
{
    TDBGridEh *grid = view(arguments);
    const int row = rowOf(*grid, arguments);
    const int column = columnOf(*grid, arguments);
    grid->setCurrentCell(row, column);
    if (arguments[u"doubleClick"].toBool())
        Q_EMIT grid->cellDoubleClicked(row, column);
    return { { QStringLiteral("text"), grid->cellText(row, column) } };
}

QJsonObject Automation::colour(const QJsonObject &arguments)
{
    const TDBGridEh *grid = view(arguments);
    return { { QStringLiteral("colour"), grid->cellBackground(rowOf(*grid, arguments), columnOf(*grid, arguments)).name() } };
}

QJsonObject Automation::exportView(const QJsonObject &arguments)
{
    const QString file = arguments[u"file"].toString();
    if (file.isEmpty())
        throw Exception(QStringLiteral("缺少文件名"));
    const TDBGridEh *grid = arguments.contains(u"view") ? view(arguments) : m_window->currentGrid();
    if (!grid)
        throw Exception(QStringLiteral("没有可以导出的表格"));
    return { { QStringLiteral("rows"), exportGrid(*grid, file) } };
}

QJsonObject Automation::copy(const QJsonObject &arguments)
{
    m_window->copy(arguments[u"titles"].toBool());
    return {};
}

QJsonObject Automation::find(const QJsonObject &arguments)
{
    return { { QStringLiteral("found"), m_window->find(arguments[u"text"].toString(), arguments[u"forward"].toBool(true)) } };
}

QJsonObject Automation::screenshot(const QJsonObject &arguments)
{
    const QString file = arguments[u"file"].toString();
    if (arguments.contains(u"width"))
        m_window->resize(arguments[u"width"].toInt(), arguments[u"height"].toInt(800));
    QApplication::sendPostedEvents();
    if (!m_window->grab().save(file))
        throw Exception(QStringLiteral("无法写入图片“%1”").arg(file));
    return {};
}

QJsonObject Automation::answer(const QJsonObject &arguments)
{
    const QString button = arguments[u"button"].toString();
    if (button != u"ok" && button != u"cancel")
        throw Exception(QStringLiteral("button 只能是 ok 或 cancel"));
    m_nextAnswer = button == u"ok" ? idOk : idCancel;
    return {};
}

QJsonObject Automation::takeEvents(const QJsonObject &) { return { { QStringLiteral("events"), std::exchange(m_events, {}) } }; }

QJsonObject Automation::quit(const QJsonObject &)
{
    // Unlike quit(), which a window may refuse.
    QMetaObject::invokeMethod(
        qApp, [] { QApplication::exit(); }, Qt::QueuedConnection);
    return {};
}
