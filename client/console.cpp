#include "client/console.h"

#ifdef _WIN32
#include <windows.h>

#include <cstdio>
#include <fcntl.h>
#include <io.h>
#endif

namespace client {

#ifdef _WIN32

namespace {

bool isOpen(DWORD stream)
{
    const HANDLE handle = GetStdHandle(stream);
    return handle && handle != INVALID_HANDLE_VALUE;
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

#else

void useConsole() { }

#endif

} // namespace client
