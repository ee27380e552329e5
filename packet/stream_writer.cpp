#include "packet/stream_writer.h"

#include "packet/message_writer.h"
#include "packet/utf8.h"
#include "packet/wire_schema.h"

#include <algorithm>
#include <limits>
#include <stdexcept>

namespace packet {

namespace {

constexpr std::size_t largestTexts = std::numeric_limits<std::int32_t>::max();
constexpr int narrowShift = 18; ///< any 64-bit number times 10 to this has at most 38 digits

constexpr Int128 powerOfTen(int exponent)
{
    Int128 power = 1;
    while (exponent-- > 0)
        power *= 10;
    return power;
}

constexpr Int128 decimalLimit = powerOfTen(wire::decimalPrecision);

/// The units at the scale of the field. Throws std::invalid_argument when digits would be lost.
Int128 movedUnits(const Field &field, Decimal value)
{
    try {
        const Decimal moved = value.rescaled(field.scale);
        if (moved == value && moved.units < decimalLimit && moved.units > -decimalLimit)
            return moved.units;
    } catch (const std::overflow_error &) {
        // The message below says it.
    }
    throw std::invalid_argument("列 " + field.name + " 的值 " + value.toString() + " 与前面的值相差太大，小数点后最多 "
        + std::to_string(field.scale) + " 位，一共最多 " + std::to_string(wire::decimalPrecision) + " 位，请在语句中对该列取整或换算");
}

void checkTimestamps(const Field &field, const Chunk &chunk, std::size_t rows)
{
    if (field.type == ColumnType::Timestamp && !wire::areTimestamps({ chunk.values.as<std::int64_t>(), rows }))
        throw std::invalid_argument("列 " + field.name + " 有不在 0000 年到 9999 年之间的时间，请检查该列的数据或语句");
}

void checkTexts(const Field &field, std::string_view texts)
{
    if (texts.size() > largestTexts)
        throw std::length_error("列 " + field.name + " 的文字太长，一段数据中超过了 2 GB，请少查询一些行或去掉该列");
    if (!isUtf8(texts))
        throw std::invalid_argument("列 " + field.name + " 有文字不是有效的 UTF-8 编码，请检查该列的数据");
}

} // namespace

struct StreamWriter::Messages {
    Messages(Output output, Compression compression)
        : writer(std::move(output), compression == Compression::Lz4)
    {
    }
    void sendBatch(std::size_t rows)
    {
        const auto batch = writer.batch(builder, rows);
        writer.send(builder, arrow::MessageHeader::RecordBatch, batch.Union());
    }

    wire::MessageWriter writer;
    flatbuffers::FlatBufferBuilder builder {};
};

StreamWriter::StreamWriter(Output output, Compression compression)
    : m_messages(std::make_unique<Messages>(std::move(output), compression))
{
}

StreamWriter::~StreamWriter() = default;

void StreamWriter::begin(const std::vector<Field> &schema)
{
    m_schema = schema;
    m_sentTexts.assign(schema.size(), 0);
    m_dictionarySent.assign(schema.size(), false);
    const auto header = wire::writeSchema(m_messages->builder, schema);
    m_messages->writer.send(m_messages->builder, arrow::MessageHeader::Schema, header.Union());
}

void StreamWriter::block(const Block &block, std::span<const Dictionary *const> dictionaries)
{
    for (std::size_t column = 0; column < m_schema.size(); ++column) {
        if (m_schema[column].dictionary)
            sendDictionary(column, *dictionaries[column]);
    }
    for (std::size_t column = 0; column < m_schema.size(); ++column)
        addColumn(m_schema[column], block.columns[column], block.rows);
    m_messages->sendBatch(block.rows);
    m_rows += block.rows;
}

void StreamWriter::addColumn(const Field &field, const Chunk &chunk, std::size_t rows)
{
    wire::MessageWriter &writer = m_messages->writer;
    const std::size_t nulls = chunk.validity.empty() ? 0 : wire::countNulls(chunk.validity.as<void>(), rows);
    writer.addNode(rows, nulls);
    writer.addBuffer(chunk.validity.as<void>(), nulls == 0 ? 0 : wire::bitmapBytes(rows));
    if (field.dictionary && chunk.width == sizeof(std::uint16_t)) {
        const auto *narrow = chunk.values.as<std::uint16_t>();
        return writer.addBuffer(rows * sizeof(std::int32_t),
            [=](std::byte *place) { std::copy(narrow, narrow + rows, reinterpret_cast<std::uint32_t *>(place)); });
    }
    if (field.type == ColumnType::Decimal)
        return addDecimals(field, chunk, rows);
    checkTimestamps(field, chunk, rows);
    if (field.type != ColumnType::Text || field.dictionary)
        return writer.addBuffer(chunk.values.as<void>(), rows * chunk.width);
    checkTexts(field, { chunk.values.as<char>(), chunk.values.size() });
    writer.addBuffer(chunk.offsets.as<void>(), (rows + 1) * sizeof(std::uint32_t));
    writer.addBuffer(chunk.values.as<void>(), chunk.values.size());
}

void StreamWriter::addDecimals(const Field &field, const Chunk &chunk, std::size_t rows)
{
    const int shift = field.scale - chunk.scale;
    m_messages->writer.addBuffer(rows * sizeof(Int128), [&](std::byte *place) {
        if (chunk.width == sizeof(std::int64_t) && shift >= 0 && shift <= narrowShift) {
            const auto *units = chunk.values.as<std::int64_t>();
            const auto factor = std::int64_t(powerOfTen(shift));
            for (std::size_t row = 0; row < rows; ++row) {
                const Int128 moved = Int128(units[row]) * factor;
                std::memcpy(place + row * sizeof moved, &moved, sizeof moved);
            }
            return;
        }
        for (std::size_t row = 0; row < rows; ++row) {
            const Int128 moved = movedUnits(field, { chunk.units(row), chunk.scale });
            std::memcpy(place + row * sizeof moved, &moved, sizeof moved);
        }
    });
}

/// What has been added to it since it was last sent.
void StreamWriter::sendDictionary(std::size_t column, const Dictionary &dictionary)
{
    const std::size_t first = m_sentTexts[column];
    const std::size_t count = dictionary.size() - first;
    const bool isDelta = m_dictionarySent[column];
    if (isDelta && count == 0)
        return;
    const std::uint32_t *const offsets = dictionary.offsets.data() + first;
    const std::size_t size = offsets[count] - offsets[0];
    checkTexts(m_schema[column], { dictionary.bytes.data() + offsets[0], size });
    wire::MessageWriter &writer = m_messages->writer;
    writer.addNode(count, 0);
    writer.addNoBuffer();
    writer.addBuffer((count + 1) * sizeof(std::uint32_t), [=](std::byte *place) {
        auto *moved = reinterpret_cast<std::uint32_t *>(place);
        for (std::size_t text = 0; text <= count; ++text)
            moved[text] = offsets[text] - offsets[0];
    });
    writer.addBuffer(dictionary.bytes.data() + offsets[0], size);
    flatbuffers::FlatBufferBuilder &builder = m_messages->builder;
    const auto header = arrow::CreateDictionaryBatch(builder, std::int64_t(column), writer.batch(builder, count), isDelta);
    writer.send(builder, arrow::MessageHeader::DictionaryBatch, header.Union());
    m_sentTexts[column] = dictionary.size();
    m_dictionarySent[column] = true;
}

void StreamWriter::end(bool truncated)
{
    const std::uint32_t noOffset = 0;
    wire::MessageWriter &writer = m_messages->writer;
    flatbuffers::FlatBufferBuilder &builder = m_messages->builder;
    for (std::size_t column = 0; column < m_schema.size(); ++column) {
        if (m_schema[column].dictionary && !m_dictionarySent[column])
            sendDictionary(column, {});
    }
    for (const Field &field : m_schema) {
        writer.addNode(0, 0);
        writer.addNoBuffer();
        if (field.type == ColumnType::Text && !field.dictionary)
            writer.addBuffer(&noOffset, sizeof noOffset);
        writer.addNoBuffer();
    }
    const std::string rows = std::to_string(m_rows);
    const std::string cut = truncated ? "1" : "0";
    const std::string checksum = writer.checksum().text(rows, cut);
    const auto batch = writer.batch(builder, 0);
    const std::vector marks { wire::keyValue(builder, wire::rowsKey, rows), wire::keyValue(builder, wire::truncatedKey, cut),
        wire::keyValue(builder, wire::checksumKey, checksum) };
    writer.send(builder, arrow::MessageHeader::RecordBatch, batch.Union(), &marks);
    writer.finish();
}

void sendPacket(const Packet &packet, BlockSink &sink)
{
    std::vector<const Dictionary *> dictionaries;
    for (std::size_t column = 0; column < packet.columnCount(); ++column)
        dictionaries.push_back(packet.dictionary(column));
    sink.begin(packet.schema());
    for (const Block &block : packet.blocks())
        sink.block(block, dictionaries);
    sink.end(packet.truncated());
}

} // namespace packet
