// Commands by number: new pictures made of the pixels of others. What they give is a PNG picture.
#include <algorithm>
#include <cmath>

#include "host/CommandCall.h"
#include "host/Commands_Private.h"
#include "host/Native.h"

namespace zrhost {
namespace {

bool Fits(double width, double height) {
    return width >= 1 && height >= 1 && width <= 32767 && height <= 32767 && width * height <= double(kMostPixels);
}

std::optional<Pixels> Decoded(const CommandCall& call, int i) {
    const Picture* picture = call.picture(i);
    return picture ? DecodePicture(*picture) : std::nullopt;
}

void AssignPixels(CommandCall& call, int i, const Pixels& pixels) {
    const std::vector<uint8_t> bytes = EncodePicture(pixels, *FindPictureKind("image/png"), 1);
    Finish(call, !bytes.empty() && call.assignPicture(i, NewPicture(bytes)) ? 0 : int(ZR_ERR_PARAMETER));
}

// A source pixel's share of a new one along one side.
struct Share {
    int first = 0;
    std::vector<float> weights;
};

// Each new pixel is the mean of the part of the source that it covers; a larger picture takes the nearest ones.
std::vector<Share> SharesOf(int from, int to) {
    std::vector<Share> shares(static_cast<size_t>(to));
    const double step = double(from) / to;
    for (int i = 0; i < to; ++i) {
        double start = i * step, end = std::max(start + step, start + 1e-6);
        if (step < 1) start = end = std::floor(start + step / 2);
        Share& share = shares[size_t(i)];
        share.first = std::clamp(int(start), 0, from - 1);
        const int last = std::clamp(int(std::ceil(end)) - 1, share.first, from - 1);
        for (int x = share.first; x <= last; ++x) {
            const double covered = std::min(end, x + 1.0) - std::max(start, double(x));
            share.weights.push_back(step < 1 ? 1.0F : float(std::max(covered, 0.0)));
        }
    }
    return shares;
}

// Colours count by their alpha, so that clear pixels leave no trace.
void Average(const Pixels& from, const Share& columns, const Share& rows, uint8_t* to) {
    double sum[4] = {}, all = 0;
    for (size_t y = 0; y < rows.weights.size(); ++y)
        for (size_t x = 0; x < columns.weights.size(); ++x) {
            const uint8_t* pixel = from.at(columns.first + int(x), rows.first + int(y));
            const double weight = double(rows.weights[y]) * double(columns.weights[x]);
            for (int c = 0; c < 3; ++c) sum[c] += weight * pixel[3] * pixel[c];
            sum[3] += weight * pixel[3];
            all += weight;
        }
    for (int c = 0; c < 3; ++c) to[c] = sum[3] > 0 ? uint8_t(std::min(sum[c] / sum[3] + 0.5, 255.0)) : 0;
    to[3] = all > 0 ? uint8_t(std::min(sum[3] / all + 0.5, 255.0)) : 0;
}

Pixels Scaled(const Pixels& from, int width, int height) {
    Pixels to(width, height);
    const std::vector<Share> columns = SharesOf(from.width, width), rows = SharesOf(from.height, height);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) Average(from, columns[size_t(x)], rows[size_t(y)], to.at(x, y));
    return to;
}

// Over what stands there; what lies outside is cut off.
void Place(const Pixels& from, int64_t left, int64_t top, Pixels* to) {
    for (int64_t y = std::max<int64_t>(0, -top); y < std::min<int64_t>(from.height, to->height - top); ++y)
        for (int64_t x = std::max<int64_t>(0, -left); x < std::min<int64_t>(from.width, to->width - left); ++x) {
            const uint8_t* over = from.at(int(x), int(y));
            uint8_t* under = to->at(int(x + left), int(y + top));
            const int a = over[3], rest = under[3] * (255 - a) / 255, sum = a + rest;
            for (int c = 0; c < 3; ++c) under[c] = sum ? uint8_t((over[c] * a + under[c] * rest) / sum) : 0;
            under[3] = uint8_t(sum);
        }
}

// 679 CREATE THUMBNAIL(source; out; [width]; [height]; [mode]; [depth]): 48 x 48 without sizes. Mode 2 stretches, 5
// keeps the proportions, anything else keeps them and centres in the whole size; the depth has no effect.
void CreateThumbnail(CommandCall& call) {
    const int width = call.integer(3, 48), height = call.integer(4, 48), mode = call.integer(5, 6);
    const std::optional<Pixels> source = Fits(width, height) ? Decoded(call, 1) : std::nullopt;
    if (!source) return Finish(call, ZR_ERR_PARAMETER);
    if (mode == 2) return AssignPixels(call, 2, Scaled(*source, width, height));
    const double scale = std::min(double(width) / source->width, double(height) / source->height);
    const int w = std::clamp(int(source->width * scale), 1, width);
    const int h = std::clamp(int(source->height * scale), 1, height);
    const Pixels small = Scaled(*source, w, h);
    if (mode == 5) return AssignPixels(call, 2, small);
    Pixels whole(width, height);
    Place(small, (width - w) / 2, (height - h) / 2, &whole);
    AssignPixels(call, 2, whole);
}

// 987 COMBINE PICTURES(out; first; operator; second; [hOffset]; [vOffset]): 1 side by side, 2 one below the other, 3
// the second over the first.
void CombinePictures(CommandCall& call) {
    const std::optional<Pixels> first = Decoded(call, 2), second = Decoded(call, 4);
    const int way = call.integer(3);
    const int64_t x = call.integer(5) + int64_t(way == 1 && first ? first->width : 0);
    const int64_t y = call.integer(6) + int64_t(way == 2 && first ? first->height : 0);
    if (!first || !second || way < 1 || way > 3) return Finish(call, ZR_ERR_PARAMETER);
    const int64_t left = std::min<int64_t>(0, x), right = std::max<int64_t>(first->width, x + second->width);
    const int64_t top = std::min<int64_t>(0, y), bottom = std::max<int64_t>(first->height, y + second->height);
    if (!Fits(double(right - left), double(bottom - top))) return Finish(call, ZR_ERR_PARAMETER);
    Pixels whole(int(right - left), int(bottom - top));
    Place(*first, -left, -top, &whole);
    Place(*second, x - left, y - top, &whole);
    AssignPixels(call, 1, whole);
}

// The operators of TRANSFORM PICTURE; the answer is empty if it cannot be done.

std::optional<Pixels> Scale(const CommandCall& call, const Pixels& from) {
    const double w = std::floor(from.width * call.number(3, 1)), h = std::floor(from.height * call.number(4, 1));
    if (!Fits(w, h)) return std::nullopt;
    return Scaled(from, int(w), int(h));
}

std::optional<Pixels> Translate(const CommandCall& call, const Pixels& from) {
    const double x = std::trunc(call.number(3)), y = std::trunc(call.number(4));
    if (!Fits(from.width + x, from.height + y)) return std::nullopt;
    Pixels to(int(from.width + x), int(from.height + y));
    Place(from, int64_t(x), int64_t(y), &to);
    return to;
}

std::optional<Pixels> Flip(const Pixels& from, bool horizontally) {
    Pixels to(from.width, from.height);
    for (int y = 0; y < from.height; ++y)
        for (int x = 0; x < from.width; ++x)
            std::copy_n(horizontally ? from.at(from.width - 1 - x, y) : from.at(x, from.height - 1 - y), 4,
                        to.at(x, y));
    return to;
}

std::optional<Pixels> Crop(const CommandCall& call, const Pixels& from) {
    const double x = std::trunc(call.number(3)), y = std::trunc(call.number(4));
    const double w = std::trunc(call.number(5)), h = std::trunc(call.number(6));
    if (!Fits(w, h) || !(std::abs(x) <= 1e6 && std::abs(y) <= 1e6)) return std::nullopt;
    Pixels to{int(w), int(h)};
    Place(from, -int64_t(x), -int64_t(y), &to);
    return to;
}

std::optional<Pixels> Grey(Pixels pixels) {
    for (size_t i = 0; i < pixels.rgba.size(); i += 4) {
        uint8_t* p = &pixels.rgba[i];
        p[0] = p[1] = p[2] = uint8_t((299 * p[0] + 587 * p[1] + 114 * p[2] + 500) / 1000);
    }
    return pixels;
}

std::optional<Pixels> Transparency(const CommandCall& call, Pixels pixels) {
    const int color = call.integer(3, 0xFFFFFF);
    for (size_t i = 0; i < pixels.rgba.size(); i += 4) {
        uint8_t* p = &pixels.rgba[i];
        if ((p[0] << 16 | p[1] << 8 | p[2]) == (color & 0xFFFFFF)) p[3] = 0;
    }
    return pixels;
}

// 988 TRANSFORM PICTURE(picture; operator; [p1]; [p2]; [p3]; [p4]): 0 nothing is kept that could be reset, 1 scale, 2
// move, 3 and 4 flip, 100 crop (left; top; width; height), 101 grey, 102 one colour transparent (0x00RRGGBB).
void TransformPicture(CommandCall& call) {
    const int way = call.integer(2);
    const std::optional<Pixels> from = Decoded(call, 1);
    if (!from) return Finish(call, ZR_ERR_PARAMETER);
    std::optional<Pixels> to;
    switch (way) {
        case 0: return Finish(call, 0);
        case 1: to = Scale(call, *from); break;
        case 2: to = Translate(call, *from); break;
        case 3:
        case 4: to = Flip(*from, way == 3); break;
        case 100: to = Crop(call, *from); break;
        case 101: to = Grey(*from); break;
        case 102: to = Transparency(call, *from); break;
        default: break;
    }
    if (!to) return Finish(call, ZR_ERR_PARAMETER);
    to->dpiX = from->dpiX, to->dpiY = from->dpiY;
    AssignPixels(call, 1, *to);
}

constexpr CommandRow kRows[] = {
    {679, CreateThumbnail},
    {987, CombinePictures},
    {988, TransformPicture},
};

}  // namespace

std::span<const CommandRow> commandsPictureEditing() { return kRows; }

}  // namespace zrhost
