#include "server/base/audit_log.h"

#include "server/base/files.h"
#include "server/base/json.h"
#include "server/base/log.h"

#include "packet/packet.h"

#include <stdexcept>
#include <utility>

namespace server {

namespace {

constexpr auto longestSettling = std::chrono::seconds(2);
constexpr auto collectTime = std::chrono::milliseconds(100);
constexpr std::size_t mostWaiting = 64 << 20; ///< bytes; a disk that stands still must not fill the memory

bool endsWithLine(const std::filesystem::path &path)
{
    std::ifstream file(path, std::ios::binary | std::ios::ate);
    if (!file || file.tellg() == std::streampos(0))
        return true;
    file.seekg(-1, std::ios::end);
    return file.get() == '\n';
}

} // namespace

AuditLine::AuditLine(std::string_view event, std::chrono::system_clock::time_point time)
{
    using namespace std::chrono;
    const auto sinceEpoch = duration_cast<milliseconds>(time.time_since_epoch());
    const std::string fraction = std::to_string(1000 + sinceEpoch.count() % 1000);
    std::string stamp;
    packet::appendTimestamp(floor<seconds>(sinceEpoch).count(), stamp);
    stamp[10] = 'T';
    m_text = "{\"time\":\"" + stamp + "." + fraction.substr(1) + "Z\"";
    add("event", event);
}

AuditLine &AuditLine::add(std::string_view name, std::string_view text)
{
    (m_text += ",\"").append(name) += "\":";
    appendJsonText(text, m_text);
    return *this;
}

AuditLine &AuditLine::add(std::string_view name, std::int64_t number)
{
    (m_text += ",\"").append(name) += "\":" + std::to_string(number);
    return *this;
}

AuditLog::AuditLog(std::filesystem::path path)
    : m_path(std::move(path))
{
    if (m_path.empty())
        return;
    open();
    if (!m_file.is_open())
        throw std::runtime_error("无法写入审计日志 " + m_path.string() + "，请检查目录和权限");
    m_thread = std::thread([this] { run(); });
}

AuditLog::~AuditLog()
{
    {
        const std::lock_guard lock(m_mutex);
        m_stopped = true;
    }
    m_changed.notify_one();
    if (m_thread.joinable())
        m_thread.join();
}

AuditLog::Ticket AuditLog::add(const AuditLine &line)
{
    if (m_path.empty())
        return 0;
    const std::string text = line.text();
    Ticket ticket = 0;
    bool mustWake = false;
    {
        const std::lock_guard lock(m_mutex);
        if (m_waiting.size() + text.size() > mostWaiting) {
            logLine("审计日志写不动，下面一条没有写入：" + text);
            return 0;
        }
        m_waiting += text;
        ticket = ++m_added;
        mustWake = std::exchange(m_isAsleep, false);
    }
    if (mustWake)
        m_changed.notify_one();
    return ticket;
}

void AuditLog::settle(Ticket line)
{
    std::unique_lock lock(m_mutex);
    const auto isOver = [this, line] { return m_written >= line || !m_isWriting; };
    if (m_settled.wait_for(lock, longestSettling, isOver) && m_written < line)
        writeWaiting(lock);
}

void AuditLog::reopen()
{
    {
        const std::lock_guard lock(m_mutex);
        m_mustReopen = true;
    }
    m_changed.notify_one();
}

void AuditLog::run()
{
    std::unique_lock lock(m_mutex);
    while (true) {
        while (!mustHurry() && m_waiting.empty()) {
            m_isAsleep = true; // each time: what woke us may have been written by another thread since
            m_changed.wait(lock);
        }
        m_isAsleep = false;
        m_changed.wait_for(lock, collectTime, [this] { return mustHurry(); });
        m_settled.wait(lock, [this] { return !m_isWriting; });
        if (std::exchange(m_mustReopen, false))
            open();
        if (!m_waiting.empty())
            writeWaiting(lock);
        else if (m_stopped)
            return;
    }
}

void AuditLog::open()
{
    m_file.close();
    m_file.clear();
    try {
        if (!std::filesystem::exists(m_path))
            createPrivateFile(m_path);
    } catch (const std::exception &error) {
        return logLine(error.what());
    }
    m_file.open(m_path, std::ios::binary | std::ios::app);
    // A full disk, or the end of the machine, may have left half a line.
    if (m_file.is_open() && !endsWithLine(m_path))
        m_file << '\n';
}

/// What cannot be written goes to the operator instead.
void AuditLog::writeWaiting(std::unique_lock<std::mutex> &lock)
{
    const std::string lines = std::exchange(m_waiting, {});
    const Ticket last = m_added;
    m_isWriting = true;
    lock.unlock();
    m_file << lines << std::flush;
    if (!m_file || !m_file.is_open()) {
        logLine("无法写入审计日志 " + m_path.string() + "，请检查磁盘空间和权限；没有写入的内容：\n" + lines);
        open();
    }
    lock.lock();
    m_isWriting = false;
    m_written = last;
    m_settled.notify_all();
}

} // namespace server
