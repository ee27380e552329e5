#pragma once

#include "client/export/export_table.h"
#include "platform/files/cell_text.h"
#include "platform/files/text_buffer.h"

#include <memory>
#include <string>
#include <string_view>

namespace client {

/// A text form of a table, in UTF-8: a head, rows of cells, and a tail.
class TableFormat {
public:
    virtual ~TableFormat() = default;
    virtual void appendHead(files::TextBuffer &out, const ExportTable &table) const = 0;
    virtual void appendTail(files::TextBuffer &out, const ExportTable &table) const = 0;

    virtual std::string_view beforeRow(bool first) const = 0;
    virtual std::string_view afterRow() const = 0;
    /// What stands before each cell of a column.
    virtual std::string beforeCell(const ExportTable &table, std::size_t column) const = 0;
    /// Appends a cell of text, with all that keeps it whole.
    virtual void appendText(files::TextBuffer &out, std::string_view text) const = 0;
    virtual std::string_view quote() const { return {}; } ///< on both sides of a time
    virtual std::string_view noNumber() const { return {}; } ///< in place of a number that is null

    /// The form that a file's ending names; null when it names none.
    ///   .csv   comma-separated with quotes as in RFC 4180, a byte-order mark and CRLF
    ///   .txt   the same with tabs between
    ///   .json  {"columns":[titles],"rows":[[cells]],"truncated":true when the server cut the rows}; numbers as numbers
    ///   .html  a page with the notes and the table, footers included; a spreadsheet that opens it keeps texts as texts
    /// In the first two, the texts that `guard` names begin with a tab.
    static std::unique_ptr<TableFormat> of(const QString &fileName, files::TabGuard guard = files::TabGuard::Formulas);

protected:
    void appendTitles(files::TextBuffer &out, const ExportTable &table) const;
};

std::unique_ptr<TableFormat> htmlFormat();

} // namespace client
