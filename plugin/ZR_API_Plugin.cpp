#include "plugin/ZR_API_Plugin.h"

#include "core/ZR_API_AtomicHandle.h"
#include "plugin/ZR_API_Bridge.h"
#include "plugin/ZR_API_Telephony.h"

ZR_Call4D gCall4D = nullptr;
uint32_t Current4DVersion = 0;
ZR_AtomicHandle* pack = nullptr;
ZR_AtomicHandle packhandle_areas;  // static: its lock is clear before anything runs

static constexpr long kPackRecordBytes = sizeof(int64_t);  // no command reads the element: room for one number

enum { kSelectorStart = -1, kSelectorStop = -2, kSelectorCapture = -200 };

// Entry ------------------------------------------------------------------------------------------------------------

void InitPlugin() { ZR_PackHandle_Create(kPackRecordBytes); }

void DeinitPlugin() {
    ZR_Packhandle_DeInit();
    ZR_PackHandle_Dispose();
}

static void Start(PluginBlock*) { InitPlugin(); }
static void Stop(PluginBlock*) { DeinitPlugin(); }

static constexpr struct {
    int selector;
    void (*action)(PluginBlock* block);
} kSelectors[] = {{kSelectorStop, Stop},
                  {kSelectorStart, Start},
#define ZR_X(command, selector, parameters, result) {selector, command},
                  ZR_TELEPHONY_COMMANDS(ZR_X)
#undef ZR_X
};

void PluginMain(int selector, PluginBlock* block) {
    for (const auto& row : kSelectors)
        if (row.selector == selector) return row.action(block);
}

// Takes over what the host tells of itself. It runs before anything that could call the host.
static void CaptureHost(ZR_StartupRecord* record) {
    gCall4D = record->fCall4D;
    record->fInterfaceVersion = kPluginInterfaceVersion;
    Current4DVersion = record->fHostVersion;
}

extern "C" void FourDPackex(int selector, void* params, void** data, void* result) {
    PluginBlock block = {(void**)params, result, data};
    if ((selector == kSelectorStart || selector == kSelectorCapture) && params != nullptr)
        CaptureHost((ZR_StartupRecord*)params);
    PluginMain(selector, &block);
}

// Instance record --------------------------------------------------------------------------------------------------

ZR_AtomicHandle* ZR_PackHandle_Create(long size) {
    ZR_PackHandle_Dispose();  // a second start without a stop must not lose the first record
    ZR_AtomicHandle* record = new ZR_AtomicHandle;
    record->lock.store(0);
    record->CreateAnyThread(size, 1);
    pack = record;
    return pack;
}

void ZR_PackHandle_Dispose() {
    if (pack == nullptr) return;
    pack->Dispose();
    delete pack;
    pack = nullptr;
}

ZR_AtomicHandle* ZR_PackHandle_Get() { return pack; }

// Area list --------------------------------------------------------------------------------------------------------

void ZR_Packhandle_Init() {
    if (packhandle_areas.handle.data) packhandle_areas.Dispose();  // a second start without a stop
    packhandle_areas.Create();
}
void ZR_Packhandle_DeInit() { packhandle_areas.Dispose(); }

// Before ZR_Packhandle_Init the list has no element size, and an entry would be written into nothing.
static bool AreaListIsCreated() { return packhandle_areas.handle.elementSize != 0; }

long ZR_Packhandle_Manager(void* area, bool add) {
    if (!AreaListIsCreated()) return 0;
    if (add) return packhandle_areas.Append(area);
    packhandle_areas.DeleteByPtr(area);
    return 0;
}

void ZR_DeletePackHandleByPtr(void* area) { packhandle_areas.DeleteByPtr(area); }

void* ZR_GetAreaPtrByReference(long reference) { return packhandle_areas.GetByReference(reference); }

void* ZR_GetAreaPtrFromParameter(PluginBlock* block) { return ZR_GetAreaPtrByReference(PA_GetLongParameter(block, 1)); }

long ZR_GetAreaReferenceByPtr(void* area) { return packhandle_areas.GetByPtr(area); }

bool ZR_IsAreaValidByReference(long reference) { return packhandle_areas.GetByReference(reference) != nullptr; }

void ZR_IsAreaValid_4D(PluginBlock* block) { PA_ReturnLong(block, ZR_GetAreaPtrFromParameter(block) != nullptr); }

void ZR_GetAreaList_4D(PluginBlock* block) {
    PA_Variable references = PA_GetVariableParameter(block, 1);
    PA_Variable threads = PA_GetVariableParameter(block, 2);
    packhandle_areas.To4DArrays(&references, &threads);
    PA_SetVariableParameter(block, 1, &references, /*clearOld*/ false);
    PA_SetVariableParameter(block, 2, &threads, /*clearOld*/ false);
}
