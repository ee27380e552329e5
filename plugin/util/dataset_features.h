#pragma once

#include "platform/grid/dataset_features.h"

/// Sorts client datasets: themselves through the index "SortIndexEh", or through the dataset that their provider serves, whose
/// rows are then fetched anew. Without such a provider the latter does nothing.
class TCDSDatasetFeaturesEh : public DatasetFeaturesEh {
public:
    TCDSDatasetFeaturesEh();
    ~TCDSDatasetFeaturesEh() override;

    void applySorting(const TDBGridEh &grid, TDataSet &dataSet, platform::Sorting sorting) override;
};
namespace plugin {

/// Sorts the datasets of a package that the platform does not have, which are known by the names of their class and properties:
/// themselves through their text "Sort", or through the "order by" of their statement, which is then run anew.
class AdoFeatures : public DatasetFeaturesEh {
public:
    ~AdoFeatures() override;

    void applySorting(const TDBGridEh &grid, TDataSet &dataSet, platform::Sorting sorting) override;

protected:
    AdoFeatures(const char *dataSetClass, const char *statementProperty);

private:
    const char *m_statementProperty;
};

} // namespace plugin

/// For queries.
class TADOSQLDatasetFeaturesEh : public plugin::AdoFeatures {
public:
    TADOSQLDatasetFeaturesEh();
};

/// For all others, whose statement is their command text.
class TADOCommandTextDatasetFeaturesEh : public plugin::AdoFeatures {
public:
    TADOCommandTextDatasetFeaturesEh();
};
