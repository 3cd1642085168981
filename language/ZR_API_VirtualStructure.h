// The virtual structure: captions under which tables, fields, variables and methods appear in code. A list is a
// ZR_Handle of ZR_Executer_VirtualStructure, owned by a context or by the caller. The tokeniser reads captions and
// stores true numbers and names; the detokeniser turns them back. Names compare without ASCII case.
#ifndef ZR_API_VIRTUALSTRUCTURE_H
#define ZR_API_VIRTUALSTRUCTURE_H

#include <atomic>

#include "core/ZR_API_Handle.h"
#include "core/ZR_API_Text.h"

struct ZR_Executer;
struct PluginBlock;

enum : short {  // kinds; 0 after Dispose
    ZR_VSTRUCTURE_TABLE = 1,
    ZR_VSTRUCTURE_FIELD = 2,
    ZR_VSTRUCTURE_VARIABLE = 3,
    ZR_VSTRUCTURE_GROUP = 4,
    ZR_VSTRUCTURE_METHOD = 5
};

struct ZR_Executer_VirtualStructure {
    long reference;        // from the caller's counter
    long secondReference;  // kept and stored
    short kind;
    ZR_Text name;         // true name of a variable or method; owned
    ZR_Text virtualName;  // the caption; owned
    ZR_Text extraText;    // kept and stored; owned
    long tableNumber;     // tables and fields; the number given to CreateMethod
    long fieldNumber;     // fields
    bool flag;            // true as created; kept and stored

    // Life. Create forms assume raw memory and copy their texts. After a change of names, captions, kinds or numbers by
    // hand call ZR_EXE_VStructureChanged; these members do.
    void Create(short recordKind, long recordReference, long parentReference);  // the parent is secondReference
    void CreateTable(long table, ZR_Text* caption, long recordReference);
    void CreateField(long table, long field, ZR_Text* caption, long recordReference);
    void CreateVariable(ZR_Text* trueName, ZR_Text* caption, long recordReference);
    void CreateGroup(ZR_Text* caption, long recordReference);
    void CreateMethod(ZR_Text* trueName, ZR_Text* caption, long recordReference, long number);
    void SetVirtualName(ZR_Text* caption);
    void Dispose();
};

// The captions of one list by hash, kept beside a list and made anew when any record has changed.
struct ZR_VStructureIndex {
    ZR_Handle slots;        // open addressing; owned; no storage = the list is scanned
    char* data;             // of the list it was made from; null = not made
    long count;             // of the list
    unsigned long edition;  // of all records
};
struct ZR_VStructureCache {
    std::atomic<char> busy;  // 1 = a thread uses the index; others make their own
    ZR_VStructureIndex index;

    void Create();
    void Dispose();
};

// Lookups: the first match from the first record; borrowed until the list grows; null = none. A null or empty list is
// accepted, and give null.
ZR_Executer_VirtualStructure* ZR_EXE_GetVStructureByTableNo(ZR_Handle* list, long table);
ZR_Executer_VirtualStructure* ZR_EXE_GetVStructureByFieldNo(ZR_Handle* list, long table, long field);
ZR_Executer_VirtualStructure* ZR_EXE_GetVStructureByVariablename(ZR_Handle* list, ZR_Text* name);
ZR_Executer_VirtualStructure* ZR_EXE_GetVStructureByVariableCaption(ZR_Handle* list, ZR_Text* caption);
ZR_Executer_VirtualStructure* ZR_EXE_GetVStructureByMethodname(ZR_Handle* list, ZR_Text* name);
ZR_Executer_VirtualStructure* ZR_EXE_GetVStructureByMethodCaption(ZR_Handle* list, ZR_Text* caption);
ZR_Executer_VirtualStructure* ZR_EXE_GetVStructureByTableCaption(ZR_Handle* list, ZR_Text* caption);
ZR_Executer_VirtualStructure* ZR_EXE_GetVStructureByFieldCaption(ZR_Handle* list, long table, ZR_Text* caption);
ZR_Executer_VirtualStructure* ZR_EXE_GetVStructureByReference(ZR_Handle* list, long reference);

bool ZR_EXE_DeleteVStructureByID(ZR_Handle* list, long reference);  // the first of that reference; false = none
void ZR_EXE_DisposeVirtualStructure(ZR_Handle* list);               // all records, then the list
void ZR_EXE_VStructureChanged();                                    // any thread: indexes are made anew

// Serial form, drawn in docs/formats.md. The target is live and replaced.
void ZR_EXE_VStructureToBlob(ZR_Handle* list, ZR_Handle* blob);
void ZR_EXE_BlobToVStructure(ZR_Handle* blob, ZR_Handle* list);

// Plug-in level, defined in runtime/. With an executer the context is parameter 1, and list and counter are the
// context's; without one the arguments are used. The result is also stored in the context's lastError.
long zrExe_CreateVirtualStructureTable(ZR_Executer* executer, PluginBlock* block, ZR_Handle* list, long* counter,
                                       short first);
long zrExe_CreateVirtualStructureField(ZR_Executer* executer, PluginBlock* block, ZR_Handle* list, long* counter,
                                       short first);
long zrExe_CreateVirtualStructureMethod(ZR_Executer* executer, PluginBlock* block, ZR_Handle* list, long* counter,
                                        short first);
void zrExe_ActivateVStructure(ZR_Executer* executer, PluginBlock* block);
void zrExe_VStructureToBlob(ZR_Executer* executer, PluginBlock* block);
void zrExe_BlobToVStructure(ZR_Executer* executer, PluginBlock* block);

#endif
