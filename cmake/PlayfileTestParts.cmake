# What tests are made of: support code and fakes, plug-ins and programs of their own.

playfile_glob_below(sources tests/support/*.cpp tests/fakes/*.cpp)
if(sources)
    add_library(playfile_test_support STATIC ${sources})
    set(scope PUBLIC)
else()
    add_library(playfile_test_support INTERFACE)
    set(scope INTERFACE)
endif()
target_link_libraries(playfile_test_support ${scope}
    playfile_options GTest::gtest GTest::gmock Threads::Threads)
foreach(library playfile playfile_host playfile_store)
    if(TARGET ${library})
        target_link_libraries(playfile_test_support ${scope} ${library})
    endif()
endforeach()
# Tests look into the stores with their own eyes.
if(TARGET playfile_store)
    target_link_libraries(playfile_test_support ${scope} SQLite::SQLite3)
endif()
target_compile_definitions(playfile_test_support ${scope}
    PLAYFILE_TEST_PROGRAM_DIR="${PLAYFILE_TEST_DIR}/programs"
    PLAYFILE_TEST_PLUGIN_DIR="${PLAYFILE_TEST_DIR}/plugins"
    PLAYFILE_TEST_MEDIA_DIR="${PLAYFILE_TEST_MEDIA_DIR}"
    PLAYFILE_BUILD_PLUGIN_DIR="${PLAYFILE_PLUGIN_DIR}"
    PLAYFILE_CLI="${CMAKE_BINARY_DIR}/bin/playfile"
    PLAYFILE_SOAK="${CMAKE_BINARY_DIR}/bin/playfile_soak"
    PLAYFILE_HEADER_SEARCH="${CMAKE_BINARY_DIR}/bin/playfile_header_search")

# All that a test may load or start.
add_custom_target(playfile_test_parts)
add_dependencies(playfile_test_parts playfile_plugins)
foreach(program playfile_cli playfile_soak playfile_header_search)
    if(TARGET ${program})
        add_dependencies(playfile_test_parts ${program})
    endif()
endforeach()

# Plug-ins that only tests load.
playfile_glob(sources tests/plugins/*.cpp)
foreach(source IN LISTS sources)
    cmake_path(GET source STEM name)
    if(NOT name MATCHES "Test$")
        playfile_add_plugin(test_plugin_${name} ${name} "${PLAYFILE_TEST_DIR}/plugins" ${source})
        add_dependencies(playfile_test_parts test_plugin_${name})
    endif()
endforeach()

# Programs that tests start, watch and kill.
playfile_glob_below(sources tests/programs/*.cpp tests/*/programs/*.cpp)
foreach(source IN LISTS sources)
    cmake_path(GET source STEM name)
    add_executable(prog_${name} ${source})
    target_link_libraries(prog_${name} PRIVATE playfile_test_support)
    set_target_properties(prog_${name} PROPERTIES
        RUNTIME_OUTPUT_DIRECTORY "${PLAYFILE_TEST_DIR}/programs")
    add_dependencies(prog_${name} playfile_plugins)
    add_dependencies(playfile_test_parts prog_${name})
endforeach()
