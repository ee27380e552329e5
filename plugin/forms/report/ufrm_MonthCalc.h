#pragma once

#include "plugin/forms/base/paged_screen.h"

/// Counts the reconciliation records of one finance centre's hand-overs by the previous station.
class Tfrm_MonthCalc : public plugin::PagedScreen {
    Q_OBJECT

public:
    explicit Tfrm_MonthCalc(TComponentOwner *owner);

    PUBLISHED(TDBLookupComboboxEh, DBLookupComboboxEh4);
    PUBLISHED(TInputList, InputList1); ///< hidden
    PUBLISHED(TTabSheet, TabSheet1);
    PUBLISHED(TTabSheet, TabSheet2); ///< its tab is hidden
    PUBLISHED(TDataView, DataView2);
    PUBLISHED(TDataView, DataView1);
    PUBLISHED(TClientDataSetEx, cdsSum);
    PUBLISHED(TClientDataSetEx, cds);

private:
    void queryByConditions() override;
};

extern Tfrm_Basic *frm_MonthCalc;
