// What every grid does, on the screen that compares scans: sorting, footers, colours, copying and the layout that stays.

#include "tests/screens/screen_test.h"

#include <QFile>
#include <QJsonDocument>
#include <QTemporaryDir>

#include <algorithm>

namespace {

class ScreenGrid : public ScreenTest {
protected:
    ScreenGrid()
        : ScreenTest(QStringLiteral("frm_ScanContrast"))
    {
        query();
    }

    QJsonObject ask(const QString &what, QJsonObject arguments = {})
    {
        arguments[u"view"] = QStringLiteral("DataView1");
        return m_client.obey(what, arguments);
    }
    QStringList column(const QString &field) { return ScreenTest::column(QStringLiteral("DataView1"), field); }
    void title(const QString &field, const QString &modifiers = {})
    {
        ask(QStringLiteral("title"), { { QStringLiteral("field"), field }, { QStringLiteral("modifiers"), modifiers } });
    }
    QString cell(int row, const QString &field)
    {
        return ask(QStringLiteral("cell"), { { QStringLiteral("row"), row }, { QStringLiteral("field"), field } })[u"text"].toString();
    }
    /// Presses keys in the grid.
    void key(const QString &keys)
    {
        m_client.obey(QStringLiteral("key"),
            { { QStringLiteral("control"), QStringLiteral("DataView1.DataViewGrid") }, { QStringLiteral("key"), keys } });
    }
};

TEST_F(ScreenGrid, MarksSortByOneColumnByTwoAndGiveTheServersOrderBack)
{
    const QString code = QStringLiteral("BILL_CODE");
    const QString station = QStringLiteral("PRE_OR_NEXT_STATION");
    const QStringList served = column(code);
    ASSERT_GT(served.size(), 20);
    title(code);
    QStringList ascending = served;
    std::sort(ascending.begin(), ascending.end());
    EXPECT_EQ(column(code), ascending);
    title(code);
    title(station, QStringLiteral("ctrl"));
    title(station, QStringLiteral("ctrl"));
    QStringList descending = ascending;
    std::reverse(descending.begin(), descending.end());
    EXPECT_EQ(column(code), descending); // the second key decides among equal numbers only

    title(station); // was descending: no mark is left
    EXPECT_EQ(column(code), served);
    title(station);
    title(code, QStringLiteral("ctrl"));
    const QStringList stations = column(station);
    const QStringList codes = column(code);
    for (qsizetype row = 1; row < codes.size(); ++row) {
        if (stations[row] == stations[row - 1])
            EXPECT_LE(codes[row - 1], codes[row]);
        else
            EXPECT_EQ(stations.lastIndexOf(stations[row - 1]), row - 1) << "a station in two places";
    }
    for (const QString &field : { code, code, station, station })
        title(field, QStringLiteral("ctrl"));
    EXPECT_EQ(column(code), served);
    EXPECT_EQ(ask(QStringLiteral("columns"))[u"columns"].toArray()[0][u"sort"].toString(), QStringLiteral("none"));
}

TEST_F(ScreenGrid, AQuickFilterLeavesTheRestOfTheScreenAsItIs)
{
    const QString station = QStringLiteral("PRE_OR_NEXT_STATION");
    const QStringList all = column(station);
    const QString wanted = cell(0, station);
    const auto count = all.count(wanted);
    ASSERT_LT(count, all.size());
    const auto footers = [this] {
        return QString::fromUtf8(QJsonDocument(ask(QStringLiteral("footer"))[u"rows"].toArray()).toJson(QJsonDocument::Compact));
    };
    const QString before = footers();
    key(QStringLiteral("Ctrl+J"));
    EXPECT_EQ(column(station), QStringList(count, wanted));
    EXPECT_TRUE(footers().contains(QStringLiteral("%L1 / %L2").arg(count).arg(all.size()))) << footers().toStdString();
    title(QStringLiteral("BILL_CODE"));
    EXPECT_EQ(column(station), QStringList(count, wanted));
    const QTemporaryDir directory;
    const QString file = directory.filePath(QStringLiteral("a.html"));
    ask(QStringLiteral("export"), { { QStringLiteral("file"), file } });
    QFile exported(file);
    ASSERT_TRUE(exported.open(QIODevice::ReadOnly));
    EXPECT_TRUE(QString::fromUtf8(exported.readAll()).contains(QStringLiteral("已筛选：%L1 行中的 %L2 行").arg(all.size()).arg(count)));

    key(QStringLiteral("Ctrl+Shift+X"));
    EXPECT_EQ(column(station).size(), all.size());
    EXPECT_EQ(footers(), before);
    key(QStringLiteral("Ctrl+Shift+J"));
    EXPECT_LT(column(station).size(), all.size());
    query();
    EXPECT_EQ(column(station).size(), all.size());
}

TEST_F(ScreenGrid, RowsAreStripedCountedAndCopiedWithTheirTitles)
{
    const auto colour = [this](int row) {
        return ask(QStringLiteral("colour"),
            { { QStringLiteral("row"), row }, { QStringLiteral("field"), QStringLiteral("BILL_CODE") } })[u"colour"]
            .toString();
    };
    EXPECT_EQ(colour(0), QStringLiteral("#c4c4ff"));
    EXPECT_EQ(colour(1), QStringLiteral("#ddddff"));
    const QString code = cell(1, QStringLiteral("BILL_CODE"));
    EXPECT_EQ(ask(QStringLiteral("copy"))[u"text"].toString(), code);
    EXPECT_EQ(
        ask(QStringLiteral("copy"), { { QStringLiteral("titles"), true } })[u"text"].toString(), QString(u"运单编号\r\n" + code + u"\r\n"));
    key(QStringLiteral("Ctrl+Space"));
    QStringList copied = ask(QStringLiteral("copy"))[u"text"].toString().split(QStringLiteral("\r\n"), Qt::SkipEmptyParts);
    EXPECT_EQ(copied, column(QStringLiteral("BILL_CODE")));
    EXPECT_EQ(ask(QStringLiteral("footer"), { { QStringLiteral("exact"), true } })[u"rows"].toArray()[1][0].toString(),
        QString::number(copied.size()));
}

TEST_F(ScreenGrid, TypingFindsARowInTheCurrentColumn)
{
    const QStringList codes = column(QStringLiteral("BILL_CODE"));
    cell(0, QStringLiteral("BILL_CODE"));
    const QString wanted = codes[codes.size() / 2];
    for (const QChar digit : wanted)
        key(digit);
    EXPECT_EQ(ask(QStringLiteral("copy"))[u"text"].toString(), wanted);
    EXPECT_TRUE(ask(QStringLiteral("find"), { { QStringLiteral("text"), codes[0].mid(3) } })[u"found"].toBool());
    EXPECT_EQ(ask(QStringLiteral("copy"))[u"text"].toString(), codes[0]);
}

TEST_F(ScreenGrid, ALayoutOfAnEarlierSessionComesBack)
{
    m_client.obey(QStringLiteral("close"));
    const QString path = m_client.settingsDirectory() + QStringLiteral("/WindowsIni/Kelvara1.ini");
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite)) << path.toStdString();
    EXPECT_TRUE(file.readAll().startsWith("[frm_ScanContrast.DataView1.DataViewGrid]\r\nBILL_CODE="));
    file.resize(0);
    file.write("[frm_ScanContrast.DataView1.DataViewGrid]\nFieldIndex=WEIGHT;BILL_CODE;\nWEIGHT=99\nBILL_CODE=0\n"
               "[frm_ScanContrast.DataView1.DataViewGrid.Arrangement]\nHidden=SCAN_SITE;\nFrozen=1\n");
    file.close();
    m_client.obey(QStringLiteral("open"), { { QStringLiteral("screen"), QStringLiteral("frm_ScanContrast101") } });
    const QJsonArray columns = ask(QStringLiteral("columns"))[u"columns"].toArray();
    EXPECT_EQ(columns[0][u"field"].toString(), QStringLiteral("WEIGHT"));
    EXPECT_EQ(columns[0][u"width"].toInt(), 99);
    EXPECT_TRUE(columns[0][u"frozen"].toBool());
    EXPECT_EQ(columns[1][u"field"].toString(), QStringLiteral("BILL_CODE"));
    EXPECT_GT(columns[1][u"width"].toInt(), 0);
    EXPECT_EQ(std::count_if(columns.begin(), columns.end(), [](const QJsonValue &column) { return !column[u"visible"].toBool(); }), 1);
    // The record count stands under the first visible column with data that has no sum.
    EXPECT_EQ(columns[0][u"footers"].toArray()[1][u"kind"].toString(), QStringLiteral("sum"));
    EXPECT_EQ(columns[1][u"footers"].toArray()[1][u"kind"].toString(), QStringLiteral("count"));
    m_client.obey(QStringLiteral("close"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray saved = file.readAll();
    EXPECT_TRUE(saved.contains("FieldIndex=WEIGHT;BILL_CODE;") && saved.contains("WEIGHT=99\r\n")) << saved.constData();
    EXPECT_TRUE(saved.contains("DataViewGrid.Arrangement]\r\nFrozen=1\r\nHidden=SCAN_SITE;\r\n")) << saved.constData();
}

TEST_F(ScreenGrid, AnExportHoldsTheSortedRowsAndTheConditionsOfTheQuery)
{
    const QTemporaryDir directory;
    const auto exported = [&](const QString &name, const QString &encoding) {
        const QString path = directory.filePath(name);
        const QJsonObject reply
            = ask(QStringLiteral("export"), { { QStringLiteral("file"), path }, { QStringLiteral("encoding"), encoding } });
        EXPECT_EQ(reply[u"rows"].toInt(), rowCount(QStringLiteral("DataView1")));
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    };
    title(QStringLiteral("BILL_CODE"));
    m_client.set(QStringLiteral("DBLookupComboboxEh7"), QStringLiteral("发件"));
    m_client.events();
    const QByteArray json = exported(QStringLiteral("a.json"), {});
    QStringList codes;
    for (const QJsonValue &row : QJsonDocument::fromJson(json)[u"rows"].toArray())
        codes.append(row[0].toString());
    EXPECT_EQ(codes, column(QStringLiteral("BILL_CODE")));

    const QString page = QString::fromUtf8(exported(QStringLiteral("a.html"), {}));
    EXPECT_TRUE(page.contains(QStringLiteral("<th>对比目标条件 扫描类型</th><td class=\"t\">到件</td>"))) << "not what was chosen since";
    EXPECT_TRUE(page.contains(QStringLiteral("<th>导出网点</th><td class=\"t\">北京</td>")));
    EXPECT_TRUE(exported(QStringLiteral("a.csv"), QStringLiteral("GB18030")).startsWith("\xD4\xCB\xB5\xA5")); // 运单
    EXPECT_EQ(m_client.events(QStringLiteral("statement")), QJsonArray()) << "asked the server again";
}

} // namespace
