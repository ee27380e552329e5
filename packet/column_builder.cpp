#include "packet/column_builder.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <stdexcept>

namespace packet {

namespace {

constexpr double int64Limit = 9223372036854775808.0;
constexpr int mostDigits = 38;
constexpr int anyScale = 18; ///< for decimals of which nothing is known
constexpr int spareScale = 4; ///< beyond the declared scale, which not every database enforces
constexpr std::size_t quotedBytes = 60; ///< of a value in an error message

std::string_view nameOf(ColumnType type)
{
    switch (type) {
    case ColumnType::Text:
        return "文字";
    case ColumnType::Int64:
        return "整数";
    case ColumnType::Decimal:
    case ColumnType::Float64:
        return "数字";
    case ColumnType::Timestamp:
        return "日期时间";
    }
    return {};
}

std::string_view shortened(std::string_view text)
{
    if (text.size() <= quotedBytes)
        return text;
    std::size_t size = quotedBytes;
    while (size > 0 && (text[size] & 0xC0) == 0x80)
        --size;
    return text.substr(0, size);
}

template <class Number>
std::string numberText(Number value)
{
    char buffer[32];
    return std::string(buffer, std::to_chars(buffer, buffer + sizeof buffer, value).ptr);
}

std::string doubleText(double value)
{
    const auto exact = Decimal::fromDouble(value);
    return exact ? exact->toString() : numberText(value);
}

std::string timestampText(std::int64_t seconds)
{
    std::string text;
    appendTimestamp(seconds, text);
    return text;
}

bool isWhole(double value) { return value >= -int64Limit && value < int64Limit && std::trunc(value) == value; }

std::optional<std::int64_t> wholeOf(Decimal value)
{
    const Decimal whole = value.rescaled(0);
    const auto narrow = std::int64_t(whole.units);
    return whole == value && Int128(narrow) == whole.units ? std::optional(narrow) : std::nullopt;
}

int wholeDigitsOf(const Chunk &chunk, std::size_t rows)
{
    Int128 largest = 0;
    for (std::size_t row = 0; row < rows; ++row)
        largest = std::max(largest, chunk.units(row) < 0 ? -chunk.units(row) : chunk.units(row));
    int digits = 0;
    for (; largest > 0; largest /= 10)
        ++digits;
    return digits - chunk.scale;
}

/// Seconds of "hh:mm:ss" at `text`, or -1.
int clockSeconds(const char *text)
{
    const auto digit = [text](int position) { return unsigned(std::uint8_t(text[position])) - '0'; };
    const unsigned hour = digit(0) * 10 + digit(1);
    const unsigned minute = digit(3) * 10 + digit(4);
    const unsigned second = digit(6) * 10 + digit(7);
    const bool digits = digit(0) <= 9 && digit(1) <= 9 && digit(3) <= 9 && digit(4) <= 9 && digit(6) <= 9 && digit(7) <= 9;
    if (!digits || hour > 23 || minute > 59 || second > 59 || text[2] != ':' || text[5] != ':')
        return -1;
    return int((hour * 60 + minute) * 60 + second);
}

bool mustSettleBehind(std::size_t row) { return (row + 1) % TextStore::settledRows == 0; }

} // namespace

Builder::ColumnBuilder::ColumnBuilder(Column column)
    : m_name(std::move(column.name))
    , m_type(column.type)
    , m_declaredScale(column.scale)
    , m_declared(column.type.has_value())
{
    beginBlock();
}

void Builder::ColumnBuilder::addNull()
{
    if (m_type)
        storeNull();
    if (m_validity.empty())
        m_validity.assign(Packet::blockRows / 8, 0xFF);
    m_validity[m_rows >> 3] &= std::uint8_t(~(1u << (m_rows & 7)));
    ++m_nulls;
    ++m_rows;
}

/// A text for a column that is not known to be a Text column.
void Builder::ColumnBuilder::convertText(std::string_view text)
{
    if (text.empty())
        return addNull();
    if (!m_type)
        decide(ColumnType::Text);
    if (*m_type == ColumnType::Text)
        return storeText(text);
    if (*m_type == ColumnType::Timestamp)
        return storeTimestamp(text);
    if (mayBecomeText()) {
        turnToText();
        return storeText(text);
    }
    if (const auto number = Decimal::parse(text))
        return addDecimal(*number);
    refuse(text);
}

void Builder::ColumnBuilder::addInteger(std::int64_t value)
{
    if (!m_type)
        decide(ColumnType::Int64);
    switch (*m_type) {
    case ColumnType::Int64:
        return store(value);
    case ColumnType::Decimal:
        return storeDecimal(value);
    case ColumnType::Text:
        return storeText(numberText(value));
    case ColumnType::Float64:
        if (!isWhole(double(value)) || std::int64_t(double(value)) != value)
            refuse(numberText(value));
        return store(std::bit_cast<std::int64_t>(double(value)));
    case ColumnType::Timestamp:
        return storeAsText(numberText(value));
    }
}

void Builder::ColumnBuilder::addDouble(double value)
{
    if (m_type == ColumnType::Decimal)
        return storeDecimal(value);
    if (!m_type)
        decide(ColumnType::Float64);
    if (*m_type == ColumnType::Int64 && !isWhole(value))
        turnToDecimal(doubleText(value));
    switch (*m_type) {
    case ColumnType::Int64:
        return store(std::int64_t(value));
    case ColumnType::Decimal:
        return storeDecimal(value); // turned so by this value
    case ColumnType::Text:
        return storeText(doubleText(value));
    case ColumnType::Float64:
        return store(std::bit_cast<std::int64_t>(value));
    case ColumnType::Timestamp:
        return storeAsText(doubleText(value));
    }
}

void Builder::ColumnBuilder::addDecimal(Decimal value)
{
    if (!m_type)
        decide(ColumnType::Decimal);
    const auto whole = *m_type == ColumnType::Int64 ? wholeOf(value) : std::nullopt;
    if (*m_type == ColumnType::Int64 && !whole)
        turnToDecimal(value.toString());
    switch (*m_type) {
    case ColumnType::Int64:
        return store(*whole);
    case ColumnType::Decimal:
        return storeDecimal(value);
    case ColumnType::Text:
        return storeText(value.toString());
    case ColumnType::Float64:
        if (Decimal::fromDouble(value.toDouble()) != std::optional(value))
            refuse(value.toString());
        return store(std::bit_cast<std::int64_t>(value.toDouble()));
    case ColumnType::Timestamp:
        return storeAsText(value.toString());
    }
}

void Builder::ColumnBuilder::addTimestamp(std::int64_t seconds)
{
    if (!m_type)
        decide(ColumnType::Timestamp);
    if (*m_type == ColumnType::Timestamp)
        return store(seconds);
    if (*m_type == ColumnType::Text)
        return storeText(timestampText(seconds));
    storeAsText(timestampText(seconds));
}

void Builder::ColumnBuilder::decide(ColumnType type)
{
    m_type = type;
    beginBlock();
    for (std::size_t row = 0; row < m_rows; ++row) {
        storeNull();
        if (mustSettleBehind(row))
            settle();
    }
}

/// An undeclared column of mixed kinds is a Text column as long as nothing of it is sealed.
void Builder::ColumnBuilder::storeAsText(std::string_view text)
{
    if (!mayBecomeText())
        refuse(text);
    turnToText();
    storeText(text);
}

void Builder::ColumnBuilder::turnToText()
{
    m_texts.beginBlock();
    for (std::size_t row = 0; row < m_rows; ++row) {
        if (isNull(row))
            m_texts.addNull();
        else
            m_texts.add(openText(row));
        if (mustSettleBehind(row))
            m_texts.settle();
    }
    m_type = ColumnType::Text;
    m_words = {};
    m_decimals = {};
}

/// Sealed integers need no change: they are decimals of scale 0.
void Builder::ColumnBuilder::turnToDecimal(std::string_view value)
{
    if (m_declared)
        refuse(value);
    m_decimals.adopt(std::move(m_words));
    m_type = ColumnType::Decimal;
    m_words = {};
}

void Builder::ColumnBuilder::store(std::int64_t value)
{
    m_words.push_back(value);
    ++m_rows;
}

template <class Number>
void Builder::ColumnBuilder::storeDecimal(Number value)
{
    if (m_decimals.add(value)) {
        ++m_rows;
        return;
    }
    if constexpr (std::is_same_v<Number, double>)
        refuse(doubleText(value));
    else if constexpr (std::is_same_v<Number, Decimal>)
        refuse(value.toString());
    else
        refuse(numberText(value));
}

void Builder::ColumnBuilder::storeNull()
{
    switch (*m_type) {
    case ColumnType::Text:
        return m_texts.addNull();
    case ColumnType::Decimal:
        return m_decimals.addNull();
    default:
        m_words.push_back(0);
    }
}

void Builder::ColumnBuilder::storeTimestamp(std::string_view text)
{
    // Rows that follow each other mostly lie on the same day.
    if (text.size() == 19 && std::memcmp(text.data(), m_date, sizeof m_date) == 0 && text[10] == ' ') {
        if (const int clock = clockSeconds(text.data() + 11); clock >= 0)
            return store(m_dateSeconds + clock);
    }
    const auto seconds = parseTimestamp(text);
    if (!seconds)
        return storeAsText(text);
    std::memcpy(m_date, text.data(), sizeof m_date);
    m_dateSeconds = *parseTimestamp(text.substr(0, sizeof m_date));
    store(*seconds);
}

void Builder::ColumnBuilder::beginBlock()
{
    if (!m_type)
        return;
    switch (*m_type) {
    case ColumnType::Text:
        return m_texts.beginBlock();
    case ColumnType::Decimal:
        return m_decimals.reserve(Packet::blockRows);
    default:
        m_words.reserve(Packet::blockRows);
    }
}

std::string Builder::ColumnBuilder::openText(std::size_t row) const
{
    switch (*m_type) {
    case ColumnType::Decimal:
        return m_decimals.at(row).toString();
    case ColumnType::Float64:
        return doubleText(std::bit_cast<double>(m_words[row]));
    case ColumnType::Timestamp:
        return timestampText(m_words[row]);
    default:
        return numberText(m_words[row]);
    }
}

void Builder::ColumnBuilder::refuse(std::string_view value) const
{
    throw std::invalid_argument("列 " + m_name + " 的值“" + std::string(shortened(value)) + "”不是可以存放的" + std::string(nameOf(*m_type))
        + "，请检查该列的数据或语句");
}

Chunk Builder::ColumnBuilder::seal()
{
    Chunk chunk;
    const bool empty = m_nulls == m_rows;
    if (!empty) {
        chunk = sealStore();
        m_firstBlock = false;
    } else if (m_type) {
        discardStore();
    }
    if (m_nulls > 0) {
        m_validity.resize((m_rows + 7) / 8);
        if (m_rows % 8 != 0)
            m_validity.back() &= std::uint8_t((1u << (m_rows % 8)) - 1);
        chunk.validity = Buffer::adopt(std::move(m_validity));
        m_validity = {};
    }
    m_rows = 0;
    m_nulls = 0;
    beginBlock();
    return chunk;
}

Chunk Builder::ColumnBuilder::sealStore()
{
    if (*m_type == ColumnType::Text)
        return m_texts.seal();
    if (*m_type == ColumnType::Decimal) {
        Chunk chunk = m_decimals.seal();
        m_largestScale = std::max<int>(m_largestScale, chunk.scale);
        if (chunk.width > sizeof(std::int64_t))
            m_wholeDigits = std::max(m_wholeDigits, wholeDigitsOf(chunk, m_rows));
        return chunk;
    }
    if (m_words.capacity() > m_words.size() * 2)
        m_words.shrink_to_fit();
    Chunk chunk;
    chunk.width = sizeof(std::int64_t);
    chunk.values = Buffer::adopt(std::move(m_words));
    m_words = {};
    return chunk;
}

/// Nothing but nulls was stored.
void Builder::ColumnBuilder::discardStore()
{
    m_words.clear();
    m_decimals = {};
    m_texts.beginBlock();
}

void Builder::ColumnBuilder::complete(Chunk &chunk, std::uint32_t rows) const
{
    static const auto zeros = std::make_shared<const std::vector<std::uint64_t>>(Packet::blockRows + 1);
    if (chunk.values.as<void>())
        return;
    const bool plain = field().type == ColumnType::Text && !m_texts.usesDictionary();
    chunk.width = plain ? 0 : field().type == ColumnType::Text ? sizeof(std::uint16_t) : sizeof(std::int64_t);
    chunk.values = Buffer(zeros, zeros->data(), chunk.width * std::size_t(rows));
    if (plain)
        chunk.offsets = Buffer(zeros, zeros->data(), (rows + std::size_t(1)) * sizeof(std::uint32_t));
}

void Builder::ColumnBuilder::fix(Rows rows)
{
    const bool moreFollows = rows == Rows::MoreFollow;
    if (!m_type)
        m_type = ColumnType::Text;
    if (m_type == ColumnType::Text && m_firstBlock)
        m_texts.stayPlain();
    if (moreFollows && m_type == ColumnType::Int64 && !m_declared)
        m_type = ColumnType::Decimal;
    if (moreFollows && m_type == ColumnType::Decimal) {
        const int generous = m_declaredScale ? *m_declaredScale + spareScale : anyScale;
        m_largestScale = std::max(m_largestScale, std::min(generous, mostDigits - m_wholeDigits));
    }
    m_declared = true;
    m_words = {};
    beginBlock();
}

Field Builder::ColumnBuilder::field() const
{
    const ColumnType type = m_type.value_or(ColumnType::Text);
    return { m_name, type, type == ColumnType::Text && m_texts.usesDictionary(), m_largestScale };
}

std::shared_ptr<const Dictionary> Builder::ColumnBuilder::takeDictionary()
{
    return field().dictionary ? m_texts.takeDictionary() : nullptr;
}

} // namespace packet
