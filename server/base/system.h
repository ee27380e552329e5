#pragma once

#include <cstdint>
#include <string>

namespace server {

/// What differs between systems.

/// Asks at the terminal without showing what is typed. Throws std::runtime_error when there is no terminal.
std::string askPassword(const std::string &prompt);

/// The time as seconds since 1970.
std::int64_t secondsNow();

/// The wall clock of this machine's place as seconds since 1970 without a time zone.
std::int64_t localSecondsNow();

/// The same for any moment, and back; both are seconds since 1970.
std::int64_t localSeconds(std::int64_t utcSeconds);
std::int64_t utcSeconds(std::int64_t localSeconds);

/// Lets the program have as many connections and files open as the system allows it.
void raiseFileLimit();

} // namespace server
