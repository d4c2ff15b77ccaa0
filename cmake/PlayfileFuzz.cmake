# Targets that take any bytes, with the inputs of each in tests/fuzz/corpus/<name>. Tests run the inputs;
# built with the preset fuzz, a target looks for more by itself.

foreach(name sav_parse sav_write space_document)
    set(target fuzz_${name})
    add_executable(${target} "tests/fuzz/${name}.cpp")
    playfile_link(${target} playfile playfile_host)
    if(name STREQUAL "space_document")
        playfile_link(${target} playfile_remote)
    endif()
    set_target_properties(${target} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/tests")
    if(PLAYFILE_FUZZ)
        target_link_options(${target} PRIVATE -fsanitize=fuzzer)
    else()
        target_sources(${target} PRIVATE tests/fuzz/replay.cpp)
        playfile_test_environment(environment OFF)
        add_test(NAME fuzz/${name} COMMAND ${target} "${CMAKE_SOURCE_DIR}/tests/fuzz/corpus/${name}")
        set_tests_properties(fuzz/${name} PROPERTIES
            LABELS unit TIMEOUT ${PLAYFILE_UNIT_TIMEOUT} ENVIRONMENT "${environment}")
    endif()
endforeach()
