#include "demo/generator.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <random>
#include <stdexcept>
#include <vector>

using namespace demo;
namespace fs = std::filesystem;

namespace {

/// Reads a generated database; a query answers one text.
class Reader {
public:
    explicit Reader(const std::string &path)
    {
        sqlite3 *handle = nullptr;
        sqlite3_open_v2(path.c_str(), &handle, SQLITE_OPEN_READONLY, nullptr);
        m_handle.reset(handle);
    }

    /// Every row's columns joined with blanks.
    std::vector<std::string> rows(const std::string &sql) const
    {
        std::vector<std::string> found;
        const auto add = [](void *rows, int count, char **values, char **) {
            std::string row;
            for (int column = 0; column < count; ++column)
                row.append(column == 0 ? "" : " ").append(values[column] ? values[column] : "-");
            static_cast<std::vector<std::string> *>(rows)->push_back(row);
            return 0;
        };
        char *error = nullptr;
        if (sqlite3_exec(m_handle.get(), sql.c_str(), add, &found, &error) != SQLITE_OK)
            ADD_FAILURE() << error << "\n" << sql;
        sqlite3_free(error);
        return found;
    }

    int count(const std::string &from) const { return std::stoi(rows("select count(*) from " + from).at(0)); }

private:
    struct Close {
        void operator()(sqlite3 *handle) const { sqlite3_close(handle); }
    };
    std::unique_ptr<sqlite3, Close> m_handle;
};

class Generator : public testing::Test {
protected:
    static void SetUpTestSuite()
    {
        s_folder = fs::temp_directory_path() / ("kelvara-demo-test-" + std::to_string(std::random_device()()));
        fs::create_directory(s_folder);
        generate(settings("network.db", 2000));
        s_network = std::make_unique<Reader>(file("network.db"));
    }

    static void TearDownTestSuite()
    {
        s_network.reset();
        fs::remove_all(s_folder);
    }

    static std::string file(const std::string &name) { return (s_folder / name).string(); }

    static Settings settings(const std::string &name, std::uint64_t waybills)
    {
        Settings settings;
        settings.path = file(name);
        settings.waybills = waybills;
        settings.asOf = *parseMoment("2026-03-15 18:00:00");
        return settings;
    }

    static inline fs::path s_folder;
    static inline std::unique_ptr<Reader> s_network;
};

using testing::ElementsAre;
using testing::IsEmpty;

} // namespace

TEST_F(Generator, HasTheIndexesThatStatementsHint)
{
    for (const char *name : { "TAB_ACCOUNT_LIST_I6", "TAB_BILL_I", "TAB_BILL_P", "TAB_BILL_STATUS_P", "TAB_EMPLOYEE_I", "TAB_PROBLEM_I",
             "TAB_SCAN_COME_I", "TAB_SCAN_COME_I3", "TAB_SCAN_COME_P", "TAB_SCAN_DISP_I", "TAB_SCAN_DISP_I3", "TAB_SCAN_OTHER_I",
             "TAB_SCAN_OTHER_I3", "TAB_SCAN_OTHER_P", "TAB_SCAN_REC_I", "TAB_SCAN_REC_I3", "TAB_SCAN_SEND_I", "TAB_SCAN_SEND_I3",
             "TAB_SIGN_I1", "TAB_SIGN_I2", "TAB_SIGN_SUM_I", "TAB_SITE_BASIC_P", "TAB_SITE_U" })
        EXPECT_EQ(s_network->count(std::string("sqlite_master where type = 'index' and name = '") + name + "'"), 1) << name;
}

TEST_F(Generator, HasTheSitesThatScreensName)
{
    const auto named
        = s_network->rows("select SITE_NAME, TYPE, PROVINCE, FINANCE_CENTER from TAB_SITE where SITE_NAME in ('北京', '北京市内部',"
                          " '北京贷款', '北京业务部', '香港', '广东中心', '北京朝阳') order by SITE_CODE");
    EXPECT_THAT(named,
        ElementsAre("北京 中心 北京 北京", "北京市内部 中心 北京 北京", "北京贷款 内部部门 北京 北京", "北京业务部 业务部 北京 北京",
            "北京朝阳 直营网点 北京 北京", "广东中心 中心 广东 广东中心", "香港 境外网点 广东 广东中心"));
}

/// Each query looks for rows that contradict each other.
TEST_F(Generator, IsConsistent)
{
    const std::string sums = "select substr(SIGN_DATE, 1, 10), RECORD_SITE, REC_SITE, ";
    const std::vector<std::string> contradictions {
        sums + "BILL_COUNT, round(DISPATCH_FEE * 100) from TAB_SIGN_SUM except " + sums
            + "count(*), sum(round(DISPATCH_FEE * 100)) from TAB_SIGN group by 1, 2, 3",
        sums + "count(*), sum(round(DISPATCH_FEE * 100)) from TAB_SIGN group by 1, 2, 3 except " + sums
            + "BILL_COUNT, round(DISPATCH_FEE * 100) from TAB_SIGN_SUM",
        "select PRE_OR_NEXT_STATION from TAB_SCAN_COME where PRE_OR_NEXT_STATION not in (select SITE_NAME from TAB_SITE)"
        " and PRE_OR_NEXT_STATION not in ('外包加班车', '社会车辆', '北京西客站（已撤）')",
        "select PRE_OR_NEXT_STATION from TAB_SCAN_SEND where PRE_OR_NEXT_STATION is null or PRE_OR_NEXT_STATION not in (select SITE_NAME "
        "from TAB_SITE)",
        // an arrival before all send-outs to it
        "select a.BILL_CODE from TAB_SCAN_COME a join TAB_SCAN_SEND b on b.BILL_CODE = a.BILL_CODE and b.SCAN_SITE = a.PRE_OR_NEXT_STATION"
        " group by a.rowid having max(a.SCAN_DATE) <= min(b.SCAN_DATE)",
        "select a.BILL_CODE from TAB_SCAN_DISP a join TAB_SCAN_COME b on b.BILL_CODE = a.BILL_CODE and b.SCAN_SITE = a.SCAN_SITE"
        " group by a.rowid having max(a.SCAN_DATE) <= min(b.SCAN_DATE)",
        "select a.BILL_CODE from TAB_SIGN a join TAB_SCAN_DISP b on b.BILL_CODE = a.BILL_CODE where a.SIGN_DATE <= b.SCAN_DATE and "
        "b.SUB_BILL_CODE is null",
        "select BILL_CODE from TAB_SIGN where RECORD_DATE < SIGN_DATE or SIGN_SITE_CENTER is null or REC_SITE_CENTER is null",
        "select a.BILL_CODE from TAB_SIGN a where not exists (select 1 from TAB_SCAN_DISP b where b.BILL_CODE = a.BILL_CODE and "
        "b.SCAN_SITE = a.RECORD_SITE)"
        " and exists (select 1 from TAB_SCAN_DISP b where b.BILL_CODE = a.BILL_CODE)",
        // two arrivals at once would leave open which of them weighs the parcel
        "select BILL_CODE from TAB_SCAN_COME group by BILL_CODE, SCAN_SITE, SCAN_DATE having count(*) > 1",
        "select SITE_NAME from TAB_SITE where AREA_NAME not in (select AREA_NAME from TAB_AREA)",
    };
    for (const auto &sql : contradictions)
        EXPECT_THAT(s_network->rows(sql), IsEmpty()) << sql;
    for (const char *table : { "REC", "SEND", "COME", "DISP", "OTHER" }) {
        const auto from = std::string("TAB_SCAN_") + table + " a where ";
        EXPECT_EQ(s_network->count(from + "SCAN_SITE not in (select SITE_NAME from TAB_SITE)"), 0) << table;
        EXPECT_EQ(s_network->count(from
                      + "not exists (select 1 from TAB_EMPLOYEE b where b.EMPLOYEE_CODE = a.SCAN_MAN_CODE"
                        " and b.EMPLOYEE_NAME = a.SCAN_MAN and b.OWNER_SITE = a.SCAN_SITE)"),
            0)
            << table;
        EXPECT_EQ(s_network->count(
                      from + "SCAN_TYPE not in (select TYPE_NAME from TAB_SCAN_TYPE) or CLASS not in (select CLASS_NAME from TAB_CLASS)"),
            0)
            << table;
        EXPECT_EQ(s_network->count(from + "REGISTER_DATE <= SCAN_DATE"), 0) << table;
    }
}

TEST_F(Generator, StoresValuesAsTheSchemaSays)
{
    for (const auto &table : s_network->rows("select name from sqlite_master where type = 'table' and name like 'TAB!_%' escape '!'")) {
        EXPECT_GT(s_network->count(table), 0) << table;
        for (const auto &column : s_network->rows("select name from pragma_table_info('" + table + "')"))
            EXPECT_EQ(s_network->count(table + " where " + column + " = ''"), 0) << table << '.' << column;
        for (const auto &column : s_network->rows("select name from pragma_table_info('" + table + "') where type = 'DATE'"))
            EXPECT_EQ(s_network->count(table + " where typeof(" + column + ") <> 'text' or length(" + column + ") <> 19 or " + column
                          + " <> datetime(" + column + ") or " + column + " > '2026-03-15 18:00:00' or " + column + " < '2026-02-01'"),
                0)
                << table << '.' << column;
        for (const auto &column : s_network->rows("select name from pragma_table_info('" + table + "') where type like 'NUMBER%,2)'"))
            EXPECT_EQ(s_network->count(table + " where " + column + " <> round(" + column + ", 2)"), 0) << table << '.' << column;
    }
}

/// What the screens look for is there.
TEST_F(Generator, HasEverySituation)
{
    const std::string atHub = " where a.SCAN_SITE = '北京' and a.SCAN_DATE between '2026-03-14 12:00:00' and '2026-03-15 11:59:59'";
    const auto other = [&](const std::string &table) {
        return "(select 1 from " + table + " b where b.BILL_CODE = a.BILL_CODE and b.SCAN_SITE = '北京'"
            + " and b.SCAN_DATE between '2026-03-14 12:00:00' and '2026-03-15 11:59:59')";
    };
    for (const std::string &from : {
             "TAB_SCAN_COME a" + atHub + " and exists " + other("TAB_SCAN_SEND"),
             "TAB_SCAN_COME a" + atHub + " and not exists " + other("TAB_SCAN_SEND"),
             "TAB_SCAN_SEND a" + atHub + " and not exists " + other("TAB_SCAN_COME"),
             std::string("TAB_PROBLEM where PROBLEM_TYPE = '遗失'"),
             std::string("TAB_PROBLEM where PROBLEM_TYPE = '错发'"),
             std::string("TAB_SCAN_SEND a where SCAN_DATE < '2026-03-08' and not exists (select 1 from TAB_SCAN_COME b where b.BILL_CODE = "
                         "a.BILL_CODE"
                         " and b.SCAN_SITE = a.PRE_OR_NEXT_STATION)"),
             std::string("TAB_BILL a join TAB_SCAN_COME b on b.BILL_CODE = a.BILL_CODE where b.SCAN_TYPE = '接件' and b.SCAN_SITE <> "
                         "a.DISPATCH_SITE"),
             std::string("TAB_SCAN_SEND where SCAN_TYPE = '出库'"),
             std::string("TAB_SCAN_REC a where not exists (select 1 from TAB_BILL b where b.BILL_CODE = a.BILL_CODE)"),
             std::string("TAB_BILL a where not exists (select 1 from TAB_SCAN_REC b where b.BILL_CODE = a.BILL_CODE)"),
             std::string("TAB_SCAN_COME where SUB_BILL_CODE is not null"),
             std::string("TAB_SCAN_COME where CLASS is null"),
             std::string("TAB_SCAN_COME where PRE_OR_NEXT_STATION not in (select SITE_NAME from TAB_SITE)"),
             std::string("TAB_SCAN_COME where SCAN_SITE = '北京贷款'"),
             std::string("TAB_SCAN_COME where NET_MANAGE_FEE <> TRANSFER_OR_DISPATCH_FEE"),
             std::string("TAB_SCAN_COME a join TAB_SCAN_REC b on b.BILL_CODE = a.BILL_CODE and b.SCAN_SITE = a.SCAN_SITE"
                         " where a.SCAN_SITE = '北京' and a.PRE_OR_NEXT_STATION = '北京业务部'"),
             std::string(
                 "TAB_ACCOUNT_LIST where PRE_FINANCE_CENTER = '广东中心' and CREATE_DATE > '2026-03-14' and PRE_STATION <> '广东中心'"),
             std::string("TAB_SIGN where REC_SITE_CENTER = '北京' and SIGN_SITE_CENTER = '北京'"),
             std::string("TAB_BILL where BILL_CODE glob '1[0-9][0-9][0-9][0-9][0-9][0-9][0-9]'"),
             std::string("TAB_BILL where DISPATCH_SITE = '香港' and CUSTOMER_NAME is not null"),
         })
        EXPECT_GT(s_network->count(from), 0) << from;
    for (const char *shift : { "班车", "航班", "铁路" })
        EXPECT_GT(s_network->count("TAB_SCAN_COME where SCAN_SITE = '北京' and CLASS = '" + std::string(shift) + "'"), 0) << shift;
}

TEST_F(Generator, RepeatsItself)
{
    auto content = [](const Settings &settings) {
        generate(settings);
        const Reader reader(settings.path);
        std::vector<std::string> all;
        for (const auto &table : reader.rows("select name from sqlite_master where type = 'table' order by name"))
            for (auto &row : reader.rows("select '" + table + "', * from " + table + " order by rowid"))
                all.push_back(std::move(row));
        return all;
    };
    const auto first = content(settings("first.db", 150));
    auto other = settings("other.db", 150);
    other.seed = 2;
    EXPECT_TRUE(first == content(settings("second.db", 150)));
    EXPECT_FALSE(first == content(other));
}

TEST_F(Generator, KeepsToTheDays)
{
    auto twoDays = settings("days.db", 200);
    twoDays.days = 2;
    generate(twoDays);
    EXPECT_THAT(Reader(twoDays.path).rows("select distinct substr(SCAN_DATE, 1, 10) from TAB_SCAN_REC order by 1"),
        ElementsAre("2026-03-14", "2026-03-15"));
}

TEST_F(Generator, ReplacesAFileOnlyWhenTold)
{
    auto taken = settings("taken.db", 10);
    std::ofstream(taken.path) << "mine";
    EXPECT_THAT(
        [&] { generate(taken); }, testing::ThrowsMessage<std::runtime_error>("文件“" + taken.path + "”已经存在。要替换它，请加 --force。"));
    EXPECT_EQ(fs::file_size(taken.path), 4u);
    taken.replaces = true;
    generate(taken);
    EXPECT_EQ(Reader(taken.path).count("TAB_BILL_STATUS"), 10);
}

TEST_F(Generator, LeavesNothingBehindWhenItBreaksOff)
{
    auto broken = settings("broken.db", 30000);
    EXPECT_THROW(
        generate(broken, [](std::string_view, std::uint64_t, std::uint64_t) { throw std::runtime_error("stop"); }), std::runtime_error);
    EXPECT_FALSE(fs::exists(broken.path));
    EXPECT_FALSE(fs::exists(broken.path + ".part"));
    std::ofstream(file("taken")) << "no folder";
    EXPECT_THROW(generate(settings("taken/broken.db", 1)), std::runtime_error);
}
