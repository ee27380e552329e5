#include "packet/decimal_store.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <stdexcept>

namespace packet {

namespace {

constexpr int moneyScale = 2;
constexpr int guessedScale = 4; ///< doubles are first tried with at most so many digits after the point
constexpr std::array<double, guessedScale + 1> doublePowers { 1, 1e1, 1e2, 1e3, 1e4 };

bool fitsInt64(Int128 value) { return value == Int128(std::int64_t(value)); }

/// Takes the trailing zeros that all values share off them; returns how many, at most `scale`.
template <class Units>
int dropCommonZeros(std::vector<Units> &units, int scale)
{
    int dropped = 0;
    while (dropped < scale && std::all_of(units.begin(), units.end(), [](Units value) { return value % 10 == 0; })) {
        for (Units &value : units)
            value /= 10;
        ++dropped;
        if (std::all_of(units.begin(), units.end(), [](Units value) { return value == 0; }))
            return scale;
    }
    return dropped;
}

} // namespace

bool DecimalStore::add(Decimal value)
{
    try {
        if (value.scale > m_scale && !raiseScale(value.scale))
            return false;
        append(value.rescaled(m_scale).units);
        return true;
    } catch (const std::overflow_error &) {
        return false;
    }
}

bool DecimalStore::add(double value)
{
    // At most 15 digits that divide back to the same double are the number that was meant.
    const int scale = std::min(m_scale, guessedScale);
    const double power = doublePowers[std::size_t(scale)];
    const double moved = value * power;
    if (std::fabs(moved) < 1e15) {
        const auto units = std::int64_t(moved + (moved < 0 ? -0.5 : 0.5));
        if (double(units) / power == value) {
            if (scale != m_scale || !m_wide.empty())
                return add(Decimal { units, scale });
            m_units.push_back(units);
            return true;
        }
    }
    if (std::fabs(value) < 1e-22)
        return add(std::int64_t(0));
    const auto exact = Decimal::fromDouble(value);
    return exact && add(*exact);
}

void DecimalStore::addNull() { append(0); }

void DecimalStore::append(Int128 units)
{
    if (m_wide.empty() && fitsInt64(units)) {
        m_units.push_back(std::int64_t(units));
        return;
    }
    if (m_wide.empty())
        widen();
    m_wide.push_back(units);
}

void DecimalStore::widen()
{
    m_wide.reserve(m_units.capacity());
    m_wide.assign(m_units.begin(), m_units.end());
    m_units.clear();
}

bool DecimalStore::raiseScale(int scale)
{
    lowerScale();
    if (scale <= m_scale)
        return true;
    std::vector<Int128> raised;
    raised.reserve(m_units.size() + m_wide.size());
    for (std::size_t row = 0; row < m_units.size() + m_wide.size(); ++row)
        raised.push_back(at(row).rescaled(scale).units);
    m_scale = scale;
    m_wide.clear();
    m_units.clear();
    for (const Int128 units : raised)
        append(units);
    return true;
}

void DecimalStore::lowerScale() { m_scale -= m_wide.empty() ? dropCommonZeros(m_units, m_scale) : dropCommonZeros(m_wide, m_scale); }

Chunk DecimalStore::seal()
{
    lowerScale();
    if (!m_wide.empty() && std::all_of(m_wide.begin(), m_wide.end(), fitsInt64)) {
        m_units.reserve(m_wide.size());
        for (const Int128 units : m_wide)
            m_units.push_back(std::int64_t(units));
        m_wide.clear();
    }
    if (m_units.capacity() > m_units.size() * 2)
        m_units.shrink_to_fit();
    Chunk chunk;
    chunk.scale = std::int8_t(m_scale);
    chunk.width = m_wide.empty() ? sizeof(std::int64_t) : sizeof(Int128);
    chunk.values = m_wide.empty() ? Buffer::adopt(std::move(m_units)) : Buffer::adopt(std::move(m_wide));
    m_units = {};
    m_wide = {};
    m_scale = std::clamp(m_scale, moneyScale, guessedScale);
    return chunk;
}

void DecimalStore::adopt(std::vector<std::int64_t> &&integers)
{
    m_units = std::move(integers);
    m_scale = 0;
}

} // namespace packet
