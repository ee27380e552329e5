#pragma once

#include "platform/report/output/export_filter.h"
#include "platform/report/preview/paper_choice.h"
#include "platform/report/preview/preview_buttons.h"

#include <QDialog>
#include <QTimer>

#include <memory>

class QAction;
class QComboBox;
class QLabel;
class QLineEdit;
class QListView;
class QProgressBar;
class QPushButton;
class QSpinBox;
class QToolBar;

namespace files {
class SavedFileLabel;
}

namespace report {

class PageView;
class PdfExport;
class ThumbnailModel;

/// The print preview: the first page at once, the others as they are laid out while the user looks.
class PreviewWindow : public QDialog {
    Q_OBJECT

public:
    enum class Direction { Forward, Backward };

    /// The report must outlive the window.
    PreviewWindow(
        PreparedReport &report, QList<ExportFilter *> filters, PreviewButtons buttons, QWidget *parent = nullptr, PaperChoice paper = {});
    ~PreviewWindow() override;

    int pageCount() const { return m_report->pageCount(); }
    /// Looks for the text from the marked place on; lays out further pages on the way. False when it stands nowhere.
    bool find(const QString &text, Direction direction = Direction::Forward);
    PageView *view() const { return m_view; }
    /// Lays the report out for another paper, as the person's choice does; throws Exception and leaves the pages when it does not fit.
    void changePaper(const PageSetup &setup);

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    void buildTools();
    void buildFindBar();
    QWidget *buildStatus();
    QAction *addTool(const QString &text, const QString &tip, const QKeySequence &key, void (PreviewWindow::*work)());
    void setReport(PreparedReport *report);
    void showInstead(std::unique_ptr<PreparedReport> report);
    void prepareInIdleTime();
    void stopPreparing();
    void pagesAdded();
    void showPosition();
    void showPage(int page);
    void chooseZoom(const QString &text);
    void showZoom();
    void openSaved();
    void save();
    void printAll();
    void exportAll();
    void showFirstPage() { showPage(0); }
    void showPreviousPage();
    void showNextPage();
    void showLastPage();
    void showFindBar();
    void findNext();
    void findPrevious();
    void toggleThumbnails();
    void togglePairs();
    void setUpPage();

    PreparedReport *m_report = nullptr;
    std::unique_ptr<PreparedReport> m_own; ///< opened from a file, or laid out anew
    PaperChoice m_paper;
    QList<ExportFilter *> m_filters;
    std::unique_ptr<PdfExport> m_pdf;
    PreviewButtons m_buttons;
    QToolBar *m_tools;
    QToolBar *m_findBar;
    QLineEdit *m_findText;
    QLabel *m_findResult;
    PageView *m_view;
    QListView *m_thumbnails;
    ThumbnailModel *m_thumbnailModel;
    QSpinBox *m_pageBox;
    QLabel *m_pageCount;
    QComboBox *m_zoomBox;
    QLabel *m_status;
    files::SavedFileLabel *m_saved;
    QProgressBar *m_progress;
    QPushButton *m_cancel;
    QTimer m_idle;
    int m_foundPage = -1;
    qsizetype m_foundPlace = -1; ///< on that page
};

} // namespace report
