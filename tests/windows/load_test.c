/* Loads Kelvara1, asks it for a screen that it does not have, and unloads it, many times: it refuses in words, the stack is as it was
   before each call, and nothing is left of the library. */
#include "load_host.h"

#include <stdio.h>
#include <string.h>
#include <windows.h>

typedef void(__stdcall *exec_function)(void *application, void *screen, void *const *connections, int highest, const char *form);

static const int times = 100;

static void *stack_pointer(void)
{
#ifdef __i386__
    void *place;
    __asm__ volatile("movl %%esp, %0" : "=r"(place));
    return place;
#else
    return NULL; /* 64-bit Windows has one convention alone */
#endif
}

/* Null, or what went wrong. */
static const char *load_and_refuse(const wchar_t *library)
{
    static const char refusal[] = "\xe6\xad\xa4\xe7\xaa\x97\xe4\xbd\x93\xe4\xb8\x8d\xe5\xad\x98\xe5\x9c\xa8"; /* 此窗体不存在 */
    void *connection;
    void *before;
    exec_function exec;
    if (!host_load())
        return "the library cannot be loaded";
    exec = (exec_function)(void *)GetProcAddress(GetModuleHandleW(library), "exec");
    if (!exec)
        return "exec is not exported under its bare name";
    connection = host_connection();
    before = stack_pointer();
    exec(host_application(), host_screen(), &connection, 0, "frm_Unknown111");
    if (stack_pointer() != before)
        return "exec has another calling convention";
    if (!strstr(host_last_message(), refusal))
        return "the unknown screen was not refused";
    host_unload();
    return GetModuleHandleW(library) ? "the library is still loaded" : NULL;
}

int main(int argc, char **argv)
{
    int round;
    host_begin(argc, argv);
    for (round = 1; round <= times; ++round) {
        const char *fault = load_and_refuse(L"Kelvara1.dll");
        if (fault) {
            printf("round %d: %s\n", round, fault);
            return 1;
        }
    }
    printf("loaded, refused and unloaded %d times\n", times);
    return 0;
}
