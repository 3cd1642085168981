// Any bytes as a picture of the host, of whatever format they seem to be: decoded, encoded in every format and drawn in
// both bodies. What was encoded is decoded again with the same size.
#include "core/ZR_API_Picture.h"
#include "fuzz/PictureFuzzing.h"

static constexpr long kMostDrawn = 1 << 20;  // pixels; larger ones are decoded only
static constexpr long kLongestSide = 65500;  // that every format can say

static void EncodeEverywhere(ZR_Picture* picture) {
    for (int format = ZR_PICT_JPEG; format <= ZR_PICT_TIFF; ++format) {
        picture->format = static_cast<ZR_Pictformat>(format);
        ZR_Handle bytes;
        bytes.Create(1, 0);
        picture->ToBlob(&bytes, format % 2);
        FUZZ_CHECK(bytes.count > 0);
        ZR_Picture again;
        again.Create(&bytes);
        FUZZ_CHECK(again.format == format && again.width == picture->width && again.height == picture->height);
        again.Dispose();
        bytes.Dispose();
    }
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    FuzzPictureHost();
    FuzzMemory memory;
    ZR_Handle bytes;
    FillBytes(&bytes, data, size);
    ZR_Picture picture;
    picture.Create(&bytes);
    picture.GetWidthDPI();
    zrhost::PictureSize({data, size});
    bool encodable = picture.width <= kLongestSide && picture.height <= kLongestSide;
    if (picture.image && encodable && picture.width * picture.height <= kMostDrawn) {
        ZR_Pictformat format = picture.format;
        EncodeEverywhere(&picture);
        picture.format = format;
        FuzzDraw(&picture, static_cast<short>(size % 8));
    }
    picture.Dispose();
    bytes.Dispose();
    return 0;
}
