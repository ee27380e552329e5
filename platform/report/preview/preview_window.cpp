#include "platform/report/preview/preview_window.h"

#include "platform/files/save_dialog.h"
#include "platform/files/saved_file_label.h"
#include "platform/report/output/cell_table.h"
#include "platform/report/output/page_exports.h"
#include "platform/report/output/printing.h"
#include "platform/report/preview/page_setup_dialog.h"
#include "platform/report/preview/page_view.h"
#include "platform/report/preview/thumbnail_model.h"
#include "platform/toolkit/handler.h"
#include "platform/toolkit/long_work.h"
#include "platform/toolkit/plain_text.h"
#include "platform/toolkit/user_settings.h"

#include <QAction>
#include <QComboBox>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QFileInfo>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QProgressBar>
#include <QPushButton>
#include <QScreen>
#include <QSpinBox>
#include <QSplitter>
#include <QToolBar>
#include <QVBoxLayout>

#include <algorithm>
#include <limits>

using namespace platform;

namespace report {

namespace {

constexpr int idleSlice = 20; ///< milliseconds
constexpr QStringView fitWidth = u"适合宽度";
constexpr QStringView wholePage = u"整页";
const QString exportKindKey = QStringLiteral("export/previewKind");
constexpr QStringView savedFilter = u"保存的报表 (*.kpages)";

} // namespace

PreviewWindow::PreviewWindow(
    PreparedReport &report, QList<ExportFilter *> filters, PreviewButtons buttons, QWidget *parent, PaperChoice paper)
    : QDialog(parent, Qt::Window)
    , m_paper(std::move(paper))
    , m_filters(std::move(filters))
    , m_buttons(buttons)
    , m_tools(new QToolBar(this))
    , m_findBar(new QToolBar(this))
    , m_view(new PageView(this))
    , m_thumbnails(new QListView(this))
    , m_thumbnailModel(new ThumbnailModel(*m_view, this))
{
    if (!filterFor(m_filters, QStringLiteral(".pdf"))) {
        m_pdf = std::make_unique<PdfExport>();
        m_filters.prepend(m_pdf.get());
    }
    m_thumbnails->setModel(m_thumbnailModel);
    m_thumbnails->setViewMode(QListView::IconMode);
    m_thumbnails->setFlow(QListView::TopToBottom);
    m_thumbnails->setWrapping(false);
    m_thumbnails->setUniformItemSizes(true);
    m_thumbnails->setIconSize({ 110, 150 });
    m_thumbnails->setMovement(QListView::Static);
    m_thumbnails->setFixedWidth(158);
    auto *pages = new QHBoxLayout;
    pages->addWidget(m_thumbnails);
    pages->addWidget(m_view, 1);
    buildTools();
    buildFindBar();
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_tools);
    layout->addWidget(m_findBar);
    layout->addLayout(pages, 1);
    layout->addWidget(buildStatus());
    handle(m_view, &PageView::currentPageChanged, this, &PreviewWindow::showPosition);
    handle(m_view, &PageView::zoomChanged, this, &PreviewWindow::showZoom);
    handle(m_thumbnails, &QListView::clicked, this, [this](const QModelIndex &index) { showPage(index.row()); });
    handle(&m_idle, &QTimer::timeout, this, &PreviewWindow::prepareInIdleTime);
    resize(QSize(1000, 760).boundedTo(screen()->availableSize() * 9 / 10));
    setReport(&report);
    m_view->setFocus();
}

PreviewWindow::~PreviewWindow() = default;

QAction *PreviewWindow::addTool(const QString &text, const QString &tip, const QKeySequence &key, void (PreviewWindow::*work)())
{
    QAction *action = m_tools->addAction(text);
    action->setShortcut(key);
    action->setToolTip(key.isEmpty() ? tip : QString(tip + u'（' + key.toString(QKeySequence::NativeText) + u'）'));
    handle(action, &QAction::triggered, this, work);
    return action;
}

void PreviewWindow::buildTools()
{
    const auto has = [this](PreviewButton button) { return m_buttons.testFlag(button); };
    if (has(PreviewButton::Load))
        addTool(QStringLiteral("打开"), QStringLiteral("打开保存的报表"), QKeySequence::Open, &PreviewWindow::openSaved);
    if (has(PreviewButton::Save))
        addTool(QStringLiteral("保存"), QStringLiteral("保存排好的报表"), QKeySequence::Save, &PreviewWindow::save);
    if (has(PreviewButton::Print))
        addTool(QStringLiteral("打印"), QStringLiteral("打印"), QKeySequence::Print, &PreviewWindow::printAll);
    if (m_paper.layOut)
        addTool(QStringLiteral("页面设置"), QStringLiteral("纸张、方向、页边距"), Qt::CTRL | Qt::Key_U, &PreviewWindow::setUpPage);
    if (has(PreviewButton::Export))
        addTool(QStringLiteral("导出"), QStringLiteral("导出为其他格式"), Qt::CTRL | Qt::Key_E, &PreviewWindow::exportAll);
    m_tools->addSeparator();
    addTool(QStringLiteral("首页"), QStringLiteral("第一页"), Qt::CTRL | Qt::Key_Home, &PreviewWindow::showFirstPage);
    addTool(QStringLiteral("上页"), QStringLiteral("上一页"), Qt::CTRL | Qt::Key_PageUp, &PreviewWindow::showPreviousPage);
    m_pageBox = new QSpinBox(m_tools);
    m_pageBox->setMinimum(1);
    m_pageBox->setKeyboardTracking(false);
    m_pageBox->setButtonSymbols(QAbstractSpinBox::NoButtons);
    m_pageBox->setAlignment(Qt::AlignCenter);
    m_pageBox->setFixedWidth(56);
    m_tools->addWidget(m_pageBox);
    m_pageCount = plainLabel({}, m_tools);
    m_tools->addWidget(m_pageCount);
    handle(m_pageBox, &QSpinBox::valueChanged, this, [this](int page) { showPage(page - 1); });
    addTool(QStringLiteral("下页"), QStringLiteral("下一页"), Qt::CTRL | Qt::Key_PageDown, &PreviewWindow::showNextPage);
    addTool(QStringLiteral("末页"), QStringLiteral("最后一页"), Qt::CTRL | Qt::Key_End, &PreviewWindow::showLastPage);
    m_tools->addSeparator();
    m_zoomBox = new QComboBox(m_tools);
    m_zoomBox->setEditable(true);
    m_zoomBox->setInsertPolicy(QComboBox::NoInsert);
    m_zoomBox->setToolTip(QStringLiteral("缩放（Ctrl+滚轮）"));
    m_zoomBox->addItem(fitWidth.toString());
    m_zoomBox->addItem(wholePage.toString());
    for (const int percent : { 50, 75, 100, 125, 150, 200 })
        m_zoomBox->addItem(QStringLiteral("%1%").arg(percent));
    handle(m_zoomBox, &QComboBox::textActivated, this, &PreviewWindow::chooseZoom);
    QAction *zoom = m_tools->addWidget(m_zoomBox);
    zoom->setVisible(has(PreviewButton::Zoom));
    addTool(QStringLiteral("双页"), QStringLiteral("并排显示两页"), Qt::Key_F2, &PreviewWindow::togglePairs)->setCheckable(true);
    if (has(PreviewButton::Find))
        addTool(QStringLiteral("查找"), QStringLiteral("查找文字"), QKeySequence::Find, &PreviewWindow::showFindBar);
    QAction *thumbnails
        = addTool(QStringLiteral("缩略图"), QStringLiteral("显示或隐藏缩略图"), Qt::Key_F4, &PreviewWindow::toggleThumbnails);
    thumbnails->setCheckable(true);
    thumbnails->setChecked(true);
    if (has(PreviewButton::Exit)) {
        m_tools->addSeparator();
        QAction *exit = m_tools->addAction(QStringLiteral("关闭"));
        exit->setToolTip(QStringLiteral("关闭预览（Esc）"));
        handle(exit, &QAction::triggered, this, [this] { reject(); });
    }
}

void PreviewWindow::buildFindBar()
{
    m_findText = new QLineEdit(m_findBar);
    m_findText->setPlaceholderText(QStringLiteral("查找文字"));
    m_findText->setMaximumWidth(260);
    m_findText->setClearButtonEnabled(true);
    m_findBar->addWidget(m_findText);
    const auto add = [this](const QString &text, const QKeySequence &key, void (PreviewWindow::*work)()) {
        QAction *action = m_findBar->addAction(text);
        action->setShortcut(key);
        handle(action, &QAction::triggered, this, work);
    };
    add(QStringLiteral("下一个"), Qt::Key_F3, &PreviewWindow::findNext);
    add(QStringLiteral("上一个"), Qt::SHIFT | Qt::Key_F3, &PreviewWindow::findPrevious);
    m_findResult = plainLabel({}, m_findBar);
    m_findBar->addWidget(m_findResult);
    handle(m_findText, &QLineEdit::returnPressed, this, &PreviewWindow::findNext);
    m_findBar->hide();
}

QWidget *PreviewWindow::buildStatus()
{
    auto *bar = new QWidget(this);
    auto *layout = new QHBoxLayout(bar);
    layout->setContentsMargins(8, 3, 8, 3);
    m_status = plainLabel({}, bar);
    m_progress = new QProgressBar(bar);
    m_progress->setFixedWidth(220);
    m_progress->setTextVisible(false);
    m_cancel = new QPushButton(QStringLiteral("停止排版"), bar);
    m_cancel->setAutoDefault(false);
    m_saved = new files::SavedFileLabel(bar);
    layout->addWidget(m_status);
    layout->addWidget(m_saved, 1);
    layout->addStretch();
    layout->addWidget(m_progress);
    layout->addWidget(m_cancel);
    handle(m_cancel, &QPushButton::clicked, this, &PreviewWindow::stopPreparing);
    return bar;
}

void PreviewWindow::setReport(PreparedReport *report)
{
    m_report = report;
    m_foundPage = -1;
    if (report->pageCount() == 0)
        report->prepareNextPage();
    setWindowTitle(report->title().isEmpty() ? QStringLiteral("打印预览") : QStringLiteral("打印预览 - ") + report->title());
    m_thumbnailModel->reset();
    m_view->setReport(report);
    m_progress->setRange(0, std::max(1, report->rowCount()));
    m_idle.start(0);
    pagesAdded();
}

void PreviewWindow::prepareInIdleTime()
{
    // Stopped first, so that an error is shown once.
    m_idle.stop();
    QElapsedTimer elapsed;
    elapsed.start();
    bool more = true;
    try {
        while (more && elapsed.elapsed() < idleSlice)
            more = m_report->prepareNextPage();
    } catch (...) {
        pagesAdded();
        throw;
    }
    if (more)
        m_idle.start(0);
    pagesAdded();
}

void PreviewWindow::stopPreparing()
{
    m_idle.stop();
    pagesAdded();
}

void PreviewWindow::pagesAdded()
{
    m_view->pagesAdded();
    // A list that grows by a few at a time would be arranged too often.
    if (!m_idle.isActive() || pageCount() > m_thumbnailModel->rowCount() * 5 / 4)
        m_thumbnailModel->setPageCount(pageCount());
    m_progress->setValue(m_report->rowsDone());
    m_progress->setVisible(!m_report->isComplete());
    m_cancel->setVisible(!m_report->isComplete() && m_idle.isActive());
    m_pageBox->setMaximum(std::max(1, pageCount()));
    showPosition();
}

void PreviewWindow::showPosition()
{
    const int page = m_view->currentPage();
    const QSignalBlocker blocker(m_pageBox);
    m_pageBox->setValue(page + 1);
    m_pageCount->setText(QStringLiteral(" / %1%2 ").arg(pageCount()).arg(m_report->isComplete() ? QString() : QStringLiteral("+")));
    const QString state = m_report->isComplete() ? QStringLiteral("共 %1 页").arg(pageCount())
        : m_idle.isActive()                      ? QStringLiteral("正在排版，已有 %1 页").arg(pageCount())
                            : QStringLiteral("排版已停止，只有 %1 页；打印、保存或导出时会排完").arg(pageCount());
    m_status->setText(QStringLiteral("第 %1 页，").arg(page + 1) + state);
    m_thumbnails->setCurrentIndex(m_thumbnailModel->index(page));
}

void PreviewWindow::showPage(int page) { m_view->showPage(std::clamp(page, 0, pageCount() - 1)); }

void PreviewWindow::showPreviousPage() { showPage(m_view->currentPage() - m_view->pagesAcross()); }

void PreviewWindow::showNextPage() { showPage(m_view->currentPage() + m_view->pagesAcross()); }

void PreviewWindow::showLastPage() { showPage(pageCount() - 1); }

void PreviewWindow::chooseZoom(const QString &text)
{
    bool ok = false;
    const qreal percent = QString(text).remove(u'%').toDouble(&ok);
    if (text == fitWidth)
        m_view->setZoom(PageZoom::FitWidth);
    else if (text == wholePage)
        m_view->setZoom(PageZoom::WholePage);
    else if (ok)
        m_view->setZoom(PageZoom::Percent, percent);
    showZoom();
}

void PreviewWindow::showZoom()
{
    m_zoomBox->setEditText(m_view->zoom() == PageZoom::FitWidth ? fitWidth.toString()
            : m_view->zoom() == PageZoom::WholePage             ? wholePage.toString()
                                                                : QStringLiteral("%1%").arg(qRound(m_view->percent())));
}

void PreviewWindow::openSaved()
{
    const QString name = QFileDialog::getOpenFileName(this, QStringLiteral("打开保存的报表"), {}, savedFilter.toString());
    if (name.isEmpty())
        return;
    showInstead(PreparedReport::load(name));
}

void PreviewWindow::showInstead(std::unique_ptr<PreparedReport> report)
{
    setReport(report.get());
    m_own = std::move(report);
}

void PreviewWindow::changePaper(const PageSetup &setup)
{
    showInstead(m_paper.layOut(setup));
    m_paper.setup = setup;
}

void PreviewWindow::setUpPage()
{
    PageSetupDialog dialog(m_paper.setup, this);
    if (dialog.exec() == QDialog::Accepted && dialog.setup() != m_paper.setup)
        changePaper(dialog.setup());
}

void PreviewWindow::save()
{
    const auto place
        = files::askWhereToSave(this, QStringLiteral("保存报表"), files::datedName(m_report->title()), { savedFilter.toString() });
    if (!place)
        return;
    const QString name = place->fileName.endsWith(u".kpages") ? place->fileName : place->fileName + u".kpages";
    InterfaceWork work(QStringLiteral("正在保存…"));
    m_report->save(name, [&work](int, int done, int rows) { return work.report(done, rows); });
    pagesAdded();
    m_saved->tell(QStringLiteral("已保存 %1 页").arg(pageCount()), name);
}

void PreviewWindow::printAll()
{
    printReport(*m_report, this);
    pagesAdded();
}

void PreviewWindow::exportAll()
{
    QStringList kinds;
    for (const ExportFilter *filter : std::as_const(m_filters))
        kinds.append(filter->caption() + QStringLiteral(" (*") + filter->ending() + u')');
    const auto place = files::askWhereToSave(
        this, QStringLiteral("导出"), files::datedName(m_report->title()), kinds, userSetting(exportKindKey).toString());
    if (!place)
        return;
    keepUserSetting(exportKindKey, place->filter);
    QString name = place->fileName;
    ExportFilter *filter = filterFor(m_filters, name);
    if (!filter) {
        filter = m_filters[std::max<qsizetype>(0, kinds.indexOf(place->filter))];
        name += filter->ending();
    }
    InterfaceWork work(QStringLiteral("正在导出…"), QStringLiteral("页"));
    filter->exportReport(*m_report, name, [&work](int done, int pages) { return work.report(done, pages); });
    pagesAdded();
    // Pictures are several files, with numbers behind the name.
    m_saved->tell(QStringLiteral("已导出"), QFileInfo::exists(name) ? name : QFileInfo(name).absolutePath());
}

void PreviewWindow::showFindBar()
{
    m_findBar->show();
    m_findText->setFocus();
    m_findText->selectAll();
}

void PreviewWindow::findNext() { find(m_findText->text(), Direction::Forward); }

void PreviewWindow::findPrevious() { find(m_findText->text(), Direction::Backward); }

bool PreviewWindow::find(const QString &text, Direction direction)
{
    if (text.isEmpty())
        return false;
    const bool forward = direction == Direction::Forward;
    int pageIndex = m_foundPage < 0 ? m_view->currentPage() : m_foundPage;
    qsizetype place = m_foundPage < 0 ? (forward ? -1 : std::numeric_limits<qsizetype>::max()) : m_foundPlace;
    InterfaceWork work(QStringLiteral("正在查找…"), QStringLiteral("页"));
    const auto isThere = [&] { return pageIndex < pageCount() || (forward && m_report->prepareNextPage()); };
    while (pageIndex >= 0 && isThere()) {
        if (!work.report(pageIndex + 1, pageCount())) {
            pagesAdded();
            m_findResult->setText(QStringLiteral(" 查找已取消"));
            return false;
        }
        const Page page = m_report->page(pageIndex);
        const qsizetype step = forward ? 1 : -1;
        for (qsizetype index = forward ? place + 1 : std::min(place, page.size()) - 1; index >= 0 && index < page.size(); index += step) {
            if (!plainText(page[index]).contains(text, Qt::CaseInsensitive))
                continue;
            m_foundPage = pageIndex;
            m_foundPlace = index;
            pagesAdded();
            m_view->markBox(pageIndex, page[index].box);
            m_findResult->setText(QStringLiteral(" 在第 %1 页").arg(pageIndex + 1));
            return true;
        }
        pageIndex += forward ? 1 : -1;
        place = forward ? -1 : std::numeric_limits<qsizetype>::max();
    }
    pagesAdded();
    // The next search begins anew, from the other end.
    m_foundPage = forward ? 0 : pageCount() - 1;
    m_foundPlace = forward ? -1 : std::numeric_limits<qsizetype>::max();
    m_findResult->setText(forward ? QStringLiteral(" 之后没有了，再找从头开始") : QStringLiteral(" 之前没有了，再找从尾开始"));
    return false;
}

void PreviewWindow::toggleThumbnails() { m_thumbnails->setVisible(!m_thumbnails->isVisible()); }

void PreviewWindow::togglePairs() { m_view->setPagesAcross(m_view->pagesAcross() == 1 ? 2 : 1); }

void PreviewWindow::keyPressEvent(QKeyEvent *event)
{
    // Enter belongs to the boxes of the tool bar.
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        return;
    if (event->key() == Qt::Key_Escape && m_findBar->isVisible()) {
        m_findBar->hide();
        m_view->setFocus();
        return;
    }
    QDialog::keyPressEvent(event);
}

} // namespace report
