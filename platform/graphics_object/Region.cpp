// Sets of rectangles on cairo's regions.
#include <new>

#include "platform/graphics_object/Canvas_Private.h"

struct ZRGRegion {
    cairo_region_t* region;
};

static ZRGRegion* CreateRegion() {
    auto region = new (std::nothrow) ZRGRegion{cairo_region_create()};
    return region;
}

static void ReleaseRegion(ZRGRegion* region) {
    if (region) cairo_region_destroy(region->region);
    delete region;
}

static void SetRegion(ZRGRegion* region, const int rect[4]) {
    cairo_region_destroy(region->region);
    cairo_rectangle_int_t r = {};
    if (rect) r = {rect[0], rect[1], rect[2], rect[3]};
    region->region = rect ? cairo_region_create_rectangle(&r) : cairo_region_create();
}

// out may be one of the two.
static void CombineRegions(const ZRGRegion* left, const ZRGRegion* right, bool subtract, ZRGRegion* out) {
    cairo_region_t* result = cairo_region_copy(left->region);
    if (subtract) cairo_region_subtract(result, right->region);
    else cairo_region_union(result, right->region);
    cairo_region_destroy(out->region);
    out->region = result;
}

static long CountRects(const ZRGRegion* region) { return cairo_region_num_rectangles(region->region); }

static void GetRect(const ZRGRegion* region, long index, int rect[4]) {
    cairo_rectangle_int_t r;
    cairo_region_get_rectangle(region->region, static_cast<int>(index), &r);
    rect[0] = r.x;
    rect[1] = r.y;
    rect[2] = r.width;
    rect[3] = r.height;
}

void FillRegionFunctions(ZRGTable* table) {
    table->createRegion = CreateRegion;
    table->releaseRegion = ReleaseRegion;
    table->setRegion = SetRegion;
    table->combineRegions = CombineRegions;
    table->countRects = CountRects;
    table->getRect = GetRect;
}
