# Tests: every folder below tests/ with *Test.cpp becomes one program, each test a process of its own.

include(GoogleTest)
find_package(GTest REQUIRED)

set(PLAYFILE_TEST_DIR "${CMAKE_BINARY_DIR}/tests")

# Labels of folders; every other folder bears "unit". A test of a labelled folder may take longer.
set(playfile_test_labels contract real stress crash lifetime install tools)
set(PLAYFILE_UNIT_TIMEOUT 60)
set(PLAYFILE_LONG_TIMEOUT 600)

playfile_glob_below(sources tests/support/*.cpp tests/fakes/*.cpp)
if(sources)
    add_library(playfile_test_support STATIC ${sources})
else()
    add_library(playfile_test_support INTERFACE)
endif()
get_target_property(type playfile_test_support TYPE)
set(scope PUBLIC)
if(type STREQUAL INTERFACE_LIBRARY)
    set(scope INTERFACE)
endif()
target_link_libraries(playfile_test_support ${scope}
    playfile_options GTest::gtest_main GTest::gmock Threads::Threads)
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
    PLAYFILE_BUILD_PLUGIN_DIR="${PLAYFILE_PLUGIN_DIR}"
    PLAYFILE_CLI="${CMAKE_BINARY_DIR}/bin/playfile")

# Plug-ins that only tests load.
playfile_glob(sources tests/plugins/*.cpp)
foreach(source IN LISTS sources)
    cmake_path(GET source STEM name)
    playfile_add_plugin(test_plugin_${name} ${name} "${PLAYFILE_TEST_DIR}/plugins" ${source})
    add_dependencies(playfile_plugins test_plugin_${name})
endforeach()

# Programs that tests start, watch and kill.
playfile_glob_below(sources tests/programs/*.cpp tests/*/programs/*.cpp)
set(playfile_test_programs "")
foreach(source IN LISTS sources)
    cmake_path(GET source STEM name)
    add_executable(prog_${name} ${source})
    target_link_libraries(prog_${name} PRIVATE playfile_test_support)
    add_dependencies(prog_${name} playfile_plugins)
    set_target_properties(prog_${name} PROPERTIES
        RUNTIME_OUTPUT_DIRECTORY "${PLAYFILE_TEST_DIR}/programs")
    list(APPEND playfile_test_programs prog_${name})
endforeach()

# playfile_add_test_folder(FOLDER SOURCE...): the program test_<folder>, FOLDER from tests/ on.
function(playfile_add_test_folder folder)
    string(REPLACE "/" "_" name "${folder}")
    string(REGEX MATCH "^[^/]*" top "${folder}")
    set(label unit)
    set(timeout ${PLAYFILE_UNIT_TIMEOUT})
    if(top IN_LIST playfile_test_labels)
        set(label ${top})
        set(timeout ${PLAYFILE_LONG_TIMEOUT})
    endif()

    set(target test_${name})
    add_executable(${target} ${ARGN})
    target_link_libraries(${target} PRIVATE playfile_test_support)
    set_target_properties(${target} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${PLAYFILE_TEST_DIR}")
    add_dependencies(${target} playfile_plugins ${playfile_test_programs})
    if(TARGET playfile_cli)
        add_dependencies(${target} playfile_cli)
    endif()
    if(top STREQUAL tools AND TARGET playfile_tool)
        target_link_libraries(${target} PRIVATE playfile_tool)
    endif()
    gtest_discover_tests(${target}
        TEST_PREFIX "${folder}/"
        DISCOVERY_MODE PRE_TEST
        DISCOVERY_TIMEOUT 60
        PROPERTIES LABELS ${label} TIMEOUT ${timeout})
endfunction()

playfile_glob_below(sources tests/*Test.cpp)
set(folders "")
foreach(source IN LISTS sources)
    cmake_path(GET source PARENT_PATH folder)
    cmake_path(RELATIVE_PATH folder BASE_DIRECTORY "${CMAKE_SOURCE_DIR}/tests")
    list(APPEND folders "${folder}")
endforeach()
list(REMOVE_DUPLICATES folders)
foreach(folder IN LISTS folders)
    playfile_glob(sources "tests/${folder}/*.cpp")
    playfile_add_test_folder("${folder}" ${sources})
endforeach()

if(TARGET test_examples)
    if(playfile_examples)
        add_dependencies(test_examples ${playfile_examples})
    endif()
    target_compile_definitions(test_examples PRIVATE
        PLAYFILE_BIN_DIR="${CMAKE_BINARY_DIR}/bin"
        PLAYFILE_EXAMPLE_PLUGIN_DIR="${PLAYFILE_EXAMPLE_PLUGIN_DIR}"
        PLAYFILE_SOURCE_DIR="${CMAKE_SOURCE_DIR}")
endif()
