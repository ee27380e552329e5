#pragma once

#include "packet/block_sink.h"

#include <memory>

namespace packet {

/// Whether the row limit cut a result.
enum class Extent { Whole, Truncated };

/// Fills a packet row by row. Every column takes exactly one value between two endRow() calls.
///
/// A column whose type is not given takes the type of what arrives in the first block (all null: Text). Texts are
/// dictionary-coded while few values repeat; the first block decides. The empty text is stored as null, as Oracle reads it.
///
/// With a sink the blocks go there and are not kept. As long as a column without a given type has no value, up to
/// heldBlocks blocks are held back; then it is Text, whatever follows. Where more rows follow the schema, whole numbers of
/// such a column are Decimal, because a later one may have a fraction, and a Text column without any text is plain.
class Builder {
public:
    struct Column {
        std::string name; ///< made unique by the builder: a second X becomes X_1
        std::optional<ColumnType> type {};
        std::optional<int> scale {}; ///< digits after the point that the database declares
    };
    static constexpr std::size_t heldBlocks = 16;

    explicit Builder(std::vector<Column> columns, BlockSink *sink = nullptr);
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
    /// Ends the packet; the builder is empty afterwards. Null when there is a sink, which has got everything then.
    PacketPtr finish(Extent extent = Extent::Whole);

private:
    enum class Rows { MoreFollow, AllThere };
    class ColumnBuilder;
    void sealBlock();
    void completeBlocks();
    std::vector<Field> schema() const;
    bool mustHold() const;
    void begin(Rows rows);
    void send();
    std::vector<std::unique_ptr<ColumnBuilder>> m_columns;
    BlockSink *m_sink;
    std::vector<Block> m_blocks;
    std::size_t m_sealedRows = 0;
    std::uint32_t m_openRows = 0;
    bool m_begun = false; ///< the sink knows the schema
};

} // namespace packet
