#pragma once

#include "client/unattended/report_day.h"

#include <QList>
#include <QStringList>

#include <utility>

namespace client {

/// A report that is made without a person: everything by the captions that a person reads.
struct ReportJob {
    QString screen;
    QString site {}; ///< to log in at; empty: as the options say
    QString day {}; ///< that relative words count from; empty: today
    QList<std::pair<QString, QString>> conditions {}; ///< caption and value, in the order in which they are set
    QString page {}; ///< of the result; empty: the one that the query shows
    QStringList drills {}; ///< "扫描人=张三，班次=白班": the row to open, level by level
    QString drillColumn {}; ///< whose cell is opened where that makes a difference; empty: the one named last
    QStringList files {}; ///< with dates to fill in; the ending names the form
    QString printButton {}; ///< of the screen, that prints in place of the window's command
    QString encoding {}; ///< of .csv and .txt
    QString folder {}; ///< that file names count from; empty: the present one
    bool failIfEmpty = false;
};

/// What became of it. The values are exit codes.
enum class ReportResult { Rows = 0, Failed = 1, Wrong = 2, Empty = 3 };

struct ReportOutcome {
    ReportResult result = ReportResult::Failed;
    int rows = 0;
    QStringList files {}; ///< that were written
    QString message {}; ///< what is wrong; "" when there are rows
    QStringList said {}; ///< what the screen said besides
    QString cut {}; ///< how the server's limit cut the rows; "" when it did not
    qint64 milliseconds = 0;
};

/// The worse of two: a failure before a wrong request, that before an empty report.
ReportResult worse(ReportResult one, ReportResult other);

} // namespace client
