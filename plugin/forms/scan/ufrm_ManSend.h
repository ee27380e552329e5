#pragma once

#include "plugin/forms/scan/man_statistics.h"

/// Counts the send-outs that each operator of a site has scanned, by shift, and weighs them by the waybills' latest arrival there.
class Tfrm_ManSend : public plugin::ManStatistics {
    Q_OBJECT

public:
    explicit Tfrm_ManSend(TComponentOwner *owner);

private:
    QString statistics() const override;
    plugin::Detail detail() const override;
};

extern Tfrm_Basic *frm_ManSend;
