// The text of a colour: option byte (1 units of 16 bits), then the text.
#include "core/ZR_API_Color.h"
#include "fuzz/FuzzText.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 1) return 0;
    FuzzMemory memory;
    ZR_Text text = FuzzText(data + 1, size - 1, data[0] & 1);
    ZR_RGBColor color = {1, 2, 3, -1}, again = {4, 5, 6, -1};
    color.SetWebText(&text);
    FUZZ_CHECK(color.alpha >= 0 && color.alpha <= 1);
    ZR_Text ledger = color.CreateColorText_zrLedger();
    again.SetWebText(&ledger);
    FUZZ_CHECK(again.red == color.red && again.green == color.green && again.blue == color.blue);
    FUZZ_CHECK(again.alpha <= color.alpha && color.alpha - again.alpha < 0.001F);
    char web[8];
    color.GetRGBWebtext(web);
    FUZZ_CHECK(web[0] == '#' && web[7] == 0);
    color.SetColorText(&text);
    FUZZ_CHECK(color.alpha == 1);
    ledger.Dispose();
    text.Dispose();
    return 0;
}
