// Any blob: option byte (0 the whole container, else the inner layer), then the bytes.
#include "fuzz/FuzzSupport.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 1) return 0;
    FuzzMemory memory;
    ZR_Handle bytes, blob, tokens;
    FillBytes(&bytes, data + 1, size - 1);
    if (data[0] == 0) blob.CreateAndOwn(&bytes);
    else blob.CreateBLOBArray(&bytes, 1);
    zrExe_CreateTokens(&tokens);
    zrExe_BlobToTokens(&blob, &tokens);
    FUZZ_CHECK(tokens.count <= static_cast<long>(size) / 2 + 1);
    CheckTokensSurvive(&tokens);
    zrExe_DisposeTokens(&tokens);
    blob.Dispose();
    bytes.Dispose();
    return 0;
}
