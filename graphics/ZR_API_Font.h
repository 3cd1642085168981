// ZR_Font: a font as size, style and name, with its metrics and platform fonts kept once they were asked for; and what
// measures and breaks text with it. Fields may be read freely; they are written through the setters, which forget the
// metrics and the platform fonts. Alive from a Create member to Dispose. Caches fill on first use without a lock: a
// font belongs to one thread at a time. A font that cannot be made (no fonts installed; a size that is not finite or
// below 0) has widths and metrics of 0, and text in it is not drawn.
#ifndef ZR_API_FONT_H
#define ZR_API_FONT_H

#include "core/ZR_API_TextArray.h"
#include "graphics/ZR_API_Alignment.h"

struct CTFont;
struct NSFont;
struct PluginBlock;

// Bits of a font's style
inline constexpr short kZRBold = 1;
inline constexpr short kZRItalic = 2;
inline constexpr short kZRUnderline = 4;
inline constexpr short kZRStrikethrough = 8;

struct ZR_Font {
    float size;                                  // points; 0 is taken as 12
    short style;                                 // kZRBold ... kZRStrikethrough
    float height, ascent, descent, lineSpacing;  // points; 0 = unknown. Nothing sets lineSpacing
    ZR_Text name;                                // family, full or PostScript name
    const CTFont* ctFont;                        // owned; made by CreateCTFont; null = not yet, or there is none
    const NSFont* nsFont;                        // owned; made by NSFontCreate; null likewise

    void Create();                                                          // size 0, no name
    void Create(float fontSize, short fontStyle, const ZR_Text* fontName);  // null = "Arial"
    void Create(float fontSize, short fontStyle, const char* fontName);
    void Create(float fontSize, short fontStyle, const unsigned char* fontName);
    void Create(const ZR_Font* source);  // with the metrics, without the platform fonts; null = as Create()
    void Dispose();

    void SetSize(float value);  // points
    void SetStyle(short value);
    void SetFontname(const ZR_Text* value);  // null = empty

    float GetHeight();                        // points; ascent and descent
    float GetAscent();                        // points
    float GetDescent();                       // points
    float GetLineSpacing();                   // points between a line's descent and the next one's ascent
    float GetTextWidth(const ZR_Text* text);  // points, in one line; 0 = empty, or no font

    void CreateCTFont();   // always anew: the one before is released
    void NSFontCreate();   // the desktop's font object; always anew
    void NSFontDispose();  // releases nsFont
};

// Never filled: a text laid out unit by unit in a throwaway document, the first 64 units of it. The rendered sizes are
// not kept.
struct ZR_TextFrame {
    ZR_Handle records;  // empty, growStep 100
    ZR_Text text;       // owned
    long length;        // units of text

    void Create(const ZR_Text* source, ZR_Font* font, long width);  // points
    void Dispose();
};

// Family names of all fonts, each once; replaces the list.
void ZR_GetFontList(ZR_TextArray* out);

// The lines that text breaks into at a width, without blanks and line ends behind them; replaces the list. font: a
// ZR_Font. width, height: points; 0 as height = 32000. *consumed: units of the text that fitted; null = not wanted, and
// it stays as it is when no line came out. A line has at most 8192 units; a width below 1 or a negative height gives
// none.
void ZR_Text2Array(const ZR_Text* text, void* font, long width, ZR_TextArray* out, long height, long* consumed);

// Commands for 4D code ---------------------------------------------------------------------------------------------
void ZR_GetStringWidth4D(PluginBlock*);        // (text, font name, size, style) -> longint, half and more goes up
void ZR_GetStringWidth4DDouble(PluginBlock*);  // the same -> real
void ZR_GetTextMeasures(PluginBlock*);         // (text, font name, size, style, width, height, ascent, rest: written)
void ZR_GetFontFamilyName(PluginBlock*);       // (font name) -> text
void ZR_Text2Array(PluginBlock*);              // (text, text array: filled, width, font name, size, style)

#endif
