#include "bench/resident_memory.h"

#ifdef __linux__
#include <fstream>
#include <malloc.h>
#include <unistd.h>

std::int64_t residentBytes()
{
    malloc_trim(0);
    std::int64_t total = 0;
    std::int64_t resident = 0;
    std::ifstream("/proc/self/statm") >> total >> resident;
    return resident * sysconf(_SC_PAGESIZE);
}
#else
std::int64_t residentBytes() { return 0; }
#endif
