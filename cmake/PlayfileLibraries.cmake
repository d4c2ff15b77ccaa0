# The shared libraries: the host of the standard library and POSIX, the library itself, the hosts that
# keep their state in a store, and the host that reaches other machines. The last one is a library of
# its own, so that a program which stays on its machine doesn't load what speaks to others.

# playfile_add_library(NAME SOURCE...): a shared library, if there is a source.
function(playfile_add_library name)
    if(NOT ARGN)
        return()
    endif()
    add_library(${name} SHARED ${ARGN})
    target_link_libraries(${name} PRIVATE playfile_options)
    set_target_properties(${name} PROPERTIES
        VERSION ${PROJECT_VERSION}
        SOVERSION ${PROJECT_VERSION_MAJOR}
        INSTALL_RPATH "$ORIGIN")
endfunction()

playfile_glob(sources ole/os/*.cpp host/posix/*.cpp host/memory/*.cpp)
playfile_glob_below(toolkit_sources toolkit/*.cpp)
playfile_add_library(playfile_host ${sources} ${toolkit_sources})
if(TARGET playfile_host)
    target_link_libraries(playfile_host PRIVATE Threads::Threads ${CMAKE_DL_LIBS})
endif()

playfile_glob(sources
    ole/Ox/*.cpp playfile/*.cpp files/*.cpp video/*.cpp audio/*.cpp header/*.cpp material/*.cpp
    transfer/*.cpp)
list(FILTER sources EXCLUDE REGEX "/main\\.cpp$")
playfile_add_library(playfile ${sources})
if(TARGET playfile)
    target_compile_definitions(playfile PRIVATE PLAYFILE_VERSION_STRING="${PROJECT_VERSION}")
    if(TARGET playfile_host)
        target_link_libraries(playfile PUBLIC playfile_host)
    endif()
endif()

playfile_glob(sources host/sqlite/*.cpp host/sidecar/*.cpp)
playfile_add_library(playfile_store ${sources})
if(TARGET playfile_store)
    find_package(SQLite3 REQUIRED)
    playfile_link(playfile_store playfile playfile_host)
    target_link_libraries(playfile_store PRIVATE SQLite::SQLite3)
endif()

playfile_glob(sources host/remote/*.cpp)
playfile_add_library(playfile_remote ${sources})
if(TARGET playfile_remote)
    find_package(CURL REQUIRED)
    find_package(nlohmann_json REQUIRED)
    playfile_link(playfile_remote playfile_host)
    target_link_libraries(playfile_remote PRIVATE CURL::libcurl nlohmann_json::nlohmann_json)
endif()
