// ZR_Region: rectangles added and taken away in order. Alive from a Create member to Dispose.
#ifndef ZR_API_REGION_H
#define ZR_API_REGION_H

#include "core/ZR_API_Handle.h"
#include "graphics/ZR_API_Geometry.h"
#include "platform/HIShape/HIShape.h"

struct ZR_Device;

struct ZR_RegionRecord {
    ZR_Rect rect;
    bool subtract;  // taken away from what stands before it
};

struct ZR_Region {
    ZR_Handle records;        // of ZR_RegionRecord; owned
    bool dirty;               // changed since shape was made
    HIMutableShapeRef shape;  // made by GetRegion; owned; null = not yet

    void Create();
    void Create(const ZR_Region* source);  // the records; shape is not copied; null = empty
    void Dispose();

    void SetEmpty();
    void SetAsRect(const ZR_Rect* r);
    void AddRect(const ZR_Rect* r);
    void Difference(const ZR_Rect* r);
    void Difference(const ZR_Region* other);  // Required: all its rectangles, whatever their own flag

    bool PointInRgn(const ZR_Point* p,
                    ZR_Rect* hit) const;  // edges belong to it; hit: the last adding record, null = no
    ZR_Handle CreatePath() const;  // outlines as path records; handed over. Required: those taken away are outlines too
    // In the device's raster space; borrowed; null = no drawing library. A null device: the shape as it last was.
    HIShapeRef GetRegion(ZR_Device* device);
};

#endif
