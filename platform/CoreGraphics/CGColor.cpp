// Colour spaces, colours, gradients, functions and shadings. Generic RGB is drawn as sRGB, gray as equal parts of it.
#include <algorithm>
#include <cmath>
#include <numeric>

#include "platform/CoreGraphics/CoreGraphics_Private.h"

static constexpr size_t kMostStops = 4096;
static constexpr size_t kShadingStops = 33;
static constexpr size_t kMostParameters = 32;  // inputs or outputs of a function

const CFStringRef kCGColorSpaceGenericRGB = CFConstantString("kCGColorSpaceGenericRGB");
const CFStringRef kCGColorSpaceSRGB = CFConstantString("kCGColorSpaceSRGB");
const CFStringRef kCGColorSpaceGenericGray = CFConstantString("kCGColorSpaceGenericGray");

// Spaces and colours -----------------------------------------------------------------------------------------------

CFTypeID CGColorSpaceGetTypeID() { return kCGTypeColorSpace; }

static CGColorSpaceRef CreateSpace(size_t components) {
    return CFGuarded([&] { return new CGColorSpace(components); });
}

CGColorSpaceRef CGColorSpaceCreateDeviceRGB() { return CreateSpace(3); }
CGColorSpaceRef CGColorSpaceCreateDeviceGray() { return CreateSpace(1); }

CGColorSpaceRef CGColorSpaceCreateWithName(CFStringRef name) {
    if (!name) return nullptr;
    if (CFEqual(name, kCGColorSpaceGenericRGB) || CFEqual(name, kCGColorSpaceSRGB)) return CreateSpace(3);
    return CFEqual(name, kCGColorSpaceGenericGray) ? CreateSpace(1) : nullptr;
}

size_t CGColorSpaceGetNumberOfComponents(CGColorSpaceRef space) { return space ? space->components : 0; }

static double Channel(double value) { return value > 0 ? std::min(value, 1.0) : 0; }  // what is no number becomes 0

ZRGColor ColorFrom(const CGFloat* c, size_t withoutAlpha) {
    if (withoutAlpha == 1) return {Channel(c[0]), Channel(c[0]), Channel(c[0]), Channel(c[1])};
    return {Channel(c[0]), Channel(c[1]), Channel(c[2]), Channel(c[3])};
}

ZRGColor ColorOf(const CGColor& color) { return ColorFrom(color.components, color.count - 1); }

CGColor::CGColor(size_t n, const CGFloat* values) : count(n) { std::copy_n(values, n, components); }

bool CGColor::equals(const CFObject& other) const {
    auto& color = static_cast<const CGColor&>(other);
    return count == color.count && std::equal(components, components + count, color.components);
}

CFTypeID CGColorGetTypeID() { return kCGTypeColor; }

CGColorRef CGColorCreate(CGColorSpaceRef space, const CGFloat* components) {
    if (!space || !components) return nullptr;
    return CFGuarded([&] { return new CGColor(space->components + 1, components); });
}

CGColorRef CGColorCreateGenericRGB(CGFloat red, CGFloat green, CGFloat blue, CGFloat alpha) {
    const CGFloat components[] = {red, green, blue, alpha};
    return CFGuarded([&] { return new CGColor(4, components); });
}

CGColorRef CGColorCreateGenericGray(CGFloat gray, CGFloat alpha) {
    const CGFloat components[] = {gray, alpha};
    return CFGuarded([&] { return new CGColor(2, components); });
}

size_t CGColorGetNumberOfComponents(CGColorRef color) { return color ? color->count : 0; }
const CGFloat* CGColorGetComponents(CGColorRef color) { return color ? color->components : nullptr; }
CGFloat CGColorGetAlpha(CGColorRef color) { return color ? color->components[color->count - 1] : 0; }

// Gradients --------------------------------------------------------------------------------------------------------

struct CGGradient : CFObject {
    CFTypeID typeID() const override { return kCGTypeGradient; }
    std::vector<double> offsets;  // ascending
    std::vector<ZRGColor> colors;
};

CGGradientRef CGGradientCreateWithColorComponents(CGColorSpaceRef space, const CGFloat* components,
                                                  const CGFloat* locations, size_t count) {
    if (!space || !components || count < 1 || count > kMostStops) return nullptr;
    auto offset = [&](size_t i) {
        return locations   ? Channel(locations[i])
               : count > 1 ? static_cast<double>(i) / static_cast<double>(count - 1)
                           : 0;
    };
    return CFGuarded([&] {
        auto gradient = std::make_unique<CGGradient>();
        std::vector<size_t> order(count);
        std::iota(order.begin(), order.end(), size_t{0});
        std::stable_sort(order.begin(), order.end(), [&](size_t i, size_t j) { return offset(i) < offset(j); });
        for (size_t i : order) {
            gradient->offsets.push_back(offset(i));
            gradient->colors.push_back(ColorFrom(components + i * (space->components + 1), space->components));
        }
        return gradient.release();
    });
}

static void Draw(CGContextRef context, ZRGGradient gradient, const std::vector<double>& offsets,
                 const std::vector<ZRGColor>& colors) {
    if (!context->state.usable) return;
    for (double v : {gradient.x0, gradient.y0, gradient.r0, gradient.x1, gradient.y1, gradient.r1})
        if (!std::isfinite(v)) return;
    const CGAffineTransform& m = context->state.device;
    gradient.matrix = {m.a, m.b, m.c, m.d, m.tx, m.ty};
    gradient.offsets = offsets.data();
    gradient.colors = colors.data();
    gradient.count = static_cast<long>(offsets.size());
    context->table->gradient(context->canvas, &gradient, context->state.alpha);
}

void CGContextDrawLinearGradient(CGContextRef context, CGGradientRef gradient, CGPoint start, CGPoint end,
                                 uint32_t options) {
    if (!context || !gradient) return;
    ZRGGradient g = {};
    g.x0 = start.x, g.y0 = start.y, g.x1 = end.x, g.y1 = end.y;
    g.extendStart = options & kCGGradientDrawsBeforeStartLocation;
    g.extendEnd = options & kCGGradientDrawsAfterEndLocation;
    Draw(context, g, gradient->offsets, gradient->colors);
}

void CGContextDrawRadialGradient(CGContextRef context, CGGradientRef gradient, CGPoint startCenter, CGFloat startRadius,
                                 CGPoint endCenter, CGFloat endRadius, uint32_t options) {
    if (!context || !gradient || startRadius < 0 || endRadius < 0) return;
    ZRGGradient g = {};
    g.radial = true;
    g.x0 = startCenter.x, g.y0 = startCenter.y, g.r0 = startRadius;
    g.x1 = endCenter.x, g.y1 = endCenter.y, g.r1 = endRadius;
    g.extendStart = options & kCGGradientDrawsBeforeStartLocation;
    g.extendEnd = options & kCGGradientDrawsAfterEndLocation;
    Draw(context, g, gradient->offsets, gradient->colors);
}

// Functions and shadings -------------------------------------------------------------------------------------------

struct CGFunction : CFObject {
    ~CGFunction() override {
        if (callbacks.releaseInfo) callbacks.releaseInfo(info);
    }
    CFTypeID typeID() const override { return kCGTypeFunction; }
    void Evaluate(double input, CGFloat* out) const {  // out: room for all outputs
        CGFloat in[kMostParameters] = {std::clamp(input, domain[0], std::max(domain[0], domain[1]))};
        callbacks.evaluate(info, in, out);
        for (size_t i = 0; i < outputs && !range.empty(); ++i)
            out[i] = std::isnan(out[i]) ? range[2 * i]
                                        : std::clamp(out[i], range[2 * i], std::max(range[2 * i], range[2 * i + 1]));
    }
    void* info = nullptr;
    size_t inputs = 0, outputs = 0;
    std::vector<CGFloat> domain, range;
    CGFunctionCallbacks callbacks = {};
};

CGFunctionRef CGFunctionCreate(void* info, size_t inputs, const CGFloat* domain, size_t outputs, const CGFloat* range,
                               const CGFunctionCallbacks* callbacks) {
    bool counts = inputs >= 1 && inputs <= kMostParameters && outputs >= 1 && outputs <= kMostParameters;
    if (!counts || !callbacks || !callbacks->evaluate) return nullptr;
    return CFGuarded([&] {
        auto function = std::make_unique<CGFunction>();
        function->inputs = inputs;
        function->outputs = outputs;
        function->domain.assign({-HUGE_VAL, HUGE_VAL});
        if (domain) function->domain.assign(domain, domain + 2 * inputs);
        if (range) function->range.assign(range, range + 2 * outputs);
        function->callbacks = *callbacks;
        function->info = info;
        return function.release();
    });
}

struct CGShading : CFObject {
    CGShading(CGPoint from, CGPoint to, bool before, bool after)
        : start(from), end(to), extendStart(before), extendEnd(after) {}
    CFTypeID typeID() const override { return kCGTypeShading; }
    const CGPoint start, end;
    const bool extendStart, extendEnd;
    std::vector<double> offsets;
    std::vector<ZRGColor> colors;
};

CGShadingRef CGShadingCreateAxial(CGColorSpaceRef space, CGPoint start, CGPoint end, CGFunctionRef function,
                                  bool extendStart, bool extendEnd) {
    if (!space || !function || function->inputs != 1 || function->outputs != space->components + 1) return nullptr;
    return CFGuarded([&] {
        auto shading = std::make_unique<CGShading>(start, end, extendStart, extendEnd);
        for (size_t i = 0; i < kShadingStops; ++i) {
            CGFloat out[kMostParameters] = {};
            double offset = static_cast<double>(i) / (kShadingStops - 1);
            function->Evaluate(offset, out);
            shading->offsets.push_back(offset);
            shading->colors.push_back(ColorFrom(out, space->components));
        }
        return shading.release();
    });
}

void CGContextDrawShading(CGContextRef context, CGShadingRef shading) {
    if (!context || !shading) return;
    ZRGGradient g = {};
    g.x0 = shading->start.x, g.y0 = shading->start.y, g.x1 = shading->end.x, g.y1 = shading->end.y;
    g.extendStart = shading->extendStart;
    g.extendEnd = shading->extendEnd;
    Draw(context, g, shading->offsets, shading->colors);
}
