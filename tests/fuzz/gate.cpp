// Reads a statement as the gate does, and writes it out for SQLite when it passes.

#include "engine/dialect/dialect.h"
#include "engine/engine.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const engine::gate::TableSet tables { "TAB_BILL", "TAB_SITE", "TAB_SCAN_COME", "TAB_SCAN_DISP", "TAB_SCAN_REC", "TAB_SCAN_SEND",
        "TAB_SIGN" };
    const std::string_view sql(reinterpret_cast<const char *>(data), size);
    try {
        engine::sqliteText(sql, engine::gate::check(sql, tables));
    } catch (const engine::Error &) {
        // Most inputs are refused.
    }
    return 0;
}
