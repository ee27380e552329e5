#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>

struct XXH3_state_s;

/// What the writer and the reader of a stream share; docs/packet.md describes the whole.
namespace packet::wire {

static_assert(std::endian::native == std::endian::little, "blocks travel as they lie in memory");

constexpr std::uint32_t continuation = 0xFFFFFFFF; ///< begins every message
constexpr std::size_t prefixBytes = 8; ///< the continuation and the size of the metadata
constexpr std::size_t messageAlignment = 8;
constexpr std::size_t bufferAlignment = 64;
constexpr std::int64_t notCompressed = -1;

constexpr std::int64_t firstSecond = -62167219200; ///< 0000-01-01 00:00:00
constexpr std::int64_t lastSecond = 253402300799; ///< 9999-12-31 23:59:59

constexpr auto versionKey = "kelvara.packet";
constexpr auto version = "1";
constexpr auto rowsKey = "kelvara.rows";
constexpr auto truncatedKey = "kelvara.truncated";
constexpr auto checksumKey = "kelvara.xxh3";

constexpr std::size_t aligned(std::size_t size, std::size_t alignment) { return (size + alignment - 1) / alignment * alignment; }
constexpr std::size_t bitmapBytes(std::size_t rows) { return (rows + 7) / 8; }
/// True when all of these seconds since 1970 lie within the years that a timestamp may have.
bool areTimestamps(std::span<const std::int64_t> seconds);
/// The rows of the bitmap that have no value.
std::size_t countNulls(const void *validity, std::size_t rows);

/// XXH3 over the bytes of a stream as they pass.
class Checksum {
public:
    Checksum();
    ~Checksum();
    void add(std::span<const std::byte> bytes);
    /// The value of checksumKey for the bytes so far and these values of the end mark.
    std::string text(std::string_view rows, std::string_view truncated);

private:
    std::unique_ptr<XXH3_state_s, void (*)(XXH3_state_s *)> m_state;
};

/// One LZ4 frame of the bytes, written to `frame`, which has frameBound(bytes.size()) bytes. Returns the size of the frame.
std::size_t compressFrame(std::span<const std::byte> bytes, std::byte *frame);
std::size_t frameBound(std::size_t size);
/// False unless `frame` is one LZ4 frame of exactly bytes.size() bytes.
bool decompressFrame(std::span<const std::byte> frame, std::span<std::byte> bytes);

} // namespace packet::wire
