# One program for each folder with *Test.cpp. Those below plugins_<plugin>/ hold the plug-in's engine,
# and those below real/ that of FFmpeg's.

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
    set(loads_ffmpeg OFF)
    if(top IN_LIST playfile_ffmpeg_folders)
        set(loads_ffmpeg ON)
    endif()
    playfile_test_environment(environment ${loads_ffmpeg})

    set(properties LABELS ${label} TIMEOUT ${timeout})
    if(environment)
        list(APPEND properties ENVIRONMENT "${environment}")
    endif()
    if(top IN_LIST playfile_media_folders)
        list(APPEND properties FIXTURES_REQUIRED test_media)
    endif()

    set(target test_${name})
    add_executable(${target} ${ARGN})
    target_link_libraries(${target} PRIVATE playfile_test_support)
    set_target_properties(${target} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${PLAYFILE_TEST_DIR}")
    add_dependencies(${target} playfile_test_parts)
    if(top MATCHES "^(tools|real)$" AND TARGET playfile_tool)
        target_link_libraries(${target} PRIVATE playfile_tool)
    endif()
    if(top MATCHES "^plugins_(.+)$")
        playfile_link(${target} playfile_${CMAKE_MATCH_1}_engine)
    elseif(top MATCHES "^(contract|host_remote)$")
        playfile_link(${target} playfile_remote)
    elseif(top STREQUAL "soak")
        target_link_libraries(${target} PRIVATE playfile_soak_parts)
    elseif(top STREQUAL "real")
        playfile_link(${target} playfile_ffmpeg_engine)
    endif()
    gtest_discover_tests(${target}
        TEST_PREFIX "${folder}/"
        DISCOVERY_MODE PRE_TEST
        DISCOVERY_TIMEOUT 60
        PROPERTIES ${properties})
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
    if(folder STREQUAL "plugins")
        list(FILTER sources INCLUDE REGEX "Test\\.cpp$")
    endif()
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
