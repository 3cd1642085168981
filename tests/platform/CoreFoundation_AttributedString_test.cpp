#include "tests/platform/GraphicsSupport.h"

namespace {

Owned<CFMutableAttributedStringRef> Attributed(const char* text) {
    Owned<CFMutableAttributedStringRef> string = CFAttributedStringCreateMutable(nullptr, 0);
    CFAttributedStringReplaceString(string, CFRangeMake(0, 0), Text(text));
    return string;
}

double ValueAt(CFAttributedStringRef string, CFIndex at, const char* name, CFRange* range = nullptr) {
    double value = -1;
    auto number = static_cast<CFNumberRef>(CFAttributedStringGetAttribute(string, at, Text(name), range));
    CFNumberGetValue(number, kCFNumberDoubleType, &value);
    return value;
}

std::vector<double> Values(CFAttributedStringRef string, const char* name) {
    std::vector<double> values;
    for (CFIndex i = 0; i < CFAttributedStringGetLength(string); ++i) values.push_back(ValueAt(string, i, name));
    return values;
}

}  // namespace

TEST(AttributedString, SetAttribute_Ranges_AreCutToTheString) {
    static const struct {
        CFRange range;
        std::vector<double> expected;
    } rows[] = {{{0, 5}, {7, 7, 7, 7, 7}},       {{0, 1}, {7, -1, -1, -1, -1}},  {{4, 1}, {-1, -1, -1, -1, 7}},
                {{1, 2}, {-1, 7, 7, -1, -1}},    {{3, 99}, {-1, -1, -1, 7, 7}},  {{5, 1}, {-1, -1, -1, -1, -1}},
                {{-1, 3}, {-1, -1, -1, -1, -1}}, {{2, 0}, {-1, -1, -1, -1, -1}}, {{2, -1}, {-1, -1, -1, -1, -1}}};
    for (auto& row : rows) {
        auto string = Attributed("abcde");
        CFAttributedStringSetAttribute(string, row.range, Text("a"), Number(7));
        EXPECT_EQ(Values(string, "a"), row.expected) << row.range.location << " " << row.range.length;
    }
}

TEST(AttributedString, SetAttribute_Overlapping_LastOneWinsAndOthersStay) {
    auto string = Attributed("abcdef");
    CFAttributedStringBeginEditing(string);
    CFAttributedStringSetAttribute(string, CFRangeMake(0, 4), Text("a"), Number(1));
    CFAttributedStringSetAttribute(string, CFRangeMake(2, 4), Text("b"), Number(2));
    CFAttributedStringSetAttribute(string, CFRangeMake(3, 2), Text("a"), Number(3));
    CFAttributedStringEndEditing(string);
    EXPECT_EQ(Values(string, "a"), (std::vector<double>{1, 1, 1, 3, 3, -1}));
    EXPECT_EQ(Values(string, "b"), (std::vector<double>{-1, -1, 2, 2, 2, 2}));
    CFAttributedStringRemoveAttribute(string, CFRangeMake(1, 3), Text("a"));
    EXPECT_EQ(Values(string, "a"), (std::vector<double>{1, -1, -1, -1, 3, -1}));
    CFRange range;
    EXPECT_EQ(ValueAt(string, 4, "a", &range), 3);
    EXPECT_EQ(range.location, 4);
    EXPECT_EQ(range.length, 1);
}

TEST(AttributedString, GetAttributes_HeldDictionary_DoesNotChange) {
    auto string = Attributed("abc");
    CFAttributedStringSetAttribute(string, CFRangeMake(0, 3), Text("a"), Number(1));
    Owned<CFDictionaryRef> held =
        static_cast<CFDictionaryRef>(CFRetain(CFAttributedStringGetAttributes(string, 0, nullptr)));
    CFAttributedStringSetAttribute(string, CFRangeMake(0, 3), Text("b"), Number(2));
    EXPECT_EQ(CFDictionaryGetCount(held), 1);
    EXPECT_EQ(Values(string, "b"), (std::vector<double>{2, 2, 2}));
}

TEST(AttributedString, MutableCopy_Changed_LeavesItsSource) {
    auto string = Attributed("abc");
    CFAttributedStringSetAttribute(string, CFRangeMake(0, 2), Text("a"), Number(1));
    Owned<CFMutableAttributedStringRef> copy = CFAttributedStringCreateMutableCopy(nullptr, 0, string);
    CFAttributedStringSetAttribute(copy, CFRangeMake(0, 3), Text("a"), Number(9));
    EXPECT_EQ(Values(string, "a"), (std::vector<double>{1, 1, -1}));
    EXPECT_EQ(Values(copy, "a"), (std::vector<double>{9, 9, 9}));
}

TEST(AttributedString, ReplaceString_TakesAttributesOfTheFirstReplaced) {
    static const struct {
        CFRange range;
        const char* with;
        std::vector<double> expected;  // of "aabb" with 1 1 2 2
    } rows[] = {{{1, 2}, "xyz", {1, 1, 1, 1, 2}}, {{0, 2}, "", {2, 2}},           {{2, 0}, "x", {1, 1, 1, 2, 2}},
                {{0, 0}, "x", {1, 1, 1, 2, 2}},   {{4, 0}, "x", {1, 1, 2, 2, 2}}, {{0, 4}, "", {}},
                {{2, 2}, "x", {1, 1, 2}},         {{5, 1}, "x", {1, 1, 2, 2}},    {{3, 99}, "xx", {1, 1, 2, 2, 2}}};
    for (auto& row : rows) {
        auto string = Attributed("aabb");
        CFAttributedStringSetAttribute(string, CFRangeMake(0, 2), Text("a"), Number(1));
        CFAttributedStringSetAttribute(string, CFRangeMake(2, 2), Text("a"), Number(2));
        CFAttributedStringReplaceString(string, row.range, Text(row.with));
        EXPECT_EQ(Values(string, "a"), row.expected) << row.range.location << " " << row.with;
    }
}

TEST(AttributedString, Create_FixedString_IsNotChanged) {
    Owned<CFMutableDictionaryRef> attributes =
        CFDictionaryCreateMutable(nullptr, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks);
    CFDictionarySetValue(attributes, Text("a"), Number(4));
    Owned<CFAttributedStringRef> string = CFAttributedStringCreate(nullptr, Text("ab"), attributes);
    CFDictionarySetValue(attributes, Text("a"), Number(5));
    auto pretended = const_cast<CFMutableAttributedStringRef>(string.get());
    CFAttributedStringSetAttribute(pretended, CFRangeMake(0, 2), Text("a"), Number(6));
    CFAttributedStringReplaceString(pretended, CFRangeMake(0, 2), Text("x"));
    EXPECT_EQ(Values(string, "a"), (std::vector<double>{4, 4}));
    EXPECT_EQ(CFGetTypeID(string), CFAttributedStringGetTypeID());
}

TEST(AttributedString, NullAndOutside_AnswerNothing) {
    EXPECT_EQ(CFAttributedStringGetLength(nullptr), 0);
    EXPECT_EQ(CFAttributedStringGetString(nullptr), nullptr);
    EXPECT_EQ(CFAttributedStringCreate(nullptr, nullptr, nullptr), nullptr);
    EXPECT_EQ(CFAttributedStringCreateMutableCopy(nullptr, 0, nullptr), nullptr);
    EXPECT_EQ(CFAttributedStringGetAttributes(nullptr, 0, nullptr), nullptr);
    CFAttributedStringSetAttribute(nullptr, CFRangeMake(0, 1), Text("a"), Number(1));
    auto string = Attributed("ab");
    EXPECT_EQ(CFAttributedStringGetAttributes(string, 2, nullptr), nullptr);
    EXPECT_EQ(CFAttributedStringGetAttributes(string, -1, nullptr), nullptr);
    CFAttributedStringSetAttribute(string, CFRangeMake(0, 2), nullptr, Number(1));
    CFAttributedStringSetAttribute(string, CFRangeMake(0, 2), Text("a"), nullptr);
    EXPECT_EQ(CFDictionaryGetCount(CFAttributedStringGetAttributes(string, 0, nullptr)), 0);
    Owned<CFMutableAttributedStringRef> small = CFAttributedStringCreateMutable(nullptr, 2);
    CFAttributedStringReplaceString(small, CFRangeMake(0, 0), Text("abc"));
    EXPECT_EQ(CFAttributedStringGetLength(small), 0);
}

TEST(AttributedString, ManyPieces_InAnyOrder_KeepTheirValues) {
    std::string text(20000, 'x');
    auto string = Attributed(text.c_str());
    for (long i = 0; i < 20000; ++i) {
        long at = i * 7919 % 20000;
        CFAttributedStringSetAttribute(string, CFRangeMake(at, 1), Text("a"), Number(static_cast<double>(at)));
    }
    for (long i = 0; i < 20000; i += 997) EXPECT_EQ(ValueAt(string, i, "a"), static_cast<double>(i));
}
