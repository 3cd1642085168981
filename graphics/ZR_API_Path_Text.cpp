// Path text into path records: the cursor, the numbers and the commands.
#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>

#include "graphics/ZR_API_Path.h"

static constexpr long kMostNumberUnits = 19;
static constexpr double kRadian = 0.017453292519943295;       // of a degree
static constexpr double kArcSegment = 1.5717963267948964;     // pi / 2 + 0.001: at most this angle for one curve
static constexpr double kArcPrecision = 1e-5;                 // of the ends, in parts of the greatest coordinate
static constexpr double kFullTurn = 6.283185307179586476925;  // 2 pi

// The letters, their codes and how many numbers follow them.
static constexpr struct {
    char letter;
    short code, numbers;
} kCommands[] = {
    {'Z', 1, 0},  {'z', 1, 0},  {'M', 2, 2},  {'m', 3, 2},  {'L', 4, 2},  {'l', 5, 2},  {'C', 6, 6},
    {'c', 7, 6},  {'Q', 8, 4},  {'q', 9, 4},  {'A', 10, 7}, {'a', 11, 7}, {'H', 12, 1}, {'h', 13, 1},
    {'V', 14, 1}, {'v', 15, 1}, {'S', 16, 4}, {'s', 17, 4}, {'T', 18, 2}, {'t', 19, 2},
};

// The cursor -------------------------------------------------------------------------------------------------------

void ZR_SVGPathParser::Create(ZR_Text* source) {
    *this = {};
    text = source;
    position = 1;
}

static bool IsDigit(unsigned short unit) { return unit >= '0' && unit <= '9'; }

static bool BeginsNumber(unsigned short unit) {
    return IsDigit(unit) || unit == '+' || unit == '-' || unit == '.' || unit == 'E' || unit == 'e';
}

short ZR_SVGPathParser::Next() {
    if (error) return 0;
    memset(arguments, 0, sizeof arguments);
    if (!text || position > text->count) return command = 0;
    lastChar = text->GetChar(position - 1);
    unsigned short letter = lastChar;
    if (BeginsNumber(letter)) {
        letter = lastLetter == 'M' ? 'L' : lastLetter == 'm' ? 'l' : lastLetter;
        // Guard: a close takes no number, so that repeating it would go on for ever.
        if (letter == 'Z' || letter == 'z') letter = 0;
    } else {
        ++position;
        if (letter == ' ' || letter == ',') return 0;
    }
    for (const auto& row : kCommands) {
        if (row.letter != letter) continue;
        command = row.code;
        lastLetter = letter;
        for (short i = 0; i < row.numbers && !error; ++i) arguments[i] = static_cast<float>(ReadNum());
        return error ? 0 : command;
    }
    error = ZR_PATH_BAD_COMMAND;
    return 0;
}

// As the C locale reads it: the longest part that is a number, 0 without one, infinity beyond the range.
static double Number(const char* digits, long n) {
    if (n > 0 && *digits == '+') {
        ++digits;
        --n;
    }
    double value = 0;
    auto read = std::from_chars(digits, digits + n, value);
    if (read.ec != std::errc::result_out_of_range) return value;
    // Beyond the range: with a negative exponent too small.
    const char* end = digits + n;
    const char* exponent = std::find_if(digits, end, [](char c) { return c == 'e' || c == 'E'; });
    if (end - exponent > 1 && exponent[1] == '-') return 0;
    return digits[0] == '-' ? -HUGE_VAL : HUGE_VAL;
}

double ZR_SVGPathParser::ReadNum() {
    char digits[kMostNumberUnits];
    long n = 0, first = position;
    bool point = false;
    for (; !error && text && position <= text->count; ++position) {
        unsigned short unit = lastChar = text->GetChar(position - 1);
        if (unit == ' ' || unit == ',') {
            if (n > 0) break;
            continue;
        }
        bool exponent = n > 0 && (digits[n - 1] == 'e' || digits[n - 1] == 'E');
        if (unit == '.' && point) {
            --position;  // Required: the unit before it is read again: "1.5.5" is 1.5 and 5.5
            if (position <= first) error = ZR_PATH_BAD_NUMBER;  // guard: the next number would begin here for ever
            break;
        }
        // Required: "+" does not follow an exponent letter, "-" does.
        if (!BeginsNumber(unit) || (unit == '+' && n > 0) || (unit == '-' && n > 0 && !exponent)) break;
        if (n == 0) first = position;
        if (n == kMostNumberUnits) {
            error = ZR_PATH_BAD_NUMBER;
            break;
        }
        point |= unit == '.';
        digits[n++] = static_cast<char>(unit);
    }
    if (!error && n == 0) error = ZR_PATH_BAD_NUMBER;
    return error ? 0 : Number(digits, n);
}

// Arcs -------------------------------------------------------------------------------------------------------------

struct ArcMatrix {
    double a, b, c, d;
    void Apply(double x, double y, double* outX, double* outY) const {
        *outX = a * x + b * y;
        *outY = c * x + d * y;
    }
};

struct Circle {  // an ellipse arc on the unit circle
    ArcMatrix back;
    double x, y, start, sweep;
};

// Whether the arc comes out where it shall, as far as floats can tell: with numbers out of all proportion it does not.
static bool Meets(const Circle& circle, double angle, double x, double y, double scale) {
    double px, py;
    circle.back.Apply(circle.x + std::cos(angle), circle.y + std::sin(angle), &px, &py);
    return std::fabs(px - x) + std::fabs(py - y) <= kArcPrecision * scale;
}

// The circle through two points; false = there is none: a radius is 0, or the numbers are beyond reckoning.
static bool FindCircle(const float* arguments, double x0, double y0, double x1, double y1, Circle* circle) {
    double rx = arguments[0], ry = arguments[1];
    const double s = std::sin(arguments[2] * kRadian), c = std::cos(arguments[2] * kRadian);
    const bool large = arguments[3] == 1, sweep = arguments[4] == 1;
    if (rx == 0 || ry == 0) return false;
    const double dx = (x0 - x1) / 2, dy = (y0 - y1) / 2, u = c * dx + s * dy, v = -s * dx + c * dy;
    const double length = u * u / (rx * rx) + v * v / (ry * ry);
    if (length > 1) {
        rx *= std::sqrt(length);
        ry *= std::sqrt(length);
    }
    const ArcMatrix there = {c / rx, s / rx, -s / ry, c / ry};
    double px, py, qx, qy;
    there.Apply(x0, y0, &px, &py);
    there.Apply(x1, y1, &qx, &qy);
    const double distance = (qx - px) * (qx - px) + (qy - py) * (qy - py);
    if (!(distance > 0)) return false;
    double f = std::sqrt(std::fmax(0, 1 / distance - 0.25));
    if (large == sweep) f = -f;
    circle->x = (px + qx) / 2 - f * (qy - py);
    circle->y = (py + qy) / 2 + f * (qx - px);
    circle->start = std::atan2(py - circle->y, px - circle->x);
    circle->sweep = std::atan2(qy - circle->y, qx - circle->x) - circle->start;
    if (circle->sweep < 0 && sweep) circle->sweep += kFullTurn;
    if (circle->sweep > 0 && !sweep) circle->sweep -= kFullTurn;
    circle->back = {c * rx, -s * ry, s * rx, c * ry};
    const double scale =
        std::max({std::fabs(x0), std::fabs(y0), std::fabs(x1), std::fabs(y1), std::fabs(rx), std::fabs(ry)});
    return circle->sweep != 0 && Meets(*circle, circle->start, x0, y0, scale) &&
           Meets(*circle, circle->start + circle->sweep, x1, y1, scale);
}

static void AddCirclePart(ZR_Handle* path, const Circle& circle, double a, double b) {
    const double quarter = std::sin((b - a) / 4), t = 8.0 / 3 * quarter * quarter / std::sin((b - a) / 2);
    const double x3 = circle.x + std::cos(b), y3 = circle.y + std::sin(b);
    double p[6];
    circle.back.Apply(circle.x + std::cos(a) - t * std::sin(a), circle.y + std::sin(a) + t * std::cos(a), &p[0], &p[1]);
    circle.back.Apply(x3 + t * std::sin(b), y3 - t * std::cos(b), &p[2], &p[3]);
    circle.back.Apply(x3, y3, &p[4], &p[5]);
    ZR_AddPathCurve(path, static_cast<float>(p[0]), static_cast<float>(p[1]), static_cast<float>(p[2]),
                    static_cast<float>(p[3]), static_cast<float>(p[4]), static_cast<float>(p[5]));
}

void ZR_SVGPathParser::AddArc(ZR_Handle* path, bool relative, ZR_Point* cur) {
    const ZR_Point from = *cur;
    double x = arguments[5], y = arguments[6];
    if (relative) {
        x += from.x;
        y += from.y;
    }
    *cur = {static_cast<float>(x), static_cast<float>(y)};
    // Guards: an arc to where it begins is nothing, one without a circle is the line to its end.
    if (x == from.x && y == from.y) return;
    Circle circle;
    if (!FindCircle(arguments, from.x, from.y, x, y, &circle)) return ZR_AddPathLine(path, cur->x, cur->y);
    const long n = static_cast<long>(std::ceil(std::fabs(circle.sweep / kArcSegment)));
    for (long i = 0; i < n; ++i)
        AddCirclePart(path, circle, circle.start + static_cast<double>(i) * circle.sweep / static_cast<double>(n),
                      circle.start + static_cast<double>(i + 1) * circle.sweep / static_cast<double>(n));
}

// Commands ---------------------------------------------------------------------------------------------------------

struct PathReader {
    ZR_SVGPathParser parser;
    ZR_Handle* path;
    ZR_Point cur, start, last;  // where the pen is; where the subpath began; the last control point
    bool newSubpath;            // the next record begins one
};

// A pair of the command's numbers, from first on.
static ZR_Point Pair(const PathReader* reader, long first, bool relative) {
    const float* numbers = reader->parser.arguments + first;
    if (!relative) return {numbers[0], numbers[1]};
    return {reader->cur.x + numbers[0], reader->cur.y + numbers[1]};
}

static ZR_Point Reflected(const PathReader* reader) {
    return {2 * reader->cur.x - reader->last.x, 2 * reader->cur.y - reader->last.y};
}

static void AddCurve(PathReader* reader, ZR_Point first, ZR_Point second, ZR_Point end) {
    ZR_AddPathCurve(reader->path, first.x, first.y, second.x, second.y, end.x, end.y);
    reader->cur = end;
    reader->last = second;
}

static void AddQuad(PathReader* reader, ZR_Point control, ZR_Point end, bool reflects) {
    ZR_AddPathQuad(reader->path, control.x, control.y, end.x, end.y);
    reader->cur = end;
    // Required: a "Q" leaves its end point, so that a "T" behind it has its control point where it begins.
    reader->last = reflects ? control : end;
}

static void AddLine(PathReader* reader, ZR_Point end) {
    ZR_AddPathLine(reader->path, end.x, end.y);
    reader->cur = reader->last = end;
}

static void AddMove(PathReader* reader, bool relative) {
    const ZR_PathRecord* before = ZR_GetPathRecord(reader->path, reader->path->count);
    // Required: only a relative move knows the start of a closed subpath; all else goes on from its last point.
    if (relative && before && before->kind == ZR_PATH_CLOSE) reader->cur = reader->start;
    reader->cur = reader->last = Pair(reader, 0, relative);
    ZR_AddPathMove(reader->path, reader->cur.x, reader->cur.y);
}

static void RunCommand(PathReader* reader, short code) {
    const float* numbers = reader->parser.arguments;
    const long before = reader->path->count;
    const ZR_Point cur = reader->cur;
    switch (code) {
        case 1:
            ZR_AddPathClose(reader->path);
            reader->last = cur;
            if (reader->newSubpath) reader->start = cur;  // Required: a close behind a close moves the start as well
            reader->newSubpath = true;
            return;
        case 2:
        case 3: AddMove(reader, code == 3); break;
        case 4:
        case 5: AddLine(reader, Pair(reader, 0, code == 5)); break;
        case 12: AddLine(reader, {numbers[0], cur.y}); break;
        case 13: AddLine(reader, {cur.x + numbers[0], cur.y}); break;
        case 14: AddLine(reader, {cur.x, numbers[0]}); break;
        case 15: AddLine(reader, {cur.x, cur.y + numbers[0]}); break;
        case 6:
        case 7:
            AddCurve(reader, Pair(reader, 0, code == 7), Pair(reader, 2, code == 7), Pair(reader, 4, code == 7));
            break;
        case 16:
        case 17: AddCurve(reader, Reflected(reader), Pair(reader, 0, code == 17), Pair(reader, 2, code == 17)); break;
        case 8:
        case 9: AddQuad(reader, Pair(reader, 0, code == 9), Pair(reader, 2, code == 9), /*reflects*/ false); break;
        case 18:
        case 19: AddQuad(reader, Reflected(reader), Pair(reader, 0, code == 19), /*reflects*/ true); break;
        case 10:
        case 11:
            reader->parser.AddArc(reader->path, code == 11, &reader->cur);
            reader->last = reader->cur;
            break;
        default: return;
    }
    if (!reader->newSubpath || reader->path->count == before) return;
    reader->start = reader->cur;
    reader->newSubpath = false;
}

void ZR_CreateHandleFromPathText(ZR_Text* text, ZR_Handle* path, long* error) {
    path->Dispose();
    ZR_CreatePathHandle(path);
    if (!text || !text->data || text->count < 1) return;
    PathReader reader = {};
    reader.parser.Create(text);
    reader.path = path;
    reader.newSubpath = true;
    while (reader.parser.position <= text->count) {
        short code = reader.parser.Next();
        if (error) *error = reader.parser.error;
        if (reader.parser.error) break;
        RunCommand(&reader, code);
    }
}
