#pragma once

#include "server/options.h"
#include "server/settings/configuration.h"

#include <string>

namespace server {

/// What a demonstration on this machine needs: all of it lies in the folder "server" of the data folder.
struct DemoServer {
    Configuration configuration;
    std::string user = "demo";
    std::string password; ///< a new one each time
};

/// Makes certificate, user and token key. Throws std::runtime_error; without a database it says how to make one.
DemoServer prepareDemo(const Options &options);
/// The address, the user and what to try with curl.
std::string demoText(const DemoServer &demo, std::uint16_t port);

} // namespace server
