#include "platform/editors/calendar_popup.h"

#include "platform/toolkit/clock.h"
#include "platform/toolkit/handler.h"
#include "platform/toolkit/plain_text.h"

#include <QCalendarWidget>
#include <QHBoxLayout>
#include <QLabel>
#include <QTextCharFormat>
#include <QToolButton>
#include <QVBoxLayout>

namespace platform {

namespace {

QToolButton *flatButton(const QString &text, const QString &toolTip)
{
    auto *button = new QToolButton;
    button->setText(text);
    button->setToolTip(toolTip);
    button->setAccessibleName(toolTip);
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::NoFocus);
    return button;
}

} // namespace

CalendarPopup::CalendarPopup(QWidget *parent, QDate day)
    : QFrame(parent, Qt::Popup)
    , m_calendar(new QCalendarWidget)
    , m_month(plainLabel())
{
    setAttribute(Qt::WA_DeleteOnClose);
    setFrameStyle(QFrame::StyledPanel);
    m_calendar->setLocale(QLocale(QLocale::Chinese, QLocale::China));
    m_calendar->setFirstDayOfWeek(Qt::Monday);
    m_calendar->setVerticalHeaderFormat(QCalendarWidget::NoVerticalHeader);
    m_calendar->setNavigationBarVisible(false); // it would say "十一月  2026"
    m_calendar->setSelectedDate(day);
    m_calendar->setAccessibleName(QStringLiteral("日历"));
    QTextCharFormat today;
    today.setFontWeight(QFont::Bold);
    m_calendar->setDateTextFormat(Clock::today(), today);
    QTextCharFormat weekend;
    const bool isDark = palette().color(QPalette::Base).lightness() < palette().color(QPalette::Text).lightness();
    weekend.setForeground(isDark ? QColor(0xff, 0x8a, 0x80) : QColor(0xc6, 0x28, 0x28));
    for (const Qt::DayOfWeek weekday : { Qt::Saturday, Qt::Sunday })
        m_calendar->setWeekdayTextFormat(weekday, weekend);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(2, 2, 2, 2);
    layout->setSpacing(2);
    for (QWidget *part : { makeHeading(), static_cast<QWidget *>(m_calendar), makeRangeButtons() })
        layout->addWidget(part);
    handle(m_calendar, &QCalendarWidget::clicked, this, &CalendarPopup::dayChosen);
    handle(m_calendar, &QCalendarWidget::activated, this, &CalendarPopup::dayChosen);
}

void CalendarPopup::focusDays() { m_calendar->setFocus(Qt::PopupFocusReason); }

QWidget *CalendarPopup::makeHeading()
{
    const auto showMonth = [this](int year, int month) { m_month->setText(QStringLiteral("%1年%2月").arg(year).arg(month)); };
    showMonth(m_calendar->yearShown(), m_calendar->monthShown());
    handle(m_calendar, &QCalendarWidget::currentPageChanged, this, showMonth);
    m_month->setAlignment(Qt::AlignCenter);
    auto *heading = new QWidget;
    auto *line = new QHBoxLayout(heading);
    line->setContentsMargins(0, 0, 0, 0);
    const auto add = [&](const char16_t *sign, const char16_t *toolTip, void (QCalendarWidget::*turn)()) {
        QToolButton *button = flatButton(QString::fromUtf16(sign), QString::fromUtf16(toolTip));
        handle(button, &QToolButton::clicked, m_calendar, [this, turn] { (m_calendar->*turn)(); });
        line->addWidget(button);
    };
    add(u"«", u"上一年", &QCalendarWidget::showPreviousYear);
    add(u"‹", u"上一个月", &QCalendarWidget::showPreviousMonth);
    line->addWidget(m_month, 1);
    add(u"›", u"下一个月", &QCalendarWidget::showNextMonth);
    add(u"»", u"下一年", &QCalendarWidget::showNextYear);
    return heading;
}

QWidget *CalendarPopup::makeRangeButtons()
{
    auto *buttons = new QWidget;
    auto *line = new QHBoxLayout(buttons);
    line->setContentsMargins(0, 0, 0, 0);
    line->setSpacing(0);
    for (const NamedRange range : namedRanges()) {
        const TimeRange days = rangeOn(range, Clock::today());
        QToolButton *button = flatButton(rangeName(range), dateTimeToText(days.start) + u" 至 " + dateTimeToText(days.end));
        button->setAccessibleName(rangeName(range));
        handle(button, &QToolButton::clicked, this, [this, range] { Q_EMIT rangeChosen(range); });
        line->addWidget(button);
    }
    return buttons;
}

} // namespace platform
