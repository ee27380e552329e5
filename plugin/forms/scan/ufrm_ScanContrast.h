#pragma once

#include "plugin/forms/base/paged_screen.h"

/// Compares two sets of scans: the waybills in both, only in the source set, and only in the target set.
class Tfrm_ScanContrast : public plugin::PagedScreen {
    Q_OBJECT

public:
    explicit Tfrm_ScanContrast(TComponentOwner *owner);

    PUBLISHED(TDBLookupComboboxEh, DBLookupComboboxEh5);
    PUBLISHED(TDBLookupComboboxEh, DBLookupComboboxEh1);
    PUBLISHED(TDBLookupComboboxEh, DBLookupComboboxEh2);
    PUBLISHED(TDBComboBoxEh, DBComboBoxEh1);
    PUBLISHED(TDBLookupComboboxEh, DBLookupComboboxEh3);
    PUBLISHED(TDBComboBoxEh, DBComboBoxEh4);
    PUBLISHED(TDBLookupComboboxEh, DBLookupComboboxEh10);
    PUBLISHED(QGroupBox, GroupBox2);
    PUBLISHED(QCheckBox, CheckBox1);
    PUBLISHED(QGroupBox, GroupBox3);
    PUBLISHED(TDBLookupComboboxEh, DBLookupComboboxEh4);
    PUBLISHED(TDBLookupComboboxEh, DBLookupComboboxEh6);
    PUBLISHED(TDBLookupComboboxEh, DBLookupComboboxEh7);
    PUBLISHED(TDBComboBoxEh, DBComboBoxEh2);
    PUBLISHED(TDBLookupComboboxEh, DBLookupComboboxEh8);
    PUBLISHED(TDBComboBoxEh, DBComboBoxEh3);
    PUBLISHED(TDBLookupComboboxEh, DBLookupComboboxEh9);
    PUBLISHED(QGroupBox, GroupBox4);
    PUBLISHED(TDBDateTimeEditEh, DBDateTimeEditEh3);
    PUBLISHED(TDBDateTimeEditEh, DBDateTimeEditEh4);
    PUBLISHED(TTabSheet, TabSheet2);
    PUBLISHED(TTabSheet, TabSheet1);
    PUBLISHED(TTabSheet, TabSheet3);
    PUBLISHED(TDataView, DataView1);
    PUBLISHED(TDataView, DataView2);
    PUBLISHED(TDataView, DataView3);
    PUBLISHED(TClientDataSetEx, cds);
    PUBLISHED(TClientDataSetEx, cds1);
    PUBLISHED(TClientDataSetEx, cds2);

    void FormCreate() override;

private:
    /// The controls that describe one set of scans, and the alias of its table in the statements.
    struct ScanSet {
        QChar alias;
        TDBLookupComboboxEh *site;
        TDBLookupComboboxEh *station;
        TDBLookupComboboxEh *scanType;
        TDBComboBoxEh *goodsType;
        TDBLookupComboboxEh *scanMan;
        TDBComboBoxEh *shift;
        TDBLookupComboboxEh *courier;
        TDBDateTimeEditEh *start;
        TDBDateTimeEditEh *end;

        QList<plugin::ConditionRow> rows() const;
        QString table() const;
        QString selectList() const;
        QString conditions() const;
        /// That a scan of this set exists for the same waybill as a scan of `other`.
        QString existsFor(const ScanSet &other) const;
        QString orderByBill() const;
    };
    const ScanSet m_source { u'a', DBLookupComboboxEh5, DBLookupComboboxEh1, DBLookupComboboxEh2, DBComboBoxEh1, DBLookupComboboxEh3,
        DBComboBoxEh4, DBLookupComboboxEh10, DBDateTimeEditEh1, DBDateTimeEditEh2 };
    const ScanSet m_target { u'c', DBLookupComboboxEh4, DBLookupComboboxEh6, DBLookupComboboxEh7, DBComboBoxEh2, DBLookupComboboxEh8,
        DBComboBoxEh3, DBLookupComboboxEh9, DBDateTimeEditEh3, DBDateTimeEditEh4 };

    void queryByConditions() override;
    void CheckBox1Click();
    bool refuseIncomplete(const ScanSet &set);
};

extern Tfrm_Basic *frm_ScanContrast;
