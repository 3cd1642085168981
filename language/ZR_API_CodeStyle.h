// Code styles: the colour and style bits of each class of token, as an editor shows them. The Executer's table is
// guarded by its own lock; who formats code takes a private copy first.
#ifndef ZR_API_CODESTYLE_H
#define ZR_API_CODESTYLE_H

#include "core/ZR_API_Color.h"
#include "core/ZR_API_Handle.h"

enum : short {  // style numbers
    ZR_CODESTYLE_PLAIN = 1,
    ZR_CODESTYLE_COMMAND = 2,
    ZR_CODESTYLE_KEYWORD = 3,  // keywords and pseudo-commands
    ZR_CODESTYLE_TABLE = 4,
    ZR_CODESTYLE_FIELD = 5,
    ZR_CODESTYLE_METHOD = 6,
    ZR_CODESTYLE_LOCAL = 7,
    ZR_CODESTYLE_PROCESS = 8,
    ZR_CODESTYLE_INTERPROCESS = 9,
    ZR_CODESTYLE_COMMENT = 13,
    ZR_CODESTYLE_BACKGROUND = 16,   // its colour lies behind the whole output
    ZR_CODESTYLE_PROPERTY = 17,     // behind a dot
    ZR_CODESTYLE_MEMBER_CALL = 18,  // behind a dot
};

enum : short { ZR_CODESTYLE_BOLD = 1, ZR_CODESTYLE_ITALIC = 2, ZR_CODESTYLE_UNDERLINE = 4 };  // style bits

struct ZR_Executer_Codestyle {  // 20 bytes
    short type;                 // style number
    ZR_RGBColor color;
    short style;  // bits
};
static_assert(sizeof(ZR_Executer_Codestyle) == 20, "record of the style table");

ZR_Executer_Codestyle* zrExe_GetCodeStyleByType(ZR_Handle* styles, long type);  // first record; borrowed; null = none
short zrExe_Get4DCodeStyleFromTokenType(short kind);  // style number of a token kind in the tokeniser's runs

#endif
