# How every target of the project is made: one compiler policy, one output layout, levels checked at each link and include.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
# moc cannot parse <concepts> when it is the first standard header that it meets, so let it pass over it.
set(CMAKE_AUTOMOC_MOC_OPTIONS -D_GLIBCXX_CONCEPTS)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)
set(CMAKE_INSTALL_RPATH $ORIGIN)

find_program(KELVARA_CCACHE ccache)
if(KELVARA_CCACHE)
    # What it needs to keep results of files that read precompiled headers.
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime ${KELVARA_CCACHE})
endif()

if(WIN32)
    # Windows 10, without what its headers would define of our words; every text is UTF-16 there.
    add_compile_definitions(_WIN32_WINNT=0x0A00 NOMINMAX UNICODE WIN32_LEAN_AND_MEAN)
    set(CMAKE_SHARED_LIBRARY_PREFIX "")
endif()
add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    # g++ 12 warns of overlaps in its own "literal" + std::string at -O3 (its bug 105651).
    add_compile_options(-Wno-restrict)
endif()
if(KELVARA_ASSERTIONS)
    add_compile_options(-UNDEBUG)
endif()
include(cmake/KelvaraSanitizers.cmake)
if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 15)
    # clang 14 has coroutines, but does not say so in the way that libstdc++ and Boost 1.74 ask.
    add_compile_options(-D__cpp_impl_coroutine=201902 -DBOOST_ASIO_HAS_CO_AWAIT=1 -DBOOST_ASIO_HAS_STD_COROUTINE=1)
endif()
if(KELVARA_LIBFUZZER)
    add_compile_options(-fsanitize=fuzzer-no-link)
endif()
add_compile_definitions(QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_KEYWORDS QT_USE_QSTRINGBUILDER)

include(cmake/KelvaraLevels.cmake)

# kelvara_configure(target folder level [QT] SOURCES ... LINKS ...): sources are relative to `folder`; `level` is the folder on whose
# level the target stands.
function(kelvara_configure target folder level)
    cmake_parse_arguments(ARG "QT" "" "SOURCES;LINKS" ${ARGN})
    list(TRANSFORM ARG_SOURCES PREPEND ${PROJECT_SOURCE_DIR}/${folder}/ REGEX "^[^/]")
    target_include_directories(${target} PUBLIC ${PROJECT_SOURCE_DIR})
    target_sources(${target} PRIVATE ${ARG_SOURCES})
    kelvara_link(${target} ${level} ${ARG_LINKS})
    if(ARG_QT)
        set_target_properties(${target} PROPERTIES AUTOMOC ON)
    endif()
endfunction()

# The folder of the CMake file at work, from the top of the project.
macro(kelvara_this_folder folder)
    file(RELATIVE_PATH ${folder} ${PROJECT_SOURCE_DIR} ${CMAKE_CURRENT_SOURCE_DIR})
endmacro()

# kelvara_part(folder [OBJECTS] [HIDDEN] [QT] SOURCES ... LINKS ...): the part that is the folder, a library named like it with _ for
# /. OBJECTS for parts of a shared library, HIDDEN for those of a module that exports nothing of them.
function(kelvara_part folder)
    cmake_parse_arguments(PART "OBJECTS;HIDDEN" "" "" ${ARGN})
    string(REPLACE / _ target ${folder})
    if(PART_OBJECTS)
        add_library(${target} OBJECT)
    else()
        add_library(${target} STATIC)
    endif()
    kelvara_configure(${target} ${folder} ${folder} ${PART_UNPARSED_ARGUMENTS})
    kelvara_check_includes(${target} ${folder})
    set(precompiled precompiled_qt)
    if(PART_HIDDEN)
        kelvara_hide(${target})
        set(precompiled precompiled_qt_hidden)
    endif()
    if("QT" IN_LIST ARGN)
        kelvara_use_precompiled(${target} ${precompiled})
    endif()
endfunction()

# No symbol of the target can be seen from outside the library that it ends up in, and the library can be unloaded.
function(kelvara_hide target)
    set_target_properties(${target} PROPERTIES CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
    if(NOT WIN32 AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        target_compile_options(${target} PRIVATE -fno-gnu-unique)
    endif()
endfunction()

# What Windows shows of a file: its version and its description. `type` as in a version resource.
function(kelvara_describe target type description)
    if(WIN32)
        enable_language(RC)
        configure_file(${PROJECT_SOURCE_DIR}/packaging/windows/version.rc.in ${CMAKE_CURRENT_BINARY_DIR}/${target}.rc @ONLY)
        target_sources(${target} PRIVATE ${CMAKE_CURRENT_BINARY_DIR}/${target}.rc)
    endif()
endfunction()

# A library that is only ever loaded at run time, under its given name, and exports the symbols of its version script alone.
function(kelvara_module target exports)
    kelvara_this_folder(folder)
    add_library(${target} MODULE)
    kelvara_configure(${target} ${folder} programs ${ARGN})
    kelvara_hide(${target})
    set_target_properties(${target} PROPERTIES PREFIX "")
    if(WIN32)
        # There what the sources mark is exported, and nothing else; 32-bit names without the bytes of their parameters.
        target_link_options(${target} PRIVATE -Wl,--kill-at)
    else()
        target_link_options(${target} PRIVATE -Wl,--version-script=${exports})
        set_target_properties(${target} PROPERTIES LINK_DEPENDS ${exports})
    endif()
endfunction()

# A program stands above all parts, but for those of the tests and tools.
function(kelvara_program target)
    kelvara_this_folder(folder)
    set(level programs)
    if(folder MATCHES "^(tests|bench|tools)")
        set(level ${folder})
    endif()
    add_executable(${target})
    # Compiled like the libraries, so that it can use what was precompiled for them.
    set_target_properties(${target} PROPERTIES POSITION_INDEPENDENT_CODE OFF)
    target_compile_options(${target} PRIVATE ${CMAKE_CXX_COMPILE_OPTIONS_PIC})
    kelvara_configure(${target} ${folder} ${level} ${ARGN})
endfunction()

# One test program; ctest runs it off-screen.
function(kelvara_test target)
    kelvara_program(${target} ${ARGN})
    if("QT" IN_LIST ARGN)
        target_link_libraries(${target} PRIVATE Qt6::Widgets Qt6::Test)
        kelvara_use_precompiled(${target} precompiled_qt_test)
    else()
        kelvara_use_precompiled(${target} precompiled_test)
    endif()
    target_link_libraries(${target} PRIVATE GTest::gtest GTest::gmock)
    add_test(NAME ${target} COMMAND ${target})
    set_tests_properties(${target} PROPERTIES
        ENVIRONMENT "QT_QPA_PLATFORM=offscreen;LC_ALL=C.UTF-8;${KELVARA_TEST_OPTIONS}" TIMEOUT ${KELVARA_TEST_SECONDS})
endfunction()
