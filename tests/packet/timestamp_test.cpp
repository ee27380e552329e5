#include "packet/packet.h"

#include <gtest/gtest.h>

namespace {

std::string roundTrip(std::string_view text)
{
    const auto seconds = packet::parseTimestamp(text);
    std::string out;
    if (!seconds)
        return "none";
    packet::appendTimestamp(*seconds, out);
    return out;
}

TEST(Timestamp, ReadsAndWritesDates)
{
    EXPECT_EQ(packet::parseTimestamp("2024-03-05 10:07:59"), 1709633279);
    EXPECT_EQ(packet::parseTimestamp("1969-12-31 23:59:59"), -1);
    const std::pair<const char *, const char *> cases[] = {
        { "2024-03-05 10:07:59", "2024-03-05 10:07:59" },
        { "2024-03-05", "2024-03-05 00:00:00" },
        { "2024-03-05 10:07", "2024-03-05 10:07:00" },
        { "2024-02-29", "2024-02-29 00:00:00" },
        { "0001-01-01", "0001-01-01 00:00:00" },
        { "9999-12-31 23:59:59", "9999-12-31 23:59:59" },
        { "2023-02-29", "none" },
        { "2024-02-30", "none" },
        { "2024-13-01", "none" },
        { "2024-00-01", "none" },
        { "2024-03-05 24:00:00", "none" },
        { "2024-03-05 10:60:00", "none" },
        { "2024-03-05T10:07:59", "none" },
        { "2024-03-05 ", "none" },
        { "2024-3-5", "none" },
        { "2024-03-05 10:07:59.5", "none" },
        { "", "none" },
    };
    for (const auto &[text, expected] : cases)
        EXPECT_EQ(roundTrip(text), expected) << text;
}

} // namespace
