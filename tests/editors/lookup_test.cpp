#include "entry_form.h"

#include "platform/dataset/client_data_set.h"
#include "platform/grid/editors.h"
#include "tests/support/packets.h"

#include <gmock/gmock.h>

#include <QSignalSpy>
#include <QTableView>
#include <QToolButton>

namespace {

using ::testing::ElementsAre;

class Lookup : public ::testing::Test {
protected:
    Lookup()
    {
        sites.setData(packetOf("SITE_CODE:text,SITE_NAME:text,SUPERIOR_SITE:text\n"
                               "1001,北京朝阳,北京\n"
                               "1002,北京,总部\n"
                               "2001,上海南浦,上海\n"
                               "b3,Beijing,总部\n"
                               "B3,南京1001,总部\n"));
        source.setDataSet(&sites);
        edit->setListSource(&source);
        edit->setFields(QStringLiteral("SITE_NAME"), QStringLiteral("SITE_NAME"), QStringLiteral("site_code"));
        edit->setDropDownColumns({ { QStringLiteral("SITE_CODE"), QStringLiteral("网点编号"), 80 },
            { QStringLiteral("SITE_NAME"), QStringLiteral("网点名称"), 120 }, { QStringLiteral("NO_SUCH"), QStringLiteral("？"), 50 } });
    }

    const QTableView *table() const { return edit->findChild<QTableView *>(); }
    QStringList listed() const
    {
        QStringList names;
        for (int row = 0; edit->isListOpen() && row < table()->model()->rowCount(); ++row)
            names.append(table()->model()->index(row, 1).data().toString());
        return names;
    }
    QToolButton *button(bool ellipsis) const
    {
        for (auto *button : edit->findChildren<QToolButton *>())
            if ((button->text() == u"…") == ellipsis)
                return button;
        return nullptr;
    }

    TCustomClientDataSet sites;
    TDataSource source;
    EntryForm<TDBLookupComboboxEh> form;
    TDBLookupComboboxEh *edit = form.editor;
    QSignalSpy exits { edit, &TDBLookupComboboxEh::exited };
    QSignalSpy keys { edit, &TDBLookupComboboxEh::keyPressed };
};

TEST_F(Lookup, TypingNarrowsTheListByCodeAndByAnyPartOfTheNameTheExactOneFirst)
{
    const struct {
        const char *typed;
        QStringList names;
    } cases[] = {
        { "京", { QStringLiteral("北京朝阳"), QStringLiteral("北京"), QStringLiteral("南京1001") } },
        { "北京", { QStringLiteral("北京"), QStringLiteral("北京朝阳") } },
        { " 北京 ", { QStringLiteral("北京"), QStringLiteral("北京朝阳") } },
        { "1001", { QStringLiteral("北京朝阳"), QStringLiteral("南京1001") } },
        { "南", { QStringLiteral("南京1001"), QStringLiteral("上海南浦") } },
        { "001", { QStringLiteral("南京1001") } },
        { "B3", { QStringLiteral("南京1001"), QStringLiteral("Beijing") } },
        { "bei", { QStringLiteral("Beijing") } },
        { "总部", {} },
        { "没有", {} },
    };
    for (const auto &[typed, names] : cases) {
        edit->clear();
        form.type(QString::fromUtf8(typed));
        EXPECT_EQ(listed(), names) << typed;
        EXPECT_EQ(edit->text(), QString::fromUtf8(typed));
    }
    EXPECT_EQ(QApplication::focusWidget(), edit);
    EXPECT_EQ(exits.count(), 0);
}

TEST_F(Lookup, EnterTakesTheRowAndMovesOnOnlyAtTheNextPress)
{
    form.type("1001");
    ASSERT_TRUE(edit->isListOpen());
    keys.clear();
    form.press(Qt::Key_Return);
    EXPECT_EQ(edit->text(), QStringLiteral("北京朝阳"));
    EXPECT_FALSE(edit->isListOpen());
    EXPECT_EQ(keys.count(), 0);
    EXPECT_TRUE(form.keys.isEmpty());

    form.press(Qt::Key_Return);
    EXPECT_EQ(keys.count(), 1);
    EXPECT_THAT(form.keys, ElementsAre(Qt::Key_Return));
}

TEST_F(Lookup, KeysWalkTheListAndEscapeLeavesTheText)
{
    form.type("10");
    form.press(Qt::Key_Down);
    form.press(Qt::Key_Down);
    form.press(Qt::Key_Up);
    form.press(Qt::Key_Escape);
    EXPECT_FALSE(edit->isListOpen());
    EXPECT_EQ(edit->text(), QStringLiteral("10"));
    EXPECT_TRUE(form.keys.isEmpty());
    form.press(Qt::Key_Escape);
    EXPECT_THAT(form.keys, ElementsAre(Qt::Key_Escape));

    form.press(Qt::Key_F4);
    EXPECT_EQ(listed().size(), 3);
    form.press(Qt::Key_PageDown);
    form.press(Qt::Key_Enter, Qt::KeypadModifier);
    EXPECT_EQ(edit->text(), QStringLiteral("南京1001"));
}

TEST_F(Lookup, TabTakesOnlyARowThatWasWalkedTo)
{
    form.type("10");
    form.press(Qt::Key_Tab);
    EXPECT_EQ(edit->text(), QStringLiteral("10"));
    EXPECT_EQ(QApplication::focusWidget(), form.other);
    EXPECT_EQ(exits.count(), 1);

    edit->setFocus();
    form.press(Qt::Key_F4);
    form.press(Qt::Key_Down);
    form.press(Qt::Key_Tab);
    EXPECT_EQ(edit->text(), QStringLiteral("北京"));
    EXPECT_EQ(exits.count(), 2);
}

TEST_F(Lookup, OpensOnWhatTheTextMeansAndTheEllipsisOnAllRows)
{
    form.press(Qt::Key_Down, Qt::AltModifier);
    EXPECT_EQ(listed().size(), 5);
    form.press(Qt::Key_Return); // no row is current: nothing is taken, and Enter moves on
    EXPECT_EQ(edit->text(), QString());
    EXPECT_THAT(form.keys, ElementsAre(Qt::Key_Return));

    edit->setText(QStringLiteral("上海"));
    EXPECT_FALSE(edit->isListOpen());
    QTest::mouseClick(button(false), Qt::LeftButton);
    EXPECT_EQ(listed(), QStringList(QStringLiteral("上海南浦")));
    edit->closeList(false);

    QTest::mouseClick(button(true), Qt::LeftButton);
    EXPECT_EQ(listed().size(), 5);
    EXPECT_EQ(table()->currentIndex().row(), 2);
    edit->closeList(false);

    edit->setText(QStringLiteral("北京"));
    edit->openList();
    EXPECT_EQ(listed().size(), 5);
    EXPECT_EQ(table()->currentIndex().row(), 1);
}

TEST_F(Lookup, ClickTakesTheRow)
{
    edit->openList();
    const QPoint third = table()->visualRect(table()->model()->index(2, 0)).center();
    QTest::mouseClick(table()->viewport(), Qt::LeftButton, {}, third);
    EXPECT_EQ(edit->text(), QStringLiteral("上海南浦"));
    EXPECT_FALSE(edit->isListOpen());
    EXPECT_EQ(QApplication::focusWidget(), edit);
    EXPECT_EQ(exits.count(), 0);
}

TEST_F(Lookup, ListReadsTheRowsOfTheMomentAndNeverMovesTheDataset)
{
    sites.moveTo(2);
    form.type("1001");
    form.press(Qt::Key_Return);
    EXPECT_EQ(sites.recordIndex(), 2);

    edit->openList();
    sites.append();
    EXPECT_FALSE(edit->isListOpen()) << "the rows under the list changed";
    sites.fieldByName(u"SITE_CODE")->setAsString(QStringLiteral("9009"));
    sites.fieldByName(u"SITE_NAME")->setAsString(QStringLiteral("新网点"));
    sites.post();
    edit->clear();
    form.type("9009");
    EXPECT_EQ(listed(), QStringList(QStringLiteral("新网点")));
    form.press(Qt::Key_Return);
    EXPECT_EQ(edit->text(), QStringLiteral("新网点"));

    sites.close();
    edit->openList();
    form.type("1");
    EXPECT_FALSE(edit->isListOpen());
}

TEST_F(Lookup, LeavingIsAnnouncedOnlyForAnotherControl)
{
    const struct {
        Qt::FocusReason reason;
        int exits;
    } cases[] = { { Qt::TabFocusReason, 1 }, { Qt::MouseFocusReason, 1 }, { Qt::OtherFocusReason, 1 }, { Qt::ActiveWindowFocusReason, 0 },
        { Qt::PopupFocusReason, 0 }, { Qt::MenuBarFocusReason, 0 } };
    for (const auto &[reason, expected] : cases) {
        exits.clear();
        QFocusEvent event(QEvent::FocusOut, reason);
        QCoreApplication::sendEvent(edit, &event);
        EXPECT_EQ(exits.count(), expected) << reason;
    }
    exits.clear();
    edit->openList();
    form.other->setFocus();
    EXPECT_FALSE(edit->isListOpen());
    EXPECT_EQ(exits.count(), 1);

    edit->setFocus();
    exits.clear();
    edit->hide();
    EXPECT_EQ(exits.count(), 0);
}

TEST_F(Lookup, KeysBelongToTheInputMethodWhileItComposes)
{
    form.commit(QStringLiteral("shang"));
    EXPECT_FALSE(edit->isListOpen());
    for (const Qt::Key key : { Qt::Key_Return, Qt::Key_Tab, Qt::Key_Escape, Qt::Key_Down })
        form.press(key);
    EXPECT_EQ(keys.count(), 0);
    EXPECT_TRUE(form.keys.isEmpty());
    EXPECT_EQ(QApplication::focusWidget(), edit);

    form.commit({}, QStringLiteral("上"));
    EXPECT_EQ(listed(), QStringList(QStringLiteral("上海南浦")));
    form.commit(QStringLiteral("hai"));
    form.press(Qt::Key_Return);
    EXPECT_EQ(edit->text(), QStringLiteral("上"));
    form.commit({});
    form.press(Qt::Key_Return);
    EXPECT_EQ(edit->text(), QStringLiteral("上海南浦"));
}

TEST_F(Lookup, ArrowButtonClosesTheListThatItOpened)
{
    QWindow *window = form.windowHandle();
    const QPoint arrow = button(false)->mapTo(&form, button(false)->rect().center());
    for (const bool open : { true, false, true }) {
        QTest::mousePress(window, Qt::LeftButton, {}, arrow);
        QCoreApplication::processEvents(); // a press beside the popup comes again once that is closed
        QTest::mouseRelease(window, Qt::LeftButton, {}, arrow);
        EXPECT_EQ(edit->isListOpen(), open);
    }
}

} // namespace
