#include "tests/grid/grid_fixture.h"

#include "packet/builder.h"
#include "platform/grid/dataset_features.h"
#include "platform/grid/grid_commands.h"
#include "platform/grid/grid_menu.h"
#include "platform/toolkit/application.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMenu>
#include <QMimeData>

using namespace platform;

namespace {

/// Writes down which columns the grid wants sorted, "A+;B-" for A ascending and B descending.
class RecordedFeatures : public DatasetFeaturesEh {
public:
    RecordedFeatures() { registerDatasetFeaturesEh(this, TCustomClientDataSet::staticMetaObject); }
    ~RecordedFeatures() override { unregisterDatasetFeaturesEh(this); }

    void applySorting(const TDBGridEh &grid, TDataSet &, Sorting) override
    {
        QStringList keys;
        for (const int index : grid.sortedColumns())
            keys.append(grid.column(index).fieldName + (grid.column(index).sortMark == SortMark::Descending ? u'-' : u'+'));
        applied.append(keys.join(u';'));
    }

    QStringList applied;
};

TEST_F(Grid, TitleClicksCycleTheMarkAndCtrlAddsKeys)
{
    RecordedFeatures features;
    for (int click = 0; click < 4; ++click)
        m_grid.clickTitle(0);
    m_grid.clickTitle(1);
    m_grid.clickTitle(2, Qt::ControlModifier);
    m_grid.clickTitle(2, Qt::ControlModifier);
    m_grid.clickTitle(0);
    m_grid.clickTitle(3); // no title button
    EXPECT_EQ(features.applied.join(u' '), QStringLiteral("CODE+ CODE-  CODE+ SITE+ SITE+;FEE+ SITE+;FEE- CODE+"));
}

TEST_F(Grid, FootersFollowFilterAndEdits)
{
    EXPECT_EQ(m_grid.footerText(0, 2), QStringLiteral("合计"));
    EXPECT_EQ(m_grid.footerText(1, 2), QStringLiteral("14.05"));
    EXPECT_EQ(m_grid.footerText(1, 3), QStringLiteral("3"));
    EXPECT_EQ(m_grid.footerText(1, 0), QString());
    m_dataSet.setFilter(QStringLiteral("site='上海'"));
    m_dataSet.setFiltered(true);
    EXPECT_EQ(m_grid.footerText(1, 2), QStringLiteral("0.25"));
    m_dataSet.setFiltered(false);
    m_dataSet.first();
    m_dataSet.edit();
    m_dataSet.fieldByName(u"FEE")->setAsString(QStringLiteral("0.1"));
    m_dataSet.post();
    EXPECT_EQ(m_grid.footerText(1, 2), QStringLiteral("12.65"));
}

TEST_F(Grid, ColumnsMoveHideAndReturnToTheDesign)
{
    m_grid.moveColumn(3, 0);
    m_grid.setColumnWidth(1, 123);
    m_grid.hideColumn(2);
    EXPECT_EQ(order(), QStringLiteral("PIECE;CODE;SITE;FEE").split(u';'));
    EXPECT_EQ(m_grid.columnIndex(u"site"), 2);
    EXPECT_EQ(m_grid.columnIndex(u"site", ColumnScope::Visible), -1);
    EXPECT_TRUE(m_grid.cellRect(0, 2).isEmpty());
    m_grid.restoreDesignedColumns();
    EXPECT_EQ(order(), QStringLiteral("CODE;SITE;FEE;PIECE").split(u';'));
    EXPECT_EQ(m_grid.column(0).width, 80);
    EXPECT_TRUE(m_grid.column(1).visible);
}

TEST_F(Grid, APersonsChoiceOfColumnsComesBeforeTheScreens)
{
    const auto visible = [this](int column) { return m_grid.column(column).visible; };
    m_grid.setColumnVisible(1, false); // a screen
    EXPECT_FALSE(visible(1));
    EXPECT_EQ(m_grid.columnChoice(1), std::nullopt);
    m_grid.showColumn(1);
    m_grid.setColumnVisible(1, false);
    EXPECT_TRUE(visible(1)) << "a screen does not take away what a person wants to see";
    m_grid.hideColumn(1);
    EXPECT_EQ(m_grid.columnChoice(1), std::nullopt) << "the screen hides it anyway";
    m_grid.setColumnVisible(1, true);
    EXPECT_TRUE(visible(1));
    m_grid.hideColumn(2);
    m_grid.setColumnVisible(2, false);
    m_grid.setColumnVisible(2, true);
    EXPECT_FALSE(visible(2)) << "hidden by the person, whatever the screen does meanwhile";
    m_grid.restoreDesignedColumns();
    EXPECT_TRUE(visible(2));
}

TEST_F(Grid, EveryCommandHasItsKeysAndStandsInTheMenu)
{
    QStringList keys;
    QStringList texts;
    for (const GridCommand &command : gridCommands()) {
        texts.append(command.text.toString());
        for (const QKeySequence &sequence : command.keys()) {
            EXPECT_EQ(gridCommandFor(sequence[0]), &command) << "two commands with the same key, or none";
            keys.append(sequence.toString());
        }
    }
    EXPECT_EQ(keys.size(), texts.size());
    const auto menu = cellMenu(m_grid);
    const QMenu *columns = menu->actions().last()->menu();
    for (const QAction *action : menu->actions() + columns->actions())
        texts.removeOne(action->text());
    EXPECT_EQ(texts, QStringList());

    m_grid.setCurrentCell(1, 2);
    QTest::keyClick(&m_grid, Qt::Key_Space, Qt::ControlModifier);
    EXPECT_EQ(m_grid.selectedRanges(), QList<QRect> { QRect(2, 0, 1, 3) });
    QTest::keyClick(&m_grid, Qt::Key_Space, Qt::ShiftModifier);
    EXPECT_EQ(m_grid.selectedRanges(), QList<QRect> { QRect(0, 1, 4, 1) });
    QTest::keyClick(&m_grid, Qt::Key_Space);
    EXPECT_EQ(m_grid.selectedRanges(), QList<QRect> {});
    QTest::keyClick(&m_grid, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(&m_grid, Qt::Key_C, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_TRUE(QGuiApplication::clipboard()->text().startsWith(u"编号\t")) << QGuiApplication::clipboard()->text().toStdString();
}

TEST_F(Grid, ASelectionDraggedBeyondTheViewScrollsOnUntilTheButtonIsReleased)
{
    QString rows = QStringLiteral("CODE:text,SITE:text,FEE:decimal,PIECE:integer\n");
    for (int row = 0; row < 200; ++row)
        rows += QStringLiteral("%1,甲,1,1\n").arg(row);
    m_dataSet.setData(packetOf(rows.toStdString()));
    const QPoint below(m_grid.cellRect(0, 1).center().x(), m_grid.viewport()->height() + 5);
    QTest::mousePress(m_grid.viewport(), Qt::LeftButton, {}, m_grid.cellRect(0, 1).center());
    QMouseEvent move(QEvent::MouseMove, below, m_grid.viewport()->mapToGlobal(below), Qt::NoButton, Qt::LeftButton, {});
    QCoreApplication::sendEvent(m_grid.viewport(), &move);
    const int firstStep = m_grid.currentRow();
    EXPECT_TRUE(QTest::qWaitFor([&] { return m_grid.currentRow() > firstStep + 2; }));
    QTest::mouseRelease(m_grid.viewport(), Qt::LeftButton, {}, below);
    const int last = m_grid.currentRow();
    QTest::qWait(150);
    EXPECT_EQ(m_grid.currentRow(), last);
    EXPECT_EQ(m_grid.selectedRanges(), QList<QRect> { QRect(1, 0, 1, last + 1) });
}

TEST_F(Grid, TheCurrentRowIsTheDataSetsBothWays)
{
    click(2, 1);
    EXPECT_EQ(m_dataSet.recordIndex(), 2);
    EXPECT_EQ(m_grid.currentColumn(), 1);
    m_dataSet.moveTo(1);
    EXPECT_EQ(m_grid.currentRow(), 1);
    QTest::keyClick(&m_grid, Qt::Key_Up);
    QTest::keyClick(&m_grid, Qt::Key_Right);
    EXPECT_EQ(m_dataSet.recordIndex(), 0);
    EXPECT_EQ(m_grid.currentColumn(), 2);
    QTest::keyClick(&m_grid, Qt::Key_End, Qt::ControlModifier);
    EXPECT_EQ(m_dataSet.recordIndex(), 2);
    EXPECT_EQ(m_grid.currentColumn(), 3);
}

TEST_F(Grid, ARangeIsCopiedAsTextAndAsHtmlThatKeepsCodes)
{
    click(0, 0);
    click(1, 2, Qt::ShiftModifier);
    m_grid.copySelection(CopyTitles::With);
    const QMimeData *copied = QGuiApplication::clipboard()->mimeData();
    EXPECT_EQ(copied->text(), QStringLiteral("编号\t寄件 网点\t寄件 费用\r\n007\t北京\t1.5\r\n008\t上海\t0.25\r\n"));
    EXPECT_TRUE(copied->html().contains(u"mso-number-format:\"\\@\""));
    m_grid.clearSelection();
    EXPECT_TRUE(m_grid.selectedRanges().isEmpty());
    m_grid.copySelection(CopyTitles::Without);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("0.25"));
}

TEST_F(Grid, ACheckBoxIsCopiedAsATick)
{
    m_grid.setColumns({ { .fieldName = QStringLiteral("PIECE"),
        .caption = QStringLiteral("已付"),
        .checkedKey = QStringLiteral("1"),
        .uncheckedKey = QStringLiteral("2") } });
    m_dataSet.setData(packetOf("PIECE:integer\n1\n2\n3\n"));
    m_grid.selectAll();
    m_grid.copySelection(CopyTitles::Without);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("√\r\n\r\n3\r\n")) << "3 is no value of the box";
}

TEST_F(Grid, ACellEventMayColourACellAndAFailingOneIsReportedNotThrown)
{
    m_grid.onGetCellParams = [](int row, int column, CellParameters &parameters) {
        if (row == 1 && column == 2)
            parameters.background = Qt::red;
    };
    EXPECT_EQ(m_grid.cellBackground(1, 2), QColor(Qt::red));
    EXPECT_NE(m_grid.cellBackground(0, 2), QColor(Qt::red));
    m_grid.onGetCellParams = [](int, int, CellParameters &) { throw Exception(QStringLiteral("坏")); };
    QStringList errors;
    QObject watcher;
    Application->setMessageResponder([](const MessageRequest &request) { return request.defaultAnswer(); });
    QObject::connect(Application, &TApplication::happened, &watcher, [&](const QString &kind) { errors.append(kind); });
    m_grid.viewport()->repaint();
    QCoreApplication::processEvents();
    EXPECT_EQ(errors, QStringList(QStringLiteral("error")));
    Application->setMessageResponder({});
}

TEST(BigGrid, AMillionRowsShowTheirLastOneAtOnce)
{
    packet::Builder builder({ { "N", packet::ColumnType::Int64 } });
    for (int row = 0; row < 1'000'000; ++row) {
        builder.addInteger(0, row);
        builder.endRow();
    }
    TCustomClientDataSet dataSet;
    dataSet.setData(builder.finish());
    TDataSource source;
    source.setDataSet(&dataSet);
    TDBGridEh grid;
    grid.setColumns({ { .fieldName = QStringLiteral("N"), .caption = QStringLiteral("号") } });
    grid.setDataSource(&source);
    grid.resize(300, 300);
    grid.show();
    grid.setCurrentCell(999'999, 0);
    EXPECT_EQ(grid.cellText(999'999, 0), QStringLiteral("999999"));
    EXPECT_TRUE(grid.viewport()->rect().contains(grid.cellRect(999'999, 0)));
    EXPECT_FALSE(grid.viewport()->rect().intersects(grid.cellRect(0, 0)));
}

} // namespace
