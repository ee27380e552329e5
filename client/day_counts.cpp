#include "client/day_counts.h"

#include "platform/toolkit/clock.h"
#include "platform/toolkit/exception.h"

using namespace platform;

namespace client {
namespace {

QString quoted(QString text) { return u'\'' + text.replace(u'\'', QStringLiteral("''")) + u'\''; }

/// "a.scan_date between ... and ...", the whole of a day.
QString within(QStringView column, QDate day)
{
    const auto time = [](const QString &text) { return QStringLiteral("to_date('%1','yyyy-mm-dd hh24:mi:ss')").arg(text); };
    return column + u" between " + time(dateToText(day) + u" 00:00:00") + u" and " + time(dateToText(day) + u" 23:59:59");
}

QString scansWithout(QStringView table, const QString &site, QDate day, const QString &missing)
{
    return u"select /*+index(a," + table + u"_I3)*/count(*) from " + table + u" a where " + within(u"a.scan_date", day)
        + u" and a.scan_site=" + quoted(site) + u" and (not exists(" + missing + u"))";
}

QString sameBillIn(QStringView table)
{
    return u"select /*+index(b," + table + u"_I)*/1 from " + table + u" b where b.bill_code=a.bill_code";
}

/// The day and the site of a screen, by its controls.
QList<ConditionValue> conditions(const char16_t *siteControl, const QString &site, QDate day)
{
    return {
        { QStringLiteral("DBDateTimeEditEh1"), QStringLiteral("开始"), dateToText(day) + u" 00:00:00" },
        { QStringLiteral("DBDateTimeEditEh2"), QStringLiteral("结束"), dateToText(day) + u" 23:59:59" },
        { QString::fromUtf16(siteControl), QStringLiteral("网点"), site },
    };
}

DayCount stage(QStringView caption, QStringView present, QStringView missing, const char16_t *choice, const QString &site, QDate day)
{
    return { caption, u"frm_ComeDispContrast", scansWithout(present, site, day, sameBillIn(missing)),
        conditions(u"DBLookupComboboxEh3", site, day)
            << ConditionValue { QString::fromUtf16(choice), caption.toString(), QStringLiteral("1") } };
}

DayCount notArrived(const QString &site, QDate day)
{
    const QString missing = QStringLiteral("select /*+index(b,TAB_SCAN_COME_I)*/1 from TAB_SCAN_COME b where b.bill_code=a.bill_code and "
                                           "b.scan_site=a.PRE_OR_NEXT_STATION");
    return { u"本站有发下站未到", u"frm_SendNextUnCome", scansWithout(u"TAB_SCAN_SEND", site, day, missing),
        conditions(u"DBLookupComboboxEh5", site, day) };
}

DayCount scansWithoutBill(const QString &site, QDate day)
{
    const QString statement = scansWithout(u"TAB_SCAN_COME", site, day,
                                  QStringLiteral("select /*+index(b,TAB_BILL_P)*/1 from tab_bill b where b.bill_code=a.bill_code"))
        + u" and a.scan_type='到件' and (REGEXP_INSTR(a.bill_code,'^((1)[0-9]{7})$|^([A-Za-z]{1}[0-9]{7})$',1,1)=0)";
    return { u"无单有扫描", u"frm_BillContrastScan", statement,
        QList<ConditionValue> { { QStringLiteral("RadioGroup1"), QStringLiteral("对比类型"), QStringLiteral("无单有扫描") },
            { QStringLiteral("DBComboBoxEh1"), QStringLiteral("扫描类型"), QStringLiteral("到件") } }
            + conditions(u"DBLookupComboboxEh5", site, day) };
}

DayCount billsWithoutScan(const QString &site, QDate day)
{
    const QString statement = u"select /*+index(a,TAB_BILL_I)*/count(*) from tab_bill a where " + within(u"a.send_date", day)
        + u" and a.send_site=" + quoted(site) + u" and (not exists(" + sameBillIn(u"TAB_SCAN_REC") + u" and b.scan_site=" + quoted(site)
        + u" and b.scan_type='收件'))";
    return { u"有单无扫描", u"frm_BillContrastScan", statement,
        QList<ConditionValue> { { QStringLiteral("RadioGroup1"), QStringLiteral("对比类型"), QStringLiteral("有单无扫描") },
            { QStringLiteral("DBComboBoxEh1"), QStringLiteral("扫描类型"), QStringLiteral("收件") },
            { QStringLiteral("DBLookupComboboxEh1"), QStringLiteral("扫描网点"), site } }
            + conditions(u"DBLookupComboboxEh5", site, day) };
}

} // namespace

QList<DayCount> dayCounts(const QString &site, QDate day)
{
    return {
        notArrived(site, day),
        stage(u"有到件无派件", u"TAB_SCAN_COME", u"TAB_SCAN_DISP", u"RadioButton1", site, day),
        stage(u"有派件无到件", u"TAB_SCAN_DISP", u"TAB_SCAN_COME", u"RadioButton2", site, day),
        scansWithoutBill(site, day),
        billsWithoutScan(site, day),
    };
}

DayCounter::DayCounter(std::shared_ptr<StatementChannel> channel)
    : m_channel(std::move(channel))
{
}

DayCounter::~DayCounter() = default;

void DayCounter::start(const QList<DayCount> &counts)
{
    if (m_runs)
        return;
    m_runs = true;
    std::vector<std::string> statements;
    for (const DayCount &count : counts)
        statements.push_back(count.statement.toStdString());
    m_thread = std::jthread([this, statements = std::move(statements)](const std::stop_token &stop) {
        for (std::size_t index = 0; index < statements.size() && !stop.stop_requested(); ++index)
            ask(stop, int(index), statements[index]);
        QMetaObject::invokeMethod(
            this, [this] { m_runs = false; }, Qt::QueuedConnection);
    });
}

void DayCounter::stop() { m_thread.request_stop(); }

void DayCounter::ask(const std::stop_token &stop, int index, const std::string &statement)
try {
    const packet::PacketPtr answer = m_channel->run(statement, stop, [](std::int64_t) {});
    if (stop.stop_requested())
        return;
    std::string number;
    answer->appendText(0, 0, number);
    QMetaObject::invokeMethod(
        this, [this, index, number = QString::fromStdString(number).toLongLong()] { Q_EMIT counted(index, number); }, Qt::QueuedConnection);
} catch (const std::exception &exception) {
    if (!stop.stop_requested())
        QMetaObject::invokeMethod(
            this, [this, index, reason = exceptionMessage(exception)] { Q_EMIT failed(index, reason); }, Qt::QueuedConnection);
}

} // namespace client
