#include "platform/grid/grid_search.h"

#include "platform/grid/db_grid.h"

#include <algorithm>

namespace platform {

namespace {

/// The cells that are searched, as a ring: the titles first, then row by row.
class SearchedCells {
public:
    SearchedCells(const TDBGridEh &grid, const GridSearch &search)
        : m_grid(grid)
        , m_pattern(search.text, search.match, search.sensitivity, HanText::AlsoAsRead)
        , m_titles(search.titles)
    {
        // Only a text that could be part of a number is compared with numbers as they are shown, which takes longer.
        const bool isNumber
            = std::ranges::all_of(search.text, [](QChar letter) { return letter.isDigit() || QStringView(u",.-").contains(letter); });
        for (int column = 0; column < grid.columnCount(); ++column) {
            const Column &shown = grid.column(column);
            if (!shown.visible || shown.isCheckBox() || (search.column >= 0 && column != search.column))
                continue;
            const TField *field = grid.rowCount() > 0 ? grid.dataSet()->findField(shown.fieldName) : nullptr;
            m_columns.append(column);
            m_tests.push_back(field ? grid.dataSet()->textTest(field->index(), m_pattern) : displayTest(column));
            if (field && isNumber && !grid.displayFormat(column).isEmpty())
                m_tests.back() = [exact = m_tests.back(), shown = displayTest(column)](int row) { return exact(row) || shown(row); };
        }
    }
    SearchedCells(const SearchedCells &) = delete;

    qint64 count() const { return qint64(m_columns.size()) * (m_grid.rowCount() + 1); }
    QPoint cell(qint64 place) const { return QPoint(m_columns[place % m_columns.size()], int(place / m_columns.size()) + titleRow); }
    /// The place of a cell, or of the last one before it.
    qint64 place(QPoint cell) const
    {
        const auto behind = std::upper_bound(m_columns.begin(), m_columns.end(), cell.x()) - m_columns.begin();
        return (cell.y() - titleRow) * m_columns.size() + behind - 1;
    }
    bool matches(qint64 place) const
    {
        const qsizetype column = place % m_columns.size();
        const int row = int(place / m_columns.size()) + titleRow;
        if (row == titleRow)
            return m_titles && m_pattern.matches(m_grid.column(m_columns[column]).caption);
        return m_tests[std::size_t(column)](row);
    }

private:
    TDataSet::RowTest displayTest(int column) const
    {
        return [this, column](int row) { return m_pattern.matches(m_grid.displayText(row, column)); };
    }

    const TDBGridEh &m_grid;
    TextPattern m_pattern;
    bool m_titles;
    QList<int> m_columns;
    std::vector<TDataSet::RowTest> m_tests;
};

} // namespace

std::optional<QPoint> findCell(const TDBGridEh &grid, const GridSearch &search, QPoint start, SearchDirection direction)
{
    const SearchedCells cells(grid, search);
    const qint64 count = cells.count();
    if (search.text.isEmpty() || count == 0)
        return {};
    const qint64 from = cells.place(start);
    for (qint64 distance = 1; distance <= count; ++distance) {
        const qint64 place = (from + (direction == SearchDirection::Forward ? distance : 2 * count - distance)) % count;
        if (cells.matches(place))
            return cells.cell(place);
    }
    return {};
}

FoundCells findCells(const TDBGridEh &grid, const GridSearch &search, qsizetype most)
{
    const SearchedCells cells(grid, search);
    FoundCells found {};
    const qint64 titles = cells.count() > 0 ? cells.place(QPoint(grid.columnCount(), titleRow)) + 1 : 0;
    for (qint64 place = titles; !search.text.isEmpty() && place < cells.count(); ++place) {
        if (!cells.matches(place))
            continue;
        ++found.count;
        if (found.listed.size() < most)
            found.listed.append(cells.cell(place));
    }
    return found;
}

} // namespace platform
