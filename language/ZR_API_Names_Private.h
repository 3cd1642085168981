// Inside language/: names without ASCII case, over plain units, so that a lookup makes no text.
#ifndef ZR_API_NAMES_PRIVATE_H
#define ZR_API_NAMES_PRIVATE_H

#include "core/ZR_API_Text.h"

inline unsigned short zrExe_FoldUnit(unsigned short unit) {  // as ZR_Text::Uppercase
    return static_cast<unsigned short>(unit - 'a') < 26 ? unit - 32 : unit;
}

inline unsigned zrExe_FoldedHash(const unsigned short* units, long count) {
    unsigned hash = 0x811C9DC5u;
    for (long i = 0; i < count; i++) hash = (hash ^ zrExe_FoldUnit(units[i])) * 0x01000193u;
    return hash;
}

inline bool zrExe_EqualFolded(const unsigned short* units, long count, const ZR_Text* text) {
    if (text->count != count) return false;
    const unsigned short* other = text->Units();
    for (long i = 0; i < count; i++)
        if (zrExe_FoldUnit(units[i]) != zrExe_FoldUnit(other[i])) return false;
    return true;
}

struct ZR_NameSlot {  // of an open-addressing table; the table's size is a power of two
    unsigned hash;
    unsigned position;  // [1..count] of the list; 0 = free
};

// An empty table for that many entries, at most half full; false = no memory.
inline bool zrExe_CreateSlots(ZR_Handle* slots, long entries) {
    long size = 16;
    while (size < entries * 2) size *= 2;
    slots->Create(sizeof(ZR_NameSlot), size);
    if (slots->data) memset(slots->data, 0, size * sizeof(ZR_NameSlot));
    return slots->data != nullptr;
}

// Entered in list order, so that of equal names the first in the list is met first. Returns the slots passed over.
inline long zrExe_EnterSlot(ZR_Handle* slots, unsigned hash, long position) {
    ZR_NameSlot* table = reinterpret_cast<ZR_NameSlot*>(slots->data);
    unsigned long mask = slots->count - 1;
    unsigned long at = hash & mask;
    long passed = 0;
    for (; table[at].position != 0; passed++) at = (at + 1) & mask;
    table[at] = {hash, static_cast<unsigned>(position)};
    return passed;
}

// The first position of that hash for which matches(position) holds; 0 = none.
template <class Matches>
inline long zrExe_FindSlot(const ZR_Handle* slots, unsigned hash, Matches matches) {
    const ZR_NameSlot* table = reinterpret_cast<const ZR_NameSlot*>(slots->data);
    unsigned long mask = slots->count - 1;
    for (unsigned long at = hash & mask; table[at].position != 0; at = (at + 1) & mask)
        if (table[at].hash == hash && matches(static_cast<long>(table[at].position))) return table[at].position;
    return 0;
}

#endif
