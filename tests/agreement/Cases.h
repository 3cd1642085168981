// What both back ends draw: every primitive crossed with what can be asked of it, and for each case either agreement or
// the reason why the two are to differ.
#ifndef ZR_TESTS_AGREEMENT_CASES_H
#define ZR_TESTS_AGREEMENT_CASES_H

#include <string>
#include <vector>

#include "tests/agreement/Pictures.h"

namespace agreement {

enum class Kind {
    Shapes,   // compared pixel by pixel
    Text,     // compared by position and extent
    Document  // common renderers cannot draw it: shown, compared nowhere
};

struct Case {
    std::string group;  // the primitive
    std::string name;
    Draw draw;
    const char* reason = nullptr;  // one of kReasons; null = the pictures agree
    Kind kind = Kind::Shapes;
};

// Why the back ends are to differ. docs/drawing.md lists each of them.
inline constexpr char kNoDash[] = "SVG has no dashes";
inline constexpr char kNoAntialias[] = "SVG has no antialias setting for shapes";
inline constexpr char kNoJoinOrCap[] = "SVG has no line joins and caps";
inline constexpr char kNoShadow[] = "SVG has no shadows";
inline constexpr char kNoLayer[] = "SVG has no layers";
inline constexpr char kNoTransform[] = "SVG has no transform of the device";
inline constexpr char kNoShading[] = "SVG has no axial shadings";
inline constexpr char kNoRotation[] = "SVG text has no rotation argument";
inline constexpr char kWholePointClip[] = "SVG clips are widened to whole points";
inline constexpr char kWholePointText[] = "SVG text stands at whole points in whole sizes";
inline constexpr char kPathGradient[] = "A path with a gradient is unfilled in SVG";
inline constexpr char kPathTarget[] = "SVG writes a path as it stands, without target, bounds and smoothing";
inline constexpr char kRegionAlpha[] = "Regions are opaque on pixels";
inline constexpr char kRegionOutlines[] = "A subtracted rectangle of a region is one more outline in SVG";
inline constexpr char kRegionFrame[] = "The frame of a region in SVG is the device's own path";
inline constexpr char kClipUnderMatrix[] = "A clip in SVG moves with the matrix of the element";
inline constexpr char kSharpCorner[] = "Sharp corners are cut at a mitre of 10 on pixels and of 4 in SVG";
inline constexpr char kSlantedPercent[] = "A slanted gradient in percent leans with the sides of the shape in SVG";
inline constexpr char kFullArc[] =
    "A full turn as an arc is drawn clockwise in SVG alone, the other way on pixels alone";
inline constexpr char kCornerLimit[] = "Corner radii are limited to one half of the shorter side on pixels alone";
inline constexpr char kSingleStop[] = "A gradient of one stop draws nothing on pixels";
inline constexpr char kGradientMatrix[] = "The matrix of a gradient acts from other origins";
inline constexpr char kGradientUnderMatrix[] = "Under a matrix a gradient is mirrored on pixels";

inline constexpr char kBottomText[] = "A block of text at the bottom stands two points higher on pixels";
inline constexpr char kNotJustified[] = "SVG lines are not justified";
inline constexpr char kTextMatrix[] = "A line of text turns the other way on pixels under a matrix";
inline constexpr char kRendererBox[] = "The renderer of the comparison takes the box of a turned shape too large";
inline constexpr char kPictureMode[] =
    "Display modes 1, 3, 4 and 6 fill the rectangle in SVG, with its proportions kept";
inline constexpr char kTiling[] = "SVG tiles a picture in x alone, and stretches the tiles";

std::vector<Case> AllCases();
std::vector<const char*> AllReasons();

// A scene of agreeing primitives, the same for a seed; its calls can be drawn one by one.
struct Scene {
    std::vector<Draw> calls;
    int translucent = 0;  // fills and strokes that let through what is below: each rounds once more
};
Scene RandomScene(unsigned seed);

}  // namespace agreement

#endif
