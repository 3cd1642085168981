#include "plugin/ZR_API_Bridge.h"
#include "plugin/ZR_API_Bridge_Private.h"

// Kinds ------------------------------------------------------------------------------------------------------------

static constexpr int kFirstArrayKind = eVK_ArrayOfArray, kLastArrayKind = eVK_ArrayText;
static constexpr unsigned Bit(int kind) { return 1u << (kind - kFirstArrayKind); }
static constexpr unsigned kArrayKinds =
    Bit(eVK_ArrayOfArray) | Bit(eVK_ArrayReal) | Bit(eVK_ArrayInteger) | Bit(eVK_ArrayLongint) | Bit(eVK_ArrayDate) |
    Bit(eVK_OldArrayText) | Bit(eVK_ArrayPicture) | Bit(eVK_ArrayPointer) | Bit(eVK_OldArrayString) |
    Bit(eVK_ArrayBoolean) | Bit(eVK_ArrayBlob) | Bit(eVK_ArrayTime) | Bit(eVK_ArrayText);

// Required: object arrays, kind 39, lie beyond the mask and do not count as arrays.
bool PA_IsArrayVariable(const PA_Variable* variable) {
    if (variable == nullptr || variable->fType < kFirstArrayKind || variable->fType > kLastArrayKind) return false;
    return (kArrayKinds & Bit(variable->fType)) != 0;
}

long PA_GetArrayNbElements(const PA_Variable* variable) {
    return PA_IsArrayVariable(variable) ? variable->uValue.fArray.fSize : -1;
}

void PA_ResizeArray(PA_Variable* variable, long count) {
    if (variable == nullptr) return;
    EngineBlock block;
    block.fParam1 = ZR_AddressOf(variable);
    block.fParam2 = count < 0 ? 0 : count;
    ZR_CallHost(ZR_SEL_ResizeArray, &block);
}

long PA_GetArrayCurrent(const PA_Variable* variable) {
    return PA_IsArrayVariable(variable) ? variable->uValue.fArray.fCurrent : 0;
}

void PA_SetArrayCurrent(PA_Variable* variable, long index) {
    if (PA_IsArrayVariable(variable)) variable->uValue.fArray.fCurrent = (int16_t)index;
}

// Elements ---------------------------------------------------------------------------------------------------------

// The element in the array's storage; [0..size]; null = another kind, an index outside, no storage.
static char* ElementOf(const PA_Variable* array, int kind, long index) {
    if (array == nullptr || UnifyVarKind(array->fType) != kind || index < 0) return nullptr;
    const PA_ArrayValue& value = array->uValue.fArray;
    if (index > value.fSize || value.fData == nullptr || *value.fData == nullptr) return nullptr;
    return *value.fData + index * ZR_HostArrayElementSize(kind);
}

template <class T>
static T GetElement(const PA_Variable* array, int kind, long index) {
    const char* element = ElementOf(array, kind, index);
    return element == nullptr ? T() : ZR_ReadAt<T>(element);
}

template <class T>
static void SetElement(PA_Variable* array, int kind, long index, T value) {
    char* element = ElementOf(array, kind, index);
    if (element != nullptr) ZR_WriteAt(element, value);
}

#pragma pack(push, 1)
struct BlobElement {
    int32_t size;
    PA_Handle data;
};
#pragma pack(pop)
static_assert(sizeof(BlobElement) == ZR_HostArrayElementSize(eVK_ArrayBlob), "element of a BLOB array");

// Storage that one place alone can own. Pictures and objects are counted: the same one may come with one more count.
static const void* StorageOf(const PA_Unistring& string) { return string.fString; }
static const void* StorageOf(const BlobElement& blob) { return blob.data; }
static const void* StorageOf(PA_Handle handle) { return handle; }
static const void* StorageOf(void*) { return nullptr; }

// Hands value over to the element and answers what is left for the caller to free: the old element, or value itself if
// there is no such element, or nothing if the element has got back the storage it held.
template <class T>
static T ReplaceElement(PA_Variable* array, int kind, long index, T value) {
    char* element = ElementOf(array, kind, index);
    if (element == nullptr) return value;
    T old = ZR_ReadAt<T>(element);
    ZR_WriteAt(element, value);
    return StorageOf(old) != nullptr && StorageOf(old) == StorageOf(value) ? T() : old;
}

// Longint and time arrays hold the same elements.
static int WholeKind(const PA_Variable* array) {
    return array != nullptr && array->fType == eVK_ArrayTime ? eVK_ArrayTime : eVK_ArrayLongint;
}

short PA_GetIntegerInArray(const PA_Variable* array, long index) {
    return GetElement<int16_t>(array, eVK_ArrayInteger, index);
}

int PA_GetLongintInArray(const PA_Variable* array, long index) {
    return GetElement<int32_t>(array, WholeKind(array), index);
}

int PA_GetTimeInArray(const PA_Variable* array, long index) { return GetElement<int32_t>(array, eVK_ArrayTime, index); }

double PA_GetRealInArray(const PA_Variable* array, long index) {
    return GetElement<double>(array, eVK_ArrayReal, index);
}

void PA_GetDateInArray(const PA_Variable* array, long index, short* day, short* month, short* year) {
    ZR_StoreDate(day, month, year, GetElement<PA_Date>(array, eVK_ArrayDate, index));
}

bool PA_GetBooleanInArray(const PA_Variable* array, long index) {
    return GetElement<int16_t>(array, eVK_ArrayBoolean, index) != 0;
}

PA_Unistring PA_GetStringInArray(const PA_Variable* array, long index) {
    return GetElement<PA_Unistring>(array, eVK_ArrayText, index);
}

PA_Handle PA_GetBlobInArray(const PA_Variable* array, long index, int* size) {
    BlobElement blob = GetElement<BlobElement>(array, eVK_ArrayBlob, index);
    if (size != nullptr) *size = blob.size;
    return blob.data;
}

PA_Picture PA_GetPictureInArray(const PA_Variable* array, long index) {
    return GetElement<PA_Picture>(array, eVK_ArrayPicture, index);
}

PA_ObjectRef PA_GetObjectInArray(const PA_Variable* array, long index) {
    return GetElement<PA_ObjectRef>(array, eVK_ArrayObject, index);
}

PA_Handle PA_GetPointerInArray(const PA_Variable* array, long index) {
    return GetElement<PA_Handle>(array, eVK_ArrayPointer, index);
}

void PA_SetIntegerInArray(PA_Variable* array, long index, short value) {
    SetElement<int16_t>(array, eVK_ArrayInteger, index, value);
}

void PA_SetLongintInArray(PA_Variable* array, long index, int value) {
    SetElement<int32_t>(array, WholeKind(array), index, value);
}

void PA_SetTimeInArray(PA_Variable* array, long index, int seconds) {
    SetElement<int32_t>(array, eVK_ArrayTime, index, seconds);
}

void PA_SetRealInArray(PA_Variable* array, long index, double value) {
    SetElement<double>(array, eVK_ArrayReal, index, value);
}

void PA_SetDateInArray(PA_Variable* array, long index, short day, short month, short year) {
    SetElement<PA_Date>(array, eVK_ArrayDate, index, {day, month, year});
}

void PA_SetBooleanInArray(PA_Variable* array, long index, bool value) {
    SetElement<int16_t>(array, eVK_ArrayBoolean, index, value);
}

void PA_SetStringInArray(PA_Variable* array, long index, PA_Unistring string) {
    PA_Unistring left = ReplaceElement(array, eVK_ArrayText, index, string);
    ZR_FreeUnistring(&left);
}

void PA_SetBlobInArray(PA_Variable* array, long index, int size, PA_Handle blob) {
    BlobElement fresh = {blob == nullptr || size < 0 ? 0 : size, blob};
    ZR_FreeHandle(ReplaceElement(array, eVK_ArrayBlob, index, fresh).data);
}

void PA_SetPictureInArray(PA_Variable* array, long index, PA_Picture picture) {
    ZR_FreePicture(ReplaceElement(array, eVK_ArrayPicture, index, picture));
}

void PA_SetObjectInArray(PA_Variable* array, long index, PA_ObjectRef object) {
    ZR_FreeObject(ReplaceElement(array, eVK_ArrayObject, index, object));
}

void PA_SetPointerInArray(PA_Variable* array, long index, PA_Handle pointer) {
    ZR_FreeHandle(ReplaceElement(array, eVK_ArrayPointer, index, pointer));
}
