#include "packet/stream_reader.h"

#include "packet/batch_reader.h"
#include "packet/wire_format.h"
#include "packet/wire_schema.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace packet {

namespace {

constexpr std::size_t deepestTable = 16;
constexpr std::size_t smallestTable = 4; ///< bytes of an offset to a table

} // namespace

StreamReader::StreamReader(StreamLimits limits)
    : m_limits(limits)
    , m_wanted(wire::prefixBytes)
    , m_checksum(std::make_unique<wire::Checksum>())
{
}

StreamReader::~StreamReader() = default;

void StreamReader::feed(std::span<const std::byte> bytes)
{
    m_received += bytes.size();
    if (m_received > m_limits.totalBytes)
        throw StreamError("数据超过了 " + std::to_string(m_limits.totalBytes) + " 字节，请缩小查询范围");
    while (!bytes.empty()) {
        if (m_ended)
            throw StreamError("结果之后还有多余的数据");
        const auto part = bytes.first(std::min(bytes.size(), m_wanted - m_message.size()));
        m_message.insert(m_message.end(), part.begin(), part.end());
        bytes = bytes.subspan(part.size());
        while (m_message.size() == m_wanted && !m_ended)
            completePart();
    }
}

void StreamReader::completePart()
{
    switch (m_part) {
    case Part::Prefix:
        return readPrefix();
    case Part::Metadata:
        return readMetadata();
    case Part::Body:
        readMessage();
        m_message.clear();
        m_wanted = wire::prefixBytes;
        m_part = Part::Prefix;
    }
}

void StreamReader::readPrefix()
{
    std::uint32_t prefix[2];
    std::memcpy(prefix, m_message.data(), sizeof prefix);
    if (prefix[0] != wire::continuation)
        throw StreamError("数据不是查询结果的格式");
    if (prefix[1] == 0) {
        if (!m_marked)
            throw StreamError("结果没有结束标记，只到了一部分");
        m_ended = true;
        return;
    }
    if (prefix[1] % wire::messageAlignment != 0 || prefix[1] > m_limits.messageBytes)
        throw StreamError("数据块的大小不对");
    m_bodyStart = wire::prefixBytes + prefix[1];
    m_wanted = m_bodyStart;
    m_part = Part::Metadata;
}

void StreamReader::readMetadata()
{
    const std::size_t size = m_bodyStart - wire::prefixBytes;
    const auto *bytes = reinterpret_cast<const std::uint8_t *>(m_message.data() + wire::prefixBytes);
    flatbuffers::Verifier verifier(bytes, size, deepestTable, flatbuffers::uoffset_t(size / smallestTable));
    if (!arrow::VerifyMessageBuffer(verifier))
        throw StreamError("数据块的描述已损坏");
    const auto bodySize = std::uint64_t(message().body_length());
    if (message().version() != arrow::MetadataVersion::V5 || bodySize % wire::messageAlignment != 0
        || bodySize > m_limits.messageBytes - std::min(m_bodyStart, m_limits.messageBytes))
        throw StreamError("数据块的版本或大小不对");
    m_wanted = m_bodyStart + bodySize;
    m_part = Part::Body;
}

const arrow::Message &StreamReader::message() const { return *arrow::GetMessage(m_message.data() + wire::prefixBytes); }
std::span<const std::byte> StreamReader::body() const { return std::span(m_message).subspan(m_bodyStart); }

void StreamReader::readMessage()
{
    if (m_marked)
        throw StreamError("结束标记之后还有数据");
    const arrow::Schema *const schema = message().header_as_Schema();
    if (m_begun == (schema != nullptr))
        throw StreamError("数据块的次序不对");
    if (schema) {
        m_schema = wire::readSchema(*schema, m_limits.columns);
        m_dictionaries.resize(m_schema.size());
        m_begun = true;
    } else if (const auto *dictionary = message().header_as_DictionaryBatch()) {
        readDictionary(*dictionary);
    } else if (const auto *batch = message().header_as_RecordBatch(); !batch) {
        throw StreamError("有不认识的数据块");
    } else if (batch->length() == 0) {
        return readEndMark(message());
    } else {
        readBlock(*batch);
    }
    m_checksum->add(m_message);
}

void StreamReader::readDictionary(const arrow::DictionaryBatch &batch)
{
    const auto column = std::size_t(batch.id());
    if (column >= m_schema.size() || !m_schema[column].dictionary || !batch.data())
        throw StreamError("有不属于任何一列的字典");
    std::shared_ptr<Dictionary> &dictionary = m_dictionaries[column];
    if (batch.is_delta() != (dictionary != nullptr))
        throw StreamError("字典的次序不对");
    if (!dictionary)
        dictionary = std::make_shared<Dictionary>();
    wire::BatchReader(*batch.data(), body(), m_limits.totalBytes, m_decompressed).appendTo(*dictionary);
}

void StreamReader::readBlock(const arrow::RecordBatch &batch)
{
    const auto rows = std::uint64_t(batch.length());
    if (rows > Packet::blockRows || m_rows % Packet::blockRows != 0)
        throw StreamError("数据块的行数不对");
    wire::BatchReader reader(batch, body(), m_limits.totalBytes, m_decompressed);
    Block block { std::uint32_t(rows), {} };
    for (std::size_t column = 0; column < m_schema.size(); ++column) {
        if (m_schema[column].dictionary && !m_dictionaries[column])
            throw StreamError("列“" + m_schema[column].name + "”没有字典");
        block.columns.push_back(reader.column(m_schema[column], m_dictionaries[column].get()));
    }
    reader.finish();
    m_blocks.push_back(std::move(block));
    m_rows += rows;
}

void StreamReader::readEndMark(const arrow::Message &message)
{
    const std::string_view rows = wire::valueOf(message.custom_metadata(), wire::rowsKey);
    const std::string_view truncated = wire::valueOf(message.custom_metadata(), wire::truncatedKey);
    const std::string_view checksum = wire::valueOf(message.custom_metadata(), wire::checksumKey);
    if (rows != std::to_string(m_rows) || (truncated != "0" && truncated != "1") || checksum != m_checksum->text(rows, truncated))
        throw StreamError("行数或校验和与结束标记不符，数据在传输中损坏");
    m_truncated = truncated == "1";
    m_marked = true;
}

PacketPtr StreamReader::finish()
{
    if (!m_ended)
        throw StreamError("结果没有收完，只收到 " + std::to_string(m_rows) + " 行，连接可能中断了");
    std::vector<std::shared_ptr<const Dictionary>> dictionaries;
    for (const auto &dictionary : std::exchange(m_dictionaries, {})) {
        if (dictionary) {
            dictionary->bytes.shrink_to_fit();
            dictionary->offsets.shrink_to_fit();
        }
        dictionaries.push_back(dictionary);
    }
    m_ended = false;
    return std::make_shared<const Packet>(std::exchange(m_schema, {}), std::exchange(m_blocks, {}), std::move(dictionaries), m_truncated);
}

} // namespace packet
