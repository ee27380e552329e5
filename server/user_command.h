#pragma once

#include "server/options.h"

#include <iosfwd>

namespace server {

/// Changes or lists the users of a file. Passwords come from `in` or from the terminal, as the options say.
/// Throws std::runtime_error with a message for the operator.
void runUserCommand(const Options &options, std::istream &in, std::ostream &out);

} // namespace server
