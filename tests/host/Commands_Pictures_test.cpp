#include <array>

#include "host/Native.h"
#include "platform/NativePicture/NativePicture.h"
#include "tests/host/Commands_Test.h"

namespace zrhost::test {
namespace {

using Pictures = CommandTest;

// What decodes and encodes stands in the module's library, which this program has.
const ZRNativePictureTable* const kNative = ZRNativePictureGetTable();

using Pixel = std::array<int, 4>;
constexpr Pixel kRed = {255, 0, 0, 255}, kBlue = {0, 0, 255, 255}, kClear = {0, 0, 0, 0};

// Rows of letters: r, b, w, and . for clear.
Pixels Drawn(const std::vector<std::string>& rows) {
    Pixels pixels(int(rows[0].size()), int(rows.size()));
    for (int y = 0; y < pixels.height; ++y)
        for (int x = 0; x < pixels.width; ++x) {
            const char c = rows[size_t(y)][size_t(x)];
            const Pixel p = c == 'r'   ? kRed
                            : c == 'b' ? kBlue
                            : c == 'w' ? Pixel{255, 255, 255, 255}
                            : c == 'k' ? Pixel{0, 0, 0, 255}
                                       : kClear;
            std::copy(p.begin(), p.end(), pixels.at(x, y));
        }
    return pixels;
}
Arg Encoded(const std::vector<std::string>& rows, const char* type = "image/png") {
    return Value(NewPicture(EncodePicture(Drawn(rows), *FindPictureKind(type), 1)));
}
// The rows of a picture; ? for any other pixel
std::vector<std::string> RowsOf(const Value& value) {
    std::optional<Pixels> pixels;
    if (value.kind() == eVK_Picture && value.picture()) pixels = DecodePicture(*value.picture());
    std::vector<std::string> rows;
    for (int y = 0; pixels && y < pixels->height; ++y) {
        rows.emplace_back();
        for (int x = 0; x < pixels->width; ++x) {
            const uint8_t* p = pixels->at(x, y);
            const Pixel pixel = {p[0], p[1], p[2], p[3]};
            rows.back() += p[3] == 0                            ? '.'
                           : pixel == kRed                      ? 'r'
                           : pixel == kBlue                     ? 'b'
                           : pixel == Pixel{255, 255, 255, 255} ? 'w'
                           : pixel == Pixel{0, 0, 0, 255}       ? 'k'
                                                                : '?';
        }
    }
    return rows;
}
using Rows = std::vector<std::string>;

const std::string kGif("GIF89a\x07\x00\x05\x00\x00\x00\x00\x3B", 14);

Arg PictureOf(const std::string& bytes) {
    return Value(NewPicture(std::span(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size())));
}

TEST_F(Pictures, Facts_OfAPicture_AreThoseOfItsBytes) {
    EXPECT_EQ(Text(356, {PictureOf(kGif)}), "14");
    EXPECT_EQ(Text(356, {Value(Ref<Picture>())}), "0");
    EXPECT_EQ(Text(356, {5}), "0");
    Run(457, {PictureOf(kGif), L(0), L(0), L(9), L(9), L(9)});
    EXPECT_EQ(ShowAfter(2), "7");
    EXPECT_EQ(ShowAfter(3), "5");
    EXPECT_EQ(ShowAfter(6), "0");
    Run(457, {5, L(9), L(9)});
    EXPECT_EQ(ShowAfter(2), "0");
    Run(1406, {PictureOf(kGif), Arg()});
    EXPECT_EQ(ShowAfter(2), R"(["image/gif"])");
    EXPECT_EQ(Text(1196, {PictureOf(kGif), PictureOf(kGif), Value(Ref<Picture>())}), "true");
    EXPECT_EQ(Text(1196, {PictureOf(kGif), PictureOf(kGif + "x"), Value(Ref<Picture>())}), "false");
    EXPECT_EQ(Text(1196, {PictureOf(kGif)}), "false");
    Run(992, {Arg(), Arg()});
    EXPECT_NE(ShowAfter(1).find(".png"), std::string::npos);
}

TEST_F(Pictures, Files_ReadAndWritten_SetOKAndDocument) {
    Run(680, {"a.gif", PictureOf(kGif)});
    EXPECT_TRUE(OK());
    EXPECT_EQ(Read("a.gif"), kGif);
    EXPECT_EQ(ToUtf8(host->document()), Path("a.gif"));
    Run(678, {"a.gif", Value(Ref<Picture>())});
    EXPECT_TRUE(OK());
    EXPECT_EQ(ShowAfter(2), "picture of 14");
    EXPECT_EQ(Text(1113, {"a.gif"}), "true");
    Write("a.txt", "no picture at all");
    Run(678, {"a.txt", Value(Ref<Picture>())});
    EXPECT_FALSE(OK());
    EXPECT_EQ(Text(1113, {"a.txt", Star()}), "false");
    Run(678, {"missing", Value(Ref<Picture>())});
    EXPECT_EQ(error, -43);
    EXPECT_EQ(Text(1113, {"missing"}), "false");
    EXPECT_FALSE(OK());
    Run(680, {"a.png", PictureOf(kGif), ".png"});
    EXPECT_FALSE(OK());
    EXPECT_FALSE(std::filesystem::exists(Path("a.png")));
    Run(680, {"b.gif", PictureOf(kGif), ".gif"});
    EXPECT_TRUE(OK());
    Run(680, {"c.gif", Value(Ref<Picture>())});
    EXPECT_FALSE(OK());
    Run(678, {});
    EXPECT_FALSE(OK());
}

TEST_F(Pictures, Blobs_ToAndFro_RoundTrip) {
    Run(682, {B(kGif), Value(Ref<Picture>())});
    EXPECT_TRUE(OK());
    EXPECT_EQ(ShowAfter(2), "picture of 14");
    Run(692, {After(2), Arg(), ".gif"});
    EXPECT_TRUE(OK());
    EXPECT_EQ(After(2).blob().size(), 14u);
    Run(692, {PictureOf(kGif), Hex("aa"), ".png"});
    EXPECT_FALSE(OK());
    EXPECT_EQ(ShowAfter(2), "<aa>");
    Run(692, {Value(Ref<Picture>()), Hex("aa"), ".gif"});
    EXPECT_FALSE(OK());
    Run(682, {Hex("0102"), PictureOf(kGif)});
    EXPECT_FALSE(OK());
    EXPECT_EQ(ShowAfter(2), "picture of 14");
    Run(682, {});
    EXPECT_FALSE(OK());
}

// Conversion -------------------------------------------------------------------------------------------------------

const std::string kSvg =
    R"(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 3 2"><rect width="3" height="2" fill="red"/></svg>)";
constexpr const char* kBitmapTypes[] = {"image/jpg", "image/png", "image/bmp", "image/gif", "image/tiff"};

TEST_F(Pictures, Native_TableOfTheLibrary_IsFound) {
    ASSERT_NE(kNative, nullptr);
    EXPECT_EQ(kNative->version, kZRNativePictureVersion);
}

TEST_F(Pictures, PictureProperties_OfFormatsWithoutSizeInTheHead) {
    Run(457, {PictureOf(kSvg), L(0), L(0)});
    EXPECT_EQ(ShowAfter(2), "3");
    EXPECT_EQ(ShowAfter(3), "2");
    Run(457, {PictureOf("%PDF-1.4 damaged"), L(9), L(9)});
    EXPECT_EQ(ShowAfter(2), "0");
}

TEST_F(Pictures, PictureToBlob_OtherTypes_AreEncoded) {
    for (const char* from : kBitmapTypes)
        for (const char* to : kBitmapTypes) {
            Run(692, {Encoded({"rr", "rr", "rr"}, from), Arg(), to});
            ASSERT_TRUE(OK()) << from << to;
            EXPECT_STREQ(SniffPicture(After(2).blob())->type, to);
            EXPECT_EQ(PictureSize(After(2).blob()), std::pair(2, 3));
        }
    Run(692, {PictureOf(kSvg), Arg(), ".png"});
    EXPECT_TRUE(OK());
    EXPECT_EQ(PictureSize(After(2).blob()), std::pair(3, 2));
    for (const char* type : {".pdf", ".svg", ".dds", "nonsense"}) {  // nothing encodes these
        Run(692, {Encoded({"r"}), Hex("aa"), type});
        EXPECT_FALSE(OK()) << type;
        EXPECT_EQ(ShowAfter(2), "<aa>");
    }
}

TEST_F(Pictures, WritePictureFile_TypeOrNameDecides) {
    const Arg picture = Encoded({"rb"});
    static const struct {
        const char *name, *type, *written;
    } rows[] = {{"a.gif", "", "image/gif"},     {"b.gif", ".png", "image/png"}, {"c", "", "image/png"},
                {"d.unknown", "", "image/png"}, {"e.JPG", "", "image/jpg"},     {"f.x", "image/tiff", "image/tiff"}};
    for (const auto& row : rows) {
        Run(680, {row.name, picture, row.type});
        ASSERT_TRUE(OK()) << row.name;
        const std::string bytes = Read(row.name);
        const auto* kind = SniffPicture(std::span(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size()));
        ASSERT_NE(kind, nullptr);
        EXPECT_STREQ(kind->type, row.written) << row.name;
    }
    Run(680, {"g.pdf", picture});
    EXPECT_FALSE(OK());
    EXPECT_FALSE(std::filesystem::exists(Path("g.pdf")));
}

TEST_F(Pictures, ConvertPicture_ReplacesThePictureOrLeavesIt) {
    Run(1002, {Encoded({"rb"}), ".gif"});
    EXPECT_TRUE(OK());
    EXPECT_STREQ(SniffPicture(After(1).picture()->representations()[0].bytes)->type, "image/gif");
    EXPECT_EQ(RowsOf(After(1)), Rows{"rb"});
    Run(1002, {PictureOf(kGif), ".png"});
    EXPECT_FALSE(OK());
    EXPECT_EQ(ShowAfter(1), "picture of 14");
    Rows noise(64, std::string(64, 'r'));
    for (int i = 0; i < 64 * 64; ++i) noise[size_t(i / 64)][size_t(i % 64)] = "rbwk"[i * 7919 % 31 % 4];
    Run(1002, {Encoded(noise), ".jpg", 0.1});
    const Value low = After(1);
    Run(1002, {Encoded(noise), ".jpg", 1});
    EXPECT_LT(low.picture()->byteCount(), After(1).picture()->byteCount());
    Run(1002, {});
    EXPECT_FALSE(OK());
}

// New pictures -----------------------------------------------------------------------------------------------------

TEST_F(Pictures, CreateThumbnail_Modes) {
    const Arg picture = Encoded({"rrrrbbbb", "rrrrbbbb", "rrrrbbbb", "rrrrbbbb"});
    static const struct {
        Args sizes;
        Rows rows;
    } rows[] = {{{4, 4, 2}, {"rrbb", "rrbb", "rrbb", "rrbb"}},
                {{4, 4, 5}, {"rrbb", "rrbb"}},
                {{4, 4, 6}, {"....", "rrbb", "rrbb", "...."}},
                {{4, 4}, {"....", "rrbb", "rrbb", "...."}},
                {{2, 1, 2, 8}, {"rb"}},
                {{16, 2, 2}, {"rrrrrrrrbbbbbbbb", "rrrrrrrrbbbbbbbb"}}};
    for (const auto& row : rows) {
        Args args = {picture, Value(Ref<Picture>())};
        args.insert(args.end(), row.sizes.begin(), row.sizes.end());
        Run(679, args);
        EXPECT_TRUE(OK());
        EXPECT_EQ(RowsOf(After(2)), row.rows);
    }
    Run(679, {picture, Value(Ref<Picture>())});
    EXPECT_EQ(RowsOf(After(2)).size(), 48u);
    for (int side : {0, -1, 100000, 2147483647}) {
        Run(679, {picture, PictureOf(kGif), side, 4});
        EXPECT_FALSE(OK()) << side;
        EXPECT_EQ(ShowAfter(2), "picture of 14");
    }
    Run(679, {PictureOf(kGif), Value(Ref<Picture>())});
    EXPECT_FALSE(OK());
    Run(679, {});
    EXPECT_FALSE(OK());
}

TEST_F(Pictures, CreateThumbnail_ClearPixels_GiveNoColour) {
    Run(679, {Encoded({"r.", ".."}), Value(Ref<Picture>()), 1, 1, 2});
    std::optional<Pixels> pixels = DecodePicture(*After(2).picture());
    EXPECT_EQ(pixels->rgba, (std::vector<uint8_t>{255, 0, 0, 64}));
}

TEST_F(Pictures, CombinePictures_Operators) {
    const Arg first = Encoded({"rr"}), second = Encoded({"b", "b"}), none = Value(Ref<Picture>());
    static const struct {
        Args rest;
        Rows rows;
    } rows[] = {{{1, {}}, {"rrb", "..b"}},     {{2, {}}, {"rr", "b.", "b."}},    {{3, {}}, {"br", "b."}},
                {{3, {}, 1, 0}, {"rb", ".b"}}, {{3, {}, -1, 0}, {"brr", "b.."}}, {{1, {}, 1}, {"rr.b", "...b"}},
                {{2, {}, 0, -1}, {"br", "b."}}};
    for (const auto& row : rows) {
        Args args = {none, first, row.rest[0], second};
        args.insert(args.end(), row.rest.begin() + 2, row.rest.end());
        Run(987, args);
        EXPECT_TRUE(OK());
        EXPECT_EQ(RowsOf(After(1)), row.rows);
    }
    const Args bad[] = {{none, first, 4, second},          {none, first, 0, second}, {none, none, 1, second},
                        {none, first, 1, second, 1000000}, {none, first, 1},         {}};
    for (const Args& args : bad) {
        Run(987, args);
        EXPECT_FALSE(OK());
    }
}

TEST_F(Pictures, TransformPicture_Operators) {
    const Arg picture = Encoded({"rb", "wk"});
    static const struct {
        Args rest;
        Rows rows;
    } rows[] = {{{0}, {"rb", "wk"}},
                {{1, 2, 1}, {"rrbb", "wwkk"}},
                {{1, 1, 2}, {"rb", "rb", "wk", "wk"}},
                {{2, 1, 1}, {"...", ".rb", ".wk"}},
                {{3}, {"br", "kw"}},
                {{4}, {"wk", "rb"}},
                {{100, 1, 0, 1, 2}, {"b", "k"}},
                {{100, -1, 1, 3, 1}, {".wk"}},
                {{101}, {"??", "wk"}},
                {{102, 0xFF0000}, {".b", "wk"}},
                {{102}, {"rb", ".k"}}};
    for (const auto& row : rows) {
        Args args = {picture};
        args.insert(args.end(), row.rest.begin(), row.rest.end());
        Run(988, args);
        EXPECT_TRUE(OK());
        EXPECT_EQ(RowsOf(After(1)), row.rows);
    }
    const Args bad[] = {{picture, 5},
                        {picture, 1, 0, 1},
                        {picture, 1, 1e300, 1},
                        {picture, 1, std::nan(""), 1},
                        {picture, 2, 1e9, 1},
                        {picture, 2, -2, 0},
                        {picture, 100, 0, 0, 0, 0},
                        {picture, 100, 1e300, 0, 1, 1},
                        {Value(Ref<Picture>()), 3},
                        {PictureOf(kGif), 3},
                        {}};
    for (const Args& args : bad) {
        Run(988, args);
        EXPECT_FALSE(OK());
    }
}

TEST_F(Pictures, TransformPicture_Resolution_IsKept) {
    Pixels pixels = Drawn({"rb"});
    pixels.dpiX = pixels.dpiY = 300;
    Run(988, {Value(NewPicture(EncodePicture(pixels, *FindPictureKind(".tif"), 1))), 3});
    EXPECT_EQ(DecodePicture(*After(1).picture())->dpiX, 300);
}

}  // namespace
}  // namespace zrhost::test
