#include "plugin/util/dataset_features.h"

#include "platform/dataset/client_data_set.h"
#include "platform/grid/db_grid.h"

#include <algorithm>

namespace {
const QString sortIndexName = QStringLiteral("SortIndexEh");
}

TCDSDatasetFeaturesEh::TCDSDatasetFeaturesEh() { registerDatasetFeaturesEh(this, TCustomClientDataSet::staticMetaObject); }

TCDSDatasetFeaturesEh::~TCDSDatasetFeaturesEh() { unregisterDatasetFeaturesEh(this); }

void TCDSDatasetFeaturesEh::applySorting(TDBGridEh &grid, TDataSet &dataSet)
{
    if (!grid.sortLocal())
        return;
    auto &clientDataSet = static_cast<TCustomClientDataSet &>(dataSet);
    QStringList fields;
    QStringList descending;
    for (const int index : grid.sortedColumns()) {
        const Column &column = grid.column(index);
        fields.append(column.fieldName);
        if (column.sortMark == SortMark::Descending)
            descending.append(column.fieldName);
    }

    const auto &indexes = clientDataSet.indexDefinitions();
    if (std::any_of(indexes.begin(), indexes.end(), [](const IndexDefinition &index) { return index.name == sortIndexName; }))
        clientDataSet.deleteIndex(sortIndexName);
    if (fields.isEmpty()) {
        clientDataSet.setIndexName({});
    } else {
        clientDataSet.addIndex({ sortIndexName, fields.join(u';'), descending.join(u';') });
        clientDataSet.setIndexName(sortIndexName);
    }
    clientDataSet.first();
}
