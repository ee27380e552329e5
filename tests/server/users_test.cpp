// Who is let in, and who is not any more.

#include "server/users/login_throttle.h"
#include "server/users/password.h"
#include "server/users/token.h"
#include "server/users/user_file.h"
#include "tests/server/test_server.h"

#include <gmock/gmock.h>

#include <fstream>
#include <sstream>
#include <thread>

#ifndef _WIN32
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

namespace server::test {

using namespace std::chrono_literals;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

namespace {

namespace fs = std::filesystem;

int timeStatus(std::uint16_t port, const std::string &token) { return HttpsClient(port).get("/v1/time", bearer(token)).status; }

#ifndef _WIN32
constexpr uid_t nobody = 65534;

/// A server in a process of its own under another account, whose users file is that account's. Needs root.
class ServerOfNobody {
public:
    ServerOfNobody()
    {
        int ends[2];
        if (pipe(ends) != 0)
            throw std::runtime_error("no pipe");
        m_process = fork();
        if (m_process == 0)
            serve(ends[1]);
        close(ends[1]);
        char line[512] = "";
        const ssize_t size = read(ends[0], line, sizeof line - 1);
        close(ends[0]);
        std::istringstream told(std::string(line, std::size_t(std::max<ssize_t>(size, 0))));
        std::string path;
        told >> m_port >> path;
        users = path;
    }
    ServerOfNobody(const ServerOfNobody &) = delete;
    ~ServerOfNobody()
    {
        kill(m_process, SIGKILL);
        waitpid(m_process, nullptr, 0);
        std::error_code ignored;
        fs::remove_all(users.parent_path(), ignored);
    }
    std::uint16_t port() const { return m_port; }

    fs::path users {};

private:
    [[noreturn]] static void serve(int teller)
    {
        if (setgid(nobody) != 0 || setuid(nobody) != 0)
            _exit(1);
        const TestServer server;
        const std::string told = std::to_string(server.port()) + " " + server.configuration().users.string() + "\n";
        if (write(teller, told.data(), told.size()) < 0)
            _exit(1);
        while (true)
            pause();
    }

    pid_t m_process = 0;
    std::uint16_t m_port = 0;
};
#endif

} // namespace

TEST(Users, AreManagedInAFile)
{
    const TemporaryFolder folder;
    const fs::path path = folder / "users";
    runUser(path, "add", "ann");
    EXPECT_EQ(fs::status(path).permissions(), fs::perms::owner_read | fs::perms::owner_write);
    for (const auto &[command, name, secret] : { std::tuple("add", "ann", newPassword), { "add", "bob", "short" },
             { "add", "b:b", newPassword }, { "passwd", "bob", newPassword }, { "remove", "bob", "" } })
        EXPECT_THROW(runUser(path, command, name, secret), std::runtime_error) << command << name;
    const std::string before = readUsers(path).at("ann").hash;
    EXPECT_TRUE(passwordMatches(before, newPassword));
    EXPECT_FALSE(passwordMatches(before, "long enougH"));
    fs::permissions(path, fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
    runUser(path, "passwd", "ann", "another one");
    runUser(path, "add", "李明");
    EXPECT_EQ(runUser(path, "list", ""), "ann\n李明\n");
    EXPECT_NE(readUsers(path).at("ann").hash, before);
    EXPECT_NE(fs::status(path).permissions() & fs::perms::group_read, fs::perms::none) << "the mode is the operator's";
}

TEST(Users, SeveralCommandsAtATimeLoseNobody)
{
    constexpr int commands = 8;
    const TemporaryFolder folder;
    const fs::path path = folder / "users";
    std::vector<std::thread> threads;
    for (int number = 0; number < commands; ++number)
        threads.emplace_back([&, number] { runUser(path, "add", "user" + std::to_string(number)); });
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(readUsers(path).size(), commands);
    const auto files = std::distance(fs::directory_iterator(path.parent_path()), fs::directory_iterator());
    EXPECT_EQ(files, 2) << "the users and their lock, nothing else";
}

TEST(Users, WhoeverIsRemovedOrGetsANewPasswordIsOutWithinASecondOrTwo)
{
    const TestServer server;
    const fs::path users = server.configuration().users;
    const std::string bob = tokenFor(server.port(), "bob", password);
    const std::string ann = tokenFor(server.port(), "ann", password);
    ASSERT_EQ(timeStatus(server.port(), bob), 200);
    runUser(users, "remove", "bob");
    EXPECT_TRUE(becomesTrue([&] { return timeStatus(server.port(), bob) == 401; }));
    EXPECT_EQ(logIn(server.port(), "bob", password).status, 401);
    runUser(users, "add", "bob");
    EXPECT_TRUE(becomesTrue([&] { return logIn(server.port(), "bob", newPassword).status == 200; }));
    EXPECT_EQ(timeStatus(server.port(), bob), 401) << "the name is back, but not its old token";
    EXPECT_EQ(timeStatus(server.port(), ann), 200);
    runUser(users, "passwd", "ann", password);
    EXPECT_TRUE(becomesTrue([&] { return timeStatus(server.port(), ann) == 401; })) << "even with the same password";
}

TEST(Users, WhileTheFileCannotBeReadNobodyIsTrusted)
{
    const TestServer server;
    const fs::path users = server.configuration().users;
    const std::string token = tokenFor(server.port(), "ann", password);
    const std::string good = contentOf(users);
    std::ofstream(users) << "broken line\n";
    EXPECT_TRUE(becomesTrue([&] { return timeStatus(server.port(), token) == 503; }));
    EXPECT_EQ(logIn(server.port(), "ann", password).status, 503);
    EXPECT_EQ(server.metric("kelvara_users_unreadable"), 1);
    EXPECT_EQ(HttpsClient(server.port()).get("/readyz").status, 503);
    std::ofstream(users) << good;
    EXPECT_TRUE(becomesTrue([&] { return timeStatus(server.port(), token) == 200; }));
    EXPECT_EQ(server.metric("kelvara_users_unreadable"), 0);
}

#ifndef _WIN32
TEST(Users, TheToolOfRootServesAServerUnderAnotherAccount)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "needs root";
    const ServerOfNobody server;
    ASSERT_NE(server.port(), 0);
    const std::string bob = tokenFor(server.port(), "bob", password);
    ASSERT_EQ(timeStatus(server.port(), bob), 200);
    runUser(server.users, "remove", "bob");
    struct stat file { };
    ASSERT_EQ(stat(server.users.c_str(), &file), 0);
    EXPECT_EQ(file.st_uid, nobody);
    EXPECT_TRUE(becomesTrue([&] { return timeStatus(server.port(), bob) == 401; }));
    EXPECT_EQ(logIn(server.port(), "ann", password).status, 200) << "the others go on";
    // A hand that takes the file away does not bring anybody back.
    const std::string ann = tokenFor(server.port(), "ann", password);
    ASSERT_EQ(chown(server.users.c_str(), 0, 0), 0);
    EXPECT_TRUE(becomesTrue([&] { return timeStatus(server.port(), ann) == 503; }));
    EXPECT_EQ(logIn(server.port(), "bob", password).status, 503);
    EXPECT_THAT(runUser(server.users, "passwd", "李明"), HasSubstr("只有 root 能读取"));
    ASSERT_EQ(chown(server.users.c_str(), nobody, nobody), 0);
    EXPECT_TRUE(becomesTrue([&] { return timeStatus(server.port(), ann) == 200; }));
}
#endif

TEST(Logins, StrangersWhoTryANameDoNotKeepItsUserOut)
{
    const TestServer server([](Configuration &configuration) { configuration.trustedProxies = { "127.0.0.1" }; });
    const auto from = [](const std::string &address) { return "X-Forwarded-For: " + address + "\r\n"; };
    int slowed = 0;
    for (int tries = 0; tries < 40; ++tries)
        slowed += logIn(server.port(), "bob", "falsch", from("6.6.6.6")).status == 429;
    EXPECT_GE(slowed, 25);
    EXPECT_EQ(logIn(server.port(), "bob", password, from("10.0.0.7")).status, 200);
    const auto lines = server.auditLines("login", std::size_t(LoginThrottle::here.free) + 1);
    EXPECT_THAT(
        lines.front(), AllOf(HasSubstr("\"user\":\"bob\",\"address\":\"6.6.6.6\""), HasSubstr("wrong password"), Not(HasSubstr("falsch"))));
    EXPECT_THAT(lines.back(), AllOf(HasSubstr("10.0.0.7"), HasSubstr("\"result\":\"ok\"")));
}

} // namespace server::test
