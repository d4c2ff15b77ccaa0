# Sources are found by folder: a new file needs no change here.

# playfile_glob(OUT PATTERN...): source files that match, as of the last build.
function(playfile_glob out)
    list(TRANSFORM ARGN PREPEND "${CMAKE_SOURCE_DIR}/")
    file(GLOB found CONFIGURE_DEPENDS ${ARGN})
    set(${out} "${found}" PARENT_SCOPE)
endfunction()

# playfile_glob_below(OUT PATTERN...): the same, with all folders below.
function(playfile_glob_below out)
    list(TRANSFORM ARGN PREPEND "${CMAKE_SOURCE_DIR}/")
    file(GLOB_RECURSE found CONFIGURE_DEPENDS ${ARGN})
    set(${out} "${found}" PARENT_SCOPE)
endfunction()

# playfile_link(TARGET LIBRARY...): links those of our libraries that have sources.
function(playfile_link target)
    target_link_libraries(${target} PRIVATE playfile_options)
    foreach(library IN LISTS ARGN)
        if(TARGET ${library})
            target_link_libraries(${target} PRIVATE ${library})
        endif()
    endforeach()
endfunction()
