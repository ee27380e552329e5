#pragma once

#include "platform/dataset/row_overlay.h"

namespace platform {

/// The shown rows of a client dataset as they were at one moment. It shares the packet and keeps the edits and the order, so that
/// another thread may read it whatever happens to the dataset meanwhile. Rows are counted from 0 in their shown order.
class RowSnapshot {
public:
    /// Nothing in place of `order`: all source rows, one for one.
    RowSnapshot(RowOverlay overlay, std::optional<std::vector<std::uint32_t>> order)
        : m_overlay(std::move(overlay))
        , m_order(std::move(order))
    {
    }

    const RowOverlay &overlay() const { return m_overlay; }
    const packet::Packet &packet() const { return m_overlay.packet(); }
    std::size_t rowCount() const { return m_order ? m_order->size() : m_overlay.rowCount(); }
    /// The number by which the overlay and, unless the row was edited, the packet know a shown row.
    std::uint32_t source(std::size_t row) const { return m_order ? (*m_order)[row] : std::uint32_t(row); }

private:
    RowOverlay m_overlay;
    std::optional<std::vector<std::uint32_t>> m_order;
};

} // namespace platform
