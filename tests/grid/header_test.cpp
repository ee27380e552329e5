#include "platform/grid/grid_header.h"

#include "platform/dataset/client_data_set.h"
#include "platform/grid/dataset_features.h"
#include "platform/grid/db_grid.h"
#include "tests/support/packets.h"

#include <gtest/gtest.h>

#include <QScrollBar>
#include <QTest>

using namespace platform;

namespace {

struct NoSorting : DatasetFeaturesEh {
    NoSorting() { registerDatasetFeaturesEh(this, TCustomClientDataSet::staticMetaObject); }
    ~NoSorting() override { unregisterDatasetFeaturesEh(this); }
    void applySorting(const TDBGridEh &, TDataSet &, Sorting) override { }
};

/// Four columns of 100 pixels, the middle two under one upper title.
class Header : public testing::Test {
protected:
    Header()
    {
        m_dataSet.setData(packetOf("A:text,B:text,C:text,D:text\n1,2,3,4\n"));
        m_source.setDataSet(&m_dataSet);
        m_grid.setDataSource(&m_source);
        QList<Column> columns;
        for (const char *caption : { "A", "扫描|B", "扫描|C", "D" }) {
            const QString text = QString::fromUtf8(caption);
            columns.append({ .fieldName = text.right(1), .caption = text, .width = 100, .titleButton = true });
        }
        m_grid.setColumns(columns);
        m_grid.resize(700, 300);
        m_grid.show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&m_grid));
        m_header = m_grid.findChild<GridHeader *>();
    }
    /// A place in a title: in the upper or the lower half of the titles, `x` pixels into the column.
    QPoint title(int column, bool upper, int x = 50) const
    {
        return { m_grid.cellRect(0, column).left() + x, m_header->height() * (upper ? 1 : 3) / 4 };
    }
    void drag(QPoint from, QPoint to)
    {
        QTest::mousePress(m_header, Qt::LeftButton, {}, from);
        const QPoint way[] { (from + to) / 2, to };
        for (const QPoint &stop : way) {
            QMouseEvent move(QEvent::MouseMove, stop, m_header->mapToGlobal(stop), Qt::NoButton, Qt::LeftButton, {});
            QCoreApplication::sendEvent(m_header, &move);
        }
        QTest::mouseRelease(m_header, Qt::LeftButton, {}, to);
    }
    QString order() const
    {
        QString fields;
        for (int index = 0; index < m_grid.columnCount(); ++index)
            fields += m_grid.column(index).fieldName;
        return fields;
    }

    NoSorting m_features;
    TCustomClientDataSet m_dataSet;
    TDataSource m_source;
    TDBGridEh m_grid;
    GridHeader *m_header;
};

TEST_F(Header, OnlyAColumnsOwnTitleSorts)
{
    QTest::mouseClick(m_header, Qt::LeftButton, {}, title(1, true)); // the upper title belongs to two columns
    EXPECT_EQ(m_grid.sortedColumns(), QList<int> {});
    QTest::mouseClick(m_header, Qt::LeftButton, {}, title(2, false));
    EXPECT_EQ(m_grid.sortedColumns(), QList<int> { 2 });
    QTest::mouseClick(m_header, Qt::LeftButton, Qt::ControlModifier, title(0, true)); // a title of one level fills both rows
    EXPECT_EQ(m_grid.sortedColumns(), (QList<int> { 2, 0 }));
}

TEST_F(Header, ABorderResizesAndATitleMoves)
{
    drag(title(0, false, 99), title(0, false, 139));
    EXPECT_EQ(m_grid.column(0).width, 140);
    EXPECT_EQ(m_grid.sortedColumns(), QList<int> {});
    drag(title(1, true, 99), title(1, true, 139)); // no border inside an upper title
    EXPECT_EQ(m_grid.column(1).width, 100);
    drag(title(3, false), title(0, false, 10));
    EXPECT_EQ(order(), QStringLiteral("DABC"));
    drag(title(0, false), title(2, false, 90));
    EXPECT_EQ(order(), QStringLiteral("ABDC"));
    EXPECT_EQ(m_grid.sortedColumns(), QList<int> {});
    QTest::mouseDClick(m_header, Qt::LeftButton, {}, title(0, false, m_grid.column(0).width - 1));
    EXPECT_LT(m_grid.column(0).width, 60);
}

TEST_F(Header, FrozenColumnsStayAndCoverTheScrolledOnes)
{
    m_grid.setFrozenColumns(1);
    m_grid.resize(260, 300);
    QCoreApplication::processEvents();
    const QRect frozen = m_grid.cellRect(0, 0);
    const int before = m_grid.cellRect(0, 1).left();
    m_grid.horizontalScrollBar()->setValue(70);
    EXPECT_EQ(m_grid.cellRect(0, 0), frozen);
    EXPECT_EQ(m_grid.cellRect(0, 1).left(), before - 70);
    QTest::mouseClick(m_grid.viewport(), Qt::LeftButton, {}, frozen.center());
    EXPECT_EQ(m_grid.currentColumn(), 0);
    QTest::keyClick(&m_grid, Qt::Key_End);
    EXPECT_EQ(m_grid.currentColumn(), 3);
    EXPECT_LE(m_grid.cellRect(0, 3).right(), m_grid.viewport()->width());
    EXPECT_GE(m_grid.cellRect(0, 3).left(), frozen.right());
}

TEST_F(Header, CtrlClicksAddAndTakeOutCells)
{
    const auto click = [&](int column, Qt::KeyboardModifiers modifiers) {
        QTest::mouseClick(m_grid.viewport(), Qt::LeftButton, modifiers, m_grid.cellRect(0, column).center());
    };
    click(0, {});
    click(3, Qt::ShiftModifier);
    EXPECT_EQ(m_grid.selectedRanges(), QList<QRect> { QRect(0, 0, 4, 1) });
    click(1, Qt::ControlModifier);
    EXPECT_EQ(m_grid.selectedRanges(), (QList<QRect> { QRect(0, 0, 1, 1), QRect(2, 0, 2, 1) }));
    click(1, Qt::ControlModifier);
    EXPECT_EQ(m_grid.selectedRanges().size(), 3);
}

} // namespace
