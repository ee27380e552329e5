#include "plugin/forms/scan/ufrm_RecSendContrast.h"

#include "plugin/data/host_data.h"

using namespace plugin;

Tfrm_Basic *frm_RecSendContrast = nullptr;

Tfrm_RecSendContrast::Tfrm_RecSendContrast(TComponentOwner *owner)
    : StageContrast(owner, QStringLiteral("frm_RecSendContrast"), u"收发对比",
        { u"有发件无收件", QStringLiteral("tab_scan_send"), QStringLiteral("tab_scan_rec") },
        { u"有收件无发件", QStringLiteral("tab_scan_rec"), QStringLiteral("tab_scan_send") })
{
}

bool Tfrm_RecSendContrast::refuseLoginSite()
{
    const QString type = GlobalCdsAddr(QStringLiteral("loginSite"))->fieldByName(u"TYPE")->asString();
    return !type.contains(u"网点") && refuse(u"收发对比的网点类型必须是\"网点\"！");
}
