#pragma once

// The headers of the driver manager; those of Windows need the system's own before them. The narrow functions are meant where they
// are named.
#ifdef _WIN32
#include <windows.h>
#define SQL_NOUNICODEMAP
#endif

#include <sql.h>
#include <sqlext.h>
