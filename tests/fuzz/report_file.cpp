// Reads a text as a report file and, when it is one, lays out its first pages.

#include "platform/report/definition/report_file.h"
#include "packet/builder.h"
#include "platform/dataset/client_data_set.h"
#include "platform/report/layout/add_in.h"
#include "platform/report/layout/bar_code.h"
#include "platform/report/layout/chart.h"
#include "platform/report/layout/prepared_report.h"
#include "tests/fuzz/application.h"

namespace {

constexpr int mostPages = 20;

/// Rows with the fields that the lists of reports/ print.
void fill(TCustomClientDataSet &rows)
{
    packet::Builder builder({ { "BILL_CODE" }, { "SUB_BILL_CODE" }, { "PRE_OR_NEXT_STATION" },
        { "SCAN_DATE", packet::ColumnType::Timestamp }, { "WEIGHT", packet::ColumnType::Decimal }, { "PIECE", packet::ColumnType::Decimal },
        { "DISPATCH_SITE" }, { "TOPAYMENT" }, { "TRANSFER_OR_DISPATCH_FEE" } });
    for (int row = 0; row < 5; ++row) {
        for (std::size_t column = 0; column < 9; ++column)
            column == 3 ? builder.addTimestamp(column, 1'773'592'200) : builder.addText(column, row % 2 == 0 ? "268000000001" : "12.5");
        builder.endRow();
    }
    rows.setData(builder.finish());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    needApplication();
    static TCustomClientDataSet rows;
    static report::BarCodeObject barCodes;
    static report::ChartObject charts;
    if (!rows.active())
        fill(rows);
    try {
        const QByteArray text(reinterpret_cast<const char *>(data), qsizetype(size));
        report::PreparedReport prepared(report::parseDefinition(text, QStringLiteral("fuzz.frf")), &rows, { &barCodes, &charts });
        for (int page = 0; page < mostPages && prepared.prepareNextPage(); ++page) { }
    } catch (const Exception &) {
        // Most inputs are refused.
    }
    return 0;
}
