#include "runtime/ZR_API_VariableIndex.h"

#include <atomic>
#include <cstdlib>

static const long kWalkedCount = 8;  // lists up to this length are walked

static std::atomic<unsigned long> sEdition{1};  // moved on by every deletion from any list

void zrExe_VariableDeleted() { sEdition.fetch_add(1, std::memory_order_relaxed); }

static inline unsigned short Fold(unsigned short unit) { return unit >= 'a' && unit <= 'z' ? unit - 32 : unit; }

static unsigned long HashName(ZR_Text* name) {
    const unsigned short* units = reinterpret_cast<const unsigned short*>(name->data);
    unsigned long hash = 1469598103934665603UL;
    for (long i = 0; i < name->count; ++i) hash = (hash ^ Fold(units[i])) * 1099511628211UL;
    return hash ^ (hash >> 32);
}

static ZR_Executer_Variable* At(ZR_Handle* list, long position) {
    return reinterpret_cast<ZR_Executer_Variable*>(list->data) + (position - 1);
}

static bool SameName(ZR_Text* a, ZR_Text* b) {
    if (a->count != b->count) return false;
    const unsigned short* left = reinterpret_cast<const unsigned short*>(a->data);
    const unsigned short* right = reinterpret_cast<const unsigned short*>(b->data);
    for (long i = 0; i < a->count; ++i)
        if (left[i] != right[i] && Fold(left[i]) != Fold(right[i])) return false;
    return true;
}

static long Walk(ZR_Handle* list, ZR_Text* name) {
    for (long i = 1; i <= list->count; ++i)
        if (SameName(&At(list, i)->name, name)) return i;
    return 0;
}

void ZR_VariableIndex::Create() {
    slots = nullptr;
    slotCount = 0;
    known = 0;
    edition = 0;
}

void ZR_VariableIndex::Dispose() {
    free(slots);
    Create();
}

bool ZR_VariableIndex::IsAt(ZR_Handle* list, long position, ZR_Text* name) {
    return position >= 1 && position <= list->count && SameName(&At(list, position)->name, name);
}

// The slot that holds the name, or the free one where it belongs.
static long SlotOf(ZR_VariableIndex* index, ZR_Handle* list, ZR_Text* name) {
    long mask = index->slotCount - 1;
    long slot = static_cast<long>(HashName(name)) & mask;
    while (index->slots[slot] && !ZR_VariableIndex::IsAt(list, index->slots[slot], name)) slot = (slot + 1) & mask;
    return slot;
}

static bool Rebuild(ZR_VariableIndex* index, ZR_Handle* list) {
    long wanted = 32;
    while (wanted < list->count * 3) wanted *= 2;
    unsigned* fresh = static_cast<unsigned*>(calloc(static_cast<size_t>(wanted), sizeof(unsigned)));
    if (!fresh) return false;
    free(index->slots);
    index->slots = fresh;
    index->slotCount = wanted;
    index->edition = sEdition.load(std::memory_order_relaxed);
    for (index->known = 0; index->known < list->count; ++index->known) {
        long slot = SlotOf(index, list, &At(list, index->known + 1)->name);
        if (!index->slots[slot]) index->slots[slot] = static_cast<unsigned>(index->known + 1);  // the first one wins
    }
    return true;
}

// Enters what was appended since; a list that shrank, or whose last known record is another one now, is entered anew.
static bool Refresh(ZR_VariableIndex* index, ZR_Handle* list) {
    bool deleted = index->edition != sEdition.load(std::memory_order_relaxed);
    if (deleted || list->count < index->known || list->count * 2 > index->slotCount) return Rebuild(index, list);
    if (index->known > 0) {
        long slot = SlotOf(index, list, &At(list, index->known)->name);
        if (!index->slots[slot]) return Rebuild(index, list);
    }
    for (; index->known < list->count; ++index->known) {
        long slot = SlotOf(index, list, &At(list, index->known + 1)->name);
        if (!index->slots[slot]) index->slots[slot] = static_cast<unsigned>(index->known + 1);
    }
    return true;
}

long ZR_VariableIndex::Find(ZR_Handle* list, ZR_Text* name) {
    if (list->count <= kWalkedCount) return Walk(list, name);
    if (!Refresh(this, list)) return Walk(list, name);
    return slots[SlotOf(this, list, name)];
}
