#include "engine/sqlite/temporary_files.h"

#include "engine/sqlite/statement_budget.h"

#include <sqlite3.h>

#include <algorithm>
#include <new>

namespace engine::temporaryFiles {

namespace {

constexpr const char *fileSystemName = "kelvara";

sqlite3_vfs *base()
{
    static sqlite3_vfs *const found = sqlite3_vfs_find(nullptr);
    return found;
}

/// A temporary file; the default file system's own stands behind it.
struct File : sqlite3_file {
    sqlite3_int64 size;

    sqlite3_file *inner() { return reinterpret_cast<sqlite3_file *>(this + 1); }
    void setSize(sqlite3_int64 bytes)
    {
        if (StatementBudget *const budget = StatementBudget::current())
            budget->write(bytes - size);
        size = bytes;
    }
};

File &of(sqlite3_file *file) { return *static_cast<File *>(file); }
const sqlite3_io_methods *methodsOf(sqlite3_file *file) { return of(file).inner()->pMethods; }

int close(sqlite3_file *file)
{
    of(file).setSize(0);
    return methodsOf(file)->xClose(of(file).inner());
}

int read(sqlite3_file *file, void *to, int size, sqlite3_int64 offset)
{
    const StatementBudget *const budget = StatementBudget::current();
    if (budget && budget->mustStop())
        return SQLITE_INTERRUPT;
    return methodsOf(file)->xRead(of(file).inner(), to, size, offset);
}

int write(sqlite3_file *file, const void *from, int size, sqlite3_int64 offset)
{
    const sqlite3_int64 end = std::max(of(file).size, offset + size);
    StatementBudget *const budget = StatementBudget::current();
    if (budget && !budget->mayWrite(end - of(file).size))
        return SQLITE_FULL;
    const int result = methodsOf(file)->xWrite(of(file).inner(), from, size, offset);
    if (result == SQLITE_OK)
        of(file).setSize(end);
    return result;
}

int truncate(sqlite3_file *file, sqlite3_int64 size)
{
    of(file).setSize(std::min(of(file).size, size));
    return methodsOf(file)->xTruncate(of(file).inner(), size);
}

int sync(sqlite3_file *file, int flags) { return methodsOf(file)->xSync(of(file).inner(), flags); }
int fileSize(sqlite3_file *file, sqlite3_int64 *size) { return methodsOf(file)->xFileSize(of(file).inner(), size); }
int lock(sqlite3_file *file, int level) { return methodsOf(file)->xLock(of(file).inner(), level); }
int unlock(sqlite3_file *file, int level) { return methodsOf(file)->xUnlock(of(file).inner(), level); }
int isReserved(sqlite3_file *file, int *out) { return methodsOf(file)->xCheckReservedLock(of(file).inner(), out); }
int control(sqlite3_file *file, int operation, void *argument)
{
    return methodsOf(file)->xFileControl(of(file).inner(), operation, argument);
}
int sectorSize(sqlite3_file *file) { return methodsOf(file)->xSectorSize(of(file).inner()); }
int characteristics(sqlite3_file *file) { return methodsOf(file)->xDeviceCharacteristics(of(file).inner()); }

/// Version 1: no temporary file is shared or mapped.
constexpr sqlite3_io_methods boundedMethods { 1, close, read, write, truncate, sync, fileSize, lock, unlock, isReserved, control,
    sectorSize, characteristics, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr };

int open(sqlite3_vfs *, const char *name, sqlite3_file *file, int flags, int *outFlags)
{
    if (!(flags & SQLITE_OPEN_DELETEONCLOSE))
        return base()->xOpen(base(), name, file, flags, outFlags);
    File *const bounded = new (file) File { {}, 0 };
    const int result = base()->xOpen(base(), name, bounded->inner(), flags, outFlags);
    // Without methods SQLite does not close it.
    if (bounded->inner()->pMethods)
        bounded->pMethods = &boundedMethods;
    return result;
}

} // namespace

const char *registerFileSystem()
{
    static sqlite3_vfs bounded = *base();
    bounded.szOsFile += int(sizeof(File));
    bounded.zName = fileSystemName;
    bounded.pNext = nullptr;
    bounded.xOpen = open;
    sqlite3_vfs_register(&bounded, 0);
    return fileSystemName;
}

} // namespace engine::temporaryFiles
