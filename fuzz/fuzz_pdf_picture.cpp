// Any bytes as a PDF picture: opened, its pages measured, the first ones painted.
#include "fuzz/PictureFuzzing.h"

#include "platform/CoreGraphics/CoreGraphics.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    FuzzPictureHost();
    FuzzMemory memory;
    ZR_Handle bytes;
    bytes.Create(1, 0);
    bytes.AddCharBuffer("%PDF-1.7\n", 9);
    bytes.AddCharBuffer(reinterpret_cast<const char*>(data), static_cast<long>(size));
    ZR_Picture picture;
    picture.Create(&bytes);
    FUZZ_CHECK(picture.format == ZR_PICT_PDF && picture.image == nullptr);
    size_t pages = CGPDFDocumentGetNumberOfPages(picture.document);
    for (size_t page = 1; page <= pages && page <= 100; ++page) {
        CGRect box = CGPDFPageGetBoxRect(CGPDFDocumentGetPage(picture.document, page), kCGPDFCropBox);
        FUZZ_CHECK(box.size.width > 0 && box.size.height > 0);
    }
    if (picture.document) FuzzDraw(&picture, static_cast<short>(1 + size % 6));
    picture.Dispose();
    bytes.Dispose();
    return 0;
}
