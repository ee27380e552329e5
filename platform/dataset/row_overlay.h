#pragma once

#include "packet/packet.h"

#include <optional>
#include <unordered_map>
#include <variant>
#include <vector>

namespace platform {

/// The rows of a packet with edits laid over them. A row is known by its source number, which never changes: first come the
/// packet's rows, then the appended ones in the order of their coming.
class RowOverlay {
public:
    struct Unchanged { };
    struct Null { };
    /// A value of the overlay: of its column's type, numbers of every type as decimals, times as seconds.
    using Cell = std::variant<Unchanged, Null, std::string, packet::Decimal, std::int64_t>;

    explicit RowOverlay(packet::PacketPtr packet);

    /// The cell that `text` means in a column of that type; nothing when it does not fit. The empty text is null.
    static std::optional<Cell> read(packet::ColumnType type, const std::string &text);

    const packet::Packet &packet() const { return *m_packet; }
    /// Source rows, with the deleted ones and the one that is being appended.
    std::uint32_t rowCount() const { return m_base + std::uint32_t(m_appended.size()) + (m_appending ? 1 : 0); }
    /// True while every row is the packet's own.
    bool isPlain() const { return m_edited.empty() && m_appended.empty() && !m_pendingRow; }
    bool hasDeleted() const { return m_deleted > 0; }
    bool isDeleted(std::uint32_t row) const;
    bool isEdited(std::uint32_t row) const { return row >= m_base || find(row); }

    bool isNull(std::size_t column, std::uint32_t row) const;
    std::string_view text(std::size_t column, std::uint32_t row) const; ///< Text columns only
    std::int64_t seconds(std::size_t column, std::uint32_t row) const; ///< Timestamp columns only
    double real(std::size_t column, std::uint32_t row) const; ///< Float64 columns only
    packet::Decimal decimal(std::size_t column, std::uint32_t row) const; ///< Decimal and Int64 columns only; 0 for null
    /// Nothing for null, for times and for a text that is no number.
    std::optional<packet::Decimal> number(std::size_t column, std::uint32_t row) const;
    /// As a person reads it.
    void appendText(std::size_t column, std::uint32_t row, std::string &out) const;

    /// One edit at a time: begun, changed by set(), then committed or rolled back.
    void beginEdit(std::uint32_t row);
    void beginAppend();
    void set(std::size_t column, Cell cell);
    void commit();
    void rollback();
    void remove(std::uint32_t row);

    int changeCount() const;
    void mergeChangeLog();
    /// The rows that are not deleted as one packet of the same columns; an edit that is under way is left out.
    packet::PacketPtr merged() const;

private:
    enum class Change : std::uint8_t { None, Inserted, Edited, Deleted };
    struct Row {
        std::vector<Cell> cells;
        Change change = Change::None;
        bool deleted = false;
    };

    const Row *find(std::uint32_t row) const;
    const Row *findCommitted(std::uint32_t row) const;
    const Cell *cell(std::size_t column, std::uint32_t row) const;
    Row &stored(std::uint32_t row);
    packet::ColumnType mergedType(std::size_t column) const;
    template <class Visit>
    void forEachStored(Visit visit) const;

    packet::PacketPtr m_packet;
    std::uint32_t m_base = 0;
    std::unordered_map<std::uint32_t, Row> m_edited;
    std::vector<Row> m_appended;
    std::uint32_t m_deleted = 0;
    std::optional<std::uint32_t> m_pendingRow;
    Row m_pending;
    bool m_appending = false;
    bool m_modified = false;
};

} // namespace platform
