#include "plugin/forms/scan/ufrm_ComeDispContrast.h"

using namespace plugin;

Tfrm_Basic *frm_ComeDispContrast = nullptr;

Tfrm_ComeDispContrast::Tfrm_ComeDispContrast(TComponentOwner *owner)
    : StageContrast(owner, QStringLiteral("frm_ComeDispContrast"), u"到派对比",
        { u"有到件无派件", QStringLiteral("TAB_SCAN_COME"), QStringLiteral("TAB_SCAN_DISP") },
        { u"有派件无到件", QStringLiteral("TAB_SCAN_DISP"), QStringLiteral("TAB_SCAN_COME") })
{
}
