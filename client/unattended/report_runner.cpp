#include "client/unattended/report_runner.h"

#include "client/conditions/person.h"
#include "client/conditions/screen_state.h"
#include "client/export/table_export.h"
#include "client/export/table_format.h"
#include "client/screen_list.h"
#include "client/unattended/caption.h"
#include "client/unattended/conditions_by_caption.h"
#include "client/unattended/result_pages.h"
#include "client/unattended/screen_listing.h"
#include "platform/grid/db_grid.h"
#include "platform/report/output/page_exports.h"
#include "platform/report/report.h"
#include "platform/toolkit/application.h"
#include "platform/toolkit/clock.h"
#include "platform/toolkit/plugin_interface.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>

#include <utility>

using namespace platform;

namespace client {
namespace {

/// There is nothing to write.
class EmptyReport : public Exception {
public:
    using Exception::Exception;
};

bool isPaper(const QString &file) { return file.endsWith(u".pdf", Qt::CaseInsensitive); }

/// Before anything is asked, so that a name that cannot be written costs no query.
void checkEnding(const QString &file)
{
    if (!isPaper(file) && !file.endsWith(u".xlsx", Qt::CaseInsensitive) && !TableFormat::of(file))
        throw WrongRequest(QStringLiteral("不能写“%1”：文件名请以 .xlsx、.csv、.txt、.json、.html 或 .pdf 结尾。").arg(file));
}

QAbstractButton *buttonOf(const TForm &screen, const QString &caption)
{
    QStringList captions;
    const QList<QAbstractButton *> buttons = printButtons(screen);
    for (const QAbstractButton *button : buttons)
        captions.append(button->text());
    const qsizetype index = buttonIndex(captions, caption);
    if (index < 0)
        throw notAmong(QStringLiteral("打印按钮"), caption, captions);
    return buttons[index];
}

} // namespace

ReportResult worse(ReportResult one, ReportResult other)
{
    constexpr auto badness = [](ReportResult result) {
        return result == ReportResult::Failed ? 3 : result == ReportResult::Wrong ? 2 : result == ReportResult::Empty ? 1 : 0;
    };
    return badness(one) >= badness(other) ? one : other;
}

ReportRunner::ReportRunner(const Options &options, std::shared_ptr<Connections> connections)
    : m_options(options)
    , m_connections(std::move(connections))
{
    connect(Application, &TApplication::happened, this, &ReportRunner::hear);
    Application->setMessageResponder([](const MessageRequest &request) { return int(request.defaultAnswer()); });
    report::setPreviewResponder([this](const report::PreviewRequest &preview) { lookAt(preview); });
}

ReportRunner::~ReportRunner()
{
    m_window.reset();
    Application->setMessageResponder({});
    report::setPreviewResponder({});
}

void ReportRunner::hear(const QString &kind, const QVariantMap &particulars)
{
    const QString text = particulars[QStringLiteral("text")].toString();
    if (kind == u"error" || kind == u"cancelled")
        m_failures.append(text);
    else if (kind == u"message")
        m_messages.append(text);
    else if (kind == u"statement")
        m_asked = true;
}

void ReportRunner::settle()
{
    for (int turn = 0; turn < 3; ++turn) { // what is put off can put something off
        QApplication::sendPostedEvents();
        QApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
    }
    if (!m_failures.isEmpty())
        throw Exception(std::exchange(m_failures, {}).first());
}

/// Off-screen no window system gives the activation, and without it the focus would not move.
void ReportRunner::useWindow(const QString &site)
{
    if (m_window && m_site == site)
        return;
    m_window.reset();
    m_site = site;
    Options options = m_options;
    options.loginSite = site;
    m_window = std::make_unique<MainWindow>(options, m_connections);
    m_window->resize(1280, 800);
    m_window->show();
    QApplication::setActiveWindow(m_window.get());
    settle();
}

TForm *ReportRunner::open(const QString &caption)
{
    QStringList captions;
    QStringList names;
    for (const ScreenGroup &group : screenGroups) {
        for (const ScreenItem &item : group.screens) {
            captions.append(item.caption.toString());
            names.append(item.name.toString());
        }
    }
    const qsizetype index = captionIndex(captions, caption);
    if (index < 0)
        throw notAmong(QStringLiteral("窗口"), caption, captions);
    m_window->openScreen(names[index] + QStringLiteral("111"));
    settle();
    TForm *screen = m_window->activeForm();
    if (!screen || screen->objectName() != names[index])
        throw Exception(m_messages.isEmpty() ? QStringLiteral("窗口“%1”没有打开。").arg(caption) : m_messages.join(u' '));
    return screen;
}

void ReportRunner::closeScreens()
{
    for (TForm *form : m_window ? m_window->forms() : QList<TForm *>())
        form->parentWidget()->close();
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QApplication::sendPostedEvents();
    m_failures.clear();
}

void ReportRunner::setConditions(TForm &screen, const ReportJob &job, const ReportDay &day)
{
    // "Yesterday" of the screen itself is that of the report's day.
    if (day.date() != Clock::today())
        putBack(screen, ConditionSet { {}, {}, conditionsOf(screen) }.valuesOn(day.date())); // its problems would be those of the present
    QList<SetCondition> given;
    for (const auto &[caption, value] : job.conditions) {
        given += ConditionsByCaption(screen).set(caption, value, day); // looked up anew: one condition can show another
        settle();
    }
    requireStill(given);
}

void ReportRunner::query()
{
    m_messages.clear();
    m_asked = false;
    const TForm *screen = m_window->activeForm();
    if (!screen->property(published_by_screen::queryButton).value<QObject *>())
        throw WrongRequest(QStringLiteral("窗口“%1”没有查询，不能做报表。").arg(screen->caption()));
    m_window->query();
    settle();
    const TDBGridEh *grid = m_window->currentGrid();
    if (grid && grid->dataSet() && grid->dataSet()->active() && m_asked)
        return;
    throw Exception(m_messages.isEmpty() ? QStringLiteral("窗口没有查询。") : QStringLiteral("窗口拒绝查询：") + m_messages.join(u' '));
}

void ReportRunner::showPage(const TForm &screen, const QString &caption)
{
    if (caption.isEmpty())
        return;
    showResultPage(screen, caption);
    settle();
}

void ReportRunner::drill(const QString &row, const QString &column)
{
    TDBGridEh *grid = m_window->currentGrid();
    if (grid->rowCount() == 0)
        throw EmptyReport(QStringLiteral("没有符合条件的数据。"));
    const auto cell = findRow(*grid, row, column);
    if (!cell)
        throw EmptyReport(QStringLiteral("结果里没有“%1”这一行。").arg(row));
    grid->setCurrentCell(cell->row, cell->column);
    grid->openCurrentCell();
    settle();
    if (m_window->currentGrid() == grid)
        throw Exception(QStringLiteral("“%1”这一行没有明细可以打开。").arg(row));
}

void ReportRunner::lookAt(const report::PreviewRequest &preview)
{
    const QString file = std::exchange(m_printFile, {});
    if (!file.isEmpty())
        report::PdfExport().exportReport(preview.report, file);
}

void ReportRunner::print(const QString &button, const QString &file)
{
    m_printFile = file;
    m_messages.clear();
    if (button.isEmpty())
        m_window->print();
    else
        person::press(buttonOf(*m_window->activeForm(), button));
    settle();
    if (!std::exchange(m_printFile, {}).isEmpty())
        throw Exception(m_messages.isEmpty() ? QStringLiteral("没有打印任何内容。") : m_messages.join(u' '));
}

void ReportRunner::write(const ReportJob &job, const ReportDay &day, ReportOutcome &outcome)
{
    const QDir folder(job.folder);
    for (const QString &pattern : job.files) {
        const QString file = folder.absoluteFilePath(day.fileName(pattern));
        QDir().mkpath(QFileInfo(file).path()); // when it fails, so does writing, which tells why
        if (isPaper(file))
            print(job.printButton, file);
        else
            m_window->exportTo(*m_window->currentGrid(), { file, job.encoding });
        settle();
        m_written.insert(file);
        outcome.files.append(file);
    }
}

void ReportRunner::make(const ReportJob &job, ReportOutcome &outcome)
{
    const ReportDay day = job.day.isEmpty() ? ReportDay(Clock::today()) : ReportDay::of(job.day);
    if (job.files.isEmpty())
        throw WrongRequest(QStringLiteral("没有说写到哪个文件，请用 -o 或 --print 给出。"));
    for (const QString &pattern : job.files) {
        const QString file = QDir(job.folder).absoluteFilePath(day.fileName(pattern));
        checkEnding(file);
        if (m_written.contains(file))
            throw WrongRequest(QStringLiteral("文件“%1”已由前面的报表写出，请换一个名称。").arg(file));
    }
    useWindow(job.site.isEmpty() ? m_options.loginSite : job.site);
    TForm *screen = open(job.screen);
    setConditions(*screen, job, day);
    showPage(*screen, job.page);
    query();
    showPage(*screen, job.page);
    for (const QString &row : job.drills)
        drill(row, job.drillColumn);
    TDBGridEh *grid = m_window->currentGrid();
    if (!grid->dataSet() || !grid->dataSet()->active() || grid->rowCount() == 0)
        throw EmptyReport(QStringLiteral("没有符合条件的数据。"));
    outcome.rows = grid->rowCount();
    outcome.cut = grid->dataSet()->truncationNotice();
    outcome.said = m_messages;
    write(job, day, outcome);
}

QString ReportRunner::listScreens()
{
    useWindow(m_options.loginSite);
    return describeScreens([this](const QString &name) { return m_window->mayOpen(name); });
}

QString ReportRunner::listScreen(const QString &caption)
{
    useWindow(m_options.loginSite);
    const QString text = describeScreen(*open(caption));
    closeScreens();
    return text;
}

ReportOutcome ReportRunner::run(const ReportJob &job)
{
    QElapsedTimer time;
    time.start();
    ReportOutcome outcome;
    m_failures.clear();
    m_messages.clear();
    try {
        make(job, outcome);
        outcome.result = ReportResult::Rows;
    } catch (const WrongRequest &wrong) {
        outcome.result = ReportResult::Wrong;
        outcome.message = wrong.message();
    } catch (const EmptyReport &empty) {
        outcome.result = job.failIfEmpty ? ReportResult::Failed : ReportResult::Empty;
        outcome.message = empty.message() + QStringLiteral("没有写文件。");
    } catch (...) {
        outcome.message = currentExceptionMessage();
    }
    if (outcome.said.isEmpty() && outcome.message.isEmpty())
        outcome.said = m_messages;
    closeScreens();
    outcome.milliseconds = time.elapsed();
    return outcome;
}

} // namespace client
