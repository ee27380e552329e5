#include "plugin/forms/scan/ufrm_ScanContrast.h"

#include "platform/toolkit/clock.h"
#include "plugin/data/host_data.h"
#include "plugin/data/udm_GlobalData.h"
#include "plugin/util/conditions.h"

Tfrm_Basic *frm_ScanContrast = nullptr;

namespace {

const GridColumns scanColumns {
    text("BILL_CODE", u"运单编号", 100),
    text("SUB_BILL_CODE", u"子单号", 100),
    text("OWNER_BAG_NO", u"袋号", 80),
    text("SCAN_TYPE", u"扫描类型", 60),
    text("SCAN_SITE", u"扫描网点", 80),
    time("SCAN_DATE", u"扫描日期", 132),
    text("SCAN_MAN", u"扫描人", 60),
    text("SCAN_MAN_CODE", u"扫描人编号", 72),
    time("REGISTER_DATE", u"录入日期", 132),
    text("DISPATCH_OR_SEND_MAN", u"收/派件员", 66),
    text("SEND_SITE", u"寄件网点", 80),
    text("PRE_OR_NEXT_STATION", u"下一网点", 80),
    text("DISPATCH_SITE", u"目的网点", 80),
    number("PIECE", u"件数", 60).sum(u"总件数"),
    number("WEIGHT", u"重量", 70).sum(u"总重量"),
    text("CLASS", u"班次", 60),
    text("GOODS_TYPE", u"物品类别", 60),
    text("FAST_TYPE", u"快件类型", 60),
    number("TRANSFER_OR_DISPATCH_FEE", u"中转/派件费", 80).sum(u"总金额"),
    number("other_fee", u"应收派件费", 80).sum(u"总金额"),
    number("TOPAYMENT", u"到付款", 70),
    text("REMARK", u"备注", 200),
};

} // namespace

QString Tfrm_ScanContrast::ScanSet::table() const { return GetScanTableName(scanType->text()); }

QString Tfrm_ScanContrast::ScanSet::selectList() const
{
    const QString rangeIndex = table() + (table() == u"TAB_SCAN_OTHER" ? u"_P" : u"_I3");
    QString list = u"select /*+index(@," + rangeIndex
        + u")*/@.bill_code,@.SUB_BILL_CODE,@.OWNER_BAG_NO,@.SCAN_TYPE,"
          "@.SCAN_SITE,@.SCAN_DATE,@.SCAN_MAN,@.SCAN_MAN_CODE,@.REGISTER_DATE,@.DISPATCH_OR_SEND_MAN,"
          "@.SEND_SITE,@.PRE_OR_NEXT_STATION,@.DISPATCH_SITE,@.PIECE,@.WEIGHT,@.CLASS,@.GOODS_TYPE,"
          "@.FAST_TYPE,@.TRANSFER_OR_DISPATCH_FEE,@.other_fee,@.REMARK,nvl(b.TOPAYMENT,0) as TOPAYMENT from "
        + table() + u" @ left join tab_bill b on @.bill_code=b.bill_code ";
    return list.replace(u'@', alias);
}

QString Tfrm_ScanContrast::ScanSet::conditions() const
{
    const auto column = [this](QStringView name) -> QString { return alias + u'.' + name; };
    const auto condition = [&column](QStringView name) -> QString { return u" and " + column(name) + u"='"; };
    return whereBetween(column(u"scan_date"), start, end) + condition(u"scan_site") + site->text() + u'\''
        + (table() == u"TAB_SCAN_OTHER" ? unlessEmpty(condition(u"scan_type"), scanType) : QString())
        + unlessEmpty(condition(u"PRE_OR_NEXT_STATION"), station) + unlessEmpty(condition(u"scan_man"), scanMan)
        + unlessAll(condition(u"class"), shift) + unlessAll(condition(u"GOODS_TYPE"), goodsType)
        + unlessEmpty(condition(u"DISPATCH_OR_SEND_MAN"), courier);
}

QString Tfrm_ScanContrast::ScanSet::existsFor(const ScanSet &other) const
{
    return u"exists(select /*+index(" + QString(alias) + u',' + table() + u"_I)*/1 from " + table() + u' ' + alias + u' ' + conditions()
        + u" and " + alias + u".bill_code=" + other.alias + u".bill_code)";
}

QString Tfrm_ScanContrast::ScanSet::orderByBill() const { return u" order by " + QString(alias) + u".bill_code"; }

Tfrm_ScanContrast::Tfrm_ScanContrast(TComponentOwner *owner)
    : QueryScreen(owner, QStringLiteral("frm_ScanContrast"), u"总部扫描监控")
{
    design();
    FormCreate();
}

void Tfrm_ScanContrast::design()
{
    CheckBox1->setText(QStringLiteral("(&1)启用目标条件对比"));
    CheckBox1->setChecked(true);
    const auto conditions = [](const ScanSet &set) -> QList<ConditionRow> {
        return {
            row(u"扫描网点", set.site),
            row(u"上下网点", set.station),
            row(u"扫描类型", set.scanType),
            row(u"物品类别", set.goodsType),
            row(u"扫描人", set.scanMan),
            row(u"班次", set.shift),
            row(u"收派件员", set.courier),
        };
    };
    arrange({
        { box(GroupBox1, u"对比源条件", 4, conditions(m_source)),
            range(GroupBox2, u"源条件时间范围(3天以内)", DBDateTimeEditEh1, DBDateTimeEditEh2) },
        { box(GroupBox3, u"对比目标条件", 4, conditions(m_target)),
            range(GroupBox4, u"目标条件时间范围(3天以内)", DBDateTimeEditEh3, DBDateTimeEditEh4), row(CheckBox1) },
    });
    page(TabSheet2, u"同时存在的单号", DataView1, cds, scanColumns, 1);
    page(TabSheet1, u"只存在源条件的单号", DataView2, cds1, scanColumns, 1);
    page(TabSheet3, u"只存在目标条件的单号", DataView3, cds2, scanColumns, 1);

    handle(CheckBox1, &QCheckBox::clicked, this, &Tfrm_ScanContrast::CheckBox1Click);
    completeOnExit({ DBLookupComboboxEh5, DBLookupComboboxEh2, DBLookupComboboxEh4, DBLookupComboboxEh7 });
    completeOnEnter(
        { DBLookupComboboxEh1, DBLookupComboboxEh3, DBLookupComboboxEh10, DBLookupComboboxEh6, DBLookupComboboxEh8, DBLookupComboboxEh9 });
}

void Tfrm_ScanContrast::FormCreate()
{
    Tfrm_BasicBoot::FormCreate();
    for (const ScanSet &set : { m_source, m_target }) {
        set.start->setText(dateToText(Clock::today().addDays(-1)) + u" 12:00:00");
        set.end->setText(dateToText(Clock::today()) + u" 11:59:59");
    }
    setSiteLookup({ DBLookupComboboxEh5, DBLookupComboboxEh4, DBLookupComboboxEh6, DBLookupComboboxEh1 }, dm_GlobalData->ds_site);
    setScanTypeLookup({ DBLookupComboboxEh2, DBLookupComboboxEh7 }, dm_GlobalData->ds_scanType);
    setEmployeeLookup({ DBLookupComboboxEh3, DBLookupComboboxEh8, DBLookupComboboxEh10, DBLookupComboboxEh9 }, dm_GlobalData->ds_employee);
    fillFromHost({ DBComboBoxEh1, DBComboBoxEh2 }, QStringLiteral("GoodsType"), QStringLiteral("GOODS_NAME"));
    fillFromHost({ DBComboBoxEh4, DBComboBoxEh3 }, QStringLiteral("Class"), QStringLiteral("CLASS_NAME"));
    m_source.site->setText(GlobalValueAddr(QStringLiteral("site")));
    m_target.site->setText(m_source.site->text());
    m_source.scanType->setText(QStringLiteral("到件"));
    m_target.scanType->setText(QStringLiteral("到件"));
}

void Tfrm_ScanContrast::CheckBox1Click()
{
    GroupBox3->setEnabled(CheckBox1->isChecked());
    GroupBox4->setEnabled(CheckBox1->isChecked());
}

bool Tfrm_ScanContrast::refuseIncomplete(const ScanSet &set)
{
    if (set.site->text().isEmpty())
        return refuse(QStringLiteral("详细：扫描网点必须选择！"), set.site);
    if (set.scanType->text().isEmpty())
        return refuse(QStringLiteral("详细：扫描类型必须选择！"), set.scanType);
    return false;
}

void Tfrm_ScanContrast::Button1Click()
{
    const QueryRun run(this);
    const bool comparing = CheckBox1->isChecked();
    if (refuseIncomplete(m_source) || (comparing && refuseIncomplete(m_target)))
        return;
    // The target range must be valid even when it is not used.
    for (const ScanSet &set : { m_source, m_target })
        if (CheckDateRange(set.start->text(), set.end->text(), 3, true))
            return;

    const QString source = m_source.selectList() + m_source.conditions();
    if (!comparing) {
        openStatement(cds, source + m_source.orderByBill());
        return;
    }
    const QString target = m_target.selectList() + m_target.conditions();
    const QString hasTarget = m_target.existsFor(m_source);
    openStatement(cds, source + u" and " + hasTarget + m_source.orderByBill());
    openStatement(cds1, source + u" and (not " + hasTarget + u')' + m_source.orderByBill());
    openStatement(cds2, target + u" and (not " + m_source.existsFor(m_target) + u')' + m_target.orderByBill());
}
