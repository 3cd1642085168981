#include "graphics/ZR_API_Region.h"

#include "graphics/ZR_API_Device.h"
#include "graphics/ZR_API_Path.h"

static const ZR_RegionRecord* Record(const ZR_Handle* records, long index) {
    return reinterpret_cast<const ZR_RegionRecord*>(records->GetMemPtr(index));
}

static void Append(ZR_Region* region, const ZR_Rect* r, bool subtract) {
    if (!r) return;
    const ZR_RegionRecord record = {*r, subtract};  // r may lie within the records, which move
    if (char* added = region->records.AppendGetPtr()) memcpy(added, &record, sizeof record);
    region->dirty = true;
}

// Life -------------------------------------------------------------------------------------------------------------

void ZR_Region::Create() {
    records.Create(sizeof(ZR_RegionRecord), 0);
    dirty = true;
    shape = nullptr;
}

void ZR_Region::Create(const ZR_Region* source) {
    Create();
    if (source) records.Create(&source->records);
}

void ZR_Region::Dispose() {
    if (shape) CFRelease(shape);
    shape = nullptr;
    records.Dispose();
    dirty = true;
}

// Changing ---------------------------------------------------------------------------------------------------------

void ZR_Region::SetEmpty() {
    records.Resize(0);
    dirty = true;
}

void ZR_Region::SetAsRect(const ZR_Rect* r) {
    if (!r) return SetEmpty();
    ZR_Rect only = *r;
    SetEmpty();
    AddRect(&only);
}

void ZR_Region::AddRect(const ZR_Rect* r) { Append(this, r, /*subtract*/ false); }

void ZR_Region::Difference(const ZR_Rect* r) { Append(this, r, /*subtract*/ true); }

void ZR_Region::Difference(const ZR_Region* other) {
    // Required: what the other region takes away is taken away here as well.
    for (long i = 1, n = other ? other->records.count : 0; i <= n; ++i) {
        const ZR_Rect r = Record(&other->records, i)->rect;
        Difference(&r);
    }
    dirty = true;
}

// Reading ----------------------------------------------------------------------------------------------------------

bool ZR_Region::PointInRgn(const ZR_Point* p, ZR_Rect* hit) const {
    bool inside = false;
    for (long i = 1; p && i <= records.count; ++i) {
        const ZR_RegionRecord* record = Record(&records, i);
        const ZR_Rect& r = record->rect;
        if (!(r.left <= p->x && p->x <= r.right && r.top <= p->y && p->y <= r.bottom)) continue;
        inside = !record->subtract;
        if (inside && hit) *hit = r;
    }
    return inside;
}

ZR_Handle ZR_Region::CreatePath() const {
    ZR_Handle path;
    ZR_CreatePathHandle(&path);
    for (long i = 1; i <= records.count; ++i) {
        const ZR_Rect& r = Record(&records, i)->rect;  // Required: whatever its flag
        ZR_AddPathMove(&path, r.left, r.top);
        ZR_AddPathLine(&path, r.right, r.top);
        ZR_AddPathLine(&path, r.right, r.bottom);
        ZR_AddPathLine(&path, r.left, r.bottom);
        ZR_AddPathLine(&path, r.left, r.top);
    }
    return path;
}

static void Combine(HIMutableShapeRef shape, CGRect rect, bool subtract) {
    HIShapeRef piece = HIShapeCreateWithRect(&rect);
    if (!piece) return;
    if (subtract) HIShapeDifference(shape, piece, shape);
    else HIShapeUnion(shape, piece, shape);
    CFRelease(piece);
}

HIShapeRef ZR_Region::GetRegion(ZR_Device* device) {
    if (!dirty || !device) return shape;
    if (shape) HIShapeSetEmpty(shape);
    else shape = HIShapeCreateMutable();
    if (!shape) return nullptr;
    for (long i = 1; i <= records.count; ++i) {
        ZR_RegionRecord record = *Record(&records, i);
        CGRect rect;
        device->ZRRectToCGRect(&record.rect, &rect);
        Combine(shape, rect, record.subtract);
    }
    dirty = false;  // Required: also for a device of another height later on
    return shape;
}
