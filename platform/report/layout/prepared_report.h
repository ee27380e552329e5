#pragma once

#include "platform/report/layout/page_builder.h"

#include <functional>
#include <memory>
#include <vector>

namespace report {

/// A report as pages. Pages are laid out when somebody wants them, so that the first one is there at once; those that are laid out
/// are kept packed and no longer need the dataset. Used in the interface thread.
class PreparedReport {
public:
    /// Told how many pages there are and how many of the rows are done; false breaks off.
    using Progress = std::function<bool(int pages, int rowsDone, int rows)>;

    /// Throws Exception when the definition does not fit the dataset. The dataset must stay open and unchanged until isComplete().
    PreparedReport(Definition definition, TDataSet *rows, const QList<ReportAddIn *> &addIns = {}, StyleEvent styleEvent = {});
    /// The rows of each page on as many pages as there are definitions, one after the other: parts of a table that is too wide for one
    /// page. Their bands must be as high as those of the first, and none may grow by what another one does not hold.
    PreparedReport(const QList<Definition> &parts, TDataSet *rows, const QList<ReportAddIn *> &addIns, const StyleEvent &styleEvent);
    virtual ~PreparedReport();
    PreparedReport(const PreparedReport &) = delete;

    const QString &title() const { return m_title; }
    QSize paper() const { return m_paper; } ///< in hundredths of a millimetre
    const Resources &resources() const { return m_resources; }

    bool isComplete() const { return m_builders.empty(); }
    /// Pages laid out so far.
    int pageCount() const { return int(m_pages.size()); }
    /// Lays out one more; false when there are no more. Throws Exception.
    bool prepareNextPage();
    /// Lays out all; false when `progress` broke off. What is laid out stays.
    bool prepareAllPages(const Progress &progress = {});
    int rowsDone() const;
    int rowCount() const;
    bool isTruncated() const { return m_truncated; } ///< the server's limit cut the rows; false for a loaded report

    /// A page that is laid out, from 0. Where the number of pages stands, "?" until isComplete().
    Page page(int index) const;
    /// The texts on a page, in the order in which they stand in the report file.
    QStringList texts(int page) const;
    /// The first text of every object that has a name, pages laid out as far as they are.
    QMap<QString, QString> namedTexts() const;

    /// The same rows with all columns side by side, for whoever goes on with the data; null when this is the case anyway.
    virtual std::unique_ptr<PreparedReport> inOnePiece() const { return nullptr; }

    /// Writes all pages to a file that load() reads, laying out the rest first; throws Exception and leaves no file when it cannot.
    void save(const QString &fileName, const Progress &progress = {});
    /// Throws Exception when the file is none of ours, or is broken or cut.
    static std::unique_ptr<PreparedReport> load(const QString &fileName);

private:
    PreparedReport() = default;
    QByteArray packed() const;
    void unpack(const QByteArray &bytes);

    QString m_title;
    QSize m_paper;
    Resources m_resources;
    std::vector<std::unique_ptr<PageBuilder>> m_builders; ///< for the parts in turn; none when all pages are there
    int m_rowCount = 0;
    bool m_truncated = false;
    std::vector<QByteArray> m_pages;
};

} // namespace report
