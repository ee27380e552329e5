#include "options/console.h"

#ifdef _WIN32
#include <windows.h>

#include <cstdio>
#include <fcntl.h>
#include <io.h>
#include <shellapi.h>
#endif

namespace options {

#ifdef _WIN32

namespace {

bool isOpen(DWORD stream)
{
    const HANDLE handle = GetStdHandle(stream);
    return handle && handle != INVALID_HANDLE_VALUE;
}

std::string utf8Of(const wchar_t *text)
{
    const int size = WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr);
    std::string utf8(std::size_t(size), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text, -1, utf8.data(), size, nullptr, nullptr);
    utf8.pop_back();
    return utf8;
}

} // namespace

void useConsole()
{
    const bool hasOutput = isOpen(STD_OUTPUT_HANDLE);
    const bool hasErrors = isOpen(STD_ERROR_HANDLE);
    if ((!hasOutput || !hasErrors) && AttachConsole(ATTACH_PARENT_PROCESS)) {
        if (!hasOutput)
            (void)std::freopen("CONOUT$", "w", stdout);
        if (!hasErrors)
            (void)std::freopen("CONOUT$", "w", stderr);
    }
    SetConsoleOutputCP(CP_UTF8);
    for (std::FILE *stream : { stdin, stdout, stderr }) {
        if (_fileno(stream) >= 0)
            _setmode(_fileno(stream), _O_BINARY);
    }
}

std::vector<std::string> argumentsOf(int, char **)
{
    int count = 0;
    wchar_t **const wide = CommandLineToArgvW(GetCommandLineW(), &count);
    std::vector<std::string> arguments;
    for (int argument = 1; argument < count; ++argument)
        arguments.push_back(utf8Of(wide[argument]));
    LocalFree(wide);
    return arguments;
}

#else

void useConsole() { }
std::vector<std::string> argumentsOf(int argc, char **argv) { return { argv + 1, argv + argc }; }

#endif

} // namespace options
