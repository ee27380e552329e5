#pragma once

#include "plugin/forms/base/summary_detail_screen.h"

namespace plugin {

/// A month's list: sums of a site's scans and, behind each, the scans, which are printed; by a list of waybills or by conditions.
class MonthList : public SummaryDetailScreen {
    Q_OBJECT

public:
    PUBLISHED(TInputList, InputList1);
    PUBLISHED(TDBLookupComboboxEh, DBLookupComboboxEh5);
    PUBLISHED(TDBLookupComboboxEh, DBLookupComboboxEh3);
    PUBLISHED(TDBComboBoxEh, DBComboBoxEh1);
    PUBLISHED(TDBComboBoxEh, DBComboBoxEh4);
    PUBLISHED(TDBLookupComboboxEh, DBLookupComboboxEh2);
    PUBLISHED(TDBComboBoxEh, DBComboBoxEh2);
    PUBLISHED(TDBLookupComboboxEh, DBLookupComboboxEh1);
    PUBLISHED(TDBLookupComboboxEh, DBLookupComboboxEh4);
    PUBLISHED(QPushButton, Button2);
    PUBLISHED(TTabSheet, TabSheet1);
    PUBLISHED(TTabSheet, TabSheet2);
    PUBLISHED(TDataView, DataView2);
    PUBLISHED(TDataView, DataView1);
    PUBLISHED(TClientDataSetEx, cdsSum);
    PUBLISHED(TClientDataSetEx, cds);

protected:
    using SummaryDetailScreen::SummaryDetailScreen;

    /// Lays the screen out and connects it; `rows` and `buttons` stand beside the range.
    void design(const QList<ConditionRow> &rows, const QList<ConditionRow> &buttons, const platform::GridColumns &summary,
        const platform::GridColumns &detail);
    LookupRow siteRow(TDBLookupComboboxEh *scanSite);
    LookupRow manRow();
    ListRow goodsTypeRow();
    ListRow fastTypeRow();
    LookupRow senderRow();
    LookupRow destinationRow();
    ListRow shiftRow();
    void queryByConditions() override;
    void queryByList(const QString &bills) override;

    /// The index by which the last summary found its scans: that of the waybills, or that of the dates.
    QString index(QStringView table) const { return table + QStringView(cdsSum->tag() == ByList ? u"_I" : u"_I3"); }
    /// The summary over FWhereSql.
    virtual QString summary() const = 0;
    /// The conditions behind the range.
    virtual QString conditions() const = 0;
    /// Prints the detail through a report file, in the order in which the server sent it.
    void printDetail(const QString &reportFile);

    QString FWhereSql; ///< of the last summary

private:
    void open(const QString &where, Selection selection);

    TDBLookupComboboxEh *m_scanSite = nullptr; ///< the scanning site, required by date
};

} // namespace plugin
