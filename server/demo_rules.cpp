#include "server/demo_rules.h"

namespace server {

std::vector<engine::TableRule> demoRules()
{
    const std::string ofScan = "scan_site in (:sites) or send_site in (:sites) or dispatch_site in (:sites)";
    // By its number a waybill is found at once, however many belong to the sites.
    const auto ofBill = [](const std::string &table) {
        return "exists (select 1 from TAB_BILL b where b.bill_code = " + table
            + ".bill_code and (b.send_site in (:sites) or b.dispatch_site in (:sites)))";
    };
    std::vector<engine::TableRule> rules {
        { .table = "TAB_BILL",
            .condition = "send_site in (:sites) or dispatch_site in (:sites)",
            .hidden = { "SEND_MAN_PHONE", "ACCEPT_MAN_PHONE" } },
        { .table = "TAB_SIGN", .condition = "record_site in (:sites) or rec_site in (:sites) or sign_site in (:sites)" },
        { .table = "TAB_SIGN_SUM", .condition = "record_site in (:sites) or rec_site in (:sites)" },
        { .table = "TAB_PROBLEM", .condition = "register_site in (:sites) or " + ofBill("TAB_PROBLEM") },
        { .table = "TAB_BILL_STATUS", .condition = ofBill("TAB_BILL_STATUS") },
        { .table = "TAB_ACCOUNT_LIST", .condition = "pre_station in (:sites) or next_station in (:sites)" },
        { .table = "TAB_CUSTOMER", .condition = "owner_site in (:sites)" },
        { .table = "TAB_EMPLOYEE", .condition = "owner_site in (:sites)" },
    };
    for (const char *const table : { "TAB_SCAN_REC", "TAB_SCAN_SEND", "TAB_SCAN_COME", "TAB_SCAN_DISP", "TAB_SCAN_OTHER" })
        rules.push_back({ .table = table, .condition = ofScan });
    return rules;
}

} // namespace server
