#include "client/export/table_export.h"

#include "platform/dataset/client_data_set.h"
#include "platform/grid/db_grid.h"
#include "platform/toolkit/exception.h"
#include "tests/support/packets.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

namespace {

class TableExport : public testing::Test {
protected:
    TableExport()
    {
        m_dataSet.setData(packetOf("CODE:text,SECRET:text,FEE:decimal\n007,x,1.5\n008,y,\n"));
        m_source.setDataSet(&m_dataSet);
        m_grid.setDataSource(&m_source);
        m_grid.setColumns({ { .fieldName = QStringLiteral("FEE"), .caption = QStringLiteral("寄件|费用") },
            { .fieldName = QStringLiteral("SECRET"), .caption = QStringLiteral("隐藏"), .visible = false },
            { .fieldName = QStringLiteral("CODE"), .caption = QStringLiteral("编号") } });
    }
    QByteArray contents(const QString &name) const
    {
        QFile file(m_directory.filePath(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("missing");
    }

    QTemporaryDir m_directory;
    TCustomClientDataSet m_dataSet;
    TDataSource m_source;
    TDBGridEh m_grid;
};

TEST_F(TableExport, WritesWhatIsShown)
{
    EXPECT_EQ(exportGrid(m_grid, m_directory.filePath(QStringLiteral("表.csv"))), 2);
    EXPECT_EQ(contents(QStringLiteral("表.csv")), QByteArray("\xEF\xBB\xBF寄件 费用,编号\r\n1.5,007\r\n,008\r\n"));
    exportGrid(m_grid, m_directory.filePath(QStringLiteral("表.txt")));
    EXPECT_EQ(contents(QStringLiteral("表.txt")), QByteArray("\xEF\xBB\xBF寄件 费用\t编号\r\n1.5\t007\r\n\t008\r\n"));
}

TEST_F(TableExport, AFailureNamesTheFileAndLeavesWhatWasThere)
{
    const QString nowhere = m_directory.filePath(QStringLiteral("没有/表.csv"));
    const QString kept = m_directory.filePath(QStringLiteral("表.csv"));
    exportGrid(m_grid, kept);
    const QByteArray before = contents(QStringLiteral("表.csv"));
    std::string manyRows = "CODE:text,SECRET:text,FEE:decimal\n";
    for (int row = 0; row < 9000; ++row)
        manyRows += "007,x,1.5\n";
    m_dataSet.setData(packetOf(manyRows));
    const auto breakOff = [](int) { throw Exception(QStringLiteral("导出已取消")); };
    try {
        exportGrid(m_grid, nowhere);
        ADD_FAILURE() << "written";
    } catch (const Exception &exception) {
        EXPECT_TRUE(exception.message().contains(nowhere)) << exception.what();
    }
    EXPECT_THROW(exportGrid(m_grid, kept, breakOff), Exception);
    EXPECT_EQ(contents(QStringLiteral("表.csv")), before);
    EXPECT_EQ(QDir(m_directory.path()).entryList(QDir::Files), QStringList(QStringLiteral("表.csv")));
}

} // namespace
