// ZR_DOM_Tree: an SVG document that is built element by element. The document lives in the host: each operation runs
// one of the host's XML commands, and an element is known by the reference text that the host gave for it. What the
// commands answer is not tested: an element that could not be made has the empty reference, and calls on it change
// nothing. Alive from Create to Dispose; belongs to the host process that made it.
#ifndef ZR_API_SVGDOCUMENT_H
#define ZR_API_SVGDOCUMENT_H

#include "core/ZR_API_Color.h"
#include "core/ZR_API_Geometry.h"
#include "core/ZR_API_Text.h"

struct ZR_Gradient;
struct ZR_Matrix;

enum : long {            // kinds of AppendChildNode
    ZR_XML_DATA = 6,     // text
    ZR_XML_ELEMENT = 11  // an element by its name, or elements as XML text
};

struct ZR_DOM_Tree {
    ZR_Text root;         // reference of the root; owned
    ZR_Text defs;         // reference of "defs", the root's first child: gradients and clip paths go here; owned
    ZR_Handle clips;      // ZR_Rect; the clip rectangles made so far, their [1..count] is their number
    long currentClip;     // number of the clip in force; 0 = none
    long gradientCount;   // number of the last gradient id given
    ZR_Handle clipSlots;  // long; numbers of clips, placed by the hash of their rectangle; 0 = a free slot

    void Create(ZR_Text* rootName);
    void Create(const char* rootName);
    void Dispose();  // closes the document in the host

    // Elements; out is a living text, which receives the reference -------------------------------------------------
    void CreateElement(const char* name, ZR_Text* out);  // child of the root
    void CreateElement(ZR_Text* parent, const char* name, ZR_Text* out);
    void CreateElement(ZR_Text* parent, ZR_Text* name, ZR_Text* out);
    void AppendChildNode(ZR_Text* element, long kind, ZR_Text* value);
    void SetElementValue(ZR_Text* element, ZR_Text* value);
    void SetElementValueWithBreaks(ZR_Text* element, ZR_Text* value);  // each CR or CR LF becomes a "tbreak" child

    // Attributes ---------------------------------------------------------------------------------------------------
    void SetAttributeText(ZR_Text* element, ZR_Text* name, ZR_Text* value);
    void SetAttributeText(ZR_Text* element, const char* name, ZR_Text* value);
    void SetAttributeText(ZR_Text* element, const char* name, const char* value);
    void SetAttributeDouble(ZR_Text* element, ZR_Text* name, double value);  // travels as a real
    void SetAttributeDouble(ZR_Text* element, const char* name, double value);
    void SetAttributeLong(ZR_Text* element, ZR_Text* name, long value);  // travels as a longint: kept in 32 bits
    void SetAttributeLong(ZR_Text* element, const char* name, long value);
    // "#RRGGBB", and the alpha unless it is exactly 1.
    void SetColor(ZR_Text* element, ZR_RGBColor* color, const char* colorName, const char* opacityName);
    void SetMatrix(ZR_Text* element, ZR_Matrix* matrix, const char* name);  // null and identity write nothing
    // A definition under defs and "fill" on the element; bounds type 0 or no stops: nothing, and no id is used.
    void SetGradient(ZR_Text* element, ZR_Gradient* gradient);

    // Clips --------------------------------------------------------------------------------------------------------
    void ClipRect(const ZR_Rect* rect);  // right and bottom up to whole points, left and top cut
                                         // toward zero; an equal one is used again
    bool GetCurrentClip(ZR_Rect* out);   // false = none, out is cleared
    void Clip(ZR_Text* element);         // "clip-path" of the clip in force

    // Output; the document stays usable ----------------------------------------------------------------------------
    void ExportToVar(ZR_Handle* out);  // the bytes of the XML text replace what the living byte handle holds
    PA_Variable ExportToPicture();     // kind 10; handed over
};

#endif
