// Reads a statement as the gate does, and writes it out for SQLite when it passes.

#include "engine/dialect/dialect.h"
#include "engine/engine.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const engine::gate::ColumnSet scan { "BILL_CODE", "SUB_BILL_CODE", "SCAN_TYPE", "SCAN_SITE", "SCAN_DATE", "SCAN_MAN",
        "SCAN_MAN_CODE", "PRE_OR_NEXT_STATION", "DISPATCH_SITE", "SEND_SITE", "WEIGHT", "CLASS", "GOODS_TYPE", "FAST_TYPE", "REMARK" };
    static const engine::gate::Schema schema { { "TAB_SCAN_COME", scan }, { "TAB_SCAN_DISP", scan }, { "TAB_SCAN_REC", scan },
        { "TAB_SCAN_SEND", scan }, { "TAB_BILL", { "BILL_CODE", "SEND_DATE", "SEND_SITE", "TOPAYMENT" } },
        { "TAB_SITE", { "SITE_NAME", "AREA_NAME", "TYPE" } }, { "TAB_SIGN", { "BILL_CODE", "SIGN_DATE", "SIGN_MAN", "RECORD_SITE" } } };
    const std::string_view sql(reinterpret_cast<const char *>(data), size);
    try {
        engine::sqliteText(sql, engine::gate::check(sql, schema));
    } catch (const engine::Error &) {
        // Most inputs are refused.
    }
    return 0;
}
