// The front door of the module: the one function that a host calls, the two values it captures at start, the module's
// instance record, and the list of live area objects that 4D code knows by reference.
//
// PluginMain holds no lock: the host may enter it from several processes. The instance record and the area list are
// guarded by the spin locks of their own handles; gCall4D and Current4DVersion are written before anybody else enters.
#ifndef ZR_API_PLUGIN_H
#define ZR_API_PLUGIN_H

#include "plugin/ZR_HostInterface.h"

struct ZR_AtomicHandle;

// What one command is given. Lives for one call on the stack of the entry; everything in it is the host's.
struct PluginBlock {
    void** parameters;  // entry N-1 addresses parameter N in the host's format; null = no parameters
    void* result;       // where the command writes its return value, 8 bytes; null = none
    void** data;        // the host's slot for the data of an area; passed through
};

extern ZR_Call4D gCall4D;                 // the host's call function; null before start; kept after stop
extern uint32_t Current4DVersion;         // version of the running host: 0x1760 is v17 R6
extern ZR_AtomicHandle* pack;             // the instance record; null before start and after stop
extern ZR_AtomicHandle packhandle_areas;  // pointers to areas that belong to callers

inline constexpr uint32_t kPluginInterfaceVersion = 5120;  // written into the start-up record

// Entry ------------------------------------------------------------------------------------------------------------

// selector -1 starts, -200 only captures the host, -2 stops; above 0 a command; anything else does nothing.
// params is the start-up record with -1 and -200, else the list of parameters.
extern "C" void FourDPackex(int selector, void* params, void** data, void* result);
void PluginMain(int selector, PluginBlock* block);

void InitPlugin();    // selector -1 for programs that link the library; gCall4D must be set
void DeinitPlugin();  // selector -2; twice is harmless

// Instance record --------------------------------------------------------------------------------------------------

ZR_AtomicHandle* ZR_PackHandle_Create(long size);  // one element of that many bytes; owned by the module
void ZR_PackHandle_Dispose();                      // twice is harmless
ZR_AtomicHandle* ZR_PackHandle_Get();              // borrowed; null = not started

// Area list --------------------------------------------------------------------------------------------------------
// References start at 1 and are never reused. Areas are borrowed: leaving the list frees nothing. An area answers only
// on the thread that added it.

void ZR_Packhandle_Init();                         // by a module that uses areas, at its own start
void ZR_Packhandle_DeInit();                       // by selector -2
long ZR_Packhandle_Manager(void* area, bool add);  // add: the new reference; else removes and answers 0
void ZR_DeletePackHandleByPtr(void* area);         // unknown: nothing
void* ZR_GetAreaPtrByReference(long reference);    // null = unknown
void* ZR_GetAreaPtrFromParameter(PluginBlock*);    // reference: 32 bits of parameter 1; null = unknown
long ZR_GetAreaReferenceByPtr(void* area);         // 0 = unknown
bool ZR_IsAreaValidByReference(long reference);    // false = unknown
void ZR_IsAreaValid_4D(PluginBlock*);              // (reference) -> 1 or 0
void ZR_GetAreaList_4D(PluginBlock*);              // (array of references, array of thread ids), both filled

#endif
