#pragma once

#include "plugin/forms/report/month_list.h"

/// What a site picked up from its customers in a month, by courier and customer.
class Tfrm_MonthRecBill : public plugin::MonthList {
    Q_OBJECT

public:
    explicit Tfrm_MonthRecBill(TComponentOwner *owner);

private:
    QString summary() const override;
    QString conditions() const override;
    plugin::Detail detail() const override;
};

extern Tfrm_Basic *frm_MonthRecBill;
