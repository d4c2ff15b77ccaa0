# Tests: every folder below tests/ with *Test.cpp becomes one program, each test a process of its own.

include(GoogleTest)
find_package(GTest REQUIRED)

set(PLAYFILE_TEST_DIR "${CMAKE_BINARY_DIR}/tests")
# Shared by the build trees of all presets.
set(PLAYFILE_TEST_MEDIA_DIR "${CMAKE_SOURCE_DIR}/build/media")

# Labels of folders; every other folder bears "unit". A test of a labelled folder may take longer.
set(playfile_test_labels contract real stress crash lifetime install tools)
# Folders whose tests use the media that the script makes, and those that load the FFmpeg plug-in,
# whose libraries no sanitizer has seen.
set(playfile_media_folders real stress crash lifetime tools examples plugins plugins_ffmpeg)
set(playfile_ffmpeg_folders real stress crash lifetime tools examples plugins plugins_ffmpeg)
set(PLAYFILE_UNIT_TIMEOUT 60)
set(PLAYFILE_LONG_TIMEOUT 600)

# The leak checker takes what lies before a thread's variables in a loaded library for their size, wherever they
# happen to begin 16 bytes into a page, and crashes on what it reads there; elsewhere it learns no size, and looks
# at none of them. Without its hook it always does the latter.
set(playfile_asan_options
    "ASAN_OPTIONS=detect_stack_use_after_return=1:strict_string_checks=1:check_initialization_order=1")
string(APPEND playfile_asan_options ":intercept_tls_get_addr=0")
set(playfile_tsan_options "TSAN_OPTIONS=halt_on_error=1:second_deadlock_stack=1")

# playfile_test_environment(OUT LOADS_FFMPEG): what a test's process gets of the sanitizer in use.
function(playfile_test_environment out loads_ffmpeg)
    set(options "")
    if(PLAYFILE_SANITIZE MATCHES "address")
        set(options "${playfile_asan_options}")
    elseif(PLAYFILE_SANITIZE MATCHES "thread")
        set(options "${playfile_tsan_options}")
        if(loads_ffmpeg)
            string(APPEND options ":ignore_noninstrumented_modules=1")
        endif()
    endif()
    set(${out} "${options}" PARENT_SCOPE)
endfunction()

include(PlayfileTestParts)
include(PlayfileTestFolders)
include(PlayfileTestTree)
