// The object zr-unicode: the functions of UnicodeTable over ICU.
#include <unicode/uchar.h>
#include <unicode/ucnv.h>
#include <unicode/ucol.h>
#include <unicode/ucoleitr.h>
#include <unicode/unorm2.h>
#include <unicode/ustring.h>
#include <unicode/utf16.h>

#include <algorithm>
#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <string>

#include "host/unicode/UnicodeTable.h"

namespace zrhost {

namespace {

// Collators are opened once a locale and live as long as the program: a comparison in another thread may still be using
// one, and comparing through one from several threads is allowed.
struct Collators {
    UCollator* letters = nullptr;  // accents and case do not count
    UCollator* exact = nullptr;
};

UCollator* OpenCollator(const std::string& locale, UCollationStrength strength) {
    UErrorCode error = U_ZERO_ERROR;
    UCollator* collator = ucol_open(locale.c_str(), &error);
    if (U_FAILURE(error)) return nullptr;
    ucol_setStrength(collator, strength);
    return collator;
}

std::mutex gMutex;
std::atomic<const Collators*> gCollators{nullptr};

void SetLocale(const char* name) {
    static auto& opened = *new std::map<std::string, Collators>;
    std::string locale = name ? name : "";
    std::replace(locale.begin(), locale.end(), '-', '_');
    std::lock_guard guard(gMutex);
    auto [entry, isNew] = opened.try_emplace(locale);
    if (isNew) {
        entry->second.letters = OpenCollator(locale, UCOL_PRIMARY);
        entry->second.exact = OpenCollator(locale, UCOL_TERTIARY);
    }
    gCollators.store(&entry->second, std::memory_order_release);
}

const Collators& Current() {
    if (!gCollators.load(std::memory_order_acquire)) SetLocale("en_US");
    return *gCollators.load(std::memory_order_acquire);
}

int Compare(const char16_t* left, int32_t leftLength, const char16_t* right, int32_t rightLength, int exact) {
    const UCollator* collator = exact ? Current().exact : Current().letters;
    if (!collator) return u_strCompare(left, leftLength, right, rightLength, true);
    return ucol_strcoll(collator, left, leftLength, right, rightLength);
}

int32_t Primaries(const char16_t* text, int32_t length, uint32_t* weights, int32_t* offsets, int32_t room) {
    if (!Current().letters) return 0;
    UErrorCode error = U_ZERO_ERROR;
    std::unique_ptr<UCollationElements, void (*)(UCollationElements*)> elements(
        ucol_openElements(Current().letters, text, length, &error), ucol_closeElements);
    if (U_FAILURE(error)) return 0;
    int32_t count = 0;
    for (;;) {
        int32_t offset = ucol_getOffset(elements.get());
        int32_t order = ucol_next(elements.get(), &error);
        if (order == UCOL_NULLORDER || U_FAILURE(error)) return count;
        uint32_t primary = uint32_t(ucol_primaryOrder(order));
        if (!primary) continue;
        if (count < room) {
            weights[count] = primary;
            offsets[count] = offset;
        }
        ++count;
    }
}

// The length of a preflighted conversion; -1 = refused.
int32_t Answer(int32_t length, UErrorCode error) {
    return U_FAILURE(error) && error != U_BUFFER_OVERFLOW_ERROR ? -1 : length;
}

int32_t ToUpper(const char16_t* text, int32_t length, char16_t* out, int32_t room) {
    UErrorCode error = U_ZERO_ERROR;
    int32_t answer = u_strToUpper(out, room, text, length, "", &error);
    return Answer(answer, error);
}

int32_t ToLower(const char16_t* text, int32_t length, char16_t* out, int32_t room) {
    UErrorCode error = U_ZERO_ERROR;
    int32_t answer = u_strToLower(out, room, text, length, "", &error);
    return Answer(answer, error);
}

int32_t StripAccents(const char16_t* text, int32_t length, char16_t* out, int32_t room) {
    UErrorCode error = U_ZERO_ERROR;
    const UNormalizer2* nfd = unorm2_getNFDInstance(&error);
    const UNormalizer2* nfc = unorm2_getNFCInstance(&error);
    if (U_FAILURE(error)) return -1;
    std::u16string parts(size_t(length) * 4 + 16, u'\0');
    int32_t count = unorm2_normalize(nfd, text, length, parts.data(), int32_t(parts.size()), &error);
    if (U_FAILURE(error)) return -1;
    std::u16string kept;
    for (int32_t i = 0; i < count;) {
        UChar32 character;
        U16_NEXT(parts.data(), i, count, character);
        if (u_charType(character) == U_NON_SPACING_MARK &&
            ublock_getCode(character) == UBLOCK_COMBINING_DIACRITICAL_MARKS)
            continue;
        char16_t units[2];
        int32_t n = 0;
        U16_APPEND_UNSAFE(units, n, character);
        kept.append(units, size_t(n));
    }
    int32_t answer = unorm2_normalize(nfc, kept.data(), int32_t(kept.size()), out, room, &error);
    return Answer(answer, error);
}

int IsLetter(char32_t character) { return u_isalpha(UChar32(character)); }
int IsUpper(char32_t character) { return u_isupper(UChar32(character)); }
int IsSpace(char32_t character) { return u_isUWhiteSpace(UChar32(character)); }

using Converter = std::unique_ptr<UConverter, void (*)(UConverter*)>;

Converter Open(const char* charset) {
    UErrorCode error = U_ZERO_ERROR;
    Converter converter(charset && *charset ? ucnv_open(charset, &error) : nullptr, ucnv_close);
    if (U_FAILURE(error)) converter.reset();
    return converter;
}

int IsCharset(const char* name) { return Open(name) != nullptr; }

int32_t Decode(const char* charset, const uint8_t* bytes, int32_t length, char16_t* out, int32_t room) {
    Converter converter = Open(charset);
    if (!converter) return -1;
    UErrorCode error = U_ZERO_ERROR;
    int32_t answer = ucnv_toUChars(converter.get(), out, room, reinterpret_cast<const char*>(bytes), length, &error);
    return Answer(answer, error);
}

int32_t Encode(const char* charset, const char16_t* text, int32_t length, uint8_t* out, int32_t room) {
    Converter converter = Open(charset);
    if (!converter) return -1;
    UErrorCode error = U_ZERO_ERROR;
    if (ucnv_getMinCharSize(converter.get()) == 1) ucnv_setSubstChars(converter.get(), "?", 1, &error);
    error = U_ZERO_ERROR;
    int32_t answer = ucnv_fromUChars(converter.get(), reinterpret_cast<char*>(out), room, text, length, &error);
    return Answer(answer, error);
}

constexpr UnicodeTable kTable = {kUnicodeTableVersion,
                                 SetLocale,
                                 Compare,
                                 Primaries,
                                 ToUpper,
                                 ToLower,
                                 StripAccents,
                                 IsLetter,
                                 IsUpper,
                                 IsSpace,
                                 IsCharset,
                                 Decode,
                                 Encode};

}  // namespace

}  // namespace zrhost

extern "C" __attribute__((visibility("default"))) const zrhost::UnicodeTable* zr_unicode_table() {
    return &zrhost::kTable;
}
