#include "platform/files/disk.h"

#include <cerrno>

#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

namespace files {

bool syncToDisk(int handle)
{
#ifdef _WIN32
    const int result = _commit(handle);
#else
    const int result = fsync(handle);
#endif
    // Some file systems cannot be asked; that is no failure.
    return result == 0 || errno == EINVAL || errno == ENOTSUP;
}

} // namespace files
