#include "server/base/address.h"
#include "server/base/audit_log.h"
#include "server/base/fair_pool.h"
#include "server/base/json.h"
#include "server/base/thread_priority.h"
#include "server/statements/result_format.h"
#include "server/users/login_throttle.h"
#include "server/users/token.h"
#include "tests/server/test_server.h"

#include <gmock/gmock.h>

#include <atomic>
#include <csignal>
#include <future>

#ifndef _WIN32
#include <sys/resource.h>
#include <unistd.h>
#endif

namespace server::test {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::Pair;

TEST(Token, AcceptsExactlyWhatItSigned)
{
    const TokenKey key(std::string(32, 'a'));
    const std::string text = key.sign({ "李明", 1000, "12345678" });
    const auto token = key.verify(text);
    ASSERT_TRUE(token);
    EXPECT_EQ(token->user, "李明");
    EXPECT_EQ(token->generation, "12345678");
    EXPECT_EQ(token->expires, 1000);
    EXPECT_NE(key.sign({ "李明", 1000, "12345678" }), text) << "each has a number of its own";
    for (std::size_t at = 0; at < text.size(); ++at) {
        for (const char other : { '0', 'f', 'A', ' ' }) {
            std::string changed = text;
            changed[at] = other;
            EXPECT_EQ(key.verify(changed).has_value(), changed == text) << at;
        }
        EXPECT_FALSE(key.verify(text.substr(0, at)));
    }
}

namespace {

using Answer = LoginThrottle::Answer;
using Result = LoginThrottle::Result;

/// Tries until it is told to wait; how many tries there were.
int wrongTries(LoginThrottle &throttle, LoginThrottle::Clock::time_point now, const std::string &name, const std::string &address)
{
    int tries = 0;
    for (; throttle.begin(now, name, address).answer == Answer::Welcome; ++tries)
        throttle.finish(now, name, address, Result::Wrong);
    return tries;
}

} // namespace

TEST(Throttle, WhoFailsHasToWaitAndNobodyElse)
{
    LoginThrottle throttle;
    auto now = LoginThrottle::Clock::now();
    EXPECT_EQ(wrongTries(throttle, now, "ann", "10.0.0.1"), LoginThrottle::here.free);
    const auto wait = throttle.begin(now, "ann", "10.0.0.1").wait;
    EXPECT_GT(wait, 0s);
    EXPECT_LE(wait, LoginThrottle::here.forgotten);
    EXPECT_EQ(throttle.begin(now, "ann", "10.0.0.2").answer, Answer::Welcome) << "the same name elsewhere";
    EXPECT_EQ(throttle.begin(now, "bob", "10.0.0.1").answer, Answer::Welcome) << "another name here";
    now += wait;
    EXPECT_EQ(wrongTries(throttle, now, "ann", "10.0.0.1"), 1) << "one try is forgotten at a time";
    now += 1h;
    EXPECT_EQ(wrongTries(throttle, now, "ann", "10.0.0.1"), LoginThrottle::here.free) << "all of them in the end";
}

TEST(Throttle, AnHonestUserIsLetInWhateverStrangersDo)
{
    LoginThrottle throttle;
    auto now = LoginThrottle::Clock::now();
    ASSERT_EQ(throttle.begin(now, "bob", "10.0.0.1").answer, Answer::Welcome);
    throttle.finish(now, "bob", "10.0.0.1", Result::Right);
    int strangers = 0;
    for (int minute = 0; minute < 120; ++minute, now += 1min) {
        for (int address = 0; address < 50; ++address)
            strangers += wrongTries(throttle, now, "bob", "10.1.0." + std::to_string(address));
        for (int name = 0; name < 200; ++name)
            wrongTries(throttle, now, "name" + std::to_string(name), "10.0.0.1");
        ASSERT_EQ(throttle.begin(now, "bob", "10.0.0.1").answer, Answer::Welcome) << minute;
        throttle.finish(now, "bob", "10.0.0.1", Result::NotTried);
    }
    EXPECT_LE(strangers, LoginThrottle::ofName.free + 120 * 6 + 60) << "many addresses together do not get further with one name";
}

TEST(Throttle, TriesUnderWayAreNoFailuresButGetNoFurtherEither)
{
    LoginThrottle throttle;
    const auto now = LoginThrottle::Clock::now();
    for (int user = 0; user < 1000; ++user)
        ASSERT_EQ(throttle.begin(now, "user" + std::to_string(user), "10.0.0.1").answer, Answer::Welcome) << "a whole office at eight";
    int welcome = 0;
    while (throttle.begin(now, "ann", "10.0.0.9").answer == Answer::Welcome)
        ++welcome;
    EXPECT_EQ(welcome, LoginThrottle::here.free);
    EXPECT_EQ(throttle.begin(now, "ann", "10.0.0.9").answer, Answer::Busy);
    for (; welcome > 0; --welcome)
        throttle.finish(now, "ann", "10.0.0.9", Result::NotTried);
    EXPECT_EQ(throttle.begin(now, "ann", "10.0.0.9").answer, Answer::Welcome);
}

TEST(Address, OneClientIsAnAddressOrANetwork)
{
    EXPECT_EQ(addressGroup("10.0.0.1"), "10.0.0.1");
    EXPECT_EQ(addressGroup("2001:db8:1:2:3:4:5:6"), addressGroup("2001:db8:1:2::"));
    EXPECT_NE(addressGroup("2001:db8:1:2::1"), addressGroup("2001:db8:1:3::1"));
    EXPECT_EQ(addressOf("::ffff:10.0.0.1"), "10.0.0.1");
    EXPECT_EQ(addressOf("010.0.0.1"), std::nullopt);
    EXPECT_TRUE(isLoopback("::1") && isLoopback("127.9.9.9") && !isLoopback("10.0.0.1"));
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

TEST(FairPool, KeepsWorkersForThoseWhoHaveNoneAndLetsLongWorkYield)
{
    FairPool pool({ .workers = 4, .waiting = 100, .userRunning = 4, .userWaiting = 100 });
    std::promise<void> gate;
    const auto opened = gate.get_future().share();
    for (int number = 0; number < 4; ++number)
        ASSERT_TRUE(pool.submit("greedy", [opened] { opened.wait(); }));
    std::atomic<bool> isServed { false };
    ASSERT_TRUE(pool.submit("modest", [&] { isServed = true; }));
    EXPECT_TRUE(becomesTrue([&] { return isServed && pool.running() == 3; }));
    gate.set_value();
    EXPECT_TRUE(becomesTrue([&] { return pool.waiting() + pool.running() == 0; }));
    if (!ThreadPriority::canLower())
        GTEST_SKIP() << "threads cannot return from a low priority";
#ifdef __linux__
    const auto nicenessOf = [&pool](const std::string &user, std::chrono::milliseconds time) {
        std::promise<int> niceness;
        const auto ticket = pool.submit(user, [&niceness, time] {
            std::this_thread::sleep_for(time);
            niceness.set_value(getpriority(PRIO_PROCESS, id_t(gettid())));
        });
        std::this_thread::sleep_for(time / 2);
        pool.look(ticket, FairPool::Clock::now());
        EXPECT_TRUE(becomesTrue([&] { return pool.running() == 0; }));
        return niceness.get_future().get();
    };
    const int usual = nicenessOf("modest", 1ms);
    EXPECT_GT(nicenessOf("heavy", 1200ms), usual) << "once it has run for long";
    EXPECT_GT(nicenessOf("heavy", 1ms), usual) << "who has used much, from the first";
    for (int number = 0; number < 8; ++number)
        EXPECT_EQ(nicenessOf("modest", 1ms), usual) << "the workers have returned";
#endif
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

TEST(AuditLog, WritesALineThatNobodyWaitsForAfterOneThatSomebodyDid)
{
    const TemporaryFolder folder;
    AuditLog log(folder / "audit.log");
    for (int round = 0; round < 5; ++round) {
        const std::string name = "later" + std::to_string(round);
        log.settle(log.add(AuditLine("query").add("user", "now")));
        std::this_thread::sleep_for(20ms); // the log's thread has found nothing left to write
        log.add(AuditLine("result").add("user", name));
        EXPECT_TRUE(becomesTrue([&] { return contentOf(folder / "audit.log").find(name) != std::string::npos; })) << round;
    }
}

#ifndef _WIN32
namespace {

/// While it lives no file of this process can grow beyond so many bytes, as on a disk that is full.
class FullDisk {
public:
    explicit FullDisk(std::uintmax_t bytes)
    {
        std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit limit { bytes, m_before.rlim_max };
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    FullDisk(const FullDisk &) = delete;
    ~FullDisk() { setrlimit(RLIMIT_FSIZE, &m_before); }

private:
    rlimit m_before {};
};

} // namespace

TEST(AuditLog, AFullDiskSpoilsNoLineThatComesLater)
{
    const TemporaryFolder folder;
    const auto path = folder / "audit.log";
    AuditLog log(path);
    const auto write = [&log](const std::string &user) { log.settle(log.add(AuditLine("login").add("user", user))); };
    write("first");
    {
        const FullDisk full(std::filesystem::file_size(path) + 20);
        write("lost");
    }
    write("next");
    const std::string text = contentOf(path);
    EXPECT_THAT(text, testing::EndsWith("\"user\":\"next\"}\n"));
    EXPECT_EQ(text[text.rfind("{") - 1], '\n') << text;
    EXPECT_THAT(text, testing::Not(testing::HasSubstr("lost")));
}
#endif

} // namespace server::test
