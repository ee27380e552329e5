# Every library from elsewhere, found in one way. A program's options say where a cross compiler's copies are (CMAKE_PREFIX_PATH).

find_package(Threads REQUIRED)
find_package(SQLite3 REQUIRED)
if(KELVARA_POSTGRESQL)
    find_package(PostgreSQL REQUIRED)
endif()
find_package(ODBC REQUIRED)
find_package(OpenSSL 3.0 REQUIRED)
find_package(Boost 1.74 REQUIRED)
find_package(FlatBuffers REQUIRED)
find_package(nlohmann_json REQUIRED)
find_package(ZLIB REQUIRED)
find_package(Qt6 6.4 REQUIRED COMPONENTS Core Gui PrintSupport Widgets)
# Without it no password is remembered; there is none on Windows.
find_package(PkgConfig)
if(PkgConfig_FOUND AND NOT WIN32)
    pkg_check_modules(LIBSECRET libsecret-1)
endif()
if(BUILD_TESTING)
    find_package(GTest REQUIRED)
    find_package(Qt6 6.4 REQUIRED COMPONENTS Test)
endif()

# kelvara_library(name header library): the imported target kelvara::name of a library that brings no CMake package.
function(kelvara_library name header library)
    find_path(KELVARA_${name}_INCLUDE_DIR ${header} REQUIRED)
    find_library(KELVARA_${name}_LIBRARY ${library} REQUIRED)
    mark_as_advanced(KELVARA_${name}_INCLUDE_DIR KELVARA_${name}_LIBRARY)
    add_library(kelvara::${name} UNKNOWN IMPORTED GLOBAL)
    set_target_properties(kelvara::${name} PROPERTIES
        IMPORTED_LOCATION ${KELVARA_${name}_LIBRARY}
        INTERFACE_INCLUDE_DIRECTORIES ${KELVARA_${name}_INCLUDE_DIR})
endfunction()

if(WIN32)
    # What static libraries and headers need there.
    set_property(TARGET Boost::headers APPEND PROPERTY INTERFACE_LINK_LIBRARIES ws2_32 mswsock)
    set_property(TARGET OpenSSL::Crypto APPEND PROPERTY INTERFACE_LINK_LIBRARIES crypt32 ws2_32)
endif()

kelvara_library(argon2 argon2.h argon2)
kelvara_library(lz4 lz4frame.h lz4)
kelvara_library(xlsxwriter xlsxwriter.h xlsxwriter)
kelvara_library(xxhash xxhash.h xxhash)
kelvara_library(zint zint.h zint)
if(WIN32)
    set_property(TARGET kelvara::xlsxwriter APPEND PROPERTY INTERFACE_LINK_LIBRARIES ZLIB::ZLIB)
endif()
