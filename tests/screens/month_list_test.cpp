#include "tests/screens/screen_test.h"

#include <QProcess>
#include <QTemporaryDir>

namespace {

const QString summary = QStringLiteral("DataView2");
const QString details = QStringLiteral("DataView1");

class MonthList : public ScreenTest {
protected:
    using ScreenTest::ScreenTest;

    /// Presses a print button and returns the text of the PDF that it gives; m_memos holds the named texts.
    QString printed(const QString &button)
    {
        const QString file = m_directory.filePath(QStringLiteral("list.pdf"));
        m_client.events();
        const QJsonObject reply
            = m_client.obey(QStringLiteral("print"), { { QStringLiteral("control"), button }, { QStringLiteral("file"), file } });
        EXPECT_GT(reply[u"pages"].toInt(), 0);
        const QJsonArray prints = m_client.events(QStringLiteral("print"));
        m_memos = prints.isEmpty() ? QJsonObject() : prints[0][u"memos"].toObject();
        m_reportFile = prints.isEmpty() ? QString() : prints[0][u"file"].toString();
        QProcess reader;
        reader.start(QStringLiteral("pdftotext"), { QStringLiteral("-layout"), file, QStringLiteral("-") });
        EXPECT_TRUE(reader.waitForFinished());
        return QString::fromUtf8(reader.readAllStandardOutput());
    }
    /// Drills into the summary row with the most waybills.
    void drillIntoTheLargest()
    {
        const QStringList counts = column(summary, QStringLiteral("bill_count"));
        qsizetype largest = 0;
        for (qsizetype row = 0; row < counts.size(); ++row)
            largest = counts[row].toInt() > counts[largest].toInt() ? row : largest;
        doubleClick(summary, int(largest), QStringLiteral("bill_count"));
        EXPECT_EQ(rowCount(details), counts[largest].toInt());
    }
    void expectEveryWaybillIn(const QString &text)
    {
        const QStringList bills = column(details, QStringLiteral("BILL_CODE"));
        ASSERT_GT(bills.size(), 1);
        const QStringList words = text.simplified().split(u' ');
        for (const QString &bill : bills)
            EXPECT_EQ(words.count(bill), bills.count(bill)) << bill.toStdString();
    }

    /// What is to be collected: once a waybill, however many parcels it has.
    double toBePaid()
    {
        const QStringList parcels = column(details, QStringLiteral("SUB_BILL_CODE"));
        const QStringList payments = column(details, QStringLiteral("TOPAYMENT"));
        double sum = 0;
        for (qsizetype row = 0; row < parcels.size(); ++row)
            sum += parcels[row].isEmpty() ? payments[row].toDouble() : 0;
        return sum;
    }

    QTemporaryDir m_directory;
    QJsonObject m_memos;
    QString m_reportFile;
};

class MonthSendBill : public MonthList {
protected:
    explicit MonthSendBill(const QStringList &options = {})
        : MonthList(QStringLiteral("frm_MonthSendBill"), options)
    {
    }
};

TEST_F(MonthSendBill, AsksForTheLastMonth)
{
    expectDefaults({ { "DBDateTimeEditEh1", u"2026-02-01 00:00:00" }, { "DBDateTimeEditEh2", u"2026-02-28 23:59:59" },
        { "DBLookupComboboxEh3", u"北京" }, { "DBComboBoxEh3", u"全部" }, { "DBLookupComboboxEh5", u"" } });
    EXPECT_FALSE(
        m_client.obey(QStringLiteral("get"), { { QStringLiteral("control"), QStringLiteral("DBComboBoxEh3") } })[u"enabled"].toBool());
}

TEST_F(MonthSendBill, BothListsPrintEveryWaybillWithItsTotalsInTheServersOrder)
{
    m_client.obey(QStringLiteral("click"), { { QStringLiteral("control"), QStringLiteral("Button2") } });
    EXPECT_EQ(m_client.events(QStringLiteral("message")).last()[u"text"].toString(), QStringLiteral("详细：没有可打印的数据！"));
    query();
    expectEveryDetailAddsUp(summary, details, QStringLiteral("bill_count"), {});
    drillIntoTheLargest();
    const QStringList served = column(details, QStringLiteral("BILL_CODE"));
    for (int click = 0; click < 2; ++click)
        m_client.obey(
            QStringLiteral("title"), { { QStringLiteral("view"), details }, { QStringLiteral("field"), QStringLiteral("BILL_CODE") } });
    const QStringList sorted = column(details, QStringLiteral("BILL_CODE"));
    for (const auto &[button, file] : { std::pair("Button2", "SendBill1.frf"), std::pair("Button3", "SendBill2.frf") }) {
        const QString text = printed(QString::fromLatin1(button));
        EXPECT_EQ(m_reportFile, QString::fromLatin1(file));
        expectEveryWaybillIn(text);
        EXPECT_LT(text.indexOf(served.first()), text.indexOf(served.last())) << "printed as the server sent it";
        EXPECT_EQ(m_memos[u"Memo2"].toString(), QStringLiteral("扫描时间：2026-02-01 00:00:00 至 2026-02-28 23:59:59"));
        EXPECT_TRUE(m_memos[u"ReportTitle"].toString().startsWith(u"凯络速递月发件清单"))
            << m_memos[u"ReportTitle"].toString().toStdString();
        EXPECT_EQ(m_memos[u"PrintSite"].toString(), QStringLiteral("打印网点：北京"));
        EXPECT_EQ(m_memos[u"PrintMan"].toString(),
            u"打印人："
                + answerOf(QStringLiteral("select employee_name||'('||employee_code||')' from tab_employee where employee_code=(select "
                                          "min(employee_code) from tab_employee where owner_site='北京')")));
        EXPECT_TRUE(m_memos[u"PrintDateTime"].toString().startsWith(u"打印时间：2026-03-15 16:3"));
        EXPECT_TRUE(m_memos[u"PrintPage"].toString().startsWith(u"第1页/共"));
        EXPECT_EQ(m_memos[u"TotalPIECE"].toString(), footer(details, QStringLiteral("PIECE")));
        EXPECT_EQ(m_memos[u"TotalWEIGHT"].toString().remove(u',').toDouble(), footer(details, QStringLiteral("WEIGHT")).toDouble());
        EXPECT_NEAR(m_memos[u"TotalTOPAYMENT"].toString().remove(u',').toDouble(), toBePaid(), 0.001);
        EXPECT_EQ(column(details, QStringLiteral("BILL_CODE")), sorted) << "the sort is back";
    }
}

class MonthSendAtTheHub : public MonthSendBill {
protected:
    MonthSendAtTheHub()
        : MonthSendBill({ QStringLiteral("--login-site"), QStringLiteral("北京市内部") })
    {
    }
};

TEST_F(MonthSendAtTheHub, TheListsPrint)
{
    query();
    drillIntoTheLargest();
    for (const char *button : { "Button2", "Button3" }) {
        expectEveryWaybillIn(printed(QString::fromLatin1(button)));
        EXPECT_EQ(m_memos[u"PrintSite"].toString(), QStringLiteral("打印网点：北京市内部"));
        EXPECT_EQ(m_memos[u"TotalPIECE"].toString(), footer(details, QStringLiteral("PIECE")));
    }
}

class MonthRecBill : public MonthList {
protected:
    MonthRecBill()
        : MonthList(QStringLiteral("frm_MonthRecBill"))
    {
    }
};

TEST_F(MonthRecBill, SumsByCourierAndCustomerAndPrintsTheDetail)
{
    query();
    const QStringList customers = column(summary, QStringLiteral("CUSTOMER_NAME"));
    const QStringList weights = column(summary, QStringLiteral("weight"));
    const int casual = int(customers.indexOf(QString()));
    ASSERT_GE(casual, 0);
    doubleClick(summary, casual, QStringLiteral("CUSTOMER_NAME"));
    EXPECT_EQ(footer(details, QStringLiteral("WEIGHT1")).toDouble(), weights[casual].toDouble());
    page(QStringLiteral("TabSheet1"));
    expectEveryDetailAddsUp(summary, details, QStringLiteral("bill_count"),
        { { "weight", "WEIGHT1" }, { "TRANSFER_OR_DISPATCH_FEE", "TRANSFER_OR_DISPATCH_FEE" } });
    drillIntoTheLargest();
    expectEveryWaybillIn(printed(QStringLiteral("Button2")));
    EXPECT_EQ(m_reportFile, QStringLiteral("RecBill.frf"));
}

} // namespace
