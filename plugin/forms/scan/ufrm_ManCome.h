#pragma once

#include "plugin/forms/scan/man_statistics.h"

/// Counts and weighs the arrivals that each operator of a site has scanned, by the area of the previous station and by shift.
class Tfrm_ManCome : public plugin::ManStatistics {
    Q_OBJECT

public:
    explicit Tfrm_ManCome(TComponentOwner *owner);

    PUBLISHED(TDBComboBoxEh, DBComboBoxEh1);

private:
    QString statistics() const override;
    plugin::Detail detail() const override;
};

extern Tfrm_Basic *frm_ManCome;
