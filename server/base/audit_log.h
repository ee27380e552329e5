#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>

namespace server {

/// One line of the audit log: an object of JSON that begins with the time and the event.
class AuditLine {
public:
    explicit AuditLine(std::string_view event, std::chrono::system_clock::time_point time = std::chrono::system_clock::now());
    AuditLine &add(std::string_view name, std::string_view text);
    AuditLine &add(std::string_view name, std::int64_t number);
    /// With the line's end.
    std::string text() const { return m_text + "}\n"; }

private:
    std::string m_text;
};

/// A file that lines are appended to, by a thread of its own, so that a slow disk holds no request up. To be used from any thread.
class AuditLog {
public:
    using Ticket = std::uint64_t;

    /// Without a path nothing is written. Throws std::runtime_error when the file cannot be written.
    explicit AuditLog(std::filesystem::path path);
    AuditLog(const AuditLog &) = delete;
    /// Writes what waits.
    ~AuditLog();

    Ticket add(const AuditLine &line);
    /// Waits until the line is out of this process, in the file or with the operator, but two seconds at most.
    void settle(Ticket line);
    /// Lets go of the file, so that another can take its name.
    void reopen();

private:
    void run();
    void open();
    void writeWaiting(std::unique_lock<std::mutex> &lock);

    const std::filesystem::path m_path;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::condition_variable m_settled;
    std::string m_waiting;
    Ticket m_added = 0;
    Ticket m_written = 0;
    bool m_mustReopen = false;
    bool m_stopped = false;
    std::ofstream m_file; ///< used by the thread alone
    std::thread m_thread;
};

} // namespace server
