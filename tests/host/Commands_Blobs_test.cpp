#include "tests/host/Commands_Test.h"

namespace zrhost::test {
namespace {

using Blobs = CommandTest;

TEST_F(Blobs, Numbers_ByteOrders_AreLaidOut) {
    static const struct {
        int id;
        Args args;
        const char* blob;
    } rows[] = {
        {548, {0x0102, Arg(), 1}, "<0102>"},
        {548, {0x0102, Arg(), 2}, "<0201>"},
        {548, {0x0102, Arg(), 0}, "<0201>"},
        {548, {-2, Hex("aabbcc"), 1}, "<fffe>"},
        {548, {1, Hex("aa"), 1, Star()}, "<aa0001>"},
        {548, {1, Hex("aabbcc"), 1, L(1)}, "<aa0001>"},
        {548, {1, Hex("aabbcc"), 1, L(3)}, "<aabbcc0001>"},
        {548, {1, Hex("aabbcc"), 1, L(4)}, "<aabbcc>"},
        {548, {1, Hex("aabbcc"), 1, L(-1)}, "<aabbcc>"},
        {550, {0x01020304, Arg(), 1}, "<01020304>"},
        {550, {0x01020304, Arg(), 2}, "<04030201>"},
        {552, {1.5, Arg(), 2}, "<3ff8000000000000>"},
        {552, {1.5, Arg(), 3}, "<000000000000f83f>"},
        {548, {"x", Arg(), 1}, "<0000>"},
    };
    for (const auto& row : rows) {
        Run(row.id, row.args);
        EXPECT_EQ(ShowAfter(2), row.blob) << &row - rows;
    }
    Run(548, {1, Hex("aabbcc"), 1, L(1)});
    EXPECT_EQ(ShowAfter(4), "3");
}

TEST_F(Blobs, NumbersBack_OffsetsMove_OutsideGivesZero) {
    static const Row rows[] = {
        {549, {Hex("fffe"), 1}, "-2"},
        {549, {Hex("aa0102"), 1, L(1)}, "258"},
        {549, {Hex("aa"), 1}, "0"},
        {551, {Hex("01020304"), 1}, "16909060"},
        {551, {Hex("01020304"), 1, L(1)}, "0"},
        {551, {Hex("01020304"), 1, L(-1)}, "0"},
        {553, {Hex("3ff8000000000000"), 2}, "1.5"},
        {553, {}, "0"},
        {549, {}, "0"},
    };
    EXPECT_ROWS(rows);
    Run(549, {Hex("aa0102"), 1, L(1)});
    EXPECT_EQ(ShowAfter(3), "3");
    Run(549, {Hex("aa0102"), 1, L(2)});
    EXPECT_EQ(ShowAfter(3), "2");
    EXPECT_FALSE(OK());
    Run(552, {1.5, Arg(), 1});
    EXPECT_EQ(error, ZR_ERR_UNKNOWN_COMMAND);
}

TEST_F(Blobs, Texts_EveryFormat_RoundTrips) {
    static const char* const blobs[] = {"<436166e900>",   "<04436166e9>",         "<0004436166e9>", "<436166e9>",
                                        "<436166c3a900>", "<00000005436166c3a9>", "<436166c3a9>"};
    for (int format = 0; format <= 6; ++format) {
        Run(554, {"Café", Arg(), format});
        std::string expected = blobs[format];
        if (format < 4) expected.replace(expected.find("e9"), 2, "8e");  // é of the Mac charset
        EXPECT_EQ(ShowAfter(2), expected) << format;
        const Value blob = After(2);
        EXPECT_EQ(Text(555, {blob, format, L(0), L(4 + (format > 3))}), "\"Café\"") << format;
        EXPECT_EQ(After(3).integer(), int(blob.blob().size())) << format;
    }
}

TEST_F(Blobs, TextsBack_Damaged_AreRefused) {
    static const Row rows[] = {
        {555, {Hex("05414243"), 1}, "\"\""},
        {555, {Hex("00"), 2}, "\"\""},
        {555, {Hex("ffffffff41"), 5}, "\"\""},
        {555, {Hex("414243"), 0}, "\"ABC\""},
        {555, {Hex("414243"), 3, L(1), 1}, "\"B\""},
        {555, {Hex("414243"), 3, L(1), 3}, "\"\""},
        {555, {Hex("414243"), 3, L(9)}, "\"\""},
        {555, {Hex("414243"), 7}, "\"\""},
        {555, {Hex("414243"), -1}, "\"\""},
        {555, {}, "\"\""},
        {555, {"x", 3}, "\"\""},
    };
    EXPECT_ROWS(rows);
    Run(554, {"x", Hex("aa"), 9});
    EXPECT_FALSE(OK());
    EXPECT_EQ(ShowAfter(2), "<aa>");
    Run(554, {std::string(300, 'x'), Arg(), 1});
    EXPECT_EQ(After(2).blob().size(), 256u);  // a Pascal string holds 255
}

TEST_F(Blobs, Bytes_InsertDeleteCopySize_AsDocumented) {
    static const struct {
        int id;
        Args args;
        size_t blob;
        const char* expected;
    } rows[] = {
        {559, {Hex("aabb"), 1, 2, 0x20}, 1, "<aa2020bb>"},
        {559, {Hex("aabb"), 2, 1}, 1, "<aabb00>"},
        {559, {Hex("aabb"), 3, 1}, 1, "<aabb>"},
        {559, {Hex("aabb"), 0, -1}, 1, "<aabb>"},
        {559, {Hex("aabb"), 0, 2147483647.0}, 1, "<aabb>"},
        {560, {Hex("aabbcc"), 1, 1}, 1, "<aacc>"},
        {560, {Hex("aabbcc"), 1, 99}, 1, "<aa>"},
        {560, {Hex("aabbcc"), 4, 1}, 1, "<aabbcc>"},
        {560, {Hex("aabbcc"), -1, 1}, 1, "<aabbcc>"},
        {558, {Hex("010203"), Hex("aabb"), L(1), L(1), 2}, 2, "<aa0203>"},
        {558, {Hex("010203"), Hex("aabb"), L(1), L(3), 2}, 2, "<aabb>"},
        {558, {Hex("010203"), Hex("aabb"), L(1), L(0), 9}, 2, "<aabb>"},
        {606, {Hex("aabb"), 4}, 1, "<aabb0000>"},
        {606, {Hex("aabb"), 4, 1}, 1, "<aabb0101>"},
        {606, {Hex("aabb"), 0}, 1, "<>"},
        {606, {Hex("aabb"), -1}, 1, "<aabb>"},
    };
    for (const auto& row : rows) {
        Run(row.id, row.args);
        EXPECT_EQ(ShowAfter(row.blob), row.expected) << &row - rows;
    }
    Run(558, {Hex("010203"), Hex("aabb"), L(1), L(1), 2});
    EXPECT_EQ(ShowAfter(3), "3");
    EXPECT_EQ(ShowAfter(4), "3");
    EXPECT_EQ(Text(605, {Hex("aabb")}), "2");
    EXPECT_EQ(Text(605, {"text"}), "0");
}

TEST_F(Blobs, Variables_EveryKind_RoundTrip) {
    const Arg values[] = {1.5,
                          L(-7),
                          H(3661),
                          D(2024, 2, 29),
                          true,
                          "téxt",
                          "",
                          Hex("00ff"),
                          Reals({1, 2}),
                          Texts({"a", ""}),
                          Booleans({true, false}),
                          Longints({}),
                          Dates({{1, 2, 2024}}),
                          Json(R"({"a":[1,null]})"),
                          Json("[1,2]")};
    for (const Arg& value : values) {
        Run(532, {value, Arg()});
        EXPECT_TRUE(OK()) << Show(value.value);
        const Value blob = After(2);
        Run(533, {blob, Arg(), L(0)});
        EXPECT_TRUE(OK()) << Show(value.value);
        EXPECT_EQ(ShowAfter(2), Show(value.value));
        EXPECT_EQ(After(2).kind(), value.value.kind());
        EXPECT_EQ(After(3).integer(), int(blob.blob().size()));
    }
}

TEST_F(Blobs, Variables_SavedAndLoaded_ComeBackInOrder) {
    Run(75, {"vars", 1.5, "two", Longints({3, 4})});
    EXPECT_TRUE(OK());
    EXPECT_EQ(ToUtf8(host->document()), Path("vars"));
    Run(74, {"vars", 0, "", Arg()});
    EXPECT_TRUE(OK());
    EXPECT_EQ(ShowAfter(2), "1.5");
    EXPECT_EQ(ShowAfter(3), "\"two\"");
    EXPECT_EQ(ShowAfter(4), "[3, 4]");
    Run(74, {"vars", "no number", ""});
    EXPECT_FALSE(OK());
    Run(74, {"vars", 0, "", Arg(), Arg()});
    EXPECT_FALSE(OK()) << "more than were saved";
    for (const Args& wrong : {Args{}, Args{"missing", 0}, Args{"", 0}}) {
        Run(74, wrong);
        EXPECT_FALSE(OK());
    }
    Run(75, {"", 1});
    EXPECT_FALSE(OK());
}

TEST_F(Blobs, Variables_Appended_AreReadOneAfterTheOther) {
    Run(532, {1.5, Arg()});
    Run(532, {"two", After(2), Star()});
    const Value both = After(2);
    Run(533, {both, Arg(), L(0)});
    const int second = After(3).integer();
    Run(533, {both, Arg(), L(second)});
    EXPECT_EQ(ShowAfter(2), "\"two\"");
    Run(533, {both, D(2024, 1, 1), L(0)});  // a real does not fit into a date
    EXPECT_FALSE(OK());
    EXPECT_EQ(ShowAfter(2), "2024-01-01");
}

TEST_F(Blobs, Variables_EveryCutAndFlip_IsRefusedOrRead) {
    Run(532, {Texts({"alpha", "beta"}), Arg()});
    const Value::Bytes good = After(2).blob();
    for (size_t length = 0; length < good.size(); ++length) {
        Run(533, {Value(Value::Bytes(good.begin(), good.begin() + long(length))), Arg()});
        EXPECT_FALSE(OK()) << length;
    }
    for (size_t at = 0; at < good.size(); ++at)
        for (uint8_t byte : {0x00, 0x7F, 0xFF}) {
            Value::Bytes bad = good;
            bad[at] = byte;
            Run(533, {Value(bad), Arg()});
        }
    Run(533, {Hex("7a7256520122ffffffff"), Arg()});  // an absurd count
    EXPECT_FALSE(OK());
    Run(533, {Hex("7a72565201"
                  "0d01000000"
                  "0d01000000"
                  "0d01000000"
                  "0d01000000"
                  "0d01000000"),
              Arg()});
    EXPECT_FALSE(OK());
}

TEST_F(Blobs, Compression_EveryMode_RoundTrips) {
    const Value blob(Value::Bytes(100000, 'x'));
    for (int mode : {1, 2, -1, -2}) {
        Run(534, {blob, mode});
        EXPECT_TRUE(OK()) << mode;
        const Value packed = After(1);
        EXPECT_LT(packed.blob().size(), 2000u) << mode;
        Run(536, {packed, L(9), L(0), L(0)});
        EXPECT_EQ(After(2).integer(), mode);
        EXPECT_EQ(ShowAfter(3), "100000");
        EXPECT_EQ(After(4).integer(), int(packed.blob().size()));
        Run(534, {packed, mode});
        EXPECT_FALSE(OK()) << "compressed twice";
        Run(535, {packed});
        EXPECT_TRUE(OK()) << mode;
        EXPECT_EQ(After(1).blob(), blob.blob());
    }
}

TEST_F(Blobs, Compression_SmallPlainAndDamaged_StayAsTheyAre) {
    Run(534, {Value(Value::Bytes(254, 'x'))});
    EXPECT_FALSE(OK());
    EXPECT_EQ(After(1).blob().size(), 254u);
    Run(534, {Value(Value::Bytes(255, 'x'))});
    EXPECT_TRUE(OK());
    Run(534, {Value(Value::Bytes(300, 'x')), 7});
    EXPECT_FALSE(OK());
    Run(535, {Hex("aabb")});
    EXPECT_FALSE(OK());
    EXPECT_EQ(ShowAfter(1), "<aabb>");
    Run(536, {Hex("aabb"), L(9), L(9), L(9)});
    EXPECT_EQ(ShowAfter(2), "0");
    EXPECT_EQ(ShowAfter(3), "2");
    Run(534, {Value(Value::Bytes(1000, 'x'))});
    const Value::Bytes good = After(1).blob();
    for (size_t at = 0; at < good.size(); ++at) {
        Value::Bytes bad = good;
        bad[at] ^= 0x55;
        Run(535, {Value(bad)});
        Value::Bytes cut(good.begin(), good.begin() + long(at));
        Run(535, {Value(cut)});
        EXPECT_FALSE(OK());
        EXPECT_EQ(After(1).blob(), cut);
    }
    Run(534, {"text"});
    EXPECT_FALSE(OK());
}

TEST_F(Blobs, Compression_Interrupted_EndsNotOK) {
    interrupt = true;
    Run(534, {Value(Value::Bytes(1000, 'x'))});
    EXPECT_FALSE(OK());
    EXPECT_EQ(After(1).blob().size(), 1000u);
}

TEST_F(Blobs, Base64_TextsBlobsAndUrls_RoundTrip) {
    Run(895, {"Ma"});
    EXPECT_EQ(ShowAfter(1), "\"TWE=\"");
    Run(895, {Hex("fbff"), ""});
    EXPECT_EQ(ShowAfter(2), "\"+/8=\"");
    Run(895, {Hex("fbff"), "", Star()});
    EXPECT_EQ(ShowAfter(2), "\"-_8\"");
    Run(895, {Hex("fbff")});
    EXPECT_EQ(ShowAfter(1), "<2b2f383d>");
    Run(896, {"-_8", Arg(), Star()});
    EXPECT_EQ(ShowAfter(2), "<fbff>");
    Run(896, {"TWE=", ""});
    EXPECT_EQ(ShowAfter(2), "\"Ma\"");
    Run(896, {"!!", Hex("aa")});
    EXPECT_FALSE(OK());
    EXPECT_EQ(ShowAfter(2), "<aa>");
}

}  // namespace
}  // namespace zrhost::test
