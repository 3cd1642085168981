// The bridge on the embedded host: what one side sends the other understands.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "host/Host.h"
#include "plugin/ZR_API_Bridge.h"
#include "plugin/ZR_API_Numbers.h"
#include "plugin/ZR_API_Plugin.h"

namespace {

struct Wide {
    std::u16string text;
    Wide(const char* t) : text(t, t + strlen(t)) {}
    Wide(const char16_t* t) : text(t) {}
    operator const PA_Unichar*() const { return (const PA_Unichar*)text.c_str(); }
    PA_Unistring record() { return {(int32_t)text.size(), (PA_Unichar*)text.data(), nullptr}; }
};
std::string Narrow(const PA_Unichar* t) {
    std::string s;
    while (t && *t) s += (char)*t++;
    return s;
}
std::u16string TakeUnits(PA_Unistring t) {
    std::u16string units(reinterpret_cast<const char16_t*>(t.fString), size_t(t.fString ? t.fLength : 0));
    PA_DisposeUnistring(&t);
    return units;
}
std::string Take(PA_Unistring t) {
    std::string s = t.fString ? std::string(t.fString, t.fString + t.fLength) : "";
    PA_DisposeUnistring(&t);
    return s;
}

class BridgeOnHost : public testing::Test {
  protected:
    std::unique_ptr<zrhost::Host> host = zrhost::Host::Start();
    void SetUp() override {
        ZR_StartupRecord record = host->startupRecord();
        FourDPackex(-1, &record, nullptr, nullptr);
        ASSERT_EQ(+record.fInterfaceVersion, 5120u);
    }
    void TearDown() override { FourDPackex(-2, nullptr, nullptr, nullptr); }
};

}  // namespace

TEST_F(BridgeOnHost, Handles_MadeSizedLocked_AnswerAsTheBridgeAsks) {
    PA_Handle h = PA_NewHandle(0);
    ASSERT_NE(h, nullptr);
    EXPECT_TRUE(PA_SetHandleSize(h, 5));
    EXPECT_EQ(PA_GetHandleSize(h), 5);
    EXPECT_EQ(PA_LockHandle(h), *h);
    EXPECT_EQ(PA_GetHandleState(h), 1);
    PA_UnlockHandle(h);
    PA_DisposeHandle(h);
    EXPECT_EQ(PA_GetLastError(), 0);
    h = FromUserData("sako", 4);
    char b[5] = {};
    EXPECT_EQ(ToUserData(h, nullptr), 4);
    EXPECT_EQ(ToUserData(h, b), 4);
    EXPECT_STREQ(b, "sako");
    PA_DisposeHandle(h);
}

TEST_F(BridgeOnHost, Strings_ComparedConvertedLocalised_AnswerAsTheBridgeAsks) {
    PA_Unistring t = PA_CreateUnistring(Wide("abc"));
    PA_SetUnistring(&t, Wide("defg"));
    EXPECT_EQ(Take(t), "defg");
    Wide a("Hello"), b("h@"), c("hello");
    EXPECT_EQ(PA_CompareUniBuffers(a, 5, b, 2, false, true), 0);
    EXPECT_EQ(PA_CompareUniBuffers(a, 5, c, 5, false, false), 0);
    EXPECT_NE(PA_CompareUniBuffers(a, 5, c, 5, true, false), 0);
    char bytes[16];
    EXPECT_EQ(PA_ConvertCharsetToCharset((const PA_Unichar*)a, 10, 2, bytes, 16, 7), 5);
    EXPECT_EQ(std::string(bytes, 5), "Hello");
    PA_LocaliseString(Wide("key"), &t, 1);
    EXPECT_EQ(Take(t), "key");
    EXPECT_EQ(Take(PA_LocaliseStringByID(1, 1, 1)), "");
}

TEST_F(BridgeOnHost, Variables_OfEveryArrayKindAndByPointer_RoundTrip) {
    for (int kind : {14, 15, 16, 17, 19, 20, 22, 31, 32, 34, 39}) {
        PA_Variable v = PA_CreateVariable(kind);
        PA_ResizeArray(&v, 3);
        EXPECT_EQ(PA_GetLastError(), 0) << kind;
        EXPECT_EQ(+v.uValue.fArray.fSize, 3) << kind;
        PA_SetStringInArray(&v, 2, PA_CreateUnistring(Wide("two")));
        PA_SetLongintInArray(&v, 2, 2);
        PA_SetBlobInArray(&v, 2, 3, FromUserData("abc", 3));
        PA_SetObjectInArray(&v, 2, PA_CreateObject());
        PA_SetPointerInArray(&v, 2, PA_NewHandle(42));
        PA_SetVariable(Wide("arr"), &v, 1);
        EXPECT_EQ(PA_GetLastError(), 0) << kind;
        PA_ResizeArray(&v, 1);
        PA_ClearVariable(&v);
        v = PA_GetVariable(Wide("ARR"));
        EXPECT_EQ(v.fType, kind);
        EXPECT_EQ(+v.uValue.fArray.fSize, 3) << kind;
        if (kind == 34) { EXPECT_EQ(Narrow(PA_GetStringInArray(&v, 2).fString), "two"); }
        if (kind == 16 || kind == 32) { EXPECT_EQ(PA_GetLongintInArray(&v, 2), 2); }
        int size = 0;
        if (kind == 31) {
            EXPECT_NE(PA_GetBlobInArray(&v, 2, &size), nullptr);
            EXPECT_EQ(size, 3);
        }
        if (kind == 39) { EXPECT_NE(PA_GetObjectInArray(&v, 2), nullptr); }
        if (kind == 20) { EXPECT_NE(PA_GetPointerInArray(&v, 2), nullptr); }
        PA_ClearVariable(&v);
        PA_Variable none = PA_CreateVariable(5);
        PA_SetVariable(Wide("arr"), &none, 1);
    }
    PA_Variable n = PA_CreateVariable(9);
    PA_SetLongintVariable(&n, 7);
    PA_SetVariable(Wide("<>n"), &n, 0);
    EXPECT_EQ(PA_GetLastError(), 4001);
    PA_SetVariable(Wide("<>n"), &n, 1);
    n = PA_GetVariable(Wide("<>N"));
    EXPECT_EQ(PA_GetLongintVariable(&n), 7);
    EXPECT_EQ(PA_GetVariable(Wide("n")).fType, 5);
    PA_Handle p = PA_GetPointerByName(Wide("<>n"));
    ASSERT_NE(p, nullptr);
    int kind;
    long element, length;
    PA_GetPointerValueProperties((PointerBlock*)*p, &kind, &element, &length);
    EXPECT_EQ(kind, 9);
    PA_Variable v = PA_GetPointerValue((PointerBlock*)*p);
    EXPECT_EQ(PA_GetLongintVariable(&v), 7);
    PA_SetLongintVariable(&v, 8);
    PA_SetPointerValue((PointerBlock*)*p, &v);
    n = PA_GetVariable(Wide("<>n"));
    EXPECT_EQ(PA_GetLongintVariable(&n), 8);
    PA_Variable copy;
    PA_CopyVariable(&n, &copy);
    EXPECT_EQ(PA_GetLongintVariable(&copy), 8);
    PA_Variable ref;
    PA_SetVariableOrFieldReference(&ref, (PointerBlock*)*p);
    PA_ClearVariable(&ref);
    PA_SetTableFieldVariable(&ref, 1, 2);
    PA_CopyVariable(&ref, &copy);
    EXPECT_EQ(+copy.fFiller, 1);
    PA_ClearVariable(&ref);
    PA_ClearVariable(&copy);
    PA_DisposeHandle(p);
}

TEST_F(BridgeOnHost, Objects_ThroughJsonAndMembers_RoundTrip) {
    PA_ObjectRef o = PA_CreateObject();
    ASSERT_NE(o, nullptr);
    Wide key("name");
    PA_Unistring k = key.record();
    PA_Variable t = PA_CreateVariable(33);
    PA_SetStringVariable(&t, PA_CreateUnistring(Wide("x")));
    PA_SetObjectProperty(o, &k, &t);
    EXPECT_TRUE(PA_HasObjectProperty(o, &k));
    PA_Variable back = PA_GetObjectProperty(o, &k);
    EXPECT_EQ(Take(PA_GetStringVariable(&back)), "x");
    PA_ClearVariable(&back);
    PA_ClearVariable(&t);
    PA_ObjectRef d = PA_DuplicateObject(o);
    ASSERT_NE(d, nullptr);
    EXPECT_NE(d, o);
    PA_Variable v = PA_CreateVariable(38);
    PA_SetObjectVariable(&v, d);
    EXPECT_EQ(Take(PA_JsonStringify(&v, false)), "{\"name\":\"x\"}");
    EXPECT_NE(Take(PA_JsonStringify(&v, true)).find('\n'), std::string::npos);
    Wide json("[{\"a\":1},{\"a\":2}]");
    PA_Unistring j = json.record();
    PA_Variable arr = PA_JsonParse(&j, 39);
    EXPECT_EQ(arr.fType, 39);
    EXPECT_EQ(+arr.uValue.fArray.fSize, 2);
    EXPECT_EQ(Take(PA_JsonStringify(&arr, false)), "[{\"a\":1},{\"a\":2}]");
    PA_ClearVariable(&arr);
    PA_Variable coll = PA_JsonParse(&j, 0);
    EXPECT_EQ(coll.fType, 42);
    PA_CollectionRef c = PA_GetCollectionVariable(&coll);
    EXPECT_EQ(PA_GetCollectionLength(c), 2);
    PA_SetCollectionElement(c, 3, &v);
    EXPECT_EQ(PA_GetCollectionLength(c), 4);
    PA_Variable e = PA_GetCollectionElement(c, 3);
    EXPECT_EQ(e.fType, 38);
    PA_ClearVariable(&e);
    EXPECT_EQ(PA_GetCollectionElement(c, 9).fType, 5);
    Wide length("length"), push("push");
    PA_Unistring pushName = push.record();
    PA_Variable r = PA_ExecuteCollectionMethod(c, &pushName, &v, 1);
    EXPECT_EQ(PA_GetLastError(), 0);
    EXPECT_EQ(PA_GetCollectionLength(c), 5);
    PA_ClearVariable(&r);
    Wide nope("nope");
    PA_Unistring nopeName = nope.record();
    r = PA_ExecuteObjectMethod(o, &nopeName, nullptr, 0);
    EXPECT_EQ(PA_GetLastError(), 4008);
    PA_ClearVariable(&coll);
    PA_ClearVariable(&v);
    PA_Variable parsed = PA_JsonParse(&j, 38);
    PA_ClearVariable(&parsed);
    PA_DisposeObject(o);
    c = PA_CreateCollection();
    PA_IncrementCollectionRef(c);
    PA_DecrementCollectionRef(c);
    PA_DisposeCollection(c);
    EXPECT_EQ(PA_GetLastError(), 0);
    for (uint32_t version : {0x1400u, 0x1300u}) {
        Current4DVersion = version;
        o = PA_CreateObject();
        EXPECT_EQ(o != nullptr, version == 0x1400);
        PA_DisposeObject(o);
    }
}

TEST_F(BridgeOnHost, Language_CommandsMethodsExpressions_Run) {
    PA_Unichar name[256];
    PA_GetCommandName(41, name);
    EXPECT_EQ(Narrow(name), "ALERT");
    PA_GetCommandName(1999, name);
    EXPECT_EQ(Narrow(name), "");
    EXPECT_EQ(PA_Get4DVersion(), 0x1800);
    EXPECT_FALSE(PA_IsCompiled(true));
    PA_Variable p = PA_CreateVariable(33);
    PA_SetStringVariable(&p, PA_CreateUnistring(Wide("abc")));
    PA_Variable r = PA_ExecuteCommandByID(13, &p, 1);  // Uppercase
    EXPECT_EQ(Take(PA_GetStringVariable(&r)), "ABC");
    PA_ClearVariable(&r);
    PA_ClearVariable(&p);
    Wide code("vx:=3"), expression("3"), sum("1+2"), bad("((");
    PA_Unistring c = code.record(), e = expression.record(), b = bad.record();
    r = PA_ExecuteMethod(&c, nullptr, 0);
    EXPECT_EQ(PA_GetLastError(), 0);
    r = PA_GetVariable(Wide("vx"));
    EXPECT_EQ(PA_GetRealVariable(&r) + PA_GetLongintVariable(&r), 3);
    r = PA_ExecuteFunction(&e);
    EXPECT_EQ(PA_GetRealVariable(&r) + PA_GetLongintVariable(&r), 3);
    PA_Unistring s = sum.record();  // the host reads values and names, it does not reckon
    r = PA_ExecuteFunction(&s);
    EXPECT_EQ(PA_GetLastError(), 4004);
    EXPECT_EQ(r.fType, eVK_Undefined);
    r = PA_ExecuteFunction(&b);
    EXPECT_EQ(PA_GetLastError(), 4004);
    host->registerMethod(u"Twice", [](std::span<zrhost::Value> a) { return zrhost::Value(a[0].number() * 2); });
    PA_Variable n = PA_CreateVariable(1);
    PA_SetRealVariable(&n, 4);
    r = PA_ExecuteMethodByName(Wide("twice"), &n, 1);
    EXPECT_EQ(PA_GetRealVariable(&r), 8);
    r = PA_ExecuteMethodByName(Wide("thrice"), &n, 1);
    EXPECT_EQ(PA_GetLastError(), 4004);
    Wide twice("Twice");
    PA_Unistring tw = twice.record();
    r = PA_ExecuteMethod(&tw, &n, 1);
    EXPECT_EQ(PA_GetRealVariable(&r), 8);
    EXPECT_EQ(PA_ExecuteCommandByID(1999, nullptr, 0).fType, 5);
    EXPECT_EQ(PA_GetLastError(), 4003);
}

TEST_F(BridgeOnHost, HostTokens_CommandsAsNumbersAndBackAgain) {
    const char16_t* const sources[] = {
        u"vx:=3\rvy:=Uppercase(\"Uppercase \\\" x\") // Uppercase\r$Uppercase:=1\r/*Length*/Current date",
        u"",
        u"Uppercases(1)+Replace string(a;b;c)+my Length",
        u"\xE000\xE001 odd units \xFFFF",
    };
    for (const char16_t* source : sources) {
        Wide code(source);
        PA_Unistring c = code.record();
        PA_Handle tokens = PA_Tokenize(&c);
        ASSERT_NE(tokens, nullptr);
        PA_Unistring back = PA_Detokenize(tokens);
        EXPECT_EQ(TakeUnits(back), source);
        EXPECT_TRUE(PA_ByteSwapTokens(tokens));
        back = PA_Detokenize(tokens);  // of the other order: unreadable until it is turned back
        EXPECT_EQ(PA_GetLastError(), 4001);
        EXPECT_TRUE(PA_ByteSwapTokens(tokens));
        PA_DisposeUnistring(&back);
        back = PA_Detokenize(tokens);
        EXPECT_EQ(TakeUnits(back), source);
        PA_DisposeHandle(tokens);
    }
}

TEST_F(BridgeOnHost, HostTokens_RunLineByLineUpToAnError) {
    Wide code(u"vOne:=1\r\nvTwo:=Uppercase(\"two\")\r\rvBad:=((\rvThree:=3");
    PA_Unistring c = code.record();
    PA_Handle tokens = PA_Tokenize(&c);
    PA_ExecuteTokens(tokens);
    EXPECT_EQ(PA_GetLastError(), 4004);
    PA_Variable two = PA_GetVariable(Wide("vTwo"));
    EXPECT_EQ(Take(PA_GetStringVariable(&two)), "TWO");
    EXPECT_EQ(PA_GetVariable(Wide("vOne")).fType, eVK_Longint);
    EXPECT_EQ(PA_GetVariable(Wide("vThree")).fType, eVK_Undefined);
    PA_ClearVariable(&two);
    PA_DisposeHandle(tokens);
}

TEST_F(BridgeOnHost, HostTokens_UnreadableOnes_AreRefused) {
    const std::vector<std::vector<uint16_t>> rows = {
        {}, {0x3444}, {0x3444, 2, 65}, {1, 1, 65}, {0x3444, 1, 0xE000}, {0x3444, 1, 0xE001}, {0x3444, 1, 0xE000, 9999}};
    for (const auto& row : rows) {
        PA_Handle tokens = FromUserData(row.data(), int(row.size() * 2));
        PA_Unistring back = PA_Detokenize(tokens);
        EXPECT_EQ(PA_GetLastError(), 4001);
        EXPECT_EQ(back.fLength, 0);
        PA_ExecuteTokens(tokens);
        EXPECT_EQ(PA_GetLastError(), 4001);
        const bool marked = row.size() >= 2 && row[0] == 0x3444;
        EXPECT_EQ(PA_ByteSwapTokens(tokens), marked);
        if (tokens) PA_DisposeHandle(tokens);
    }
    EXPECT_FALSE(PA_ByteSwapTokens(nullptr));
}

TEST_F(BridgeOnHost, HostFacts_OfAnEmptyStructure_AreNeutral) {
    EXPECT_FALSE(ZR_IsTableNoValid(1));
    EXPECT_FALSE(ZR_IsFieldNoValid(1, 1));
    EXPECT_FALSE(ZR_IsCurrentProcessPreemptive());
    host->setOK(true);
    EXPECT_TRUE(ZR_GetOK());
    EXPECT_EQ(ZR_GetOKVariable(), 1);
    host->setOK(false);
    EXPECT_FALSE(ZR_GetOK());
    EXPECT_EQ(ZR_GetOKVariable(), 0);
    EXPECT_EQ(PA_GetCurrentProcessNumber(), 1);
    int runs = 0;
    PA_RunInMainProcess([](void* p) { ++*(int*)p; }, &runs);
    EXPECT_EQ(runs, 1);
    PA_Yield();
    PA_YieldAbsolute();
    EXPECT_EQ(PA_GetLastError(), 0);
}

TEST_F(BridgeOnHost, Formats_OfTheLocale_ReadBackWhatTheyWrite) {
    PA_Unichar b[256];
    PA_FormatLongint(1234567, Wide("###,###,###"), b);
    EXPECT_EQ(Narrow(b), "1,234,567");
    PA_FormatReal(0.5, nullptr, b);
    EXPECT_EQ(Narrow(b), "0.5");
    PA_FormatTime(3661, 1, b);
    EXPECT_EQ(Narrow(b), "01:01:01");
    EXPECT_EQ(PA_EvalTime(b), 3661);
    PA_FormatDate(31, 12, 1999, 2, b);
    short d, m, y;
    PA_EvalDate(b, &d, &m, &y);
    EXPECT_EQ(d, 31);
    EXPECT_EQ(m, 12);
    EXPECT_EQ(y, 1999);
    PA_FormatString(Wide("12345"), Wide("##-###"), b);
    EXPECT_EQ(Narrow(b), "12-345");
}

TEST_F(BridgeOnHost, StructureAndDialogs_OfNothing_AreNeutral) {
    PA_Unichar b[256];
    PA_GetTableName(1, b);
    EXPECT_EQ(b[0], 0);
    EXPECT_EQ(PA_GetFieldType(1, 1), -1);
    short t, f;
    PA_GetTableAndFieldNumbers(Wide("[A]B"), &t, &f);
    EXPECT_EQ(t + f, 0);
    EXPECT_EQ(PA_RecordNumber(1), -1);
    EXPECT_EQ(PA_RecordsInSelection(1), 0);
    EXPECT_EQ(PA_GetRealField(1, 1), 0);
    EXPECT_EQ(PA_OpenDialog(nullptr, Wide("Debugger_New"), Wide(""), 1, {}, true), nullptr);
    EXPECT_EQ(PA_GetLastError(), 4010);
    EXPECT_EQ(PA_ModalDialog(nullptr, b), 2);
}

TEST_F(BridgeOnHost, Pictures_MadeReadDuplicated_KeepTheirBytes) {
    static const unsigned char png[] = "\x89PNG\r\n\x1a\n\0\0\0\rIHDR\0\0\0\1\0\0\0\1\x8\6\0\0\0\x1f\x15\xc4\x89";
    PA_Picture p = PA_CreatePicture(png, sizeof png - 1);
    ASSERT_NE(p, nullptr);
    PA_Handle target = PA_NewHandle(0);
    EXPECT_EQ(Take(PA_GetPictureData(p, 0, target)), "image/png");
    EXPECT_EQ(PA_GetHandleSize(target), (long)sizeof png - 1);
    EXPECT_EQ(Take(PA_GetPictureData(p, 2, nullptr)), "");
    PA_GetPictureData(p, 2, nullptr);
    EXPECT_EQ(PA_GetLastError(), 4006);
    PA_DisposeHandle(target);
    PA_Variable v = PA_CreateVariable(10);
    PA_SetPictureVariable(&v, PA_DuplicatePicture(p));
    PA_SetPictureVariable(&v, PA_DuplicatePicture(p));
    PA_ClearVariable(&v);
    PA_DisposePicture(p);
    EXPECT_EQ(PA_CreatePicture(nullptr, 0), nullptr);
}
