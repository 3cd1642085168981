// What the object zr-unicode offers: a table of C functions over ICU, handed out by its one exported function. The
// host opens it at the first need, so that a run which meets plain Latin text alone never loads ICU.
//
// Lengths are UTF-16 units. No function throws, and none keeps an argument.
#ifndef ZRHOST_UNICODETABLE_H
#define ZRHOST_UNICODETABLE_H

#include <cstdint>

namespace zrhost {

inline constexpr uint32_t kUnicodeTableVersion = 1;

struct UnicodeTable {
    uint32_t version;
    void (*setLocale)(const char* name);  // "de-DE"; before the first comparison
    // -1, 0, 1; exact 0: letters alone count, 1: accents and case too.
    int (*compare)(const char16_t* left, int32_t leftLength, const char16_t* right, int32_t rightLength, int exact);
    // The primary weights of a text and the unit at which each begins; answers how many there are, writes at most room.
    int32_t (*primaries)(const char16_t* text, int32_t length, uint32_t* weights, int32_t* offsets, int32_t room);
    // Conversions answer the length of the whole result and write at most room units or bytes; -1 = refused.
    int32_t (*upper)(const char16_t* text, int32_t length, char16_t* out, int32_t room);
    int32_t (*lower)(const char16_t* text, int32_t length, char16_t* out, int32_t room);
    int32_t (*stripAccents)(const char16_t* text, int32_t length, char16_t* out, int32_t room);
    int (*isLetter)(char32_t character);
    int (*isUpper)(char32_t character);
    int (*isSpace)(char32_t character);
    int (*isCharset)(const char* name);
    int32_t (*decode)(const char* charset, const uint8_t* bytes, int32_t length, char16_t* out, int32_t room);
    int32_t (*encode)(const char* charset, const char16_t* text, int32_t length, uint8_t* out, int32_t room);
};

}  // namespace zrhost

extern "C" const zrhost::UnicodeTable* zr_unicode_table();

#endif
