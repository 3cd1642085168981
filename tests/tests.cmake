# One test program a folder of tests/: tests/core/*_test.cpp becomes core_test. Tests run in the source tree.
# tests/agreement shares its cases with zr_gallery, which writes docs/gallery.md.
find_package(GTest REQUIRED)
# What libraries keep for the life of the process is no leak; the tool that a test starts gets the same list.
set(ZR_TEST_ENVIRONMENT "LSAN_OPTIONS=suppressions=${CMAKE_SOURCE_DIR}/tests/support/leaks.txt:print_suppressions=0")
include(GoogleTest)
file(GLOB ZR_TEST_FOLDERS CONFIGURE_DEPENDS LIST_DIRECTORIES true ${CMAKE_SOURCE_DIR}/tests/*)
foreach(folder ${ZR_TEST_FOLDERS})
  get_filename_component(name ${folder} NAME)
  file(GLOB sources CONFIGURE_DEPENDS ${folder}/*_test.cpp)
  if(sources)
    if(name STREQUAL agreement)
      list(APPEND sources ${folder}/Cases.cpp ${folder}/Pictures.cpp)
      add_executable(zr_gallery EXCLUDE_FROM_ALL ${folder}/Gallery.cpp ${folder}/Cases.cpp ${folder}/Pictures.cpp)
      target_link_libraries(zr_gallery PRIVATE zr zrhost)
    endif()
    add_executable(${name}_test ${sources})
    target_link_libraries(${name}_test PRIVATE zr zrhost GTest::gtest_main Threads::Threads ${CMAKE_DL_LIBS})
    target_compile_definitions(${name}_test PRIVATE ZR_SOURCE_DIR="${CMAKE_SOURCE_DIR}" ZR_BINARY_DIR="${CMAKE_BINARY_DIR}")
    gtest_discover_tests(${name}_test PROPERTIES TIMEOUT 300 ENVIRONMENT "${ZR_TEST_ENVIRONMENT}"
                         DISCOVERY_TIMEOUT 60)
  endif()
endforeach()
