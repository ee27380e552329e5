#pragma once

#include "packet/builder.h"
#include "packet/decimal_store.h"
#include "packet/text_store.h"

#include <memory>

namespace packet {

/// One column of a builder: the open rows of the block at hand in the store of the column's type.
class Builder::ColumnBuilder {
public:
    explicit ColumnBuilder(Column column);

    void addNull();
    void addText(std::string_view text)
    {
        if (m_type == ColumnType::Text && !text.empty())
            storeText(text);
        else
            convertText(text);
    }
    void addInteger(std::int64_t value);
    void addDouble(double value);
    void addDecimal(Decimal value);
    void addTimestamp(std::int64_t seconds);

    /// To be called every TextStore::settledRows rows, in between.
    void settle()
    {
        if (m_type == ColumnType::Text)
            m_texts.settle();
    }
    /// Takes the open rows. A chunk without any value stays empty until complete() sees it, when the type is known for sure.
    Chunk seal();
    void complete(Chunk &chunk, std::uint32_t rows) const;
    bool isDecided() const { return m_declared || !m_firstBlock; }
    /// Between two blocks: the field stays as it is from here on, fit for whatever follows.
    void fix(Rows rows);
    Field field() const;
    const Dictionary *dictionary() const { return field().dictionary ? &m_texts.dictionary() : nullptr; }
    std::shared_ptr<const Dictionary> takeDictionary();

private:
    void decide(ColumnType type);
    void turnToText();
    void turnToDecimal(std::string_view value);
    void store(std::int64_t value);
    template <class Number>
    void storeDecimal(Number value);
    void storeText(std::string_view text)
    {
        if (!m_texts.add(text))
            refuse(text);
        ++m_rows;
    }
    void convertText(std::string_view text);
    void storeAsText(std::string_view text);
    void storeTimestamp(std::string_view text);
    void storeNull();
    Chunk sealStore();
    void discardStore();
    void beginBlock();
    std::string openText(std::size_t row) const;
    bool mayBecomeText() const { return m_firstBlock && !m_declared; }
    [[noreturn]] void refuse(std::string_view value) const;
    bool isNull(std::size_t row) const { return !m_validity.empty() && !(m_validity[row >> 3] >> (row & 7) & 1); }

    std::string m_name;
    std::optional<ColumnType> m_type;
    std::optional<int> m_declaredScale;
    bool m_declared;
    bool m_firstBlock = true; ///< no block with values has been sealed yet
    std::size_t m_rows = 0;
    std::size_t m_nulls = 0;
    std::vector<std::uint8_t> m_validity;
    std::vector<std::int64_t> m_words; ///< Int64, Timestamp, and Float64 by its bits
    DecimalStore m_decimals {};
    TextStore m_texts {};
    int m_largestScale = 0;
    int m_wholeDigits = 0; ///< before the point, of the longest decimal that needs 16 bytes
    char m_date[10] = {}; ///< the date of the last timestamp read from a text
    std::int64_t m_dateSeconds = 0;
};

} // namespace packet
