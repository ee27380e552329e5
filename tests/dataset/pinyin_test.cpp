#include "platform/dataset/pinyin.h"
#include "platform/dataset/row_order.h"

#include <gtest/gtest.h>

#include <thread>

using namespace platform;

namespace {

std::string readingsOf(const Pinyin &pinyin, char16_t character)
{
    std::string readings;
    for (const Pinyin::Reading reading : pinyin.readings(character))
        readings += (readings.empty() ? "" : " ") + std::string(pinyin.syllable(reading));
    return readings;
}

/// Whether each text comes before the next one.
void expectOrder(const std::vector<std::string_view> &texts)
{
    const auto ranks = rankTexts(texts);
    for (std::size_t at = 1; at < texts.size(); ++at)
        EXPECT_LT(ranks[at - 1], ranks[at]) << texts[at - 1] << " < " << texts[at];
}

TEST(Pinyin, CarriedTableHasNoFaultAndKnowsTheReadingsOfNames)
{
    const Pinyin &table = Pinyin::table();
    EXPECT_EQ(table.faultCount(), 0);
    const std::pair<char16_t, const char *> characters[] = { { u'重', "zhong chong" }, { u'长', "chang zhang" }, { u'厦', "sha xia" },
        { u'行', "xing hang heng" }, { u'乐', "le yue lao" }, { u'都', "du dou" }, { u'单', "dan shan chan" }, { u'曾', "zeng ceng" },
        { u'柏', "bai bo bo" }, { u'番', "fan pan" }, { u'会', "hui kuai" }, { u'蚌', "bang beng" }, { u'六', "liu lu" }, { u'亳', "bo" },
        { u'荥', "xing ying" }, { u'歙', "she xi" }, { u'枞', "zong cong" }, { u'绿', "lv lu" }, { u'兴', "xing xing" }, { u'〇', "ling" },
        { u'A', "" }, { u'，', "" }, { u'龴', "" } };
    for (const auto &[character, readings] : characters)
        EXPECT_EQ(readingsOf(table, character), readings) << int(character);
}

TEST(Pinyin, OrdersTextsAsAChineseReaderDoes)
{
    expectOrder({ "", "0592", "A1", "Beijing", "a", "阿城", "北京", "北京2", "北京市", "北京市内部", "常州", "长沙", "朝阳", "成都", "重庆",
        "大同", "大兴", "单位" });
}

TEST(Pinyin, NamesDecideHowTheirCharactersAreRead)
{
    // Between neighbours that a reading of the single characters would not stand between.
    expectOrder({ "范县", "攀枝花", "番禺", "彭州" });
    expectOrder({ "板桥", "本溪", "蚌埠", "比如" });
    expectOrder({ "辽阳", "六", "龙岩", "鹿泉", "六安", "洛阳" });
    expectOrder({ "江苏丽水", "江苏里水", "江苏丽江" });
    expectOrder({ "沙市", "山东", "单县", "单县城", "上海" });
    expectOrder({ "大厦", "大厦门", "大厦门口" });
    expectOrder({ "夏津", "厦门", "仙居" });
    expectOrder({ "岳阳", "乐清", "云浮" });
    expectOrder({ "台州", "台湾", "太原" });
    expectOrder({ "大成", "大城市", "带子", "大城" });
}

TEST(Pinyin, KeepsTextsApartThatDifferInReadingOnly)
{
    const std::vector<std::string_view> texts { "重庆", "重", "庆", "重庆", "长", "𠮷", "\xE4\xB8", "㐂", "豈", "易", "abc重" };
    const auto ranks = rankTexts(texts);
    for (std::size_t left = 0; left < texts.size(); ++left) {
        for (std::size_t right = 0; right < left; ++right)
            EXPECT_EQ(ranks[left] == ranks[right], texts[left] == texts[right]) << texts[left] << ' ' << texts[right];
    }
}

TEST(Pinyin, FaultyLinesCountForNothingAndTheOthersStand)
{
    const Pinyin pinyin("# comment\nba1 八巴\n\nma3\nma3 马八 x\nma3 马\nzz 坏\nchong2 虫\nzhong4 重中\n- 㐂\n",
        "重 chong2\n重庆 chong2\n重中 chong2 zhong4\n马 xx1\nA ba1\n八\n八马 ba1 ma3\n");
    EXPECT_EQ(pinyin.faultCount(), 7);
    EXPECT_EQ(readingsOf(pinyin, u'重'), "chong zhong");
    EXPECT_EQ(readingsOf(pinyin, u'巴'), "ba");
    EXPECT_EQ(readingsOf(pinyin, u'坏'), "");
    EXPECT_EQ(readingsOf(pinyin, u'㐂'), "");
    for (const char *broken : { "", "\n\n", "zhang3", "\xFF\xFE", "ba1 \xE4\xB8" }) {
        const Pinyin none(broken, "重 chong2\n");
        std::string key;
        none.appendSortKey("重庆A", key);
        EXPECT_EQ(key, "重庆A");
    }
}

TEST(Pinyin, TableIsReadOnceByAllThreads)
{
    const Pinyin *first = nullptr;
    const Pinyin *second = nullptr;
    std::thread thread([&] { first = &Pinyin::table(); });
    second = &Pinyin::table();
    thread.join();
    EXPECT_EQ(first, second);
}

} // namespace
