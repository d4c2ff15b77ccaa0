# The soak program; all of it but its main function is a library, so that tests reach its parts.

find_package(CLI11 REQUIRED)
playfile_glob(sources bench/soak/*.cpp bench/support/Child.cpp bench/support/Footprint.cpp)
list(FILTER sources EXCLUDE REGEX "/main\\.cpp$")
add_library(playfile_soak_parts STATIC ${sources})
playfile_link(playfile_soak_parts playfile playfile_host)
playfile_add_program(playfile_soak playfile_soak "${CMAKE_SOURCE_DIR}/bench/soak/main.cpp")
target_link_libraries(playfile_soak PRIVATE playfile_soak_parts CLI11::CLI11)
