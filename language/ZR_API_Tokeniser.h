// Text to tokens: one pass over each line with one unit of lookahead, no grammar, no state between lines, no error.
// What cannot be read becomes a token of kind 999 with the raw text, blanks too, so that the source can be given back.
// Text is taken unit by unit in UTF-16. Positions in a line are 0-based; in runs [1..n] over the whole text with one
// unit for each line break. ZR_Executer::Tokenize and TokenizeToTokens are the entries for whole texts.
#ifndef ZR_API_TOKENISER_H
#define ZR_API_TOKENISER_H

#include "language/ZR_API_CodeStyle.h"
#include "language/ZR_API_TokenList.h"

struct ZR_Executer;

struct ZR_Executer_CodeRun {  // a coloured run of source text
    short kind;               // ZREXE_TOKEN
    ZR_RGBColor color;
    short style;  // bits
    long start;   // first unit
    long end;     // last unit
};

// Appends the tokens of one line, and its runs if runs is given. vstructure, runs and executer may be null: without an
// executer no name is a command. styles is read only with runs. *lineStart: units ahead of the line; read, not moved.
void zrExe_Tokenize_Line(ZR_Text* line, ZR_Handle* tokens, ZR_Handle* vstructure, ZR_Handle* runs, ZR_Handle* styles,
                         long* lineStart, unsigned short decimalSeparator, ZR_Executer* executer);

// Appends the pending units [start..start + length - 1] as a token of kind 999 and its run; nothing for a length
// below 1.
void zrExe_TokenCheckRest2(ZR_Text* line, long start, long length, ZR_Handle* tokens, ZR_Handle* runs,
                           ZR_Handle* styles, long lineStart);

void zrExe_AddCodeStyleRun(long start, long end, ZREXE_TOKEN kind, ZR_Handle* runs, ZR_Handle* styles);

#endif
