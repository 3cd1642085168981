// Any text, drawn and measured on pixels and broken into lines: four option bytes (size, style and breaking, width,
// alignments), then UTF-16 units. Runs of styles come from the units themselves.
#include "fuzz/FuzzSupport.h"
#include "graphics/ZR_API_Device.h"
#include "graphics/ZR_API_Font.h"
#include "graphics/ZR_API_MultiStyleText.h"

static ZR_Device* Bitmap() {
    static ZR_Device* device = [] {
        auto made = new ZR_Device;
        made->CreateOffscreen(200, 100, /*bitmap*/ true, 0, 0);
        return made;
    }();
    return device;
}

// Every broken line is a piece of the text, one behind the other.
static void CheckLines(ZR_Text* text, ZR_Font* font, long width) {
    ZR_TextArray lines;
    lines.Create();
    long consumed = 0, units = 0;
    ZR_Text2Array(text, font, width, &lines, 1000000, &consumed);
    for (long i = 1; i <= lines.count; i++) units += lines.GetTextPtr(i)->count;
    FUZZ_CHECK(consumed >= 0 && consumed <= text->count && units <= consumed);
    FUZZ_CHECK(width < 1 || text->count == 0 || !font->ctFont || font->size > 1000 || consumed == text->count);
    lines.Dispose();
}

static void AddRuns(ZR_MultiStyleText* runs, ZR_Text* text, ZR_Font* font, ZR_RGBColor* color) {
    for (long i = 0; i + 1 < text->count && i < 64; i += 2) {
        font->SetStyle(static_cast<short>(text->GetChar(i) & 15));
        runs->AddRun(text->GetChar(i) % (text->count + 2), text->GetChar(i + 1) % (text->count + 2), font, color,
                     color);
    }
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 4) return 0;
    FuzzHost();
    ZR_Device* device = Bitmap();
    FuzzMemory memory;
    static constexpr float kSizes[] = {12, 0, 0.01f, 5, 30, 300, 1e9f, -1};
    static constexpr long kWidths[] = {100, 0, 1, 5, 300, 100000, 1L << 40, -7};
    ZR_Font font;
    font.Create(kSizes[data[0] & 7], static_cast<short>(data[1] & 15), data[1] & 16 ? "Times New Roman" : "Arial");
    ZR_Text text;
    text.Create();
    text.AddUniBuffer(reinterpret_cast<const unsigned short*>(data + 4), static_cast<long>((size - 4) / 2));
    ZR_RGBColor color = {0, 0, 0, 1};
    long width = kWidths[data[2] & 7];
    auto alignment = static_cast<ZR_Alignment>(data[3] & 7);
    auto vertical = static_cast<ZR_Alignment_Vertical>((data[3] >> 3) & 3);
    ZR_Rect rect = {10, 10, 10 + static_cast<float>(width), 90};
    FUZZ_CHECK(font.GetTextWidth(&text) >= 0 || font.size > 1000);
    CheckLines(&text, &font, width);
    device->DrawText(&text, 10, 50, &font, &color, static_cast<float>(data[3]), data[1] & 32, nullptr, nullptr);
    device->DrawTextLayout(&text, &rect, alignment, vertical, &font, &color, true, nullptr, nullptr, data[1] & 64,
                           ZR_TEXT_DRAW, data[2] & 8, 0, data[2] & 16 ? 3.0f : 0, data[2] & 32);
    ZR_MultiStyleText runs;
    runs.Create();
    AddRuns(&runs, &text, &font, &color);
    device->DrawMultiStyleText(&text, &runs, &rect, alignment, vertical, &font, &color, true, nullptr, nullptr,
                               data[1] & 64, ZR_TEXT_DRAW, false, 0, 0, false);
    runs.Dispose();
    text.Dispose();
    font.Dispose();
    return 0;
}
