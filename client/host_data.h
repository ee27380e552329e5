#pragma once

#include "platform/dataset/client_data_set.h"
#include "platform/toolkit/published.h"

class QWidget;

namespace client {

struct Login;

/// The datasets and values that the host keeps for all its modules, loaded once after login.
class HostData {
public:
    /// Loads everything over `connection` for that login; the components belong to `owner`. Throws what the statements throw, and Exception
    /// when there is no such site.
    void load(TCustomRemoteServer *connection, const Login &login, QWidget *owner);

    const TList &dataSets() const { return m_dataSets; }
    const TList &values() const { return m_values; }
    /// The text of a value; "" when there is none of that name.
    QString value(QStringView name) const;
    const QString &employeeName() const { return m_employeeName; }

private:
    void publishEmployee(const Login &login, QWidget *owner);
    TClientDataSetEx *dataSet(QStringView name) const;
    void addDataSet(const QString &name, const QString &statement, TCustomRemoteServer *connection, QWidget *owner);
    void addValue(const QString &name, const QString &text, QWidget *owner);

    TList m_dataSets;
    TList m_values;
    QString m_employeeName;
};

} // namespace client
