#include "platform/grid/db_grid.h"

#include "platform/grid/cell_painter.h"
#include "platform/grid/column_geometry.h"
#include "platform/grid/column_model.h"
#include "platform/grid/copied_cells.h"
#include "platform/grid/dataset_features.h"
#include "platform/grid/filter_bar.h"
#include "platform/grid/grid_accessible.h"
#include "platform/grid/grid_colors.h"
#include "platform/grid/grid_filter.h"
#include "platform/grid/grid_finder.h"
#include "platform/grid/grid_footer.h"
#include "platform/grid/grid_gestures.h"
#include "platform/grid/grid_header.h"
#include "platform/grid/grid_menu.h"
#include "platform/grid/grid_selection.h"
#include "platform/grid/grid_zoom.h"
#include "platform/grid/number_text.h"
#include "platform/grid/sum_list.h"
#include "platform/grid/text_painter.h"
#include "platform/toolkit/exception.h"
#include "platform/toolkit/handler.h"

#include <QApplication>
#include <QClipboard>
#include <QGuiApplication>
#include <QMenu>
#include <QMimeData>
#include <QScrollBar>

#include <algorithm>
#include <cmath>
#include <cstdlib>

using namespace platform;

namespace {

constexpr int rowPadding = 7;
constexpr int indicatorWidth = 16;
constexpr int sideStep = 20; ///< pixels
constexpr int leastWidth = 8;
constexpr int mostWidth = 4000;
constexpr int widestFit = 600;
/// More would take the clipboard's programs minutes to swallow; an export is the way then.
constexpr qint64 mostCopiedCells = 2'000'000;

qint64 cellCount(const QList<QRect> &ranges)
{
    qint64 cells = 0;
    for (const QRect &range : ranges)
        cells += qint64(range.width()) * range.height();
    return cells;
}

} // namespace

TDBGridEh::TDBGridEh(QWidget *parent)
    : QAbstractScrollArea(parent)
    , m_columns(std::make_unique<ColumnModel>())
    , m_geometry(std::make_unique<ColumnGeometry>())
    , m_texts(std::make_unique<TextPainter>())
    , m_sums(std::make_unique<SumList>())
    , m_selection(std::make_unique<GridSelection>())
    , m_header(new GridHeader(*m_columns, *m_geometry, *m_texts, this))
    , m_footer(new GridFooter(
          *m_columns, *m_geometry, *m_texts, [this](int row, int column) { return footerDisplayText(row, column); }, this))
{
    makeGridsAccessible(); // before the toolkit asks for the interface of this one
    m_finder = std::make_unique<GridFinder>(*this);
    m_filter = std::make_unique<GridFilter>(*this);
    handle(m_filter.get(), &GridFilter::barToggled, this, &TDBGridEh::arrange);
    m_gestures = std::make_unique<GridGestures>(*this, *m_columns, *m_geometry);
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_InputMethodEnabled);
    setAccessibleName(QStringLiteral("数据表格"));
    viewport()->setAttribute(Qt::WA_OpaquePaintEvent);
    horizontalScrollBar()->setSingleStep(sideStep);
    connectHeader();
    takeZoom();
}

TDBGridEh::~TDBGridEh() = default;

void TDBGridEh::connectHeader()
{
    handle(m_header, &GridHeader::clicked, this, [this](int column, Qt::KeyboardModifiers modifiers) { clickTitle(column, modifiers); });
    handle(m_header, &GridHeader::cornerClicked, this, &TDBGridEh::selectAll);
    handle(m_header, &GridHeader::widthDragged, this, &TDBGridEh::setColumnWidth);
    handle(m_header, &GridHeader::fitRequested, this, &TDBGridEh::fitColumn);
    handle(m_header, &GridHeader::moveRequested, this, &TDBGridEh::moveColumn);
    handle(m_header, &GridHeader::menuRequested, this, [this](int column, QPoint position) { popUp(columnMenu(*this, column), position); });
}

void TDBGridEh::setDataSource(TDataSource *source)
{
    if (m_dataSource)
        disconnect(m_dataSource, nullptr, this, nullptr);
    m_dataSource = source;
    if (source) {
        handle(source, &TDataSource::dataSetChanged, this, &TDBGridEh::takeRows);
        handle(source, &TDataSource::rowsChanged, this, &TDBGridEh::takeRows);
        handle(source, &TDataSource::recordMoved, this, [this](int) { takeRecord(); });
        handle(source, &TDataSource::stateChanged, this, [this] { updateRow(currentRow()); });
        handle(source, &TDataSource::rowEdited, this, [this](int row) {
            m_sums->invalidate();
            m_footer->update();
            updateRow(row);
        });
        handle(source, &QObject::destroyed, this, &TDBGridEh::takeRows);
    }
    takeRows();
}

TDataSet *TDBGridEh::dataSet() const { return m_dataSource ? m_dataSource->dataSet() : nullptr; }

int TDBGridEh::columnCount() const { return m_columns->count(); }

const Column &TDBGridEh::column(int index) const { return m_columns->at(index); }

void TDBGridEh::setColumns(const QList<Column> &columns)
{
    m_columns->design(columns);
    m_columns->bind(dataSet());
    m_currentColumn = m_columns->visibleFrom(0, 1);
    columnsRearranged();
}

void TDBGridEh::setColumn(int index, const Column &column)
{
    m_columns->set(index, column);
    m_columns->bind(dataSet());
    columnsRearranged();
}

void TDBGridEh::moveColumn(int from, int to)
{
    if (from == to)
        return;
    m_columns->move(from, to);
    if (m_currentColumn == from)
        m_currentColumn = to;
    else if (m_currentColumn > from && m_currentColumn <= to)
        --m_currentColumn;
    else if (m_currentColumn < from && m_currentColumn >= to)
        ++m_currentColumn;
    columnsRearranged();
}

int TDBGridEh::columnIndex(QStringView fieldName, ColumnScope scope) const { return m_columns->find(fieldName, scope); }

void TDBGridEh::setColumnWidth(int index, int width)
{
    m_columns->setWidth(index, std::clamp(width, leastWidth, mostWidth));
    arrange();
    Q_EMIT columnsChanged();
}

void TDBGridEh::setColumnVisible(int index, bool visible)
{
    m_columns->setVisible(index, visible);
    columnsRearranged();
}

/// A choice that says what code wants anyway is none, so that it does not outlive the code's mind.
void TDBGridEh::choose(int index, bool visible)
{
    m_columns->setChoice(index, std::nullopt);
    if (m_columns->at(index).visible != visible)
        m_columns->setChoice(index, visible);
    columnsRearranged();
}

void TDBGridEh::hideColumn(int index) { choose(index, false); }

void TDBGridEh::showColumn(int index) { choose(index, true); }

std::optional<bool> TDBGridEh::columnChoice(int index) const { return m_columns->choice(index); }

bool TDBGridEh::isDesignedVisible(int index) const { return m_columns->isDesignedVisible(index); }

void TDBGridEh::restoreDesignedColumns()
{
    m_columns->restoreDesign();
    m_frozen = m_designedFrozen;
    columnsRearranged();
}

void TDBGridEh::columnsRearranged()
{
    m_selection->clear();
    if (m_currentColumn < 0 || !m_columns->at(m_currentColumn).visible)
        m_currentColumn = std::max(m_columns->visibleFrom(std::max(0, m_currentColumn), 1), m_columns->visibleFrom(m_currentColumn, -1));
    arrange();
    Q_EMIT columnsChanged();
}

int TDBGridEh::frozenColumns() const { return m_frozen; }

void TDBGridEh::setFrozenColumns(int count)
{
    m_designedFrozen = m_frozen = count;
    arrange();
}

void TDBGridEh::freezeColumns(int count)
{
    m_frozen = std::max(0, count);
    arrange();
    Q_EMIT columnsChanged();
}

bool TDBGridEh::isFreezeDesigned() const { return m_frozen == m_designedFrozen; }

bool TDBGridEh::isFrozen(int column) const { return m_geometry->isFrozen(column); }

int TDBGridEh::footerRowCount() const { return m_footer->rows(); }

void TDBGridEh::setFooterRowCount(int rows)
{
    m_footer->setRows(rows);
    arrange();
}

void TDBGridEh::markTitle(int column) { m_header->setMarked(column); }

void TDBGridEh::setFooterColor(const QColor &color) { m_footer->setColor(color); }

void TDBGridEh::clickTitle(int column, Qt::KeyboardModifiers modifiers)
{
    if (!m_columns->at(column).titleButton)
        return;
    Q_EMIT titleClicked(column);
    TDataSet *rows = dataSet();
    DatasetFeaturesEh *features = rows && rows->active() ? datasetFeaturesEh(*rows) : nullptr;
    if (!features || m_columns->at(column).fieldName.isEmpty())
        return;
    const QList<SortKey> before = m_columns->sortKeys();
    m_columns->setSortKeys(cycleSortKeys(before, column, modifiers & Qt::ControlModifier ? SortClick::Add : SortClick::Replace));
    m_header->update();
    try {
        features->applySorting(*this, *rows, m_sortLocal ? Sorting::Local : Sorting::AtSource);
    } catch (...) {
        m_columns->setSortKeys(before); // a mark must not promise an order that the rows do not have
        throw;
    }
}

QList<int> TDBGridEh::sortedColumns() const
{
    QList<int> columns;
    for (const SortKey &key : m_columns->sortKeys())
        columns.append(key.column);
    return columns;
}

int TDBGridEh::currentColumn() const { return m_currentColumn; }

int TDBGridEh::currentRow() const { return rowCount() > 0 ? dataSet()->recordIndex() : -1; }

int TDBGridEh::rowCount() const
{
    const TDataSet *rows = dataSet();
    return rows && rows->active() ? rows->recordCount() : 0;
}

QString TDBGridEh::cellText(int row, int column) const
{
    if (row < 0 || row >= rowCount())
        return {};
    const int field = m_columns->field(column);
    if (field >= 0)
        return dataSet()->text(field, row);
    return onCellText ? onCellText(row, column) : QString();
}

bool TDBGridEh::isNarrowed() const { return rowCount() > 0 && dataSet()->unnarrowedCount() != rowCount(); }

/// Whether a footer is the heading of a count that a limit of the server made too small.
bool TDBGridEh::countsCutRows(int footerRow, int column) const
{
    const QList<ColumnFooter> &footers = m_columns->at(column).footers;
    return footerRow + 1 < footers.size() && footers[footerRow + 1].kind == FooterKind::Count && dataSet()
        && !dataSet()->truncationNotice().isEmpty();
}

QString TDBGridEh::footerText(int footerRow, int column) const
{
    const QList<ColumnFooter> &footers = m_columns->at(column).footers;
    if (footerRow < 0 || footerRow >= footers.size())
        return {};
    const int field = m_columns->field(column);
    switch (footers[footerRow].kind) {
    case FooterKind::None:
        return {};
    case FooterKind::StaticText:
        return footers[footerRow].value + (countsCutRows(footerRow, column) ? QStringLiteral("(截断)") : QString());
    case FooterKind::Count:
        return QString::number(rowCount());
    case FooterKind::Sum:
        return QString::fromStdString(field >= 0 && rowCount() > 0 ? m_sums->sum(*dataSet(), field).toString() : "0");
    }
    return {};
}

QString TDBGridEh::cellTextWithTicks(int row, int column) const
{
    const QString text = cellText(row, column);
    const Column &shown = m_columns->at(column);
    if (!shown.isCheckBox() || (text != shown.checkedKey && text != shown.uncheckedKey))
        return text;
    return text == shown.checkedKey ? QStringLiteral("√") : QString();
}

QString TDBGridEh::displayText(int row, int column) const
{
    const int decimals = m_columns->decimals(column);
    return decimals < 0 ? cellText(row, column) : shownNumber(cellText(row, column), decimals);
}

QString TDBGridEh::footerDisplayText(int footerRow, int column) const
{
    const QString text = footerText(footerRow, column);
    const QList<ColumnFooter> &footers = m_columns->at(column).footers;
    const FooterKind kind = footerRow >= 0 && footerRow < footers.size() ? footers[footerRow].kind : FooterKind::None;
    const int decimals = m_columns->decimals(column);
    if (kind == FooterKind::Count)
        return shownNumber(text, 0) + (isNarrowed() ? u" / " + shownNumber(QString::number(dataSet()->unnarrowedCount()), 0) : QString());
    return kind == FooterKind::Sum && decimals >= 0 ? shownNumber(text, decimals) : text;
}

QString TDBGridEh::displayFormat(int column) const
{
    const int decimals = m_columns->decimals(column);
    return decimals < 0 ? QString() : numberFormat(decimals);
}

Qt::Alignment TDBGridEh::footerAlignment(int footerRow, int column) const { return m_columns->footerAlignment(footerRow, column); }

QString TDBGridEh::emptyNote() const
{
    const TDataSet *rows = dataSet();
    if (!rows || !rows->active())
        return m_closedNote.isEmpty() ? QStringLiteral("尚未查询，按 F9 查询") : m_closedNote;
    if (rows->recordCount() > 0)
        return {};
    return rows->unnarrowedCount() > 0 ? QStringLiteral("没有符合筛选的行") : QStringLiteral("没有符合条件的记录");
}

void TDBGridEh::setClosedNote(const QString &note)
{
    m_closedNote = note;
    viewport()->update();
}

CellView TDBGridEh::view() const
{
    return {
        .grid = *this,
        .columns = *m_columns,
        .geometry = *m_geometry,
        .selection = *m_selection,
        .finder = *m_finder,
        .texts = *m_texts,
        .event = onGetCellParams && !m_cellEventFailed ? &onGetCellParams : nullptr,
        .topRow = verticalScrollBar()->value(),
        .rowCount = rowCount(),
        .rowHeight = m_rowHeight,
        .height = viewport()->height(),
        .currentRow = m_shownRecord,
        .currentColumn = m_currentColumn,
    };
}

QColor TDBGridEh::cellBackground(int row, int column) const { return view().parameters(row, column, GridColors(palette())).background; }

int TDBGridEh::recordNumber(int row) const { return row >= 0 && row < rowCount() ? row + 1 : -1; }

void TDBGridEh::fitColumn(int index)
{
    int width = m_header->titleWidth(index);
    const GridColors colors(palette());
    const CellView view = this->view();
    const int last = std::min(rowCount(), view.topRow + pageRows() + 1);
    for (int row = view.topRow; row < last; ++row)
        width = std::max(width, m_texts->width(view.parameters(row, index, colors).font, displayText(row, index)) + rowPadding + 2);
    for (int row = 0; row < footerRowCount(); ++row)
        width = std::max(width, m_texts->width(font(), footerDisplayText(row, index)) + rowPadding + 2);
    setColumnWidth(index, m_geometry->toDesign(std::min(width, m_geometry->toScreen(widestFit))));
}

void TDBGridEh::fitColumns()
{
    for (int column = 0; column < m_columns->count(); ++column) {
        if (m_columns->at(column).visible)
            fitColumn(column);
    }
}

void TDBGridEh::copySelection(CopyTitles titles)
{
    const qint64 cells = cellCount(selectedRanges());
    if (cells > mostCopiedCells)
        throw Exception(
            QStringLiteral("选中了 %L1 个单元格，最多只能复制 %L2 个；请少选一些，或改用导出。").arg(cells).arg(mostCopiedCells));
    if (currentRow() >= 0 && m_currentColumn >= 0)
        QGuiApplication::clipboard()->setMimeData(copiedCells(*this, titles).release());
}

void TDBGridEh::takeRows()
{
    m_cellEventFailed = false;
    if (dataSet() && dataSet()->active())
        m_closedNote.clear();
    m_columns->bind(dataSet());
    m_sums->invalidate();
    m_selection->clear();
    m_filter->takeRows();
    arrange();
    m_shownRecord = currentRow();
    showCurrentCell();
    Q_EMIT selectionChanged();
    Q_EMIT currentCellChanged(currentRow(), m_currentColumn);
}

void TDBGridEh::takeRecord()
{
    updateRow(m_shownRecord);
    m_shownRecord = currentRow();
    updateRow(m_shownRecord);
    showCurrentCell();
    Q_EMIT currentCellChanged(m_shownRecord, m_currentColumn);
}

void TDBGridEh::arrange()
{
    m_rowHeight = fontMetrics().height() + rowPadding;
    m_footer->setRowHeight(m_rowHeight);
    FilterBar &bar = m_filter->bar();
    const int barHeight = bar.isVisibleTo(this) ? bar.sizeHint().height() : 0;
    setViewportMargins(0, barHeight + m_header->preferredHeight(), 0, m_footer->preferredHeight());
    const QRect view = viewport()->geometry();
    m_geometry->arrange(*m_columns, m_frozen, indicatorWidth, view.width());
    bar.setGeometry(view.left(), view.top() - m_header->preferredHeight() - barHeight, view.width(), barHeight);
    m_header->setGeometry(view.left(), view.top() - m_header->preferredHeight(), view.width(), m_header->preferredHeight());
    m_footer->setGeometry(view.left(), view.bottom() + 1, view.width(), m_footer->preferredHeight());

    verticalScrollBar()->setPageStep(pageRows());
    verticalScrollBar()->setRange(0, std::max(0, rowCount() - pageRows()));
    horizontalScrollBar()->setPageStep(std::max(sideStep, view.width() - m_geometry->frozenRight()));
    horizontalScrollBar()->setRange(0, m_geometry->maximumScroll());
    m_geometry->setScroll(horizontalScrollBar()->value());
    m_header->update();
    m_footer->setTextColor(dataSet() && !dataSet()->truncationNotice().isEmpty() ? alarmColor : QColor());
    m_footer->update();
    viewport()->update();
}

void TDBGridEh::scrollContentsBy(int dx, int dy)
{
    m_geometry->setScroll(horizontalScrollBar()->value());
    if (rowCount() == 0) {
        m_header->update();
        m_footer->update();
        return viewport()->update();
    }
    if (dy != 0 && std::abs(dy) < pageRows())
        viewport()->scroll(0, dy * m_rowHeight);
    else if (dy != 0)
        viewport()->update();
    if (dx == 0)
        return;
    QRect scrolling = viewport()->rect();
    scrolling.setLeft(m_geometry->frozenRight());
    viewport()->scroll(dx, 0, scrolling);
    m_header->update();
    m_footer->update();
}

int TDBGridEh::pageRows() const { return std::max(1, viewport()->height() / m_rowHeight); }

int TDBGridEh::rowAt(int y) const
{
    const qint64 row = verticalScrollBar()->value() + qint64(std::floor(double(y) / m_rowHeight));
    return row >= 0 && row < rowCount() ? int(row) : -1;
}

QFont TDBGridEh::designedFont() const { return parentWidget() ? parentWidget()->font() : QApplication::font(); }

void TDBGridEh::takeZoom()
{
    const int percent = gridZoom() * textScale() / 100;
    QFont zoomed = designedFont();
    if (zoomed.pixelSize() > 0)
        zoomed.setPixelSize(std::max(1, zoomed.pixelSize() * percent / 100));
    else
        zoomed.setPointSizeF(zoomed.pointSizeF() * gridZoom() / 100);
    m_geometry->setZoom(percent);
    setFont(zoomed == designedFont() ? QFont() : zoomed);
    arrange();
    showCurrentCell();
}

QRect TDBGridEh::cellRect(int row, int column) const { return view().cellRect(row, column); }

void TDBGridEh::updateRow(int row)
{
    if (row >= 0)
        viewport()->update(0, view().rowTop(row), viewport()->width(), m_rowHeight);
}

void TDBGridEh::showCurrentCell()
{
    const int row = currentRow();
    QScrollBar *bar = verticalScrollBar();
    if (row >= 0)
        bar->setValue(std::clamp(bar->value(), row - pageRows() + 1, row));
    if (m_currentColumn >= 0)
        horizontalScrollBar()->setValue(m_geometry->scrollToShow(m_currentColumn));
}
