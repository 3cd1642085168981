// A smooth line through the points of a path.
#include <algorithm>
#include <cmath>
#include <new>

#include "graphics/ZR_API_Path.h"

static constexpr int kSweeps = 10;                              // of the solver
static constexpr double kLinesOfPoint = 0.25;                   // one line for 4 points of the longer side
static constexpr double kFarthest = 1e30;                       // points between two ends
static constexpr float kLeastRatio = 1e-9F, kMostRatio = 1e9F;  // of neighbouring chords

// Life -------------------------------------------------------------------------------------------------------------

ZR_Spline::ZR_Spline(const ZR_Point* points, long n) {
    constexpr long kArrays = 12;
    float** const arrays[kArrays] = {&x,           &y,           &dx,    &dy,  &tangentX, &tangentY,
                                     &endTangentX, &endTangentY, &ratio, &sub, &diagonal, &super};
    count = points ? std::max(n, 0L) : 0;
    for (float** array : arrays) *array = new (std::nothrow) float[static_cast<size_t>(count)]();
    if (std::any_of(arrays, arrays + kArrays, [](float** array) { return !*array; })) count = 0;
    for (long i = 0; i < count; ++i) {
        x[i] = points[i].x;
        y[i] = points[i].y;
    }
}

ZR_Spline::~ZR_Spline() {
    for (float* array : {x, y, dx, dy, tangentX, tangentY, endTangentX, endTangentY, ratio, sub, diagonal, super})
        delete[] array;
}

// Tangents ---------------------------------------------------------------------------------------------------------

void ZR_Spline::MatrixSolve(float* b) {
    const long n = count;
    if (n < 2) return;
    float* values = new (std::nothrow) float[static_cast<size_t>(n) * 2];
    if (!values) return;
    float *v = values, *next = values + n;
    for (long i = 0; i < n; ++i) v[i] = b[i] / diagonal[i];
    for (int sweep = 0; sweep < kSweeps; ++sweep) {
        next[0] = (b[0] - super[0] * v[1]) / diagonal[0];
        for (long i = 1; i < n - 1; ++i) next[i] = (b[i] - sub[i] * v[i - 1] - super[i] * v[i + 1]) / diagonal[i];
        next[n - 1] = (b[n - 1] - sub[n - 1] * v[n - 2]) / diagonal[n - 1];
        std::swap(v, next);
    }
    std::copy_n(v, n, b);
    delete[] values;
}

static float Chord(const ZR_Spline* spline, long i) {
    return std::sqrt(spline->dx[i] * spline->dx[i] + spline->dy[i] * spline->dy[i]);
}

// Guard: points that coincide or lie too far apart have no ratio of chords to divide by; they count as equal ones.
static float Ratio(float first, float second) {
    float ratio = second > 0 ? first / second : 0;
    return ratio >= kLeastRatio && ratio <= kMostRatio ? ratio : 1;
}

void ZR_Spline::Generate() {
    const long n = count;
    if (n < 2) return;
    for (long i = 0; i < n - 1; ++i) {
        dx[i] = x[i + 1] - x[i];
        dy[i] = y[i + 1] - y[i];
    }
    for (long i = 0; i < n - 2; ++i) ratio[i] = Ratio(Chord(this, i), Chord(this, i + 1));
    ratio[n - 2] = 1;
    for (long i = 1; i < n - 1; ++i) {
        const float r = ratio[i - 1];
        sub[i] = 1;
        diagonal[i] = 2 * r * (r + 1);
        super[i] = r * r * ratio[i];
        tangentX[i] = 3 * (r * r * dx[i] + dx[i - 1]);
        tangentY[i] = 3 * (r * r * dy[i] + dy[i - 1]);
    }
    diagonal[0] = 2;
    super[0] = ratio[0];
    sub[n - 1] = 1;
    diagonal[n - 1] = 2 * ratio[n - 2];
    tangentX[0] = 3 * dx[0];
    tangentY[0] = 3 * dy[0];
    tangentX[n - 1] = 3 * dx[n - 2];
    tangentY[n - 1] = 3 * dy[n - 2];
    MatrixSolve(tangentX);
    MatrixSolve(tangentY);
    for (long i = 0; i < n - 1; ++i) {
        endTangentX[i] = tangentX[i + 1] * ratio[i];
        endTangentY[i] = tangentY[i + 1] * ratio[i];
    }
}

// Lines ------------------------------------------------------------------------------------------------------------

static double WantedLines(const ZR_Spline* spline, long i) {
    const double x = std::fabs(std::trunc(spline->dx[i])), y = std::fabs(std::trunc(spline->dy[i]));
    if (std::isnan(x) || std::isnan(y)) return 0;
    return std::min(std::max(x, y), kFarthest) * kLinesOfPoint;  // so that the sum stays a number
}

// Guard: the part of the wanted lines that is drawn, so that far points do not make lines without end.
static double LinesPart(double wanted, long segments) {
    const double most = static_cast<double>(ZR_MOST_SPLINE_LINES) +
                        static_cast<double>(segments) * static_cast<double>(ZR_SPLINE_LINES_A_SEGMENT);
    return wanted > most ? most / wanted : 1;
}

static void AddLines(const ZR_Spline* spline, long i, long steps, ZR_Handle* out) {
    for (long k = 1; k <= steps; ++k) {
        const float t = static_cast<float>(k) * (1.0F / static_cast<float>(steps));
        const float h1 = (3 - 2 * t) * t * t, h2 = t * (t - 1) * (t - 1), h3 = (t - 1) * t * t;
        ZR_AddPathLine(out, spline->x[i] + spline->dx[i] * h1 + spline->tangentX[i] * h2 + spline->endTangentX[i] * h3,
                       spline->y[i] + spline->dy[i] * h1 + spline->tangentY[i] * h2 + spline->endTangentY[i] * h3);
    }
}

static void Flatten(const ZR_Spline* spline, ZR_Handle* out) {
    double all = 0;
    for (long i = 0; i < spline->count - 1; ++i) all += WantedLines(spline, i);
    const double part = LinesPart(all, spline->count - 1);
    out->Secure(static_cast<long>(all * part) + spline->count);  // what cannot be had is missed below
    ZR_AddPathMove(out, spline->x[0], spline->y[0]);
    for (long i = 0; i < spline->count - 1; ++i) {
        double wanted = WantedLines(spline, i) * part;
        AddLines(spline, i, wanted >= 1 ? static_cast<long>(wanted) : 1, out);
    }
}

bool ZR_CreateSmoothPath(const ZR_Handle* path, ZR_Handle* smoothed) {
    ZR_CreatePathHandle(smoothed);
    const long n = ZR_GetPathRecord(path, 1) ? path->count : 0;
    if (n < 3) return false;
    ZR_Handle points;
    points.Create(sizeof(ZR_Point), n);
    auto ends = reinterpret_cast<ZR_Point*>(points.data);
    for (long i = 0; ends && i < n; ++i) {
        const ZR_PathRecord* record = ZR_GetPathRecord(path, i + 1);
        ends[i] = {record->x, record->y};  // Required: of every kind; a close stands at (0, 0)
    }
    ZR_Spline spline(ends, n);
    spline.Generate();
    if (spline.count > 0) Flatten(&spline, smoothed);
    points.Dispose();
    return true;
}
