#include "platform/report/layout/page_builder.h"

#include "platform/dataset/data_set.h"

#include <algorithm>
#include <numeric>
#include <stdexcept>
#include <vector>

namespace report {

namespace {

int heightOf(const std::vector<RenderedBand> &pieces)
{
    return std::accumulate(pieces.begin(), pieces.end(), 0, [](int sum, const RenderedBand &piece) { return sum + piece.height; });
}

} // namespace

PageBuilder::PageBuilder(
    Definition definition, TDataSet *rows, const QList<ReportAddIn *> &addIns, StyleEvent styleEvent, Resources &resources)
    : m_rows(rows)
    , m_rowCount(rows->recordCount())
    , m_resources(resources)
    , m_report(std::move(definition), *rows, addIns, resources)
    , m_renderer(m_report, resources, std::move(styleEvent))
{
    const Definition &report = m_report.definition();
    m_body = report.paper.height() - report.margins.top() - report.margins.bottom();
    for (const BandKind kind : { BandKind::PageHeader, BandKind::ColumnHeader, BandKind::ColumnFooter, BandKind::PageFooter })
        m_body -= heightOf(kind);
    for (const BoundGroup &group : m_report.groups())
        m_body -= group.header.band->repeat ? group.header.band->height : 0;
    checkHeights();
    if (!band(BandKind::Master))
        m_row = m_rowCount;
    if (m_row < m_rowCount)
        m_values = groupValues(0);
}

int PageBuilder::heightOf(BandKind kind) const { return band(kind) ? band(kind)->band->height : 0; }

void PageBuilder::checkHeights() const
{
    for (const Band &each : m_report.definition().bands) {
        if (m_body <= 0 || each.height > m_body)
            throw Exception(QStringLiteral("报表不能排版：带区的高度加起来超过一页，请减小带区高度或页边距。"));
    }
    // Without any height an endless number of rows would stand on one page.
    if (band(BandKind::Master) && heightOf(BandKind::Master) < millimetre)
        throw Exception(QStringLiteral("报表不能排版：数据行的高度至少是 1 毫米。"));
}

Context PageBuilder::context(int row) const
{
    Context context { .rows = m_rows, .row = std::min(row, m_rowCount - 1), .page = m_pageNumber };
    context.totals = &m_report.totals().values();
    return context;
}

std::optional<Page> PageBuilder::next()
{
    if (m_done)
        return {};
    try {
        return nextPage();
    } catch (const std::overflow_error &) {
        throw Exception(QStringLiteral("报表不能排版：合计的位数太多。"));
    }
}

Page PageBuilder::nextPage()
{
    if (!m_rows || !m_rows->active() || m_rows->recordCount() != m_rowCount)
        throw Exception(QStringLiteral("数据在排版时已改变，请重新打印。"));
    const bool rowsLeft = m_row < m_rowCount || !m_pending.empty();
    beginPage(rowsLeft || m_pageNumber == 0);
    while (!m_pending.empty() || m_row < m_rowCount) {
        if (!m_pending.empty() ? !placePending() : !placeRow())
            return endPage();
    }
    if (const BoundBand *summary = band(BandKind::Summary)) {
        const RenderedBand piece = rendered(*summary, m_rowCount - 1);
        if (!fits(piece.height) && (m_rowsOnPage > 0 || m_pageNumber == 1))
            return endPage();
        m_summary = piece;
    }
    m_done = true;
    return endPage();
}

void PageBuilder::beginPage(bool withColumns)
{
    const Definition &report = m_report.definition();
    ++m_pageNumber;
    m_page.clear();
    m_rowsOnPage = 0;
    m_y = report.margins.top();
    m_bottom = report.paper.height() - report.margins.bottom() - heightOf(BandKind::PageFooter) - heightOf(BandKind::ColumnFooter);
    m_report.totals().clear(pageScope);
    if (m_pageNumber == 1)
        placeIfThere(BandKind::Title, m_row);
    placeIfThere(BandKind::PageHeader, m_row);
    if (withColumns)
        placeColumns();
    m_rowsTop = m_y;
}

void PageBuilder::placeColumns()
{
    placeIfThere(BandKind::ColumnHeader, m_row);
    // Groups that go on from the page before; while a taken row waits, those that it opens do not.
    const std::size_t goingOn = m_rowTaken ? m_opens : m_row > 0 && m_row < m_rowCount ? m_closes : 0;
    for (std::size_t level = 0; level < std::min(goingOn, m_report.groups().size()); ++level) {
        const BoundBand &header = m_report.groups()[level].header;
        if (header.band->repeat)
            place(rendered(header, m_row));
    }
}

Page PageBuilder::endPage()
{
    const Definition &report = m_report.definition();
    const int lastRow = m_row - 1;
    if (m_rowsOnPage > 0)
        placeIfThere(BandKind::ColumnFooter, lastRow);
    if (m_summary)
        place(*m_summary);
    m_y = report.paper.height() - report.margins.bottom() - heightOf(BandKind::PageFooter);
    placeIfThere(BandKind::PageFooter, lastRow);
    return std::move(m_page);
}

void PageBuilder::placeIfThere(BandKind kind, int row)
{
    if (const BoundBand *found = band(kind))
        place(rendered(*found, row));
}

void PageBuilder::place(const RenderedBand &piece)
{
    const QPoint offset(m_report.definition().margins.left(), m_y);
    for (Primitive primitive : piece.primitives) {
        primitive.box.translate(offset);
        primitive.points.translate(offset);
        m_page.append(std::move(primitive));
    }
    m_y += piece.height;
}

std::vector<QString> PageBuilder::groupValues(int row) const
{
    std::vector<QString> values;
    for (const BoundGroup &group : m_report.groups())
        values.push_back(group.by.evaluate(context(row), {}).toText());
    return values;
}

void PageBuilder::takeRow()
{
    const std::size_t groups = m_report.groups().size();
    // What the row before closed, this one opens.
    m_opens = m_row == 0 ? 0 : m_closes;
    for (std::size_t level = m_opens; level < groups; ++level)
        m_report.totals().clear(firstGroupScope + int(level));
    m_report.totals().takeRow(context(m_row), RowStage::BeforeLayout);
    m_closes = 0;
    if (m_row + 1 < m_rowCount) {
        std::vector<QString> next = groupValues(m_row + 1);
        while (m_closes < groups && next[m_closes] == m_values[m_closes])
            ++m_closes;
        m_values = std::move(next);
    }
    m_rowTaken = true;
}

bool PageBuilder::wantsNewPage() const
{
    const auto &groups = m_report.groups();
    return m_row > 0 && std::any_of(groups.begin() + std::ptrdiff_t(m_opens), groups.end(), [](const BoundGroup &group) {
        return group.header.band->newPage;
    });
}

std::vector<RenderedBand> PageBuilder::renderedChunk() const
{
    const auto &groups = m_report.groups();
    std::vector<RenderedBand> pieces;
    for (std::size_t level = m_opens; level < groups.size(); ++level)
        pieces.push_back(rendered(groups[level].header, m_row));
    pieces.push_back(rendered(*band(BandKind::Master), m_row));
    for (std::size_t level = groups.size(); level-- > m_closes;) {
        if (groups[level].footer)
            pieces.push_back(rendered(*groups[level].footer, m_row));
    }
    return pieces;
}

bool PageBuilder::placeRow()
{
    if (!m_rowTaken)
        takeRow();
    if (wantsNewPage() && m_rowsOnPage > 0)
        return false;
    const std::vector<RenderedBand> chunk = renderedChunk();
    const int height = report::heightOf(chunk);
    int needed = height;
    if (const BoundBand *summary = band(BandKind::Summary); summary && m_row + 1 == m_rowCount) {
        const int together = height + (summary->grows ? rendered(*summary, m_row).height : summary->band->height);
        needed = together <= m_body ? together : height;
    }
    const bool titlePage = m_pageNumber == 1 && band(BandKind::Title);
    if (!fits(needed) && (m_rowsOnPage > 0 || (titlePage && height <= m_body)))
        return false;
    if (fits(height)) {
        for (const RenderedBand &piece : chunk)
            place(piece);
    } else {
        m_pending.assign(chunk.begin(), chunk.end());
    }
    finishRow();
    return true;
}

void PageBuilder::finishRow()
{
    m_report.totals().takeRow(context(m_row), RowStage::Placed);
    ++m_rowsOnPage;
    ++m_row;
    m_rowTaken = false;
}

bool PageBuilder::placePending()
{
    // A fresh page without the title takes any band.
    const bool fresh = m_y == m_rowsTop && (m_pageNumber > 1 || !band(BandKind::Title));
    if (!fresh && !fits(m_pending.front().height))
        return false;
    place(m_pending.front());
    m_pending.pop_front();
    ++m_rowsOnPage;
    return true;
}

} // namespace report
