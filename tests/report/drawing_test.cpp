#include "tests/report/report_rows.h"

#include "platform/report/layout/bar_code.h"
#include "platform/report/layout/chart.h"
#include "platform/report/layout/text_face.h"
#include "platform/report/output/page_exports.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QImage>
#include <QTemporaryDir>

#include <algorithm>
#include <limits>
#include <tuple>

using namespace report;

namespace {

/// A page with one chart or bar code in a box of 80 x 40 mm, over the rows of a table.
Page drawn(const QByteArray &object, const std::string &table, const QByteArray &bandKind = "summary")
{
    TCustomClientDataSet rows;
    rows.setData(packetOf(table));
    BarCodeObject barCodes;
    ChartObject charts;
    const QByteArray master = bandKind == "master" ? QByteArray() : QByteArray("band master\nheight = 1\n");
    PreparedReport prepared(smallReport(master + "band " + bandKind + "\nheight = 40\n" + object), &rows, { &barCodes, &charts });
    prepared.prepareAllPages();
    return prepared.page(prepared.pageCount() - 1);
}

QByteArray chart(const QByteArray &kind) { return "chart\nbox = 0 0 80 40\nkind = " + kind + "\nlabel = CODE\nvalue = V\n"; }

QStringList textsOf(const Page &page)
{
    QStringList texts;
    for (const Primitive &primitive : page) {
        if (primitive.shape == Shape::Text)
            texts.append(primitive.text);
    }
    return texts;
}

/// Across the box nothing may stick out, and down it no more than the writing on a bar's top.
void expectInside(const Page &page, const char *what)
{
    ASSERT_FALSE(page.isEmpty()) << what;
    for (const Primitive &primitive : page) {
        const QRect bounds = primitive.shape == Shape::Polygon ? primitive.points.boundingRect() : primitive.box;
        EXPECT_GE(bounds.x(), 1000) << what;
        EXPECT_LE(bounds.x() + bounds.width(), 1000 + 80 * millimetre + 50) << what;
        EXPECT_GE(bounds.y(), 1000 - 5 * millimetre) << what;
        EXPECT_LE(bounds.y() + bounds.height(), 9000) << what;
        EXPECT_GE(primitive.box.width(), 0) << what;
    }
}

TEST(Charts, StayInTheirBoxWhateverTheNumbersAre)
{
    std::string many = "CODE:text,V:decimal\n";
    for (int row = 0; row < 500; ++row)
        many += "网点" + std::to_string(row) + "," + std::to_string(row % 7) + "\n";
    const std::pair<const char *, std::string> tables[] = {
        { "one", "CODE:text,V:decimal\nA,5\n" },
        { "zero", "CODE:text,V:decimal\nA,0\nB,0\n" },
        { "negative", "CODE:text,V:decimal\nA,-3\nB,-1000\n" },
        { "mixed", "CODE:text,V:decimal\nA,-3\nB,1000000\nC,0.001\n" },
        { "huge", "CODE:text,V:decimal\nA,99999999999999999999999999999999999\nB,1\n" },
        { "tiny", "CODE:text,V:decimal\nA,0.0000000000000000000000000000001\nB,0\n" },
        { "null", "CODE:text,V:decimal\nA,\n,5\n" },
        { "many", many },
    };
    for (const char *kind : { "bars", "lines", "pie" }) {
        for (const auto &[name, table] : tables)
            expectInside(drawn(chart(kind), table), qPrintable(QString::fromLatin1(kind) + u' ' + QString::fromLatin1(name)));
    }
}

TEST(Charts, SharesAndRestsAreThoseOfTheRows)
{
    EXPECT_EQ(textsOf(drawn(chart("pie"), "CODE:text,V:decimal\nA,1\nB,-8\nA,2\nC,1\n")),
        (QStringList { QStringLiteral("A 75.0%"), QStringLiteral("B 0.0%"), QStringLiteral("C 25.0%") }));
    EXPECT_EQ(textsOf(drawn(chart("pie"), "CODE:text,V:decimal\nA,0\nB,-8\n")), QStringList(QStringLiteral("没有数据")));
    EXPECT_EQ(textsOf(drawn(chart("bars"), "CODE:text,V:decimal\n")), QStringList(QStringLiteral("没有数据")));
    // What comes after the sixtieth label is counted up: five more of one each are the greatest bar.
    std::string table = "CODE:text,V:decimal\n";
    for (int row = 0; row < 65; ++row)
        table += "L" + std::to_string(row) + ",1\n";
    EXPECT_TRUE(textsOf(drawn(chart("bars"), table)).contains(QStringLiteral("5")));
}

TEST(Charts, ASumOfTooManyDigitsIsAMessage)
{
    std::string table = "CODE:text,V:decimal\n";
    for (int row = 0; row < 2000; ++row)
        table += "A,99999999999999999999999999999999999\n";
    EXPECT_TRUE(errorOf([&] { drawn(chart("bars"), table); }).contains(u"位数太多"));
}

QByteArray barCode(const QByteArray &kind, const QByteArray &box = "0 0 80 40")
{
    return "barcode 条码\nbox = " + box + "\ncode = " + kind + "\ntext = [CODE]\n";
}

TEST(BarCodes, AreDrawnInTheirBoxOrRefusedWithTheRow)
{
    const std::tuple<const char *, const char *, bool> cases[] = {
        { "code128", "268004223517", true },
        { "code128", "a", true },
        { "code128", "运单", false },
        { "code39", "ABC-123", true },
        { "code39", "运单", false },
        { "ean13", "6901234567892", true },
        { "ean13", "6901234567891", false }, // its check digit is wrong
        { "ean13", "12a", false },
        { "qr", "运单 268004223517，上海市浦东新区", true },
    };
    for (const auto &[kind, text, valid] : cases) {
        Page page;
        const QString error
            = errorOf([&, kind = kind] { page = drawn(barCode(kind), std::string("CODE:text\n") + text + "\n", "master"); });
        EXPECT_EQ(error.isEmpty(), valid) << kind << text << error.toStdString();
        if (valid)
            expectInside(page, kind);
        else
            EXPECT_TRUE(error.contains(u"“条码”，第 1 行数据")) << error.toStdString();
    }
    EXPECT_TRUE(drawn(barCode("qr"), "CODE:text\n\n", "master").isEmpty());
    EXPECT_NO_THROW(drawn(barCode("code128", "0 0 0 0"), "CODE:text\n268\n", "master"));
    EXPECT_TRUE(errorOf([] { drawn(barCode("qr"), "CODE:text\n" + std::string(5000, 'x') + "\n", "master"); }).contains(u"不能印成条码"));
}

TEST(Wrapping, KeepsEveryCharacterAndEveryLineFits)
{
    const TextFace face(Style {});
    const int width = 2000;
    const QString texts[] = {
        QStringLiteral("上海市浦东新区张江高科技园区（易碎）！小心轻放，签收人：本人。"),
        QStringLiteral("the quick brown fox jumps over the lazy dog 268004223517268004223517268004223517"),
        QString(300, u'W'),
        QStringLiteral("第一行\n\n第三行，很长很长很长很长很长很长很长很长很长很长很长很长很长很长"),
        QStringLiteral("😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀"),
        QStringLiteral("سلام سلام سلام سلام سلام سلام سلام سلام سلام سلام"),
        QString(),
    };
    for (const QString &text : texts) {
        const QString wrapped = face.wrapped(text, width);
        EXPECT_EQ(QString(wrapped).remove(QChar(QChar::LineSeparator)), text);
        for (const QString &line : QString(wrapped).replace(u'\n', QChar::LineSeparator).split(QChar(QChar::LineSeparator))) {
            EXPECT_FALSE(!line.isEmpty() && QStringLiteral("，。！）").contains(line.front())) << line.toStdString();
            EXPECT_FALSE(!line.isEmpty() && (line.front().isLowSurrogate() || line.back().isHighSurrogate())) << line.toStdString();
        }
    }
    for (const QString &line : face.wrapped(texts[0] + texts[1] + texts[2], width).split(QChar(QChar::LineSeparator)))
        EXPECT_LE(face.width(line), width - 2 * textPadding) << line.toStdString();
    // Narrower than any character: one a line, and an end.
    EXPECT_EQ(face.wrapped(QString(50, u'长'), 1).count(QChar(QChar::LineSeparator)), 49);
}

TEST(Wrapping, CostsGrowNoFasterThanTheText)
{
    const TextFace face(Style {});
    const auto seconds = [&face](const QString &text) {
        qint64 best = std::numeric_limits<qint64>::max();
        for (int round = 0; round < 3; ++round) {
            QElapsedTimer elapsed;
            elapsed.start();
            EXPECT_GT(face.wrapped(text, 3000).size(), text.size());
            best = std::min(best, elapsed.nsecsElapsed());
        }
        return double(best);
    };
    for (const QString &unit : { QStringLiteral("运"), QStringLiteral("W"), QStringLiteral("a ") })
        EXPECT_LT(seconds(unit.repeated(1'000'000)), 40 * seconds(unit.repeated(100'000))) << unit.toStdString();
}

/// A report file with one picture, in a folder with files of every kind.
class Pictures : public testing::Test {
protected:
    Pictures()
    {
        QImage image(20, 10, QImage::Format_RGB32);
        image.fill(Qt::red);
        image.save(path(QStringLiteral("徽标.png")));
        put(QStringLiteral("broken.png"), QByteArray("\x89PNG\r\n\x1a\n and nothing else"));
        put(QStringLiteral("huge.png"), QByteArray((8 << 20) + 1, 'x'));
        QDir(m_directory.path()).mkdir(QStringLiteral("reports"));
        image.save(path(QStringLiteral("reports/徽标.png")));
        m_rows.setData(numberedRows(1));
    }
    QString path(const QString &name) const { return m_directory.filePath(name); }
    void put(const QString &name, const QByteArray &bytes) const
    {
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
    }
    /// The picture of the page on which `name` stands in red or not at all.
    QImage page(const QString &name)
    {
        const QByteArray text
            = "report 1\npage\npaper = 100 100\nmargins = 10 10 10 10\nband master\nheight = 20\npicture\nbox = 0 0 40 20\n"
              "file = "
            + name.toUtf8() + "\nend\n";
        PreparedReport prepared(parseDefinition(text, path(QStringLiteral("reports/t.frf"))), &m_rows);
        JpegExport().exportReport(prepared, path(QStringLiteral("page.jpg")));
        return QImage(path(QStringLiteral("page.jpg")));
    }

    QTemporaryDir m_directory;
    TCustomClientDataSet m_rows;
};

TEST_F(Pictures, StandBesideTheReportAndNowhereElse)
{
    const QColor red = page(QStringLiteral("徽标.png")).pixelColor(150, 100);
    EXPECT_TRUE(red.red() > 200 && red.green() < 60) << red.name().toStdString();
    const QString elsewhere[] { QStringLiteral("../徽标.png"), path(QStringLiteral("徽标.png")), QStringLiteral("./徽标.png"), QString() };
    for (const QString &name : elsewhere)
        EXPECT_TRUE(errorOf([&] { page(name); }).contains(u"报表文件旁边的文件名")) << name.toStdString();
    EXPECT_TRUE(errorOf([&] { page(QStringLiteral("没有.png")); }).contains(u"“没有.png”打不开"));
}

TEST_F(Pictures, ThatAreNoneLeaveTheirBoxEmpty)
{
    QFile::rename(path(QStringLiteral("broken.png")), path(QStringLiteral("reports/broken.png")));
    QFile::rename(path(QStringLiteral("huge.png")), path(QStringLiteral("reports/huge.png")));
    EXPECT_EQ(page(QStringLiteral("broken.png")).pixelColor(150, 100), QColor(Qt::white));
    EXPECT_TRUE(errorOf([&] { page(QStringLiteral("huge.png")); }).contains(u"超过 8 MB"));
}

} // namespace
