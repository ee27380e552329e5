#pragma once

#include "platform/report/layout/page.h"

namespace report {

struct ChartSeries {
    QString name {};
    QList<double> values {}; ///< one for each label
};

/// What a chart shows.
struct ChartData {
    QString title {};
    QStringList labels {};
    QList<ChartSeries> series {}; ///< a pie shows the first
};

/// Where one value is seen, on the page that it was drawn on.
struct ChartMark {
    int point; ///< the number of its label
    int series;
    QPolygon area;
};

/// Draws a chart into a box. Returns what it drew for the values, those on top last; none for what is not seen.
QList<ChartMark> drawChart(const ChartData &data, ChartKind kind, const Style &text, const QRect &box, Drawing &drawing);

} // namespace report
