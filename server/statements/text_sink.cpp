#include "server/statements/text_sink.h"

#include "server/base/json.h"

#include <charconv>
#include <cmath>

namespace server {

namespace {

using packet::ColumnType;

constexpr std::size_t pieceSize = 256 * 1024;

template <class Number>
void appendNumber(Number value, std::string &out)
{
    char buffer[32];
    out.append(buffer, std::to_chars(buffer, buffer + sizeof buffer, value).ptr);
}

void appendDecimal(packet::Decimal value, std::string &out)
{
    char text[packet::Decimal::longestText];
    out.append(&text[0], value.put(text));
}

struct CsvNotation {
    static void begin(const std::vector<packet::Field> &schema, std::string &out)
    {
        out += "\xEF\xBB\xBF";
        for (std::size_t column = 0; column < schema.size(); ++column) {
            if (column > 0)
                out += ',';
            text(schema[column].name, out);
        }
        out += "\r\n";
    }
    static void beginRow(bool, std::string &) { }
    static void text(std::string_view text, std::string &out)
    {
        const auto mustBeQuoted = [](char byte) { return byte == '"' || byte == ',' || byte == '\n' || byte == '\r'; };
        bool isPlain = true;
        for (const char byte : text)
            isPlain &= !mustBeQuoted(byte);
        if (isPlain) {
            out += text;
            return;
        }
        out += '"';
        for (const char byte : text) {
            if (byte == '"')
                out += '"';
            out += byte;
        }
        out += '"';
    }
    static void null(std::string &) { }
    static void number(double value, std::string &out) { appendNumber(value, out); }
    static void timestamp(std::int64_t seconds, std::string &out) { packet::appendTimestamp(seconds, out); }
    static void endRow(std::string &out) { out += "\r\n"; }
    static void end(std::int64_t, bool truncated, std::string &)
    {
        if (truncated)
            throw ResultTooLarge("结果超过了行数上限，CSV 无法注明被截断；请缩小查询范围");
    }
};

struct JsonNotation {
    static std::string_view nameOf(ColumnType type)
    {
        switch (type) {
        case ColumnType::Text:
            return "text";
        case ColumnType::Timestamp:
            return "time";
        default:
            return "number";
        }
    }
    static void begin(const std::vector<packet::Field> &schema, std::string &out)
    {
        out += "{\"columns\":[";
        for (std::size_t column = 0; column < schema.size(); ++column) {
            out += column > 0 ? ",{\"name\":" : "{\"name\":";
            appendJsonText(schema[column].name, out);
            out += ",\"type\":";
            appendJsonText(nameOf(schema[column].type), out);
            out += '}';
        }
        out += "],\"rows\":[";
    }
    static void beginRow(bool isFirst, std::string &out) { out += isFirst ? "\n[" : ",\n["; }
    static void text(std::string_view text, std::string &out) { appendJsonText(text, out); }
    static void null(std::string &out) { out += "null"; }
    static void number(double value, std::string &out)
    {
        if (std::isfinite(value))
            appendNumber(value, out);
        else
            null(out);
    }
    static void timestamp(std::int64_t seconds, std::string &out)
    {
        out += '"';
        packet::appendTimestamp(seconds, out);
        out += '"';
    }
    static void endRow(std::string &out) { out += ']'; }
    static void end(std::int64_t rows, bool truncated, std::string &out)
    {
        out += "\n],\"rowCount\":";
        appendNumber(rows, out);
        out += truncated ? ",\"truncated\":true}\n" : ",\"truncated\":false}\n";
    }
};

/// Rows are written into one buffer that is handed on when it is full.
template <class Notation>
class TextSink : public packet::BlockSink {
public:
    explicit TextSink(TakeBytes take)
        : m_take(std::move(take))
    {
    }

    void begin(const std::vector<packet::Field> &schema) override
    {
        m_schema = schema;
        Notation::begin(schema, m_out);
    }

    void block(const packet::Block &block, std::span<const packet::Dictionary *const> dictionaries) override
    {
        for (std::uint32_t row = 0; row < block.rows; ++row) {
            Notation::beginRow(m_rows++ == 0, m_out);
            for (std::size_t column = 0; column < m_schema.size(); ++column) {
                if (column > 0)
                    m_out += ',';
                writeCell(m_schema[column].type, block.columns[column], dictionaries[column], row);
            }
            Notation::endRow(m_out);
            if (m_out.size() >= pieceSize)
                handOver();
        }
    }

    void end(bool truncated) override
    {
        Notation::end(m_rows, truncated, m_out);
        handOver();
    }

private:
    void writeCell(ColumnType type, const packet::Chunk &chunk, const packet::Dictionary *dictionary, std::size_t row)
    {
        if (chunk.isNull(row))
            return Notation::null(m_out);
        switch (type) {
        case ColumnType::Text:
            return Notation::text(dictionary ? dictionary->at(chunk.index(row)) : plainText(chunk, row), m_out);
        case ColumnType::Int64:
            return appendNumber(chunk.values.as<std::int64_t>()[row], m_out);
        case ColumnType::Decimal:
            return appendDecimal({ chunk.units(row), chunk.scale }, m_out);
        case ColumnType::Float64:
            return Notation::number(chunk.values.as<double>()[row], m_out);
        case ColumnType::Timestamp:
            return Notation::timestamp(chunk.values.as<std::int64_t>()[row], m_out);
        }
    }

    static std::string_view plainText(const packet::Chunk &chunk, std::size_t row)
    {
        const auto *offsets = chunk.offsets.as<std::uint32_t>();
        return { chunk.values.as<char>() + offsets[row], offsets[row + 1] - offsets[row] };
    }

    void handOver()
    {
        m_take(std::as_bytes(std::span(m_out)));
        m_out.clear();
    }

    TakeBytes m_take;
    std::vector<packet::Field> m_schema;
    std::int64_t m_rows = 0;
    std::string m_out;
};

} // namespace

std::unique_ptr<packet::BlockSink> makeCsvSink(TakeBytes take) { return std::make_unique<TextSink<CsvNotation>>(std::move(take)); }
std::unique_ptr<packet::BlockSink> makeJsonSink(TakeBytes take) { return std::make_unique<TextSink<JsonNotation>>(std::move(take)); }

} // namespace server
