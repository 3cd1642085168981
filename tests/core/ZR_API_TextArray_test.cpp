#include "core/ZR_API_TextArray.h"

#include <climits>

#include "tests/core/FakeHost.h"

namespace {

std::vector<std::u16string> All(const ZR_TextArray& array) {
    std::vector<std::u16string> texts;
    for (long i = 1; i <= array.count; ++i) texts.push_back(Units(*array.GetTextPtr(i)));
    return texts;
}

ZR_TextArray MakeArray(const std::vector<const char*>& texts) {
    ZR_TextArray array;
    array.Create();
    for (const char* text : texts) array.Append(text);
    return array;
}

}  // namespace

TEST(TextArray, CreateSplit_Separators_GiveOneElementMore) {
    static const struct {
        std::u16string text;
        std::vector<std::u16string> expected;
    } rows[] = {{u"a,b", {u"a", u"b"}},
                {u",", {u"", u""}},
                {u"", {u""}},
                {u"abc", {u"abc"}},
                {u"a,", {u"a", u""}},
                {u",a", {u"", u"a"}},
                {u"a,,b", {u"a", u"", u"b"}},
                {u"ab,c,def", {u"ab", u"c", u"def"}}};
    for (const auto& row : rows) {
        MemoryCheck check;
        ZR_Text text = MakeText(row.text);
        ZR_TextArray array;
        array.Create(&text, ',');
        EXPECT_EQ(All(array), row.expected);
        array.Dispose();
        text.Dispose();
    }
    ZR_TextArray array;
    array.Create(nullptr, ',');
    EXPECT_EQ(array.count, 0);
}

TEST(TextArray, GetTextPtr_OutsideOneToCount_IsNull) {
    ZR_TextArray array = MakeArray({"a", "b"});
    static const struct {
        long index;
        bool inside;
    } rows[] = {{LONG_MIN, false}, {-1, false}, {0, false}, {1, true}, {2, true}, {3, false}, {LONG_MAX, false}};
    for (const auto& row : rows) EXPECT_EQ(array.GetTextPtr(row.index) != nullptr, row.inside) << row.index;
    array.Dispose();
    EXPECT_EQ(array.GetTextPtr(1), nullptr);
}

TEST(TextArray, Resize_UpAndDown_KeepsAndDisposes) {
    MemoryCheck check;
    ZR_TextArray array = MakeArray({"a", "b", "c"});
    array.Resize(5);
    EXPECT_EQ(All(array), (std::vector<std::u16string>{u"a", u"b", u"c", u"", u""}));
    array.Resize(5);
    array.Resize(1);
    EXPECT_EQ(All(array), std::vector<std::u16string>{u"a"});
    array.Resize(2);
    EXPECT_EQ(All(array), (std::vector<std::u16string>{u"a", u""}));
    array.Resize(0);
    EXPECT_EQ(array.count, 0);
    EXPECT_NE(array.texts, nullptr);
    array.Append("x");
    array.Resize(LONG_MAX);
    array.Resize(1L << 50);
    EXPECT_EQ(All(array), std::vector<std::u16string>{u"x"});
    array.Resize(-1);
    EXPECT_EQ(array.count, 0);
    array.Dispose();
    EXPECT_EQ(array.texts, nullptr);
    array.Dispose();
}

TEST(TextArray, GetAndSet_Elements_AreCopies) {
    MemoryCheck check;
    ZR_TextArray array = MakeArray({"a", "b"});
    ZR_Text text = MakeText(u"old");
    array.GetText(2, &text);
    EXPECT_EQ(Units(text), u"b");
    array.GetText(3, &text);
    array.GetText(0, &text);
    EXPECT_EQ(Units(text), u"b");
    text.AddString("!");
    array.SetText(1, &text);
    array.SetText(0, &text);
    array.SetText(3, &text);
    EXPECT_EQ(All(array), (std::vector<std::u16string>{u"b!", u"b"}));
    array.SetText(1, nullptr);
    array.SetString(2, "\xE9");
    array.SetString(3, "x");
    EXPECT_EQ(All(array), (std::vector<std::u16string>{u"", u"\u00E9"}));
    array.SetString(2, reinterpret_cast<const unsigned char*>("z"));
    EXPECT_EQ(All(array), (std::vector<std::u16string>{u"", u"z"}));
    array.Dispose();
    text.Dispose();
}

TEST(TextArray, Append_NullAndOwnElement_AreSafe) {
    MemoryCheck check;
    ZR_TextArray array = MakeArray({"a"});
    array.Append(static_cast<ZR_Text*>(nullptr));
    array.Append(static_cast<const char*>(nullptr));
    for (int i = 0; i < 100; ++i) array.Append(array.GetTextPtr(1));
    EXPECT_EQ(array.count, 103);
    EXPECT_EQ(Units(*array.GetTextPtr(103)), u"a");
    EXPECT_EQ(Units(*array.GetTextPtr(2)), u"");
    array.Dispose();
}

TEST(TextArray, Append_ManyElements_KeepsAll) {
    MemoryCheck check;
    ZR_TextArray array;
    array.Create();
    for (long i = 0; i < 20000; ++i) array.Append("abc");
    EXPECT_EQ(array.count, 20000);
    EXPECT_EQ(Units(*array.GetTextPtr(20000)), u"abc");
    array.Dispose();
}

TEST(TextArray, Find_FirstEqual_OrZero) {
    ZR_TextArray array = MakeArray({"a", "b", "b", ""});
    static const struct {
        const char* text;
        long expected;
    } rows[] = {{"a", 1}, {"b", 2}, {"", 4}, {"B", 0}, {"x", 0}};
    for (const auto& row : rows) {
        ZR_Text text;
        text.Create();
        text.AddString(row.text);
        EXPECT_EQ(array.Find(row.text), row.expected) << row.text;
        EXPECT_EQ(array.Find(&text), row.expected) << row.text;
        text.Dispose();
    }
    EXPECT_EQ(array.Find(static_cast<ZR_Text*>(nullptr)), 0);
    array.Dispose();
    EXPECT_EQ(array.Find("a"), 0);
}

using TextArrayHost = fake::Test;

TEST_F(TextArrayHost, HostArray_RoundTrip_WithoutElementZero) {
    ZR_TextArray array = MakeArray({"a", "b"}), back;
    PA_Variable variable = PA_CreateVariable(eVK_ArrayText);
    array.To4Darray(&variable);
    EXPECT_EQ(PA_GetArrayNbElements(&variable), 2);
    ZR_Text zero = MakeText(u"zero");
    zero.To4DArray(&variable, 0);
    back.Create(&variable);
    EXPECT_EQ(All(back), All(array));
    array.Resize(0);
    array.To4Darray(&variable);
    EXPECT_EQ(PA_GetArrayNbElements(&variable), 0);
    array.To4Darray(nullptr);
    back.Dispose();
    back.Create(&variable);
    EXPECT_EQ(back.count, 0);
    PA_ClearVariable(&variable);
    back.Create(&variable);
    EXPECT_EQ(back.count, 0);
    back.Create(static_cast<PA_Variable*>(nullptr));
    EXPECT_EQ(back.count, 0);
    zero.Dispose();
    array.Dispose();
}

TEST_F(TextArrayHost, To4Darray_AnotherKind_IsResizedToZero) {  // Required
    ZR_TextArray array = MakeArray({"a", "b"});
    PA_Variable longints = PA_CreateVariable(eVK_ArrayLongint);
    PA_ResizeArray(&longints, 5);
    array.To4Darray(&longints);
    EXPECT_EQ(PA_GetArrayNbElements(&longints), 0);
    PA_ClearVariable(&longints);
    array.Dispose();
    array.Create();  // never resized: null texts
    PA_Variable texts = PA_CreateVariable(eVK_ArrayText);
    PA_ResizeArray(&texts, 3);
    array.To4Darray(&texts);
    EXPECT_EQ(PA_GetArrayNbElements(&texts), 0);
    PA_ClearVariable(&texts);
}

TEST_F(TextArrayHost, Parameter_TextArray_ReadAndWritten) {
    PA_Variable texts = PA_CreateVariable(eVK_ArrayText), longints = PA_CreateVariable(eVK_ArrayLongint);
    PA_ResizeArray(&longints, 4);
    void* parameters[] = {&texts, &longints};
    PluginBlock block = {parameters, nullptr, nullptr};
    ZR_TextArray array = MakeArray({"a", "b", "c"}), back;
    array.To4DParameter(&block, 1);
    array.To4DParameter(&block, 2);
    array.To4DParameter(&block, 0);
    EXPECT_EQ(PA_GetArrayNbElements(&texts), 3);
    EXPECT_EQ(PA_GetArrayNbElements(&longints), 4);
    back.CreateFrom4DParameter(&block, 1);
    EXPECT_EQ(All(back), All(array));
    back.Dispose();
    back.CreateFrom4DParameter(&block, 2);
    EXPECT_EQ(back.count, 0);
    PA_ClearVariable(&texts);
    PA_ClearVariable(&longints);
    array.Dispose();
}
