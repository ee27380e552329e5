#pragma once

#include <string>
#include <vector>

namespace options {

/// Lets a program of windows write to the terminal that started it, in UTF-8, where the system does not do so by itself. What was
/// redirected stays so, and its lines end as they were written.
void useConsole();

/// What follows the program's name on the command line, in UTF-8 whatever the system's own encoding is.
std::vector<std::string> argumentsOf(int argc, char **argv);

} // namespace options
