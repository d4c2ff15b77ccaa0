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

# playfile_add_plugin_engine(PLUGIN SOURCE...): all of a plug-in but its entry point, compiled once as
# playfile_PLUGIN_engine, so that the module is made of it and tests reach its parts.
function(playfile_add_plugin_engine plugin)
    if(NOT ARGN)
        return()
    endif()
    add_library(playfile_${plugin}_engine OBJECT ${ARGN})
    playfile_link(playfile_${plugin}_engine playfile playfile_host)
endfunction()

# A plug-in whose folder isn't there is left out. Its entry point lies in <Name>Plugin.cpp.
set(PLAYFILE_PLUGINS synth wave ffmpeg)
set(playfile_entry_point "Plugin\\.cpp$")

# All plug-ins that the running of a program may need.
add_custom_target(playfile_plugins)

foreach(plugin IN LISTS PLAYFILE_PLUGINS)
    playfile_glob(sources plugins/${plugin}/*.cpp)
    set(entry_point "${sources}")
    list(FILTER entry_point INCLUDE REGEX "${playfile_entry_point}")
    list(FILTER sources EXCLUDE REGEX "${playfile_entry_point}")
    playfile_add_plugin_engine(${plugin} ${sources})
    playfile_add_plugin(playfile_plugin_${plugin} ${plugin} "${PLAYFILE_PLUGIN_DIR}" ${entry_point})
    if(TARGET playfile_plugin_${plugin})
        add_dependencies(playfile_plugins playfile_plugin_${plugin})
    endif()
    if(TARGET playfile_plugin_${plugin} AND TARGET playfile_${plugin}_engine)
        target_link_libraries(playfile_plugin_${plugin} PRIVATE playfile_${plugin}_engine)
    endif()
endforeach()

if(TARGET playfile_ffmpeg_engine)
    pkg_check_modules(PLAYFILE_FFMPEG REQUIRED IMPORTED_TARGET
        libavformat libavcodec libavutil libswscale)
    target_link_libraries(playfile_ffmpeg_engine PUBLIC PkgConfig::PLAYFILE_FFMPEG)
endif()
