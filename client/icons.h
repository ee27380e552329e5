#pragma once

#include <QIcon>

namespace client {

/// The drawn icon of a command: "query", "export", "print", "find", "copy" or "close".
QIcon commandIcon(const char *name);
/// The program's icon.
QIcon programIcon();

} // namespace client
