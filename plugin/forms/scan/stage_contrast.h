#pragma once

#include "plugin/forms/base/query_screen.h"

#include <QRadioButton>

namespace plugin {

/// The scans of one stage at a site whose waybills have no scan of another stage anywhere, and the other way round.
class StageContrast : public QueryScreen {
    Q_OBJECT

public:
    PUBLISHED(TDataView, DataView1);
    PUBLISHED(TClientDataSetEx, cds);
    PUBLISHED(TDBComboBoxEh, DBComboBoxEh1);
    PUBLISHED(TDBComboBoxEh, DBComboBoxEh2);
    PUBLISHED(TDBComboBoxEh, DBComboBoxEh4);
    PUBLISHED(TDBLookupComboboxEh, DBLookupComboboxEh2);
    PUBLISHED(TDBLookupComboboxEh, DBLookupComboboxEh3);
    PUBLISHED(TDBLookupComboboxEh, DBLookupComboboxEh1);
    PUBLISHED(TDBLookupComboboxEh, DBLookupComboboxEh4);
    PUBLISHED(TDBLookupComboboxEh, DBLookupComboboxEh5);
    PUBLISHED(QRadioButton, RadioButton1);
    PUBLISHED(QRadioButton, RadioButton2);

protected:
    /// A choice: its caption and the tables of the scans that are there and of those that are missing.
    struct Choice {
        QStringView caption;
        QString present;
        QString missing;
    };
    StageContrast(TComponentOwner *owner, const QString &name, QStringView caption, const Choice &first, const Choice &second);

    void Button1Click() override;
    void queryByConditions() override;
    /// What else the login site must be; true when it was told that it is not.
    virtual bool refuseLoginSite() { return false; }

private:
    QString statement(const Choice &choice) const;

    const Choice m_first; ///< RadioButton1
    const Choice m_second;
};

} // namespace plugin
