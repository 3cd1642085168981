// What the sources of the Core Text stand-ins share: fonts, styled text, lines.
#ifndef ZR_PLATFORM_CORETEXT_PRIVATE_H
#define ZR_PLATFORM_CORETEXT_PRIVATE_H

#include <memory>
#include <string>
#include <vector>

#include "platform/CoreGraphics/CoreGraphics_Private.h"
#include "platform/CoreText/CoreText.h"

struct ReleaseCF {
    void operator()(CFTypeRef object) const { CFRelease(object); }
};
template <class Type>
using Kept = std::unique_ptr<Type, ReleaseCF>;  // a reference that is given back

struct CTFont : CFObject {
    CTFont(const ZRGTable* t, ZRGFont* handedOver) : table(t), font(handedOver) { table->fontFacts(font, &facts); }
    ~CTFont() override { table->releaseFont(font); }
    CFTypeID typeID() const override { return kCTTypeFont; }
    bool equals(const CFObject& other) const override;
    CFHashCode hash() const override;
    const ZRGTable* const table;
    ZRGFont* const font;  // owned
    ZRGFontFacts facts;
};
CTFontRef DefaultFont();  // Arial, 12 points; borrowed; null = no fonts

struct CTParagraphStyle : CFObject {
    CFTypeID typeID() const override { return kCTTypeParagraphStyle; }
    uint8_t alignment = kCTTextAlignmentNatural;
    uint8_t breaking = kCTLineBreakByWordWrapping;
    double spacing = 0;  // points between lines
};

// A style of a text: what an attribute dictionary says, read once.
struct Style {
    CFDictionaryRef attributes;         // owned by the text; null = none
    CTFontRef font;                     // borrowed from them; never null
    const CTParagraphStyle* paragraph;  // likewise; null = none
    ZRGColor color;
    bool underline, kerned;
    double kern;
    CFIndex end;  // the first unit behind it
};

// The units and styles of an attributed string as they stood; shared by lines and frames.
struct StyledText : CFObject {
    ~StyledText() override;
    const uint16_t* Units() const { return reinterpret_cast<const uint16_t*>(string->units.data()); }
    CFIndex Length() const { return static_cast<CFIndex>(string->units.size()); }
    size_t StyleAt(CFIndex unit) const;  // [0..length)
    CFStringRef string = nullptr;        // owned
    std::vector<Style> styles;           // in the order of the text
};
StyledText* CreateStyledText(CFAttributedStringRef string);  // null = null or no fonts

// A typesetting of a piece of the text; lines share it.
struct SetPiece : CFObject {
    SetPiece(const ZRGTable* t, ZRGTypeset* s) : table(t), set(s) {}
    ~SetPiece() override { table->releaseTypeset(set); }
    const ZRGTable* const table;
    ZRGTypeset* const set;  // owned
    CFIndex start = 0;      // the text's unit that is its first
    size_t firstStyle = 0;  // the text's style that is its first
};
struct Setting {
    CFIndex start, end;
    int breaking = kZRGNoBreaks;
    double width = 0;
    bool justify = false;
    int direction = kZRGAsText;
};
SetPiece* CreatePiece(const StyledText& text, const Setting& setting);  // null = no memory

struct LinePart {
    Kept<const SetPiece> piece;
    long line;  // of its lines
    double x;   // points from the line's left end
};

struct CTLine : CFObject {
    CFTypeID typeID() const override { return kCTTypeLine; }
    void Add(Kept<const SetPiece> piece, long line);
    void Draw(CGContextRef context, const CGAffineTransform& toUser) const;  // toUser: from the baseline's left end
    Kept<const StyledText> text;
    std::vector<LinePart> parts;
    CFRange range = {0, 0};
    double width = 0, ascent = 0, descent = 0, leading = 0;
    bool rightToLeft = false;

    CFArrayRef Runs() const;  // made on first use; borrowed

  private:
    mutable std::once_flag once;
    mutable Kept<const __CFArray> runs;
};

struct CTRun : CFObject {
    CFTypeID typeID() const override { return kCTTypeRun; }
    Kept<const StyledText> text;  // keeps the attributes
    CFDictionaryRef attributes = nullptr;
    CFRange range = {0, 0};
    double width = 0, ascent = 0, descent = 0, leading = 0;
};

template <class Type>
Kept<Type> Keep(Type* object) {
    CFRetain(object);
    return Kept<Type>(object);
}

#endif
