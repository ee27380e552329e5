#pragma once

#include <QDate>
#include <QString>

namespace client {

/// Which end of a range a time stands for.
enum class RangeEdge { Start, End };

/// The days that relative words mean in one report, counted from its day.
class ReportDay {
public:
    explicit ReportDay(QDate day)
        : m_day(day)
    {
    }
    QDate date() const { return m_day; }

    /// The time that "昨天", "昨天 12:00", "2026-03-14" or "2026-03-14 12:00" means as an end of a range, as it is typed into a condition:
    /// a word or a day alone is its first or last second. Throws WrongRequest when it is none.
    QString timeText(const QString &text, RangeEdge edge) const;
    /// A file name whose "{昨天}" or "{上月:yyyyMM}" has become the first day of that range: a word, and a form of the date unless
    /// yyyy-MM-dd, for months yyyy-MM. Throws WrongRequest for other words.
    QString fileName(const QString &pattern) const;

    /// "今天" and so on.
    static QStringList words();
    /// The day that a word or a date means today; throws WrongRequest when it is none.
    static ReportDay of(const QString &text);

private:
    QDate m_day;
};

} // namespace client
