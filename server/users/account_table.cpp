#include "server/users/account_table.h"

#include "server/base/log.h"
#include "server/base/text.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace server {

namespace {

constexpr std::size_t mostFaults = 5; ///< that are told one by one

/// The column of each field, and what each column is.
struct Columns {
    int name = -1;
    int hash = -1;
    std::vector<std::pair<std::size_t, std::string_view>> fields {};
};

Columns columnsOf(const packet::Packet &rows)
{
    Columns columns { rows.indexOf("user_name"), rows.indexOf("password_hash") };
    if (columns.name < 0 || columns.hash < 0)
        throw std::runtime_error("帐户查询的结果缺少 user_name 或 password_hash 列");
    for (std::size_t column = 0; column < rows.columnCount(); ++column) {
        if (int(column) == columns.name || int(column) == columns.hash)
            continue;
        const std::string &title = rows.schema()[column].name;
        std::string_view known;
        for (const std::string_view field : accountFields())
            if (equalsIgnoringCase(field, title))
                known = field;
        if (known.empty())
            throw std::runtime_error("帐户查询的结果有不认识的列“" + title + "”");
        columns.fields.emplace_back(column, known);
    }
    return columns;
}

/// Null stands for what an account has without the field.
Account accountOf(const packet::Packet &rows, const Columns &columns, std::size_t row)
{
    Account account;
    rows.appendText(std::size_t(columns.hash), row, account.hash);
    if (!account.hash.starts_with("$argon2id$"))
        throw std::invalid_argument("的 password_hash 不是 argon2id 散列");
    for (const auto &[column, field] : columns.fields) {
        std::string text;
        rows.appendText(column, row, text);
        if (!text.empty())
            setAccountField(account, field, text);
    }
    checkAccount(account);
    return account;
}

} // namespace

Users accountsOf(const packet::Packet &rows, std::string &faults)
{
    if (rows.truncated())
        throw std::runtime_error("帐户太多，查询结果被截断");
    const Columns columns = columnsOf(rows);
    Users users;
    std::size_t unfit = 0;
    for (std::size_t row = 0; row < rows.rowCount(); ++row) {
        std::string name;
        rows.appendText(std::size_t(columns.name), row, name);
        try {
            if (!isUserName(name))
                throw std::invalid_argument("不能作为用户名");
            Account account = accountOf(rows, columns, row);
            // Of two with one name nobody can say which is meant.
            if (const auto [place, isNew] = users.try_emplace(name, std::move(account)); !isNew) {
                place->second.locked = true;
                throw std::invalid_argument("有两行，两行都停用");
            }
        } catch (const std::invalid_argument &error) {
            if (++unfit <= mostFaults)
                faults += "帐户表中的用户“" + name + "”" + error.what() + "，不能登录；";
        }
    }
    if (unfit > mostFaults)
        faults += "一共有 " + std::to_string(unfit) + " 行不能用";
    return users;
}

AccountTable::AccountTable(Ask ask, Times times)
    : m_ask(std::move(ask))
    , m_times(times)
    , m_thread([this](const std::stop_token &stop) { run(stop); })
{
}

AccountTable::~AccountTable() = default;

AccountPtr AccountTable::find(std::string_view name)
{
    const std::lock_guard lock(m_mutex);
    if (!isFresh())
        throw AccountsUnknown(m_fault);
    const auto found = m_accounts.find(name);
    return found == m_accounts.end() ? nullptr : found->second;
}

bool AccountTable::isReadable()
{
    const std::lock_guard lock(m_mutex);
    return isFresh();
}

std::chrono::seconds AccountTable::overdue()
{
    const std::lock_guard lock(m_mutex);
    const auto age = Clock::now() - m_read.value_or(m_begun) - m_times.refresh;
    return std::max(std::chrono::seconds(0), std::chrono::floor<std::chrono::seconds>(age));
}

void AccountTable::run(const std::stop_token &stop)
{
    while (!stop.stop_requested()) {
        askOnce(stop);
        std::unique_lock lock(m_mutex);
        m_wake.wait_for(lock, stop, m_times.refresh, [] { return false; });
    }
}

void AccountTable::askOnce(const std::stop_token &stop)
{
    const auto asked = Clock::now();
    try {
        std::string rowFaults;
        LiveAccounts accounts = liveAccounts(accountsOf(*m_ask(stop), rowFaults));
        const std::lock_guard lock(m_mutex);
        if (!rowFaults.empty() && rowFaults != m_rowFaults)
            logLine(rowFaults);
        m_rowFaults = std::move(rowFaults);
        if (!m_fault.empty() || !m_read)
            logLine("帐户表已读入，共 " + std::to_string(accounts.size()) + " 个用户");
        m_accounts.swap(accounts);
        m_read = asked;
        m_fault.clear();
    } catch (const std::exception &error) {
        const std::lock_guard lock(m_mutex);
        if (m_fault != error.what() && !stop.stop_requested())
            logLine("帐户表读不出来，原来的帐户还可以用 " + std::to_string(std::chrono::ceil<std::chrono::seconds>(m_times.stale).count())
                + " 秒，之后拒绝所有登录和查询：" + error.what());
        m_fault = error.what();
    }
}

} // namespace server
