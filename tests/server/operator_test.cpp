// What the operator sees of a server, and does to it.

#include "server/audit_command.h"
#include "server/base/system.h"
#include "server/control.h"
#include "server/status_command.h"
#include "tests/server/test_server.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <fstream>
#include <future>
#include <sstream>

namespace server::test {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

namespace {

TEST(Operator, SeesWhatRunsAndEndsIt)
{
    const TemporaryFolder folder;
    const fs::path control = folder / "control";
    {
        TestServer server([&](Configuration &configuration) {
            configuration.control = control;
            configuration.databases[0].workers = 1;
        });
        EXPECT_EQ(fs::status(control).permissions(), fs::perms::owner_read | fs::perms::owner_write) << "for nobody else";
        const auto ask = [&server](const char *user) {
            return std::async(std::launch::async, [&server, user] { return server.query(endless, {}, user); });
        };
        auto reply = ask("ann");
        const auto statements = [&] { return nlohmann::json::parse(askServer(control, "list"))["statements"]; };
        ASSERT_TRUE(becomesTrue([&] { return statements().size() == 1 && statements()[0]["state"] == "running"; }));
        auto waiting = ask("李明");
        ASSERT_TRUE(becomesTrue([&] { return statements().size() == 2; }));
        std::ostringstream shown;
        showStatus(control, false, shown);
        EXPECT_THAT(shown.str(),
            AllOf(HasSubstr("ann"), HasSubstr("127.0.0.1"), HasSubstr("运行"), HasSubstr("排队"), HasSubstr("from NUMBERS a")));

        std::ostringstream said;
        for (const auto &row : { statements()[1], statements()[0] }) // the one that waits, too
            endStatement(control, row["id"].get<std::string>(), said);
        for (const HttpReply &ended : { reply.get(), waiting.get() }) {
            EXPECT_EQ(ended.status, 400);
            EXPECT_THAT(ended.body, AllOf(HasSubstr("\"code\":\"ended\""), HasSubstr("管理员结束了这条查询")));
        }
        EXPECT_THAT(server.auditLines("result", 2)[0], HasSubstr("\"result\":\"ended\""));
        EXPECT_TRUE(becomesTrue([&] { return statements().empty(); }));
        EXPECT_THROW(endStatement(control, "no-such", said), std::runtime_error);
        // Whoever sends too much is cut off, and holds nobody up.
        try {
            EXPECT_EQ(askServer(control, std::string(100'000, 'x')), "");
        } catch (const std::runtime_error &) {
            // It was still sending.
        }
        EXPECT_THAT(askServer(control, "list"), HasSubstr("statements"));
    }
    EXPECT_FALSE(fs::exists(control));
    EXPECT_THROW(askServer(control, "list"), std::runtime_error);
}

TEST(Operator, FindsTheSlowStatementsOfADayByItsName)
{
    const TemporaryFolder folder;
    const auto line = [](int daysAgo, const std::string &rest) {
        std::string time;
        packet::appendTimestamp(utcSeconds(localSecondsNow() / 86400 * 86400 + 12 * 3600 - daysAgo * 86400), time);
        time[10] = 'T';
        return R"({"time":")" + time + R"(.123Z",)" + rest + "}\n";
    };
    const auto query = [](const std::string &id, const std::string &sql) {
        return R"("event":"query","id":")" + id + R"(","user":"ann","statement":")" + sql + "\"";
    };
    const auto result = [](const std::string &id, int milliseconds) {
        return R"("event":"result","id":")" + id + R"(","user":"ann","milliseconds":)" + std::to_string(milliseconds)
            + R"(,"rows":7,"result":"ok")";
    };
    const fs::path log = folder / "audit.log";
    std::ofstream(log) << line(2, query("a", "before")) << line(2, result("a", 20'000)) << line(1, query("b", "quick"))
                       << line(1, query("c", "slow")) << line(1, result("b", 9'999)) << line(1, result("c", 10'000));
    const auto shown = [&](const std::string &from, const std::string &to) {
        Options options;
        options.auditFrom = from;
        options.auditTo = to;
        options.slowSeconds = 10;
        std::ostringstream out;
        showAudit(log, options, out);
        return out.str();
    };
    EXPECT_THAT(
        shown("昨天", "昨天"), AllOf(HasSubstr("10000 毫秒"), HasSubstr("slow"), Not(HasSubstr("quick")), Not(HasSubstr("before"))));
    EXPECT_THAT(shown("", ""), AllOf(HasSubstr("before"), HasSubstr("slow")));
    EXPECT_EQ(shown("今天", ""), "");
    EXPECT_THROW(shown("前天", ""), std::invalid_argument);
}

} // namespace
} // namespace server::test
