#include "packet/text.h"

#include <gtest/gtest.h>

#include <string>

namespace {

TEST(JsonText, IsValidWhateverTheBytesAre)
{
    const std::string bad = "\uFFFD";
    const std::pair<std::string, std::string> cases[] = {
        { "", "\"\"" },
        { "运单\"268\\004\"", "\"运单\\\"268\\\\004\\\"\"" },
        { std::string("\0\n\x1f\x7f", 4), "\"\\u0000\\u000a\\u001f\x7f\"" },
        { "😀é", "\"😀é\"" },
        // Broken bytes: a stray one, an overlong slash, a surrogate, a character that is cut off.
        { "中\xFF\xC0\xAF\xED\xA0\x80", "\"中" + bad + bad + bad + bad + bad + bad + "\"" },
        { "a\xE4\xB8", "\"a" + bad + bad + "\"" },
        { "\xE4\xB8\"中", "\"" + bad + bad + "\\\"中\"" },
    };
    for (const auto &[text, expected] : cases) {
        std::string written;
        packet::appendJsonText(text, written);
        EXPECT_EQ(written, expected);
    }
}

} // namespace
