#pragma once

#include "packet/packet.h"

namespace packet {

/// The open rows of a Decimal column, all at one scale. Units stay 64 bits wide until one does not fit.
class DecimalStore {
public:
    void reserve(std::size_t rows) { m_units.reserve(rows); }
    /// These are false when the value does not fit beside the others of the block in 38 digits.
    bool add(Decimal value);
    bool add(double value);
    bool add(std::int64_t value) { return add(Decimal { value, 0 }); }
    void addNull();
    /// The chunk at the smallest scale that holds its values.
    Chunk seal();

    Decimal at(std::size_t row) const { return { m_wide.empty() ? Int128(m_units[row]) : m_wide[row], m_scale }; }
    /// Takes over open integers as they are.
    void adopt(std::vector<std::int64_t> &&integers);

private:
    void append(Int128 units);
    void widen();
    bool raiseScale(int scale);
    void lowerScale();

    std::vector<std::int64_t> m_units;
    std::vector<Int128> m_wide; ///< used instead of m_units once it is not empty
    int m_scale = 2; ///< money is the first guess; each block begins with the scale of the one before
};

} // namespace packet
