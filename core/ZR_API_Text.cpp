#include "core/ZR_API_Text.h"

#include <algorithm>

#include "core/ZR_API_Memory_Private.h"

// Units ------------------------------------------------------------------------------------------------------------

static unsigned short UpperUnit(unsigned short unit) {
    return static_cast<unsigned short>(unit - (static_cast<unsigned short>(unit - 0x61) < 26 ? 32 : 0));
}

static unsigned short LowerUnit(unsigned short unit) {
    return static_cast<unsigned short>(unit + (static_cast<unsigned short>(unit - 0x41) < 26 ? 32 : 0));
}

static unsigned short Widened(char byte) { return static_cast<unsigned short>(byte); }           // sign extension
static unsigned short Widened(unsigned char byte) { return static_cast<unsigned short>(byte); }  // zero extension

// n units against n units or bytes.
template <class Other>
static bool SameUnits(const unsigned short* units, const Other* other, long n, bool caseSensitive) {
    if constexpr (sizeof(Other) == 2)
        if (memcmp(units, other, static_cast<size_t>(n) * 2) == 0) return true;
    for (long i = 0; i < n; ++i) {
        unsigned short left = units[i], right;
        if constexpr (sizeof(Other) == 2) right = other[i];
        else right = Widened(other[i]);
        if (left != right && (caseSensitive || UpperUnit(left) != UpperUnit(right))) return false;
    }
    return true;
}

// The text's units as far as they can be read: a count without storage has none.
static long Readable(const ZR_Text* text) { return text->data ? std::max(text->count, 0L) : 0; }

// Life -------------------------------------------------------------------------------------------------------------

void ZR_Text::Create(const unsigned short* units) {
    Create();
    AddUnichar(units);
}

void ZR_Text::Create(const ZR_Text* source) {
    Create();
    if (source) ZR_Handle::Create(source);
}

void ZR_Text::Copy(const ZR_Text* source) {
    Dispose();  // Required: also when the source is this text, which leaves it empty
    if (source && source != this) Create(source);
}

// Appending --------------------------------------------------------------------------------------------------------

void ZR_Text::AddText(const ZR_Text* text) {
    if (text) AddUniBuffer(text->Units(), text->count);
}

void ZR_Text::AddUnichar(const unsigned short* units) { AddUniBuffer(units, ZR_UniStringLength(units)); }

void ZR_Text::AddUnistring(const PA_Unistring* record) {
    if (record) AddUniBuffer(record->fString, record->fLength);
}

void ZR_Text::AddBuffer(const unsigned char* bytes, long n) { AddCharBufferAsUnichar(bytes, n); }

void ZR_Text::AddString(const unsigned char* bytes) { AddCharBufferAsUnichar(bytes, ZR_CStringLength(bytes)); }

static void Widen(unsigned short* to, const char* bytes, long n) {
    for (long i = 0; i < n; ++i) to[i] = Widened(bytes[i]);
}

void ZR_Text::AddPascalString(const char* string) {
    // Required: the length is signed, so 128 and more add nothing; characters widen with the sign, 0xE9 becomes 0xFFE9.
    long n = string ? static_cast<signed char>(string[0]) : 0;
    long old = std::max(count, 0L);
    if (n <= 0) return;
    Resize(old + n);
    if (count == old + n) Widen(Units() + old, string + 1, n);
}

// Reading out ------------------------------------------------------------------------------------------------------

unsigned short* ZR_Text::GetUniCharPtr() {
    long end = std::max(count, 0L);
    if (!Secure(end + 1)) return nullptr;
    Units()[end] = 0;
    return Units();
}

char* ZR_Text::GetCStringPtr() {
    ZR_FreeBlock(cString);
    long n = Readable(this);
    cString = ZR_AllocateBlock(n + 1);
    if (!cString) return nullptr;
    for (long i = 0; i < n; ++i) cString[i] = static_cast<char>(Units()[i] < 256 ? Units()[i] : ' ');
    cString[n] = 0;
    return cString;
}

void ZR_Text::SetUnistring(const PA_Unistring* record) {
    Resize(0);
    AddUnistring(record);
}

// n units from first; units outside the text read as 0.
static void ReadUnits(const ZR_Text* text, unsigned short* out, long first, long n) {
    long from = std::clamp(first, 0L, Readable(text));
    long there = first == from ? std::min(n, Readable(text) - from) : 0;
    if (there > 0) memcpy(out, text->Units() + from, static_cast<size_t>(there) * 2);
    there = std::max(there, 0L);
    if (n > there) memset(out + there, 0, static_cast<size_t>(n - there) * 2);
}

void ZR_Text::ReadUniBuffer(unsigned short* out, long first, long wanted, long room, bool terminate) const {
    if (!out || room < 1) return;
    long n = std::max(std::min(wanted, terminate ? room - 1 : room), 0L);
    ReadUnits(this, out, first, n);
    if (!terminate) return;
    // Required: the zero stands at first + n. Guard: where that is outside the destination, behind the units.
    out[first >= 0 && first < room - n ? first + n : n] = 0;
}

// n low bytes from first; units outside the text read as 0.
static void ReadBytes(const ZR_Text* text, char* out, long first, long n) {
    for (long i = 0; i < n; ++i)
        out[i] = first >= 0 && i < Readable(text) - first ? static_cast<char>(text->Units()[first + i]) : 0;
}

void ZR_Text::ReadBuffer(char* out, long first, long n) const {
    if (out) ReadBytes(this, out, first, n);
}

void ZR_Text::ReadAsString(unsigned char* out, long n) const {
    if (!out) return;
    n = std::clamp(n, 0L, Readable(this));
    ReadBytes(this, reinterpret_cast<char*>(out), 0, n);
    out[n] = 0;
}

void ZR_Text::ToCString(char* out, long size) const {
    if (!out || size < 1) return;
    long n = std::min(Readable(this), size - 1);
    ReadBytes(this, out, 0, n);
    out[n] = 0;
}

void ZR_Text::ToWString(unsigned short* out, long size) const {
    if (!out || size < 1) return;
    long n = std::min(Readable(this), size - 1);
    ReadUnits(this, out, 0, n);
    out[n] = 0;
}

// Editing ----------------------------------------------------------------------------------------------------------

void ZR_Text::SetLength(long n) { Resize(n); }

void ZR_Text::SetChar(long index, unsigned short unit) {
    if (data && index >= 0 && index < capacity) Units()[index] = unit;
}

void ZR_Text::Substring(ZR_Text* to, long first, long last) const {
    if (!to) return;
    to->Resize(0);
    long start = std::clamp(first, 0L, std::max(count, 0L));
    long end = std::min(std::max(last, first), std::max(count, 0L));
    long n = end - start + 1;
    if (end < start) return;
    // Required: the ends are cut to count, not to count - 1, so that one unit behind the last may be taken: the unit
    // that stands there, or 0 if there is no storage for it.
    long there = data ? std::min(n, std::max(capacity - start, 0L)) : 0;
    unsigned short behind = 0;
    if (to == this) {  // count is 0 by now, so this is the one unit at index 0
        if (there > 0) behind = Units()[start];
        to->AddUnit(behind);
        return;
    }
    to->Resize(n);
    if (to->count != n) return;
    if (there > 0) memcpy(to->data, data + start * 2, static_cast<size_t>(there) * 2);
    for (long i = there; i < n; ++i) to->Units()[i] = behind;
}

void ZR_Text::Insert(long position, const ZR_Text* text) {
    if (!text || Readable(text) < 1) return;
    if (text == this) {
        ZR_Text copy;
        copy.Create(text);
        Insert(position, &copy);
        copy.Dispose();
        return;
    }
    if (char* gap = InsertElement(position, text->count)) memcpy(gap, text->data, static_cast<size_t>(text->count) * 2);
}

void ZR_Text::Insert(long position, const char* bytes) {
    long n = ZR_CStringLength(bytes);
    if (n < 1) return;
    // Required: characters widen with the sign, as in AddPascalString.
    if (char* gap = InsertElement(position, n)) Widen(reinterpret_cast<unsigned short*>(gap), bytes, n);
}

void ZR_Text::Delete(long first, long last) {
    if (first < 0 || last < first || last > count) return;
    if (data && last < count)
        memmove(data + first * 2, data + (last + 1) * 2, static_cast<size_t>(count - last - 1) * 2);
    Resize(count + first - last - 1);  // Required: with last at count, one unit before first goes as well
}

void ZR_Text::Uppercase() {
    unsigned short* units = Units();
    for (long i = 0, n = Readable(this); i < n; ++i) units[i] = UpperUnit(units[i]);
}

void ZR_Text::Lowercase() {
    unsigned short* units = Units();
    for (long i = 0, n = Readable(this); i < n; ++i) units[i] = LowerUnit(units[i]);
}

// Searching and comparing ------------------------------------------------------------------------------------------

long ZR_Text::SearchForByte(unsigned short unit, long start) const {
    if (start < 0) return -1;
    const unsigned short* units = Units();
    for (long i = start, n = Readable(this); i < n; ++i)
        if (units[i] == unit) return i;
    return -1;
}

long ZR_Text::SearchForByteString(const unsigned char* pattern, long start) const {
    long n = ZR_CStringLength(pattern);
    if (n < 1 || start < 0) return -1;
    const unsigned short* units = Units();
    for (long i = start, last = Readable(this) - n; i <= last; ++i)
        if (units[i] == pattern[0] && SameUnits(units + i, pattern, n, /*caseSensitive*/ true)) return i;
    return -1;
}

long ZR_Text::CountChar(unsigned short unit) const {
    long found = 0;
    const unsigned short* units = Units();
    for (long i = 0, n = Readable(this); i < n; ++i) found += units[i] == unit;
    return found;
}

bool ZR_Text::Equal(const ZR_Text* other) const { return Equal(other, /*caseSensitive*/ true); }

bool ZR_Text::Equal(const ZR_Text* other, bool caseSensitive) const {
    return other && Equal(other->Units(), other->count, caseSensitive);
}

bool ZR_Text::Equal(const unsigned char* bytes) const { return Equal(bytes, /*caseSensitive*/ true); }

bool ZR_Text::Equal(const unsigned char* bytes, bool caseSensitive) const {
    if (ZR_CStringLength(bytes) != count) return false;
    return SameUnits(Units(), bytes, Readable(this), caseSensitive);
}

bool ZR_Text::Equal(const unsigned short* units, long n, bool caseSensitive) const {
    if (n != count) return false;
    if (count <= 0) return true;
    if (!data || !units) return false;
    if (caseSensitive) return memcmp(data, units, static_cast<size_t>(n) * 2) == 0;
    return SameUnits(Units(), units, n, caseSensitive);
}

bool ZR_Text::BeginsWithString(const char* pattern) const { return BeginsWithString(pattern, 1, true); }

bool ZR_Text::BeginsWithString(const char* pattern, long position) const {
    return BeginsWithString(pattern, position, true);
}

bool ZR_Text::BeginsWithString(const char* pattern, long position, bool caseSensitive) const {
    long n = ZR_CStringLength(pattern);
    // Guard: what would be compared with units before or behind the text does not match.
    if (n < 1 || position < 1 || n > Readable(this) || position - 1 > Readable(this) - n) return false;
    return SameUnits(Units() + position - 1, pattern, n, caseSensitive);
}
