#include "platform/dataset/row_overlay.h"

#include "packet/builder.h"

using namespace platform;

using packet::ColumnType;

namespace {

void addPacketCell(packet::Builder &builder, const packet::Packet &packet, std::size_t column, std::uint32_t row)
{
    if (packet.isNull(column, row))
        return builder.addNull(column);
    switch (packet.schema()[column].type) {
    case ColumnType::Text:
        return builder.addText(column, packet.text(column, row));
    case ColumnType::Int64:
        return builder.addInteger(column, packet.integer(column, row));
    case ColumnType::Decimal:
        return builder.addDecimal(column, packet.decimal(column, row));
    case ColumnType::Float64:
        return builder.addDouble(column, packet.real(column, row));
    case ColumnType::Timestamp:
        return builder.addTimestamp(column, packet.integer(column, row));
    }
}

void addOverlayCell(packet::Builder &builder, std::size_t column, const RowOverlay::Cell &cell)
{
    if (const auto *text = std::get_if<std::string>(&cell))
        builder.addText(column, *text);
    else if (const auto *number = std::get_if<packet::Decimal>(&cell))
        builder.addDecimal(column, *number);
    else if (const auto *seconds = std::get_if<std::int64_t>(&cell))
        builder.addTimestamp(column, *seconds);
    else
        builder.addNull(column);
}

} // namespace

namespace platform {

RowOverlay::RowOverlay(packet::PacketPtr packet)
    : m_packet(std::move(packet))
    , m_base(std::uint32_t(m_packet->rowCount()))
{
}

std::optional<RowOverlay::Cell> RowOverlay::read(ColumnType type, const std::string &text)
{
    if (text.empty())
        return Null {};
    if (type == ColumnType::Text)
        return text;
    if (type == ColumnType::Timestamp) {
        const auto seconds = packet::parseTimestamp(text);
        return seconds ? std::optional<Cell>(*seconds) : std::nullopt;
    }
    const auto number = packet::Decimal::parse(text);
    return number ? std::optional<Cell>(*number) : std::nullopt;
}

const RowOverlay::Row *RowOverlay::findCommitted(std::uint32_t row) const
{
    if (row >= m_base)
        return row - m_base < m_appended.size() ? &m_appended[row - m_base] : nullptr;
    if (m_edited.empty())
        return nullptr;
    const auto found = m_edited.find(row);
    return found == m_edited.end() ? nullptr : &found->second;
}

const RowOverlay::Row *RowOverlay::find(std::uint32_t row) const { return m_pendingRow == row ? &m_pending : findCommitted(row); }

const RowOverlay::Cell *RowOverlay::cell(std::size_t column, std::uint32_t row) const
{
    const Row *edited = find(row);
    if (!edited || std::holds_alternative<Unchanged>(edited->cells[column]))
        return nullptr;
    return &edited->cells[column];
}

bool RowOverlay::isDeleted(std::uint32_t row) const
{
    const Row *edited = find(row);
    return edited && edited->deleted;
}

bool RowOverlay::isNull(std::size_t column, std::uint32_t row) const
{
    if (const Cell *edited = cell(column, row))
        return std::holds_alternative<Null>(*edited);
    return m_packet->isNull(column, row);
}

std::string_view RowOverlay::text(std::size_t column, std::uint32_t row) const
{
    if (const Cell *edited = cell(column, row)) {
        const auto *text = std::get_if<std::string>(edited);
        return text ? std::string_view(*text) : std::string_view();
    }
    return m_packet->text(column, row);
}

std::int64_t RowOverlay::seconds(std::size_t column, std::uint32_t row) const
{
    if (const Cell *edited = cell(column, row)) {
        const auto *seconds = std::get_if<std::int64_t>(edited);
        return seconds ? *seconds : 0;
    }
    return m_packet->integer(column, row);
}

double RowOverlay::real(std::size_t column, std::uint32_t row) const
{
    return cell(column, row) ? decimal(column, row).toDouble() : m_packet->real(column, row);
}

packet::Decimal RowOverlay::decimal(std::size_t column, std::uint32_t row) const
{
    if (const Cell *edited = cell(column, row)) {
        const auto *number = std::get_if<packet::Decimal>(edited);
        return number ? *number : packet::Decimal {};
    }
    return m_packet->decimal(column, row);
}

std::optional<packet::Decimal> RowOverlay::number(std::size_t column, std::uint32_t row) const
{
    const ColumnType type = m_packet->schema()[column].type;
    if (type == ColumnType::Timestamp || isNull(column, row))
        return {};
    if (type == ColumnType::Text)
        return packet::Decimal::parse(text(column, row));
    if (type == ColumnType::Float64 && !cell(column, row))
        return packet::Decimal::fromDouble(m_packet->real(column, row));
    return decimal(column, row);
}

void RowOverlay::appendText(std::size_t column, std::uint32_t row, std::string &out) const
{
    const Cell *edited = cell(column, row);
    if (!edited)
        m_packet->appendText(column, row, out);
    else if (const auto *text = std::get_if<std::string>(edited))
        out += *text;
    else if (const auto *number = std::get_if<packet::Decimal>(edited))
        out += number->toString();
    else if (const auto *seconds = std::get_if<std::int64_t>(edited))
        packet::appendTimestamp(*seconds, out);
}

void RowOverlay::beginEdit(std::uint32_t row)
{
    const Row *known = findCommitted(row);
    m_pending = known ? *known : Row { std::vector<Cell>(m_packet->columnCount()) };
    m_pendingRow = row;
    m_modified = false;
}

void RowOverlay::beginAppend()
{
    m_pendingRow = rowCount();
    m_pending = Row { std::vector<Cell>(m_packet->columnCount(), Null {}), Change::Inserted };
    m_appending = true;
    m_modified = true;
}

void RowOverlay::set(std::size_t column, Cell cell)
{
    m_pending.cells[column] = std::move(cell);
    m_modified = true;
}

void RowOverlay::commit()
{
    if (m_appending) {
        m_appended.push_back(std::move(m_pending));
    } else if (m_modified) {
        if (m_pending.change == Change::None)
            m_pending.change = Change::Edited;
        stored(*m_pendingRow) = std::move(m_pending);
    }
    rollback();
}

void RowOverlay::rollback()
{
    m_pendingRow.reset();
    m_pending = {};
    m_appending = false;
}

RowOverlay::Row &RowOverlay::stored(std::uint32_t row)
{
    if (row >= m_base)
        return m_appended[row - m_base];
    Row &edited = m_edited[row];
    edited.cells.resize(m_packet->columnCount());
    return edited;
}

void RowOverlay::remove(std::uint32_t row)
{
    Row &removed = stored(row);
    removed.deleted = true;
    removed.change = removed.change == Change::Inserted ? Change::None : Change::Deleted;
    ++m_deleted;
}

template <class Visit>
void RowOverlay::forEachStored(Visit visit) const
{
    for (const auto &[row, edited] : m_edited)
        visit(edited);
    for (const Row &row : m_appended)
        visit(row);
}

int RowOverlay::changeCount() const
{
    int count = 0;
    forEachStored([&](const Row &row) { count += row.change != Change::None; });
    return count;
}

void RowOverlay::mergeChangeLog()
{
    for (auto &[row, edited] : m_edited)
        edited.change = Change::None;
    for (Row &row : m_appended)
        row.change = Change::None;
}

ColumnType RowOverlay::mergedType(std::size_t column) const
{
    const ColumnType type = m_packet->schema()[column].type;
    bool wholeNumbers = true;
    if (type == ColumnType::Int64) {
        forEachStored([&](const Row &row) {
            const auto *number = std::get_if<packet::Decimal>(&row.cells[column]);
            wholeNumbers = wholeNumbers && (!number || number->rescaled(0) == *number);
        });
    }
    return wholeNumbers ? type : ColumnType::Decimal;
}

packet::PacketPtr RowOverlay::merged() const
{
    if (m_edited.empty() && m_appended.empty())
        return m_packet;
    std::vector<packet::Builder::Column> columns;
    for (std::size_t column = 0; column < m_packet->columnCount(); ++column)
        columns.push_back({ m_packet->schema()[column].name, mergedType(column) });
    packet::Builder builder(std::move(columns));
    for (std::uint32_t row = 0; row < m_base + m_appended.size(); ++row) {
        const Row *edited = findCommitted(row);
        if (edited && edited->deleted)
            continue;
        for (std::size_t column = 0; column < m_packet->columnCount(); ++column) {
            if (edited && !std::holds_alternative<Unchanged>(edited->cells[column]))
                addOverlayCell(builder, column, edited->cells[column]);
            else
                addPacketCell(builder, *m_packet, column, row);
        }
        builder.endRow();
    }
    return builder.finish(m_packet->truncated() ? packet::Extent::Truncated : packet::Extent::Whole);
}

} // namespace platform
