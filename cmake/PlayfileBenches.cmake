# The benches, in bin/ with the other programs.

playfile_glob(sources bench/micro/*.cpp)
playfile_glob(support bench/support/Null*.cpp)
if(sources)
    playfile_add_program(playfile_micro playfile_micro ${sources} ${support})
endif()
if(TARGET playfile_micro)
    find_package(benchmark REQUIRED)
    target_link_libraries(playfile_micro PRIVATE benchmark::benchmark)
endif()

playfile_glob(sources bench/workload/*.cpp)
playfile_glob(support bench/support/*.cpp)
if(sources)
    playfile_add_program(playfile_workload playfile_workload ${sources} ${support})
endif()
if(TARGET playfile_workload)
    find_package(CLI11 REQUIRED)
    find_package(nlohmann_json REQUIRED)
    pkg_check_modules(PLAYFILE_WORKLOAD_FFMPEG REQUIRED IMPORTED_TARGET
        libavformat libavcodec libavutil libswscale)
    target_link_libraries(playfile_workload PRIVATE
        CLI11::CLI11 nlohmann_json::nlohmann_json PkgConfig::PLAYFILE_WORKLOAD_FFMPEG)
endif()
