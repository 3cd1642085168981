// Inside language/: empty tokens without calls, and the append that the list functions, the tokeniser and the blob
// reader share.
#ifndef ZR_API_TOKEN_PRIVATE_H
#define ZR_API_TOKEN_PRIVATE_H

#include <cstring>
#include <new>

#include "language/ZR_API_Token.h"

const ZR_Executer_Token& zrExe_EmptyToken();  // made once by the Create members of its fields, never changed

inline void zrExe_MakeEmptyToken(ZR_Executer_Token* token, ZREXE_TOKEN kind) {  // over raw memory; value 0
    static_assert(__is_trivially_copyable(ZR_Executer_Token), "copied as bytes");
    memcpy(static_cast<void*>(token), &zrExe_EmptyToken(), sizeof *token);
    token->kind = kind;
}

inline void zrExe_DisposeTextIfUsed(ZR_Text* text) {
    if (text->data || text->cString || text->unistringValid) text->Dispose();
}

inline ZR_Executer_Token* zrExe_TokenAt(ZR_Handle* tokens, long index) {  // [1..count]; null outside
    return reinterpret_cast<ZR_Executer_Token*>(tokens->GetMemPtr(index));
}

void zrExe_ReserveTokens(ZR_Handle* tokens, long more);  // room for that many more; refused = as it was

// A new token at the list's end, empty, value 0; borrowed until the next append. Null = no memory.
inline ZR_Executer_Token* zrExe_AppendToken(ZR_Handle* tokens, ZREXE_TOKEN kind) {
    char* place = tokens->AppendGetPtr();
    if (!place) return nullptr;
    ZR_Executer_Token* token = reinterpret_cast<ZR_Executer_Token*>(place);
    zrExe_MakeEmptyToken(token, kind);
    return token;
}

#endif
