#include "server/base/log.h"

#include <iostream>
#include <string>

namespace server {

void logLine(std::string_view line)
{
    // In one piece, so that lines of several threads do not mix.
    std::cerr << "kelvara-server：" + std::string(line) + "\n" << std::flush;
}

} // namespace server
