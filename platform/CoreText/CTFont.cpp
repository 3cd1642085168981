// Fonts, the list of installed ones, paragraph styles.
#include <cmath>
#include <cstring>

#include "platform/CoreText/CoreText_Private.h"

const CFStringRef kCTFontFamilyNameAttribute = CFConstantString("NSFontFamilyAttribute");
const CFStringRef kCTFontNameAttribute = CFConstantString("NSFontNameAttribute");

static constexpr double kDefaultSize = 12;

bool CTFont::equals(const CFObject& other) const {
    auto& f = static_cast<const CTFont&>(other).facts;
    return facts.size == f.size && facts.traits == f.traits &&
           std::string_view(facts.postScriptName) == f.postScriptName && std::string_view(facts.family) == f.family;
}

CFHashCode CTFont::hash() const {
    return std::hash<std::string_view>()(facts.postScriptName) ^ std::hash<double>()(facts.size);
}

CTFontRef CTFontRetain(CTFontRef font) { return static_cast<CTFontRef>(CFRetain(font)); }
void CTFontRelease(CTFontRef font) { CFRelease(font); }
CFTypeID CTFontGetTypeID() { return kCTTypeFont; }

// A size as the font takes it; below 0 = it cannot be one.
static double UsableSize(double size, double otherwise) {
    if (!std::isfinite(size) || size < 0) return -1;
    return size == 0 ? otherwise : size;
}

// Takes the reference; null = null.
static CTFontRef Wrap(const ZRGTable* table, ZRGFont* font) {
    if (!font) return nullptr;
    CTFontRef made = CFGuarded([&] { return new CTFont(table, font); });
    if (!made) table->releaseFont(font);
    return made;
}

CTFontRef CTFontCreateWithName(CFStringRef name, CGFloat size, const CGAffineTransform*) {
    const ZRGTable* table = Graphics();
    double usable = UsableSize(size, kDefaultSize);
    if (!table || !name || usable < 0) return nullptr;
    return CFGuarded([&] { return Wrap(table, table->openFont(CFUnitsToUTF8(name->units).c_str(), usable)); });
}

CTFontRef CTFontCreateCopyWithSymbolicTraits(CTFontRef font, CGFloat size, const CGAffineTransform*, uint32_t value,
                                             uint32_t mask) {
    if (!font) return nullptr;
    double usable = UsableSize(size, font->facts.size);
    if (usable < 0) return nullptr;
    uint32_t traits = (font->facts.traits & ~mask) | (value & mask);
    return Wrap(font->table, font->table->copyFont(font->font, usable, traits));
}

CTFontRef DefaultFont() {
    static const CTFontRef font = [] {
        Kept<const __CFString> name(CFStringCreateWithCString(nullptr, "Arial", kCFStringEncodingUTF8));
        return CTFontCreateWithName(name.get(), kDefaultSize, nullptr);
    }();
    return font;
}

CGFloat CTFontGetSize(CTFontRef font) { return font ? font->facts.size : 0; }
CGFloat CTFontGetAscent(CTFontRef font) { return font ? font->facts.ascent : 0; }
CGFloat CTFontGetDescent(CTFontRef font) { return font ? font->facts.descent : 0; }
CGFloat CTFontGetLeading(CTFontRef font) { return font ? font->facts.leading : 0; }
CGFloat CTFontGetUnderlinePosition(CTFontRef font) { return font ? font->facts.underlinePosition : 0; }
CGFloat CTFontGetUnderlineThickness(CTFontRef font) { return font ? font->facts.underlineThickness : 0; }
uint32_t CTFontGetSymbolicTraits(CTFontRef font) { return font ? font->facts.traits : 0; }

CFStringRef CTFontCopyFamilyName(CTFontRef font) {
    return font ? CFStringCreateWithCString(nullptr, font->facts.family, kCFStringEncodingUTF8) : nullptr;
}

CFStringRef CTFontCopyPostScriptName(CTFontRef font) {
    return font ? CFStringCreateWithCString(nullptr, font->facts.postScriptName, kCFStringEncodingUTF8) : nullptr;
}

// Installed fonts --------------------------------------------------------------------------------------------------

struct CTFontDescriptor : CFObject {
    CFTypeID typeID() const override { return kCTTypeFontDescriptor; }
    std::string family, postScriptName;
};

struct CTFontCollection : CFObject {
    CFTypeID typeID() const override { return kCTTypeFontCollection; }
};

CTFontCollectionRef CTFontCollectionCreateFromAvailableFonts(CFDictionaryRef) {
    if (!Graphics()) return nullptr;
    return CFGuarded([] { return new CTFontCollection; });
}

static void AppendDescriptor(void* info, const ZRGFace* face) {
    CFGuarded([&]() -> void* {
        auto descriptor = std::make_unique<CTFontDescriptor>();
        descriptor->family = face->family;
        descriptor->postScriptName = face->postScriptName;
        Kept<CTFontDescriptor> kept(descriptor.release());
        CFArrayAppendValue(static_cast<CFMutableArrayRef>(info), kept.get());
        return nullptr;
    });
}

CFArrayRef CTFontCollectionCreateMatchingFontDescriptors(CTFontCollectionRef collection) {
    const ZRGTable* table = Graphics();
    CFMutableArrayRef array = collection && table ? CFArrayCreateMutable(nullptr, 0, &kCFTypeArrayCallBacks) : nullptr;
    if (array) table->eachFace(AppendDescriptor, array);
    return array;
}

CFTypeRef CTFontDescriptorCopyAttribute(CTFontDescriptorRef descriptor, CFStringRef attribute) {
    if (!descriptor || !attribute) return nullptr;
    const std::string* value = CFEqual(attribute, kCTFontFamilyNameAttribute) ? &descriptor->family
                               : CFEqual(attribute, kCTFontNameAttribute)     ? &descriptor->postScriptName
                                                                              : nullptr;
    return value ? CFStringCreateWithCString(nullptr, value->c_str(), kCFStringEncodingUTF8) : nullptr;
}

// The desktop's font objects -----------------------------------------------------------------------------------------

static NSFontRef AsNSFont(CTFontRef font) { return reinterpret_cast<NSFontRef>(font); }

NSFontRef ZR_COCOA_NSFontWithName(CFStringRef name, CGFloat size) {
    return AsNSFont(CTFontCreateWithName(name, size, nullptr));
}

NSFontRef ZR_COCOA_NSFontConvertToHaveTrait(NSFontRef font, unsigned long trait) {
    auto from = reinterpret_cast<CTFontRef>(font);
    auto traits = static_cast<uint32_t>(trait) & (kCTFontTraitItalic | kCTFontTraitBold);
    CTFontRef made = CTFontCreateCopyWithSymbolicTraits(from, 0, nullptr, traits, traits);
    return made ? AsNSFont(made) : AsNSFont(CTFontRetain(from));
}

void ZR_COCOA_NSFontRelease(NSFontRef font) { CFRelease(font); }

// Paragraph styles -------------------------------------------------------------------------------------------------

template <class Value>
static void Take(const CTParagraphStyleSetting& setting, Value* to) {
    if (setting.value && setting.valueSize == sizeof *to) memcpy(to, setting.value, sizeof *to);
}

CTParagraphStyleRef CTParagraphStyleCreate(const CTParagraphStyleSetting* settings, size_t count) {
    return CFGuarded([&] {
        auto style = std::make_unique<CTParagraphStyle>();
        for (size_t i = 0; settings && i < count; ++i) switch (settings[i].spec) {
                case kCTParagraphStyleSpecifierAlignment: Take(settings[i], &style->alignment); break;
                case kCTParagraphStyleSpecifierLineBreakMode: Take(settings[i], &style->breaking); break;
                case kCTParagraphStyleSpecifierLineSpacingAdjustment: Take(settings[i], &style->spacing); break;
            }
        if (!std::isfinite(style->spacing)) style->spacing = 0;
        return style.release();
    });
}
