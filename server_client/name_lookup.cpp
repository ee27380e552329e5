#include "server_client/name_lookup.h"

#include <boost/asio/io_context.hpp>

#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>

namespace server_client {

namespace {

using boost::system::error_code;
using boost::system::system_error;
using Found = boost::asio::ip::tcp::resolver::results_type;

/// What the thread leaves behind, for whoever still waits for it.
struct Lookup {
    std::mutex mutex;
    std::condition_variable_any changed;
    bool isDone = false;
    error_code error;
    Found found;
};

void run(Lookup &lookup, const std::string &host, const std::string &port)
{
    boost::asio::io_context io;
    error_code error;
    Found found = boost::asio::ip::tcp::resolver(io).resolve(host, port, error);
    const std::lock_guard lock(lookup.mutex);
    lookup.found = std::move(found);
    lookup.error = error;
    lookup.isDone = true;
    lookup.changed.notify_all();
}

} // namespace

Found lookUp(const std::string &host, std::uint16_t port, std::chrono::milliseconds limit, const std::stop_token &stop)
{
    const std::string service = std::to_string(port);
    error_code noAddress;
    if (const auto address = boost::asio::ip::make_address(host, noAddress); !noAddress)
        return Found::create(boost::asio::ip::tcp::endpoint(address, port), host, service);
    const auto lookup = std::make_shared<Lookup>();
    std::thread([lookup, host, service] { run(*lookup, host, service); }).detach();
    std::unique_lock lock(lookup->mutex);
    if (!lookup->changed.wait_for(lock, stop, limit, [&lookup] { return lookup->isDone; }))
        throw system_error(stop.stop_requested() ? boost::asio::error::operation_aborted : boost::asio::error::timed_out);
    if (lookup->error)
        throw system_error(lookup->error);
    return std::move(lookup->found);
}

} // namespace server_client
