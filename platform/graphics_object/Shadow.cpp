// Shadows: what is drawn becomes a mask, the mask is blurred by three boxes and painted in the shadow's colour.
#include <algorithm>
#include <cmath>
#include <cstring>

#include "platform/graphics_object/Canvas_Private.h"

static constexpr double kWidestBlur = 500;        // device units
static constexpr double kLargestMask = 1L << 26;  // pixels

static double BlurOf(const ZRGShadow& shadow) { return std::clamp(shadow.blur, 0.0, kWidestBlur); }

ShadowMask BeginShadow(ZRGCanvas* canvas, const ZRGShadow& shadow, const ZRGRect& bounds) {
    double margin = std::ceil(BlurOf(shadow) * 1.5) + 2;
    double left, top, right, bottom;
    cairo_clip_extents(canvas->cr.get(), &left, &top, &right, &bottom);
    // Only what can throw its shadow into the clip.
    left = std::floor(std::max(left - shadow.dx, bounds.x) - margin);
    top = std::floor(std::max(top - shadow.dy, bounds.y) - margin);
    right = std::ceil(std::min(right - shadow.dx, bounds.x + bounds.width) + margin);
    bottom = std::ceil(std::min(bottom - shadow.dy, bounds.y + bounds.height) + margin);
    double w = right - left, h = bottom - top;
    bool fits = w >= 1 && h >= 1 && w <= kZRGMaximumSide && h <= kZRGMaximumSide && w * h <= kLargestMask;
    if (!fits || std::abs(left) > kZRGMaximumCoordinate || std::abs(top) > kZRGMaximumCoordinate) return {};
    ShadowMask mask;
    mask.surface.reset(cairo_image_surface_create(CAIRO_FORMAT_A8, static_cast<int>(w), static_cast<int>(h)));
    if (cairo_surface_status(mask.surface.get()) != CAIRO_STATUS_SUCCESS) return {};
    mask.x = static_cast<int>(left);
    mask.y = static_cast<int>(top);
    cairo_surface_set_device_offset(mask.surface.get(), -left, -top);
    return mask;
}

// One box of an odd or even width over a line of n bytes that lie step apart; shift moves an even box by one.
static void BoxLine(uint8_t* line, int n, int step, int width, int shift, uint8_t* scratch) {
    int before = width / 2 - shift, after = width - width / 2 - 1 + shift;  // bytes taken in on either side
    for (int i = 0; i < n; ++i) scratch[i] = line[static_cast<long>(i) * step];
    unsigned sum = 0, half = static_cast<unsigned>(width) / 2;
    for (int i = 0; i < std::min(after, n); ++i) sum += scratch[i];
    for (int i = 0; i < n; ++i) {
        if (i + after < n) sum += scratch[i + after];
        if (i - before - 1 >= 0) sum -= scratch[i - before - 1];
        line[static_cast<long>(i) * step] = static_cast<uint8_t>((sum + half) / static_cast<unsigned>(width));
    }
}

static void BlurLine(uint8_t* line, int n, int step, int box, uint8_t* scratch) {
    bool odd = box % 2;
    BoxLine(line, n, step, box, 0, scratch);
    BoxLine(line, n, step, box, odd ? 0 : 1, scratch);
    BoxLine(line, n, step, odd ? box : box + 1, 0, scratch);
}

static void Blur(cairo_surface_t* mask, double blur) {
    constexpr double kBoxOfDeviation = 1.8799712059732503;  // 3 sqrt(2 pi) / 4: three such boxes come near a Gaussian
    int box = static_cast<int>(blur / 2 * kBoxOfDeviation + 0.5);
    if (box < 2) return;
    cairo_surface_flush(mask);
    uint8_t* pixels = cairo_image_surface_get_data(mask);
    int w = cairo_image_surface_get_width(mask), h = cairo_image_surface_get_height(mask);
    int stride = cairo_image_surface_get_stride(mask);
    std::vector<uint8_t> scratch(static_cast<size_t>(std::max(w, h)));
    for (int y = 0; y < h; ++y) BlurLine(pixels + static_cast<long>(y) * stride, w, 1, box, scratch.data());
    for (int x = 0; x < w; ++x) BlurLine(pixels + x, h, stride, box, scratch.data());
    cairo_surface_mark_dirty(mask);
}

void EndShadow(ZRGCanvas* canvas, const ZRGShadow& shadow, const ShadowMask& mask) {
    try {
        Blur(mask.surface.get(), BlurOf(shadow));
    } catch (const std::bad_alloc&) { return; }
    cairo_surface_set_device_offset(mask.surface.get(), 0, 0);
    cairo_t* cr = canvas->cr.get();
    cairo_set_source_rgba(cr, shadow.color.red, shadow.color.green, shadow.color.blue, shadow.color.alpha);
    cairo_mask_surface(cr, mask.surface.get(), mask.x + shadow.dx, mask.y + shadow.dy);
}
