#include "entry_form.h"

#include "platform/dataset/client_data_set.h"
#include "platform/editors/editors.h"
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
        { "京", { QStringLiteral("北京"), QStringLiteral("北京朝阳"), QStringLiteral("南京1001") } },
        { "北京", { QStringLiteral("北京"), QStringLiteral("北京朝阳") } },
        { " 北京 ", { QStringLiteral("北京"), QStringLiteral("北京朝阳") } },
        { "1001", { QStringLiteral("北京朝阳"), QStringLiteral("南京1001") } },
        { "南", { QStringLiteral("南京1001"), QStringLiteral("上海南浦") } },
        { "001", { QStringLiteral("南京1001") } },
        { "B3", { QStringLiteral("南京1001"), QStringLiteral("Beijing") } },
        { "bei", { QStringLiteral("Beijing"), QStringLiteral("北京"), QStringLiteral("北京朝阳") } },
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

TEST_F(Lookup, TypingPinyinFindsNamesByInitialsAndSyllablesTheBetterRankFirst)
{
    sites.setData(packetOf("SITE_CODE:text,SITE_NAME:text\n"
                           "010,北京市内部\n023,重庆\n0731,长沙岳麓\n0592,厦门（思明）\n0712,绿园\n0713,张江中心\n"
                           "029,西安\n0564,六安\n0530,单县\n020,番禺B区\n0796,吉安\n0358,吕梁\nzc,郑州\nA1,北海 x1\n"));
    const struct {
        const char *typed;
        const char *names;
    } cases[] = {
        { "bjsnb", "北京市内部" },
        { "beijsnb", "北京市内部" },
        { "BeiJing", "北京市内部" },
        { "bei jing", "北京市内部" },
        { "bei", "北海 x1|北京市内部" },
        { "bejing", "" },
        { "jsnb", "北京市内部" },
        { "bjn", "" },
        { "cq", "重庆" },
        { "chq", "重庆" },
        { "zhongqing", "重庆" },
        { "cs", "长沙岳麓" },
        { "zhs", "长沙岳麓" },
        { "xm", "厦门（思明）" },
        { "smsm", "厦门（思明）" },
        { "xiamensi", "厦门（思明）" },
        { "lv", "吕梁|绿园" },
        { "luyuan", "绿园" },
        { "lvy", "绿园" },
        { "zjzhx", "张江中心" },
        { "zjzx", "张江中心" },
        { "xian", "西安|单县" },
        { "la", "六安" },
        { "liua", "六安" },
        { "shx", "单县" },
        { "dx", "单县" },
        { "pyb", "番禺B区" },
        { "bqu", "番禺B区" },
        { "bhx1", "北海 x1" },
        { "bhai1", "" },
        { "zc", "郑州" },
        { "an", "吉安|六安|西安" },
        { "z", "郑州|长沙岳麓|重庆|张江中心" },
        { "0", "北京市内部|长沙岳麓|重庆|吉安|六安|吕梁|绿园|番禺B区|单县|西安|厦门（思明）|张江中心" },
        { "0712", "绿园" },
        { "bjü", "" },
    };
    for (const auto &[typed, names] : cases) {
        edit->clear();
        form.type(QString::fromUtf8(typed));
        EXPECT_EQ(listed().join(u'|'), QString::fromUtf8(names)) << typed;
    }
}

TEST_F(Lookup, ScannedCodeTakesItsOwnRowAmongOthersThatBeginSo)
{
    sites.setData(packetOf("SITE_CODE:text,SITE_NAME:text\n10012,阿城\n1001,中山\n01001,1001\n10013,1001北\nbj,北京\nx9,bj\n"));
    const std::pair<const char *, const char *> scans[] = { { "1001", "中山" }, { "10013", "1001北" }, { "bj", "北京" }, { "X9", "bj" } };
    for (const auto &[code, name] : scans) {
        edit->clear();
        form.type(code);
        form.press(Qt::Key_Return);
        EXPECT_EQ(edit->text(), QString::fromUtf8(name)) << code;
    }
}

TEST_F(Lookup, EnterTakesTheRowAndMovesOnInOnePress)
{
    form.type("1001");
    ASSERT_TRUE(edit->isListOpen());
    keys.clear();
    form.press(Qt::Key_Return);
    EXPECT_EQ(edit->text(), QStringLiteral("北京朝阳"));
    EXPECT_FALSE(edit->isListOpen());
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

TEST_F(Lookup, WalkingInAListOfOneRowStaysThere)
{
    form.type("shnp");
    for (const Qt::Key key : { Qt::Key_Down, Qt::Key_Up, Qt::Key_PageDown })
        form.press(key);
    EXPECT_EQ(listed(), QStringList(QStringLiteral("上海南浦")));
    form.press(Qt::Key_Return);
    EXPECT_EQ(edit->text(), QStringLiteral("上海南浦"));
}

TEST_F(Lookup, TabTakesTheRowThatIsMarkedAndWithoutOneLeavesTheText)
{
    const struct {
        const char *typed;
        QList<Qt::Key> keys;
        const char *taken;
    } cases[] = {
        { "shnp", {}, "上海南浦" },
        { "1001", {}, "北京朝阳" },
        { "北京", {}, "北京" },
        { "北京", { Qt::Key_Down }, "北京朝阳" },
        { "北京", { Qt::Key_Escape }, "北京" },
        { "没有", {}, "没有" },
        { "", { Qt::Key_F4 }, "" },
    };
    for (const auto &[typed, pressed, taken] : cases) {
        edit->setFocus();
        edit->clear();
        form.type(QString::fromUtf8(typed));
        QCoreApplication::processEvents();
        for (const Qt::Key key : pressed)
            form.press(key);
        exits.clear();
        form.press(Qt::Key_Tab);
        EXPECT_EQ(edit->text(), QString::fromUtf8(taken)) << typed;
        EXPECT_FALSE(edit->isListOpen());
        EXPECT_EQ(QApplication::focusWidget(), form.other);
        EXPECT_EQ(exits.count(), 1);
    }
}

TEST_F(Lookup, LeavingOtherwiseThanByAKeyTakesNoRow)
{
    form.type("shnp");
    form.other->setFocus(Qt::MouseFocusReason);
    EXPECT_EQ(edit->text(), QStringLiteral("shnp"));
    EXPECT_EQ(exits.count(), 1);
}

TEST_F(Lookup, OpensOnWhatTheTextMeansAndTheEllipsisOnAllRows)
{
    form.press(Qt::Key_Down, Qt::AltModifier);
    const QStringList all { QStringLiteral("Beijing"), QStringLiteral("北京"), QStringLiteral("北京朝阳"), QStringLiteral("南京1001"),
        QStringLiteral("上海南浦") };
    EXPECT_EQ(listed(), all);
    form.press(Qt::Key_Return); // no row is current: nothing is taken, and Enter moves on
    EXPECT_EQ(edit->text(), QString());
    EXPECT_THAT(form.keys, ElementsAre(Qt::Key_Return));

    edit->setText(QStringLiteral("上海"));
    EXPECT_FALSE(edit->isListOpen());
    QTest::mouseClick(button(false), Qt::LeftButton);
    EXPECT_EQ(listed(), QStringList(QStringLiteral("上海南浦")));
    edit->closeList(TDBLookupComboboxEh::Choice::Leave);

    QTest::mouseClick(button(true), Qt::LeftButton);
    EXPECT_EQ(listed(), all);
    EXPECT_EQ(table()->currentIndex().row(), 4);
    edit->closeList(TDBLookupComboboxEh::Choice::Leave);

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
    EXPECT_EQ(edit->text(), QStringLiteral("北京朝阳"));
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
