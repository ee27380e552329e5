// Types into a lookup over 20,000 sites and measures what each key costs, beside a bare loop of QString::contains over the
// same cells. The goal is 8 ms, which nobody feels, and twice the loop. What the first key costs besides, when the texts are made
// ready for all keys, comes first.

#include "bench/pairs.h"
#include "packet/builder.h"
#include "platform/dataset/client_data_set.h"
#include "platform/editors/lookup_match.h"

#include <QCoreApplication>

#include <algorithm>
#include <cstdio>

using namespace platform;

namespace {

constexpr int siteCount = 20'000;
constexpr int rounds = 15;

packet::PacketPtr sites()
{
    static constexpr const char *cities[]
        = { "北京", "上海", "广州", "深圳", "重庆", "成都", "长沙", "厦门", "杭州", "六安", "蚌埠", "番禺" };
    static constexpr const char *districts[] = { "朝阳", "浦东", "天河", "福田", "江北", "武侯", "岳麓", "思明", "西湖", "金寨", "石楼" };
    static constexpr const char *kinds[] = { "一部", "二部", "分拨中心", "市内部", "中转场", "营业厅", "东站" };
    packet::Builder builder({ { "SITE_CODE", packet::ColumnType::Text }, { "SITE_NAME", packet::ColumnType::Text } });
    for (int site = 0; site < siteCount; ++site) {
        builder.addText(0, std::to_string(100'000 + site * 7));
        builder.addText(1, std::string(cities[site % 12]) + districts[site / 12 % 11] + kinds[site % 7] + std::to_string(site / 132));
        builder.endRow();
    }
    return builder.finish();
}

int containing(const TDataSet &dataSet, const QString &text)
{
    int count = 0;
    for (int row = 0; row < siteCount; ++row) {
        for (int field = 0; field < 2; ++field)
            count += dataSet.text(field, row).contains(text, Qt::CaseInsensitive);
    }
    return count;
}

/// Types a text letter by letter, and prints for each how many rows it finds and what that costs.
void compare(const TDataSet &dataSet, const LookupIndex &index, const QString &typed)
{
    for (qsizetype length = 1; length <= typed.size(); ++length) {
        const QString text = typed.left(length);
        std::size_t found = 0;
        volatile int sink = 0;
        std::vector<Side> sides {
            { "lookup", [&] { found = index.find(text).rows.size(); } },
            { "contains", [&] { sink = sink + containing(dataSet, text); } },
        };
        runInTurn(sides, rounds);
        std::printf("%-10s %6zu rows, %5.2f ms: ", qPrintable(text), found, median(sides[0].milliseconds));
        printRatio(sides[0], sides[1], 2);
    }
}

void measureFirstKey(const TDataSet &dataSet)
{
    volatile int sink = 0;
    std::vector<Side> sides {
        { "making ready",
            [&] {
                sink = sink + int(LookupIndex(dataSet, { 0, { 1 } }).rowsByReading().size());
            } },
        { "contains", [&] { sink = sink + containing(dataSet, QStringLiteral("b")); } },
    };
    runInTurn(sides, rounds);
    std::printf("%s: %5.2f ms\n", sides[0].name.c_str(), median(sides[0].milliseconds));
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const bool wasQuiet = machineIsQuiet();
    TCustomClientDataSet dataSet;
    dataSet.setData(sites());
    std::printf("%d sites, %d rounds; the goal is 8 ms a key\n", siteCount, rounds);
    measureFirstKey(dataSet);
    const LookupIndex index(dataSet, { 0, { 1 } });
    for (const char *typed : { "bjcysnb", "zhong", "北京", "1000" })
        compare(dataSet, index, QString::fromUtf8(typed));
    if (!wasQuiet || !machineIsQuiet())
        std::printf("machine busy: these ratios are no verdict\n");
    return 0;
}
