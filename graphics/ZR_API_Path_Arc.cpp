// The curves of an arc of a bounding rectangle.
#include <algorithm>
#include <cmath>

#include "graphics/ZR_API_Path.h"

static constexpr float kPi = 3.14159265358979F;
static constexpr long kMostSpans = 4;
static constexpr double kStraight = 1e-5;  // an angle whose sine or cosine is below this lies on an axis

long roundr(float value) { return ZR_TruncatedToLong(std::floor(value + 0.5)); }

void ZR_unstretch_angle(float* angle, float radiusX, float radiusY) {
    const double pi = 3.14159265358979323846, a = *angle * pi / 180, sine = std::sin(a), cosine = std::cos(a);
    *angle = static_cast<float>(a);
    // Guard: an ellipse without a radius has no other angle.
    if (std::fabs(cosine) < kStraight || std::fabs(sine) < kStraight || radiusX == 0 || radiusY == 0) return;
    const double s = std::atan2(sine / std::fabs(radiusY), cosine / std::fabs(radiusX));
    *angle = static_cast<float>(s + 2 * pi * (std::floor(a / (2 * pi) + 0.5) - std::floor(s / (2 * pi) + 0.5)));
}

void ZR_add_arc_part(ZR_Point* out, float x, float y, float width, float height, float start, float end,
                     bool writeFirst) {
    const float rx = width / 2, ry = height / 2, half = (end - start) / 2, sine = std::sin(half);
    const float a = sine == 0 ? 0 : 1.3333334F * (1 - std::cos(half)) / sine;  // guard: a span of nothing
    const float sinStart = std::sin(start), cosStart = std::cos(start), sinEnd = std::sin(end), cosEnd = std::cos(end);
    const ZR_Point unit[] = {{cosStart, sinStart},
                             {cosStart - a * sinStart, sinStart + a * cosStart},
                             {cosEnd + a * sinEnd, sinEnd - a * cosEnd},
                             {cosEnd, sinEnd}};
    for (long i = writeFirst ? 0 : 1; i < 4; ++i) out[i] = {unit[i].x * rx + (x + rx), unit[i].y * ry + (y + ry)};
}

long ZR_arc2polybezier(ZR_Point* out, float x, float y, float width, float height, float startDegrees,
                       float sweepDegrees) {
    float s = startDegrees, end = startDegrees + sweepDegrees;
    ZR_unstretch_angle(&s, width / 2, height / 2);
    ZR_unstretch_angle(&end, width / 2, height / 2);
    const bool forward = sweepDegrees > 0;
    if (!(forward ? s < end : end < s)) return 0;  // what is no number ends here too
    for (long span = 0; span < kMostSpans; ++span) {
        const float next = forward ? s + kPi / 2 : s - kPi / 2;
        const float to = forward ? std::min(next, end) : std::max(next, end);
        if (out) ZR_add_arc_part(out + 3 * span, x, y, width, height, s, to, /*writeFirst*/ span == 0);
        s = next;
        if (forward ? s >= end : s <= end) return 3 * (span + 1) + 1;
    }
    return 3 * kMostSpans + 1;  // Required: more than a full turn is cut here
}
