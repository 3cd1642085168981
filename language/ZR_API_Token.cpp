#include "language/ZR_API_Token.h"

#include "language/ZR_API_Token_Private.h"
#include "plugin/ZR_API_Bridge.h"
#include "plugin/ZR_API_Numbers.h"

// Packing ---------------------------------------------------------------------------------------------------------

static long PackPair(long high, long low) {  // (high << 16) + low, wrapping
    return static_cast<long>((static_cast<unsigned long>(high) << 16) + static_cast<unsigned long>(low));
}

static long LowHalf(long packed) { return packed & 0xFFFF; }
static long HighHalf(long packed) { return (packed >> 16) & 0xFFFF; }

static ZR_Executer_Token* EndOfChain(ZR_Executer_Token* token) {
    while (token->parent) token = token->parent;
    return token;
}

// Life ------------------------------------------------------------------------------------------------------------

const ZR_Executer_Token& zrExe_EmptyToken() {
    static const ZR_Executer_Token* empty = [] {
        static ZR_Executer_Token token;
        memset(static_cast<void*>(&token), 0, sizeof token);
        token.kind = ZREXE_TOKEN_OTHER;
        token.text.Create();
        token.nameCache.Create();
        token.picture.Create();
        token.blob.Create(1, 0);
        return &token;
    }();
    return *empty;
}

void ZR_Executer_Token::Create(ZREXE_TOKEN tokenKind, ZR_Text* source) {
    ZR_TokenValue kept = value;
    zrExe_MakeEmptyToken(this, tokenKind);
    value = kept;
    if (source && source->count > 0) text.Create(source);
}

void ZR_Executer_Token::Create(ZR_Executer_Token* source, bool shallow) {
    zrExe_MakeEmptyToken(this, source->kind);
    value = source->value;
    if (shallow) {
        parent = source->parent ? source->parent : source;
    } else {
        // Required: the copy keeps the source's parent, and so still reads from there.
        parent = source->parent;
        if (source->text.data) text.Create(&source->text);
        if (source->blob.data) blob.Create(&source->blob);
        if (source->kind == ZREXE_TOKEN_PICTURE || source->picture.nativeData.data) picture.Create(&source->picture);
    }
    if (kind == ZREXE_TOKEN_OBJECT && source->objectRef) SetObjectRef(source->objectRef);
    if (kind == ZREXE_TOKEN_COLLECTION && source->collectionRef) SetCollectionRef(source->collectionRef);
}

void ZR_Executer_Token::Create(PA_Variable* variable) {
    zrExe_MakeEmptyToken(this, ZREXE_TOKEN_OTHER);
    switch (UnifyVarKind(variable->fType)) {
        case eVK_Real:
            kind = ZREXE_TOKEN_NUMBER;
            value.real = variable->uValue.fReal;
            break;
        case eVK_Date:
            kind = ZREXE_TOKEN_DATE;
            PA_GetDateVariable(variable, &value.date.day, &value.date.month, &value.date.year);
            break;
        case eVK_Boolean:
            kind = ZREXE_TOKEN_BOOLEAN;
            value.integer = PA_GetBooleanVariable(variable) ? 1 : 0;
            break;
        case eVK_Integer:  // Required: an integer variable reads as 0, only the longint below is read.
            kind = ZREXE_TOKEN_NUMBER;
            value.real = 0.0;
            break;
        case eVK_Longint:
        case 25:
            kind = ZREXE_TOKEN_NUMBER;
            value.real = variable->uValue.fLongint;
            break;
        case eVK_Picture:
            kind = ZREXE_TOKEN_PICTURE;
            picture.Create(static_cast<void**>(variable->uValue.fPicture));
            break;
        case eVK_Time:
            kind = ZREXE_TOKEN_TIME;
            value.integer = PA_GetTimeVariable(variable);
            break;
        case eVK_Blob:
            kind = ZREXE_TOKEN_BLOB;
            blob.CreateFrom4DVariable(variable);
            break;
        case eVK_Text:
            kind = ZREXE_TOKEN_STRING;
            text.CreateFrom4DVariable(variable);
            break;
        case eVK_Object:
            kind = ZREXE_TOKEN_OBJECT;
            SetObjectRef(variable->uValue.fObject);
            break;
        case eVK_Collection:
            kind = ZREXE_TOKEN_COLLECTION;
            SetCollectionRef(variable->uValue.fCollection);
            break;
        case eVK_Null: kind = ZREXE_TOKEN_NULL; break;
        default: break;
    }
}

void ZR_Executer_Token::Dispose() {
    zrExe_DisposeTextIfUsed(&text);
    zrExe_DisposeTextIfUsed(&nameCache);
    if (blob.data) blob.Dispose();
    if (picture.image || picture.document || picture.nativeData.data) picture.Dispose();
    if (objectRef) PA_DisposeObject(objectRef);
    if (collectionRef) PA_DisposeCollection(collectionRef);
    objectRef = nullptr;
    collectionRef = nullptr;
}

// Re-creating -----------------------------------------------------------------------------------------------------

static void Recreate(ZR_Executer_Token* token, ZREXE_TOKEN kind) {
    token->Dispose();
    zrExe_MakeEmptyToken(token, kind);
}

void ZR_Executer_Token::CreateNumberLongint(long number) {
    Recreate(this, ZREXE_TOKEN_NUMBER);
    value.real = static_cast<double>(number);
}

void ZR_Executer_Token::SetBoolean(bool truth) {
    Recreate(this, ZREXE_TOKEN_BOOLEAN);
    value.integer = truth ? 1 : 0;
}

void ZR_Executer_Token::SetPointerToTable(long table) {
    Recreate(this, ZREXE_TOKEN_POINTER);
    value.integer = table;
}

void ZR_Executer_Token::SetPointerToField(long first, long second) {
    Recreate(this, ZREXE_TOKEN_POINTER);
    value.integer = PackPair(first, second);
}

void ZR_Executer_Token::SetPointerToVariable(ZR_Text* name, long scope) {
    ZR_Text copy;  // the name may be this token's own
    copy.Create(name);
    Recreate(this, ZREXE_TOKEN_POINTER);
    text.CreateAndOwn(&copy);
    copy.Dispose();
    value.integer = scope;
}

// Changing --------------------------------------------------------------------------------------------------------

void ZR_Executer_Token::SetNumber(double number) {
    if (kind == ZREXE_TOKEN_NUMBER) value.real = number;
    if (kind == ZREXE_TOKEN_LONGINT) value.integer = ZR_DoubleToLongManageOverflow(number);
}

void ZR_Executer_Token::SetDate(ZR_Date* date) {
    if (kind != ZREXE_TOKEN_DATE) return;
    value.date.day = date->day;
    value.date.month = date->month;
    value.date.year = date->year;
}

void ZR_Executer_Token::Add(long days) {
    if (kind != ZREXE_TOKEN_DATE) return;
    ZR_Date date;
    GetDate(&date);
    date.Add(days);
    SetDate(&date);
}

// The new reference is counted before the old one goes: both may be the same.
static void ReplaceObject(ZR_Executer_Token* token, void* object) {
    void* old = token->objectRef;
    token->objectRef = object;
    if (old) PA_DisposeObject(old);
}
static void ReplaceCollection(ZR_Executer_Token* token, void* collection) {
    void* old = token->collectionRef;
    token->collectionRef = collection;
    if (old) PA_DisposeCollection(old);
}

void ZR_Executer_Token::SetObjectRef(void* object) {
    if (kind != ZREXE_TOKEN_OBJECT) return;
    if (object) PA_IncrementObjectRef(object);
    ReplaceObject(this, object);
}

void ZR_Executer_Token::SetObjectRefNoIncrement(void* object) {
    if (kind == ZREXE_TOKEN_OBJECT) ReplaceObject(this, object);
}

void ZR_Executer_Token::SetCollectionRef(void* collection) {
    if (kind != ZREXE_TOKEN_COLLECTION) return;
    if (collection) PA_IncrementCollectionRef(collection);
    ReplaceCollection(this, collection);
}

void ZR_Executer_Token::SetCollectionRefNoIncrement(void* collection) {
    if (kind == ZREXE_TOKEN_COLLECTION) ReplaceCollection(this, collection);
}

void ZR_Executer_Token::SetObjectProperty(ZR_Executer_Token* source) {
    if (kind != ZREXE_TOKEN_OBJECT || GetText()->count == 0) return;
    PA_Variable property = source->ToPAVariable();
    PA_SetObjectProperty(objectRef, GetText()->GetUnistringPtr(), &property);
    bool uncounted = property.fType == eVK_Object || property.fType == eVK_Collection;
    if (!uncounted) PA_ClearVariable(&property);
}

// Reading ---------------------------------------------------------------------------------------------------------

ZR_Text* ZR_Executer_Token::GetText() { return &EndOfChain(this)->text; }

ZR_Picture* ZR_Executer_Token::GetPicture() { return &EndOfChain(this)->picture; }

ZR_Handle* ZR_Executer_Token::GetBlob() { return &EndOfChain(this)->blob; }

double ZR_Executer_Token::GetNumber() {
    if (kind == ZREXE_TOKEN_NUMBER) return value.real;
    if (kind == ZREXE_TOKEN_LONGINT) return static_cast<double>(value.integer);
    return 0.0;
}

bool ZR_Executer_Token::GetBoolean() { return kind == ZREXE_TOKEN_BOOLEAN && value.integer == 1; }

long ZR_Executer_Token::GetComparison() { return kind == ZREXE_TOKEN_COMPARISON ? value.integer : 0; }

long ZR_Executer_Token::GetOperation() { return kind == ZREXE_TOKEN_LOGIC ? value.integer : 0; }

unsigned short ZR_Executer_Token::GetFormula() { return kind == ZREXE_TOKEN_FORMULA ? value.unit : 0; }

long ZR_Executer_Token::GetTable() {
    switch (kind) {
        case ZREXE_TOKEN_TABLE: return value.integer;
        case ZREXE_TOKEN_FIELD: return HighHalf(value.integer);
        // Required: on a pointer the halves are the other way round, so a pointer to a field gives its field here.
        case ZREXE_TOKEN_POINTER: return LowHalf(value.integer);
        default: return 0;
    }
}

long ZR_Executer_Token::GetField() {
    switch (kind) {
        case ZREXE_TOKEN_FIELD: return LowHalf(value.integer);
        case ZREXE_TOKEN_POINTER: return HighHalf(value.integer);  // Required: as in GetTable
        default: return 0;
    }
}

void ZR_Executer_Token::GetDate(ZR_Date* out) {
    *out = {0, 0, 0};
    if (kind == ZREXE_TOKEN_DATE) *out = {value.date.day, value.date.month, value.date.year};
}

long ZR_Executer_Token::GetPictureSize() {
    ZR_Executer_Token* token = this;
    while (token->kind == ZREXE_TOKEN_PICTURE && token->parent) token = token->parent;
    return token->kind == ZREXE_TOKEN_PICTURE ? token->picture.nativeData.count : 0;
}

ZR_Text* ZR_Executer_Token::GetVariableName() {
    nameCache.Resize(0);
    if (kind == ZREXE_TOKEN_LOCAL) nameCache.AddString("$");
    if (kind == ZREXE_TOKEN_INTERPROCESS) nameCache.AddString("<>");
    if (kind >= ZREXE_TOKEN_VARIABLE && kind <= ZREXE_TOKEN_INTERPROCESS) nameCache.AddText(GetText());
    return &nameCache;
}

bool ZR_Executer_Token::PointerToTable() {
    return kind == ZREXE_TOKEN_POINTER && GetText()->count == 0 && HighHalf(value.integer) == 0;
}

bool ZR_Executer_Token::PointerToField() {
    return kind == ZREXE_TOKEN_POINTER && GetText()->count == 0 && HighHalf(value.integer) != 0 &&
           LowHalf(value.integer) != 0;
}

// Host bridge -----------------------------------------------------------------------------------------------------

PA_Variable ZR_Executer_Token::ToPAVariable() {
    PA_Variable variable;
    switch (kind) {
        case ZREXE_TOKEN_NUMBER:
            variable = PA_CreateVariable(eVK_Real);
            PA_SetRealVariable(&variable, value.real);
            break;
        case ZREXE_TOKEN_STRING:
            variable = PA_CreateVariable(eVK_Text);
            GetText()->To4DVariable(&variable);
            break;
        case ZREXE_TOKEN_DATE:
            variable = PA_CreateVariable(eVK_Date);
            PA_SetDateVariable(&variable, value.date.day, value.date.month, value.date.year);
            break;
        case ZREXE_TOKEN_TIME:
            variable = PA_CreateVariable(eVK_Time);
            PA_SetTimeVariable(&variable, static_cast<int>(value.integer));
            break;
        case ZREXE_TOKEN_BOOLEAN:
            variable = PA_CreateVariable(eVK_Boolean);
            PA_SetBooleanVariable(&variable, GetBoolean());
            break;
        case ZREXE_TOKEN_LONGINT:
            variable = PA_CreateVariable(eVK_Longint);
            PA_SetLongintVariable(&variable, static_cast<int>(value.integer));
            break;
        case ZREXE_TOKEN_PICTURE:
            variable = PA_CreateVariable(eVK_Picture);
            GetPicture()->To4DVariable(&variable);
            break;
        case ZREXE_TOKEN_OBJECT:
            variable = PA_CreateVariable(eVK_Object);
            PA_SetObjectVariable(&variable, objectRef);
            break;
        case ZREXE_TOKEN_COLLECTION:
            variable = PA_CreateVariable(eVK_Collection);
            PA_SetCollectionVariable(&variable, collectionRef);
            break;
        // Required: a BLOB token has no host value here.
        default: variable = PA_CreateVariable(eVK_Undefined); break;
    }
    return variable;
}

// Methods of the host ---------------------------------------------------------------------------------------------

void ZR_Executer_4DMethod::Create(ZR_Text* methodName, long methodID) {
    name.Create(methodName);
    id = methodID;
}

void ZR_Executer_4DMethod::Dispose() { name.Dispose(); }

static ZR_Executer_4DMethod* MethodAt(ZR_Handle* methods, long index) {
    return reinterpret_cast<ZR_Executer_4DMethod*>(methods->GetMemPtr(index));
}

void zrExe_Dispose4DMethods(ZR_Handle* methods) {
    for (long i = 1; i <= methods->count; i++) MethodAt(methods, i)->Dispose();
    methods->Dispose();
}

ZR_Executer_4DMethod* zrExe_Find4DMethodByName(ZR_Handle* methods, ZR_Text* name) {
    for (long i = 1; i <= methods->count; i++)
        if (MethodAt(methods, i)->name.Equal(name, false)) return MethodAt(methods, i);
    return nullptr;
}

ZR_Executer_4DMethod* zrExe_Find4DMethodByID(ZR_Handle* methods, long id) {
    for (long i = 1; i <= methods->count; i++)
        if (MethodAt(methods, i)->id == id) return MethodAt(methods, i);
    return nullptr;
}
