# The command and the examples: all in bin/, next to the libraries they find.

# playfile_add_program(TARGET FILE_NAME SOURCE...): a program, if there is a source.
function(playfile_add_program target file_name)
    if(NOT ARGN)
        return()
    endif()
    add_executable(${target} ${ARGN})
    playfile_link(${target} playfile playfile_host playfile_store)
    target_link_libraries(${target} PRIVATE Threads::Threads)
    add_dependencies(${target} playfile_plugins)
    set_target_properties(${target} PROPERTIES
        OUTPUT_NAME "${file_name}"
        INSTALL_RPATH "$ORIGIN/../lib")
endfunction()

# Shows how values of headers are searched for.
if(EXISTS "${CMAKE_SOURCE_DIR}/header/main.cpp")
    playfile_add_program(playfile_header_search playfile_header_search "${CMAKE_SOURCE_DIR}/header/main.cpp")
endif()

# All of the command but its main function is a library, so that tests reach its parts.
playfile_glob(sources tools/playfile/*.cpp)
list(FILTER sources EXCLUDE REGEX "/main\\.cpp$")
if(sources)
    find_package(CLI11 REQUIRED)
    find_package(nlohmann_json REQUIRED)
    find_package(PNG REQUIRED)
    add_library(playfile_tool STATIC ${sources})
    playfile_link(playfile_tool playfile playfile_host playfile_store playfile_remote)
    target_link_libraries(playfile_tool
        PUBLIC CLI11::CLI11 nlohmann_json::nlohmann_json PNG::PNG)
    playfile_add_program(playfile_cli playfile "${CMAKE_SOURCE_DIR}/tools/playfile/main.cpp")
    target_link_libraries(playfile_cli PRIVATE playfile_tool)
endif()

playfile_glob(sources examples/*.cpp)
set(playfile_examples "")
foreach(source IN LISTS sources)
    cmake_path(GET source STEM name)
    if(name MATCHES "_plugin$")
        playfile_add_plugin(example_${name} ${name} "${PLAYFILE_EXAMPLE_PLUGIN_DIR}" ${source})
    else()
        playfile_add_program(example_${name} example_${name} ${source})
    endif()
    list(APPEND playfile_examples example_${name})
endforeach()
