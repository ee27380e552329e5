#include "platform/dataset/filter_condition.h"

#include <algorithm>
#include <span>

using namespace platform;

using packet::ColumnType;

namespace {

std::size_t characterLength(char lead)
{
    const auto byte = static_cast<unsigned char>(lead);
    return byte < 0xC0 ? 1 : byte < 0xE0 ? 2 : byte < 0xF0 ? 3 : 4;
}

/// "%" stands for any characters, "_" for one; on a mismatch the last "%" takes one character more.
bool isLike(std::string_view text, std::string_view pattern)
{
    std::size_t at = 0;
    std::size_t inPattern = 0;
    std::size_t retryText = 0;
    std::size_t retryPattern = std::string_view::npos;
    while (at < text.size()) {
        if (inPattern < pattern.size() && pattern[inPattern] == '%') {
            retryPattern = ++inPattern;
            retryText = at;
        } else if (inPattern < pattern.size() && pattern[inPattern] == '_') {
            at += characterLength(text[at]);
            ++inPattern;
        } else if (inPattern < pattern.size() && pattern[inPattern] == text[at]) {
            ++at;
            ++inPattern;
        } else if (retryPattern != std::string_view::npos) {
            retryText += characterLength(text[retryText]);
            if (retryPattern < pattern.size() && pattern[retryPattern] != '_' && pattern[retryPattern] != '%')
                retryText = std::min(text.find(pattern[retryPattern], retryText), text.size());
            at = retryText;
            inPattern = retryPattern;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('%', inPattern) == std::string_view::npos;
}

/// The text that a pattern looks for anywhere, as "%text%" does; "" for other patterns.
std::string_view partSought(std::string_view pattern)
{
    if (pattern.size() < 3 || pattern.front() != '%' || pattern.back() != '%')
        return {};
    const std::string_view part = pattern.substr(1, pattern.size() - 2);
    return part.find_first_of("%_") == std::string_view::npos ? part : std::string_view();
}

/// Marks the rows of plain text that hold `part`, in one search through the bytes of all rows.
void markHolders(const packet::Chunk &chunk, std::size_t rows, std::string_view part, bool mark, std::uint8_t *passes)
{
    const auto *offsets = chunk.offsets.as<std::uint32_t>();
    const std::string_view bytes(chunk.values.as<char>(), offsets[rows]);
    std::fill_n(passes, rows, !mark);
    std::size_t row = 0;
    for (std::size_t at = bytes.find(part, offsets[0]); at != std::string_view::npos;) {
        while (offsets[row + 1] <= at)
            ++row;
        const std::size_t end = offsets[row + 1];
        const bool isInside = at + part.size() <= end;
        if (isInside)
            passes[row] = mark;
        at = bytes.find(part, isInside ? end : at + 1);
    }
}

} // namespace

namespace platform {

void FilterCondition::addNumber(packet::Decimal number)
{
    m_numbers.push_back(number);
    m_reals.push_back(number.toDouble());
}

void FilterCondition::addNull()
{
    if (m_negated || m_test != Test::OneOf)
        m_never = true;
}

template <class Value, class Literal>
bool FilterCondition::compare(const Value &value, const std::vector<Literal> &literals) const
{
    switch (m_test) {
    case Test::OneOf:
        return std::ranges::any_of(literals, [&](const Literal &literal) { return value == literal; });
    case Test::Less:
        return value < literals.front();
    case Test::LessOrEqual:
        return value <= literals.front();
    case Test::Like:
    case Test::IsNull:
        break;
    }
    return false;
}

bool FilterCondition::passesText(std::string_view text) const
{
    if (!m_numbers.empty()) {
        const auto number = packet::Decimal::parse(text);
        return number && passesNumber(*number);
    }
    return (m_test == Test::Like ? isLike(text, m_texts.front()) : compare(text, m_texts)) != m_negated;
}

bool FilterCondition::passes(const RowOverlay &rows, std::uint32_t row) const
{
    if (m_test == Test::IsNull)
        return rows.isNull(m_column, row) != m_negated;
    if (m_never || rows.isNull(m_column, row))
        return false;
    switch (rows.packet().schema()[m_column].type) {
    case ColumnType::Text:
        return passesText(rows.text(m_column, row));
    case ColumnType::Timestamp:
        return compare(rows.seconds(m_column, row), m_times) != m_negated;
    default:
        const auto number = rows.number(m_column, row);
        return number && passesNumber(*number);
    }
}

void FilterCondition::evaluate(const packet::Packet &packet, std::size_t block, std::uint8_t *passes)
{
    const std::size_t rows = packet.blocks()[block].rows;
    const packet::Chunk &chunk = packet.blocks()[block].columns[m_column];
    if (m_never) {
        std::fill_n(passes, rows, std::uint8_t(0));
        return;
    }
    if (m_test == Test::IsNull) {
        for (std::size_t row = 0; row < rows; ++row)
            passes[row] = chunk.isNull(row) != m_negated;
        return;
    }
    const packet::Dictionary *dictionary = packet.dictionary(m_column);
    if (dictionary && m_table.empty()) {
        for (std::size_t index = 0; index < dictionary->size(); ++index)
            m_table.push_back(passesText(dictionary->at(index)));
    }
    evaluateValues(packet, block, passes);
    if (const auto *validity = chunk.validity.as<std::uint8_t>()) {
        for (std::size_t row = 0; row < rows; ++row)
            passes[row] &= validity[row >> 3] >> (row & 7) & 1;
    }
}

void FilterCondition::evaluateValues(const packet::Packet &packet, std::size_t block, std::uint8_t *passes) const
{
    const std::size_t rows = packet.blocks()[block].rows;
    const packet::Chunk &chunk = packet.blocks()[block].columns[m_column];
    const auto fill = [&](auto test) {
        for (std::size_t row = 0; row < rows; ++row)
            passes[row] = test(row);
    };
    switch (packet.schema()[m_column].type) {
    case ColumnType::Text:
        // What stands in the place of a null is not looked at before it is known to lie within the dictionary.
        if (packet.dictionary(m_column))
            fill([&, table = std::span(m_table)](std::size_t row) { return chunk.index(row) < table.size() && table[chunk.index(row)]; });
        else if (const auto part = m_test == Test::Like ? partSought(m_texts.front()) : std::string_view(); !part.empty())
            markHolders(chunk, rows, part, !m_negated, passes);
        else
            fill([&, offsets = chunk.offsets.as<std::uint32_t>(), bytes = chunk.values.as<char>()](std::size_t row) {
                return passesText({ bytes + offsets[row], offsets[row + 1] - offsets[row] });
            });
        break;
    case ColumnType::Timestamp:
        fill([&](std::size_t row) { return compare(chunk.values.as<std::int64_t>()[row], m_times) != m_negated; });
        break;
    case ColumnType::Float64:
        fill([&](std::size_t row) { return compare(chunk.values.as<double>()[row], m_reals) != m_negated; });
        break;
    case ColumnType::Int64:
    case ColumnType::Decimal:
        if (const auto units = numbersAt(chunk.scale))
            fill([&](std::size_t row) { return compare(chunk.units(row), *units) != m_negated; });
        else
            fill([&](std::size_t row) { return passesNumber({ chunk.units(row), chunk.scale }); });
        break;
    }
}

std::optional<std::vector<packet::Int128>> FilterCondition::numbersAt(int scale) const
{
    constexpr auto most = packet::Int128(1) << 62;
    std::vector<packet::Int128> units;
    for (const packet::Decimal &number : m_numbers) {
        if (scale > 18 || number.units > most || number.units < -most)
            return {};
        const packet::Decimal rescaled = number.rescaled(scale);
        if (rescaled != number)
            return {};
        units.push_back(rescaled.units);
    }
    return units;
}

} // namespace platform
