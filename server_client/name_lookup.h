#pragma once

#include <boost/asio/ip/tcp.hpp>

#include <chrono>
#include <cstdint>
#include <stop_token>
#include <string>

namespace server_client {

/// The addresses of a host. The system's own look-up cannot be broken off: one that takes longer than the limit is left to itself, on a
/// thread of its own. Throws boost::system::system_error, also when the limit is over or a stop is requested.
boost::asio::ip::tcp::resolver::results_type lookUp(
    const std::string &host, std::uint16_t port, std::chrono::milliseconds limit, const std::stop_token &stop);

} // namespace server_client
