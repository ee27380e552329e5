# Builds with sanitizers: -DKELVARA_SANITIZE=address,undefined (preset asan) or thread (preset tsan).
# KELVARA_TEST_SECONDS and KELVARA_TEST_OPTIONS are the time and the environment that every test gets.

set(KELVARA_TEST_SECONDS 300)
if(KELVARA_SANITIZE)
    set(KELVARA_TEST_SECONDS 1800)
    set(KELVARA_TEST_OPTIONS
        "UBSAN_OPTIONS=halt_on_error=1:print_stacktrace=1"
        "LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/support/leaks_of_others.txt:print_suppressions=0"
        "TSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/support/races_of_others.txt:ignore_noninstrumented_modules=1")
    add_compile_options(-fsanitize=${KELVARA_SANITIZE} -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${KELVARA_SANITIZE})
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        # With the sanitizers g++ 12 takes an empty boost::optional for an uninitialised one.
        add_compile_options(-Wno-maybe-uninitialized)
    endif()
    if(KELVARA_SANITIZE STREQUAL "thread")
        # It does not see the fences of Boost.Asio; they stand beside locks that it sees.
        add_compile_options(-Wno-tsan)
    endif()
endif()
