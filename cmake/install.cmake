# What is installed, and how other programs find it: pkg-config (zr, zrhost) and find_package(zr).
include(CMakePackageConfigHelpers)

# The tool finds the libraries beside it, wherever the prefix is moved to.
file(RELATIVE_PATH ZR_LIBRARIES_FROM_BIN ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
set_target_properties(zr_tool PROPERTIES INSTALL_RPATH "$ORIGIN/${ZR_LIBRARIES_FROM_BIN}")
set_target_properties(zr zrhost PROPERTIES INSTALL_RPATH "$ORIGIN")

target_compile_features(zr PUBLIC cxx_std_20)
target_compile_features(zrhost PUBLIC cxx_std_20)
install(TARGETS zr zrhost EXPORT zr LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(TARGETS zr_tool RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})

# Headers keep their folders below include/zr.
foreach(folder plugin core language runtime graphics print desktop platform host)
  if(IS_DIRECTORY ${CMAKE_SOURCE_DIR}/${folder})
    install(DIRECTORY ${folder} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/zr
            FILES_MATCHING PATTERN "*.h" PATTERN "*_Private.h" EXCLUDE PATTERN "data" EXCLUDE PATTERN "unicode" EXCLUDE
            PATTERN "*_object" EXCLUDE)
  endif()
endforeach()
install(FILES zr.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/zr)

# CMake package
install(EXPORT zr NAMESPACE zr:: FILE zr-targets.cmake DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/zr)
file(WRITE ${CMAKE_BINARY_DIR}/zr-config.cmake
     "include(\${CMAKE_CURRENT_LIST_DIR}/zr-targets.cmake)\n")
write_basic_package_version_file(${CMAKE_BINARY_DIR}/zr-config-version.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_BINARY_DIR}/zr-config.cmake ${CMAKE_BINARY_DIR}/zr-config-version.cmake
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/zr)

# pkg-config
file(RELATIVE_PATH ZR_PREFIX_FROM_PKGCONFIG ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
foreach(name zr zrhost)
  configure_file(cmake/${name}.pc.in ${CMAKE_BINARY_DIR}/${name}.pc @ONLY)
  install(FILES ${CMAKE_BINARY_DIR}/${name}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endforeach()

# Manual page and completion, which the tool writes itself.
foreach(page "manual|zr.1" "completion bash|zr.bash")
  string(REGEX REPLACE "\\|.*" "" arguments ${page})
  string(REGEX REPLACE ".*\\|" "" file ${page})
  add_custom_command(OUTPUT ${CMAKE_BINARY_DIR}/${file}
                     COMMAND ${CMAKE_COMMAND} -DTOOL=$<TARGET_FILE:zr_tool> -DARGUMENTS=${arguments}
                             -DOUT=${CMAKE_BINARY_DIR}/${file} -P ${CMAKE_SOURCE_DIR}/cmake/write_page.cmake
                     DEPENDS zr_tool cmake/write_page.cmake COMMENT "Writing ${file}" VERBATIM)
endforeach()
add_custom_target(zr_pages ALL DEPENDS ${CMAKE_BINARY_DIR}/zr.1 ${CMAKE_BINARY_DIR}/zr.bash)
install(FILES ${CMAKE_BINARY_DIR}/zr.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES ${CMAKE_BINARY_DIR}/zr.bash DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME zr)

install(FILES LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY examples DESTINATION ${CMAKE_INSTALL_DOCDIR})

# The installed library, as a program outside of this tree meets it.
if(ZR_TESTS)
  add_test(NAME Install_ExampleAgainstInstalledLibrary_BuildsAndRuns
           COMMAND ${CMAKE_COMMAND} -DBUILD=${CMAKE_BINARY_DIR} -DSOURCE=${CMAKE_SOURCE_DIR}
                   -DCOMPILER=${CMAKE_CXX_COMPILER} -DBUILD_TYPE=${CMAKE_BUILD_TYPE} -DLIBDIR=${CMAKE_INSTALL_LIBDIR}
                   -DSANITIZE=${ZR_SANITIZE} -P ${CMAKE_SOURCE_DIR}/tests/embed/embed_test.cmake)
  set_tests_properties(Install_ExampleAgainstInstalledLibrary_BuildsAndRuns PROPERTIES TIMEOUT 600)
endif()
