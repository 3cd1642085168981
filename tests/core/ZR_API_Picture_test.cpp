#include "core/ZR_API_Picture.h"

#include <memory>

#include "tests/core/FakeHost.h"

struct CGImage : CFObject {
    CGImage() { ++living; }
    ~CGImage() override { --living; }
    static inline int living = 0;
};
struct CGPDFDocument : CFObject {
    CGPDFDocument() { ++living; }
    ~CGPDFDocument() override { --living; }
    static inline int living = 0;
};

namespace {

std::string lastDecoded;

CGImageRef DecodeImage(const char* bytes, long n, float* dpiX, float* dpiY) {
    lastDecoded.assign(bytes, static_cast<size_t>(n));
    if (lastDecoded == "broken") return nullptr;
    *dpiX = 300;
    *dpiY = 150;
    return new CGImage;
}

CGPDFDocumentRef OpenDocument(const char* bytes, long n, double* width, double* height) {
    lastDecoded.assign(bytes, static_cast<size_t>(n));
    *width = 595.9;
    *height = 842;
    return new CGPDFDocument;
}

void GetImageSize(CGImageRef, long* width, long* height) {
    *width = 64;
    *height = 32;
}

constexpr ZR_PictureDecoder kDecoder = {DecodeImage, OpenDocument, GetImageSize};

class PictureHost : public fake::Test {
  protected:
    void TearDown() override {
        gPictureDecoder = nullptr;
        EXPECT_EQ(CGImage::living, 0);
        EXPECT_EQ(CGPDFDocument::living, 0);
        fake::Test::TearDown();
    }
    static ZR_Picture FromHost(const fake::Picture& representations) {
        PA_Picture host = fake::NewPicture(representations);
        ZR_Picture picture;
        picture.Create(static_cast<void**>(host));
        PA_DisposePicture(host);
        return picture;
    }
};

}  // namespace

TEST_F(PictureHost, Create_New_HasDefaults) {
    ZR_Picture picture;
    memset(static_cast<void*>(&picture), 0xAA, sizeof picture);
    picture.Create();
    EXPECT_EQ(picture.displayFormat, 3);
    EXPECT_EQ(picture.quality, 1);
    EXPECT_EQ(picture.format, ZR_PICT_UNKNOWN);
    EXPECT_EQ(picture.image, nullptr);
    EXPECT_EQ(picture.document, nullptr);
    EXPECT_EQ(picture.width + picture.height, 0);
    EXPECT_EQ(picture.dpiX + picture.dpiY, 0);
    EXPECT_EQ(picture.nativeData.elementSize, 1);
    EXPECT_EQ(picture.nativeData.count, 0);
    picture.Dispose();
    picture.Create(static_cast<void**>(nullptr));
    EXPECT_EQ(picture.format, ZR_PICT_UNKNOWN);
    picture.Create(static_cast<const ZR_Picture*>(nullptr));
    EXPECT_EQ(picture.displayFormat, 3);
}

TEST_F(PictureHost, CreateFromHost_Types_DecideTheFormat) {
    static const struct {
        std::u16string type;
        ZR_Pictformat format;
    } rows[] = {{u"image/jpg", ZR_PICT_JPEG},
                {u"image/png", ZR_PICT_PNG},
                {u"image/bmp", ZR_PICT_BMP},
                {u"image/gif", ZR_PICT_GIF},
                {u"image/tiff", ZR_PICT_TIFF},
                {u"application/pdf", ZR_PICT_PDF},
                {u"image/svg+xml", ZR_PICT_SVG},
                {u"image/x-emf", ZR_PICT_EMF},
                {u"image/vnd.ms-photo", ZR_PICT_JPEGXR},
                {u"image/vnd-ms.dds", ZR_PICT_DDS},
                {u".4DMetaPict;image/png;x", ZR_PICT_PNG},
                {u"image/png,image/gif", ZR_PICT_GIF}};  // the last match of the table wins
    for (const auto& row : rows) {
        ZR_Picture picture = FromHost({{row.type, "bytes"}});
        EXPECT_EQ(picture.format, row.format);
        EXPECT_EQ(Bytes(picture.nativeData), "bytes");
        EXPECT_EQ(picture.image, nullptr);  // nothing decodes without the drawing library
        EXPECT_EQ(picture.document, nullptr);
        picture.Dispose();
    }
}

TEST_F(PictureHost, CreateFromHost_Representations_FirstKnownIsTaken) {
    static const struct {
        const char* name;
        fake::Picture representations;
        ZR_Pictformat format;
        std::string bytes;
    } rows[] = {{"second", {{u"image/unknown", "a"}, {u"image/gif", "b"}, {u"image/png", "c"}}, ZR_PICT_GIF, "b"},
                {"none known", {{u"image/unknown", "a"}}, ZR_PICT_UNKNOWN, ""},
                {"no representation", {}, ZR_PICT_UNKNOWN, ""},
                {"empty bytes", {{u"image/png", ""}}, ZR_PICT_UNKNOWN, ""}};
    for (const auto& row : rows) {
        ZR_Picture picture = FromHost(row.representations);
        EXPECT_EQ(picture.format, row.format) << row.name;
        EXPECT_EQ(Bytes(picture.nativeData), row.bytes) << row.name;
        picture.Dispose();
    }
}

TEST_F(PictureHost, CreateFromHost_WithDecoder_ImageAndSizes) {
    gPictureDecoder = &kDecoder;
    ZR_Picture png = FromHost({{u"image/png", "png"}});
    EXPECT_EQ(lastDecoded, "png");
    EXPECT_NE(png.image, nullptr);
    EXPECT_EQ(png.width, 64);
    EXPECT_EQ(png.height, 32);
    EXPECT_EQ(png.dpiX, 300);
    EXPECT_EQ(png.dpiY, 150);
    png.Dispose();
    EXPECT_EQ(png.image, nullptr);
    EXPECT_EQ(png.width + png.height, 0);
    EXPECT_EQ(png.format, ZR_PICT_UNKNOWN);

    ZR_Picture broken = FromHost({{u"image/png", "broken"}});
    EXPECT_EQ(broken.format, ZR_PICT_PNG);
    EXPECT_EQ(broken.image, nullptr);
    EXPECT_EQ(broken.width, 0);
    broken.Dispose();

    ZR_Picture pdf = FromHost({{u"application/pdf", "pdf"}});
    EXPECT_EQ(lastDecoded, "pdf");
    EXPECT_NE(pdf.document, nullptr);
    EXPECT_EQ(pdf.image, nullptr);
    EXPECT_EQ(pdf.width, 595);
    EXPECT_EQ(pdf.height, 842);
    pdf.Dispose();

    lastDecoded = "";
    ZR_Picture emf = FromHost({{u"image/x-emf", "emf"}});
    EXPECT_EQ(lastDecoded, "");  // stays as bytes
    EXPECT_EQ(emf.image, nullptr);
    emf.Dispose();
}

TEST_F(PictureHost, CreateFromHost_SVG_TakesTheHostsPictures) {
    gPictureDecoder = &kDecoder;
    fake::state.screenPicture = new CGImage;
    fake::state.printPicture = new CGPDFDocument;
    ZR_Picture svg = FromHost({{u"image/svg+xml", "<svg/>"}});
    EXPECT_EQ(svg.image, fake::state.screenPicture);
    EXPECT_EQ(svg.document, fake::state.printPicture);
    EXPECT_EQ(svg.width, 64);
    svg.Dispose();
}

TEST_F(PictureHost, CreateCopy_OwnsItsBytesAndObjects) {
    gPictureDecoder = &kDecoder;
    ZR_Picture picture = FromHost({{u"image/png", "png"}}), copy;
    picture.displayFormat = 5;
    picture.quality = 0.5F;
    copy.Create(&picture);
    EXPECT_EQ(copy.image, picture.image);
    EXPECT_NE(copy.nativeData.data, picture.nativeData.data);
    EXPECT_EQ(CFGetRetainCount(copy.image), 2);
    picture.Dispose();
    EXPECT_EQ(CGImage::living, 1);
    EXPECT_EQ(Bytes(copy.nativeData), "png");
    EXPECT_EQ(copy.format, ZR_PICT_PNG);
    EXPECT_EQ(copy.width, 64);
    EXPECT_EQ(copy.dpiX, 300);
    EXPECT_EQ(copy.displayFormat, 5);
    EXPECT_EQ(copy.quality, 0.5F);
    copy.Dispose();
    copy.Dispose();
}

TEST_F(PictureHost, SetNativePicture_Bytes_AreCopied) {
    ZR_Picture picture;
    picture.Create();
    ZR_Handle bytes = MakeBytes("one");
    picture.SetNativePicture(&bytes);
    picture.SetNativePicture(&picture.nativeData);
    EXPECT_EQ(Bytes(picture.nativeData), "one");
    EXPECT_NE(picture.nativeData.data, bytes.data);
    picture.SetNativePicture(nullptr);
    EXPECT_EQ(picture.nativeData.count, 0);
    picture.Dispose();
    bytes.Dispose();
}

TEST_F(PictureHost, ToHost_WithoutBytes_IsAnEmptyPicture) {
    ZR_Picture picture;
    picture.Create();
    PA_Variable variable = PA_CreateVariable(eVK_Picture);
    EXPECT_EQ(picture.To4DPicture(), nullptr);
    picture.To4DVariable(&variable);
    EXPECT_EQ(variable.fType, eVK_Picture);
    EXPECT_TRUE(variable.uValue.fPicture == nullptr);

    ZR_Handle bytes = MakeBytes("native");
    picture.SetNativePicture(&bytes);
    picture.To4DVariable(&variable);
    picture.To4DVariable(&variable);  // the old picture is freed
    picture.To4DVariable(nullptr);
    ZR_Picture back;
    back.Create(static_cast<void**>(PA_GetPictureVariable(&variable)));
    EXPECT_EQ(Bytes(back.nativeData), "native");
    back.Dispose();
    PA_ClearVariable(&variable);
    picture.To4DVariable(&variable);  // a variable that owns nothing becomes a picture
    EXPECT_EQ(variable.fType, eVK_Picture);
    PA_ClearVariable(&variable);
    picture.Dispose();
    bytes.Dispose();
}

TEST(Picture, Formats_Table_HasTenRowsInOrder) {
    int format = 0;
    for (const auto& row : kPictformats) EXPECT_EQ(row.format, ++format);
    EXPECT_EQ(format, 10);
    EXPECT_STREQ(kPictformats[ZR_PICT_JPEG - 1].dataPrefix, "data:image/jpeg;base64,");
    EXPECT_STREQ(kPictformats[ZR_PICT_SVG - 1].dataPrefix, "data:image/png;base64,");
    EXPECT_EQ(kPictformats[ZR_PICT_PDF - 1].dataPrefix, nullptr);
}
