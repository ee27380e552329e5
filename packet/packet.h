#pragma once

#include "packet/decimal.h"

#include <cstddef>
#include <cstring>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// The result of one statement: typed columns in blocks of rows, immutable once built and shared by everyone who shows it.
/// The layout of a column within a block is that of an Apache Arrow array, so that a block can be sent without conversion.
namespace packet {

enum class ColumnType : std::uint8_t {
    Text, ///< UTF-8, plain or as indexes into the column's dictionary
    Int64,
    Decimal, ///< exact; the scale is kept with each block
    Float64,
    Timestamp, ///< seconds since 1970-01-01 00:00:00 of the database's own clock, no time zone
};

struct Field {
    std::string name; ///< unique within a schema, case ignored
    ColumnType type = ColumnType::Text;
    bool dictionary = false; ///< Text only: the blocks hold indexes into Packet::dictionary()
    int scale = 0; ///< Decimal only: the largest scale of any block
};

/// Bytes that somebody owns: a vector of its own, or a slice of a received message that it keeps alive.
class Buffer {
public:
    Buffer() = default;
    Buffer(std::shared_ptr<const void> owner, const void *data, std::size_t size)
        : m_owner(std::move(owner))
        , m_data(data)
        , m_size(size)
    {
    }
    template <class T>
    static Buffer adopt(std::vector<T> &&values)
    {
        auto owner = std::make_shared<const std::vector<T>>(std::move(values));
        return Buffer(owner, owner->data(), owner->size() * sizeof(T));
    }

    bool empty() const { return m_size == 0; }
    std::size_t size() const { return m_size; } ///< in bytes
    template <class T>
    const T *as() const
    {
        return static_cast<const T *>(m_data);
    }

private:
    std::shared_ptr<const void> m_owner;
    const void *m_data = nullptr;
    std::size_t m_size = 0;
};

/// One column of one block.
struct Chunk {
    Buffer validity; ///< one bit a row, lowest first, 1 = has a value; empty when no row of the block is null
    Buffer values; ///< plain text: the bytes; otherwise `width` bytes a row
    Buffer offsets; ///< plain text only: rows + 1 positions in `values`, uint32
    std::uint8_t width = 0; ///< 2 or 4 (unsigned dictionary index), 8, or 16 (Decimal that needs it)
    std::int8_t scale = 0; ///< Decimal only

    bool isNull(std::size_t row) const { return !validity.empty() && !(validity.as<std::uint8_t>()[row >> 3] >> (row & 7) & 1); }
    std::uint32_t index(std::size_t row) const { return width == 2 ? values.as<std::uint16_t>()[row] : values.as<std::uint32_t>()[row]; }
    Int128 units(std::size_t row) const { return width == 8 ? Int128(values.as<std::int64_t>()[row]) : wide(row); }

private:
    Int128 wide(std::size_t row) const
    {
        Int128 value;
        std::memcpy(&value, values.as<std::byte>() + row * sizeof value, sizeof value);
        return value;
    }
};

struct Block {
    std::uint32_t rows = 0;
    std::vector<Chunk> columns; ///< in schema order
};

/// The distinct texts of a column, numbered from 0 in the order of their first appearance.
struct Dictionary {
    std::vector<std::uint32_t> offsets { 0 };
    std::string bytes;

    std::size_t size() const { return offsets.size() - 1; }
    std::string_view at(std::size_t index) const
    {
        return std::string_view(bytes).substr(offsets[index], offsets[index + 1] - offsets[index]);
    }
};

class Packet {
public:
    /// Every block but the last holds exactly this many rows, so that a row's block is a shift away.
    static constexpr std::uint32_t blockRows = 8192;

    Packet(
        std::vector<Field> schema, std::vector<Block> blocks, std::vector<std::shared_ptr<const Dictionary>> dictionaries, bool truncated);

    const std::vector<Field> &schema() const { return m_schema; }
    std::span<const Block> blocks() const { return m_blocks; }
    /// The dictionary of a column whose field says `dictionary`; null for the others.
    const Dictionary *dictionary(std::size_t column) const { return m_dictionaries[column].get(); }
    std::size_t rowCount() const { return m_rowCount; }
    std::size_t columnCount() const { return m_schema.size(); }
    /// True when the row limit cut the result.
    bool truncated() const { return m_truncated; }
    /// The column of that name, ASCII case ignored, or -1.
    int indexOf(std::string_view name) const;
    /// Bytes held by the columns and dictionaries.
    std::size_t memoryBytes() const;

    const Chunk &chunk(std::size_t column, std::size_t row) const { return m_blocks[row / blockRows].columns[column]; }
    bool isNull(std::size_t column, std::size_t row) const { return chunk(column, row).isNull(row % blockRows); }
    /// A Text cell; empty for null. Lives as long as the packet.
    std::string_view text(std::size_t column, std::size_t row) const;
    /// An Int64 or Timestamp cell; 0 for null.
    std::int64_t integer(std::size_t column, std::size_t row) const;
    double real(std::size_t column, std::size_t row) const;
    /// A Decimal or Int64 cell at its block's scale; 0 for null.
    Decimal decimal(std::size_t column, std::size_t row) const;
    /// Any cell as a person reads it: numbers without trailing zeros, times as "yyyy-mm-dd hh:mm:ss", null as "".
    void appendText(std::size_t column, std::size_t row, std::string &out) const;

private:
    std::vector<Field> m_schema;
    std::vector<Block> m_blocks;
    std::vector<std::shared_ptr<const Dictionary>> m_dictionaries;
    std::size_t m_rowCount = 0;
    bool m_truncated = false;
};

using PacketPtr = std::shared_ptr<const Packet>;

/// "2024-03-05 10:07:59" for seconds since 1970; years 0000 to 9999.
void appendTimestamp(std::int64_t seconds, std::string &out);
/// Reads "yyyy-mm-dd" with or without " hh:mm[:ss]" strictly: an impossible date (2024-02-30) is nothing.
std::optional<std::int64_t> parseTimestamp(std::string_view text);

} // namespace packet
