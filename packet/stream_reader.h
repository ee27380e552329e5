#pragma once

#include "packet/packet.h"

#include <memory>
#include <stdexcept>

namespace packet {

namespace arrow {
struct DictionaryBatch;
struct Message;
struct RecordBatch;
} // namespace arrow

namespace wire {
class Checksum;
}

/// What arrived is no whole, sound result. what() is Chinese and says what to do.
class StreamError : public std::runtime_error {
public:
    explicit StreamError(const std::string &reason)
        : std::runtime_error("收到的查询结果有误：" + reason + "；请重新查询，仍然如此时请联系管理员")
    {
    }
};

struct StreamLimits {
    std::size_t messageBytes = 256 * 1024 * 1024;
    std::uint64_t totalBytes = std::uint64_t(8) * 1024 * 1024 * 1024; ///< as they arrive, and again of what LZ4 makes of them
    std::size_t columns = 1000;
};

/// Reads a stream that StreamWriter has written, in pieces of any size; see docs/packet.md for what is checked.
/// After a StreamError the reader is of no further use.
class StreamReader {
public:
    explicit StreamReader(StreamLimits limits = {});
    StreamReader(const StreamReader &) = delete;
    ~StreamReader();

    /// Throws StreamError as soon as the bytes are known to be wrong.
    void feed(std::span<const std::byte> bytes);
    /// Rows received so far.
    std::size_t rows() const { return m_rows; }
    /// The whole result, once. Throws StreamError when its end has not arrived.
    PacketPtr finish();

private:
    enum class Part : std::uint8_t { Prefix, Metadata, Body };
    void completePart();
    void readPrefix();
    void readMetadata();
    void readMessage();
    void readDictionary(const arrow::DictionaryBatch &batch);
    void readBlock(const arrow::RecordBatch &batch);
    void readEndMark(const arrow::Message &message);
    const arrow::Message &message() const;
    std::span<const std::byte> body() const;

    StreamLimits m_limits;
    std::vector<std::byte> m_message; ///< as far as it has arrived
    std::size_t m_wanted; ///< its size up to the end of the part
    std::size_t m_bodyStart = 0;
    Part m_part = Part::Prefix;
    std::uint64_t m_received = 0;
    std::uint64_t m_decompressed = 0;
    std::unique_ptr<wire::Checksum> m_checksum;
    std::vector<Field> m_schema {};
    std::vector<std::shared_ptr<Dictionary>> m_dictionaries {};
    std::vector<Block> m_blocks {};
    std::size_t m_rows = 0;
    bool m_begun = false;
    bool m_truncated = false;
    bool m_marked = false; ///< the end mark has come
    bool m_ended = false; ///< and the end of the stream
};

} // namespace packet
