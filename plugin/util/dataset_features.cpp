#include "plugin/util/dataset_features.h"

#include "platform/dataset/client_data_set.h"
#include "platform/grid/db_grid.h"
#include "platform/toolkit/component.h"

#include <QRegularExpression>

#include <algorithm>

using namespace platform;
using namespace plugin;

namespace {

const QString sortIndexName = QStringLiteral("SortIndexEh");

void sortByIndex(const TDBGridEh &grid, TCustomClientDataSet &dataSet)
{
    QStringList fields;
    QStringList descending;
    for (const int index : grid.sortedColumns()) {
        const Column &column = grid.column(index);
        fields.append(column.fieldName);
        if (column.sortMark == SortMark::Descending)
            descending.append(column.fieldName);
    }

    const auto &indexes = dataSet.indexDefinitions();
    if (std::any_of(indexes.begin(), indexes.end(), [](const IndexDefinition &index) { return index.name == sortIndexName; }))
        dataSet.deleteIndex(sortIndexName);
    if (fields.isEmpty()) {
        dataSet.setIndexName({});
    } else {
        dataSet.addIndex({ sortIndexName, fields.join(u';'), descending.join(u';') });
        dataSet.setIndexName(sortIndexName);
    }
    dataSet.first();
}

/// The dataset that the provider of `dataSet` serves; null without one.
TDataSet *providedDataSet(const TCustomClientDataSet &dataSet)
{
    const auto *owner = dynamic_cast<TComponentOwner *>(ownerOf(&dataSet));
    const QObject *provider = owner ? owner->findComponent(dataSet.providerName()) : nullptr;
    return provider ? qobject_cast<TDataSet *>(provider->property("DataSet").value<QObject *>()) : nullptr;
}

void sortAtProvider(const TDBGridEh &grid, TCustomClientDataSet &dataSet)
{
    TDataSet *served = providedDataSet(dataSet);
    DatasetFeaturesEh *features = served ? datasetFeaturesEh(*served) : nullptr;
    if (!features)
        return;
    features->applySorting(grid, *served, Sorting::Local);
    dataSet.close();
    dataSet.open();
}

/// The marked columns in the order of their keys: "a, b DESC".
QString sortText(const TDBGridEh &grid)
{
    QStringList keys;
    for (const int index : grid.sortedColumns()) {
        const Column &column = grid.column(index);
        keys.append(column.sortMark == SortMark::Descending ? QString(column.fieldName + u" DESC") : column.fieldName);
    }
    return keys.join(QStringLiteral(", "));
}

/// The statement with this order in place of the one that it ends with.
QString ordered(const QString &statement, const QString &order)
{
    static const QRegularExpression ending(QStringLiteral("\\s+order\\s+by\\s[^()']*$"), QRegularExpression::CaseInsensitiveOption);
    const QString head = QString(statement).remove(ending);
    return order.isEmpty() ? head : QString(head + u" order by " + order);
}

} // namespace

TCDSDatasetFeaturesEh::TCDSDatasetFeaturesEh() { registerDatasetFeaturesEh(this, TCustomClientDataSet::staticMetaObject); }

TCDSDatasetFeaturesEh::~TCDSDatasetFeaturesEh() { unregisterDatasetFeaturesEh(this); }

void TCDSDatasetFeaturesEh::applySorting(const TDBGridEh &grid, TDataSet &dataSet, Sorting sorting)
{
    auto &clientDataSet = static_cast<TCustomClientDataSet &>(dataSet);
    if (sorting == Sorting::Local)
        sortByIndex(grid, clientDataSet);
    else
        sortAtProvider(grid, clientDataSet);
}
namespace plugin {

AdoFeatures::AdoFeatures(const char *dataSetClass, const char *statementProperty)
    : m_statementProperty(statementProperty)
{
    registerDatasetFeaturesEh(this, QByteArray(dataSetClass));
}

AdoFeatures::~AdoFeatures() { unregisterDatasetFeaturesEh(this); }

void AdoFeatures::applySorting(const TDBGridEh &grid, TDataSet &dataSet, Sorting sorting)
{
    const QString order = sortText(grid);
    if (sorting == Sorting::Local) {
        dataSet.setProperty("Sort", order);
        return;
    }
    dataSet.close();
    dataSet.setProperty(m_statementProperty, ordered(dataSet.property(m_statementProperty).toString(), order));
    dataSet.open();
}

} // namespace plugin

TADOSQLDatasetFeaturesEh::TADOSQLDatasetFeaturesEh()
    : AdoFeatures("TADOQuery", "SQL")
{
}

TADOCommandTextDatasetFeaturesEh::TADOCommandTextDatasetFeaturesEh()
    : AdoFeatures("TCustomADODataSet", "CommandText")
{
}
