// Path text: option byte (1 units of 16 bits, 2 smooths, 4 scales first), then the text.
#include "fuzz/FuzzText.h"
#include "graphics/ZR_API_Path.h"

static void Smooth(const ZR_Handle* path) {
    ZR_Handle smoothed;
    ZR_CreateSmoothPath(path, &smoothed);
    FUZZ_CHECK(smoothed.count <= ZR_MOST_SPLINE_LINES + path->count * (ZR_SPLINE_LINES_A_SEGMENT + 1));
    smoothed.Dispose();
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 1) return 0;
    FuzzMemory memory;
    ZR_Text text = FuzzText(data + 1, size - 1, data[0] & 1), out;
    out.Create();
    ZR_Handle path, again;
    ZR_CreatePathHandle(&path);
    ZR_CreatePathHandle(&again);
    long error = 0;
    ZR_CreateHandleFromPathText(&text, &path, &error);
    FUZZ_CHECK(error == 0 || error == ZR_PATH_BAD_COMMAND || error == ZR_PATH_BAD_NUMBER);
    FUZZ_CHECK(path.count <= text.count);
    for (long i = 1; i <= path.count; i++) {
        short kind = ZR_GetPathRecord(&path, i)->kind;
        FUZZ_CHECK(kind >= ZR_PATH_MOVE && kind <= ZR_PATH_CLOSE && kind != ZR_PATH_ARC);
    }
    ZR_Rect box, target = {0, 0, 100, 100};
    ZR_GetPathBoundingBox(&path, &box);
    if (data[0] & 4) ZR_ScalePathHandle(&path, &box, &target);
    ZR_OffsetPathHandle(&path, {1, -1});
    ZR_GetPathText(&path, &out);
    ZR_CreateHandleFromPathText(&out, &again, &error);
    // Numbers of more than 19 characters are written and not read; all else comes back.
    FUZZ_CHECK(error != 0 || again.count == path.count);
    if (data[0] & 2) Smooth(&path);
    again.Dispose();
    path.Dispose();
    out.Dispose();
    text.Dispose();
    return 0;
}
