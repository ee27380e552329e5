#include "packet/batch_reader.h"

#include "packet/stream_reader.h"
#include "packet/utf8.h"
#include "packet/wire_format.h"
#include "packet/wire_schema.h"

#include <algorithm>
#include <limits>

namespace packet::wire {

namespace {

constexpr std::uint64_t largestRatio = 255; ///< of LZ4
constexpr std::size_t mostRows = std::numeric_limits<std::int32_t>::max();
constexpr std::size_t largestDictionary = std::numeric_limits<std::uint32_t>::max();
constexpr std::size_t narrowIndexes = 65536;
constexpr Int128 decimalLimit = Int128(10'000'000'000'000'000'000u) * Int128(10'000'000'000'000'000'000u);

[[noreturn]] void fail(const char *what) { throw StreamError(what); }

void check(bool sound)
{
    if (!sound)
        fail("数据块的内容与描述不符");
}

bool isAligned(const void *place) { return reinterpret_cast<std::uintptr_t>(place) % messageAlignment == 0; }

template <class T>
Buffer copied(std::span<const T> values)
{
    return Buffer::adopt(std::vector<T>(values.begin(), values.end()));
}

constexpr int mostZeros = 18;
constexpr std::uint64_t inverseOfFive = 0xCCCCCCCCCCCCCCCD; // times 5 it is 1 in 64 bits

struct PowersOfTen {
    std::int64_t power[mostZeros + 1] { 1 };
    std::uint64_t inverse[mostZeros + 1] { 1 }; ///< of the same power of five
    constexpr PowersOfTen()
    {
        for (int exponent = 0; exponent < mostZeros; ++exponent) {
            power[exponent + 1] = power[exponent] * 10;
            inverse[exponent + 1] = inverse[exponent] * inverseOfFive;
        }
    }
};
constexpr PowersOfTen tens;

/// Takes zeros off the end of a number. False when it does not have so many or needs more than 64 bits without them.
bool takeZeros(Int128 units, int zeros, std::int64_t &rest)
{
    // A division without a remainder is a shift and a multiplication by the inverse; whether there was none shows the product.
    rest = std::int64_t(std::uint64_t(units >> zeros) * tens.inverse[zeros]);
    return Int128(rest) * tens.power[zeros] == units;
}

} // namespace

BatchReader::BatchReader(const arrow::RecordBatch &batch, std::span<const std::byte> body, std::uint64_t limit, std::uint64_t &decompressed)
    : m_batch(batch)
    , m_body(body)
    , m_limit(limit)
    , m_decompressed(decompressed)
{
    check(batch.length() >= 0 && std::uint64_t(batch.length()) <= mostRows && batch.nodes() && batch.buffers());
    // The verifier of FlatBuffers leaves the alignment of structures in vectors to us.
    check(isAligned(batch.nodes()->Data()) && isAligned(batch.buffers()->Data()));
    m_rows = std::size_t(batch.length());
    const arrow::BodyCompression *const compression = batch.compression();
    if (compression
        && (compression->codec() != arrow::CompressionType::Lz4Frame || compression->method() != arrow::BodyCompressionMethod::Buffer))
        fail("数据的压缩方式不是 LZ4");
}

/// The nulls of the next column.
std::size_t BatchReader::nextNode()
{
    check(m_nodes < m_batch.nodes()->size());
    const arrow::FieldNode &node = *m_batch.nodes()->Get(m_nodes++);
    check(node.length() == m_batch.length() && node.null_count() >= 0 && node.null_count() <= node.length());
    return std::size_t(node.null_count());
}

/// The bytes of the next buffer, which has `size` of them; they live until the next call.
std::span<const std::byte> BatchReader::nextBuffer(std::size_t size)
{
    check(m_buffers < m_batch.buffers()->size());
    const arrow::Buffer &place = *m_batch.buffers()->Get(m_buffers++);
    const auto offset = std::uint64_t(place.offset());
    const auto length = std::uint64_t(place.length());
    check(offset % bufferAlignment == 0 && offset >= m_bodyUsed && offset <= m_body.size() && length <= m_body.size() - offset);
    m_bodyUsed = offset + length;
    const auto bytes = m_body.subspan(offset, length);
    if (m_batch.compression() && !bytes.empty())
        return decompress(bytes, size);
    check(length == size);
    return bytes;
}

std::span<const std::byte> BatchReader::decompress(std::span<const std::byte> bytes, std::size_t size)
{
    std::int64_t trueSize = 0;
    check(bytes.size() >= sizeof trueSize);
    std::memcpy(&trueSize, bytes.data(), sizeof trueSize);
    bytes = bytes.subspan(sizeof trueSize);
    if (trueSize == notCompressed) {
        check(bytes.size() == size);
        return bytes;
    }
    check(std::uint64_t(trueSize) == size && size <= bytes.size() * largestRatio);
    m_decompressed += size;
    if (m_decompressed > m_limit)
        fail("解压后的数据太多，请缩小查询范围");
    m_plain.resize(std::max(m_plain.size(), size));
    const auto plain = std::span(m_plain).first(size);
    if (!decompressFrame(bytes, plain))
        fail("压缩的数据已损坏");
    return plain;
}

/// Bodies and what is decompressed are aligned to 8 bytes.
template <class T>
std::span<const T> BatchReader::nextArray(std::size_t count)
{
    static_assert(alignof(T) <= messageAlignment);
    return { reinterpret_cast<const T *>(nextBuffer(count * sizeof(T)).data()), count };
}

Buffer BatchReader::validity(std::size_t nulls)
{
    const auto bits = nextArray<std::uint8_t>(nulls == 0 ? 0 : bitmapBytes(m_rows));
    if (nulls == 0)
        return {};
    check(countNulls(bits.data(), m_rows) == nulls);
    return copied(bits);
}

Chunk BatchReader::column(const Field &field, const Dictionary *dictionary)
{
    const std::size_t nulls = nextNode();
    Chunk chunk;
    chunk.validity = validity(nulls);
    if (field.dictionary)
        readIndexes(chunk, dictionary->size(), nulls < m_rows);
    else if (field.type == ColumnType::Text)
        readTexts(chunk);
    else if (field.type == ColumnType::Decimal)
        readDecimals(chunk, field.scale);
    else
        readWords(chunk, field.type);
    return chunk;
}

void BatchReader::readIndexes(Chunk &chunk, std::size_t dictionarySize, bool anyText)
{
    const auto indexes = nextArray<std::uint32_t>(m_rows);
    std::uint32_t largest = 0;
    for (const std::uint32_t index : indexes)
        largest = std::max(largest, index);
    if (largest >= std::max<std::size_t>(dictionarySize, 1) || (dictionarySize == 0 && anyText))
        fail("有文字不在字典中");
    chunk.width = dictionarySize <= narrowIndexes ? sizeof(std::uint16_t) : sizeof(std::uint32_t);
    chunk.values = chunk.width == sizeof(std::uint32_t) ? copied(indexes)
                                                        : Buffer::adopt(std::vector<std::uint16_t>(indexes.begin(), indexes.end()));
}

/// From 0 upwards.
std::span<const std::uint32_t> BatchReader::nextOffsets()
{
    const auto offsets = nextArray<std::uint32_t>(m_rows + 1);
    bool sound = offsets.front() == 0;
    for (std::size_t row = 0; row < m_rows; ++row)
        sound &= offsets[row] <= offsets[row + 1];
    check(sound);
    return offsets;
}

/// The texts between the offsets.
std::string_view BatchReader::nextTexts(std::span<const std::uint32_t> offsets)
{
    const auto bytes = nextArray<char>(offsets.back());
    const std::string_view texts(bytes.data(), bytes.size());
    bool sound = isUtf8(texts);
    for (const std::uint32_t offset : offsets)
        sound &= offset >= texts.size() || beginsCharacter(texts[offset]);
    if (!sound)
        fail("有文字不是有效的 UTF-8 编码");
    return texts;
}

void BatchReader::readTexts(Chunk &chunk)
{
    chunk.offsets = copied(nextOffsets());
    chunk.values = copied(std::span<const char>(nextTexts({ chunk.offsets.as<std::uint32_t>(), m_rows + 1 })));
}

void BatchReader::appendTo(Dictionary &dictionary)
{
    check(nextNode() == 0);
    validity(0);
    const auto first = nextOffsets();
    const std::vector<std::uint32_t> offsets(first.begin(), first.end());
    const std::string_view texts = nextTexts(offsets);
    finish();
    const std::size_t begin = dictionary.bytes.size();
    if (begin + texts.size() > largestDictionary || dictionary.size() + m_rows > mostRows)
        fail("字典太大，请缩小查询范围");
    dictionary.bytes += texts;
    for (std::size_t text = 1; text < offsets.size(); ++text)
        dictionary.offsets.push_back(std::uint32_t(begin + offsets[text]));
}

/// Kept in 64 bits where they all fit, if need be at a smaller scale.
void BatchReader::readDecimals(Chunk &chunk, int scale)
{
    const auto bytes = nextBuffer(m_rows * sizeof(Int128));
    const auto halves = std::span(reinterpret_cast<const std::int64_t *>(bytes.data()), m_rows * 2); // the low one first
    std::int64_t beyond = 0; // not 0 when a number needs more than 64 bits
    for (std::size_t row = 0; row < m_rows; ++row)
        beyond |= halves[row * 2 + 1] ^ (halves[row * 2] >> 63);
    if (beyond != 0)
        return readWideDecimals(chunk, bytes, scale);
    std::vector<std::int64_t> units(m_rows);
    for (std::size_t row = 0; row < m_rows; ++row)
        units[row] = halves[row * 2];
    chunk.scale = std::int8_t(scale);
    chunk.width = sizeof(std::int64_t);
    chunk.values = Buffer::adopt(std::move(units));
}

void BatchReader::readWideDecimals(Chunk &chunk, std::span<const std::byte> bytes, int scale)
{
    std::vector<Int128> units(m_rows);
    std::memcpy(units.data(), bytes.data(), bytes.size());
    check(std::all_of(units.begin(), units.end(), [](Int128 value) { return value < decimalLimit && value > -decimalLimit; }));
    std::vector<std::int64_t> narrow(m_rows);
    int zeros = std::min(scale, mostZeros); // that all the numbers share
    for (std::size_t row = 0; row < m_rows && zeros > 0; ++row) {
        for (; zeros > 0 && !takeZeros(units[row], zeros, narrow[row]); row = 0)
            --zeros;
    }
    chunk.scale = std::int8_t(scale - zeros);
    chunk.width = zeros > 0 ? sizeof(std::int64_t) : sizeof(Int128);
    chunk.values = zeros > 0 ? Buffer::adopt(std::move(narrow)) : Buffer::adopt(std::move(units));
}

void BatchReader::readWords(Chunk &chunk, ColumnType type)
{
    const auto words = nextArray<std::int64_t>(m_rows);
    if (type == ColumnType::Timestamp && !areTimestamps(words))
        fail("有时间不在 0000 年到 9999 年之间");
    chunk.width = sizeof(std::int64_t);
    chunk.values = copied(words);
}

void BatchReader::finish() const { check(m_nodes == m_batch.nodes()->size() && m_buffers == m_batch.buffers()->size()); }

} // namespace packet::wire
