// Any text: option byte (1 virtual structure, 2 runs, 4 units of 16 bits), decimal separator, then the text.
#include "fuzz/FuzzSupport.h"
#include "language/ZR_API_Tokeniser.h"

static ZR_Handle* Captions() {  // long enough for the index
    static ZR_Handle* list = [] {
        ZR_Handle* made = new ZR_Handle;
        made->Create(sizeof(ZR_Executer_VirtualStructure), 0);
        ZR_Text caption;
        caption.Create();
        for (int i = 0; i < 26; i++) {
            caption.Resize(0);
            caption.AddUnit(static_cast<unsigned short>('a' + i));
            reinterpret_cast<ZR_Executer_VirtualStructure*>(made->AppendGetPtr())
                ->CreateMethod(&caption, &caption, i, 0);
            reinterpret_cast<ZR_Executer_VirtualStructure*>(made->AppendGetPtr())->CreateTable(i, &caption, i);
            reinterpret_cast<ZR_Executer_VirtualStructure*>(made->AppendGetPtr())->CreateField(i, i, &caption, i);
        }
        caption.Dispose();
        return made;
    }();
    return list;
}

static void CheckTokens(ZR_Handle* tokens, long units) {
    long total = 0;
    for (long i = 1; i <= tokens->count; i++) {
        auto* token = reinterpret_cast<ZR_Executer_Token*>(tokens->GetMemPtr(i));
        FUZZ_CHECK(token->parent == nullptr);
        total += token->text.count;
    }
    FUZZ_CHECK(tokens->count >= 1 && tokens->count <= 2 * units + 1);
    FUZZ_CHECK(total <= 70 * units);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 2) return 0;
    FuzzHost();
    ZR_Executer* executer = FuzzExecuter();
    ZR_Handle* captions = Captions();
    executer->decimalSeparator = data[1];
    bool wide = (data[0] & 4) != 0;
    ZR_Text source;
    source.Create();
    if (wide) source.AddUniBuffer(reinterpret_cast<const unsigned short*>(data + 2), static_cast<long>((size - 2) / 2));
    else source.AddBuffer(data + 2, static_cast<long>(size - 2));
    ZR_Handle tokens, runs;
    zrExe_CreateTokens(&tokens);
    runs.Create(sizeof(ZR_Executer_CodeRun), 0);
    executer->TokenizeToTokens(&source, &tokens, (data[0] & 1) ? captions : nullptr, (data[0] & 2) ? &runs : nullptr,
                               nullptr);
    CheckTokens(&tokens, source.count);
    CheckTokensSurvive(&tokens);
    runs.Dispose();
    zrExe_DisposeTokens(&tokens);
    source.Dispose();
    return 0;
}
