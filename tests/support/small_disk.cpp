#include "tests/support/small_disk.h"

#ifdef _WIN32

// tests/windows/left_out.txt names the tests that need one.
SmallDisk::SmallDisk(const QString &folder, qint64)
    : m_folder(folder.toUtf8())
{
}

SmallDisk::~SmallDisk() = default;

FileSizeLimit::FileSizeLimit(qint64) { }
FileSizeLimit::~FileSizeLimit() = default;

#else

#include <csignal>
#include <cstdlib>

#include <sys/mount.h>
#include <sys/resource.h>

SmallDisk::SmallDisk(const QString &folder, qint64 bytes)
    : m_folder(folder.toUtf8())
{
    const QByteArray options = "size=" + QByteArray::number(bytes);
    m_isMounted = mount("none", m_folder.constData(), "tmpfs", 0, options.constData()) == 0;
}

SmallDisk::~SmallDisk()
{
    if (m_isMounted)
        umount2(m_folder.constData(), MNT_DETACH);
}

namespace {

void setFileSizeLimit(rlim_t bytes)
{
    rlimit limit {};
    getrlimit(RLIMIT_FSIZE, &limit);
    limit.rlim_cur = bytes;
    if (setrlimit(RLIMIT_FSIZE, &limit) != 0)
        std::abort();
}

} // namespace

FileSizeLimit::FileSizeLimit(qint64 bytes)
{
    // Else the system would end the program.
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit limit {};
    getrlimit(RLIMIT_FSIZE, &limit);
    m_before = limit.rlim_cur;
    setFileSizeLimit(rlim_t(bytes));
}

FileSizeLimit::~FileSizeLimit() { setFileSizeLimit(m_before); }

#endif
