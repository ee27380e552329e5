#pragma once

#include "platform/grid/dataset_features.h"

/// Sorts client datasets: themselves through the index "SortIndexEh", or through the dataset that their provider serves, whose
/// rows are then fetched anew. Without such a provider the latter does nothing.
class TCDSDatasetFeaturesEh : public DatasetFeaturesEh {
public:
    TCDSDatasetFeaturesEh();
    ~TCDSDatasetFeaturesEh() override;

    void applySorting(const TDBGridEh &grid, TDataSet &dataSet, Sorting sorting) override;
};
