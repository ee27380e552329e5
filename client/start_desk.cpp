#include "client/start_desk.h"

#include "client/screen_list.h"
#include "platform/toolkit/clock.h"
#include "platform/toolkit/exception.h"
#include "platform/toolkit/handler.h"

using namespace platform;

namespace client {
namespace {

constexpr int mostRecent = 6;
constexpr qint64 freshMilliseconds = 10 * 60'000; ///< the counts of a day that is over hardly change
const QString favourites = QStringLiteral("start.favourites");
const QString recent = QStringLiteral("start.recent");
const QString counts = QStringLiteral("start.counts");
const QString off = QStringLiteral("off");

} // namespace

StartDesk::StartDesk(
    StartPage *page, const QString &folder, std::shared_ptr<StatementChannel> channel, const Login &login, Counting counting)
    : m_page(page)
    , m_store(folder)
    , m_counter(std::move(channel))
    , m_login(login)
    , m_counting(counting)
{
    handle(page, &StartPage::favouritesChanged, this, [this](const QStringList &screens) { keep(favourites, screens); });
    handle(page, &StartPage::countsSwitched, this, &StartDesk::switchCounts);
    handle(page, &StartPage::countWanted, this, [this](int index) {
        if (index >= 0 && index < m_counts.size())
            Q_EMIT countWanted(m_counts[index]);
    });
    handle(&m_counter, &DayCounter::counted, page, &StartPage::showCount);
    handle(&m_counter, &DayCounter::failed, page, &StartPage::showFailure);
    page->showFavourites(kept(favourites));
    page->showRecent(kept(recent));
}

void StartDesk::keep(const QString &name, const QStringList &words)
{
    try {
        m_store.writeList(name, words);
    } catch (const Exception &exception) {
        Q_EMIT said(QStringLiteral("起始页没有保存：") + exception.message());
    }
}

QStringList StartDesk::kept(const QString &name)
{
    try {
        return m_store.readList(name);
    } catch (const Exception &exception) {
        Q_EMIT said(exception.message());
        return {};
    }
}

void StartDesk::remember(const QString &screen)
{
    if (!screenItem(screen))
        return;
    QStringList screens = kept(recent);
    screens.removeAll(screen);
    screens.prepend(screen);
    screens = screens.mid(0, mostRecent);
    keep(recent, screens);
    m_page->showRecent(screens);
}

void StartDesk::setSeen(bool seen)
{
    if (seen == m_isSeen)
        return;
    m_isSeen = seen;
    if (seen)
        showCounts();
    else
        m_counter.stop();
}

void StartDesk::switchCounts(bool on)
{
    keep(counts, on ? QStringList() : QStringList(off));
    m_sinceCounting.invalidate();
    m_counts.clear();
    m_counter.stop();
    showCounts();
}

/// Those whose screens may be opened.
QList<DayCount> StartDesk::offeredCounts() const
{
    QList<DayCount> counts = dayCounts(m_login.site, Clock::today().addDays(-1));
    counts.removeIf([this](const DayCount &count) { return m_login.rightsTo(count.screen.toString()).isEmpty(); });
    return counts;
}

void StartDesk::showCounts()
{
    const QList<DayCount> offered = offeredCounts();
    if (m_counting == Counting::Never || offered.isEmpty())
        return;
    if (kept(counts).contains(off))
        return m_page->showCounts({}, {});
    if (m_sinceCounting.isValid() && m_sinceCounting.elapsed() < freshMilliseconds)
        return;
    m_counts = offered;
    QStringList captions;
    for (const DayCount &count : std::as_const(m_counts))
        captions.append(count.caption.toString());
    m_page->showCounts(QStringLiteral("昨天 %1").arg(m_login.site), captions);
    m_counter.start(m_counts);
    m_sinceCounting.start();
}

} // namespace client
