// What the sources of the bridge share: one request to the host, names in and out, and the freeing of what a record
// owned without touching the error of this thread.
#ifndef ZR_API_BRIDGE_PRIVATE_H
#define ZR_API_BRIDGE_PRIVATE_H

#include <cstring>

#include "plugin/ZR_API_Bridge.h"

inline constexpr long kNameUnits = 255;  // longest name in a request, without the terminator

// Makes the call and keeps its error in sErrorCode; true = no error. The caller has set every field that the call reads
// and given each answer field its neutral value, since a host that does not know the selector leaves the block alone.
bool ZR_CallHost(int selector, EngineBlock* block);

inline int64_t ZR_AddressOf(const void* pointer) { return (int64_t)(intptr_t)pointer; }
inline void* ZR_PointerOf(int64_t address) { return (void*)(intptr_t)address; }

void ZR_CopyName(PA_Unichar* target, const PA_Unichar* name);  // 256 units of target; cut at 255; null = empty

inline bool ZR_IsTextRecord(const PA_Variable* variable) {  // its value is a PA_Unistring
    return variable != nullptr && variable->fFiller == 0 && UnifyVarKind(variable->fType) == eVK_Text;
}

PA_Variable ZR_UndefinedVariable();
PA_Variable ZR_TextVariable(const PA_Unistring* text);  // borrows the text: not to be cleared
PA_Unistring ZR_TakeString(PA_Variable* variable);      // the text is handed over, any other value freed

PA_Handle ZR_NewPointerHandle(const PointerBlock* pointer);  // a copy in a handle; handed over; null = refused

// As the public functions, but sErrorCode stays as it was. Null and empty records make no call.
void ZR_FreeUnistring(PA_Unistring* string);
void ZR_FreeHandle(PA_Handle handle);
void ZR_FreePicture(PA_Picture picture);
void ZR_FreeObject(PA_ObjectRef object);
void ZR_FreeVariable(PA_Variable* variable);

int64_t ZR_StructureRequest();  // 911 while the virtual structure is in use, else 0

inline void ZR_StoreDate(short* day, short* month, short* year, PA_Date date) {  // each may be null
    if (day != nullptr) *day = date.fDay;
    if (month != nullptr) *month = date.fMonth;
    if (year != nullptr) *year = date.fYear;
}

// Reads and writes a value that may lie at any address.
template <class T>
T ZR_ReadAt(const void* address) {
    T value;
    memcpy(&value, address, sizeof value);
    return value;
}
template <class T>
void ZR_WriteAt(void* address, T value) {
    memcpy(address, &value, sizeof value);
}

#endif
