#pragma once

#include "platform/dataset/client_data_set.h"
#include "platform/toolkit/application.h"
#include "platform/toolkit/form.h"
#include "platform/toolkit/published.h"

#include <QLineEdit>

/// A host's main window with small code tables, which writes down what the plug-in does to it. While it lives it is the main
/// form of the current application object and answers its message boxes.
class FakeHost : public TMainForm {
    Q_OBJECT
    Q_PROPERTY(qulonglong GlobalCdsAddr READ dataSetsAddress)
    Q_PROPERTY(qulonglong GlobalValueAddr READ valuesAddress)
    Q_PROPERTY(double ServerDateTime MEMBER serverDateTime)

public:
    FakeHost();
    ~FakeHost() override;

    Q_INVOKABLE void ResetSearch(QObject *grid);
    qintptr perform(int message, quintptr form, qintptr second) override;

    /// Adds a dataset with one text column.
    TClientDataSetEx *addDataSet(const char *name, const char *field, const QStringList &values);
    void removeDataSet(QStringView name);
    void addValue(const char *name, const QString &text);

    QStringList log; ///< "1127 frm_X", "ResetSearch frm_X.DataView1.DataViewGrid", "message <text>|<title>|<flags>"
    int answer = platform::idOk;
    double serverDateTime = 0;

private:
    qulonglong dataSetsAddress() const { return reinterpret_cast<quintptr>(&m_dataSets); }
    qulonglong valuesAddress() const { return reinterpret_cast<quintptr>(&m_values); }

    TList m_dataSets;
    TList m_values;
};

/// One column of texts as a packet.
packet::PacketPtr textColumn(const char *field, const QStringList &values);
