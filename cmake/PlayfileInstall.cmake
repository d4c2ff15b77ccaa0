# What `cmake --install` puts where. The installed tree has the shape of the build tree and may be
# moved as a whole: nothing in it knows where it stands.

include(CMakePackageConfigHelpers)

set(PLAYFILE_INCLUDE_DIR "include/playfile-${PROJECT_VERSION_MAJOR}")
set(PLAYFILE_PACKAGE_DIR "lib/cmake/playfile")

# playfile_export(TARGET NAME): makes the library playfile::NAME of the package.
function(playfile_export target name)
    if(NOT TARGET ${target})
        return()
    endif()
    set_target_properties(${target} PROPERTIES EXPORT_NAME ${name})
    target_compile_features(${target} INTERFACE cxx_std_20)
    target_include_directories(${target} INTERFACE "$<INSTALL_INTERFACE:${PLAYFILE_INCLUDE_DIR}>")
    install(TARGETS ${target} EXPORT playfile LIBRARY DESTINATION lib)
endfunction()

playfile_export(playfile_host host)
playfile_export(playfile playfile)
playfile_export(playfile_store store)
playfile_export(playfile_remote remote)

install(EXPORT playfile NAMESPACE playfile:: FILE playfileTargets.cmake
    DESTINATION "${PLAYFILE_PACKAGE_DIR}")
write_basic_package_version_file("${CMAKE_BINARY_DIR}/playfileConfigVersion.cmake"
    COMPATIBILITY SameMinorVersion)
install(FILES "${CMAKE_SOURCE_DIR}/cmake/playfileConfig.cmake"
    "${CMAKE_BINARY_DIR}/playfileConfigVersion.cmake" DESTINATION "${PLAYFILE_PACKAGE_DIR}")

configure_file("${CMAKE_SOURCE_DIR}/cmake/playfile.pc.in" "${CMAKE_BINARY_DIR}/playfile.pc" @ONLY)
install(FILES "${CMAKE_BINARY_DIR}/playfile.pc" DESTINATION lib/pkgconfig)

foreach(folder ole toolkit playfile files video audio header material transfer host)
    if(EXISTS "${CMAKE_SOURCE_DIR}/${folder}")
        install(DIRECTORY "${CMAKE_SOURCE_DIR}/${folder}" DESTINATION "${PLAYFILE_INCLUDE_DIR}"
            FILES_MATCHING PATTERN "*.h")
    endif()
endforeach()

foreach(plugin IN LISTS PLAYFILE_PLUGINS)
    if(TARGET playfile_plugin_${plugin})
        install(TARGETS playfile_plugin_${plugin} LIBRARY DESTINATION lib/playfile/plugins)
    endif()
endforeach()

if(TARGET playfile_cli)
    install(TARGETS playfile_cli RUNTIME DESTINATION bin)
endif()
