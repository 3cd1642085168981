// Draws a scene on a device, one primitive of the drawing library a call. What only pixels have in the library (dashes,
// caps, joins, fractions of a text's place and size, shadows, layers, regions as clip, gradients and shadings over the
// clip) an SVG device is given in attributes and elements beside the primitive's own, unless the painter is plain.
#ifndef ZRTOOL_SCENEPAINTER_H
#define ZRTOOL_SCENEPAINTER_H

#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "app/Scene.h"
#include "graphics/ZR_API_Device.h"

namespace zrtool {

class ScenePainter {
  public:
    // device is borrowed. pixelScale: pixels a point of a bitmap, 1 elsewhere. plain: SVG as the primitives write it.
    ScenePainter(ZR_Device* device, double pixelScale, bool plain)
        : device_(device), pixelScale_(pixelScale), plain_(plain) {}
    void paint(const Scene& scene);

    // Calls that the device has no form of, by path: each primitive's first.
    const std::vector<std::string>& leftOut() const { return leftOut_; }

    // The primitives, as the table names them
    void rect(const SceneCall& call);
    void rects(const SceneCall& call);
    void oval(const SceneCall& call);
    void line(const SceneCall& call);
    void lines(const SceneCall& call);
    void arc(const SceneCall& call);
    void path(const SceneCall& call);
    void text(const SceneCall& call);
    void alignedText(const SceneCall& call);
    void textLayout(const SceneCall& call);
    void styledText(const SceneCall& call);
    void picture(const SceneCall& call);
    void region(const SceneCall& call);
    void gradient(const SceneCall& call);
    void shadow(const SceneCall& call);
    void shading(const SceneCall& call);
    void clip(const SceneCall& call);
    void clear(const SceneCall& call);
    void layer(const SceneCall& call);
    void transform(const SceneCall& call);
    void properties(const SceneCall& call);

  private:
    using Attributes = std::vector<std::pair<std::string, std::string>>;

    bool svgHelped() const { return device_->svg && !plain_; }
    void paintCalls(const std::vector<SceneCall>& calls);
    void leaveOut(const SceneCall& call);
    void setDeviceProperties(const Attributes& more);
    std::optional<SceneGradient> preparedGradient(const SceneCall& call, const ZR_Rect& box, bool local) const;
    Attributes lineAttributes(const SceneCall& call) const;
    void drawTextLine(const SceneCall& call, ZR_Text* text, float x, float y, const Attributes& more);
    void fillClip(ZR_Rect rect, const SceneGradient& gradient);
    struct ClipInForce {
        bool turned = false;
        long number = 0;  // of the document's clip
        std::string region;
    };
    ClipInForce turnClip(const ZR_Matrix* matrix);
    ClipInForce clipToBox(const ZR_Rect& box, const ZR_Matrix* matrix);
    void restoreClip(const ClipInForce& before);
    void addRegionClip(const std::vector<ZR_Rect>& parts, ZR_Matrix* matrix);
    void layerSvg(const SceneCall& call, const ZR_Rect& rect, ZR_Matrix* matrix);
    void addShadowFilter(const SceneCall& call, const ZR_Rect& rect);
    ZR_Rect wholeBounds() const;

    ZR_Device* device_;
    double pixelScale_;
    bool plain_;
    SceneProperties deviceProperties_;  // of the scene
    std::string regionClip_;            // value of clip-path; empty = none
    std::vector<ZR_Rect> regionParts_;  // of the clip, in the scene's coordinates
    long regionClips_ = 0, shadows_ = 0;
    std::set<const PrimitiveRow*> toldOf_;
    std::vector<std::string> leftOut_;
};

}  // namespace zrtool

#endif
