#pragma once

#include "client/unattended/report_job.h"

namespace client {

/// What became of reports: a line of JSON each in a file or on the standard output, and what is wrong also on the standard error.
class ReportLog {
public:
    /// `fileName` empty: the standard output.
    explicit ReportLog(const QString &fileName)
        : m_fileName(fileName)
    {
    }
    /// False when the file does not take the line; it stands on the standard output then.
    [[nodiscard]] bool add(const ReportJob &job, const ReportOutcome &outcome);

private:
    QString m_fileName;
};

} // namespace client
