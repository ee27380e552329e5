#pragma once

#include "platform/dataset/row_overlay.h"

namespace platform {

/// One comparison of a filter: a column against literals of its own kind. A null cell passes none but IsNull; the other
/// operators of the language are these ones negated.
class FilterCondition {
public:
    enum class Test { OneOf, Less, LessOrEqual, Like, IsNull };

    FilterCondition(std::size_t column, Test test, bool negated)
        : m_column(column)
        , m_test(test)
        , m_negated(negated)
    {
    }

    void addText(std::string text) { m_texts.push_back(std::move(text)); }
    void addNumber(packet::Decimal number);
    void addTime(std::int64_t seconds) { m_times.push_back(seconds); }
    /// A literal that is null was compared with: nothing can equal it, and nothing can be said to differ from it.
    void addNull();

    /// Writes 1 for each row of the block that passes and 0 for the others. The first call examines the dictionary.
    void evaluate(const packet::Packet &packet, std::size_t block, std::uint8_t *passes);
    bool passes(const RowOverlay &rows, std::uint32_t row) const;

private:
    template <class Value, class Literal>
    bool compare(const Value &value, const std::vector<Literal> &literals) const;
    bool passesText(std::string_view text) const;
    bool passesNumber(packet::Decimal number) const { return compare(number, m_numbers) != m_negated; }
    /// The literals as integers at that scale; nothing when one of them needs a larger scale.
    std::optional<std::vector<packet::Int128>> numbersAt(int scale) const;
    void evaluateValues(const packet::Packet &packet, std::size_t block, std::uint8_t *passes) const;

    std::size_t m_column;
    Test m_test;
    bool m_negated;
    bool m_never = false;
    std::vector<std::string> m_texts;
    std::vector<packet::Decimal> m_numbers;
    std::vector<double> m_reals; ///< the numbers once more, for columns of floating-point values
    std::vector<std::int64_t> m_times;
    std::vector<std::uint8_t> m_table; ///< for each text of the dictionary whether it passes
};

} // namespace platform
