#pragma once

#include "plugin/forms/base/query_screen.h"

/// The send-outs of a site whose next station has no arrival of the same waybill: parcels lost or late on the way.
class Tfrm_SendNextUnCome : public plugin::QueryScreen {
    Q_OBJECT

public:
    explicit Tfrm_SendNextUnCome(TComponentOwner *owner);

    PUBLISHED(TInputList, InputList1);
    PUBLISHED(TClientDataSetEx, cds);
    PUBLISHED(TDBComboBoxEh, DBComboBoxEh1);
    PUBLISHED(TDBComboBoxEh, DBComboBoxEh2);
    PUBLISHED(TDBComboBoxEh, DBComboBoxEh4);
    PUBLISHED(TDBLookupComboboxEh, DBLookupComboboxEh1);
    PUBLISHED(TDBLookupComboboxEh, DBLookupComboboxEh4);
    PUBLISHED(TDBLookupComboboxEh, DBLookupComboboxEh5);
    PUBLISHED(TDataView, DataView1);
    PUBLISHED(QCheckBox, CheckBox1); ///< hidden and never read
    PUBLISHED(TDBLookupComboboxEh, DBL_NEXTSITE);
    PUBLISHED(QCheckBox, cb1);

    void FormCreate() override;

private:
    void queryByConditions() override;
    void queryByList(const QString &bills) override;
    QString mainBillsOnly() const;

    QString FLoginSite;
};

extern Tfrm_Basic *frm_SendNextUnCome;
