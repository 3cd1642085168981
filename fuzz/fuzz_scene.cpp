// Scenes through the path of zr draw: the reader, and what it accepts drawn as SVG, on a small bitmap and into a PDF.
// Pictures come from data: URLs alone.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "app/Messages.h"
#include "app/Scene.h"
#include "app/SceneOutput.h"
#include "fuzz/FuzzSupport.h"

extern "C" const char* __asan_default_options();
extern "C" const char* __asan_default_options() {
    return "allocator_may_return_null=1:max_allocation_size_mb=256:quarantine_size_mb=16:detect_leaks=0";
}

static constexpr size_t kLongestInput = 64 * 1024;  // bytes
static constexpr long kLargestDrawn = 300;          // points a side

static void DrawOnce(std::string_view bytes) {
    zrtool::SceneSource source;
    source.name = "scene";
    source.bytes = bytes;
    source.readsFiles = false;
    std::vector<zrtool::SceneProblem> problems;
    zrtool::Scene scene = zrtool::ReadScene(source, &problems);
    for (const auto& problem : problems) FUZZ_CHECK(!zrtool::ProblemShown(source, problem).empty());
    if (!problems.empty()) return;
    scene.width = std::min(scene.width, kLargestDrawn);
    scene.height = std::min(scene.height, kLargestDrawn);
    FUZZ_CHECK(zrtool::DrawSvg(scene, false).bytes.ends_with("</svg>\n"));
    FUZZ_CHECK(zrtool::DrawSvg(scene, true).bytes.ends_with("</svg>\n"));
    FUZZ_CHECK(!zrtool::DrawPng(scene, 36).bytes.empty());
    std::vector<std::string> leftOut;
    zrtool::ScenePdf pdf;
    pdf.addPage(scene, &leftOut);
    FUZZ_CHECK(!pdf.finish().empty());
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static zrtool::DrawingHost* host = new zrtool::DrawingHost;
    (void)host;
    if (size > kLongestInput) return 0;
    try {
        DrawOnce({reinterpret_cast<const char*>(data), size});
    } catch (const zrtool::Refusal&) {
        // no memory: the limit above
    } catch (const std::bad_alloc&) {}
    return 0;
}
