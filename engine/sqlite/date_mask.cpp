#include "engine/sqlite/date_mask.h"

#include "engine/gate/gate.h"
#include "engine/sqlite/function_support.h"

#include <algorithm>
#include <array>
#include <chrono>

namespace engine::functions {

namespace {

enum Part : std::uint8_t { Year, ShortYear, Month, Day, Hour24, Hour12, Minute, Second, Meridian, Literal };

struct Element {
    Part part;
    std::string_view text; ///< of a literal
    int digits = 2;
};

constexpr std::pair<std::string_view, Part> names[] = {
    { "YYYY", Year },
    { "YY", ShortYear },
    { "MM", Month },
    { "DD", Day },
    { "HH24", Hour24 },
    { "HH12", Hour12 },
    { "HH", Hour12 },
    { "MI", Minute },
    { "SS", Second },
    { "AM", Meridian },
    { "PM", Meridian },
};

bool isDigit(char character) { return character >= '0' && character <= '9'; }
bool isPunctuation(char character) { return std::string_view(" -/,.;:").find(character) != std::string_view::npos; }

/// Cuts the elements of a mask off one by one.
class Mask {
public:
    explicit Mask(std::string_view mask)
        : m_text(mask)
        , m_upper(gate::upperCase(mask))
    {
    }

    bool atEnd() const { return m_position == m_text.size(); }
    Element next()
    {
        const std::string_view rest = std::string_view(m_upper).substr(m_position);
        for (const auto &[name, part] : names) {
            if (!rest.starts_with(name))
                continue;
            m_position += name.size();
            return { part, {}, part == Year ? 4 : 2 };
        }
        if (rest.front() == '"')
            return quoted(rest.find('"', 1));
        if (!isPunctuation(rest.front()))
            throw OracleError("ORA-01821: 日期格式无法识别");
        return { Literal, m_text.substr(m_position++, 1) };
    }

private:
    Element quoted(std::size_t end)
    {
        if (end == std::string_view::npos)
            throw OracleError("ORA-01861: 文字与格式字符串不匹配");
        const std::string_view text = m_text.substr(m_position + 1, end - 1);
        m_position += end + 1;
        return { Literal, text };
    }

    std::string_view m_text;
    std::string m_upper;
    std::size_t m_position = 0;
};

struct Bounds {
    int lowest;
    int highest;
    const char *error;
};

constexpr Bounds boundsOf(Part part)
{
    switch (part) {
    case Month:
        return { 1, 12, "ORA-01843: 无效的月份" };
    case Day:
        return { 1, 31, "ORA-01847: 月份中日的值必须介于 1 和当月最后一日之间" };
    case Hour24:
        return { 0, 23, "ORA-01850: 小时值必须介于 0 和 23 之间" };
    case Hour12:
        return { 1, 12, "ORA-01849: 小时值必须介于 1 和 12 之间" };
    case Minute:
        return { 0, 59, "ORA-01851: 分钟值必须介于 0 和 59 之间" };
    case Second:
        return { 0, 59, "ORA-01852: 秒值必须介于 0 和 59 之间" };
    case Year:
        return { 1, 9999, "ORA-01841: (全) 年度值必须介于 1 和 9999 之间" };
    default:
        return { 0, 99, "ORA-01841: (全) 年度值必须介于 1 和 9999 之间" };
    }
}

class Reader {
public:
    explicit Reader(std::string_view text)
        : m_rest(text)
    {
    }

    bool atEnd() const { return m_rest.empty(); }
    /// One punctuation mark may stand for another, or be left out before a digit.
    void skip(const Element &literal)
    {
        if (m_rest.starts_with(literal.text))
            return m_rest.remove_prefix(literal.text.size());
        const bool mark = literal.text.size() == 1 && isPunctuation(literal.text.front());
        if (mark && isPunctuation(m_rest.front()))
            return m_rest.remove_prefix(1);
        if (!mark || !isDigit(m_rest.front()))
            throw OracleError("ORA-01861: 文字与格式字符串不匹配");
    }
    int number(const Element &element)
    {
        int value = 0;
        int digits = 0;
        for (; digits < element.digits && !m_rest.empty() && isDigit(m_rest.front()); ++digits) {
            value = value * 10 + (m_rest.front() - '0');
            m_rest.remove_prefix(1);
        }
        if (digits == 0)
            throw OracleError("ORA-01858: 在要求输入数字处找到非数字字符");
        const Bounds bounds = boundsOf(element.part);
        if (value < bounds.lowest || value > bounds.highest)
            throw OracleError(bounds.error);
        return value;
    }
    bool afternoon()
    {
        const std::string mark = gate::upperCase(m_rest.substr(0, 2));
        if (mark != "AM" && mark != "PM")
            throw OracleError("ORA-01855: 要求 AM/A.M. 或 PM/P.M.");
        m_rest.remove_prefix(2);
        return mark == "PM";
    }

private:
    std::string_view m_rest;
};

using Parts = std::array<int, Literal>;

std::int64_t secondsOf(const Parts &parts)
{
    using namespace std::chrono;
    const year_month_day date { std::chrono::year(parts[Year]), std::chrono::month(unsigned(parts[Month])),
        std::chrono::day(unsigned(parts[Day])) };
    if (!date.ok())
        throw OracleError("ORA-01839: 指定月份的日期无效");
    return std::int64_t(sys_days(date).time_since_epoch().count()) * 86400 + (parts[Hour24] * 60 + parts[Minute]) * 60 + parts[Second];
}

Parts partsOf(std::int64_t seconds)
{
    using namespace std::chrono;
    const auto day = floor<days>(sys_seconds(std::chrono::seconds(seconds)));
    const year_month_day date(day);
    const int time = int(seconds - std::int64_t(day.time_since_epoch().count()) * 86400);
    const int hour = time / 3600;
    Parts parts {};
    parts[Year] = int(date.year());
    parts[ShortYear] = parts[Year] % 100;
    parts[Month] = int(unsigned(date.month()));
    parts[Day] = int(unsigned(date.day()));
    parts[Hour24] = hour;
    parts[Hour12] = hour % 12 == 0 ? 12 : hour % 12;
    parts[Minute] = time / 60 % 60;
    parts[Second] = time % 60;
    parts[Meridian] = hour >= 12;
    return parts;
}

} // namespace

std::string formatDate(std::int64_t seconds, std::string_view mask)
{
    const Parts parts = partsOf(seconds);
    std::string out;
    for (Mask elements(mask); !elements.atEnd();) {
        const Element element = elements.next();
        if (element.part == Literal) {
            out += element.text;
        } else if (element.part == Meridian) {
            out += parts[Meridian] ? "PM" : "AM";
        } else {
            const std::string digits = std::to_string(parts[element.part]);
            out.append(std::size_t(element.digits) - std::min(digits.size(), std::size_t(element.digits)), '0');
            out += digits;
        }
        checkMadeText(out.size());
    }
    return out;
}

std::int64_t readDate(std::string_view text, std::string_view mask)
{
    Parts parts {};
    parts[Year] = 1970;
    parts[Month] = 1;
    parts[Day] = 1;
    bool hasDay = false;
    Reader reader(text);
    Mask elements(mask);
    while (!elements.atEnd() && !reader.atEnd()) {
        const Element element = elements.next();
        if (element.part == Literal)
            reader.skip(element);
        else if (element.part == Meridian)
            parts[Meridian] = reader.afternoon();
        else
            parts[element.part] = reader.number(element);
        hasDay = hasDay || element.part == Day;
        if (element.part == ShortYear)
            parts[Year] = 2000 + parts[ShortYear];
        if (element.part == Hour12)
            parts[Hour24] = parts[Hour12] % 12;
    }
    if (!reader.atEnd())
        throw OracleError("ORA-01830: 日期格式图片在转换整个输入字符串之前结束");
    while (!elements.atEnd()) {
        if (const Part missing = elements.next().part; missing <= Day)
            throw OracleError("ORA-01840: 输入值对于日期格式不够长");
    }
    if (parts[Meridian] && parts[Hour24] < 12)
        parts[Hour24] += 12;
    return secondsOf(parts);
}

} // namespace engine::functions
