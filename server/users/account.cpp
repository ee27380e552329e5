#include "server/users/account.h"

#include "packet/utf8.h"
#include "server/base/json.h"
#include "server/base/text.h"

#include <array>
#include <functional>
#include <stdexcept>

namespace server {

namespace {

constexpr std::size_t longestName = 64;
constexpr std::size_t longestField = 64 * 1024;
constexpr std::string_view allRights = "111";

bool isControl(char byte) { return (byte >= 0 && byte < ' ') || byte == '\x7f'; }

bool isOneOf(std::string_view text, std::initializer_list<std::string_view> words)
{
    return std::any_of(words.begin(), words.end(), [&](std::string_view word) { return equalsIgnoringCase(text, word); });
}

bool isYes(std::string_view text)
{
    if (isOneOf(text, { "yes", "on", "true", "1", "是" }))
        return true;
    if (!text.empty() && !isOneOf(text, { "no", "off", "false", "0", "否" }))
        throw std::invalid_argument("应是 yes 或 no（是 或 否）");
    return false;
}

NameList namesOf(std::string_view text)
{
    NameList list;
    while (!text.empty())
        if (const auto name = nextPart(text, ','); name == "*")
            list.all = true;
        else if (!name.empty() && !list.has(name))
            list.names.emplace_back(name);
    if (list.all)
        list.names.clear();
    return list;
}

std::string textOf(const NameList &list)
{
    std::string text = list.all ? "*" : "";
    for (const std::string &name : list.names)
        text += (text.empty() ? "" : ",") + name;
    return text;
}

bool isScreen(std::string_view name)
{
    return name == "*" || (!name.empty() && name.size() <= longestName && std::all_of(name.begin(), name.end(), [](char byte) {
        return byte == '_' || (byte >= '0' && byte <= '9') || (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z');
    }));
}

void setScreens(Account &account, std::string_view text)
{
    account.screens.clear();
    while (!text.empty()) {
        std::string_view item = nextPart(text, ',');
        if (item.empty())
            continue;
        const auto name = nextPart(item, '=');
        const auto rights = item.empty() ? allRights : trimmed(item);
        if (!isScreen(name) || rights.size() != allRights.size() || rights.find_first_not_of("01") != rights.npos)
            throw std::invalid_argument("应写作 frm_ManCome=101,frm_ManSend，权限是三位 0 或 1，不写表示 111；* 表示全部窗口");
        account.screens.insert_or_assign(std::string(name), std::string(rights));
    }
}

std::string screensOf(const Account &account)
{
    std::string text;
    for (const auto &[name, rights] : account.screens)
        text += (text.empty() ? "" : ",") + name + (rights == allRights ? "" : "=" + rights);
    return text;
}

struct Field {
    std::string_view name;
    std::function<void(Account &, std::string_view)> set;
    std::function<std::string(const Account &)> text;
};

Field textField(std::string_view name, std::string Account::*member)
{
    return { name, [member](Account &account, std::string_view text) { account.*member = trimmed(text); },
        [member](const Account &account) { return account.*member; } };
}

Field listField(std::string_view name, NameList Account::*member)
{
    return { name, [member](Account &account, std::string_view text) { account.*member = namesOf(text); },
        [member](const Account &account) { return textOf(account.*member); } };
}

Field flagField(std::string_view name, bool Account::*member)
{
    return { name, [member](Account &account, std::string_view text) { account.*member = isYes(trimmed(text)); },
        [member](const Account &account) { return account.*member ? "yes" : "no"; } };
}

const std::array<Field, 9> &fields()
{
    using RowRules = Account::RowRules;
    static const std::array<Field, 9> rows {
        textField("employee_code", &Account::employeeCode),
        textField("employee_name", &Account::employeeName),
        textField("site", &Account::site),
        listField("sites", &Account::sites),
        Field { "screens", setScreens, screensOf },
        listField("databases", &Account::databases),
        Field { "row_rules",
            [](Account &account, std::string_view text) {
                account.rowRules = text.empty() || isYes(trimmed(text)) ? RowRules::Apply : RowRules::Off;
            },
            [](const Account &account) { return account.rowRules == RowRules::Apply ? "on" : "off"; } },
        flagField("must_change", &Account::mustChange),
        flagField("locked", &Account::locked),
    };
    return rows;
}

const Field &fieldOf(std::string_view name)
{
    const auto &rows = fields();
    const auto *const found = std::find_if(rows.begin(), rows.end(), [&](const Field &field) { return field.name == name; });
    if (found == rows.end()) {
        std::string known;
        for (const Field &field : rows)
            known += (known.empty() ? "" : "、") + std::string(field.name);
        throw std::invalid_argument("没有“" + std::string(name) + "”这个字段，可以写的有 " + known);
    }
    return *found;
}

/// Colons separate the fields of a line, so a value has them as %3A.
std::string escaped(std::string_view text)
{
    std::string out;
    for (const char byte : text)
        out += byte == ':' ? "%3A" : byte == '%' ? "%25" : std::string(1, byte);
    return out;
}

std::string unescaped(std::string_view text)
{
    std::string out;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const bool isColon = text.substr(at, 3) == "%3A";
        if (isColon || text.substr(at, 3) == "%25") {
            out += isColon ? ':' : '%';
            at += 2;
        } else {
            out += text[at];
        }
    }
    return out;
}

std::string jsonList(const NameList &list)
{
    if (list.all)
        return "\"*\"";
    std::string text;
    for (const std::string &name : list.names)
        text += (text.empty() ? "" : ",") + jsonText(name);
    return "[" + text + "]";
}

} // namespace

bool isUserName(std::string_view name)
{
    const auto isForbidden = [](char byte) { return isControl(byte) || byte == ':'; };
    return !name.empty() && name.size() <= longestName && name.front() != '#' && name.front() != ' ' && name.back() != ' '
        && std::none_of(name.begin(), name.end(), isForbidden);
}

std::vector<std::string_view> accountFields()
{
    std::vector<std::string_view> names;
    for (const Field &field : fields())
        names.push_back(field.name);
    return names;
}

void setAccountField(Account &account, std::string_view field, std::string_view text)
{
    const Field &known = fieldOf(field);
    const bool isSound = text.size() <= longestField && packet::isUtf8(text) && std::none_of(text.begin(), text.end(), isControl);
    if (!isSound)
        throw std::invalid_argument("字段“" + std::string(field) + "”的值应是 64 KiB 以内的 UTF-8 文字，不能含有控制字符");
    try {
        known.set(account, text);
    } catch (const std::invalid_argument &error) {
        throw std::invalid_argument("字段“" + std::string(field) + "”" + error.what());
    }
}

std::string accountField(const Account &account, std::string_view field) { return fieldOf(field).text(account); }

NameList Account::allSites() const
{
    NameList list = sites;
    if (!site.empty() && !list.has(site))
        list.names.insert(list.names.begin(), site);
    return list;
}

void checkAccount(const Account &account)
{
    if (account.sites.all && account.rowRules == Account::RowRules::Apply)
        throw std::invalid_argument("sites=* 表示可以查询全部网点，不能同时受行规则限制；请加上 row_rules=off，或列出网点");
}

std::string accountLine(const std::string &name, const Account &account)
{
    static const Account plain;
    std::string line = name + ':' + account.hash;
    for (const Field &field : fields())
        if (const std::string text = field.text(account); text != field.text(plain))
            line += ':' + std::string(field.name) + '=' + escaped(text);
    return line;
}

std::pair<std::string, Account> parseAccountLine(std::string_view line)
{
    // The other fields of such a line would fall back to what an old line may do.
    const bool isCut = line.ends_with(':');
    // Names may end with blanks of other scripts, and hashes have none, so nothing is trimmed here.
    const auto next = [&line] {
        const auto part = line.substr(0, line.find(':'));
        line.remove_prefix(std::min(part.size() + 1, line.size()));
        return part;
    };
    const auto name = next();
    Account account { .hash = std::string(next()) };
    const bool isPlain = std::all_of(account.hash.begin(), account.hash.end(), [](char byte) { return byte > ' ' && byte < '\x7f'; });
    if (isCut || !isUserName(name) || !account.hash.starts_with("$argon2id$") || !isPlain)
        throw std::invalid_argument("应写作“用户名:密码散列”，后面可以有“:字段=值”");
    while (!line.empty()) {
        const auto part = next();
        const std::size_t equals = std::min(part.find('='), part.size());
        setAccountField(account, part.substr(0, equals), unescaped(part.substr(std::min(equals + 1, part.size()))));
    }
    checkAccount(account);
    return { std::string(name), std::move(account) };
}

std::string accountJson(const std::string &name, const Account &account)
{
    std::string screens;
    for (const auto &[screen, rights] : account.screens)
        screens += (screens.empty() ? "" : ",") + jsonText(screen) + ":" + jsonText(rights);
    return "\"user\":" + jsonText(name) + ",\"employee\":{\"code\":" + jsonText(account.employeeCode)
        + ",\"name\":" + jsonText(account.employeeName) + "},\"site\":" + jsonText(account.site)
        + ",\"sites\":" + jsonList(account.allSites()) + ",\"screens\":{" + screens + "},\"databases\":" + jsonList(account.databases)
        + ",\"must_change_password\":" + (account.mustChange ? "true" : "false");
}

} // namespace server
