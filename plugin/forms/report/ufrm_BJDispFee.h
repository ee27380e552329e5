#pragma once

#include "plugin/forms/base/summary_detail_screen.h"

/// Settles the parcels sent and signed for within the city of Beijing: what each courier of a site picked up and delivered.
class Tfrm_BJDispFee : public plugin::SummaryDetailScreen {
    Q_OBJECT

public:
    explicit Tfrm_BJDispFee(TComponentOwner *owner);

    PUBLISHED(TDBLookupComboboxEh, DBLookupComboboxEh1);
    PUBLISHED(TDBLookupComboboxEh, DBLookupComboboxEh6);
    PUBLISHED(TClientDataSetEx, cds_site); ///< the sites of the login site's province
    PUBLISHED(TDataSource, ds_site);
    PUBLISHED(TClientDataSetEx, cds_owneremployee); ///< the staff of the chosen site's business department
    PUBLISHED(TDataSource, ds_owneremployee);
    PUBLISHED(TTabSheet, TabSheet1);
    PUBLISHED(TTabSheet, TabSheet2);
    PUBLISHED(TDataView, DataView1);
    PUBLISHED(TDataView, DataView2);
    PUBLISHED(TClientDataSetEx, cds1);
    PUBLISHED(TClientDataSetEx, cds2);

    void FormCreate() override;

private:
    void queryByConditions() override;
    void DBLookupComboboxEh1Exit();
    plugin::Detail detail() const override;

    /// The waybills that the site delivered, or picked up; `signedFor` is when.
    QString delivered(const QString &signedFor, const QString &site, const QString &courier) const;
    QString pickedUp(const QString &signedFor, const QString &site, const QString &courier) const;

    QString FLoginSite;
    QString FProvince;
    QString FProvinceSiteList;
    QString FDateWhere; ///< of the last summary
};

extern Tfrm_Basic *frm_BJDispFee;
