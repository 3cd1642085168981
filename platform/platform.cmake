# The stand-ins stand in libzr; what they need of a heavy library lies in objects beside it, opened on first use.
zr_sources(ZR_PLATFORM_SOURCES platform/CoreGraphics platform/CoreText platform/ImageIO platform/HIShape platform/SVG
           platform/NativePicture platform/AppKit)
target_sources(zr PRIVATE ${ZR_PLATFORM_SOURCES})

# zr_object(NAME FOLDER TARGETS...): libNAME.so from the sources of a folder, in the folder of libzr.
function(zr_object name folder)
  zr_sources(sources ${folder})
  add_library(${name} MODULE ${sources})
  target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR})
  target_link_libraries(${name} PRIVATE ${ARGN})
  set_target_properties(${name} PROPERTIES CXX_VISIBILITY_PRESET hidden)
  add_dependencies(zr ${name})
  install(TARGETS ${name} LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
endfunction()

pkg_check_modules(CAIRO REQUIRED IMPORTED_TARGET cairo cairo-pdf)
pkg_check_modules(CODECS REQUIRED IMPORTED_TARGET libpng libjpeg libtiff-4)
pkg_check_modules(TEXT REQUIRED IMPORTED_TARGET pangocairo pangoft2 harfbuzz fontconfig)
find_package(GIF REQUIRED)
zr_object(zr-graphics platform/graphics_object PkgConfig::CAIRO PkgConfig::TEXT PkgConfig::CODECS GIF::GIF)

pkg_check_modules(QPDF REQUIRED IMPORTED_TARGET libqpdf)
zr_object(zr-pdf platform/pdf_object PkgConfig::QPDF)
target_compile_definitions(zr-pdf PRIVATE POINTERHOLDER_TRANSITION=4)
set_target_properties(zr-pdf PROPERTIES CXX_STANDARD 17)  # clang does not take qpdf's headers as C++20

pkg_check_modules(RSVG REQUIRED IMPORTED_TARGET librsvg-2.0)
zr_object(zr-svg platform/svg_object PkgConfig::RSVG PkgConfig::CAIRO)

# Painting PDF pages is optional, and stands alone for the sake of its library's licence (GPL).
option(ZR_PDFPAINT "build the object that paints PDF pages (poppler-glib, GPL)" ON)
if(ZR_PDFPAINT)
  pkg_check_modules(POPPLER IMPORTED_TARGET poppler-glib)
  if(POPPLER_FOUND)
    zr_object(zr-pdfpaint platform/pdfpaint_object PkgConfig::POPPLER PkgConfig::CAIRO)
  else()
    message(STATUS "poppler-glib is missing: PDF pages will not be painted on pixels")
  endif()
endif()
