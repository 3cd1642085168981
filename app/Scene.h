// A scene: a size and the calls that draw it, as zr draw reads them from JSON. Reading checks everything; what is wrong
// is told with the path of the value, such as calls[3].rect.fill.
#ifndef ZRTOOL_SCENE_H
#define ZRTOOL_SCENE_H

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "app/ScenePrimitives.h"
#include "core/ZR_API_Color.h"
#include "core/ZR_API_Picture.h"
#include "graphics/ZR_API_Gradient.h"
#include "graphics/ZR_API_Region.h"

namespace zrtool {

// Values of arguments ----------------------------------------------------------------------------------------------

struct SceneFont {
    std::u16string name = u"Liberation Sans";
    float size = 12;  // points
    short style = 0;  // bits of ZR_Font
};

struct SceneGradient {
    bool linear = true, percent = true;
    ZR_Point from{}, to{};  // radial: centre and focus
    float radius = 0;       // radial
    ZR_Matrix matrix{1, 0, 0, 1, 0, 0};
    std::vector<std::pair<float, ZR_RGBColor>> stops;
};

struct SceneDash {
    float phase = 0;
    std::vector<float> lengths;
};

struct SceneSegments {
    std::vector<ZR_Rect> rects;  // each from (left, top) to (right, bottom)
};

using SceneProperties = std::vector<std::pair<std::u16string, std::u16string>>;

// A picture for as long as a scene lives.
class ScenePicture {
  public:
    explicit ScenePicture(std::string_view bytes);
    ~ScenePicture() { picture_.Dispose(); }
    ScenePicture(const ScenePicture&) = delete;
    ScenePicture& operator=(const ScenePicture&) = delete;
    bool canBeDrawn() const { return picture_.image || picture_.document; }
    ZR_Picture* get() const { return &picture_; }

  private:
    mutable ZR_Picture picture_;  // drawing writes into the record
};

struct SceneCall;
using SceneValue =
    std::variant<std::monostate, double, long, bool, std::u16string, ZR_RGBColor, ZR_Point, ZR_Rect, ZR_Matrix,
                 SceneFont, SceneGradient, SceneDash, SceneSegments, std::vector<ZR_Rect>, std::vector<ZR_RGBColor>,
                 SceneProperties, std::vector<ZR_RegionRecord>, std::shared_ptr<ScenePicture>, std::vector<SceneCall>>;

struct SceneCall {
    const PrimitiveRow* primitive = nullptr;
    std::string path;                // "calls[3].rect"
    std::vector<SceneValue> values;  // in the order of the row's arguments

    const SceneValue& value(std::string_view argument) const;  // one that the row has
    bool has(std::string_view argument) const;
    template <class Type>
    const Type* find(std::string_view argument) const {  // null = not given
        return std::get_if<Type>(&value(argument));
    }
    template <class Type>
    const Type& get(std::string_view argument) const {  // needed, or with a fallback
        return std::get<Type>(value(argument));
    }
    float number(std::string_view argument) const { return static_cast<float>(get<double>(argument)); }
    long whole(std::string_view argument) const { return get<long>(argument); }  // also the number of a word
    bool flag(std::string_view argument) const { return get<bool>(argument); }
};

struct Scene {
    std::string name;            // for messages
    long width = 0, height = 0;  // points
    std::optional<ZR_RGBColor> background;
    std::vector<SceneCall> calls;
};

// Reading ----------------------------------------------------------------------------------------------------------

struct SceneProblem {
    std::string path;  // of the value; empty = the scene as a whole
    std::string text;
};

struct SceneSource {
    std::string name;        // for messages
    std::string bytes;       // JSON in UTF-8
    std::string folder;      // that pictures are looked for in, with "/"; empty = where the tool was started
    bool readsFiles = true;  // false = pictures by data: URL alone
};

// The scene, or what is wrong with it: problems is not empty then. Pictures need a started host.
Scene ReadScene(const SceneSource& source, std::vector<SceneProblem>* problems);

std::string ProblemShown(const SceneSource& source, const SceneProblem& problem);  // "a.json: calls[3]: ..."

}  // namespace zrtool

#endif
