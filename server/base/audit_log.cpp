#include "server/base/audit_log.h"

#include "server/base/json.h"
#include "server/base/log.h"
#include "server/base/system.h"

#include "packet/packet.h"

#include <stdexcept>
#include <utility>

namespace server {

namespace {

constexpr std::size_t mostWaiting = 64 << 20; ///< bytes; a disk that stands still must not fill the memory

} // namespace

std::string auditLine(const AuditEntry &entry)
{
    using namespace std::chrono;
    const auto sinceEpoch = duration_cast<milliseconds>(entry.time.time_since_epoch());
    const std::string fraction = std::to_string(1000 + sinceEpoch.count() % 1000);
    std::string time;
    packet::appendTimestamp(floor<seconds>(sinceEpoch).count(), time);
    time[10] = 'T';
    std::string line = "{\"time\":\"" + time + "." + fraction.substr(1) + "Z\",\"user\":";
    appendJsonText(entry.user, line);
    line += ",\"address\":";
    appendJsonText(entry.address, line);
    line += ",\"database\":";
    appendJsonText(entry.database, line);
    line += ",\"milliseconds\":" + std::to_string(entry.duration.count()) + ",\"rows\":" + std::to_string(entry.rows)
        + ",\"bytes\":" + std::to_string(entry.bytes) + ",\"result\":";
    appendJsonText(entry.result, line);
    line += ",\"statement\":";
    appendJsonText(entry.statement, line);
    return line + "}\n";
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

void AuditLog::add(const AuditEntry &entry)
{
    if (m_path.empty())
        return;
    const std::string line = auditLine(entry);
    {
        const std::lock_guard lock(m_mutex);
        if (m_waiting.size() + line.size() > mostWaiting)
            return logLine("审计日志写不动，丢下一条：" + line);
        m_waiting += line;
    }
    m_changed.notify_one();
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
        m_changed.wait(lock, [this] { return m_stopped || m_mustReopen || !m_waiting.empty(); });
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
}

/// What cannot be written goes to the operator instead.
void AuditLog::writeWaiting(std::unique_lock<std::mutex> &lock)
{
    const std::string lines = std::exchange(m_waiting, {});
    lock.unlock();
    m_file << lines << std::flush;
    if (!m_file || !m_file.is_open()) {
        logLine("无法写入审计日志 " + m_path.string() + "，请检查磁盘空间和权限；没有写入的内容：\n" + lines);
        open();
    }
    lock.lock();
}

} // namespace server
