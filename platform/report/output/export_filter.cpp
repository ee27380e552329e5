#include "platform/report/output/export_filter.h"

#include "platform/toolkit/long_work.h"

#include <algorithm>
#include <memory>

namespace report {

void ExportFilter::exportReport(PreparedReport &report, const QString &fileName, const Progress &progress)
{
    const std::unique_ptr<PreparedReport> whole = form() == Form::Table ? report.inOnePiece() : nullptr;
    write(whole ? *whole : report, fileName, progress);
}

void ExportFilter::forEachPage(PreparedReport &report, const Progress &progress, const std::function<void(const Page &)> &visit)
{
    // Those who come first need the number of pages too, so everything is laid out before the first one is written.
    const auto cancelled = [] { throw Abort(QStringLiteral("导出已取消。")); };
    if (!report.prepareAllPages([&](int pages, int, int) { return !progress || progress(0, pages); }))
        cancelled();
    for (int index = 0; index < report.pageCount(); ++index) {
        visit(report.page(index));
        if (progress && !progress(index + 1, report.pageCount()))
            cancelled();
    }
}

ExportFilter *filterFor(const QList<ExportFilter *> &filters, const QString &fileName)
{
    const auto found = std::find_if(filters.begin(), filters.end(),
        [&fileName](const ExportFilter *filter) { return fileName.endsWith(filter->ending(), Qt::CaseInsensitive); });
    return found == filters.end() ? nullptr : *found;
}

} // namespace report
