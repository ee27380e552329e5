#pragma once

#include <QString>

#include <system_error>

namespace files {

/// Waits until what was written to an open file is on the disk, as far as the system can tell; false when the disk did not take it.
[[nodiscard]] bool syncToDisk(int handle);

/// Gives a file the name of another one, which it replaces. permission_denied where a program that has the other one open keeps it.
[[nodiscard]] std::error_code replaceFile(const QString &file, const QString &target);

} // namespace files
