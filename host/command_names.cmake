# Writes OUT, the rows of the command table, from the tab separated lists in DATA:
#   ZR_COMMAND(number, "English name", "French name or nothing", thread-safe 1 or 0)   ascending
#   ZR_ALIAS(number, "another spelling")
cmake_minimum_required(VERSION 3.25)
set(text "// Written by host/command_names.cmake from host/data/*.tsv.\n")

file(STRINGS ${DATA}/commands_fr.tsv french)
foreach(line IN LISTS french)
  if(line MATCHES "^([0-9]+)\t(.+)$")
    set(french_${CMAKE_MATCH_1} "${CMAKE_MATCH_2}")
  endif()
endforeach()

file(STRINGS ${DATA}/commands.tsv commands)
foreach(line IN LISTS commands)
  if(line MATCHES "^([0-9]+)\t([^\t]+)\t([01]?)")
    set(id ${CMAKE_MATCH_1})
    set(name "${CMAKE_MATCH_2}")
    set(safe 0)
    if(CMAKE_MATCH_3 STREQUAL "1")
      set(safe 1)
    endif()
    string(APPEND text "ZR_COMMAND(${id}, \"${name}\", \"${french_${id}}\", ${safe})\n")
  endif()
endforeach()

file(STRINGS ${DATA}/commands_aliases.tsv aliases)
foreach(line IN LISTS aliases)
  if(line MATCHES "^([0-9]+)\t[^\t]*\t(.+)$")
    string(APPEND text "ZR_ALIAS(${CMAKE_MATCH_1}, \"${CMAKE_MATCH_2}\")\n")
  endif()
endforeach()

file(WRITE ${OUT} "${text}")
