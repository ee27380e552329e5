#pragma once

#include "plugin/forms/base/paged_screen.h"

#include "platform/toolkit/radio_group.h"

/// Entered waybills without a scan of one type, or scans of that type without an entered waybill: two questions over the same
/// conditions, each with its own page and query button.
class Tfrm_BillContrastScan : public plugin::PagedScreen {
    Q_OBJECT

public:
    explicit Tfrm_BillContrastScan(TComponentOwner *owner);

    PUBLISHED(TTabSheet, TabSheet1);
    PUBLISHED(TTabSheet, TabSheet2);
    PUBLISHED(TDataView, DataView1);
    PUBLISHED(TRadioGroup, RadioGroup1);
    PUBLISHED(TDBLookupComboboxEh, DBLookupComboboxEh5);
    PUBLISHED(TDBComboBoxEh, DBComboBoxEh1);
    PUBLISHED(TClientDataSetEx, cds);
    PUBLISHED(TClientDataSetEx, cds1);
    PUBLISHED(QCheckBox, CheckBox1); ///< hidden and never read, as CheckBox2 is
    PUBLISHED(TDataView, DataView2);
    PUBLISHED(QPushButton, Button2);
    PUBLISHED(TDBLookupComboboxEh, DBLookupComboboxEh1);
    PUBLISHED(QCheckBox, CheckBox2);
    PUBLISHED(TDBLookupComboboxEh, DBLookupComboboxEh2);

private:
    void queryByConditions() override;
    void Button2Click();
    void RadioGroup1Click(int itemIndex);
    void showFirstPage() override { } ///< a query leaves its page in front
};

extern Tfrm_Basic *frm_BillContrastScan;
