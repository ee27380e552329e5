#pragma once

#include "server/options.h"
#include "server/settings/configuration.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace server {

/// A user of the demonstration.
struct DemoUser {
    std::string name {};
    std::string password {};
    std::string_view words {}; ///< who it is, in Chinese
};

/// What a demonstration on this machine needs: all of it lies in the folder "server" of the data folder, and stays there for the next
/// start.
struct DemoServer {
    Configuration configuration;
    std::vector<DemoUser> users {};
};

/// Makes certificate, token key and users unless they are there. Throws std::runtime_error; without a database it says how to make one.
DemoServer prepareDemo(const Options &options);
/// The address, the users and what to try with curl and the client.
std::string demoText(const DemoServer &demo, std::uint16_t port);

} // namespace server
