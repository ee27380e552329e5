#pragma once

class PreparedReport;
class QWidget;

/// Lets the user choose printer and pages and prints them, showing progress with Cancel. False when the user cancels the choice.
bool printReport(PreparedReport &report, QWidget *parent);
