#pragma once

#include "platform/dataset/data_set.h"
#include "platform/grid/db_grid.h"

#include <optional>
#include <vector>

namespace report {

/// The visible columns of a grid as a dataset of the texts that it shows; the fields are called C0, C1 and so on, by the number of the
/// column in the grid. Reads the grid when asked, so the grid must stay as it is meanwhile.
class GridRows : public TDataSet {
public:
    explicit GridRows(const TDBGridEh &grid);

    int recordCount() const override;
    QString truncationNotice() const override { return m_source ? m_source->truncationNotice() : QString(); }
    Bookmark bookmark() const override { return {}; }
    bool gotoBookmark(const Bookmark &) override { return false; }
    bool isNull(int field, int row) const override { return text(field, row).isEmpty(); }
    QString text(int field, int row) const override;
    std::optional<packet::Decimal> number(int field, int row) const override;

protected:
    void doOpen() override;
    void doClose() override { m_fields.clear(); }
    void setCell(int, const QString &) override { }
    void doPost() override { }

private:
    QPointer<const TDBGridEh> m_grid;
    QPointer<const TDataSet> m_source;
    std::vector<int> m_columns; ///< of each field
};

} // namespace report
