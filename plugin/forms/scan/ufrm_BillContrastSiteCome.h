#pragma once

#include "plugin/forms/base/query_screen.h"

#include "platform/toolkit/radio_group.h"

/// Entered waybills beside the destination that their scans show; a row in which the two differ is red.
class Tfrm_BillContrastSiteCome : public plugin::QueryScreen {
    Q_OBJECT

public:
    explicit Tfrm_BillContrastSiteCome(TComponentOwner *owner);

    PUBLISHED(TDBLookupComboboxEh, DBLookupComboboxEh5);
    PUBLISHED(QCheckBox, CheckBox1); ///< hidden and never read
    PUBLISHED(TDataView, DataView2);
    PUBLISHED(TClientDataSetEx, cds);
    PUBLISHED(TDBLookupComboboxEh, DBLookupComboboxEh1);
    PUBLISHED(TDBComboBoxEh, DBComboBoxEh1);
    PUBLISHED(TRadioGroup, RadioGroup1);
    PUBLISHED(TDBComboBoxEh, DBComboBoxEh2);

private:
    void queryByConditions() override;
    QString bills() const;
    QString ofFastType() const;
    void DataView2DataViewGridGetCellParams(int row, platform::CellParameters &parameters) const;
};

extern Tfrm_Basic *frm_BillContrastSiteCome;
