#include "platform/report/output/cell_table.h"

#include <algorithm>

namespace report {

namespace {

bool isData(BandKind band) { return band != BandKind::PageHeader && band != BandKind::PageFooter && band != BandKind::ColumnFooter; }

/// Sorts the edges and leaves one for those that lie together.
void unite(QList<int> &edges, int tolerance)
{
    std::sort(edges.begin(), edges.end());
    edges.erase(
        std::unique(edges.begin(), edges.end(), [tolerance](int left, int right) { return right - left < tolerance; }), edges.end());
}

int indexOf(const QList<int> &edges, int edge, int tolerance)
{
    const auto after = std::upper_bound(edges.begin(), edges.end(), edge + tolerance / 2);
    return std::max(0, int(after - edges.begin()) - 1);
}

} // namespace

QString plainText(const Primitive &primitive) { return QString(primitive.text).remove(QChar(QChar::LineSeparator)); }

QList<CellRow> cellRows(const Page &page, const Resources &resources, int tolerance)
{
    QList<const Primitive *> texts;
    for (const Primitive &primitive : page) {
        if (primitive.shape == Shape::Text && !(primitive.text.isEmpty() && primitive.box.isEmpty()))
            texts.append(&primitive);
    }
    std::stable_sort(
        texts.begin(), texts.end(), [](const Primitive *left, const Primitive *right) { return left->box.y() < right->box.y(); });
    QList<CellRow> rows;
    for (const Primitive *text : std::as_const(texts)) {
        if (rows.isEmpty() || text->box.y() - rows.last().top >= tolerance)
            rows.append({ .band = resources.sources[text->source].band, .top = text->box.y() });
        rows.last().height = std::max(rows.last().height, text->box.height());
        rows.last().cells.append({ text });
    }
    for (CellRow &row : rows)
        std::stable_sort(row.cells.begin(), row.cells.end(),
            [](const Cell &left, const Cell &right) { return left.primitive->box.x() < right.primitive->box.x(); });
    return rows;
}

QList<int> arrangeColumns(QList<CellRow> &rows)
{
    QList<int> edges;
    for (const CellRow &row : std::as_const(rows)) {
        for (const Cell &cell : row.cells)
            edges << cell.primitive->box.x() << cell.primitive->box.x() + cell.primitive->box.width();
    }
    unite(edges, nearby.width());
    for (CellRow &row : rows) {
        int taken = 0;
        for (Cell &cell : row.cells) {
            const QRect &box = cell.primitive->box;
            cell.column = std::max(taken, indexOf(edges, box.x(), nearby.width()));
            cell.columns = std::max(1, indexOf(edges, box.x() + box.width(), nearby.width()) - cell.column);
            taken = cell.column + cell.columns;
        }
    }
    return edges;
}

DataRows::DataRows(const Resources &resources, QSize tolerance)
    : m_resources(resources)
    , m_tolerance(tolerance)
{
    const auto take = [this](bool all) {
        for (const Source &source : m_resources.sources) {
            if (all || source.band == BandKind::Master || source.band == BandKind::ColumnHeader) {
                m_lefts.append(source.left);
                m_right = std::max(m_right, source.left + source.width);
            }
        }
    };
    take(false);
    if (m_lefts.isEmpty())
        take(true);
    unite(m_lefts, m_tolerance.width());
}

int DataRows::columnOf(int left) const { return indexOf(m_lefts, left, m_tolerance.width()); }

int DataRows::columnWidth(int column) const { return (column + 1 < m_lefts.size() ? m_lefts[column + 1] : m_right) - m_lefts[column]; }

QList<CellRow> DataRows::rowsOf(const Page &page)
{
    QList<CellRow> rows;
    bool titles = false;
    for (CellRow &row : cellRows(page, m_resources, m_tolerance.height())) {
        titles = titles || row.band == BandKind::ColumnHeader;
        const bool repeated = row.band == BandKind::ColumnHeader && m_titlesDone;
        if (!isData(row.band) || repeated)
            continue;
        for (Cell &cell : row.cells)
            cell.column = columnOf(cell.primitive->box.x());
        rows.append(row);
    }
    m_titlesDone = m_titlesDone || titles;
    return rows;
}

} // namespace report
