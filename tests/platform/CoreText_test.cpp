#include "platform/CoreText/CoreText.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <fstream>
#include <thread>

#include "tests/platform/GraphicsSupport.h"

namespace {

std::string String(Owned<CFStringRef> string) {
    char bytes[256] = "";
    return CFStringGetCString(string, bytes, sizeof bytes, kCFStringEncodingUTF8) ? bytes : "(null)";
}

Owned<CFTypeRef> OwnedType(CFTypeRef object) { return object; }

Owned<CFTypeRef> Font(const char* name = "Arial", double size = 12) {
    return CTFontCreateWithName(Text(name), size, nullptr);
}
CTFontRef AsFont(CFTypeRef font) { return static_cast<CTFontRef>(font); }

Owned<CFStringRef> Units(const std::u16string& units) {
    return CFStringCreateWithCharacters(nullptr, reinterpret_cast<const UniChar*>(units.data()),
                                        static_cast<CFIndex>(units.size()));
}

struct Looks {
    const char* font = "Arial";
    double size = 12;
    CTTextAlignment alignment = kCTTextAlignmentNatural;
    CTLineBreakMode breaking = kCTLineBreakByWordWrapping;
    double spacing = 0;
    double kern = NAN;  // NAN = not told
    int underline = 0;
    CGColorRef color = nullptr;  // handed over
};

void Set(CFMutableAttributedStringRef string, CFRange range, const Looks& looks) {
    CFAttributedStringSetAttribute(string, range, kCTFontAttributeName, Font(looks.font, looks.size));
    CTParagraphStyleSetting settings[] = {
        {kCTParagraphStyleSpecifierAlignment, sizeof looks.alignment, &looks.alignment},
        {kCTParagraphStyleSpecifierLineBreakMode, sizeof looks.breaking, &looks.breaking},
        {kCTParagraphStyleSpecifierLineSpacingAdjustment, sizeof looks.spacing, &looks.spacing}};
    CFAttributedStringSetAttribute(string, range, kCTParagraphStyleAttributeName,
                                   OwnedType(CTParagraphStyleCreate(settings, 3)));
    if (!std::isnan(looks.kern))
        CFAttributedStringSetAttribute(string, range, kCTKernAttributeName, Number(looks.kern));
    CFAttributedStringSetAttribute(string, range, kCTUnderlineStyleAttributeName, Number(looks.underline));
    if (looks.color)
        CFAttributedStringSetAttribute(string, range, kCTForegroundColorAttributeName, Owned<CGColorRef>(looks.color));
}

Owned<CFMutableAttributedStringRef> Attributed(const std::u16string& units, const Looks& looks = {}) {
    Owned<CFMutableAttributedStringRef> string = CFAttributedStringCreateMutable(nullptr, 0);
    CFAttributedStringReplaceString(string, CFRangeMake(0, 0), Units(units));
    Set(string, CFRangeMake(0, static_cast<CFIndex>(units.size())), looks);
    return string;
}

struct Line {
    explicit Line(CFAttributedStringRef string) : line(CTLineCreateWithAttributedString(string)) {}
    Line(const std::u16string& units, const Looks& looks = {}) : Line(Attributed(units, looks)) {}
    operator CTLineRef() const { return static_cast<CTLineRef>(line.get()); }
    double Width() const { return CTLineGetTypographicBounds(*this, nullptr, nullptr, nullptr); }
    Owned<CFTypeRef> line;
};

double Width(const std::u16string& units, const Looks& looks = {}) { return Line(units, looks).Width(); }

struct Frame {
    Frame(CFAttributedStringRef string, CGRect box) {
        setter = CTFramesetterCreateWithAttributedString(string);
        Owned<CGPathRef> path = CGPathCreateWithRect(box, nullptr);
        frame = CTFramesetterCreateFrame(Setter(), CFRangeMake(0, 0), path, nullptr);
        origins.resize(static_cast<size_t>(Count()));
        CTFrameGetLineOrigins(*this, CFRangeMake(0, 0), origins.data());
    }
    Frame(const std::u16string& units, double width, double height, const Looks& looks = {})
        : Frame(Attributed(units, looks), CGRectMake(0, 0, width, height)) {}
    operator CTFrameRef() const { return static_cast<CTFrameRef>(frame.get()); }
    CTFramesetterRef Setter() const { return static_cast<CTFramesetterRef>(setter.get()); }
    CFIndex Count() const { return CFArrayGetCount(CTFrameGetLines(*this)); }
    CTLineRef LineAt(CFIndex i) const {
        return static_cast<CTLineRef>(CFArrayGetValueAtIndex(CTFrameGetLines(*this), i));
    }
    double WidthAt(CFIndex i) const { return CTLineGetTypographicBounds(LineAt(i), nullptr, nullptr, nullptr); }
    CFRange RangeAt(CFIndex i) const { return CTLineGetStringRange(LineAt(i)); }
    std::vector<std::u16string> Lines(const std::u16string& units) const {
        std::vector<std::u16string> lines;
        for (CFIndex i = 0; i < Count(); ++i) {
            CFRange range = RangeAt(i);
            lines.push_back(units.substr(static_cast<size_t>(range.location), static_cast<size_t>(range.length)));
        }
        return lines;
    }
    Owned<CFTypeRef> setter, frame;
    std::vector<CGPoint> origins;
};

struct Extent {
    int left = 1 << 20, bottom = 1 << 20, right = -1, top = -1;  // y up, inclusive
    bool Empty() const { return right < 0; }
};
Extent InkOf(Bitmap& bitmap, int alpha = 127) {
    Extent ink;
    auto bytes = bitmap.Pixels();
    for (int row = 0; row < bitmap.height; ++row)
        for (int x = 0; x < bitmap.width; ++x) {
            if (bytes[static_cast<size_t>((row * bitmap.width + x) * 4 + 3)] <= alpha) continue;
            int y = bitmap.height - 1 - row;
            ink.left = std::min(ink.left, x);
            ink.right = std::max(ink.right, x);
            ink.bottom = std::min(ink.bottom, y);
            ink.top = std::max(ink.top, y);
        }
    return ink;
}

const std::u16string kPangram = u"The quick brown fox jumps over the lazy dog. ";

std::u16string Repeated(const std::u16string& text, int n) {
    std::u16string all;
    for (int i = 0; i < n; ++i) all += text;
    return all;
}

}  // namespace

// Fonts ------------------------------------------------------------------------------------------------------------

TEST(CTFont, CreateWithName_PostScriptFullFamilyAndAlias_AreFound) {
    static const struct {
        const char *name, *family, *postScript;
    } rows[] = {
        {"LiberationSans-Bold", "Liberation Sans", "LiberationSans-Bold"},
        {"Liberation Sans Italic", "Liberation Sans", "LiberationSans-Italic"},
        {"Liberation Serif", "Liberation Serif", "LiberationSerif"},
        {"liberation mono", "Liberation Mono", "LiberationMono"},
        {"DejaVu Sans", "DejaVu Sans", "DejaVuSans"},
        {"Arial", "Arial", "LiberationSans"},
        {"ArialMT", "Arial", "LiberationSans"},
        {"Arial-BoldMT", "Arial", "LiberationSans-Bold"},
        {"Arial-BoldItalicMT", "Arial", "LiberationSans-BoldItalic"},
        {"Arial Bold", "Arial", "LiberationSans-Bold"},
        {"Helvetica", "Helvetica", "LiberationSans"},
        {"Times New Roman", "Times New Roman", "LiberationSerif"},
        {"Courier New", "Courier New", "LiberationMono"},
        {"Lucida Grande", "Lucida Grande", "DejaVuSans"},
        {"No Such Font", "Arial", "LiberationSans"},
        {"", "Arial", "LiberationSans"},
    };
    for (auto& row : rows) {
        auto font = Font(row.name);
        EXPECT_EQ(String(CTFontCopyFamilyName(AsFont(font))), row.family) << row.name;
        EXPECT_EQ(String(CTFontCopyPostScriptName(AsFont(font))), row.postScript) << row.name;
    }
}

TEST(CTFont, CreateWithName_SizesThatAreNone_AreNullAndZeroIsTwelve) {
    static const struct {
        double size, expected;  // expected 0 = null
    } rows[] = {{0, 12}, {1e-6, 1e-6}, {9.5, 9.5}, {1e9, 1e9}, {-1, 0}, {-1e30, 0}, {INFINITY, 0}, {NAN, 0}};
    for (auto& row : rows) {
        auto font = Font("Arial", row.size);
        EXPECT_EQ(CTFontGetSize(AsFont(font)), row.expected) << row.size;
        EXPECT_EQ(font.get() == nullptr, row.expected == 0) << row.size;
    }
    EXPECT_EQ(CTFontCreateWithName(nullptr, 12, nullptr), nullptr);
}

TEST(CTFont, Metrics_AreNotRounded) {
    auto font = Font("Arial", 12);
    EXPECT_DOUBLE_EQ(CTFontGetAscent(AsFont(font)), 1854.0 / 2048 * 12);
    EXPECT_DOUBLE_EQ(CTFontGetDescent(AsFont(font)), 434.0 / 2048 * 12);
    EXPECT_DOUBLE_EQ(CTFontGetLeading(AsFont(font)), 67.0 / 2048 * 12);
    EXPECT_LT(CTFontGetUnderlinePosition(AsFont(font)), 0);
    EXPECT_GT(CTFontGetUnderlineThickness(AsFont(font)), 0.5);
    auto large = Font("Arial", 12e6);
    EXPECT_DOUBLE_EQ(CTFontGetAscent(AsFont(large)), 1854.0 / 2048 * 12e6);
    EXPECT_EQ(CTFontGetAscent(nullptr), 0);
    EXPECT_EQ(CTFontCopyFamilyName(nullptr), nullptr);
}

TEST(CTFont, CopyWithSymbolicTraits_FindsTheFaceOrIsNull) {
    static const struct {
        const char* name;
        uint32_t value, mask;
        const char* expected;
    } rows[] = {
        {"Arial", 2, 2, "LiberationSans-Bold"},
        {"Arial", 1, 1, "LiberationSans-Italic"},
        {"Arial", 3, 3, "LiberationSans-BoldItalic"},
        {"Arial-BoldMT", 0, 2, "LiberationSans"},
        {"Arial-BoldMT", 1, 1, "LiberationSans-BoldItalic"},
        {"Arial", 3, 0, "LiberationSans"},
        {"DejaVu Sans", 3, 3, "DejaVuSans-BoldOblique"},
    };
    for (auto& row : rows) {
        auto font = Font(row.name);
        Owned<CFTypeRef> copy = CTFontCreateCopyWithSymbolicTraits(AsFont(font), 0, nullptr, row.value, row.mask);
        EXPECT_EQ(String(CTFontCopyPostScriptName(AsFont(copy))), row.expected);
        EXPECT_EQ(CTFontGetSize(AsFont(copy)), 12);
        EXPECT_EQ(CTFontGetSymbolicTraits(AsFont(copy)) & row.mask, row.value & row.mask);
    }
    EXPECT_EQ(CTFontCreateCopyWithSymbolicTraits(nullptr, 0, nullptr, 2, 2), nullptr);
    EXPECT_EQ(CTFontCreateCopyWithSymbolicTraits(AsFont(Font()), NAN, nullptr, 2, 2), nullptr);
}

TEST(CTFont, CopyWithSymbolicTraits_FamilyWithoutTheFace_IsNull) {
    auto math = Font("DejaVu Math TeX Gyre");
    if (String(CTFontCopyPostScriptName(AsFont(math))) != "DejaVuMathTeXGyre-Regular") GTEST_SKIP() << "not installed";
    EXPECT_EQ(CTFontCreateCopyWithSymbolicTraits(AsFont(math), 0, nullptr, 2, 2), nullptr);
    EXPECT_EQ(CTFontCreateCopyWithSymbolicTraits(AsFont(math), 0, nullptr, 1, 1), nullptr);
}

TEST(CTFont, CopyFamilyName_OfAStyledAlias_StaysTheAskedName) {
    Owned<CFTypeRef> bold = CTFontCreateCopyWithSymbolicTraits(AsFont(Font("Helvetica")), 0, nullptr, 2, 2);
    EXPECT_EQ(String(CTFontCopyFamilyName(AsFont(bold))), "Helvetica");
}

TEST(CTFont, Equal_SameFaceAndSize_AreEqual) {
    EXPECT_TRUE(CFEqual(Font(), Font()));
    EXPECT_FALSE(CFEqual(Font(), Font("Arial", 13)));
    EXPECT_FALSE(CFEqual(Font(), Font("Arial Bold")));
    EXPECT_EQ(CFHash(Font()), CFHash(Font()));
}

TEST(CTFontCollection, AvailableFonts_HoldTheInstalledFamilies) {
    Owned<CFTypeRef> collection = CTFontCollectionCreateFromAvailableFonts(nullptr);
    Owned<CFArrayRef> list =
        CTFontCollectionCreateMatchingFontDescriptors(static_cast<CTFontCollectionRef>(collection.get()));
    std::vector<std::string> families;
    for (CFIndex i = 0; i < CFArrayGetCount(list); ++i) {
        auto descriptor = static_cast<CTFontDescriptorRef>(CFArrayGetValueAtIndex(list, i));
        families.push_back(
            String(static_cast<CFStringRef>(CTFontDescriptorCopyAttribute(descriptor, kCTFontFamilyNameAttribute))));
        EXPECT_EQ(CTFontDescriptorCopyAttribute(descriptor, Text("other")), nullptr);
    }
    EXPECT_EQ(std::count(families.begin(), families.end(), "Liberation Sans"), 4);
    EXPECT_TRUE(std::is_sorted(families.begin(), families.end()));
    EXPECT_EQ(CTFontCollectionCreateMatchingFontDescriptors(nullptr), nullptr);
}

TEST(NSFont, ConvertToHaveTrait_AppliesOrKeeps) {
    NSFontRef plain = ZR_COCOA_NSFontWithName(Text("Arial"), 12);
    NSFontRef bold = ZR_COCOA_NSFontConvertToHaveTrait(plain, NSBoldFontMask);
    NSFontRef both = ZR_COCOA_NSFontConvertToHaveTrait(bold, NSItalicFontMask);
    EXPECT_EQ(String(CTFontCopyPostScriptName(reinterpret_cast<CTFontRef>(both))), "LiberationSans-BoldItalic");
    ZR_COCOA_NSFontRelease(both);
    ZR_COCOA_NSFontRelease(bold);
    ZR_COCOA_NSFontRelease(plain);
    EXPECT_EQ(ZR_COCOA_NSFontConvertToHaveTrait(nullptr, NSBoldFontMask), nullptr);
}

// Lines ------------------------------------------------------------------------------------------------------------

TEST(CTLine, TypographicBounds_KnownWidths) {
    static const struct {
        std::u16string text;
        Looks looks;
        double width;
    } rows[] = {
        {u"", {}, 0},
        {u"i", {}, 455.0 / 2048 * 12},
        {u"AVATAR To We", {}, 81.357},
        {u"AVATAR To We", {.kern = 0}, 86.684},
        {u"AVATAR To We", {.kern = 1}, 86.684 + 12},
        {u"AVATAR To We", {.kern = -1}, 86.684 - 12},
        {u"iiii", {.font = "Courier New"}, 4 * 1229.0 / 2048 * 12},
        {u"i", {.size = 12e6}, 455.0 / 2048 * 12e6},
        {u"i", {.size = 12e-4}, 455.0 / 2048 * 12e-4},
        {u"i ", {}, (455.0 + 569) / 2048 * 12},
        {u"  ", {}, 2 * 569.0 / 2048 * 12},
    };
    for (auto& row : rows) EXPECT_NEAR(Width(row.text, row.looks), row.width, 0.002 + row.width * 1e-4);
}

TEST(CTLine, TypographicBounds_AreTheTallestFonts) {
    auto string = Attributed(u"small LARGE");
    Set(string, CFRangeMake(6, 5), {.size = 24});
    Line line(string);
    CGFloat ascent, descent, leading;
    double width = CTLineGetTypographicBounds(line, &ascent, &descent, &leading);
    EXPECT_NEAR(width, Width(u"small ") + Width(u"LARGE", {.size = 24}), 0.01);
    EXPECT_NEAR(ascent, 1854.0 / 2048 * 24, 1e-3);
    EXPECT_NEAR(descent, 434.0 / 2048 * 24, 1e-3);
    EXPECT_NEAR(leading, 67.0 / 2048 * 24, 1e-3);
    CGRect bounds = CTLineGetBoundsWithOptions(line, 0);
    EXPECT_EQ(bounds.size.width, width);
    EXPECT_EQ(bounds.origin.y, -descent);
    EXPECT_EQ(bounds.size.height, ascent + descent);
}

TEST(CTLine, ControlsAndLineEnds_TakeNoRoom) {
    double plain = Width(u"ab", {.kern = 0});
    for (char16_t unit : {u'\0', u'\x01', u'\n', u'\r', u'\x0B', u'\x7F', u'\x85', u'\x2028', u'\x2029'})
        EXPECT_NEAR(Width(std::u16string(u"a") + unit + u"b", {.kern = 0}), plain, 0.01) << static_cast<int>(unit);
}

TEST(CTLine, LoneSurrogates_AreReplacementCharacters) {
    double replacement = Width(u"\xFFFD");
    EXPECT_GT(replacement, 1);
    std::u16string high(1, static_cast<char16_t>(0xD800)), low(1, static_cast<char16_t>(0xDC00));
    EXPECT_NEAR(Width(high), replacement, 0.01);
    EXPECT_NEAR(Width(low), replacement, 0.01);
    EXPECT_NEAR(Width(low + high), 2 * replacement, 0.02);
    Line line(u"a" + high + u"b");
    EXPECT_EQ(CTLineGetStringRange(line).length, 3);
}

TEST(CTLine, PairsAndRanges_CountUnits) {
    Line line(u"a\xD83D\xDE00z");
    EXPECT_EQ(CTLineGetStringRange(line).length, 4);
    CFArrayRef runs = CTLineGetGlyphRuns(line);
    CFIndex units = 0;
    for (CFIndex i = 0; i < CFArrayGetCount(runs); ++i)
        units += CTRunGetStringRange(static_cast<CTRunRef>(CFArrayGetValueAtIndex(runs, i))).length;
    EXPECT_EQ(units, 4);
}

TEST(CTLine, GlyphRuns_CarryTheirAttributes) {
    auto string = Attributed(u"one two three");
    for (long i = 0; i < 3; ++i) {
        static const CFRange ranges[] = {{0, 4}, {4, 4}, {8, 5}};
        CFAttributedStringSetAttribute(string, ranges[i], Text("mark"), Number(static_cast<double>(i + 1)));
    }
    Line line(string);
    CFArrayRef runs = CTLineGetGlyphRuns(line);
    ASSERT_EQ(CFArrayGetCount(runs), 3);
    double sum = 0;
    for (CFIndex i = 0; i < 3; ++i) {
        auto run = static_cast<CTRunRef>(CFArrayGetValueAtIndex(runs, i));
        double mark = 0;
        CFNumberGetValue(static_cast<CFNumberRef>(CFDictionaryGetValue(CTRunGetAttributes(run), Text("mark"))),
                         kCFNumberDoubleType, &mark);
        EXPECT_EQ(mark, static_cast<double>(i + 1));
        CGFloat ascent, descent, leading;
        sum += CTRunGetTypographicBounds(run, CFRangeMake(0, 0), &ascent, &descent, &leading);
        EXPECT_NEAR(ascent, 1854.0 / 2048 * 12, 1e-3);
        EXPECT_NEAR(descent, 434.0 / 2048 * 12, 1e-3);
        EXPECT_NEAR(leading, 67.0 / 2048 * 12, 1e-3);
    }
    EXPECT_NEAR(sum, line.Width(), 1e-6);
}

TEST(CTLine, OneStyle_IsOneRun) {
    EXPECT_EQ(CFArrayGetCount(CTLineGetGlyphRuns(Line(u"one two three"))), 1);
    EXPECT_EQ(CTLineGetGlyphCount(Line(u"one")), 3);
    EXPECT_EQ(CFArrayGetCount(CTLineGetGlyphRuns(Line(u""))), 0);
}

TEST(CTLine, VeryLong_IsAsWideAsItsParts) {
    std::u16string text = Repeated(u"nnnnnnnnn ", 30000);  // 300,000 units
    Line line(text);
    EXPECT_EQ(CTLineGetStringRange(line).length, 300000);
    EXPECT_NEAR(line.Width(), 30000 * Width(u"nnnnnnnnn "), 5);
    std::u16string noBlank(250000, u'n');
    EXPECT_NEAR(Line(noBlank).Width(), 250000 * Width(u"n"), 5);
}

TEST(CTLine, VeryLongInALargeFont_DoesNotWrapAround) {
    std::u16string text(100000, u'n');
    EXPECT_NEAR(Line(text, {.size = 900}).Width() / (100000 * Width(u"n", {.size = 900})), 1, 1e-3);
    EXPECT_NEAR(Line(text, {.kern = 5000}).Width() / (100000 * (Width(u"n") + 5000)), 1, 1e-3);
    std::u16string tabs(100000, u'\t');
    EXPECT_NEAR(Line(tabs).Width(), 2.8e6, 100);
}

// A line of printable ASCII in one style takes a short way. A unit without width behind it takes the long one.
// Of thousands of sizes none is kept for ever: a walk over all of them at each new one would take minutes.
TEST(CTLine, ThousandsOfSizes_KeepTheirWidths) {
    const double reference = Width(u"sample", {.size = 10});
    for (int i = 0; i < 3000; i++) {
        const double size = 10 + i / 1000.0;
        EXPECT_NEAR(Width(u"sample", {.size = size}), reference * size / 10, 0.01) << size;
    }
}

TEST(CTLine, PlainText_IsSetAsAllOtherText) {
    unsigned seed = 1;
    auto random = [&](unsigned n) { return (seed = seed * 1664525 + 1013904223) / 65536 % n; };
    for (int round = 0; round < 600; ++round) {
        static const char* const kFonts[] = {"Arial", "Times New Roman", "Courier New", "DejaVu Sans", "DejaVu Serif"};
        Looks looks = {.font = kFonts[round % 5], .size = 5.0 + random(40)};
        if (round % 3 == 0) looks.kern = 0;
        std::u16string text;
        for (unsigned i = random(40) + 1; i > 0; --i)
            text += static_cast<char16_t>(round % 4 == 0 ? ' ' + random(33) : ' ' + random(95));
        if (round % 7 == 0) text += u"ffi fi AVA";
        Line fast(text, looks), plain(text + u'\n', looks);
        ASSERT_NEAR(fast.Width(), plain.Width(), 1e-6) << round;
        CGFloat a, d, l, pa, pd, pl;
        CTLineGetTypographicBounds(fast, &a, &d, &l);
        CTLineGetTypographicBounds(plain, &pa, &pd, &pl);
        ASSERT_TRUE(a == pa && d == pd && l == pl);
        if (round % 10 > 0) continue;
        Bitmap left(500, 80), right(500, 80);
        CGContextSetTextPosition(left, 5, 30);
        CGContextSetTextPosition(right, 5, 30);
        CTLineDraw(fast, left);
        CTLineDraw(plain, right);
        ASSERT_EQ(left.Pixels(), right.Pixels()) << round;
    }
}

TEST(CTLine, NullObjects_AnswerNeutrally) {
    EXPECT_EQ(CTLineCreateWithAttributedString(nullptr), nullptr);
    CGFloat ascent = 1;
    EXPECT_EQ(CTLineGetTypographicBounds(nullptr, &ascent, nullptr, nullptr), 0);
    EXPECT_EQ(ascent, 0);
    EXPECT_EQ(CTLineGetGlyphRuns(nullptr), nullptr);
    EXPECT_EQ(CTLineGetGlyphCount(nullptr), 0);
    EXPECT_EQ(CTRunGetAttributes(nullptr), nullptr);
    EXPECT_EQ(CTRunGetTypographicBounds(nullptr, {0, 0}, nullptr, nullptr, nullptr), 0);
    CTLineDraw(nullptr, nullptr);
    CTLineDraw(Line(u"a"), nullptr);
}

// Frames: lines ----------------------------------------------------------------------------------------------------

TEST(CTFrame, ParagraphEnds_BelongToTheirLine) {
    static const struct {
        std::u16string text;
        std::vector<std::u16string> lines;
    } rows[] = {
        {u"", {}},
        {u"a", {u"a"}},
        {u"a\rb", {u"a\r", u"b"}},
        {u"a\nb", {u"a\n", u"b"}},
        {u"a\r\nb", {u"a\r\n", u"b"}},
        {u"a\n\rb", {u"a\n", u"\r", u"b"}},
        {u"a\x2029"
         u"b",
         {u"a\x2029", u"b"}},
        {u"a\n", {u"a\n"}},
        {u"\n", {u"\n"}},
        {u"\r\n\r\n", {u"\r\n", u"\r\n"}},
        {u"a\n\nb", {u"a\n", u"\n", u"b"}},
        {u"a\x2028"
         u"b",
         {u"a\x2028", u"b"}},
    };
    for (auto& row : rows) EXPECT_EQ(Frame(row.text, 200, 200).Lines(row.text), row.lines);
}

TEST(CTFrame, WordWrap_BreaksAtBlanksThatBelongToTheLine) {
    std::u16string text = u"aaa bbb ccc";
    Frame frame(text, Width(u"aaa bbb") + 0.5, 100);
    EXPECT_EQ(frame.Lines(text), (std::vector<std::u16string>{u"aaa bbb ", u"ccc"}));
    EXPECT_NEAR(frame.WidthAt(0), Width(u"aaa bbb"), 0.01) << "a blank at a break has no width";
    EXPECT_EQ(CTFrameGetVisibleStringRange(frame).length, 11);
    std::u16string two = u"aaa bbb  ccc";  // of several blanks all but the last need room
    EXPECT_EQ(Frame(two, Width(u"aaa bbb ") + 0.5, 100).Lines(two),
              (std::vector<std::u16string>{u"aaa bbb  ", u"ccc"}));
}

TEST(CTFrame, WordWrap_LongWord_BreaksWithinItWithoutHyphen) {
    std::u16string text = u"mmmmmmmmmm";
    Frame frame(text, Width(u"mmm") + 0.1, 500);
    EXPECT_EQ(frame.Lines(text), (std::vector<std::u16string>{u"mmm", u"mmm", u"mmm", u"m"}));
    for (CFIndex i = 0; i < 3; ++i) EXPECT_EQ(CTLineGetGlyphCount(frame.LineAt(i)), 3);
    Frame narrow(text, 0.01, 500);
    EXPECT_EQ(narrow.Count(), 10);
}

TEST(CTFrame, LongParagraph_LinesAreWithinTheWidthAndWithoutGaps) {
    std::u16string text = Repeated(kPangram, 3000);  // many pieces
    Frame frame(text, 300, 1e7);
    CFIndex at = 0;
    for (CFIndex i = 0; i < frame.Count(); ++i) {
        ASSERT_EQ(frame.RangeAt(i).location, at);
        at += frame.RangeAt(i).length;
        ASSERT_LE(frame.WidthAt(i), 300.01);
        ASSERT_TRUE(frame.WidthAt(i) > 200 || i + 1 == frame.Count());
    }
    EXPECT_EQ(at, static_cast<CFIndex>(text.size()));
    // Each line breaks where it would as the first one of its text.
    for (CFIndex i = 0; i + 1 < frame.Count(); i += 371) {
        CFRange range = frame.RangeAt(i);
        Frame alone(text.substr(static_cast<size_t>(range.location), 200), 300, 20);
        EXPECT_EQ(alone.RangeAt(0).length, range.length) << i;
    }
}

TEST(CTFrame, VeryWideParagraph_IsCutAndLosesNothing) {
    std::u16string text = Repeated(u"nnnnnnnnn ", 35000);
    Frame frame(text, 1e6, 1e4);
    CFIndex at = 0;
    for (CFIndex i = 0; i < frame.Count(); ++i) at += frame.RangeAt(i).length;
    EXPECT_EQ(at, static_cast<CFIndex>(text.size()));
    Frame unlimited(text, 1e16, 1e4);
    EXPECT_EQ(unlimited.Count(), 1);
    EXPECT_NEAR(unlimited.WidthAt(0), 35000 * Width(u"nnnnnnnnn "), 10);
}

TEST(CTFrame, TenThousandParagraphs_AreLines) {
    std::u16string text = Repeated(kPangram + u"\n", 10000);
    Frame frame(text, 1000, 1e6);
    EXPECT_EQ(frame.Count(), 10000);
}

TEST(CTFrame, TenMegabytes_StopsAtTheHeight) {
    std::u16string text(5 << 20, u'x');
    for (size_t i = 7; i < text.size(); i += 9) text[i] = u' ';
    Frame frame(text, 400, 32000);
    EXPECT_EQ(frame.Count(), static_cast<CFIndex>((32000 + 67.0 / 2048 * 12) / (13.40625 + 67.0 / 2048 * 12)));
    EXPECT_LT(CTFrameGetVisibleStringRange(frame).length, 300000);
}

// Frames: places ---------------------------------------------------------------------------------------------------

TEST(CTFrame, Baselines_RunDownByAscentDescentLeadingAndSpacing) {
    double ascent = 1854.0 / 2048 * 12, descent = 434.0 / 2048 * 12, leading = 67.0 / 2048 * 12;
    for (double spacing : {0.0, 5.0, -2.0}) {
        Frame frame(u"a\nb\nc", 100, 100, {.spacing = spacing});
        ASSERT_EQ(frame.Count(), 3);
        for (int i = 0; i < 3; ++i)
            EXPECT_NEAR(frame.origins[static_cast<size_t>(i)].y,
                        100 - ascent - i * (ascent + descent + leading + spacing), 1e-3);
    }
}

TEST(CTFrame, Height_LastLineIsThatWhoseDescentFits) {
    double line = (1854.0 + 434.0) / 2048 * 12, step = line + 67.0 / 2048 * 12;
    static const struct {
        double height;
        CFIndex lines;
    } rows[] = {{0, 0}, {-5, 0}, {line - 0.01, 0}, {line, 1}, {line + step - 0.01, 1}, {line + step, 2}, {1e9, 3}};
    for (auto& row : rows) EXPECT_EQ(Frame(u"a\nb\nc", 100, row.height).Count(), row.lines) << row.height;
}

TEST(CTFrame, Rectangles_ThatAreNone_HaveNoLines) {
    for (double side : {0.0, static_cast<double>(NAN), static_cast<double>(INFINITY)}) {
        EXPECT_EQ(Frame(u"abc", side, 100).Count(), 0) << side;
        EXPECT_EQ(Frame(u"abc", 100, side).Count(), 0) << side;
    }
    EXPECT_EQ(Frame(u"abc", -100, 100).Count(), 1) << "the same rectangle from its other side";
    Owned<CGMutablePathRef> empty = CGPathCreateMutable();
    Frame frame(u"abc", 100, 100);
    Owned<CFTypeRef> none = CTFramesetterCreateFrame(frame.Setter(), CFRangeMake(0, 0), empty.get(), nullptr);
    EXPECT_EQ(CFArrayGetCount(CTFrameGetLines(static_cast<CTFrameRef>(none.get()))), 0);
}

// A spacing that leads upward must not put every line of a long text into the frame.
TEST(CTFrame, NegativeSpacing_EndsAtTheTop) {
    const std::u16string text(100000, u'a');
    for (double spacing : {-100.0, -1e30}) {
        Frame frame(text, 8, 60, {.spacing = spacing});
        EXPECT_LE(frame.Count(), 2) << spacing;
    }
    EXPECT_GE(Frame(text, 8, 60, {.spacing = -2}).Count(), 4);
}

TEST(CTFrame, Alignment_PlacesTheLine) {
    double width = Width(u"word");
    static const struct {
        CTTextAlignment alignment;
        double flush;
    } rows[] = {{kCTTextAlignmentLeft, 0},      {kCTTextAlignmentRight, 1},   {kCTTextAlignmentCenter, 0.5},
                {kCTTextAlignmentJustified, 0}, {kCTTextAlignmentNatural, 0}, {static_cast<CTTextAlignment>(77), 0}};
    for (auto& row : rows) {
        Frame frame(u"word", 200, 50, {.alignment = row.alignment});
        EXPECT_NEAR(frame.origins[0].x, row.flush * (200 - width), 0.01) << static_cast<int>(row.alignment);
    }
}

TEST(CTFrame, Justified_FillsAllLinesButAParagraphsLast) {
    std::u16string text = Repeated(kPangram, 3) + u"\nshort";
    Frame frame(text, 250, 200, {.alignment = kCTTextAlignmentJustified});
    ASSERT_GT(frame.Count(), 3);
    for (CFIndex i = 0; i + 2 < frame.Count(); ++i) EXPECT_NEAR(frame.WidthAt(i), 250, 0.05) << i;
    EXPECT_LT(frame.WidthAt(frame.Count() - 1), 100);
}

TEST(CTFrame, RightToLeft_NaturalAlignmentIsRight) {
    std::u16string hebrew = u"\x05E9\x05DC\x05D5\x05DD \x05E2\x05D5\x05DC\x05DD";
    Frame frame(hebrew, 200, 50, {.font = "DejaVu Sans"});
    EXPECT_NEAR(frame.origins[0].x + frame.WidthAt(0), 200, 0.01);
    Frame left(hebrew, 200, 50, {.font = "DejaVu Sans", .alignment = kCTTextAlignmentLeft});
    EXPECT_NEAR(left.origins[0].x, 0, 0.01);
}

TEST(CTFrame, Truncation_KeepsParagraphsOnOneLine) {
    std::u16string text = kPangram + kPangram + u"\nshort";
    for (auto mode : {kCTLineBreakByTruncatingHead, kCTLineBreakByTruncatingTail, kCTLineBreakByTruncatingMiddle}) {
        Frame frame(text, 150, 100, {.breaking = mode});
        ASSERT_EQ(frame.Count(), 2) << static_cast<int>(mode);
        EXPECT_LE(frame.WidthAt(0), 150.01);
        EXPECT_GT(frame.WidthAt(0), 120);
        EXPECT_EQ(frame.RangeAt(0).length, static_cast<CFIndex>(2 * kPangram.size() + 1));
        EXPECT_NEAR(frame.WidthAt(1), Width(u"short"), 0.01);
    }
    Frame clipped(text, 150, 100, {.breaking = kCTLineBreakByClipping});
    EXPECT_EQ(clipped.Count(), 2);
    EXPECT_GT(clipped.WidthAt(0), 400);
}

TEST(CTFrame, Truncation_OfAVeryLongParagraph_ShowsItsEnds) {
    std::u16string text(400000, u'm');
    for (size_t i = 0; i < 100; ++i) text[text.size() - 1 - i] = u'i';
    Frame middle(text, 300, 50, {.breaking = kCTLineBreakByTruncatingMiddle});
    ASSERT_EQ(middle.Count(), 1);
    EXPECT_LE(middle.WidthAt(0), 300.01);
    // Half of the line is of wide letters, half of narrow ones
    EXPECT_GT(CTLineGetGlyphCount(middle.LineAt(0)), 50);
    Frame head(text, 200, 50, {.breaking = kCTLineBreakByTruncatingHead});
    EXPECT_GT(CTLineGetGlyphCount(head.LineAt(0)), 60);
    Frame tail(text, 200, 50, {.breaking = kCTLineBreakByTruncatingTail});
    EXPECT_LT(CTLineGetGlyphCount(tail.LineAt(0)), 30);
}

TEST(CTFrame, Tabs_StopAtEvery28Points) {
    Frame frame(u"a\tb", 200, 50);
    EXPECT_NEAR(frame.WidthAt(0), 28 + Width(u"b"), 0.05);
    Frame second(u"aaaaaa\tb", 200, 50);
    EXPECT_NEAR(second.WidthAt(0), 56 + Width(u"b"), 0.05);
}

TEST(CTFramesetter, SuggestFrameSize_IsThatOfTheLines) {
    double line = (1854.0 + 434.0 + 67.0) / 2048 * 12;
    std::u16string text = u"aaa bbb\ncc";
    Frame frame(text, 100, 100);
    CFRange fit;
    CGSize all =
        CTFramesetterSuggestFrameSizeWithConstraints(frame.Setter(), {0, 0}, nullptr, {DBL_MAX, DBL_MAX}, &fit);
    EXPECT_NEAR(all.width, Width(u"aaa bbb"), 0.01);
    EXPECT_NEAR(all.height, 2 * line, 1e-3);
    EXPECT_EQ(fit.length, 10);
    CGSize narrow = CTFramesetterSuggestFrameSizeWithConstraints(frame.Setter(), {0, 0}, nullptr,
                                                                 {Width(u"aaa ") + 1, DBL_MAX}, nullptr);
    EXPECT_NEAR(narrow.height, 3 * line, 1e-3);
    EXPECT_NEAR(narrow.width, Width(u"aaa"), 0.01);
    CGSize low = CTFramesetterSuggestFrameSizeWithConstraints(frame.Setter(), {0, 0}, nullptr, {DBL_MAX, line}, &fit);
    EXPECT_NEAR(low.height, line, 1e-3);
    EXPECT_EQ(fit.length, 8);
    for (double bad : {0.0, -1.0, static_cast<double>(NAN)})
        EXPECT_EQ(CTFramesetterSuggestFrameSizeWithConstraints(frame.Setter(), {0, 0}, nullptr, {bad, 100}, &fit).width,
                  0);
    EXPECT_EQ(fit.length, 0);
    EXPECT_EQ(CTFramesetterSuggestFrameSizeWithConstraints(nullptr, {0, 0}, nullptr, {1, 1}, nullptr).height, 0);
}

TEST(CTFramesetter, SuggestFrameSize_LineSpacingStandsBetweenLines) {
    Frame frame(u"a\nb\nc", 100, 100, {.spacing = 4});
    CGSize size =
        CTFramesetterSuggestFrameSizeWithConstraints(frame.Setter(), {0, 0}, nullptr, {DBL_MAX, DBL_MAX}, nullptr);
    EXPECT_NEAR(size.height, 3 * (1854.0 + 434.0 + 67.0) / 2048 * 12 + 2 * 4, 1e-3);
}

TEST(CTFramesetter, CreateFrame_Range_IsThePartOfTheText) {
    std::u16string text = u"one\ntwo\nthree";
    Frame whole(text, 100, 100);
    Owned<CGPathRef> path = CGPathCreateWithRect(CGRectMake(0, 0, 100, 100), nullptr);
    static const struct {
        CFRange range;
        CFIndex lines, start, length;
    } rows[] = {{{4, 0}, 2, 4, 9}, {{4, 4}, 1, 4, 4}, {{0, 6}, 2, 0, 6}, {{13, 0}, 0, 0, 0}, {{99, 5}, 0, 0, 0}};
    for (auto& row : rows) {
        Owned<CFTypeRef> made = CTFramesetterCreateFrame(whole.Setter(), row.range, path, nullptr);
        auto frame = static_cast<CTFrameRef>(made.get());
        EXPECT_EQ(CFArrayGetCount(CTFrameGetLines(frame)), row.lines);
        EXPECT_EQ(CTFrameGetVisibleStringRange(frame).location, row.start);
        EXPECT_EQ(CTFrameGetVisibleStringRange(frame).length, row.length);
    }
}

TEST(CTFramesetter, TextChangedLater_KeepsWhatItWas) {
    auto string = Attributed(u"before");
    Frame frame(string, CGRectMake(0, 0, 100, 50));
    double width = frame.WidthAt(0);
    CFAttributedStringSetAttribute(string, CFRangeMake(0, 6), kCTFontAttributeName, Font("Arial", 30));
    CFAttributedStringReplaceString(string, CFRangeMake(0, 6), Text("x"));
    Owned<CGPathRef> path = CGPathCreateWithRect(CGRectMake(0, 0, 100, 50), nullptr);
    Owned<CFTypeRef> again = CTFramesetterCreateFrame(frame.Setter(), CFRangeMake(0, 0), path, nullptr);
    auto line =
        static_cast<CTLineRef>(CFArrayGetValueAtIndex(CTFrameGetLines(static_cast<CTFrameRef>(again.get())), 0));
    EXPECT_EQ(CTLineGetTypographicBounds(line, nullptr, nullptr, nullptr), width);
}

// Drawing ----------------------------------------------------------------------------------------------------------

TEST(CTLineDraw, StandsOnTheTextPosition_YUp) {
    Bitmap bitmap(100, 60);
    CGContextSetTextPosition(bitmap, 20, 30);
    Line line(u"L", {.size = 40});
    CTLineDraw(line, bitmap);
    Extent ink = InkOf(bitmap);
    EXPECT_NEAR(ink.bottom, 30, 1);
    EXPECT_NEAR(ink.top, 30 + 1409.0 / 2048 * 40, 1.5);
    EXPECT_NEAR(ink.left, 20 + 168.0 / 2048 * 40, 1.5);
    // The foot of the letter is below
    EXPECT_GT(bitmap.At(ink.right - 2, ink.bottom + 1).a, 200);
    EXPECT_LT(bitmap.At(ink.right - 2, ink.top - 2).a, 50);
    EXPECT_NEAR(CGContextGetTextPosition(bitmap).x, 20 + line.Width(), 1e-6);
}

TEST(CTLineDraw, ColourAlphaAndContextAlpha) {
    static const struct {
        double alpha, contextAlpha;
        int expected;
    } rows[] = {{1, 1, 255}, {0.5, 1, 128}, {0.5, 0.5, 64}, {0, 1, 0}};
    for (auto& row : rows) {
        Bitmap bitmap(60, 60);
        CGContextSetAlpha(bitmap, row.contextAlpha);
        CGContextSetTextPosition(bitmap, 5, 10);
        CTLineDraw(
            Line(u"\x2588", {.font = "DejaVu Sans", .size = 40, .color = CGColorCreateGenericRGB(0, 1, 0, row.alpha)}),
            bitmap);
        EXPECT_NEAR_PIXEL(bitmap.At(15, 20), (Pixel{0, row.expected, 0, row.expected}), 3);
    }
}

TEST(CTLineDraw, AntialiasOff_HasOnlyWholePixels) {
    Bitmap bitmap(120, 40);
    CGContextSetShouldAntialias(bitmap, false);
    CGContextSetTextPosition(bitmap, 5, 10);
    CTLineDraw(Line(u"Sample", {.size = 30}), bitmap);
    auto bytes = bitmap.Pixels();
    int partly = 0, whole = 0;
    for (size_t i = 3; i < bytes.size(); i += 4) {
        partly += bytes[i] != 0 && bytes[i] != 255;
        whole += bytes[i] == 255;
    }
    EXPECT_EQ(partly, 0);
    EXPECT_GT(whole, 200);
    CGContextSetShouldAntialias(bitmap, true);
    CGContextSetTextPosition(bitmap, 5, 10);
    CTLineDraw(Line(u"Sample", {.size = 30}), bitmap);
    bytes = bitmap.Pixels();
    for (size_t i = 3; i < bytes.size(); i += 4) partly += bytes[i] != 0 && bytes[i] != 255;
    EXPECT_GT(partly, 50);
}

TEST(CTLineDraw, Turned_RunsUp) {
    Bitmap bitmap(60, 120);
    CGContextTranslateCTM(bitmap, 30, 20);
    CGContextRotateCTM(bitmap, M_PI / 2);
    CGContextSetTextPosition(bitmap, 0, 0);
    Line line(u"MMM", {.size = 24});
    CTLineDraw(line, bitmap);
    Extent ink = InkOf(bitmap);
    EXPECT_NEAR(ink.right, 30, 1.5);
    EXPECT_NEAR(ink.top - ink.bottom, line.Width(), 6);
    EXPECT_GE(ink.bottom, 20);
}

TEST(CTLineDraw, TextMatrix_IsApplied) {
    Bitmap bitmap(120, 80);
    CGContextSetTextMatrix(bitmap, {2, 0, 0, 2, 0, 0});
    CGContextSetTextPosition(bitmap, 10, 20);
    Line line(u"L", {.size = 20});
    CTLineDraw(line, bitmap);
    Extent ink = InkOf(bitmap);
    EXPECT_NEAR(ink.bottom, 20, 1);
    EXPECT_NEAR(ink.top, 20 + 1409.0 / 2048 * 40, 1.5);
    EXPECT_NEAR(CGContextGetTextPosition(bitmap).x, 10 + 2 * line.Width(), 1e-6);
}

TEST(CTLineDraw, Underline_IsALineBelowTheBaseline) {
    Bitmap bitmap(200, 60);
    CGContextSetTextPosition(bitmap, 10, 30);
    Line line(u"nnnn", {.size = 32, .underline = 1});
    CTLineDraw(line, bitmap);
    Extent ink = InkOf(bitmap);
    EXPECT_LT(ink.bottom, 29);
    EXPECT_GT(ink.bottom, 22);
    EXPECT_NEAR(ink.left, 10, 1);
    EXPECT_NEAR(ink.right, 10 + line.Width(), 1.5);
}

TEST(CTLineDraw, LargeGlyphs_AreDrawnAsOutlines) {
    Bitmap bitmap(400, 400);
    CGContextSetTextPosition(bitmap, 20, 40);
    CTLineDraw(Line(u"L", {.size = 400}), bitmap);
    Extent ink = InkOf(bitmap);
    EXPECT_NEAR(ink.bottom, 40, 1);
    EXPECT_NEAR(ink.top, 40 + 1409.0 / 2048 * 400, 1.5);
}

TEST(CTLineDraw, NumbersThatAreNone_DrawNothingAndLoseNothing) {
    Bitmap bitmap(60, 40);
    Line line(u"abc");
    Line huge(u"abc", {.size = 1e9}), tiny(u"abc", {.size = 1e-9});
    for (double bad : {static_cast<double>(NAN), static_cast<double>(INFINITY), 1e300, -1e300, 1e7}) {
        CGContextSetTextPosition(bitmap, bad, 10);
        CTLineDraw(line, bitmap);
        CGContextSetTextPosition(bitmap, 10, bad);
        CTLineDraw(line, bitmap);
    }
    CGContextSetTextPosition(bitmap, 5, 5);
    CTLineDraw(huge, bitmap);
    CGContextSetTextPosition(bitmap, 5, 5);
    CTLineDraw(tiny, bitmap);
    CGContextSaveGState(bitmap);
    CGContextScaleCTM(bitmap, 0, 1);
    CGContextSetTextPosition(bitmap, 5, 5);
    CTLineDraw(line, bitmap);
    CGContextRestoreGState(bitmap);
    EXPECT_EQ(bitmap.Count(), 0);
    CGContextSetTextPosition(bitmap, 5, 10);
    CTLineDraw(line, bitmap);
    EXPECT_GT(bitmap.Count(), 20);
}

TEST(CTLineDraw, VeryLongLine_DrawsWhatIsInTheClip) {
    Bitmap bitmap(100, 40);
    std::u16string text(1000000, u'H');
    Line line(text, {.size = 20});
    double width = line.Width();
    CGContextSetTextPosition(bitmap, 50 - width / 2, 10);
    CTLineDraw(line, bitmap);
    Extent ink = InkOf(bitmap);
    EXPECT_LE(ink.left, 10);
    EXPECT_GE(ink.right, 90);
}

TEST(CTLineDraw, Shadow_IsCast) {
    Bitmap bitmap(100, 60);
    CGContextSetShadow(bitmap, {6, -6}, 0);
    CGContextSetTextPosition(bitmap, 10, 20);
    CTLineDraw(Line(u"\x2588", {.font = "DejaVu Sans", .size = 30}), bitmap);
    EXPECT_NEAR_PIXEL(bitmap.At(25, 30), kBlack, 2);
    Extent ink = InkOf(bitmap, 60), dark = InkOf(bitmap, 200);
    EXPECT_NEAR(ink.right - dark.right, 6, 1);
    EXPECT_NEAR(dark.bottom - ink.bottom, 6, 1);
}

TEST(CTFrameDraw, LinesStandAtTheirOrigins) {
    Bitmap bitmap(200, 100);
    auto string = Attributed(u"LLL\nLLL", {.size = 20, .alignment = kCTTextAlignmentRight});
    Frame frame(string, CGRectMake(30, 20, 150, 70));
    CTFrameDraw(frame, bitmap);
    Extent ink = InkOf(bitmap);
    EXPECT_LE(ink.right, 180);
    EXPECT_NEAR(ink.right, 180, 3);
    EXPECT_NEAR(ink.bottom, 20 + frame.origins[1].y, 1);
    EXPECT_NEAR(ink.top, 20 + frame.origins[0].y + 1409.0 / 2048 * 20, 1.5);
    CTFrameDraw(nullptr, bitmap);
    CTFrameDraw(frame, nullptr);
}

TEST(CTFrameDraw, RunsHaveTheirColours) {
    Bitmap bitmap(200, 40);
    auto string = Attributed(u"\x2588\x2588", {.font = "DejaVu Sans", .size = 20});
    Set(string, CFRangeMake(0, 1), {.font = "DejaVu Sans", .size = 20, .color = CGColorCreateGenericRGB(1, 0, 0, 1)});
    Set(string, CFRangeMake(1, 1), {.font = "DejaVu Sans", .size = 20, .color = CGColorCreateGenericRGB(0, 0, 1, 1)});
    Frame frame(string, CGRectMake(0, 0, 200, 40));
    CTFrameDraw(frame, bitmap);
    double half = frame.WidthAt(0) / 2;
    int y = 22;
    EXPECT_NEAR_PIXEL(bitmap.At(static_cast<int>(half / 2), y), kRed, 2);
    EXPECT_NEAR_PIXEL(bitmap.At(static_cast<int>(half * 1.5), y), kBlue, 2);
}

TEST(CTFrameDraw, OnALayerAndAPage_IsText) {
    Owned<CGLayerRef> layer = CGLayerCreateWithContext(nullptr, {100, 50}, nullptr);
    Frame frame(u"Text", 100, 50, {.size = 20});
    CTFrameDraw(frame, CGLayerGetContext(layer));
    Bitmap bitmap(100, 50), direct(100, 50);
    CGContextDrawLayerAtPoint(bitmap, CGPointZero, layer);
    CTFrameDraw(frame, direct);
    EXPECT_NEAR(bitmap.Count(), direct.Count(), direct.Count() / 20);
    Owned<CFMutableDataRef> data = CFDataCreateMutable(nullptr, 0);
    Owned<CGDataConsumerRef> consumer = CGDataConsumerCreateWithCFData(data);
    Owned<CGContextRef> page = CGPDFContextCreate(consumer, nullptr, nullptr);
    CGPDFContextBeginPage(page, nullptr);
    CTFrameDraw(frame, page);
    CGPDFContextEndPage(page);
    CGPDFContextClose(page);
    EXPECT_NE(BytesOf(data).find("/FontFile"), std::string::npos) << "glyphs of a font, not pixels";
    EXPECT_EQ(BytesOf(data).find("/Subtype /Image"), std::string::npos);
}

TEST(CTFrameDraw, OnAPage_TextCanBeCopied) {
    if (system("command -v pdftotext >/dev/null 2>&1") != 0) GTEST_SKIP() << "pdftotext is missing";
    std::string path = testing::TempDir() + "/zr_text.pdf", text = testing::TempDir() + "/zr_text.txt";
    Owned<CGContextRef> page = CGPDFContextCreateWithURL(FileURL(path), nullptr, nullptr);
    CGPDFContextBeginPage(page, nullptr);
    auto string =
        Attributed(u"The office affair fi\x05E9\x05DC\x05D5\x05DD a\xD83D\xDE00z e\x0301", {.font = "DejaVu Sans"});
    Frame frame(string, CGRectMake(50, 50, 400, 600));
    CTFrameDraw(frame, page);
    CGContextSetTextPosition(page, 50, 40);
    CTLineDraw(Line(u"A plain office line", {.font = "DejaVu Serif"}), page);
    CGPDFContextEndPage(page);
    CGPDFContextClose(page);
    ASSERT_EQ(system(("pdftotext '" + path + "' '" + text + "'").c_str()), 0);
    std::ifstream file(text);
    std::string found((std::istreambuf_iterator<char>(file)), {});
    EXPECT_NE(found.find("The office affair"), std::string::npos) << found;
    EXPECT_NE(found.find("A plain office line"), std::string::npos) << found;
    EXPECT_NE(found.find("\u05E9\u05DC\u05D5\u05DD"), std::string::npos) << found;
}

// Threads and missing fonts ----------------------------------------------------------------------------------------

TEST(CoreTextThreads, ObjectsOutliveTheThreadThatMadeThem) {
    Owned<CFTypeRef> font;
    std::unique_ptr<Frame> frame;
    std::thread([&] {
        font = Font("Liberation Serif", 20);
        frame = std::make_unique<Frame>(u"made elsewhere", 200, 50);
    }).join();
    EXPECT_GT(CTFontGetAscent(AsFont(font)), 10);
    Bitmap bitmap(200, 50);
    CTFrameDraw(*frame, bitmap);
    EXPECT_GT(bitmap.Count(), 100);
    auto string = Attributed(u"text");
    CFAttributedStringSetAttribute(string, CFRangeMake(0, 4), kCTFontAttributeName, font);
    EXPECT_GT(Line(string).Width(), 10);
}

TEST(CoreTextThreads, EightAtOnce_AgreeOnEverything) {
    Frame shared(Repeated(kPangram, 20), 300, 400);
    std::vector<std::thread> threads;
    std::vector<double> widths(8);
    std::vector<int> ink(8);
    for (size_t i = 0; i < 8; ++i)
        threads.emplace_back([&, i] {
            for (int round = 0; round < 10; ++round) {
                Frame own(Repeated(kPangram, 20), 300, 400);
                widths[i] = own.WidthAt(1);
                Bitmap bitmap(300, 400);
                CTFrameDraw(shared, bitmap);
                ink[i] = bitmap.Count();
            }
        });
    for (auto& thread : threads) thread.join();
    for (size_t i = 1; i < 8; ++i) {
        EXPECT_EQ(widths[i], widths[0]);
        EXPECT_EQ(ink[i], ink[0]);
    }
}

// In a process of its own, since fonts are looked for once.
TEST(CoreTextDeathTest, NoFontInstalled_TextIsLeftOutAndNothingElse) {
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
    auto body = [] {
        std::string path = testing::TempDir() + "/zr_no_fonts.conf";
        std::ofstream(path) << "<?xml version=\"1.0\"?><fontconfig></fontconfig>";
        setenv("FONTCONFIG_FILE", path.c_str(), 1);
        Bitmap bitmap(40, 40);
        bool none = CTFontCreateWithName(Text("Arial"), 12, nullptr) == nullptr;
        Line line(u"abc");
        Frame frame(u"abc", 40, 40);
        CTLineDraw(line, bitmap);
        CTFrameDraw(frame, bitmap);
        bool empty = line.Width() == 0 && frame.Count() == 0 && bitmap.Count() == 0;
        CGContextFillRect(bitmap, CGRectMake(0, 0, 10, 10));
        exit(none && empty && bitmap.Count() == 100 ? 0 : 1);
    };
    EXPECT_EXIT(body(), testing::ExitedWithCode(0), "");
}

// Texts whose setting would take time with the square of their length, if they were set at once.
TEST(CoreTextBounds, DifficultTexts_TakeTimeInProportion) {
    for (const char16_t* part :
         {u"a", u"a\x05D0",
          u"\x202E"
          u"a",
          u"\x2067", u"\x0301", u"\x4E00", u" ", u"\xD83D\xDE00", u"\x00AD", u"\x2028", u"\x0645", u"\t"}) {
        std::u16string text;
        while (text.size() < 50000) text += part;
        Line line(text);
        EXPECT_EQ(CTLineGetStringRange(line).length, static_cast<CFIndex>(text.size()));
        for (double width : {5.0, 300.0, 1e6}) {
            Frame frame(text, width, 1e9);
            CFRange range = CTFrameGetVisibleStringRange(frame);
            EXPECT_EQ(range.length, static_cast<CFIndex>(text.size())) << width;
        }
    }
}
