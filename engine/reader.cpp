#include "engine/reader.h"

#include "packet/utf8.h"

#include <algorithm>

namespace engine {

namespace {

constexpr std::size_t longestValue = 400; ///< bytes
constexpr std::string_view siteName = "网点名称";

bool isControl(char byte) { return (byte >= 0 && byte < ' ') || byte == '\x7f'; }

} // namespace

Reader::Reader(const std::vector<std::string> &sites, std::string_view site, std::string_view employee)
    : m_siteCount(sites.size())
{
    for (std::size_t number = 0; number < sites.size(); ++number) {
        if (number % sitesTogether == 0)
            m_sites.emplace_back();
        else
            m_sites.back() += ',';
        append(m_sites.back(), sites[number], siteName);
    }
    if (m_sites.empty())
        m_sites.emplace_back("NULL");
    append(m_site, site, siteName);
    append(m_employee, employee, "员工编号");
}

void Reader::append(std::string &out, std::string_view value, std::string_view what)
{
    if (value.size() > longestValue)
        m_fault = "账号的" + std::string(what) + "超过 400 字节，不能用来限定数据范围，请联系管理员";
    else if (!packet::isUtf8(value) || std::ranges::any_of(value, isControl))
        m_fault = "账号的" + std::string(what) + "中有控制字符或不是 UTF-8 编码，请联系管理员";
    if (value.empty() || !m_fault.empty()) {
        out += "NULL";
        return;
    }
    out += '\'';
    for (std::size_t quote; (quote = value.find('\'')) != std::string_view::npos; value.remove_prefix(quote + 1))
        out.append(value.substr(0, quote + 1)) += '\'';
    out.append(value) += '\'';
}

} // namespace engine
