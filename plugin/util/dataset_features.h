#pragma once

#include "platform/grid/dataset_features.h"

/// Sorts client datasets: locally through the index "SortIndexEh", or, for grids that do not sort locally, through the dataset
/// that their provider serves.
class TCDSDatasetFeaturesEh : public DatasetFeaturesEh {
public:
    TCDSDatasetFeaturesEh();
    ~TCDSDatasetFeaturesEh() override;

    void applySorting(TDBGridEh &grid, TDataSet &dataSet) override;
};
