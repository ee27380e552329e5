#pragma once

#include "platform/report/output/page_painter.h"

#include <QAbstractScrollArea>
#include <QCache>

#include <memory>

namespace report {

class PreparedReport;

enum class PageZoom { Percent, FitWidth, WholePage };

/// Shows the pages of a prepared report one below the other, or in pairs.
class PageView : public QAbstractScrollArea {
    Q_OBJECT

public:
    explicit PageView(QWidget *parent = nullptr);

    /// The report must live until another one is set.
    void setReport(PreparedReport *report);
    /// To be called when there are more pages.
    void pagesAdded();
    void setZoom(PageZoom zoom, qreal percent = 100);
    qreal percent() const { return m_percent; }
    PageZoom zoom() const { return m_zoom; }
    int pagesAcross() const { return m_across; }
    void setPagesAcross(int pages);
    int currentPage() const; ///< from 0; the first one of a pair
    void showPage(int page);
    /// Marks a box of a page and brings it into view.
    void markBox(int page, const QRect &box);
    /// A page as a small picture.
    QImage thumbnail(int page, QSize size);

Q_SIGNALS:
    void currentPageChanged(int page);
    void zoomChanged();

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void scrollContentsBy(int dx, int dy) override;
    void wheelEvent(QWheelEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    qreal scale() const;
    QSize pageSize() const; ///< in pixels
    QRect pageRect(int page) const; ///< in the viewport
    int pageSeen(int height) const; ///< in a window of that height
    int pageStep() const; ///< from one line of pages to the next
    int lineOf(int page) const { return page / m_across; }
    int wholeWidth() const; ///< of a line of pages
    void arrange();
    const Page &page(int index);

    PreparedReport *m_report = nullptr;
    std::unique_ptr<PagePainter> m_painter;
    QCache<int, Page> m_pages { 16 };
    PageZoom m_zoom = PageZoom::FitWidth;
    qreal m_percent = 100;
    int m_across = 1;
    int m_markedPage = -1;
    QRect m_marked;
};

} // namespace report
