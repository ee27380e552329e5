#include "engine/sqlite/regexp.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using engine::Regexp;

/// "begin-end" of the match, "none", or "error".
std::string matchOf(std::u32string_view pattern, std::u32string_view text)
{
    try {
        const auto match = Regexp(pattern, false).find(text, 0);
        return match ? std::to_string(match->begin) + "-" + std::to_string(match->end) : "none";
    } catch (const std::invalid_argument &) {
        return "error";
    }
}

TEST(Regexp, FindsTheLongestOfTheLeftmostMatches)
{
    struct Case {
        const char32_t *pattern;
        const char32_t *text;
        const char *expected;
    };
    const Case cases[] = {
        { U"abc", U"xxabcabc", "2-5" },
        { U"a|ab|abc", U"xabcd", "1-4" },
        { U"a*", U"baaa", "0-0" },
        { U"a+", U"baaa", "1-4" },
        { U"(ab){2,3}", U"abababab", "0-6" },
        { U"a{2}", U"aaa", "0-2" },
        { U"a{2,}", U"aaa", "0-3" },
        { U"x?y", U"y", "0-1" },
        { U"^b", U"ab", "none" },
        { U"b$", U"ab", "1-2" },
        { U"^$", U"", "0-0" },
        { U"[^0-9]", U"12北3", "2-3" },
        { U"[]x]", U"a]", "1-2" },
        { U"[a-]", U"-", "0-1" },
        { U"[[:digit:][:upper:]]+", U"abC12d", "2-5" },
        { U"\\d\\.\\w", U"x1.a", "1-4" },
        { U"a.c", U"a\nc", "none" },
        { U"(a|b)*c", U"ababc", "0-5" },
        { U"((a*)*)*b", U"aaaaaaaaaaaaaaaaaaaaaaaaaaaac", "none" },
        { U"(|a){3}$", U"aa", "0-2" },
        { U"(", U"", "error" },
        { U"a)", U"", "error" },
        { U"[a", U"", "error" },
        { U"[z-a]", U"", "error" },
        { U"*a", U"", "error" },
        { U"a{3,2}", U"", "error" },
        { U"a{999}", U"", "error" },
        { U"[[:nothing:]]", U"", "error" },
        { U"(a)\\1", U"", "error" },
        { U"((((a{255}){255}){255}){255}){255}", U"", "error" },
        { U"(((((){255}){255}){255}){255}){255}", U"", "error" },
    };
    for (const Case &test : cases)
        EXPECT_EQ(matchOf(test.pattern, test.text), test.expected)
            << std::string(test.pattern, test.pattern + std::u32string_view(test.pattern).size());
}

TEST(Regexp, HostilePatternsEndInTimeProportionalToTheText)
{
    // A backtracking matcher would need 2^20000 steps here, a recursive one 20,000 frames.
    const std::u32string text(20000, U'a');
    EXPECT_EQ(matchOf(U"^(a|a)*(a|aa)+$", text), "0-20000");
    EXPECT_EQ(matchOf(U"(a*)*(a*)*b", text), "none");
    EXPECT_EQ(matchOf(std::u32string(300, U'('), U"a"), "error");
    EXPECT_EQ(matchOf(std::u32string(600, U'a'), U"a"), "error");
}

TEST(Regexp, CaseCanBeIgnored)
{
    EXPECT_TRUE(Regexp(U"[a-c]X", true).find(U"Bx", 0));
    EXPECT_FALSE(Regexp(U"[^a]", true).find(U"A", 0));
}

} // namespace
