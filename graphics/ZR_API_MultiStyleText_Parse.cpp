// Styled text into plain text and runs.
#include <algorithm>
#include <iterator>

#include "graphics/ZR_API_Geometry.h"
#include "graphics/ZR_API_MultiStyleText.h"

// Markers, compared without regard to case.
static constexpr const char* kBreaks[] = {"<BR/>", "<BR />"};
static constexpr char kSpan[] = "<SPAN", kBareSpan[] = "<SPAN>", kStyledSpan[] = "<SPAN STYLE=\"", kEnd[] = "</SPAN>";
static constexpr struct {
    const char* marker;
    unsigned short unit;
} kEntities[] = {{"&AMP;", '&'}, {"&LT;", '<'}, {"&GT;", '>'}};

static bool IsAt(const ZR_Text* text, const char* marker, long position) {
    return text->BeginsWithString(marker, position, /*caseSensitive*/ false);
}

static long Length(const char* marker) { return ZR_CStringLength(marker); }

// Properties -------------------------------------------------------------------------------------------------------

// Where a property is read. lastP: the last "p" of the text, found when a size first asks; -1 = not yet.
struct StyleReader {
    const ZR_Text* styled;
    ZR_MultiStyleRun* style;
    long lastP;

    bool Has(const char* word, long position) const { return styled->BeginsWithString(word, position); }
    long LastP() {
        if (lastP >= 0) return lastP;
        for (lastP = styled->count; lastP > 0 && styled->GetChar(lastP - 1) != 'p';) --lastP;
        return lastP;
    }
};

// Each reads the value that stands from at to before limit; positions [1..count].
typedef void ReadProperty(StyleReader* reader, long at, long limit);

static void ReadFontFamily(StyleReader* reader, long at, long limit) {
    if (reader->styled->GetChar(at - 1) != '\'') return;
    long end = at + 1;
    while (end < limit && reader->styled->GetChar(end - 1) != '\'' && reader->styled->GetChar(end - 1) != ';') ++end;
    if (end >= limit || reader->styled->GetChar(end - 1) == ';') return;  // the property ends there
    ZR_Text name;
    name.Create();
    name.AddUniBuffer(reader->styled->Units() + at, end - at - 1);
    reader->style->font.SetFontname(&name);
    name.Dispose();
}

// Whether a number stands at a position, blanks before it allowed.
static bool StartsNumber(const ZR_Text* text, long at) {
    while (text->GetChar(at - 1) == ' ') ++at;
    unsigned short unit = text->GetChar(at - 1);
    if (unit == '-' || unit == '+') unit = text->GetChar(at++);
    if (unit == '.') unit = text->GetChar(at);
    return unit >= '0' && unit <= '9';
}

static void ReadFontSize(StyleReader* reader, long at, long) {
    // Required: the "p" of "pt" counts wherever it stands behind the number.
    if (reader->LastP() < at || !StartsNumber(reader->styled, at)) return;
    reader->style->font.SetSize(static_cast<short>(ZR_TruncatedToLong(reader->styled->ReadDouble(at))));
}

static void AddStyle(StyleReader* reader, short bits) {
    reader->style->font.SetStyle(static_cast<short>(reader->style->font.style | bits));
}

static void ReadFontWeight(StyleReader* reader, long at, long) {
    if (reader->Has("bold", at)) AddStyle(reader, kZRBold);
    // Required: all of the style, not only bold.
    if (reader->Has("normal", at)) reader->style->font.SetStyle(0);
}

static void ReadFontStyle(StyleReader* reader, long at, long) {
    if (reader->Has("italic", at)) AddStyle(reader, kZRItalic);
}

static void ReadTextDecoration(StyleReader* reader, long at, long) {
    // Required: "none" clears nothing.
    if (reader->Has("underline line-through", at)) AddStyle(reader, kZRUnderline | kZRStrikethrough);
    else if (reader->Has("underline", at)) AddStyle(reader, kZRUnderline);
    else if (reader->Has("line-through", at)) AddStyle(reader, kZRStrikethrough);
}

static int HexDigit(unsigned short unit) {  // -1 = none
    if (unit >= '0' && unit <= '9') return unit - '0';
    unit |= 0x20;
    return unit >= 'a' && unit <= 'f' ? unit - 'a' + 10 : -1;
}

static void ReadHexColor(const StyleReader* reader, long at, ZR_RGBColor* color) {
    long value = 0;
    for (long i = at; i < at + 6; ++i) {
        int digit = HexDigit(reader->styled->GetChar(i - 1));
        if (digit < 0) return;  // fewer digits are no colour
        value = value * 16 + digit;
    }
    // Required: the low byte of each channel stays 0.
    *color = {static_cast<unsigned short>(value >> 8 & 0xFF00), static_cast<unsigned short>(value & 0xFF00),
              static_cast<unsigned short>(value << 8 & 0xFFFF), 1};
}

static void ReadColor(StyleReader* reader, long at, long) { ReadHexColor(reader, at, &reader->style->color); }

static void ReadBackground(StyleReader* reader, long at, long) { ReadHexColor(reader, at, &reader->style->background); }

static void Skip(StyleReader*, long, long) {}

static constexpr struct {
    const char* key;  // as it stands; case counts here
    ReadProperty* read;
} kProperties[] = {
    {"font-family:", ReadFontFamily}, {"font-size:", ReadFontSize},           {"text-align:", Skip},
    {"font-weight:", ReadFontWeight}, {"font-style:", ReadFontStyle},         {"text-decoration:", ReadTextDecoration},
    {"color:#", ReadColor},           {"background-color:#", ReadBackground},
};

// Once through the properties; true = *position moved on.
static bool ReadProperties(StyleReader* reader, long* position, long limit) {
    const long before = *position;
    for (const auto& property : kProperties) {
        if (*position >= limit || !reader->Has(property.key, *position)) continue;
        const long at = *position + Length(property.key);
        property.read(reader, at, limit);
        long end = at;
        while (end < limit && reader->styled->GetChar(end - 1) != ';') ++end;
        if (end < limit) *position = end + 1;
    }
    return *position != before;
}

bool ZR_MultiStyleText::ParseStyle2(ZR_Text* styled, ZR_MultiStyleRun* style, long* position, long limit) {
    StyleReader reader = {styled, style, -1};
    return ReadProperties(&reader, position, std::min(limit, styled->count + 1));
}

static bool ReadStyle(StyleReader* reader, long* position) {
    const long limit = reader->styled->SearchForByte('>', *position - 1) + 1;
    if (limit < 1) return false;
    while (ReadProperties(reader, position, limit)) continue;
    *position = limit + 1;
    return true;
}

bool ZR_MultiStyleText::ParseStyle(ZR_Text* styled, ZR_MultiStyleRun* style, long* position) {
    StyleReader reader = {styled, style, -1};
    return ReadStyle(&reader, position);
}

// Text -------------------------------------------------------------------------------------------------------------

// Entities decoded once each: "&amp;lt;" gives "&lt;".
static void AddDecoded(ZR_Text* plain, const ZR_Text* styled, long start, long end) {
    long from = start;  // of what is not yet copied
    for (long at = start; at <= end; ++at) {
        if (styled->GetChar(at - 1) != '&') continue;
        for (const auto& entity : kEntities) {
            const long n = Length(entity.marker);
            if (at + n - 1 > end || !IsAt(styled, entity.marker, at)) continue;
            plain->AddUniBuffer(styled->Units() + from - 1, at - from);
            plain->AddUnit(entity.unit);
            from = at + n;
            at = from - 1;
            break;
        }
    }
    plain->AddUniBuffer(styled->Units() + from - 1, end + 1 - from);
}

void ZR_MultiStyleText::ParseWriteRun(long start, long end, ZR_Text* styled, ZR_Text* plain, ZR_MultiStyleRun* style) {
    end = std::min(end, styled->data ? styled->count : 0);
    if (start <= 0 || start > end) return;
    const long before = plain->count;
    AddDecoded(plain, styled, start, end);
    AddRun(before + 1, plain->count, &style->font, &style->color, &style->background);
}

// Every break becomes one carriage return, in place: the text only gets shorter.
static void ReplaceBreaks(ZR_Text* styled) {
    unsigned short* units = styled->Units();
    long to = 0;
    for (long from = 0, n = styled->data ? styled->count : 0; from < n; ++from) {
        unsigned short unit = units[from];
        for (const char* marker : kBreaks) {
            if (unit != '<' || !IsAt(styled, marker, from + 1)) continue;
            unit = '\r';
            from += Length(marker) - 1;
        }
        units[to++] = unit;
    }
    styled->Resize(to);
}

// Levels -----------------------------------------------------------------------------------------------------------

// The spans that are open, innermost last; no native stack is used, so that no nesting can exhaust it.
struct SpanReader {
    ZR_MultiStyleText* text;
    ZR_Text *styled, *plain;
    long* position;
    ZR_MultiStyleRun* outer;  // style outside of all spans; borrowed
    ZR_Handle open;           // of ZR_MultiStyleRun; owned
    long* depth;
    long lastP;

    ZR_MultiStyleRun* Style() {
        char* top = open.GetMemPtr(open.count);
        return top ? reinterpret_cast<ZR_MultiStyleRun*>(top) : outer;
    }
    void Close() {
        Style()->Dispose();
        open.DeleteElement(open.count);
        --*depth;
    }
};

// The "<SPAN" at the position; false = it cannot be read.
static bool OpenSpan(SpanReader* reader) {
    if (*reader->depth >= ZR_MOST_SPAN_DEPTH) return false;
    ZR_MultiStyleRun own;
    own.Create(reader->Style());
    bool ok = true;
    if (IsAt(reader->styled, kBareSpan, *reader->position)) {
        *reader->position += Length(kBareSpan);
    } else if (IsAt(reader->styled, kStyledSpan, *reader->position)) {
        *reader->position += Length(kStyledSpan);
        StyleReader style = {reader->styled, &own, reader->lastP};
        ok = ReadStyle(&style, reader->position);
        reader->lastP = style.lastP;
    } else {
        ok = false;
    }
    char* added = ok ? reader->open.AppendGetPtr() : nullptr;
    if (!added) {
        own.Dispose();
        return false;
    }
    memcpy(added, &own, sizeof own);
    ++*reader->depth;
    return true;
}

// Plain text from the position to before the next "<".
static void ReadText(SpanReader* reader) {
    const long start = *reader->position, next = reader->styled->SearchForByte('<', start - 1);
    const long end = next < 0 ? reader->styled->count : next;
    reader->text->ParseWriteRun(start, end, reader->styled, reader->plain, reader->Style());
    *reader->position = end + 1;
}

static bool ReadLevels(SpanReader* reader) {
    const ZR_Text* styled = reader->styled;
    while (*reader->position <= styled->count) {
        if (styled->GetChar(*reader->position - 1) != '<') {
            ReadText(reader);
        } else if (IsAt(styled, kSpan, *reader->position)) {
            if (!OpenSpan(reader)) return false;
        } else if (IsAt(styled, kEnd, *reader->position)) {
            *reader->position += Length(kEnd);
            if (reader->open.count > 0) reader->Close();
            else if (*reader->depth > 1) return true;  // a stray end tag of the outermost level is dropped
        } else {
            ++*reader->position;
        }
    }
    return true;
}

bool ZR_MultiStyleText::ParseStyledText_loop2(ZR_Text* styled, ZR_Text* plain, long* position, ZR_MultiStyleRun* style,
                                              long* depth) {
    if (*position < 1 || !styled->data) return true;  // guard: nothing to read there
    SpanReader reader = {this, styled, plain, position, style, {}, depth, -1};
    reader.open.Create(sizeof(ZR_MultiStyleRun), 0);
    ++*depth;
    const bool ok = ReadLevels(&reader);
    while (reader.open.count > 0) reader.Close();
    reader.open.Dispose();
    --*depth;
    return ok;
}

bool ZR_MultiStyleText::CreateWith4DStyledText(ZR_Text* styled, ZR_Text* plain, ZR_Font* font, ZR_RGBColor* color) {
    Create();
    if (!styled || !plain || styled == plain) return false;
    plain->Resize(0);
    ReplaceBreaks(styled);
    ZR_MultiStyleRun base;
    base.Create();
    if (font) base.font.Create(font);
    if (color) base.color = *color;
    long position = 1, depth = 0;
    const bool ok = ParseStyledText_loop2(styled, plain, &position, &base, &depth);
    base.Dispose();
    return ok;
}
