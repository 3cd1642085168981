// Base64 both ways: option byte (1 units of 16 bits), then bytes, taken as a text to decode and as bytes to encode.
#include "fuzz/FuzzText.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 1) return 0;
    FuzzMemory memory;
    ZR_Text text = FuzzText(data + 1, size - 1, data[0] & 1), encoded;
    ZR_Handle bytes, decoded;
    bytes.Create(1, 0);
    text.Decode(&bytes);
    FUZZ_CHECK(bytes.count <= text.count * 3 / 4);
    bytes.Dispose();
    FillBytes(&bytes, data + 1, size - 1);
    encoded.Create();
    encoded.Encode(&bytes);
    FUZZ_CHECK(encoded.count == (bytes.count + 2) / 3 * 4);
    decoded.Create(1, 0);
    encoded.Decode(&decoded);
    FUZZ_CHECK(decoded.Equal(&bytes));
    decoded.Dispose();
    bytes.Dispose();
    encoded.Dispose();
    text.Dispose();
    return 0;
}
