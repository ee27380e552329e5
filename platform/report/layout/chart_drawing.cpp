#include "platform/report/layout/chart_drawing.h"

#include "platform/report/definition/value.h"
#include "platform/report/layout/text_face.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace report {

namespace {

constexpr std::array colors { 0xff3b6ea5u, 0xffe08e45u, 0xff5b9a68u, 0xffb5534fu, 0xff7d6aa8u, 0xff4fa3a5u, 0xffc7a33cu, 0xff8a8f98u };

QColor colorOf(qsizetype number) { return QColor(QRgb(colors[std::size_t(number) % colors.size()])); }

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

/// Draws one chart into what its title and its legend leave of the box.
class ChartDrawing {
public:
    ChartDrawing(const ChartData &data, ChartKind kind, const Style &text, const QRect &box, Drawing &drawing)
        : m_data(data)
        , m_kind(kind)
        , m_drawing(drawing)
        , m_text(text)
        , m_area(box)
    {
        m_text.sides = NoSide;
        m_line = lineHeight(m_text);
    }

    QList<ChartMark> draw()
    {
        if (!m_data.title.isEmpty())
            drawTitle();
        if (m_kind == ChartKind::Pie ? !hasShares() : !hasValues())
            text(m_area, QStringLiteral("没有数据"), Qt::AlignHCenter | Qt::AlignVCenter);
        else if (m_kind == ChartKind::Pie)
            drawPie();
        else
            drawAxes();
        return m_marks;
    }

private:
    bool hasValues() const { return !m_data.labels.isEmpty() && !m_data.series.isEmpty(); }
    bool hasShares() const
    {
        return hasValues() && std::ranges::any_of(m_data.series.first().values, [](double value) { return value > 0; });
    }

    void text(const QRect &box, const QString &text, Qt::Alignment alignment)
    {
        Style style = m_text;
        style.alignment = alignment;
        m_drawing.text(style, box, text);
    }
    void drawTitle()
    {
        Style title = m_text;
        title.bold = true;
        title.alignment = Qt::AlignHCenter | Qt::AlignVCenter;
        m_drawing.text(title, QRect(m_area.x(), m_area.y(), m_area.width(), m_line), m_data.title);
        m_area.adjust(0, m_line * 3 / 2, 0, 0);
    }
    /// Tells several series apart.
    void drawLegend()
    {
        const int room = m_area.width() / int(m_data.series.size());
        for (qsizetype series = 0; series < m_data.series.size(); ++series) {
            const int x = m_area.x() + int(series) * room;
            m_drawing.rectangle({ .fill = colorOf(series), .lineWidth = 0 }, QRect(x, m_area.y() + m_line / 4, m_line / 2, m_line / 2));
            text(QRect(x + m_line, m_area.y(), room - m_line, m_line), m_data.series[series].name, Qt::AlignLeft | Qt::AlignVCenter);
        }
        m_area.adjust(0, m_line * 3 / 2, 0, 0);
    }

    int heightOf(double value) const { return int(std::lround((value - m_low) / (m_high - m_low) * m_plot.height())); }
    int yOf(double value) const { return m_plot.y() + m_plot.height() - heightOf(value); }

    void drawAxes()
    {
        if (m_data.series.size() > 1)
            drawLegend();
        m_low = m_high = 0;
        for (const ChartSeries &series : m_data.series) {
            const auto [least, greatest] = std::ranges::minmax(series.values);
            m_low = std::min(m_low, least);
            m_high = std::max(m_high, greatest);
        }
        if (m_high == m_low)
            m_high = m_low + 1;
        const double step = niceStep(m_high - m_low);
        m_low = std::floor(m_low / step) * step;
        m_high = std::ceil(m_high / step) * step;
        const int labelWidth = std::min(m_area.width() / 4, int(m_text.points * 35 * 4));
        m_plot = m_area.adjusted(labelWidth, m_line / 2, 0, -m_line * 3 / 2);
        drawGrid(step, labelWidth);
        drawLabels();
        for (qsizetype series = 0; series < m_data.series.size(); ++series)
            m_kind == ChartKind::Bars ? drawBars(series) : drawLine(series);
        const Style axis { .color = QColor(0x50, 0x58, 0x60), .lineWidth = 15 };
        m_drawing.line(axis, { m_plot.x(), yOf(0) }, { m_plot.x() + m_plot.width(), yOf(0) });
    }
    void drawGrid(double step, int labelWidth)
    {
        const Style grid { .color = QColor(0xd5, 0xda, 0xe0), .lineWidth = 6 };
        const int steps = int(std::lround((m_high - m_low) / step));
        for (int mark = 0; mark <= steps; ++mark) {
            const double value = m_low + mark * step;
            m_drawing.line(grid, { m_plot.x(), yOf(value) }, { m_plot.x() + m_plot.width(), yOf(value) });
            text(QRect(m_area.x(), yOf(value) - m_line / 2, labelWidth, m_line), shown(value), Qt::AlignRight | Qt::AlignVCenter);
        }
    }

    int left(qsizetype point) const { return m_plot.x() + int(m_plot.width() * point / m_data.labels.size()); }
    int digitWidth() const { return int(m_text.points * 35 * 0.55); }
    int slot() const { return m_plot.width() / int(m_data.labels.size()); }

    /// As many labels as find room.
    void drawLabels()
    {
        const int slot = std::max(1, this->slot());
        const int right = m_plot.x() + m_plot.width();
        const int every = std::max(1, int(std::ceil(m_text.points * 35 * 3 / slot)));
        for (qsizetype point = 0; point < m_data.labels.size(); point += every)
            text(QRect(left(point), m_plot.y() + m_plot.height() + m_line / 4, std::min(slot * every, right - left(point)), m_line),
                m_data.labels[point], Qt::AlignHCenter | Qt::AlignVCenter);
    }

    /// The bars of one label stand side by side.
    void drawBars(qsizetype series)
    {
        const Style bar { .fill = colorOf(series), .lineWidth = 0 };
        const int slot = this->slot();
        const int group = slot * 3 / 5;
        const int width = std::max(20, group / int(m_data.series.size()));
        for (qsizetype point = 0; point < m_data.labels.size(); ++point) {
            const double value = m_data.series[series].values[point];
            const int top = yOf(std::max(value, 0.0));
            const QRect box(left(point) + slot / 5 + width * int(series), top, width, yOf(std::min(value, 0.0)) - top);
            m_drawing.rectangle(bar, box);
            const int room = slot / int(m_data.series.size());
            // A number that is cut would be read as another one.
            if (room >= digitWidth() * shown(value).size() + 2 * textPadding)
                text(QRect(box.x() + (width - room) / 2, top - m_line, room, m_line), shown(value), Qt::AlignHCenter | Qt::AlignBottom);
            // The whole height of its place is the bar's, so that a low one can be hit too.
            m_marks.append({ int(point), int(series), QPolygon(QRect(box.x(), m_plot.y(), box.width(), m_plot.height())) });
        }
    }

    void drawLine(qsizetype series)
    {
        QPolygon line;
        const int slot = this->slot();
        const Style dot { .fill = colorOf(series), .lineWidth = 0 };
        for (qsizetype point = 0; point < m_data.labels.size(); ++point) {
            const QPoint at(left(point) + slot / 2, yOf(m_data.series[series].values[point]));
            line.append(at);
            m_drawing.rectangle(dot, QRect(at - QPoint(40, 40), QSize(80, 80)));
            m_marks.append({ int(point), int(series), QPolygon(QRect(at - QPoint(150, 150), QSize(300, 300))) });
        }
        m_drawing.polygon({ .lineWidth = 30, .lineColor = colorOf(series) }, line);
    }

    void drawPie()
    {
        const QList<double> &values = m_data.series.first().values;
        double sum = 0;
        for (const double value : values)
            sum += std::max(0.0, value);
        const int diameter = std::min(m_area.height(), m_area.width() * 2 / 5);
        const QPointF centre(m_area.x() + diameter / 2.0, m_area.y() + m_area.height() / 2.0);
        const int rows = std::max(1, m_area.height() / m_line);
        double angle = -std::numbers::pi / 2;
        for (qsizetype point = 0; point < values.size(); ++point) {
            const double share = std::max(0.0, values[point]) / sum;
            drawSlice(centre, diameter / 2.0, angle, angle + share * 2 * std::numbers::pi, int(point));
            angle += share * 2 * std::numbers::pi;
            if (point < rows)
                drawShare(int(point), rows, share, diameter);
        }
    }

    void drawSlice(QPointF centre, double radius, double from, double to, int point)
    {
        QPolygon slice { centre.toPoint() };
        const int steps = std::max(1, int((to - from) / 0.03));
        for (int step = 0; step <= steps; ++step) {
            const double angle = from + (to - from) * step / steps;
            slice.append((centre + radius * QPointF(std::cos(angle), std::sin(angle))).toPoint());
        }
        m_drawing.polygon({ .fill = colorOf(point), .lineWidth = 10, .lineColor = Qt::white }, slice);
        m_marks.append({ point, 0, slice });
    }

    void drawShare(int row, int rows, double share, int diameter)
    {
        const qsizetype count = std::min<qsizetype>(rows, m_data.labels.size());
        const int top = m_area.y() + (m_area.height() - int(count) * m_line) / 2 + row * m_line;
        const int x = m_area.x() + diameter + m_line / 2;
        m_drawing.rectangle({ .fill = colorOf(row), .lineWidth = 0 }, QRect(x, top + m_line / 4, m_line / 2, m_line / 2));
        const bool rest = row + 1 == rows && m_data.labels.size() > rows;
        const QString label = rest ? QStringLiteral("…") : m_data.labels[row] + QStringLiteral(" %1%").arg(share * 100, 0, 'f', 1);
        text(QRect(x + m_line, top, m_area.x() + m_area.width() - x - m_line, m_line), label, Qt::AlignLeft | Qt::AlignVCenter);
    }

    const ChartData &m_data;
    ChartKind m_kind;
    Drawing &m_drawing;
    Style m_text;
    int m_line;
    QRect m_area;
    QRect m_plot {};
    double m_low = 0;
    double m_high = 1;
    QList<ChartMark> m_marks;
};

} // namespace

QList<ChartMark> drawChart(const ChartData &data, ChartKind kind, const Style &text, const QRect &box, Drawing &drawing)
{
    return ChartDrawing(data, kind, text, box, drawing).draw();
}

} // namespace report
