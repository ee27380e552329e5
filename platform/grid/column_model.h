#pragma once

#include "platform/grid/column.h"
#include "platform/grid/sort_keys.h"

#include <optional>

class TDataSet;

namespace platform {

/// The columns of a grid in their shown order, the layout they were designed in, and the dataset's fields that they show.
class ColumnModel {
public:
    void design(const QList<Column> &columns);
    /// Order and widths as designed, visibility as code wants it; footers, title buttons and sort marks stay as they are.
    void restoreDesign();

    int count() const { return int(m_columns.size()); }
    const Column &at(int index) const { return m_columns[index].column; }
    void set(int index, const Column &column); ///< its visibility as setVisible()
    void move(int from, int to) { m_columns.move(from, to); }
    void setWidth(int index, int width) { m_columns[index].column.width = width; }
    /// What code wants; a choice of the person overrides it.
    void setVisible(int index, bool visible);
    /// What the person wants; nothing leaves it to code.
    void setChoice(int index, std::optional<bool> visible);
    std::optional<bool> choice(int index) const { return m_columns[index].choice; }
    bool isDesignedVisible(int index) const { return m_design[m_columns[index].designIndex].visible; }
    /// Case ignored; -1 when there is none.
    int find(QStringView fieldName, ColumnScope scope) const;
    /// The nearest visible column from `index` in the direction of `step` (1 or -1), itself included; -1 when there is none.
    int visibleFrom(int index, int step) const;

    /// Looks up the fields of an open dataset; null or a closed one leaves the columns without.
    void bind(const TDataSet *dataSet);
    int field(int index) const { return m_columns[index].field; } ///< index in the dataset, or -1
    /// How many digits the column's numbers show behind the point; -1 when it shows its values as they are.
    int decimals(int index) const { return m_columns[index].decimals; }
    /// The column's own alignment, or right for numbers and left for everything else.
    Qt::Alignment alignment(int index) const;
    Qt::Alignment footerAlignment(int footerRow, int index) const; ///< its own, or its column's

    QList<SortKey> sortKeys() const;
    void setSortKeys(const QList<SortKey> &keys);

private:
    struct Entry {
        Column column;
        int designIndex;
        bool wanted; ///< visible, if it were for code alone
        std::optional<bool> choice {}; ///< the person's
        int field = -1;
        bool numeric = false;
        int decimals = -1;
    };
    QList<Entry> m_columns;
    QList<Column> m_design;
};

} // namespace platform
