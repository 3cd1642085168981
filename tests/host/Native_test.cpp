// Native pictures through the host's door.
#include "host/Native.h"

#include "platform/NativePicture/NativePicture.h"
#include "tests/host/Host_Test.h"
#include "tests/platform/GraphicsSupport.h"

namespace zrhost {
namespace {

using Native = HostTest;

// What makes native pictures stands in the module's library, which this program has.
const ZRNativePictureTable* const kTable = ZRNativePictureGetTable();

std::span<const uint8_t> Bytes(const std::string& text) {
    return {reinterpret_cast<const uint8_t*>(text.data()), text.size()};
}

const std::string kSvg = R"(<svg xmlns="http://www.w3.org/2000/svg" width="3" height="2"/>)";

std::string Png() {
    return ::Encode({::Picture(5, 4, [](CGContextRef c) { CGContextFillRect(c, CGRectMake(0, 0, 5, 4)); })},
                    kUTTypePNG);
}

void* Asked(int selector, const void* picture, int16_t* error = nullptr) {
    EngineBlock block = Block();
    block.fParam1 = Address(picture);
    block.fParam2 = 77;
    int16_t answer = Call(selector, &block);
    if (error) *error = answer;
    return reinterpret_cast<void*>(block.fParam2);
}

}  // namespace

TEST_F(Native, PictureForScreenAndPrinting_AreHandedOver) {
    ASSERT_NE(kTable, nullptr);
    const struct {
        std::string bytes;
        size_t width;
    } rows[] = {{kSvg, 3}, {Png(), 5}};
    for (const auto& row : rows) {
        Ref<Picture> picture = NewPicture(Bytes(row.bytes));
        Owned<CGImageRef> image = static_cast<CGImageRef>(Asked(ZR_SEL_NativePictureForScreen, picture.get()));
        ASSERT_NE(image.get(), nullptr);
        EXPECT_EQ(CGImageGetWidth(image), row.width);
        EXPECT_EQ(CFGetRetainCount(image), 1);
        Owned<CGPDFDocumentRef> document =
            static_cast<CGPDFDocumentRef>(Asked(ZR_SEL_NativePictureForPrinting, picture.get()));
        EXPECT_EQ(CGPDFDocumentGetNumberOfPages(document), 1U);
    }
}

TEST_F(Native, PictureThatCannotBeDrawn_GivesNull) {
    for (const char* bytes : {"GIF89a", "DDS 1", "%PDF-1", "text"}) {
        Ref<Picture> picture = NewPicture(Bytes(bytes));
        int16_t error = -1;
        EXPECT_EQ(Asked(ZR_SEL_NativePictureForScreen, picture.get(), &error), nullptr) << bytes;
        EXPECT_EQ(error, 0);
        EXPECT_EQ(Asked(ZR_SEL_NativePictureForPrinting, picture.get(), &error), nullptr) << bytes;
        EXPECT_EQ(error, 0);
    }
    int16_t error = -1;
    EXPECT_EQ(Asked(ZR_SEL_NativePictureForScreen, nullptr, &error), nullptr);  // an empty picture
    EXPECT_EQ(error, 0);
    int none;
    EXPECT_EQ(Asked(ZR_SEL_NativePictureForPrinting, &none, &error), nullptr);
    EXPECT_NE(error, 0);
}

// The first representation that can be decoded counts.
TEST_F(Native, Representations_TheFirstDecodableIsTaken) {
    std::vector<Representation> list(3);
    const std::string png = Png();
    list[0] = {"image/x-own", {1, 2, 3}};
    list[1] = {"image/gif", {'G', 'I', 'F', '8', '9', 'a'}};
    list[2] = {"image/png", std::vector<uint8_t>(png.begin(), png.end())};
    Ref<Picture> picture = NewPicture(list);
    Owned<CGImageRef> image = static_cast<CGImageRef>(NativeImage(*picture));
    EXPECT_EQ(CGImageGetWidth(image), 5U);
    EXPECT_EQ(NativeSize(*picture), std::pair(5, 4));
    std::optional<Pixels> pixels = DecodePicture(*picture);
    ASSERT_TRUE(pixels.has_value());
    EXPECT_EQ(pixels->rgba.size(), 80u);
    EXPECT_FALSE(CanEncode(*FindPictureKind(".pdf")));
    EXPECT_TRUE(EncodePicture(*pixels, *FindPictureKind(".svg"), 1).empty());
    EXPECT_FALSE(EncodePicture(*pixels, *FindPictureKind(".bmp"), 1).empty());
}

}  // namespace zrhost
