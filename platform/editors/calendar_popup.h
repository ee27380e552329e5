#pragma once

#include "platform/editors/time_range.h"

#include <QFrame>

class QCalendarWidget;
class QLabel;

namespace platform {

/// A month from which a person picks a day, and buttons for the ranges that have names. Deletes itself when it closes.
class CalendarPopup : public QFrame {
    Q_OBJECT

public:
    CalendarPopup(QWidget *parent, QDate day);
    void focusDays(); ///< gives the days the keys

Q_SIGNALS:
    void dayChosen(QDate day);
    void rangeChosen(platform::NamedRange range);

private:
    QWidget *makeHeading();
    QWidget *makeRangeButtons();

    QCalendarWidget *m_calendar;
    QLabel *m_month;
};

} // namespace platform
