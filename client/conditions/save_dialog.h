#pragma once

#include "client/conditions/condition_store.h"

#include <QDialog>

class QComboBox;

namespace client {

/// Asks for the name of a set of conditions, and for each range of time whether its days are kept or what they are called.
class SaveConditionsDialog : public QDialog {
    Q_OBJECT

public:
    /// `values` as they stand on the screen; `names` are those in use.
    SaveConditionsDialog(const QList<ConditionValue> &values, const QStringList &names, QWidget *parent = nullptr);

    QString name() const;
    /// The values with the choices of the person.
    QList<ConditionValue> values() const;

    void accept() override;

private:
    QComboBox *addRange(const ConditionValue &start);

    QList<ConditionValue> m_values;
    QStringList m_names;
    QComboBox *m_name;
    QList<std::pair<QString, QComboBox *>> m_ranges; ///< by the control that starts it
};

} // namespace client
