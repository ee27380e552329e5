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

/// A file that lines are appended to. Who needs a line written writes all that waits; the rest is left to a thread, so that a slow disk
/// holds nobody else up. To be used from any thread.
class AuditLog {
public:
    using Ticket = std::uint64_t;

    /// Without a path nothing is written. Throws std::runtime_error when the file cannot be written.
    explicit AuditLog(std::filesystem::path path);
    AuditLog(const AuditLog &) = delete;
    /// Writes what waits.
    ~AuditLog();

    /// The line is written a tenth of a second later at most.
    Ticket add(const AuditLine &line);
    /// Returns when the line is out of this process, in the file or with the operator. Waits two seconds at most while another thread
    /// writes.
    void settle(Ticket line);
    /// Lets go of the file, so that another can take its name.
    void reopen();

private:
    void run();
    void open();
    void writeWaiting(std::unique_lock<std::mutex> &lock);
    bool mustHurry() const { return m_stopped || m_mustReopen; }

    const std::filesystem::path m_path;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::condition_variable m_settled;
    std::string m_waiting;
    Ticket m_added = 0;
    Ticket m_written = 0;
    bool m_isWriting = false; ///< some thread, and uses the file
    bool m_isAsleep = false; ///< our thread, until there is anything to write
    bool m_mustReopen = false;
    bool m_stopped = false;
    std::ofstream m_file;
    std::thread m_thread;
};

} // namespace server
