#pragma once

#include "plugin/forms/base/summary_detail_screen.h"

namespace plugin {

/// What each operator of a site has scanned, as sums and in detail: the common part of arrivals and send-outs.
class ManStatistics : public SummaryDetailScreen {
    Q_OBJECT

public:
    PUBLISHED(TTabSheet, TabSheet1);
    PUBLISHED(TTabSheet, TabSheet2);
    PUBLISHED(TDataView, DataView1);
    PUBLISHED(TClientDataSetEx, cds);
    PUBLISHED(TClientDataSetEx, cds1);
    PUBLISHED(TDataView, DataView2);
    PUBLISHED(TDBLookupComboboxEh, DBLookupComboboxEh1);
    PUBLISHED(TDBComboBoxEh, DBComboBoxEh4);
    PUBLISHED(TDBLookupComboboxEh, DBLookupComboboxEh5);
    PUBLISHED(TDBLookupComboboxEh, DBLookupComboboxEh2);

protected:
    using SummaryDetailScreen::SummaryDetailScreen;

    /// Lays the screen out and connects it; `rows` stand beside the range.
    void design(const QList<ConditionRow> &rows, const platform::GridColumns &summary, const platform::GridColumns &detail);
    LookupRow siteRow();
    LookupRow stationRow(QStringView label);
    LookupRow manRow();
    ListRow shiftRow();
    void queryByConditions() override;

    /// The statement that counts, over FWhere.
    virtual QString statistics() const = 0;
    /// That a column has the value that it has in the current summary row.
    QString asInSummary(QStringView column) const;

    QString FWhere; ///< of the last query, from its range to its last condition
};

/// The columns of the scans behind the sums; `station` titles the station before or behind.
platform::GridColumns manDetailColumns(QStringView station);

} // namespace plugin
