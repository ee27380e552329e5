#include "plugin/forms/scan/ufrm_ScanContrast.h"

#include "platform/toolkit/clock.h"
#include "plugin/data/udm_GlobalData.h"
#include "plugin/forms/base/scan_columns.h"

using namespace platform;
using namespace plugin;

Tfrm_Basic *frm_ScanContrast = nullptr;

namespace {

const GridColumns resultColumns = scanListColumns(u"下一网点");

} // namespace

QList<ConditionRow> Tfrm_ScanContrast::ScanSet::rows() const
{
    return {
        row(u"扫描网点", site).sites(dm_GlobalData->ds_site).loginSite().completes(),
        row(u"上下网点", station).sites(dm_GlobalData->ds_site).completesOnEnter(),
        row(u"扫描类型", scanType).scanTypes().completes(),
        row(u"物品类别", goodsType).goodsTypes(),
        row(u"扫描人", scanMan).employees().completesOnEnter(),
        row(u"班次", shift).shifts(),
        row(u"收派件员", courier).employees().completesOnEnter(),
    };
}

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
    : PagedScreen(owner, QStringLiteral("frm_ScanContrast"), u"总部扫描监控")
{
    CheckBox1->setText(QStringLiteral("(&1)启用目标条件对比"));
    CheckBox1->setChecked(true);
    arrange({
        { box(GroupBox1, u"对比源条件", 4, m_source.rows()),
            plugin::range(GroupBox2, u"源条件时间范围(3天以内)", m_source.start, m_source.end) },
        { box(GroupBox3, u"对比目标条件", 4, m_target.rows()),
            box(GroupBox4, u"目标条件时间范围(3天以内)", 1, { row(u"开始", m_target.start), row(u"结束", m_target.end) }), row(CheckBox1) },
    });
    page(TabSheet2, u"同时存在的单号", DataView1, cds, resultColumns, 1);
    page(TabSheet1, u"只存在源条件的单号", DataView2, cds1, resultColumns, 1);
    page(TabSheet3, u"只存在目标条件的单号", DataView3, cds2, resultColumns, 1);
    handle(CheckBox1, &QCheckBox::clicked, this, &Tfrm_ScanContrast::CheckBox1Click);
}

void Tfrm_ScanContrast::FormCreate()
{
    PagedScreen::FormCreate();
    for (const ScanSet &set : { m_source, m_target }) {
        set.start->setText(dateToText(Clock::today().addDays(-1)) + u" 12:00:00");
        set.end->setText(dateToText(Clock::today()) + u" 11:59:59");
        set.scanType->setText(QStringLiteral("到件"));
    }
}

void Tfrm_ScanContrast::CheckBox1Click()
{
    GroupBox3->setEnabled(CheckBox1->isChecked());
    GroupBox4->setEnabled(CheckBox1->isChecked());
}

bool Tfrm_ScanContrast::refuseIncomplete(const ScanSet &set)
{
    return refuseEmpty(set.site, u"扫描网点必须选择！") || refuseEmpty(set.scanType, u"扫描类型必须选择！");
}

void Tfrm_ScanContrast::queryByConditions()
{
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
