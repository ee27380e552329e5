#pragma once

#include <QStringView>

#include <span>

namespace client {

/// A screen of the plug-in as the menus offer it.
struct ScreenItem {
    QStringView name;
    QStringView caption;
};

inline constexpr ScreenItem scanScreens[] = {
    { u"frm_ScanContrast", u"总部扫描监控" },
    { u"frm_GuestSignQuery", u"客服签收查询" },
    { u"frm_ManCome", u"扫描员到件统计" },
    { u"frm_ManSend", u"扫描员发件统计" },
    { u"frm_SendNextUnCome", u"本站有发下站未到" },
    { u"frm_ComeDispContrast", u"到派对比" },
    { u"frm_RecSendContrast", u"收发对比" },
    { u"frm_BillContrastScan", u"录单扫描对比" },
    { u"frm_BillContrastSiteCome", u"录单对比网点到件" },
};

// Left out is a screen of the plug-in with nothing on it, frm_BillStat.
inline constexpr ScreenItem reportScreens[] = {
    { u"frm_MonthSendBill", u"月发件清单" },
    { u"frm_MonthRecBill", u"月收件清单" },
    { u"frm_MonthCalc", u"月票量统计" },
    { u"frm_DispFeeQry1", u"内派费查询" },
    { u"frm_BJDispFee", u"北京市内收派费查询" },
    { u"frm_SaleQry", u"北京业务部统计" },
    { u"frm_DestQry", u"目的网点月统计" },
    { u"frm_AuditingQuery", u"审核中转费查询" },
};

/// A menu of screens.
struct ScreenGroup {
    QStringView menu;
    std::span<const ScreenItem> screens;
};

inline constexpr ScreenGroup screenGroups[] = {
    { u"扫描查询(&S)", scanScreens },
    { u"费用报表(&R)", reportScreens },
};

/// Null for a screen that the menus do not offer.
constexpr const ScreenItem *screenItem(QStringView name)
{
    for (const ScreenGroup &group : screenGroups) {
        for (const ScreenItem &item : group.screens) {
            if (item.name == name)
                return &item;
        }
    }
    return nullptr;
}

} // namespace client
