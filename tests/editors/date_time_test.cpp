#include "entry_form.h"

#include "platform/editors/editors.h"
#include "platform/toolkit/clock.h"

#include <gmock/gmock.h>

#include <QCalendarWidget>
#include <QLabel>
#include <QSignalSpy>
#include <QToolButton>

#include <algorithm>

namespace {

using ::testing::ElementsAre;
using namespace platform;

class DateTime : public ::testing::Test {
protected:
    DateTime() { Clock::set(QDateTime(QDate(2026, 9, 30), QTime(8, 15), Qt::UTC)); }
    ~DateTime() override { Clock::set({}); }

    QString left(const char *typed)
    {
        edit->setFocus();
        edit->setText(QString::fromUtf8(typed));
        form.other->setFocus();
        return edit->text();
    }

    EntryForm<TDBDateTimeEditEh> form;
    TDBDateTimeEditEh *edit = form.editor;
};

TEST_F(DateTime, IsPutIntoItsFormWhenLeft)
{
    const struct {
        const char *typed;
        const char *shown;
    } cases[] = {
        { "20260930", "2026-09-30 00:00:00" },
        { "2026-9-3", "2026-09-03 00:00:00" },
        { "2026/9/30 7:5", "2026-09-30 07:05:00" },
        { "9-30", "2026-09-30 00:00:00" },
        { "11", "2026-09-11 00:00:00" },
        { "3 7:05", "2026-09-03 07:05:00" },
        { "9/1 12:30:15", "2026-09-01 12:30:15" },
        { "20260930 12:30", "2026-09-30 12:30:00" },
        { "  2026-09-30  11:59:59 ", "2026-09-30 11:59:59" },
        { "２０２６－０９－３０　１２：３０", "2026-09-30 12:30:00" },
        { "2028-2-29", "2028-02-29 00:00:00" },
    };
    for (const auto &[typed, shown] : cases)
        EXPECT_EQ(left(typed).toStdString(), shown) << typed;
}

TEST_F(DateTime, StaysAsTypedWhenItCannotBeRead)
{
    for (const char *typed : { "", "2026-2-29", "2-29", "2026-13-1", "20260931", "9-30 24:00", "9-30 12:60", "9-30 12", "26-9-30", "2026-9",
             "31", "0", "昨天", "2026-09-30 12:00:00 x", "202609301" })
        EXPECT_EQ(left(typed).toStdString(), typed);
}

TEST_F(DateTime, DayAloneKeepsTheTimeThatItCameWith)
{
    edit->setDateOnly(true);
    edit->setDateTimeText(QStringLiteral("2026-09-30 11:59:59"));
    EXPECT_EQ(edit->text(), QStringLiteral("2026-09-30"));
    EXPECT_EQ(left("10-1").toStdString(), "2026-10-01");
    EXPECT_EQ(edit->dateTimeText(), QStringLiteral("2026-10-01 11:59:59"));
    EXPECT_EQ(left("2026-10-02 06:00").toStdString(), "2026-10-02");
    edit->setDateOnly(false);
    EXPECT_EQ(edit->text(), QStringLiteral("2026-10-02 06:00:00"));
    EXPECT_EQ(left("明天").toStdString(), "明天");
    EXPECT_EQ(edit->dateTimeText(), QStringLiteral("明天"));
}

TEST_F(DateTime, ArrowsChangeThePartUnderTheCursor)
{
    const struct {
        int cursor;
        Qt::Key key;
        const char *shown;
    } cases[] = {
        { 0, Qt::Key_Up, "2025-01-31 23:59:59" },
        { 4, Qt::Key_Down, "2023-01-31 23:59:59" },
        { 6, Qt::Key_Up, "2024-02-29 23:59:59" },
        { 10, Qt::Key_Up, "2024-02-01 23:59:59" },
        { 12, Qt::Key_Up, "2024-02-01 00:59:59" },
        { 14, Qt::Key_Down, "2024-01-31 23:58:59" },
        { 19, Qt::Key_Up, "2024-02-01 00:00:00" },
    };
    for (const auto &[cursor, key, shown] : cases) {
        edit->setText(QStringLiteral("2024-01-31 23:59:59"));
        edit->setCursorPosition(cursor);
        form.press(key);
        EXPECT_EQ(edit->text().toStdString(), shown) << cursor;
    }
    edit->setCursorPosition(6);
    form.press(Qt::Key_Up);
    form.press(Qt::Key_Up); // the part stays chosen
    EXPECT_EQ(edit->text(), QStringLiteral("2024-04-01 00:00:00"));

    edit->selectAll(); // as the Tab key leaves it
    form.press(Qt::Key_Up);
    EXPECT_EQ(edit->text(), QStringLiteral("2024-04-02 00:00:00"));

    edit->setText(QStringLiteral("9999-12-31 00:00:00"));
    edit->setCursorPosition(0);
    form.press(Qt::Key_Up);
    EXPECT_EQ(edit->text(), QStringLiteral("9999-12-31 00:00:00"));
}

TEST_F(DateTime, PlusAndMinusChangeTheDayOfAWholeDateAndAreTypedOtherwise)
{
    form.type("2026-9-30");
    EXPECT_EQ(edit->text(), QStringLiteral("2026-9-30"));
    form.press(Qt::Key_Plus);
    EXPECT_EQ(edit->text(), QStringLiteral("2026-10-01 00:00:00"));
    form.press(Qt::Key_Minus, Qt::KeypadModifier);
    form.press(Qt::Key_Minus);
    EXPECT_EQ(edit->text(), QStringLiteral("2026-09-29 00:00:00"));
}

TEST_F(DateTime, CalendarChangesTheDayAndKeepsTheTime)
{
    QSignalSpy exits(edit, &TDBDateTimeEditEh::exited);
    edit->setText(QStringLiteral("2026-09-30 11:59:59"));
    form.press(Qt::Key_F4);
    auto *calendar = edit->findChild<QCalendarWidget *>();
    ASSERT_NE(calendar, nullptr);
    EXPECT_EQ(calendar->selectedDate(), QDate(2026, 9, 30));
    form.press(Qt::Key_Right);
    form.press(Qt::Key_Return);
    EXPECT_EQ(edit->text(), QStringLiteral("2026-10-01 11:59:59"));
    EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
    EXPECT_EQ(QApplication::focusWidget(), edit);

    form.press(Qt::Key_Down, Qt::AltModifier);
    form.press(Qt::Key_Escape);
    EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
    EXPECT_EQ(edit->text(), QStringLiteral("2026-10-01 11:59:59"));
    EXPECT_EQ(exits.count(), 0);
    EXPECT_TRUE(form.keys.isEmpty());

    form.press(Qt::Key_Return);
    EXPECT_THAT(form.keys, ElementsAre(Qt::Key_Return));
}

TEST_F(DateTime, ANamedRangeSetsBothEndsAndIsKnownByItsDays)
{
    const struct {
        NamedRange range;
        const char *start;
        const char *end;
    } cases[] = {
        { NamedRange::Today, "2026-03-01 00:00:00", "2026-03-01 23:59:59" },
        { NamedRange::Yesterday, "2026-02-28 00:00:00", "2026-02-28 23:59:59" },
        { NamedRange::ThisWeek, "2026-02-23 00:00:00", "2026-03-01 23:59:59" }, // a Sunday ends it
        { NamedRange::LastWeek, "2026-02-16 00:00:00", "2026-02-22 23:59:59" },
        { NamedRange::ThisMonth, "2026-03-01 00:00:00", "2026-03-31 23:59:59" },
        { NamedRange::LastMonth, "2026-02-01 00:00:00", "2026-02-28 23:59:59" },
        { NamedRange::LastShift, "2026-02-28 12:00:00", "2026-03-01 11:59:59" },
    };
    const QDate today(2026, 3, 1);
    Clock::set(QDateTime(today, QTime(8, 0), Qt::UTC));
    TDBDateTimeEditEh end;
    TDBDateTimeEditEh::pair(edit, &end);
    for (const auto &[range, first, last] : cases) {
        end.chooseRange(range); // from either end
        EXPECT_EQ(edit->text().toStdString(), first);
        EXPECT_EQ(end.text().toStdString(), last);
        EXPECT_EQ(nameOfRange({ textToDateTime(edit->text()), textToDateTime(end.text()) }, today), range) << first;
    }
    EXPECT_EQ(rangeOn(NamedRange::LastMonth, QDate(2026, 1, 31)).start.date(), QDate(2025, 12, 1));
    EXPECT_EQ(nameOfRange(rangeOn(NamedRange::Today, today), today.addDays(2)), std::nullopt);
}

TEST_F(DateTime, CalendarSpeaksChineseAndOffersTheRanges)
{
    edit->setText(QStringLiteral("2026-11-30 11:59:59"));
    form.press(Qt::Key_F4);
    const QWidget *popup = QApplication::activePopupWidget();
    ASSERT_NE(popup, nullptr);
    const auto button = [popup](const char16_t *text) {
        const auto buttons = popup->findChildren<QToolButton *>();
        return *std::find_if(
            buttons.begin(), buttons.end(), [&](const QToolButton *one) { return one->text() == QString::fromUtf16(text); });
    };
    const auto heading = [popup] { return popup->findChild<QLabel *>()->text(); };
    EXPECT_EQ(heading(), QStringLiteral("2026年11月"));
    button(u"»")->click();
    button(u"›")->click();
    EXPECT_EQ(heading(), QStringLiteral("2027年12月"));
    button(u"昨天")->click();
    EXPECT_EQ(edit->text(), QStringLiteral("2026-09-29 00:00:00"));
    EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
}

} // namespace
