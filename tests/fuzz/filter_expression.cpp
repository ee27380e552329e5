// Compiles a text as a dataset's filter and runs it over a few rows of every type.

#include "platform/dataset/filter_expression.h"
#include "packet/builder.h"
#include "platform/dataset/row_overlay.h"
#include "platform/toolkit/exception.h"

using namespace platform;

namespace {

packet::PacketPtr fewRows()
{
    using packet::ColumnType;
    packet::Builder builder({ { "TYPE", ColumnType::Text }, { "FEE", ColumnType::Decimal }, { "PIECE", ColumnType::Int64 },
        { "SCAN_DATE", ColumnType::Timestamp }, { "RATIO", ColumnType::Float64 } });
    for (const char *type : { "外省", "", "a%_'b" }) {
        builder.addText(0, type);
        builder.addText(1, "-12345678901234567890.5");
        builder.addInteger(2, 7);
        builder.addTimestamp(3, 1'773'592'200);
        builder.addDouble(4, 0.1);
        builder.endRow();
    }
    for (std::size_t column = 0; column < 5; ++column)
        builder.addNull(column);
    builder.endRow();
    return builder.finish();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const RowOverlay rows(fewRows());
    try {
        FilterExpression filter(QString::fromUtf8(reinterpret_cast<const char *>(data), qsizetype(size)), rows.packet());
        filter.select(rows);
    } catch (const Exception &) {
        // Most inputs are refused.
    }
    return 0;
}
