#pragma once

#include "client/unattended/report_job.h"

namespace client {

/// Reads the reports of a plan (docs/reports-at-night.md), whose file names count from the plan's folder. `day` is what the command line
/// says, which comes before the plan. Throws WrongRequest that names the file, the report and the key that is wrong.
QList<ReportJob> readPlan(const QString &fileName, const QString &day);

} // namespace client
