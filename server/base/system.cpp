#include "server/base/system.h"

#include <chrono>
#include <ctime>
#include <iostream>
#include <stdexcept>

#ifdef _WIN32
#include <windows.h>
#else
#include <sys/resource.h>
#include <termios.h>
#include <unistd.h>
#endif

namespace server {

namespace {

/// Hides what is typed as long as it lives.
class QuietTerminal {
public:
#ifdef _WIN32
    QuietTerminal()
        : m_input(GetStdHandle(STD_INPUT_HANDLE))
    {
        m_isTerminal = GetConsoleMode(m_input, &m_before);
        SetConsoleMode(m_input, m_before & ~DWORD(ENABLE_ECHO_INPUT));
    }
    ~QuietTerminal() { SetConsoleMode(m_input, m_before); }
#else
    QuietTerminal()
    {
        m_isTerminal = tcgetattr(STDIN_FILENO, &m_before) == 0;
        termios quiet = m_before;
        quiet.c_lflag &= ~tcflag_t(ECHO);
        if (m_isTerminal)
            tcsetattr(STDIN_FILENO, TCSAFLUSH, &quiet);
    }
    ~QuietTerminal()
    {
        if (m_isTerminal)
            tcsetattr(STDIN_FILENO, TCSAFLUSH, &m_before);
    }
#endif
    QuietTerminal(const QuietTerminal &) = delete;
    bool isTerminal() const { return m_isTerminal; }

private:
#ifdef _WIN32
    HANDLE m_input;
    DWORD m_before = 0;
#else
    termios m_before {};
#endif
    bool m_isTerminal = false;
};

} // namespace

std::string askPassword(const std::string &prompt)
{
    const QuietTerminal terminal;
    if (!terminal.isTerminal())
        throw std::runtime_error("没有终端可以输入密码，请改用 --password-stdin");
    std::cerr << prompt << std::flush;
    std::string password;
    std::getline(std::cin, password);
    std::cerr << std::endl;
    return password;
}

std::int64_t secondsNow()
{
    return std::chrono::duration_cast<std::chrono::seconds>(std::chrono::system_clock::now().time_since_epoch()).count();
}

std::int64_t localSecondsNow() { return localSeconds(secondsNow()); }

std::int64_t utcSeconds(std::int64_t localSeconds)
{
    const std::chrono::sys_seconds moment { std::chrono::seconds(localSeconds) };
    const auto day = std::chrono::floor<std::chrono::days>(moment);
    const std::chrono::year_month_day date(day);
    const std::chrono::hh_mm_ss time(moment - day);
    std::tm local {};
    local.tm_year = int(date.year()) - 1900;
    local.tm_mon = int(unsigned(date.month())) - 1;
    local.tm_mday = int(unsigned(date.day()));
    local.tm_hour = int(time.hours().count());
    local.tm_min = int(time.minutes().count());
    local.tm_sec = int(time.seconds().count());
    local.tm_isdst = -1;
    return std::mktime(&local);
}

std::int64_t localSeconds(std::int64_t utcSeconds)
{
    const std::time_t now = utcSeconds;
    std::tm local {};
#ifdef _WIN32
    localtime_s(&local, &now);
#else
    localtime_r(&now, &local);
#endif
    const std::chrono::year_month_day date(
        std::chrono::year(local.tm_year + 1900), std::chrono::month(unsigned(local.tm_mon + 1)), std::chrono::day(unsigned(local.tm_mday)));
    return std::chrono::sys_days(date).time_since_epoch().count() * 86400LL + local.tm_hour * 3600 + local.tm_min * 60 + local.tm_sec;
}

void raiseFileLimit()
{
#ifndef _WIN32
    rlimit limit {};
    if (getrlimit(RLIMIT_NOFILE, &limit) != 0)
        return;
    limit.rlim_cur = limit.rlim_max;
    setrlimit(RLIMIT_NOFILE, &limit);
#endif
}

} // namespace server
