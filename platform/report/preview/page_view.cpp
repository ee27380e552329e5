#include "platform/report/preview/page_view.h"

#include "platform/report/layout/prepared_report.h"

#include <QKeyEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>

#include <algorithm>
#include <memory>

namespace report {

namespace {

constexpr int gap = 14;
constexpr qreal leastPercent = 20;
constexpr qreal mostPercent = 500;

} // namespace

PageView::PageView(QWidget *parent)
    : QAbstractScrollArea(parent)
{
    setFrameShape(QFrame::NoFrame);
    verticalScrollBar()->setSingleStep(40);
    horizontalScrollBar()->setSingleStep(40);
    // A scroll bar that comes and goes would change the width that pages are fitted to.
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
}

void PageView::setReport(PreparedReport *report)
{
    m_report = report;
    m_pages.clear();
    m_painter = std::make_unique<PagePainter>(report->resources());
    m_markedPage = -1;
    arrange();
    verticalScrollBar()->setValue(0);
}

void PageView::pagesAdded()
{
    // The number of pages stands on them.
    if (m_report->isComplete())
        m_pages.clear();
    arrange();
}

void PageView::setZoom(PageZoom zoom, qreal percent)
{
    const int page = currentPage();
    m_zoom = zoom;
    m_percent = std::clamp(percent, leastPercent, mostPercent);
    arrange();
    showPage(page);
    Q_EMIT zoomChanged();
}

void PageView::setPagesAcross(int pages)
{
    const int page = currentPage();
    m_across = std::max(1, pages);
    arrange();
    showPage(page);
    Q_EMIT zoomChanged();
}

qreal PageView::scale() const { return m_percent / 100 * logicalDpiX() / (25.4 * millimetre); }

QSize PageView::pageSize() const { return m_report ? (QSizeF(m_report->paper()) * scale()).toSize() : QSize(1, 1); }

int PageView::pageStep() const { return pageSize().height() + gap; }

int PageView::wholeWidth() const { return m_across * (pageSize().width() + gap) - gap; }

QRect PageView::pageRect(int page) const
{
    const QSize size = pageSize();
    const int spare = viewport()->width() - wholeWidth();
    const int left = spare > 2 * gap ? spare / 2 : gap - horizontalScrollBar()->value();
    return QRect(
        QPoint(left + page % m_across * (size.width() + gap), gap + lineOf(page) * pageStep() - verticalScrollBar()->value()), size);
}

void PageView::arrange()
{
    if (!m_report)
        return;
    const QSizeF paper = QSizeF(m_report->paper()) * logicalDpiX() / (25.4 * millimetre);
    const qreal across = (viewport()->width() - (m_across + 1) * gap) / (m_across * paper.width()) * 100;
    const qreal down = (viewport()->height() - 2 * gap) / paper.height() * 100;
    if (m_zoom != PageZoom::Percent)
        m_percent = std::clamp(m_zoom == PageZoom::FitWidth ? across : std::min(across, down), leastPercent, mostPercent);
    const int height = gap + (m_report->pageCount() + m_across - 1) / m_across * pageStep();
    verticalScrollBar()->setRange(0, std::max(0, height - viewport()->height()));
    verticalScrollBar()->setPageStep(viewport()->height());
    horizontalScrollBar()->setRange(0, std::max(0, wholeWidth() + 2 * gap - viewport()->width()));
    horizontalScrollBar()->setPageStep(viewport()->width());
    viewport()->update();
}

int PageView::currentPage() const { return pageSeen(viewport()->height()); }

int PageView::pageSeen(int height) const
{
    if (!m_report || m_report->pageCount() == 0)
        return 0;
    // The page that takes the upper middle of the window.
    const int line = (verticalScrollBar()->value() + height / 3) / pageStep();
    return std::clamp(line * m_across, 0, m_report->pageCount() - 1);
}

void PageView::showPage(int page)
{
    verticalScrollBar()->setValue(lineOf(page) * pageStep());
    Q_EMIT currentPageChanged(currentPage());
}

void PageView::markBox(int page, const QRect &box)
{
    m_markedPage = page;
    m_marked = box;
    const int top = gap + lineOf(page) * pageStep() + int(box.y() * scale());
    const int value = verticalScrollBar()->value();
    if (top < value + 20 || top > value + viewport()->height() - 60)
        verticalScrollBar()->setValue(top - viewport()->height() / 3);
    viewport()->update();
}

const Page &PageView::page(int index)
{
    if (Page *kept = m_pages.object(index))
        return *kept;
    auto *page = new Page(m_report->page(index));
    m_pages.insert(index, page);
    return *page;
}

QImage PageView::thumbnail(int index, QSize size)
{
    const QSize fitted = m_report->paper().scaled(size, Qt::KeepAspectRatio);
    QImage image(fitted, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(qreal(fitted.width()) / m_report->paper().width(), qreal(fitted.height()) / m_report->paper().height());
    m_painter->paint(painter, m_report->page(index));
    painter.resetTransform();
    painter.setPen(QColor(0xb0, 0xb4, 0xba));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(image.rect().adjusted(0, 0, -1, -1));
    return image;
}

void PageView::paintEvent(QPaintEvent *event)
{
    QPainter painter(viewport());
    painter.fillRect(event->rect(), QColor(0x8b, 0x91, 0x99));
    if (!m_report)
        return;
    const int first = std::max(0, (verticalScrollBar()->value() + event->rect().top() - gap) / pageStep()) * m_across;
    for (int index = first; index < m_report->pageCount(); ++index) {
        const QRect rect = pageRect(index);
        if (rect.top() > event->rect().bottom())
            break;
        painter.fillRect(rect.translated(3, 3), QColor(0x6b, 0x70, 0x78));
        painter.fillRect(rect, Qt::white);
        painter.save();
        painter.setClipRect(rect.intersected(event->rect()));
        painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
        painter.translate(rect.topLeft());
        painter.scale(scale(), scale());
        m_painter->paint(painter, page(index));
        if (index == m_markedPage) {
            painter.setCompositionMode(QPainter::CompositionMode_Multiply);
            painter.fillRect(m_marked, QColor(0xff, 0xe1, 0x66));
        }
        painter.restore();
    }
}

void PageView::resizeEvent(QResizeEvent *event)
{
    // The pages still have the size that they had in the old window.
    const int page = pageSeen(std::max(0, event->oldSize().height()));
    arrange();
    if (m_zoom != PageZoom::Percent) {
        verticalScrollBar()->setValue(lineOf(page) * pageStep());
        Q_EMIT zoomChanged();
    }
}

void PageView::scrollContentsBy(int, int)
{
    viewport()->update();
    Q_EMIT currentPageChanged(currentPage());
}

void PageView::wheelEvent(QWheelEvent *event)
{
    if (!event->modifiers().testFlag(Qt::ControlModifier))
        return QAbstractScrollArea::wheelEvent(event);
    setZoom(PageZoom::Percent, m_percent * (event->angleDelta().y() > 0 ? 1.1 : 1 / 1.1));
    event->accept();
}

void PageView::keyPressEvent(QKeyEvent *event)
{
    QScrollBar *bar = verticalScrollBar();
    switch (event->key()) {
    case Qt::Key_Home:
        return bar->setValue(0);
    case Qt::Key_End:
        return bar->setValue(bar->maximum());
    case Qt::Key_PageDown:
    case Qt::Key_Space:
        return bar->setValue(bar->value() + bar->pageStep());
    case Qt::Key_PageUp:
        return bar->setValue(bar->value() - bar->pageStep());
    default:
        QAbstractScrollArea::keyPressEvent(event);
    }
}

} // namespace report
