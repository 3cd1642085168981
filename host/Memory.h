// The host's memory: handles and text records.
//
// A handle is the address of a slot whose first field is the address of the bytes. Only live handles are served: a
// null, dead or foreign one is refused. Bytes are zeroed when they are new.
#ifndef ZRHOST_MEMORY_H
#define ZRHOST_MEMORY_H

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "plugin/ZR_HostInterface.h"

namespace zrhost {

inline constexpr int64_t kLargestHandle = 0x7FFFFFFF;  // bytes

PA_Handle NewHandle(int64_t bytes);  // zeroed; null = a negative or absurd size, or no memory
PA_Handle NewHandle(std::span<const uint8_t> copied);
bool DisposeHandle(PA_Handle handle);                   // false = not alive
int64_t HandleSize(PA_Handle handle);                   // bytes; -1 = not alive
bool ResizeHandle(PA_Handle handle, int64_t bytes);     // keeps the bytes, zeroes new ones; false = refused, unchanged
char* HandleBytes(PA_Handle handle);                    // borrowed until the next resize; null = not alive
std::span<const uint8_t> HandleSpan(PA_Handle handle);  // empty = not alive
bool LockHandle(PA_Handle handle);                      // counts
bool UnlockHandle(PA_Handle handle);                    // not below 0
int HandleLocks(PA_Handle handle);                      // -1 = not alive
bool SetHandleLocks(PA_Handle handle, int64_t count);
long LiveHandles();

// Text records. The units are the record's; a null or negative record counts as empty.
bool MakeUnistring(PA_Unistring* record, std::u16string_view text);       // overwrites; false = no memory, empty
void FreeUnistring(PA_Unistring* record);                                 // frees and clears
std::u16string_view UnistringText(const PA_Unistring& record);            // borrowed
bool AssignUnistring(PA_Unistring* record, std::u16string_view text);     // the old text is freed; may overlap it
std::u16string_view BlockText(const PA_Unichar (&buffer)[256]);           // up to the terminator, 255 units at most
void FillBlockText(PA_Unichar (&buffer)[256], std::u16string_view text);  // cut at 255 units, not inside a pair

}  // namespace zrhost

#endif
