#include "plugin/forms/scan/bill_columns.h"

using namespace platform;
using namespace plugin;

namespace plugin {

GridColumns billColumns(const GridColumn &destination)
{
    return {
        text("BILL_CODE", u"运单编号", 70).readOnly(),
        text("sub_bill_code", u"子单号", 70),
        text("BILL_CODE_SUB", u"子单号列表", 70).readOnly(),
        time("send_date", u"寄件日期", 100),
        number("SETTLEMENT_WEIGHT", u"重量", 70).readOnly(),
        text("GOODS_TYPE", u"物品类别", 70).readOnly().ellipsis().dropDown({ QStringLiteral("GOODS_NAME") }),
        text("BL_RETURN", u"退件", 70).checkBox(),
        money("GOODS_PAYMENT", u"代收货款", 70).readOnly(),
        destination,
        text("ACCEPT_MAN_ADDRESS", u"派件地址", 70).readOnly(),
        text("CUSTOMER_CODE", u"客户编号", 70).ellipsis().dropDown({ QStringLiteral("CUSTOMER_CODE") }),
        text("CUSTOMER_NAME", u"客户名称", 70).dropDown({ QStringLiteral("CUSTOMER_CODE") }),
        text("ACCEPT_MAN", u"收件人姓名", 70),
        text("TAKE_PIECE_EMPLOYEE", u"业务员", 70).ellipsis().dropDown({ QStringLiteral("EMPLOYEE_NAME") }),
        text("ACCEPT_MAN_PHONE", u"收件人电话", 70),
        money("TOPAYMENT", u"到付款", 70).readOnly().sum(u"总金额"),
        text("REGISTER_SITE", u"录入网点", 70).readOnly(),
        text("REMARK", u"备注", 70).readOnly(),
        text("SEND_MAN", u"寄件人", 70).readOnly(),
        text("SEND_MAN_PHONE", u"寄件电话", 70).readOnly(),
        text("SEND_MAN_ADDRESS", u"寄件地址", 70).readOnly(),
        text("ACCEPT_MAN_COMPANY", u"收件公司", 70).readOnly(),
        text("SOON_PIECE_TYPE", u"快件类型", 70).readOnly(),
        text("GOODS_NAME", u"物品名称", 70).readOnly(),
        text("DISPATCH_MODE", u"服务方式", 70).readOnly(),
        text("BALANCE_TYPE", u"支付类型", 70).readOnly(),
        text("PAYMENT_SIDE", u"付款方", 70).readOnly(),
        number("PIECE_NUMBER", u"件数", 70).readOnly(),
        text("send_site", u"发件网点", 70).readOnly(),
        money("TRANSFER_FEE", u"中转费", 70).readOnly().sum(u"中转费"),
        text("BL_RETURN_BILL", u"回单标识", 70).readOnly().checkBox(),
        text("R_BILLCODE", u"回单编号", 70).readOnly(),
    };
}

} // namespace plugin
