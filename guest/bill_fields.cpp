#include "guest/bill_fields.h"

namespace guest {
namespace {

constexpr BillField fields[] = {
    { u"a.SEND_DATE", u"寄件日期" },
    { u"a.SEND_SITE", u"寄件网点" },
    { u"a.DISPATCH_SITE", u"目的网点" },
    { u"a.TAKE_PIECE_EMPLOYEE", u"业务员" },

    { u"a.SEND_MAN", u"寄件人" },
    { u"a.SEND_MAN_PHONE", u"寄件电话" },
    { u"a.SEND_MAN_ADDRESS", u"寄件地址", 2 },

    { u"a.ACCEPT_MAN", u"收件人" },
    { u"a.ACCEPT_MAN_PHONE", u"收件电话" },
    { u"a.ACCEPT_MAN_ADDRESS", u"收件地址", 2 },

    { u"a.CUSTOMER_CODE", u"客户编号" },
    { u"a.CUSTOMER_NAME", u"客户名称" },
    { u"a.ACCEPT_MAN_COMPANY", u"收件公司", 2 },

    { u"a.GOODS_TYPE", u"物品类别" },
    { u"a.GOODS_NAME", u"物品名称" },
    { u"a.PIECE_NUMBER", u"件数" },
    { u"a.SETTLEMENT_WEIGHT", u"结算重量" },

    { u"a.SOON_PIECE_TYPE", u"快件类型" },
    { u"a.DISPATCH_MODE", u"服务方式" },
    { u"a.CLASS", u"班次" },
    { u"decode(a.BL_RETURN,1,'是','否')", u"退件" },

    { u"a.BALANCE_TYPE", u"支付类型" },
    { u"a.PAYMENT_SIDE", u"付款方" },
    { u"a.TRANSFER_FEE", u"中转费" },
    { u"a.TOPAYMENT", u"到付款" },

    { u"a.GOODS_PAYMENT", u"代收货款" },
    { u"a.R_BILLCODE", u"回单编号" },
    { u"a.BILL_CODE_SUB", u"子单号", 2 },

    { u"a.REGISTER_SITE", u"录入网点" },
    { u"a.REGISTER_MAN", u"录入人" },
    { u"a.REGISTER_DATE", u"录入日期" },
    { u"a.REMARK", u"备注" },
};

} // namespace

std::span<const BillField> billFields() { return fields; }

} // namespace guest
