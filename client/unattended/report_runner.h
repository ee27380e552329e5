#pragma once

#include "client/main_window.h"
#include "client/unattended/report_job.h"

#include <QObject>
#include <QSet>

#include <memory>

namespace report {
struct PreviewRequest;
}

namespace client {

/// Makes reports on the real windows, so that a file has the bytes that a person would get. While it lives it answers message boxes and
/// previews itself.
class ReportRunner : public QObject {
    Q_OBJECT

public:
    ReportRunner(const Options &options, std::shared_ptr<Connections> connections);
    ~ReportRunner() override;

    /// Never throws: what goes wrong is in the outcome. A file is there when it is whole, and only for a report with rows.
    ReportOutcome run(const ReportJob &job);
    /// The screens that the account may open, one a line.
    QString listScreens();
    /// What can be set and shown on a screen; throws Exception.
    QString listScreen(const QString &caption);

private:
    void make(const ReportJob &job, ReportOutcome &outcome);
    void useWindow(const QString &site);
    TForm *open(const QString &caption);
    void closeScreens();
    void setConditions(TForm &screen, const ReportJob &job, const ReportDay &day);
    void showPage(const TForm &screen, const QString &caption);
    void query();
    void drill(const QString &row, const QString &column);
    void write(const ReportJob &job, const ReportDay &day, ReportOutcome &outcome);
    void print(const QString &button, const QString &file);
    /// Lets the windows do what they have put off, and throws what has failed since the last time.
    void settle();
    void hear(const QString &kind, const QVariantMap &particulars);
    void lookAt(const report::PreviewRequest &preview);

    const Options m_options;
    const std::shared_ptr<Connections> m_connections;
    std::unique_ptr<MainWindow> m_window;
    QString m_site; ///< that the window is for
    QString m_printFile; ///< where the next preview is saved
    QSet<QString> m_written; ///< by all reports so far
    QStringList m_failures; ///< exceptions that reached the application object
    QStringList m_messages; ///< texts of message boxes
    bool m_asked = false; ///< a statement was sent
};

} // namespace client
