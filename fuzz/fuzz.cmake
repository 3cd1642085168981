# One program a target: fuzz/fuzz_NAME.cpp becomes fuzz_NAME. The library itself is instrumented by the fuzz preset.
file(GLOB ZR_FUZZ_TARGETS CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/fuzz/fuzz_*.cpp)
foreach(source ${ZR_FUZZ_TARGETS})
  get_filename_component(name ${source} NAME_WE)
  add_executable(${name} ${source})
  target_compile_options(${name} PRIVATE -fsanitize=fuzzer)
  target_link_options(${name} PRIVATE -fsanitize=fuzzer)
  target_link_libraries(${name} PRIVATE zr_app zr zrhost Threads::Threads ${CMAKE_DL_LIBS})
endforeach()
