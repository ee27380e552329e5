#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <memory>

/// One cell as it is shown, and whether its column holds numbers.
struct ExportCell {
    QString text;
    bool number = false;
};

/// A text form of a table: appends its parts, as UTF-8, in the order titles, rows, end.
class TableFormat {
public:
    virtual ~TableFormat() = default;
    virtual void appendTitles(QByteArray &out, const QList<ExportCell> &titles) = 0;
    virtual void appendRow(QByteArray &out, const QList<ExportCell> &cells) = 0;
    virtual void appendEnd(QByteArray &out, bool truncated) = 0;

    /// The form that a file's ending names; throws Exception for an ending that names none.
    ///   .csv   comma-separated with quotes as in RFC 4180, a byte-order mark and CRLF
    ///   .txt   the same with tabs between
    ///   .json  {"columns":[titles],"rows":[[cells]],"truncated":true when the server cut the rows}; numbers as numbers
    /// In the first two, cells that a spreadsheet would run as a formula begin with a tab.
    static std::unique_ptr<TableFormat> of(const QString &fileName);
};
