#include "server_client/account.h"
#include "server_client/name_lookup.h"
#include "server_client/server_connection.h"

#include <gtest/gtest.h>

#include <dlfcn.h>
#include <netdb.h>

#include <memory>
#include <string_view>
#include <thread>

/// Stands in for the system's: one name is never answered.
extern "C" int getaddrinfo(const char *name, const char *service, const addrinfo *hints, addrinfo **found)
{
    using Function = int (*)(const char *, const char *, const addrinfo *, addrinfo **);
    if (name && std::string_view(name) == "silent.example")
        std::this_thread::sleep_for(std::chrono::hours(1));
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, "getaddrinfo"))(name, service, hints, found);
}

namespace {

using namespace server_client;
using namespace std::chrono_literals;
using boost::asio::error::make_error_code;
using boost::system::system_error;

boost::system::error_code failureOf(const std::string &host, std::chrono::milliseconds limit, const std::stop_token &stop = {})
{
    try {
        lookUp(host, 443, limit, stop);
    } catch (const system_error &error) {
        return error.code();
    }
    return {};
}

TEST(NameLookup, EndsWhenTheSystemDoesNotAnswer)
{
    EXPECT_EQ(failureOf("silent.example", 50ms), make_error_code(boost::asio::error::timed_out));
    std::stop_source stop;
    std::jthread cancel([&stop] { stop.request_stop(); });
    EXPECT_EQ(failureOf("silent.example", 1h, stop.get_token()), make_error_code(boost::asio::error::operation_aborted));
    ServerConnection connection({ "silent.example", 8866 }, std::make_shared<Trust>(std::vector<std::string>()), { .connect = 50ms });
    Delivery delivery;
    try {
        connection.exchange({ "GET", "/v1/time" }, delivery, {}, [](int, std::span<const std::byte>) {});
        FAIL();
    } catch (const Error &error) {
        EXPECT_EQ(error.failure(), Failure::Unreachable);
    }
    EXPECT_EQ(delivery.sends, 0);
}

TEST(NameLookup, FindsNamesAndAddresses)
{
    EXPECT_EQ(lookUp("127.0.0.1", 443, 1s, {}).begin()->endpoint().address().to_string(), "127.0.0.1");
    EXPECT_TRUE(lookUp("localhost", 443, 1min, {}).begin()->endpoint().address().is_loopback());
    EXPECT_TRUE(failureOf("no.such.host.invalid", 1min));
}

} // namespace
