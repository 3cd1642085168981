// What the fuzz targets of pictures share: the embedded host with the module started, and a drawing in both bodies.
#ifndef ZR_FUZZ_PICTUREFUZZING_H
#define ZR_FUZZ_PICTUREFUZZING_H

#include "core/ZR_API_Picture.h"
#include "fuzz/FuzzSupport.h"
#include "graphics/ZR_API_Device.h"
#include "graphics/ZR_API_Matrix.h"
#include "host/Host.h"
#include "host/Pictures.h"

inline void FuzzPictureHost() {
    static zrhost::Host* host = [] {
        zrhost::Host* started = zrhost::Host::Start().release();
        ZR_StartupRecord record = started->startupRecord();
        FourDPackex(-1, &record, nullptr, nullptr);
        return started;
    }();
    FUZZ_CHECK(host);
}

inline void FuzzDraw(ZR_Picture* picture, short mode) {
    ZR_Rect bounds = {0, 0, 64, 48}, rect = {3, 5, 60, 40};
    ZR_Matrix turned = {0.8F, 0.6F, -0.6F, 0.8F, 10, 0};
    ZR_Device bitmap, svg;
    bitmap.CreateOffscreen(64, 48, /*bitmap*/ true, 0, 0);
    svg.CreateSVG(&bounds);
    for (ZR_Device* device : {&bitmap, &svg}) {
        picture->displayFormat = mode;
        picture->Draw(device, &rect, 50, nullptr, ZR_ALIGNMENT_CENTER, nullptr);
        picture->Draw(device, &rect, 100, &turned, ZR_ALIGNMENT_RIGHT, nullptr);
    }
    svg.Dispose();
    bitmap.Dispose();
}

#endif
