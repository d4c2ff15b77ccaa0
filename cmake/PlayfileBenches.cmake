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

pkg_check_modules(PLAYFILE_BENCH_FFMPEG REQUIRED IMPORTED_TARGET
    libavformat libavcodec libavutil libswscale)
find_package(CLI11 REQUIRED)
find_package(nlohmann_json REQUIRED)

# playfile_add_comparison(NAME FOLDER): a program that reads files through playfile and in other ways.
function(playfile_add_comparison name folder)
    playfile_glob(sources bench/${folder}/*.cpp)
    playfile_glob(support bench/support/*.cpp)
    playfile_add_program(${name} ${name} ${sources} ${support})
    target_link_libraries(${name} PRIVATE
        CLI11::CLI11 nlohmann_json::nlohmann_json PkgConfig::PLAYFILE_BENCH_FFMPEG)
endfunction()

playfile_add_comparison(playfile_workload workload)
playfile_add_comparison(playfile_soundbench sound)
playfile_add_comparison(playfile_recordbench record)
pkg_check_modules(PLAYFILE_SNDFILE REQUIRED IMPORTED_TARGET sndfile)
target_link_libraries(playfile_soundbench PRIVATE PkgConfig::PLAYFILE_SNDFILE)

playfile_add_comparison(playfile_remotebench remote)
playfile_link(playfile_remotebench playfile_remote)

playfile_add_comparison(playfile_transferbench transfer)
