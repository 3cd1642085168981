// Any container: what can be expanded is packed and expanded again, and gives the same blocks.
#include "fuzz/FuzzSupport.h"

static void Free(ZR_Handle* blocks, long count) {
    for (long i = 0; i < count; i++) blocks[i].Dispose();
    delete[] blocks;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    FuzzMemory memory;
    ZR_Handle container;
    FillBytes(&container, data, size);
    long count = 0;
    if (ZR_Handle* blocks = container.ExpandBLOBArray(&count)) {
        ZR_Handle packed;
        packed.CreateBLOBArray(blocks, count);
        long again = 0;
        ZR_Handle* same = packed.ExpandBLOBArray(&again);
        FUZZ_CHECK(same && again == count);
        for (long i = 0; i < count; i++) FUZZ_CHECK(blocks[i].Equal(&same[i]));
        Free(same, again);
        packed.Dispose();
        Free(blocks, count);
    }
    container.Dispose();
    return 0;
}
