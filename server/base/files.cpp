#include "server/base/files.h"

#include <chrono>
#include <cstdint>
#include <random>
#include <stdexcept>
#include <thread>

#ifdef _WIN32
#include <windows.h>
#else
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace server {

namespace fs = std::filesystem;

namespace {

/// A name beside the file that nobody else uses.
fs::path nameBeside(const fs::path &path)
{
    std::random_device random;
    fs::path beside = path;
    return beside += "." + std::to_string(random()) + "-" + std::to_string(random()) + ".new";
}

[[noreturn]] void failToWrite(const fs::path &path)
{
    throw std::runtime_error("无法写入 " + path.string() + "，请检查磁盘空间、目录和权限；原来的内容没有改变");
}

#ifdef _WIN32
void writeNewFile(const fs::path &path, std::string_view text, const fs::path &)
{
    const HANDLE file = CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
    DWORD written = 0;
    const bool isWritten = file != INVALID_HANDLE_VALUE && WriteFile(file, text.data(), DWORD(text.size()), &written, nullptr)
        && written == text.size() && FlushFileBuffers(file);
    if (file != INVALID_HANDLE_VALUE)
        CloseHandle(file);
    if (!isWritten)
        failToWrite(path);
}

void settleFolder(const fs::path &) { }
#else
/// A descriptor that is closed at the end.
class Descriptor {
public:
    explicit Descriptor(int number)
        : m_number(number)
    {
    }
    Descriptor(const Descriptor &) = delete;
    ~Descriptor()
    {
        if (m_number >= 0)
            close(m_number);
    }
    int number() const { return m_number; }

private:
    int m_number;
};

fs::path folderOf(const fs::path &path) { return path.has_parent_path() ? path.parent_path() : fs::path("."); }

bool writeAll(int file, std::string_view text)
{
    while (!text.empty()) {
        const ssize_t count = write(file, text.data(), text.size());
        if (count < 0)
            return false;
        text.remove_prefix(std::size_t(count));
    }
    return true;
}

/// Whoever is not allowed to hand the file over must not leave one that the service cannot read.
void takeOwner(int file, const fs::path &from)
{
    struct stat before { };
    const bool isNew = stat(from.c_str(), &before) != 0;
    if (isNew && stat(folderOf(from).c_str(), &before) != 0)
        failToWrite(from);
    struct stat now { };
    const bool isKept = fstat(file, &now) == 0
        && ((now.st_uid == before.st_uid && now.st_gid == before.st_gid) || fchown(file, before.st_uid, before.st_gid) == 0);
    if (!isKept)
        throw std::runtime_error("文件 " + from.string() + " 属于别的帐户，本帐户不能替它写入；请用 root 或该帐户运行。没有做任何更改");
    if (fchmod(file, isNew ? S_IRUSR | S_IWUSR : before.st_mode & 07777) != 0)
        failToWrite(from);
}

/// A new file with the owner and the mode of `from`.
void writeNewFile(const fs::path &path, std::string_view text, const fs::path &from)
{
    const Descriptor file(open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, S_IRUSR | S_IWUSR));
    if (file.number() < 0)
        failToWrite(path);
    takeOwner(file.number(), from);
    if (!writeAll(file.number(), text) || fsync(file.number()) != 0)
        failToWrite(path);
}

/// The new name itself must be on the disk as well.
void settleFolder(const fs::path &path)
{
    const Descriptor folder(open(folderOf(path).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (folder.number() >= 0)
        (void)fsync(folder.number());
}
#endif

} // namespace

void createPrivateFile(const fs::path &path)
{
#ifdef _WIN32
    // The rights of the folder are handed down.
    const HANDLE file = CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    const bool isMade = file != INVALID_HANDLE_VALUE && CloseHandle(file);
#else
    const Descriptor file(open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, S_IRUSR | S_IWUSR));
    const bool isMade = file.number() >= 0 && fchmod(file.number(), S_IRUSR | S_IWUSR) == 0;
#endif
    if (!isMade)
        throw std::runtime_error("无法写入 " + path.string() + "，请检查目录和权限");
}

void replaceFile(const fs::path &path, std::string_view text)
{
    // A link stays one; what it names is replaced.
    std::error_code error;
    const fs::path target = fs::is_symlink(path, error) ? fs::canonical(path) : path;
    const fs::path beside = nameBeside(target);
    try {
        writeNewFile(beside, text, target);
        fs::rename(beside, target);
    } catch (...) {
        fs::remove(beside, error);
        throw;
    }
    settleFolder(target);
}

std::string fileStamp(const fs::path &path)
{
#ifdef _WIN32
    std::error_code error;
    const auto time = fs::last_write_time(path, error);
    return error ? std::string() : std::to_string(time.time_since_epoch().count()) + " " + std::to_string(fs::file_size(path, error));
#else
    struct stat file { };
    if (stat(path.c_str(), &file) != 0)
        return {};
    std::string stamp;
    // The second time is that of the last change of owner or mode.
    for (const std::int64_t part :
        { std::int64_t(file.st_dev), std::int64_t(file.st_ino), std::int64_t(file.st_size), std::int64_t(file.st_mtim.tv_sec),
            std::int64_t(file.st_mtim.tv_nsec), std::int64_t(file.st_ctim.tv_sec), std::int64_t(file.st_ctim.tv_nsec) })
        stamp += std::to_string(part) + " ";
    return stamp;
#endif
}

Readers readersOf([[maybe_unused]] const fs::path &path)
{
#ifndef _WIN32
    struct stat file { };
    if (stat(path.c_str(), &file) == 0 && (file.st_mode & S_IROTH) != 0)
        return Readers::Everyone;
    if ((file.st_mode & S_IRGRP) == 0)
        return file.st_uid == 0 ? Readers::RootAlone : Readers::OwnerAlone;
#endif
    return Readers::Group; // which is what a folder hands down elsewhere
}

FileLock::FileLock(const fs::path &path)
{
    fs::path beside = path;
    beside += ".lock";
#ifdef _WIN32
    constexpr auto lookEvery = std::chrono::milliseconds(20);
    do {
        m_file = CreateFileW(beside.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_ALWAYS, FILE_FLAG_DELETE_ON_CLOSE, nullptr);
        if (m_file == INVALID_HANDLE_VALUE)
            std::this_thread::sleep_for(lookEvery);
    } while (m_file == INVALID_HANDLE_VALUE && GetLastError() == ERROR_SHARING_VIOLATION);
    if (m_file == INVALID_HANDLE_VALUE)
        failToWrite(beside);
#else
    m_file = open(beside.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (m_file < 0)
        failToWrite(beside);
    try {
        takeOwner(m_file, path); // so that whoever may write the file may lock it
        if (flock(m_file, LOCK_EX) != 0)
            failToWrite(beside);
    } catch (...) {
        close(m_file);
        throw;
    }
#endif
}

FileLock::~FileLock()
{
#ifdef _WIN32
    CloseHandle(m_file);
#else
    close(m_file);
#endif
}

} // namespace server
