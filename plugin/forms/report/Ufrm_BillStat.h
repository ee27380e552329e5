#pragma once

#include "plugin/forms/base/ufrm_BasicBoot.h"

/// The monthly parcel statistics: a screen without conditions or results.
class Tfrm_BillStat : public Tfrm_BasicBoot {
    Q_OBJECT

public:
    explicit Tfrm_BillStat(TComponentOwner *owner);
};

extern Tfrm_Basic *frm_BillStat;
