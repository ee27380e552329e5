#pragma once

#include "plugin/forms/base/summary_detail_screen.h"

/// What each picker of the Beijing business department brought to the hub: waybills, weight and fees.
class Tfrm_SaleQry : public plugin::SummaryDetailScreen {
    Q_OBJECT

public:
    explicit Tfrm_SaleQry(TComponentOwner *owner);

    PUBLISHED(TInputList, InputList1);
    PUBLISHED(TDBLookupComboboxEh, DBLookupComboboxEh4);
    PUBLISHED(TClientDataSetEx, cdsMan); ///< the department's staff
    PUBLISHED(TDataSource, ds_Man);
    PUBLISHED(TTabSheet, TabSheet1);
    PUBLISHED(TTabSheet, TabSheet2);
    PUBLISHED(TDataView, DataView2);
    PUBLISHED(TDataView, DataView1);
    PUBLISHED(TClientDataSetEx, cdsSum);
    PUBLISHED(TClientDataSetEx, cds);

    void FormCreate() override;

private:
    void queryByConditions() override;
    void queryByList(const QString &bills) override;
    plugin::Detail detail() const override;

    QString FWhereSql; ///< of the arrivals of the last summary
};

extern Tfrm_Basic *frm_SaleQry;
