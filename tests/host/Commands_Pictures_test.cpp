#include "tests/host/Commands_Test.h"

namespace zrhost::test {
namespace {

using Pictures = CommandTest;

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

}  // namespace
}  // namespace zrhost::test
