#include "platform/report/output/export_filter.h"

#include "platform/toolkit/long_work.h"

#include <QSaveFile>

void ExportFilter::forEachPage(PreparedReport &report, const Progress &progress, const std::function<void(const report::Page &)> &visit)
{
    // Those who come first need the number of pages too, so everything is laid out before the first one is written.
    const auto cancelled = [] { throw Abort(QStringLiteral("导出已取消。")); };
    if (!report.layAllPages([&](int pages, int, int) { return !progress || progress(0, pages); }))
        cancelled();
    for (int index = 0; index < report.pageCount(); ++index) {
        visit(report.page(index));
        if (progress && !progress(index + 1, report.pageCount()))
            cancelled();
    }
}

void ExportFilter::writeFile(const QString &fileName, const std::function<void(QIODevice &)> &write)
{
    QSaveFile file(fileName);
    if (!file.open(QIODevice::WriteOnly))
        throw Exception(QStringLiteral("文件“%1”不能写入：").arg(fileName) + file.errorString());
    write(file);
    if (!file.commit())
        throw Exception(QStringLiteral("文件“%1”没有写完：").arg(fileName) + file.errorString());
}

ExportFilter *filterFor(const QList<ExportFilter *> &filters, const QString &fileName)
{
    const auto found = std::find_if(filters.begin(), filters.end(),
        [&fileName](const ExportFilter *filter) { return fileName.endsWith(filter->ending(), Qt::CaseInsensitive); });
    return found == filters.end() ? nullptr : *found;
}
