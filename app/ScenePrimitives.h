// What a scene may hold: one table of the primitives with the names and kinds of their arguments. The reader checks
// against it, the painter draws by it, and the JSON Schema is made from it.
#ifndef ZRTOOL_SCENEPRIMITIVES_H
#define ZRTOOL_SCENEPRIMITIVES_H

#include <span>
#include <string>
#include <string_view>

namespace zrtool {

class ScenePainter;
struct SceneCall;

enum class ArgumentKind {
    Number,      // within least and most
    Whole,       // likewise, without a fraction
    Flag,        // true or false
    Text,        // any
    Word,        // one of words
    Colour,      // or the name of a defined one
    Colours,     // list
    Point,       // [x, y]
    Box,         // [x, y, width, height]
    Boxes,       // list
    Segments,    // list of [x1, y1, x2, y2]
    Font,        // or the name of a defined one
    Gradient,    // likewise
    Dash,        // likewise
    Matrix,      // six numbers, or steps
    Properties,  // names and values of SVG attributes
    Path,        // path data
    Region,      // steps that add and take away boxes
    Picture,     // a file beside the scene, or a data: URL
    Calls,       // calls of a layer
};

struct ArgumentRow {
    const char* name;
    ArgumentKind kind;
    bool needed;
    const char* fallback;  // JSON of the value that is taken when none is given; null = none
    const char* help;      // a sentence for the schema and the page
    const char* words;     // of a Word: "butt|round|square", numbered from wordBase; else null
    int wordBase;
    double least, most;  // of a Number or Whole
};

struct PrimitiveRow {
    const char* name;
    const char* help;
    std::span<const ArgumentRow> arguments;
    void (ScenePainter::*draw)(const SceneCall& call);
};

// Limits, for the reader and the schema
inline constexpr double kLargestCoordinate = 1e6;  // points, either sign
inline constexpr long kLongestSide = 20000;        // points of a scene or layer
inline constexpr long kDeepestLayer = 8;           // layers in layers
inline constexpr double kLargestFont = 10000;      // points
inline constexpr size_t kMostStops = 4096;         // of a gradient
inline constexpr size_t kMostRegionSteps = 1000;
inline constexpr size_t kMostDashes = 1000;

std::span<const PrimitiveRow> Primitives();
const PrimitiveRow* FindPrimitive(std::string_view name);          // null = none
long NumberOfWord(const ArgumentRow& row, std::string_view word);  // -1 = not one of them
std::string SceneSchema();                                         // JSON Schema, with a line end

}  // namespace zrtool

#endif
