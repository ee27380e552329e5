#include "platform/report/grid_rows.h"

#include <memory>
#include <optional>

using namespace platform;

namespace report {

GridRows::GridRows(const TDBGridEh &grid)
    : m_grid(&grid)
    , m_source(grid.dataSet())
{
}

int GridRows::recordCount() const { return m_grid && m_source && m_source->active() ? m_grid->rowCount() : -1; }

QString GridRows::text(int field, int row) const { return m_grid->cellTextWithTicks(row, m_columns[std::size_t(field)]); }

std::optional<packet::Decimal> GridRows::number(int field, int row) const { return packet::Decimal::parse(text(field, row).toStdString()); }

void GridRows::doOpen()
{
    for (int index = 0; index < m_grid->columnCount(); ++index) {
        const Column &column = m_grid->column(index);
        if (!column.visible)
            continue;
        // Numbers stay numbers when the pages are exported; codes and names stay texts.
        const TField *source = m_source ? m_source->findField(column.fieldName) : nullptr;
        const bool numeric = source && !column.isCheckBox()
            && (source->type() == FieldType::Integer || source->type() == FieldType::Decimal || source->type() == FieldType::Float);
        m_fields.push_back(std::make_unique<TField>(
            this, int(m_fields.size()), QStringLiteral("C%1").arg(index), numeric ? FieldType::Decimal : FieldType::Text));
        m_columns.push_back(index);
    }
    finishOpen();
}

} // namespace report
