#include "plugin/view/udm_Print.h"

#include "platform/toolkit/plugin_interface.h"
#include "platform/toolkit/screen.h"
#include "tests/plugin/fake_host.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>

#include <functional>
#include <memory>

using namespace platform;

namespace {

const QByteArray heading = "report 1\nband title\nheight = 30\nmemo ReportTitle\nbox = 0 0 90 5\ntext = \" 月发件清单 \"\n"
                           "memo PrintMan\nbox = 0 5 90 5\ntext = \"打印人： \"\nmemo PrintSite\nbox = 0 10 90 5\ntext = 打印网点：\n"
                           "memo PrintDateTime\nbox = 0 15 90 5\ntext = 打印时间：\nmemo Memo2\nbox = 0 20 90 5\n";
const QByteArray rows = "band master\nheight = 10\nmemo Bill\nbox = 0 0 40 5\ntext = [NAME]\n";

/// Prints three rows, the second being current, through report files that stand beside the test program.
class Print : public testing::Test {
protected:
    Print()
    {
        m_host.serverDateTime = 46096.6875; // 2026-03-15 16:30
        m_errors = QObject::connect(Application, &TApplication::happened, [this](const QString &kind, const QVariantMap &particulars) {
            if (kind == u"error")
                m_host.log.append(particulars[QStringLiteral("text")].toString());
        });
        m_host.addValue("employeeName", QStringLiteral("张[三]"));
        m_host.addValue("employeeCode", QStringLiteral("0108"));
        m_host.addValue("CompanyName", QStringLiteral("凯络速递"));
        m_module = std::make_unique<Tdm_Print>();
        m_rows.setData(textColumn("NAME", { QStringLiteral("甲"), QStringLiteral("乙"), QStringLiteral("丙") }));
        m_rows.next();
        QDir(Application->directory()).mkpath(QStringLiteral("Report"));
        report::setPreviewResponder([this](const report::PreviewRequest &request) {
            ++m_previews;
            request.report.prepareAllPages();
            m_texts = request.report.namedTexts();
            m_firstPage = request.report.texts(0);
        });
    }
    ~Print() override
    {
        report::setPreviewResponder({});
        QObject::disconnect(m_errors);
        QFile::remove(path());
    }
    static QString fileName() { return QStringLiteral("print_test.frf"); }
    static QString path() { return QDir::toNativeSeparators(Application->directory() + u"/Report/" + fileName()); }

    QStringList print(const QByteArray &report, const std::function<void()> &hook = {})
    {
        QFile file(path());
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(report) == report.size());
        file.close();
        m_host.log.clear();
        m_module->PrintReport(&m_rows, fileName(), hook);
        return m_host.log;
    }
    void expectUntouched()
    {
        EXPECT_EQ(m_rows.fieldByName(u"NAME")->asString(), QStringLiteral("乙"));
        EXPECT_FALSE(m_rows.controlsDisabled());
        EXPECT_EQ(Screen->cursor(), crDefault);
    }

    FakeHost m_host;
    TClientDataSetEx m_rows;
    std::unique_ptr<Tdm_Print> m_module;
    int m_previews = 0;
    QMap<QString, QString> m_texts;
    QStringList m_firstPage;
    QMetaObject::Connection m_errors;
};

TEST_F(Print, FillsTheHeadingLetsTheScreenAddItsTextsAndComesBackToItsRow)
{
    const auto hook = [this] { m_module->frReport->findObject(u"Memo2")->setText(QStringLiteral("扫描时间")); };
    const QByteArray footer = "band page-footer\nheight = 10\nmemo PrintPage\nbox = 0 0 90 5\ntext = 页码\n";
    EXPECT_EQ(print(heading + rows + footer + "end\n", hook), QStringList());
    EXPECT_TRUE(m_texts.take(QStringLiteral("PrintDateTime")).startsWith(u"打印时间：2026-03-15 16:30:"));
    EXPECT_EQ(m_texts,
        (QMap<QString, QString> { { QStringLiteral("Bill"), QStringLiteral("甲") }, { QStringLiteral("Memo2"), QStringLiteral("扫描时间") },
            { QStringLiteral("PrintMan"), QStringLiteral("打印人：张[三](0108)") },
            { QStringLiteral("PrintPage"), QStringLiteral("第1页/共1页") },
            { QStringLiteral("PrintSite"), QStringLiteral("打印网点：北京") },
            { QStringLiteral("ReportTitle"), QStringLiteral("凯络速递月发件清单") } }));
    expectUntouched();
    EXPECT_EQ(print("report 1\n" + rows + "end\n"), QStringList()) << "no heading at all";
    EXPECT_EQ(m_texts, (QMap<QString, QString> { { QStringLiteral("Bill"), QStringLiteral("甲") } }));
}

TEST_F(Print, TellsToWhichSummaryRowTheRowsBelong)
{
    m_rows.setProperty(published_by_screen::summaryRow, QStringLiteral("上一站=[北京]，票数=3"));
    const QString line = QStringLiteral("汇总行：上一站=[北京]，票数=3");
    EXPECT_EQ(print(heading + rows + "end\n"), QStringList());
    EXPECT_EQ(m_firstPage.indexOf(line), 4) << "below the heading: " << m_firstPage.join(u'|').toStdString();
    EXPECT_EQ(print("report 1\n" + rows + "end\n"), QStringList());
    EXPECT_EQ(m_firstPage.value(0), line) << "no heading at all";
}

TEST_F(Print, RefusesToPrintNothingAndNamesAMissingFile)
{
    m_module->PrintReport(&m_rows, QStringLiteral("没有.frf"));
    EXPECT_EQ(m_host.log,
        QStringList(u"message 详细：报表文件\"" + QDir::toNativeSeparators(Application->directory() + u"/Report/没有.frf")
            + u"\"不存在！|打印报表|48"));
    expectUntouched();
    const QStringList refusal(QStringLiteral("message 详细：没有可打印的数据！|打印报表|48"));
    m_rows.setData(textColumn("NAME", {}));
    EXPECT_EQ(print(heading + rows + "end\n"), refusal);
    m_rows.close();
    EXPECT_EQ(print(heading + rows + "end\n"), refusal);
    EXPECT_EQ(m_previews, 0);
}

TEST_F(Print, ABrokenReportIsToldWithItsPlaceAndNothingIsLeftBehind)
{
    const struct {
        QByteArray report;
        QString place;
    } broken[] {
        { QByteArray("PK\3\4\0\0", 6), QStringLiteral("第 1 行第 5 列：不是 UTF-8 文本") },
        { "report 1\nband master\nheight = 5\n  button B\nend\n", QStringLiteral("第 4 行第 3 列：不认识的对象“button”") },
        { "report 1\n" + QByteArray(rows).replace("NAME", "NOBODY") + "end\n",
            QStringLiteral("第 6 行第 9 列：“Bill”：数据中没有字段“NOBODY”") },
        { "report 1\n" + QByteArray(rows).replace("NAME", "NAME +") + "end\n", QStringLiteral("第 6 行第 15 列：表达式不完整") },
        { "report 1\n" + rows, QStringLiteral("第 7 行第 1 列：缺少最后一行“end”") },
    };
    for (const auto &[report, place] : broken) {
        const QStringList log = print(report);
        ASSERT_EQ(log.size(), 1) << place.toStdString();
        EXPECT_TRUE(log[0].contains(place) && log[0].contains(fileName())) << log[0].toStdString();
        expectUntouched();
    }
    // What cannot be added up is only seen while rows are laid out.
    EXPECT_TRUE(
        print("report 1\n" + QByteArray(rows).replace("NAME", "NAME * 2") + "end\n").value(0).contains(QStringLiteral("“甲”不是数字")));
    expectUntouched();
    EXPECT_EQ(m_previews, 0);
    EXPECT_TRUE(
        print("report 1\n" + rows + "end\n", [] { throw Exception(QStringLiteral("不行")); }).value(0).contains(QStringLiteral("不行")));
    expectUntouched();
    EXPECT_EQ(print("report 1\n" + rows + "end\n"), QStringList()) << "and the next one prints";
    EXPECT_EQ(m_previews, 1);
}

} // namespace
