#pragma once

#include <chrono>
#include <condition_variable>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <string>
#include <thread>

namespace server {

/// One statement, as the audit log keeps it.
struct AuditEntry {
    std::chrono::system_clock::time_point time {};
    std::string user {};
    std::string address {};
    std::string database {};
    std::chrono::milliseconds duration {};
    std::int64_t rows = 0;
    std::uint64_t bytes = 0;
    std::string result {}; ///< "ok" or what went wrong
    std::string statement {};
};

/// The entry as one line of JSON.
std::string auditLine(const AuditEntry &entry);

/// A file that lines are appended to, by a thread of its own, so that a slow disk holds no request up. To be used from any thread.
class AuditLog {
public:
    /// Without a path nothing is written. Throws std::runtime_error when the file cannot be written.
    explicit AuditLog(std::filesystem::path path);
    AuditLog(const AuditLog &) = delete;
    /// Writes what waits.
    ~AuditLog();

    void add(const AuditEntry &entry);
    /// Lets go of the file, so that another can take its name.
    void reopen();

private:
    void run();
    void open();
    void writeWaiting(std::unique_lock<std::mutex> &lock);

    const std::filesystem::path m_path;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::string m_waiting;
    bool m_mustReopen = false;
    bool m_stopped = false;
    std::ofstream m_file; ///< used by the thread alone
    std::thread m_thread;
};

} // namespace server
