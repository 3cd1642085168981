// What the tests of pictures share: the embedded host with the module started, bytes of every format, parameter blocks.
#ifndef ZR_TESTS_PICTURESUPPORT_H
#define ZR_TESTS_PICTURESUPPORT_H

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "core/ZR_API_Picture.h"
#include "core/ZR_API_Text.h"
#include "host/Host.h"
#include "host/Pictures.h"
#include "plugin/ZR_API_Bridge.h"
#include "plugin/ZR_API_Plugin.h"
#include "tests/platform/GraphicsSupport.h"

namespace picturetest {

// w x h pixels: red, with a blue upper left quarter.
inline Owned<CGImageRef> Sample(int w = 8, int h = 6) {
    return ::Picture(w, h, [&](CGContextRef c) {
        CGContextFillRect(c, CGRectMake(0, 0, w, h));
        CGContextSetRGBFillColor(c, 0, 0, 1, 1);
        CGContextFillRect(c, CGRectMake(0, h - h / 2, w / 2, h / 2));
    });
}

inline CFStringRef TypeOf(ZR_Pictformat format) {
    const CFStringRef types[] = {nullptr, kUTTypeJPEG, kUTTypePNG, kUTTypeBMP, kUTTypeGIF, kUTTypeTIFF};
    return types[format];
}

inline std::string SampleBytes(ZR_Pictformat format, int w = 8, int h = 6, double dpi = 0) {
    return Encode({Sample(w, h)}, TypeOf(format), {dpi, dpi, 1});
}

inline const std::string kSVG =
    R"(<svg xmlns="http://www.w3.org/2000/svg" width="40" height="20"><rect width="40" height="20" fill="red"/>)"
    R"(<rect width="20" height="10" fill="blue"/></svg>)";

// A page of 40 x 20 points with the same drawing
inline std::string SamplePDF() {
    Owned<CFMutableDataRef> data = CFDataCreateMutable(nullptr, 0);
    Owned<CGDataConsumerRef> consumer = CGDataConsumerCreateWithCFData(data);
    CGRect box = CGRectMake(0, 0, 40, 20);
    Owned<CGContextRef> context = CGPDFContextCreate(consumer, &box, nullptr);
    CGPDFContextBeginPage(context, nullptr);
    CGContextSetRGBFillColor(context, 1, 0, 0, 1);
    CGContextFillRect(context, box);
    CGContextSetRGBFillColor(context, 0, 0, 1, 1);
    CGContextFillRect(context, CGRectMake(0, 10, 20, 10));
    CGPDFContextEndPage(context);
    CGPDFContextClose(context);
    return BytesOf(data);
}

inline ZR_Handle HandleOf(const std::string& bytes) {
    ZR_Handle handle;
    handle.Create(1, 0);
    handle.AddCharBuffer(bytes.data(), static_cast<long>(bytes.size()));
    return handle;
}

inline std::string StringOf(const ZR_Handle& handle) {
    return handle.data && handle.count > 0 ? std::string(handle.data, static_cast<size_t>(handle.count)) : "";
}

struct TextOf : ZR_Text {
    TextOf(const std::string& utf8) {
        Create();
        AddUTF8String(utf8.c_str());
    }
    ~TextOf() { Dispose(); }
};

// A picture that is disposed at the end of the scope.
struct Kept : ZR_Picture {
    Kept() { Create(); }
    explicit Kept(const std::string& bytes) {
        ZR_Handle handle = HandleOf(bytes);
        Create(&handle);
        handle.Dispose();
    }
    ~Kept() { Dispose(); }
    Kept(const Kept&) = delete;
};

class PictureTest : public testing::Test {
  protected:
    void SetUp() override {
        ZR_GetMemoryInfo(&handles, &bytes);
        pictures = zrhost::LivePictures();
        char pattern[] = "/tmp/zr-pictures-XXXXXX";
        ASSERT_NE(mkdtemp(pattern), nullptr);
        folder = std::string(pattern) + "/";
        host = zrhost::Host::Start();
        ZR_StartupRecord record = host->startupRecord();
        FourDPackex(-1, &record, nullptr, nullptr);
        ZR_GetMemoryInfo(&handles, &bytes);
    }
    void TearDown() override {
        long handlesNow, bytesNow;
        ZR_GetMemoryInfo(&handlesNow, &bytesNow);
        EXPECT_EQ(handlesNow, handles);
        EXPECT_EQ(bytesNow, bytes);
        FourDPackex(-2, nullptr, nullptr, nullptr);
        EXPECT_EQ(zrhost::LivePictures(), pictures);
        host.reset();
        std::error_code error;
        std::filesystem::remove_all(folder, error);
    }
    std::string Write(const std::string& name, const std::string& content) const {
        std::ofstream(folder + name, std::ios::binary) << content;
        return folder + name;
    }
    std::unique_ptr<zrhost::Host> host;
    std::string folder;  // ends with "/"; deleted afterwards

  private:
    long handles = 0, bytes = 0, pictures = 0;
};

// Up to four parameters in the host's format, and a result.
struct Parameters {
    union Slot {
        int32_t number;
        PA_Picture picture;
        PA_Variable variable;
        Slot() { memset(static_cast<void*>(this), 0, sizeof *this); }
    } slots[4];
    void* table[4];
    PA_Picture result = nullptr;
    PluginBlock block;
    Parameters() : table{&slots[0], &slots[1], &slots[2], &slots[3]}, block{table, &result, nullptr} {}
};

}  // namespace picturetest

#endif
