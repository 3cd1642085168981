#include "language/ZR_API_Token.h"

#include <thread>

#include "plugin/ZR_API_Bridge.h"
#include "tests/language/LanguageTesting.h"

using Token = LanguageTest;

// A token over memory that was never set, ended with its scope.
class OneToken {
  public:
    OneToken() { memset(static_cast<void*>(&token), 0xA5, sizeof token); }
    explicit OneToken(ZREXE_TOKEN kind, ZR_Text* text = nullptr, long value = 0) : OneToken() {
        token.Create(kind, text);
        token.value.integer = value;
    }
    OneToken(const OneToken&) = delete;
    ~OneToken() { token.Dispose(); }
    ZR_Executer_Token* operator->() { return &token; }
    operator ZR_Executer_Token*() { return &token; }

  private:
    ZR_Executer_Token token;
};

TEST_F(Token, Kinds_HaveTheirNumbers) {
    EXPECT_EQ(ZREXE_TOKEN_LINE, 1);
    EXPECT_EQ(ZREXE_TOKEN_SEMICOLON, 15);
    EXPECT_EQ(ZREXE_TOKEN_POINTER, 23);
    EXPECT_EQ(ZREXE_TOKEN_RESERVED, 27);
    EXPECT_EQ(ZREXE_TOKEN_METHOD, 28);
    EXPECT_EQ(ZREXE_TOKEN_MEMBER_CALL, 37);
    EXPECT_EQ(ZREXE_TOKEN_NULL, 38);
    EXPECT_EQ(ZREXE_TOKEN_PARAMETERS_END, 40);
    EXPECT_EQ(ZREXE_TOKEN_OTHER, 999);
    EXPECT_EQ(sizeof(ZREXE_TOKEN), 4u);
}

TEST_F(Token, Comparisons_StandAtTheirValue) {
    for (long i = 0; i < 6; i++) EXPECT_EQ(kZR_Comparisons[i].value, i + 1);
    EXPECT_STREQ(kZR_Comparisons[3].text, "#");
    EXPECT_EQ(kZR_Comparisons[0].hostCode, ZR_OP_LESS_EQUAL);
}

TEST_F(Token, Fields_StandInOrder) {
    ZR_Executer_Token token;
    auto at = [&](const void* field) {
        return static_cast<const char*>(field) - reinterpret_cast<const char*>(&token);
    };
    EXPECT_EQ(at(&token.kind), 0);
    EXPECT_EQ(at(&token.parent), 8);
    EXPECT_EQ(at(&token.text), 16);
    EXPECT_EQ(at(&token.nameCache), 96);
    EXPECT_EQ(at(&token.value), 176);
    EXPECT_EQ(at(&token.picture), 184);
    EXPECT_LT(at(&token.picture), at(&token.blob));
    EXPECT_LT(at(&token.blob), at(&token.objectRef));
    EXPECT_LT(at(&token.objectRef), at(&token.collectionRef));
}

// Life ------------------------------------------------------------------------------------------------------------

TEST_F(Token, Create_NullText_IsEmptyAndComplete) {
    OneToken token(ZREXE_TOKEN_STRING);
    EXPECT_EQ(token->kind, ZREXE_TOKEN_STRING);
    EXPECT_EQ(token->text.count, 0);
    EXPECT_EQ(token->text.elementSize, 2);
    EXPECT_EQ(token->nameCache.count, 0);
    EXPECT_EQ(token->blob.count, 0);
    EXPECT_EQ(token->blob.elementSize, 1);
    EXPECT_EQ(token->picture.displayFormat, 3);
    EXPECT_EQ(token->picture.quality, 1.0f);
    EXPECT_EQ(token->picture.format, 0);
    EXPECT_EQ(token->parent, nullptr);
    EXPECT_EQ(token->objectRef, nullptr);
    EXPECT_EQ(token->collectionRef, nullptr);
}

TEST_F(Token, Create_ValueStaysAsItWas) {
    ZR_Executer_Token token;
    token.value.integer = 77;
    token.Create(ZREXE_TOKEN_LOGIC, nullptr);
    EXPECT_EQ(token.value.integer, 77);
    token.Dispose();
}

TEST_F(Token, Create_Empty_AllocatesNothing) {
    long handles = 0, bytes = 0, handlesAfter = 0, bytesAfter = 0;
    OneToken warm(ZREXE_TOKEN_LINE);
    ZR_GetMemoryInfo(&handles, &bytes);
    OneToken token(ZREXE_TOKEN_LINE);
    ZR_GetMemoryInfo(&handlesAfter, &bytesAfter);
    EXPECT_EQ(handles, handlesAfter);
    EXPECT_EQ(bytes, bytesAfter);
}

TEST_F(Token, Create_TextIsCopied) {
    Text source(u"name");
    OneToken token(ZREXE_TOKEN_LOCAL, source);
    source->SetChar(0, 'N');
    EXPECT_EQ(Units(token->GetText()), u"name");
}

TEST_F(Token, CreateDeep_OwnsText) {
    auto source = std::make_unique<OneToken>(ZREXE_TOKEN_STRING, Text(u"abc"), 5);
    OneToken copy;
    copy->Create(*source, /*shallow*/ false);
    EXPECT_EQ(copy->parent, nullptr);
    source.reset();
    EXPECT_EQ(Units(copy->GetText()), u"abc");
    EXPECT_EQ(copy->value.integer, 5);
}

TEST_F(Token, CreateDeep_CopiesBlobAndPicture) {
    OneToken source(ZREXE_TOKEN_PICTURE);
    source->blob.AddLong(1);
    Block bytes;
    bytes->AddLong(2);
    source->picture.SetNativePicture(bytes);
    OneToken copy;
    copy->Create(source, /*shallow*/ false);
    EXPECT_EQ(copy->blob.count, 4);
    EXPECT_NE(copy->blob.data, source->blob.data);
    EXPECT_EQ(copy->picture.nativeData.count, 4);
    EXPECT_NE(copy->picture.nativeData.data, source->picture.nativeData.data);
}

TEST_F(Token, CreateDeep_OfShallowCopy_KeepsParent) {  // Required: and so still reads from there
    OneToken source(ZREXE_TOKEN_STRING, Text(u"abc"));
    OneToken shallow, deep;
    shallow->Create(source, /*shallow*/ true);
    deep->Create(shallow, /*shallow*/ false);
    EXPECT_EQ(deep->parent, static_cast<ZR_Executer_Token*>(source));
    EXPECT_EQ(deep->text.count, 0);
    EXPECT_EQ(Units(deep->GetText()), u"abc");
}

TEST_F(Token, CreateShallow_SharesStorage) {
    OneToken source(ZREXE_TOKEN_BLOB, Text(u"abc"), 9);
    source->blob.AddLong(1);
    OneToken copy;
    copy->Create(source, /*shallow*/ true);
    EXPECT_EQ(copy->parent, static_cast<ZR_Executer_Token*>(source));
    EXPECT_EQ(copy->text.count, 0);
    EXPECT_EQ(copy->GetText(), &source->text);
    EXPECT_EQ(copy->GetBlob(), &source->blob);
    EXPECT_EQ(copy->GetPicture(), &source->picture);
    copy->value.integer = 10;
    EXPECT_EQ(source->value.integer, 9);
}

TEST_F(Token, CreateShallow_OfShallowCopy_HasFirstSourceAsParent) {
    OneToken source(ZREXE_TOKEN_STRING, Text(u"abc"));
    OneToken second;
    {
        OneToken first;
        first->Create(source, /*shallow*/ true);
        second->Create(first, /*shallow*/ true);
    }
    EXPECT_EQ(second->parent, static_cast<ZR_Executer_Token*>(source));
    EXPECT_EQ(Units(second->GetText()), u"abc");
}

TEST_F(Token, Copies_OfReferences_AreCounted) {
    static const ZREXE_TOKEN kinds[] = {ZREXE_TOKEN_OBJECT, ZREXE_TOKEN_COLLECTION};
    for (ZREXE_TOKEN kind : kinds) {
        for (bool shallow : {false, true}) {
            void* object = host->NewObject();
            OneToken source(kind);
            source->SetObjectRef(object);
            source->SetCollectionRef(object);
            EXPECT_EQ(host->references[object], 1) << kind;
            {
                OneToken copy;
                copy->Create(source, shallow);
                EXPECT_EQ(host->references[object], 2) << kind << shallow;
            }
            EXPECT_EQ(host->references[object], 1) << kind << shallow;
        }
    }
}

TEST_F(Token, Dispose_Twice_ReleasesOnce) {
    void* object = host->NewObject();
    OneToken token(ZREXE_TOKEN_OBJECT, Text(u"abc"));
    token->SetObjectRef(object);
    token->Dispose();
    token->Dispose();
    EXPECT_EQ(host->references[object], 0);
    EXPECT_EQ(token->objectRef, nullptr);
}

TEST_F(Token, EmptyToken_FromSeveralThreads_IsComplete) {
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; i++) {
        threads.emplace_back([] {
            OneToken token(ZREXE_TOKEN_LINE);
            EXPECT_EQ(token->text.elementSize, 2);
        });
    }
    for (auto& thread : threads) thread.join();
}

// From the host ---------------------------------------------------------------------------------------------------

static std::string DescribeHostValue(PA_Variable* variable) {
    OneToken token;
    token->Create(variable);
    return std::to_string(token->kind) + " " + Describe(token);
}

TEST_F(Token, CreateFromVariable_Real) {
    PA_Variable variable = PA_CreateVariable(eVK_Real);
    PA_SetRealVariable(&variable, 2.5);
    EXPECT_EQ(DescribeHostValue(&variable), "6 n:2.5");
}

TEST_F(Token, CreateFromVariable_Date) {
    PA_Variable variable = PA_CreateVariable(eVK_Date);
    PA_SetDateVariable(&variable, 31, 12, 1999);
    EXPECT_EQ(DescribeHostValue(&variable), "16 d:31/12/1999");
}

TEST_F(Token, CreateFromVariable_Boolean) {
    PA_Variable variable = PA_CreateVariable(eVK_Boolean);
    EXPECT_EQ(DescribeHostValue(&variable), "18 b:0");
    PA_SetBooleanVariable(&variable, true);
    EXPECT_EQ(DescribeHostValue(&variable), "18 b:1");
}

TEST_F(Token, CreateFromVariable_Integer_ReadsAsZero) {  // Required: only the longint is read
    PA_Variable variable = PA_CreateVariable(eVK_Integer);
    PA_SetLongintVariable(&variable, 12);
    EXPECT_EQ(DescribeHostValue(&variable), "6 n:0");
}

TEST_F(Token, CreateFromVariable_LongintAndKind25) {
    for (int kind : {9, 25}) {
        PA_Variable variable = PA_CreateVariable(eVK_Longint);
        PA_SetLongintVariable(&variable, -12);
        variable.fType = static_cast<uint8_t>(kind);
        EXPECT_EQ(DescribeHostValue(&variable), "6 n:-12") << kind;
    }
}

TEST_F(Token, CreateFromVariable_Time) {
    PA_Variable variable = PA_CreateVariable(eVK_Time);
    PA_SetTimeVariable(&variable, 3661);
    EXPECT_EQ(DescribeHostValue(&variable), "17 t:3661");
}

TEST_F(Token, CreateFromVariable_TextAndOlderTexts) {
    for (int kind : {33, 0, 2, 24}) {
        PA_Variable variable = Text(u"hello")->CreateVariable();
        variable.fType = static_cast<uint8_t>(kind);
        EXPECT_EQ(DescribeHostValue(&variable), "10 s:hello") << kind;
        variable.fType = eVK_Text;
        PA_ClearVariable(&variable);
    }
}

TEST_F(Token, CreateFromVariable_Blob) {
    Block bytes;
    bytes->AddLong(7);
    PA_Variable variable = bytes->CreateVariable();
    OneToken token;
    token->Create(&variable);
    EXPECT_EQ(token->kind, ZREXE_TOKEN_BLOB);
    EXPECT_TRUE(token->GetBlob()->Equal(bytes));
    PA_ClearVariable(&variable);
}

TEST_F(Token, CreateFromVariable_Picture) {
    PA_Variable variable = PA_CreateVariable(eVK_Picture);
    variable.uValue.fPicture = host->NewPicture("png bytes");
    OneToken token;
    token->Create(&variable);
    EXPECT_EQ(token->kind, ZREXE_TOKEN_PICTURE);
    EXPECT_EQ(token->GetPictureSize(), 9);
    PA_ClearVariable(&variable);
}

TEST_F(Token, CreateFromVariable_ObjectAndCollection_TakeReferences) {
    void* object = host->NewObject();
    PA_Variable variable = PA_CreateVariable(eVK_Object);
    variable.uValue.fObject = object;
    {
        OneToken token;
        token->Create(&variable);
        EXPECT_EQ(token->kind, ZREXE_TOKEN_OBJECT);
        EXPECT_EQ(token->objectRef, object);
        EXPECT_EQ(host->references[object], 1);
    }
    variable = PA_CreateVariable(eVK_Collection);
    variable.uValue.fCollection = object;
    OneToken token;
    token->Create(&variable);
    EXPECT_EQ(token->kind, ZREXE_TOKEN_COLLECTION);
    EXPECT_EQ(token->collectionRef, object);
    EXPECT_EQ(host->references[object], 1);
}

TEST_F(Token, CreateFromVariable_NullAndOthers) {
    static const struct {
        int kind;
        int token;
    } rows[] = {{255, 38}, {23, 999}, {5, 999}, {14, 999}, {34, 999}, {18, 999}, {39, 999}, {31, 999}, {200, 999}};
    for (const auto& row : rows) {
        PA_Variable variable = {};
        variable.fType = static_cast<uint8_t>(row.kind);
        OneToken token;
        token->Create(&variable);
        EXPECT_EQ(token->kind, row.token) << row.kind;
    }
}

// To the host -----------------------------------------------------------------------------------------------------

TEST_F(Token, ToPAVariable_Scalars) {
    OneToken number(ZREXE_TOKEN_NUMBER);
    number->SetNumber(1.25);
    PA_Variable variable = number->ToPAVariable();
    EXPECT_EQ(variable.fType, eVK_Real);
    EXPECT_EQ(+variable.uValue.fReal, 1.25);

    OneToken date(ZREXE_TOKEN_DATE);
    ZR_Date day = {1, 2, 2003};
    date->SetDate(&day);
    variable = date->ToPAVariable();
    EXPECT_EQ(variable.fType, eVK_Date);
    EXPECT_EQ(+variable.uValue.fDate.fDay, 1);
    EXPECT_EQ(+variable.uValue.fDate.fMonth, 2);
    EXPECT_EQ(+variable.uValue.fDate.fYear, 2003);

    OneToken time(ZREXE_TOKEN_TIME, nullptr, (5L << 32) + 60);  // the low 32 bits
    variable = time->ToPAVariable();
    EXPECT_EQ(variable.fType, eVK_Time);
    EXPECT_EQ(+variable.uValue.fLongint, 60);

    OneToken truth(ZREXE_TOKEN_BOOLEAN, nullptr, 1);
    variable = truth->ToPAVariable();
    EXPECT_EQ(variable.fType, eVK_Boolean);
    EXPECT_EQ(+variable.uValue.fBoolean, 1);

    OneToken longint(ZREXE_TOKEN_LONGINT, nullptr, 0xFFFFFFFFL);
    variable = longint->ToPAVariable();
    EXPECT_EQ(variable.fType, eVK_Longint);
    EXPECT_EQ(+variable.uValue.fLongint, -1);
}

TEST_F(Token, ToPAVariable_Text_ThroughTheChain) {
    OneToken source(ZREXE_TOKEN_STRING, Text(u"abc"));
    OneToken copy;
    copy->Create(source, /*shallow*/ true);
    PA_Variable variable = copy->ToPAVariable();
    ZR_Text back;
    back.CreateFrom4DVariable(&variable);
    EXPECT_EQ(Units(&back), u"abc");
    back.Dispose();
    PA_ClearVariable(&variable);
}

TEST_F(Token, ToPAVariable_Picture) {
    OneToken token(ZREXE_TOKEN_PICTURE);
    Block bytes;
    bytes->AddLong(1);
    token->picture.SetNativePicture(bytes);
    PA_Variable variable = token->ToPAVariable();
    EXPECT_EQ(variable.fType, eVK_Picture);
    EXPECT_TRUE(variable.uValue.fPicture != nullptr);
    PA_ClearVariable(&variable);
}

TEST_F(Token, ToPAVariable_References_AreNotCounted) {
    void* object = host->NewObject();
    OneToken token(ZREXE_TOKEN_OBJECT);
    token->SetObjectRef(object);
    PA_Variable variable = token->ToPAVariable();
    EXPECT_EQ(variable.fType, eVK_Object);
    EXPECT_EQ((void*)variable.uValue.fObject, object);
    EXPECT_EQ(host->references[object], 1);

    OneToken list(ZREXE_TOKEN_COLLECTION);
    list->SetCollectionRef(object);
    variable = list->ToPAVariable();
    EXPECT_EQ(variable.fType, eVK_Collection);
    EXPECT_EQ((void*)variable.uValue.fCollection, object);
    EXPECT_EQ(host->references[object], 2);
}

TEST_F(Token, ToPAVariable_OtherKinds_AreUndefined) {  // Required: the BLOB among them
    for (int kind : {1, 2, 9, 11, 12, 19, 21, 22, 23, 30, 38, 999}) {
        OneToken token(static_cast<ZREXE_TOKEN>(kind));
        EXPECT_EQ(token->ToPAVariable().fType, eVK_Undefined) << kind;
    }
}

// Re-creating -----------------------------------------------------------------------------------------------------

TEST_F(Token, Recreating_ReleasesWhatWasHeld) {
    static const struct {
        const char* name;
        void (*change)(ZR_Executer_Token*);
        int kind;
        long value;
    } rows[] = {
        {"SetBoolean true", [](ZR_Executer_Token* t) { t->SetBoolean(true); }, 18, 1},
        {"SetBoolean false", [](ZR_Executer_Token* t) { t->SetBoolean(false); }, 18, 0},
        {"SetPointerToTable", [](ZR_Executer_Token* t) { t->SetPointerToTable(7); }, 23, 7},
        {"SetPointerToField", [](ZR_Executer_Token* t) { t->SetPointerToField(3, 5); }, 23, (3 << 16) + 5},
        {"SetPointerToVariable", [](ZR_Executer_Token* t) { t->SetPointerToVariable(Text(u"v"), -2); }, 23, -2},
    };
    for (const auto& row : rows) {
        void* object = host->NewObject();
        OneToken token(ZREXE_TOKEN_OBJECT, Text(u"old"));
        token->SetObjectRef(object);
        row.change(token);
        EXPECT_EQ(token->kind, row.kind) << row.name;
        EXPECT_EQ(token->value.integer, row.value) << row.name;
        EXPECT_EQ(host->references[object], 0) << row.name;
        EXPECT_NE(Units(token->GetText()), u"old") << row.name;
    }
}

TEST_F(Token, CreateNumberLongint_IsKind6) {
    OneToken token(ZREXE_TOKEN_STRING, Text(u"old"));
    token->CreateNumberLongint(-3);
    EXPECT_EQ(token->kind, ZREXE_TOKEN_NUMBER);
    EXPECT_EQ(token->GetNumber(), -3.0);
}

TEST_F(Token, SetPointerToVariable_WithItsOwnText_KeepsTheName) {
    OneToken token(ZREXE_TOKEN_VARIABLE, Text(u"name"));
    token->SetPointerToVariable(token->GetText(), ZREXE_POINTER_PROCESS);
    EXPECT_EQ(Units(token->GetText()), u"name");
    EXPECT_EQ(token->value.integer, -1);
}

TEST_F(Token, Recreating_ShallowCopy_LeavesTheParent) {
    OneToken source(ZREXE_TOKEN_STRING, Text(u"abc"));
    OneToken copy;
    copy->Create(source, /*shallow*/ true);
    copy->SetBoolean(true);
    EXPECT_EQ(copy->parent, nullptr);
    EXPECT_EQ(Units(source->GetText()), u"abc");
}

// Changing --------------------------------------------------------------------------------------------------------

TEST_F(Token, SetNumber_ByKind) {
    OneToken real(ZREXE_TOKEN_NUMBER), longint(ZREXE_TOKEN_LONGINT), other(ZREXE_TOKEN_TIME, nullptr, 4);
    real->SetNumber(1.75);
    longint->SetNumber(4294967295.0);
    other->SetNumber(8);
    EXPECT_EQ(real->GetNumber(), 1.75);
    EXPECT_EQ(longint->value.integer, -1);
    EXPECT_EQ(other->value.integer, 4);
}

TEST_F(Token, Dates_SetAndAdd) {
    OneToken token(ZREXE_TOKEN_DATE);
    ZR_Date date = {31, 12, 1999};
    token->SetDate(&date);
    token->Add(1);
    EXPECT_EQ(Describe(token), "d:1/1/2000");
    ZR_Date out = {9, 9, 9};
    token->GetDate(&out);
    EXPECT_EQ(out.year, 2000);
    OneToken other(ZREXE_TOKEN_NUMBER);
    other->SetDate(&date);
    other->Add(1);
    EXPECT_EQ(other->GetNumber(), 0.0);
    other->GetDate(&out);
    EXPECT_EQ(out.day + out.month + out.year, 0);
}

TEST_F(Token, References_SetAgain_ReleaseTheOld) {
    void* first = host->NewObject();
    void* second = host->NewObject();
    OneToken object(ZREXE_TOKEN_OBJECT), list(ZREXE_TOKEN_COLLECTION);
    object->SetObjectRef(first);
    object->SetObjectRef(first);
    EXPECT_EQ(host->references[first], 1);
    object->SetObjectRef(second);
    EXPECT_EQ(host->references[first], 0);
    host->references[first] = 1;  // a reference of the caller's, handed over
    object->SetObjectRefNoIncrement(first);
    EXPECT_EQ(host->references[first], 1);
    EXPECT_EQ(host->references[second], 0);
    list->SetCollectionRef(second);
    host->references[first]++;
    list->SetCollectionRefNoIncrement(first);
    EXPECT_EQ(host->references[second], 0);
    EXPECT_EQ(host->references[first], 2);
    list->SetCollectionRef(nullptr);
    EXPECT_EQ(host->references[first], 1);
}

TEST_F(Token, References_OnAnotherKind_DoNothing) {
    void* object = host->NewObject();
    OneToken token(ZREXE_TOKEN_STRING);
    token->SetObjectRef(object);
    token->SetObjectRefNoIncrement(object);
    token->SetCollectionRef(object);
    token->SetCollectionRefNoIncrement(object);
    EXPECT_EQ(token->objectRef, nullptr);
    EXPECT_EQ(token->collectionRef, nullptr);
    EXPECT_EQ(host->references[object], 0);
}

TEST_F(Token, SetObjectProperty_UsesTextAsKey) {
    void* object = host->NewObject();
    OneToken target(ZREXE_TOKEN_OBJECT, Text(u"name")), value(ZREXE_TOKEN_STRING, Text(u"Smith"));
    target->SetObjectRef(object);
    target->SetObjectProperty(value);
    ASSERT_EQ(host->properties.size(), 1u);
    EXPECT_EQ(host->properties[0].object, object);
    EXPECT_EQ(host->properties[0].key, u"name");
    EXPECT_EQ(host->properties[0].kind, eVK_Text);
    EXPECT_EQ(host->properties[0].text, u"Smith");

    OneToken inner(ZREXE_TOKEN_OBJECT);
    inner->SetObjectRef(object);
    target->SetObjectProperty(inner);
    EXPECT_EQ(host->properties.size(), 2u);
    EXPECT_EQ(host->references[object], 2);  // two tokens; the conversion took none and released none
}

TEST_F(Token, SetObjectProperty_WithoutText_DoesNothing) {
    OneToken target(ZREXE_TOKEN_OBJECT), other(ZREXE_TOKEN_STRING, Text(u"name")), value(ZREXE_TOKEN_NUMBER);
    target->SetObjectProperty(value);
    other->SetObjectProperty(value);
    EXPECT_TRUE(host->properties.empty());
}

// Reading ---------------------------------------------------------------------------------------------------------

TEST_F(Token, Readers_OfAnotherKind_AreNeutral) {
    OneToken token(ZREXE_TOKEN_COMMAND, Text(u"abc"), 0x30005);
    EXPECT_EQ(token->GetNumber(), 0.0);  // although value is not zero
    EXPECT_FALSE(token->GetBoolean());
    EXPECT_EQ(token->GetComparison(), 0);
    EXPECT_EQ(token->GetOperation(), 0);
    EXPECT_EQ(token->GetFormula(), 0);
    EXPECT_EQ(token->GetTable(), 0);
    EXPECT_EQ(token->GetField(), 0);
    EXPECT_EQ(token->GetPictureSize(), 0);
    EXPECT_EQ(token->GetVariableName()->count, 0);
    EXPECT_FALSE(token->PointerToTable());
    EXPECT_FALSE(token->PointerToField());
}

TEST_F(Token, GetNumber_OfLongint) {
    OneToken token(ZREXE_TOKEN_LONGINT, nullptr, 4294967295L);
    EXPECT_EQ(token->GetNumber(), 4294967295.0);
}

TEST_F(Token, GetBoolean_OnlyExactlyOne) {
    static const struct {
        long value;
        bool truth;
    } rows[] = {{0, false}, {1, true}, {2, false}, {-1, false}};
    for (const auto& row : rows) {
        OneToken token(ZREXE_TOKEN_BOOLEAN, nullptr, row.value);
        EXPECT_EQ(token->GetBoolean(), row.truth) << row.value;
    }
}

TEST_F(Token, GetFormula_LowUnit) {
    OneToken token(ZREXE_TOKEN_FORMULA, nullptr, 0x7FFF0000L + '+');
    EXPECT_EQ(token->GetFormula(), '+');
}

TEST_F(Token, GetTableAndField_ByKind) {
    static const struct {
        ZREXE_TOKEN kind;
        long value, table, field;
    } rows[] = {
        {ZREXE_TOKEN_TABLE, 70000, 70000, 0},
        {ZREXE_TOKEN_FIELD, (3 << 16) + 5, 3, 5},
        {ZREXE_TOKEN_POINTER, (3 << 16) + 5, 5, 3},  // Required: the other way round
        {ZREXE_TOKEN_POINTER, 3, 3, 0},
    };
    for (const auto& row : rows) {
        OneToken token(row.kind, nullptr, row.value);
        EXPECT_EQ(token->GetTable(), row.table) << row.kind;
        EXPECT_EQ(token->GetField(), row.field) << row.kind;
    }
}

TEST_F(Token, PointerToField_OfTable3Field5_GivesTable5Field3) {  // Required
    OneToken token(ZREXE_TOKEN_LINE);
    token->SetPointerToField(3, 5);
    EXPECT_EQ(token->GetTable(), 5);
    EXPECT_EQ(token->GetField(), 3);
    EXPECT_TRUE(token->PointerToField());
    EXPECT_FALSE(token->PointerToTable());
}

TEST_F(Token, PointerTests) {
    static const struct {
        const char16_t* name;
        long value;
        bool table, field;
    } rows[] = {
        {u"", 3, true, false},        {u"", 0, true, false},   {u"", (3 << 16) + 5, false, true},
        {u"", 3 << 16, false, false}, {u"v", 3, false, false}, {u"v", (3 << 16) + 5, false, false},
        {u"", 1L << 32, true, false}, {u"", -1, false, true},
    };
    for (const auto& row : rows) {
        OneToken token(ZREXE_TOKEN_POINTER, Text(row.name), row.value);
        EXPECT_EQ(token->PointerToTable(), row.table) << row.value;
        EXPECT_EQ(token->PointerToField(), row.field) << row.value;
    }
}

TEST_F(Token, GetVariableName_WithPrefix) {
    static const struct {
        ZREXE_TOKEN kind;
        const char16_t* name;
    } rows[] = {{ZREXE_TOKEN_VARIABLE, u"a"},
                {ZREXE_TOKEN_LOCAL, u"$a"},
                {ZREXE_TOKEN_INTERPROCESS, u"<>a"},
                {ZREXE_TOKEN_STRING, u""}};
    for (const auto& row : rows) {
        OneToken token(row.kind, Text(u"a"));
        ZR_Text* name = token->GetVariableName();
        EXPECT_EQ(Units(name), row.name);
        EXPECT_EQ(token->GetVariableName(), name);
        EXPECT_EQ(Units(name), row.name) << "rebuilt, not added to";
    }
}

TEST_F(Token, GetPictureSize_NeedsPicturesAllAlongTheChain) {
    OneToken source(ZREXE_TOKEN_PICTURE);
    Block bytes;
    bytes->AddLong(1);
    source->picture.SetNativePicture(bytes);
    OneToken copy;
    copy->Create(source, /*shallow*/ true);
    EXPECT_EQ(copy->GetPictureSize(), 4);
    source->kind = ZREXE_TOKEN_STRING;
    EXPECT_EQ(copy->GetPictureSize(), 0);
}

// Methods of the host ---------------------------------------------------------------------------------------------

TEST_F(Token, Methods_AreFoundByNameAndID) {
    Block methods(sizeof(ZR_Executer_4DMethod));
    static const struct {
        const char16_t* name;
        long id;
    } rows[] = {{u"Alpha", 1}, {u"alpha", 2}, {u"Beta", 2}};
    for (const auto& row : rows)
        reinterpret_cast<ZR_Executer_4DMethod*>(methods->AppendGetPtr())->Create(Text(row.name), row.id);
    EXPECT_EQ(zrExe_Find4DMethodByName(methods, Text(u"ALPHA"))->id, 1);
    EXPECT_EQ(zrExe_Find4DMethodByName(methods, Text(u"beta"))->id, 2);
    EXPECT_EQ(zrExe_Find4DMethodByName(methods, Text(u"gamma")), nullptr);
    EXPECT_EQ(Units(&zrExe_Find4DMethodByID(methods, 2)->name), u"alpha");
    EXPECT_EQ(zrExe_Find4DMethodByID(methods, 3), nullptr);
    zrExe_Dispose4DMethods(methods);
    EXPECT_EQ(methods->count, 0);
}
