#include "bench/scan_table.h"

#include <sqlite3.h>

#include <cstdio>
#include <cstdlib>

namespace {

constexpr auto createTable = R"(
create table TAB_SCAN_COME (
    BILL_CODE VARCHAR2(20) NOT NULL, SCAN_TYPE VARCHAR2(20) NOT NULL, SCAN_SITE VARCHAR2(50) NOT NULL, SCAN_DATE DATE NOT NULL,
    SCAN_MAN VARCHAR2(30), SCAN_MAN_CODE VARCHAR2(20), REGISTER_DATE DATE, DISPATCH_OR_SEND_MAN VARCHAR2(30), SEND_SITE VARCHAR2(50),
    PRE_OR_NEXT_STATION VARCHAR2(50), DISPATCH_SITE VARCHAR2(50), PIECE NUMBER(6), WEIGHT NUMBER(10,2), CLASS VARCHAR2(20),
    GOODS_TYPE VARCHAR2(20), FAST_TYPE VARCHAR2(20), TRANSFER_OR_DISPATCH_FEE NUMBER(12,2), OTHER_FEE NUMBER(12,2),
    NET_MANAGE_FEE NUMBER(12,2), CUSTOMER_NAME VARCHAR2(100), TRUCK_WAY VARCHAR2(50), REMARK VARCHAR2(200));)";

// Products of the row number and primes stand in for chance: the same rows every time. The number of rows stands between the parts.
constexpr auto insertRows = R"(
insert into TAB_SCAN_COME
with recursive n(i) as (select 1 union all select i + 1 from n where i < )";
constexpr auto eachRow = R"()
select '77' || (10000000000 + i * 7368787 % 1000003 * 37),
       '到件',
       '站点' || (i * 7919 % 400) || '部',
       datetime(1709600000 + i * 3, 'unixepoch'),
       '扫描员' || (i * 104729 % 1500),
       printf('%05d', i * 104729 % 1500),
       datetime(1709600040 + i * 3, 'unixepoch'),
       case when i * 31 % 10 < 6 then '派件员' || (i * 1299709 % 2000) end,
       '站点' || (i * 15485863 % 400) || '部',
       '中转' || (i * 6700417 % 40) || '场',
       '站点' || (i * 2750159 % 400) || '部',
       1 + (i * 17 % 20 = 0),
       (i * 7907 % 3000 + 10) / 100.0,
       '班次' || (i * 13 % 6),
       case i * 11 % 3 when 0 then '文件' when 1 then '包裹' else '易碎品' end,
       case i * 19 % 4 when 0 then '特快' else '标准' end,
       (i * 6101 % 2500) / 100.0,
       case when i * 23 % 5 = 0 then (i * 4099 % 900) / 100.0 end,
       (i * 3571 % 150) / 100.0,
       case when i * 29 % 3 = 0 then '客户' || (i * 32452843 % 3000) || '有限公司' end,
       '线路' || (i * 5 % 60),
       case when i * 41 % 50 = 0 then '外包装破损' end
from n;)";

} // namespace

std::string scanTableScript(int rows) { return createTable + (insertRows + std::to_string(rows)) + eachRow; }

void readScansBare(sqlite3 *database)
{
    sqlite3_stmt *query = nullptr;
    sqlite3_prepare_v2(database, allScans, -1, &query, nullptr);
    const int columns = sqlite3_column_count(query);
    volatile long long sink = 0;
    int rows = 0;
    for (; sqlite3_step(query) == SQLITE_ROW; ++rows) {
        for (int column = 0; column < columns; ++column) {
            sqlite3_value *const value = sqlite3_column_value(query, column);
            switch (sqlite3_value_type(value)) {
            case SQLITE_INTEGER:
                sink = sink + sqlite3_value_int64(value);
                break;
            case SQLITE_FLOAT:
                sink = sink + static_cast<long long>(sqlite3_value_double(value));
                break;
            case SQLITE_TEXT:
                sink = sink + *static_cast<const char *>(sqlite3_value_blob(value)) + sqlite3_value_bytes(value);
                break;
            default:
                break;
            }
        }
    }
    sqlite3_finalize(query);
    if (rows == scanCount)
        return;
    std::fprintf(stderr, "read %d rows\n", rows);
    std::exit(1);
}
