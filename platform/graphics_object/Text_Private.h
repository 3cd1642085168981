// What the sources on fonts and on text share: installed faces, fonts, and each thread's Pango context.
#ifndef ZR_PLATFORM_TEXT_PRIVATE_H
#define ZR_PLATFORM_TEXT_PRIVATE_H

#include <hb.h>
#include <pango/pangocairo.h>

#include <atomic>
#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/graphics_object/Canvas_Private.h"

struct FaceMetrics {  // at a size of 1
    double ascent, descent, leading, underlinePosition, underlineThickness;
};

// An installed face; lives as long as the process.
struct Face {
    std::vector<std::string> families, fullNames;
    std::string postScriptName;
    PangoFontDescription* description;  // without a size
    bool bold, italic;
    double weight, width;  // as fontconfig counts them
    mutable std::once_flag measured;
    mutable FaceMetrics metrics = {};
};

struct ZRGFont {
    mutable std::atomic<int> references{1};
    const Face* face;
    std::string family;  // that asked for, where another one stands for it
    double size;
};

// A font as Pango chose it for a run, with all that drawing and measuring need.
struct ThreadFont {
    PangoFont* font;              // owned
    cairo_scaled_font_t* scaled;  // owned
    FaceMetrics metrics;          // in points at this font's size
};

// Everything of Pango belongs to one thread: font maps are not to be shared.
struct TextThread {
    TextThread();
    ~TextThread();
    const ThreadFont& FontOf(PangoFont* font);            // valid until the next call
    PangoFont* FontOf(const ZRGFont& font, double size);  // borrowed; null = none
    void Tidy();                                          // before a text is set

    PangoFontMap* map;
    PangoContext* context;
    PangoLayout* layout;
    hb_buffer_t* buffer;  // empty between uses
    std::unordered_map<PangoFont*, ThreadFont> fonts;

  private:
    int newFonts = 0;  // since the map was last cleared
    void Forget();
    struct Loaded {
        const Face* face;
        double size;
        PangoFont* font;  // owned
    };
    std::vector<Loaded> loaded;  // the fonts that were asked for, a few
};
TextThread& ThisThread();

PangoFontDescription* DescriptionOf(const ZRGFont& font, double size);  // caller frees
FaceMetrics MetricsOf(PangoFont* font, double size);                    // points
void GetFontFacts(const ZRGFont* font, ZRGFontFacts* out);

#endif
