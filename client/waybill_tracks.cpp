#include "client/waybill_tracks.h"

#include "platform/grid/db_grid.h"
#include "platform/toolkit/application.h"
#include "platform/toolkit/exception.h"
#include "platform/toolkit/handler.h"
#include "platform/toolkit/plugin_interface.h"
#include "platform/toolkit/screen.h"

#include <QKeyEvent>
#include <QRegularExpression>
#include <QSet>

using namespace platform;

namespace client {
namespace {

constexpr qsizetype mostWaybills = 500;
constexpr int boxCharacters = 22;

void record(const QStringList &numbers, const QList<TCustomRemoteServer *> &connections)
{
    QStringList names;
    for (const TCustomRemoteServer *connection : connections)
        names.append(connection->objectName());
    Application->record(
        QStringLiteral("guest"), { { QStringLiteral("bill_code"), numbers.join(u'\n') }, { QStringLiteral("connections"), names } });
}

} // namespace

void WaybillTracks::open(const QStringList &numbers, const QList<TCustomRemoteServer *> &connections)
{
    if (!m_guest)
        m_guest = std::make_unique<TLibrary>(Application->pluginDirectory() + QStringLiteral("/Guest"));
    const auto show = reinterpret_cast<QuestQueryFunction>(m_guest->resolve("ShowQuestQuery"));
    record(numbers, connections);
    QStringList bills = numbers;
    show(&bills, Application, Screen, connections.data(), int(connections.size()) - 1);
}

QStringList waybillsOf(const TDBGridEh &grid)
{
    const int column = grid.columnIndex(u"BILL_CODE");
    if (column < 0 || grid.currentRow() < 0)
        return {};
    QList<QRect> ranges = grid.selectedRanges();
    if (ranges.isEmpty())
        ranges.append(QRect(column, grid.currentRow(), 1, 1));
    QStringList numbers;
    QSet<QString> taken;
    for (const QRect &range : ranges) {
        for (int row = range.top(); row <= range.bottom(); ++row) {
            const QString number = grid.cellText(row, column);
            if (number.isEmpty() || taken.contains(number))
                continue;
            if (numbers.size() == mostWaybills)
                throw Exception(QStringLiteral("选中的运单超过 %1 票，跟踪窗口放不下，请少选一些。").arg(mostWaybills));
            taken.insert(number);
            numbers.append(number);
        }
    }
    return numbers;
}

WaybillBox::WaybillBox()
{
    setPlaceholderText(QStringLiteral("运单号，回车跟踪"));
    setAccessibleName(QStringLiteral("运单跟踪"));
    setInputMethodHints(Qt::ImhLatinOnly | Qt::ImhNoPredictiveText | Qt::ImhNoAutoUppercase);
    setClearButtonEnabled(true);
    setFixedWidth(fontMetrics().averageCharWidth() * boxCharacters);
    handle(this, &QLineEdit::returnPressed, this, [this] {
        static const QRegularExpression separators(QStringLiteral("[\\s,;，；、]+"));
        const QStringList numbers = text().split(separators, Qt::SkipEmptyParts);
        selectAll();
        if (!numbers.isEmpty())
            Q_EMIT wanted(numbers);
    });
}

void WaybillBox::enter(const QString &proposal)
{
    if (!proposal.isEmpty())
        setText(proposal);
    setFocus(Qt::ShortcutFocusReason);
    selectAll();
}

void WaybillBox::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape)
        return Q_EMIT left();
    QLineEdit::keyPressEvent(event);
}

} // namespace client
