#include "tests/core/FakeHost.h"

using TextHost = fake::Test;

TEST_F(TextHost, Charset_IntoText_KeepsWholeUnits) {
    static const struct {
        std::string bytes;
        PA_4DCharSet charset;
        std::u16string expected;
    } rows[] = {{"", eCS_UTF8, u""},
                {"a", eCS_UTF8, u"a"},
                {"\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80", eCS_UTF8, u"\u00E4\u20AC\U0001F600"},
                {std::string("a\0\xAC\x20", 4), eCS_UTF16, u"a\u20AC"},
                {std::string("a\0\0\0", 4), eCS_UTF32, u"a"},
                {"\xC3\xA4", eCS_System, u"\u00E4"}};
    for (const auto& row : rows) {
        ZR_Text text, fromHandle;
        text.Create(row.bytes.data(), static_cast<long>(row.bytes.size()), row.charset);
        EXPECT_EQ(Units(text), row.expected);
        ZR_Handle bytes = MakeBytes(row.bytes);
        fromHandle.CreateFromHandle(&bytes, row.charset);
        EXPECT_EQ(Units(fromHandle), row.expected);
        text.Dispose();
        fromHandle.Dispose();
        bytes.Dispose();
    }
}

TEST_F(TextHost, AddUTF8String_WithAndWithoutLength_Appends) {
    ZR_Text text = MakeText(u"<");
    text.AddUTF8String("\xC3\xA4");
    text.AddUTF8String("bcd", 2);
    text.AddUTF8String("x", -1);
    text.AddUTF8String("x", 0);
    EXPECT_EQ(Units(text), u"<\u00E4bc");
    text.Dispose();
}

TEST_F(TextHost, CreateHandle_RoomOfTwoBytesAUnit_CutsUTF8) {  // Required
    static const struct {
        std::u16string text;
        PA_4DCharSet charset;
        std::string expected;
    } rows[] = {{u"", eCS_UTF8, ""},
                {u"ab", eCS_UTF8, "ab"},
                {u"\u00E4\u00F6", eCS_UTF8, "\xC3\xA4\xC3\xB6"},
                {u"\u20AC\u20AC\u20AC", eCS_UTF8, "\xE2\x82\xAC\xE2\x82\xAC"},  // 9 bytes wanted, room for 6
                {u"\U0001F600", eCS_UTF8, "\xF0\x9F\x98\x80"},
                {u"a\u20AC", eCS_UTF16, std::string("a\0\xAC\x20", 4)},
                {u"\u20AC", eCS_UTF32, std::string("\xAC\x20\0\0", 4)}};
    for (const auto& row : rows) {
        ZR_Text text = MakeText(row.text);
        ZR_Handle handle = text.CreateHandle(row.charset);
        EXPECT_EQ(Bytes(handle), row.expected);
        EXPECT_EQ(handle.elementSize, 1);
        handle.Dispose();
        text.Dispose();
    }
}

TEST_F(TextHost, GetWstring_Text_AssignsCharacters) {
    ZR_Text text = MakeText(u"a\U0001F600");
    std::wstring wide = L"old";
    text.Get_wstring(&wide);
    EXPECT_EQ(wide, L"a\U0001F600");
    text.Dispose();
    text.Get_wstring(&wide);
    EXPECT_EQ(wide, L"");
    text.Get_wstring(nullptr);
}

TEST_F(TextHost, Unistring_Records_ArePassedBothWays) {
    ZR_Text text = MakeText(u"abc"), other;
    PA_Unistring record = text.GetUnistring();
    EXPECT_EQ(record.fLength, 3);
    other.CreateWithUnistringPtr(&record);
    EXPECT_EQ(Units(other), u"abc");
    other.Dispose();
    other.CreateWithUnistringAndDisposeUnistring(record);
    EXPECT_EQ(Units(other), u"abc");
    EXPECT_EQ(fake::state.strings, 0);

    PA_Unistring* cached = text.GetUnistringPtr();
    EXPECT_EQ(cached, &text.unistring);
    EXPECT_TRUE(text.unistringValid);
    text.AddString("d");  // the record is a snapshot
    EXPECT_EQ(text.unistring.fLength, 3);
    text.GetUnistringPtr();
    EXPECT_EQ(text.unistring.fLength, 4);
    EXPECT_EQ(fake::state.strings, 1);
    other.SetUnistring(&text.unistring);
    EXPECT_EQ(Units(other), u"abcd");
    other.SetUnistring(nullptr);
    EXPECT_EQ(other.count, 0);
    text.Copy(&other);
    EXPECT_EQ(fake::state.strings, 0);
    EXPECT_FALSE(text.unistringValid);
    text.Dispose();
    other.Dispose();
}

TEST_F(TextHost, Variable_Kinds_OnlyTextIsRead) {
    ZR_Text text = MakeText(u"ab"), back;
    PA_Variable variable = text.CreateVariable();
    EXPECT_EQ(variable.fType, eVK_Text);
    back.CreateFrom4DVariable(&variable);
    EXPECT_EQ(Units(back), u"ab");
    text.AddString("c");
    text.To4DVariable(&variable);
    text.To4DVariable(nullptr);
    back.Dispose();
    back.CreateFrom4DVariable(&variable);
    EXPECT_EQ(Units(back), u"abc");
    PA_ClearVariable(&variable);
    back.Dispose();
    PA_Variable number = PA_CreateVariable(eVK_Longint);
    back.CreateFrom4DVariable(&number);
    EXPECT_EQ(back.count, 0);
    text.Dispose();
}

TEST_F(TextHost, Array_Elements_AreCopiedBothWays) {
    PA_Variable array = PA_CreateVariable(eVK_ArrayText);
    PA_ResizeArray(&array, 2);
    ZR_Text text = MakeText(u"x"), back;
    text.To4DArray(&array, 2);
    text.To4DArray(&array, 3);
    text.To4DArray(&array, -1);
    text.To4DArray(nullptr, 1);
    static const struct {
        long index;
        std::u16string expected;
    } rows[] = {{1, u""}, {2, u"x"}, {3, u""}, {-1, u""}};
    for (const auto& row : rows) {
        back.CreateFrom4DArray(&array, row.index);
        EXPECT_EQ(Units(back), row.expected) << row.index;
        back.Dispose();
    }
    PA_ClearVariable(&array);
    text.Dispose();
}

TEST_F(TextHost, Parameter_OneBased_ReadWrittenAndReturned) {
    PA_Unistring first = fake::NewString(u"one"), second = fake::NewString(u"two"), result = fake::NewString(u"");
    void* parameters[] = {&first, &second};
    PluginBlock block = {parameters, &result, nullptr};
    ZR_Text text;
    text.CreateFrom4DParameter(&block, 2);
    EXPECT_EQ(Units(text), u"two");
    text.To4DParameter(&block, 1);
    EXPECT_EQ(fake::UnitsOf(first.fString), u"two");
    text.ReturnText(&block);
    EXPECT_EQ(fake::UnitsOf(result.fString), u"two");
    text.Dispose();
    text.CreateFrom4DParameter(&block, 0);
    EXPECT_EQ(text.count, 0);
    text.To4DParameter(&block, 0);
    text.To4DParameter(nullptr, 1);
    text.ReturnText(nullptr);
    text.ReturnText(&block);
    EXPECT_EQ(result.fLength, 0);
    for (PA_Unistring* record : {&first, &second, &result}) PA_DisposeUnistring(record);
    text.Dispose();
}

TEST_F(TextHost, EqualWithWildChar_EmptyTexts_DoNotAskTheHost) {
    static const struct {
        std::u16string left, right;
        bool expected, asks;
    } rows[] = {{u"", u"", true, false},      {u"a", u"", false, false},   {u"", u"@", false, false},
                {u"abc", u"ABC", true, true}, {u"abc", u"a@", true, true}, {u"abc", u"b@", false, true}};
    for (const auto& row : rows) {
        ZR_Text left = MakeText(row.left), right = MakeText(row.right);
        long calls = fake::state.calls;
        EXPECT_EQ(left.EqualWithWildChar(&right), row.expected);
        EXPECT_EQ(fake::state.calls - calls, row.asks ? 1 : 0);
        left.Dispose();
        right.Dispose();
    }
    ZR_Text empty;
    empty.Create();
    EXPECT_TRUE(empty.EqualWithWildChar(nullptr));
}

TEST_F(TextHost, AddTableName_AndFieldName_ReplaceTheContents) {  // Required
    fake::state.names[{3, 0}] = u"Customers";
    fake::state.names[{3, 2}] = u"City";
    ZR_Text text = MakeText(u"old");
    text.AddTableName(3);
    EXPECT_EQ(Units(text), u"Customers");
    text.AddFieldName(3, 2);
    EXPECT_EQ(Units(text), u"City");
    text.AddFieldName(3, 9);
    EXPECT_EQ(Units(text), u"");
    text.Dispose();
}

TEST_F(TextHost, AddLongWithFormat_HostResult_IsAppended) {
    ZR_Text text = MakeText(u"=");
    text.AddLongWithFormat(-42, "##0");
    EXPECT_EQ(Units(text), u"=##0:-42");
    text.AddLongWithFormat(1, nullptr);
    EXPECT_EQ(Units(text), u"=##0:-42:1");
    text.Dispose();
}

TEST_F(TextHost, GetLocalizedString_ByKeyAndNumber_IsAppended) {
    fake::state.localised[u"key\u00E9"] = u"value";
    fake::state.localisedByID[{15, 2}] = u"second";
    ZR_Text text = MakeText(u"=");
    text.GetLocalizedString("key\xE9");
    text.GetLocalizedString("unknown");
    text.GetLocalizedString(15, 2);
    text.GetLocalizedString(15, 3);
    EXPECT_EQ(Units(text), u"=valueunknownsecond");
    text.Dispose();
}

TEST_F(TextHost, NoHost_EveryMember_IsNeutral) {
    gCall4D = nullptr;
    ZR_Text text = MakeText(u"abc"), other;
    other.Create("abc", 3, eCS_UTF8);
    EXPECT_EQ(other.count, 0);
    EXPECT_EQ(text.CreateHandle(eCS_UTF8).count, 0);
    EXPECT_EQ(text.GetUnistringPtr()->fLength, 0);
    text.AddTableName(1);
    EXPECT_EQ(text.count, 0);
    text.Dispose();
    gCall4D = fake::Call4D;
}

TEST_F(TextHost, GetUnistring_ZeroUnitInside_ReachesTheHostWhole) {
    unsigned short units[] = {'a', 0, 'b'};
    ZR_Text text, back;
    text.Create();
    text.AddUniBuffer(units, 3);
    PA_Variable variable = text.CreateVariable();
    back.CreateFrom4DVariable(&variable);
    EXPECT_TRUE(back.Equal(&text));
    PA_ClearVariable(&variable);
    back.Dispose();
    text.Dispose();
}
