#include "demo/calendar.h"
#include "demo/schedule.h"

#include <gtest/gtest.h>

#include <array>
#include <map>
#include <string>

using namespace demo;

namespace {

std::string shown(Moment moment)
{
    const auto text = momentText(moment);
    return { text.begin(), text.end() };
}

} // namespace

TEST(Calendar, ReadsWhatItWrites)
{
    struct Case {
        std::string_view text;
        std::string_view read; ///< empty: refused
    };
    constexpr std::array cases {
        Case { "2026-03-15 18:00:01", "2026-03-15 18:00:01" },
        Case { "2024-02-29", "2024-02-29 23:59:59" },
        Case { "2025-02-29", "" },
        Case { "2026-3-15", "" },
        Case { "2026-03-15 24:00:00", "" },
        Case { "2026-03-15 18:00", "" },
        Case { "1969-12-31", "" },
        Case { "", "" },
    };
    for (const auto &[text, read] : cases) {
        const auto moment = parseMoment(text);
        EXPECT_EQ(moment ? shown(*moment) : "", read) << text;
    }
}

TEST(Calendar, FindsThePreviousMonth)
{
    EXPECT_EQ(shown(startOfPreviousMonth(*parseMoment("2026-01-31"))), "2025-12-01 00:00:00");
    EXPECT_EQ(shown(startOfPreviousMonth(*parseMoment("2026-03-31"))), "2026-02-01 00:00:00");
}

TEST(Calendar, KnowsSunday) { EXPECT_EQ(weekday(*parseMoment("2026-11-22")), 0); }

TEST(Schedule, FillsTheDaysUpToTheEnd)
{
    const Moment end = *parseMoment("2026-03-16 10:30:00"); // a Monday morning
    const Schedule schedule(*parseMoment("2026-03-14"), end);
    Random random(1);
    std::map<std::string, int> perDay;
    Moment hourBefore = 0;
    for (std::uint64_t index = 0; index < 10000; ++index) {
        const Moment moment = schedule.pickUp(index, 10000, random);
        ASSERT_LT(moment, end);
        ASSERT_GE(moment / hour, hourBefore);
        hourBefore = moment / hour;
        ++perDay[shown(moment).substr(0, 10)];
    }
    ASSERT_EQ(perDay.size(), 3u);
    EXPECT_GT(perDay["2026-03-14"], perDay["2026-03-15"]); // Saturday, Sunday
    EXPECT_GT(perDay["2026-03-15"], perDay["2026-03-16"]);
}

TEST(Schedule, RefusesANight)
{
    EXPECT_THROW(Schedule(*parseMoment("2026-03-15 00:00:00"), *parseMoment("2026-03-15 07:59:59")), std::invalid_argument);
}
