#pragma once

#include <QByteArray>
#include <QMetaObject>

class TDBGridEh;
class TDataSet;

namespace platform {

/// Whether a dataset sorts the rows it holds, or fetches them anew in the order.
enum class Sorting { Local, AtSource };

} // namespace platform

/// Applies a grid's sort marks to datasets of one class; registered for that class and served to its descendants.
class DatasetFeaturesEh {
public:
    virtual ~DatasetFeaturesEh() = default;
    /// Sorts `dataSet` by the grid's marked columns, in the order of their keys.
    virtual void applySorting(const TDBGridEh &grid, TDataSet &dataSet, platform::Sorting sorting) = 0;
};

/// Registers `features` (not owned; it must outlive the registration) for a dataset class, which may also be one that only another
/// library knows, by its name; a later registration for the same class wins.
void registerDatasetFeaturesEh(DatasetFeaturesEh *features, const QByteArray &dataSetClass);
inline void registerDatasetFeaturesEh(DatasetFeaturesEh *features, const QMetaObject &dataSetClass)
{
    registerDatasetFeaturesEh(features, QByteArray(dataSetClass.className()));
}
void unregisterDatasetFeaturesEh(DatasetFeaturesEh *features);
/// The features registered for the dataset's class or its nearest ancestor, or null.
DatasetFeaturesEh *datasetFeaturesEh(const TDataSet &dataSet);
