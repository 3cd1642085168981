#include "runtime/ZR_API_Variables.h"

#include <cstring>

#include "language/ZR_API_Token.h"
#include "plugin/ZR_API_Bridge.h"
#include "plugin/ZR_API_Numbers.h"
#include "runtime/ZR_API_Guards.h"
#include "runtime/ZR_API_VariableIndex.h"

static constexpr struct {
    ZR_EXE_VariableKind array, element;
} kElementKinds[] = {
    {ZR_EXE_ArrayReal, ZR_EXE_Real},       {ZR_EXE_ArrayInteger, ZR_EXE_Integer}, {ZR_EXE_ArrayLongint, ZR_EXE_Longint},
    {ZR_EXE_ArrayDate, ZR_EXE_Date},       {ZR_EXE_ArrayPicture, ZR_EXE_Picture}, {ZR_EXE_ArrayPointer, ZR_EXE_Pointer},
    {ZR_EXE_ArrayBoolean, ZR_EXE_Boolean}, {ZR_EXE_ArrayText, ZR_EXE_Text},
};

static constexpr struct {
    int token;
    ZR_EXE_VariableKind variable;
} kParameterKinds[] = {
    {ZREXE_TOKEN_NUMBER, ZR_EXE_Real},
    {ZREXE_TOKEN_LONGINT, ZR_EXE_Longint},
    {ZREXE_TOKEN_STRING, ZR_EXE_Text},
    {ZREXE_TOKEN_DATE, ZR_EXE_Date},
    {ZREXE_TOKEN_TIME, ZR_EXE_Time},
    {ZREXE_TOKEN_BOOLEAN, ZR_EXE_Boolean},
    {ZREXE_TOKEN_POINTER, ZR_EXE_Pointer},
    {ZREXE_TOKEN_BLOB, ZR_EXE_Blob},
    {ZREXE_TOKEN_PICTURE, ZR_EXE_Picture},
    {ZREXE_TOKEN_OBJECT, ZR_EXE_Object},
    {ZREXE_TOKEN_COLLECTION, ZR_EXE_Collection},
};

// Life -------------------------------------------------------------------------------------------------------------

void ZR_Executer_Variable::Create(ZR_EXE_VariableKind newKind) {
    value.integer = 0;
    objectRef = nullptr;
    collectionRef = nullptr;
    kind = newKind;
    name.Create(static_cast<ZR_Text*>(nullptr));
    text.Create(static_cast<ZR_Text*>(nullptr));
    elements.Create(sizeof(ZR_Executer_Variable), 0);
    blob.Create(1, 0);
    picture.Create();
}

void ZR_Executer_Variable::Create(ZR_EXE_VariableKind newKind, ZR_Text* newName) {
    Create(newKind);
    if (newName) name.AddText(newName);
}

void ZR_Executer_Variable::Create(ZR_Executer_Variable* source, ZR_Text* newName) {
    Create(source->kind, newName ? newName : &source->name);
    value = source->value;
    text.AddText(&source->text);
    blob.Dispose();
    blob.Create(&source->blob);
    picture.Dispose();
    picture.Create(&source->picture);
    objectRef = source->objectRef;
    if (objectRef) PA_IncrementObjectRef(objectRef);
    collectionRef = source->collectionRef;
    if (collectionRef) PA_IncrementCollectionRef(collectionRef);
    elements.Resize(source->elements.count);
    for (long i = 1; i <= elements.count; ++i)
        reinterpret_cast<ZR_Executer_Variable*>(elements.GetMemPtr(i))
            ->Create(reinterpret_cast<ZR_Executer_Variable*>(source->elements.GetMemPtr(i)), nullptr);
}

void ZR_Executer_Variable::Create(ZR_Text* newName, ZR_Executer_Token* token) {
    ZR_EXE_VariableKind newKind = ZR_EXE_Undefined;
    for (const auto& row : kParameterKinds)
        if (row.token == token->kind) newKind = row.variable;
    Create(newKind, newName);
    switch (newKind) {
        case ZR_EXE_Real: value.real = token->GetNumber(); break;
        case ZR_EXE_Text: text.AddText(token->GetText()); break;
        case ZR_EXE_Pointer:
            text.AddText(token->GetText());
            memcpy(&value, &token->value, sizeof value);
            break;
        case ZR_EXE_Blob:
            blob.Dispose();
            blob.Create(token->GetBlob());
            break;
        case ZR_EXE_Picture:
            picture.Dispose();
            picture.Create(token->GetPicture());
            break;
        case ZR_EXE_Object: SetObjectRef(token->objectRef); break;
        case ZR_EXE_Collection: SetCollectionRef(token->collectionRef); break;
        case ZR_EXE_Undefined: break;
        default: memcpy(&value, &token->value, sizeof value); break;  // longint, date, time, boolean
    }
}

static void DisposeElements(ZR_Handle* elements, long from) {
    for (long i = elements->count; i >= from; --i)
        reinterpret_cast<ZR_Executer_Variable*>(elements->GetMemPtr(i))->Dispose();
}

void ZR_Executer_Variable::Dispose() {
    name.Dispose();
    text.Dispose();
    DisposeElements(&elements, 1);
    elements.Dispose();
    blob.Dispose();
    picture.Dispose();
    if (objectRef) PA_DisposeObject(objectRef);
    if (collectionRef) PA_DisposeCollection(collectionRef);
    objectRef = nullptr;
    collectionRef = nullptr;
}

// Setting ----------------------------------------------------------------------------------------------------------

void ZR_Executer_Variable::SetNumber(double number) {
    if (kind == ZR_EXE_Real) value.real = number;
    if (kind == ZR_EXE_Integer || kind == ZR_EXE_Longint) value.integer = ZR_DoubleToLongManageOverflow(number);
}

void ZR_Executer_Variable::SetBoolean(bool flag) {
    if (kind == ZR_EXE_Boolean) value.integer = flag ? 1 : 0;
}

void ZR_Executer_Variable::SetDate(ZR_Date* date) {
    if (kind != ZR_EXE_Date) return;
    value.integer = 0;
    value.date[0] = date->day;
    value.date[1] = date->month;
    value.date[2] = date->year;
}

void ZR_Executer_Variable::SetTime(long seconds) {
    if (kind == ZR_EXE_Time) value.integer = seconds;
}

void ZR_Executer_Variable::SetObjectRef(void* object) {
    if (kind != ZR_EXE_Object) return;
    objectRef = object;
    if (object) PA_IncrementObjectRef(object);
}

void ZR_Executer_Variable::SetCollectionRef(void* collection) {
    if (kind != ZR_EXE_Collection) return;
    collectionRef = collection;
    if (collection) PA_IncrementCollectionRef(collection);
}

void ZR_Executer_Variable::SetEmpty() {
    value.integer = 0;
    DisposeElements(&elements, 1);
    elements.Resize(0);
    if (objectRef) PA_DecrementObjectRef(objectRef);
    if (collectionRef) PA_DecrementCollectionRef(collectionRef);
    objectRef = nullptr;
    collectionRef = nullptr;
}

// Reading ----------------------------------------------------------------------------------------------------------

double ZR_Executer_Variable::GetNumber() {
    if (kind == ZR_EXE_Real) return value.real;
    if (kind == ZR_EXE_Integer || kind == ZR_EXE_Longint) return static_cast<double>(value.integer);
    return 0;
}

long ZR_Executer_Variable::GetTime() { return kind == ZR_EXE_Time ? value.integer : 0; }

bool ZR_Executer_Variable::GetBoolean() { return kind == ZR_EXE_Boolean && value.integer == 1; }

void ZR_Executer_Variable::GetDate(ZR_Date* date) {
    bool is = kind == ZR_EXE_Date;
    date->day = is ? value.date[0] : 0;
    date->month = is ? value.date[1] : 0;
    date->year = is ? value.date[2] : 0;
}

bool ZR_Executer_Variable::PointerToTable() {
    return kind == ZR_EXE_Pointer && text.count == 0 && ((value.integer >> 16) & 0xFFFF) == 0;
}

bool ZR_Executer_Variable::PointerToField() {
    return kind == ZR_EXE_Pointer && text.count == 0 && (value.integer & ~0xFFFFL) != 0 &&
           (value.integer & 0xFFFF) != 0;
}

bool ZR_Executer_Variable::IsPointerNil() { return kind == ZR_EXE_Pointer && text.count == 0 && value.integer == 0; }

long ZR_Executer_Variable::GetTable() {
    bool is = kind == ZR_EXE_Pointer && text.count == 0 && (value.integer & 0xFFFFFFFFL) <= 65535;
    return is ? value.integer : 0;
}

long ZR_Executer_Variable::GetField() {
    bool is = kind == ZR_EXE_Pointer && text.count == 0 && (value.integer & ~0xFFFFL) != 0;
    return is ? value.integer & 0xFFFF : 0;
}

long ZR_Executer_Variable::GetStackIDFromPointerToLocalVariable() { return kind == ZR_EXE_Pointer ? value.integer : 0; }

bool ZR_Executer_Variable::isNull() {
    return (kind == ZR_EXE_Object && !objectRef) || (kind == ZR_EXE_Collection && !collectionRef);
}

// Arrays -----------------------------------------------------------------------------------------------------------

ZR_EXE_VariableKind ZR_Executer_Variable::GetVariableTypeFromArrayType() {
    for (const auto& row : kElementKinds)
        if (row.array == kind) return row.element;
    return ZR_EXE_Undefined;
}

// Guard: an array takes no more than ZR_MAX_VALUE_BYTES, and no more than the process has left.
static bool Fits(long before, long count) {
    static const long kSize = sizeof(ZR_Executer_Variable);
    return count <= ZR_MAX_VALUE_BYTES / kSize &&
           (count <= before || count * kSize < ZR_SMALL_BYTES || ZR_MemoryAllows((count - before) * kSize));
}

bool ZR_Executer_Variable::ResizeArray(long n) {
    if (!IsArray()) return true;
    if (n < 0) n = 0;
    long before = elements.count;
    if (!Fits(before, n)) return false;
    if (n < before) DisposeElements(&elements, n + 1);
    elements.Resize(n);
    if (elements.count != n) return false;
    ZR_EXE_VariableKind element = GetVariableTypeFromArrayType();
    for (long i = before + 1; i <= n; ++i)
        reinterpret_cast<ZR_Executer_Variable*>(elements.GetMemPtr(i))->Create(element);
    return true;
}

bool ZR_Executer_Variable::InsertArrayElements(long position, long n) {
    if (!IsArray() || position < 1 || position > elements.count || n < 1) return true;
    if (n > ZR_MAX_VALUE_BYTES || !Fits(elements.count, elements.count + n)) return false;
    ZR_Executer_Variable* gap = reinterpret_cast<ZR_Executer_Variable*>(elements.InsertElement(position - 1, n));
    if (!gap) return false;
    ZR_EXE_VariableKind element = GetVariableTypeFromArrayType();
    for (long i = 0; i < n; ++i) gap[i].Create(element);
    return true;
}

void ZR_Executer_Variable::DeleteArrayElements(long position, long n) {
    if (!IsArray() || position < 1 || position > elements.count || n < 1) return;
    if (n > elements.count - position + 1) n = elements.count - position + 1;
    ZR_Executer_Variable* first = reinterpret_cast<ZR_Executer_Variable*>(elements.GetMemPtr(position));
    for (long i = 0; i < n; ++i) first[i].Dispose();
    long behind = elements.count - (position - 1) - n;
    memmove(static_cast<void*>(first), static_cast<void*>(first + n), static_cast<size_t>(behind) * sizeof *first);
    elements.Resize(elements.count - n);
}

ZR_Executer_Variable* ZR_Executer_Variable::GetVariablePtrFromArrayByIndex(long index) {
    return IsArray() ? reinterpret_cast<ZR_Executer_Variable*>(elements.GetMemPtr(index)) : nullptr;
}

double ZR_Executer_Variable::Sum() {
    if (kind != ZR_EXE_ArrayReal && kind != ZR_EXE_ArrayInteger && kind != ZR_EXE_ArrayLongint) return 0;
    double sum = 0;
    for (long i = 1; i <= elements.count; ++i)
        sum += reinterpret_cast<ZR_Executer_Variable*>(elements.GetMemPtr(i))->GetNumber();
    return sum;
}

// Lists ------------------------------------------------------------------------------------------------------------

static long FindPosition(ZR_Handle* list, ZR_Text* name) {
    for (long i = 1; i <= list->count; ++i)
        if (reinterpret_cast<ZR_Executer_Variable*>(list->GetMemPtr(i))->name.Equal(name, /*case sensitive*/ false))
            return i;
    return 0;
}

ZR_Executer_Variable* zrExe_FindVariableByName(ZR_Handle* list, ZR_Text* name) {
    return reinterpret_cast<ZR_Executer_Variable*>(list->GetMemPtr(FindPosition(list, name)));
}

bool zrExe_DeleteVariableByName(ZR_Handle* list, ZR_Text* name) {
    long position = FindPosition(list, name);
    if (!position) return false;
    reinterpret_cast<ZR_Executer_Variable*>(list->GetMemPtr(position))->Dispose();
    list->DeleteElement(position);
    zrExe_VariableDeleted();
    return true;
}

ZR_Executer_Variable* zrExe_FindVariableByNameAndCreate(ZR_Handle* list, ZR_Text* name, ZR_EXE_VariableKind kind) {
    ZR_Executer_Variable* found = zrExe_FindVariableByName(list, name);
    if (found) return found;
    ZR_Executer_Variable* fresh = reinterpret_cast<ZR_Executer_Variable*>(list->AppendGetPtr());
    if (fresh) fresh->Create(kind, name);
    return fresh;
}

void zrExe_DisposeVariables(ZR_Handle* list) {
    DisposeElements(list, 1);
    list->Dispose();
}
