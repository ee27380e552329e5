#pragma once

#include "platform/editors/date_entry.h"
#include "platform/editors/drop_down_edit.h"
#include "platform/editors/time_range.h"

#include <QPointer>

/// A date and time as text "yyyy-mm-dd hh:mm:ss" (or "yyyy-mm-dd" when only the day is shown), typed or picked from a calendar.
/// What is typed is put into that form when the editor is left, if it can be read; otherwise it stays as typed.
/// Up and Down change the part under the cursor, + and - the day.
class TDBDateTimeEditEh : public platform::DropDownEdit {
    Q_OBJECT

public:
    explicit TDBDateTimeEditEh(QWidget *parent = nullptr);

    bool dateOnly() const { return m_dateOnly; }
    void setDateOnly(bool dateOnly);

    /// The shown day and time as "yyyy-mm-dd hh:mm:ss"; with dateOnly() the time is the one that came with the text. A text
    /// that cannot be read is given as it is.
    QString dateTimeText() const;
    /// Shows `text` in the editor's form, or as it is when it cannot be read. With dateOnly() its time is kept unseen, which a
    /// plain setText() does only when the editor is left.
    void setDateTimeText(const QString &text);

    /// Makes two editors the ends of one range: a range that has a name sets both.
    static void pair(TDBDateTimeEditEh *start, TDBDateTimeEditEh *end);
    /// The other end of the range that this editor starts; null when it starts none.
    TDBDateTimeEditEh *rangeEnd() const { return m_end; }
    /// As a person does from the calendar: sets both ends of this editor's range; one that stands alone takes the first day.
    void chooseRange(platform::NamedRange range);

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void dropDown() override;
    void finishEntry() override { setDateTimeText(text()); }

private:
    std::optional<QDateTime> read(const QString &text) const; ///< a text without a time gets the kept one, or midnight
    void show(const QDateTime &time);
    bool step(platform::DatePart part, int steps);
    bool stepByKey(const QKeyEvent &event);

    bool m_dateOnly = false;
    QTime m_keptTime { 0, 0 };
    QPointer<TDBDateTimeEditEh> m_start; ///< of the range that this one ends
    QPointer<TDBDateTimeEditEh> m_end; ///< of the range that this one starts
};
