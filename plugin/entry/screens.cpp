#include "plugin/entry/screens.h"

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

namespace {

template <class Screen>
Tfrm_Basic *create(TComponentOwner *owner)
{
    return new Screen(owner);
}

const ScreenEntry screens[] = {
    { u"frm_ScanContrast", Rights::FromName, &frm_ScanContrast, create<Tfrm_ScanContrast> },
    { u"frm_GuestSignQuery", Rights::None, &frm_GuestSignQuery, create<Tfrm_GuestSignQuery> },
    { u"frm_AuditingQuery", Rights::None },
    { u"frm_MonthSendBill", Rights::FromName },
    { u"frm_MonthRecBill", Rights::FromName },
    { u"frm_RecSendContrast", Rights::FromName, &frm_RecSendContrast, create<Tfrm_RecSendContrast> },
    { u"frm_ManCome", Rights::FromName, &frm_ManCome, create<Tfrm_ManCome> },
    { u"frm_ManSend", Rights::FromName, &frm_ManSend, create<Tfrm_ManSend> },
    { u"frm_BillStat", Rights::FromName },
    { u"frm_BJDispFee", Rights::FromName },
    { u"frm_DestQry", Rights::FromName },
    { u"frm_SaleQry", Rights::FromName },
    { u"frm_BillContrastScan", Rights::FromName, &frm_BillContrastScan, create<Tfrm_BillContrastScan> },
    { u"frm_BillContrastSiteCome", Rights::FromName, &frm_BillContrastSiteCome, create<Tfrm_BillContrastSiteCome> },
    { u"frm_SendNextUnCome", Rights::FromName, &frm_SendNextUnCome, create<Tfrm_SendNextUnCome> },
    { u"frm_DispFeeQry1", Rights::FromName },
    { u"frm_ComeDispContrast", Rights::FromName, &frm_ComeDispContrast, create<Tfrm_ComeDispContrast> },
    { u"frm_MonthCalc", Rights::FromName },
};

} // namespace

const ScreenEntry *findScreen(QStringView name)
{
    const auto found
        = std::find_if(std::begin(screens), std::end(screens), [name](const ScreenEntry &entry) { return entry.name == name; });
    return found != std::end(screens) && found->create ? found : nullptr;
}
