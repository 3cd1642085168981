#include "graphics/ZR_API_Font.h"

#include "graphics/ZR_API_Geometry.h"
#include "graphics/ZR_API_SVGDocument.h"
#include "graphics/ZR_API_Text_Private.h"
#include "plugin/ZR_API_Bridge.h"

static constexpr const char* kDefaultName = "Arial";
static constexpr const char* kDefaultPlatformName = "ArialMT";
static constexpr long kMostRendered = 64;  // units of a text frame for which the document is drawn

// Life -------------------------------------------------------------------------------------------------------------

void ZR_Font::Create() {
    size = height = ascent = descent = lineSpacing = 0;
    style = 0;
    name.Create();
    ctFont = nullptr;
    nsFont = nullptr;
}

void ZR_Font::Create(float fontSize, short fontStyle, const ZR_Text* fontName) {
    Create();
    size = fontSize;
    style = fontStyle;
    if (fontName) name.AddText(fontName);
    else name.AddString(kDefaultName);
}

void ZR_Font::Create(float fontSize, short fontStyle, const unsigned char* fontName) {
    Create();
    size = fontSize;
    style = fontStyle;
    name.AddString(fontName ? fontName : reinterpret_cast<const unsigned char*>(kDefaultName));
}

void ZR_Font::Create(float fontSize, short fontStyle, const char* fontName) {
    Create(fontSize, fontStyle, reinterpret_cast<const unsigned char*>(fontName));
}

void ZR_Font::Create(const ZR_Font* source) {
    Create();
    if (!source) return;
    size = source->size;
    style = source->style;
    height = source->height;
    ascent = source->ascent;
    descent = source->descent;
    lineSpacing = source->lineSpacing;
    name.AddText(&source->name);
}

static void ReleaseFonts(ZR_Font* font) {
    CTFontRelease(font->ctFont);
    font->ctFont = nullptr;
    font->NSFontDispose();
}

void ZR_Font::Dispose() {
    ReleaseFonts(this);
    name.Dispose();
    Create();
}

// Setters ----------------------------------------------------------------------------------------------------------

static void Forget(ZR_Font* font) {
    font->height = font->ascent = font->descent = font->lineSpacing = 0;
    ReleaseFonts(font);
}

void ZR_Font::SetSize(float value) {
    size = value;
    Forget(this);
}

void ZR_Font::SetStyle(short value) {
    style = value;
    Forget(this);
}

void ZR_Font::SetFontname(const ZR_Text* value) {
    if (value != &name) name.Copy(value);
    Forget(this);
}

// Platform fonts -----------------------------------------------------------------------------------------------------

// The name as the platform is asked for it. Handed over.
static CFStringRef CreatePlatformName(const ZR_Text* name) {
    // Required: the exact case; "arial" is asked for as it stands.
    const ZR_Text* asked = name;
    if (!asked->Equal(kDefaultName, /*caseSensitive*/ true))
        return CFStringCreateWithCharacters(nullptr, asked->Units(), asked->data ? asked->count : 0);
    return CFStringCreateWithCString(nullptr, kDefaultPlatformName, kCFStringEncodingUTF8);
}

static CTFontRef CreatePlainFont(CFStringRef name, double size) {
    CTFontRef font = CTFontCreateWithName(name, size, nullptr);
    if (font) return font;
    CFStringRef last = CFStringCreateWithCString(nullptr, kDefaultPlatformName, kCFStringEncodingUTF8);
    font = CTFontCreateWithName(last, size, nullptr);
    CFRelease(last);
    return font;
}

void ZR_Font::CreateCTFont() {
    CTFontRelease(ctFont);
    CFStringRef platformName = CreatePlatformName(&name);
    ctFont = CreatePlainFont(platformName, static_cast<double>(size));
    CFRelease(platformName);
    uint32_t traits = (style & kZRBold ? kCTFontTraitBold : 0u) | (style & kZRItalic ? kCTFontTraitItalic : 0u);
    if (traits == 0 || !ctFont) return;
    // A family without such a face keeps the plain one.
    if (CTFontRef styled = CTFontCreateCopyWithSymbolicTraits(ctFont, 0, nullptr, traits, traits)) {
        CTFontRelease(ctFont);
        ctFont = styled;
    }
}

static NSFontRef Converted(NSFontRef font, unsigned long trait) {
    NSFontRef made = ZR_COCOA_NSFontConvertToHaveTrait(font, trait);
    ZR_COCOA_NSFontRelease(font);
    return made;
}

void ZR_Font::NSFontCreate() {
    NSFontDispose();
    CFStringRef platformName = CreatePlatformName(&name);
    nsFont = ZR_COCOA_NSFontWithName(platformName, static_cast<double>(size));
    CFRelease(platformName);
    if (nsFont && (style & kZRBold)) nsFont = Converted(nsFont, NSBoldFontMask);
    if (nsFont && (style & kZRItalic)) nsFont = Converted(nsFont, NSItalicFontMask);
}

void ZR_Font::NSFontDispose() {
    ZR_COCOA_NSFontRelease(nsFont);
    nsFont = nullptr;
}

// Metrics ----------------------------------------------------------------------------------------------------------

static bool HasCTFont(ZR_Font* font) {
    if (!font->ctFont) font->CreateCTFont();
    return font->ctFont != nullptr;
}

float ZR_Font::GetHeight() {
    if (height == 0 && HasCTFont(this)) height = ZR_NearestFloat(CTFontGetAscent(ctFont) + CTFontGetDescent(ctFont));
    return height;
}

float ZR_Font::GetAscent() {
    if (ascent == 0 && HasCTFont(this)) ascent = ZR_NearestFloat(CTFontGetAscent(ctFont));
    return ascent;
}

float ZR_Font::GetDescent() {
    if (descent == 0 && HasCTFont(this)) descent = ZR_NearestFloat(CTFontGetDescent(ctFont));
    return descent;
}

float ZR_Font::GetLineSpacing() {
    if (lineSpacing != 0) return lineSpacing;
    return HasCTFont(this) ? ZR_NearestFloat(CTFontGetLeading(ctFont)) : 0;  // Required: not kept
}

float ZR_Font::GetTextWidth(const ZR_Text* text) {
    if (!text || text->count < 1 || !HasCTFont(this)) return 0;
    CFAttributedStringRef string = ZR_CreateAttributedText(text, this, nullptr);
    CTLineRef line = CTLineCreateWithAttributedString(string);
    double width = CTLineGetTypographicBounds(line, nullptr, nullptr, nullptr);
    CFRelease(line);
    CFRelease(string);
    return ZR_NearestFloat(width);
}

void ZR_GetFontList(ZR_TextArray* out) {
    if (!out) return;
    out->Resize(0);
    CTFontCollectionRef collection = CTFontCollectionCreateFromAvailableFonts(nullptr);
    CFArrayRef descriptors = CTFontCollectionCreateMatchingFontDescriptors(collection);
    CFMutableDictionaryRef met =
        CFDictionaryCreateMutable(nullptr, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks);
    for (CFIndex i = 0; i < CFArrayGetCount(descriptors); ++i) {
        auto descriptor = static_cast<CTFontDescriptorRef>(CFArrayGetValueAtIndex(descriptors, i));
        auto family = static_cast<CFStringRef>(CTFontDescriptorCopyAttribute(descriptor, kCTFontFamilyNameAttribute));
        if (family && !CFDictionaryContainsKey(met, family)) {
            CFDictionarySetValue(met, family, kCFBooleanTrue);
            ZR_Text name;
            name.Create(family);
            out->Append(&name);
            name.Dispose();
        }
        CFRelease(family);
    }
    CFRelease(met);
    CFRelease(descriptors);
    CFRelease(collection);
}

// Text frames --------------------------------------------------------------------------------------------------------

// Renders the document and reads the size of the picture. Required: the size is not kept.
static void RenderForSize(ZR_DOM_Tree* tree) {
    PA_Variable picture = tree->ExportToPicture();
    if (auto image = static_cast<CGImageRef>(PA_CreateNativePictureForScreen(PA_GetPictureVariable(&picture)))) {
        CGImageGetWidth(image);
        CGImageGetHeight(image);
        CGImageRelease(image);
    }
    PA_ClearVariable(&picture);
}

static void WriteFrameElement(ZR_DOM_Tree* tree, ZR_Font* font, long width, ZR_Text* element) {
    tree->SetAttributeLong(&tree->root, "width", width);
    tree->SetAttributeText(&tree->root, "xmlns", "http://www.w3.org/2000/svg");
    tree->SetAttributeText(&tree->root, "xmlns:xlink", "http://www.w3.org/1999/xlink");
    tree->CreateElement("textArea", element);
    tree->SetAttributeLong(element, "x", 0);
    tree->SetAttributeLong(element, "y", 0);
    tree->SetAttributeLong(element, "width", width);
    tree->SetAttributeText(element, "font-family", &font->name);
    tree->SetAttributeLong(element, "font-size", ZR_TruncatedToLong(static_cast<double>(font->size)));
    if (font->style & kZRBold) tree->SetAttributeText(element, "font-weight", "bold");
    if (font->style & kZRItalic) tree->SetAttributeText(element, "font-style", "italic");
    if (font->style & kZRUnderline) tree->SetAttributeText(element, "text-decoration", "underline");
}

void ZR_TextFrame::Create(const ZR_Text* source, ZR_Font* font, long width) {
    records.Create(1, 0);
    records.growStep = 100;
    text.Create();
    length = 0;
    if (!source || source->count < 1 || !font) return;
    ZR_DOM_Tree tree;
    ZR_Text element;
    element.Create();
    tree.Create("svg");
    WriteFrameElement(&tree, font, width, &element);
    for (long i = 0; i < source->count; ++i) {
        text.AddUnit(source->GetChar(i));
        length = text.count;
        if (i >= kMostRendered) continue;  // nothing is kept of it, and its time grows with the square
        tree.SetElementValue(&element, &text);
        RenderForSize(&tree);
    }
    tree.Dispose();
    element.Dispose();
}

void ZR_TextFrame::Dispose() {
    records.Dispose();
    text.Dispose();
    length = 0;
}
