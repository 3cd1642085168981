#include "platform/SVG/SVGPicture.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>

#include "platform/SharedObject.h"
#include "tests/platform/GraphicsSupport.h"

static const std::string kSVG =
    "<svg xmlns='http://www.w3.org/2000/svg' width='40' height='20'>"
    "<rect x='0' y='0' width='10' height='5' fill='#FF0000'/>"
    "<rect x='20' y='10' width='20' height='10' fill='#0000FF' fill-opacity='0.5'/></svg>";

static Owned<CGImageRef> Image(const std::string& svg, double scale = 1) {
    return ZRSVGCreateImage(svg.data(), static_cast<long>(svg.size()), scale);
}

TEST(SVGPicture, CreateImage_HasTheDocumentsSizeAndPixels) {
    Owned<CGImageRef> image = Image(kSVG);
    ASSERT_EQ(CGImageGetWidth(image), 40U);
    ASSERT_EQ(CGImageGetHeight(image), 20U);
    Bitmap bitmap(40, 20);
    CGContextDrawImage(bitmap, CGRectMake(0, 0, 40, 20), image);
    EXPECT_EQ(bitmap.At(0, 19), kRed);
    EXPECT_EQ(bitmap.At(9, 15), kRed);
    EXPECT_EQ(bitmap.At(10, 19), kClear);
    EXPECT_NEAR_PIXEL(bitmap.At(30, 5), (Pixel{0, 0, 128, 128}), 1);
    EXPECT_EQ(bitmap.Count(0), 250);
    Owned<CGImageRef> twice = Image(kSVG, 2);
    EXPECT_EQ(CGImageGetWidth(twice), 80U);
    EXPECT_EQ(PixelsOf(twice)[19 * 4], 255);
    EXPECT_EQ(PixelsOf(twice)[21 * 4], 0);
}

TEST(SVGPicture, GetSize_WidthOrViewBox) {
    static const struct {
        const char* attributes;
        double width, height;
    } rows[] = {
        {"width='30' height='10'", 30, 10}, {"viewBox='0 0 70 80'", 70, 80}, {"width='1in' height='36pt'", 72, 36}};
    for (auto& row : rows) {
        std::string svg = std::string("<svg xmlns='http://www.w3.org/2000/svg' ") + row.attributes + "/>";
        double width = 0, height = 0;
        EXPECT_TRUE(ZRSVGGetSize(svg.data(), static_cast<long>(svg.size()), &width, &height)) << row.attributes;
        EXPECT_NEAR(width, row.width, 0.01) << row.attributes;
        EXPECT_NEAR(height, row.height, 0.01) << row.attributes;
    }
}

TEST(SVGPicture, BrokenOrAbsurd_IsNull) {
    for (const char* svg : {"", "x", "<svg", "<svg xmlns='http://www.w3.org/2000/svg'><g></svg>", "<html/>"})
        EXPECT_EQ(Image(svg).get(), nullptr) << svg;
    EXPECT_EQ(ZRSVGCreateImage(nullptr, 5, 1), nullptr);
    for (double scale : {0.0, -1.0, 1e9, std::nan(""), HUGE_VAL}) EXPECT_EQ(Image(kSVG, scale).get(), nullptr) << scale;
    EXPECT_EQ(Image("<svg xmlns='http://www.w3.org/2000/svg' width='1e9' height='1e9'/>").get(), nullptr);
    EXPECT_EQ(ZRSVGCreateDocument("x", 1), nullptr);
}

// What the renderer copies into every element is bounded: it ends the process when memory ends.
TEST(SVGPicture, LongInheritedFontOverManyElements_IsRefused) {
    const auto document = [](size_t length, size_t elements) {
        std::string svg = "<svg xmlns='http://www.w3.org/2000/svg' width='20' height='20' font-family='";
        svg += std::string(length, 'x') + "'>";
        for (size_t i = 0; i < elements; i++) svg += "<text y='9'>a</text>";
        return svg + "</svg>";
    };
    for (auto [length, elements, drawn] :
         {std::tuple{1000000, 20000, false}, {100000, 4000, false}, {100000, 50, true}, {900, 2000, true}}) {
        const std::string svg = document(static_cast<size_t>(length), static_cast<size_t>(elements));
        Owned<CGImageRef> image = ZRSVGCreateImage(svg.data(), static_cast<long>(svg.size()), 1);
        EXPECT_EQ(image.get() != nullptr, drawn) << length << " x " << elements;
    }
}

TEST(SVGPicture, References_ReadNoFiles) {
    std::string svg =
        "<svg xmlns='http://www.w3.org/2000/svg' xmlns:xlink='http://www.w3.org/1999/xlink' width='10' "
        "height='10'><image width='10' height='10' xlink:href='file:///etc/passwd'/></svg>";
    Owned<CGImageRef> image = Image(svg);
    ASSERT_NE(image.get(), nullptr);
    Bitmap bitmap(10, 10);
    CGContextDrawImage(bitmap, CGRectMake(0, 0, 10, 10), image);
    EXPECT_EQ(bitmap.Count(0), 0);
}

TEST(SVGPicture, CreateDocument_IsOneVectorPage) {
    Owned<CGPDFDocumentRef> document = ZRSVGCreateDocument(kSVG.data(), static_cast<long>(kSVG.size()));
    ASSERT_EQ(CGPDFDocumentGetNumberOfPages(document), 1U);
    CGPDFPageRef page = CGPDFDocumentGetPage(document, 1);
    EXPECT_TRUE(CGRectEqualToRect(CGPDFPageGetBoxRect(page, kCGPDFMediaBox), CGRectMake(0, 0, 40, 20)));
    if (!ZRSharedObjectGetState(kZRObjectPDFPaint)->available) GTEST_SKIP();
    Bitmap bitmap(160, 80);
    CGContextScaleCTM(bitmap, 4, 4);
    CGContextDrawPDFPage(bitmap, page);
    EXPECT_EQ(bitmap.At(39, 60), kRed);  // sharp at any scale
    EXPECT_EQ(bitmap.At(40, 60), kClear);
}

TEST(SVGPicture, Turbulence_OfVeryManyOctaves_IsBounded) {
    auto picture = [](const char* octaves) {
        std::string text =
            "<svg xmlns='http://www.w3.org/2000/svg' width='200' height='200'><filter id='f'>"
            "<feTurbulence baseFrequency='0.05' numOctaves" +
            std::string(octaves) + "/></filter><rect width='200' height='200' filter='url(#f)'/></svg>";
        Owned<CGImageRef> image = ZRSVGCreateImage(text.data(), static_cast<long>(text.size()), 1);
        return image ? PixelsOf(image) : std::vector<uint8_t>();
    };
    auto sixteen = picture("='16'"), three = picture("='3'");
    ASSERT_EQ(sixteen.size(), 200U * 200 * 4);
    EXPECT_NE(three, sixteen);
    auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(picture("='99999999'"), sixteen);
    EXPECT_EQ(picture(" = \"0020000000\""), sixteen);
    EXPECT_EQ(picture("='03'"), three);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
}
