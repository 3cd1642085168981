# cmake -DTOOL=zr -DARGUMENTS="completion bash" -DOUT=file -P write_page.cmake
separate_arguments(words UNIX_COMMAND "${ARGUMENTS}")
execute_process(COMMAND ${TOOL} ${words} OUTPUT_FILE ${OUT}.new RESULT_VARIABLE status)
if(NOT status EQUAL 0)
  message(FATAL_ERROR "${TOOL} ${ARGUMENTS} ended with ${status}")
endif()
file(RENAME ${OUT}.new ${OUT})
