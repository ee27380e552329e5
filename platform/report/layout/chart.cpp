#include "platform/report/layout/chart.h"

#include "platform/report/layout/chart_drawing.h"

namespace report {

void ChartObject::draw(const AddInTask &task, Drawing &drawing) const
{
    ChartData data { .title = task.text, .series = { {} } };
    for (const auto &[label, value] : task.points) {
        data.labels.append(label);
        data.series.first().values.append(value);
    }
    drawChart(data, task.object.chart, task.object.style, task.box, drawing);
}

} // namespace report
