#include "client/embedded_channel.h"
#include "demo/schema.h"
#include "demo/sqlite_database.h"
#include "engine/pool/open_engine.h"
#include "guest/track_query.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <memory>

using namespace client;
using namespace guest;

namespace {

/// The statements on the real schema: a waybill with one row in each of the eight tables.
TEST(Database, ReadsEveryTableOfTheNetwork)
{
    const QTemporaryDir directory;
    const std::string path = directory.filePath(QStringLiteral("parcels.db")).toStdString();
    {
        demo::SqliteDatabase database(path);
        database.run(demo::schema);
        database.run("insert into TAB_BILL (BILL_CODE,SEND_DATE,SEND_SITE,PIECE_NUMBER,TRANSFER_FEE,BL_RETURN,REMARK)"
                     " values ('a''b','2026-03-01 07:00:00','甲',2,14.5,1,'易碎')");
        const auto scan = [&database](const std::string &table, const std::string &values) {
            database.run("insert into " + table
                + " (BILL_CODE,SCAN_DATE,SCAN_TYPE,SCAN_SITE,SCAN_MAN,DISPATCH_OR_SEND_MAN,CLASS,PRE_OR_NEXT_STATION,SUB_BILL_CODE,"
                  "OWNER_BAG_NO,WEIGHT,REMARK) values ('a''b','2026-03-01 "
                + values + ")");
        };
        scan("TAB_SCAN_REC", "08:00:00','收件','甲','张三','李四','早班','部门','S2','D1',2.5,'快'");
        scan("TAB_SCAN_SEND", "09:00:00','发件','甲','张三',null,'早班','乙',null,null,2.5,null");
        scan("TAB_SCAN_COME", "10:00:00','到件','乙','张三',null,'早班','甲',null,null,2.5,null");
        scan("TAB_SCAN_OTHER", "11:00:00','入库','乙','张三',null,null,null,null,null,null,null");
        scan("TAB_SCAN_DISP", "12:00:00','派件','乙','张三','王五',null,null,null,null,null,null");
        database.run("insert into TAB_PROBLEM (BILL_CODE,PROBLEM_TYPE,REGISTER_SITE,REGISTER_MAN,REGISTER_DATE,REMARK)"
                     " values ('a''b','客户不在','乙','赵六','2026-03-01 13:00:00',null)");
        database.run("insert into TAB_SIGN (BILL_CODE,STATE_NAME,SIGN_MAN,SIGN_DATE,DISPATCH_NAME,RECORD_SITE,RECORD_MAN,REMARK)"
                     " values ('a''b',null,'前台','2026-03-01 14:00:00','王五','乙','赵六','完好')");
    }
    TSocketConnectionEx connection;
    connection.setChannel(std::make_shared<EmbeddedChannel>(engine::openEngine("sqlite:" + path)));
    const QList<Track> tracks = queryTracks({ QStringLiteral("a'b"), QStringLiteral("other") }, { &connection });
    EXPECT_EQ(textOf(tracks[0]),
        QStringLiteral("运单编号：a'b\n"
                       "2026-03-01 14:00:00 已签收（签收），签收人 前台，派件网点 乙；问题件 1 条。\n"
                       "寄件日期：2026-03-01 07:00:00\n"
                       "寄件网点：甲\n"
                       "件数：2\n"
                       "退件：是\n"
                       "中转费：14.5\n"
                       "备注：易碎\n"
                       "时间\t类型\t网点\t扫描人\t班次\t上一站\t下一站\t异常\t重量\t子单号\t收/派件员\t备注\t袋号\n"
                       "2026-03-01 08:00:00\t收件\t甲\t张三\t早班\t部门\t\t\t2.5\tS2\t李四\t快\tD1\n"
                       "2026-03-01 09:00:00\t发件\t甲\t张三\t早班\t\t乙\t\t2.5\t\t\t\t\n"
                       "2026-03-01 10:00:00\t到件\t乙\t张三\t早班\t甲\t\t\t2.5\t\t\t\t\n"
                       "2026-03-01 11:00:00\t入库\t乙\t张三\t\t\t\t\t\t\t\t\t\n"
                       "2026-03-01 12:00:00\t派件\t乙\t张三\t\t\t\t\t\t\t王五\t\t\n"
                       "2026-03-01 13:00:00\t问题件\t乙\t赵六\t\t\t\t\t\t\t\t客户不在\t\n"
                       "2026-03-01 14:00:00\t签收\t乙\t赵六\t\t\t\t\t\t\t王五\t签收人：前台 完好\t\n"));
    EXPECT_FALSE(tracks[1].isKnown());
}

} // namespace
