#include "platform/report/layout/chart.h"

#include "platform/report/definition/value.h"
#include "platform/report/layout/text_face.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <numeric>

namespace report {

namespace {

constexpr std::array colors { 0xff3b6ea5u, 0xffe08e45u, 0xff5b9a68u, 0xffb5534fu, 0xff7d6aa8u, 0xff4fa3a5u, 0xffc7a33cu, 0xff8a8f98u };

QColor colorOf(qsizetype number) { return QColor(QRgb(colors[std::size_t(number) % colors.size()])); }

using Points = QList<std::pair<QString, double>>;

/// 1, 2 or 5 times a power of ten, so that `span` takes about five steps.
double niceStep(double span)
{
    const double raw = span / 5;
    const double power = std::pow(10, std::floor(std::log10(raw)));
    const double digit = raw / power;
    return power * (digit < 1.5 ? 1 : digit < 3.5 ? 2 : digit < 7.5 ? 5 : 10);
}

QString shown(double value)
{
    const auto number = packet::Decimal::fromDouble(value);
    return number ? formatted(Value(number->rescaled(std::min(number->scale, 2))), QStringLiteral("#,##0.##")) : QString();
}

/// Draws one chart into what its title leaves of the box.
class ChartDrawing {
public:
    ChartDrawing(const AddInTask &task, Drawing &drawing)
        : m_task(task)
        , m_drawing(drawing)
        , m_text(task.object.style)
    {
        m_text.sides = NoSide;
        m_line = lineHeight(m_text);
        m_area = task.box.adjusted(0, task.text.isEmpty() ? 0 : m_line * 3 / 2, 0, 0);
    }

    void draw()
    {
        if (!m_task.text.isEmpty()) {
            Style title = m_text;
            title.bold = true;
            title.alignment = Qt::AlignHCenter | Qt::AlignVCenter;
            m_drawing.text(title, QRect(m_task.box.x(), m_task.box.y(), m_task.box.width(), m_line), m_task.text);
        }
        const bool pie = m_task.object.chart == ChartKind::Pie;
        const bool any
            = std::any_of(m_task.points.begin(), m_task.points.end(), [pie](const auto &point) { return pie ? point.second > 0 : true; });
        if (!any)
            text(m_area, QStringLiteral("没有数据"), Qt::AlignHCenter | Qt::AlignVCenter);
        else if (pie)
            drawPie();
        else
            drawAxes();
    }

private:
    void text(const QRect &box, const QString &text, Qt::Alignment alignment)
    {
        Style style = m_text;
        style.alignment = alignment;
        m_drawing.text(style, box, text);
    }

    int heightOf(double value) const { return int(std::lround((value - m_low) / (m_high - m_low) * m_plot.height())); }
    int yOf(double value) const { return m_plot.y() + m_plot.height() - heightOf(value); }

    void drawAxes()
    {
        const auto [least, greatest] = std::minmax_element(
            m_task.points.begin(), m_task.points.end(), [](const auto &left, const auto &right) { return left.second < right.second; });
        m_low = std::min(0.0, least->second);
        m_high = std::max(0.0, greatest->second);
        if (m_high == m_low)
            m_high = m_low + 1;
        const double step = niceStep(m_high - m_low);
        m_low = std::floor(m_low / step) * step;
        m_high = std::ceil(m_high / step) * step;
        const int labelWidth = std::min(m_area.width() / 4, int(m_text.points * 35 * 4));
        m_plot = m_area.adjusted(labelWidth, m_line / 2, 0, -m_line * 3 / 2);
        const Style grid { .color = QColor(0xd5, 0xda, 0xe0), .lineWidth = 6 };
        const int steps = int(std::lround((m_high - m_low) / step));
        for (int mark = 0; mark <= steps; ++mark) {
            const double value = m_low + mark * step;
            m_drawing.line(grid, { m_plot.x(), yOf(value) }, { m_plot.x() + m_plot.width(), yOf(value) });
            text(QRect(m_area.x(), yOf(value) - m_line / 2, labelWidth, m_line), shown(value), Qt::AlignRight | Qt::AlignVCenter);
        }
        drawLabels();
        m_task.object.chart == ChartKind::Bars ? drawBars() : drawLine();
        const Style axis { .color = QColor(0x50, 0x58, 0x60), .lineWidth = 15 };
        m_drawing.line(axis, { m_plot.x(), yOf(0) }, { m_plot.x() + m_plot.width(), yOf(0) });
    }

    int left(qsizetype point) const { return m_plot.x() + int(m_plot.width() * point / m_task.points.size()); }

    /// As many labels as find room.
    void drawLabels()
    {
        const int slot = std::max(1, m_plot.width() / int(m_task.points.size()));
        const int right = m_plot.x() + m_plot.width();
        const int every = std::max(1, int(std::ceil(m_text.points * 35 * 3 / slot)));
        for (qsizetype point = 0; point < m_task.points.size(); point += every)
            text(QRect(left(point), m_plot.y() + m_plot.height() + m_line / 4, std::min(slot * every, right - left(point)), m_line),
                m_task.points[point].first, Qt::AlignHCenter | Qt::AlignVCenter);
    }

    void drawBars()
    {
        const Style bar { .fill = colorOf(0), .lineWidth = 0 };
        const int slot = m_plot.width() / int(m_task.points.size());
        for (qsizetype point = 0; point < m_task.points.size(); ++point) {
            const double value = m_task.points[point].second;
            const int top = yOf(std::max(value, 0.0));
            m_drawing.rectangle(bar, QRect(left(point) + slot / 5, top, std::max(20, slot * 3 / 5), yOf(std::min(value, 0.0)) - top));
            if (slot > m_text.points * 35 * 2)
                text(QRect(left(point), top - m_line, slot, m_line), shown(value), Qt::AlignHCenter | Qt::AlignBottom);
        }
    }

    void drawLine()
    {
        QPolygon line;
        const int slot = m_plot.width() / int(m_task.points.size());
        const Style dot { .fill = colorOf(0), .lineWidth = 0 };
        for (qsizetype point = 0; point < m_task.points.size(); ++point) {
            const QPoint at(left(point) + slot / 2, yOf(m_task.points[point].second));
            line.append(at);
            m_drawing.rectangle(dot, QRect(at - QPoint(40, 40), QSize(80, 80)));
        }
        m_drawing.polygon({ .lineWidth = 30, .lineColor = colorOf(0) }, line);
    }

    void drawPie()
    {
        const double sum = std::accumulate(m_task.points.begin(), m_task.points.end(), 0.0,
            [](double total, const auto &point) { return total + std::max(0.0, point.second); });
        const int diameter = std::min(m_area.height(), m_area.width() * 2 / 5);
        const QPointF centre(m_area.x() + diameter / 2.0, m_area.y() + m_area.height() / 2.0);
        const int rows = std::max(1, m_area.height() / m_line);
        double angle = -std::numbers::pi / 2;
        for (qsizetype point = 0; point < m_task.points.size(); ++point) {
            const double share = std::max(0.0, m_task.points[point].second) / sum;
            drawSlice(centre, diameter / 2.0, angle, angle + share * 2 * std::numbers::pi, colorOf(point));
            angle += share * 2 * std::numbers::pi;
            if (point < rows)
                drawLegend(int(point), rows, share, diameter);
        }
    }

    void drawSlice(QPointF centre, double radius, double from, double to, const QColor &color)
    {
        QPolygon slice { centre.toPoint() };
        const int steps = std::max(1, int((to - from) / 0.03));
        for (int step = 0; step <= steps; ++step) {
            const double angle = from + (to - from) * step / steps;
            slice.append((centre + radius * QPointF(std::cos(angle), std::sin(angle))).toPoint());
        }
        m_drawing.polygon({ .fill = color, .lineWidth = 10, .lineColor = Qt::white }, slice);
    }

    void drawLegend(int row, int rows, double share, int diameter)
    {
        const qsizetype count = std::min<qsizetype>(rows, m_task.points.size());
        const int top = m_area.y() + (m_area.height() - int(count) * m_line) / 2 + row * m_line;
        const int x = m_area.x() + diameter + m_line / 2;
        m_drawing.rectangle({ .fill = colorOf(row), .lineWidth = 0 }, QRect(x, top + m_line / 4, m_line / 2, m_line / 2));
        const bool rest = row + 1 == rows && m_task.points.size() > rows;
        const QString label = rest ? QStringLiteral("…") : m_task.points[row].first + QStringLiteral(" %1%").arg(share * 100, 0, 'f', 1);
        text(QRect(x + m_line, top, m_area.x() + m_area.width() - x - m_line, m_line), label, Qt::AlignLeft | Qt::AlignVCenter);
    }

    const AddInTask &m_task;
    Drawing &m_drawing;
    Style m_text;
    int m_line;
    QRect m_area;
    QRect m_plot {};
    double m_low = 0;
    double m_high = 1;
};

} // namespace

void ChartObject::draw(const AddInTask &task, Drawing &drawing) const { ChartDrawing(task, drawing).draw(); }

} // namespace report
