#include "client/export/row_writer.h"

#include <charconv>
#include <cstring>

using packet::Chunk;

namespace {

constexpr std::size_t blockRows = packet::Packet::blockRows;

} // namespace

/// Writes the cells of one column, each with what stands before it.
class CellWriter {
public:
    CellWriter(const ExportTable &table, const TableFormat &format, std::size_t column)
        : m_table(table)
        , m_format(format)
        , m_column(column)
        , m_before(format.beforeCell(table, column))
    {
    }
    virtual ~CellWriter() = default;

    /// Any cell.
    void appendShown(std::string &out, std::size_t row)
    {
        out += m_before;
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
    /// The same for a row that was not edited; `source` is its number in the packet.
    virtual void append(std::string &out, std::size_t row, std::uint32_t) { appendShown(out, row); }

protected:
    const Chunk &chunk(std::uint32_t source) const { return m_table.rows.packet().chunk(field(), source); }
    std::size_t field() const { return std::size_t(m_table.columns[m_column].field); }

    const ExportTable &m_table;
    const TableFormat &m_format;
    const std::size_t m_column;
    const std::string m_before;

private:
    std::string m_buffer;
};

namespace {

/// A text column with a dictionary: each distinct text is put into the form once.
class CodedTexts : public CellWriter {
public:
    CodedTexts(const ExportTable &table, const TableFormat &format, std::size_t column)
        : CellWriter(table, format, column)
    {
        const packet::Dictionary &texts = *table.rows.packet().dictionary(field());
        add({});
        for (std::size_t index = 0; index < texts.size(); ++index)
            add(texts.at(index));
    }
    void append(std::string &out, std::size_t, std::uint32_t source) override
    {
        const Chunk &texts = chunk(source);
        const std::size_t line = source % blockRows;
        out += m_ready.at(texts.isNull(line) ? 0 : texts.index(line) + 1U);
    }

private:
    void add(std::string_view text)
    {
        m_ready.bytes += m_before;
        m_format.appendText(m_ready.bytes, text);
        m_ready.offsets.push_back(std::uint32_t(m_ready.bytes.size()));
    }

    packet::Dictionary m_ready; ///< the text of null comes first
};

class PlainTexts : public CellWriter {
public:
    using CellWriter::CellWriter;
    void append(std::string &out, std::size_t, std::uint32_t source) override
    {
        out += m_before;
        m_format.appendText(out, m_table.rows.packet().text(field(), source));
    }
};

/// Whole numbers and decimals of up to 64 bits.
class Numbers : public CellWriter {
public:
    using CellWriter::CellWriter;
    void append(std::string &out, std::size_t row, std::uint32_t source) override
    {
        const Chunk &numbers = chunk(source);
        const std::size_t line = source % blockRows;
        if (numbers.isNull(line) || numbers.width != sizeof(std::int64_t))
            return appendShown(out, row);
        out += m_before;
        appendUnits(out, numbers.values.as<std::int64_t>()[line], numbers.scale);
    }

private:
    static void appendUnits(std::string &out, std::int64_t units, int scale)
    {
        for (; scale > 0 && units % 10 == 0; --scale)
            units /= 10;
        char text[64];
        char *const digits = text + 2; // leaves room for the sign and a zero
        const auto magnitude = units < 0 ? 0 - std::uint64_t(units) : std::uint64_t(units);
        char *end = std::to_chars(digits, digits + 24, magnitude).ptr;
        if (scale > 0)
            end = insertPoint(digits, end, scale);
        char *begin = digits;
        if (units < 0)
            *--begin = '-';
        out.append(begin, end);
    }
    static char *insertPoint(char *digits, char *end, int scale)
    {
        const int missing = scale + 1 - int(end - digits);
        if (missing > 0) {
            std::memmove(digits + missing, digits, std::size_t(end - digits));
            std::memset(digits, '0', std::size_t(missing));
            end += missing;
        }
        std::memmove(end - scale + 1, end - scale, std::size_t(scale));
        end[-scale] = '.';
        return end + 1;
    }
};

class Times : public CellWriter {
public:
    using CellWriter::CellWriter;
    void append(std::string &out, std::size_t row, std::uint32_t source) override
    {
        const Chunk &times = chunk(source);
        const std::size_t line = source % blockRows;
        if (times.isNull(line))
            return appendShown(out, row);
        ((out += m_before) += m_format.quote()) += timeText(times.values.as<std::int64_t>()[line]);
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

RowWriter::RowWriter(const ExportTable &table, const TableFormat &format)
    : m_table(table)
    , m_format(format)
{
    for (std::size_t column = 0; column < table.columns.size(); ++column)
        m_cells.push_back(cellWriter(table, format, column));
}

RowWriter::~RowWriter() = default;

void RowWriter::append(std::string &out, std::size_t row) const
{
    const std::uint32_t source = m_table.rows.source(row);
    const bool edited = m_table.rows.overlay().isEdited(source);
    out += m_format.beforeRow(row == 0);
    for (const auto &cell : m_cells) {
        if (edited)
            cell->appendShown(out, row);
        else
            cell->append(out, row, source);
    }
    out += m_format.afterRow();
}
