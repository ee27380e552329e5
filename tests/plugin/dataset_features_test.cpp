#include "plugin/util/dataset_features.h"

#include "platform/dataset/client_data_set.h"
#include "platform/dataset/data_source.h"
#include "platform/grid/db_grid.h"
#include "tests/plugin/fake_host.h"
#include "tests/support/print_qstring.h"

#include <gtest/gtest.h>

using namespace platform;

namespace {

/// What stands in for the query of a package that the platform does not have.
class TADOQuery : public TClientDataSetEx {
    Q_OBJECT
    Q_PROPERTY(QString Sort MEMBER sort)
    Q_PROPERTY(QString SQL MEMBER sql WRITE setStatement)

public:
    void setStatement(const QString &statement)
    {
        EXPECT_FALSE(active()) << "an open dataset keeps its statement";
        sql = statement;
        setData(textColumn("a", { QStringLiteral("1") }));
    }

    QString sort;
    QString sql;
};

TEST(DatasetFeatures, ADatasetOfAnotherPackageSortsThroughItsProperties)
{
    const TCDSDatasetFeaturesEh clientDataSets;
    const TADOSQLDatasetFeaturesEh queries;
    TADOQuery query;
    query.setStatement(QStringLiteral("select * from t where c in (select c from u order by 1)  Order By x, y desc"));
    TDataSource source;
    source.setDataSet(&query);
    TDBGridEh grid;
    QList<Column> columns;
    for (const char *field : { "a", "b" })
        columns.append({ .fieldName = QString::fromLatin1(field), .caption = QStringLiteral("列"), .width = 50, .titleButton = true });
    grid.setColumns(columns);
    grid.setDataSource(&source);
    grid.setSortLocal(true);
    grid.clickTitle(0);
    grid.clickTitle(1, Qt::ControlModifier);
    grid.clickTitle(1, Qt::ControlModifier);
    EXPECT_EQ(query.sort, QStringLiteral("a, b DESC"));
    EXPECT_EQ(query.indexName(), QString()) << "the client datasets' own way is not taken";
    grid.setSortLocal(false);
    grid.clickTitle(0);
    EXPECT_EQ(query.sql, QStringLiteral("select * from t where c in (select c from u order by 1) order by a DESC"));
    EXPECT_TRUE(query.active());
}

} // namespace

#include "dataset_features_test.moc"
