#include "support.h"

#include <memory>

namespace packet::test {

void Recorder::begin(const std::vector<Field> &fields)
{
    begun = true;
    schema = fields;
}

void Recorder::block(const Block &block, std::span<const Dictionary *const> dictionaries)
{
    std::vector<std::shared_ptr<const Dictionary>> copies;
    for (const Dictionary *dictionary : dictionaries)
        copies.push_back(dictionary ? std::make_shared<const Dictionary>(*dictionary) : nullptr);
    for (auto &row : cells(Packet(schema, { block }, copies, false)))
        rows.push_back(std::move(row));
    rowsAtBlock.push_back(rowsSent);
}

void Recorder::end(bool isTruncated)
{
    ended = true;
    truncated = isTruncated;
}

std::string cell(const Packet &packet, std::size_t column, std::size_t row)
{
    std::string text;
    packet.appendText(column, row, text);
    return packet.isNull(column, row) ? "null" : text;
}

std::vector<std::vector<std::string>> cells(const Packet &packet)
{
    std::vector<std::vector<std::string>> rows(packet.rowCount());
    for (std::size_t row = 0; row < rows.size(); ++row) {
        for (std::size_t column = 0; column < packet.columnCount(); ++column)
            rows[row].push_back(cell(packet, column, row));
    }
    return rows;
}

} // namespace packet::test
