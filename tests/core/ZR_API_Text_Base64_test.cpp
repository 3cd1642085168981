#include "tests/core/FakeHost.h"

namespace {

std::u16string Encoded(const std::string& bytes) {
    ZR_Handle source = MakeBytes(bytes);
    ZR_Text text;
    text.Create();
    text.Encode(&source);
    std::u16string units = Units(text);
    text.Dispose();
    source.Dispose();
    return units;
}

std::string Decoded(const std::u16string& units) {
    ZR_Text text = MakeText(units);
    ZR_Handle bytes = MakeBytes("old");
    text.Decode(&bytes);
    EXPECT_EQ(bytes.elementSize, 1);
    EXPECT_EQ(bytes.growStep, text.count);
    std::string out = Bytes(bytes);
    bytes.Dispose();
    text.Dispose();
    return out;
}

}  // namespace

TEST(TextBase64, Encode_Bytes_FourCharactersAGroup) {
    static const struct {
        std::string bytes;
        std::u16string text;
    } rows[] = {
        {"", u""},
        {"M", u"TQ=="},
        {"Ma", u"TWE="},
        {"Man", u"TWFu"},
        {"Many", u"TWFueQ=="},
        {std::string("\0\0\0", 3), u"AAAA"},
        {"\xFB\xFF\xBF", u"+/+/"},
        {"\xFF\xFF\xFF\xFF", u"/////w=="},
    };
    for (const auto& row : rows) {
        MemoryCheck check;
        EXPECT_EQ(Encoded(row.bytes), row.text);
        EXPECT_EQ(Decoded(row.text), row.bytes);
    }
    EXPECT_STREQ(base64_chars, "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/");
}

TEST(TextBase64, Encode_LivingText_AppendsAndSetsGrowStep) {
    ZR_Handle bytes = MakeBytes("1234567890"), empty = MakeBytes("");
    ZR_Text text = MakeText(u"<");
    text.Encode(&bytes);
    EXPECT_EQ(Units(text), u"<MTIzNDU2Nzg5MA==");
    EXPECT_EQ(text.growStep, 14);  // 1.4 a byte
    text.Encode(&empty);           // Required: also for nothing
    EXPECT_EQ(text.growStep, 0);
    text.Encode(nullptr);
    EXPECT_EQ(text.count, 17);
    text.Encode(&text);  // its own bytes, as many as it has units
    EXPECT_EQ(Units(text), u"<MTIzNDU2Nzg5MA==PABNAFQASQB6AE4ARABVADI=");
    text.Dispose();
    empty.Dispose();
    bytes.Dispose();
}

TEST(TextBase64, Encode_ElementsOfSeveralBytes_TakesCountBytes) {
    ZR_Handle shorts;
    shorts.Create(2, 3);
    memcpy(shorts.data, "abcdef", 6);
    ZR_Text text;
    text.Create();
    text.Encode(&shorts);
    EXPECT_EQ(Units(text), u"YWJj");
    text.Dispose();
    shorts.Dispose();
}

TEST(TextBase64, Decode_OtherCharacters_EndIt) {
    std::u16string line(76, u'A');
    static const struct {
        std::u16string text;
        std::string bytes;
    } rows[] = {
        {u"TWFu TWFu", "Man"},       // Required: a blank ends it, it is not skipped
        {u"TWFu\nTWFu", "Man"},      //
        {u"TWE=TWFu", "Ma"},         // and so does "="
        {u"T", ""},                  // one character alone is no byte
        {u"TW", "M"},                // zero-filled
        {u"TWE", "Ma"},              //
        {u"TWFuT", "Man"},           //
        {u"TW\u0100u", "M"},         // a wide unit counts as a blank
        {u"TW-_", "M"},              // another alphabet
        {u"TWFu\u0000TWFu", "Man"},  //
        {u"=", ""},
        {u"\u00C4", ""},
    };
    for (const auto& row : rows) EXPECT_EQ(Decoded(row.text), row.bytes);
    EXPECT_EQ(Decoded(std::u16string(u"TWFu\0TWFu", 9)), "Man");
    EXPECT_EQ(Decoded(line + u"\n" + line), std::string(57, '\0'));  // only the first line
    EXPECT_EQ(Decoded(line + u"\r\n" + line).size(), 57u);
}

TEST(TextBase64, Decode_CStringStays) {
    ZR_Text text = MakeText(u"TWE=\u0100");
    ZR_Handle bytes = MakeBytes("");
    text.Decode(&bytes);
    ASSERT_NE(text.cString, nullptr);
    EXPECT_STREQ(text.cString, "TWE= ");
    text.Decode(nullptr);
    bytes.Dispose();
    text.Dispose();
}

TEST(TextBase64, RoundTrip_EveryLengthAndByte) {
    std::string bytes;
    for (int i = 0; i < 4000; ++i) bytes += static_cast<char>(i * 7 + i / 256);
    for (size_t n : {0, 1, 2, 3, 255, 256, 3071, 3072, 3073, 4000}) {
        std::u16string text = Encoded(bytes.substr(0, n));
        EXPECT_EQ(text.size(), (n + 2) / 3 * 4);
        EXPECT_EQ(Decoded(text), bytes.substr(0, n));
    }
}
