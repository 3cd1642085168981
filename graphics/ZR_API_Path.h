// Paths: a ZR_Handle of ZR_PathRecord, in document coordinates with y down. Read from and written as path text, moved,
// scaled, and turned into a CGPath, on the way there smoothed with a spline if wanted. Arcs become cubic curves.
#ifndef ZR_API_PATH_H
#define ZR_API_PATH_H

#include "core/ZR_API_Text.h"
#include "graphics/ZR_API_Geometry.h"
#include "platform/CoreGraphics/CGTypes.h"

// Records ----------------------------------------------------------------------------------------------------------

enum ZR_PathKind : short {
    ZR_PATH_MOVE = 1,
    ZR_PATH_LINE = 2,
    ZR_PATH_CURVE = 3,  // cubic
    ZR_PATH_QUAD = 4,   // quadratic
    ZR_PATH_ARC = 5,    // passed through, never made here
    ZR_PATH_CLOSE = 6,
};

struct ZR_PathRecord {
    short kind;      // ZR_PathKind
    float x, y;      // end point; 0 where the kind has no use for it, as all below
    float cx1, cy1;  // control point of kinds 3 and 4, the first of a cubic
    float cx2, cy2;  // second control point of kind 3
    char flag;       // always 0
};
static_assert(sizeof(ZR_PathRecord) == 32, "the element size of a path");

void ZR_CreatePathHandle(ZR_Handle* path);  // an empty path; growStep 100
// [1..count]; borrowed until the next growth; null outside, and where the elements are no path records
inline ZR_PathRecord* ZR_GetPathRecord(const ZR_Handle* path, long index) {
    return path->elementSize == sizeof(ZR_PathRecord) ? reinterpret_cast<ZR_PathRecord*>(path->GetMemPtr(index))
                                                      : nullptr;
}
void ZR_AddPathMove(ZR_Handle* path, float x, float y);
void ZR_AddPathLine(ZR_Handle* path, float x, float y);
void ZR_AddPathCurve(ZR_Handle* path, float cx1, float cy1, float cx2, float cy2, float x, float y);
void ZR_AddPathQuad(ZR_Handle* path, float cx1, float cy1, float x, float y);
void ZR_AddPathClose(ZR_Handle* path);

// Path text. *error: 0, -1 bad command, -2 bad number; the records made up to there stay. An empty or null text leaves
// *error as it is, and the path empty.
void ZR_CreateHandleFromPathText(ZR_Text* text, ZR_Handle* path,
                                 long* error);             // path must be living; error may be null
void ZR_GetPathText(const ZR_Handle* path, ZR_Text* out);  // replaces out

void ZR_OffsetPathHandle(ZR_Handle* path, ZR_Point delta);  // all points of every record, of any kind
// The points that a record's kind uses; an arc's end and a close stay. An empty rectangle = nothing.
void ZR_ScalePathHandle(ZR_Handle* path, const ZR_Rect* from, const ZR_Rect* to);
// Around control points too; closes and unknown kinds add nothing, but the first record's end point always counts.
void ZR_GetPathBoundingBox(const ZR_Handle* path, ZR_Rect* out);

// The end points of all records, of any kind, as the points of a spline, flattened into lines: about one for every 4
// points of a segment's longer side. smoothed is created: what it held is not disposed. False = fewer
// than 3 records, smoothed is empty; true with an empty list = no memory.
bool ZR_CreateSmoothPath(const ZR_Handle* path, ZR_Handle* smoothed);

// CGPath. device: a ZR_Device whose height flips y; null = height 0.
typedef struct CGPath CGPath;
CGPath* ZR_CreatePathFromHandle(const ZR_Handle* path, bool smooth, void* device);  // handed over; null = empty path
void ZR_DisposePath(CGPath* path);                                                  // null = nothing
bool ZR_IsPointInPath(CGPath* path, ZR_Point p, void* device);                      // even-odd; null = false

// Path text, command by command --------------------------------------------------------------------------------------

inline constexpr long ZR_PATH_BAD_COMMAND = -1;
inline constexpr long ZR_PATH_BAD_NUMBER = -2;

struct ZR_SVGPathParser {
    ZR_Text* text;              // borrowed
    long position;              // [1..count], at the end count + 1
    long error;                 // 0, ZR_PATH_BAD_COMMAND, ZR_PATH_BAD_NUMBER
    short command;              // code of the last command
    unsigned short lastChar;    // the unit last looked at
    unsigned short lastLetter;  // letter of the last command; 0 = none yet
    float arguments[7];         // cleared by each Next

    void Create(ZR_Text* text);
    short Next();      // a command code; 0 = nothing to do
    double ReadNum();  // 0 with an error
    // The arc that arguments describe, as curves from *cur, which becomes its end. Without a circle (a radius of 0)
    // the line to its end, and nothing if it ends where it begins.
    void AddArc(ZR_Handle* path, bool relative, ZR_Point* cur);
};

// Splines ------------------------------------------------------------------------------------------------------------

// Lines of one smoothed path: so many, and so many more for each segment. A path that wants more has fewer everywhere.
inline constexpr long ZR_MOST_SPLINE_LINES = 1L << 20;
inline constexpr long ZR_SPLINE_LINES_A_SEGMENT = 32;

// A parametric cubic spline through points, with natural ends. The one structure here with a destructor: it lives on
// the stack of whoever smooths.
struct ZR_Spline {
    float *x, *y;                      // owned, as all arrays; null = no memory, count is 0 then
    float *dx, *dy;                    // to the next point
    float *tangentX, *tangentY;        // at the start of a segment
    float *endTangentX, *endTangentY;  // at its end
    float* ratio;                      // of a chord to the next
    float *sub, *diagonal, *super;     // the system to solve
    long count;                        // points

    ZR_Spline(const ZR_Point* points, long count);  // copies the points
    ~ZR_Spline();
    ZR_Spline(const ZR_Spline&) = delete;
    ZR_Spline& operator=(const ZR_Spline&) = delete;
    void Generate();             // below 2 points: nothing
    void MatrixSolve(float* b);  // Required: ten Jacobi sweeps, an approximation; b becomes the solution
};

// Arcs of a bounding rectangle
// -----------------------------------------------------------------------------------------

// The curves of an arc as points: 1 and 3 more a curve, 13 at most. out may be null to count. 0 = no arc.
long ZR_arc2polybezier(ZR_Point* out, float x, float y, float width, float height, float startDegrees,
                       float sweepDegrees);
// One curve of at most a quarter circle to out[0..3], out[0] only with writeFirst; radians.
void ZR_add_arc_part(ZR_Point* out, float x, float y, float width, float height, float start, float end,
                     bool writeFirst);
void ZR_unstretch_angle(float* angle, float radiusX, float radiusY);  // degrees in, radians of the circle out
long roundr(float value);                                             // half and more goes up

#endif
