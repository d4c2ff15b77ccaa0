# Plug-ins: one loadable module each, without a prefix, linked to what every plug-in may use.

# playfile_add_plugin(TARGET FILE_NAME FOLDER SOURCE...): FOLDER/FILE_NAME.so, if there is a source.
function(playfile_add_plugin target file_name folder)
    if(NOT ARGN)
        return()
    endif()
    add_library(${target} MODULE ${ARGN})
    playfile_link(${target} playfile playfile_host)
    set_target_properties(${target} PROPERTIES
        PREFIX ""
        OUTPUT_NAME "${file_name}"
        LIBRARY_OUTPUT_DIRECTORY "${folder}"
        INSTALL_RPATH "$ORIGIN/../..")
endfunction()

set(PLAYFILE_PLUGINS synth ffmpeg)

# All plug-ins that the running of a program may need.
add_custom_target(playfile_plugins)

foreach(plugin IN LISTS PLAYFILE_PLUGINS)
    playfile_glob(sources plugins/${plugin}/*.cpp)
    playfile_add_plugin(playfile_plugin_${plugin} ${plugin} "${PLAYFILE_PLUGIN_DIR}" ${sources})
    if(TARGET playfile_plugin_${plugin})
        add_dependencies(playfile_plugins playfile_plugin_${plugin})
    endif()
endforeach()

if(TARGET playfile_plugin_ffmpeg)
    pkg_check_modules(PLAYFILE_FFMPEG REQUIRED IMPORTED_TARGET
        libavformat libavcodec libavutil libswscale)
    target_link_libraries(playfile_plugin_ffmpeg PRIVATE PkgConfig::PLAYFILE_FFMPEG)
endif()
