#include "plugin/forms/report/Ufrm_BillStat.h"

Tfrm_Basic *frm_BillStat = nullptr;

Tfrm_BillStat::Tfrm_BillStat(TComponentOwner *owner)
    : Tfrm_BasicBoot(owner, QStringLiteral("frm_BillStat"), QStringLiteral("快件月统计表"))
{
}
