#pragma once

#include "plugin/forms/base/summary_detail_screen.h"

/// The dispatch fees of signed waybills by delivering site, split by whether they were sent from the login site's province.
class Tfrm_DispFeeQry1 : public plugin::SummaryDetailScreen {
    Q_OBJECT

public:
    explicit Tfrm_DispFeeQry1(TComponentOwner *owner);

    PUBLISHED(TDBLookupComboboxEh, DBLookupComboboxEh1);
    PUBLISHED(QCheckBox, CheckBox1);
    PUBLISHED(TDBComboBoxEh, DBComboBoxEh4);
    PUBLISHED(TTabSheet, TabSheet1);
    PUBLISHED(TTabSheet, TabSheet2);
    PUBLISHED(TDataView, DataView1);
    PUBLISHED(TDataView, DataView2);
    PUBLISHED(TClientDataSetEx, cdsSum);
    PUBLISHED(TClientDataSetEx, cds);

    void FormCreate() override;

private:
    void queryByConditions() override;
    plugin::Detail detail() const override;

    QString bySite(const QString &where) const;
    QString bySiteAndProvince(const QString &where) const;
    void filterByProvince();

    QString FProvince;
    QString FProvinceSiteList;
    QString FLoginSite;
    QString FDateWhere; ///< of the last summary
    bool FBySignSiteOnly = true; ///< of the last summary
};

extern Tfrm_Basic *frm_DispFeeQry1;
