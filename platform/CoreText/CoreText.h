// Stand-ins for the Core Text operations in use, with their documented names and meaning: fonts, lines, frames. All
// measures are points, y up; ranges are UTF-16 units. Objects are counted like all of CoreFoundation and do not change
// after their creation: they may be shared between threads. Text is taken from attributed strings.
//
// What shapes and draws lies in libzr-graphics.so. Without it, or with no font installed, the creators of fonts answer
// null, lines have no width and frames no lines. Null objects are taken everywhere.
//
// Bounds, so that no input crashes, hangs or takes time without end:
// - a font's size is finite and not negative, 0 = 12; glyphs beyond 4e6 device units are not drawn;
// - a line of a frame has at most 8,192 units, of a longer one that is truncated as many are looked at; a single line
//   has any number;
// - a frame ends where its height does; one whose rectangle is empty or not finite has no lines;
// - NUL, control characters and, in a line, line ends have no width; a lone surrogate is drawn as U+FFFD.
#ifndef ZR_PLATFORM_CORETEXT_H
#define ZR_PLATFORM_CORETEXT_H

#include <cstddef>

#include "platform/CoreFoundation/CoreFoundation.h"
#include "platform/CoreGraphics/CoreGraphics.h"

typedef const struct CTFont* CTFontRef;
typedef const struct CTFontDescriptor* CTFontDescriptorRef;
typedef const struct CTFontCollection* CTFontCollectionRef;
typedef const struct CTParagraphStyle* CTParagraphStyleRef;
typedef const struct CTFramesetter* CTFramesetterRef;
typedef const struct CTFrame* CTFrameRef;
typedef const struct CTLine* CTLineRef;
typedef const struct CTRun* CTRunRef;

// Attributes of attributed strings ---------------------------------------------------------------------------------
extern const CFStringRef kCTFontAttributeName;             // CTFont; none = Arial, 12 points
extern const CFStringRef kCTForegroundColorAttributeName;  // CGColor; none = black
extern const CFStringRef kCTUnderlineStyleAttributeName;   // CFNumber: 0 none, 1 single
extern const CFStringRef kCTParagraphStyleAttributeName;   // CTParagraphStyle; that of a paragraph's first unit counts
// CFNumber: points behind every glyph, in place of the font's own kerning; 0 = no kerning; none = the font's kerning
extern const CFStringRef kCTKernAttributeName;

enum CTUnderlineStyle : int32_t { kCTUnderlineStyleNone = 0, kCTUnderlineStyleSingle = 1 };

// Fonts ------------------------------------------------------------------------------------------------------------
enum CTFontSymbolicTraits : uint32_t { kCTFontTraitItalic = 1, kCTFontTraitBold = 2 };

CTFontRef CTFontRetain(CTFontRef font);
void CTFontRelease(CTFontRef font);
CFTypeID CTFontGetTypeID();
// name: PostScript, full or family name, in any case; one that nobody knows gives the font that stands for Arial.
// matrix: not used. null = no font at all, or a size that is not finite or negative.
CTFontRef CTFontCreateWithName(CFStringRef name, CGFloat size, const CGAffineTransform* matrix);
// The face of the same family whose traits within mask are those of value; null = there is none. size 0 = the font's.
CTFontRef CTFontCreateCopyWithSymbolicTraits(CTFontRef font, CGFloat size, const CGAffineTransform* matrix,
                                             uint32_t value, uint32_t mask);
CGFloat CTFontGetSize(CTFontRef font);
CGFloat CTFontGetAscent(CTFontRef font);   // not rounded
CGFloat CTFontGetDescent(CTFontRef font);  // positive
CGFloat CTFontGetLeading(CTFontRef font);
CGFloat CTFontGetUnderlinePosition(CTFontRef font);  // of the line's top; negative = below the baseline
CGFloat CTFontGetUnderlineThickness(CTFontRef font);
uint32_t CTFontGetSymbolicTraits(CTFontRef font);
CFStringRef CTFontCopyFamilyName(CTFontRef font);  // that asked for, where another font stands for it
CFStringRef CTFontCopyPostScriptName(CTFontRef font);

extern const CFStringRef kCTFontFamilyNameAttribute;
extern const CFStringRef kCTFontNameAttribute;  // the PostScript name
CTFontCollectionRef CTFontCollectionCreateFromAvailableFonts(CFDictionaryRef options);
CFArrayRef CTFontCollectionCreateMatchingFontDescriptors(CTFontCollectionRef collection);        // by family, then face
CFTypeRef CTFontDescriptorCopyAttribute(CTFontDescriptorRef descriptor, CFStringRef attribute);  // null = unknown

// The desktop's font objects: the same fonts under another name. ---------------------------------------------------
typedef const struct NSFont* NSFontRef;
enum NSFontTraitMask : unsigned long { NSItalicFontMask = 1, NSBoldFontMask = 2 };
NSFontRef ZR_COCOA_NSFontWithName(CFStringRef name, CGFloat size);
// As NSFontManager's convertFont:toHaveTrait: - the same font if there is none with the trait.
NSFontRef ZR_COCOA_NSFontConvertToHaveTrait(NSFontRef font, unsigned long trait);
void ZR_COCOA_NSFontRelease(NSFontRef font);

// Paragraph styles -------------------------------------------------------------------------------------------------
enum CTTextAlignment : uint8_t {
    kCTTextAlignmentLeft = 0,
    kCTTextAlignmentRight = 1,
    kCTTextAlignmentCenter = 2,
    kCTTextAlignmentJustified = 3,
    kCTTextAlignmentNatural = 4
};
enum CTLineBreakMode : uint8_t {
    kCTLineBreakByWordWrapping = 0,
    kCTLineBreakByCharWrapping = 1,
    kCTLineBreakByClipping = 2,
    kCTLineBreakByTruncatingHead = 3,
    kCTLineBreakByTruncatingTail = 4,
    kCTLineBreakByTruncatingMiddle = 5
};
enum CTParagraphStyleSpecifier : uint32_t {
    kCTParagraphStyleSpecifierAlignment = 0,
    kCTParagraphStyleSpecifierLineBreakMode = 6,
    kCTParagraphStyleSpecifierLineSpacingAdjustment = 16
};
struct CTParagraphStyleSetting {
    CTParagraphStyleSpecifier spec;
    size_t valueSize;
    const void* value;  // CTTextAlignment, CTLineBreakMode, CGFloat
};
CTParagraphStyleRef CTParagraphStyleCreate(const CTParagraphStyleSetting* settings, size_t count);

// Lines: one line whatever the width ---------------------------------------------------------------------------------
CTLineRef CTLineCreateWithAttributedString(CFAttributedStringRef string);
// The width, trailing blanks counted. out pointers may be null.
double CTLineGetTypographicBounds(CTLineRef line, CGFloat* ascent, CGFloat* descent, CGFloat* leading);
CGRect CTLineGetBoundsWithOptions(CTLineRef line, unsigned long options);  // typographic; origin on the baseline
CFRange CTLineGetStringRange(CTLineRef line);  // a paragraph's last line has its line end in it
CFIndex CTLineGetGlyphCount(CTLineRef line);
CFArrayRef CTLineGetGlyphRuns(CTLineRef line);          // of CTRun, from left to right; borrowed
void CTLineDraw(CTLineRef line, CGContextRef context);  // at the text position, which moves to the line's end

// Runs: a piece of a line with equal attributes ----------------------------------------------------------------------
CFDictionaryRef CTRunGetAttributes(CTRunRef run);  // borrowed
CFRange CTRunGetStringRange(CTRunRef run);
// Of the whole run, whatever the range
double CTRunGetTypographicBounds(CTRunRef run, CFRange range, CGFloat* ascent, CGFloat* descent, CGFloat* leading);

// Frames: paragraphs in a rectangle, lines from its top down; those that do not fit are left out ----------------------
CTFramesetterRef CTFramesetterCreateWithAttributedString(CFAttributedStringRef string);
// path: its bounding box counts. range: length 0 = up to the end.
CTFrameRef CTFramesetterCreateFrame(CTFramesetterRef framesetter, CFRange range, CGPathRef path,
                                    CFDictionaryRef attributes);
CGSize CTFramesetterSuggestFrameSizeWithConstraints(CTFramesetterRef framesetter, CFRange range,
                                                    CFDictionaryRef attributes, CGSize constraints, CFRange* fit);
CFArrayRef CTFrameGetLines(CTFrameRef frame);                               // of CTLine; borrowed
void CTFrameGetLineOrigins(CTFrameRef frame, CFRange range, CGPoint* out);  // from the box's lower left corner
CGPathRef CTFrameGetPath(CTFrameRef frame);                                 // borrowed
CFRange CTFrameGetVisibleStringRange(CTFrameRef frame);
void CTFrameDraw(CTFrameRef frame, CGContextRef context);

#endif
