#pragma once

#include "platform/dataset/data_set.h"
#include "platform/report/output/export_filter.h"
#include "platform/report/preview/paper_choice.h"
#include "platform/report/preview/preview_buttons.h"

#include <QPointer>

#include <functional>
#include <memory>
#include <vector>

namespace report {

/// One object of a loaded report; lives until the report is loaded anew.
class ReportObject {
public:
    explicit ReportObject(Object &object)
        : m_object(object)
    {
    }
    const QString &name() const { return m_object.name; }
    /// What the memo shows, with expressions in brackets. A text that is not the designer's belongs through literal().
    const QString &text() const { return m_object.text; }
    void setText(const QString &text);
    /// The text that shows exactly `text`, brackets included.
    static QString literal(const QString &text);

private:
    Object &m_object;
};

/// What is shown in a preview, for whoever looks at it in place of a person.
struct PreviewRequest {
    PreparedReport &report;
    QList<ExportFilter *> filters;
};
/// Called instead of showing any preview or print dialog; empty: a person looks.
void setPreviewResponder(std::function<void(const PreviewRequest &)> responder);

/// Shows pages that are prepared otherwise, until the user closes the preview.
void showPreview(
    PreparedReport &report, const QList<ExportFilter *> &filters, PreviewButtons buttons, QWidget *parent, const PaperChoice &paper = {});
/// Lets the user choose a printer; false when the user cancels.
bool printPrepared(PreparedReport &report, QWidget *parent);

} // namespace report

/// Joins a report to a dataset that may be exchanged.
class TfrDBDataSet : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;
    TDataSet *dataSet() const { return m_dataSet; }
    void setDataSet(TDataSet *dataSet) { m_dataSet = dataSet; }

private:
    QPointer<TDataSet> m_dataSet;
};

/// A banded report: loaded from a report file (docs/report-files.md), bound to a dataset, prepared, and then shown, printed or exported.
class TfrReport : public QObject {
    Q_OBJECT

public:
    explicit TfrReport(QObject *parent = nullptr);
    ~TfrReport() override;

    TfrDBDataSet *dataSet() const { return m_dataSet; }
    void setDataSet(TfrDBDataSet *dataSet) { m_dataSet = dataSet; }
    /// Adds a line at the foot of the title, as long as it takes. Objects that were found before are gone.
    void addNote(const QString &text);
    report::PreviewButtons previewButtons() const { return m_buttons; }
    void setPreviewButtons(report::PreviewButtons buttons) { m_buttons = buttons; }
    /// What reports can draw beside texts, lines, rectangles and pictures. Not owned.
    void setAddIns(const QList<report::ReportAddIn *> &addIns) { m_addIns = addIns; }
    /// What the preview can export to; PDF is always among it. Not owned.
    void setExportFilters(const QList<report::ExportFilter *> &filters) { m_filters = filters; }

    /// Throws Exception naming file, line and column when the file is wrong; what was loaded before stays then.
    void loadFromFile(const QString &fileName);
    /// Takes a report made by the program itself.
    void setDefinition(const report::Definition &definition);
    const report::Definition &definition() const { return m_definition; }
    /// The object of that name (case ignored), or null.
    report::ReportObject *findObject(QStringView name);

    /// Lays out the first page over the dataset's shown rows; further pages follow when they are wanted. Throws Exception when the
    /// report does not fit its dataset, or there is none; what was prepared before is gone then.
    void prepareReport(report::StyleEvent styleEvent = {});
    report::PreparedReport *prepared() const { return m_prepared.get(); } ///< null before
    /// Shows the preview until the user closes it, preparing first when that has not been done. Throws what preparing throws.
    void showPreview(QWidget *parent = nullptr);
    /// Lets the user choose a printer and prints. False when the user cancels.
    bool print(QWidget *parent = nullptr);

private:
    QPointer<TfrDBDataSet> m_dataSet;
    report::PreviewButtons m_buttons = report::allPreviewButtons;
    QList<report::ReportAddIn *> m_addIns;
    QList<report::ExportFilter *> m_filters;
    report::Definition m_definition;
    std::vector<std::unique_ptr<report::ReportObject>> m_objects;
    std::unique_ptr<report::PreparedReport> m_prepared;
};
