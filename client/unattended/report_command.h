#pragma once

#include "client/options.h"
#include "client/unattended/report_job.h"

namespace client {

/// What the command line of `kelvara-client report` says.
struct ReportCommand {
    Options options;
    QList<ReportJob> jobs;
    QString log; ///< a file that gets a line of JSON for each report; empty: the standard output
    bool list = false; ///< tells what there is instead: the screens, or the conditions of the one that `screen` names
    QString screen;
    bool help = false;
};

/// Reads the arguments behind "report". Throws an exception that says what is wrong with them.
ReportCommand readReportCommand(const QStringList &arguments);
QString reportHelp();

/// Logs in and makes the reports, each whatever becomes of the others. Returns the worst result as exit code. Needs an application.
int runReports(const ReportCommand &command);

} // namespace client
