#pragma once

#include "packet/packet.h"
#include "platform/dataset/data_set.h"

#include <QPointer>

/// Serves the rows of a dataset to the client datasets of the same owner that name it as their provider.
class TDataSetProvider : public QObject {
    Q_OBJECT
    Q_PROPERTY(QObject *DataSet READ dataSet)

public:
    using QObject::QObject;

    TDataSet *dataSet() const { return m_dataSet; }
    void setDataSet(TDataSet *dataSet) { m_dataSet = dataSet; }

    /// The shown rows in their shown order; throws DataSetError when there is no open dataset.
    packet::PacketPtr data() const;

private:
    QPointer<TDataSet> m_dataSet;
};
