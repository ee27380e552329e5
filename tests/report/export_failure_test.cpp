#include "tests/report/report_rows.h"

#include "platform/report/output/html_export.h"
#include "platform/report/output/page_exports.h"
#include "platform/report/output/rtf_export.h"
#include "platform/report/output/spreadsheet_export.h"
#include "platform/report/output/text_exports.h"
#include "platform/toolkit/long_work.h"
#include "tests/support/file_folder.h"
#include "tests/support/small_disk.h"

#include <QFileInfo>
#include <QHash>
#include <QProcess>

#include <memory>

using namespace report;

namespace {

/// Every filter, over a report of two hundred rows on twenty-five pages, beside what a user has there already.
class FailingExport : public testing::TestWithParam<std::shared_ptr<ExportFilter>>, protected FileFolder {
protected:
    FailingExport()
    {
        m_rows.setData(numberedRows(200));
        m_report.emplace(smallReport(band("master", 10, "no[N] 上海市浦东新区[G]")), &m_rows);
        put(m_name, "before");
        // What a careless program would take for its own.
        put(m_name + u".part", "mine");
    }
    void expectWhatWasThere() const
    {
        EXPECT_EQ(contents(m_name), QByteArray("before"));
        EXPECT_EQ(contents(m_name + u".part"), QByteArray("mine"));
        EXPECT_EQ(files().size(), 2) << files().join(u' ').toStdString();
    }
    QString failure(const QString &name)
    {
        return errorOf([&] { GetParam()->exportReport(*m_report, name); });
    }

    const QString m_name = QStringLiteral("清单") + GetParam()->ending();
    TCustomClientDataSet m_rows;
    std::optional<PreparedReport> m_report;
};

TEST_P(FailingExport, CancelledLeavesWhatWasThere)
{
    for (const int pages : { 0, 1, 24 }) {
        EXPECT_THROW(GetParam()->exportReport(*m_report, path(m_name), [pages](int done, int) { return done < pages; }), Abort) << pages;
        expectWhatWasThere();
    }
}

TEST_P(FailingExport, AFullDiskIsNeverASuccess)
{
    GetParam()->exportReport(*m_report, path(QStringLiteral("whole") + GetParam()->ending()));
    QHash<QString, QByteArray> whole;
    qint64 largest = 0;
    for (const QString &name : files()) {
        if (!name.startsWith(u"whole"))
            continue;
        whole.insert(name, contents(name));
        largest = std::max<qint64>(largest, whole[name].size());
        QFile::remove(path(name));
    }
    // Writers hold bytes back before they write: the last of these fail at the very end.
    for (const qint64 room : { qint64(0), qint64(100), largest / 3, largest - 4096, largest - 1 }) {
        const FileSizeLimit limit(std::max<qint64>(0, room));
        const QString message = failure(path(m_name));
        EXPECT_TRUE(message.contains(u"磁盘已满") || message.contains(u"空间不足")) << room << message.toStdString();
        expectWhatWasThere();
    }
}

TEST_P(FailingExport, WhereNothingCanBeWrittenTheFileIsNamed)
{
    const QString nowhere = path(u"没有/" + m_name);
    EXPECT_TRUE(failure(nowhere).contains(QFileInfo(nowhere).path()));
    ASSERT_TRUE(QDir().mkpath(path(QStringLiteral("folder") + GetParam()->ending())));
    if (!dynamic_cast<JpegExport *>(GetParam().get())) { // its pages have names of their own
        EXPECT_TRUE(failure(path(QStringLiteral("folder") + GetParam()->ending())).contains(u"这是一个目录"));
    }
    expectWhatWasThere();
}

TEST_P(FailingExport, AForeignFileBesideItSurvivesASuccess)
{
    GetParam()->exportReport(*m_report, path(m_name));
    EXPECT_EQ(contents(m_name + u".part"), QByteArray("mine"));
    EXPECT_FALSE(files().join(u' ').contains(u"kelvara"));
}

INSTANTIATE_TEST_SUITE_P(Filters, FailingExport,
    testing::Values(std::make_shared<TextExport>(), std::make_shared<CsvExport>(), std::make_shared<SpreadsheetExport>(),
        std::make_shared<RtfExport>(), std::make_shared<HtmlTableExport>(), std::make_shared<JpegExport>(), std::make_shared<PdfExport>()),
    [](const auto &filter) { return filter.param->ending().mid(1).toStdString(); });

/// What the library of workbooks does not tell: its temporary files are cut where the folder for them is full.
TEST(SpreadsheetFailure, AFullTemporaryFolderIsNeverASuccess)
{
    const QTemporaryDir target;
    const QTemporaryDir temporaries;
    TCustomClientDataSet rows;
    rows.setData(numberedRows(3000));
    PreparedReport report(smallReport(band("master", 10, "no[N] 上海市浦东新区[G]")), &rows);
    const QString name = target.filePath(QStringLiteral("清单.xlsx"));
    const QByteArray before = qgetenv("TMPDIR");
    qputenv("TMPDIR", temporaries.path().toUtf8());
    for (const int kilobytes : { 4, 16, 64, 200, 300 }) {
        const SmallDisk disk(temporaries.path(), kilobytes * 1024);
        if (!disk.isMounted()) {
            qputenv("TMPDIR", before);
            GTEST_SKIP() << "only root can mount a small disk";
        }
        const QString message = errorOf([&] { SpreadsheetExport().exportReport(report, name); });
        EXPECT_TRUE(message.contains(u"空间不足") && message.contains(temporaries.path())) << kilobytes << message.toStdString();
        EXPECT_TRUE(QDir(target.path()).isEmpty());
    }
    const SmallDisk roomy(temporaries.path(), 4 * 1024 * 1024);
    SpreadsheetExport().exportReport(report, name);
    qputenv("TMPDIR", before);
    QProcess unzip;
    unzip.start(QStringLiteral("unzip"), { QStringLiteral("-p"), name, QStringLiteral("xl/worksheets/sheet1.xml") });
    ASSERT_TRUE(unzip.waitForFinished() && unzip.exitCode() == 0);
    const QByteArray sheet = unzip.readAllStandardOutput();
    EXPECT_TRUE(sheet.contains("no3000 ") && sheet.endsWith("</worksheet>"));
}

TEST(SavedReportFailure, LeavesWhatWasThere)
{
    const QTemporaryDir directory;
    const QString name = directory.filePath(QStringLiteral("清单.kpages"));
    TCustomClientDataSet rows;
    rows.setData(numberedRows(200));
    PreparedReport(smallReport(band("master", 10, "old[N]")), &rows).save(name);
    PreparedReport report(smallReport(band("master", 10, "new[N]")), &rows);
    const auto expectTheOldOneAlone = [&] {
        EXPECT_EQ(PreparedReport::load(name)->texts(0).value(0), QStringLiteral("old1"));
        EXPECT_EQ(QDir(directory.path()).entryList(QDir::Files | QDir::Hidden).size(), 1);
    };
    EXPECT_EQ(errorOf([&] { report.save(name, [](int pages, int, int) { return pages < 3; }); }), QStringLiteral("保存已取消。"));
    expectTheOldOneAlone();
    for (const int room : { 0, 1000, int(QFileInfo(name).size() - 1) }) {
        const FileSizeLimit limit(room);
        EXPECT_TRUE(errorOf([&] { report.save(name); }).contains(u"磁盘已满")) << room;
        expectTheOldOneAlone();
    }
}

/// No filter leaves out a text because it is long, nor lets it break the rows around it.
TEST(LongCells, AreInEveryExport)
{
    const QTemporaryDir directory;
    const QString longest(40'000, u'长');
    TCustomClientDataSet rows;
    rows.setData(packetOf("CODE:text,NOTE:text\n007,before\n008," + longest.toStdString() + "\n009,after\n"));
    PreparedReport report(
        smallReport("band master\nheight = 10\nmemo\nbox = 0 0 40 10\ntext = [CODE]\nmemo\nbox = 40 0 40 10\ntext = [NOTE]\n"), &rows);
    const auto written = [&](ExportFilter &filter) {
        const QString name = directory.filePath(u'f' + filter.ending());
        filter.exportReport(report, name);
        QFile file(name);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("missing");
    };
    TextExport text;
    EXPECT_EQ(written(text).count("长"), 40'000);
    CsvExport csv;
    EXPECT_EQ(written(csv),
        QByteArray("\xEF\xBB\xBF"
                   "007;before\r\n008;"
            + longest.toUtf8() + "\r\n009;after\r\n"));
    HtmlTableExport html;
    EXPECT_EQ(written(html).count("长"), 40'000);
    RtfExport rtf;
    EXPECT_EQ(written(rtf).count("\\u-27265?"), 40'000);
    PdfExport pdf;
    EXPECT_TRUE(written(pdf).endsWith("%%EOF\n"));
    SpreadsheetExport sheet;
    written(sheet);
    QProcess unzip;
    unzip.start(QStringLiteral("unzip"),
        { QStringLiteral("-p"), directory.filePath(QStringLiteral("f.xlsx")), QStringLiteral("xl/worksheets/sheet1.xml") });
    ASSERT_TRUE(unzip.waitForFinished() && unzip.exitCode() == 0);
    const QString cells = QString::fromUtf8(unzip.readAllStandardOutput());
    EXPECT_TRUE(cells.contains(QString(longest.left(32'766) + u"…</t>")));
    EXPECT_TRUE(cells.contains(u">009</t>"));
}

} // namespace
