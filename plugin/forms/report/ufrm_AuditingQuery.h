#pragma once

#include "plugin/forms/base/summary_detail_screen.h"

/// Compares the transfer fees of a site's arrivals with the audited ones, by previous station.
class Tfrm_AuditingQuery : public plugin::SummaryDetailScreen {
    Q_OBJECT

public:
    explicit Tfrm_AuditingQuery(TComponentOwner *owner);

    PUBLISHED(TInputList, InputList1);
    PUBLISHED(TDBLookupComboboxEh, DBLookupComboboxEh5);
    PUBLISHED(TDBComboBoxEh, DBComboBoxEh4);
    PUBLISHED(TDBLookupComboboxEh, DBLookupComboboxEh2);
    PUBLISHED(TDBComboBoxEh, DBComboBoxEh1);
    PUBLISHED(TDBComboBoxEh, DBComboBoxEh2);
    PUBLISHED(TDBLookupComboboxEh, DBLookupComboboxEh1);
    PUBLISHED(TDBLookupComboboxEh, DBLookupComboboxEh4);
    PUBLISHED(TDBLookupComboboxEh, DBLookupComboboxEh3);
    PUBLISHED(TTabSheet, TabSheet1);
    PUBLISHED(TTabSheet, TabSheet2);
    PUBLISHED(TDataView, DataView2);
    PUBLISHED(TDataView, DataView1);
    PUBLISHED(TClientDataSetEx, cdssum);
    PUBLISHED(TClientDataSetEx, cds);

private:
    void queryByConditions() override;
    void queryByList(const QString &bills) override;
    void openSummary(QStringView head, int tag);
    plugin::Detail detail() const override;

    QString FWhereSql; ///< of the last summary
};

extern Tfrm_Basic *frm_AuditingQuery;
