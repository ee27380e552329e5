#include "client/automation/automation.h"

#include "client/export/table_export.h"
#include "platform/grid/db_grid.h"
#include "platform/grid/grid_filter.h"
#include "platform/grid/grid_finder.h"
#include "platform/report/output/page_exports.h"
#include "platform/report/report.h"
#include "platform/toolkit/application.h"
#include "platform/toolkit/exception.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QMenu>
#include <QPixmap>

#include <utility>

using namespace client;
using namespace platform;

namespace client {

QJsonObject Automation::open(const QJsonObject &arguments)
{
    m_window->openScreen(arguments[u"screen"].toString());
    const TForm *active = m_window->activeForm();
    if (!active)
        return { { QStringLiteral("form"), QJsonValue() } };
    return { { QStringLiteral("form"), active->objectName() }, { QStringLiteral("caption"), active->caption() } };
}

QJsonObject Automation::forms(const QJsonObject &)
{
    QJsonArray names;
    for (const TForm *form : m_window->forms())
        names.append(form->objectName());
    const TForm *active = m_window->activeForm();
    QJsonObject reply { { QStringLiteral("forms"), names }, { QStringLiteral("active"), QJsonValue() } };
    if (active) {
        reply[u"active"] = active->objectName();
        reply[u"caption"] = active->caption();
    }
    return reply;
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

QJsonObject Automation::query(const QJsonObject &arguments)
{
    if (arguments.contains(u"form"))
        form(arguments)->showForm();
    m_window->query();
    QJsonObject reply { { QStringLiteral("asked"), m_heard.statement || m_heard.messages.isEmpty() } };
    if (!m_heard.messages.isEmpty())
        reply[u"messages"] = QJsonArray::fromStringList(m_heard.messages);
    return reply;
}

/// As a person who opens the menus, or goes on in the menu that is open.
QJsonObject Automation::runCommand(const QJsonObject &arguments)
{
    const QString text = requiredText(arguments, u"text");
    const auto *menu = qobject_cast<const QMenu *>(QApplication::activePopupWidget());
    for (QAction *action : menu ? menu->actions() : m_window->findChildren<QAction *>()) {
        if (action->isSeparator() || action->menu() || QString(action->text()).remove(u'…') != QString(text).remove(u'…'))
            continue;
        if (!action->isEnabled())
            throw Exception(QStringLiteral("命令“%1”现在不能用").arg(text));
        if (menu)
            const_cast<QMenu *>(menu)->close();
        action->trigger();
        return {};
    }
    throw Exception(QStringLiteral("没有命令“%1”").arg(text));
}

QJsonObject Automation::print(const QJsonObject &arguments)
{
    m_printFile = arguments[u"file"].toString();
    m_printed = {};
    if (arguments.contains(u"control"))
        click(arguments);
    else
        m_window->print();
    if (m_printed.isEmpty())
        throw Exception(m_heard.messages.isEmpty() ? QStringLiteral("没有打印任何内容。") : m_heard.messages.first());
    return m_printed;
}

void Automation::lookAt(const report::PreviewRequest &preview)
{
    preview.report.prepareAllPages();
    m_printed = { { QStringLiteral("pages"), preview.report.pageCount() }, { QStringLiteral("rows"), preview.report.rowCount() },
        { QStringLiteral("truncated"), preview.report.isTruncated() } };
    m_events.append(
        QJsonObject { { QStringLiteral("event"), QStringLiteral("preview") }, { QStringLiteral("pages"), m_printed[u"pages"] } });
    const QString file = std::exchange(m_printFile, {}); // a later preview is not saved
    if (file.isEmpty())
        return;
    report::PdfExport pdf;
    report::ExportFilter *filter = report::filterFor(preview.filters + QList<report::ExportFilter *> { &pdf }, file);
    if (!filter)
        throw Exception(QStringLiteral("不能打印到“%1”：文件名请以 .pdf 结尾。").arg(file));
    filter->exportReport(preview.report, file);
}

QJsonObject Automation::exportGrid(const QJsonObject &arguments)
{
    const files::TabGuard guard = arguments[u"excelSafe"].toBool() ? files::TabGuard::Numbers : files::TabGuard::Formulas;
    const ExportTarget target { requiredText(arguments, u"file"), arguments[u"encoding"].toString(), guard };
    const TDBGridEh *grid = view(arguments);
    const int rows = m_window->exportTo(*grid, target);
    return { { QStringLiteral("rows"), rows }, { QStringLiteral("truncated"), !grid->dataSet()->truncationNotice().isEmpty() },
        { QStringLiteral("filter"), grid->filter().description() } };
}

QJsonObject Automation::copy(const QJsonObject &arguments)
{
    view(arguments)->copySelection(arguments[u"titles"].toBool() ? CopyTitles::With : CopyTitles::Without);
    return { { QStringLiteral("text"), QApplication::clipboard()->text() } };
}

QJsonObject Automation::find(const QJsonObject &arguments)
{
    TDBGridEh *grid = view(arguments);
    const GridSearch search { .text = requiredText(arguments, u"text"), .titles = arguments[u"titles"].toBool() };
    const SearchDirection direction = arguments[u"forward"].toBool(true) ? SearchDirection::Forward : SearchDirection::Backward;
    return { { QStringLiteral("found"), grid->finder().find(search, direction) } };
}

QJsonObject Automation::screenshot(const QJsonObject &arguments)
{
    const QString file = requiredText(arguments, u"file");
    const QSize size(arguments[u"width"].toInt(m_window->width()), arguments[u"height"].toInt(m_window->height()));
    m_window->resize(size);
    QApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
    if (!m_window->grab().save(file))
        throw Exception(QStringLiteral("无法写入图片“%1”").arg(file));
    return {};
}

QJsonObject Automation::answer(const QJsonObject &arguments)
{
    const QString button = requiredText(arguments, u"button");
    if (button != u"ok" && button != u"cancel")
        throw Exception(QStringLiteral("button 只能是 ok 或 cancel"));
    m_answers.enqueue(button == u"ok" ? idOk : idCancel);
    return {};
}

QJsonObject Automation::takeEvents(const QJsonObject &) { return { { QStringLiteral("events"), std::exchange(m_events, {}) } }; }

QJsonObject Automation::quit(const QJsonObject &)
{
    if (!m_window->close())
        throw Exception(QStringLiteral("有窗口不肯关闭，请先保存或放弃它的修改"));
    QMetaObject::invokeMethod(
        qApp, [] { QApplication::exit(); }, Qt::QueuedConnection);
    return {};
}

} // namespace client
