#include "platform/editors/date_time_edit.h"

#include "platform/editors/calendar_popup.h"
#include "platform/toolkit/clock.h"
#include "platform/toolkit/handler.h"

#include <QKeyEvent>

#include <algorithm>

using namespace platform;

namespace {

/// Where a part stands in "yyyy-mm-dd hh:mm:ss".
struct TextRange {
    int start;
    int length;
};
constexpr TextRange partRanges[] = { { 0, 4 }, { 5, 2 }, { 8, 2 }, { 11, 2 }, { 14, 2 }, { 17, 2 } };

} // namespace

TDBDateTimeEditEh::TDBDateTimeEditEh(QWidget *parent)
    : DropDownEdit(parent)
{
    setInputMethodHints(Qt::ImhPreferNumbers | Qt::ImhPreferLatin);
    setDropDownToolTip(QStringLiteral("选择日期 (F4)"));
}

void TDBDateTimeEditEh::setDateOnly(bool dateOnly)
{
    const QString shown = dateTimeText();
    m_dateOnly = dateOnly;
    setDateTimeText(shown);
}

QString TDBDateTimeEditEh::dateTimeText() const
{
    const std::optional<QDateTime> time = read(text());
    return time ? dateTimeToText(*time) : text();
}

void TDBDateTimeEditEh::setDateTimeText(const QString &text)
{
    if (const std::optional<QDateTime> time = read(text))
        show(*time);
    else if (text != this->text())
        setText(text);
}

std::optional<QDateTime> TDBDateTimeEditEh::read(const QString &text) const
{
    const std::optional<DateEntry> entry = readDateEntry(text);
    if (!entry)
        return std::nullopt;
    return QDateTime(entry->date, entry->time.value_or(m_dateOnly ? m_keptTime : QTime(0, 0)), Qt::UTC);
}

void TDBDateTimeEditEh::show(const QDateTime &time)
{
    m_keptTime = time.time();
    const QString shown = m_dateOnly ? dateToText(time.date()) : dateTimeToText(time);
    if (shown != text())
        setText(shown);
}

bool TDBDateTimeEditEh::step(DatePart part, int steps)
{
    const std::optional<QDateTime> time = read(text());
    const QDateTime stepped = time ? stepDatePart(*time, part, steps) : QDateTime();
    if (!stepped.isValid())
        return false;
    show(stepped);
    const auto [start, length] = partRanges[int(part)];
    setSelection(start, length);
    return true;
}

bool TDBDateTimeEditEh::stepByKey(const QKeyEvent &event)
{
    if (event.text() == u"+" || event.text() == u"-")
        return step(DatePart::Day, event.text() == u"+" ? 1 : -1);
    const bool vertical = event.key() == Qt::Key_Up || event.key() == Qt::Key_Down;
    if (!vertical || (event.modifiers() & ~Qt::KeypadModifier))
        return false;
    const int position = hasSelectedText() ? selectionStart() : cursorPosition();
    // A field that was tabbed into is selected whole: nobody means the year.
    const DatePart part = selectedText() == text() ? DatePart::Day : datePartAt(text(), position);
    return step(m_dateOnly ? std::min(part, DatePart::Day) : part, event.key() == Qt::Key_Up ? 1 : -1);
}

void TDBDateTimeEditEh::keyPressEvent(QKeyEvent *event)
{
    if (!stepByKey(*event))
        DropDownEdit::keyPressEvent(event);
}

void TDBDateTimeEditEh::pair(TDBDateTimeEditEh *start, TDBDateTimeEditEh *end)
{
    start->m_end = end;
    end->m_start = start;
}

void TDBDateTimeEditEh::chooseRange(NamedRange range)
{
    const TimeRange times = rangeOn(range, Clock::today());
    TDBDateTimeEditEh *first = m_start ? m_start.data() : this;
    first->show(times.start);
    if (first->m_end)
        first->m_end->show(times.end);
}

void TDBDateTimeEditEh::dropDown()
{
    const QDateTime time = read(text()).value_or(QDateTime(Clock::today(), m_dateOnly ? m_keptTime : QTime(0, 0), Qt::UTC));
    auto *popup = new CalendarPopup(this, time.date());
    handle(popup, &CalendarPopup::dayChosen, this, [this, popup, time](QDate day) {
        show(QDateTime(day, time.time(), Qt::UTC));
        popup->close();
    });
    handle(popup, &CalendarPopup::rangeChosen, this, [this, popup](NamedRange range) {
        chooseRange(range);
        popup->close();
    });
    popup->setGeometry(dropDownGeometry(popup->sizeHint()));
    popup->show();
    popup->focusDays();
}
