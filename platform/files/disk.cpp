#include "platform/files/disk.h"

#ifdef _WIN32
#include <QDir>

#include <io.h>
#include <windows.h>
#else
#include <QFile>

#include <cstdio>

#include <unistd.h>
#endif

#include <cerrno>

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

#ifdef _WIN32

namespace {

/// The full name as the system takes it at any length.
std::wstring longName(const QString &file)
{
    const QString name = QDir::toNativeSeparators(QDir::cleanPath(file));
    if (name.startsWith(u"\\\\?\\"))
        return name.toStdWString();
    if (name.startsWith(u"\\\\"))
        return QString(u"\\\\?\\UNC" + name.mid(1)).toStdWString();
    return QString(u"\\\\?\\" + name).toStdWString();
}

} // namespace

std::error_code replaceFile(const QString &file, const QString &target)
{
    if (MoveFileExW(longName(file).c_str(), longName(target).c_str(), MOVEFILE_REPLACE_EXISTING))
        return {};
    const DWORD error = GetLastError();
    if (error == ERROR_SHARING_VIOLATION || error == ERROR_ACCESS_DENIED || error == ERROR_USER_MAPPED_FILE)
        return std::make_error_code(std::errc::permission_denied);
    return { int(error), std::system_category() };
}

#else

std::error_code replaceFile(const QString &file, const QString &target)
{
    if (std::rename(QFile::encodeName(file).constData(), QFile::encodeName(target).constData()) == 0)
        return {};
    return { errno, std::system_category() };
}

#endif

} // namespace files
