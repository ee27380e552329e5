#include "plugin/entry/screens.h"

#include "plugin/forms/report/Ufrm_BillStat.h"
#include "plugin/forms/report/ufrm_AuditingQuery.h"
#include "plugin/forms/report/ufrm_BJDispFee.h"
#include "plugin/forms/report/ufrm_DestQry.h"
#include "plugin/forms/report/ufrm_DispFeeQry1.h"
#include "plugin/forms/report/ufrm_MonthCalc.h"
#include "plugin/forms/report/ufrm_MonthRecBill.h"
#include "plugin/forms/report/ufrm_MonthSendBill.h"
#include "plugin/forms/report/ufrm_SaleQry.h"
#include "plugin/forms/scan/ufrm_BillContrastScan.h"
#include "plugin/forms/scan/ufrm_BillContrastSiteCome.h"
#include "plugin/forms/scan/ufrm_ComeDispContrast.h"
#include "plugin/forms/scan/ufrm_GuestSignQuery.h"
#include "plugin/forms/scan/ufrm_ManCome.h"
#include "plugin/forms/scan/ufrm_ManSend.h"
#include "plugin/forms/scan/ufrm_RecSendContrast.h"
#include "plugin/forms/scan/ufrm_ScanContrast.h"
#include "plugin/forms/scan/ufrm_SendNextUnCome.h"

#include <algorithm>
#include <iterator>
#include <memory>

namespace plugin {

namespace {

template <class Screen>
Tfrm_Basic *create(TComponentOwner *owner)
{
    auto screen = std::make_unique<Screen>(owner);
    screen->FormCreate();
    return screen.release();
}

const ScreenEntry screens[] = {
    { u"frm_ScanContrast", Rights::FromName, &frm_ScanContrast, create<Tfrm_ScanContrast> },
    { u"frm_GuestSignQuery", Rights::None, &frm_GuestSignQuery, create<Tfrm_GuestSignQuery> },
    { u"frm_AuditingQuery", Rights::None, &frm_AuditingQuery, create<Tfrm_AuditingQuery> },
    { u"frm_MonthSendBill", Rights::FromName, &frm_MonthSendBill, create<Tfrm_MonthSendBill> },
    { u"frm_MonthRecBill", Rights::FromName, &frm_MonthRecBill, create<Tfrm_MonthRecBill> },
    { u"frm_RecSendContrast", Rights::FromName, &frm_RecSendContrast, create<Tfrm_RecSendContrast> },
    { u"frm_ManCome", Rights::FromName, &frm_ManCome, create<Tfrm_ManCome> },
    { u"frm_ManSend", Rights::FromName, &frm_ManSend, create<Tfrm_ManSend> },
    { u"frm_BillStat", Rights::FromName, &frm_BillStat, create<Tfrm_BillStat> },
    { u"frm_BJDispFee", Rights::FromName, &frm_BJDispFee, create<Tfrm_BJDispFee> },
    { u"frm_DestQry", Rights::FromName, &frm_DestQry, create<Tfrm_DestQry> },
    { u"frm_SaleQry", Rights::FromName, &frm_SaleQry, create<Tfrm_SaleQry> },
    { u"frm_BillContrastScan", Rights::FromName, &frm_BillContrastScan, create<Tfrm_BillContrastScan> },
    { u"frm_BillContrastSiteCome", Rights::FromName, &frm_BillContrastSiteCome, create<Tfrm_BillContrastSiteCome> },
    { u"frm_SendNextUnCome", Rights::FromName, &frm_SendNextUnCome, create<Tfrm_SendNextUnCome> },
    { u"frm_DispFeeQry1", Rights::FromName, &frm_DispFeeQry1, create<Tfrm_DispFeeQry1> },
    { u"frm_ComeDispContrast", Rights::FromName, &frm_ComeDispContrast, create<Tfrm_ComeDispContrast> },
    { u"frm_MonthCalc", Rights::FromName, &frm_MonthCalc, create<Tfrm_MonthCalc> },
};

} // namespace

const ScreenEntry *findScreen(QStringView name)
{
    const auto found
        = std::find_if(std::begin(screens), std::end(screens), [name](const ScreenEntry &entry) { return entry.name == name; });
    return found != std::end(screens) ? found : nullptr;
}

} // namespace plugin
