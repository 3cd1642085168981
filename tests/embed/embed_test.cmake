# Installs into a prefix of its own, moves the prefix, and builds and runs examples/embed against it: once with
# find_package, once with pkg-config. The installed tool must run as well.
set(work ${BUILD}/embed_test)
set(prefix ${work}/moved)
set(expected "The code runs.\nHello, Ada!\nThe sum of the first ten squares is 385.\n")
file(REMOVE_RECURSE ${work})

function(run out)
  execute_process(COMMAND ${ARGN} OUTPUT_VARIABLE text ERROR_VARIABLE problems RESULT_VARIABLE status)
  if(NOT status EQUAL 0)
    string(REPLACE ";" " " command "${ARGN}")
    message(FATAL_ERROR "${command}\nended with ${status}\n${text}${problems}")
  endif()
  set(${out} "${text}" PARENT_SCOPE)
endfunction()

function(expect what text wanted)
  if(NOT text STREQUAL wanted)
    message(FATAL_ERROR "${what} printed:\n${text}instead of:\n${wanted}")
  endif()
endfunction()

run(ignored ${CMAKE_COMMAND} --install ${BUILD} --prefix ${work}/first)
file(RENAME ${work}/first ${prefix})

set(flags "")
if(SANITIZE)
  set(flags -fsanitize=address,undefined)
endif()

run(ignored ${CMAKE_COMMAND} -S ${prefix}/share/doc/zr/examples/embed -B ${work}/package -DCMAKE_PREFIX_PATH=${prefix}
    -DCMAKE_CXX_COMPILER=${COMPILER} -DCMAKE_BUILD_TYPE=${BUILD_TYPE} -DCMAKE_CXX_FLAGS=${flags})
run(ignored ${CMAKE_COMMAND} --build ${work}/package)
run(text ${work}/package/embed)
expect("the example built with find_package" "${text}" "${expected}")

set(ENV{PKG_CONFIG_PATH} ${prefix}/${LIBDIR}/pkgconfig)
run(options pkg-config --cflags --libs zr zrhost)
separate_arguments(options UNIX_COMMAND "${options}")
run(ignored ${COMPILER} -std=c++20 ${flags} ${SOURCE}/examples/embed/embed.cpp -o ${work}/embed_pkg_config
    ${options} -Wl,-rpath,${prefix}/${LIBDIR})
run(text ${work}/embed_pkg_config)
expect("the example built with pkg-config" "${text}" "${expected}")

file(WRITE ${work}/hello.4dm "ALERT(Uppercase(\"installed\"))\n")
run(text ${prefix}/bin/zr run ${work}/hello.4dm)
expect("the installed tool" "${text}" "INSTALLED\n")
foreach(file LICENSE examples/tour.4dm)
  if(NOT EXISTS ${prefix}/share/doc/zr/${file})
    message(FATAL_ERROR "${file} is not installed")
  endif()
endforeach()
run(text ${prefix}/bin/zr manual)
file(READ ${prefix}/share/man/man1/zr.1 page)
expect("the installed manual page" "${page}" "${text}")
