#include "server/user_import.h"

#include "server/base/csv.h"
#include "server/base/text.h"
#include "server/users/password.h"
#include "server/users/token.h"

#include <algorithm>
#include <set>
#include <stdexcept>

namespace server {

namespace {

constexpr std::size_t firstPasswordBytes = 5; ///< of chance; twice as many letters

constexpr std::string_view userColumn = "user_name";
constexpr std::string_view passwordColumn = "password";

constexpr std::pair<std::string_view, std::string_view> chineseTitles[] = {
    { "用户名", userColumn },
    { "密码", passwordColumn },
    { "工号", "employee_code" },
    { "姓名", "employee_name" },
    { "登录网点", "site" },
    { "可查网点", "sites" },
    { "窗口", "screens" },
    { "数据库", "databases" },
    { "行规则", "row_rules" },
    { "须改密码", "must_change" },
    { "停用", "locked" },
};

[[noreturn]] void fail(int line, const std::string &reason)
{
    throw std::runtime_error("第 " + std::to_string(line) + " 行：" + reason + "；没有做任何更改");
}

std::string_view columnOf(int line, std::string_view title)
{
    for (const auto &[chinese, column] : chineseTitles)
        if (title == chinese || equalsIgnoringCase(title, column))
            return column;
    std::string known;
    for (const auto &[chinese, column] : chineseTitles)
        known += (known.empty() ? "" : "、") + std::string(chinese);
    fail(line, "不认识的列“" + std::string(title) + "”，可以用的有 " + known);
}

std::vector<std::string_view> columnsOf(const CsvRow &titles)
{
    std::vector<std::string_view> columns;
    for (const std::string &title : titles.cells) {
        columns.push_back(columnOf(titles.line, trimmed(title)));
        if (std::count(columns.begin(), columns.end(), columns.back()) > 1)
            fail(titles.line, "列“" + title + "”写了两次");
    }
    if (std::find(columns.begin(), columns.end(), userColumn) == columns.end())
        fail(titles.line, "缺少列“用户名”");
    return columns;
}

/// Names in a cell may be separated as people write them.
std::string withCommas(std::string_view text)
{
    std::string out(text);
    for (const std::string_view separator : { "、", "，" })
        for (std::size_t at = 0; (at = out.find(separator, at)) != out.npos;)
            out.replace(at, separator.size(), ",");
    return out;
}

} // namespace

UserImport::UserImport(std::string_view csv)
{
    const std::vector<CsvRow> lines = readCsv(csv);
    if (lines.empty())
        throw std::runtime_error("文件是空的，第一行应是列名，如 用户名,姓名,登录网点");
    const auto columns = columnsOf(lines.front());
    std::set<std::string, std::less<>> names;
    for (std::size_t at = 1; at < lines.size(); ++at) {
        Row row { lines[at].line };
        if (lines[at].cells.size() > columns.size())
            fail(row.line, "的单元格比列名多");
        for (std::size_t column = 0; column < lines[at].cells.size(); ++column) {
            const std::string &cell = lines[at].cells[column];
            if (columns[column] == userColumn)
                row.user = trimmed(cell);
            else if (columns[column] == passwordColumn)
                row.password = cell;
            else if (!trimmed(cell).empty())
                row.fields.emplace_back(columns[column], withCommas(trimmed(cell)));
        }
        if (!isUserName(row.user))
            fail(row.line, "“" + row.user + "”不能作为用户名");
        if (!names.insert(row.user).second)
            fail(row.line, "用户“" + row.user + "”前面已经有了");
        if (!row.password.empty() && !isPassword(row.password))
            fail(row.line, "密码至少要 8 个字节，最多 1024 个字节");
        changed(row, {}); // so that a fault shows before the passwords are hashed
        m_rows.push_back(std::move(row));
    }
}

void UserImport::hashPasswords(const Users &users)
{
    for (Row &row : m_rows) {
        if (row.password.empty() && !users.contains(row.user)) {
            row.password = randomHex(firstPasswordBytes);
            row.mustChange = true;
            m_firstPasswords.push_back({ row.user, row.password });
        }
        if (!row.password.empty())
            row.hash = hashPassword(row.password);
    }
}

void UserImport::apply(Users &users) const
{
    for (const Row &row : m_rows) {
        const auto before = users.find(row.user);
        if (before == users.end() && row.hash.empty())
            fail(row.line, "用户“" + row.user + "”刚刚被删除，请再导入一次");
        users.insert_or_assign(row.user, changed(row, before == users.end() ? Account() : before->second));
    }
}

Account UserImport::changed(const Row &row, const Account &before) const
try {
    Account account = before;
    for (const auto &[field, text] : row.fields)
        setAccountField(account, field, text);
    if (!row.hash.empty())
        account.hash = row.hash;
    account.mustChange |= row.mustChange;
    // Alone it may lack what the account already has.
    if (!before.hash.empty() || !row.hash.empty())
        checkAccount(account);
    return account;
} catch (const std::invalid_argument &error) {
    fail(row.line, error.what());
}

} // namespace server
