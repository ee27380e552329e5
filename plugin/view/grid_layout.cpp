#include "plugin/view/grid_layout.h"

#include "platform/grid/db_grid.h"
#include "plugin/view/layout_file.h"

#include <algorithm>

using namespace platform;

namespace plugin {

namespace {

const QString fieldIndexKey = QStringLiteral("FieldIndex");
// What a person arranged beyond order and widths stands in a section of its own.
const QString arrangementSuffix = QStringLiteral(".Arrangement");
const QString hiddenKey = QStringLiteral("Hidden");
const QString shownKey = QStringLiteral("Shown");
const QString frozenKey = QStringLiteral("Frozen");

/// A column that only the screen has hidden keeps its place for the time when it is shown again.
bool isStored(const TDBGridEh &grid, int index)
{
    const Column &column = grid.column(index);
    const bool shown = column.visible || (grid.isDesignedVisible(index) && !grid.columnChoice(index));
    return shown && !column.fieldName.isEmpty() && !column.caption.isEmpty();
}

void loadArrangement(TDBGridEh &grid, const LayoutFile &file, const QString &gridSection)
{
    const QString section = gridSection + arrangementSuffix;
    if (file.value(section, hiddenKey).isNull())
        return;
    const QStringList hidden = file.value(section, hiddenKey).split(u';', Qt::SkipEmptyParts);
    const QStringList shown = file.value(section, shownKey).split(u';', Qt::SkipEmptyParts);
    for (int index = 0; index < grid.columnCount(); ++index) {
        const QString name = grid.column(index).fieldName;
        if (hidden.contains(name, Qt::CaseInsensitive))
            grid.hideColumn(index);
        else if (shown.contains(name, Qt::CaseInsensitive))
            grid.showColumn(index);
    }
    grid.freezeColumns(file.value(section, frozenKey).toInt());
}

/// Only when the person has changed it, so that a new design reaches everybody else.
void storeArrangement(const TDBGridEh &grid, LayoutFile &file, const QString &gridSection)
{
    const QString section = gridSection + arrangementSuffix;
    QString hidden;
    QString shown;
    for (int index = 0; index < grid.columnCount(); ++index) {
        const QString &name = grid.column(index).fieldName;
        const std::optional<bool> choice = grid.columnChoice(index);
        if (choice && !name.isEmpty())
            (*choice ? shown : hidden) += name + u';';
    }
    if (hidden.isEmpty() && shown.isEmpty() && grid.isFreezeDesigned())
        return file.setSection(section, {});
    file.setSection(section, { { hiddenKey, hidden }, { shownKey, shown }, { frozenKey, QString::number(grid.frozenColumns()) } });
}

} // namespace

void loadGridLayout(TDBGridEh &grid, const LayoutFile &file, const QString &section)
{
    loadArrangement(grid, file, section);
    const QStringList names = file.value(section, fieldIndexKey).split(u';', Qt::SkipEmptyParts);
    for (const QString &name : names) {
        const int index = grid.columnIndex(name, ColumnScope::Visible);
        const int width = file.value(section, name).toInt();
        if (index >= 0 && width > 0)
            grid.setColumnWidth(index, width);
    }
    const int last = grid.columnCount() - 1;
    for (qsizetype position = 0; position < names.size(); ++position) {
        const int index = grid.columnIndex(names[position], ColumnScope::Visible);
        if (index >= 0)
            grid.moveColumn(index, std::min(int(position), last));
    }
}

void storeGridLayout(const TDBGridEh &grid, LayoutFile &file, const QString &section)
{
    QMap<QString, QString> values;
    QString order;
    for (int index = 0; index < grid.columnCount(); ++index) {
        const Column &column = grid.column(index);
        if (!isStored(grid, index))
            continue;
        order += column.fieldName + u';';
        values.insert(column.fieldName, QString::number(column.width));
    }
    values.insert(fieldIndexKey, order);
    file.setSection(section, values);
    storeArrangement(grid, file, section);
}

void removeGridLayout(LayoutFile &file, const QString &section)
{
    file.setSection(section, {});
    file.setSection(section + arrangementSuffix, {});
}

} // namespace plugin
