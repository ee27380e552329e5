#include "tests/grid/grid_fixture.h"

#include "platform/grid/filter_bar.h"
#include "platform/grid/grid_filter.h"
#include "platform/grid/value_dialog.h"
#include "platform/toolkit/application.h"

#include <QApplication>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QToolButton>

using namespace platform;

namespace {

class Filter : public Grid {
protected:
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) { QTest::keyClick(QApplication::focusWidget(), key, modifiers); }
    QString codes() const
    {
        QStringList texts;
        for (int row = 0; row < m_grid.rowCount(); ++row)
            texts.append(m_grid.cellText(row, 0));
        return texts.join(u'|');
    }
    bool isBarShown() { return filter().bar().isVisible(); }
    GridFilter &filter() { return m_grid.filter(); }
    /// What the bar says besides the line to type into.
    QString barText()
    {
        QStringList texts;
        for (const QToolButton *button : filter().bar().findChildren<QToolButton *>()) {
            if (button->text().endsWith(u'✕'))
                texts.append(button->text());
        }
        for (const QLabel *label : filter().bar().findChildren<QLabel *>()) {
            if (label->text().contains(u'/'))
                texts.append(label->text());
        }
        return texts.join(u' ');
    }
};

TEST_F(Filter, KeepsAndDropsTheValueOfTheCurrentCell)
{
    m_grid.setCurrentCell(1, 1);
    const int top = m_grid.viewport()->y();
    press(Qt::Key_J, Qt::ControlModifier);
    EXPECT_EQ(codes(), u"008");
    EXPECT_EQ(barText(), QStringLiteral("寄件 网点＝上海 ✕ 1 / 3"));
    EXPECT_GT(m_grid.viewport()->y(), top);
    EXPECT_EQ(m_grid.footerText(1, 2), u"0.25");

    press(Qt::Key_X, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(codes(), u"007|008|009");
    EXPECT_FALSE(isBarShown());
    EXPECT_EQ(m_grid.viewport()->y(), top);
    EXPECT_EQ(m_grid.currentRow(), 1);

    m_grid.setCurrentCell(2, 1);
    press(Qt::Key_J, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(codes(), u"007|008");
    m_grid.setCurrentCell(0, 1);
    press(Qt::Key_J, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(codes(), u"008");
    EXPECT_EQ(filter().description(), QStringLiteral("寄件 网点≠空白、北京"));
    press(Qt::Key_J, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(m_grid.emptyNote(), QStringLiteral("没有符合筛选的行"));
}

TEST_F(Filter, TakesTheSelectedCellsOfTheColumn)
{
    m_grid.setCurrentCell(0, 0);
    m_grid.setCurrentCell(1, 1, Extend::Cells);
    press(Qt::Key_J, Qt::ControlModifier);
    EXPECT_EQ(codes(), u"007|008");
    m_grid.setCurrentCell(1, 1);
    press(Qt::Key_J, Qt::ControlModifier);
    EXPECT_EQ(codes(), u"008"); // in place of the two
}

TEST_F(Filter, FollowsWhatIsTypedOverAllShownColumns)
{
    press(Qt::Key_L, Qt::ControlModifier | Qt::ShiftModifier);
    ASSERT_TRUE(isBarShown());
    QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("bj"));
    EXPECT_TRUE(QTest::qWaitFor([this] { return codes() == u"007"; }));
    EXPECT_EQ(filter().description(), QStringLiteral("含“bj”"));
    press(Qt::Key_Return);
    EXPECT_TRUE(m_grid.hasFocus());
    EXPECT_EQ(codes(), u"007");

    press(Qt::Key_L, Qt::ControlModifier | Qt::ShiftModifier);
    QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("2"));
    press(Qt::Key_Down);
    EXPECT_EQ(codes(), u"008|009");
    m_grid.hideColumn(3);
    press(Qt::Key_L, Qt::ControlModifier | Qt::ShiftModifier);
    QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("2"));
    press(Qt::Key_Down);
    EXPECT_EQ(codes(), u"008|009"); // 0.25 and 12.30; the pieces are hidden
    press(Qt::Key_L, Qt::ControlModifier | Qt::ShiftModifier);
    press(Qt::Key_Escape);
    EXPECT_EQ(codes(), u"007|008|009");
    EXPECT_FALSE(isBarShown());
    EXPECT_TRUE(m_grid.hasFocus());
}

TEST_F(Filter, ChoosesFromTheValuesOfAColumn)
{
    const auto choose = [this](int column, const QString &typed, const QStringList &unticked) {
        m_grid.setCurrentCell(0, column);
        m_grid.setFocus();
        press(Qt::Key_Down, Qt::AltModifier);
        auto *dialog = m_grid.findChild<ValueDialog *>();
        dialog->findChild<QLineEdit *>()->setText(typed);
        QStringList listed;
        for (int row = 0; row < dialog->findChild<QListWidget *>()->count(); ++row) {
            QListWidgetItem *item = dialog->findChild<QListWidget *>()->item(row);
            if (!item->isHidden())
                listed.append(item->text());
            if (unticked.contains(item->text().section(u'　', 0, 0)))
                item->setCheckState(Qt::Unchecked);
        }
        for (QPushButton *button : dialog->findChildren<QPushButton *>()) {
            if (button->text() == QStringLiteral("确定"))
                button->click();
        }
        QCoreApplication::sendPostedEvents(dialog, QEvent::DeferredDelete);
        return listed.join(u' ');
    };
    EXPECT_EQ(choose(1, {}, { QStringLiteral("空白") }), QStringLiteral("空白　(1) 北京　(1) 上海　(1)"));
    EXPECT_EQ(codes(), u"007|008");
    EXPECT_EQ(filter().description(), QStringLiteral("寄件 网点≠空白"));
    EXPECT_EQ(choose(1, QStringLiteral("sh"), {}), QStringLiteral("上海　(1)"));
    EXPECT_EQ(codes(), u"008");
    EXPECT_EQ(choose(2, {}, {}), QStringLiteral("0.25　(1)"));
    EXPECT_EQ(filter().description(), QStringLiteral("寄件 网点＝上海"));
    filter().clear();
    EXPECT_EQ(choose(2, {}, {}), QStringLiteral("0.25　(1) 1.5　(1) 12.3　(1)"));
    EXPECT_FALSE(isBarShown());
}

TEST_F(Filter, GoesWithTheRowsItWasMadeFor)
{
    m_grid.setCurrentCell(1, 1);
    press(Qt::Key_J, Qt::ControlModifier);
    m_dataSet.setData(packetOf("CODE:text,SITE:text\n001,深圳\n"));
    EXPECT_EQ(codes(), u"001");
    EXPECT_FALSE(isBarShown());
    m_dataSet.close();
    EXPECT_THROW(filter().openBar(), Exception);
    EXPECT_THROW(filter().useSelectedValues(QuickFilter::Keep::Those), Exception);
    filter().clear();
}

TEST_F(Filter, RefusesAColumnWithoutData)
{
    m_grid.setColumns({ { .fieldName = {}, .caption = QStringLiteral("序号") } });
    EXPECT_THROW(filter().useSelectedValues(QuickFilter::Keep::Those), Exception);
    EXPECT_THROW(filter().chooseValues(0), Exception);
}

TEST_F(Filter, SaysInTheFootersHowManyThereAre)
{
    Column code = m_grid.column(0);
    code.footers = { { FooterKind::Count } };
    m_grid.setColumn(0, code);
    EXPECT_EQ(m_grid.footerDisplayText(0, 0), u"3");
    filter().setText(QStringLiteral("bj"));
    EXPECT_EQ(m_grid.footerDisplayText(0, 0), u"1 / 3");
    EXPECT_EQ(m_grid.footerText(0, 0), u"1");
}

} // namespace
