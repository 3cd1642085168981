#include "graphics/ZR_API_Geometry.h"

#include <algorithm>
#include <climits>
#include <cmath>

long ZR_TruncatedToLong(double value) {
    if (std::isnan(value)) return 0;
    if (value >= 0x1p63) return LONG_MAX;
    if (value < -0x1p63) return LONG_MIN;
    return static_cast<long>(value);
}

// Rectangles -------------------------------------------------------------------------------------------------------

bool ZR_Rect::IsOverlapped(const ZR_Rect* other) const {
    return other && left < other->right && top < other->bottom && other->left < right && other->top < bottom;
}

void ZR_Rect::ExpandRect(ZR_Point p) { ExpandRect(p.x, p.y); }

void ZR_Rect::ExpandRect(float x, float y) {
    left = std::min(left, x);
    right = std::max(right, x);
    top = std::min(top, y);
    bottom = std::max(bottom, y);
}

void ZR_CutBounds(ZR_Rect* r, const ZR_Rect* limit) {
    if (!r || !limit) return;
    *r = {std::max(r->top, limit->top), std::max(r->left, limit->left), std::min(r->right, limit->right),
          std::min(r->bottom, limit->bottom)};
    if (!(r->top < r->bottom && r->left < r->right)) *r = {};  // what is no number ends here too
}

void ZR_GetRectFrom2Points(ZR_Point a, ZR_Point b, ZR_Rect* out) {
    if (out) *out = {std::min(a.y, b.y), std::min(a.x, b.x), std::max(a.x, b.x), std::max(a.y, b.y)};
}

// Other rectangles -------------------------------------------------------------------------------------------------

static int16_t LowBits(float value) { return static_cast<int16_t>(ZR_TruncatedToLong(value)); }

PA_Rect ZR_Rect::GetPARect() const { return {LowBits(top), LowBits(left), LowBits(bottom), LowBits(right)}; }

CGRect ZR_Rect::GetCGRect() const {
    // In single precision, as everything that is drawn.
    return CGRectMake(left, top, right - left, bottom - top);
}

HIRect ZR_Rect::GetHIRect() const { return GetCGRect(); }

void ZR_Rect::SetCGRect(CGRect rect) {
    left = static_cast<float>(rect.origin.x);
    top = static_cast<float>(rect.origin.y);
    right = static_cast<float>(rect.origin.x + rect.size.width);
    bottom = static_cast<float>(rect.origin.y + rect.size.height);
}

void ZR_Rect::SetCGRect(CGRect rect, long height) {
    left = static_cast<float>(rect.origin.x);
    bottom = static_cast<float>(static_cast<double>(height) - rect.origin.y);
    top = static_cast<float>(bottom - rect.size.height);
    right = static_cast<float>(left + rect.size.width);
}

void ZR_Rect::SetCGRect(const CGRect* rect, long height) {
    if (rect) SetCGRect(*rect, height);
}
