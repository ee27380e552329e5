#pragma once

#include "platform/report/layout/band_renderer.h"

#include <QPointer>

#include <deque>
#include <optional>
#include <vector>

namespace report {

/// Breaks a report into pages, one at a time. Where they fit, one page keeps together: a row, the headers of the groups that begin
/// with it and the footers of the groups that end with it; the last row and the summary.
class PageBuilder {
public:
    /// Throws Exception when the definition does not fit the dataset or a page.
    PageBuilder(Definition definition, TDataSet *rows, const QList<ReportAddIn *> &addIns, StyleEvent styleEvent, Resources &resources);

    /// The next page; nothing after the last. Throws Exception when the dataset was closed or changed meanwhile.
    std::optional<Page> next();
    int rowsDone() const { return m_row; }
    int rowCount() const { return m_rowCount; }

private:
    const BoundBand *band(BandKind kind) const { return m_report.band(kind); }
    int heightOf(BandKind kind) const;
    void checkHeights() const;
    Context context(int row) const;
    RenderedBand rendered(const BoundBand &band, int row) const { return m_renderer.render(band, context(row), m_body); }

    Page nextPage();
    void beginPage(bool withColumns);
    void placeColumns();
    Page endPage();
    void place(const RenderedBand &piece);
    void placeIfThere(BandKind kind, int row);
    bool fits(int height) const { return m_y + height <= m_bottom; }
    bool placePending();

    std::vector<QString> groupValues(int row) const;
    void takeRow();
    bool wantsNewPage() const;
    std::vector<RenderedBand> renderedChunk() const;
    /// False when the page is full.
    bool placeRow();
    void finishRow();

    QPointer<TDataSet> m_rows;
    int m_rowCount;
    Resources &m_resources;
    BoundReport m_report;
    BandRenderer m_renderer;
    int m_body = 0; ///< the height that rows have on a page without the title

    int m_row = 0; ///< the next to be placed
    bool m_rowTaken = false; ///< it is in the totals already
    std::size_t m_opens = 0; ///< the outermost group that it opens; as many as groups: none
    std::size_t m_closes = 0; ///< the outermost group that it closes
    std::vector<QString> m_values; ///< of the groups at the next row
    std::deque<RenderedBand> m_pending; ///< of a row that no page holds in one
    std::optional<RenderedBand> m_summary; ///< of the last page, there once that page is ready for it
    bool m_done = false;

    int m_pageNumber = 0;
    Page m_page;
    int m_y = 0;
    int m_rowsTop = 0; ///< where the rows of the page begin
    int m_bottom = 0;
    int m_rowsOnPage = 0;
};

} // namespace report
