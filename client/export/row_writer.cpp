#include "client/export/row_writer.h"

#include <algorithm>
#include <memory>
#include <vector>

using namespace client;

using packet::Chunk;

/// Writes the cells of one column, each with what stands before it.
class CellWriter {
public:
    CellWriter(const ExportTable &table, const TableFormat &format, std::size_t column)
        : m_table(table)
        , m_format(format)
        , m_column(column)
        , m_field(std::size_t(std::max(0, table.columns[column].field)))
        , m_before(format.beforeCell(table, column))
        , m_beforeSize(m_before.size())
    {
        m_before.resize(m_beforeSize + files::TextBuffer::padding);
    }
    virtual ~CellWriter() = default;

    /// Any cell.
    void appendShown(files::TextBuffer &out, std::size_t row)
    {
        appendBefore(out);
        const std::string_view text = m_table.text(m_column, row, m_buffer);
        const CellKind kind = m_table.columns[m_column].kind;
        if (kind == CellKind::Text)
            m_format.appendText(out, text);
        else if (kind == CellKind::Time)
            ((out += m_format.quote()) += text) += m_format.quote();
        else if (kind == CellKind::Float && (text.ends_with('f') || text.ends_with('n'))) // inf and nan
            m_format.appendText(out, text);
        else
            out += text.empty() ? m_format.noNumber() : text;
    }
    /// The same for a row that was not edited: a line of a block of the packet.
    virtual void append(files::TextBuffer &out, std::size_t row, const packet::Block &, std::size_t) { appendShown(out, row); }

protected:
    void appendBefore(files::TextBuffer &out) const
    {
        if (m_beforeSize > 0)
            out.appendPadded(m_before.data(), m_beforeSize);
    }

    const ExportTable &m_table;
    const TableFormat &m_format;
    const std::size_t m_column;
    const std::size_t m_field; ///< of the packet, where the column shows one

private:
    std::string m_before; ///< with padding
    const std::size_t m_beforeSize;
    std::string m_buffer;
};

namespace {

/// A text column with a dictionary: each distinct text is put into the form once.
class CodedTexts : public CellWriter {
public:
    CodedTexts(const ExportTable &table, const TableFormat &format, std::size_t column)
        : CellWriter(table, format, column)
    {
        const packet::Dictionary &texts = *table.rows.packet().dictionary(m_field);
        add({});
        for (std::size_t index = 0; index < texts.size(); ++index)
            add(texts.at(index));
        m_ready.room(files::TextBuffer::padding);
    }
    void append(files::TextBuffer &out, std::size_t, const packet::Block &block, std::size_t line) override
    {
        const Chunk &texts = block.columns[m_field];
        const std::size_t index = texts.isNull(line) ? 0 : texts.index(line) + 1U;
        out.appendPadded(m_ready.view().data() + m_offsets[index], m_offsets[index + 1] - m_offsets[index]);
    }

private:
    void add(std::string_view text)
    {
        appendBefore(m_ready);
        m_format.appendText(m_ready, text);
        m_offsets.push_back(m_ready.size());
    }

    files::TextBuffer m_ready; ///< the text of null comes first
    std::vector<std::size_t> m_offsets { 0 };
};

class PlainTexts : public CellWriter {
public:
    using CellWriter::CellWriter;
    void append(files::TextBuffer &out, std::size_t, const packet::Block &block, std::size_t line) override
    {
        const Chunk &texts = block.columns[m_field];
        const auto *offsets = texts.offsets.as<std::uint32_t>();
        appendBefore(out);
        m_format.appendText(out,
            texts.isNull(line) ? std::string_view()
                               : std::string_view(texts.values.as<char>() + offsets[line], offsets[line + 1] - offsets[line]));
    }
};

/// Whole numbers and decimals of up to 64 bits.
class Numbers : public CellWriter {
public:
    using CellWriter::CellWriter;
    void append(files::TextBuffer &out, std::size_t row, const packet::Block &block, std::size_t line) override
    {
        const Chunk &numbers = block.columns[m_field];
        const bool null = numbers.isNull(line);
        if (!null && numbers.width != sizeof(std::int64_t))
            return appendShown(out, row);
        appendBefore(out);
        if (null)
            out += m_format.noNumber();
        else
            out.advance(
                packet::Decimal { numbers.values.as<std::int64_t>()[line], numbers.scale }.put(out.room(packet::Decimal::longestText)));
    }
};

class Times : public CellWriter {
public:
    using CellWriter::CellWriter;
    void append(files::TextBuffer &out, std::size_t, const packet::Block &block, std::size_t line) override
    {
        const Chunk &times = block.columns[m_field];
        appendBefore(out);
        out += m_format.quote();
        if (!times.isNull(line))
            out += timeText(times.values.as<std::int64_t>()[line]);
        out += m_format.quote();
    }

private:
    /// Times of one day often follow one another.
    std::string_view timeText(std::int64_t seconds)
    {
        constexpr std::int64_t secondsPerDay = 86400;
        if (m_text.empty() || seconds < m_midnight || seconds >= m_midnight + secondsPerDay) {
            m_text.clear();
            packet::appendTimestamp(seconds, m_text);
            m_midnight = seconds - ((seconds % secondsPerDay) + secondsPerDay) % secondsPerDay;
            return m_text;
        }
        const int time = int(seconds - m_midnight);
        putTwo(11, time / 3600);
        putTwo(14, time / 60 % 60);
        putTwo(17, time % 60);
        return m_text;
    }
    void putTwo(std::size_t place, int value)
    {
        m_text[place] = char('0' + value / 10);
        m_text[place + 1] = char('0' + value % 10);
    }

    std::string m_text;
    std::int64_t m_midnight = 0;
};

std::unique_ptr<CellWriter> cellWriter(const ExportTable &table, const TableFormat &format, std::size_t column)
{
    const ExportColumn &shown = table.columns[column];
    if (shown.field < 0 || shown.isCheckBox() || shown.kind == CellKind::Float)
        return std::make_unique<CellWriter>(table, format, column);
    if (shown.kind == CellKind::Time)
        return std::make_unique<Times>(table, format, column);
    if (shown.kind != CellKind::Text)
        return std::make_unique<Numbers>(table, format, column);
    if (table.rows.packet().dictionary(std::size_t(shown.field)))
        return std::make_unique<CodedTexts>(table, format, column);
    return std::make_unique<PlainTexts>(table, format, column);
}

} // namespace

namespace client {

RowWriter::RowWriter(const ExportTable &table, const TableFormat &format)
    : m_table(table)
    , m_format(format)
{
    for (std::size_t column = 0; column < table.columns.size(); ++column)
        m_cells.push_back(cellWriter(table, format, column));
}

RowWriter::~RowWriter() = default;

void RowWriter::append(files::TextBuffer &out, std::size_t row) const
{
    const std::uint32_t source = m_table.rows.source(row);
    out += m_format.beforeRow(row == 0);
    if (m_table.rows.overlay().isEdited(source)) {
        for (const auto &cell : m_cells)
            cell->appendShown(out, row);
    } else {
        constexpr std::uint32_t blockRows = packet::Packet::blockRows;
        const packet::Block &block = m_table.rows.packet().blocks()[source / blockRows];
        for (const auto &cell : m_cells)
            cell->append(out, row, block, source % blockRows);
    }
    out += m_format.afterRow();
}

} // namespace client
