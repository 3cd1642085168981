// Scenes as files: SVG, PNG and PDF. The drawing objects are opened when the first scene needs them.
#ifndef ZRTOOL_SCENEOUTPUT_H
#define ZRTOOL_SCENEOUTPUT_H

#include <memory>
#include <string>
#include <vector>

#include "app/Scene.h"
#include "host/Host.h"

namespace zrtool {

// The embedded host and the module in it, which pictures and SVG documents need. One at a time in a process.
class DrawingHost {
  public:
    DrawingHost();  // throws Refusal
    ~DrawingHost();
    DrawingHost(const DrawingHost&) = delete;
    DrawingHost& operator=(const DrawingHost&) = delete;

  private:
    std::unique_ptr<zrhost::Host> host_;
};

inline constexpr long kHighestResolution = 2400;   // dpi
inline constexpr double kMostPixelsASide = 32767;  // of a bitmap
inline constexpr double kMostPixels = 134217728;   // of a bitmap in all: 2^27

struct SceneDrawing {
    std::string bytes;                     // of the file
    long pixelWidth = 0, pixelHeight = 0;  // PNG alone
    std::vector<std::string> leftOut;      // paths of calls that the format has no form of
};

// All of these throw Refusal where an object is missing or there is no memory.
SceneDrawing DrawSvg(const Scene& scene, bool plain);
SceneDrawing DrawPng(const Scene& scene, long dpi);  // the bounds above are the caller's to check
bool FitsBitmap(const Scene& scene, long dpi);

// A document of a page a scene.
class ScenePdf {
  public:
    ScenePdf();
    ~ScenePdf();
    ScenePdf(const ScenePdf&) = delete;
    ScenePdf& operator=(const ScenePdf&) = delete;
    void addPage(const Scene& scene, std::vector<std::string>* leftOut);
    std::string finish();  // the bytes; no page can be added any more

  private:
    CFMutableDataRef data_ = nullptr;
    CGDataConsumerRef consumer_ = nullptr;
    CGContextRef context_ = nullptr;
};

}  // namespace zrtool

#endif
