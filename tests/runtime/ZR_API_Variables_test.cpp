#include <algorithm>
#include <cmath>
#include <set>

#include "tests/runtime/RuntimeTesting.h"

using namespace rt;

namespace {

constexpr ZR_EXE_VariableKind kKinds[] = {
    ZR_EXE_Real,         ZR_EXE_Date,      ZR_EXE_Undefined,    ZR_EXE_Boolean,      ZR_EXE_Integer,
    ZR_EXE_Longint,      ZR_EXE_Picture,   ZR_EXE_Time,         ZR_EXE_ArrayReal,    ZR_EXE_ArrayInteger,
    ZR_EXE_ArrayLongint, ZR_EXE_ArrayDate, ZR_EXE_ArrayPicture, ZR_EXE_ArrayPointer, ZR_EXE_ArrayBoolean,
    ZR_EXE_Pointer,      ZR_EXE_Blob,      ZR_EXE_Text,         ZR_EXE_ArrayText,    ZR_EXE_Object,
    ZR_EXE_Collection,   ZR_EXE_Null};

// A variable that ends by itself.
class Variable {
  public:
    explicit Variable(ZR_EXE_VariableKind kind) { variable_.Create(kind); }
    Variable(ZR_EXE_VariableKind kind, const char* name) {
        Text text(name);
        variable_.Create(kind, text);
    }
    Variable(ZR_Executer_Variable* source, ZR_Text* name) { variable_.Create(source, name); }
    Variable(const char* name, ZR_Executer_Token* value) {
        Text text(name);
        variable_.Create(text, value);
    }
    ~Variable() { variable_.Dispose(); }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;
    operator ZR_Executer_Variable*() { return &variable_; }
    ZR_Executer_Variable* operator->() { return &variable_; }
    std::string text() { return Describe(&variable_); }

  private:
    ZR_Executer_Variable variable_;
};

const char* EmptyText(ZR_EXE_VariableKind kind) {  // an empty variable of a kind in words
    switch (kind) {
        case ZR_EXE_Real: return "real 0";
        case ZR_EXE_Date: return "date 0-0-0";
        case ZR_EXE_Undefined: return "undefined";
        case ZR_EXE_Boolean: return "boolean false";
        case ZR_EXE_Integer: return "integer 0";
        case ZR_EXE_Longint: return "longint 0";
        case ZR_EXE_Picture: return "picture 0 bytes";
        case ZR_EXE_Time: return "time 0";
        case ZR_EXE_ArrayReal: return "array real []";
        case ZR_EXE_ArrayInteger: return "array integer []";
        case ZR_EXE_ArrayLongint: return "array longint []";
        case ZR_EXE_ArrayDate: return "array date []";
        case ZR_EXE_ArrayPicture: return "array picture []";
        case ZR_EXE_ArrayPointer: return "array pointer []";
        case ZR_EXE_ArrayBoolean: return "array boolean []";
        case ZR_EXE_Pointer: return "pointer  0";
        case ZR_EXE_Blob: return "blob";
        case ZR_EXE_Text: return "text";
        case ZR_EXE_ArrayText: return "array text []";
        case ZR_EXE_Object: return "object none";
        case ZR_EXE_Collection: return "collection none";
        default: return "null";
    }
}

void SetText(ZR_Text* target, const char* text) {
    Text copy(text);
    target->Copy(copy);
}

std::string Failure(ZR_ExecutionContext* context) {
    if (!context->lastError) return "";
    return std::to_string(context->lastError) + " " + Narrow(&context->lastErrorText);
}

}  // namespace

// The record -------------------------------------------------------------------------------------------------------

TEST(Variable, Create_EmptyOfItsKind) {
    for (ZR_EXE_VariableKind kind : kKinds) {
        Variable nameless(kind), named(kind, "abc");
        EXPECT_EQ(nameless.text(), EmptyText(kind));
        EXPECT_EQ(named.text(), EmptyText(kind));
        EXPECT_EQ(nameless->name.count, 0);
        EXPECT_EQ(Narrow(&named->name), "abc");
        EXPECT_EQ(named->kind, kind);
    }
}

TEST(Variable, ArrayKinds_TheEightAndTheirElements) {
    static const struct {
        ZR_EXE_VariableKind kind, element;
    } arrays[] = {{ZR_EXE_ArrayReal, ZR_EXE_Real},       {ZR_EXE_ArrayInteger, ZR_EXE_Integer},
                  {ZR_EXE_ArrayLongint, ZR_EXE_Longint}, {ZR_EXE_ArrayDate, ZR_EXE_Date},
                  {ZR_EXE_ArrayPicture, ZR_EXE_Picture}, {ZR_EXE_ArrayPointer, ZR_EXE_Pointer},
                  {ZR_EXE_ArrayBoolean, ZR_EXE_Boolean}, {ZR_EXE_ArrayText, ZR_EXE_Text}};
    std::set<int> found;
    for (const auto& array : arrays) {
        Variable variable(array.kind);
        EXPECT_TRUE(variable->IsArray()) << array.kind;
        EXPECT_EQ(variable->GetVariableTypeFromArrayType(), array.element) << array.kind;
        found.insert(array.kind);
        variable->ResizeArray(1);
        EXPECT_EQ(variable->GetVariablePtrFromArrayByIndex(1)->kind, array.element);
    }
    for (ZR_EXE_VariableKind kind : kKinds) {
        if (found.count(kind)) continue;
        Variable variable(kind);
        EXPECT_FALSE(variable->IsArray()) << kind;
        EXPECT_EQ(variable->GetVariableTypeFromArrayType(), ZR_EXE_Undefined) << kind;
    }
    for (int kind = -1; kind <= 300; kind++) EXPECT_EQ(zrExe_IsArrayKind(kind), found.count(kind) == 1) << kind;
}

TEST(Variable, Setters_TouchTheirKindsAlone) {
    for (ZR_EXE_VariableKind kind : kKinds) {
        const auto after = [kind](void (*set)(ZR_Executer_Variable*)) {
            Variable variable(kind);
            set(variable);
            return variable.text();
        };
        std::string empty = EmptyText(kind);
        bool whole = kind == ZR_EXE_Integer || kind == ZR_EXE_Longint;
        EXPECT_EQ(after([](ZR_Executer_Variable* v) { v->SetNumber(2.5); }), kind == ZR_EXE_Real ? "real 2.5"
                                                                             : whole
                                                                                 ? std::string(KindName(kind)) + " 2"
                                                                                 : empty);
        EXPECT_EQ(after([](ZR_Executer_Variable* v) { v->SetBoolean(true); }),
                  kind == ZR_EXE_Boolean ? "boolean true" : empty);
        EXPECT_EQ(after([](ZR_Executer_Variable* v) { v->SetTime(90); }), kind == ZR_EXE_Time ? "time 90" : empty);
        EXPECT_EQ(after([](ZR_Executer_Variable* v) {
                      ZR_Date date = {3, 2, 2001};
                      v->SetDate(&date);
                  }),
                  kind == ZR_EXE_Date ? "date 2001-2-3" : empty);
        EXPECT_EQ(after([](ZR_Executer_Variable* v) {
                      void* object = PA_CreateObject();
                      v->SetObjectRef(object);
                      PA_DecrementObjectRef(object);
                  }),
                  kind == ZR_EXE_Object ? "object {}" : empty);
        EXPECT_EQ(after([](ZR_Executer_Variable* v) {
                      void* collection = PA_CreateCollection();
                      v->SetCollectionRef(collection);
                      PA_DecrementCollectionRef(collection);
                  }),
                  kind == ZR_EXE_Collection ? "collection []" : empty);
    }
}

TEST(Variable, SetNumber_IntegerKindsWrapAt32Bits) {
    static const struct {
        double number;
        long stored;
    } rows[] = {{0, 0},
                {1.9, 1},
                {-1.9, -1},
                {100000, 100000},
                {2147483647.0, 2147483647},
                {2147483648.0, -2147483648L},
                {4294967295.0, -1},
                {4294967296.0, 0},
                {-2147483648.0, -2147483648L}};
    for (const auto& row : rows)
        for (ZR_EXE_VariableKind kind : {ZR_EXE_Integer, ZR_EXE_Longint}) {  // an integer is no narrower
            Variable variable(kind);
            variable->SetNumber(row.number);
            EXPECT_EQ(variable->value.integer, row.stored) << row.number;
            EXPECT_EQ(variable->GetNumber(), static_cast<double>(row.stored)) << row.number;
        }
    for (double absurd : {1e300, -1e300, static_cast<double>(INFINITY), static_cast<double>(NAN)}) {
        Variable variable(ZR_EXE_Longint);
        variable->SetNumber(absurd);  // defined, whatever it is
        EXPECT_GE(variable->value.integer, -2147483648L);
        EXPECT_LE(variable->value.integer, 2147483647L);
    }
}

TEST(Variable, Getters_NeutralForAnotherKind) {
    for (ZR_EXE_VariableKind kind : kKinds) {
        Variable variable(kind);
        variable->value.integer = 1;
        if (kind == ZR_EXE_Real) variable->value.real = 2.5;
        bool whole = kind == ZR_EXE_Integer || kind == ZR_EXE_Longint;
        EXPECT_EQ(variable->GetNumber(), kind == ZR_EXE_Real ? 2.5 : whole ? 1.0 : 0.0) << kind;
        EXPECT_EQ(variable->GetTime(), kind == ZR_EXE_Time ? 1 : 0) << kind;
        EXPECT_EQ(variable->GetBoolean(), kind == ZR_EXE_Boolean) << kind;
        ZR_Date date = {9, 9, 9};
        variable->GetDate(&date);
        EXPECT_EQ(DateText(date), kind == ZR_EXE_Date ? "0-0-1" : "0-0-0") << kind;
        EXPECT_EQ(variable->GetStackIDFromPointerToLocalVariable(), kind == ZR_EXE_Pointer ? 1 : 0) << kind;
        EXPECT_EQ(variable->isNull(), kind == ZR_EXE_Object || kind == ZR_EXE_Collection) << kind;
        EXPECT_EQ(variable->Sum(), 0) << kind;
    }
    Variable flag(ZR_EXE_Boolean);
    flag->value.integer = 2;
    EXPECT_FALSE(flag->GetBoolean());  // true only for exactly 1
}

TEST(Variable, PointerTests_ByTextAndValue) {
    static const struct {
        const char* text;
        long value;
        bool table, field, nil;
        long tableNumber, fieldNumber, stack;
    } rows[] = {
        {"", 0, true, false, true, 0, 0, 0},
        {"", 3, true, false, false, 3, 0, 3},
        {"", 65535, true, false, false, 65535, 0, 65535},
        {"", (3 << 16) + 5, false, true, false, 0, 5, (3 << 16) + 5},
        {"", 3 << 16, false, false, false, 0, 0, 3 << 16},  // field 0
        {"x", 3, false, false, false, 0, 0, 3},
        {"x", -1, false, false, false, 0, 0, -1},
        {"x", 0, false, false, false, 0, 0, 0},
    };
    for (const auto& row : rows) {
        Variable pointer(ZR_EXE_Pointer), other(ZR_EXE_Longint);
        SetText(&pointer->text, row.text);
        pointer->value.integer = row.value;
        EXPECT_EQ(pointer->PointerToTable(), row.table) << row.text << row.value;
        EXPECT_EQ(pointer->PointerToField(), row.field) << row.text << row.value;
        EXPECT_EQ(pointer->IsPointerNil(), row.nil) << row.text << row.value;
        EXPECT_EQ(pointer->GetTable(), row.tableNumber) << row.text << row.value;
        EXPECT_EQ(pointer->GetField(), row.fieldNumber) << row.text << row.value;
        EXPECT_EQ(pointer->GetStackIDFromPointerToLocalVariable(), row.stack) << row.text << row.value;
        SetText(&other->text, row.text);
        other->value.integer = row.value;
        EXPECT_FALSE(other->PointerToTable() || other->PointerToField() || other->IsPointerNil());
        EXPECT_EQ(other->GetTable() + other->GetField() + other->GetStackIDFromPointerToLocalVariable(), 0);
    }
}

TEST(Variable, Copy_IsDeepWithSharedReferences) {
    Variable array(ZR_EXE_ArrayText, "source");
    array->ResizeArray(2);
    SetText(&array->GetVariablePtrFromArrayByIndex(1)->text, "one");
    SetText(&array->GetVariablePtrFromArrayByIndex(2)->name, "inner");
    Text name("target");
    Variable copy(array, name), sameName(array, nullptr);
    EXPECT_EQ(copy.text(), "array text [one|]");
    EXPECT_EQ(Narrow(&copy->name), "target");
    EXPECT_EQ(Narrow(&sameName->name), "source");
    EXPECT_EQ(Narrow(&copy->GetVariablePtrFromArrayByIndex(2)->name), "inner");
    SetText(&array->GetVariablePtrFromArrayByIndex(1)->text, "changed");
    EXPECT_EQ(copy.text(), "array text [one|]");

    Variable object(ZR_EXE_Object);
    object->SetObjectRef(PA_CreateObject());
    PA_DecrementObjectRef(object->objectRef);
    Recorder recorder;
    {
        Variable shared(object, nullptr);
        EXPECT_EQ(shared->objectRef, object->objectRef);
        EXPECT_EQ(recorder.selectors[ZR_SEL_ObjectAddRef], 1);
    }
    EXPECT_EQ(recorder.selectors[ZR_SEL_ObjectRelease], 1);
    Variable blob(ZR_EXE_Blob);
    blob->blob.AddByte('x');
    Variable blobCopy(blob, nullptr);
    blob->blob.AddByte('y');
    EXPECT_EQ(blobCopy.text(), "blob 78");
}

TEST(Variable, CreateFromToken_KindFollowsTheValue) {
    static const struct {
        void (*fill)(Tokens* tokens);
        const char* made;
    } rows[] = {
        {[](Tokens* t) { t->Number(2.5); }, "real 2.5"},
        {[](Tokens* t) { t->Longint(5000000000L); }, "longint 5000000000"},
        {[](Tokens* t) { t->String("abc"); }, "text abc"},
        {[](Tokens* t) { t->Date(3, 2, 2001); }, "date 2001-2-3"},
        {[](Tokens* t) { t->Time(90); }, "time 90"},
        {[](Tokens* t) { t->Boolean(true); }, "boolean true"},
        {[](Tokens* t) { t->Named(ZREXE_TOKEN_POINTER, "x", 7); }, "pointer x 7"},
        {[](Tokens* t) { t->Blob("xy"); }, "blob 7879"},
        {[](Tokens* t) { t->Picture("abc"); }, "picture 3 bytes"},
        {[](Tokens* t) {
             t->Kind(ZREXE_TOKEN_OBJECT);
             t->at(1)->SetObjectRefNoIncrement(PA_CreateObject());
         },
         "object {}"},
        {[](Tokens* t) {
             t->Kind(ZREXE_TOKEN_COLLECTION);
             t->at(1)->SetCollectionRefNoIncrement(PA_CreateCollection());
         },
         "collection []"},
        {[](Tokens* t) { t->Kind(ZREXE_TOKEN_NULL); }, "undefined"},
        {[](Tokens* t) { t->Kind(ZREXE_TOKEN_TABLE, 1); }, "undefined"},
        {[](Tokens* t) { t->Kind(ZREXE_TOKEN_FIELD, 65537); }, "undefined"},
        {[](Tokens* t) { t->Kind(ZREXE_TOKEN_COMPARISON, 1); }, "undefined"},
        {[](Tokens* t) { t->Local("x"); }, "undefined"},
        {[](Tokens* t) { t->Kind(ZREXE_TOKEN_OTHER); }, "undefined"},
    };
    for (const auto& row : rows) {
        Tokens tokens;
        row.fill(&tokens);
        Variable variable("1", tokens.at(1));
        EXPECT_EQ(variable.text(), row.made);
        EXPECT_EQ(Narrow(&variable->name), "1");
    }
}

TEST(Variable, SetEmpty_KeepsTextBlobAndPicture) {
    Variable variable(ZR_EXE_ArrayText, "v");
    variable->ResizeArray(2);
    SetText(&variable->text, "kept");
    variable->blob.AddByte('x');
    variable->picture.nativeData.AddByte('p');
    variable->value.integer = 77;
    variable->SetEmpty();
    EXPECT_EQ(variable->value.integer, 0);
    EXPECT_EQ(variable->elements.count, 0);
    EXPECT_EQ(Narrow(&variable->text), "kept");
    EXPECT_EQ(variable->blob.count, 1);
    EXPECT_EQ(variable->picture.nativeData.count, 1);
    EXPECT_TRUE(variable->ResizeArray(3));  // the list stays usable
    EXPECT_EQ(variable.text(), "array text [||]");
    Recorder recorder;
    Variable object(ZR_EXE_Object);
    object->SetObjectRef(PA_CreateObject());
    PA_DecrementObjectRef(object->objectRef);
    int released = recorder.selectors[ZR_SEL_ObjectRelease];
    object->SetEmpty();
    EXPECT_EQ(object->objectRef, nullptr);
    EXPECT_EQ(recorder.selectors[ZR_SEL_ObjectRelease], released + 1);
    EXPECT_TRUE(object->isNull());
}

// Required: the old reference is not released.
TEST(Variable, SetObjectRef_AddsAReferenceAndKeepsTheOldOne) {
    Recorder recorder;
    Variable variable(ZR_EXE_Object);
    void *first = PA_CreateObject(), *second = PA_CreateObject();
    variable->SetObjectRef(first);
    variable->SetObjectRef(second);
    EXPECT_EQ(variable->objectRef, second);
    EXPECT_EQ(recorder.selectors[ZR_SEL_ObjectAddRef], 2);
    EXPECT_EQ(recorder.selectors[ZR_SEL_ObjectRelease], 0);
    variable->SetObjectRef(nullptr);
    EXPECT_EQ(recorder.selectors[ZR_SEL_ObjectAddRef], 2);
    EXPECT_TRUE(variable->isNull());
    for (int i = 0; i < 2; i++) PA_DecrementObjectRef(first), PA_DecrementObjectRef(second);
}

// Array elements ---------------------------------------------------------------------------------------------------

namespace {

// An array longint of 1..n.
class Numbers : public Variable {
  public:
    explicit Numbers(long n) : Variable(ZR_EXE_ArrayLongint, "a") {
        ZR_Executer_Variable* array = *this;
        array->ResizeArray(n);
        for (long i = 1; i <= n; i++) array->GetVariablePtrFromArrayByIndex(i)->SetNumber(static_cast<double>(i));
    }
};

}  // namespace

TEST(Array, Resize_KeepsWhatStays) {
    static const struct {
        long n;
        const char* after;
    } rows[] = {{0, "array longint []"},
                {-3, "array longint []"},
                {1, "array longint [1]"},
                {3, "array longint [1|2|3]"},
                {5, "array longint [1|2|3|0|0]"}};
    for (const auto& row : rows) {
        Numbers array(3);
        EXPECT_TRUE(array->ResizeArray(row.n));
        EXPECT_EQ(array.text(), row.after);
    }
    Numbers array(4);
    array->ResizeArray(2);
    array->ResizeArray(4);
    EXPECT_EQ(array.text(), "array longint [1|2|0|0]");
    Variable plain(ZR_EXE_Text);
    plain->ResizeArray(3);
    EXPECT_EQ(plain->elements.count, 0);
}

TEST(Array, Insert_BeforeAnElementOnly) {
    static const struct {
        long position, n;
        const char* after;
    } rows[] = {
        {1, 1, "array longint [0|1|2|3]"}, {2, 2, "array longint [1|0|0|2|3]"}, {3, 1, "array longint [1|2|0|3]"},
        {4, 1, "array longint [1|2|3]"},   {0, 1, "array longint [1|2|3]"},     {-1, 1, "array longint [1|2|3]"},
        {9, 1, "array longint [1|2|3]"},   {1, 0, "array longint [1|2|3]"},     {1, -2, "array longint [1|2|3]"},
    };
    for (const auto& row : rows) {
        Numbers array(3);
        array->InsertArrayElements(row.position, row.n);
        EXPECT_EQ(array.text(), row.after) << row.position << " " << row.n;
    }
    Numbers empty(0);
    empty->InsertArrayElements(1, 1);
    EXPECT_EQ(empty.text(), "array longint []");
    Variable plain(ZR_EXE_Longint);
    plain->InsertArrayElements(1, 1);
    EXPECT_EQ(plain->elements.count, 0);
}

TEST(Array, Delete_UpToTheEnd) {
    static const struct {
        long position, n;
        const char* after;
    } rows[] = {
        {1, 1, "array longint [2|3]"},    {2, 1, "array longint [1|3]"},    {3, 1, "array longint [1|2]"},
        {2, 9, "array longint [1]"},      {1, 3, "array longint []"},       {4, 1, "array longint [1|2|3]"},
        {0, 1, "array longint [1|2|3]"},  {-1, 2, "array longint [1|2|3]"}, {1, 0, "array longint [1|2|3]"},
        {1, -1, "array longint [1|2|3]"},
    };
    for (const auto& row : rows) {
        Numbers array(3);
        array->DeleteArrayElements(row.position, row.n);
        EXPECT_EQ(array.text(), row.after) << row.position << " " << row.n;
    }
}

TEST(Array, Element_OneToCount) {
    Numbers array(3);
    EXPECT_EQ(array->GetVariablePtrFromArrayByIndex(0), nullptr);
    EXPECT_EQ(array->GetVariablePtrFromArrayByIndex(4), nullptr);
    EXPECT_EQ(array->GetVariablePtrFromArrayByIndex(-1), nullptr);
    EXPECT_EQ(array->GetVariablePtrFromArrayByIndex(3)->GetNumber(), 3);
    Variable plain(ZR_EXE_Longint);
    EXPECT_EQ(plain->GetVariablePtrFromArrayByIndex(1), nullptr);
}

TEST(Array, Sum_OfNumericArraysInOrder) {
    for (ZR_EXE_VariableKind kind : kKinds) {
        Variable array(kind);
        if (!array->IsArray()) continue;
        array->ResizeArray(3);
        for (long i = 1; i <= 3; i++) array->GetVariablePtrFromArrayByIndex(i)->SetNumber(i + 0.5);
        double expected = kind == ZR_EXE_ArrayReal                                     ? 7.5
                          : kind == ZR_EXE_ArrayInteger || kind == ZR_EXE_ArrayLongint ? 6
                                                                                       : 0;
        EXPECT_EQ(array->Sum(), expected) << kind;
    }
    Variable large(ZR_EXE_ArrayReal);
    large->ResizeArray(3);
    large->GetVariablePtrFromArrayByIndex(1)->SetNumber(1e16);
    large->GetVariablePtrFromArrayByIndex(2)->SetNumber(1);
    large->GetVariablePtrFromArrayByIndex(3)->SetNumber(-1e16);
    EXPECT_EQ(large->Sum(), 0);  // from left to right: the 1 is lost
}

// Lists ------------------------------------------------------------------------------------------------------------

TEST(VariableList, Names_WithoutAsciiCase) {
    ZR_Handle list;
    list.Create(sizeof(ZR_Executer_Variable), 0);
    Text name("Abc"), umlaut("\xC3\x84x");
    ZR_Executer_Variable* made = zrExe_FindVariableByNameAndCreate(&list, name, ZR_EXE_Text);
    ASSERT_TRUE(made);
    EXPECT_EQ(Describe(made), "text");
    zrExe_FindVariableByNameAndCreate(&list, umlaut, ZR_EXE_Real);
    static const struct {
        const char* name;
        bool found;
    } rows[] = {{"abc", true},   {"ABC", true}, {"Abc", true},       {"ab", false},
                {"abcd", false}, {"", false},   {"\xC3\x84X", true}, {"\xC3\xA4x", false}};
    for (const auto& row : rows) {
        Text wanted(row.name);
        EXPECT_EQ(zrExe_FindVariableByName(&list, wanted) != nullptr, row.found) << row.name;
    }
    Text other("aBC");
    EXPECT_EQ(Describe(zrExe_FindVariableByNameAndCreate(&list, other, ZR_EXE_Real)), "text");  // kept as it is
    EXPECT_EQ(list.count, 2);
    EXPECT_TRUE(zrExe_DeleteVariableByName(&list, other));
    EXPECT_FALSE(zrExe_DeleteVariableByName(&list, other));
    EXPECT_EQ(list.count, 1);
    zrExe_DisposeVariables(&list);
    EXPECT_EQ(list.count, 0);
}

TEST(VariableFromToken, ScopeComesFromTheTokenAlone) {
    Program program;
    Tokens tokens;
    tokens.Local("v").Process("v").Interprocess("v").Number(1).String("v").Kind(ZREXE_TOKEN_OTHER);
    ZR_ExecutionContext* context = program;
    for (long i = 1; i <= 6; i++) EXPECT_EQ(context->GetVariableFromToken(tokens.at(i), false), nullptr) << i;
    EXPECT_EQ(context->lastError, 0);
    EXPECT_EQ(Describe(context->GetVariableFromToken(tokens.at(2), true)), "undefined");
    EXPECT_EQ(context->processVariables.count, 1);
    EXPECT_EQ(context->GetVariableFromToken(tokens.at(1), false), nullptr);  // no fall-through
    EXPECT_EQ(context->GetVariableFromToken(tokens.at(3), false), nullptr);
    context->GetVariableFromToken(tokens.at(1), true);
    context->GetVariableFromToken(tokens.at(3), true);
    EXPECT_EQ(context->rootStack.localVariables.count, 1);
    EXPECT_EQ(context->interprocessVariables.count, 1);
    for (long i = 4; i <= 6; i++) EXPECT_EQ(context->GetVariableFromToken(tokens.at(i), true), nullptr) << i;
}

TEST(VariableFromPointer, ByScopeAndFrame) {
    Program program;
    ZR_ExecutionContext* context = program;
    ZR_Executer_Stack frames[2];
    Text name("v");
    for (int i = 0; i < 2; i++) {
        frames[i].Create(100 + i);
        ZR_Executer_Stack* frame = &frames[i];
        memcpy(context->stacks.AppendGetPtr(), &frame, sizeof frame);
        zrExe_FindVariableByNameAndCreate(&frames[i].localVariables, name, ZR_EXE_Longint)->SetNumber(10 + i);
    }
    zrExe_FindVariableByNameAndCreate(&context->processVariables, name, ZR_EXE_Longint)->SetNumber(1);
    zrExe_FindVariableByNameAndCreate(&context->interprocessVariables, name, ZR_EXE_Longint)->SetNumber(2);
    static const struct {
        const char* name;
        long value;
        const char* found;
    } rows[] = {
        {"v", -1, "longint 1"},
        {"v", -2, "longint 2"},
        {"v", 1, "longint 10"},
        // Required: the number is taken for a place among the active frames, whatever method runs there.
        {"v", 2, "longint 11"},
        {"v", 3, "missing"},
        {"v", 101, "missing"},
        {"v", -3, "missing"},
        {"v", 0, "missing"},
        {"w", 1, "missing"},
        {"w", -1, "missing"},
        {"", 1, "missing"},
    };
    for (const auto& row : rows) {
        Tokens tokens;
        tokens.Named(ZREXE_TOKEN_POINTER, row.name, row.value);
        EXPECT_EQ(Describe(context->GetVariableFromPointerToken(tokens.at(1))), row.found) << row.name << row.value;
    }
    Tokens other;
    other.Named(ZREXE_TOKEN_STRING, "v", 1);
    EXPECT_EQ(context->GetVariableFromPointerToken(other.at(1)), nullptr);
    context->stacks.Resize(0);
    for (ZR_Executer_Stack& frame : frames) frame.Dispose();
}

// SetVariable ------------------------------------------------------------------------------------------------------

namespace {

struct SourceRow {
    const char* label;
    void (*fill)(Tokens* tokens);
    const char* made;          // of a new variable; null = error -5
    std::vector<int> targets;  // kinds that take it
};

const std::vector<SourceRow>& Sources() {
    static const std::vector<SourceRow> rows = {
        {"number", [](Tokens* t) { t->Number(2.5); }, "real 2.5", {1, 8, 9}},
        {"longint", [](Tokens* t) { t->Longint(7); }, "longint 7", {1, 8, 9}},
        {"text", [](Tokens* t) { t->String("abc"); }, "text abc", {33}},
        {"date", [](Tokens* t) { t->Date(3, 2, 2001); }, "date 2001-2-3", {4}},
        {"time", [](Tokens* t) { t->Time(90); }, "time 90", {11}},
        {"boolean", [](Tokens* t) { t->Boolean(true); }, "boolean true", {6}},
        {"pointer", [](Tokens* t) { t->Named(ZREXE_TOKEN_POINTER, "x", 7); }, "pointer x 7", {23}},
        {"blob", [](Tokens* t) { t->Blob("xy"); }, "blob 7879", {30}},
        {"picture", [](Tokens* t) { t->Picture("abc"); }, "picture 3 bytes", {10}},
        {"object",
         [](Tokens* t) {
             t->Kind(ZREXE_TOKEN_OBJECT);
             t->at(1)->SetObjectRefNoIncrement(PA_CreateObject());
         },
         "object {}",
         {38}},
        {"collection",
         [](Tokens* t) {
             t->Kind(ZREXE_TOKEN_COLLECTION);
             t->at(1)->SetCollectionRefNoIncrement(PA_CreateCollection());
         },
         "collection []",
         {42}},
        {"null", [](Tokens* t) { t->Kind(ZREXE_TOKEN_NULL); }, "null", {}},
        {"nothing", [](Tokens* t) { t->Kind(ZREXE_TOKEN_OTHER); }, nullptr, {}},
        {"table", [](Tokens* t) { t->Kind(ZREXE_TOKEN_TABLE, 1); }, nullptr, {}},
        {"field", [](Tokens* t) { t->Kind(ZREXE_TOKEN_FIELD, 65537); }, nullptr, {}},
        {"operator", [](Tokens* t) { t->Formula('+'); }, nullptr, {}},
        {"variable", [](Tokens* t) { t->Local("x"); }, nullptr, {}},
        {"command", [](Tokens* t) { t->Kind(ZREXE_TOKEN_COMMAND, 1); }, nullptr, {}},
    };
    return rows;
}

}  // namespace

TEST(SetVariable, NewVariable_TakesTheKindOfTheValue) {
    for (const SourceRow& row : Sources())
        for (int scope = 1; scope <= 3; scope++) {
            Program program;
            Tokens target, source;
            scope == 1 ? target.Local("v") : scope == 2 ? target.Process("v") : target.Interprocess("v");
            row.fill(&source);
            ZR_Executer_Variable* made = program->SetVariable(target.at(1), source.at(1), ZR_EXE_Undefined, 0);
            EXPECT_EQ(Describe(made), row.made ? row.made : "missing") << row.label;
            EXPECT_EQ(Failure(program), row.made ? "" : "-5 Undefined assignment variable type") << row.label;
            EXPECT_EQ(Describe(program.Find(scope == 1   ? "$v"
                                            : scope == 2 ? "v"
                                                         : "<>v")),
                      row.made ? row.made : "missing");
        }
}

TEST(SetVariable, ExistingVariable_EveryKindByEveryValue) {
    for (ZR_EXE_VariableKind kind : kKinds)
        for (const SourceRow& row : Sources()) {
            Program program;
            Text name("v");
            zrExe_FindVariableByNameAndCreate(&program->processVariables, name, kind);
            Tokens target, source;
            target.Process("v");
            row.fill(&source);
            ZR_Executer_Variable* variable = program->SetVariable(target.at(1), source.at(1), ZR_EXE_Undefined, 0);
            if (!row.made) {
                EXPECT_EQ(variable, nullptr) << kind << row.label;
                EXPECT_EQ(Failure(program), "-5 Undefined assignment variable type") << kind << row.label;
                continue;
            }
            ASSERT_TRUE(variable) << kind << row.label;
            EXPECT_EQ(variable->kind, kind);  // never changes
            bool null = source.at(1)->kind == ZREXE_TOKEN_NULL;
            bool taken = null || std::count(row.targets.begin(), row.targets.end(), static_cast<int>(kind)) > 0;
            EXPECT_EQ(Failure(program), taken ? "" : "-10 Variable \"v\" has incorrect type!") << kind << row.label;
            std::string value = row.made;
            if (!taken || null) value = EmptyText(kind);
            else if (kind == ZR_EXE_Real && value == "longint 7") value = "real 7";
            else if (kind == ZR_EXE_Integer || kind == ZR_EXE_Longint)
                value = std::string(KindName(kind)) + (value == "real 2.5" ? " 2" : " 7");
            EXPECT_EQ(Describe(variable), value) << kind << row.label;
        }
}

TEST(SetVariable, Mismatch_NamesTheVariableWithItsPrefix) {
    static const struct {
        const char* source;
        const char* error;
    } rows[] = {
        {"x:=1.5\nx:=\"a\"", "-10@2 Variable \"x\" has incorrect type!"},
        {"$x:=1.5\n$x:=\"a\"", "-10@2 Variable \"$x\" has incorrect type!"},
        {"<>x:=1.5\n<>x:=\"a\"", "-10@2 Variable \"<>x\" has incorrect type!"},
        {"C_LONGINT($x)\n$x:=?00:00:01?", "-10@2 Variable \"$x\" has incorrect type!"},
        {"C_TIME($x)\n$x:=1", "-10@2 Variable \"$x\" has incorrect type!"},
        {"C_TEXT($x)\n$x:=1", "-10@2 Variable \"$x\" has incorrect type!"},
        {"C_DATE($x)\n$x:=1", "-10@2 Variable \"$x\" has incorrect type!"},
    };
    for (const auto& row : rows) EXPECT_EQ(RunForError(row.source), row.error) << row.source;
    // The name is that of the first spelling or of the token: ASCII case does not part them.
    EXPECT_EQ(RunFor("$Abc:=1\n$ABC:=2", "$Abc"), "real 2");
}

TEST(SetVariable, WithoutSource_MakesOrFinds) {
    Program program;
    Tokens tokens;
    tokens.Process("v").Number(1);
    EXPECT_EQ(program->SetVariable(tokens.at(1), nullptr, ZR_EXE_Undefined, 0), nullptr);
    EXPECT_EQ(Failure(program), "-5 Undefined assignment variable type");
    program->lastError = 0;
    EXPECT_EQ(Describe(program->SetVariable(tokens.at(1), nullptr, ZR_EXE_ArrayText, 0)), "array text []");
    EXPECT_EQ(Describe(program->SetVariable(tokens.at(1), nullptr, ZR_EXE_Real, 0)), "array text []");  // stays
    program->SetVariable(tokens.at(1), nullptr, ZR_EXE_ArrayText, -5)->ResizeArray(2);
    EXPECT_EQ(Describe(program->SetVariable(tokens.at(1), nullptr, ZR_EXE_ArrayText, 2)), "text");  // the element
    EXPECT_EQ(Narrow(&program->lastErrorText), "Undefined assignment variable type");
    EXPECT_EQ(program->SetVariable(tokens.at(2), nullptr, ZR_EXE_Real, 0), nullptr);
    EXPECT_EQ(program->lastError, -5);
}

TEST(SetVariable, Index_Bounds) {
    static const struct {
        const char* name;
        long index;
        const char* error;
    } rows[] = {
        {"a", 1, ""},
        {"a", 3, ""},
        {"a", 4, "-36 Array access \"a\" not possible. Index: 4 Array size: 3"},
        {"a", 0, "-10 Variable \"a\" has incorrect type!"},
        {"a", -1, "-10 Variable \"a\" has incorrect type!"},
        {"plain", 1, "-36 Array access \"plain\" not possible. Index: 1 Array size: 0"},
        {"none", 1, "-11 Variable \"none\" not found!"},
        {"a", 9223372036854775807L, "-36 Array access \"a\" not possible. Index: 9223372036854775807 Array size: 3"},
    };
    for (const auto& row : rows) {
        Program program;
        Text array("a"), plain("plain");
        zrExe_FindVariableByNameAndCreate(&program->processVariables, array, ZR_EXE_ArrayReal)->ResizeArray(3);
        zrExe_FindVariableByNameAndCreate(&program->processVariables, plain, ZR_EXE_Real);
        Tokens tokens;
        tokens.Process(row.name).Number(5);
        program->SetVariable(tokens.at(1), tokens.at(2), ZR_EXE_Undefined, row.index);
        EXPECT_EQ(Failure(program), row.error) << row.name << row.index;
        EXPECT_EQ(program.Find("none"), nullptr);
    }
}

// Searching and appending ------------------------------------------------------------------------------------------

namespace {

bool Fits(int arrayKind, int tokenKind) {  // what can be searched for and appended
    switch (arrayKind) {
        case ZR_EXE_ArrayReal:
        case ZR_EXE_ArrayInteger:
        case ZR_EXE_ArrayLongint: return tokenKind == ZREXE_TOKEN_NUMBER || tokenKind == ZREXE_TOKEN_LONGINT;
        case ZR_EXE_ArrayText: return tokenKind == ZREXE_TOKEN_STRING;
        case ZR_EXE_ArrayBoolean: return tokenKind == ZREXE_TOKEN_BOOLEAN;
        case ZR_EXE_ArrayDate: return tokenKind == ZREXE_TOKEN_DATE;
        default: return false;
    }
}

}  // namespace

TEST(FindTokenInArray, EveryArrayByEveryToken) {
    for (ZR_EXE_VariableKind kind : kKinds)
        for (const SourceRow& row : Sources()) {
            Program program;
            Variable array(kind, "arr");
            array->ResizeArray(2);
            Tokens token;
            row.fill(&token);
            long found = program->FindTokenInArray(array, token.at(1), 1);
            EXPECT_EQ(found, -1) << kind << row.label;  // the elements are empty
            std::string expected;
            if (!array->IsArray()) expected = "-40 Variable \"arr\" is not an array!";
            else if (!Fits(kind, token.at(1)->kind))
                expected = "-10 Find in array does not work with this type. Variable \"arr\".";
            EXPECT_EQ(Failure(program), expected) << kind << row.label;
        }
}

TEST(FindTokenInArray, Hits_FromAPosition) {
    Program program;
    Numbers numbers(4);
    numbers->GetVariablePtrFromArrayByIndex(4)->SetNumber(2);
    static const struct {
        double wanted;
        long start, found;
    } rows[] = {{2, 1, 2},  {2, 2, 2},    {2, 3, 4}, {2, 5, -1}, {2, 99, -1},
                {9, 1, -1}, {2.5, 1, -1}, {1, 1, 1}, {1, 2, -1}};
    for (const auto& row : rows) {
        Tokens token;
        token.Number(row.wanted);
        EXPECT_EQ(program->FindTokenInArray(numbers, token.at(1), row.start), row.found)
            << row.wanted << " " << row.start;
    }
    Tokens longint;
    longint.Longint(3);
    EXPECT_EQ(program->FindTokenInArray(numbers, longint.at(1), 1), 3);
    for (long start : {0L, -1L, -9223372036854775807L - 1, 9223372036854775807L}) {
        long found = program->FindTokenInArray(numbers, longint.at(1), start);
        EXPECT_TRUE(found == 3 || found == -1) << start;
    }

    Variable texts(ZR_EXE_ArrayText);
    texts->ResizeArray(3);
    SetText(&texts->GetVariablePtrFromArrayByIndex(1)->text, "b@");
    SetText(&texts->GetVariablePtrFromArrayByIndex(2)->text, "Bee");
    SetText(&texts->GetVariablePtrFromArrayByIndex(3)->text, "cow");
    static const struct {
        const char* wanted;
        long found;
    } words[] = {{"bee", 2}, {"c@", 3}, {"@", 1}, {"@o@", 3}, {"be", -1}, {"", -1}, {"b@", 1}};
    for (const auto& row : words) {
        Tokens token;
        token.String(row.wanted);
        EXPECT_EQ(program->FindTokenInArray(texts, token.at(1), 1), row.found) << row.wanted;
    }

    Variable flags(ZR_EXE_ArrayBoolean), dates(ZR_EXE_ArrayDate);
    flags->ResizeArray(2);
    flags->GetVariablePtrFromArrayByIndex(2)->SetBoolean(true);
    dates->ResizeArray(2);
    ZR_Date date = {3, 2, 2001};
    dates->GetVariablePtrFromArrayByIndex(2)->SetDate(&date);
    Tokens others;
    others.Boolean(true).Boolean(false).Date(3, 2, 2001).Date(0, 0, 0).Date(3, 2, 2002);
    EXPECT_EQ(program->FindTokenInArray(flags, others.at(1), 1), 2);
    EXPECT_EQ(program->FindTokenInArray(flags, others.at(2), 1), 1);
    EXPECT_EQ(program->FindTokenInArray(dates, others.at(3), 1), 2);
    EXPECT_EQ(program->FindTokenInArray(dates, others.at(4), 1), 1);
    EXPECT_EQ(program->FindTokenInArray(dates, others.at(5), 1), -1);
    EXPECT_EQ(Failure(program), "");
}

TEST(AppendTokenToArray, EveryArrayByEveryToken) {
    for (ZR_EXE_VariableKind kind : kKinds)
        for (const SourceRow& row : Sources()) {
            Program program;
            Variable array(kind, "arr");
            Tokens token;
            row.fill(&token);
            program->AppendTokenToArray(array, token.at(1));
            if (!array->IsArray()) {
                EXPECT_EQ(Failure(program), "-40 Variable \"arr\" is not an array!") << kind << row.label;
                EXPECT_EQ(array->elements.count, 0);
                continue;
            }
            ASSERT_EQ(array->elements.count, 1) << kind << row.label;  // stays, also when the value does not fit
            ZR_Executer_Variable* element = array->GetVariablePtrFromArrayByIndex(1);
            bool fits = Fits(kind, token.at(1)->kind);
            EXPECT_EQ(Failure(program), fits ? "" : "-10 Find in array does not work with this type. Variable \"arr\".")
                << kind << row.label;
            EXPECT_EQ(Describe(element) != EmptyText(element->kind), fits) << kind << row.label;
        }
}

// Exchange with the host -------------------------------------------------------------------------------------------

namespace {

constexpr int kHostKinds[] = {eVK_Real,         eVK_Date,      eVK_Undefined,    eVK_Boolean,      eVK_Integer,
                              eVK_Longint,      eVK_Picture,   eVK_Time,         eVK_ArrayReal,    eVK_ArrayInteger,
                              eVK_ArrayLongint, eVK_ArrayDate, eVK_ArrayPicture, eVK_ArrayPointer, eVK_ArrayBoolean,
                              eVK_Pointer,      eVK_Blob,      eVK_Text,         eVK_ArrayText,    eVK_Object,
                              eVK_Collection,   eVK_Null};

// A host value of a kind that is not the empty one.
PA_Variable MakeHost(int kind) {
    PA_Variable value = PA_CreateVariable(kind);
    switch (kind) {
        case eVK_Real: PA_SetRealVariable(&value, 2.5); break;
        case eVK_Date: PA_SetDateVariable(&value, 3, 2, 2001); break;
        case eVK_Boolean: PA_SetBooleanVariable(&value, true); break;
        case eVK_Integer:
        case eVK_Longint: PA_SetLongintVariable(&value, 7); break;
        case eVK_Time: PA_SetTimeVariable(&value, 90); break;
        case eVK_Blob: PA_SetBlobVariable(&value, "xy", 2); break;
        case eVK_Text: PA_SetStringVariable(&value, PA_CreateUnistring(Units(u"abc"))); break;
        case eVK_Object: PA_SetObjectVariable(&value, PA_CreateObject()); break;
        case eVK_Collection: PA_SetCollectionVariable(&value, PA_CreateCollection()); break;
        case eVK_ArrayReal:
            PA_ResizeArray(&value, 2);
            PA_SetRealInArray(&value, 1, 2.5);
            break;
        case eVK_ArrayInteger:
            PA_ResizeArray(&value, 2);
            PA_SetIntegerInArray(&value, 1, -7);
            break;
        case eVK_ArrayLongint:
            PA_ResizeArray(&value, 2);
            PA_SetLongintInArray(&value, 1, 70000);
            break;
        case eVK_ArrayDate:
            PA_ResizeArray(&value, 2);
            PA_SetDateInArray(&value, 1, 3, 2, 2001);
            break;
        case eVK_ArrayBoolean:
            PA_ResizeArray(&value, 2);
            PA_SetBooleanInArray(&value, 1, true);
            break;
        case eVK_ArrayText:
            PA_ResizeArray(&value, 2);
            PA_SetStringInArray(&value, 1, PA_CreateUnistring(Units(u"abc")));
            break;
        case eVK_ArrayPicture: PA_ResizeArray(&value, 2); break;
        default: break;
    }
    return value;
}

}  // namespace

TEST(Exchange, SetPAVariable_EveryKindByEveryHostKind) {
    static const std::map<std::pair<int, int>, const char*> taken = {
        {{1, 1}, "real 2.5"},
        {{1, 9}, "real 7"},
        {{8, 1}, "integer 2"},
        {{9, 1}, "longint 2"},
        {{8, 9}, "integer 7"},
        {{9, 9}, "longint 7"},
        // Required: a plain host integer does not survive the exchange.
        {{1, 8}, "real 0"},
        {{8, 8}, "integer 0"},
        {{9, 8}, "longint 0"},
        {{4, 4}, "date 2001-2-3"},
        {{6, 6}, "boolean true"},
        {{10, 10}, "picture 0 bytes"},
        {{11, 11}, "time 90"},
        {{14, 14}, "array real [2.5|0]"},
        {{15, 15}, "array integer [-7|0]"},
        {{16, 16}, "array longint [70000|0]"},
        {{17, 17}, "array date [2001-2-3|0-0-0]"},
        {{22, 22}, "array boolean [true|false]"},
        {{30, 30}, "blob 7879"},
        {{33, 33}, "text abc"},
        {{34, 34}, "array text [abc|]"},
    };
    for (ZR_EXE_VariableKind kind : kKinds)
        for (int hostKind : kHostKinds) {
            Variable variable(kind, "v");
            if (kind == ZR_EXE_Real) variable->value.real = 99;
            if (kind == ZR_EXE_Integer || kind == ZR_EXE_Longint || kind == ZR_EXE_Time) variable->value.integer = 99;
            std::string before = variable.text();
            HostValue host(MakeHost(hostKind));
            bool answer = variable->SetPAVariable(host);
            auto expected = taken.find({kind, hostKind});
            EXPECT_EQ(answer, expected != taken.end()) << kind << " from " << hostKind;
            EXPECT_EQ(variable.text(), expected != taken.end() ? expected->second : before)
                << kind << " from " << hostKind;
        }
}

TEST(Exchange, SetPAVariable_HostIntegerSetsANumberToZero) {
    Variable variable(ZR_EXE_Longint);
    variable->SetNumber(99);
    HostValue host(MakeHost(eVK_Integer));
    EXPECT_TRUE(variable->SetPAVariable(host));
    EXPECT_EQ(variable.text(), "longint 0");
}

TEST(Exchange, SetPAVariable_ArrayTakesTheHostsLength) {
    Numbers array(5);
    HostValue host(MakeHost(eVK_ArrayLongint));
    EXPECT_TRUE(array->SetPAVariable(host));
    EXPECT_EQ(array.text(), "array longint [70000|0]");
    HostValue empty(eVK_ArrayLongint);
    EXPECT_TRUE(array->SetPAVariable(empty));
    EXPECT_EQ(array.text(), "array longint []");
}

TEST(Exchange, SetPAVariable_RealWrapsIntoLongint) {
    Variable variable(ZR_EXE_Longint);
    HostValue host(eVK_Real);
    PA_SetRealVariable(host, 2147483648.0);
    EXPECT_TRUE(variable->SetPAVariable(host));
    EXPECT_EQ(variable.text(), "longint -2147483648");
}

TEST(Exchange, CreatePAVariable_ByKind) {
    static const struct {
        const char* make;
        const char* host;
    } rows[] = {
        {"$v:=2.5", "real 2.5"},
        {"$v:=!2001-02-03!", "date 2001-2-3"},
        {"$v:=(1=1)", "boolean true"},
        {"C_LONGINT($v)\n$v:=7", "longint 7"},
        {"$v:=?00:01:30?", "time 90"},
        {"$v:=\"abc\"", "text abc"},
        {"C_BLOB($v)\nSET BLOB SIZE($v;2)", "blob 0000"},
        {"ARRAY REAL($v;3)", "array real of 3"},
        {"ARRAY INTEGER($v;3)", "array integer of 3"},
        {"ARRAY LONGINT($v;3)", "array longint of 3"},
        {"ARRAY DATE($v;3)", "array date of 3"},
        {"ARRAY BOOLEAN($v;3)", "array boolean of 3"},
        {"ARRAY TEXT($v;3)", "array text of 3"},
        {"C_PICTURE($v)", "picture"},
        {"C_OBJECT($v)", "object"},
        {"$v:=New object", "object"},
        {"$v:=New collection", "collection"},
        // What does not reach the host.
        {"ARRAY PICTURE($v;3)", "undefined"},
        {"ARRAY POINTER($v;3)", "undefined"},
        {"$v:=->$x", "undefined"},
        {"C_POINTER($v)", "undefined"},
    };
    for (const auto& row : rows) {
        Program program;
        Outcome outcome = program.Run(row.make);
        ASSERT_EQ(outcome.error(), "") << row.make;
        HostValue host(program.Find("$v")->CreatePAVariable(false));
        EXPECT_EQ(Describe(*host), row.host) << row.make;
    }
    Variable null(ZR_EXE_Null), undefined(ZR_EXE_Undefined);
    HostValue first(null->CreatePAVariable(false)), second(undefined->CreatePAVariable(false));
    EXPECT_EQ(Describe(*first), "undefined");
    EXPECT_EQ(Describe(*second), "undefined");
}

TEST(Exchange, CreatePAVariable_WidthsOfNumbers) {
    Variable longint(ZR_EXE_Longint), integer(ZR_EXE_Integer), time(ZR_EXE_Time), flag(ZR_EXE_Boolean);
    longint->value.integer = (5L << 32) + 7;
    integer->SetNumber(100000);
    time->value.integer = (1L << 32) + 9;
    flag->value.integer = 2;
    HostValue a(longint->CreatePAVariable(false)), b(integer->CreatePAVariable(false)),
        c(time->CreatePAVariable(false)), d(flag->CreatePAVariable(false));
    EXPECT_EQ(Describe(*a), "longint 7");
    EXPECT_EQ(Describe(*b), "longint 100000");  // an integer goes out as a longint
    EXPECT_EQ(Describe(*c), "time 9");
    EXPECT_EQ(Describe(*d), "boolean false");
    Variable integers(ZR_EXE_ArrayInteger), reals(ZR_EXE_ArrayReal), texts(ZR_EXE_ArrayText), dates(ZR_EXE_ArrayDate),
        flags(ZR_EXE_ArrayBoolean), longints(ZR_EXE_ArrayLongint);
    integers->ResizeArray(1);
    integers->GetVariablePtrFromArrayByIndex(1)->SetNumber(100000);
    HostValue e(integers->CreatePAVariable(false));
    EXPECT_EQ(PA_GetIntegerInArray(e, 1), static_cast<short>(100000));
    reals->ResizeArray(2);
    reals->GetVariablePtrFromArrayByIndex(2)->SetNumber(1.5);
    HostValue f(reals->CreatePAVariable(false));
    EXPECT_EQ(PA_GetRealInArray(f, 2), 1.5);
    texts->ResizeArray(2);
    SetText(&texts->GetVariablePtrFromArrayByIndex(2)->text, "zwei");
    HostValue g(texts->CreatePAVariable(false));
    EXPECT_EQ(Narrow(PA_GetStringInArray(g, 2)), "zwei");
    dates->ResizeArray(1);
    ZR_Date date = {3, 2, 2001}, back;
    dates->GetVariablePtrFromArrayByIndex(1)->SetDate(&date);
    HostValue h(dates->CreatePAVariable(false));
    PA_GetDateInArray(h, 1, &back.day, &back.month, &back.year);
    EXPECT_EQ(DateText(back), "2001-2-3");
    flags->ResizeArray(2);
    flags->GetVariablePtrFromArrayByIndex(2)->SetBoolean(true);
    HostValue i(flags->CreatePAVariable(false));
    EXPECT_FALSE(PA_GetBooleanInArray(i, 1));
    EXPECT_TRUE(PA_GetBooleanInArray(i, 2));
    longints->ResizeArray(1);
    longints->GetVariablePtrFromArrayByIndex(1)->SetNumber(-70000);
    HostValue j(longints->CreatePAVariable(false));
    EXPECT_EQ(PA_GetLongintInArray(j, 1), -70000);
}

TEST(Exchange, CreatePAVariable_ObjectsSharedOrDuplicated) {
    Program program;
    program.Run("$v:=New object\n$v.a:=1");
    ZR_Executer_Variable* variable = program.Find("$v");
    {
        HostValue shared(variable->CreatePAVariable(false)), copy(variable->CreatePAVariable(true));
        EXPECT_EQ(PA_GetObjectVariable(shared), variable->objectRef);
        EXPECT_NE(PA_GetObjectVariable(copy), variable->objectRef);
        EXPECT_EQ(Json(PA_GetObjectVariable(copy), eVK_Object), "{\"a\":1}");
    }
    EXPECT_EQ(Describe(variable), "object {\"a\":1}");  // still alive
    Variable null(ZR_EXE_Object);
    HostValue nothing(null->CreatePAVariable(true));
    EXPECT_EQ(PA_GetObjectVariable(nothing), nullptr);
}

TEST(Exchange, Picture_KeepsItsBytes) {
    static const unsigned char png[] = {0x89, 'P', 'N', 'G', 13, 10, 26, 10, 0, 0, 0, 13, 'I', 'H', 'D',
                                        'R',  0,   0,   0,   1,  0,  0,  0,  1, 8, 2, 0,  0,   0};
    Variable variable(ZR_EXE_Picture), other(ZR_EXE_Picture);
    ZR_Handle bytes;
    bytes.Create(1, 0);
    bytes.AddCharBuffer(reinterpret_cast<const char*>(png), sizeof png);
    variable->picture.SetNativePicture(&bytes);
    HostValue host(variable->CreatePAVariable(false));
    EXPECT_EQ(PA_GetVariableKind(host), eVK_Picture);
    EXPECT_TRUE(other->SetPAVariable(host));
    EXPECT_TRUE(other->picture.nativeData.Equal(&bytes));
    EXPECT_EQ(other->picture.nativeData.count, static_cast<long>(sizeof png));
    bytes.Dispose();
}

TEST(Exchange, RoundTrip_EveryKindTheHostKnows) {
    for (const char* make :
         {"$v:=2.5", "$v:=!2001-02-03!", "$v:=(1=1)", "C_LONGINT($v)\n$v:=-7", "$v:=?00:01:30?", "$v:=\"abc\"",
          "C_BLOB($v)\nSET BLOB SIZE($v;3)", "ARRAY REAL($v;2)\n$v{1}:=0.5", "ARRAY INTEGER($v;2)\n$v{2}:=-5",
          "ARRAY LONGINT($v;2)\n$v{2}:=70000", "ARRAY DATE($v;1)\n$v{1}:=!2001-02-03!",
          "ARRAY BOOLEAN($v;2)\n$v{1}:=True", "ARRAY TEXT($v;2)\n$v{2}:=\"zwei\""}) {
        Program program;
        program.Run(make);
        ZR_Executer_Variable* variable = program.Find("$v");
        HostValue host(variable->CreatePAVariable(false));
        Variable back(variable->kind);
        EXPECT_TRUE(back->SetPAVariable(host)) << make;
        EXPECT_EQ(back.text(), Describe(variable)) << make;
    }
}

TEST(Exchange, ToPAVariable_WritesAndStores) {
    zrhost::Host& host = *Machine::Get().host;
    static const struct {
        const char* make;
        int hostKind;
        const char* written;
    } rows[] = {
        {"v:=2.75", eVK_Real, "real 2.75"},
        {"v:=2.75", eVK_Longint, "longint 2"},
        {"C_LONGINT(v)\nv:=9", eVK_Real, "real 9"},
        {"C_LONGINT(v)\nv:=9", eVK_Longint, "longint 9"},
        {"v:=!2001-02-04!", eVK_Date, "date 2001-2-4"},
        {"v:=(1=2)", eVK_Boolean, "boolean false"},
        {"v:=?00:00:05?", eVK_Time, "time 5"},
        {"v:=\"neu\"", eVK_Text, "text neu"},
        {"C_BLOB(v)\nSET BLOB SIZE(v;1)", eVK_Blob, "blob 00"},
        {"ARRAY REAL(v;4)", eVK_ArrayReal, "array real of 4"},
        {"ARRAY INTEGER(v;4)", eVK_ArrayInteger, "array integer of 4"},
        {"ARRAY LONGINT(v;4)", eVK_ArrayLongint, "array longint of 4"},
        {"ARRAY DATE(v;4)", eVK_ArrayDate, "array date of 4"},
        {"ARRAY BOOLEAN(v;4)", eVK_ArrayBoolean, "array boolean of 4"},
        {"ARRAY TEXT(v;4)", eVK_ArrayText, "array text of 4"},
        // Kinds that do not match: the host keeps what it has.
        {"v:=\"neu\"", eVK_Real, "real 2.5"},
        {"v:=2", eVK_Text, "text abc"},
        {"v:=?00:00:05?", eVK_Longint, "longint 7"},
        {"ARRAY REAL(v;4)", eVK_ArrayLongint, "array longint of 2"},
        {"v:=New object", eVK_Object, "object"},
    };
    int number = 0;
    for (const auto& row : rows) {
        Program program;
        ASSERT_EQ(program.Run(row.make).error(), "") << row.make;
        std::string name = "to" + std::to_string(++number);  // the host keeps the kind of a variable that exists
        std::u16string hostName = HostName(name);
        HostValue value(MakeHost(row.hostKind));
        PA_SetVariable(Units(hostName), value, 1);
        ZR_Executer_Variable* variable = program.Find("v");
        SetText(&variable->name, name.c_str());
        variable->ToPAVariable(value);
        EXPECT_EQ(Describe(*value), row.written) << row.make << " to " << row.hostKind;
        HostValue stored(PA_GetVariable(Units(hostName)));
        EXPECT_EQ(Describe(*stored), row.written) << row.make << " to " << row.hostKind;
    }
    // Stored under the name only if the host has it.
    Program program;
    program.Run("unknown1:=2");
    HostValue value(eVK_Real);
    program.Find("unknown1")->ToPAVariable(value);
    EXPECT_TRUE(host.variable(u"unknown1").isUndefined());
}

TEST(Exchange, Get4DVariable_PullsIntoTheContext) {
    zrhost::Host& host = *Machine::Get().host;
    static const struct {
        int hostKind;
        const char* pulled;
    } rows[] = {{eVK_Real, "real 2.5"},
                {eVK_Longint, "longint 7"},
                {eVK_Text, "text abc"},
                {eVK_Date, "date 2001-2-3"},
                {eVK_Time, "time 90"},
                {eVK_Boolean, "boolean true"},
                {eVK_Blob, "blob 7879"},
                {eVK_ArrayText, "array text [abc|]"},
                {eVK_ArrayLongint, "array longint [70000|0]"}};
    for (const auto& row : rows) {
        std::string name = "pulled" + std::to_string(row.hostKind);
        std::u16string hostName = HostName(name);
        HostValue value(MakeHost(row.hostKind));
        PA_SetVariable(Units(hostName), value, 1);
        Program program;
        Text text(name);
        EXPECT_TRUE(program->Get4DVariable(text)) << row.hostKind;
        EXPECT_EQ(Describe(program.Find(name.c_str())), row.pulled);
    }
    host.setVariable(u"pulledText", zrhost::Value(u"from the host"));
    Program program;
    Text text("pulledText"), missing("pulledNothing");
    EXPECT_TRUE(program->Get4DVariable(text));
    EXPECT_EQ(Describe(program.Find("pulledText")), "text from the host");
    EXPECT_FALSE(program->Get4DVariable(missing));
    EXPECT_EQ(program.Find("pulledNothing"), nullptr);
    // Of another kind in the context: not taken.
    program.Run("other:=1");
    host.setVariable(u"other", zrhost::Value(u"x"));
    Text other("other");
    EXPECT_FALSE(program->Get4DVariable(other));
    EXPECT_EQ(Describe(program.Find("other")), "real 1");
    // An object is made, and takes nothing.
    HostValue object(MakeHost(eVK_Object));
    PA_SetVariable(Units(u"pulledObject"), object, 1);
    Text objectName("pulledObject");
    EXPECT_FALSE(program->Get4DVariable(objectName));
    EXPECT_EQ(Describe(program.Find("pulledObject")), "object none");
    EXPECT_EQ(program->lastError, 0);
}

TEST(Exchange, Set4DVariable_PushesToTheHost) {
    zrhost::Host& host = *Machine::Get().host;
    Program program;
    program.Run("pushed:=\"new\"\nkept:=5\nshared:=New object\n<>inter:=1\n$local:=1");
    Text pushed("pushed"), kept("kept"), shared("shared"), inter("inter"), local("local"), missing("none");
    EXPECT_TRUE(program->Set4DVariable(pushed));  // made in the host
    EXPECT_EQ(host.variable(u"pushed").text(), u"new");
    host.setVariable(u"kept", zrhost::Value(u"text"));
    EXPECT_TRUE(program->Set4DVariable(kept));  // defined there, of another kind: stays
    EXPECT_EQ(host.variable(u"kept").text(), u"text");
    host.setVariable(u"kept2", zrhost::Value(1.0));
    program.Run("kept2:=8");
    Text kept2("kept2");
    EXPECT_TRUE(program->Set4DVariable(kept2));
    EXPECT_EQ(host.variable(u"kept2").number(), 8);
    EXPECT_TRUE(program->Set4DVariable(shared));
    EXPECT_EQ(host.variable(u"shared").object(), program.Find("shared")->objectRef);
    EXPECT_FALSE(program->Set4DVariable(missing));
    EXPECT_FALSE(program->Set4DVariable(inter));  // process variables alone
    EXPECT_FALSE(program->Set4DVariable(local));
}

TEST(MapVarKindTo4D, FoldsThreeKinds) {
    for (ZR_EXE_VariableKind kind : kKinds) {
        int expected = kind == ZR_EXE_ArrayText ? 18 : kind == ZR_EXE_Text ? 2 : kind == ZR_EXE_Picture ? 3 : kind;
        EXPECT_EQ(zrExe_MapVarKindTo4D(kind), expected);
    }
}

// In programs ------------------------------------------------------------------------------------------------------

TEST(VariablesInPrograms, KindIsFixedByTheFirstAssignment) {
    EXPECT_EQ(RunFor("C_LONGINT($r)\n$r:=2147483648"), "longint -2147483648");
    EXPECT_EQ(RunFor("C_INTEGER($r)\n$r:=100000"), "longint 100000");
    EXPECT_EQ(RunFor("ARRAY INTEGER($r;1)\n$r{1}:=100000"), "array integer [100000]");
    EXPECT_EQ(RunFor("$r:=1\n$r:=2.5"), "real 2.5");
    EXPECT_EQ(RunFor("$r:=0xFF"), "real 255");
    EXPECT_EQ(RunForError("ARRAY LONGINT($a;2)\n$a{0}:=1"), "-10@2 Variable \"$a\" has incorrect type!");
    EXPECT_EQ(RunForError("$a:=1\n$a{1}:=1"), "-36@2 Array access \"a\" not possible. Index: 1 Array size: 0");
}

TEST(VariablesInPrograms, SetEmptyByNull_KeepsTextAndBlob) {
    Recorder recorder;
    recorder.answer = [](const HostCall& call, PA_Variable**, PA_Variable* result) {
        if (call.command != 1517) return false;
        *result = PA_CreateVariable(eVK_Null);
        return true;
    };
    EXPECT_EQ(RunFor("$r:=\"abc\"\n$r:=Null"), "text abc");
    EXPECT_EQ(RunFor("$r:=5\n$r:=Null"), "real 0");
    EXPECT_EQ(RunFor("ARRAY TEXT($r;3)\n$r:=Null"), "array text []");
    EXPECT_EQ(RunFor("$r:=New object\n$r:=Null"), "object none");
}

TEST(VariablesInPrograms, Scopes_DoNotMeet) {
    Outcome outcome = RunText("$v:=1\nv:=2\n<>v:=3");
    EXPECT_EQ(outcome["$v"], "real 1");
    EXPECT_EQ(outcome["v"], "real 2");
    EXPECT_EQ(outcome["<>v"], "real 3");
    // Neither do the host's variables.
    Machine::Get().host->setVariable(u"ofTheHost", zrhost::Value(1.0));
    EXPECT_EQ(RunForError("$r:=ofTheHost"), "-14@1 Unknown Variable \"ofTheHost\"");
}
