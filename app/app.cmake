# The tool. What is not main stands in a library of its own, for the fuzz target of whole programs.
zr_sources(ZR_APP_SOURCES app)
list(REMOVE_ITEM ZR_APP_SOURCES ${CMAKE_SOURCE_DIR}/app/Main.cpp)
add_library(zr_app STATIC ${ZR_APP_SOURCES})
target_compile_definitions(zr_app PUBLIC ZR_VERSION="${PROJECT_VERSION}")
target_link_libraries(zr_app PUBLIC zr zrhost Threads::Threads)
add_executable(zr_tool ${CMAKE_SOURCE_DIR}/app/Main.cpp)
set_target_properties(zr_tool PROPERTIES OUTPUT_NAME zr)
target_link_libraries(zr_tool PRIVATE zr_app)
