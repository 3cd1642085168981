#include "app/ScenePrimitives.h"

#include <nlohmann/json.hpp>

#include "app/ScenePainter.h"

namespace zrtool {

// Arguments --------------------------------------------------------------------------------------------------------

static constexpr bool kNeeded = true, kOptional = false;

static constexpr ArgumentRow Of(const char* name, ArgumentKind kind, bool needed, const char* fallback,
                                const char* help) {
    return {name, kind, needed, fallback, help, nullptr, 0, 0, 0};
}

static constexpr ArgumentRow WordOf(const char* name, const char* words, int base, const char* fallback,
                                    const char* help) {
    return {name, ArgumentKind::Word, kOptional, fallback, help, words, base, 0, 0};
}

static constexpr ArgumentRow NumberOf(const char* name, bool needed, const char* fallback, double least, double most,
                                      const char* help) {
    return {name, ArgumentKind::Number, needed, fallback, help, nullptr, 0, least, most};
}

static constexpr ArgumentRow WholeOf(const char* name, bool needed, const char* fallback, double least, double most,
                                     const char* help) {
    return {name, ArgumentKind::Whole, needed, fallback, help, nullptr, 0, least, most};
}

static constexpr double kFar = kLargestCoordinate;

// Shared by several primitives
static constexpr ArgumentRow kBox =
    Of("box", ArgumentKind::Box, kNeeded, nullptr, "Where it goes: left, top, width, height.");
static constexpr ArgumentRow kFill = Of("fill", ArgumentKind::Colour, kOptional, nullptr, "Fills it; none by default.");
static constexpr ArgumentRow kStroke =
    Of("stroke", ArgumentKind::Colour, kOptional, nullptr, "Colour of the outline; none by default.");
static constexpr ArgumentRow kLineColour =
    Of("stroke", ArgumentKind::Colour, kOptional, "\"#000000\"", "Colour of the line.");
static constexpr ArgumentRow kTextColour =
    Of("fill", ArgumentKind::Colour, kOptional, "\"#000000\"", "Colour of the text.");
static constexpr ArgumentRow kLineWidth =
    NumberOf("lineWidth", kOptional, "1", 0, kFar, "Width of the line in points.");
static constexpr ArgumentRow kAntialias =
    Of("antialias", ArgumentKind::Flag, kOptional, "true", "Soft edges on pixels.");
static constexpr ArgumentRow kMatrix =
    Of("matrix", ArgumentKind::Matrix, kOptional, nullptr, "Moves, turns or scales it in the scene's coordinates.");
static constexpr ArgumentRow kGradient =
    Of("gradient", ArgumentKind::Gradient, kOptional, nullptr, "Fills it instead of fill.");
static constexpr ArgumentRow kDash = Of("dash", ArgumentKind::Dash, kOptional, nullptr, "Lengths of line and gap.");
static constexpr ArgumentRow kProperties =
    Of("properties", ArgumentKind::Properties, kOptional, nullptr, "Attributes of the SVG element, before its own.");
static constexpr ArgumentRow kFont =
    Of("font", ArgumentKind::Font, kOptional, "{}", "The font; 12 points Liberation Sans by default.");
static constexpr ArgumentRow kText = Of("text", ArgumentKind::Text, kNeeded, nullptr, "The text.");
static constexpr ArgumentRow kAlign =
    WordOf("align", "default|left|center|right|justified", 1, "\"default\"",
           "How lines lie between left and right; default follows the direction of the text.");
static constexpr ArgumentRow kVertical =
    WordOf("vertical", "top|center|bottom", 1, "\"top\"", "How the block lies between top and bottom.");
static constexpr ArgumentRow kRotation =
    NumberOf("rotation", kOptional, "0", -360, 360, "Degrees that the text turns to the left about its start.");
static constexpr ArgumentRow kWordWrap =
    Of("wordWrap", ArgumentKind::Flag, kOptional, "true",
       "Breaks lines between words; false: a line that is too long is cut in its middle. SVG always breaks.");
static constexpr ArgumentRow kLineSpacing =
    NumberOf("lineSpacing", kOptional, "0", -1000, 1000, "Points added between lines.");
static constexpr ArgumentRow kKerning =
    NumberOf("kerning", kOptional, "0", -1000, 1000, "Points added between characters.");
static constexpr ArgumentRow kKeepTop =
    Of("keepTop", ArgumentKind::Flag, kOptional, "false",
       "Keeps the lower edge of the block as it is; false: there is room for one more line. Pixels alone.");
static constexpr ArgumentRow kRegionSteps =
    Of("steps", ArgumentKind::Region, kNeeded, nullptr, "Boxes added and taken away, in their order.");
static constexpr ArgumentRow kRadius =
    NumberOf("radius", kOptional, "0", 0, kFar, "Radius of the corners in points; 0 = square.");

static constexpr ArgumentRow kRect[] = {kBox,       kFill,   kStroke,   kLineWidth,  kRadius,
                                        kAntialias, kMatrix, kGradient, kProperties, kDash};
static constexpr ArgumentRow kRects[] = {
    Of("boxes", ArgumentKind::Boxes, kNeeded, nullptr, "The rectangles."),
    Of("fills", ArgumentKind::Colours, kNeeded, nullptr, "A colour for each of the boxes."),
};
static constexpr ArgumentRow kOval[] = {kBox,    kFill,     kStroke,     kLineWidth, kAntialias,
                                        kMatrix, kGradient, kProperties, kDash};
static constexpr ArgumentRow kLine[] = {
    Of("from", ArgumentKind::Point, kNeeded, nullptr, "Where the line begins."),
    Of("to", ArgumentKind::Point, kNeeded, nullptr, "Where it ends."),
    kLineColour,
    kLineWidth,
    kAntialias,
    WordOf("join", "miter|round|bevel", 0, "\"miter\"", "How corners are joined."),
    WordOf("cap", "butt|round|square", 0, "\"butt\"", "How ends look."),
    kMatrix,
    kProperties,
    kDash,
};
static constexpr ArgumentRow kLines[] = {
    Of("segments", ArgumentKind::Segments, kNeeded, nullptr, "The lines, each from the first point to the second."),
    kLineColour, kLineWidth, kAntialias, kDash};
static constexpr ArgumentRow kArc[] = {
    Of("box", ArgumentKind::Box, kNeeded, nullptr, "The box around the whole ellipse: left, top, width, height."),
    NumberOf("start", kNeeded, nullptr, -360000, 360000, "Degrees from the right end of the ellipse."),
    NumberOf("end", kNeeded, nullptr, -360000, 360000, "Degrees; 0 is taken as 360."),
    Of("clockwise", ArgumentKind::Flag, kOptional, "true", "The sense in which the degrees grow."),
    Of("fill", ArgumentKind::Colour, kOptional, nullptr, "Fills the wedge to the middle; none by default."),
    kStroke,
    kLineWidth,
    kAntialias,
    kMatrix,
    Of("gradient", ArgumentKind::Gradient, kOptional, nullptr,
       "Has no effect on what is seen: fill is taken. For a wedge with a gradient draw a path."),
    kProperties,
    kDash,
};
static constexpr ArgumentRow kPath[] = {
    Of("data", ArgumentKind::Path, kNeeded, nullptr, "Path data as in SVG, such as \"M0 0L10 0L5 8Z\"."),
    Of("box", ArgumentKind::Box, kOptional, nullptr, "Where the path goes; where its points are by default."),
    Of("bounds", ArgumentKind::Box, kOptional, nullptr,
       "The box of the path's own points that is laid into box; the box around all points by default."),
    Of("smooth", ArgumentKind::Flag, kOptional, "false", "Draws a curve through the points of the path."),
    WordOf("rule", "nonzero|evenodd", 0, "\"nonzero\"", "Which parts are inside."),
    kFill,
    kStroke,
    kLineWidth,
    kAntialias,
    kMatrix,
    kGradient,
    kProperties,
    kDash,
};
static constexpr ArgumentRow kTextArguments[] = {
    kText,     Of("at", ArgumentKind::Point, kNeeded, nullptr, "Left end of the base line."),
    kFont,     kTextColour,
    kRotation, kAntialias,
    kMatrix,   kProperties,
};
static constexpr ArgumentRow kAlignedText[] = {
    kText,
    NumberOf("left", kNeeded, nullptr, -kFar, kFar, "Left edge in points."),
    NumberOf("right", kNeeded, nullptr, -kFar, kFar, "Right edge in points."),
    NumberOf("y", kNeeded, nullptr, -kFar, kFar, "The base line in points."),
    kAlign,
    kFont,
    kTextColour,
    kRotation,
    kAntialias,
    kMatrix,
    kProperties,
};
static constexpr ArgumentRow kTextLayout[] = {
    kText,
    kBox,
    kAlign,
    kVertical,
    kFont,
    kTextColour,
    kAntialias,
    kMatrix,
    kProperties,
    kWordWrap,
    Of("clip", ArgumentKind::Flag, kOptional, "false", "Draws nothing outside of the box."),
    kLineSpacing,
    kKerning,
    kKeepTop,
};
static constexpr ArgumentRow kStyledText[] = {
    Of("text", ArgumentKind::Text, kNeeded, nullptr,
       "The text with <SPAN STYLE=\"...\"> and <BR/>; &amp; &lt; &gt; for & < >."),
    kBox,
    kAlign,
    kVertical,
    kFont,
    kTextColour,
    kAntialias,
    kMatrix,
    kProperties,
    kWordWrap,
    kLineSpacing,
    kKerning,
    kKeepTop};
static constexpr ArgumentRow kPicture[] = {
    Of("source", ArgumentKind::Picture, kNeeded, nullptr,
       "A file, relative to the scene, or a data: URL: JPEG, PNG, GIF, BMP, TIFF, PDF or SVG."),
    kBox,
    WordOf(
        "mode", "center|stretch|topLeft|topLeft4|fitTop|fit|tile", 1, "\"fit\"",
        "Natural size in the middle, stretched, natural size at the top left (3 and 4), to fit at the top, to fit in "
        "the middle, tiled."),
    WordOf("align", "default|left|center|right|justified", 1, "\"default\"", "Where fitTop puts it."),
    NumberOf("opacity", kOptional, "1", 0, 1, "1 = opaque."),
    kMatrix,
    kProperties,
};
static constexpr ArgumentRow kRegion[] = {
    kRegionSteps,
    Of("fill", ArgumentKind::Colour, kOptional, nullptr, "Fills it; on pixels opaque whatever its alpha."),
    Of("stroke", ArgumentKind::Colour, kOptional, nullptr, "Frames it; on pixels opaque whatever its alpha."),
    kLineWidth,
    kDash,
};
static constexpr ArgumentRow kGradientArguments[] = {
    Of("gradient", ArgumentKind::Gradient, kNeeded, nullptr, "What is spread over the whole clip."),
    Of("box", ArgumentKind::Box, kOptional, nullptr, "What percent refer to; the whole scene by default."),
};
static constexpr ArgumentRow kShadow[] = {
    kBox,
    kRadius,
    Of("fill", ArgumentKind::Colour, kOptional, "\"#FFFFFF\"", "Colour of the rectangle that casts it."),
    Of("offset", ArgumentKind::Point, kOptional, "[3, 3]",
       "To the right, and up on pixels as the drawing library has it; no shadow unless both are above 0."),
    WholeOf("blur", kOptional, "6", 0, 500, "How soft it is, in points."),
    kAntialias,
};
static constexpr ArgumentRow kShading[] = {
    kBox,
    Of("fill", ArgumentKind::Colour, kNeeded, nullptr, "The colour, from alpha 1 down to one half."),
    Of("vertical", ArgumentKind::Flag, kOptional, "false", "From top to bottom; false: from left to right."),
};
static constexpr ArgumentRow kClip[] = {
    Of("box", ArgumentKind::Box, kOptional, nullptr, "What later calls are cut to; the whole scene by default."),
    Of("within", ArgumentKind::Box, kOptional, nullptr, "What box is cut to first."),
    Of("steps", ArgumentKind::Region, kOptional, nullptr, "A region instead of a box."),
};
static constexpr ArgumentRow kClear[] = {
    Of("box", ArgumentKind::Box, kOptional, nullptr, "What becomes transparent; the whole scene by default.")};
static constexpr ArgumentRow kLayer[] = {
    WholeOf("width", kNeeded, nullptr, 1, kLongestSide, "Points."),
    WholeOf("height", kNeeded, nullptr, 1, kLongestSide, "Points."),
    Of("calls", ArgumentKind::Calls, kNeeded, nullptr, "What is drawn on the layer, in its own coordinates."),
    Of("at", ArgumentKind::Point, kOptional, "[0, 0]", "Where its top left corner goes."),
    Of("box", ArgumentKind::Box, kOptional, nullptr, "Scales it into this box instead."),
    Of("clip", ArgumentKind::Flag, kOptional, "true", "Cuts it to its own size and drops the clip before it."),
    kMatrix,
};
static constexpr ArgumentRow kTransform[] = {
    Of("matrix", ArgumentKind::Matrix, kNeeded, nullptr,
       "Acts on later calls, within the transforms before it; the clip is dropped. Pixels and PDF alone.")};
static constexpr ArgumentRow kDeviceProperties[] = {
    Of("set", ArgumentKind::Properties, kNeeded, nullptr,
       "Attributes of every SVG element from here on, instead of those before; they win over a call's own.")};

// Primitives -------------------------------------------------------------------------------------------------------

static constexpr PrimitiveRow kPrimitives[] = {
    {"rect", "A rectangle, with round corners if wanted.", kRect, &ScenePainter::rect},
    {"rects", "Many filled rectangles with hard edges, as the cells of a table.", kRects, &ScenePainter::rects},
    {"oval", "The ellipse in a box.", kOval, &ScenePainter::oval},
    {"line", "A line.", kLine, &ScenePainter::line},
    {"lines", "Many lines of one kind.", kLines, &ScenePainter::lines},
    {"arc", "A part of an ellipse, or a wedge.", kArc, &ScenePainter::arc},
    {"path", "A path of lines and curves.", kPath, &ScenePainter::path},
    {"text", "A line of text at a point.", kTextArguments, &ScenePainter::text},
    {"alignedText", "A line of text between two edges.", kAlignedText, &ScenePainter::alignedText},
    {"textLayout", "A block of text in a box, broken into lines.", kTextLayout, &ScenePainter::textLayout},
    {"styledText", "A block of text with spans of other fonts and colours.", kStyledText, &ScenePainter::styledText},
    {"picture", "A picture.", kPicture, &ScenePainter::picture},
    {"region", "Boxes added and taken away, filled or framed.", kRegion, &ScenePainter::region},
    {"gradient", "A gradient over the whole clip.", kGradientArguments, &ScenePainter::gradient},
    {"shadow", "A filled rectangle that casts a shadow.", kShadow, &ScenePainter::shadow},
    {"shading", "A colour that fades to one half over the whole clip.", kShading, &ScenePainter::shading},
    {"clip", "What later calls are cut to, instead of the clip before.", kClip, &ScenePainter::clip},
    {"clear", "Makes pixels transparent. SVG and PDF: nothing.", kClear, &ScenePainter::clear},
    {"layer", "Calls drawn apart and laid down as one.", kLayer, &ScenePainter::layer},
    {"transform", "A matrix for later calls.", kTransform, &ScenePainter::transform},
    {"properties", "Attributes of later SVG elements.", kDeviceProperties, &ScenePainter::properties},
};

std::span<const PrimitiveRow> Primitives() { return kPrimitives; }

const PrimitiveRow* FindPrimitive(std::string_view name) {
    for (const PrimitiveRow& row : kPrimitives)
        if (name == row.name) return &row;
    return nullptr;
}

long NumberOfWord(const ArgumentRow& row, std::string_view word) {
    std::string_view words = row.words;
    for (long number = row.wordBase; !words.empty(); ++number) {
        size_t end = words.find('|');
        if (words.substr(0, end) == word) return number;
        words.remove_prefix(end == std::string_view::npos ? words.size() : end + 1);
    }
    return -1;
}

// Schema -----------------------------------------------------------------------------------------------------------

using Json = nlohmann::ordered_json;

static constexpr double kFarthest = kLargestCoordinate;

static Json Reference(const char* name) { return {{"$ref", std::string("#/$defs/") + name}}; }

static Json NumberSchema(double least, double most) {
    return {{"type", "number"}, {"minimum", least}, {"maximum", most}};
}

static Json WholeSchema(double least, double most) {
    return {{"type", "integer"}, {"minimum", static_cast<long>(least)}, {"maximum", static_cast<long>(most)}};
}

static Json Closed(Json properties, std::vector<std::string> needed) {
    Json schema = {{"type", "object"}, {"properties", std::move(properties)}};
    if (!needed.empty()) schema["required"] = needed;
    schema["additionalProperties"] = false;
    return schema;
}

static Json Tuple(size_t count, const Json& item) {
    return {{"type", "array"}, {"items", item}, {"minItems", count}, {"maxItems", count}};
}

static Json ListOf(const Json& item) { return {{"type", "array"}, {"items", item}}; }

static Json AnyOf(std::vector<Json> choices) { return {{"anyOf", std::move(choices)}}; }

static Json WordSchema(const char* words) {
    Json list = Json::array();
    for (std::string_view rest = words; !rest.empty();) {
        size_t end = rest.find('|');
        list.push_back(std::string(rest.substr(0, end)));
        rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    }
    return {{"enum", list}};
}

static Json SchemaOf(const ArgumentRow& row) {
    switch (row.kind) {
        case ArgumentKind::Number: return NumberSchema(row.least, row.most);
        case ArgumentKind::Whole: return WholeSchema(row.least, row.most);
        case ArgumentKind::Flag: return {{"type", "boolean"}};
        case ArgumentKind::Text:
        case ArgumentKind::Path:
        case ArgumentKind::Picture: return {{"type", "string"}};
        case ArgumentKind::Word: return WordSchema(row.words);
        case ArgumentKind::Colour: return Reference("colour");
        case ArgumentKind::Colours: return ListOf(Reference("colour"));
        case ArgumentKind::Point: return Reference("point");
        case ArgumentKind::Box: return Reference("box");
        case ArgumentKind::Boxes: return ListOf(Reference("box"));
        case ArgumentKind::Segments: return ListOf(Tuple(4, Reference("coordinate")));
        case ArgumentKind::Font: return AnyOf({Reference("name"), Reference("font")});
        case ArgumentKind::Gradient: return AnyOf({Reference("name"), Reference("gradient")});
        case ArgumentKind::Dash: return AnyOf({Reference("name"), Reference("dash")});
        case ArgumentKind::Matrix: return Reference("matrix");
        case ArgumentKind::Properties: return Reference("properties");
        case ArgumentKind::Region: return Reference("region");
        case ArgumentKind::Calls: return Reference("calls");
    }
    return {};
}

static Json DefinitionsOfValues() {
    Json coordinate = NumberSchema(-kFarthest, kFarthest), point = Reference("point");
    Json length = NumberSchema(0, kFarthest), colour = Reference("colour");
    Json stop = {{"type", "array"}, {"prefixItems", {NumberSchema(0, 1), colour}}, {"minItems", 2}, {"maxItems", 2}};
    Json stops = ListOf(stop);
    stops["minItems"] = 2;
    stops["maxItems"] = kMostStops;
    Json shared = {{"units", WordSchema("percent|points")}, {"matrix", Reference("matrix")}, {"stops", stops}};
    Json linear = Closed({{"from", point}, {"to", point}}, {"from", "to"});
    Json radial = Closed({{"center", point}, {"focus", point}, {"radius", length}}, {"center", "radius"});
    Json linearGradient = {{"linear", linear}}, radialGradient = {{"radial", radial}};
    linearGradient.update(shared);
    radialGradient.update(shared);
    Json lengths = ListOf(length);
    lengths["minItems"] = 1;
    lengths["maxItems"] = kMostDashes;
    Json factor = NumberSchema(-kFarthest, kFarthest);
    Json step = AnyOf({Closed({{"translate", point}}, {"translate"}),
                       Closed({{"rotate", AnyOf({factor, Tuple(3, factor)})}}, {"rotate"}),
                       Closed({{"scale", AnyOf({factor, Tuple(2, factor)})}}, {"scale"})});
    Json regionStep =
        AnyOf({Closed({{"add", Reference("box")}}, {"add"}), Closed({{"subtract", Reference("box")}}, {"subtract"})});
    Json region = ListOf(regionStep);
    region["maxItems"] = kMostRegionSteps;
    Json flag = {{"type", "boolean"}};
    Json font = {{"name", {{"type", "string"}}}, {"size", NumberSchema(0, kLargestFont)}};
    for (const char* style : {"bold", "italic", "underline", "strikethrough"}) font[style] = flag;
    return {
        {"coordinate", coordinate},
        {"point", Tuple(2, Reference("coordinate"))},
        {"box",
         {{"type", "array"},
          {"prefixItems", {coordinate, coordinate, length, length}},
          {"minItems", 4},
          {"maxItems", 4}}},
        {"name", {{"type", "string"}}},
        {"colour", AnyOf({{{"type", "string"}},
                          Closed({{"color", {{"type", "string"}}}, {"alpha", NumberSchema(0, 1)}}, {"color"})})},
        {"font", Closed(font, {})},
        {"gradient", AnyOf({Closed(linearGradient, {"linear", "stops"}), Closed(radialGradient, {"radial", "stops"})})},
        {"dash", AnyOf({lengths, Closed({{"lengths", lengths}, {"phase", length}}, {"lengths"})})},
        {"matrix", AnyOf({Tuple(6, factor), ListOf(step)})},
        {"properties", {{"type", "object"}, {"additionalProperties", {{"type", "string"}}}}},
        {"region", region},
    };
}

static Json PrimitiveSchema(const PrimitiveRow& primitive) {
    Json properties = Json::object();
    std::vector<std::string> needed;
    for (const ArgumentRow& row : primitive.arguments) {
        Json schema = SchemaOf(row);
        schema["description"] = row.help;
        if (row.fallback) schema["default"] = Json::parse(row.fallback);
        properties[row.name] = schema;
        if (row.needed) needed.push_back(row.name);
    }
    Json schema = Closed(properties, needed);
    schema["description"] = primitive.help;
    return schema;
}

static Json CallsSchema() {
    Json properties = Json::object();
    for (const PrimitiveRow& primitive : kPrimitives) properties[primitive.name] = PrimitiveSchema(primitive);
    Json call = Closed(properties, {});
    call["minProperties"] = call["maxProperties"] = 1;
    return ListOf(call);
}

static Json NamedValues(const char* kind) { return {{"type", "object"}, {"additionalProperties", Reference(kind)}}; }

std::string SceneSchema() {
    Json define = Closed({{"colours", NamedValues("colour")},
                          {"fonts", NamedValues("font")},
                          {"gradients", NamedValues("gradient")},
                          {"dashes", NamedValues("dash")}},
                         {});
    Json scene = Closed({{"$schema", {{"type", "string"}}},
                         {"width", WholeSchema(1, static_cast<double>(kLongestSide))},
                         {"height", WholeSchema(1, static_cast<double>(kLongestSide))},
                         {"background", Reference("colour")},
                         {"define", define},
                         {"calls", Reference("calls")}},
                        {"width", "height", "calls"});
    Json definitions = DefinitionsOfValues();
    definitions["calls"] = CallsSchema();
    Json schema = {{"$schema", "https://json-schema.org/draft/2020-12/schema"},
                   {"title", "A scene, as zr draw takes it"}};
    schema.update(scene);
    schema["$defs"] = definitions;
    return schema.dump(2) + "\n";
}

}  // namespace zrtool
