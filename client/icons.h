#pragma once

#include <QIcon>

/// The drawn icon of a toolbar command: "query", "export", "print", "find" or "copy".
QIcon commandIcon(const char *name);
/// The program's icon.
QIcon programIcon();
