#pragma once

#include <filesystem>
#include <iosfwd>
#include <string>

namespace server {

/// Shows what the server that listens at `control` has at hand, the oldest first: as a table, or as it tells it. Throws
/// std::runtime_error.
void showStatus(const std::filesystem::path &control, bool asJson, std::ostream &out);
/// Ends one statement; throws std::runtime_error when there is none of that name.
void endStatement(const std::filesystem::path &control, const std::string &id, std::ostream &out);

} // namespace server
