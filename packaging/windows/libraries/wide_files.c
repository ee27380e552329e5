#define KELVARA_WIDE_FILES_C
#include "wide_files.h"

#include <errno.h>
#include <string.h>
#include <wchar.h>
#include <windows.h>

/* Where the system has no longer names otherwise, every full name gets the prefix that lifts the limit. */
static const wchar_t prefix[] = L"\\\\?\\";

/* The name as the system takes it, to be freed; null when there is no memory. */
static wchar_t *wide_name(const char *name)
{
    const int size = MultiByteToWideChar(CP_UTF8, 0, name, -1, NULL, 0);
    const size_t start = name[0] && name[1] == ':' ? wcslen(prefix) : 0;
    wchar_t *wide = malloc((start + (size_t)size) * sizeof(wchar_t));
    wchar_t *letter;
    if (!wide)
        return NULL;
    wmemcpy(wide, prefix, start);
    MultiByteToWideChar(CP_UTF8, 0, name, -1, wide + start, size);
    for (letter = wide; *letter; ++letter) {
        if (*letter == L'/')
            *letter = L'\\';
    }
    return wide;
}

FILE *wide_fopen(const char *name, const char *mode)
{
    wchar_t wide_mode[8] = { 0 };
    wchar_t *wide = wide_name(name);
    FILE *file = NULL;
    MultiByteToWideChar(CP_UTF8, 0, mode, -1, wide_mode, 7);
    if (wide)
        file = _wfopen(wide, wide_mode);
    free(wide);
    return file;
}

int wide_open(const char *name, int flags, int mode)
{
    wchar_t *wide = wide_name(name);
    const int file = wide ? _wopen(wide, flags, mode) : -1;
    free(wide);
    return file;
}

int wide_stat(const char *name, struct stat *result)
{
    wchar_t *wide = wide_name(name);
    const DWORD found = wide ? GetFileAttributesW(wide) : INVALID_FILE_ATTRIBUTES;
    free(wide);
    memset(result, 0, sizeof *result);
    if (found == INVALID_FILE_ATTRIBUTES) {
        errno = ENOENT;
        return -1;
    }
    result->st_mode = found & FILE_ATTRIBUTE_DIRECTORY ? S_IFDIR : S_IFREG;
    return 0;
}
