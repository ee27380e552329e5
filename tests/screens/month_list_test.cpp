#include "tests/screens/screen_test.h"

#include <QProcess>
#include <QTemporaryDir>

namespace {

const QString lastMonth = QStringLiteral("where a.scan_date between to_date('2026-02-01 00:00:00','yyyy-mm-dd hh24:mi:ss') and "
                                         "to_date('2026-02-28 23:59:59','yyyy-mm-dd hh24:mi:ss')");
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
    static QString statement(const QString &index, const QString &where)
    {
        return u"select /*+index(a," + index
            + u")*/b.area_name,a.PRE_OR_NEXT_STATION,count(a.bill_code) as bill_count,sum(case when a.SUB_BILL_CODE is null then a.WEIGHT "
              "else 0 end) as WEIGHT from TAB_SCAN_SEND a left join tab_site b on a.PRE_OR_NEXT_STATION=b.site_name "
            + where + u" group by b.area_name,a.PRE_OR_NEXT_STATION order by b.area_name,a.PRE_OR_NEXT_STATION";
    }
};

TEST_F(MonthSendBill, AsksForTheLastMonthAndByItsConditions)
{
    expectDefaults({ { "DBDateTimeEditEh1", u"2026-02-01 00:00:00" }, { "DBDateTimeEditEh2", u"2026-02-28 23:59:59" },
        { "DBLookupComboboxEh3", u"北京" }, { "DBComboBoxEh3", u"全部" }, { "DBLookupComboboxEh5", u"" } });
    EXPECT_FALSE(
        m_client.obey(QStringLiteral("get"), { { QStringLiteral("control"), QStringLiteral("DBComboBoxEh3") } })[u"enabled"].toBool());
    const auto expected = [](const QString &added) {
        return statement(QStringLiteral("TAB_SCAN_SEND_I3"), lastMonth + u" and a.scan_site='北京'" + added);
    };
    EXPECT_EQ(query(), QStringList(expected({})));
    expectConditions({ { "DBLookupComboboxEh5", u"上海中心", u" and a.PRE_OR_NEXT_STATION='上海中心'" },
                         { "DBComboBoxEh4", u"班车", u" and a.class='班车'" }, { "DBComboBoxEh1", u"", u" and a.GOODS_TYPE=''" },
                         { "DBComboBoxEh2", u"陆运件", u" and a.FAST_TYPE='陆运件'" },
                         { "DBLookupComboboxEh1", u"上海静安", u" and b.SEND_SITE='上海静安'" },
                         { "DBLookupComboboxEh4", u"上海静安", u" and b.DISPATCH_SITE='上海静安'" } },
        expected);
    m_client.set(QStringLiteral("DBLookupComboboxEh3"), QString());
    expectRefusal(QStringLiteral("详细：扫描网点必须选择！|月发件清单|48"), QStringLiteral("DBLookupComboboxEh3"));
}

TEST_F(MonthSendBill, AListOfWaybillsAsksForTheLoginSiteAloneAndItsDetailByTheSameIndex)
{
    const QString bill = answerOf(QStringLiteral("select min(bill_code) from tab_scan_send where scan_site='北京'"));
    m_client.set(QStringLiteral("DBLookupComboboxEh1"), QStringLiteral("上海静安"));
    tick(QStringLiteral("InputList1.CheckBox1"), true);
    list({ bill, QStringLiteral("0") });
    const QString where = u"where a.bill_code in ('0','" + bill + u"') and a.scan_site='北京'";
    EXPECT_EQ(query(), QStringList(statement(QStringLiteral("TAB_SCAN_SEND_I"), where)));
    const QString station = column(summary, QStringLiteral("PRE_OR_NEXT_STATION")).value(0);
    EXPECT_EQ(page(QStringLiteral("TabSheet2")),
        QStringList(u"select /*+index(a,TAB_SCAN_SEND_I)*/a.*,nvl(b.TOPAYMENT,0) as TOPAYMENT from tab_scan_send a left join tab_bill b on "
                    "a.bill_code=b.bill_code "
            + where + u" and a.PRE_OR_NEXT_STATION='" + station + u"' order by a.scan_site,a.PRE_OR_NEXT_STATION"));
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

TEST_F(MonthSendAtTheHub, TheAreaOfThePreviousStationIsAConditionAndTheListsPrint)
{
    m_client.set(QStringLiteral("DBComboBoxEh3"), QStringLiteral("上海片区"));
    EXPECT_EQ(query(),
        QStringList(statement(QStringLiteral("TAB_SCAN_SEND_I3"),
            lastMonth
                + u" and a.scan_site='北京市内部' and exists(select /*+index(c,TAB_SCAN_COME_I)*/  1 from tab_scan_come c where  "
                  "c.bill_code =a.bill_code and  c.scan_site ='北京市内部' and exists (select /*+index(b,TAB_SITE_U)*/ 1 from tab_site b "
                  "where  b.site_name = c.pre_or_next_station  and b.area_name ='上海片区') )")));
    EXPECT_EQ(happened(QStringLiteral("error"), { QStringLiteral("text") }), QStringList());
    m_client.set(QStringLiteral("DBComboBoxEh3"), QStringLiteral("全部"));
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
    const QString head
        = QStringLiteral("select /*+index(a,TAB_SCAN_REC_I3)*/a.DISPATCH_OR_SEND_MAN,a.CUSTOMER_NAME,sum(case when "
                         "a.SUB_BILL_CODE is null then nvl(a.WEIGHT,0) else 0 end) as WEIGHT,count(a.BILL_CODE) as bill_count,"
                         "sum(nvl(TRANSFER_OR_DISPATCH_FEE,0)) as TRANSFER_OR_DISPATCH_FEE from tab_scan_rec a ");
    const QString where = lastMonth + u" and a.scan_site='北京'";
    const QString tail = QStringLiteral(" group by a.DISPATCH_OR_SEND_MAN,a.CUSTOMER_NAME order by a.DISPATCH_OR_SEND_MAN,a.CUSTOMER_NAME");
    EXPECT_EQ(query(), QStringList(head + where + tail));
    expectConditions(
        { { "DBComboBoxEh1", u"文件", u" and a.GOODS_TYPE='文件'" }, { "DBComboBoxEh2", u"陆运件", u" and a.FAST_TYPE='陆运件'" },
            { "DBLookupComboboxEh1", u"上海静安", u" and a.SEND_SITE='上海静安'" },
            { "DBLookupComboboxEh4", u"上海静安", u" and a.DISPATCH_SITE='上海静安'" }, { "DBComboBoxEh4", u"", u" and a.class=''" } },
        [&](const QString &added) -> QString { return head + where + added + tail; });
    for (const char *control : { "DBComboBoxEh1", "DBComboBoxEh2", "DBComboBoxEh4" })
        m_client.set(QString::fromLatin1(control), QStringLiteral("全部"));
    for (const char *control : { "DBLookupComboboxEh1", "DBLookupComboboxEh4" })
        m_client.set(QString::fromLatin1(control), QString());
    query();
    const QStringList customers = column(summary, QStringLiteral("CUSTOMER_NAME"));
    const QStringList couriers = column(summary, QStringLiteral("DISPATCH_OR_SEND_MAN"));
    const QStringList weights = column(summary, QStringLiteral("weight"));
    const int casual = int(customers.indexOf(QString()));
    ASSERT_GE(casual, 0);
    EXPECT_EQ(doubleClick(summary, casual, QStringLiteral("CUSTOMER_NAME")),
        QStringList(
            u"select /*+index(a,TAB_SCAN_REC_I3)*/a.*,nvl(b.TOPAYMENT,0) as TOPAYMENT,nvl(b.GOODS_PAYMENT,0) as GOODS_PAYMENT,(case "
            "when a.SUB_BILL_CODE is null then nvl(a.WEIGHT,0) else 0 end) as WEIGHT1 from tab_scan_rec a left join tab_bill b on "
            "a.bill_code=b.bill_code "
            + where + u" and a.DISPATCH_OR_SEND_MAN='" + couriers[casual]
            + u"' and nvl(a.CUSTOMER_NAME,'*')=nvl('','*') order by a.DISPATCH_OR_SEND_MAN,a.CUSTOMER_NAME,a.bill_code"));
    EXPECT_EQ(footer(details, QStringLiteral("WEIGHT1")).toDouble(), weights[casual].toDouble());
    page(QStringLiteral("TabSheet1"));
    expectEveryDetailAddsUp(summary, details, QStringLiteral("bill_count"),
        { { "weight", "WEIGHT1" }, { "TRANSFER_OR_DISPATCH_FEE", "TRANSFER_OR_DISPATCH_FEE" } });
    drillIntoTheLargest();
    expectEveryWaybillIn(printed(QStringLiteral("Button2")));
    EXPECT_EQ(m_reportFile, QStringLiteral("RecBill.frf"));
}

} // namespace
