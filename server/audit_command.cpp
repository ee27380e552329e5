#include "server/audit_command.h"

#include "options/named_days.h"
#include "packet/packet.h"
#include "server/base/log.h"
#include "server/base/system.h"
#include "server/base/table_text.h"

#include <nlohmann/json.hpp>
#include <zlib.h>

#include <algorithm>
#include <chrono>
#include <map>
#include <memory>
#include <optional>
#include <ostream>
#include <stdexcept>
#include <vector>

namespace server {

namespace fs = std::filesystem;
using Json = nlohmann::json;

namespace {

constexpr std::size_t longestLine = 1 << 20; ///< bytes; a statement of the largest size stays below
constexpr std::string_view lineBegin = "{\"time\":\"";
constexpr std::size_t stampSize = 19; ///< yyyy-mm-ddThh:mm:ss, what follows is a fraction

/// The lines of a file, plain or compressed.
class LogFile {
public:
    explicit LogFile(const fs::path &path)
        : m_path(path)
#ifdef _WIN32
        , m_file(gzopen_w(path.c_str(), "rb"))
#else
        , m_file(gzopen(path.c_str(), "rb"))
#endif
    {
        if (!m_file)
            fail();
    }
    LogFile(const LogFile &) = delete;
    ~LogFile() { gzclose(m_file); }

    /// Nothing at the end. A line that is too long comes in parts, which are no lines of a log. Throws std::runtime_error.
    std::optional<std::string> next()
    {
        std::string line;
        char piece[16 * 1024];
        while (line.size() < longestLine && gzgets(m_file, piece, sizeof piece)) {
            line += piece;
            if (line.back() == '\n')
                return line;
        }
        int error = Z_OK;
        gzerror(m_file, &error);
        if (error != Z_OK)
            fail();
        return line.empty() ? std::nullopt : std::optional(line);
    }

private:
    [[noreturn]] void fail() const { throw std::runtime_error("审计日志 " + m_path.string() + " 读不出来，请检查文件和权限"); }

    const fs::path m_path;
    const gzFile m_file;
};

/// "yyyy-mm-ddThh:mm:ss" of a line, in UTC; empty when it is no line of a log.
std::string_view stampOf(std::string_view line)
{
    return line.starts_with(lineBegin) && line.size() > lineBegin.size() + stampSize ? line.substr(lineBegin.size(), stampSize)
                                                                                     : std::string_view();
}

std::string stampOf(std::int64_t seconds)
{
    std::string stamp;
    packet::appendTimestamp(seconds, stamp);
    stamp[10] = 'T';
    return stamp;
}

constexpr std::int64_t daySeconds = 24 * 3600;
enum class Edge { Begin, End };

/// The first or the last second of 昨天, 上月 and so on; the last shift ends at noon.
std::int64_t edgeOf(options::NamedDays named, Edge edge)
{
    using namespace std::chrono;
    const auto range = options::daysOf(named, floor<days>(sys_seconds(seconds(localSecondsNow()))));
    const std::int64_t noon = named == options::NamedDays::LastShift ? daySeconds / 2 : 0;
    const std::int64_t first = range.first.time_since_epoch().count() * daySeconds + noon;
    const std::int64_t last = range.last.time_since_epoch().count() * daySeconds + (noon > 0 ? noon : daySeconds) - 1;
    return edge == Edge::Begin ? first : last;
}

/// What a time of this place is in the log. A day alone stands for its last second when it is an end.
std::string stampOf(const std::string &text, Edge edge)
{
    constexpr std::size_t dateSize = 10;
    if (const auto named = options::daysNamed(text))
        return stampOf(utcSeconds(edgeOf(*named, edge)));
    const auto seconds = packet::parseTimestamp(text);
    if (!seconds)
        throw std::invalid_argument(
            "时间“" + text + "”不对，请写作 yyyy-mm-dd、\"yyyy-mm-dd hh:mm:ss\"，或今天、昨天、本周、上周、本月、上月");
    const bool isWholeDay = text.size() == dateSize && edge == Edge::End;
    return stampOf(utcSeconds(*seconds + (isWholeDay ? daySeconds - 1 : 0)));
}

bool isRotated(std::string_view name, std::string_view log)
{
    if (!name.starts_with(log) || name.size() == log.size())
        return false;
    name.remove_prefix(log.size());
    const bool isSeparated = name.front() == '.' || name.front() == '-';
    name.remove_prefix(1);
    if (name.ends_with(".gz"))
        name.remove_suffix(3);
    return isSeparated && !name.empty() && name.find_first_not_of("0123456789") == name.npos;
}

/// The log and its older files, in the order of their first lines.
std::vector<fs::path> filesOf(const fs::path &log)
{
    std::vector<std::pair<std::string, fs::path>> found;
    for (const fs::directory_entry &entry : fs::directory_iterator(fs::absolute(log).parent_path())) {
        const std::string name = entry.path().filename().string();
        if (name != log.filename() && !isRotated(name, log.filename().string()))
            continue;
        std::string first;
        try {
            first = stampOf(LogFile(entry.path()).next().value_or(""));
        } catch (const std::runtime_error &) {
            // The same fault shows when the whole file is read.
        }
        found.emplace_back(first, entry.path());
    }
    if (found.empty())
        throw std::runtime_error("没有审计日志 " + log.string() + "，请检查路径");
    std::sort(found.begin(), found.end());
    std::vector<fs::path> files;
    for (auto &[first, path] : found)
        files.push_back(std::move(path));
    return files;
}

std::string textOf(const Json &line, const char *name)
{
    const auto found = line.find(name);
    if (found == line.end())
        return {};
    return found->is_string() ? found->get<std::string>() : found->dump();
}

std::string wordsOf(const Json &line)
{
    const std::string event = textOf(line, "event");
    if (event == "query")
        return padded("查询", 8) + textOf(line, "database") + " " + oneLine(textOf(line, "statement"));
    if (event == "result")
        return padded("结果", 8) + textOf(line, "result") + "，" + textOf(line, "rows") + " 行，" + textOf(line, "milliseconds") + " 毫秒";
    if (event == "screen")
        return padded("窗口", 8) + textOf(line, "screen") + " " + textOf(line, "result");
    if (event == "logout")
        return "退出";
    return padded(event == "login" ? "登录" : event == "password" ? "改密码" : event, 8) + textOf(line, "result");
}

void showRow(const Json &line, std::ostream &out)
{
    std::string time = textOf(line, "time").substr(0, stampSize);
    std::replace(time.begin(), time.end(), 'T', ' ');
    if (const auto seconds = packet::parseTimestamp(time)) {
        time.clear();
        packet::appendTimestamp(localSeconds(*seconds), time);
    }
    out << padded(time, 21) << padded(textOf(line, "user"), 14) << padded(textOf(line, "address"), 17) << wordsOf(line) << '\n';
}

/// Lines that are asked for, file by file.
class Filter {
public:
    Filter(const Options &options, std::ostream &out)
        : m_options(options)
        , m_out(out)
        , m_from(options.auditFrom.empty() ? "" : stampOf(options.auditFrom, Edge::Begin))
        , m_to(options.auditTo.empty() ? "" : stampOf(options.auditTo, Edge::End))
    {
    }

    void show(const std::string &line)
    {
        const auto stamp = stampOf(line);
        if ((!m_from.empty() && stamp < m_from) || (!m_to.empty() && stamp > m_to))
            return;
        const Json object = Json::parse(line, nullptr, false);
        if (stamp.empty() || !object.is_object()) {
            ++m_broken;
            return;
        }
        if (!m_options.auditUser.empty() && textOf(object, "user") != m_options.auditUser)
            return;
        if (m_options.slowSeconds > 0 && !isSlow(object))
            return;
        if (m_options.asJson)
            m_out << line;
        else
            showRow(object, m_out);
        if (m_options.slowSeconds > 0 && !m_options.asJson)
            m_out << std::string(21, ' ') << oneLine(m_statement) << '\n';
    }
    std::size_t broken() const { return m_broken; }

private:
    /// Whether it is the end of a statement that took long; its text stands in the line of its begin, some lines before.
    bool isSlow(const Json &line)
    {
        const std::string id = textOf(line, "id");
        if (textOf(line, "event") == "query")
            m_begun[id] = textOf(line, "statement");
        if (textOf(line, "event") != "result")
            return false;
        const auto begun = m_begun.extract(id);
        m_statement = begun ? begun.mapped() : std::string();
        const auto milliseconds = line.find("milliseconds");
        return milliseconds != line.end() && milliseconds->is_number() && milliseconds->get<double>() >= m_options.slowSeconds * 1000;
    }

    const Options &m_options;
    std::ostream &m_out;
    std::map<std::string, std::string> m_begun {}; ///< texts of statements that have not ended yet
    std::string m_statement {}; ///< of the last end
    const std::string m_from;
    const std::string m_to;
    std::size_t m_broken = 0;
};

} // namespace

void showAudit(const fs::path &log, const Options &options, std::ostream &out)
{
    Filter filter(options, out);
    std::string fault;
    for (const fs::path &path : filesOf(log)) {
        try {
            LogFile file(path);
            while (const auto line = file.next())
                filter.show(*line);
        } catch (const std::runtime_error &error) {
            fault = error.what();
            logLine(fault);
        }
    }
    if (filter.broken() > 0)
        logLine("有 " + std::to_string(filter.broken()) + " 行不完整，没有显示");
    if (!fault.empty() || !out.flush())
        throw std::runtime_error(fault.empty() ? "结果没有写完，请检查磁盘空间" : "有文件读不出来，上面显示的不完整");
}

} // namespace server
