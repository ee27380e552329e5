# Cross-compiles for 64-bit Windows with Debian's g++-mingw-w64-x86-64-posix.
set(KELVARA_WINDOWS_TRIPLE x86_64-w64-mingw32)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
include(${CMAKE_CURRENT_LIST_DIR}/toolchain.cmake)
