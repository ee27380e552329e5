#pragma once

#include "platform/grid/dataset_features.h"

/// Sorts client datasets through the index "SortIndexEh". Grids that do not sort locally are left as the server sent them.
class TCDSDatasetFeaturesEh : public DatasetFeaturesEh {
public:
    TCDSDatasetFeaturesEh();
    ~TCDSDatasetFeaturesEh() override;

    void applySorting(TDBGridEh &grid, TDataSet &dataSet) override;
};
