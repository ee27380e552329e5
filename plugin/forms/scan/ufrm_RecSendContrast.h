#pragma once

#include "plugin/forms/scan/stage_contrast.h"

/// Waybills that were sent out of a site but never picked up, and the other way round; for ordinary outlets only.
class Tfrm_RecSendContrast : public plugin::StageContrast {
    Q_OBJECT

public:
    explicit Tfrm_RecSendContrast(TComponentOwner *owner);

private:
    bool refuseLoginSite() override;
};

extern Tfrm_Basic *frm_RecSendContrast;
