// Inside language/: the caption lookups of one tokenising call. They give what the public lookups give; on a long list
// they go through an index, which is the Executer's when no other thread has it.
#ifndef ZR_API_VIRTUALSTRUCTURE_PRIVATE_H
#define ZR_API_VIRTUALSTRUCTURE_PRIVATE_H

#include "language/ZR_API_VirtualStructure.h"

struct ZR_CaptionLookup {
    ZR_Handle* list;             // borrowed; null = no virtual structure
    ZR_VStructureCache* shared;  // borrowed; null = none
    ZR_VStructureIndex* index;   // in use; null = not asked yet, or the list is short
    ZR_VStructureIndex own;      // used when shared is not free

    void Begin(ZR_Handle* structure, ZR_VStructureCache* cache);
    void End();  // gives the shared index back
    ZR_Executer_VirtualStructure* Method(const unsigned short* caption, long count);
    ZR_Executer_VirtualStructure* Table(const unsigned short* caption, long count);
    ZR_Executer_VirtualStructure* Field(long table, const unsigned short* caption, long count);
    ZR_Executer_VirtualStructure* TableNumber(long table);
};

#endif
