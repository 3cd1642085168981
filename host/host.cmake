# The embedded host: libzrhost, and beside it the object that holds what needs ICU, opened on first use.
zr_sources(ZR_HOST_SOURCES host)
set(ZR_HOST_GENERATED ${CMAKE_BINARY_DIR}/generated/host)
set(ZR_HOST_DATA ${CMAKE_SOURCE_DIR}/host/data)
add_custom_command(
  OUTPUT ${ZR_HOST_GENERATED}/CommandNames.inc
  COMMAND ${CMAKE_COMMAND} -DDATA=${ZR_HOST_DATA} -DOUT=${ZR_HOST_GENERATED}/CommandNames.inc
          -P ${CMAKE_SOURCE_DIR}/host/command_names.cmake
  DEPENDS ${ZR_HOST_DATA}/commands.tsv ${ZR_HOST_DATA}/commands_fr.tsv ${ZR_HOST_DATA}/commands_aliases.tsv
          ${CMAKE_SOURCE_DIR}/host/command_names.cmake
  COMMENT "Command names" VERBATIM)

add_library(zrhost SHARED ${ZR_HOST_SOURCES} ${ZR_HOST_GENERATED}/CommandNames.inc)
add_library(zr::zrhost ALIAS zrhost)
target_include_directories(zrhost PUBLIC $<BUILD_INTERFACE:${CMAKE_SOURCE_DIR}> $<INSTALL_INTERFACE:include/zr>
                                  PRIVATE ${ZR_HOST_GENERATED})
target_link_libraries(zrhost PRIVATE Threads::Threads ${CMAKE_DL_LIBS})
set_target_properties(zrhost PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION 0)

# libzr-unicode.so, in the folder of libzrhost: it is found by the place of that library.
pkg_check_modules(ICU REQUIRED IMPORTED_TARGET icu-uc icu-i18n)
zr_sources(ZR_UNICODE_SOURCES host/unicode)
add_library(zr-unicode MODULE ${ZR_UNICODE_SOURCES})
target_include_directories(zr-unicode PRIVATE ${CMAKE_SOURCE_DIR})
target_link_libraries(zr-unicode PRIVATE PkgConfig::ICU)
set_target_properties(zr-unicode PROPERTIES CXX_VISIBILITY_PRESET hidden)
add_dependencies(zrhost zr-unicode)
install(TARGETS zr-unicode LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
