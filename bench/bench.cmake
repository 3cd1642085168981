# Benchmarks of the pieces: one program over all bench/*.cpp. bench/run starts it, bench/compare and bench/scaling run
# whole programs of the tool.
find_package(benchmark REQUIRED)
file(GLOB ZR_BENCH_SOURCES CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/bench/*.cpp)
add_executable(zr_bench ${ZR_BENCH_SOURCES})
target_link_libraries(zr_bench PRIVATE zr zrhost benchmark::benchmark Threads::Threads)
# The drawing and text libraries by themselves, to compare with
pkg_check_modules(ZR_BENCH_CAIRO REQUIRED IMPORTED_TARGET cairo cairo-svg pangocairo)
target_link_libraries(zr_bench PRIVATE PkgConfig::ZR_BENCH_CAIRO)
