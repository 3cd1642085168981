#include "language/ZR_API_TokenList.h"

#ifdef __linux__
#include <sys/mman.h>
#endif

#include <algorithm>
#include <cstdint>

#include "language/ZR_API_Token_Private.h"

void zrExe_CreateTokens(ZR_Handle* tokens) { tokens->Create(sizeof(ZR_Executer_Token), 0); }

// Room ------------------------------------------------------------------------------------------------------------

static constexpr uintptr_t kLargePage = 2L << 20;   // bytes
static constexpr long kLargeList = 2 * kLargePage;  // bytes; from here large pages are asked for

// A long list is written once from end to end: on pages of 4 KB the faults would cost several times the tokenising.
static void AskForLargePages(ZR_Handle* tokens) {
#ifdef MADV_HUGEPAGE
    uintptr_t begin = (reinterpret_cast<uintptr_t>(tokens->data) + kLargePage - 1) & ~(kLargePage - 1);
    uintptr_t end = (reinterpret_cast<uintptr_t>(tokens->data) + tokens->allocatedBytes) & ~(kLargePage - 1);
    if (end > begin) madvise(reinterpret_cast<void*>(begin), end - begin, MADV_HUGEPAGE);  // a hint: refused is fine
#else
    (void)tokens;
#endif
}

void zrExe_ReserveTokens(ZR_Handle* tokens, long more) {
    if (more < 1 || !tokens->Secure(tokens->count + more)) return;
    if (tokens->allocatedBytes >= kLargeList) AskForLargePages(tokens);
}

// Appending -------------------------------------------------------------------------------------------------------

ZR_Executer_Token* zrExe_AddToken(ZR_Handle* tokens, ZREXE_TOKEN kind) { return zrExe_AppendToken(tokens, kind); }

ZR_Executer_Token* zrExe_AddToken(ZR_Handle* tokens, ZREXE_TOKEN kind, ZR_Text* text) {
    return zrExe_AddToken(tokens, kind, text, 0);
}

ZR_Executer_Token* zrExe_AddToken(ZR_Handle* tokens, ZREXE_TOKEN kind, ZR_Text* text, long value) {
    ZR_Text copy;  // made first: the text may belong to a token of the list that moves
    copy.Create(text);
    ZR_Executer_Token* token = zrExe_AppendToken(tokens, kind);
    if (!token) {
        copy.Dispose();
        return nullptr;
    }
    token->text.CreateAndOwn(&copy);
    token->value.integer = value;
    return token;
}

ZR_Executer_Token* zrExe_AddToken(ZR_Handle* tokens, ZREXE_TOKEN kind, long value) {
    ZR_Executer_Token* token = zrExe_AppendToken(tokens, kind);
    if (token) token->value.integer = value;
    return token;
}

ZR_Executer_Token* zrExe_AddToken(ZR_Handle* tokens, ZREXE_TOKEN kind, double value) {
    ZR_Executer_Token* token = zrExe_AppendToken(tokens, kind);
    if (token) token->value.real = value;
    return token;
}

ZR_Executer_Token* zrExe_AddToken(ZR_Handle* tokens, ZREXE_TOKEN kind, unsigned short unit) {
    ZR_Executer_Token* token = zrExe_AppendToken(tokens, kind);
    if (token) token->value.unit = unit;
    return token;
}

ZR_Executer_Token* zrExe_AddToken(ZR_Handle* tokens, ZREXE_TOKEN kind, ZR_Date* date) {
    ZR_Executer_Token* token = zrExe_AppendToken(tokens, kind);
    if (!token) return nullptr;
    token->value.date.day = date->day;
    token->value.date.month = date->month;
    token->value.date.year = date->year;
    return token;
}

// Copies ----------------------------------------------------------------------------------------------------------

void zrExe_CreateCopyTokens(ZR_Handle* out, ZR_Handle* in, long first, long last, bool shallow) {
    zrExe_CreateTokens(out);
    first = std::max(first, 1L);  // positions that do not exist are not walked
    last = std::min(last, in->count);
    if (last < first) return;
    out->growStep = last - first + 1;  // so that the copy grows once
    for (long i = first; i <= last; i++) {
        ZR_Executer_Token* source = zrExe_TokenAt(in, i);
        if (source->kind == ZREXE_TOKEN_OTHER) continue;
        char* place = out->AppendGetPtr();
        if (!place) return;
        reinterpret_cast<ZR_Executer_Token*>(place)->Create(source, shallow);
    }
}

void zrExe_CreateCopyTokens(ZR_Handle* out, ZR_Handle* in) {
    zrExe_CreateCopyTokens(out, in, 1, in->count, /*shallow*/ false);
}

// Deleting --------------------------------------------------------------------------------------------------------

void zrExe_DeleteTokenHandles(ZR_Handle* tokens, long first, long last) {
    if (first < 1 || first > tokens->count || last < first) return;
    long behind = std::min(last, tokens->count) + 1;
    char* to = tokens->data + (first - 1) * tokens->elementSize;
    memmove(to, tokens->data + (behind - 1) * tokens->elementSize, (tokens->count - behind + 1) * tokens->elementSize);
    tokens->count -= behind - first;
}

void zrExe_DeleteTokens(ZR_Handle* tokens, long first, long last) {
    if (first < 1) return;
    long end = std::min(last, tokens->count);
    for (long i = first; i <= end; i++) zrExe_TokenAt(tokens, i)->Dispose();
    zrExe_DeleteTokenHandles(tokens, first, last);
}

void zrExe_DeleteTokensByType(ZR_Handle* tokens, short kind) {
    long kept = 0;
    for (long i = 1; i <= tokens->count; i++) {
        ZR_Executer_Token* token = zrExe_TokenAt(tokens, i);
        if (token->kind == kind) {
            token->Dispose();
            continue;
        }
        kept++;
        if (kept != i) memcpy(static_cast<void*>(zrExe_TokenAt(tokens, kept)), token, sizeof *token);
    }
    tokens->count = kept;
}

void zrExe_DisposeTokens(ZR_Handle* tokens) {
    for (long i = 1; i <= tokens->count; i++) zrExe_TokenAt(tokens, i)->Dispose();
    tokens->Dispose();
}

// Searching -------------------------------------------------------------------------------------------------------

long zrExe_CountTokenType(ZR_Handle* tokens, long kind) {
    long found = 0;
    for (long i = 1; i <= tokens->count; i++)
        if (zrExe_TokenAt(tokens, i)->kind == kind) found++;
    return found;
}

ZR_Executer_Token* zrExe_GetTokenPtrByType(ZR_Handle* tokens, long kind) {
    return zrExe_TokenAt(tokens, zrExe_GetTokenPosByType(tokens, kind, 1));
}

long zrExe_GetTokenPosByType(ZR_Handle* tokens, long kind) { return zrExe_GetTokenPosByType(tokens, kind, 1); }

long zrExe_GetTokenPosByType(ZR_Handle* tokens, long kind, long from) {
    for (long i = std::max(from, 1L); i <= tokens->count; i++)
        if (zrExe_TokenAt(tokens, i)->kind == kind) return i;
    return 0;
}

long zrExe_GetTokenPosByType(ZR_Handle* tokens, long kind, long from, ZR_Text* text) {
    for (long i = std::max(from, 1L); i <= tokens->count; i++) {
        ZR_Executer_Token* token = zrExe_TokenAt(tokens, i);
        if (token->kind == kind && token->GetText()->Equal(text)) return i;
    }
    return 0;
}
