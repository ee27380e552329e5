// Sorts, sums and filters a million arrival scans in a dataset as the grid does, beside Qt's proxy model over ready values,
// Qt's query model, and a bare sort of ready keys.

#include "bench/pairs.h"
#include "bench/scan_rows.h"
#include "packet/builder.h"
#include "platform/dataset/quick_filter.h"

#include <QAbstractTableModel>
#include <QApplication>
#include <QSet>
#include <QSortFilterProxyModel>
#include <QStandardItemModel>
#include <QTemporaryDir>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <numeric>

namespace {

constexpr int rounds = 7;
constexpr int slowRounds = 3; ///< beside the proxy's sort by text, which takes seconds

/// The columns that are sorted by, as ready values: the cheapest model that a proxy can have.
class ReadyModel : public QAbstractTableModel {
public:
    enum Column { Bill, Site, Weight };

    explicit ReadyModel(const TDataSet &dataSet)
    {
        const int bill = dataSet.fieldByName(u"BILL_CODE")->index();
        const int site = dataSet.fieldByName(u"SCAN_SITE")->index();
        const int weight = dataSet.fieldByName(u"WEIGHT")->index();
        QSet<QString> sites; // so that equal names share their text
        for (int row = 0; row < dataSet.recordCount(); ++row) {
            m_bills.push_back(dataSet.text(bill, row));

            m_sites.push_back(*sites.insert(dataSet.text(site, row)));
            m_weights.push_back(dataSet.number(weight, row)->toDouble());
        }
    }

    int rowCount(const QModelIndex &parent = {}) const override { return parent.isValid() ? 0 : int(m_bills.size()); }
    int columnCount(const QModelIndex &parent = {}) const override { return parent.isValid() ? 0 : 3; }
    QVariant data(const QModelIndex &index, int role) const override
    {
        if (role != Qt::DisplayRole)
            return {};
        const auto row = std::size_t(index.row());
        return index.column() == Bill ? QVariant(m_bills[row]) : index.column() == Site ? QVariant(m_sites[row]) : QVariant(m_weights[row]);
    }

    const QString &bill(int row) const { return m_bills[std::size_t(row)]; }
    const QString &site(int row) const { return m_sites[std::size_t(row)]; }
    double weight(int row) const { return m_weights[std::size_t(row)]; }

private:
    std::vector<QString> m_bills;
    std::vector<QString> m_sites;
    std::vector<double> m_weights;
};

struct NumberKey {
    std::uint64_t key;
    std::uint32_t row;
    bool operator<(const NumberKey &other) const { return key < other.key; }
};

struct TextKey {
    std::uint64_t prefix; ///< the 8 bytes behind what all texts share
    std::string_view text;
    std::uint32_t row;
    bool operator<(const TextKey &other) const { return prefix != other.prefix ? prefix < other.prefix : text < other.text; }
};

struct PairKey {
    std::uint64_t site;
    std::uint64_t weight;
    std::uint32_t row;
    bool operator<(const PairKey &other) const { return site != other.site ? site < other.site : weight < other.weight; }
};

/// Sorts ready keys with their row numbers: unique ones by std::sort, others by std::stable_sort. Reading the columns and
/// making the keys, which the dataset does in each round, is left out here; so is copying them afresh before each round.
template <class Key>
class BareSort {
public:
    BareSort(std::vector<Key> keys, bool isUnique)
        : m_keys(std::move(keys))
        , m_isUnique(isUnique)
    {
    }

    Side side()
    {
        Side side { "bare sort of ready keys", [this] { sort(); } };
        side.prepare = [this] { m_sorted = m_keys; };
        return side;
    }

    /// Ends the program unless the dataset shows the rows in the order that the bare sort found.
    void check(const TDataSet &dataSet, const ReadyModel &model) const
    {
        const int bill = dataSet.fieldByName(u"BILL_CODE")->index();
        for (int row = 0; row < dataSet.recordCount(); row += 997) {
            if (dataSet.text(bill, row) != model.bill(int(m_sorted[std::size_t(row)].row)))
                failWith(QStringLiteral("row %1 is another one").arg(row));
        }
    }

private:
    void sort()
    {
        if (m_isUnique)
            std::sort(m_sorted.begin(), m_sorted.end());
        else
            std::stable_sort(m_sorted.begin(), m_sorted.end());
    }

    std::vector<Key> m_keys;
    std::vector<Key> m_sorted;
    bool m_isUnique;
};

class Sorting {
public:
    Sorting(TClientDataSetEx &dataSet, ReadyModel &model)
        : m_dataSet(dataSet)
        , m_model(model)
    {
        m_proxy.setSourceModel(&model);
        for (int row = 0; row < model.rowCount(); ++row)
            m_texts.push_back(model.bill(row).toStdString());
    }

    void run()
    {
        compare("a unique text", "BILL_CODE", { ReadyModel::Bill }, BareSort(billKeys(), true), slowRounds, 40);
        compare("a site", "SCAN_SITE", { ReadyModel::Site }, BareSort(siteKeys(), false), slowRounds, 40);
        compare("a weight", "WEIGHT", { ReadyModel::Weight }, BareSort(weightKeys(), false), rounds, 15);
        compare("a site and a weight", "SCAN_SITE;WEIGHT", { ReadyModel::Weight, ReadyModel::Site }, BareSort(pairKeys(), false),
            slowRounds, 40);
    }

private:
    template <class Key>
    void compare(const char *what, const char *fields, const std::vector<int> &proxyColumns, BareSort<Key> bare, int proxyRounds, int times)
    {
        std::printf("\nsort by %s, %d rounds, %d beside the proxy\n", what, rounds, proxyRounds);
        const QString name = QStringLiteral("SortIndexEh");
        Side grid { "dataset", [&] {
                       m_dataSet.addIndex({ name, QString::fromLatin1(fields), {} });
                       m_dataSet.setIndexName(name);
                   } };
        grid.prepare = [&] { m_dataSet.deleteIndex(name); };
        Side proxy { "proxy", [&] {
                        for (const int column : proxyColumns)
                            m_proxy.sort(column);
                    } };
        proxy.prepare = [&] { m_proxy.sort(-1); };

        std::vector<Side> sides { grid, bare.side() };
        runInTurn(sides, rounds);
        bare.check(m_dataSet, m_model);
        printSides(sides, 1.5);
        sides = { grid, proxy };
        runInTurn(sides, proxyRounds);
        printSides(sides, 1.0 / times);
        m_dataSet.deleteIndex(name);
    }

    static void printSides(const std::vector<Side> &sides, double goal)
    {
        for (const Side &side : sides)
            std::printf("%s: median %.1f ms\n", side.name.c_str(), median(side.milliseconds));
        printRatio(sides[0], sides[1], goal);
    }

    std::vector<TextKey> billKeys() const
    {
        constexpr std::size_t shared = 5; // "77100"
        std::vector<TextKey> keys;
        for (const std::string &text : m_texts) {
            std::uint64_t prefix = 0;
            for (std::size_t at = shared; at < shared + 8; ++at)
                prefix = prefix << 8 | (at < text.size() ? static_cast<unsigned char>(text[at]) : 0);
            keys.push_back({ prefix, text, std::uint32_t(keys.size()) });
        }
        return keys;
    }

    /// The place of each site among the sites: they differ in digits only, which stand in the same order for every reader.
    std::uint64_t siteKey(const QString &site) const
    {
        static const std::vector<std::string> sorted = [this] {
            std::vector<std::string> sites;
            for (int row = 0; row < 10'000; ++row)
                sites.push_back(m_model.site(row).toStdString());
            std::ranges::sort(sites);
            sites.erase(std::unique(sites.begin(), sites.end()), sites.end());
            return sites;
        }();
        static QHash<QString, std::uint64_t> places;
        const auto known = places.constFind(site);
        if (known != places.constEnd())
            return *known;
        const auto place = std::uint64_t(std::ranges::lower_bound(sorted, site.toStdString()) - sorted.begin());
        places.insert(site, place);
        return place;
    }
    std::uint64_t weightKey(int row) const { return std::uint64_t(std::llround(m_model.weight(row) * 100)); }

    std::vector<NumberKey> siteKeys() const
    {
        std::vector<NumberKey> keys;
        for (int row = 0; row < scanCount; ++row)
            keys.push_back({ siteKey(m_model.site(row)), std::uint32_t(row) });
        return keys;
    }
    std::vector<NumberKey> weightKeys() const
    {
        std::vector<NumberKey> keys;
        for (int row = 0; row < scanCount; ++row)
            keys.push_back({ weightKey(row), std::uint32_t(row) });
        return keys;
    }
    std::vector<PairKey> pairKeys() const
    {
        std::vector<PairKey> keys;
        for (int row = 0; row < scanCount; ++row)
            keys.push_back({ siteKey(m_model.site(row)), weightKey(row), std::uint32_t(row) });
        return keys;
    }

    TClientDataSetEx &m_dataSet;
    ReadyModel &m_model;
    QSortFilterProxyModel m_proxy;
    std::vector<std::string> m_texts;
};

void compareFooters(TClientDataSetEx &dataSet, const QString &path)
{
    const QStringList columns { QStringLiteral("PIECE"), QStringLiteral("WEIGHT"), QStringLiteral("TRANSFER_OR_DISPATCH_FEE"),
        QStringLiteral("OTHER_FEE"), QStringLiteral("NET_MANAGE_FEE") };
    QSqlQueryModel model;
    load(model, openForModel(path), u"select " + columns.join(u',') + u" from TAB_SCAN_COME");
    double sumOfDataSet = 0;
    double sumOfModel = 0;
    std::vector<Side> sides {
        { "dataset",
            [&] {
                sumOfDataSet = 0;
                for (const QString &column : columns)
                    sumOfDataSet += dataSet.sum(dataSet.fieldByName(column)->index()).toDouble();
            } },
        { "QSqlQueryModel",
            [&] {
                sumOfModel = 0;
                for (int column = 0; column < columns.size(); ++column) {
                    for (int row = 0; row < scanCount; ++row)
                        sumOfModel += model.data(model.index(row, column)).toDouble();
                }
            } },
    };
    std::printf("\nsum of five columns, %d rounds\n", rounds);
    runInTurn(sides, rounds);
    if (std::abs(sumOfDataSet - sumOfModel) > 1)
        failWith(QStringLiteral("the sums differ: %1, %2").arg(sumOfDataSet).arg(sumOfModel));
    std::printf("dataset: median %.2f ms\nQSqlQueryModel: median %.0f ms\n", median(sides[0].milliseconds), median(sides[1].milliseconds));
    printRatio(sides[0], sides[1], 1.0 / 40);
}

void compareFilters(TClientDataSetEx &dataSet, ReadyModel &model)
{
    QSortFilterProxyModel proxy;
    proxy.setSourceModel(&model);
    proxy.setFilterKeyColumn(ReadyModel::Bill);
    dataSet.setFilter(QStringLiteral("BILL_CODE like '%123%'"));
    std::vector<Side> sides {
        { "dataset", [&] { dataSet.setFiltered(true); } },
        { "proxy",
            [&] {
                proxy.setFilterFixedString(QStringLiteral("123"));
                proxy.rowCount();
            } },
    };
    sides[0].prepare = [&] { dataSet.setFiltered(false); };
    sides[1].prepare = [&] {
        proxy.setFilterFixedString({});
        proxy.rowCount(); // which is what makes it filter the first time
    };
    std::printf("\nfilter by a part of a text, %d rounds\n", rounds);
    runInTurn(sides, rounds);
    if (dataSet.recordCount() != proxy.rowCount())
        failWith(QStringLiteral("%1 rows pass, beside %2").arg(dataSet.recordCount()).arg(proxy.rowCount()));
    std::printf("dataset: median %.1f ms\nproxy: median %.0f ms\n", median(sides[0].milliseconds), median(sides[1].milliseconds));
    printRatio(sides[0], sides[1], 1.0 / 15);
    dataSet.setFiltered(false);
}

/// A person at a grid types a part of a site's name.
void compareQuickFilters(TClientDataSetEx &dataSet, ReadyModel &model)
{
    QSortFilterProxyModel proxy;
    proxy.setSourceModel(&model);
    proxy.setFilterKeyColumn(ReadyModel::Site);
    const QString part = model.data(model.index(0, ReadyModel::Site), Qt::DisplayRole).toString().left(1);
    std::vector<Side> sides {
        { "dataset", [&] { dataSet.setQuickFilter({ .text = part, .fieldNames = { QStringLiteral("SCAN_SITE") } }); } },
        { "proxy",
            [&] {
                proxy.setFilterFixedString(part);
                proxy.rowCount();
            } },
    };
    sides[0].prepare = [&] { dataSet.setQuickFilter({}); };
    sides[1].prepare = [&] {
        proxy.setFilterFixedString({});
        proxy.rowCount();
    };
    std::printf("\nquick filter by a part of a repeated text, %d rounds\n", rounds);
    runInTurn(sides, rounds);
    if (dataSet.recordCount() != proxy.rowCount())
        failWith(QStringLiteral("%1 rows pass, beside %2").arg(dataSet.recordCount()).arg(proxy.rowCount()));
    std::printf("dataset: median %.1f ms\nproxy: median %.0f ms\n", median(sides[0].milliseconds), median(sides[1].milliseconds));
    printRatio(sides[0], sides[1], 1.0 / 50);
    dataSet.setQuickFilter({});
}

/// A person types how a part of a text is read, and all texts are different; the model can only look for what is written.
void comparePinyinFilters()
{
    const QString places = QStringLiteral("北京上海广州深圳成都重庆杭州武汉西安南京天津苏州郑州长沙东莞青岛沈阳宁波昆明厦门");
    packet::Builder rows({ { .name = "ADDRESS", .type = packet::ColumnType::Text } });
    QStandardItemModel model(scanCount, 1);
    for (int row = 0; row < scanCount; ++row) {
        QString text;
        for (int rest = row, at = 0; at < 6; ++at, rest /= 10)
            text += places.mid((rest % 10 + at) * 2, 2);
        text += row % 1000 == 0 ? QStringLiteral("海淀区") : QStringLiteral("中心区");
        rows.addText(0, text.toStdString());
        rows.endRow();
        model.setItem(row, new QStandardItem(text));
    }
    TClientDataSetEx dataSet;
    dataSet.setData(rows.finish(packet::Extent::Whole));
    QSortFilterProxyModel proxy;
    proxy.setSourceModel(&model);
    std::vector<Side> sides {
        { "dataset", [&] { dataSet.setQuickFilter({ .text = QStringLiteral("haidian"), .fieldNames = { QStringLiteral("ADDRESS") } }); } },
        { "proxy",
            [&] {
                proxy.setFilterFixedString(QStringLiteral("海淀"));
                proxy.rowCount();
            } },
    };
    sides[0].prepare = [&] { dataSet.setQuickFilter({}); };
    sides[1].prepare = [&] {
        proxy.setFilterFixedString({});
        proxy.rowCount();
    };
    std::printf("\nquick filter by how a million different texts are read, %d rounds\n", rounds);
    runInTurn(sides, rounds);
    if (dataSet.recordCount() != proxy.rowCount())
        failWith(QStringLiteral("%1 rows pass, beside %2").arg(dataSet.recordCount()).arg(proxy.rowCount()));
    std::printf("dataset: median %.1f ms\nproxy: median %.0f ms\n", median(sides[0].milliseconds), median(sides[1].milliseconds));
    printRatio(sides[0], sides[1], 1.0);
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    const bool wasQuiet = machineIsQuiet();
    const QTemporaryDir directory;
    const QString path = directory.filePath(QStringLiteral("scans.db"));
    generateScans(path);
    TSocketConnectionEx connection;
    connection.setChannel(engineChannel(path));
    TClientDataSetEx dataSet;
    load(dataSet, connection);
    ReadyModel model(dataSet);
    Sorting(dataSet, model).run();
    compareFooters(dataSet, path);
    compareFilters(dataSet, model);
    compareQuickFilters(dataSet, model);
    comparePinyinFilters();
    if (!wasQuiet || !machineIsQuiet())
        std::printf("machine busy: these ratios are no verdict\n");
    return 0;
}
