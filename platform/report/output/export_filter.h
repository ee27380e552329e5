#pragma once

#include "platform/report/layout/prepared_report.h"

#include <QObject>

#include <functional>

namespace report {

/// Writes a prepared report to files of one kind. The pages that are still to be laid out are laid out on the way. A file
/// comes to stand in its place when it is whole: a failed or cancelled export throws and leaves what was there before.
class ExportFilter : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;
    /// Told of the pages written; false cancels.
    using Progress = std::function<bool(int pagesDone, int pages)>;

    virtual QString caption() const = 0; ///< for a person, without the ending
    virtual QString ending() const = 0; ///< of the file's name, with the point
    /// Throws Exception, and Abort when it is cancelled.
    void exportReport(PreparedReport &report, const QString &fileName, const Progress &progress = {});

protected:
    /// What a file of this kind is for: to be looked at page by page, or to go on with the data.
    enum class Form { Pages, Table };
    virtual Form form() const { return Form::Table; }
    virtual void write(PreparedReport &report, const QString &fileName, const Progress &progress) = 0;
    /// Calls `visit` with every page from the first.
    static void forEachPage(PreparedReport &report, const Progress &progress, const std::function<void(const Page &)> &visit);
};

/// The filter for a file's ending among `filters`; null when there is none.
ExportFilter *filterFor(const QList<ExportFilter *> &filters, const QString &fileName);

} // namespace report
