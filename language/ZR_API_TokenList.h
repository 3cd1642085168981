// Lists of tokens: a ZR_Handle of ZR_Executer_Token, positions [1..count]. An append may move the list: addresses of
// its tokens are good until then, and a list that has shallow children must not grow while they live.
#ifndef ZR_API_TOKENLIST_H
#define ZR_API_TOKENLIST_H

#include "language/ZR_API_Token.h"

void zrExe_CreateTokens(ZR_Handle* tokens);  // an empty list over raw memory

// Append one token; the extra argument goes to text or value. The token: borrowed until the next append.
ZR_Executer_Token* zrExe_AddToken(ZR_Handle* tokens, ZREXE_TOKEN kind);
ZR_Executer_Token* zrExe_AddToken(ZR_Handle* tokens, ZREXE_TOKEN kind, ZR_Text* text);
ZR_Executer_Token* zrExe_AddToken(ZR_Handle* tokens, ZREXE_TOKEN kind, ZR_Text* text, long value);
ZR_Executer_Token* zrExe_AddToken(ZR_Handle* tokens, ZREXE_TOKEN kind, long value);
ZR_Executer_Token* zrExe_AddToken(ZR_Handle* tokens, ZREXE_TOKEN kind, double value);
ZR_Executer_Token* zrExe_AddToken(ZR_Handle* tokens, ZREXE_TOKEN kind, unsigned short unit);  // low 16 bits
ZR_Executer_Token* zrExe_AddToken(ZR_Handle* tokens, ZREXE_TOKEN kind, ZR_Date* date);

// Copies of [first..last] without kind 999; out is raw memory and becomes a new list. Positions outside are left out.
void zrExe_CreateCopyTokens(ZR_Handle* out, ZR_Handle* in, long first, long last, bool shallow);
void zrExe_CreateCopyTokens(ZR_Handle* out, ZR_Handle* in);  // the whole list, deep

void zrExe_DeleteTokens(ZR_Handle* tokens, long first, long last);        // disposes and removes
void zrExe_DeleteTokenHandles(ZR_Handle* tokens, long first, long last);  // removes only: the owner is elsewhere
void zrExe_DeleteTokensByType(ZR_Handle* tokens, short kind);             // disposes and removes all of a kind
void zrExe_DisposeTokens(ZR_Handle* tokens);                              // each token, then the list

long zrExe_CountTokenType(ZR_Handle* tokens, long kind);
ZR_Executer_Token* zrExe_GetTokenPtrByType(ZR_Handle* tokens, long kind);  // the first; null = none
long zrExe_GetTokenPosByType(ZR_Handle* tokens, long kind);                // the first; 0 = none
long zrExe_GetTokenPosByType(ZR_Handle* tokens, long kind, long from);     // the first at or behind from; 0 = none
long zrExe_GetTokenPosByType(ZR_Handle* tokens, long kind, long from, ZR_Text* text);  // and GetText equals text

#endif
