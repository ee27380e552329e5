#include "tests/grid/grid_fixture.h"

#include "platform/grid/grid_finder.h"
#include "platform/toolkit/application.h"

#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QInputMethodEvent>
#include <QListWidget>
#include <QPushButton>

using namespace platform;

namespace {

class Search : public Grid {
protected:
    QPoint current() const { return QPoint(m_grid.currentColumn(), m_grid.currentRow()); }
    bool find(const GridSearch &search, SearchDirection direction = SearchDirection::Forward)
    {
        return m_grid.finder().find(search, direction);
    }
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) { QTest::keyClick(&m_grid, key, modifiers); }
    /// The box that shows what was typed; empty while it is hidden.
    QString typed() const
    {
        for (const QLabel *label : m_grid.findChildren<QLabel *>()) {
            if (label->isVisible())
                return label->text();
        }
        return {};
    }
};

TEST_F(Search, GoesRowByRowThroughTheVisibleColumnsAndAroundTheEnd)
{
    struct Case {
        QPoint from;
        GridSearch search;
        SearchDirection direction;
        QPoint found; ///< `from` when there is none
    };
    using enum TextPattern::Match;
    using enum SearchDirection;
    const Case cases[] = {
        { { 0, 0 }, { .text = QStringLiteral("海") }, Forward, { 1, 1 } },
        { { 1, 1 }, { .text = QStringLiteral("007") }, Forward, { 0, 0 } },
        { { 0, 0 }, { .text = QStringLiteral("00") }, Backward, { 0, 2 } },
        { { 0, 0 }, { .text = QStringLiteral("1") }, Forward, { 2, 0 } }, // a number, as it is shown
        { { 2, 0 }, { .text = QStringLiteral("1") }, Forward, { 3, 0 } },
        { { 2, 0 }, { .text = QStringLiteral("1"), .column = 2 }, Forward, { 2, 2 } },
        { { 0, 0 }, { .text = QStringLiteral("2"), .match = Beginning }, Forward, { 3, 1 } },
        { { 0, 0 }, { .text = QStringLiteral("2"), .match = Whole }, Backward, { 3, 1 } },
        { { 0, 1 }, { .text = QStringLiteral("008") }, Forward, { 0, 1 } }, // the only one is the current one
        { { 1, 1 }, { .text = QStringLiteral("深圳") }, Forward, { 1, 1 } },
        { { 1, 1 }, { .text = QStringLiteral("网点") }, Forward, { 1, 1 } }, // a title, not wanted
        { { 1, 1 }, {}, Forward, { 1, 1 } },
    };
    for (const Case &test : cases) {
        m_grid.setCurrentCell(test.from.y(), test.from.x());
        (void)find(test.search, test.direction);
        EXPECT_EQ(current(), test.found) << test.search.text.toStdString();
    }
    m_grid.setColumnVisible(1, false);
    EXPECT_FALSE(find({ .text = QStringLiteral("上海") }));
}

TEST_F(Search, LatinCaseCountsOnlyWhenWanted)
{
    m_dataSet.setData(packetOf("CODE:text,SITE:text\nab京Cd,ÄB\n"));
    EXPECT_TRUE(find({ .text = QStringLiteral("B京c") }));
    EXPECT_TRUE(find({ .text = QStringLiteral("äb") }));
    EXPECT_FALSE(find({ .text = QStringLiteral("B京c"), .sensitivity = Qt::CaseSensitive }));
    EXPECT_FALSE(find({ .text = QStringLiteral("äb"), .sensitivity = Qt::CaseSensitive }));
    EXPECT_FALSE(find({ .text = QStringLiteral("b京cde") }));
}

TEST_F(Search, TitlesAreFoundBeforeTheFirstRowAndTheSearchGoesOnFromThem)
{
    m_dataSet.last();
    m_grid.setCurrentCell(2, 3);
    const GridSearch search { .text = QStringLiteral("费用"), .titles = true };
    EXPECT_TRUE(find(search));
    EXPECT_EQ(current(), QPoint(2, 2)); // the column of the title, the row stays
    m_dataSet.setData(packetOf("CODE:text,SITE:text,FEE:decimal,PIECE:integer\n007,费用,1.50,1\n"));
    EXPECT_TRUE(find(search));
    EXPECT_EQ(current(), QPoint(2, 0));
    EXPECT_TRUE(find(search));
    EXPECT_EQ(current(), QPoint(1, 0));
}

TEST_F(Search, TypedTextMovesWithinTheCurrentColumn)
{
    m_grid.setCurrentCell(0, 0);
    press(Qt::Key_0);
    EXPECT_EQ(current(), QPoint(0, 0));
    press(Qt::Key_9);
    EXPECT_EQ(current(), QPoint(0, 2));
    EXPECT_TRUE(typed().contains(u"编号") && typed().endsWith(u"：09")) << typed().toStdString();
    press(Qt::Key_X); // nothing carries it: what was found stays
    EXPECT_EQ(current(), QPoint(0, 2));
    EXPECT_TRUE(typed().endsWith(u"09X") || typed().endsWith(u"09x")) << typed().toStdString();
    press(Qt::Key_Backspace);
    EXPECT_EQ(current(), QPoint(0, 0));
    press(Qt::Key_F3);
    EXPECT_EQ(current(), QPoint(0, 1));
    press(Qt::Key_Escape);
    EXPECT_EQ(typed(), QString());

    press(Qt::Key_8);
    press(Qt::Key_Right); // any other movement ends it
    EXPECT_EQ(typed(), QString());
    QInputMethodEvent chinese;
    chinese.setCommitString(QStringLiteral("北京"));
    QApplication::sendEvent(&m_grid, &chinese);
    EXPECT_EQ(current(), QPoint(1, 0));
}

TEST_F(Search, TheDialogStaysOpenAndRemembersWhatWasLookedFor)
{
    m_grid.setCurrentCell(0, 0);
    press(Qt::Key_F, Qt::ControlModifier);
    auto *dialog = m_grid.findChild<QDialog *>();
    ASSERT_TRUE(dialog && dialog->isVisible());
    QTest::keyClicks(dialog->focusWidget(), QStringLiteral("008"));
    QTest::keyClick(dialog, Qt::Key_Return);
    EXPECT_EQ(current(), QPoint(0, 1));
    EXPECT_TRUE(dialog->isVisible());
    EXPECT_EQ(dialog->findChild<QComboBox *>()->itemText(0), QStringLiteral("008"));
    QTest::keyClick(dialog, Qt::Key_Escape);
    EXPECT_FALSE(dialog->isVisible());

    QStringList messages;
    Application->setMessageResponder([&](const MessageRequest &request) {
        messages.append(request.text);
        return idOk;
    });
    m_dataSet.setData(packetOf("CODE:text,SITE:text,FEE:decimal,PIECE:integer\n1,2,3,4\n"));
    press(Qt::Key_F3);
    Application->setMessageResponder({});
    EXPECT_EQ(messages, QStringList { QStringLiteral("表格里没有“008”。") });
}

TEST_F(Search, FindsChineseAsItIsReadAndListsAllThatIsFound)
{
    EXPECT_TRUE(find({ .text = QStringLiteral("sh") }));
    EXPECT_EQ(current(), QPoint(1, 1));
    press(Qt::Key_Home, Qt::ControlModifier);
    press(Qt::Key_Right);
    QTest::keyClicks(&m_grid, QStringLiteral("shangh"));
    EXPECT_EQ(current(), QPoint(1, 1));
    EXPECT_EQ(m_grid.finder().foundText(1, QStringLiteral("在上海市")).start, 1);
    EXPECT_EQ(m_grid.finder().foundText(1, QStringLiteral("在上海市")).length, 2);

    const FoundCells found = findCells(m_grid, { .text = QStringLiteral("0"), .titles = true }, 3);
    EXPECT_EQ(found.listed, QList<QPoint>({ { 0, 0 }, { 0, 1 }, { 2, 1 } }));
    EXPECT_EQ(found.count, 4);
    EXPECT_EQ(findCells(m_grid, {}, 3).count, 0);

    press(Qt::Key_F, Qt::ControlModifier);
    auto *dialog = m_grid.findChild<QDialog *>();
    dialog->findChild<QComboBox *>()->setEditText(QStringLiteral("bj"));
    const auto push = [dialog](const QString &text) {
        for (QPushButton *button : dialog->findChildren<QPushButton *>()) {
            if (button->text().startsWith(text))
                button->click();
        }
    };
    push(QStringLiteral("列出全部"));
    auto *hits = dialog->findChild<QListWidget *>();
    ASSERT_EQ(hits->count(), 1);
    EXPECT_EQ(hits->item(0)->text(), QStringLiteral("第 1 行　寄件 网点：北京"));
    hits->setCurrentRow(0);
    EXPECT_EQ(current(), QPoint(1, 0));
    push(QStringLiteral("筛选"));
    EXPECT_EQ(m_grid.rowCount(), 1);
    EXPECT_EQ(hits->count(), 0); // they stood elsewhere
}

} // namespace
