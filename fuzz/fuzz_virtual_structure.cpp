// Any virtual structure blob: it is read, written and read again, and the index finds what a scan finds.
#include "fuzz/FuzzSupport.h"
#include "language/ZR_API_VirtualStructure_Private.h"

typedef ZR_Executer_VirtualStructure Record;

static void CheckLookups(ZR_Handle* list, ZR_VStructureCache* cache) {
    ZR_CaptionLookup lookup;
    lookup.Begin(list, cache);
    for (long i = 1; i <= list->count && i <= 40; i++) {
        Record* record = reinterpret_cast<Record*>(list->GetMemPtr(i));
        ZR_Text* caption = &record->virtualName;
        FUZZ_CHECK(lookup.Method(caption->Units(), caption->count) ==
                   ZR_EXE_GetVStructureByMethodCaption(list, caption));
        FUZZ_CHECK(lookup.Table(caption->Units(), caption->count) == ZR_EXE_GetVStructureByTableCaption(list, caption));
        FUZZ_CHECK(lookup.Field(record->tableNumber, caption->Units(), caption->count) ==
                   ZR_EXE_GetVStructureByFieldCaption(list, record->tableNumber, caption));
        FUZZ_CHECK(lookup.TableNumber(record->tableNumber) == ZR_EXE_GetVStructureByTableNo(list, record->tableNumber));
    }
    lookup.End();
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    FuzzMemory memory;
    ZR_Handle blob, again, list;
    ZR_VStructureCache cache;
    cache.Create();
    FillBytes(&blob, data, size);
    again.Create(1, 0);
    list.Create(sizeof(Record), 0);
    ZR_EXE_BlobToVStructure(&blob, &list);
    CheckLookups(&list, &cache);
    ZR_EXE_VStructureToBlob(&list, &blob);
    ZR_EXE_BlobToVStructure(&blob, &list);
    CheckLookups(&list, &cache);
    ZR_EXE_VStructureToBlob(&list, &again);
    FUZZ_CHECK(blob.Equal(&again));
    ZR_EXE_DisposeVirtualStructure(&list);
    cache.Dispose();
    again.Dispose();
    blob.Dispose();
    return 0;
}
