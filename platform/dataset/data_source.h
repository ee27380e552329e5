#pragma once

#include "platform/dataset/data_set.h"

#include <QPointer>

/// Joins controls to a dataset that may be exchanged. Forwards the dataset's signals; survives the dataset.
class TDataSource : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    TDataSet *dataSet() const { return m_dataSet; }
    void setDataSet(TDataSet *dataSet);

Q_SIGNALS:
    void dataSetChanged(); ///< another dataset, or none
    void stateChanged();
    void rowsChanged();
    void rowEdited(int row);
    void recordMoved(int row);

private:
    QPointer<TDataSet> m_dataSet;
};
