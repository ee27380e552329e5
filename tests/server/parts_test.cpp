#include "server/base/fair_pool.h"
#include "server/base/json.h"
#include "server/statements/result_format.h"
#include "server/user_command.h"
#include "server/users/login_throttle.h"
#include "server/users/password.h"
#include "server/users/token.h"
#include "server/users/user_file.h"
#include "tests/server/test_server.h"

#include <gmock/gmock.h>

#include <fstream>
#include <future>
#include <sstream>

namespace server::test {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Pair;

TEST(Token, AcceptsExactlyWhatItSigned)
{
    const TokenKey key(std::string(32, 'a'));
    const std::string text = key.sign({ "李明", 1000 });
    ASSERT_TRUE(key.verify(text, 999));
    EXPECT_EQ(key.verify(text, 999)->user, "李明");
    EXPECT_FALSE(key.verify(text, 1000));
    EXPECT_NE(key.sign({ "李明", 1000 }), text) << "each has a number of its own";
    for (std::size_t at = 0; at < text.size(); ++at) {
        for (const char other : { '0', 'f', 'A', ' ' }) {
            std::string changed = text;
            changed[at] = other;
            EXPECT_EQ(key.verify(changed, 999).has_value(), changed == text) << at;
        }
        EXPECT_FALSE(key.verify(text.substr(0, at), 999));
    }
}

TEST(Throttle, MakesWhoFailsWaitLongerAndLonger)
{
    LoginThrottle throttle;
    auto now = LoginThrottle::Clock::now();
    for (int tries = 0; tries < LoginThrottle::freeTriesOfUser; ++tries)
        EXPECT_EQ(throttle.tryAt(now, "ann", "10.0.0.1"), 0s);
    const auto first = throttle.tryAt(now, "ann", "10.0.0.2");
    EXPECT_GT(first, 0s);
    EXPECT_EQ(throttle.tryAt(now, "bob", "10.0.0.1"), 0s);
    now += first;
    EXPECT_EQ(throttle.tryAt(now, "ann", "10.0.0.2"), 0s);
    EXPECT_GT(throttle.tryAt(now, "ann", "10.0.0.2"), first);
    for (int tries = 0; tries < 100; ++tries) {
        now += LoginThrottle::longestWait;
        EXPECT_EQ(throttle.tryAt(now, "ann", "10.0.0.2"), 0s) << "nobody is locked out for good";
    }
    throttle.succeeded("ann", "10.0.0.2");
    EXPECT_EQ(throttle.tryAt(now, "ann", "10.0.0.3"), 0s);
    for (int user = 0; user < LoginThrottle::freeTriesOfAddress; ++user)
        throttle.tryAt(now, "user" + std::to_string(user), "10.0.0.9");
    EXPECT_GT(throttle.tryAt(now, "fresh", "10.0.0.9"), 0s) << "many names from one address";
}

TEST(FairPool, ServesUsersInTurn)
{
    FairPool pool({ .workers = 1, .waiting = 100, .userRunning = 1, .userWaiting = 100 });
    std::promise<void> gate;
    const auto opened = gate.get_future().share();
    std::string order;
    ASSERT_TRUE(pool.submit("a", [opened] { opened.wait(); }));
    ASSERT_TRUE(becomesTrue([&] { return pool.running() == 1; }));
    for (int number = 0; number < 4; ++number)
        pool.submit("a", [&] { order += 'a'; });
    const auto withdrawn = pool.submit("b", [&] { order += 'x'; });
    for (int number = 0; number < 2; ++number)
        pool.submit("b", [&] { order += 'b'; });
    pool.submit("c", [&] { order += 'c'; });
    EXPECT_TRUE(pool.withdraw("b", withdrawn));
    EXPECT_FALSE(pool.withdraw("b", withdrawn));
    EXPECT_EQ(pool.waiting(), 7u);
    gate.set_value();
    EXPECT_TRUE(becomesTrue([&] { return pool.waiting() + pool.running() == 0; }));
    EXPECT_EQ(order, "bcabaaa");
}

TEST(Json, ReadsOneObjectOfTexts)
{
    EXPECT_THAT(*readJsonTexts(R"( {"user" : "李明", "password":"a\"\\\/\b\n\u4e2D\ud83d\ude00"} )"),
        ElementsAre(Pair("password", "a\"\\/\b\n中😀"), Pair("user", "李明")));
    EXPECT_TRUE(readJsonTexts("{}")->empty());
    for (const auto *wrong :
        { "", "{", "[]", "{\"a\":1}", "{\"a\":\"b\"}x", "{\"a\":\"b\",}", "{\"a\":\"b\",\"a\":\"c\"}", "{\"a\":\"\n\"}", R"({"a":"\x"})",
            R"({"a":"\u12"})", R"({"a":"\ud83d"})", R"({"a":"\ude00"})", R"({"a":"\ud83dA"})", "{\"a\"}", "{\"a\":{}}" })
        EXPECT_FALSE(readJsonTexts(wrong)) << wrong;
    EXPECT_EQ(jsonText("\"\xFF中"), "\"\\\"\uFFFD中\"");
}

TEST(Accept, PrefersWhatTheClientPrefers)
{
    EXPECT_EQ(acceptedFormat(""), Format::Arrow);
    EXPECT_EQ(acceptedFormat("*/*"), Format::Arrow);
    EXPECT_EQ(acceptedFormat("text/html, Text/CSV;q=0.5, application/json;charset=x;q=0.9"), Format::Json);
    EXPECT_EQ(acceptedFormat("application/json;q=0.1,*/*;q=0.05"), Format::Json);
    EXPECT_FALSE(acceptedFormat("image/png, text/html"));
    EXPECT_FALSE(acceptedFormat("text/csv;q=0"));
    EXPECT_FALSE(acceptedFormat(",;,q=;="));
}

TEST(Users, AreManagedInAFileThatARunningServerReadsAgain)
{
    const TemporaryFolder folder;
    const std::filesystem::path path = folder / "users";
    const auto run = [&](const std::string &command, const std::string &name, const std::string &secret = {}) {
        Options options { .mode = Options::Mode::User };
        options.userCommand = command;
        options.users = path;
        options.userName = name;
        options.passwordFromInput = true;
        std::istringstream in(secret + "\n");
        std::ostringstream out;
        runUserCommand(options, in, out);
        return out.str();
    };
    run("add", "ann", "long enough");
    EXPECT_EQ(std::filesystem::status(path).permissions(), std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
    EXPECT_THROW(run("add", "ann", "long enough"), std::runtime_error);
    EXPECT_THROW(run("add", "bob", "short"), std::runtime_error);
    EXPECT_THROW(run("add", "b:b", "long enough"), std::runtime_error);
    EXPECT_THROW(run("passwd", "bob", "long enough"), std::runtime_error);
    UserFile file(path);
    const std::string before = file.hashOf("ann").value();
    EXPECT_TRUE(passwordMatches(before, "long enough"));
    EXPECT_FALSE(passwordMatches(before, "long enougH"));
    run("passwd", "ann", "another one");
    run("add", "李明", "long enough");
    EXPECT_EQ(run("list", ""), "ann\n李明\n");
    EXPECT_TRUE(becomesTrue([&] { return file.contains("李明") && file.hashOf("ann") != before; }));
    std::ofstream(path) << "broken line\n";
    EXPECT_THROW(readUsers(path), std::runtime_error);
    EXPECT_TRUE(becomesTrue([&] { return file.contains("ann"); })) << "a broken file changes nothing";
    writeUsers(path, {});
    EXPECT_TRUE(becomesTrue([&] { return !file.contains("ann"); }));
}

} // namespace server::test
