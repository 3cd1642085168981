// Attributed strings: the units, and a list of pieces by their first unit, each with the attributes that hold up to the
// next. Pieces share their dictionary with the strings copied from them until one of them changes.
#include <algorithm>
#include <map>
#include <memory>
#include <vector>

#include "platform/CoreFoundation/CoreFoundation_Private.h"

namespace {
struct Release {
    void operator()(CFTypeRef object) const { CFRelease(object); }
};
}  // namespace

using Attributes = std::shared_ptr<const __CFDictionary>;

static Attributes Keep(CFDictionaryRef handedOver) { return Attributes(handedOver, Release()); }

static CFMutableDictionaryRef NewDictionary() {
    return CFDictionaryCreateMutable(nullptr, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks);
}

struct __CFAttributedString : CFObject {
    ~__CFAttributedString() override { CFRelease(string); }
    CFTypeID typeID() const override { return kCFTypeAttributedString; }
    CFIndex Length() const { return CFStringGetLength(string); }

    // The piece that a unit lies in; [0..length).
    std::map<CFIndex, Attributes>::const_iterator PieceAt(CFIndex at) const {
        return std::prev(pieces.upper_bound(at));
    }

    // Makes a piece begin at a unit; nothing at the string's end.
    void Cut(CFIndex at) {
        if (at < 1 || at >= Length()) return;
        auto piece = PieceAt(at);
        if (piece->first != at) pieces.emplace_hint(std::next(piece), at, piece->second);
    }

    CFStringRef string = nullptr;          // owned
    std::map<CFIndex, Attributes> pieces;  // a first piece begins at 0, even of an empty string
    bool changes = false;
    CFIndex limit = 0;  // most units, 0 = any
};

static CFDictionaryRef CopyOf(CFDictionaryRef attributes);

static Attributes NoAttributes() {
    CFMutableDictionaryRef empty = NewDictionary();
    if (!empty) throw std::bad_alloc();
    return Keep(empty);
}

CFTypeID CFAttributedStringGetTypeID() { return kCFTypeAttributedString; }

CFAttributedStringRef CFAttributedStringCreate(CFAllocatorRef, CFStringRef string, CFDictionaryRef attributes) {
    if (!string) return nullptr;
    return CFGuarded([&] {
        auto made = std::make_unique<__CFAttributedString>();
        made->pieces.emplace(0, attributes ? Keep(CopyOf(attributes)) : NoAttributes());
        made->string = CFStringCreateCopy(nullptr, string);
        return made.release();
    });
}

CFMutableAttributedStringRef CFAttributedStringCreateMutable(CFAllocatorRef, CFIndex most) {
    if (most < 0) return nullptr;
    return CFGuarded([&] {
        auto made = std::make_unique<__CFAttributedString>();
        made->pieces.emplace(0, NoAttributes());
        made->string = CFStringCreateWithCharacters(nullptr, nullptr, 0);
        made->changes = true;
        made->limit = most;
        return made.release();
    });
}

CFMutableAttributedStringRef CFAttributedStringCreateMutableCopy(CFAllocatorRef, CFIndex most,
                                                                 CFAttributedStringRef string) {
    if (!string || most < 0) return nullptr;
    return CFGuarded([&] {
        auto made = std::make_unique<__CFAttributedString>();
        made->pieces = string->pieces;
        made->string = CFStringCreateCopy(nullptr, string->string);
        made->changes = true;
        made->limit = most;
        return made.release();
    });
}

CFStringRef CFAttributedStringGetString(CFAttributedStringRef string) { return string ? string->string : nullptr; }

CFIndex CFAttributedStringGetLength(CFAttributedStringRef string) { return string ? string->Length() : 0; }

// The range as far as the string has it; false = nothing of it.
static bool CutToString(const __CFAttributedString* string, CFRange* range) {
    CFIndex length = string->Length();
    if (range->location < 0 || range->length < 1 || range->location >= length) return false;
    range->length = std::min(range->length, length - range->location);
    return true;
}

void CFAttributedStringReplaceString(CFMutableAttributedStringRef string, CFRange range, CFStringRef replacement) {
    if (!string || !string->changes || range.location < 0 || range.location > string->Length()) return;
    CFGuarded([&]() -> void* {
        CFIndex length = string->Length();
        range.length = std::clamp<CFIndex>(range.length, 0, length - range.location);
        CFIndex more = CFStringGetLength(replacement), end = range.location + range.length;
        if (string->limit && length - range.length + more > string->limit) return nullptr;
        std::u16string units = string->string->units;
        units.replace(static_cast<size_t>(range.location), static_cast<size_t>(range.length),
                      replacement ? replacement->units : std::u16string());
        CFStringRef whole = CFStringCreateWithCharacters(nullptr, reinterpret_cast<const UniChar*>(units.data()),
                                                         static_cast<CFIndex>(units.size()));
        if (!whole) return nullptr;
        std::map<CFIndex, Attributes> pieces;
        bool inserts = range.length == 0 && range.location > 0;  // with the attributes of the unit before
        CFIndex model = inserts ? range.location - 1 : range.location;
        Attributes ofNew = string->PieceAt(model)->second, behind = string->PieceAt(end)->second;
        for (auto& [start, attributes] : string->pieces) {
            if (start < range.location) pieces.emplace(start, attributes);
            else if (start > end) pieces.emplace(start - range.length + more, attributes);
        }
        if (more > 0) pieces.emplace(range.location, ofNew);
        if (end < length) pieces.emplace(range.location + more, behind);
        if (pieces.empty()) pieces.emplace(0, ofNew);
        CFRelease(string->string);
        string->string = whole;
        string->pieces = std::move(pieces);
        return nullptr;
    });
}

CFDictionaryRef CFAttributedStringGetAttributes(CFAttributedStringRef string, CFIndex at, CFRange* effective) {
    if (effective) *effective = {0, 0};
    if (!string || at < 0 || at >= string->Length()) return nullptr;
    auto piece = string->PieceAt(at), next = std::next(piece);
    CFIndex end = next == string->pieces.end() ? string->Length() : next->first;
    if (effective) *effective = {piece->first, end - piece->first};
    return piece->second.get();
}

CFTypeRef CFAttributedStringGetAttribute(CFAttributedStringRef string, CFIndex at, CFStringRef name,
                                         CFRange* effective) {
    return CFDictionaryGetValue(CFAttributedStringGetAttributes(string, at, effective), name);
}

static CFDictionaryRef CopyOf(CFDictionaryRef attributes) {
    return CFDictionaryCreateMutableCopy(nullptr, 0, attributes);
}

// Pieces that shared their dictionary before the change share it afterwards. One that nobody else holds is changed as
// it stands.
template <class Change>
static void ChangePieces(CFMutableAttributedStringRef string, CFRange range, Change change) {
    if (!string || !string->changes || !CutToString(string, &range)) return;
    CFGuarded([&]() -> void* {
        CFIndex end = range.location + range.length;
        string->Cut(range.location);
        string->Cut(end);
        Attributes before, after;
        for (auto piece = string->pieces.find(range.location); piece != string->pieces.end() && piece->first < end;
             ++piece) {
            if (piece->second.use_count() == 1 && CFGetRetainCount(piece->second.get()) == 1) {
                change(const_cast<CFMutableDictionaryRef>(piece->second.get()));
                continue;
            }
            if (piece->second != before) {
                auto changed = const_cast<CFMutableDictionaryRef>(CopyOf(piece->second.get()));
                if (!changed) return nullptr;
                before = piece->second;
                after = Keep(changed);
                change(changed);
            }
            piece->second = after;
        }
        return nullptr;
    });
}

void CFAttributedStringSetAttribute(CFMutableAttributedStringRef string, CFRange range, CFStringRef name,
                                    CFTypeRef value) {
    if (!name || !value) return;
    ChangePieces(string, range, [&](CFMutableDictionaryRef to) { CFDictionarySetValue(to, name, value); });
}

void CFAttributedStringRemoveAttribute(CFMutableAttributedStringRef string, CFRange range, CFStringRef name) {
    if (!name) return;
    ChangePieces(string, range, [&](CFMutableDictionaryRef to) { CFDictionaryRemoveValue(to, name); });
}

void CFAttributedStringBeginEditing(CFMutableAttributedStringRef) {}
void CFAttributedStringEndEditing(CFMutableAttributedStringRef) {}
