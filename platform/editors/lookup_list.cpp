#include "platform/editors/lookup_list.h"

#include "platform/toolkit/handler.h"

#include <QCoreApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QTableView>
#include <QVBoxLayout>

#include <algorithm>

namespace platform {

namespace {

constexpr int mostVisibleRows = 12;
constexpr int rowPadding = 6;

QTableView *makeTable(QWidget *parent, QAbstractItemModel *model)
{
    auto *table = new QTableView(parent);
    table->setModel(model);
    table->setFrameShape(QFrame::NoFrame);
    table->setFocusPolicy(Qt::NoFocus);
    table->setSelectionBehavior(QAbstractItemView::SelectRows);
    table->setSelectionMode(QAbstractItemView::SingleSelection);
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table->setTabKeyNavigation(false);
    table->setShowGrid(false);
    table->setWordWrap(false);
    table->setAlternatingRowColors(true);
    table->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    const int rowHeight = table->fontMetrics().height() + rowPadding;
    table->verticalHeader()->hide();
    table->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    table->verticalHeader()->setMinimumSectionSize(rowHeight);
    table->verticalHeader()->setDefaultSectionSize(rowHeight);
    table->horizontalHeader()->setStretchLastSection(true);
    table->horizontalHeader()->setHighlightSections(false);
    table->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    return table;
}

} // namespace

void LookupRows::setColumns(const QList<LookupColumn> &columns)
{
    beginResetModel();
    m_columns = columns;
    m_fields.clear();
    m_rows.clear();
    endResetModel();
}

void LookupRows::show(TDataSet *dataSet, std::vector<int> rows)
{
    beginResetModel();
    m_dataSet = dataSet;
    m_rows = std::move(rows);
    m_fields.clear();
    for (const LookupColumn &column : m_columns) {
        const TField *field = dataSet ? dataSet->findField(column.fieldName) : nullptr;
        m_fields.append(field ? field->index() : -1);
    }
    endResetModel();
}

int LookupRows::indexOf(int record) const
{
    const auto place = std::find(m_rows.begin(), m_rows.end(), record);
    return place == m_rows.end() ? -1 : int(place - m_rows.begin());
}

int LookupRows::rowCount(const QModelIndex &parent) const { return parent.isValid() || !m_dataSet ? 0 : int(m_rows.size()); }

int LookupRows::columnCount(const QModelIndex &parent) const { return parent.isValid() ? 0 : int(m_columns.size()); }

QVariant LookupRows::data(const QModelIndex &index, int role) const
{
    const int field = m_fields.value(index.column(), -1);
    if (role != Qt::DisplayRole || field < 0 || !m_dataSet || !m_dataSet->active())
        return {};
    return m_dataSet->text(field, recordAt(index.row()));
}

QVariant LookupRows::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role != Qt::DisplayRole || orientation != Qt::Horizontal)
        return {};
    return m_columns[section].caption;
}

LookupList::LookupList(QWidget *edit)
    : QFrame(edit, Qt::Popup)
    , m_edit(edit)
    , m_rows(new LookupRows(this))
    , m_table(makeTable(this, m_rows))
{
    setFrameStyle(QFrame::StyledPanel);
    setFocusPolicy(Qt::NoFocus);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_table);
    handle(m_table, &QTableView::clicked, this, &LookupList::rowClicked);
}

void LookupList::setColumns(const QList<LookupColumn> &columns)
{
    m_rows->setColumns(columns);
    for (qsizetype column = 0; column < columns.size(); ++column)
        m_table->setColumnWidth(int(column), columns[column].width);
}

void LookupList::showRows(TDataSet *dataSet, std::vector<int> rows, int currentRecord)
{
    disconnect(m_watching);
    m_watching = handle(dataSet, &TDataSet::rowsChanged, this, &QWidget::hide);
    m_rows->show(dataSet, std::move(rows));
    const int current = m_rows->indexOf(currentRecord);
    if (current >= 0) {
        m_table->setCurrentIndex(m_rows->index(current, 0));
        m_table->scrollTo(m_table->currentIndex(), QAbstractItemView::PositionAtCenter);
    } else {
        m_table->scrollToTop();
    }
}

QSize LookupList::contentSize() const
{
    const QHeaderView *header = m_table->horizontalHeader();
    int width = m_table->verticalScrollBar()->sizeHint().width();
    for (int column = 0; column < m_rows->columnCount(); ++column)
        width += m_table->columnWidth(column);
    const int rows = std::clamp(m_rows->rowCount(), 1, mostVisibleRows);
    const int height = header->sizeHint().height() + rows * m_table->verticalHeader()->defaultSectionSize();
    return QSize(width, height) + QSize(2 * frameWidth(), 2 * frameWidth());
}

int LookupList::currentRecord() const
{
    const QModelIndex current = m_table->currentIndex();
    return current.isValid() ? m_rows->recordAt(current.row()) : -1;
}

void LookupList::walk(QKeyEvent *event)
{
    const QScopedValueRollback<bool> walking(m_walking, true);
    QCoreApplication::sendEvent(m_table, event);
}

bool LookupList::event(QEvent *event)
{
    // A table that cannot go further leaves the key to its parent, from which it came.
    if (m_walking && event->type() == QEvent::KeyPress)
        return true;
    // The toolkit sends what is typed to the window on top; it is meant for the lookup.
    if (event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease) {
        // The row is taken before the lookup is left: the form sees Enter first, and Tab moves the focus.
        const int key = static_cast<QKeyEvent *>(event)->key();
        if (event->type() == QEvent::KeyPress
            && (key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Tab || key == Qt::Key_Backtab))
            Q_EMIT goesOn();
        QCoreApplication::sendEvent(m_edit, event);
        event->accept();
        return true;
    }
    return QFrame::event(event);
}

void LookupList::mousePressEvent(QMouseEvent *event)
{
    // A press on a button of the lookup closes the list and must not open it again.
    setAttribute(Qt::WA_NoMouseReplay, m_edit->childAt(m_edit->mapFromGlobal(event->globalPosition().toPoint())) != nullptr);
    QFrame::mousePressEvent(event);
}

void LookupList::hideEvent(QHideEvent *event)
{
    disconnect(m_watching);
    m_rows->clear();
    QFrame::hideEvent(event);
}

} // namespace platform
