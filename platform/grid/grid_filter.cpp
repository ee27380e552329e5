#include "platform/grid/grid_filter.h"

#include "platform/dataset/client_data_set.h"
#include "platform/dataset/text_order.h"
#include "platform/grid/copied_cells.h"
#include "platform/grid/db_grid.h"
#include "platform/grid/filter_bar.h"
#include "platform/grid/value_dialog.h"
#include "platform/toolkit/handler.h"

#include <QSet>

#include <algorithm>

namespace platform {

namespace {

constexpr qsizetype mostValues = 10'000;
constexpr qsizetype namedValues = 3;

/// As a reader looks for them: numbers by their size, texts by how they are read; what is blank comes first.
void sortValues(std::vector<ValueCount> &values, FieldType type)
{
    if (type == FieldType::Text || type == FieldType::DateTime) {
        std::vector<std::string> texts;
        for (const ValueCount &value : values)
            texts.push_back(value.text.toStdString());
        const std::vector<std::string_view> views(texts.begin(), texts.end());
        std::vector<ValueCount> sorted;
        for (const std::uint32_t place : TextOrder(views).permutation)
            sorted.push_back(std::move(values[place]));
        values = std::move(sorted);
        return;
    }
    const auto numberOf = [](const ValueCount &value) { return packet::Decimal::parse(value.text.toStdString()); };
    std::ranges::sort(values, [&](const ValueCount &left, const ValueCount &right) { return numberOf(left) < numberOf(right); });
}

} // namespace

GridFilter::GridFilter(TDBGridEh &grid)
    : m_grid(grid)
    , m_bar(new FilterBar(&grid))
{
    m_bar->hide();
    handle(m_bar, &FilterBar::textEntered, this, [this](const QString &text) { setText(text); });
    handle(m_bar, &FilterBar::cleared, this, [this] {
        clear();
        m_grid.setFocus();
    });
    handle(m_bar, &FilterBar::left, this, [this] {
        m_grid.setFocus();
        takeRows();
    });
    handle(m_bar, &FilterBar::conditionRemoved, this, [this](int condition) {
        QuickFilter changed = filter();
        changed.values.removeAt(condition);
        apply(changed);
    });
}

TCustomClientDataSet *GridFilter::rows() const
{
    auto *dataSet = qobject_cast<TCustomClientDataSet *>(m_grid.dataSet());
    return dataSet && dataSet->active() ? dataSet : nullptr;
}

TCustomClientDataSet &GridFilter::requireRows() const
{
    TCustomClientDataSet *dataSet = rows();
    if (!dataSet)
        throw Exception(QStringLiteral("表格里还没有数据，请先查询，再筛选。"));
    return *dataSet;
}

QuickFilter GridFilter::filter() const { return rows() ? rows()->quickFilter() : QuickFilter(); }

QString GridFilter::requireField(int column) const
{
    const QString name = column < 0 ? QString() : m_grid.column(column).fieldName;
    if (!requireRows().findField(name))
        throw Exception(QStringLiteral("这一列没有数据，不能按它筛选，请选另一列。"));
    return name;
}

void GridFilter::useSelectedValues(QuickFilter::Keep keep)
{
    const int column = m_grid.currentColumn();
    const QString field = requireField(column);
    QSet<QString> texts;
    for (const QRect &range : m_grid.selectedRanges()) {
        for (int row = range.top(); column >= range.left() && column <= range.right() && row <= range.bottom(); ++row) {
            texts.insert(m_grid.cellText(row, column));
            if (texts.size() > mostValues)
                throw Exception(QStringLiteral("选中的不同的值超过了 %L1 个，请少选一些。").arg(mostValues));
        }
    }
    if (texts.isEmpty() && m_grid.currentRow() >= 0)
        texts.insert(m_grid.cellText(m_grid.currentRow(), column));
    if (!texts.isEmpty())
        setValues({ field, texts.values(), keep });
}

void GridFilter::setValues(QuickFilter::Values values)
{
    QuickFilter changed = filter();
    for (const QuickFilter::Values &known : std::as_const(changed.values)) {
        if (known.fieldName == values.fieldName && known.keep == QuickFilter::Keep::Others && values.keep == known.keep)
            values.texts = known.texts + values.texts;
    }
    changed.values.removeIf([&values](const QuickFilter::Values &known) {
        return known.fieldName == values.fieldName && (values.keep == QuickFilter::Keep::Those || known.keep == values.keep);
    });
    values.texts.removeDuplicates();
    changed.values.append(values);
    apply(changed);
}

void GridFilter::chooseValues(int column)
{
    const QString field = requireField(column);
    QuickFilter besides = filter();
    const auto ofColumn = [&field](const QuickFilter::Values &values) { return values.fieldName == field; };
    const QList<QuickFilter::Values> known = besides.values;
    besides.values.removeIf(ofColumn);
    const TCustomClientDataSet &dataSet = requireRows();
    const TField &shown = *dataSet.findField(field);
    std::vector<ValueCount> counts = dataSet.valueCounts(shown.index(), besides, std::size_t(mostValues));
    sortValues(counts, shown.type());
    QList<ValueDialog::Value> values;
    for (const auto &[text, rows] : counts) {
        const bool seen = std::ranges::all_of(known, [&](const QuickFilter::Values &asked) {
            return !ofColumn(asked) || asked.texts.contains(text) == (asked.keep == QuickFilter::Keep::Those);
        });
        values.append({ text, valueName(column, text), rows, seen ? Qt::Checked : Qt::Unchecked });
    }
    auto *dialog = new ValueDialog(plainTitle(m_grid.column(column).caption), values,
        values.size() < mostValues ? ValueDialog::List::Whole : ValueDialog::List::Cut, &m_grid);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    handle(dialog, &QDialog::accepted, this, [this, dialog, field, besides] {
        QuickFilter changed = besides;
        if (const auto chosen = dialog->choice())
            changed.values.append({ field, chosen->texts, chosen->keep });
        if (rows())
            apply(changed);
    });
    dialog->open();
}

void GridFilter::openBar()
{
    requireRows();
    showBar(true);
    m_bar->beginTyping();
}

void GridFilter::setText(const QString &text, int column)
{
    if (!rows())
        return takeRows();
    QuickFilter changed = filter();
    changed.text = text;
    changed.fieldNames.clear();
    for (int index = 0; !text.isEmpty() && index < m_grid.columnCount(); ++index) {
        const Column &shown = m_grid.column(index);
        const bool isWanted = column < 0 || column == index;
        if (isWanted && shown.visible && !shown.isCheckBox() && !shown.fieldName.isEmpty())
            changed.fieldNames.append(shown.fieldName);
    }
    apply(changed);
}

void GridFilter::clear()
{
    if (rows())
        apply({});
    showBar(false);
}

void GridFilter::apply(const QuickFilter &filter)
{
    if (filter != this->filter())
        requireRows().setQuickFilter(filter);
    takeRows();
}

QString GridFilter::valueName(int column, const QString &text) const
{
    const Column &shown = m_grid.column(column);
    if (shown.isCheckBox() && (text == shown.checkedKey || text == shown.uncheckedKey))
        return text == shown.checkedKey ? QStringLiteral("√") : QStringLiteral("未勾选");
    return text.isEmpty() ? QStringLiteral("空白") : text;
}

QString GridFilter::conditionText(const QuickFilter::Values &values) const
{
    const int column = m_grid.columnIndex(values.fieldName);
    QStringList names;
    for (const QString &text : values.texts.first(std::min(values.texts.size(), namedValues)))
        names.append(column < 0 ? text : valueName(column, text));
    const QString title = column < 0 ? values.fieldName : plainTitle(m_grid.column(column).caption);
    const QString rest = values.texts.size() > namedValues ? QStringLiteral(" 等 %L1 个").arg(values.texts.size()) : QString();
    return title + (values.keep == QuickFilter::Keep::Those ? u"＝" : u"≠") + names.join(u'、') + rest;
}

QString GridFilter::description() const
{
    QStringList parts;
    const QuickFilter shown = filter();
    for (const QuickFilter::Values &values : shown.values)
        parts.append(conditionText(values));
    if (!shown.text.isEmpty())
        parts.append(QStringLiteral("含“%1”").arg(shown.text));
    return parts.join(u'；');
}

void GridFilter::showBar(bool visible)
{
    if (m_bar->isVisibleTo(&m_grid) == visible)
        return;
    m_bar->setVisible(visible);
    Q_EMIT barToggled();
}

void GridFilter::takeRows()
{
    const QuickFilter shown = filter();
    QStringList conditions;
    for (const QuickFilter::Values &values : shown.values)
        conditions.append(conditionText(values));
    m_bar->showFilter(shown.text, conditions, rows() ? rows()->recordCount() : 0, rows() ? rows()->unnarrowedCount() : 0);
    showBar(!shown.isEmpty() || (rows() && m_bar->isTyping()));
}

} // namespace platform
