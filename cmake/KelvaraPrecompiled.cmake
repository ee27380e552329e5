# Headers that many targets read alike are compiled once for all of them; a build of everything takes well over a third less for it.
option(KELVARA_PRECOMPILE "Compile common headers once" ON)

# kelvara_precompiled(target name links...): a target that has cmake/precompiled/<name>.h compiled for those that use it.
function(kelvara_precompiled target name)
    set(empty ${PROJECT_BINARY_DIR}/${target}.cpp)
    file(CONFIGURE OUTPUT ${empty} CONTENT "")
    add_library(${target} OBJECT ${empty})
    target_link_libraries(${target} PRIVATE ${ARGN})
    target_precompile_headers(${target} PRIVATE ${PROJECT_SOURCE_DIR}/cmake/precompiled/${name}.h)
endfunction()

if(KELVARA_PRECOMPILE)
    kelvara_precompiled(precompiled_qt qt Qt6::Widgets)
    kelvara_precompiled(precompiled_qt_hidden qt Qt6::Widgets)
    kelvara_hide(precompiled_qt_hidden)
    if(BUILD_TESTING)
        kelvara_precompiled(precompiled_test test GTest::gtest GTest::gmock)
        kelvara_precompiled(precompiled_qt_test qt_test Qt6::Widgets GTest::gtest GTest::gmock)
    endif()
endif()

# The target reads what `precompiled` has compiled; both must be compiled with the same options.
function(kelvara_use_precompiled target precompiled)
    if(KELVARA_PRECOMPILE)
        target_precompile_headers(${target} REUSE_FROM ${precompiled})
    endif()
endfunction()
