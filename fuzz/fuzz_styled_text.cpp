// Styled text: option byte (1 units of 16 bits), then the text.
#include "fuzz/FuzzText.h"
#include "graphics/ZR_API_MultiStyleText.h"

// The runs follow each other without a gap over the whole plain text.
static void CheckRuns(const ZR_MultiStyleText& runs, const ZR_Text& plain) {
    long end = 0;
    for (long i = 1; i <= runs.runs.count; i++) {
        const ZR_MultiStyleRun* run = runs.GetRun(i);
        FUZZ_CHECK(run->start == end + 1 && run->end >= run->start);
        FUZZ_CHECK(run->font.style >= 0 && run->font.style < 16);
        end = run->end;
    }
    FUZZ_CHECK(end == plain.count);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 1) return 0;
    FuzzMemory memory;
    ZR_Text styled = FuzzText(data + 1, size - 1, data[0] & 1), plain, out;
    plain.Create();
    out.Create();
    ZR_Font font;
    font.Create(12, 0, "Arial");
    ZR_MultiStyleText runs, copy;
    runs.CreateWith4DStyledText(&styled, &plain, &font, nullptr);
    FUZZ_CHECK(plain.count <= styled.count);
    CheckRuns(runs, plain);
    copy.Create(&runs);
    copy.Get4DStyledText(&plain, &out, 1);
    copy.Get4DStyledText(&plain, &out, 2);
    copy.GetRTF(&plain, &out);
    copy.Dispose();
    runs.Dispose();
    font.Dispose();
    out.Dispose();
    plain.Dispose();
    styled.Dispose();
    return 0;
}
