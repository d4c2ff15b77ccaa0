# Language, warnings, sanitizers, and the shape of the build tree.

option(PLAYFILE_BUILD_TESTS "Build the tests" ON)
option(PLAYFILE_BUILD_PROGRAMS "Build the command and the examples" ON)
option(PLAYFILE_BUILD_BENCHES "Build the benches, with the other programs" ON)
option(PLAYFILE_DEBUG_LOCKS "Give every lock a rank and assert the order" OFF)
option(PLAYFILE_THREAD_SAFETY "Clang's thread-safety analysis, findings are errors" OFF)
option(PLAYFILE_FUZZ "Build targets that look for inputs by themselves; for Clang" OFF)
set(PLAYFILE_SANITIZE "" CACHE STRING "Sanitizers to build with, as -fsanitize takes them")

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

# The build tree and the installed tree have the same shape: a program finds its libraries in
# ../lib and its plug-ins in ../lib/playfile/plugins, wherever the tree is put.
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/lib")
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/lib")
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)
set(PLAYFILE_PLUGIN_DIR "${CMAKE_BINARY_DIR}/lib/playfile/plugins")
set(PLAYFILE_EXAMPLE_PLUGIN_DIR "${CMAKE_BINARY_DIR}/examples/plugins")

find_package(Threads REQUIRED)
find_package(PkgConfig REQUIRED)

# ccache, with paths taken relative to the source tree, so that several checkouts share results.
find_program(PLAYFILE_CCACHE ccache)
if(PLAYFILE_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    set(CMAKE_CXX_COMPILER_LAUNCHER
        "${CMAKE_COMMAND}" -E env "CCACHE_BASEDIR=${CMAKE_SOURCE_DIR}" CCACHE_NOHASHDIR=1
        "${PLAYFILE_CCACHE}")
endif()

add_library(playfile_options INTERFACE)
target_include_directories(playfile_options INTERFACE "${CMAKE_SOURCE_DIR}")
target_compile_options(playfile_options INTERFACE
    -Wall -Wextra -Wpedantic -Werror
    -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-align -Wcast-qual -Wextra-semi
    -Wimplicit-fallthrough -Wformat=2 -Wundef -Wvla
    # Macros of C headers may be compound literals of C.
    $<$<CXX_COMPILER_ID:Clang>:-Wno-c99-extensions>)

# __FILE__ is the path from the root of the sources, in messages and logs of every build.
file(RELATIVE_PATH playfile_source_from_build "${CMAKE_BINARY_DIR}" "${CMAKE_SOURCE_DIR}")
target_compile_options(playfile_options INTERFACE
    "-fmacro-prefix-map=${CMAKE_SOURCE_DIR}/="
    "-fmacro-prefix-map=${playfile_source_from_build}=")

if(PLAYFILE_DEBUG_LOCKS)
    target_compile_definitions(playfile_options INTERFACE PLAYFILE_DEBUG_LOCKS=1)
endif()

if(PLAYFILE_THREAD_SAFETY)
    target_compile_options(playfile_options INTERFACE -Wthread-safety)
endif()

if(PLAYFILE_SANITIZE)
    target_compile_definitions(playfile_options INTERFACE PLAYFILE_SANITIZED=1)
    # The sanitizers' own code makes g++ see uninitialised values where there are none.
    target_compile_options(playfile_options INTERFACE
        "-fsanitize=${PLAYFILE_SANITIZE}" -fno-sanitize-recover=all
        $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
    target_link_options(playfile_options INTERFACE "-fsanitize=${PLAYFILE_SANITIZE}")
else()
    target_link_options(playfile_options INTERFACE
        "$<$<NOT:$<STREQUAL:$<TARGET_PROPERTY:TYPE>,EXECUTABLE>>:LINKER:--no-undefined>")
endif()
