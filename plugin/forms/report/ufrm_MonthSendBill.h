#pragma once

#include "plugin/forms/report/month_list.h"

/// What a site sent out in a month, by next station.
class Tfrm_MonthSendBill : public plugin::MonthList {
    Q_OBJECT

public:
    explicit Tfrm_MonthSendBill(TComponentOwner *owner);

    PUBLISHED(TDBComboBoxEh, DBComboBoxEh3); ///< for one hub alone
    PUBLISHED(QPushButton, Button3);

    void FormCreate() override;

private:
    QString summary() const override;
    QString conditions() const override;
    plugin::Detail detail() const override;
};

extern Tfrm_Basic *frm_MonthSendBill;
