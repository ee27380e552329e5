#include "entry_form.h"

#include "platform/editors/editors.h"

#include <gmock/gmock.h>

#include <QWheelEvent>

namespace {

using ::testing::ElementsAre;

TEST(ComboBox, LinesEndAsTheyLike)
{
    const struct {
        const char *lines;
        QStringList items;
    } cases[] = {
        { "全部\r文件\r物品", { QStringLiteral("全部"), QStringLiteral("文件"), QStringLiteral("物品") } },
        { "a\r\nb\nc\r\n", { QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c") } },
        { "a\r\rb", { QStringLiteral("a"), QString(), QStringLiteral("b") } },
        { "全部\r", { QStringLiteral("全部") } },
        { "", {} },
    };
    TDBComboBoxEh combo;
    for (const auto &[lines, items] : cases) {
        combo.setItemsText(QString::fromUtf8(lines));
        combo.setKeyItemsText(QString::fromUtf8(lines));
        EXPECT_EQ(combo.items(), items) << lines;
        EXPECT_EQ(combo.keyItems(), items) << lines;
        EXPECT_EQ(combo.text(), QString()) << lines;
    }
}

TEST(ComboBox, TextAndItemIndexFollowEachOther)
{
    TDBComboBoxEh combo;
    combo.setItemsText(QStringLiteral("全部\nab\nAB"));
    combo.setItemIndex(2);
    EXPECT_EQ(combo.text(), QStringLiteral("AB"));
    combo.setText(QStringLiteral("ab"));
    EXPECT_EQ(combo.itemIndex(), 1);
    combo.setText(QStringLiteral("Ab"));
    EXPECT_EQ(combo.itemIndex(), -1);
    EXPECT_EQ(combo.text(), QStringLiteral("Ab"));
    combo.setItemsText(QStringLiteral("x\nAb"));
    EXPECT_EQ(combo.text(), QStringLiteral("Ab"));
    EXPECT_EQ(combo.itemIndex(), 1);
    combo.setItemIndex(-1);
    EXPECT_EQ(combo.text(), QString());
}

TEST(ComboBox, WhatIsTypedStaysAndEnterGoesOnToTheForm)
{
    EntryForm<TDBComboBoxEh> form;
    form.editor->setItemsText(QStringLiteral("Files\nfile"));
    form.editor->setText({});
    form.type("fi");
    EXPECT_EQ(form.editor->text(), QStringLiteral("fi"));
    form.press(Qt::Key_Return);
    EXPECT_EQ(form.editor->text(), QStringLiteral("fi"));
    EXPECT_EQ(form.editor->count(), 2);
    EXPECT_THAT(form.keys, ElementsAre(Qt::Key_Return));
}

TEST(ComboBox, EnterInTheListTakesTheItemAndGoesOnToTheForm)
{
    EntryForm<TDBComboBoxEh> form;
    form.editor->setItemsText(QStringLiteral("Files\nfile"));
    form.editor->setItemIndex(0);
    form.editor->showPopup();
    ASSERT_NE(QApplication::activePopupWidget(), nullptr);
    QTest::keyClick(QApplication::activePopupWidget()->windowHandle(), Qt::Key_Down);
    QTest::keyClick(QApplication::activePopupWidget()->windowHandle(), Qt::Key_Return);
    EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
    EXPECT_EQ(form.editor->text(), QStringLiteral("file"));
    EXPECT_THAT(form.keys, ElementsAre(Qt::Key_Return));
}

TEST(ComboBox, WheelTurnsOnlyTheOneThatHasTheFocus)
{
    EntryForm<TDBComboBoxEh> form;
    form.editor->setItemsText(QStringLiteral("a\nb"));
    form.editor->setItemIndex(0);
    const auto turn = [&form] {
        QWheelEvent event({ 5, 5 }, form.editor->mapToGlobal(QPointF(5, 5)), {}, { 0, -120 }, {}, {}, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(form.editor, &event);
        return form.editor->itemIndex();
    };
    form.other->setFocus();
    EXPECT_EQ(turn(), 0);
    form.editor->setFocus();
    EXPECT_EQ(turn(), 1);
}

} // namespace
