#include "client/bills/answered_bills.h"

#include "packet/builder.h"
#include "platform/dataset/data_set.h"
#include "platform/toolkit/exception.h"

#include <QSet>

#include <algorithm>

namespace client {
namespace {

/// Whether a row says anything but its number; a mark that is off says nothing.
bool saysAnything(const TDataSet &rows, int row, int bill)
{
    for (int field = 0; field < rows.fieldCount(); ++field) {
        if (field == bill || rows.isNull(field, row))
            continue;
        const QString text = rows.text(field, row).trimmed();
        if (!text.isEmpty() && text != u"0")
            return true;
    }
    return false;
}

void addCell(packet::Builder &rows, const packet::Packet &answer, std::size_t column, std::size_t row)
{
    if (answer.isNull(column, row))
        return rows.addNull(column);
    switch (answer.schema()[column].type) {
    case packet::ColumnType::Text:
        return rows.addText(column, answer.text(column, row));
    case packet::ColumnType::Int64:
        return rows.addInteger(column, answer.integer(column, row));
    case packet::ColumnType::Decimal:
        return rows.addDecimal(column, answer.decimal(column, row));
    case packet::ColumnType::Float64:
        return rows.addDouble(column, answer.real(column, row));
    case packet::ColumnType::Timestamp:
        return rows.addTimestamp(column, answer.integer(column, row));
    }
}

/// A column without any value comes as text, whatever its others are.
bool isBlank(const packet::Packet &answer, std::size_t column)
{
    for (std::size_t row = 0; row < answer.rowCount(); ++row) {
        if (!answer.isNull(column, row))
            return false;
    }
    return true;
}

std::vector<packet::Builder::Column> columnsOf(const std::vector<packet::PacketPtr> &answers)
{
    std::vector<packet::Builder::Column> columns;
    for (const packet::Field &field : answers.front()->schema())
        columns.push_back({ .name = field.name });
    for (const packet::PacketPtr &answer : answers) {
        for (std::size_t column = 0; column < columns.size(); ++column) {
            if (column >= answer->columnCount() || answer->schema()[column].name != columns[column].name)
                throw Exception(QStringLiteral("各批结果的列不同，不能合并。"));
            const packet::Field &field = answer->schema()[column];
            if (columns[column].type == packet::ColumnType::Decimal || isBlank(*answer, column))
                continue;
            columns[column].type = field.type;
            if (field.type == packet::ColumnType::Decimal)
                columns[column].scale = field.scale;
        }
    }
    return columns;
}

} // namespace

UnansweredBills unansweredBills(const QStringList &numbers, const TDataSet &rows)
{
    const TField *bill = rows.active() ? rows.findField(u"bill_code") : nullptr;
    if (!bill || !rows.truncationNotice().isEmpty())
        return {};
    QSet<QString> listed;
    QSet<QString> known;
    for (int row = 0; row < rows.recordCount(); ++row) {
        const QString number = rows.text(bill->index(), row).trimmed();
        listed.insert(number);
        if (saysAnything(rows, row, bill->index()))
            known.insert(number);
    }
    UnansweredBills unanswered;
    for (const QString &number : numbers) {
        if (!listed.contains(number))
            unanswered.missing.append(number);
        else if (!known.contains(number))
            unanswered.unknown.append(number);
    }
    return unanswered;
}

packet::PacketPtr joinedRows(const std::vector<packet::PacketPtr> &answers)
try {
    packet::Builder rows(columnsOf(answers));
    bool isCut = false;
    for (const packet::PacketPtr &answer : answers) {
        for (std::size_t row = 0; row < answer->rowCount(); ++row) {
            for (std::size_t column = 0; column < answer->columnCount(); ++column)
                addCell(rows, *answer, column, row);
            rows.endRow();
        }
        isCut = isCut || answer->truncated();
    }
    return rows.finish(isCut ? packet::Extent::Truncated : packet::Extent::Whole);
} catch (const std::invalid_argument &error) {
    throw Exception(QStringLiteral("各批结果不能合并：") + QString::fromUtf8(error.what()));
}

} // namespace client
