#pragma once

#include <QIcon>

/// The drawn icon of a command: "query", "export", "print", "find", "copy" or "close".
QIcon commandIcon(const char *name);
/// The program's icon.
QIcon programIcon();
