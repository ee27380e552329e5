#pragma once

#include "plugin/forms/base/summary_detail_screen.h"

#include <QRadioButton>

/// Counts a site's arrivals by destination, split by the class of the shift; by previous station and destination, or by
/// destination alone.
class Tfrm_DestQry : public plugin::SummaryDetailScreen {
    Q_OBJECT

public:
    explicit Tfrm_DestQry(TComponentOwner *owner);

    PUBLISHED(TInputList, InputList1);
    PUBLISHED(QGroupBox, GroupBox2);
    PUBLISHED(TDBNumberEditEh, DBNumberEditEh1);
    PUBLISHED(TDBNumberEditEh, DBNumberEditEh2);
    PUBLISHED(TDBLookupComboboxEh, DBLookupComboboxEh3);
    PUBLISHED(TDBLookupComboboxEh, DBLookupComboboxEh5);
    PUBLISHED(TDBLookupComboboxEh, DBLookupComboboxEh4);
    PUBLISHED(TDBLookupComboboxEh, DBLookupComboboxEh1);
    PUBLISHED(TDBLookupComboboxEh, DBLookupComboboxEh2);
    PUBLISHED(TDBComboBoxEh, DBComboBoxEh1);
    PUBLISHED(TDBComboBoxEh, DBComboBoxEh2);
    PUBLISHED(TDBComboBoxEh, DBComboBoxEh3);
    PUBLISHED(TDBComboBoxEh, DBComboBoxEh4);
    PUBLISHED(TDBComboBoxEh, DBComboBoxEh5);
    PUBLISHED(TDBComboBoxEh, DBComboBoxEh6);
    PUBLISHED(QRadioButton, RadioButton1);
    PUBLISHED(QRadioButton, RadioButton2);
    PUBLISHED(TTabSheet, TabSheet1);
    PUBLISHED(TTabSheet, TabSheet2);
    PUBLISHED(TDataView, DataView2);
    PUBLISHED(TDataView, DataView1);
    PUBLISHED(TClientDataSetEx, cdsSum);
    PUBLISHED(TClientDataSetEx, cds);
    PUBLISHED(TClientDataSetEx, cds_Site_Basic);
    PUBLISHED(TDataSource, ds_Site_Basic);

    void FormCreate() override;

private:
    void fillFromSiteBasic(TDBComboBoxEh *combo, const QString &field);
    void RadioButtonClick();

    void queryByConditions() override;
    void queryByList(const QString &bills) override;
    QString head(QStringView index) const;
    void addConditions();
    QString siteBasicCondition(const QString &area) const;
    plugin::Detail detail() const override;

    QString FWhere; ///< of the last summary, as FMode is
    QString FMode; ///< "1" by previous station and destination, "2" by destination
};

extern Tfrm_Basic *frm_DestQry;
