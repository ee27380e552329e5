#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace server {

/// Makes the file, or empties it, so that nobody but its owner can open it. Throws std::runtime_error.
void createPrivateFile(const std::filesystem::path &path);

/// Puts a file with this text in the place of `path`, at once and for good: whoever reads sees the old text or the new one, also after
/// a power cut. Owner and mode are those of the file before; a new one belongs to the folder's owner, who alone can open it.
/// Throws std::runtime_error, and nothing has changed then.
void replaceFile(const std::filesystem::path &path, std::string_view text);

/// Tells one state of a file from another: its content, its place on the disk, its owner and its mode. Empty when it is gone.
[[nodiscard]] std::string fileStamp(const std::filesystem::path &path);

/// Who may open a file.
enum class Readers { RootAlone, OwnerAlone, Group, Everyone };
[[nodiscard]] Readers readersOf(const std::filesystem::path &path);

/// Keeps other programs that do the same out while it lives: locks a file of the same name with ".lock" behind it. Waits for its turn.
class FileLock {
public:
    /// Throws std::runtime_error.
    explicit FileLock(const std::filesystem::path &path);
    FileLock(const FileLock &) = delete;
    ~FileLock();

private:
#ifdef _WIN32
    void *m_file;
#else
    int m_file;
#endif
};

} // namespace server
