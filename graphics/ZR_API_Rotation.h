// ZR_Rotation: an angle about a centre, as callers keep it; nothing in the library reads it.
#ifndef ZR_API_ROTATION_H
#define ZR_API_ROTATION_H

#include "core/ZR_API_Geometry.h"

struct ZR_Rotation {
    float angle;             // degrees
    float centerX, centerY;  // points
    short kind;

    void Create(float degrees, short rotationKind, ZR_Point center) {
        Create(degrees, rotationKind, center.x, center.y);
    }
    void Create(float degrees, short rotationKind, float x, float y) {
        angle = degrees;
        centerX = x;
        centerY = y;
        kind = rotationKind;
    }
};

#endif
