#include "demo/options.h"
#include "options/console.h"

#include <chrono>
#include <cstdio>
#include <exception>
#include <iostream>
#include <string>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

/// Says on the error stream what is being done, every few seconds, and only when it takes long.
class ProgressLine {
public:
    void operator()(std::string_view work, std::uint64_t done, std::uint64_t total)
    {
        const auto now = Clock::now();
        const bool isOften = total > 0 && now - m_last < std::chrono::seconds(5);
        if (isOften || now - m_start < std::chrono::seconds(3))
            return;
        m_last = now;
        std::cerr << work;
        if (total > 0)
            std::cerr << ' ' << done << " / " << total << "（" << done * 100 / total << "%）";
        std::cerr << std::endl;
    }

private:
    Clock::time_point m_start = Clock::now();
    Clock::time_point m_last = m_start;
};

/// The name of a file, or a URL without its user and password.
std::string withoutPassword(const std::string &path)
{
    const auto scheme = path.find("://");
    const auto user = path.find('@');
    return scheme == std::string::npos || user == std::string::npos ? path : path.substr(0, scheme + 3) + path.substr(user + 1);
}

} // namespace

int main(int argc, char **argv)
{
    try {
        options::useConsole();
        const std::vector<std::string> arguments = options::argumentsOf(argc, argv);
        const auto options = demo::readOptions(arguments, demo::localNow());
        if (options.wantsHelp) {
            std::cout << demo::helpText();
            return 0;
        }
        if (options.wantsVersion) {
            std::cout << "kelvara-demo " KELVARA_VERSION << std::endl;
            return 0;
        }
        demo::generate(options.settings, ProgressLine());
        std::cout << "已生成 " << options.settings.waybills << " 票运单：" << withoutPassword(options.settings.path) << std::endl;
        return 0;
    } catch (const std::exception &error) {
        std::cerr << "kelvara-demo：" << error.what() << std::endl;
        return 1;
    }
}
