#pragma once

namespace engine::temporaryFiles {

/// Registers a file system that is the default one but for temporary files: what they hold is counted towards the budget of the
/// statement on this thread, and reading or writing them fails when its time is up. Returns its name; once is enough.
const char *registerFileSystem();

} // namespace engine::temporaryFiles
