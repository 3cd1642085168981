// Any text as an SVG document: its text areas become lines. What is left alone is left whole, and a second pass finds
// nothing more to do than areas without an end.
#include "fuzz/FuzzSupport.h"
#include "platform/SVG/SVGTextArea.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::string_view document(reinterpret_cast<const char*>(data), size);
    std::string out = "as it was", again;
    if (!ZRSVGReplaceTextAreas(document, &out)) {
        FUZZ_CHECK(out == "as it was");
        return 0;
    }
    FUZZ_CHECK(!ZRSVGReplaceTextAreas(out, &again));
    return 0;
}
