#pragma once

namespace files {

/// Waits until what was written to an open file is on the disk, as far as the system can tell; false when the disk did not take it.
[[nodiscard]] bool syncToDisk(int handle);

} // namespace files
