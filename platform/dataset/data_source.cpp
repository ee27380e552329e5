#include "platform/dataset/data_source.h"

void TDataSource::setDataSet(TDataSet *dataSet)
{
    if (dataSet == m_dataSet)
        return;
    if (m_dataSet)
        m_dataSet->disconnect(this);
    m_dataSet = dataSet;
    if (dataSet) {
        connect(dataSet, &TDataSet::stateChanged, this, &TDataSource::stateChanged);
        connect(dataSet, &TDataSet::rowsChanged, this, &TDataSource::rowsChanged);
        connect(dataSet, &TDataSet::rowEdited, this, &TDataSource::rowEdited);
        connect(dataSet, &TDataSet::recordMoved, this, &TDataSource::recordMoved);
        connect(dataSet, &QObject::destroyed, this, &TDataSource::dataSetChanged);
    }
    Q_EMIT dataSetChanged();
    Q_EMIT stateChanged();
}
