// Replacing and filtering over a whole text.
#include <algorithm>

#include "core/ZR_API_Text.h"

static long Readable(const ZR_Text* text) { return text && text->data ? std::max(text->count, 0L) : 0; }

// Finds a text in units, looking at each unit once: borders[i] is the longest proper beginning of the first i + 1
// units that ends there too.
struct UnitSearch {
    const unsigned short* search;
    long n;
    ZR_Handle borders;

    bool Create(const ZR_Text* wanted) {
        search = wanted->Units();
        n = wanted->count;
        borders.Create(sizeof(long), n);
        if (!borders.data) return false;
        long* border = reinterpret_cast<long*>(borders.data);
        border[0] = 0;
        for (long i = 1, k = 0; i < n; ++i) {
            while (k > 0 && search[i] != search[k]) k = border[k - 1];
            if (search[i] == search[k]) ++k;
            border[i] = k;
        }
        return true;
    }
    // The first place from start on; -1 = none.
    long Find(const unsigned short* units, long count, long start) const {
        const long* border = reinterpret_cast<const long*>(borders.data);
        for (long i = start, k = 0; i < count; ++i) {
            while (k > 0 && units[i] != search[k]) k = border[k - 1];
            if (units[i] == search[k]) ++k;
            if (k == n) return i + 1 - n;
        }
        return -1;
    }
};

static constexpr long kMostUnits = 1L << 30;  // of a result; the text stays as it is beyond it

// The text with every place replaced, in one pass. What the cursor does, told by what is left behind a place: with a
// replacement the search goes on right behind it; without one, the unit that slid into its place is passed over.
// False = the result is refused as too long.
static bool AddReplaced(const ZR_Text* source, const UnitSearch& search, const ZR_Text* replacement, ZR_Text* out) {
    const long count = source->count, skipped = Readable(replacement) > 0 ? 0 : 1;
    const unsigned short* units = source->Units();
    long plain = 0;  // start of the units not yet copied
    for (long at = search.Find(units, count, 0); at >= 0; at = search.Find(units, count, plain + skipped)) {
        out->AddUniBuffer(units + plain, at - plain);
        if (skipped == 0) out->AddText(replacement);
        plain = at + search.n;
        if (out->count + (count - plain) > kMostUnits) return false;  // guard
        // Required: an empty replacement skips a unit, so that "a" filtered out of "aaaa" leaves two.
        if (count - plain < search.n + skipped) break;
    }
    out->AddUniBuffer(units + plain, count - plain);
    return true;
}

void ZR_Text::Replace(const ZR_Text* search, const ZR_Text* replacement) {
    if (Readable(this) < 1 || Readable(search) < 1 || search->count > count) return;
    UnitSearch finder;
    if (finder.Create(search) && finder.Find(Units(), count, 0) >= 0) {
        ZR_Text replaced;
        replaced.Create();
        replaced.growStep = count;
        if (AddReplaced(this, finder, replacement, &replaced)) {
            Resize(0);
            AddText(&replaced);
        }
        replaced.Dispose();
    }
    finder.borders.Dispose();
}

void ZR_Text::Replace(const char* search, const char* replacement) {
    ZR_Text to;
    to.Create();
    to.AddString(replacement);
    Replace(search, &to);
    to.Dispose();
}

void ZR_Text::Replace(const char* search, const ZR_Text* replacement) {
    ZR_Text from;
    from.Create();
    from.AddString(search);
    Replace(&from, replacement);
    from.Dispose();
}

void ZR_Text::ReplaceChar(unsigned short from, unsigned short to) {
    std::replace(Units(), Units() + Readable(this), from, to);
}

void ZR_Text::Filter(const ZR_Text* search) { Replace(search, static_cast<const ZR_Text*>(nullptr)); }

void ZR_Text::Filter(unsigned short unit) {
    ZR_Text kept;
    kept.Create();
    kept.growStep = growStep;
    kept.Resize(Readable(this));
    if (kept.count != Readable(this)) return;  // guard: no memory
    unsigned short* end = std::remove_copy(Units(), Units() + kept.count, kept.Units(), unit);
    kept.count = end - kept.Units();
    Dispose();
    *this = kept;  // Required: the storage of the copy, without caches
}

ZR_Text ZR_Text::CreateCSVConformText() const {
    static constexpr unsigned short kQuote = '"', kSpecial[] = {kQuote, ',', ';', '\r', '\n'};
    ZR_Text field;
    field.Create(data ? this : nullptr);
    const unsigned short* end = Units() + Readable(this);
    if (std::find_first_of(Units(), const_cast<unsigned short*>(end), std::begin(kSpecial), std::end(kSpecial)) == end)
        return field;
    field.Replace("\"", "\"\"");
    field.AddUnit(kQuote);
    field.Insert(0, "\"");
    return field;
}
