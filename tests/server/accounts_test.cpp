// What an account is allowed, wherever it is kept.

#include "server/audit_command.h"
#include "server/users/account_table.h"
#include "server/users/password.h"
#include "server/users/token.h"
#include "server/users/user_file.h"
#include "tests/server/test_server.h"

#include <gmock/gmock.h>
#include <sqlite3.h>
#include <zlib.h>

#include <fstream>
#include <sstream>
#include <thread>

namespace server::test {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

namespace {

namespace fs = std::filesystem;

constexpr auto fewRows = "select n from NUMBERS where n<3";

HttpReply me(std::uint16_t port, const std::string &token) { return HttpsClient(port).get("/v1/me", bearer(token)); }

HttpReply changePassword(std::uint16_t port, const std::string &token, const std::string &before, const std::string &after)
{
    return HttpsClient(port).post("/v1/password", R"({"old_password":")" + before + R"(","password":")" + after + "\"}", bearer(token));
}

/// The code of a refusal.
std::string codeOf(const HttpReply &reply)
{
    const std::size_t begin = reply.body.find("\"code\":\"") + 8;
    return reply.body.substr(begin, reply.body.find('"', begin) - begin);
}

void set(const TestServer &server, const std::string &user, const std::vector<std::string> &fields)
{
    runUser(server.configuration().users, "set", user, {}, fields);
}

void execute(const fs::path &database, const std::string &sql)
{
    sqlite3 *file = nullptr;
    ASSERT_EQ(sqlite3_open(database.c_str(), &file), SQLITE_OK);
    EXPECT_EQ(sqlite3_exec(file, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK) << sqlite3_errmsg(file);
    sqlite3_close(file);
}

std::string importError(const fs::path &users, const fs::path &table, const std::string &text)
{
    std::ofstream(table) << text;
    try {
        return runUser(users, "import", table.string());
    } catch (const std::runtime_error &error) {
        return error.what();
    }
}

} // namespace

TEST(Accounts, StandInLinesThatReadBackTheSame)
{
    const std::string hash = "$argon2id$v=19$m=8,t=1,p=1$c2FsdHNhbHQ$aGFzaA";
    const std::string plain = "ann:" + hash;
    EXPECT_EQ(parseAccountLine(plain).second, (Account { .hash = hash })) << "lines of before mean what they meant";
    EXPECT_EQ(accountLine("ann", { .hash = hash }), plain);
    Account account { .hash = hash };
    for (const auto &[field, text] : { std::pair("site", "O'Neill:分部%3A"), { "sites", " 甲 ,乙:丙%,,甲" },
             { "screens", "frm_A=010,*=000,frm_B" }, { "databases", "" }, { "locked", "是" }, { "employee_name", "a=b" } })
        setAccountField(account, field, text);
    const auto [name, read] = parseAccountLine(accountLine("李明", account));
    EXPECT_EQ(read, account);
    EXPECT_EQ(read.site, "O'Neill:分部%3A");
    EXPECT_THAT(read.allSites().names, testing::ElementsAre("O'Neill:分部%3A", "甲", "乙:丙%"));
    EXPECT_EQ(read.screens, (decltype(read.screens) { { "frm_A", "010" }, { "*", "000" }, { "frm_B", "111" } }));
    EXPECT_FALSE(read.databases.has("main"));
    for (const char *fault : { ":sites=*", ":screens=frm_A=11", ":screens=a b", ":locked=maybe", ":color=red", ":", ":site=a\x01" })
        EXPECT_THROW(parseAccountLine(plain + fault), std::invalid_argument) << fault;
}

TEST(Accounts, AreToldToTheirUsersAndChangeWithinASecond)
{
    const TestServer server;
    set(server, "ann",
        { "site=北京", "sites=上海,北京", "employee_code=8", "employee_name=张三", "screens=frm_ManCome=101", "databases=main" });
    const auto fields = R"("user":"ann","employee":{"code":"8","name":"张三"},"site":"北京","sites":["上海","北京"],)"
                        R"("screens":{"frm_ManCome":"101"},"databases":["main"],"must_change_password":false)";
    ASSERT_TRUE(becomesTrue([&] { return logIn(server.port(), "ann", password).body.find(fields) != std::string::npos; }));
    const std::string token = tokenFor(server.port(), "ann", password);
    EXPECT_THAT(me(server.port(), token).body, AllOf(HasSubstr(fields), HasSubstr("\"expires\":")));
    set(server, "ann", { "sites=*", "row_rules=off", "screens=*" });
    EXPECT_TRUE(becomesTrue([&] {
        return me(server.port(), token).body.find(R"("sites":"*","screens":{"*":"111"})") != std::string::npos;
    })) << "the token goes on";
}

TEST(Accounts, EveryEndOfATokenSaysWhyAndAStrangerLearnsNothing)
{
    const TestServer server;
    const std::string ann = server.token("ann");
    const auto codeFor = [&](const std::string &token) {
        const HttpReply reply = me(server.port(), token);
        return reply.status == 401 ? codeOf(reply) : std::to_string(reply.status);
    };
    EXPECT_EQ(codeFor("ab"), "token");
    EXPECT_EQ(codeFor(server.token("ann", -1)), "expired");
    set(server, "ann", { "locked=yes" });
    EXPECT_TRUE(becomesTrue([&] { return codeFor(ann) == "locked"; }));
    EXPECT_EQ(server.query(fewRows).status, 401);
    EXPECT_EQ(codeOf(logIn(server.port(), "ann", password)), "locked");
    const HttpReply guessed = logIn(server.port(), "ann", "falsches Wort");
    const HttpReply unknown = logIn(server.port(), "nobody", "falsches Wort");
    EXPECT_EQ(guessed.body, unknown.body);
    EXPECT_EQ(guessed.status, unknown.status);
    set(server, "ann", { "locked=no" });
    runUser(server.configuration().users, "passwd", "ann");
    EXPECT_TRUE(becomesTrue([&] { return codeFor(ann) == "password_changed"; }));
    runUser(server.configuration().users, "remove", "ann");
    EXPECT_TRUE(becomesTrue([&] { return codeFor(ann) == "removed"; }));
}

TEST(Accounts, AStatementEndsWithTheRightToIt)
{
    const TestServer server;
    HttpReply reply;
    std::thread asking([&] { reply = server.query(endless); });
    server.auditLines("query", 1);
    const auto locked = std::chrono::steady_clock::now();
    set(server, "ann", { "locked=yes" });
    asking.join();
    EXPECT_EQ(reply.status, 401);
    EXPECT_LT(std::chrono::steady_clock::now() - locked, std::chrono::seconds(5));
    EXPECT_THAT(server.auditLines("result", 1).front(), HasSubstr("revoked"));
}

TEST(Accounts, WhoeverMustChangeThePasswordDoesNothingElse)
{
    const TestServer server;
    set(server, "ann", { "must_change=yes" });
    ASSERT_TRUE(becomesTrue([&] { return logIn(server.port(), "ann", password).body.find(R"(password":true)") != std::string::npos; }));
    const std::string token = tokenFor(server.port(), "ann", password);
    EXPECT_EQ(me(server.port(), token).status, 200);
    EXPECT_EQ(codeOf(HttpsClient(server.port()).get("/v1/time", bearer(token))), "must_change");
    EXPECT_EQ(codeOf(server.query(fewRows)), "must_change");
    EXPECT_EQ(
        codeOf(HttpsClient(server.port()).post("/v1/audit", R"({"event":"refused_screen","screen":"a"})", bearer(token))), "must_change");

    for (const auto &[before, after, code] :
        { std::tuple("falsch", newPassword, "old_password"), { password, "short", "password" }, { password, password, "password" } })
        EXPECT_EQ(codeOf(changePassword(server.port(), token, before, after)), code);
    // What cannot be saved has not happened.
    const fs::path lock = server.configuration().users.string() + ".lock";
    fs::remove(lock);
    fs::create_directory(lock);
    EXPECT_EQ(changePassword(server.port(), token, password, newPassword).status, 503);
    fs::remove(lock);
    EXPECT_EQ(me(server.port(), token).status, 200);

    const HttpReply changed = changePassword(server.port(), token, password, newPassword);
    ASSERT_EQ(changed.status, 200) << changed.body;
    EXPECT_EQ(codeOf(me(server.port(), token)), "password_changed") << "at once";
    EXPECT_EQ(HttpsClient(server.port()).get("/v1/time", bearer(tokenOf(changed))).status, 200);
    EXPECT_EQ(logIn(server.port(), "ann", password).status, 401);
    EXPECT_EQ(logIn(server.port(), "ann", newPassword).status, 200);
    EXPECT_THAT(server.auditLines("password", 3).back(), AllOf(HasSubstr("\"result\":\"ok\""), Not(HasSubstr(newPassword))));
}

TEST(Accounts, ReachTheirOwnDatabasesAlone)
{
    const TestServer server([](Configuration &configuration) {
        configuration.databases.push_back({ "second", configuration.databases.front().url });
    });
    set(server, "ann", { "databases=second" });
    EXPECT_TRUE(becomesTrue([&] { return server.query(fewRows, "X-Kelvara-Database: main\r\n").status == 403; }));
    EXPECT_EQ(server.query(fewRows).status, 200);
    EXPECT_THAT(server.auditLines("query", 1).back(), HasSubstr("\"database\":\"second\"")) << "the first of its own is the default";
    EXPECT_EQ(server.query(fewRows, "X-Kelvara-Database: third\r\n").body, server.query(fewRows, "X-Kelvara-Database: main\r\n").body);
    set(server, "ann", { "databases=" });
    EXPECT_TRUE(becomesTrue([&] { return server.query(fewRows).status == 403; }));
}

TEST(Accounts, TellOfRefusedScreensAndTheEndButCannotFillTheLog)
{
    const TestServer server;
    HttpsClient client(server.port());
    const auto report = [&](const std::string &screen) {
        return client.post("/v1/audit", R"({"event":"refused_screen","screen":")" + screen + "\"}", server.as("ann")).status;
    };
    EXPECT_EQ(report("frm_ManCome111"), 200);
    EXPECT_THAT(server.auditLines("screen", 1).front(), AllOf(HasSubstr("\"user\":\"ann\""), HasSubstr("frm_ManCome111")));
    EXPECT_EQ(report(std::string(200, 'x')), 400);
    EXPECT_EQ(client.post("/v1/audit", R"({"event":"login","screen":"a"})", server.as("ann")).status, 400);
    EXPECT_EQ(client.post("/v1/logout", "", server.as("ann")).status, 200);
    EXPECT_EQ(server.auditLines("logout", 1).size(), 1U);
    for (int more = 0; more < 200; ++more)
        report("frm_ManCome111");
    EXPECT_EQ(report("frm_ManCome111"), 429);
    EXPECT_LT(server.auditLines("screen", 1).size(), 40U);
}

TEST(AccountTables, AreInForceWithinASecondAndNotForEverWhenTheyAreGone)
{
    const std::string hash = hashPassword(password);
    const engine::test::TemporaryDatabase database(
        "create table SECRETS (NAME VARCHAR2(20), HASH VARCHAR2(200), PLACE VARCHAR2(20), OFF NUMBER(1));"
        "create table NUMBERS (N NUMBER(10)); insert into NUMBERS values (1);"
        "insert into SECRETS values ('ann','"
        + hash + "','北京',0), ('two','" + hash + "','',0), ('two','" + hash + "','',0), ('odd','md5','',0);");
    const auto configure = [&](Configuration &configuration) {
        configuration.databases = { { "main", database.url(), { "NUMBERS" } } };
        configuration.accounts.query = "select name as user_name, hash as password_hash, place as site, off as locked from SECRETS";
        configuration.accounts.stale = std::chrono::seconds(3);
    };
    const TestServer server(configure);
    ASSERT_TRUE(becomesTrue([&] { return logIn(server.port(), "ann", password).status == 200; }));
    const std::string token = tokenFor(server.port(), "ann", password);
    EXPECT_THAT(me(server.port(), token).body, HasSubstr(R"("site":"北京","sites":["北京"])"));
    EXPECT_EQ(codeOf(logIn(server.port(), "two", password)), "locked") << "of two rows nobody knows which is meant";
    EXPECT_EQ(logIn(server.port(), "odd", password).status, 401);
    EXPECT_EQ(codeOf(changePassword(server.port(), token, password, newPassword)), "centre");
    EXPECT_EQ(HttpsClient(server.port()).post("/v1/query", "select hash from SECRETS", bearer(token)).status, 403);

    execute(database.path(), "update SECRETS set PLACE='上海'");
    EXPECT_TRUE(becomesTrue([&] { return me(server.port(), token).body.find("上海") != std::string::npos; }));
    execute(database.path(), "alter table SECRETS rename to GONE");
    EXPECT_TRUE(becomesTrue([&] { return server.metric("kelvara_accounts_overdue_seconds") > 0; }));
    EXPECT_EQ(me(server.port(), token).status, 200) << "for a while";
    EXPECT_TRUE(becomesTrue([&] { return me(server.port(), token).status == 503; }));
    EXPECT_EQ(logIn(server.port(), "ann", password).status, 503);
    EXPECT_EQ(server.metric("kelvara_users_unreadable"), 1);
    execute(database.path(), "alter table GONE rename to SECRETS; update SECRETS set OFF=1");
    EXPECT_TRUE(becomesTrue([&] { return codeOf(me(server.port(), token)) == "locked"; }));
}

TEST(AccountTables, ThatUsersCouldReadLetNobodyIn)
{
    const engine::test::TemporaryDatabase database("create table SECRETS (NAME VARCHAR2(20), HASH VARCHAR2(200));"
                                                   "insert into SECRETS values ('ann','"
        + hashPassword(password) + "');");
    const TestServer server([&](Configuration &configuration) {
        configuration.databases = { { "main", database.url() } };
        configuration.accounts.query = "select name as user_name, hash as password_hash from SECRETS";
    });
    const auto until = std::chrono::steady_clock::now() + std::chrono::seconds(3);
    while (std::chrono::steady_clock::now() < until)
        ASSERT_EQ(logIn(server.port(), "ann", password).status, 503);
}

TEST(UserImports, TakeEverybodyOrNobody)
{
    const TemporaryFolder folder;
    const fs::path users = folder / "users";
    const fs::path table = folder / "员工.csv";
    runUser(users, "add", "ann", newPassword, { "site=北京", "screens=frm_A" });
    const std::string before = contentOf(users);
    for (const auto &[text, reason] : { std::pair("", "空"), { "姓名\n张三\n", "用户名" }, { "用户名,颜色\na,b\n", "颜色" },
             { "用户名\nbob\nbob\n", "第 3 行" }, { "用户名,密码\nbob,short\n", "第 2 行" }, { "用户名,停用\nbob,也许\n", "第 2 行" },
             { "用户名,可查网点\nbob,\"甲\n乙,*\n", "引号" }, { "用户名,可查网点\nbob,*\n", "row_rules" },
             { "用户名,姓名\nbob,\xB0\xA1\n", "UTF-8" }, { "用户名\n\"bo\nb\"\n", "第 2 行" }, { "用户名\nbob,x\n", "第 2 行" } }) {
        EXPECT_THAT(importError(users, table, text), HasSubstr(reason)) << text;
        EXPECT_EQ(contentOf(users), before) << text;
    }
    EXPECT_THROW(runUser(users, "import", (folder / "missing.csv").string()), std::runtime_error);

    const std::string said = importError(users, table,
        "\xEF\xBB\xBF用户名,password,姓名,可查网点,screens\r\nann,,\"安,娜\",甲、乙,\r\nbob,secret "
        "word,,,frm_B=100\r\n\r\n李明,,李明,,\r\n");
    const Users read = readUsers(users);
    ASSERT_EQ(read.size(), 3U);
    EXPECT_EQ(read.at("ann").employeeName, "安,娜");
    EXPECT_EQ(read.at("ann").site, "北京") << "what the table does not say stays";
    EXPECT_EQ(read.at("ann").screens.count("frm_A"), 1U);
    EXPECT_TRUE(passwordMatches(read.at("ann").hash, newPassword));
    EXPECT_TRUE(passwordMatches(read.at("bob").hash, "secret word"));
    EXPECT_TRUE(read.at("李明").mustChange && !read.at("bob").mustChange);
    const std::string first = said.substr(said.rfind('\t') + 1, 10);
    EXPECT_TRUE(passwordMatches(read.at("李明").hash, first)) << said;
    EXPECT_THAT(runUser(users, "list", ""), HasSubstr("bob\tscreens=frm_B=100\n"));
    EXPECT_THROW(runUser(users, "set", "ann", {}, { "sites=*" }), std::runtime_error);
}

TEST(AuditLogs, AreReadWithTheirOlderFiles)
{
    const TemporaryFolder folder;
    const fs::path log = folder / "audit.log";
    const auto line = [](const std::string &time, const std::string &user, const std::string &event) {
        return R"({"time":")" + time + R"(.123Z","event":")" + event + R"(","user":")" + user + R"(","address":"10.0.0.1","result":"ok"})"
            + "\n";
    };
    const std::string oldest = line("2026-03-01T10:00:00", "ann", "login");
    const gzFile compressed = gzopen((log.string() + ".2.gz").c_str(), "wb");
    gzwrite(compressed, oldest.data(), unsigned(oldest.size()));
    gzclose(compressed);
    std::ofstream(log.string() + ".1") << line("2026-03-02T10:00:00", "bob", "login") << line("2026-03-02T10:00:01", "ann", "password");
    std::ofstream(log) << line("2026-03-03T10:00:00", "ann", "logout") << "{\"time\":\"2026-03-03T10:00:01.000Z\",\"ev\n";
    std::ofstream(folder / "audit.log.bak") << line("2026-03-03T10:00:02", "ann", "login");
    const auto shown = [&](const Options &options) {
        std::ostringstream out;
        showAudit(log, options, out);
        return out.str();
    };
    Options options;
    options.asJson = true;
    options.auditUser = "ann";
    EXPECT_EQ(shown(options), oldest + line("2026-03-02T10:00:01", "ann", "password") + line("2026-03-03T10:00:00", "ann", "logout"));
    options.auditFrom = "2026-03-01";
    options.auditTo = "2026-03-02";
    EXPECT_EQ(shown(options), oldest + line("2026-03-02T10:00:01", "ann", "password")) << "the last day is in, give or take a time zone";
    options.auditTo = "2026-13-02";
    EXPECT_THROW(shown(options), std::invalid_argument);
    EXPECT_THAT(shown({}), AllOf(HasSubstr("登录"), HasSubstr("10.0.0.1"), HasSubstr("退出")));
    // What is left of a damaged file is shown, and that there was more.
    std::string bytes = contentOf(log.string() + ".2.gz");
    bytes[bytes.size() / 2] = char(~bytes[bytes.size() / 2]);
    std::ofstream(log.string() + ".2.gz", std::ios::binary) << bytes;
    EXPECT_THROW(shown({}), std::runtime_error);
}

} // namespace server::test
