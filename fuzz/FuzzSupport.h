// What the fuzz targets of the language share: the fake host, an Executer over it, and the check that fails a run.
#ifndef ZR_FUZZ_FUZZSUPPORT_H
#define ZR_FUZZ_FUZZSUPPORT_H

#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "language/ZR_API_Executer.h"
#include "language/ZR_API_TokenBlob.h"
#include "tests/language/FakeHost.h"

#define FUZZ_CHECK(condition)                                               \
    do {                                                                    \
        if (!(condition)) {                                                 \
            fprintf(stderr, "%s:%d: %s\n", __FILE__, __LINE__, #condition); \
            abort();                                                        \
        }                                                                   \
    } while (0)

inline FakeHost& FuzzHost() {
    static FakeHost* host = [] {
        FakeHost* started = &FakeHost::Start();
        started->structure = {{u"[T]", {1, 0}}, {u"[T]F", {1, 2}}, {u"[U]F", {3, 2}}};
        return started;
    }();
    host->evaluated.clear();
    return *host;
}

inline ZR_Executer* FuzzExecuter() {
    static ZR_Executer* executer = [] {
        FuzzHost();
        ZR_Executer* made = new ZR_Executer;
        made->CreateTables();
        made->CreateCommands();
        for (long number = 1; number <= ZR_EXE_HOST_COMMANDS; number++) made->ReadHostCommand(number);
        made->FinishCommands();
        return made;
    }();
    return executer;
}

// The memory that the library counts, to be the same again at the end of a run.
class FuzzMemory {
  public:
    FuzzMemory() { ZR_GetMemoryInfo(&handles, &bytes); }
    ~FuzzMemory() {
        long handlesNow = 0, bytesNow = 0;
        ZR_GetMemoryInfo(&handlesNow, &bytesNow);
        FUZZ_CHECK(handlesNow == handles && bytesNow == bytes);
    }

  private:
    long handles = 0, bytes = 0;
};

inline void FillBytes(ZR_Handle* handle, const uint8_t* data, size_t size) {
    handle->Create(1, 0);
    if (size > 0) handle->AddCharBuffer(reinterpret_cast<const char*>(data), static_cast<long>(size));
}

// What was read from a blob is written and read again: the second blob is the first.
inline void CheckTokensSurvive(ZR_Handle* tokens) {
    ZR_Handle blob, again, back;
    blob.Create(1, 0);
    again.Create(1, 0);
    zrExe_CreateTokens(&back);
    zrExe_TokensToBlob(tokens, &blob);
    zrExe_BlobToTokens(&blob, &back);
    FUZZ_CHECK(back.count == tokens->count);
    zrExe_TokensToBlob(&back, &again);
    FUZZ_CHECK(blob.Equal(&again));
    zrExe_DisposeTokens(&back);
    again.Dispose();
    blob.Dispose();
}

#endif
