// Writes a stream and the cells that a reader has to find in it: packet_samples STREAM CELLS.

#include "tests/packet/support.h"
#include "tests/packet/wire_support.h"

#include <fstream>

using namespace packet;

int main(int argc, char **argv)
{
    if (argc != 3)
        return 2;
    constexpr std::size_t rows = 3 * Packet::blockRows + 17;
    const PacketPtr packet = test::everyType(rows);
    const test::Bytes bytes = test::streamed(test::everyColumn(), [](Builder &builder) { test::addEveryType(builder, rows); });
    std::ofstream(argv[1], std::ios::binary).write(reinterpret_cast<const char *>(bytes.data()), std::streamsize(bytes.size()));
    std::ofstream cells(argv[2], std::ios::binary);
    const auto writeLine = [&cells](const std::vector<std::string> &line) {
        for (std::size_t column = 0; column < line.size(); ++column)
            cells << (column > 0 ? "\t" : "") << line[column];
        cells << '\n';
    };
    std::vector<std::string> names;
    for (const Field &field : packet->schema())
        names.push_back(field.name);
    writeLine(names);
    for (const auto &row : test::cells(*packet))
        writeLine(row);
    return cells.good() ? 0 : 1;
}
