# The compiler of schemas runs on the machine that builds.
find_program(KELVARA_FLATC flatc REQUIRED)
add_executable(flatbuffers::flatc IMPORTED)
set_target_properties(flatbuffers::flatc PROPERTIES IMPORTED_LOCATION ${KELVARA_FLATC})
