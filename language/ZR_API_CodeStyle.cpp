#include "language/ZR_API_CodeStyle.h"

#include "language/ZR_API_Token.h"

static constexpr struct {
    short kind;
    short style;
} kStylesOfKinds[] = {
    // Required: keywords count as commands here, and kinds above 28 as plain; the detokeniser tells them apart.
    {ZREXE_TOKEN_VARIABLE, ZR_CODESTYLE_PROCESS},
    {ZREXE_TOKEN_LOCAL, ZR_CODESTYLE_LOCAL},
    {ZREXE_TOKEN_INTERPROCESS, ZR_CODESTYLE_INTERPROCESS},
    {ZREXE_TOKEN_COMMENT, ZR_CODESTYLE_COMMENT},
    {ZREXE_TOKEN_COMMAND, ZR_CODESTYLE_COMMAND},
    {ZREXE_TOKEN_TABLE, ZR_CODESTYLE_TABLE},
    {ZREXE_TOKEN_FIELD, ZR_CODESTYLE_FIELD},
    {ZREXE_TOKEN_METHOD, ZR_CODESTYLE_METHOD},
};

ZR_Executer_Codestyle* zrExe_GetCodeStyleByType(ZR_Handle* styles, long type) {
    if (!styles) return nullptr;
    for (long i = 1; i <= styles->count; i++) {
        ZR_Executer_Codestyle* style = reinterpret_cast<ZR_Executer_Codestyle*>(styles->GetMemPtr(i));
        if (style->type == type) return style;
    }
    return nullptr;
}

short zrExe_Get4DCodeStyleFromTokenType(short kind) {
    for (const auto& row : kStylesOfKinds)
        if (row.kind == kind) return row.style;
    return ZR_CODESTYLE_PLAIN;
}
