#pragma once

#include "platform/report/layout/bar_code.h"
#include "platform/report/layout/chart.h"
#include "platform/report/output/html_export.h"
#include "platform/report/output/page_exports.h"
#include "platform/report/output/rtf_export.h"
#include "platform/report/output/spreadsheet_export.h"
#include "platform/report/output/text_exports.h"
#include "platform/report/report.h"
#include "platform/toolkit/form.h"

#include <functional>

/// Prints a screen's result through a report file, headed with the company, the site and the person who prints.
class Tdm_Print : public TDataModule {
    Q_OBJECT

public:
    Tdm_Print();

    PUBLISHED(TfrReport, frReport);
    PUBLISHED(TfrDBDataSet, frDBDataSet);
    PUBLISHED(report::BarCodeObject, frBarCodeObject);
    PUBLISHED(report::ChartObject, frChartObject);
    PUBLISHED(report::TextExport, frTextExport);
    PUBLISHED(report::CsvExport, frCSVExport);
    PUBLISHED(report::SpreadsheetExport, frOLEExcelExport);
    PUBLISHED(report::RtfExport, frRtfAdvExport);
    PUBLISHED(report::JpegExport, frJPEGExport);
    PUBLISHED(report::HtmlTableExport, frHTMLTableExport);

    QString Site;
    QString EmployeeName;
    QString EmployeeCode;
    QString CompanyName;

    /// Shows the dataset's rows in the report file of that name (in the folder "Report" beside the program) in a preview, from which
    /// the user prints or saves. `Hook` may set the screen's own texts before the report is prepared. The dataset's row, its
    /// controls and the cursor are as before afterwards, also when the report is wrong, which the user is told.
    void PrintReport(TDataSet *DataSet, const QString &FileName, const std::function<void()> &Hook = {});
    /// Puts the heading's values into the objects of the loaded report that are there for them.
    void FillReportHeader();

private:
    void DataModuleCreate();
    void append(QStringView object, const QString &value);
};

extern Tdm_Print *dm_Print;
