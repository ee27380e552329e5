#include "demo/options.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

using namespace demo;

namespace {

Options read(const std::vector<std::string> &arguments) { return readOptions(arguments, 1000); }

} // namespace

TEST(Options, HaveDefaults)
{
    const auto settings = read({ "a.db" }).settings;
    EXPECT_EQ(settings.path, "a.db");
    EXPECT_EQ(settings.waybills, 20000u);
    EXPECT_EQ(settings.days, 0);
    EXPECT_EQ(settings.asOf, 1000);
    EXPECT_FALSE(settings.replaces);
}

TEST(Options, AreReadInAnyOrder)
{
    const auto settings
        = read({ "--seed=9", "a.db", "--force", "--as-of", "1980-01-01 00:00:05", "--days", "3", "--waybills", "7" }).settings;
    EXPECT_EQ(settings.path, "a.db");
    EXPECT_EQ(settings.seed, 9u);
    EXPECT_EQ(settings.waybills, 7u);
    EXPECT_EQ(settings.days, 3);
    EXPECT_EQ(settings.asOf, 315532805);
    EXPECT_TRUE(settings.replaces);
}

TEST(Options, SayWhatIsWrong)
{
    struct Case {
        std::vector<std::string> arguments;
        std::string message;
    };
    const std::vector<Case> cases {
        { {}, "没有给出输出文件。用 --help 查看用法。" },
        { { "a.db", "b.db" }, "只能给出一个输出文件，多了“b.db”。" },
        { { "--what" }, "没有“--what”这个选项。用 --help 查看全部选项。" },
        { { "a.db", "--seed" }, "选项“--seed”后面缺少数。" },
        { { "a.db", "--force=yes" }, "选项“--force”不带参数。" },
        { { "a.db", "--waybills", "0" }, "--waybills 要求 1 到 100000000 的整数，不能是“0”。" },
        { { "a.db", "--days", "3x" }, "--days 要求 1 到 3660 的整数，不能是“3x”。" },
        { { "a.db", "--as-of", "2026-02-30" }, "--as-of 要求日期，如 2026-03-15 或 \"2026-03-15 18:00:00\"，不能是“2026-02-30”。" },
    };
    for (const auto &[arguments, message] : cases)
        EXPECT_THAT([&arguments = arguments] { read(arguments); }, testing::ThrowsMessage<std::invalid_argument>(message));
    EXPECT_TRUE(read({ "--help" }).wantsHelp);
}
