#include "platform/grid/grid_accessible.h"

#include "platform/dataset/data_set.h"
#include "platform/grid/copied_cells.h"
#include "platform/grid/db_grid.h"
#include "platform/toolkit/handler.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QHash>

namespace platform {

namespace {

class GridTable;

/// A cell by its place; it says what stands there when it is asked.
class GridCell : public QAccessibleInterface, public QAccessibleTableCellInterface {
public:
    GridCell(GridTable *table, int row, int column)
        : m_table(table)
        , m_row(row)
        , m_column(column)
    {
    }

    int rowIndex() const override { return m_row; }
    int columnIndex() const override { return m_column; }
    int rowExtent() const override { return 1; }
    int columnExtent() const override { return 1; }
    QList<QAccessibleInterface *> rowHeaderCells() const override { return {}; }
    QList<QAccessibleInterface *> columnHeaderCells() const override { return {}; }
    bool isSelected() const override;
    QAccessibleInterface *table() const override;

    bool isValid() const override;
    QObject *object() const override { return nullptr; }
    QAccessibleInterface *childAt(int, int) const override { return nullptr; }
    QAccessibleInterface *parent() const override { return table(); }
    QAccessibleInterface *child(int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface *) const override { return -1; }
    QString text(QAccessible::Text kind) const override;
    void setText(QAccessible::Text, const QString &) override { }
    QRect rect() const override;
    QAccessible::Role role() const override { return QAccessible::Cell; }
    QAccessible::State state() const override;
    void *interface_cast(QAccessible::InterfaceType type) override
    {
        return type == QAccessible::TableCellInterface ? static_cast<QAccessibleTableCellInterface *>(this) : nullptr;
    }

private:
    GridTable *m_table;
    int m_row;
    int m_column; ///< among the visible ones
};

/// A grid with its visible columns.
class GridTable : public QAccessibleWidget, public QAccessibleTableInterface {
public:
    /// Only a reader that asks for the grid makes one: without any a step costs nothing.
    explicit GridTable(TDBGridEh *grid)
        : QAccessibleWidget(grid, QAccessible::Table)
        , m_spokenRow(grid->currentRow())
        , m_steps(handle(grid, &TDBGridEh::currentCellChanged, grid, [this](int row, int column) { speak(row, column); }))
    {
    }
    ~GridTable() override
    {
        QObject::disconnect(m_steps);
        forgetCells();
    }

    TDBGridEh *grid() const { return static_cast<TDBGridEh *>(object()); }
    /// The grid's column that is the visible one of that number; -1 when there is none.
    int gridColumn(int visible) const;
    int visibleColumn(int column) const;
    QString title(int visible) const { return plainTitle(grid()->column(gridColumn(visible)).caption); }
    /// What is said of the current cell after the last step.
    QString spoken() const { return m_spoken; }
    /// After a step: to another row the value and the row's number, to another column the title and the value.
    void speak(int row, int column);

    QAccessibleInterface *caption() const override { return nullptr; }
    QAccessibleInterface *summary() const override { return nullptr; }
    QAccessibleInterface *cellAt(int row, int column) const override;
    int selectedCellCount() const override { return 0; }
    QList<QAccessibleInterface *> selectedCells() const override { return {}; }
    QString columnDescription(int column) const override { return gridColumn(column) < 0 ? QString() : title(column); }
    QString rowDescription(int row) const override { return QString::number(row + 1); }
    int selectedColumnCount() const override { return 0; }
    int selectedRowCount() const override { return 0; }
    int columnCount() const override;
    int rowCount() const override { return grid()->rowCount(); }
    QList<int> selectedColumns() const override { return {}; }
    QList<int> selectedRows() const override { return {}; }
    bool isColumnSelected(int) const override { return false; }
    bool isRowSelected(int) const override { return false; }
    bool selectRow(int) override { return false; }
    bool selectColumn(int) override { return false; }
    bool unselectRow(int) override { return false; }
    bool unselectColumn(int) override { return false; }
    void modelChange(QAccessibleTableModelChangeEvent *) override { forgetCells(); }

    int childCount() const override { return rowCount() * columnCount(); }
    QAccessibleInterface *child(int index) const override;
    int indexOfChild(const QAccessibleInterface *child) const override;
    QAccessibleInterface *childAt(int x, int y) const override;
    QAccessibleInterface *focusChild() const override;
    QString text(QAccessible::Text kind) const override;
    void *interface_cast(QAccessible::InterfaceType type) override
    {
        return type == QAccessible::TableInterface ? static_cast<QAccessibleTableInterface *>(this)
                                                   : QAccessibleWidget::interface_cast(type);
    }

private:
    void forgetCells() const;

    mutable QHash<std::pair<int, int>, QAccessible::Id> m_cells;
    QString m_spoken;
    int m_spokenRow;
    QMetaObject::Connection m_steps;
};

constexpr qsizetype mostCells = 500; ///< that a reader's walk leaves behind

bool GridCell::isSelected() const { return isValid() && m_table->grid()->isSelected(m_row, m_table->gridColumn(m_column)); }

QAccessibleInterface *GridCell::table() const { return m_table; }

bool GridCell::isValid() const { return m_table->isValid() && m_row < m_table->rowCount() && m_column < m_table->columnCount(); }

QString GridCell::text(QAccessible::Text kind) const
{
    if (!isValid())
        return {};
    const TDBGridEh *grid = m_table->grid();
    const int column = m_table->gridColumn(m_column);
    switch (kind) {
    case QAccessible::Name: {
        const bool isCurrent = grid->currentRow() == m_row && grid->currentColumn() == column;
        const QString plain = m_table->title(m_column) + u' ' + grid->cellTextWithTicks(m_row, column);
        return isCurrent && !m_table->spoken().isEmpty() ? m_table->spoken() : plain;
    }
    case QAccessible::Value:
        return grid->cellTextWithTicks(m_row, column);
    case QAccessible::Description:
        return QStringLiteral("第 %1 行").arg(m_row + 1);
    default:
        return {};
    }
}

QRect GridCell::rect() const
{
    if (!isValid())
        return {};
    const QWidget *viewport = m_table->grid()->viewport();
    const QRect cell = m_table->grid()->cellRect(m_row, m_table->gridColumn(m_column));
    return { viewport->mapToGlobal(cell.topLeft()), cell.size() };
}

QAccessible::State GridCell::state() const
{
    QAccessible::State state;
    if (!isValid()) {
        state.invalid = true;
        return state;
    }
    const TDBGridEh *grid = m_table->grid();
    state.focusable = true;
    state.selectable = true;
    state.selected = isSelected();
    state.readOnly = true;
    state.focused = grid->hasFocus() && grid->currentRow() == m_row && grid->currentColumn() == m_table->gridColumn(m_column);
    return state;
}

int GridTable::columnCount() const
{
    int visible = 0;
    for (int column = 0; column < grid()->columnCount(); ++column)
        visible += grid()->column(column).visible ? 1 : 0;
    return visible;
}

int GridTable::gridColumn(int visible) const
{
    for (int column = 0; column < grid()->columnCount(); ++column) {
        if (grid()->column(column).visible && visible-- == 0)
            return column;
    }
    return -1;
}

int GridTable::visibleColumn(int column) const
{
    int visible = -1;
    for (int index = 0; index <= column; ++index)
        visible += grid()->column(index).visible ? 1 : 0;
    return visible;
}

QAccessibleInterface *GridTable::cellAt(int row, int column) const
{
    if (row < 0 || column < 0 || row >= rowCount() || column >= columnCount())
        return nullptr;
    if (const auto known = m_cells.constFind({ row, column }); known != m_cells.constEnd())
        return QAccessible::accessibleInterface(*known);
    if (m_cells.size() >= mostCells)
        forgetCells();
    auto *cell = new GridCell(const_cast<GridTable *>(this), row, column);
    m_cells.insert({ row, column }, QAccessible::registerAccessibleInterface(cell));
    return cell;
}

void GridTable::forgetCells() const
{
    for (const QAccessible::Id id : std::as_const(m_cells))
        QAccessible::deleteAccessibleInterface(id);
    m_cells.clear();
}

QAccessibleInterface *GridTable::child(int index) const
{
    const int columns = columnCount();
    return columns == 0 ? nullptr : cellAt(index / columns, index % columns);
}

int GridTable::indexOfChild(const QAccessibleInterface *child) const
{
    const auto *cell = dynamic_cast<const GridCell *>(child);
    return cell ? cell->rowIndex() * columnCount() + cell->columnIndex() : -1;
}

QAccessibleInterface *GridTable::childAt(int x, int y) const
{
    const QPoint place = grid()->viewport()->mapFromGlobal(QPoint(x, y));
    const int row = grid()->rowAt(place.y());
    for (int column = 0; row >= 0 && column < grid()->columnCount(); ++column) {
        if (grid()->cellRect(row, column).contains(place))
            return cellAt(row, visibleColumn(column));
    }
    return nullptr;
}

QAccessibleInterface *GridTable::focusChild() const
{
    const int column = grid()->currentColumn();
    return column < 0 ? nullptr : cellAt(grid()->currentRow(), visibleColumn(column));
}

QString GridTable::text(QAccessible::Text kind) const
{
    if (kind == QAccessible::Value)
        return grid()->rowCount() == 0 ? grid()->emptyNote() : m_spoken;
    return QAccessibleWidget::text(kind);
}

void GridTable::speak(int row, int column)
{
    if (column < 0 || row < 0 || row >= rowCount())
        return;
    const QString text = grid()->cellTextWithTicks(row, column);
    const QString value = text.isEmpty() ? QStringLiteral("空白") : text;
    m_spoken = row != m_spokenRow ? QStringLiteral("%1，第 %2 行").arg(value).arg(row + 1)
                                  : plainTitle(grid()->column(column).caption) + u' ' + value;
    m_spokenRow = row;
    if (QAccessibleInterface *cell = focusChild()) {
        QAccessibleEvent focus(cell, QAccessible::Focus);
        QAccessible::updateAccessibility(&focus);
    }
}

QAccessibleInterface *tableOf(const QString &, QObject *object)
{
    auto *grid = qobject_cast<TDBGridEh *>(object);
    return grid ? new GridTable(grid) : nullptr;
}

} // namespace

void makeGridsAccessible()
{
    static const bool installed = [] {
        QAccessible::installFactory(tableOf);
        return true;
    }();
    Q_UNUSED(installed)
}

} // namespace platform
