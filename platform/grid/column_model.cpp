#include "platform/grid/column_model.h"

#include "platform/dataset/data_set.h"

#include <algorithm>

namespace platform {

namespace {

constexpr int moneyDecimals = 2;
/// A mean may come with twenty digits; shorter numbers beside it are not filled up that far.
constexpr int mostFilledDecimals = 4;

int decimalsOf(const Column &column, const TField &field)
{
    if (column.numberForm == NumberForm::Exact || column.isCheckBox())
        return -1;
    const int least = column.numberForm == NumberForm::Money ? moneyDecimals : 0;
    return std::max(least, std::min(field.scale(), mostFilledDecimals));
}

} // namespace

void ColumnModel::design(const QList<Column> &columns)
{
    m_design = columns;
    m_columns.clear();
    for (int index = 0; index < columns.size(); ++index)
        m_columns.append(Entry { columns[index], index, columns[index].visible });
}

void ColumnModel::restoreDesign()
{
    std::sort(
        m_columns.begin(), m_columns.end(), [](const Entry &left, const Entry &right) { return left.designIndex < right.designIndex; });
    for (Entry &entry : m_columns) {
        entry.column.width = m_design[entry.designIndex].width;
        entry.choice.reset();
        entry.column.visible = entry.wanted;
    }
}

void ColumnModel::set(int index, const Column &column)
{
    const bool changed = column.visible != at(index).visible;
    m_columns[index].column = column;
    if (changed)
        setVisible(index, column.visible);
}

void ColumnModel::setVisible(int index, bool visible)
{
    Entry &entry = m_columns[index];
    entry.wanted = visible;
    entry.column.visible = entry.choice.value_or(visible);
}

void ColumnModel::setChoice(int index, std::optional<bool> visible)
{
    Entry &entry = m_columns[index];
    entry.choice = visible;
    entry.column.visible = visible.value_or(entry.wanted);
}

int ColumnModel::find(QStringView fieldName, ColumnScope scope) const
{
    for (int index = 0; index < count(); ++index) {
        if ((at(index).visible || scope == ColumnScope::All) && fieldName.compare(at(index).fieldName, Qt::CaseInsensitive) == 0)
            return index;
    }
    return -1;
}

int ColumnModel::visibleFrom(int index, int step) const
{
    for (; index >= 0 && index < count(); index += step) {
        if (at(index).visible)
            return index;
    }
    return -1;
}

void ColumnModel::bind(const TDataSet *dataSet)
{
    const bool open = dataSet && dataSet->active();
    for (Entry &entry : m_columns) {
        const TField *field = open && !entry.column.fieldName.isEmpty() ? dataSet->findField(entry.column.fieldName) : nullptr;
        entry.field = field ? field->index() : -1;
        entry.numeric = field && field->type() != FieldType::Text && field->type() != FieldType::DateTime;
        entry.decimals = entry.numeric ? decimalsOf(entry.column, *field) : -1;
    }
}

Qt::Alignment ColumnModel::alignment(int index) const
{
    if (at(index).alignment)
        return at(index).alignment;
    return m_columns[index].numeric ? Qt::AlignRight : Qt::AlignLeft;
}

Qt::Alignment ColumnModel::footerAlignment(int footerRow, int index) const
{
    const QList<ColumnFooter> &footers = at(index).footers;
    const Qt::Alignment own = footerRow < footers.size() ? footers[footerRow].alignment : Qt::Alignment();
    return own ? own : alignment(index);
}

QList<SortKey> ColumnModel::sortKeys() const
{
    QList<int> marked;
    for (int index = 0; index < count(); ++index) {
        if (at(index).sortMark != SortMark::None)
            marked.append(index);
    }
    std::stable_sort(marked.begin(), marked.end(), [this](int left, int right) { return at(left).sortKey < at(right).sortKey; });
    QList<SortKey> keys;
    for (int index : std::as_const(marked))
        keys.append({ index, at(index).sortMark });
    return keys;
}

void ColumnModel::setSortKeys(const QList<SortKey> &keys)
{
    for (Entry &entry : m_columns) {
        entry.column.sortMark = SortMark::None;
        entry.column.sortKey = 0;
    }
    for (int position = 0; position < keys.size(); ++position) {
        Column &column = m_columns[keys[position].column].column;
        column.sortMark = keys[position].mark;
        column.sortKey = position + 1;
    }
}

} // namespace platform
