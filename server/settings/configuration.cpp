#include "server/settings/configuration.h"

#include "engine/gate/gate.h"
#include "options/centre_settings.h"
#include "options/text.h"
#include "server/users/token.h"

#include <algorithm>
#include <charconv>
#include <fstream>
#include <functional>
#include <map>
#include <span>
#include <sstream>

namespace server {

namespace fs = std::filesystem;
using options::listOf;
using options::Secret;
using options::trimmed;
using options::Unfit;

namespace {

std::int64_t wholeNumber(std::string_view text, std::int64_t low, std::int64_t high)
{
    std::int64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size() || number < low || number > high)
        throw Unfit { "从 " + std::to_string(low) + " 到 " + std::to_string(high) + " 的整数" };
    return number;
}

/// What is read into, and where relative paths begin.
struct Target {
    Configuration &configuration;
    const fs::path &directory;
    DatabaseConfiguration &database() const { return configuration.databases.back(); }
};

using Setter = std::function<void(const Target &, std::string_view)>;

template <class Object, class Number>
void assignNumber(Object &object, Number Object::*member, std::string_view text, std::int64_t low, std::int64_t high, std::int64_t unit)
{
    object.*member = Number(wholeNumber(text, low, high) * unit);
}

template <class Number>
Setter number(Number Configuration::*member, std::int64_t low, std::int64_t high, std::int64_t unit = 1)
{
    return [=](const Target &target, std::string_view text) { assignNumber(target.configuration, member, text, low, high, unit); };
}

template <class Number>
Setter number(Number DatabaseConfiguration::*member, std::int64_t low, std::int64_t high, std::int64_t unit = 1)
{
    return [=](const Target &target, std::string_view text) { assignNumber(target.database(), member, text, low, high, unit); };
}

template <class Number>
Setter number(Number AccountsConfiguration::*member, std::int64_t low, std::int64_t high, std::int64_t unit = 1)
{
    return [=](const Target &target, std::string_view text) { assignNumber(target.configuration.accounts, member, text, low, high, unit); };
}

Setter path(fs::path Configuration::*member)
{
    return [=](const Target &target, std::string_view text) { target.configuration.*member = target.directory / fs::path(text); };
}

void setListen(const Target &target, std::string_view text)
{
    const std::size_t colon = text.rfind(':');
    if (colon == std::string_view::npos || colon == 0)
        throw Unfit { "“地址:端口”，如 0.0.0.0:8866" };
    auto address = text.substr(0, colon);
    if (address.front() == '[' && address.back() == ']')
        address = address.substr(1, address.size() - 2);
    target.configuration.address = address;
    target.configuration.port = std::uint16_t(wholeNumber(text.substr(colon + 1), 0, 65535));
}

/// The address may hold a password, so no message repeats it.
std::string checkedUrl(std::string_view text)
{
    const bool isKnown
        = text.starts_with("sqlite:") || text.starts_with("postgresql://") || text.starts_with("postgres://") || text.starts_with("odbc:");
    if (!isKnown)
        throw Secret { "sqlite:文件、postgresql://用户:密码@主机/库 或 odbc:DSN=数据源" };
    return std::string(text);
}

/// Numbers with dots between them.
void setSmallestClient(const Target &target, std::string_view text)
{
    const bool isFit = std::ranges::all_of(text, [](char letter) { return letter == '.' || (letter >= '0' && letter <= '9'); });
    if (!isFit || text.front() == '.' || text.back() == '.' || text.find("..") != text.npos)
        throw Unfit { "版本号，如 1.2.0" };
    target.configuration.clients.smallestVersion = text;
}

constexpr auto repeatable = "replica"; ///< the key that may stand more than once
constexpr std::int64_t day = 24 * 3600;
constexpr std::int64_t millisecond = 1000; ///< in a second
constexpr std::int64_t mebibyte = 1 << 20;

const std::map<std::string, Setter, std::less<>> serverKeys {
    { "listen", setListen },
    { "certificate", path(&Configuration::certificate) },
    { "private_key", path(&Configuration::privateKey) },
    { "users", path(&Configuration::users) },
    { "token_key_file", path(&Configuration::tokenKeyFile) },
    { "token_hours", number(&Configuration::tokenLife, 1, 24 * 31, 3600) },
    { "audit_log", path(&Configuration::auditLog) },
    { "control", path(&Configuration::control) },
    { "trusted_proxies", [](const Target &target, std::string_view text) { target.configuration.trustedProxies = listOf(text); } },
    { "monitors", [](const Target &target, std::string_view text) { target.configuration.monitors = listOf(text); } },
    { "smallest_client", setSmallestClient },
    { "login_queue", number(&Configuration::loginQueue, 1, 10'000) },
    { "io_threads", number(&Configuration::ioThreads, 1, 64) },
    { "connections", number(&Configuration::connections, 1, 1'000'000) },
    { "connections_per_address", number(&Configuration::connectionsPerAddress, 1, 1'000'000) },
    { "header_kib", number(&Configuration::headerBytes, 1, 64, 1024) },
    { "handshake_seconds", number(&Configuration::handshakeTime, 1, 600, millisecond) },
    { "header_seconds", number(&Configuration::headerTime, 1, 600, millisecond) },
    { "body_seconds", number(&Configuration::bodyTime, 1, 600, millisecond) },
    { "idle_seconds", number(&Configuration::idleTime, 1, day, millisecond) },
    { "stranger_seconds", number(&Configuration::strangerTime, 1, day, millisecond) },
    { "write_seconds", number(&Configuration::writeTime, 1, 3600, millisecond) },
    { "drain_seconds", number(&Configuration::drainTime, 0, 3600, millisecond) },
    { "stop_seconds", number(&Configuration::stopTime, 0, day, millisecond) },
};

const std::map<std::string, Setter, std::less<>> databaseKeys {
    { "url", [](const Target &target, std::string_view text) { target.database().url = checkedUrl(text); } },
    { repeatable, [](const Target &target, std::string_view text) { target.database().replicas.push_back(checkedUrl(text)); } },
    { "max_lag_seconds", number(&DatabaseConfiguration::largestLag, 0, day, millisecond) },
    { "tables", [](const Target &target, std::string_view text) { target.database().tables = listOf(text); } },
    { "workers", number(&DatabaseConfiguration::workers, 1, 1000) },
    { "queue", number(&DatabaseConfiguration::queue, 0, 100'000) },
    { "user_statements", number(&DatabaseConfiguration::userStatements, 1, 1000) },
    { "user_queue", number(&DatabaseConfiguration::userQueue, 0, 100'000) },
    { "statement_seconds", number(&DatabaseConfiguration::statementTime, 1, day, millisecond) },
    { "statement_mib", number(&DatabaseConfiguration::statementMemory, 8, 1'000'000, mebibyte) },
    { "rows", number(&DatabaseConfiguration::rows, 1, 1'000'000'000) },
    { "result_mib", number(&DatabaseConfiguration::resultBytes, 1, 1'000'000, mebibyte) },
    { "send_buffer_mib", number(&DatabaseConfiguration::sendBuffer, 1, 1024, mebibyte) },
    { "shared_seconds", number(&DatabaseConfiguration::sharedAge, 0, 60, millisecond) },
    { "lookup_tables", [](const Target &target, std::string_view text) { target.database().lookupTables = listOf(text); } },
    { "kept_mib", number(&DatabaseConfiguration::keptBytes, 1, 1024, mebibyte) },
};

const std::map<std::string, Setter, std::less<>> accountsKeys {
    { "query", [](const Target &target, std::string_view text) { target.configuration.accounts.query = text; } },
    { "database", [](const Target &target, std::string_view text) { target.configuration.accounts.database = text; } },
    { "refresh_seconds", number(&AccountsConfiguration::refresh, 1, 3600, millisecond) },
    { "stale_seconds", number(&AccountsConfiguration::stale, 0, 3600, millisecond) },
};

/// A part of the file: its keys, and what to call it.
struct Section {
    const std::map<std::string, Setter, std::less<>> &keys;
    std::string_view fault;
};
const Section serverSection { serverKeys, "不存在" };
const Section databaseSection { databaseKeys, "不属于数据库小节" };
const Section accountsSection { accountsKeys, "不属于 [accounts] 小节" };

class Parser : public options::SettingsReader {
public:
    Parser(const std::string &name, const fs::path &directory)
        : SettingsReader(name)
        , m_directory(directory)
    {
    }

    Configuration run(std::string_view text)
    {
        readLines(text);
        finishSection();
        checkComplete();
        return std::move(m_configuration);
    }

private:
    void beginSection(std::string_view line) override
    {
        if (line == "[accounts]")
            beginAccounts();
        else
            beginDatabase(line);
        forgetKeys();
    }

    void beginAccounts()
    {
        finishSection();
        if (m_hasAccounts)
            fail("小节“[accounts]”已经写过一次，请合在一处");
        m_hasAccounts = true;
        m_section = &accountsSection;
    }

    void beginDatabase(std::string_view line)
    {
        constexpr std::string_view begin = "[database ";
        const auto name = line.starts_with(begin) && line.back() == ']' ? trimmed(line.substr(begin.size(), line.size() - begin.size() - 1))
                                                                        : std::string_view();
        if (name.empty())
            fail("小节“" + std::string(line) + "”无法识别，应写作“[database 名称]”或“[accounts]”");
        finishSection();
        for (const DatabaseConfiguration &database : m_configuration.databases)
            if (database.name == name)
                fail("数据库“" + std::string(name) + "”已经写过一次，请换一个名称");
        m_configuration.databases.push_back({ std::string(name), {} });
        m_section = &databaseSection;
    }

    /// "rows TABLE = condition", "hide TABLE.COLUMN, ..." or "client_setting KEY = VALUE".
    bool takeOther(std::string_view line) override
    {
        const std::size_t blank = std::min(line.find_first_of(" \t"), line.size());
        const std::string_view kind = line.substr(0, blank);
        const std::string_view rest = trimmed(line.substr(blank));
        if (kind == "client_setting") {
            addClientSetting(rest);
            return true;
        }
        const bool isRows = kind == "rows" && !rest.empty() && rest.front() != '=';
        if (!isRows && kind != "hide")
            return false;
        if (m_configuration.databases.empty())
            fail("“" + std::string(kind) + "”要写在数据库小节中");
        if (isRows)
            addRows(rest);
        else
            addHidden(rest);
        return true;
    }

    void addClientSetting(std::string_view text)
    {
        const std::size_t equals = std::min(text.find('='), text.size());
        const auto key = trimmed(text.substr(0, equals));
        const auto value = trimmed(text.substr(std::min(equals + 1, text.size())));
        if (m_section != &serverSection)
            fail("“client_setting”要写在第一个小节之前");
        if (key.empty() || value.empty())
            fail("下发给客户端的设置应写作“client_setting 键 = 值”，如 client_setting text_size = 115");
        if (!options::isCentreSetting(key))
            fail("客户端的设置“" + std::string(key) + "”不能下发，可以下发的是 " + centreSettingNames());
        if (!m_configuration.clients.settings.emplace(key, value).second)
            fail("客户端的设置“" + std::string(key) + "”写了两次，请删去一处");
    }

    static std::string centreSettingNames()
    {
        std::string names;
        for (const std::string_view key : options::centreSettings)
            names += (names.empty() ? "" : "、") + std::string(key);
        return names;
    }

    void addRows(std::string_view text)
    {
        const std::size_t equals = text.find('=');
        const auto table = trimmed(text.substr(0, equals));
        const auto condition = equals == text.npos ? std::string_view() : trimmed(text.substr(equals + 1));
        if (table.empty() || table.find_first_of(" \t.") != table.npos || condition.empty())
            fail("行规则应写作“rows 表 = 条件”，如 rows TAB_BILL = send_site in (:sites)");
        try {
            engine::gate::checkConditionWords(condition);
        } catch (const engine::Error &error) {
            fail("rows " + std::string(table) + " 的" + error.what());
        }
        addRule({ .table = std::string(table), .condition = std::string(condition) });
    }

    void addHidden(std::string_view text)
    {
        const std::vector<std::string> columns = listOf(text);
        for (const std::string &column : columns) {
            const std::size_t dot = column.find('.');
            if (dot == 0 || dot == column.npos || dot + 1 == column.size() || column.find_first_of(" \t", dot) != column.npos)
                fail("“" + column + "”不是“表.列”，要遮盖的列应写作“hide 表.列, 表.列”，如 hide TAB_BILL.ACCEPT_MAN_PHONE");
            addRule({ .table = column.substr(0, dot), .hidden = { column.substr(dot + 1) } });
        }
        if (columns.empty())
            fail("hide 后面没有列，应写作“hide 表.列”，如 hide TAB_BILL.ACCEPT_MAN_PHONE");
    }

    void addRule(engine::TableRule rule)
    {
        rule.place = place();
        m_configuration.databases.back().rules.push_back(std::move(rule));
    }

    bool take(std::string_view key, std::string_view value) override
    {
        const auto setter = m_section->keys.find(key);
        if (setter == m_section->keys.end())
            return false;
        setter->second({ m_configuration, m_directory }, value);
        return true;
    }
    bool mayRepeat(std::string_view key) const override { return key == repeatable; }
    std::string_view unknown() const override { return m_section->fault; }
    std::string_view forms() const override { return "“键 = 值”，也不是“[database 名称]”或“[accounts]”"; }

    void finishSection()
    {
        if (m_section == &accountsSection && m_configuration.accounts.query.empty())
            fail("小节“[accounts]”缺少键“query”，如 query = select user_name,password_hash,site from KELVARA_ACCOUNT");
        if (m_section == &databaseSection && m_configuration.databases.back().url.empty())
            fail("数据库“" + m_configuration.databases.back().name + "”缺少键“url”，如 url = sqlite:parcels.db");
    }

    void checkComplete()
    {
        if (m_configuration.databases.empty())
            fail("没有数据库，请至少写一个“[database 名称]”小节");
        const bool usesFile = m_configuration.accounts.query.empty();
        if (!usesFile)
            checkAccounts();
        const std::pair<const char *, const fs::path &> wanted[]
            = { { "certificate", m_configuration.certificate }, { "private_key", m_configuration.privateKey },
                  { "token_key_file", m_configuration.tokenKeyFile }, { "users", m_configuration.users } };
        for (const auto &[key, value] : std::span(wanted).first(usesFile ? 4 : 3))
            if (value.empty())
                fail("缺少键“" + std::string(key) + "”，请补上");
    }

    void checkAccounts()
    {
        if (!m_configuration.users.empty())
            fail("键“users”和小节“[accounts]”只能写一个，请删去一处");
        const std::string &name = m_configuration.accounts.database;
        const auto &databases = m_configuration.databases;
        const auto isMeant = [&](const DatabaseConfiguration &database) { return database.name == name; };
        if (!name.empty() && std::none_of(databases.begin(), databases.end(), isMeant))
            fail("小节“[accounts]”中的数据库“" + name + "”没有小节");
    }

    const fs::path &m_directory;
    const Section *m_section = &serverSection;
    bool m_hasAccounts = false;
    Configuration m_configuration;
};

std::string fileText(const fs::path &path, const std::string &what)
{
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    if (!file)
        throw ConfigurationError("无法读取" + what + " " + path.string() + "；请检查路径和权限");
    return text.str();
}

std::string readTokenKey(const fs::path &path)
{
    std::string key = fileText(path, "令牌密钥文件");
    while (!key.empty() && (key.back() == '\n' || key.back() == '\r'))
        key.pop_back();
    if (key.size() < TokenKey::shortestSecret)
        throw ConfigurationError("令牌密钥文件 " + path.string() + " 太短，至少要 32 个字节；可用 openssl rand -hex 32 生成");
    return key;
}

} // namespace

Configuration parseConfiguration(std::string_view text, const std::string &name, const fs::path &directory)
{
    return Parser(name, directory).run(text);
}

Configuration readConfiguration(const fs::path &path)
{
    Configuration configuration = parseConfiguration(fileText(path, "配置文件"), path.string(), path.parent_path());
    configuration.tokenKey = readTokenKey(configuration.tokenKeyFile);
    return configuration;
}

} // namespace server
