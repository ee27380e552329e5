#pragma once

#include "client/export/table_format.h"

#include <memory>
#include <vector>

class CellWriter;

namespace client {

/// Writes the rows of a table in a text form. Both must outlive it.
class RowWriter {
public:
    RowWriter(const ExportTable &table, const TableFormat &format);
    ~RowWriter();

    void append(files::TextBuffer &out, std::size_t row) const;

private:
    const ExportTable &m_table;
    const TableFormat &m_format;
    std::vector<std::unique_ptr<CellWriter>> m_cells;
};

} // namespace client
