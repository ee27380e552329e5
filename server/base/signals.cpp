#include "server/base/signals.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/signal_set.hpp>

#include <csignal>

namespace server {

void waitForStop(const std::function<void()> &reload)
{
    boost::asio::io_context io;
    boost::asio::signal_set signals(io, SIGINT, SIGTERM);
#ifdef SIGHUP
    signals.add(SIGHUP);
#endif
    std::function<void()> wait = [&] {
        signals.async_wait([&](const boost::system::error_code &, int signal) {
            if (signal == SIGINT || signal == SIGTERM)
                return;
            reload();
            wait();
        });
    };
    wait();
    io.run();
}

} // namespace server
