#pragma once

#include "platform/report/layout/prepared_report.h"

#include <QObject>

class QIODevice;

/// Writes a prepared report to files of one kind. The pages that are still to be laid out are laid out on the way. The file is
/// written beside its place and renamed at the end: a failed or cancelled export throws and leaves what was there before.
class ExportFilter : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;
    /// Told of the pages written; false cancels.
    using Progress = std::function<bool(int pagesDone, int pages)>;

    virtual QString caption() const = 0; ///< for a person, without the ending
    virtual QString ending() const = 0; ///< of the file's name, with the point
    /// Throws Exception, and Abort when it is cancelled.
    virtual void exportReport(PreparedReport &report, const QString &fileName, const Progress &progress = {}) = 0;

protected:
    /// Calls `visit` with every page from the first.
    static void forEachPage(PreparedReport &report, const Progress &progress, const std::function<void(const report::Page &)> &visit);
    /// Lets `write` write the file; throws Exception when the disk does not take it.
    static void writeFile(const QString &fileName, const std::function<void(QIODevice &)> &write);
};

/// The filter for a file's ending among `filters`; null when there is none.
ExportFilter *filterFor(const QList<ExportFilter *> &filters, const QString &fileName);

/// Pages as they are printed.
class PdfExport : public ExportFilter {
    Q_OBJECT

public:
    using ExportFilter::ExportFilter;
    QString caption() const override;
    QString ending() const override { return QStringLiteral(".pdf"); }
    void exportReport(PreparedReport &report, const QString &fileName, const Progress &progress = {}) override;

private:
    static void writePdf(
        PreparedReport &report, const QString &path, const std::function<void(const report::Page &)> &drawn, const Progress &progress);
};

/// One picture a page: "name.jpg", or "name-1.jpg" and so on when there are more.
class JpegExport : public ExportFilter {
    Q_OBJECT

public:
    using ExportFilter::ExportFilter;
    int resolution() const { return m_resolution; } ///< dots per inch
    void setResolution(int resolution) { m_resolution = resolution; }
    int quality() const { return m_quality; } ///< 1 to 100
    void setQuality(int quality) { m_quality = quality; }

    QString caption() const override;
    QString ending() const override { return QStringLiteral(".jpg"); }
    void exportReport(PreparedReport &report, const QString &fileName, const Progress &progress = {}) override;

private:
    int m_resolution = 150;
    int m_quality = 90;
};
