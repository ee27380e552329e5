#include "platform/grid/dataset_features.h"

#include "platform/dataset/data_set.h"

namespace {

struct Registration {
    DatasetFeaturesEh *features;
    QByteArray dataSetClass;
};

QList<Registration> &registrations()
{
    static QList<Registration> list;
    return list;
}

} // namespace

void registerDatasetFeaturesEh(DatasetFeaturesEh *features, const QByteArray &dataSetClass)
{
    registrations().prepend({ features, dataSetClass });
}

void unregisterDatasetFeaturesEh(DatasetFeaturesEh *features)
{
    registrations().removeIf([features](const Registration &registration) { return registration.features == features; });
}

DatasetFeaturesEh *datasetFeaturesEh(const TDataSet &dataSet)
{
    for (const QMetaObject *meta = dataSet.metaObject(); meta; meta = meta->superClass()) {
        for (const Registration &registration : std::as_const(registrations())) {
            if (registration.dataSetClass == meta->className())
                return registration.features;
        }
    }
    return nullptr;
}
