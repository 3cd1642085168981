#include "tests/graphics/PictureSupport.h"

#include <cmath>
#include <limits>

#include "graphics/ZR_API_Device.h"

namespace {

using namespace picturetest;

struct FormatRow {
    ZR_Pictformat format;
    const char* type;
    bool keepsDpi;
};
constexpr FormatRow kEncodable[] = {{ZR_PICT_JPEG, "image/jpg", true},
                                    {ZR_PICT_PNG, "image/png", true},
                                    {ZR_PICT_BMP, "image/bmp", true},
                                    {ZR_PICT_GIF, "image/gif", false},
                                    {ZR_PICT_TIFF, "image/tiff", true}};

using Pictures = PictureTest;

}  // namespace

// From bytes -------------------------------------------------------------------------------------------------------

TEST_F(Pictures, CreateFromBytes_EveryBitmapFormat_IsDecoded) {
    for (const auto& row : kEncodable) {
        std::string bytes = SampleBytes(row.format, 8, 6, 300);
        Kept picture(bytes);
        EXPECT_EQ(picture.format, row.format) << row.type;
        ASSERT_NE(picture.image, nullptr) << row.type;
        EXPECT_EQ(picture.document, nullptr) << row.type;
        EXPECT_EQ(picture.width, 8) << row.type;
        EXPECT_EQ(picture.height, 6) << row.type;
        EXPECT_EQ(picture.dpiX, row.keepsDpi ? 300 : 0) << row.type;
        EXPECT_EQ(picture.dpiY, row.keepsDpi ? 300 : 0) << row.type;
        EXPECT_EQ(picture.displayFormat, 3);
        EXPECT_EQ(picture.quality, 1);
        EXPECT_EQ(StringOf(picture.nativeData), bytes) << row.type;
    }
}

TEST_F(Pictures, CreateFromBytes_PDF_IsADocumentOfItsMediaBox) {
    Kept picture(SamplePDF());
    EXPECT_EQ(picture.format, ZR_PICT_PDF);
    EXPECT_EQ(picture.image, nullptr);
    ASSERT_NE(picture.document, nullptr);
    EXPECT_EQ(picture.width, 40);
    EXPECT_EQ(picture.height, 20);
}

TEST_F(Pictures, CreateFromBytes_SVG_IsTheHostsImageAndDocument) {
    Kept picture(kSVG);
    EXPECT_EQ(picture.format, ZR_PICT_SVG);
    ASSERT_NE(picture.image, nullptr);
    ASSERT_NE(picture.document, nullptr);
    EXPECT_EQ(picture.width, 40);
    EXPECT_EQ(picture.height, 20);
    EXPECT_EQ(CGPDFDocumentGetNumberOfPages(picture.document), 1U);
    EXPECT_EQ(StringOf(picture.nativeData), kSVG);
}

TEST_F(Pictures, CreateFromBytes_Damaged_KeepsFormatAndBytesWithoutImage) {
    const std::string png = SampleBytes(ZR_PICT_PNG), pdf = SamplePDF();
    const struct {
        std::string bytes;
        ZR_Pictformat format;
    } rows[] = {{png.substr(0, 30), ZR_PICT_PNG},
                {"GIF89a", ZR_PICT_GIF},
                {std::string("\xFF\xD8\xFF\xE0", 4), ZR_PICT_JPEG},
                {"BM", ZR_PICT_BMP},
                {std::string("II*\0\xFF\xFF\xFF\xFF", 8), ZR_PICT_TIFF},
                {"%PDF-1.4 and nothing", ZR_PICT_PDF},
                {"<svg unclosed", ZR_PICT_SVG},
                {"DDS 1234", ZR_PICT_DDS}};
    for (const auto& row : rows) {
        Kept picture(row.bytes);
        EXPECT_EQ(picture.format, row.format);
        EXPECT_EQ(picture.image, nullptr) << row.format;
        EXPECT_EQ(picture.document, nullptr) << row.format;
        EXPECT_EQ(picture.width + picture.height, 0) << row.format;
        EXPECT_EQ(StringOf(picture.nativeData), row.bytes);
    }
    for (const std::string& bytes : {std::string(), std::string("no picture")}) {
        Kept picture(bytes);
        EXPECT_EQ(picture.format, ZR_PICT_UNKNOWN);
        EXPECT_EQ(picture.nativeData.count, 0);
    }
    ZR_Picture none;
    none.Create(static_cast<const ZR_Handle*>(nullptr));
    EXPECT_EQ(none.format, ZR_PICT_UNKNOWN);
    none.Dispose();
}

// The header alone says 2^31 pixels and more: nothing of that size is allocated.
TEST_F(Pictures, CreateFromBytes_AbsurdSizes_AreRefused) {
    std::string bmp = SampleBytes(ZR_PICT_BMP), png = SampleBytes(ZR_PICT_PNG), jpeg = SampleBytes(ZR_PICT_JPEG);
    for (int i : {18, 22}) bmp.replace(static_cast<size_t>(i), 4, std::string("\xFF\xFF\x00\x00", 4));
    png.replace(16, 8, std::string("\x7F\xFF\xFF\xFF\x7F\xFF\xFF\xFF", 8));
    size_t frame = jpeg.find("\xFF\xC0");
    ASSERT_NE(frame, std::string::npos);
    jpeg.replace(frame + 5, 4, "\xFF\xDC\xFF\xDC");
    std::string smaller = jpeg;
    smaller.replace(frame + 5, 4, "\x28\x00\x28\x00");  // within the bound of pixels, but not in so few bytes
    const std::string svg = R"(<svg xmlns="http://www.w3.org/2000/svg" width="1e9" height="1e9"/>)";
    for (const std::string& bytes : {bmp, png, jpeg, smaller, svg}) {
        Kept picture(bytes);
        EXPECT_NE(picture.format, ZR_PICT_UNKNOWN);
        EXPECT_EQ(picture.image, nullptr) << picture.format;
    }
}

// JPEG type text: only "image/jpg" is found; a host that says "image/jpeg" gives no format.
TEST_F(Pictures, JPEGTypeText_IsImageJpgInThisForm) {
    std::vector<zrhost::Representation> one(1);
    std::string bytes = SampleBytes(ZR_PICT_JPEG);
    one[0].bytes.assign(bytes.begin(), bytes.end());
    for (const auto& [type, format] :
         {std::pair("image/jpeg", ZR_PICT_UNKNOWN), std::pair("image/jpg", ZR_PICT_JPEG)}) {
        one[0].type = type;
        auto picture = zrhost::NewPicture(one);
        ZR_Picture read;
        read.Create(reinterpret_cast<void**>(picture.get()));
        EXPECT_EQ(read.format, format) << type;
        EXPECT_EQ(read.image != nullptr, format != ZR_PICT_UNKNOWN) << type;
        read.Dispose();
    }
}

// From devices, images, files --------------------------------------------------------------------------------------

TEST_F(Pictures, CreateFromImage_RetainsAndEncodes) {
    Owned<CGImageRef> image = Sample();
    for (const auto& row : kEncodable) {
        ZR_Picture picture;
        picture.Create(image.get(), row.format, 150, 75);
        EXPECT_EQ(picture.image, image.get());
        EXPECT_EQ(CFGetRetainCount(image), 2);
        EXPECT_EQ(picture.width, 8);
        EXPECT_EQ(picture.height, 6);
        EXPECT_EQ(picture.dpiX, 150);
        EXPECT_EQ(picture.dpiY, 75);
        EXPECT_EQ(picture.displayFormat, 3);
        EXPECT_EQ(CGImageGetWidth(Decode(StringOf(picture.nativeData))), 8U) << row.type;
        double dpi = PropertyOf(StringOf(picture.nativeData), kCGImagePropertyDPIHeight);
        EXPECT_EQ(dpi, row.keepsDpi ? 75 : -1) << row.type;
        picture.Dispose();
        EXPECT_EQ(CFGetRetainCount(image), 1);
    }
    ZR_Picture none;
    none.Create(static_cast<CGImage*>(nullptr), ZR_PICT_PNG, 72, 72);
    EXPECT_EQ(none.format, ZR_PICT_UNKNOWN);
    none.Dispose();
    ZR_Picture pdf;
    pdf.Create(image.get(), ZR_PICT_PDF, 72, 72);  // nothing encodes it
    EXPECT_EQ(pdf.format, ZR_PICT_PDF);
    EXPECT_EQ(pdf.nativeData.count, 0);
    pdf.Dispose();
}

TEST_F(Pictures, CreateFromPath_File_HasImageSizeAndTypeWithoutBytes) {
    for (const auto& row : kEncodable) {
        TextOf path(Write("a.bin", SampleBytes(row.format, 8, 6, 300)));
        ZR_Picture picture;
        EXPECT_TRUE(picture.CreateFromPath(&path));
        EXPECT_NE(picture.image, nullptr) << row.type;
        EXPECT_EQ(picture.format, row.format) << row.type;
        EXPECT_EQ(picture.width, 8);
        EXPECT_EQ(picture.height, 6);
        EXPECT_EQ(picture.nativeData.count, 0);
        picture.Dispose();
    }
}

TEST_F(Pictures, CreateFromPath_NothingReadable_IsTrueAllTheSame) {
    TextOf missing(folder + "missing.png"), text(Write("a.png", "text")), directory(folder), empty("");
    for (ZR_Text* path :
         {static_cast<ZR_Text*>(&missing), static_cast<ZR_Text*>(&text), static_cast<ZR_Text*>(&directory)}) {
        ZR_Picture picture;
        EXPECT_TRUE(picture.CreateFromPath(path));
        EXPECT_EQ(picture.image, nullptr);
        EXPECT_EQ(picture.format, ZR_PICT_UNKNOWN);
        EXPECT_EQ(picture.displayFormat, 3);
        picture.Dispose();
    }
    ZR_Picture picture;
    EXPECT_FALSE(picture.CreateFromPath(&empty));
    picture.Dispose();
    EXPECT_FALSE(picture.CreateFromPath(nullptr));
    picture.Dispose();
}

TEST_F(Pictures, CreateFromPath4D_IsTrueWithImageOrDocument) {
    const struct {
        std::string bytes;
        bool answer;
    } rows[] = {
        {SampleBytes(ZR_PICT_PNG), true}, {SamplePDF(), true}, {kSVG, true}, {"%PDF-1.4", false}, {"text", false}};
    for (const auto& row : rows) {
        TextOf path(Write("a.bin", row.bytes));
        ZR_Picture picture;
        EXPECT_EQ(picture.CreateFromPath4D(&path), row.answer) << row.bytes.substr(0, 8);
        EXPECT_EQ(picture.image || picture.document, row.answer);
        picture.Dispose();
    }
    TextOf missing(folder + "missing.png");
    ZR_Picture picture;
    EXPECT_FALSE(picture.CreateFromPath4D(&missing));
    picture.Dispose();
    EXPECT_FALSE(picture.CreateFromPath4D(nullptr));
    picture.Dispose();
}

TEST_F(Pictures, CreateAsResource_FolderAndNumberOrName) {
    Write("42.png", SampleBytes(ZR_PICT_PNG, 4, 2));
    Write("knob.gif", SampleBytes(ZR_PICT_GIF, 6, 4));
    TextOf in(folder);
    ZR_Picture picture;
    picture.CreateAsResource(42, &in);
    EXPECT_EQ(picture.width, 4);
    EXPECT_EQ(picture.format, ZR_PICT_PNG);
    picture.Dispose();
    picture.CreateAsResource("knob.gif", &in);
    EXPECT_EQ(picture.width, 6);
    EXPECT_EQ(picture.format, ZR_PICT_GIF);
    picture.Dispose();
    picture.CreateAsResource(-1, &in);
    EXPECT_EQ(picture.image, nullptr);
    picture.Dispose();
    picture.CreateAsResource(static_cast<const char*>(nullptr), nullptr);
    EXPECT_EQ(picture.image, nullptr);
    picture.Dispose();
}

TEST_F(Pictures, UpdateType_OtherSource_LeavesTheFormat) {
    Owned<CGImageSourceRef> unknown = CGImageSourceCreateWithData(Data("nothing"), nullptr);
    Owned<CGImageSourceRef> png = CGImageSourceCreateWithData(Data(SampleBytes(ZR_PICT_PNG)), nullptr);
    Kept picture;
    picture.format = ZR_PICT_SVG;
    picture.UpdateType(unknown);
    picture.UpdateType(nullptr);
    EXPECT_EQ(picture.format, ZR_PICT_SVG);
    picture.UpdateType(png);
    EXPECT_EQ(picture.format, ZR_PICT_PNG);
}

// Facts ------------------------------------------------------------------------------------------------------------

TEST_F(Pictures, GetWidthDPI_PixelsAtTheResolution) {
    static const struct {
        long pixels;
        float dpi;
        ZR_Pictformat format;
        long points;
    } rows[] = {{300, 300, ZR_PICT_PNG, 72},  // 300 pixels at 300 dpi are an inch
                {300, 0, ZR_PICT_PNG, 300},   // no resolution: its pixels
                {300, 300, ZR_PICT_SVG, 300},
                {100, 96, ZR_PICT_JPEG, 75},
                {101, 144, ZR_PICT_TIFF, 50},  // truncated
                {0, 72, ZR_PICT_PNG, 0},
                {300, -300, ZR_PICT_PNG, -72},
                {300, std::numeric_limits<float>::quiet_NaN(), ZR_PICT_PNG, 300},
                {300, 1e-38F, ZR_PICT_PNG, 300},
                {300, std::numeric_limits<float>::infinity(), ZR_PICT_PNG, 0}};
    for (const auto& row : rows) {
        Kept picture;
        picture.width = picture.height = row.pixels;
        picture.dpiX = picture.dpiY = row.dpi;
        picture.format = row.format;
        EXPECT_EQ(picture.GetWidthDPI(), row.points) << row.pixels << " at " << row.dpi;
        EXPECT_EQ(picture.GetHeightDPI(), row.points) << row.pixels << " at " << row.dpi;
        picture.dpiX = 0;
        EXPECT_EQ(picture.GetWidthDPI(), row.pixels);
        EXPECT_EQ(picture.GetHeightDPI(), row.points);
    }
}

// Encoding ---------------------------------------------------------------------------------------------------------

TEST_F(Pictures, ToBlob_Appends_AndNeedsAnImageAndAFormat) {
    Kept picture(SampleBytes(ZR_PICT_PNG, 8, 6, 200));
    ZR_Handle out = HandleOf("before");
    picture.ToBlob(&out, false);
    EXPECT_EQ(StringOf(out).substr(0, 6), "before");
    std::string appended = StringOf(out).substr(6);
    EXPECT_EQ(CGImageGetWidth(Decode(appended)), 8U);
    EXPECT_EQ(PropertyOf(appended, kCGImagePropertyDPIWidth), 200);
    long count = out.count;
    for (ZR_Pictformat format : {ZR_PICT_UNKNOWN, ZR_PICT_PDF, ZR_PICT_SVG, ZR_PICT_EMF, ZR_PICT_DDS}) {
        picture.format = format;
        picture.ToBlob(&out, true);
        EXPECT_EQ(out.count, count) << format;
    }
    Kept empty;
    empty.format = ZR_PICT_PNG;
    empty.ToBlob(&out, false);
    EXPECT_EQ(out.count, count);
    empty.ToBlob(nullptr, false);
    out.Dispose();
}

TEST_F(Pictures, ToBlob_ResolutionOfOneSideOnly_IsNotWritten) {
    Kept picture(SampleBytes(ZR_PICT_PNG));
    picture.dpiX = 300;
    ZR_Handle out = HandleOf("");
    picture.ToBlob(&out, false);
    EXPECT_EQ(PropertyOf(StringOf(out), kCGImagePropertyDPIWidth), -1);
    out.Dispose();
}

TEST_F(Pictures, ToBlob_Quality_OfJPEG) {
    Kept picture(SampleBytes(ZR_PICT_JPEG, 200, 200));
    size_t sizes[2];
    for (int i = 0; i < 2; ++i) {
        picture.quality = i == 0 ? 0 : 1;
        ZR_Handle out = HandleOf("");
        picture.ToBlob(&out, false);
        sizes[i] = StringOf(out).size();
        out.Dispose();
    }
    EXPECT_LT(sizes[0], sizes[1]);
    picture.quality = std::numeric_limits<float>::quiet_NaN();
    ZR_Handle out = HandleOf("");
    picture.ToBlob(&out, false);
    EXPECT_EQ(StringOf(out).size(), sizes[1]);
    out.Dispose();
}

// With and without a resolution: the entry without value does not fail, and what is clear comes out white.
TEST_F(Pictures, ToBlob_WhiteBackground_IsWhiteUnderAlpha) {
    Owned<CGImageRef> clear = ::Picture(4, 4, [](CGContextRef) {});
    for (long dpi : {0L, 300L}) {
        ZR_Picture picture;
        picture.Create(clear.get(), ZR_PICT_JPEG, dpi, dpi);
        ZR_Handle out = HandleOf("");
        picture.ToBlob(&out, true);
        auto pixels = PixelsOf(Decode(StringOf(out)));
        ASSERT_FALSE(pixels.empty());
        EXPECT_GT(pixels[0], 250) << dpi;
        out.Dispose();
        picture.Dispose();
    }
}

TEST_F(Pictures, Convert_BetweenTheEncodable_ReplacesTheBytes) {
    for (const auto& from : kEncodable)
        for (const auto& to : kEncodable) {
            Kept picture(SampleBytes(from.format, 8, 6));
            std::string before = StringOf(picture.nativeData);
            picture.Convert(to.format);
            EXPECT_EQ(picture.format, to.format);
            std::string after = StringOf(picture.nativeData);
            EXPECT_EQ(before == after, from.format == to.format) << from.type << to.type;
            Owned<CGImageSourceRef> source = CGImageSourceCreateWithData(Data(after), nullptr);
            EXPECT_TRUE(CFEqual(CGImageSourceGetType(source), TypeOf(to.format))) << from.type << to.type;
        }
}

TEST_F(Pictures, Convert_OtherOrSameFormat_DoesNothing) {
    std::string bytes = SampleBytes(ZR_PICT_PNG);
    Kept picture(bytes);
    for (int format : {0, 2, 6, 7, 8, 10, 11, -1}) {
        picture.Convert(static_cast<ZR_Pictformat>(format));
        EXPECT_EQ(picture.format, ZR_PICT_PNG) << format;
        EXPECT_EQ(StringOf(picture.nativeData), bytes) << format;
    }
}

TEST_F(Pictures, Convert_WithoutImage_LeavesNoBytes) {
    Kept picture(SamplePDF());
    picture.Convert(ZR_PICT_PNG);
    EXPECT_EQ(picture.format, ZR_PICT_PNG);
    EXPECT_EQ(picture.nativeData.count, 0);
    Kept svg(kSVG);
    svg.Convert(ZR_PICT_GIF);
    EXPECT_EQ(CGImageGetWidth(Decode(StringOf(svg.nativeData))), 40U);
}

// To the host ------------------------------------------------------------------------------------------------------

static std::string BytesOfPicture(PA_Picture picture) {
    PA_Handle target = PA_NewHandle(0);
    PA_Unistring type = PA_GetPictureData(picture, 1, target);
    std::string bytes(PA_LockHandle(target), static_cast<size_t>(PA_GetHandleSize(target)));
    PA_UnlockHandle(target);
    PA_DisposeUnistring(&type);
    PA_DisposeHandle(target);
    return bytes;
}

TEST_F(Pictures, To4DParameter_BytesOrEncodedOrEmpty) {
    const std::string png = SampleBytes(ZR_PICT_PNG), emf = std::string(40, 0) + " EMF";
    Parameters call;
    call.slots[1].picture = PA_CreatePicture("old", 3);

    Kept picture(png);
    picture.To4DParameter(&call.block, 2);
    EXPECT_EQ(BytesOfPicture(call.slots[1].picture), png);

    picture.nativeData.Dispose();
    picture.To4DParameter(&call.block, 2);  // encoded, and not kept
    EXPECT_EQ(CGImageGetWidth(Decode(BytesOfPicture(call.slots[1].picture))), 8U);
    EXPECT_EQ(picture.nativeData.count, 0);

    Kept pdf(SamplePDF());
    pdf.To4DParameter(&call.block, 2);
    EXPECT_EQ(BytesOfPicture(call.slots[1].picture), SamplePDF());

    Kept unreadable("<svg damaged");  // an SVG with bytes counts, though nothing was decoded
    EXPECT_EQ(unreadable.image, nullptr);
    unreadable.To4DParameter(&call.block, 2);
    EXPECT_EQ(BytesOfPicture(call.slots[1].picture), "<svg damaged");

    Kept other(emf);  // any other without a decoded form is an empty picture, whatever bytes it has
    EXPECT_EQ(other.format, ZR_PICT_EMF);
    EXPECT_GT(other.nativeData.count, 0);
    other.To4DParameter(&call.block, 2);
    EXPECT_EQ(call.slots[1].picture, nullptr);
    picture.To4DParameter(nullptr, 1);
}

TEST_F(Pictures, ReturnPicture_EmptyPicture_LeavesTheResult) {
    Parameters call;
    int mark;
    call.result = &mark;
    Kept empty;
    empty.ReturnPicture(&call.block);
    EXPECT_EQ(call.result, &mark);
    Kept picture(SampleBytes(ZR_PICT_GIF));
    picture.ReturnPicture(&call.block);
    EXPECT_EQ(BytesOfPicture(call.result), SampleBytes(ZR_PICT_GIF));
    PA_DisposePicture(call.result);
}

TEST_F(Pictures, CreateFrom4DParameter_NullPicture_IsEmpty) {
    Parameters call;
    ZR_Picture picture;
    picture.CreateFrom4DParameter(&call.block, 1);
    EXPECT_EQ(picture.format, ZR_PICT_UNKNOWN);
    EXPECT_EQ(picture.displayFormat, 3);
    picture.Dispose();
    std::string bytes = SampleBytes(ZR_PICT_PNG);
    call.slots[0].picture = PA_CreatePicture(bytes.data(), static_cast<long>(bytes.size()));
    picture.CreateFrom4DParameter(&call.block, 1);
    EXPECT_NE(picture.image, nullptr);
    EXPECT_EQ(BytesOfPicture(call.slots[0].picture), bytes);  // stays the parameter's
    picture.Dispose();
    PA_DisposePicture(call.slots[0].picture);
    picture.CreateFrom4DField(1, 1);  // no database: empty
    EXPECT_EQ(picture.format, ZR_PICT_UNKNOWN);
    picture.Dispose();
}
