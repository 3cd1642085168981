// The serial form of a token list: a BLOB array of one element. Integers big-endian, floats in memory order. Pictures,
// BLOBs, references and parents are not stored. The layout is drawn in docs/formats.md.
#ifndef ZR_API_TOKENBLOB_H
#define ZR_API_TOKENBLOB_H

#include "language/ZR_API_TokenList.h"

inline constexpr long ZR_TOKENBLOB_VERSION = 1;

void zrExe_TokensToBlob(ZR_Handle* tokens, ZR_Handle* blob);  // a live blob, replaced
void zrExe_BlobToTokens(ZR_Handle* blob, ZR_Handle* tokens);  // a live list, replaced; unreadable = empty

#endif
