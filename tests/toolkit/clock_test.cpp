#include "platform/toolkit/clock.h"
#include "platform/toolkit/exception.h"

#include <gtest/gtest.h>

using namespace platform;

namespace {

TEST(Clock, RunsOnFromASetTime)
{
    Clock::set(QDateTime(QDate(2024, 2, 29), QTime(23, 59, 30)));
    EXPECT_EQ(Clock::today(), QDate(2024, 2, 29));
    EXPECT_LT(Clock::now().time(), QTime(23, 59, 59));
    Clock::set({});
    EXPECT_LE(qAbs(Clock::now().secsTo(QDateTime::currentDateTime())), 1);
}

TEST(Clock, ReadsDateTimesAndRefusesWhatIsNone)
{
    const std::pair<const char *, const char *> readable[] = {
        { "2024-03-05 10:07:03", "2024-03-05 10:07:03" },
        { "2024-3-5 9:7:3", "2024-03-05 09:07:03" },
        { " 2024-03-05 10:07 ", "2024-03-05 10:07:00" },
        { "2024-02-29", "2024-02-29 00:00:00" },
    };
    for (const auto &[text, expected] : readable)
        EXPECT_EQ(dateTimeToText(textToDateTime(QString::fromLatin1(text))), QString::fromLatin1(expected)) << text;

    for (const char *text :
        { "", "2023-02-29", "2024-13-01", "2024-01-01 24:00:00", "2024-01-01 10", "05.03.2024", "2024-01-01 10:00:00x" })
        EXPECT_THROW(textToDateTime(QString::fromLatin1(text)), Exception) << text;
}

} // namespace
