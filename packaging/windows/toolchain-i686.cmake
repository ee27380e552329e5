# Cross-compiles for 32-bit Windows with Debian's g++-mingw-w64-i686-posix.
set(KELVARA_WINDOWS_TRIPLE i686-w64-mingw32)
set(CMAKE_SYSTEM_PROCESSOR i686)
include(${CMAKE_CURRENT_LIST_DIR}/toolchain.cmake)
