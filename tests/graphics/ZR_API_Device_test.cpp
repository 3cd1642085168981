// The device: its kinds, the frame, conversion, matrices, clips, properties and copies.
#include "graphics/ZR_API_Device.h"

#include <climits>
#include <cmath>
#include <limits>

#include "graphics/ZR_API_Region.h"
#include "tests/graphics/DrawingSupport.h"

namespace {

class Device : public DrawingTest {};

bool SameTransform(CGAffineTransform a, CGAffineTransform b) {
    auto near = [](double x, double y) { return std::fabs(x - y) < 1e-4; };
    return near(a.a, b.a) && near(a.b, b.b) && near(a.c, b.c) && near(a.d, b.d) && near(a.tx, b.tx) && near(a.ty, b.ty);
}
#define EXPECT_TRANSFORM(context, ...) \
    EXPECT_PRED2(SameTransform, CGContextGetCTM(context), (CGAffineTransform __VA_ARGS__))

// A context of somebody else: 100 x 50 pixels.
struct Foreign {
    Foreign() {
        CGColorSpaceRef space = CGColorSpaceCreateWithName(kCGColorSpaceGenericRGB);
        context = CGBitmapContextCreate(nullptr, 100, 50, 8, 400, space, kCGImageAlphaPremultipliedLast);
        CGColorSpaceRelease(space);
    }
    ~Foreign() { CGContextRelease(context); }
    Dot At(long x, long y) {  // y down
        CGContextFlush(context);
        auto p = static_cast<const unsigned char*>(CGBitmapContextGetData(context)) + (y * 100 + x) * 4;
        return {p[0], p[1], p[2], p[3]};
    }
    CGContextRef context;
};

void FillWhole(ZR_Device* device, ZR_Rect rect, ZR_RGBColor color) {
    device->DrawRect(&rect, true, false, &color, nullptr, 1, false, 0, false, nullptr, nullptr, nullptr, nullptr);
}

}  // namespace

// Life -------------------------------------------------------------------------------------------------------------

TEST_F(Device, Create_Empty_HasNothing) {
    ZR_InitGrafics();
    ZR_Device d;
    memset(static_cast<void*>(&d), 0xAB, sizeof d);
    d.Create();
    EXPECT_EQ(d.context, nullptr);
    EXPECT_EQ(d.layer, nullptr);
    EXPECT_EQ(d.colorSpace, nullptr);
    EXPECT_EQ(d.bitmapData, nullptr);
    EXPECT_FALSE(d.stateSaved || d.offscreen || d.printing || d.rotatePage);
    EXPECT_EQ(d.bounds.right, 0);
    EXPECT_EQ(d.framePath.count, 0);
    EXPECT_EQ(d.customProperties.count, 0);
    EXPECT_EQ(d.dpiX, 0);
    EXPECT_EQ(d.svg, nullptr);
    d.Dispose();
    ZR_DeinitGrafics();
}

TEST_F(Device, CreateWithCGContext_Moved_TranslatesAndSavesTheState) {
    Foreign foreign;
    ZR_Device d;
    ZR_Rect bounds = Rect(0, 0, 100, 50);
    d.CreateWithCGContext(foreign.context, &bounds, 10, 5, /*gray*/ false);
    EXPECT_EQ(d.context, foreign.context);
    EXPECT_TRUE(d.stateSaved);
    EXPECT_FALSE(d.offscreen);
    EXPECT_EQ(CGColorSpaceGetNumberOfComponents(d.colorSpace), 3u);
    EXPECT_TRANSFORM(d.context, {1, 0, 0, 1, 10, -5});
    CGContextScaleCTM(d.context, 3, 3);
    d.Dispose();
    EXPECT_TRANSFORM(foreign.context, {1, 0, 0, 1, 10, -5});
    EXPECT_EQ(d.context, nullptr);
}

TEST_F(Device, CreateWithCGContext_NotMovedOrNull_LeavesTheMatrix) {
    Foreign foreign;
    ZR_Device d;
    ZR_Rect bounds = Rect(0, 0, 100, 50);
    d.CreateWithCGContext(foreign.context, &bounds, 0, 0, false);
    EXPECT_TRANSFORM(d.context, {1, 0, 0, 1, 0, 0});
    d.Dispose();
    d.CreateWithCGContext(nullptr, nullptr, 1, 1, true);
    FillWhole(&d, bounds, Color(255, 0, 0));
    d.Dispose();
}

TEST_F(Device, CreateWithCGContext_Gray_SetsTheSpaceOfTheContext) {
    Foreign foreign;
    ZR_Device d;
    ZR_Rect bounds = Rect(0, 0, 100, 50);
    d.CreateWithCGContext(foreign.context, &bounds, 0, 0, /*gray*/ true);
    EXPECT_EQ(CGColorSpaceGetNumberOfComponents(d.colorSpace), 1u);
    d.Dispose();
}

TEST_F(Device, CreateWithCGContextFlip_ContextRunningDown_DrawsAsAnyOther) {
    Foreign foreign;
    CGContextTranslateCTM(foreign.context, 0, 50);
    CGContextScaleCTM(foreign.context, 1, -1);
    ZR_Device d;
    ZR_Rect bounds = Rect(0, 0, 100, 50);
    d.CreateWithCGContextFlip(foreign.context, &bounds);
    EXPECT_TRUE(d.stateSaved);
    EXPECT_TRANSFORM(d.context, {1, 0, 0, 1, 0, 0});
    EXPECT_TRUE(CGAffineTransformIsIdentity(CGContextGetTextMatrix(d.context)));
    FillWhole(&d, Rect(0, 0, 10, 10), Color(255, 0, 0));
    EXPECT_EQ(foreign.At(5, 5), kRedDot);
    EXPECT_EQ(foreign.At(5, 45), kClearDot);
    d.Dispose();
}

TEST_F(Device, CreateSVG_Root_HasSizeAndNamespacesInOrder) {
    SvgCanvas c(200.9f, 99.9f);
    EXPECT_TRUE(c->offscreen);
    EXPECT_EQ(c->context, nullptr);
    EXPECT_EQ(c->colorSpace, nullptr);
    EXPECT_EQ(c.Text(),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<svg width=\"200\" height=\"99\" "
              "xmlns=\"http://www.w3.org/2000/svg\" xmlns:xlink=\"http://www.w3.org/1999/xlink\"><defs/></svg>\n");
}

TEST_F(Device, CreateOffscreen_Bitmap_HasPixelsAndPoints) {
    static const struct {
        long width, height, dpiX, dpiY, pixelsX, pixelsY;
    } rows[] = {
        {100, 50, 0, 0, 100, 50},     {100, 50, 144, 144, 200, 100}, {100, 50, 0, 144, 100, 50},
        {100, 50, 144, 0, 100, 50},   {100, 50, 72, 144, 100, 100},  {10, 10, 100, 100, 13, 13},
        {100, 50, -72, 144, 100, 50},
    };
    for (const auto& row : rows) {
        ZR_Device d;
        ASSERT_TRUE(d.CreateOffscreen(row.width, row.height, true, row.dpiX, row.dpiY));
        EXPECT_EQ(CGBitmapContextGetWidth(d.context), static_cast<size_t>(row.pixelsX)) << row.dpiX << " " << row.dpiY;
        EXPECT_EQ(CGBitmapContextGetHeight(d.context), static_cast<size_t>(row.pixelsY));
        EXPECT_EQ(CGBitmapContextGetBytesPerRow(d.context), static_cast<size_t>(row.pixelsX * 4));
        EXPECT_EQ(d.bounds.right, row.width);
        EXPECT_EQ(d.bounds.bottom, row.height);
        EXPECT_EQ(d.dpiX, row.dpiX);
        EXPECT_NE(d.bitmapData, nullptr);
        EXPECT_TRUE(d.offscreen);
        EXPECT_FALSE(d.stateSaved);
        EXPECT_EQ(d.layer, nullptr);
        d.Dispose();
    }
}

TEST_F(Device, CreateOffscreen_Layer_HasALayerAndIgnoresDpi) {
    ZR_Device d;
    ASSERT_TRUE(d.CreateOffscreen(100, 50, false, 144, 144));
    EXPECT_EQ(d.context, CGLayerGetContext(d.layer));
    EXPECT_EQ(CGLayerGetSize(d.layer).width, 100);
    EXPECT_EQ(d.bitmapData, nullptr);
    EXPECT_EQ(d.dpiX, 144);
    EXPECT_FALSE(d.stateSaved);
    d.Dispose();
}

TEST_F(Device, CreateOffscreen_AbsurdSizes_AreRefusedAndLeaveAnEmptyDevice) {
    static const struct {
        long width, height, dpi;
    } rows[] = {{0, 10, 0},        {10, 0, 0},          {-5, 10, 0},      {32768, 1, 0},
                {65536, 32768, 0}, {20000, 20000, 0},   {LONG_MAX, 1, 0}, {LONG_MAX, LONG_MAX, 1},
                {LONG_MIN, 10, 0}, {100, 100, LONG_MAX}};
    for (const auto& row : rows) {
        ZR_Device d;
        EXPECT_FALSE(d.CreateOffscreen(row.width, row.height, true, row.dpi, row.dpi))
            << row.width << " " << row.height;
        EXPECT_EQ(d.context, nullptr);
        EXPECT_EQ(d.bitmapData, nullptr);
        EXPECT_EQ(d.colorSpace, nullptr);
        d.Dispose();
    }
    for (long size : {0L, -1L, 2'000'000L, LONG_MAX}) {
        ZR_Device d;
        EXPECT_FALSE(d.CreateOffscreen(size, size, false, 0, 0)) << size;
        EXPECT_EQ(d.layer, nullptr);
        d.Dispose();
    }
}

// Required: what Dispose does not do, DisposeCustomProperties does.
TEST_F(Device, DisposeCustomProperties_Records_AreDisposedWithTheirTexts) {
    ZR_Device d;
    d.Create();
    TestProperties::Add(&d.customProperties, "a", "1");
    TestProperties::Add(&d.customProperties, "b", "2");
    d.DisposeCustomProperties();
    EXPECT_EQ(d.customProperties.count, 0);
    d.Dispose();
}

// Frame ------------------------------------------------------------------------------------------------------------

TEST_F(Device, BeginDraw_NotARotatedPage_ChangesNothing) {
    for (int kind = 0; kind < 3; ++kind) {
        BitmapCanvas c(100, 50);
        c->printing = kind == 1;
        c->rotatePage = kind == 2;
        CGContextTranslateCTM(c->context, 3, 4);
        c->BeginDraw();
        c->ResetTransform();
        c->EndDraw();
        EXPECT_TRANSFORM(c->context, {1, 0, 0, 1, 3, 4});
    }
}

TEST_F(Device, BeginDraw_RotatedPage_TurnsItAroundItsMiddle) {
    BitmapCanvas c(100, 50);
    c->printing = c->rotatePage = true;
    c->BeginDraw();
    EXPECT_TRANSFORM(c->context, {-1, 0, 0, -1, 100, 50});
    FillWhole(&c.device, Rect(0, 0, 10, 10), Color(255, 0, 0));
    EXPECT_EQ(c.At(95, 45), kRedDot);
    EXPECT_EQ(c.At(5, 5), kClearDot);
}

TEST_F(Device, SetTransform_Matrix_DropsTheClipAndOutlivesTheNext) {
    BitmapCanvas c(100, 50);
    ZR_Rect clip = Rect(0, 0, 5, 5);
    c->ClipRect(&clip);
    ZR_Matrix move = {1, 0, 0, 1, 20, 10};
    c->SetTransform(&move);
    EXPECT_TRANSFORM(c->context, {1, 0, 0, 1, 20, -10});
    FillWhole(&c.device, Rect(0, 0, 10, 10), Color(255, 0, 0));
    EXPECT_EQ(c.At(25, 15), kRedDot);
    c->ClipRect(&clip);
    EXPECT_TRANSFORM(c->context, {1, 0, 0, 1, 20, -10});
    c->SetTransform(&move);  // Required: acts before the former one
    EXPECT_TRANSFORM(c->context, {1, 0, 0, 1, 40, -20});
}

TEST_F(Device, SetTransform_NullOrNoContext_IsHarmless) {
    BitmapCanvas c;
    c->SetTransform(nullptr);
    EXPECT_TRANSFORM(c->context, {1, 0, 0, 1, 0, 0});
    SvgCanvas s;
    ZR_Matrix move = {1, 0, 0, 1, 20, 10};
    s->SetTransform(&move);
    s->SetAntialias(true);
    ZR_Rect rect = Rect(0, 0, 1, 1);
    s->ClearRect(&rect);
    s->Flush();
    EXPECT_EQ(s.Drawn(), "");
}

TEST_F(Device, GetSystemMatrix_AnyMatrix_KeepsTheSignsOfBAndC) {
    BitmapCanvas c(100, 50);
    ZR_Matrix m = {1, 2, 3, 4, 5, 6};
    EXPECT_PRED2(SameTransform, c->GetSystemMatrix(&m), (CGAffineTransform{1, 2, 3, 4, 5, 50 - 4 * 50 - 6}));
    m = {1, 0, 0, 1, 0, 0};
    EXPECT_TRUE(CGAffineTransformIsIdentity(c->GetSystemMatrix(&m)));
}

TEST_F(Device, ConvertPointToMatrixPoint_MatrixOrNone_IsTheTransformedPoint) {
    BitmapCanvas c;
    ZR_Matrix m = {2, 3, 5, 7, 11, 13};
    ZR_Point p = c->ConvertPointToMatrixPoint(&m, {1, 10});
    EXPECT_EQ(p.x, 5 * 10 + 2 * 1 + 11);
    EXPECT_EQ(p.y, 7 * 10 + 3 * 1 + 13);
    m = {1, 0, 0, 1, 0, 0};
    EXPECT_EQ(c->ConvertPointToMatrixPoint(&m, {1, 10}).y, 10);
    EXPECT_EQ(c->ConvertPointToMatrixPoint(nullptr, {1, 10}).x, 1);
}

TEST_F(Device, ClearRect_Part_BecomesTransparent) {
    BitmapCanvas c;
    FillWhole(&c.device, Rect(0, 0, 40, 40), Color(0, 0, 255));
    ZR_Rect rect = Rect(10, 0, 20, 5);
    c->ClearRect(&rect);
    EXPECT_EQ(c.At(15, 2), kClearDot);
    EXPECT_EQ(c.At(15, 6), kBlueDot);
}

// Conversion -------------------------------------------------------------------------------------------------------

TEST_F(Device, ZRRectToCGRect_Rect_IsMirroredAtTheHeight) {
    ZR_Device d;
    d.Create();
    d.bounds = Rect(0, 0, 100, 50);
    ZR_Rect r = Rect(5, 0, 25, 10);
    CGRect out;
    d.ZRRectToCGRect(&r, &out);
    EXPECT_TRUE(CGRectEqualToRect(out, CGRectMake(5, 40, 20, 10)));
    EXPECT_TRUE(CGRectEqualToRect(d.GetCGRect(&r), out));
    ZR_Rect back;
    d.CGRectToZRRect(&out, &back);
    EXPECT_EQ(back.left, 5);
    EXPECT_EQ(back.top, 0);
    EXPECT_EQ(back.right, 25);
    EXPECT_EQ(back.bottom, 10);
    d.bounds = Rect(0, 20, 100, 50);  // the height is that of the bounds
    EXPECT_EQ(d.GetCGRect(&r).origin.y, 20);
}

TEST_F(Device, PerformDrawMatrix_NullAndIdentity_LeaveTheContextAlone) {
    BitmapCanvas c(100, 50);
    ZR_Matrix identity = {1, 0, 0, 1, 0, 0};
    ZR_Rect r = Rect(5, 0, 25, 10);
    for (ZR_Matrix* m : {static_cast<ZR_Matrix*>(nullptr), &identity}) {
        CGRect out;
        EXPECT_FALSE(c->PerformDrawMatrix(&r, m, &out));
        EXPECT_TRUE(CGRectEqualToRect(out, CGRectMake(5, 40, 20, 10)));
        EXPECT_TRANSFORM(c->context, {1, 0, 0, 1, 0, 0});
    }
}

TEST_F(Device, PerformDrawMatrix_Matrix_TurnsTheContextDown) {
    BitmapCanvas c(100, 50);
    ZR_Matrix m = {2, 0, 0, 2, 3, 4};
    ZR_Rect r = Rect(5, 1, 25, 10);
    CGRect out;
    ASSERT_TRUE(c->PerformDrawMatrix(&r, &m, &out));
    EXPECT_TRUE(CGRectEqualToRect(out, CGRectMake(5, 1, 20, 9)));
    EXPECT_TRANSFORM(c->context, {2, 0, 0, -2, 3, 50 - 4});
    c->PrepareMatrixDrawing(&out);
    EXPECT_TRUE(CGRectEqualToRect(out, CGRectMake(0, 0, 20, 9)));
    // The lower left corner (5, 10) under the matrix is (13, 24), y up 26.
    EXPECT_TRANSFORM(c->context, {2, 0, 0, 2, 13, 26});
    CGContextRestoreGState(c->context);
    EXPECT_TRANSFORM(c->context, {1, 0, 0, 1, 0, 0});
}

TEST_F(Device, PrepareMatrixDrawing_MirroredRect_GivesTheSameFrame) {
    BitmapCanvas c(100, 50);
    ZR_Matrix m = {2, 0, 0, 2, 3, 4};
    ZR_Rect r = Rect(5, 1, 25, 10), mirrored;
    CGRect out;
    ASSERT_TRUE(c->PerformDrawMatrix(&r, &m, &out));
    c->CGRectToZRRect(&out, &mirrored);
    c->PrepareMatrixDrawing(&mirrored);
    EXPECT_EQ(mirrored.left, 0);
    EXPECT_EQ(mirrored.top, 0);
    EXPECT_EQ(mirrored.right, 20);
    EXPECT_EQ(mirrored.bottom, 9);
    EXPECT_TRANSFORM(c->context, {2, 0, 0, 2, 13, 26});
    CGContextRestoreGState(c->context);
}

// Clips ------------------------------------------------------------------------------------------------------------

TEST_F(Device, ClipRect_Raster_ReplacesTheFormerOne) {
    BitmapCanvas c;
    ZR_Rect first = Rect(0, 0, 10, 10), second = Rect(20, 20, 30, 30);
    c->ClipRect(&first);
    c->ClipRect(&second);
    FillWhole(&c.device, Rect(0, 0, 40, 40), Color(255, 0, 0));
    EXPECT_EQ(c.At(5, 5), kClearDot);
    EXPECT_EQ(c.At(25, 25), kRedDot);
    EXPECT_EQ(c.Count(), 100);
}

TEST_F(Device, ClipRect_WithALimit_CutsTheRect) {
    BitmapCanvas c;
    ZR_Rect r = Rect(0, 0, 20, 20), limit = Rect(10, 5, 40, 40);
    c->ClipRect(&r, &limit);
    EXPECT_EQ(r.left, 10);
    EXPECT_EQ(r.top, 5);
    FillWhole(&c.device, Rect(0, 0, 40, 40), Color(255, 0, 0));
    EXPECT_EQ(c.Count(), 10 * 15);
    ZR_Rect apart = Rect(0, 0, 5, 5);
    c->ClipRect(&apart, &limit);
    EXPECT_EQ(apart.right, 0);
    SvgCanvas s;
    ZR_Rect cut = Rect(0, 0, 20, 20);
    s->ClipRect(&cut, &limit);
    EXPECT_EQ(s.Body(), "<defs><clipPath id='clip1'><rect x='10' y='5' width='10' height='15'/></clipPath></defs>");
}

TEST_F(Device, SetClipRegion_WithAHole_ClipsToWhatIsLeft) {
    BitmapCanvas c;
    ZR_Region region;
    region.Create();
    ZR_Rect whole = Rect(0, 0, 20, 20), hole = Rect(5, 5, 15, 15);
    region.AddRect(&whole);
    region.Difference(&hole);
    c->SetClipRegion(&region);
    FillWhole(&c.device, Rect(0, 0, 40, 40), Color(255, 0, 0));
    EXPECT_EQ(c.At(2, 2), kRedDot);
    EXPECT_EQ(c.At(10, 10), kClearDot);
    EXPECT_EQ(c.Count(), 400 - 100);
    SvgCanvas s;
    s->SetClipRegion(&region);
    EXPECT_EQ(s.Drawn(), "");
    region.Dispose();
}

// Properties and dashes --------------------------------------------------------------------------------------------

TEST_F(Device, SetCustomProperties_EmptyNameOrValue_WritesNoAttribute) {
    SvgCanvas c;
    TestProperties properties({{"id", "one"}, {"class", ""}, {"", "lost"}, {"x", "caller"}});
    TestProperties::Add(&c->customProperties, "x", "device");
    TestProperties::Add(&c->customProperties, "data-empty", "");
    ZR_RGBColor black = Color(0, 0, 0);
    c->DrawLine(1, 2, 3, 4, &black, 1, true, 0, 0, nullptr, properties, nullptr);
    // The device's own value wins.
    EXPECT_EQ(c.Drawn(), "<line id='one' x='device' x1='1' y1='2' x2='3' y2='4' stroke-width='1' stroke='#000000'/>");
}

TEST_F(Device, SetLineDash_ManyOrBadLengths_AreTakenOrLeft) {
    BitmapCanvas c;
    float many[100];
    for (float& length : many) length = 2;
    ZR_LineDash dash = {0, 100, many};
    c->SetLineDash(&dash);
    dash = {0, LONG_MAX, many};
    c->SetLineDash(&dash);
    dash = {0, -1, many};
    c->SetLineDash(&dash);
    dash = {0, 3, nullptr};
    c->SetLineDash(&dash);
    c->SetLineDash(nullptr);
}

TEST_F(Device, GetSVGBLOB_WithoutSvg_LeavesTheHandle) {
    BitmapCanvas c;
    ZR_Handle bytes;
    bytes.Create(1, 3);
    c->GetSVGBLOB(&bytes);
    EXPECT_EQ(bytes.count, 3);
    bytes.Dispose();
}

// Copies -----------------------------------------------------------------------------------------------------------

TEST_F(Device, CopyBits_BitmapAndLayer_LieAtTheLowerLeftOfTheTarget) {
    for (bool bitmap : {true, false}) {
        ZR_Device source;
        ASSERT_TRUE(source.CreateOffscreen(10, 10, bitmap, bitmap ? 144 : 0, bitmap ? 144 : 0));
        FillWhole(&source, Rect(0, 0, 5, 5), Color(255, 0, 0));
        BitmapCanvas c;
        ZR_Rect from = Rect(2, 3, 10, 10), to = Rect(12, 10, 22, 20);
        ZR_CopyBits(&source, &c.device, &from, &to);
        // x = 12 - 2; the bottom of the source on that of the target, whatever the top of its rectangle says
        EXPECT_EQ(c.At(10, 10), kRedDot) << bitmap;
        EXPECT_EQ(c.At(14, 14), kRedDot) << bitmap;
        EXPECT_EQ(c.At(15, 15), kClearDot) << bitmap;
        EXPECT_EQ(c.Count(), 25) << bitmap;
        ZR_CopyBits(nullptr, &c.device, &from, &to);
        ZR_CopyBits(&source, &c.device, nullptr, &to);
        source.Dispose();
    }
}

TEST_F(Device, CopyScaleBits_BitmapAndLayer_FillTheRect) {
    for (bool bitmap : {true, false}) {
        ZR_Device source;
        ASSERT_TRUE(source.CreateOffscreen(10, 10, bitmap, 0, 0));
        FillWhole(&source, Rect(0, 0, 10, 5), Color(255, 0, 0));
        FillWhole(&source, Rect(0, 5, 10, 10), Color(0, 0, 255));
        BitmapCanvas c;
        ZR_Rect to = Rect(0, 0, 40, 40);
        ZR_CopyScaleBits(&source, &c.device, &to);
        EXPECT_EQ(c.At(20, 5), kRedDot) << bitmap;
        EXPECT_EQ(c.At(20, 35), kBlueDot) << bitmap;
        source.Dispose();
    }
}

// The two back ends ------------------------------------------------------------------------------------------------

TEST_F(Device, Copy_BitByBit_DrawsOnTheSameTarget) {
    BitmapCanvas c;
    ZR_Device copy = c.device;
    FillWhole(&copy, Rect(0, 0, 10, 10), Color(255, 0, 0));
    EXPECT_EQ(c.At(5, 5), kRedDot);
}

TEST_F(Device, HigherDpi_SamePoints_CoverMorePixels) {
    BitmapCanvas c(40, 40, 144);
    FillWhole(&c.device, Rect(10, 10, 20, 20), Color(255, 0, 0));
    EXPECT_EQ(c.Count(), 400);
    EXPECT_EQ(c.At(25, 25), kRedDot);
}
