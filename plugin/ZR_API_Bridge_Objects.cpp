#include "plugin/ZR_API_Bridge.h"
#include "plugin/ZR_API_Bridge_Private.h"

static constexpr unsigned kFirstWithNewObject = 0x1630, kFirstWithObjects = 0x1400;

enum {  // host commands behind this file
    kJsonStringify = 1217,
    kJsonParse = 1218,
    kJsonParseArray = 1219,
    kObjectCopy = 1225,
    kJsonStringifyArray = 1228,
    kNewObject = 1471
};

// Counting ---------------------------------------------------------------------------------------------------------

// A call whose only field is the object or collection; null makes no call and no error.
static bool CallReference(int selector, void* reference, EngineBlock* block) {
    block->fParam1 = ZR_AddressOf(reference);
    block->fParam2 = 0;
    if (reference != nullptr) return ZR_CallHost(selector, block);
    sErrorCode = ZR_ERR_NONE;
    return false;
}

static void Count(int selector, void* reference) {
    EngineBlock block;
    CallReference(selector, reference, &block);
}

void PA_IncrementObjectRef(PA_ObjectRef object) { Count(ZR_SEL_ObjectAddRef, object); }
void PA_DecrementObjectRef(PA_ObjectRef object) { Count(ZR_SEL_ObjectRelease, object); }
void PA_DisposeObject(PA_ObjectRef object) { Count(ZR_SEL_ObjectRelease, object); }
void PA_IncrementCollectionRef(PA_CollectionRef collection) { Count(ZR_SEL_CollectionAddRef, collection); }
void PA_DecrementCollectionRef(PA_CollectionRef collection) { Count(ZR_SEL_CollectionRelease, collection); }
void PA_DisposeCollection(PA_CollectionRef collection) { Count(ZR_SEL_CollectionRelease, collection); }

void ZR_FreeObject(PA_ObjectRef object) {
    short kept = sErrorCode;
    PA_DisposeObject(object);
    sErrorCode = kept;
}

// Objects ----------------------------------------------------------------------------------------------------------

// The object of a command's answer, handed over; any other answer is freed.
static PA_ObjectRef TakeObject(PA_Variable* answer) {
    PA_ObjectRef object = PA_GetObjectVariable(answer);
    if (object == nullptr) ZR_FreeVariable(answer);
    return object;
}

PA_ObjectRef PA_CreateObject() {
    if (Current4DVersion < kFirstWithObjects) return nullptr;
    PA_Variable answer;
    if (Current4DVersion >= kFirstWithNewObject) {
        answer = PA_ExecuteCommandByID(kNewObject, nullptr, 0);
    } else {
        static PA_Unichar empty[] = {'{', '}', 0};
        const PA_Unistring json = {2, empty, nullptr};
        answer = PA_JsonParse(&json, eVK_Object);
    }
    return TakeObject(&answer);
}

PA_ObjectRef PA_DuplicateObject(PA_ObjectRef object) {
    PA_Variable source = PA_CreateVariable(eVK_Object);
    source.uValue.fObject = object;  // borrowed: not cleared
    PA_Variable answer = PA_ExecuteCommandByID(kObjectCopy, &source, 1);
    return TakeObject(&answer);
}

PA_Variable PA_GetObjectProperty(PA_ObjectRef object, const PA_Unistring* key) {
    PA_Variable value = ZR_UndefinedVariable();
    if (object == nullptr || key == nullptr) return value;
    EngineBlock block;
    block.fParam1 = ZR_AddressOf(object);
    block.fParam2 = ZR_AddressOf(key);
    block.fParam3 = ZR_AddressOf(&value);
    ZR_CallHost(ZR_SEL_ObjectGetProperty, &block);
    return value;
}

void PA_SetObjectProperty(PA_ObjectRef object, const PA_Unistring* key, const PA_Variable* value) {
    if (object == nullptr || key == nullptr || value == nullptr) return;
    EngineBlock block;
    block.fParam1 = ZR_AddressOf(object);
    block.fParam2 = ZR_AddressOf(key);
    block.fParam3 = ZR_AddressOf(value);
    ZR_CallHost(ZR_SEL_ObjectSetProperty, &block);
}

bool PA_HasObjectProperty(PA_ObjectRef object, const PA_Unistring* key) {
    if (object == nullptr || key == nullptr) return false;
    EngineBlock block;
    block.fParam1 = ZR_AddressOf(object);
    block.fParam2 = ZR_AddressOf(key);
    return ZR_CallHost(ZR_SEL_ObjectHasProperty, &block) && block.fParam2 == 1;
}

// Collections ------------------------------------------------------------------------------------------------------

PA_CollectionRef PA_CreateCollection() {
    EngineBlock block;
    block.fParam1 = 0;
    return ZR_CallHost(ZR_SEL_CollectionCreate, &block) ? ZR_PointerOf(block.fParam1) : nullptr;
}

long PA_GetCollectionLength(PA_CollectionRef collection) {
    EngineBlock block;
    return CallReference(ZR_SEL_CollectionLength, collection, &block) ? block.fParam2 : 0;
}

PA_Variable PA_GetCollectionElement(PA_CollectionRef collection, long index) {
    PA_Variable value = ZR_UndefinedVariable();
    if (collection == nullptr || index < 0) return value;
    EngineBlock block;
    block.fParam1 = ZR_AddressOf(collection);
    block.fParam2 = index;
    block.fParam3 = ZR_AddressOf(&value);
    ZR_CallHost(ZR_SEL_CollectionGetElement, &block);
    return value;
}

void PA_SetCollectionElement(PA_CollectionRef collection, long index, const PA_Variable* value) {
    if (collection == nullptr || index < 0 || value == nullptr) return;
    EngineBlock block;
    block.fParam1 = ZR_AddressOf(collection);
    block.fParam2 = index;
    block.fParam3 = ZR_AddressOf(value);
    ZR_CallHost(ZR_SEL_CollectionSetElement, &block);
}

// JSON -------------------------------------------------------------------------------------------------------------

PA_Variable PA_JsonParse(const PA_Unistring* json, int kind) {
    bool wantsArray = kind == eVK_ArrayObject;
    PA_Variable params[2] = {ZR_TextVariable(json), PA_CreateVariable(wantsArray ? eVK_ArrayObject : eVK_Longint)};
    if (!wantsArray) PA_SetLongintVariable(&params[1], kind);
    PA_Variable answer = PA_ExecuteCommandByID(wantsArray ? kJsonParseArray : kJsonParse, params, kind == 0 ? 1 : 2);
    if (!wantsArray) return answer;
    ZR_FreeVariable(&answer);
    return params[1];  // the command fills the array it is given
}

PA_Unistring PA_JsonStringify(const PA_Variable* value, bool pretty) {
    if (value == nullptr) return {0, nullptr, nullptr};
    bool isArray = PA_IsArrayVariable(value) || value->fType == eVK_ArrayObject;
    PA_Variable params[2] = {*value, ZR_UndefinedVariable()};  // borrowed: not cleared
    PA_SetOperatorVariable(&params[1], ZR_OP_TIMES);
    PA_Variable answer = PA_ExecuteCommandByID(isArray ? kJsonStringifyArray : kJsonStringify, params, pretty ? 2 : 1);
    return ZR_TakeString(&answer);
}
