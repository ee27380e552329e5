#include "packet/builder.h"

#include "packet/column_builder.h"

#include <algorithm>
#include <set>
#include <utility>

namespace packet {

namespace {

std::string upperCase(std::string_view text)
{
    std::string upper(text);
    std::transform(upper.begin(), upper.end(), upper.begin(),
        [](char character) { return character >= 'a' && character <= 'z' ? char(character - ('a' - 'A')) : character; });
    return upper;
}

std::string uniqueName(const std::string &name, std::set<std::string> &taken)
{
    std::string candidate = name;
    for (int number = 1; !taken.insert(upperCase(candidate)).second; ++number)
        candidate = name + "_" + std::to_string(number);
    return candidate;
}

} // namespace

Builder::Builder(std::vector<Column> columns, BlockSink *sink)
    : m_sink(sink)
{
    std::set<std::string> taken;
    m_columns.reserve(columns.size());
    for (Column &column : columns) {
        column.name = uniqueName(column.name, taken);
        m_columns.push_back(std::make_unique<ColumnBuilder>(std::move(column)));
    }
}

Builder::~Builder() = default;

void Builder::addNull(std::size_t column) { m_columns[column]->addNull(); }
void Builder::addText(std::size_t column, std::string_view text) { m_columns[column]->addText(text); }
void Builder::addInteger(std::size_t column, std::int64_t value) { m_columns[column]->addInteger(value); }
void Builder::addDouble(std::size_t column, double value) { m_columns[column]->addDouble(value); }
void Builder::addDecimal(std::size_t column, Decimal value) { m_columns[column]->addDecimal(value); }
void Builder::addTimestamp(std::size_t column, std::int64_t seconds) { m_columns[column]->addTimestamp(seconds); }

void Builder::endRow()
{
    if (++m_openRows == Packet::blockRows) {
        sealBlock();
        if (m_sink && (m_begun || !mustHold())) {
            begin(Rows::MoreFollow);
            send();
        }
    } else if (m_openRows % TextStore::settledRows == 0) {
        for (const auto &column : m_columns)
            column->settle();
    }
}

void Builder::sealBlock()
{
    Block block { m_openRows, {} };
    block.columns.reserve(m_columns.size());
    for (const auto &column : m_columns)
        block.columns.push_back(column->seal());
    m_blocks.push_back(std::move(block));
    m_sealedRows += m_openRows;
    m_openRows = 0;
}

void Builder::completeBlocks()
{
    for (Block &block : m_blocks) {
        for (std::size_t column = 0; column < m_columns.size(); ++column)
            m_columns[column]->complete(block.columns[column], block.rows);
    }
}

std::vector<Field> Builder::schema() const
{
    std::vector<Field> fields;
    for (const auto &column : m_columns)
        fields.push_back(column->field());
    return fields;
}

bool Builder::mustHold() const
{
    return m_blocks.size() < heldBlocks
        && !std::all_of(m_columns.begin(), m_columns.end(), [](const auto &column) { return column->isDecided(); });
}

void Builder::begin(Rows rows)
{
    if (std::exchange(m_begun, true))
        return;
    for (const auto &column : m_columns)
        column->fix(rows);
    m_sink->begin(schema());
}

void Builder::send()
{
    completeBlocks();
    std::vector<const Dictionary *> dictionaries;
    for (const auto &column : m_columns)
        dictionaries.push_back(column->dictionary());
    for (const Block &block : std::exchange(m_blocks, {}))
        m_sink->block(block, dictionaries);
}

std::size_t Builder::rowCount() const { return m_sealedRows + m_openRows; }

PacketPtr Builder::finish(Extent extent)
{
    const bool truncated = extent == Extent::Truncated;
    if (m_openRows > 0)
        sealBlock();
    if (m_sink) {
        begin(Rows::AllThere);
        send();
        m_sink->end(truncated);
        m_columns.clear();
        return nullptr;
    }
    completeBlocks();
    std::vector<Field> fields = schema();
    std::vector<std::shared_ptr<const Dictionary>> dictionaries;
    for (const auto &column : m_columns)
        dictionaries.push_back(column->takeDictionary());
    m_columns.clear();
    return std::make_shared<const Packet>(std::move(fields), std::exchange(m_blocks, {}), std::move(dictionaries), truncated);
}

} // namespace packet
