#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <random>
#include <thread>

#include "platform/SharedObject.h"
#include "tests/platform/GraphicsSupport.h"

namespace {

using Draw = std::function<void(CGContextRef)>;

struct PageInfo {
    CGRect media;
    const CGRect* crop;
};

Owned<CFDictionaryRef> InfoOf(const PageInfo& page) {
    Owned<CFMutableDictionaryRef> info =
        CFDictionaryCreateMutable(nullptr, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks);
    auto set = [&](CFStringRef key, const CGRect& box) {
        Owned<CFDataRef> data = CFDataCreate(nullptr, reinterpret_cast<const UInt8*>(&box), sizeof box);
        CFDictionarySetValue(info, key, data.get());
    };
    set(kCGPDFContextMediaBox, page.media);
    if (page.crop) set(kCGPDFContextCropBox, *page.crop);
    return static_cast<CFDictionaryRef>(CFRetain(info));
}

// A PDF of pages of 200 x 100 points
std::string PDF(const std::vector<Draw>& pages, CGRect box = CGRectMake(0, 0, 200, 100)) {
    Owned<CFMutableDataRef> data = CFDataCreateMutable(nullptr, 0);
    Owned<CGDataConsumerRef> consumer = CGDataConsumerCreateWithCFData(data);
    Owned<CGContextRef> context = CGPDFContextCreate(consumer, &box, nullptr);
    for (auto& draw : pages) {
        CGPDFContextBeginPage(context, nullptr);
        draw(context);
        CGPDFContextEndPage(context);
    }
    CGPDFContextClose(context);
    return BytesOf(data);
}

Owned<CGPDFDocumentRef> Open(const std::string& bytes) {
    Owned<CGDataProviderRef> provider = CGDataProviderCreateWithCFData(Data(bytes));
    return CGPDFDocumentCreateWithProvider(provider);
}

void Red(CGContextRef c) {
    CGContextSetRGBFillColor(c, 1, 0, 0, 1);
    CGContextFillRect(c, CGRectMake(10, 10, 50, 30));
}

void Blue(CGContextRef c) {
    CGContextSetRGBFillColor(c, 0, 0, 1, 1);
    CGContextFillRect(c, CGRectMake(100, 50, 50, 30));
}

// A document written by hand: one page with the given entries, whose content fills (10, 10, 50, 30) red.
std::string HandMade(const std::string& entries) {
    std::string content = "1 0 0 rg 10 10 50 30 re f";
    std::string objects[] = {
        "<< /Type /Catalog /Pages 2 0 R >>", "<< /Type /Pages /Kids [3 0 R] /Count 1 /Rotate 90 >>",
        "<< /Type /Page /Parent 2 0 R /Contents 4 0 R /Resources << >> " + entries + " >>",
        "<< /Length " + std::to_string(content.size()) + " >>\nstream\n" + content + "\nendstream"};
    std::string out = "%PDF-1.4\n", table;
    for (size_t i = 0; i < std::size(objects); ++i) {
        char row[32];
        snprintf(row, sizeof row, "%010zu 00000 n \n", out.size());
        table += row;
        out += std::to_string(i + 1) + " 0 obj\n" + objects[i] + "\nendobj\n";
    }
    size_t at = out.size();
    return out + "xref\n0 5\n0000000000 65535 f \n" + table + "trailer << /Size 5 /Root 1 0 R >>\nstartxref\n" +
           std::to_string(at) + "\n%%EOF\n";
}

std::string TemporaryPath(const char* name) {
    return std::filesystem::temp_directory_path() / ("zr-pdf-" + std::to_string(getpid()) + name);
}

bool CanPaint() { return ZRSharedObjectGetState(kZRObjectPDFPaint)->available; }

}  // namespace

#define NEEDS_PAINTING() \
    if (!CanPaint()) GTEST_SKIP() << "libzr-pdfpaint.so is not built"

// Writing and reading ----------------------------------------------------------------------------------------------

TEST(CGPDFContext, Plain_PagesAndBoxes) {
    std::string bytes = PDF({Red, Blue, [](CGContextRef) {}});
    EXPECT_EQ(bytes.substr(0, 5), "%PDF-");
    Owned<CGPDFDocumentRef> document = Open(bytes);
    ASSERT_EQ(CGPDFDocumentGetNumberOfPages(document), 3U);
    for (size_t i = 1; i <= 3; ++i) {
        CGPDFPageRef page = CGPDFDocumentGetPage(document, i);
        EXPECT_EQ(CGPDFPageGetPageNumber(page), i);
        EXPECT_TRUE(CGRectEqualToRect(CGPDFPageGetBoxRect(page, kCGPDFMediaBox), CGRectMake(0, 0, 200, 100)));
        EXPECT_TRUE(CGRectEqualToRect(CGPDFPageGetBoxRect(page, kCGPDFCropBox), CGRectMake(0, 0, 200, 100)));
        EXPECT_EQ(CGPDFPageGetRotationAngle(page), 0);
    }
    EXPECT_EQ(CGPDFDocumentGetPage(document, 0), nullptr);
    EXPECT_EQ(CGPDFDocumentGetPage(document, 4), nullptr);
    EXPECT_EQ(CGPDFDocumentGetPage(document, 1), CGPDFDocumentGetPage(document, 1));
}

TEST(CGPDFContext, DefaultBoxIsLetter_AndPagesMayDiffer) {
    Owned<CFMutableDataRef> data = CFDataCreateMutable(nullptr, 0);
    Owned<CGDataConsumerRef> consumer = CGDataConsumerCreateWithCFData(data);
    Owned<CGContextRef> context = CGPDFContextCreate(consumer, nullptr, nullptr);
    CGRect small = CGRectMake(0, 0, 50, 60);
    CGContextBeginPage(context, nullptr);
    CGContextBeginPage(context, &small);  // ends the one before
    CGContextEndPage(context);
    CGContextEndPage(context);
    CGPDFContextClose(context);
    CGPDFContextClose(context);
    CGContextBeginPage(context, nullptr);  // too late
    CGContextFillRect(context, CGRectMake(0, 0, 10, 10));
    Owned<CGPDFDocumentRef> document = Open(BytesOf(data));
    ASSERT_EQ(CGPDFDocumentGetNumberOfPages(document), 2U);
    EXPECT_TRUE(CGRectEqualToRect(CGPDFPageGetBoxRect(CGPDFDocumentGetPage(document, 1), kCGPDFMediaBox),
                                  CGRectMake(0, 0, 612, 792)));
    EXPECT_TRUE(CGRectEqualToRect(CGPDFPageGetBoxRect(CGPDFDocumentGetPage(document, 2), kCGPDFMediaBox), small));
}

TEST(CGPDFContext, BoxesOffTheOrigin_AreKept) {
    CGRect crop = CGRectMake(-10, 40, 100, 50);
    Owned<CFMutableDataRef> data = CFDataCreateMutable(nullptr, 0);
    Owned<CGDataConsumerRef> consumer = CGDataConsumerCreateWithCFData(data);
    Owned<CGContextRef> context = CGPDFContextCreate(consumer, nullptr, nullptr);
    CGPDFContextBeginPage(context, InfoOf({CGRectMake(-20, 30, 200, 100), &crop}));
    CGContextSetRGBFillColor(context, 1, 0, 0, 1);
    CGContextFillRect(context, CGRectMake(0, 50, 30, 20));
    CGPDFContextEndPage(context);
    context = nullptr;  // the last release closes
    Owned<CGPDFDocumentRef> document = Open(BytesOf(data));
    CGPDFPageRef page = CGPDFDocumentGetPage(document, 1);
    EXPECT_TRUE(CGRectEqualToRect(CGPDFPageGetBoxRect(page, kCGPDFMediaBox), CGRectMake(-20, 30, 200, 100)));
    EXPECT_TRUE(CGRectEqualToRect(CGPDFPageGetBoxRect(page, kCGPDFCropBox), crop));
    NEEDS_PAINTING();
    Bitmap bitmap(100, 100);
    CGContextTranslateCTM(bitmap, 20, -30);
    CGContextDrawPDFPage(bitmap, page);
    EXPECT_EQ(bitmap.At(20, 20), kRed);
    EXPECT_EQ(bitmap.At(49, 39), kRed);
    EXPECT_EQ(bitmap.Count(), 600);
}

TEST(CGPDFContext, Close_WithoutPages_StillWrites) {
    std::string bytes = PDF({});
    EXPECT_EQ(bytes.substr(0, 5), "%PDF-");
}

TEST(CGPDFContext, WithURL_FileIsOpenedAtOnce) {
    CGRect box = CGRectMake(0, 0, 200, 100);
    EXPECT_EQ(CGPDFContextCreateWithURL(FileURL("/nowhere/at/all.pdf"), &box, nullptr), nullptr);
    EXPECT_EQ(CGPDFContextCreateWithURL(FileURL("/"), &box, nullptr), nullptr);
    EXPECT_EQ(CGPDFContextCreateWithURL(nullptr, &box, nullptr), nullptr);
    EXPECT_EQ(CGPDFContextCreate(nullptr, &box, nullptr), nullptr);
    std::string path = TemporaryPath(".pdf");
    Owned<CGContextRef> context = CGPDFContextCreateWithURL(FileURL(path), &box, nullptr);
    EXPECT_TRUE(std::filesystem::exists(path));
    CGPDFContextBeginPage(context, nullptr);
    Red(context);
    CGPDFContextEndPage(context);
    CGPDFContextClose(context);
    Owned<CGPDFDocumentRef> document = CGPDFDocumentCreateWithURL(FileURL(path));
    EXPECT_EQ(CGPDFDocumentGetNumberOfPages(document), 1U);
    std::filesystem::remove(path);
    EXPECT_EQ(CGPDFDocumentCreateWithURL(FileURL(path)), nullptr);
}

TEST(CGPDFContext, DrawingOutsideOfPages_IsIgnored) {
    Owned<CFMutableDataRef> data = CFDataCreateMutable(nullptr, 0);
    Owned<CGDataConsumerRef> consumer = CGDataConsumerCreateWithCFData(data);
    Owned<CGContextRef> context = CGPDFContextCreate(consumer, nullptr, nullptr);
    auto everything = [&] {
        CGContextSaveGState(context);
        CGContextClipToRect(context, CGRectMake(0, 0, 5, 5));
        CGContextFillRect(context, CGRectMake(0, 0, 10, 10));
        CGContextSetShadow(context, {3, 3}, 3);
        CGContextFillEllipseInRect(context, CGRectMake(0, 0, 10, 10));
        CGContextClearRect(context, CGRectMake(0, 0, 10, 10));
        EXPECT_TRUE(CGRectIsNull(CGContextGetClipBoundingBox(context)));
    };
    everything();
    CGPDFContextEndPage(context);
    CGPDFContextBeginPage(context, nullptr);  // begins with a state of its own
    EXPECT_TRUE(CGRectEqualToRect(CGContextGetClipBoundingBox(context), CGRectMake(0, 0, 612, 792)));
    CGPDFContextEndPage(context);
    everything();
    CGPDFContextClose(context);
    EXPECT_EQ(CGPDFDocumentGetNumberOfPages(Open(BytesOf(data))), 1U);
}

TEST(CGPDFContext, AbsurdBoxes_BecomeTheDefault) {
    for (double side : {0.0, -0.0, 1e9, std::nan(""), HUGE_VAL}) {
        Owned<CGPDFDocumentRef> document = Open(PDF({Red}, CGRectMake(0, 0, side, 100)));
        CGRect box = CGPDFPageGetBoxRect(CGPDFDocumentGetPage(document, 1), kCGPDFMediaBox);
        EXPECT_TRUE(CGRectEqualToRect(box, CGRectMake(0, 0, 612, 792))) << side;
    }
}

TEST(CGPDFContext, JPEG_StaysAsItIs) {
    Owned<CGImageRef> picture = Picture(64, 64, [](CGContextRef c) {
        CGContextSetRGBFillColor(c, 0, 0.5, 1, 1);
        CGContextFillRect(c, CGRectMake(0, 0, 64, 64));
    });
    std::string jpeg = Encode({picture}, kUTTypeJPEG);
    Owned<CGImageRef> image = Decode(jpeg);
    std::string bytes = PDF({[&](CGContextRef c) { CGContextDrawImage(c, CGRectMake(0, 0, 64, 64), image); }});
    EXPECT_NE(bytes.find(jpeg), std::string::npos);
}

// Documents --------------------------------------------------------------------------------------------------------

TEST(CGPDFContext, OddOperation_LosesNoOtherPage) {
    auto picture = Picture(9, 7, [](CGContextRef c) { CGContextFillRect(c, CGRectMake(1, 1, 4, 4)); });
    struct {
        const char* name;
        Draw draw;
    } rows[] = {
        {"flat image in a layer",
         [&](CGContextRef c) {
             Owned<CGLayerRef> layer = CGLayerCreateWithContext(c, {200, 100}, nullptr);
             CGContextDrawImage(CGLayerGetContext(layer), CGRectMake(10, 10, 4e6, 0.5), picture);
             CGContextDrawLayerAtPoint(c, {0, 0}, layer);
         }},
        {"flat image", [&](CGContextRef c) { CGContextDrawImage(c, CGRectMake(10, 10, 4e6, 0.5), picture); }},
        {"hair of a layer in a layer",
         [](CGContextRef c) {
             Owned<CGLayerRef> layer = CGLayerCreateWithContext(c, {120, 90}, nullptr),
                               inner = CGLayerCreateWithContext(c, {30, 20}, nullptr);
             CGContextFillRect(CGLayerGetContext(inner), CGRectMake(3, 3, 9, 9));
             CGContextDrawLayerInRect(CGLayerGetContext(layer), CGRectMake(1e-30, -45, 1e-9, 147), inner);
             CGContextDrawLayerAtPoint(c, {0, 0}, layer);
         }},
        {"far tiles cleared in a layer",
         [&](CGContextRef c) {
             Owned<CGLayerRef> layer = CGLayerCreateWithContext(c, {120, 90}, nullptr);
             CGContextDrawTiledImage(CGLayerGetContext(layer), CGRectMake(32767, -49, 3, -1), picture);
             CGContextClearRect(CGLayerGetContext(layer), CGRectMake(0.5, 83, -49, 123));
             CGContextDrawLayerAtPoint(c, {0, 0}, layer);
         }},
        {"flat pen",
         [](CGContextRef c) {
             CGContextRotateCTM(c, -2);
             CGContextScaleCTM(c, 1e-30, 95);
             CGContextRotateCTM(c, 24);
             CGContextStrokeRectWithWidth(c, CGRectMake(-19, 33, -46, 8.4e6), 38);
         }},
        {"nearly flat pen",
         [](CGContextRef c) {
             CGContextScaleCTM(c, 1e-9, 1);
             CGContextRotateCTM(c, 1);
             CGContextStrokeRectWithWidth(c, CGRectMake(-1e7, -1e7, 2e7, 2e7), 1e7);
         }},
    };
    for (auto& row : rows) {
        auto odd = [&](CGContextRef c) {
            CGContextSaveGState(c);
            row.draw(c);
            CGContextRestoreGState(c);
            Blue(c);
        };
        auto document = Open(PDF({Red, odd, Red}));
        ASSERT_EQ(CGPDFDocumentGetNumberOfPages(document), 3u) << row.name;
        for (size_t page = 1; page <= 3; ++page) {
            Bitmap bitmap(200, 100);
            CGContextDrawPDFPage(bitmap, CGPDFDocumentGetPage(document, page));
            EXPECT_EQ(bitmap.At(page == 2 ? 120 : 20, page == 2 ? 60 : 20), page == 2 ? kBlue : kRed)
                << row.name << " page " << page;
        }
    }
}

TEST(CGPDFContext, JPEG_InALayer_StaysAsItIs) {
    auto picture = Picture(300, 200, [](CGContextRef c) {
        for (int i = 0; i < 300; ++i) {
            CGContextSetRGBFillColor(c, i / 300.0, i * 7 % 300 / 300.0, i * 13 % 300 / 300.0, 1);
            CGContextFillRect(c, CGRectMake(i, i % 50, 1, 150));
        }
    });
    std::string jpeg = Encode({picture}, kUTTypeJPEG);
    auto decoded = Decode(jpeg);
    std::string pdf = PDF({[&](CGContextRef c) {
        Owned<CGLayerRef> layer = CGLayerCreateWithContext(c, {200, 100}, nullptr);
        CGContextDrawImage(CGLayerGetContext(layer), CGRectMake(0, 0, 150, 100), decoded);
        CGContextDrawLayerAtPoint(c, {0, 0}, layer);
    }});
    EXPECT_NE(pdf.find(jpeg), std::string::npos);
}

TEST(CGPDFDocument, Boxes_InheritFallBackAndAreCut) {
    static const struct {
        const char* entries;
        CGRect media, crop, bleed;
        int rotation;
    } rows[] = {
        {"/MediaBox [0 0 200 100]", {{0, 0}, {200, 100}}, {{0, 0}, {200, 100}}, {{0, 0}, {200, 100}}, 90},
        {"/MediaBox [200 100 0 0] /Rotate 0", {{0, 0}, {200, 100}}, {{0, 0}, {200, 100}}, {{0, 0}, {200, 100}}, 0},
        {"/MediaBox [0 0 200 100] /CropBox [10 20 110 70] /Rotate -90",
         {{0, 0}, {200, 100}},
         {{10, 20}, {100, 50}},
         {{10, 20}, {100, 50}},
         270},
        {"/MediaBox [0 0 200 100] /CropBox [-50 20 500 70] /Rotate 450",
         {{0, 0}, {200, 100}},
         {{0, 20}, {200, 50}},
         {{0, 20}, {200, 50}},
         90},
        {"/MediaBox [0 0 200 100] /BleedBox [1 2 3 5] /Rotate 180",
         {{0, 0}, {200, 100}},
         {{0, 0}, {200, 100}},
         {{1, 2}, {2, 3}},
         180},
        {"/MediaBox [0 0 0 0] /Rotate (x)", {{0, 0}, {612, 792}}, {{0, 0}, {612, 792}}, {{0, 0}, {612, 792}}, 0},
        {"/Rotate 1e30", {{0, 0}, {612, 792}}, {{0, 0}, {612, 792}}, {{0, 0}, {612, 792}}, 0},
    };
    for (auto& row : rows) {
        Owned<CGPDFDocumentRef> document = Open(HandMade(row.entries));
        CGPDFPageRef page = CGPDFDocumentGetPage(document, 1);
        ASSERT_NE(page, nullptr) << row.entries;
        EXPECT_TRUE(CGRectEqualToRect(CGPDFPageGetBoxRect(page, kCGPDFMediaBox), row.media)) << row.entries;
        EXPECT_TRUE(CGRectEqualToRect(CGPDFPageGetBoxRect(page, kCGPDFCropBox), row.crop)) << row.entries;
        EXPECT_TRUE(CGRectEqualToRect(CGPDFPageGetBoxRect(page, kCGPDFBleedBox), row.bleed)) << row.entries;
        EXPECT_EQ(CGPDFPageGetRotationAngle(page), row.rotation) << row.entries;
        EXPECT_TRUE(CGRectEqualToRect(CGPDFPageGetBoxRect(page, static_cast<CGPDFBox>(9)), CGRectZero));
    }
}

TEST(CGPDFDocument, NoPDF_IsNull) {
    for (const char* bytes : {"", "x", "%PDF-1.4", "%PDF-1.4\n%%EOF", "hello world"})
        EXPECT_EQ(Open(bytes).get(), nullptr) << bytes;
    EXPECT_EQ(CGPDFDocumentCreateWithProvider(nullptr), nullptr);
    EXPECT_EQ(CGPDFDocumentCreateWithURL(nullptr), nullptr);
    EXPECT_EQ(CGPDFDocumentCreateWithURL(FileURL("/")), nullptr);
    EXPECT_EQ(CGPDFDocumentGetNumberOfPages(nullptr), 0U);
    EXPECT_EQ(CGPDFDocumentGetPage(nullptr, 1), nullptr);
    EXPECT_EQ(CGPDFPageGetRotationAngle(nullptr), 0);
    EXPECT_TRUE(CGRectEqualToRect(CGPDFPageGetBoxRect(nullptr, kCGPDFMediaBox), CGRectZero));
}

TEST(CGPDFDocument, Page_OutlivesItsDocument) {
    Owned<CGPDFDocumentRef> document = Open(PDF({Red}));
    EXPECT_EQ(CFGetRetainCount(document), 1);
    Owned<CGPDFPageRef> page = CGPDFPageRetain(CGPDFDocumentGetPage(document, 1));
    document = nullptr;
    EXPECT_EQ(CGPDFPageGetBoxRect(page, kCGPDFMediaBox).size.width, 200);
}

// Painting ---------------------------------------------------------------------------------------------------------

TEST(CGContextDrawPDFPage, Bitmap_OwnSpaceUnturnedCutToTheCropBox) {
    NEEDS_PAINTING();
    for (int turn : {0, 90, 180, 270}) {
        Owned<CGPDFDocumentRef> document =
            Open(HandMade("/MediaBox [0 0 200 100] /CropBox [20 5 190 90] /Rotate " + std::to_string(turn)));
        Bitmap bitmap(200, 100);
        CGContextDrawPDFPage(bitmap, CGPDFDocumentGetPage(document, 1));
        EXPECT_EQ(bitmap.At(20, 10), kRed) << turn;
        EXPECT_EQ(bitmap.At(59, 39), kRed) << turn;
        EXPECT_EQ(bitmap.Count(), 40 * 30) << turn;
    }
}

TEST(CGContextDrawPDFPage, Bitmap_MatrixClipAlphaAndLayer) {
    NEEDS_PAINTING();
    Owned<CGPDFDocumentRef> document = Open(PDF({Red}));
    Bitmap bitmap(200, 200);
    CGContextTranslateCTM(bitmap, 0, 50);
    CGContextScaleCTM(bitmap, 2, 2);
    CGContextClipToRect(bitmap, CGRectMake(0, 0, 30, 100));
    CGContextSetAlpha(bitmap, 0.5);
    CGContextDrawPDFPage(bitmap, CGPDFDocumentGetPage(document, 1));
    EXPECT_NEAR_PIXEL(bitmap.At(25, 75), (Pixel{128, 0, 0, 128}), 2);
    EXPECT_EQ(bitmap.Count(), 40 * 60);
    CGContextSetAlpha(bitmap, 1);
    CGContextFillRect(bitmap, CGRectMake(0, 0, 5, 5));  // the context stays usable
    EXPECT_EQ(bitmap.At(0, 50), kRed);

    Owned<CGLayerRef> layer = CGLayerCreateWithContext(bitmap, {200, 100}, nullptr);
    CGContextDrawPDFPage(CGLayerGetContext(layer), CGPDFDocumentGetPage(document, 1));
    Bitmap other(200, 100);
    CGContextDrawLayerAtPoint(other, {0, 0}, layer);
    EXPECT_EQ(other.Count(), 1500);
    EXPECT_EQ(other.At(10, 10), kRed);
}

// Pages of other documents in a new one
// --------------------------------------------------------------------------------

static std::vector<uint8_t> Painted(const std::string& bytes, size_t number = 1, int w = 200, int h = 100) {
    Owned<CGPDFDocumentRef> document = Open(bytes);
    Bitmap bitmap(w, h);
    CGContextDrawPDFPage(bitmap, CGPDFDocumentGetPage(document, number));
    return bitmap.Pixels();
}

TEST(CGContextDrawPDFPage, PDF_PageIsTakenOverWithoutLoss) {
    NEEDS_PAINTING();
    std::string source = PDF({Red, Blue});
    Owned<CGPDFDocumentRef> document = Open(source);
    std::string copy = PDF({[&](CGContextRef c) { CGContextDrawPDFPage(c, CGPDFDocumentGetPage(document, 2)); },
                            [&](CGContextRef c) { CGContextDrawPDFPage(c, CGPDFDocumentGetPage(document, 1)); }});
    ASSERT_EQ(CGPDFDocumentGetNumberOfPages(Open(copy)), 2U);
    EXPECT_EQ(Painted(copy, 1), Painted(source, 2));
    EXPECT_EQ(Painted(copy, 2), Painted(source, 1));
}

TEST(CGContextDrawPDFPage, PDF_TurnedPageGoesOverUnturned) {
    NEEDS_PAINTING();
    Owned<CGPDFDocumentRef> document = Open(HandMade("/MediaBox [0 0 200 100] /Rotate 90"));
    std::string copy = PDF({[&](CGContextRef c) { CGContextDrawPDFPage(c, CGPDFDocumentGetPage(document, 1)); }});
    Owned<CGPDFDocumentRef> made = Open(copy);
    EXPECT_EQ(CGPDFPageGetRotationAngle(CGPDFDocumentGetPage(made, 1)), 0);
    EXPECT_EQ(Painted(copy), Painted(PDF({Red})));
}

TEST(CGContextDrawPDFPage, PDF_MixedWithDrawing_OrderMatrixClipAlpha) {
    NEEDS_PAINTING();
    Owned<CGPDFDocumentRef> document = Open(PDF({Red}));
    CGPDFPageRef page = CGPDFDocumentGetPage(document, 1);
    auto scene = [&](CGContextRef c) {
        CGContextSetRGBFillColor(c, 0, 1, 0, 1);
        CGContextFillRect(c, CGRectMake(0, 0, 40, 40));  // below the page
        CGContextSaveGState(c);
        CGContextClipToRect(c, CGRectMake(0, 0, 150, 60));
        CGContextAddEllipseInRect(c, CGRectMake(0, 0, 120, 60));
        CGContextClip(c);
        CGContextDrawPDFPage(c, page);
        CGContextTranslateCTM(c, 40, 20);
        CGContextScaleCTM(c, 0.5, 0.5);
        CGContextSetAlpha(c, 0.5);
        CGContextDrawPDFPage(c, page);
        CGContextFillRect(c, CGRectMake(0, 0, 20, 20));  // the clip and the matrix are still those
        CGContextRestoreGState(c);
        Blue(c);
    };
    Bitmap expected(200, 100);
    scene(expected);
    std::vector<uint8_t> got = Painted(PDF({scene}));
    auto wanted = expected.Pixels();
    int far = 0;
    for (size_t i = 0; i < wanted.size(); ++i) far += std::abs(wanted[i] - got[i]) > 40;
    EXPECT_LT(far, 20);  // the painter's antialiasing differs at edges
    EXPECT_EQ(got[(99 - 15) * 800 + 30 * 4], 255);
    EXPECT_EQ(got[(99 - 60) * 800 + 120 * 4 + 2], 255);
}

TEST(CGContextDrawPDFPage, PDF_BoxOffTheOrigin) {
    NEEDS_PAINTING();
    Owned<CGPDFDocumentRef> document = Open(PDF({Red}));
    Owned<CFMutableDataRef> data = CFDataCreateMutable(nullptr, 0);
    Owned<CGDataConsumerRef> consumer = CGDataConsumerCreateWithCFData(data);
    Owned<CGContextRef> context = CGPDFContextCreate(consumer, nullptr, nullptr);
    CGPDFContextBeginPage(context, InfoOf({CGRectMake(5, 5, 100, 80), nullptr}));
    CGContextDrawPDFPage(context, CGPDFDocumentGetPage(document, 1));
    CGContextSetRGBFillColor(context, 0, 0, 1, 1);
    CGContextFillRect(context, CGRectMake(70, 10, 10, 10));
    document = nullptr;  // the noted page keeps what it needs
    CGPDFContextClose(context);
    std::vector<uint8_t> got = Painted(BytesOf(data));
    Bitmap expected(200, 100);
    Red(expected);
    CGContextSetRGBFillColor(expected, 0, 0, 1, 1);
    CGContextFillRect(expected, CGRectMake(70, 10, 10, 10));
    EXPECT_EQ(got, expected.Pixels());
}

// Damage and threads -----------------------------------------------------------------------------------------------

TEST(CGContextDrawPDFPage, PDF_SamePageOften_StandsInTheFileOnce) {
    std::mt19937 random(7);
    auto stamp = Open(PDF({[&](CGContextRef c) {
        for (int i = 0; i < 2000; ++i) CGContextFillRect(c, CGRectMake(random() % 190, random() % 90, 3, 3));
    }}));
    auto stamped = [&](int times) {
        return PDF({[&](CGContextRef c) {
            for (int i = 0; i < times; ++i) {
                CGContextSaveGState(c);
                CGContextScaleCTM(c, 0.5, 0.5);
                CGContextTranslateCTM(c, i % 3 * 10, 0);
                CGContextDrawPDFPage(c, CGPDFDocumentGetPage(stamp, 1));
                CGContextRestoreGState(c);
            }
            Red(c);
        }});
    };
    std::string once = stamped(1), often = stamped(20);
    EXPECT_LT(often.size(), once.size() * 3);
    Bitmap one(200, 100), many(200, 100);
    CGContextDrawPDFPage(one, CGPDFDocumentGetPage(Open(once), 1));
    CGContextDrawPDFPage(many, CGPDFDocumentGetPage(Open(often), 1));
    EXPECT_EQ(many.At(20, 20), kRed);
    EXPECT_GT(many.Count(), one.Count());
}

// At least length spaces, packed 160 to 1: one as it is, then runs of 258 that repeat it
static std::string PackedSpaces(size_t length) {
    std::string out = "\x78\x9C";
    uint32_t bits = 0;
    int n = 0;
    auto put = [&](int code, int width) {  // highest bit first
        for (int i = width; i-- > 0;) {
            bits |= static_cast<uint32_t>(code >> i & 1) << n;
            if (++n == 8) out += static_cast<char>(bits), bits = 0, n = 0;
        }
    };
    put(0b110, 3);
    put(0x30 + ' ', 8);
    uint32_t low = 1 + ' ', high = low;
    for (size_t done = 1; done < length; done += 258) {
        put(0xC5, 8);
        put(0, 5);
        for (int i = 0; i < 258; ++i) low = (low + ' ') % 65521, high = (high + low) % 65521;
    }
    put(0, 7);
    if (n > 0) out += static_cast<char>(bits);
    for (uint32_t v : {high >> 8, high, low >> 8, low}) out += static_cast<char>(v);
    return out;
}

TEST(CGContextDrawPDFPage, PDF_ContentBeyondMeasure_IsLeftOut) {
    // Content that swells under its filter
    auto document = [](size_t length) {
        std::string page = HandMade(""), packed = PackedSpaces(length);
        size_t from = page.find("<< /Length "), to = page.find("endstream");
        return page.replace(
            from, to - from,
            "<< /Filter /FlateDecode /Length " + std::to_string(packed.size()) + " >>\nstream\n" + packed + "\n");
    };
    auto combined = [&](size_t length) {
        auto bomb = Open(document(length));
        EXPECT_EQ(CGPDFDocumentGetNumberOfPages(bomb), 1U);
        auto start = std::chrono::steady_clock::now();
        std::string made = PDF({[&](CGContextRef c) {
            CGContextDrawPDFPage(c, CGPDFDocumentGetPage(bomb, 1));
            Red(c);
        }});
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
        Bitmap bitmap(200, 100);
        CGContextDrawPDFPage(bitmap, CGPDFDocumentGetPage(Open(made), 1));
        EXPECT_EQ(bitmap.At(20, 20), kRed);
    };
    combined(1UL << 20);
    combined(300UL << 20);
}

TEST(CGPDFDocument, DamagedFiles_NeitherCrashNorHang) {
    std::string files[] = {PDF({Red, Blue}), HandMade("/MediaBox [0 0 200 100]")};
    std::mt19937 random(11);
    int opened = 0, refused = 0;
    for (auto& file : files)
        for (int round = 0; round < 120; ++round) {
            std::string bytes = file;
            for (int i = 0; i < 1 + static_cast<int>(random() % 6); ++i)
                bytes[random() % bytes.size()] ^= static_cast<char>(1 << random() % 8);
            if (round % 6 == 0) bytes.resize(random() % bytes.size());
            Owned<CGPDFDocumentRef> document = Open(bytes);
            (document ? opened : refused) += 1;
            size_t n = std::min<size_t>(CGPDFDocumentGetNumberOfPages(document), 3);
            Bitmap bitmap(50, 50);
            std::vector<Draw> copies;
            for (size_t i = 1; i <= n; ++i) {
                CGPDFPageRef page = CGPDFDocumentGetPage(document, i);
                for (int box = 0; box < 5; ++box) CGPDFPageGetBoxRect(page, static_cast<CGPDFBox>(box));
                CGPDFPageGetRotationAngle(page);
                CGContextDrawPDFPage(bitmap, page);
                copies.push_back([page](CGContextRef c) { CGContextDrawPDFPage(c, page); });
            }
            if (n > 0) PDF(copies);
        }
    EXPECT_GT(opened, 50);
    EXPECT_GT(refused, 10);
}

TEST(CGPDFDocument, SharedBetweenThreads) {
    std::string source = PDF({Red, Blue, Red, Blue});
    Owned<CGPDFDocumentRef> document = Open(source);
    std::vector<std::thread> threads;
    std::atomic<int> whole = 0;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&] {
            for (size_t i = 1; i <= 4; ++i) {
                CGPDFPageRef page = CGPDFDocumentGetPage(document, i);
                Bitmap bitmap(200, 100);
                CGContextDrawPDFPage(bitmap, page);
                std::string copy = PDF({[&](CGContextRef c) { CGContextDrawPDFPage(c, page); }});
                whole += CGPDFDocumentGetNumberOfPages(Open(copy)) == 1;
            }
        });
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(whole, 16);
}
