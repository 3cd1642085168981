#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <random>

#include "tests/platform/GraphicsSupport.h"

namespace {

struct Format {
    const char* name;
    const CFStringRef* type;
    bool alpha, exact;
};
const Format kFormats[] = {{"jpeg", &kUTTypeJPEG, false, false},
                           {"png", &kUTTypePNG, true, true},
                           {"bmp", &kUTTypeBMP, false, true},
                           {"gif", &kUTTypeGIF, true, true},  // of few colours
                           {"tiff", &kUTTypeTIFF, true, true}};

// Few colours, no symmetry, opaque.
Owned<CGImageRef> Opaque(int w = 20, int h = 12) {
    return Picture(w, h, [&](CGContextRef c) {
        CGContextFillRect(c, CGRectMake(0, 0, w, h));
        CGContextSetRGBFillColor(c, 0, 0, 1, 1);
        CGContextFillRect(c, CGRectMake(0, 0, w / 2.0, h / 3.0));
        CGContextSetRGBFillColor(c, 1, 1, 0, 1);
        CGContextFillRect(c, CGRectMake(1, h - 3, 3, 2));
    });
}

// The same with a clear corner.
Owned<CGImageRef> WithHole() {
    return Picture(20, 12, [&](CGContextRef c) {
        CGContextDrawImage(c, CGRectMake(0, 0, 20, 12), Opaque());
        CGContextClearRect(c, CGRectMake(10, 6, 10, 6));
    });
}

std::vector<uint8_t> Drawn(CGImageRef image) {
    Bitmap bitmap(static_cast<int>(CGImageGetWidth(image)), static_cast<int>(CGImageGetHeight(image)));
    CGContextDrawImage(bitmap, CGRectMake(0, 0, bitmap.width, bitmap.height), image);
    return bitmap.Pixels();
}

int LargestDifference(const std::vector<uint8_t>& a, const std::vector<uint8_t>& b) {
    if (a.size() != b.size()) return 999;
    int most = 0;
    for (size_t i = 0; i < a.size(); ++i) most = std::max(most, std::abs(a[i] - b[i]));
    return most;
}

std::string TemporaryPath(const char* name) {
    return std::filesystem::temp_directory_path() / ("zr-imageio-" + std::to_string(getpid()) + name);
}

void PutLittle(std::string* out, uint32_t value, int size) {
    for (int i = 0; i < size; ++i) *out += static_cast<char>(value >> (8 * i));
}

}  // namespace

// Round trips ------------------------------------------------------------------------------------------------------

TEST(ImageIO, RoundTrip_EveryFormat_KeepsPictureTypeAndResolution) {
    for (auto& format : kFormats) {
        std::string bytes = Encode({Opaque()}, *format.type, {300, 150, 1});
        ASSERT_FALSE(bytes.empty()) << format.name;
        Owned<CGImageSourceRef> source = CGImageSourceCreateWithData(Data(bytes), nullptr);
        EXPECT_TRUE(CFEqual(CGImageSourceGetType(source), *format.type)) << format.name;
        EXPECT_EQ(CGImageSourceGetCount(source), 1U) << format.name;
        Owned<CGImageRef> image = CGImageSourceCreateImageAtIndex(source, 0, nullptr);
        EXPECT_EQ(CGImageGetWidth(image), 20U) << format.name;
        EXPECT_EQ(CGImageGetHeight(image), 12U) << format.name;
        EXPECT_EQ(CGImageGetAlphaInfo(image), kCGImageAlphaNone) << format.name;
        EXPECT_LE(LargestDifference(Drawn(image), Drawn(Opaque())), format.exact ? 0 : 40) << format.name;
        EXPECT_EQ(PropertyOf(bytes, kCGImagePropertyPixelWidth), 20) << format.name;
        EXPECT_EQ(PropertyOf(bytes, kCGImagePropertyPixelHeight), 12) << format.name;
        bool dpi = std::string(format.name) != "gif";  // a GIF knows none
        EXPECT_EQ(PropertyOf(bytes, kCGImagePropertyDPIWidth), dpi ? 300 : -1) << format.name;
        EXPECT_EQ(PropertyOf(bytes, kCGImagePropertyDPIHeight), dpi ? 150 : -1) << format.name;
        EXPECT_EQ(CGImageSourceCreateImageAtIndex(source, 1, nullptr), nullptr) << format.name;
        EXPECT_EQ(CGImageSourceCreateImageAtIndex(source, ~0UL, nullptr), nullptr) << format.name;
        EXPECT_EQ(CGImageSourceCopyPropertiesAtIndex(source, 1, nullptr), nullptr) << format.name;
    }
}

TEST(ImageIO, RoundTrip_WholeResolutions_ComeBackWhole) {
    for (auto& format : kFormats) {
        if (std::string(format.name) == "gif") continue;
        for (double dpi : {72.0, 96.0, 144.0, 150.0, 200.0, 300.0, 600.0, 1200.0})
            EXPECT_EQ(PropertyOf(Encode({Opaque()}, *format.type, {dpi, dpi}), kCGImagePropertyDPIWidth), dpi)
                << format.name;
        EXPECT_EQ(PropertyOf(Encode({Opaque()}, *format.type), kCGImagePropertyDPIWidth), -1) << format.name;
        EXPECT_EQ(PropertyOf(Encode({Opaque()}, *format.type, {300, 0}), kCGImagePropertyDPIWidth), -1) << format.name;
    }
}

TEST(ImageIO, RoundTrip_Alpha_KeptOrUnderWhite) {
    for (auto& format : kFormats) {
        Owned<CGImageRef> image = Decode(Encode({WithHole()}, *format.type));
        auto pixels = Drawn(image);
        const uint8_t* corner = pixels.data() + 19 * 4;  // upper right
        bool clear = corner[3] == 0, white = std::min({corner[0], corner[1], corner[2]}) > 240 && corner[3] == 255;
        EXPECT_TRUE(format.alpha ? clear : white) << format.name;
        EXPECT_EQ(CGImageGetAlphaInfo(image), format.alpha ? kCGImageAlphaLast : kCGImageAlphaNone) << format.name;
        if (format.exact && format.alpha) { EXPECT_EQ(pixels, Drawn(WithHole())) << format.name; }
    }
}

TEST(ImageIO, StraightAlpha_PNGAndTIFF_LoseNothing) {
    Owned<CGImageRef> image = Picture(16, 16, [](CGContextRef c) {
        for (int i = 0; i < 16; ++i) {
            CGContextSetRGBFillColor(c, i / 15.0, 1 - i / 15.0, 0.3, (i + 1) / 16.0);
            CGContextFillRect(c, CGRectMake(i, 0, 1, 16));
        }
    });
    std::string png = Encode({image}, kUTTypePNG);
    Owned<CGImageRef> first = Decode(png);
    Owned<CGImageRef> second = Decode(Encode({first}, kUTTypeTIFF)), third = Decode(Encode({second}, kUTTypePNG));
    EXPECT_EQ(CGImageGetAlphaInfo(second), kCGImageAlphaLast);
    EXPECT_EQ(PixelsOf(first), PixelsOf(second));
    EXPECT_EQ(PixelsOf(first), PixelsOf(third));
    EXPECT_EQ(Drawn(image), Drawn(first));
}

TEST(ImageIO, BackgroundColor_ColorIsUsed_OtherValuesAreWhite) {
    Owned<CGColorRef> green = CGColorCreateGenericRGB(0, 1, 0, 1);
    Owned<CFNumberRef> number = Number(300);
    for (auto type : {kUTTypeJPEG, kUTTypeBMP}) {
        auto colored = Drawn(Decode(Encode({WithHole()}, type, {0, 0, 1, green.get()})));
        EXPECT_NEAR(colored[19 * 4], 0, 12);
        EXPECT_NEAR(colored[19 * 4 + 1], 255, 12);
        auto white = Drawn(Decode(Encode({WithHole()}, type, {300, 300, 1, number.get()})));
        EXPECT_NEAR(white[19 * 4], 255, 12);
    }
}

TEST(ImageIO, JPEGQuality_SmallerOrNearer) {
    Owned<CGImageRef> image = Picture(64, 64, [](CGContextRef c) {
        std::mt19937 random(1);
        CGContextFillRect(c, CGRectMake(0, 0, 64, 64));
        for (int i = 0; i < 400; ++i) {
            auto unit = [&] { return static_cast<double>(random() % 256) / 255; };
            CGContextSetRGBFillColor(c, unit(), unit(), unit(), 1);
            CGContextFillRect(c, CGRectMake(std::floor(unit() * 64), std::floor(unit() * 64), 9, 9));
        }
    });
    auto reference = Drawn(image);
    std::string worst = Encode({image}, kUTTypeJPEG, {0, 0, 0}), half = Encode({image}, kUTTypeJPEG, {0, 0, 0.5}),
                best = Encode({image}, kUTTypeJPEG, {0, 0, 1}), standard = Encode({image}, kUTTypeJPEG);
    EXPECT_LT(worst.size(), half.size());
    EXPECT_LT(half.size(), best.size());
    EXPECT_EQ(best, standard);
    EXPECT_LE(LargestDifference(Drawn(Decode(best)), reference), 16);
    EXPECT_EQ(Encode({image}, kUTTypeJPEG, {0, 0, 99}), best);  // cut to 1
}

TEST(ImageIO, GIF_ManyColors_AreNear) {
    Owned<CGImageRef> image = Picture(64, 64, [](CGContextRef c) {
        for (int y = 0; y < 64; ++y)
            for (int x = 0; x < 64; ++x) {
                CGContextSetRGBFillColor(c, x / 63.0, y / 63.0, 0.5, 1);
                CGContextFillRect(c, CGRectMake(x, y, 1, 1));
            }
    });
    Owned<CGImageRef> back = Decode(Encode({image}, kUTTypeGIF));
    EXPECT_LE(LargestDifference(Drawn(back), Drawn(image)), 40);
}

// Pages ------------------------------------------------------------------------------------------------------------

TEST(ImageIO, TIFF_SeveralPages) {
    Owned<CGImageRef> a = Opaque(20, 12), b = WithHole(), c = Opaque(7, 5);
    std::string bytes = Encode({a, b, c}, kUTTypeTIFF, {200, 200});
    Owned<CGImageSourceRef> source = CGImageSourceCreateWithData(Data(bytes), nullptr);
    ASSERT_EQ(CGImageSourceGetCount(source), 3U);
    CGImageRef expected[] = {a, b, c};
    for (size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(Drawn(Decode(bytes, i)), Drawn(expected[i])) << i;
        EXPECT_EQ(PropertyOf(bytes, kCGImagePropertyDPIWidth, i), 200) << i;
    }
    EXPECT_EQ(CGImageSourceCreateImageAtIndex(source, 3, nullptr), nullptr);
}

TEST(ImageIO, TIFF_PageOfATIFF_IsCopiedAsItIs) {
    // A page of 1 bit a pixel, bytes as they stand, big-endian: 8 x 2 pixels, white is zero.
    std::string bytes("MM\0*\0\0\0\x0A", 8);
    bytes += "\xF0\x0F";
    auto entry = [](int tag, int type, int count, int value) {
        std::string row;
        auto put = [&](int v, int n) {
            for (int i = n; i-- > 0;) row += static_cast<char>(v >> (8 * i));
        };
        put(tag, 2), put(type, 2), put(count, 4);
        if (type == 3) put(value, 2), put(0, 2);
        else put(value, 4);
        return row;
    };
    bytes += std::string("\0\x0A", 2) + entry(256, 3, 1, 8) + entry(257, 3, 1, 2) + entry(258, 3, 1, 1) +
             entry(259, 3, 1, 1) + entry(262, 3, 1, 0) + entry(273, 4, 1, 8) + entry(277, 3, 1, 1) +
             entry(278, 3, 1, 2) + entry(279, 4, 1, 2) + entry(274, 3, 1, 1) + std::string(4, 0);
    Owned<CGImageRef> image = Decode(bytes);
    ASSERT_EQ(CGImageGetWidth(image), 8U);
    std::string copy = Encode({image}, kUTTypeTIFF, {100, 100});
    EXPECT_EQ(copy.substr(0, 4), std::string("MM\0*", 4));
    EXPECT_LT(copy.size(), 300U);  // one bit a pixel still
    EXPECT_EQ(Drawn(Decode(copy)), Drawn(image));
    EXPECT_EQ(PropertyOf(copy, kCGImagePropertyDPIWidth), 100);
    EXPECT_EQ(Drawn(image)[0], 0);
    EXPECT_EQ(Drawn(image)[4 * 4], 255);
}

// A chain of pages of 1 bit a pixel, each of side x side pixels of the same bytes
static std::string BitPages(int side, const std::string& pixels, int count, bool bigEndian) {
    std::string out;
    auto put = [&](size_t v, int n) {
        for (int i = 0; i < n; ++i) out += static_cast<char>(v >> (8 * (bigEndian ? n - 1 - i : i)));
    };
    out += bigEndian ? "MM" : "II";
    put(42, 2), put(8 + pixels.size(), 4);
    out += pixels;
    auto row = [&](size_t tag, size_t type, size_t value) {
        put(tag, 2), put(type, 2), put(1, 4);
        if (type == 3) put(value, 2), put(0, 2);
        else put(value, 4);
    };
    auto length = static_cast<size_t>(side);
    for (int i = 0; i < count; ++i) {
        put(10, 2);
        row(256, 3, length), row(257, 3, length), row(258, 3, 1), row(259, 3, 1), row(262, 3, 0);
        row(273, 4, 8), row(274, 3, 1), row(277, 3, 1), row(278, 3, length), row(279, 4, pixels.size());
        put(i + 1 < count ? out.size() + 4 : 0, 4);
    }
    return out;
}

TEST(ImageIO, TIFF_ManyPages_AreReadInTime) {
    std::string bytes = BitPages(8, "\xF0\x0F\xF0\x0F\xF0\x0F\xF0\x0F", 8000, /*big-endian*/ false);
    Owned<CGImageSourceRef> source = CGImageSourceCreateWithData(Data(bytes), nullptr);
    ASSERT_EQ(CGImageSourceGetCount(source), 8000U);
    auto start = std::chrono::steady_clock::now();
    for (size_t i = 0; i < 8000; ++i)
        ASSERT_NE(Owned<CGImageRef>(CGImageSourceCreateImageAtIndex(source, i, nullptr)).get(), nullptr) << i;
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(4));
    EXPECT_EQ(CGImageSourceCreateImageAtIndex(source, 8000, nullptr), nullptr);
}

TEST(ImageIO, TIFF_ChainThatComesBack_Ends) {
    std::string bytes = BitPages(8, "\xF0\x0F\xF0\x0F\xF0\x0F\xF0\x0F", 2, /*big-endian*/ false);
    bytes[bytes.size() - 4] = 16;  // the first directory again
    EXPECT_NE(Decode(bytes, 1).get(), nullptr);
    EXPECT_EQ(Decode(bytes, 2).get(), nullptr);
    EXPECT_EQ(Decode(bytes, 1000000).get(), nullptr);
}

TEST(ImageIO, TIFF_OnePageThatCannotBeCopied_TheOthersStillAre) {
    std::mt19937 random(3);
    std::string noise(800 * 100, 0);
    for (char& c : noise) c = static_cast<char>(random());
    auto large = Decode(BitPages(800, noise, 1, /*big-endian*/ true)),
         other = Decode(BitPages(8, "\xF0\x0F\xF0\x0F\xF0\x0F\xF0\x0F", 1, /*big-endian*/ false));
    std::string made = Encode({large, other, Opaque()}, kUTTypeTIFF);
    EXPECT_NE(made.find(noise), std::string::npos);
    EXPECT_LT(made.size(), noise.size() + 4000);
    EXPECT_EQ(Drawn(Decode(made, 0)), Drawn(large));
    EXPECT_EQ(Drawn(Decode(made, 1)), Drawn(other));
    EXPECT_EQ(Drawn(Decode(made, 2)), Drawn(Opaque()));
}

// A progressive grey JPEG of side x side pixels, all alike, whose first of several scans alone has data
static std::string ManyScans(int side, int scans) {
    std::string out("\xFF\xD8\xFF\xDB\0\x43\0", 7);
    out += std::string(64, 1);
    out += std::string("\xFF\xC2\0\x0B\x08", 5);
    for (int i = 0; i < 2; ++i) out += static_cast<char>(side >> 8), out += static_cast<char>(side);
    out += std::string("\1\1\x11\0", 4);
    out += std::string("\xFF\xC4\0\x14\0\1", 6) + std::string(16, '\0');  // one code, of one bit: no difference
    const std::string scan("\xFF\xDA\0\x08\1\1\0\0\0\0", 10);
    out += scan + std::string(static_cast<size_t>(side / 8 * (side / 8) / 8 + 1), '\0');
    for (int i = 1; i < scans; ++i) out += scan;
    return out + "\xFF\xD9";
}

TEST(ImageIO, JPEG_ScansOverAndOver_AreBounded) {
    EXPECT_NE(Decode(ManyScans(4000, 4)).get(), nullptr);
    auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(Decode(ManyScans(4000, 450)).get(), nullptr);
    EXPECT_NE(Decode(ManyScans(160, 450)).get(), nullptr);  // small: no matter
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
}

// A frame whose pixels each have their own code behind a clear code
static std::string GIFFrame(int left, int top, int w, int h, int disposal, const std::vector<int>& pixels) {
    std::string out = "!\xF9\x04";
    out += std::string{static_cast<char>(disposal << 2), 0, 0, 0, 0};
    out += ",";
    for (int v : {left, top, w, h}) PutLittle(&out, static_cast<uint32_t>(v), 2);
    out += '\0';
    out += '\2';  // code size; every pixel as its own code behind a clear code
    uint32_t bits = 0;
    int n = 0;
    std::string block;
    auto put = [&](uint32_t code) {
        bits |= code << n;
        for (n += 3; n >= 8; n -= 8, bits >>= 8) block += static_cast<char>(bits);
    };
    for (int p : pixels) put(4), put(static_cast<uint32_t>(p));
    put(5);
    if (n > 0) block += static_cast<char>(bits);
    out += static_cast<char>(block.size());
    return out + block + '\0';
}

TEST(ImageIO, GIF_Frames_AreComposed) {
    // 4 x 4, two colours: frame 1 fills with colour 0, frame 2 puts colour 1 at (1, 1), disposed to before;
    // frame 3 puts colour 1 at (2, 2).
    std::string bytes("GIF89a\4\0\4\0\x80\0\0", 13);
    bytes += std::string("\xFF\0\0\0\0\xFF", 6);
    bytes += GIFFrame(0, 0, 4, 4, 1, std::vector<int>(16, 0)) + GIFFrame(1, 1, 1, 1, 3, {1}) +
             GIFFrame(2, 2, 1, 1, 1, {1}) + ";";
    Owned<CGImageSourceRef> source = CGImageSourceCreateWithData(Data(bytes), nullptr);
    ASSERT_EQ(CGImageSourceGetCount(source), 3U);
    auto at = [&](size_t index, int x, int y) {
        return PixelsOf(Decode(bytes, index))[static_cast<size_t>(y * 4 + x) * 4];
    };
    EXPECT_EQ(at(0, 1, 1), 255);
    EXPECT_EQ(at(1, 1, 1), 0);
    EXPECT_EQ(at(1, 0, 0), 255);  // what the frame before left
    EXPECT_EQ(at(2, 1, 1), 255);  // put back
    EXPECT_EQ(at(2, 2, 2), 0);
    EXPECT_EQ(Decode(bytes, 3).get(), nullptr);
}

TEST(ImageIO, GIF_ManySmallFramesPutBack_OnALargeScreen_TakeLittleTime) {
    std::string bytes("GIF89a\xD0\x07\xD0\x07\x80\0\0", 13);  // 2000 x 2000
    bytes += std::string("\xFF\0\0\0\0\xFF", 6);
    for (int i = 0; i < 3000; ++i) bytes += GIFFrame(i % 7, 1, 1, 1, 3, {1});
    bytes += GIFFrame(9, 9, 1, 1, 1, {1}) + ";";
    auto start = std::chrono::steady_clock::now();
    auto image = Decode(bytes, 3000);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
    ASSERT_EQ(CGImageGetWidth(image), 2000U);
    auto pixels = PixelsOf(image);
    EXPECT_EQ(pixels[(9 * 2000 + 9) * 4 + 3], 255);
    EXPECT_EQ(pixels[(1 * 2000 + 1) * 4 + 3], 0);  // put back
}

// BMP by hand ------------------------------------------------------------------------------------------------------

static std::string BMP(int w, int h, int bits, int compression, const std::string& palette, const std::string& pixels,
                       const std::string& masks = "") {
    std::string out = "BM";
    PutLittle(&out, 0, 4);
    PutLittle(&out, 0, 4);
    PutLittle(&out, static_cast<uint32_t>(54 + masks.size() + palette.size()), 4);
    PutLittle(&out, 40, 4);
    PutLittle(&out, static_cast<uint32_t>(w), 4);
    PutLittle(&out, static_cast<uint32_t>(h), 4);
    PutLittle(&out, 1, 2);
    PutLittle(&out, static_cast<uint32_t>(bits), 2);
    PutLittle(&out, static_cast<uint32_t>(compression), 4);
    for (int i = 0; i < 5; ++i) PutLittle(&out, 0, 4);
    return out + masks + palette + pixels;
}

TEST(ImageIO, BMP_EveryDepth_Reads) {
    const std::string two("\0\0\xFF\0\xFF\0\0\0", 8);  // red, blue
    static const struct {
        const char* name;
        std::string bytes;
    } rows[] = {
        {"1 bit", BMP(2, 2, 1, 0, two, std::string("\x40\0\0\0\x80\0\0\0", 8))},
        {"4 bits", BMP(2, 2, 4, 0, two, std::string("\x01\0\0\0\x10\0\0\0", 8))},
        {"8 bits", BMP(2, 2, 8, 0, two, std::string("\0\1\0\0\1\0\0\0", 8))},
        {"8 bits, runs", BMP(2, 2, 8, 1, two, std::string("\1\0\1\1\0\0\1\1\1\0\0\1", 12))},
        {"4 bits, runs", BMP(2, 2, 4, 2, two, std::string("\2\x01\0\0\2\x10\0\1", 8))},
        {"16 bits", BMP(2, 2, 16, 0, "", std::string("\0\x7C\x1F\0\x1F\0\0\x7C", 8))},
        {"16 bits, masks", BMP(2, 2, 16, 3, "", std::string("\0\xF8\x1F\0\x1F\0\0\xF8", 8),
                               std::string("\0\xF8\0\0\xE0\7\0\0\x1F\0\0\0", 12))},
        {"24 bits", BMP(2, 2, 24, 0, "", std::string("\0\0\xFF\xFF\0\0\0\0\xFF\0\0\0\0\xFF\0\0", 16))},
        {"32 bits", BMP(2, 2, 32, 0, "", std::string("\0\0\xFF\0\xFF\0\0\0\xFF\0\0\0\0\0\xFF\0", 16))},
        {"from the top", BMP(2, -2, 32, 0, "", std::string("\xFF\0\0\0\0\0\xFF\0\0\0\xFF\0\xFF\0\0\0", 16))},
    };
    const std::vector<uint8_t> blueRedRedBlue = {0, 0, 255, 255, 255, 0, 0, 255, 255, 0, 0, 255, 0, 0, 255, 255};
    for (auto& row : rows) {
        Owned<CGImageRef> image = Decode(row.bytes);
        ASSERT_NE(image.get(), nullptr) << row.name;
        EXPECT_EQ(PixelsOf(image), blueRedRedBlue) << row.name;
    }
}

TEST(ImageIO, BMP_BadHeaders_AreRefused) {
    const std::string pixels(16, 0);
    const std::string bad[] = {BMP(0, 2, 24, 0, "", pixels),
                               BMP(2, 0, 24, 0, "", pixels),
                               BMP(-2, 2, 24, 0, "", pixels),
                               BMP(2, 2, 7, 0, "", pixels),
                               BMP(2, 2, 24, 1, "", pixels),
                               BMP(2, 2, 24, 9, "", pixels),
                               BMP(1 << 30, 1 << 30, 24, 0, "", pixels),
                               BMP(2, -2147483647 - 1, 24, 0, "", pixels),
                               BMP(2, 9, 24, 0, "", pixels),
                               BMP(60000, 60000, 8, 1, "", pixels)};
    for (size_t i = 0; i < std::size(bad); ++i) EXPECT_EQ(Decode(bad[i]).get(), nullptr) << i;
}

// Files and failures -----------------------------------------------------------------------------------------------

TEST(ImageIO, Files_WriteAndRead) {
    std::string path = TemporaryPath(".png");
    Owned<CGImageDestinationRef> destination = CGImageDestinationCreateWithURL(FileURL(path), kUTTypePNG, 1, nullptr);
    EXPECT_FALSE(CGImageDestinationFinalize(destination));  // no image yet
    CGImageDestinationAddImage(destination, Opaque(), nullptr);
    CGImageDestinationAddImage(destination, WithHole(), nullptr);  // one too many
    EXPECT_TRUE(CGImageDestinationFinalize(destination));
    EXPECT_FALSE(CGImageDestinationFinalize(destination));
    destination = nullptr;
    Owned<CGImageSourceRef> source = CGImageSourceCreateWithURL(FileURL(path), nullptr);
    Owned<CGImageRef> image = CGImageSourceCreateImageAtIndex(source, 0, nullptr);
    EXPECT_EQ(Drawn(image), Drawn(Opaque()));
    std::filesystem::remove(path);
    EXPECT_EQ(CGImageSourceCreateWithURL(FileURL(path), nullptr), nullptr);
    EXPECT_EQ(CGImageSourceCreateWithURL(FileURL("/"), nullptr), nullptr);
    EXPECT_EQ(CGImageSourceCreateWithURL(FileURL("/dev/zero"), nullptr), nullptr);
    EXPECT_EQ(CGImageSourceCreateWithURL(nullptr, nullptr), nullptr);
    EXPECT_EQ(CGImageDestinationCreateWithURL(FileURL("/nowhere/at/all.png"), kUTTypePNG, 1, nullptr), nullptr);
}

TEST(ImageIO, Destination_FileStaysUntilTheNewOneIsWhole) {
    auto folder = std::filesystem::temp_directory_path() / ("zr-kept-" + std::to_string(getpid()));
    std::filesystem::create_directory(folder);
    auto file = folder / "picture.png", link = folder / "link.png";
    std::ofstream(file) << "kept";
    std::filesystem::permissions(file, std::filesystem::perms(0640));
    std::filesystem::create_symlink(file, link);
    auto files = [&] {
        return std::distance(std::filesystem::directory_iterator(folder), std::filesystem::directory_iterator());
    };
    {
        Owned<CGImageDestinationRef> dropped = CGImageDestinationCreateWithURL(FileURL(file), kUTTypePNG, 1, nullptr);
        ASSERT_NE(dropped.get(), nullptr);
        EXPECT_EQ(std::filesystem::file_size(file), 4U);
        EXPECT_FALSE(CGImageDestinationFinalize(dropped));  // without a picture
    }
    EXPECT_EQ(std::filesystem::file_size(file), 4U);
    EXPECT_EQ(files(), 2);  // nothing is left behind
    {
        Owned<CGImageDestinationRef> written = CGImageDestinationCreateWithURL(FileURL(link), kUTTypePNG, 1, nullptr);
        CGImageDestinationAddImage(written, Opaque(), nullptr);
        EXPECT_TRUE(CGImageDestinationFinalize(written));
    }
    EXPECT_TRUE(std::filesystem::is_symlink(link));
    EXPECT_EQ(std::filesystem::status(file).permissions(), std::filesystem::perms(0640));
    Owned<CGImageSourceRef> source = CGImageSourceCreateWithURL(FileURL(file), nullptr);
    EXPECT_EQ(Drawn(Owned<CGImageRef>(CGImageSourceCreateImageAtIndex(source, 0, nullptr))), Drawn(Opaque()));
    EXPECT_EQ(files(), 2);
    std::filesystem::remove_all(folder);
}

TEST(ImageIO, Destination_UnknownTypeOrCount_IsNull) {
    Owned<CFMutableDataRef> data = CFDataCreateMutable(nullptr, 0);
    EXPECT_EQ(CGImageDestinationCreateWithData(data, Text("public.other"), 1, nullptr), nullptr);
    EXPECT_EQ(CGImageDestinationCreateWithData(data, nullptr, 1, nullptr), nullptr);
    EXPECT_EQ(CGImageDestinationCreateWithData(nullptr, kUTTypePNG, 1, nullptr), nullptr);
    EXPECT_EQ(CGImageDestinationCreateWithData(data, kUTTypePNG, 2, nullptr), nullptr);
    EXPECT_EQ(CGImageDestinationCreateWithData(data, kUTTypePNG, 0, nullptr), nullptr);
    std::string path = TemporaryPath(".kept");
    std::ofstream(path) << "kept";
    EXPECT_EQ(CGImageDestinationCreateWithURL(FileURL(path), Text("public.other"), 1, nullptr), nullptr);
    EXPECT_EQ(std::filesystem::file_size(path), 4U);  // a refused type leaves the file
    std::filesystem::remove(path);
    CGImageDestinationAddImage(nullptr, nullptr, nullptr);
    EXPECT_FALSE(CGImageDestinationFinalize(nullptr));
}

TEST(ImageIO, Source_UnknownBytes_HasNoImage) {
    for (const char* bytes : {"", "x", "hello world, this is no picture", "\xFF\xD8\xFF", "GIF89a", "BM"}) {
        Owned<CGImageSourceRef> source = CGImageSourceCreateWithData(Data(bytes), nullptr);
        ASSERT_NE(source.get(), nullptr) << bytes;
        EXPECT_EQ(CGImageSourceGetCount(source), 0U) << bytes;
        EXPECT_EQ(CGImageSourceCreateImageAtIndex(source, 0, nullptr), nullptr) << bytes;
        EXPECT_EQ(CGImageSourceCopyPropertiesAtIndex(source, 0, nullptr), nullptr) << bytes;
    }
    EXPECT_EQ(CGImageSourceGetType(Owned<CGImageSourceRef>(CGImageSourceCreateWithData(Data("x"), nullptr))), nullptr);
    EXPECT_EQ(CGImageSourceCreateWithData(nullptr, nullptr), nullptr);
    EXPECT_EQ(CGImageSourceGetCount(nullptr), 0U);
    EXPECT_EQ(CGImageSourceGetType(nullptr), nullptr);
}

TEST(ImageIO, Source_KeepsItsBytes_WhateverBecomesOfTheCallers) {
    std::string png = Encode({Opaque()}, kUTTypePNG);
    Owned<CFMutableDataRef> data = CFDataCreateMutable(nullptr, 0);
    CFDataAppendBytes(data, reinterpret_cast<const UInt8*>(png.data()), static_cast<CFIndex>(png.size()));
    Owned<CGImageSourceRef> source = CGImageSourceCreateWithData(data, nullptr);
    CFDataSetLength(data, 0);
    Owned<CGImageRef> image = CGImageSourceCreateImageAtIndex(source, 0, nullptr);
    source = nullptr;
    EXPECT_EQ(Drawn(image), Drawn(Opaque()));
    Owned<CFDataRef> fixed = Data(png);
    Owned<CGDataProviderRef> provider = CGDataProviderCreateWithCFData(fixed);
    Owned<CGImageSourceRef> provided = CGImageSourceCreateWithDataProvider(provider, nullptr);
    EXPECT_EQ(CGImageSourceGetCount(provided), 1U);
}

// A claim of 2^31 pixels in a few bytes takes no memory.
TEST(ImageIO, ClaimedSizes_AreCheckedBeforeMemoryIsTaken) {
    std::string png = Encode({Opaque()}, kUTTypePNG), gif = Encode({Opaque()}, kUTTypeGIF),
                jpeg = Encode({Opaque()}, kUTTypeJPEG), tiff = Encode({Opaque()}, kUTTypeTIFF);
    std::string head = png.substr(0, 16);
    png = head + std::string("\0\0\x7F\xFF\0\0\x7F\xFF", 8) + png.substr(24);
    EXPECT_EQ(Decode(png).get(), nullptr);
    for (size_t i = 0; i + 8 < jpeg.size(); ++i)
        if (jpeg[i] == '\xFF' && (jpeg[i + 1] == '\xC0' || jpeg[i + 1] == '\xC2'))
            jpeg.replace(i + 5, 4, "\xFF\xDC\xFF\xDC");
    EXPECT_EQ(Decode(jpeg).get(), nullptr);
    gif.replace(6, 4, "\xFF\xFF\xFF\xFF");
    EXPECT_EQ(Decode(gif).get(), nullptr);
}

TEST(ImageIO, DamagedFiles_NeitherCrashNorHang) {
    std::mt19937 random(7);
    int decoded = 0, refused = 0;
    for (auto& format : kFormats) {
        std::vector<std::string> files = {Encode({Opaque()}, *format.type, {300, 300}),
                                          Encode({WithHole()}, *format.type)};
        if (format.type == &kUTTypeTIFF) files.push_back(Encode({Opaque(), WithHole(), Opaque(7, 5)}, kUTTypeTIFF));
        for (auto& file : files)
            for (int round = 0; round < 150; ++round) {
                std::string bytes = file;
                int flips = 1 + static_cast<int>(random() % 4);
                for (int i = 0; i < flips; ++i) bytes[random() % bytes.size()] ^= static_cast<char>(1 << random() % 8);
                if (round % 5 == 0) bytes.resize(random() % bytes.size());
                Owned<CGImageSourceRef> source = CGImageSourceCreateWithData(Data(bytes), nullptr);
                size_t count = std::min<size_t>(CGImageSourceGetCount(source), 4);
                for (size_t i = 0; i <= count; ++i) {
                    Owned<CGImageRef> image = CGImageSourceCreateImageAtIndex(source, i, nullptr);
                    Owned<CFDictionaryRef> properties = CGImageSourceCopyPropertiesAtIndex(source, i, nullptr);
                    (image ? decoded : refused) += 1;
                    if (!image || CGImageGetWidth(image) * CGImageGetHeight(image) > 10000) continue;
                    Drawn(image);
                    Encode({image}, kUTTypeTIFF);
                }
            }
    }
    EXPECT_GT(decoded, 200);
    EXPECT_GT(refused, 200);
}

TEST(ImageIO, LongSides_AreDecodedAndDrawn) {
    std::string bmp = BMP(40000, 2, 24, 0, "", std::string(40000 * 3 * 2, '\x40'));
    Owned<CGImageRef> image = Decode(bmp);
    ASSERT_EQ(CGImageGetWidth(image), 40000U);
    Bitmap bitmap(40, 2);
    CGContextDrawImage(bitmap, CGRectMake(0, 0, 40, 2), image);
    EXPECT_NEAR_PIXEL(bitmap.At(20, 1), (Pixel{64, 64, 64, 255}), 1);
    for (auto& format : kFormats) EXPECT_FALSE(Encode({image}, *format.type).empty()) << format.name;
}
