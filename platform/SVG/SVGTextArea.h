// Common renderers draw nothing for "textArea". Before a picture is painted, each one becomes a group of "text" lines
// that the framesetter laid out: paragraphs broken at "tbreak" and to the width, aligned by "text-align" and
// "display-align", with the styles of "tspan"s. All else of the document stays byte by byte.
#ifndef ZR_PLATFORM_SVGTEXTAREA_H
#define ZR_PLATFORM_SVGTEXTAREA_H

#include <string>
#include <string_view>

// UTF-8 or a single-byte encoding that agrees with Latin-1. false = no text area, or not well-formed up to the end: out
// is not written. At most 2^28 bytes are written; what would pass that stays as it is.
bool ZRSVGReplaceTextAreas(std::string_view document, std::string* out);

#endif
