#include "client/result_comparison.h"

#include "client/result_window.h"
#include "packet/builder.h"
#include "platform/grid/grid_colors.h"
#include "platform/grid/grid_columns.h"
#include "platform/toolkit/long_work.h"

#include <QHash>

#include <algorithm>
#include <iterator>
#include <vector>

using namespace platform;

namespace client {
namespace {

constexpr int rowsBetweenReports = 2048;
const QString arrow = QStringLiteral(" → ");
const QString changedMark = QStringLiteral("改变");
constexpr QRgb changedColor = 0xffffe08a;

/// A column of both results; -1: `before` has no such column.
struct Pair {
    int before;
    int after;
};

class Comparison {
public:
    Comparison(const ComparedResult &before, const ComparedResult &after);

    ResultWindow *window(TComponentOwner *owner);

private:
    void matchEqualRows();
    void writeDifferences();
    void write(const QString &mark, int before, int after);
    void report(int rows);
    size_t hashOf(const TDBGridEh &grid, int row, int Pair::*side) const;
    bool areEqual(int before, int after) const;
    QString keyOf(const TDBGridEh &grid, int row, int Pair::*side) const;
    QString textOf(const Pair &column, int before, int after) const;
    QList<Column> columns() const;

    const ComparedResult &m_before;
    const ComparedResult &m_after;
    std::vector<Pair> m_columns;
    std::vector<Pair> m_keys;
    std::vector<bool> m_matchedBefore;
    std::vector<bool> m_matchedAfter;
    std::unique_ptr<packet::Builder> m_builder;
    InterfaceWork m_work { QStringLiteral("正在比较…") };
    int m_done = 0;
    int m_same = 0;
    int m_changed = 0;
    int m_onlyBefore = 0;
    int m_onlyAfter = 0;
};

bool hasSum(const Column &column)
{
    return std::ranges::any_of(column.footers, [](const ColumnFooter &footer) { return footer.kind == FooterKind::Sum; });
}

Comparison::Comparison(const ComparedResult &before, const ComparedResult &after)
    : m_before(before)
    , m_after(after)
    , m_matchedBefore(std::size_t(before.grid.rowCount()))
    , m_matchedAfter(std::size_t(after.grid.rowCount()))
{
    std::vector<packet::Builder::Column> fields { { "MARK", packet::ColumnType::Text } };
    for (int index = 0; index < after.grid.columnCount(); ++index) {
        const Column &column = after.grid.column(index);
        if (!column.visible || column.fieldName.isEmpty())
            continue;
        m_columns.push_back({ before.grid.columnIndex(column.fieldName), index });
        fields.push_back({ column.fieldName.toStdString(), packet::ColumnType::Text });
    }
    const int waybills = after.grid.columnIndex(u"BILL_CODE", ColumnScope::Visible);
    std::ranges::copy_if(m_columns, std::back_inserter(m_keys),
        [&](const Pair &column) { return waybills >= 0 ? column.after == waybills : !hasSum(after.grid.column(column.after)); });
    m_builder = std::make_unique<packet::Builder>(std::move(fields));
    matchEqualRows();
    writeDifferences();
}

void Comparison::report(int rows)
{
    m_done += rows;
    if (m_done % rowsBetweenReports == 0 && !m_work.report(m_done, std::int64_t(2 * (m_matchedBefore.size() + m_matchedAfter.size()))))
        throw Abort(QStringLiteral("比较已取消"));
}

size_t Comparison::hashOf(const TDBGridEh &grid, int row, int Pair::*side) const
{
    size_t hash = 0;
    for (const Pair &column : m_columns)
        hash = qHash(column.*side < 0 ? QString() : grid.cellText(row, column.*side), hash);
    return hash;
}

bool Comparison::areEqual(int before, int after) const
{
    return std::ranges::all_of(m_columns, [&](const Pair &column) {
        const QString old = column.before < 0 ? QString() : m_before.grid.cellText(before, column.before);
        return old == m_after.grid.cellText(after, column.after);
    });
}

QString Comparison::keyOf(const TDBGridEh &grid, int row, int Pair::*side) const
{
    QString key;
    for (const Pair &column : m_keys)
        key += (column.*side < 0 ? QString() : grid.cellText(row, column.*side)) + u'\x1f';
    return key;
}

/// A waybill may have several rows: those that did not change belong to each other, whatever their order.
void Comparison::matchEqualRows()
{
    QHash<size_t, std::vector<int>> rows;
    for (int row = int(m_matchedBefore.size()) - 1; row >= 0; --row, report(1))
        rows[hashOf(m_before.grid, row, &Pair::before)].push_back(row);
    for (int row = 0; row < int(m_matchedAfter.size()); ++row, report(1)) {
        const auto found = rows.find(hashOf(m_after.grid, row, &Pair::after));
        if (found == rows.end() || found->empty() || !areEqual(found->back(), row))
            continue;
        m_matchedBefore[std::size_t(found->back())] = true;
        m_matchedAfter[std::size_t(row)] = true;
        found->pop_back();
        ++m_same;
    }
}

void Comparison::writeDifferences()
{
    QHash<QString, std::vector<int>> rows;
    for (int row = int(m_matchedBefore.size()) - 1; row >= 0; --row, report(1)) {
        if (!m_matchedBefore[std::size_t(row)])
            rows[keyOf(m_before.grid, row, &Pair::before)].push_back(row);
    }
    for (int row = 0; row < int(m_matchedAfter.size()); ++row, report(1)) {
        if (m_matchedAfter[std::size_t(row)])
            continue;
        const auto found = rows.find(keyOf(m_after.grid, row, &Pair::after));
        if (found == rows.end() || found->empty()) {
            write(u"仅有：" + m_after.name, -1, row);
            ++m_onlyAfter;
            continue;
        }
        write(changedMark, found->back(), row);
        m_matchedBefore[std::size_t(found->back())] = true;
        found->pop_back();
        ++m_changed;
    }
    for (int row = 0; row < int(m_matchedBefore.size()); ++row) {
        if (m_matchedBefore[std::size_t(row)])
            continue;
        write(u"仅有：" + m_before.name, row, -1);
        ++m_onlyBefore;
    }
}

QString Comparison::textOf(const Pair &column, int before, int after) const
{
    const QString old = before < 0 || column.before < 0 ? QString() : m_before.grid.cellTextWithTicks(before, column.before);
    const QString now = after < 0 ? QString() : m_after.grid.cellTextWithTicks(after, column.after);
    if (before < 0 || after < 0)
        return before < 0 ? now : old;
    return old == now ? now : (old.isEmpty() ? QStringLiteral("（空）") : old) + arrow + (now.isEmpty() ? QStringLiteral("（空）") : now);
}

void Comparison::write(const QString &mark, int before, int after)
{
    m_builder->addText(0, mark.toStdString());
    for (std::size_t index = 0; index < m_columns.size(); ++index)
        m_builder->addText(index + 1, textOf(m_columns[index], before, after).toStdString());
    m_builder->endRow();
}

QList<Column> Comparison::columns() const
{
    QList<Column> columns { text("MARK", u"比较", 130) };
    columns.first().titleButton = true;
    columns.first().footers
        = { { FooterKind::StaticText, QStringLiteral("记录数"), Qt::AlignHCenter }, { FooterKind::Count, {}, Qt::AlignHCenter } };
    for (const Pair &pair : m_columns) {
        Column column = m_after.grid.column(pair.after);
        column.footers.clear();
        column.numberForm = NumberForm::Exact;
        column.checkedKey.clear(); // a tick is a text here
        column.sortMark = SortMark::None;
        column.sortKey = 0;
        columns.append(column);
    }
    return columns;
}

ResultWindow *Comparison::window(TComponentOwner *owner)
{
    const QString description = QStringLiteral("%1 与 %2 比较：相同 %3 行，改变 %4 行，仅前者有 %5 行，仅后者有 %6 行。")
                                    .arg(m_before.name, m_after.name)
                                    .arg(m_same)
                                    .arg(m_changed)
                                    .arg(m_onlyBefore)
                                    .arg(m_onlyAfter);
    auto *window = new ResultWindow(owner, QStringLiteral("resultComparison"), u"比较 " + m_after.name, description);
    window->resultGrid->parentWidget()->setFont(m_after.grid.designedFont());
    window->cds->setData(m_builder->finish());
    window->resultGrid->setColumns(columns());
    window->resultGrid->setFrozenColumns(1);
    window->resultGrid->setFooterRowCount(2);
    window->resultGrid->onGetCellParams = [grid = window->resultGrid](int row, int column, CellParameters &parameters) {
        parameters.background = rowStripe(row + 1);
        if (grid->cellText(row, 0) == changedMark && grid->cellText(row, column).contains(arrow))
            parameters.background = QColor::fromRgba(changedColor);
    };
    return window;
}

} // namespace

std::unique_ptr<ResultWindow> compareResults(TComponentOwner *owner, const ComparedResult &before, const ComparedResult &after)
{
    return std::unique_ptr<ResultWindow>(Comparison(before, after).window(owner));
}

} // namespace client
