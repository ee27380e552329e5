#include "plugin/forms/base/scan_columns.h"

using namespace platform;
using namespace plugin;

namespace plugin {

GridColumns scanColumns(QStringView station, QStringView courier)
{
    return {
        text("BILL_CODE", u"运单编号", 80),
        text("SUB_BILL_CODE", u"子单号", 80),
        text("OWNER_BAG_NO", u"袋号", 80),
        text("SCAN_TYPE", u"扫描类型", 54),
        text("SCAN_SITE", u"扫描网点", 70),
        time("SCAN_DATE", u"扫描日期", 120),
        text("SCAN_MAN", u"扫描人", 60),
        text("SCAN_MAN_CODE", u"扫描人编号", 50),
        time("REGISTER_DATE", u"录入日期", 120),
        text("DISPATCH_OR_SEND_MAN", courier, 60),
        text("SEND_SITE", u"寄件网点", 70),
        text("PRE_OR_NEXT_STATION", station, 70),
        text("DISPATCH_SITE", u"目的网点", 70),
        number("PIECE", u"件数", 50).sum(u"总件数"),
        number("WEIGHT", u"重量", 60).sum(u"总重量"),
        text("CLASS", u"班次", 60),
        text("GOODS_TYPE", u"物品类别", 60),
        text("FAST_TYPE", u"快件类型", 60),
    };
}

GridColumns feeColumns()
{
    return {
        money("TRANSFER_OR_DISPATCH_FEE", u"中转/派件费", 70).sum(u"总金额"),
        money("other_fee", u"应收派件费", 70).sum(u"总金额"),
    };
}

GridColumn remarkColumn() { return text("REMARK", u"备注", 200); }

GridColumns scanListColumns(QStringView station, QStringView courier)
{
    return scanColumns(station, courier) + feeColumns() + GridColumns { money("TOPAYMENT", u"到付款", 70), remarkColumn() };
}

} // namespace plugin
