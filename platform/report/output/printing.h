#pragma once

#include <QString>

#include <functional>

class QPrinter;
class QWidget;

namespace report {

class PreparedReport;

/// The user setting with the printer for reports that no printer has taken yet.
inline const QString printerSetting = QStringLiteral("printer");

/// Lets the user choose printer and pages and prints them, showing progress with Cancel. Proposes the printer that took a report of this
/// title last. False when the user cancels the choice.
bool printReport(PreparedReport &report, QWidget *parent);

/// Gives the printer the paper of the report, edge to edge.
void setReportPaper(QPrinter &printer, const PreparedReport &report);
/// Prints the pages `from` to `to`, counted from 1, of a report that is laid out. `goesOn` is told of the pages done and breaks the
/// job off by false. A printer that writes a file replaces it when it is whole. Throws Exception when the printer fails or the disk
/// does not take the file.
void printPages(PreparedReport &report, QPrinter &printer, int from, int to, const std::function<bool(int pagesDone)> &goesOn = {});

} // namespace report
