#include "graphics/ZR_API_Font.h"

#include <cmath>
#include <set>

#include "platform/CoreText/CoreText.h"
#include "tests/graphics/TextSupport.h"

namespace {

class Font : public DrawingTest {
  protected:
    static std::string PostScriptName(ZR_Font* font) {
        font->CreateCTFont();
        CFStringRef name = CTFontCopyPostScriptName(font->ctFont);
        char bytes[100] = "";
        CFStringGetCString(name, bytes, sizeof bytes, kCFStringEncodingUTF8);
        CFRelease(name);
        return bytes;
    }
};

std::u16string NameOf(const ZR_Font& font) {
    return {reinterpret_cast<const char16_t*>(font.name.Units()), static_cast<size_t>(font.name.count)};
}

}  // namespace

TEST_F(Font, Create_Overloads_FillTheFields) {
    ZR_Font font;
    font.Create();
    EXPECT_EQ(font.size, 0);
    EXPECT_EQ(font.name.count, 0);
    font.Create(9.5f, 3, "Courier New");
    EXPECT_EQ(font.size, 9.5f);
    EXPECT_EQ(font.style, 3);
    EXPECT_EQ(NameOf(font), u"Courier New");
    EXPECT_EQ(font.ctFont, nullptr) << "made on demand";
    EXPECT_EQ(font.nsFont, nullptr);
    EXPECT_EQ(font.height, 0);
    font.Dispose();
    font.Create(12, 0, reinterpret_cast<const unsigned char*>("G\xE9neva"));
    EXPECT_EQ(NameOf(font), u"G\u00E9neva");
    font.Dispose();
    TestText name("Times");
    font.Create(12, 0, &name.text);
    EXPECT_EQ(NameOf(font), u"Times");
    font.Dispose();
    EXPECT_EQ(font.size, 0);
    EXPECT_EQ(font.name.count, 0);
}

TEST_F(Font, Create_NullName_IsArial) {
    ZR_Font font;
    font.Create(12, 0, static_cast<const ZR_Text*>(nullptr));
    EXPECT_EQ(NameOf(font), u"Arial");
    font.Dispose();
    font.Create(12, 0, static_cast<const char*>(nullptr));
    EXPECT_EQ(NameOf(font), u"Arial");
    font.Dispose();
    font.Create(12, 0, static_cast<const unsigned char*>(nullptr));
    EXPECT_EQ(NameOf(font), u"Arial");
    font.Dispose();
}

TEST_F(Font, CreateFromFont_CopiesMetricsButNoPlatformFonts) {
    TestFont font(20, 5);
    font->GetHeight();
    font->GetAscent();
    font->GetDescent();
    font->lineSpacing = 7;
    ZR_Font copy;
    copy.Create(&font.font);
    EXPECT_EQ(copy.size, 20);
    EXPECT_EQ(copy.style, 5);
    EXPECT_EQ(NameOf(copy), u"Arial");
    EXPECT_EQ(copy.height, font->height);
    EXPECT_GT(copy.ascent, 0);
    EXPECT_EQ(copy.descent, font->descent);
    EXPECT_EQ(copy.GetLineSpacing(), 7) << "a field that is not 0 is answered";
    EXPECT_EQ(copy.ctFont, nullptr);
    EXPECT_EQ(copy.nsFont, nullptr);
    copy.Dispose();
    copy.Create(static_cast<const ZR_Font*>(nullptr));
    EXPECT_EQ(copy.size, 0);
    copy.Dispose();
}

TEST_F(Font, Setters_ForgetMetricsAndPlatformFonts) {
    TestText name("Courier New");
    for (int setter = 0; setter < 3; ++setter) {
        TestFont font(20);
        font->GetHeight();
        font->GetAscent();
        font->GetDescent();
        font->NSFontCreate();
        font->lineSpacing = 3;
        ASSERT_NE(font->ctFont, nullptr);
        ASSERT_NE(font->nsFont, nullptr);
        if (setter == 0) font->SetSize(10);
        if (setter == 1) font->SetStyle(kZRBold);
        if (setter == 2) font->SetFontname(name);
        EXPECT_EQ(font->ctFont, nullptr) << setter;
        EXPECT_EQ(font->nsFont, nullptr) << setter;
        EXPECT_EQ(font->height + font->ascent + font->descent + font->lineSpacing, 0) << setter;
    }
    TestFont font;
    font->SetFontname(&font->name);
    EXPECT_EQ(NameOf(font.font), u"Arial");
    font->SetFontname(nullptr);
    EXPECT_EQ(font->name.count, 0);
}

TEST_F(Font, Metrics_AreThoseOfTheFontAndKept) {
    TestFont font(12);
    EXPECT_FLOAT_EQ(font->GetHeight(), 12 * (kArialAscent + kArialDescent));
    EXPECT_FLOAT_EQ(font->GetAscent(), 12 * kArialAscent);
    EXPECT_FLOAT_EQ(font->GetDescent(), 12 * kArialDescent);
    EXPECT_FLOAT_EQ(font->GetLineSpacing(), 12 * kArialGap);
    EXPECT_EQ(font->lineSpacing, 0) << "the line spacing is not kept";
    font->height = 1;
    font->ascent = 2;
    font->descent = 3;
    EXPECT_EQ(font->GetHeight(), 1);
    EXPECT_EQ(font->GetAscent(), 2);
    EXPECT_EQ(font->GetDescent(), 3);
}

TEST_F(Font, CreateCTFont_Styles_ChooseTheFace) {
    static const struct {
        const char* name;
        short style;
        const char* face;
    } rows[] = {
        {"Arial", 0, "LiberationSans"},
        {"Arial", kZRBold, "LiberationSans-Bold"},
        {"Arial", kZRItalic, "LiberationSans-Italic"},
        {"Arial", kZRBold | kZRItalic, "LiberationSans-BoldItalic"},
        {"Arial", kZRUnderline | kZRStrikethrough, "LiberationSans"},
        {"Courier New", kZRBold | kZRUnderline, "LiberationMono-Bold"},
        {"", 0, "LiberationSans"},
        {"No Such Font", kZRItalic, "LiberationSans-Italic"},
    };
    for (auto& row : rows) {
        TestFont font(12, row.style, row.name);
        EXPECT_EQ(PostScriptName(font), row.face) << row.name << row.style;
    }
}

TEST_F(Font, CreateCTFont_FamilyWithoutTheFace_KeepsThePlainOne) {
    TestFont plain(12, 0, "DejaVu Math TeX Gyre");
    if (PostScriptName(plain) != "DejaVuMathTeXGyre-Regular") GTEST_SKIP() << "not installed";
    TestFont bold(12, kZRBold | kZRItalic, "DejaVu Math TeX Gyre");
    EXPECT_EQ(PostScriptName(bold), "DejaVuMathTeXGyre-Regular");
}

TEST_F(Font, NSFontCreate_IsTheSameFace) {
    TestFont font(12, kZRBold | kZRItalic);
    font->NSFontCreate();
    CFStringRef name = CTFontCopyPostScriptName(reinterpret_cast<const CTFont*>(font->nsFont));
    char bytes[100] = "";
    CFStringGetCString(name, bytes, sizeof bytes, kCFStringEncodingUTF8);
    EXPECT_STREQ(bytes, "LiberationSans-BoldItalic");
    CFRelease(name);
    font->NSFontDispose();
    EXPECT_EQ(font->nsFont, nullptr);
    font->NSFontDispose();
}

TEST_F(Font, GetTextWidth_KnownTexts) {
    static const struct {
        const char *font, *text;
        float size;
        short style;
        double width;
    } rows[] = {
        {"Arial", "", 12, 0, 0},
        {"Arial", "iii", 12, 0, 3 * 455.0 / 2048 * 12},
        {"Arial", "iii", 12, kZRUnderline | kZRStrikethrough, 3 * 455.0 / 2048 * 12},
        {"Arial", "i i ", 12, 0, 2 * (455.0 + 569) / 2048 * 12},
        {"Arial", "AVATAR To We", 12, 0, 81.357},
        {"Courier New", "Hello", 10, 0, 5 * 1229.0 / 2048 * 10},
        {"Courier New", "Hello", 10, kZRBold, 5 * 1229.0 / 2048 * 10},
        {"Arial", "i", 0, 0, 455.0 / 2048 * 12},
    };
    for (auto& row : rows) {
        TestFont font(row.size, row.style, row.font);
        EXPECT_NEAR(font.Width(row.text), row.width, 0.01) << row.text;
    }
    TestFont font;
    EXPECT_EQ(font->GetTextWidth(nullptr), 0);
}

TEST_F(Font, SizesThatAreNone_HaveNoMeasures) {
    for (float size : {-1.0f, -1e30f, NAN, INFINITY, -INFINITY}) {
        TestFont font(size);
        EXPECT_EQ(font.Width("abc"), 0) << size;
        EXPECT_EQ(font->GetHeight(), 0) << size;
        EXPECT_EQ(font->GetAscent(), 0);
        EXPECT_EQ(font->GetDescent(), 0);
        EXPECT_EQ(font->GetLineSpacing(), 0);
        EXPECT_EQ(font->ctFont, nullptr);
        font->NSFontCreate();
        EXPECT_EQ(font->nsFont, nullptr);
    }
    TestFont huge(1e9f), tiny(1e-9f);
    EXPECT_NEAR(huge.Width("i") / (455.0 / 2048 * 1e9), 1, 1e-3);
    EXPECT_NEAR(tiny.Width("i") / (455.0 / 2048 * 1e-9), 1, 1e-3);
}

TEST_F(Font, GetTextWidth_TenMegabytes_IsTheSum) {
    ZR_Text text;
    text.Create();
    text.SetLength(5 << 20);
    for (long i = 0; i < text.count; ++i) text.Units()[i] = 'n';
    TestFont font;
    EXPECT_NEAR(font->GetTextWidth(&text) / (static_cast<double>(font.Width("n")) * (5 << 20)), 1, 1e-4);
    text.Dispose();
}

TEST_F(Font, GetFontList_EachFamilyOnce) {
    TestLines list;
    list.array.Append("before");
    ZR_GetFontList(list);
    auto all = list.All();
    std::set<std::u16string> once(all.begin(), all.end());
    EXPECT_EQ(once.size(), all.size());
    EXPECT_TRUE(once.contains(u"Liberation Sans"));
    EXPECT_TRUE(once.contains(u"DejaVu Sans"));
    EXPECT_FALSE(once.contains(u"before"));
}

TEST_F(Font, TextFrame_KeepsTheTextAndNoRecords) {
    TestFont font(12, kZRBold | kZRItalic | kZRUnderline);
    TestText text("abc");
    ZR_TextFrame frame;
    frame.Create(text, font, 100);
    EXPECT_EQ(frame.records.count, 0);
    EXPECT_EQ(frame.records.growStep, 100);
    EXPECT_EQ(frame.length, 3);
    EXPECT_TRUE(frame.text.Equal(&text.text));
    frame.Dispose();
    EXPECT_EQ(frame.length, 0);
    TestText empty("");
    frame.Create(empty, font, 100);
    EXPECT_EQ(frame.length, 0);
    frame.Dispose();
    frame.Create(nullptr, font, 100);
    frame.Dispose();
}

TEST_F(Font, TextFrame_LongText_IsBoundedInTime) {
    TestFont font;
    ZR_Text text;
    text.Create();
    text.SetLength(200000);
    for (long i = 0; i < text.count; ++i) text.Units()[i] = 'x';
    ZR_TextFrame frame;
    frame.Create(&text, font, 100);
    EXPECT_EQ(frame.length, 200000);
    frame.Dispose();
    text.Dispose();
}
