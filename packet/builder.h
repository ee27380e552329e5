#pragma once

#include "packet/packet.h"

namespace packet {

/// Fills a packet row by row. Every column takes exactly one value between two endRow() calls.
///
/// A column whose type is not given takes the type of what arrives in the first block (all null: Text). Texts are
/// dictionary-coded while few values repeat; the first block decides. The empty text is stored as null, as Oracle reads it.
class Builder {
public:
    struct Column {
        std::string name; ///< made unique by the builder: a second X becomes X_1
        std::optional<ColumnType> type {};
    };

    explicit Builder(std::vector<Column> columns);
    Builder(const Builder &) = delete;
    ~Builder();

    /// Each of these may be given to a column of any type and is converted exactly;
    /// throws std::invalid_argument, naming column and value, when it cannot be (a text that is no number, say).
    void addNull(std::size_t column);
    void addText(std::size_t column, std::string_view text);
    void addInteger(std::size_t column, std::int64_t value);
    void addDouble(std::size_t column, double value);
    void addDecimal(std::size_t column, Decimal value);
    void addTimestamp(std::size_t column, std::int64_t seconds);
    void endRow();

    std::size_t rowCount() const;
    /// Ends the packet; the builder is empty afterwards.
    PacketPtr finish(bool truncated = false);

private:
    class ColumnBuilder;
    void sealBlock();
    std::vector<std::unique_ptr<ColumnBuilder>> m_columns;
    std::vector<Block> m_blocks;
    std::uint32_t m_openRows = 0;
};

} // namespace packet
