#include "client/export/screen_conditions.h"

#include "platform/grid/db_grid.h"
#include "platform/toolkit/form.h"
#include "platform/toolkit/page_control.h"
#include "platform/toolkit/radio_group.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QRadioButton>
#include <QRegularExpression>

#include <optional>

namespace client {

namespace {

QString boxTitle(const QWidget &field)
{
    for (const QWidget *parent = field.parentWidget(); parent; parent = parent->parentWidget()) {
        if (const auto *box = qobject_cast<const QGroupBox *>(parent))
            return box->title();
    }
    return {};
}

/// A caption without the mark of its shortcut, "(&1)" or "&".
QString withoutShortcut(QString caption)
{
    static const QRegularExpression mark(QStringLiteral("\\(&.\\)|&(?!&)"));
    return caption.remove(mark);
}

/// A list says in its empty state how to fill it, "每行一个运单编号": what it holds is what comes after.
QString listCaption(const QString &hint)
{
    const QString beginning = QStringLiteral("每行一个");
    return hint.startsWith(beginning) ? hint.mid(beginning.size()) : hint;
}

/// The value of a condition and, where it carries one, its caption; nothing for other widgets.
std::optional<ExportNote> conditionIn(const QWidget &widget)
{
    const auto yesOrNo = [](bool yes) { return yes ? QStringLiteral("是") : QStringLiteral("否"); };
    if (const auto *line = qobject_cast<const QLineEdit *>(&widget))
        return qobject_cast<const QComboBox *>(line->parentWidget()) ? std::nullopt
                                                                     : std::optional(ExportNote { line->placeholderText(), line->text() });
    if (const auto *combo = qobject_cast<const QComboBox *>(&widget))
        return ExportNote { {}, combo->currentText() };
    if (const auto *memo = qobject_cast<const QPlainTextEdit *>(&widget))
        return ExportNote { listCaption(memo->placeholderText()), memo->toPlainText().trimmed() };
    if (const auto *box = qobject_cast<const QCheckBox *>(&widget))
        return ExportNote { box->text(), yesOrNo(box->isChecked()) };
    if (const auto *button = qobject_cast<const QRadioButton *>(&widget);
        button && !qobject_cast<const TRadioGroup *>(button->parentWidget()))
        return ExportNote { button->text(), yesOrNo(button->isChecked()) };
    if (const auto *group = qobject_cast<const TRadioGroup *>(&widget))
        return ExportNote { group->title(), group->items().value(group->itemIndex()) };
    if (const auto *box = qobject_cast<const QGroupBox *>(&widget); box && box->isCheckable())
        return ExportNote { box->title(), yesOrNo(box->isChecked()) };
    return {};
}

} // namespace

bool liesInGrid(const QWidget &widget)
{
    for (const QWidget *parent = widget.parentWidget(); parent; parent = parent->parentWidget()) {
        if (qobject_cast<const TDBGridEh *>(parent))
            return true;
    }
    return false;
}

ConditionCaptions::ConditionCaptions(const QWidget &screen)
{
    for (const QLabel *label : screen.findChildren<QLabel *>()) {
        if (label->buddy() && !m_labels.contains(label->buddy()))
            m_labels.insert(label->buddy(), label->text());
    }
}

QString ConditionCaptions::of(const QWidget &field) const
{
    QString caption = m_labels.value(&field);
    if (const auto own = conditionIn(field); own && caption.isEmpty())
        caption = own->caption;
    const QString box = boxTitle(field);
    if (!box.isEmpty())
        caption = caption.isEmpty() ? box : QString(box + u' ' + caption);
    return withoutShortcut(caption);
}

const QWidget *screenOf(const TDBGridEh &grid)
{
    const QWidget *screen = &grid;
    while (screen->parentWidget() && !screen->isWindow() && !qobject_cast<const TForm *>(screen))
        screen = screen->parentWidget();
    return screen;
}

QList<ExportNote> screenConditions(const QWidget &screen)
{
    const ConditionCaptions captions(screen);
    QList<ExportNote> conditions;
    for (const QWidget *widget = screen.nextInFocusChain(); widget != &screen; widget = widget->nextInFocusChain()) {
        if (!screen.isAncestorOf(widget) || !widget->isVisibleTo(&screen) || liesInGrid(*widget))
            continue;
        auto condition = conditionIn(*widget);
        if (!condition)
            continue;
        condition->caption = captions.of(*widget);
        if (!condition->caption.isEmpty())
            conditions.append(*condition);
    }
    return conditions;
}

QString screenTitle(const TDBGridEh &grid)
{
    const QString title = screenOf(grid)->windowTitle();
    for (const QWidget *widget = &grid; widget; widget = widget->parentWidget()) {
        const auto *pages = widget->parentWidget() ? qobject_cast<const TPageControl *>(widget->parentWidget()->parentWidget()) : nullptr;
        if (pages && pages->indexOf(widget) >= 0)
            return title + u' ' + pages->tabText(pages->indexOf(widget));
    }
    return title;
}

} // namespace client
