// Finds a name in a list of variables without walking it. The list stays the truth: the index is built from it, every
// hit is checked against the record, and a list that changed behind the index's back is noticed by its count, by its
// last name, or by the edition, which every deletion by name moves on. Short lists are walked.
#ifndef ZR_API_VARIABLE_INDEX_H
#define ZR_API_VARIABLE_INDEX_H

#include "runtime/ZR_API_Variables.h"

struct ZR_VariableIndex {
    unsigned* slots;        // open addressing, position in the list, 0 = free; owned
    long slotCount;         // a power of two, 0 = none yet
    long known;             // records of the list that have been entered
    unsigned long edition;  // of all lists, when this was built

    void Create();
    void Dispose();
    long Find(ZR_Handle* list, ZR_Text* name);  // [1..count], 0 = none; a good hint is checked first by FindAt
    static bool IsAt(ZR_Handle* list, long position, ZR_Text* name);
};

void zrExe_VariableDeleted();  // any thread: indexes are built anew

#endif
