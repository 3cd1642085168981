#include "platform/NativePicture/NativePicture.h"

#include <cmath>
#include <cstring>

#include "platform/SharedObject.h"
#include "tests/platform/GraphicsSupport.h"

namespace {

const ZRNativePictureTable& Table() { return *ZRNativePictureGetTable(); }

// 8 x 4, red with a half clear blue corner at the upper left
Owned<CGImageRef> Sample() {
    return Picture(8, 4, [](CGContextRef c) {
        CGContextFillRect(c, CGRectMake(0, 0, 8, 4));
        CGContextClearRect(c, CGRectMake(0, 2, 4, 2));
        CGContextSetRGBFillColor(c, 0, 0, 1, 0.5);
        CGContextFillRect(c, CGRectMake(0, 2, 4, 2));
    });
}

std::string Document() {
    Owned<CFMutableDataRef> data = CFDataCreateMutable(nullptr, 0);
    Owned<CGDataConsumerRef> consumer = CGDataConsumerCreateWithCFData(data);
    CGRect box = CGRectMake(0, 0, 8, 4);
    Owned<CGContextRef> context = CGPDFContextCreate(consumer, &box, nullptr);
    CGPDFContextBeginPage(context, nullptr);
    CGContextSetRGBFillColor(context, 1, 0, 0, 1);
    CGContextFillRect(context, box);
    CGPDFContextEndPage(context);
    CGPDFContextClose(context);
    return BytesOf(data);
}

struct Row {
    int format;
    std::string bytes;
};
std::vector<Row> Rows() {
    return {{kZRNativeJPEG, Encode({Sample()}, kUTTypeJPEG, {144, 144})},
            {kZRNativePNG, Encode({Sample()}, kUTTypePNG, {144, 144})},
            {kZRNativeBMP, Encode({Sample()}, kUTTypeBMP, {144, 144})},
            {kZRNativeGIF, Encode({Sample()}, kUTTypeGIF)},
            {kZRNativeTIFF, Encode({Sample()}, kUTTypeTIFF, {144, 144})},
            {kZRNativePDF, Document()},
            {kZRNativeSVG,
             R"(<svg xmlns="http://www.w3.org/2000/svg" width="8" height="4"><rect width="8" height="4"/></svg>)"}};
}

struct ReleasedPixels : ZRNativePixels {
    ReleasedPixels() : ZRNativePixels() {}
    ~ReleasedPixels() { Table().release(this); }
};

void TakeString(void* info, const void* bytes, long n) {
    static_cast<std::string*>(info)->assign(static_cast<const char*>(bytes), static_cast<size_t>(n));
}

}  // namespace

TEST(NativePicture, EveryFormat_GivesImageDocumentSizeAndPixels) {
    for (const Row& row : Rows()) {
        if (row.format == kZRNativePDF && !ZRSharedObjectGetState(kZRObjectPDFPaint)->available) continue;
        auto n = static_cast<long>(row.bytes.size());
        Owned<CGImageRef> image = static_cast<CGImageRef>(Table().createImage(row.bytes.data(), n, row.format));
        EXPECT_EQ(CGImageGetWidth(image), 8U) << row.format;
        EXPECT_EQ(CGImageGetHeight(image), 4U) << row.format;
        double width = 0, height = 0;
        EXPECT_TRUE(Table().getSize(row.bytes.data(), n, row.format, &width, &height)) << row.format;
        EXPECT_EQ(width, 8) << row.format;
        EXPECT_EQ(height, 4) << row.format;
        ReleasedPixels pixels;
        ASSERT_TRUE(Table().decode(row.bytes.data(), n, row.format, 1, &pixels)) << row.format;
        EXPECT_EQ(pixels.width * 100 + pixels.height, 804) << row.format;
        bool bitmap = row.format <= kZRNativeTIFF;
        EXPECT_EQ(pixels.dpiX, bitmap && row.format != kZRNativeGIF ? 144 : 0) << row.format;
        EXPECT_EQ(pixels.rgba[8 * 4 * 4 - 1], 255) << row.format;  // the last pixel is opaque
        Owned<CGPDFDocumentRef> document =
            static_cast<CGPDFDocumentRef>(Table().createDocument(row.bytes.data(), n, row.format));
        ASSERT_EQ(CGPDFDocumentGetNumberOfPages(document), 1U) << row.format;
        CGRect box = CGPDFPageGetBoxRect(CGPDFDocumentGetPage(document, 1), kCGPDFMediaBox);
        EXPECT_NEAR(box.size.width, bitmap && row.format != kZRNativeGIF ? 4 : 8, 0.01) << row.format;  // points
    }
}

TEST(NativePicture, Decode_Alpha_IsNotPremultiplied) {
    std::string png = Encode({Sample()}, kUTTypePNG);
    ReleasedPixels pixels;
    ASSERT_TRUE(Table().decode(png.data(), static_cast<long>(png.size()), kZRNativePNG, 1, &pixels));
    EXPECT_EQ(pixels.rgba[2], 255);  // blue
    EXPECT_NEAR(pixels.rgba[3], 128, 1);
    const std::string svg =
        R"(<svg xmlns="http://www.w3.org/2000/svg" width="2" height="2"><rect width="2" height="2" fill="red" opacity="0.5"/></svg>)";
    ReleasedPixels painted;
    ASSERT_TRUE(Table().decode(svg.data(), static_cast<long>(svg.size()), kZRNativeSVG, 1, &painted));
    EXPECT_NEAR(painted.rgba[0], 255, 1);
    EXPECT_NEAR(painted.rgba[3], 128, 1);
}

TEST(NativePicture, DamagedBytesAndOtherFormats_GiveNothing) {
    const Row bad[] = {{kZRNativePNG, "\x89PNG\r\n\x1a\n"},
                       {kZRNativePDF, "%PDF-1.4"},
                       {kZRNativeSVG, "<svg"},
                       {kZRNativeJPEG, ""},
                       {0, "anything"},
                       {8, "EMF"},
                       {-1, "x"},
                       {99, "x"}};
    for (const Row& row : bad) {
        auto n = static_cast<long>(row.bytes.size());
        double width = 9, height = 9;
        ReleasedPixels pixels;
        EXPECT_EQ(Table().createImage(row.bytes.data(), n, row.format), nullptr) << row.format;
        EXPECT_EQ(Table().createDocument(row.bytes.data(), n, row.format), nullptr) << row.format;
        EXPECT_FALSE(Table().getSize(row.bytes.data(), n, row.format, &width, &height)) << row.format;
        EXPECT_FALSE(Table().decode(row.bytes.data(), n, row.format, 1, &pixels)) << row.format;
        EXPECT_EQ(pixels.rgba, nullptr);
    }
    EXPECT_EQ(Table().createImage(nullptr, 5, kZRNativePNG), nullptr);
    EXPECT_EQ(Table().createDocument("x", -5, kZRNativePDF), nullptr);
}

// A page that is too large to be painted in full has no image.
TEST(NativePicture, LargePage_HasNoImage) {
    const std::string pdf =
        "%PDF-1.4\n1 0 obj<</Type/Catalog/Pages 2 0 R>>endobj\n2 0 obj<</Type/Pages/Kids[3 0 R]/Count 1>>endobj\n"
        "3 0 obj<</Type/Page/Parent 2 0 R/MediaBox[0 0 9000000 9000000]>>endobj\ntrailer<</Root 1 0 R>>\n";
    EXPECT_EQ(Table().createImage(pdf.data(), static_cast<long>(pdf.size()), kZRNativePDF), nullptr);
    double width = 0, height = 0;
    EXPECT_TRUE(Table().getSize(pdf.data(), static_cast<long>(pdf.size()), kZRNativePDF, &width, &height));
    EXPECT_EQ(width, 9e6);
}

TEST(NativePicture, Encode_EveryFormat_AndRefusals) {
    unsigned char rgba[] = {255, 0, 0, 255, 0, 0, 255, 255};
    ZRNativePixels pixels = {2, 1, 300, 300, rgba};
    for (int format = kZRNativeJPEG; format <= kZRNativeTIFF; ++format) {
        std::string bytes;
        ASSERT_TRUE(Table().encode(&pixels, format, 1, TakeString, &bytes)) << format;
        EXPECT_EQ(CGImageGetWidth(Decode(bytes)), 2U) << format;
        EXPECT_EQ(PropertyOf(bytes, kCGImagePropertyDPIWidth), format == kZRNativeGIF ? -1 : 300) << format;
    }
    std::string bytes = "untouched";
    for (int format : {0, 6, 7, -1, 100}) EXPECT_FALSE(Table().encode(&pixels, format, 1, TakeString, &bytes));
    for (auto [w, h] : {std::pair(0L, 1L), {1L, 0L}, {-1L, -1L}, {1L << 40, 1L << 40}, {1L << 27, 2L}}) {
        ZRNativePixels bad = {w, h, 0, 0, rgba};
        EXPECT_FALSE(Table().encode(&bad, kZRNativePNG, 1, TakeString, &bytes)) << w;
    }
    EXPECT_EQ(bytes, "untouched");
}

TEST(NativePicture, EachMissing_TellsNothingWhereAllIsThere) {
    for (int format = 0; format <= 10; ++format)
        Table().eachMissing(
            format,
            [](void*, const char* object, const char* packages) {
                EXPECT_NE(std::strlen(packages), 0U);
                EXPECT_EQ(std::string(object).substr(0, 6), "libzr-");
                EXPECT_EQ(std::string(object), "libzr-pdfpaint.so") << "an object is missing";  // that one is optional
            },
            nullptr);
}

// Turned pages stand upright, and the crop box is the whole of the image.
TEST(NativePicture, Decode_PDF_IsUprightWithinTheCropBox) {
    if (!ZRSharedObjectGetState(kZRObjectPDFPaint)->available) GTEST_SKIP();
    auto page = [](const char* rotation) {  // 40 x 20 points from (10, 10), red at its left end
        return std::string("%PDF-1.4\n1 0 obj<</Type/Catalog/Pages 2 0 R>>endobj\n") +
               "2 0 obj<</Type/Pages/Kids[3 0 R]/Count 1>>endobj\n3 0 obj<</Type/Page/Parent 2 0 R/MediaBox[0 0 60 "
               "60]" +
               "/CropBox[10 10 50 30]/Rotate " + rotation + "/Contents 4 0 R>>endobj\n4 0 obj<</Length 24>>stream\n" +
               "1 0 0 rg 10 10 5 20 re f\nendstream endobj\ntrailer<</Root 1 0 R>>\n";
    };
    static const struct {
        const char* rotation;
        long width, height, x, y;  // x, y: a red pixel
    } rows[] = {{"0", 80, 40, 2, 20}, {"90", 40, 80, 20, 2}, {"180", 80, 40, 77, 20}, {"270", 40, 80, 20, 77}};
    for (const auto& row : rows) {
        std::string pdf = page(row.rotation);
        ReleasedPixels pixels;
        ASSERT_TRUE(Table().decode(pdf.data(), static_cast<long>(pdf.size()), kZRNativePDF, 2, &pixels))
            << row.rotation;
        EXPECT_EQ(pixels.width, row.width) << row.rotation;
        EXPECT_EQ(pixels.height, row.height) << row.rotation;
        EXPECT_EQ(pixels.rgba[(row.y * row.width + row.x) * 4], 255) << row.rotation;
        EXPECT_EQ(pixels.rgba[(row.y * row.width + row.x) * 4 + 3], 255) << row.rotation;
        long others = 0;
        for (long i = 0; i < row.width * row.height; ++i) others += pixels.rgba[i * 4 + 3] == 0;
        EXPECT_EQ(others, 70 * 40) << row.rotation;
    }
    std::string pdf = page("0");
    for (double scale : {0.0, -1.0, 1e300, std::nan("")}) {
        ReleasedPixels pixels;
        EXPECT_FALSE(Table().decode(pdf.data(), static_cast<long>(pdf.size()), kZRNativePDF, scale, &pixels)) << scale;
    }
}
