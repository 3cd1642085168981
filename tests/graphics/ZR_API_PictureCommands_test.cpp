#include "graphics/ZR_API_PictureCommands.h"

#include "platform/AppKit/NSImage.h"
#include "tests/graphics/PictureSupport.h"

namespace {

using namespace picturetest;
using PictureCommands = PictureTest;

PA_Picture HostPicture(const std::string& bytes) {
    return PA_CreatePicture(bytes.data(), static_cast<long>(bytes.size()));
}

std::vector<std::string> TypesOf(PA_Picture picture) {
    Parameters call;
    call.slots[0].picture = picture;
    call.slots[1].variable = PA_CreateVariable(eVK_ArrayText);
    PA_ResizeArray(&call.slots[1].variable, 3);  // replaced
    ZR_GetPictureTypes(&call.block);
    std::vector<std::string> types;
    for (long i = 1; i <= PA_GetArrayNbElements(&call.slots[1].variable); ++i) {
        ZR_Text text;
        text.CreateFrom4DArray(&call.slots[1].variable, i);
        types.push_back(text.GetCStringPtr());
        text.Dispose();
    }
    PA_ClearVariable(&call.slots[1].variable);
    return types;
}

}  // namespace

TEST_F(PictureCommands, GetPictureTypes_AllRepresentations) {
    std::vector<zrhost::Representation> two(2);
    two[0] = {"image/x-own", {1, 2}};
    two[1] = {"image/png", {3}};
    auto picture = zrhost::NewPicture(two);
    EXPECT_EQ(TypesOf(picture.get()), (std::vector<std::string>{"image/x-own", "image/png"}));
    PA_Picture svg = HostPicture(kSVG);
    EXPECT_EQ(TypesOf(svg), std::vector<std::string>{"image/svg+xml"});
    PA_DisposePicture(svg);
    EXPECT_TRUE(TypesOf(nullptr).empty());
}

TEST_F(PictureCommands, GetPictureProperties_ResolutionOfDecodedPictures) {
    const struct {
        std::string bytes;
        int selector, x, y;
    } rows[] = {{SampleBytes(ZR_PICT_PNG, 8, 6, 300), 1, 300, 300},
                {Encode({Sample()}, kUTTypeTIFF, {150.7, 75, 1}), 1, 150, 75},  // truncated
                {SampleBytes(ZR_PICT_PNG), 1, 0, 0},
                {SampleBytes(ZR_PICT_PNG, 8, 6, 300), 0, 0, 0},
                {SampleBytes(ZR_PICT_PNG, 8, 6, 300), 2, 0, 0},
                {SamplePDF(), 1, 0, 0},
                {"\x89PNG\r\n\x1a\n", 1, 0, 0}};
    for (const auto& row : rows) {
        Parameters call;
        call.slots[0].picture = HostPicture(row.bytes);
        call.slots[1].number = row.selector;
        call.slots[2].number = call.slots[3].number = 99;
        ZR_GetPictureProperties(&call.block);
        EXPECT_EQ(call.slots[2].number, row.x);
        EXPECT_EQ(call.slots[3].number, row.y);
        PA_DisposePicture(call.slots[0].picture);
    }
}

TEST_F(PictureCommands, SetPictureProperties_EncodesAnew) {
    static const struct {
        int selector, x, y;
        double dpi;  // afterwards
        bool replaced;
    } rows[] = {{1, 150, 150, 150, true},
                {1, 0, 150, 300, true},
                {1, 150, 0, 300, true},
                {1, -5, -5, 300, true},
                {2, 150, 150, 300, false}};
    for (const auto& row : rows) {
        Parameters call;
        PA_Picture before = HostPicture(SampleBytes(ZR_PICT_PNG, 8, 6, 300));
        call.slots[0].picture = before;
        call.slots[1].number = row.selector;
        call.slots[2].number = row.x;
        call.slots[3].number = row.y;
        PA_Picture kept = PA_DuplicatePicture(before);
        ZR_SetPictureProperties(&call.block);
        EXPECT_EQ(call.slots[0].picture != before, row.replaced) << row.x;
        Kept after;
        after.Create(static_cast<void**>(call.slots[0].picture));
        EXPECT_EQ(after.format, ZR_PICT_PNG);
        EXPECT_EQ(after.dpiX, row.dpi) << row.x;
        EXPECT_EQ(after.width, 8);
        PA_DisposePicture(kept);
        PA_DisposePicture(call.slots[0].picture);
    }
}

TEST_F(PictureCommands, SetPictureProperties_WhatCannotBeEncoded_Stays) {
    for (const std::string& bytes : {SamplePDF(), kSVG, std::string("GIF89a")}) {
        Parameters call;
        PA_Picture before = HostPicture(bytes);
        call.slots[0].picture = before;
        for (int i = 1; i < 4; ++i) call.slots[i].number = i == 1 ? 1 : 100;
        ZR_SetPictureProperties(&call.block);
        EXPECT_EQ(call.slots[0].picture, before);
        PA_DisposePicture(before);
    }
}

TEST_F(PictureCommands, CGImageRefToNSImage_WrapsTheImage) {
    Owned<CGImageRef> image = Sample();
    auto wrapped = static_cast<NSImage*>(ZR_COCOA_CGImageRefToNSImage(image.get()));
    ASSERT_NE(wrapped, nullptr);
    EXPECT_EQ(CFGetRetainCount(image), 2);
    ASSERT_EQ(NSImageGetCount(wrapped), 1);
    EXPECT_EQ(NSBitmapImageRepGetCGImage(NSImageGetRepresentation(wrapped, 0)), image.get());
    EXPECT_EQ(NSImageGetRepresentation(wrapped, 1), nullptr);
    EXPECT_EQ(NSImageGetSize(wrapped).width, 8);
    EXPECT_EQ(NSImageGetSize(wrapped).height, 6);
    ZR_COCOA_SetPictureBrightness(image.get());  // no effect
    EXPECT_EQ(CFGetRetainCount(image), 2);
    CFRelease(wrapped);
    EXPECT_EQ(CFGetRetainCount(image), 1);
    EXPECT_EQ(ZR_COCOA_CGImageRefToNSImage(nullptr), nullptr);
    ZR_COCOA_SetPictureBrightness(nullptr);
}
