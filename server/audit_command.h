#pragma once

#include "server/options.h"

#include <filesystem>
#include <iosfwd>

namespace server {

/// Shows what the log and the files that it was rotated to say, oldest first: as a table, or the lines as they are. Reads line by line,
/// however large the files are. Throws std::invalid_argument for a time that is none, and std::runtime_error when a file cannot be read;
/// what the others say has been shown then.
void showAudit(const std::filesystem::path &log, const Options &options, std::ostream &out);

} // namespace server
