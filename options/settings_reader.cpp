#include "options/settings_reader.h"

#include "options/text.h"

#include <algorithm>
#include <utility>

namespace options {

std::vector<std::string> listOf(std::string_view text)
{
    std::vector<std::string> items;
    while (!text.empty())
        if (const auto item = nextPart(text, ','); !item.empty())
            items.emplace_back(item);
    return items;
}

SettingsReader::SettingsReader(std::string name)
    : m_name(std::move(name))
{
}

void SettingsReader::readLines(std::string_view text)
{
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    if (text.starts_with(byteOrderMark))
        text.remove_prefix(byteOrderMark.size());
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        ++m_line;
        readLine(trimmed(text.substr(0, end)));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
}

void SettingsReader::readLine(std::string_view line)
{
    if (line.empty() || line.front() == '#')
        return;
    if (line.front() == '[')
        return beginSection(line);
    if (takeOther(line))
        return;
    const std::size_t equals = line.find('=');
    if (equals == std::string_view::npos)
        fail("不是" + std::string(forms()) + "，请改正或在行首加 #");
    setKey(trimmed(line.substr(0, equals)), trimmed(line.substr(equals + 1)));
}

void SettingsReader::beginSection(std::string_view) { fail("这个文件没有小节，请删去这一行"); }
bool SettingsReader::takeOther(std::string_view) { return false; }

void SettingsReader::setKey(std::string_view key, std::string_view value)
{
    // A line that is no key at all may be an address with a password.
    const bool isPlain = key.find_first_of(":/@ ") == key.npos;
    const std::string quoted = isPlain ? "键“" + std::string(key) + "”" : "等号前面的键";
    try {
        if (value.empty())
            fail(quoted + "没有值，请在等号后面写上");
        if (m_keys.contains(key) && !mayRepeat(key))
            fail(quoted + "写了两次，请删去一处");
        if (!take(key, value))
            fail(quoted + std::string(unknown()) + "，请检查拼写和位置");
    } catch (const Unfit &unfit) {
        fail(quoted + "的值“" + std::string(value) + "”不能用，应是" + unfit.wanted);
    } catch (const Secret &secret) {
        fail(quoted + "的值不能用，应写作 " + secret.wanted);
    }
    m_keys.emplace(key);
}

std::string SettingsReader::place() const { return "配置文件 " + m_name + " 第 " + std::to_string(m_line) + " 行"; }

void SettingsReader::fail(const std::string &reason) const { throw SettingsError(place() + "：" + reason); }

} // namespace options
