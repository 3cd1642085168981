#include "tests/graphics/PictureSupport.h"

#include <cmath>
#include <limits>

#include "graphics/ZR_API_Device.h"
#include "graphics/ZR_API_Matrix.h"
#include "graphics/ZR_API_SVGDocument.h"

namespace {

using namespace picturetest;
constexpr float kInfinite = std::numeric_limits<float>::infinity(), kNaN = std::numeric_limits<float>::quiet_NaN();

using DrawPicture = PictureTest;

struct Element {
    std::vector<std::pair<std::string, std::string>> attributes;
    std::string operator[](const std::string& name) const {
        for (const auto& [key, value] : attributes)
            if (key == name) return value;
        return "(none)";
    }
    std::string place() const {
        const Element& e = *this;
        return e["x"] + " " + e["y"] + " " + e["width"] + " " + e["height"];
    }
};

struct SvgDevice : ZR_Device {
    explicit SvgDevice(float w = 200, float h = 100) {
        ZR_Rect bounds = {0, 0, w, h};
        CreateSVG(&bounds);
    }
    ~SvgDevice() { Dispose(); }
    std::string Text() {
        ZR_Handle out = HandleOf("");
        GetSVGBLOB(&out);
        std::string text = StringOf(out);
        out.Dispose();
        return text;
    }
    // The "image" elements with their attributes in order
    std::vector<Element> Images() {
        const std::string text = Text();
        std::vector<Element> images;
        for (size_t at = text.find("<image"); at != std::string::npos; at = text.find("<image", at + 1)) {
            images.emplace_back();
            for (size_t from = at + 6, end = text.find('>', at); from < end;) {
                size_t equals = text.find('=', from), close = text.find('"', equals + 2);
                if (equals > end || close > end) break;
                std::string name = text.substr(from, equals - from);
                name.erase(0, name.find_first_not_of(" \n"));
                images.back().attributes.emplace_back(name, text.substr(equals + 2, close - equals - 2));
                from = close + 1;
            }
        }
        return images;
    }
};

struct BitmapDevice : ZR_Device {
    explicit BitmapDevice(long w = 100, long h = 50) { EXPECT_TRUE(CreateOffscreen(w, h, /*bitmap*/ true, 0, 0)); }
    ~BitmapDevice() { Dispose(); }
    Pixel At(int x, int y) {  // y down
        Flush();
        const unsigned char* p = bitmapData + (y * static_cast<int>(bounds.right) + x) * 4;
        return {p[0], p[1], p[2], p[3]};
    }
    // The box of the pixels that are not clear: left, top, right, bottom
    std::array<int, 4> Box() {
        std::array<int, 4> box = {9999, 9999, -1, -1};
        for (int y = 0; y < static_cast<int>(bounds.bottom); ++y)
            for (int x = 0; x < static_cast<int>(bounds.right); ++x) {
                if (At(x, y).a < 128) continue;
                box = {std::min(box[0], x), std::min(box[1], y), std::max(box[2], x + 1), std::max(box[3], y + 1)};
            }
        return box;
    }
};

void Draw(ZR_Picture& picture, ZR_Device& device, ZR_Rect rect, float opacity = 100, ZR_Matrix* matrix = nullptr,
          ZR_Alignment alignment = ZR_ALIGNMENT_DEFAULT) {
    picture.Draw(&device, &rect, opacity, matrix, alignment, nullptr);
}

}  // namespace

TEST_F(DrawPicture, DisplayFormat_OutsideOneToSeven_BecomesTwoForGood) {
    for (short format : {0, 8, -1, 32767, -32768}) {
        Kept picture(SampleBytes(ZR_PICT_PNG));
        picture.displayFormat = format;
        Draw(picture, *std::make_unique<BitmapDevice>(), {0, 0, 100, 50});
        EXPECT_EQ(picture.displayFormat, 2) << format;
        picture.displayFormat = format;
        picture.Draw(nullptr, nullptr, 100, nullptr, ZR_ALIGNMENT_DEFAULT, nullptr);
        EXPECT_EQ(picture.displayFormat, 2) << format;
    }
    for (short format = 1; format <= 7; ++format) {
        Kept picture(SampleBytes(ZR_PICT_PNG));
        picture.displayFormat = format;
        Draw(picture, *std::make_unique<BitmapDevice>(), {0, 0, 100, 50});
        EXPECT_EQ(picture.displayFormat, format);
    }
}

// SVG --------------------------------------------------------------------------------------------------------------

TEST_F(DrawPicture, Svg_Modes_PlaceTheImage) {
    static const struct {
        short mode;
        int w, h;  // of the picture
        ZR_Rect rect;
        const char* place;
        const char* aspect;
    } rows[] = {
        {1, 8, 6, {20.9F, 10.9F, 90.9F, 60}, "10 20 80 39", "(none)"},
        {3, 8, 6, {20, 10, 90, 60}, "10 20 80 40", "(none)"},
        {4, 8, 6, {20, 10, 90, 60}, "10 20 80 40", "(none)"},
        {6, 8, 6, {20, 10, 90, 60}, "10 20 80 40", "(none)"},
        {2, 8, 6, {20, 10, 90, 60}, "10 20 80 40", "none"},
        {5, 8, 6, {20.7F, 10.7F, 90, 60}, "10 20 52 39", "(none)"},  // scale 39.3 / 6
        {5, 30, 10, {0, 0, 60, 40}, "0 0 60 20", "(none)"},
        {7, 200, 10, {0, 0, 100, 50}, "0 0 100 50", "(none)"},  // wider than the rectangle: one of its width
        {7, 100, 10, {0, 0, 100, 50}, "0 0 100 50", "(none)"},
        {2, 8, 6, {-20.9F, -10.9F, 90, 60}, "-10 -20 100 80", "none"},
        {2, 8, 6, {50, 90, 20, 10}, "90 50 -70 -40", "none"},  // as it stands, though turned round
    };
    for (const auto& row : rows) {
        Kept picture(SampleBytes(ZR_PICT_PNG, row.w, row.h));
        picture.displayFormat = row.mode;
        SvgDevice device;
        Draw(picture, device, row.rect);
        auto images = device.Images();
        ASSERT_EQ(images.size(), 1U) << row.mode;
        EXPECT_EQ(images[0].place(), row.place) << row.mode;
        EXPECT_EQ(images[0]["preserveAspectRatio"], row.aspect) << row.mode;
    }
}

// 30 wide in a rectangle 100 wide: 3 whole columns and one of 10.
TEST_F(DrawPicture, Svg_Tiled_ColumnsAndARest) {
    Kept picture(SampleBytes(ZR_PICT_PNG, 30, 20));
    picture.displayFormat = 7;
    SvgDevice device;
    Draw(picture, device, {5.5F, 7.5F, 107.5F, 55.5F});
    auto images = device.Images();
    ASSERT_EQ(images.size(), 4U);
    const char* places[] = {"7 5 30 50", "37 5 30 50", "67 5 30 50", "97 5 10 50"};
    for (size_t i = 0; i < 4; ++i) EXPECT_EQ(images[i].place(), places[i]);
    SvgDevice whole;
    Draw(picture, whole, {0, 0, 90, 50});
    EXPECT_EQ(whole.Images().size(), 3U);  // nothing is left over
}

TEST_F(DrawPicture, Svg_Attributes_InOrder) {
    Kept picture(SampleBytes(ZR_PICT_PNG));
    picture.displayFormat = 2;
    SvgDevice device;
    ZR_Rect clip = {0, 0, 50, 50}, rect = {1, 2, 40, 30};
    device.ClipRect(&clip);
    auto property = [](ZR_Handle* list, const char* name, const char* value) {
        auto record = reinterpret_cast<ZR_DeviceProperty*>(list->AppendGetPtr());
        record->name.Create();
        record->name.AddString(name);
        record->value.Create();
        record->value.AddString(value);
    };
    ZR_Handle own;
    own.Create(sizeof(ZR_DeviceProperty), 0);
    device.customProperties.Dispose();
    device.customProperties.Create(sizeof(ZR_DeviceProperty), 0);
    property(&own, "id", "mine");
    property(&own, "class", "picture");
    property(&device.customProperties, "class", "device");
    ZR_Matrix matrix = {2, 0, 0, 2, 5, 6};
    picture.Draw(&device, &rect, 50, &matrix, ZR_ALIGNMENT_DEFAULT, &own);
    auto images = device.Images();
    ASSERT_EQ(images.size(), 1U);
    std::vector<std::string> names;
    for (const auto& [name, value] : images[0].attributes) names.push_back(name);
    EXPECT_EQ(names, (std::vector<std::string>{"id", "class", "x", "y", "width", "height", "xlink:href", "opacity",
                                               "transform", "preserveAspectRatio", "clip-path"}));
    EXPECT_EQ(images[0]["class"], "device");  // the device's own win
    EXPECT_EQ(images[0]["opacity"], "0.5");
    EXPECT_EQ(images[0]["transform"], "matrix(2 0 0 2 5 6)");
    EXPECT_EQ(images[0]["clip-path"], "url(#clip1)");
    for (ZR_Handle* list : {&own, &device.customProperties})
        for (long i = 1; i <= list->count; ++i) {
            auto record = reinterpret_cast<ZR_DeviceProperty*>(list->GetMemPtr(i));
            record->name.Dispose();
            record->value.Dispose();
        }
    own.Dispose();
    device.customProperties.Dispose();
}

TEST_F(DrawPicture, Svg_Opacity_HundredWritesNone) {
    static const struct {
        float opacity;
        const char* written;
    } rows[] = {{100, "(none)"}, {50, "0.5"}, {0, "0"}, {25, "0.25"}};
    for (const auto& row : rows) {
        Kept picture(SampleBytes(ZR_PICT_PNG));
        SvgDevice device;
        Draw(picture, device, {0, 0, 10, 10}, row.opacity);
        EXPECT_EQ(device.Images()[0]["opacity"], row.written) << row.opacity;
    }
}

static std::string BytesOfBase64(const std::string& text) {
    static const std::string kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string bytes;
    unsigned value = 0;
    int bits = 0;
    for (char c : text) {
        if (c == '=') break;
        value = value << 6 | static_cast<unsigned>(kDigits.find(c));
        if ((bits += 6) >= 8) bytes += static_cast<char>(value >> (bits -= 8));
    }
    return bytes;
}

TEST_F(DrawPicture, Svg_Href_IsTheEncodedPicture) {
    static const struct {
        ZR_Pictformat format;
        std::string prefix;
    } rows[] = {{ZR_PICT_JPEG, "data:image/jpeg;base64,"},
                {ZR_PICT_PNG, "data:image/png;base64,"},
                {ZR_PICT_BMP, "data:image/bmp;base64,"},
                {ZR_PICT_GIF, "data:image/gif;base64,"},
                {ZR_PICT_TIFF, "data:image/tiff;base64,"}};
    for (const auto& row : rows) {
        Kept picture(SampleBytes(row.format));
        SvgDevice device;
        Draw(picture, device, {0, 0, 10, 10});
        std::string href = device.Images()[0]["xlink:href"];
        ASSERT_EQ(href.substr(0, row.prefix.size()), row.prefix);
        std::string bytes = BytesOfBase64(href.substr(row.prefix.size()));
        Owned<CGImageSourceRef> source = CGImageSourceCreateWithData(Data(bytes), nullptr);
        EXPECT_TRUE(CFEqual(CGImageSourceGetType(source), TypeOf(row.format)));
        EXPECT_EQ(CGImageGetWidth(Decode(bytes)), 8U);
    }
}

TEST_F(DrawPicture, Svg_SVGPicture_WritesThePrefixAlone) {
    Kept picture(kSVG);
    SvgDevice device;
    Draw(picture, device, {0, 0, 10, 10});
    ASSERT_EQ(device.Images().size(), 1U);
    EXPECT_EQ(device.Images()[0]["xlink:href"], "data:image/png;base64,");
}

TEST_F(DrawPicture, Svg_OtherFormatsAndNoImage_WriteNothing) {
    Kept png(SampleBytes(ZR_PICT_PNG)), pdf(SamplePDF()), empty;
    SvgDevice device;
    for (ZR_Pictformat format : {ZR_PICT_UNKNOWN, ZR_PICT_PDF, ZR_PICT_EMF, ZR_PICT_JPEGXR, ZR_PICT_DDS}) {
        png.format = format;
        Draw(png, device, {0, 0, 10, 10});
    }
    Draw(pdf, device, {0, 0, 10, 10});
    Draw(empty, device, {0, 0, 10, 10});
    EXPECT_TRUE(device.Images().empty());
}

// Guards: what is not finite draws nothing; columns are bounded in number and in the text that they hold.
TEST_F(DrawPicture, AbsurdArguments_DrawNothing) {
    Kept picture(SampleBytes(ZR_PICT_PNG)), pdf(SamplePDF());
    SvgDevice svg;
    BitmapDevice bitmap;
    const ZR_Rect bad[] = {{kNaN, 0, 10, 10}, {0, kNaN, 10, 10}, {0, 0, 10, kNaN}, {0, 0, kInfinite, 10}};
    for (short mode = 1; mode <= 7; ++mode) {
        picture.displayFormat = pdf.displayFormat = mode;
        for (ZR_Device* device : {static_cast<ZR_Device*>(&svg), static_cast<ZR_Device*>(&bitmap)})
            for (ZR_Picture* one : {static_cast<ZR_Picture*>(&picture), static_cast<ZR_Picture*>(&pdf)}) {
                for (const ZR_Rect& rect : bad) Draw(*one, *device, rect);
                Draw(*one, *device, {0, 0, 10, 10}, kNaN);
                Draw(*one, *device, {0, 0, 10, 10}, kInfinite);
                one->Draw(device, nullptr, 100, nullptr, ZR_ALIGNMENT_DEFAULT, nullptr);
            }
    }
    EXPECT_TRUE(svg.Images().empty());
    EXPECT_EQ(bitmap.Box()[2], -1);
}

TEST_F(DrawPicture, HugeRectangles_AreBounded) {
    for (short mode = 1; mode <= 7; ++mode)
        for (const ZR_Rect& rect : {ZR_Rect{-1e30F, -1e30F, 1e30F, 1e30F}, ZR_Rect{0, 0, 3e38F, 1e9F}, ZR_Rect{}}) {
            Kept picture(SampleBytes(ZR_PICT_PNG)), pdf(SamplePDF());
            picture.displayFormat = pdf.displayFormat = mode;
            BitmapDevice device;
            ZR_Matrix turned = {0, 1, -1, 0, 50, 0};
            for (ZR_Picture* one : {static_cast<ZR_Picture*>(&picture), static_cast<ZR_Picture*>(&pdf)}) {
                Draw(*one, device, rect);
                Draw(*one, device, rect, 50, &turned);
            }
            if (mode == 7) continue;
            SvgDevice svg;
            Draw(picture, svg, rect);
            EXPECT_EQ(svg.Images().size(), 1U);
        }
    Kept picture(SampleBytes(ZR_PICT_PNG, 1, 1));
    picture.displayFormat = 7;
    SvgDevice svg;
    Draw(picture, svg, {0, 0, 1e9F, 10});
    EXPECT_EQ(svg.Images().size(), 32767U);
    Kept noSize(SampleBytes(ZR_PICT_PNG));
    for (short mode = 1; mode <= 7; ++mode) {
        noSize.width = noSize.height = 0;
        noSize.displayFormat = mode;
        BitmapDevice device;
        SvgDevice empty;
        Draw(noSize, device, {0, 0, 100, 50});
        Draw(noSize, empty, {0, 0, 100, 50});
        EXPECT_TRUE(empty.Images().empty());
    }
}

// Pixels -----------------------------------------------------------------------------------------------------------

// Every mode places the drawing in the same box, from a bitmap, a PDF and an SVG picture, without a matrix and under
// one.
struct PlaceRow {
    short mode;
    ZR_Alignment alignment;
    std::array<int, 4> box;  // of a picture of 40 x 20 in the rectangle 10, 5, 70, 45
    int width, height;       // of one picture in it
};
constexpr PlaceRow kPlaces[] = {
    {1, ZR_ALIGNMENT_DEFAULT, {20, 15, 60, 35}, 40, 20}, {2, ZR_ALIGNMENT_DEFAULT, {10, 5, 70, 45}, 60, 40},
    {3, ZR_ALIGNMENT_DEFAULT, {10, 5, 50, 25}, 40, 20},  {4, ZR_ALIGNMENT_RIGHT, {10, 5, 50, 25}, 40, 20},
    {5, ZR_ALIGNMENT_LEFT, {10, 5, 70, 35}, 60, 30},     {6, ZR_ALIGNMENT_DEFAULT, {10, 10, 70, 40}, 60, 30},
    {7, ZR_ALIGNMENT_DEFAULT, {10, 5, 70, 45}, 40, 20},
};

TEST_F(DrawPicture, Raster_Modes_PlaceThePicture) {
    const std::string sources[] = {SampleBytes(ZR_PICT_PNG, 40, 20), SamplePDF(), kSVG};
    for (const std::string& source : sources)
        for (const auto& row : kPlaces) {
            Kept picture(source);
            if (row.mode == 7 && !picture.image) continue;
            picture.displayFormat = row.mode;
            BitmapDevice plain, moved;
            Draw(picture, plain, {5, 10, 70, 45}, 100, nullptr, row.alignment);
            EXPECT_EQ(plain.Box(), row.box) << picture.format << " mode " << row.mode;
            int left = row.box[0], top = row.box[1], right = left + row.width, bottom = top + row.height;
            EXPECT_NEAR_PIXEL(plain.At(left + 1, top + 1), kBlue, 2) << picture.format << " mode " << row.mode;
            EXPECT_NEAR_PIXEL(plain.At(right - 2, top + 1), kRed, 2) << picture.format << " mode " << row.mode;
            EXPECT_NEAR_PIXEL(plain.At(left + 1, bottom - 2), kRed, 2) << picture.format << " mode " << row.mode;

            ZR_Matrix matrix = {1, 0, 0, 1, 20, -5};
            Draw(picture, moved, {5, 10, 70, 45}, 100, &matrix, row.alignment);
            std::array<int, 4> box = {row.box[0] + 20, row.box[1] - 5, row.box[2] + 20, row.box[3] - 5};
            EXPECT_EQ(moved.Box(), box) << picture.format << " under a matrix, mode " << row.mode;
            EXPECT_NEAR_PIXEL(moved.At(left + 21, top - 4), kBlue, 2) << picture.format << " mode " << row.mode;
            EXPECT_NEAR_PIXEL(moved.At(left + 21, bottom - 7), kRed, 2) << picture.format << " mode " << row.mode;
        }
}

TEST_F(DrawPicture, Raster_FittedAtTop_Alignments) {
    static const struct {
        ZR_Alignment alignment;
        std::array<int, 4> box;  // a square picture in {0, 0, 50, 100}
    } rows[] = {{ZR_ALIGNMENT_DEFAULT, {0, 0, 50, 50}},
                {ZR_ALIGNMENT_LEFT, {0, 0, 50, 50}},
                {ZR_ALIGNMENT_CENTER, {25, 0, 75, 50}},
                {ZR_ALIGNMENT_RIGHT, {50, 0, 100, 50}},
                {ZR_ALIGNMENT_JUSTIFIED, {0, 0, 50, 50}}};
    ZR_Matrix almost = {1, 0, 0, 1, 0, 1e-4F};
    for (const auto& row : rows)
        for (ZR_Matrix* matrix : {static_cast<ZR_Matrix*>(nullptr), &almost}) {
            Kept picture(SampleBytes(ZR_PICT_PNG, 10, 10));
            picture.displayFormat = 5;
            BitmapDevice device;
            Draw(picture, device, {0, 0, 100, 50}, 100, matrix, row.alignment);
            EXPECT_EQ(device.Box(), row.box) << row.alignment;
        }
}

TEST_F(DrawPicture, Raster_LargerThanTheRectangle_IsClipped) {
    for (short mode : {1, 3, 4, 7})
        for (bool underMatrix : {false, true}) {
            Kept picture(SampleBytes(ZR_PICT_PNG, 90, 45));
            picture.displayFormat = mode;
            BitmapDevice device;
            ZR_Matrix matrix = {1, 0, 0, 1, 2, 0};
            Draw(picture, device, {10, 10, 30, 20}, 100, underMatrix ? &matrix : nullptr);
            std::array<int, 4> box = {underMatrix ? 12 : 10, 10, underMatrix ? 32 : 30, 20};
            EXPECT_EQ(device.Box(), box) << mode;
        }
}

// Tiles begin at the upper left corner, under a matrix too.
TEST_F(DrawPicture, Raster_Tiles_AreAnchoredAtTheTop) {
    for (bool underMatrix : {false, true}) {
        Kept picture(SampleBytes(ZR_PICT_PNG, 8, 6));
        picture.displayFormat = 7;
        BitmapDevice device;
        ZR_Matrix matrix = {1, 0, 0, 1, 1, 2};
        int dx = underMatrix ? 1 : 0, dy = underMatrix ? 2 : 0;
        Draw(picture, device, {3, 5, 80, 36}, 100, underMatrix ? &matrix : nullptr);  // 33 is no multiple of 6
        for (int y = 3; y < 36; ++y)
            for (int x = 5; x < 80; ++x) {
                bool blue = (x - 5) % 8 < 4 && (y - 3) % 6 < 3;
                if (!Near(device.At(x + dx, y + dy), blue ? kBlue : kRed, 2)) {
                    FAIL() << "at " << x << " " << y << (underMatrix ? " under a matrix" : "");
                }
            }
    }
}

TEST_F(DrawPicture, Raster_Opacity_AndStateAfterwards) {
    for (const std::string& source : {SampleBytes(ZR_PICT_PNG, 40, 20), SamplePDF()})
        for (bool underMatrix : {false, true}) {
            Kept picture(source);
            picture.displayFormat = 2;
            BitmapDevice device;
            ZR_Matrix matrix = {1, 0, 0, 1, 0, 5};
            CGAffineTransform before = CGContextGetCTM(device.context);
            Draw(picture, device, {0, 0, 40, 20}, 50, underMatrix ? &matrix : nullptr);
            EXPECT_NEAR(device.At(38, 10).a, 128, 2);
            EXPECT_TRUE(CGAffineTransformEqualToTransform(CGContextGetCTM(device.context), before));
            CGContextSetRGBFillColor(device.context, 0, 1, 0, 1);
            CGContextFillRect(device.context, CGRectMake(80, 0, 20, 50));  // not clipped, and opaque
            EXPECT_EQ(device.At(90, 25), kGreen);
        }
}

TEST_F(DrawPicture, Raster_RotatedMatrix_MatchesTheTransformOfSvg) {
    Kept picture(SampleBytes(ZR_PICT_PNG, 40, 20));
    picture.displayFormat = 3;
    BitmapDevice device;
    ZR_Matrix quarter = {0, 1, -1, 0, 60, 0};  // x' = 60 - y, y' = x
    Draw(picture, device, {10, 0, 40, 30}, 100, &quarter);
    EXPECT_EQ(device.Box(), (std::array<int, 4>{30, 0, 50, 40}));
    EXPECT_NEAR_PIXEL(device.At(48, 2), kBlue, 2);  // its upper left corner
    EXPECT_NEAR_PIXEL(device.At(32, 2), kRed, 2);
    EXPECT_NEAR_PIXEL(device.At(48, 38), kRed, 2);
}

TEST_F(DrawPicture, DrawPDFDocument_PagesAndCropBox) {
    Kept picture(SamplePDF()), bitmap(SampleBytes(ZR_PICT_PNG));
    BitmapDevice device;
    ZR_Rect rect = {10, 20, 60, 30};
    for (long page : {0L, -1L, 2L, 1L << 40}) picture.DrawPDFDocument(page, &device, &rect, false);
    bitmap.DrawPDFDocument(1, &device, &rect, false);
    picture.DrawPDFDocument(1, nullptr, &rect, false);
    picture.DrawPDFDocument(1, &device, nullptr, false);
    EXPECT_EQ(device.Box()[2], -1);
    picture.DrawPDFDocument(1, &device, &rect, false);
    EXPECT_EQ(device.Box(), (std::array<int, 4>{20, 10, 60, 30}));
}

// The crop box's size is stretched to the rectangle; its origin stays where the page has it.
TEST_F(DrawPicture, DrawPDFDocument_CropBoxOrigin_IsNotSubtracted) {
    std::string pdf =
        "%PDF-1.4\n1 0 obj<</Type/Catalog/Pages 2 0 R>>endobj\n2 0 obj<</Type/Pages/Kids[3 0 R]/Count 1>>endobj\n"
        "3 0 obj<</Type/Page/Parent 2 0 R/MediaBox[0 0 40 40]/CropBox[10 10 30 30]/Contents 4 0 R>>endobj\n"
        "4 0 obj<</Length 22>>stream\n1 0 0 rg 0 0 40 40 re f\nendstream endobj\ntrailer<</Root 1 0 R>>\n";
    Kept picture(pdf);
    ASSERT_NE(picture.document, nullptr);
    EXPECT_EQ(picture.width, 40);  // of the media box
    BitmapDevice device(100, 100);
    ZR_Rect rect = {40, 0, 20, 60};
    picture.DrawPDFDocument(1, &device, &rect, false);
    EXPECT_EQ(device.Box(), (std::array<int, 4>{10, 30, 30, 50}));
}

// Devices as pictures ----------------------------------------------------------------------------------------------

TEST_F(DrawPicture, CreateFromDevice_BitmapOffscreenOnly) {
    ZR_Device device;
    ASSERT_TRUE(device.CreateOffscreen(20, 10, /*bitmap*/ true, 144, 144));
    ZR_RGBColor red = {65535, 0, 0, 1};
    ZR_Rect rect = {0, 0, 20, 10};
    device.DrawRect(&rect, true, false, &red, &red, 0, false, 0, false, nullptr, nullptr, nullptr, nullptr);
    for (ZR_Pictformat format : {ZR_PICT_JPEG, ZR_PICT_PNG, ZR_PICT_BMP, ZR_PICT_GIF, ZR_PICT_TIFF}) {
        ZR_Picture picture;
        picture.Create(&device, format);
        EXPECT_EQ(picture.format, format);
        EXPECT_EQ(picture.width, 40);
        EXPECT_EQ(picture.height, 20);
        EXPECT_EQ(picture.dpiX, 144);
        EXPECT_EQ(picture.GetWidthDPI(), 20);
        EXPECT_NEAR_PIXEL((Pixel{PixelsOf(Decode(StringOf(picture.nativeData)))[0], 0, 0, 255}), kRed, 4);
        picture.Dispose();
    }
    device.Dispose();

    ZR_Device layer, none;
    ASSERT_TRUE(layer.CreateOffscreen(20, 10, /*bitmap*/ false, 0, 0));
    none.Create();
    SvgDevice svg;
    for (ZR_Device* other : {&layer, &none, static_cast<ZR_Device*>(&svg), static_cast<ZR_Device*>(nullptr)}) {
        ZR_Picture picture;
        picture.Create(other, ZR_PICT_PNG);
        EXPECT_EQ(picture.image, nullptr);
        EXPECT_EQ(picture.format, ZR_PICT_UNKNOWN);
        EXPECT_EQ(picture.displayFormat, 3);
        picture.Dispose();
    }
    layer.Dispose();
    none.Dispose();
}
