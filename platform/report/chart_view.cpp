#include "platform/report/chart_view.h"

#include "platform/files/safe_file.h"
#include "platform/report/output/page_painter.h"
#include "platform/report/output/svg_page.h"
#include "platform/toolkit/handler.h"
#include "platform/toolkit/plain_text.h"

#include <QBuffer>
#include <QFileInfo>
#include <QHelpEvent>
#include <QImage>
#include <QMouseEvent>
#include <QPainter>
#include <QToolTip>

#include <ranges>

namespace report {

namespace {

constexpr qreal unitsPerPixel = 25.4 * millimetre / 96;
constexpr int margin = 3 * millimetre;
constexpr QSize pictureSize(24000, 14000); ///< of a saved one
constexpr int dotsPerMillimetre = 8;
const QColor markColor(0x20, 0x60, 0xc0);

} // namespace

ChartView::ChartView(QWidget *parent)
    : QWidget(parent)
{
    setMinimumSize(240, 160);
    setAccessibleName(QStringLiteral("图表"));
    setAttribute(Qt::WA_OpaquePaintEvent);
}

void ChartView::showChart(const ChartData &chart, ChartKind kind)
{
    m_data = chart;
    m_kind = kind;
    drawAgain();
}

void ChartView::markPoint(int point)
{
    m_markedPoint = point;
    update();
}

ChartView::Picture ChartView::drawn(QSize size) const
{
    Picture picture { .size = size };
    Drawing drawing(picture.resources, 0, picture.page);
    const Style text { .points = 10 };
    picture.marks = drawChart(m_data, m_kind, text, QRect(QPoint(), size).adjusted(margin, margin, -margin, -margin), drawing);
    return picture;
}

void ChartView::drawAgain()
{
    m_picture = drawn((QSizeF(size()) * unitsPerPixel).toSize());
    update();
}

void ChartView::resizeEvent(QResizeEvent *) { drawAgain(); }

void ChartView::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), Qt::white); // the colours of a chart are those of its print
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(1 / unitsPerPixel, 1 / unitsPerPixel);
    PagePainter(m_picture.resources).paint(painter, m_picture.page);
    painter.setPen(QPen(markColor, 2 * unitsPerPixel));
    painter.setBrush(Qt::NoBrush);
    for (const ChartMark &mark : std::as_const(m_picture.marks)) {
        if (mark.point == m_markedPoint)
            painter.drawPolygon(mark.area);
    }
}

const ChartMark *ChartView::markAt(QPoint place) const
{
    const QPoint onPage = (QPointF(place) * unitsPerPixel).toPoint();
    for (const ChartMark &mark : std::views::reverse(m_picture.marks)) {
        if (mark.area.containsPoint(onPage, Qt::OddEvenFill))
            return &mark;
    }
    return nullptr;
}

QPoint ChartView::placeOf(int point, int series) const
{
    for (const ChartMark &mark : m_picture.marks) {
        if (mark.point == point && mark.series == series)
            return (QPointF(mark.area.boundingRect().center()) / unitsPerPixel).toPoint();
    }
    return {};
}

void ChartView::mousePressEvent(QMouseEvent *event)
{
    if (const ChartMark *mark = event->button() == Qt::LeftButton ? markAt(event->pos()) : nullptr)
        Q_EMIT pointClicked(mark->point);
}

void ChartView::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (const ChartMark *mark = event->button() == Qt::LeftButton ? markAt(event->pos()) : nullptr)
        Q_EMIT pointDoubleClicked(mark->point);
}

bool ChartView::event(QEvent *event)
{
    if (event->type() != QEvent::ToolTip)
        return QWidget::event(event);
    platform::guarded([&] {
        const auto *help = static_cast<QHelpEvent *>(event);
        const ChartMark *mark = markAt(help->pos());
        const QString tip = mark ? QStringLiteral("%1\n%2 %3")
                                       .arg(m_data.labels[mark->point], m_data.series[mark->series].name,
                                           QString::number(m_data.series[mark->series].values[mark->point], 'g', 15))
                                 : QString();
        QToolTip::showText(help->globalPos(), platform::plainTip(tip), this);
    });
    return true;
}

void ChartView::save(const QString &fileName) const
{
    const Picture picture = drawn(pictureSize);
    files::SafeFile file(fileName);
    if (QFileInfo(fileName).suffix().compare(u"svg", Qt::CaseInsensitive) == 0) {
        file.write(svgOf(picture.resources, picture.page, picture.size));
        return file.commit();
    }
    const qreal scale = qreal(dotsPerMillimetre) / millimetre;
    QImage image((QSizeF(picture.size) * scale).toSize(), QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(scale, scale);
    PagePainter(picture.resources).paint(painter, picture.page);
    painter.end();
    QBuffer bytes;
    bytes.open(QIODevice::WriteOnly);
    if (!image.save(&bytes, "PNG"))
        file.fail(QStringLiteral("内存不足"));
    file.write(bytes.data());
    file.commit();
}

} // namespace report
