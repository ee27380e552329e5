#include "platform/dataset/data_set_provider.h"

#include "packet/builder.h"

using namespace platform;

namespace {

packet::ColumnType columnType(FieldType type)
{
    switch (type) {
    case FieldType::Text:
        return packet::ColumnType::Text;
    case FieldType::Integer:
        return packet::ColumnType::Int64;
    case FieldType::Decimal:
        return packet::ColumnType::Decimal;
    case FieldType::Float:
        return packet::ColumnType::Float64;
    case FieldType::DateTime:
        return packet::ColumnType::Timestamp;
    }
    return packet::ColumnType::Text;
}

} // namespace

packet::PacketPtr TDataSetProvider::data() const
{
    if (!m_dataSet || !m_dataSet->active())
        throw DataSetError(objectName() + QStringLiteral("没有打开的数据集，不能提供数据。"));
    std::vector<packet::Builder::Column> columns;
    for (int field = 0; field < m_dataSet->fieldCount(); ++field)
        columns.push_back({ m_dataSet->field(field)->fieldName().toStdString(), columnType(m_dataSet->field(field)->type()) });
    packet::Builder builder(std::move(columns));
    for (int row = 0; row < m_dataSet->recordCount(); ++row) {
        for (int field = 0; field < m_dataSet->fieldCount(); ++field)
            builder.addText(std::size_t(field), m_dataSet->text(field, row).toStdString());
        builder.endRow();
    }
    return builder.finish();
}
