#pragma once

#include "plugin/forms/scan/stage_contrast.h"

/// Waybills that arrived at a site but were never put out for delivery, and the other way round.
class Tfrm_ComeDispContrast : public plugin::StageContrast {
    Q_OBJECT

public:
    explicit Tfrm_ComeDispContrast(TComponentOwner *owner);
};

extern Tfrm_Basic *frm_ComeDispContrast;
