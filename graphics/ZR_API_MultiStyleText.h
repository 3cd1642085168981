// ZR_MultiStyleText: the style runs of a plain text. Read from and written as styled text with spans, written as RTF.
// Runs stand in the order of the text and may leave gaps, which have the default style of whoever draws.
// Alive from a Create member to Dispose.
#ifndef ZR_API_MULTISTYLETEXT_H
#define ZR_API_MULTISTYLETEXT_H

#include "core/ZR_API_Color.h"
#include "graphics/ZR_API_Font.h"

struct ZR_MultiStyleRun {
    ZR_Font font;            // owned
    ZR_RGBColor color;       // black, alpha 1 after Create
    ZR_RGBColor background;  // black, alpha 0 after Create: none
    long start, end;         // [1..count] of the plain text, both inclusive

    void Create();
    void Create(const ZR_MultiStyleRun* source);  // a copy, font and all
    void Dispose();
};

inline constexpr long ZR_MOST_SPAN_DEPTH = 100000;  // levels, the text itself being one; a deeper span ends the reading

struct ZR_MultiStyleText {
    ZR_Handle runs;  // of ZR_MultiStyleRun; owned

    void Create();
    void Create(const ZR_MultiStyleText* source);  // a copy; null = empty
    void Dispose();
    void Clear();

    // Runs. Each of font, color, background may be null: the default. The new record is borrowed until the next; null =
    // no memory.
    ZR_MultiStyleRun* AddRun(long start, long end, const ZR_Font* font, const ZR_RGBColor* color,
                             const ZR_RGBColor* background);
    void AddRuns(long offset, const ZR_MultiStyleText* other);  // copies, moved by offset
    void OffsetRuns(long offset);
    ZR_MultiStyleRun* GetRun(long index) const {  // [1..count]; borrowed; null outside
        return reinterpret_cast<ZR_MultiStyleRun*>(runs.GetMemPtr(index));
    }
    ZR_MultiStyleRun* GetNextRun(long position) const;  // the first run that holds it; borrowed; null = none
    ZR_MultiStyleRun* GetNextRun(long position, long* index) const;  // *index: [1..count]; 0 = none

    // Styled text. A Create member: replaces what the structure held before without disposing it. plain is living and
    // replaced. font, color null = the defaults. Required: styled is changed, its breaks become carriage returns.
    // False = a span that cannot be read, or deeper than the bound; what stands before it is kept.
    bool CreateWith4DStyledText(ZR_Text* styled, ZR_Text* plain, ZR_Font* font, ZR_RGBColor* color);
    // One level and the spans in it, from *position on, [1..count]; the nesting needs no native stack.
    bool ParseStyledText_loop2(ZR_Text* styled, ZR_Text* plain, long* position, ZR_MultiStyleRun* style, long* depth);
    // Properties up to the next ">", and on to behind it; false = no ">", nothing is read.
    bool ParseStyle(ZR_Text* styled, ZR_MultiStyleRun* style, long* position);
    // Each property once, in the order of their table; limit: position of the closing ">". True = *position moved on.
    bool ParseStyle2(ZR_Text* styled, ZR_MultiStyleRun* style, long* position, long limit);
    // A piece of styled, [1..count], appended to plain, with a run for it.
    void ParseWriteRun(long start, long end, ZR_Text* styled, ZR_Text* plain, ZR_MultiStyleRun* style);

    void Get4DStyledText(ZR_Text* plain, ZR_Text* out, short mode);  // replaces out; mode 1: span, other: tspan
    void GetRTF(ZR_Text* plain, ZR_Text* out);                       // appends
};

#endif
