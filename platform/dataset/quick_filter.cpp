#include "platform/dataset/quick_filter.h"

#include "platform/dataset/text_pattern.h"

#include <algorithm>
#include <array>
#include <functional>
#include <span>
#include <unordered_map>
#include <unordered_set>

using packet::ColumnType;

namespace platform {

namespace {

struct TextHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>()(text); }
};

constexpr qsizetype longestNumber = 60; ///< letters; no cell shows a longer one

using TextTest = std::function<bool(std::string_view)>;

bool isNumeric(ColumnType type) { return type != ColumnType::Text && type != ColumnType::Timestamp; }

/// Looks at the cells of one column.
class ColumnTest {
public:
    ColumnTest(const RowOverlay &rows, std::size_t column, TextTest test)
        : m_rows(rows)
        , m_column(column)
        , m_isText(rows.packet().schema()[column].type == ColumnType::Text)
        , m_test(std::move(test))
        , m_passesNull(m_test({}))
    {
        const packet::Dictionary *dictionary = rows.packet().dictionary(column);
        for (std::size_t index = 0; dictionary && index < dictionary->size(); ++index)
            m_table.push_back(m_test(dictionary->at(index)));
        m_isPossible = m_table.empty() || m_passesNull || std::ranges::find(m_table, 1) != m_table.end();
    }

    bool isPossible() const { return m_isPossible; } ///< false when no row of the packet can pass

    bool passes(std::uint32_t row) const
    {
        if (m_rows.isNull(m_column, row))
            return m_passesNull;
        return passesText(row);
    }

    /// Adds to `any` for each row of a block of the packet whether it passes.
    void addTo(std::uint8_t *any, std::size_t block) const
    {
        const packet::Packet &packet = m_rows.packet();
        const packet::Chunk &chunk = packet.blocks()[block].columns[m_column];
        const auto base = std::uint32_t(block * packet::Packet::blockRows);
        for (std::uint32_t row = 0; row < packet.blocks()[block].rows; ++row) {
            if (chunk.isNull(row))
                any[row] |= std::uint8_t(m_passesNull);
            else if (!m_table.empty())
                any[row] |= chunk.index(row) < m_table.size() ? m_table[chunk.index(row)] : std::uint8_t(0);
            else
                any[row] |= std::uint8_t(passesText(base + row));
        }
    }

private:
    bool passesText(std::uint32_t row) const
    {
        if (m_isText)
            return m_test(m_rows.text(m_column, row));
        m_buffer.clear();
        m_rows.appendText(m_column, row, m_buffer);
        return m_test(m_buffer);
    }

    const RowOverlay &m_rows;
    std::size_t m_column;
    bool m_isText;
    TextTest m_test;
    bool m_passesNull;
    bool m_isPossible;
    std::vector<std::uint8_t> m_table; ///< for each text of the dictionary whether it passes
    mutable std::string m_buffer;
};

TextTest testOfValues(const QuickFilter::Values &values)
{
    std::unordered_set<std::string, TextHash, std::equal_to<>> texts;
    for (const QString &text : values.texts)
        texts.insert(text.toStdString());
    return [texts = std::move(texts), those = values.keep == QuickFilter::Keep::Those](
               std::string_view text) { return texts.contains(text) == those; };
}

/// A person types a number as it is shown, "1,234.50", where the cell says 1234.5.
TextTest testOfNumber(QString typed)
{
    typed.remove(u',');
    const auto isOfNumber = [](QChar letter) { return (letter >= u'0' && letter <= u'9') || letter == u'.' || letter == u'-'; };
    if (typed.isEmpty() || typed.size() > longestNumber || !std::ranges::all_of(typed, isOfNumber))
        return [](std::string_view) { return false; };
    const qsizetype point = typed.indexOf(u'.');
    const auto decimals = point < 0 ? std::size_t(0) : std::size_t(typed.size() - point - 1);
    return [pattern = TextPattern(typed), decimals, padded = std::string()](std::string_view text) mutable {
        const std::size_t in = text.find('.');
        const std::size_t has = in == std::string_view::npos ? 0 : text.size() - in - 1;
        if (text.empty() || has >= decimals)
            return pattern.matches(text);
        padded = text;
        if (in == std::string_view::npos)
            padded += '.';
        padded.append(decimals - has, '0');
        return pattern.matches(std::string_view(padded));
    };
}

/// For each source row whether it has passed all tests so far.
class Marks {
public:
    explicit Marks(const RowOverlay &rows)
        : m_rows(rows)
        , m_passes(rows.rowCount(), 1)
    {
    }

    /// Keeps the rows that pass one of the tests.
    void keep(std::span<const ColumnTest> tests)
    {
        if (m_rows.isPlain())
            return keepPlain(tests);
        for (std::uint32_t row = 0; row < m_rows.rowCount(); ++row)
            m_passes[row] &= std::uint8_t(std::ranges::any_of(tests, [row](const ColumnTest &test) { return test.passes(row); }));
    }
    std::uint8_t operator[](std::uint32_t row) const { return m_passes[row]; } ///< 1 or 0

private:
    void keepPlain(std::span<const ColumnTest> tests)
    {
        std::vector<std::uint8_t> any(packet::Packet::blockRows);
        std::uint8_t *passes = m_passes.data();
        for (std::size_t block = 0; block < m_rows.packet().blocks().size(); ++block) {
            std::ranges::fill(any, 0);
            for (const ColumnTest &test : tests) {
                if (test.isPossible())
                    test.addTo(any.data(), block);
            }
            const std::uint32_t rows = m_rows.packet().blocks()[block].rows;
            std::transform(passes, passes + rows, any.data(), passes, std::bit_and<std::uint8_t>());
            passes += rows;
        }
    }

    const RowOverlay &m_rows;
    std::vector<std::uint8_t> m_passes;
};

std::vector<ColumnTest> textTests(const QuickFilter &filter, const RowOverlay &rows)
{
    std::vector<ColumnTest> tests;
    for (const QString &name : filter.fieldNames) {
        const int column = rows.packet().indexOf(name.toStdString());
        if (column < 0)
            continue;
        if (isNumeric(rows.packet().schema()[std::size_t(column)].type))
            tests.emplace_back(rows, std::size_t(column), testOfNumber(filter.text));
        else
            tests.emplace_back(rows, std::size_t(column),
                [pattern = TextPattern(filter.text, TextPattern::Match::Anywhere, Qt::CaseInsensitive, HanText::AlsoAsRead)](
                    std::string_view text) { return pattern.matches(text); });
    }
    return tests;
}

} // namespace

std::vector<std::uint32_t> passingRows(const QuickFilter &filter, const RowOverlay &rows, const std::vector<std::uint32_t> *order)
{
    Marks marks(rows);
    for (const QuickFilter::Values &values : filter.values) {
        const int column = rows.packet().indexOf(values.fieldName.toStdString());
        if (column >= 0)
            marks.keep(std::array { ColumnTest(rows, std::size_t(column), testOfValues(values)) });
    }
    if (!filter.text.isEmpty())
        marks.keep(textTests(filter, rows));
    std::vector<std::uint32_t> passing(order ? order->size() : rows.rowCount());
    std::size_t count = 0;
    for (std::size_t at = 0; at < passing.size(); ++at) {
        const std::uint32_t row = order ? (*order)[at] : std::uint32_t(at);
        passing[count] = row;
        count += marks[row];
    }
    passing.resize(count);
    passing.shrink_to_fit();
    return passing;
}

std::vector<ValueCount> countValues(const RowOverlay &rows, std::size_t column, const std::vector<std::uint32_t> &among, std::size_t most)
{
    std::unordered_map<std::string, int, TextHash, std::equal_to<>> counts;
    std::string text;
    for (const std::uint32_t row : among) {
        text.clear();
        rows.appendText(column, row, text);
        if (const auto known = counts.find(std::string_view(text)); known != counts.end())
            ++known->second;
        else if (counts.size() < most)
            counts.emplace(text, 1);
    }
    std::vector<ValueCount> values;
    for (const auto &[shown, count] : counts)
        values.push_back({ QString::fromStdString(shown), count });
    return values;
}

} // namespace platform
