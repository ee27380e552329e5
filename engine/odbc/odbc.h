#pragma once

// The headers of the driver manager; those of Windows need the system's own before them.
#ifdef _WIN32
#include <windows.h>
#endif

#include <sql.h>
#include <sqlext.h>
