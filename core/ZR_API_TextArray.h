// ZR_TextArray: a resizable list of texts, and the bridge to the host's text arrays.
// Every element is a living ZR_Text owned by the array. Elements move by plain copy when the array grows, so a pointer
// from GetTextPtr is dead after Resize and Append.
#ifndef ZR_API_TEXTARRAY_H
#define ZR_API_TEXTARRAY_H

#include "core/ZR_API_Text.h"

struct ZR_TextArray {
    long count;      // texts
    ZR_Text* texts;  // owned; null = never resized; stays set when resized to 0

    void Create();
    void Create(const ZR_Text* text, unsigned short separator);  // one element more than there are separators
    void Create(PA_Variable* array);                             // a host text array; another kind = empty
    void CreateFrom4DParameter(PluginBlock* block, long index);  // [1..]
    void Dispose();
    void Resize(long n);                     // new elements are empty; refused = as it was
    ZR_Text* GetTextPtr(long index) const {  // [1..count]; borrowed; null outside
        return index < 1 || index > count ? nullptr : texts + (index - 1);
    }
    void GetText(long index, ZR_Text* target) const;  // copied into a living text; outside it stays
    void SetText(long index, const ZR_Text* text);    // null = emptied
    void SetString(long index, const unsigned char* bytes);
    void SetString(long index, const char* bytes);
    void Append(const ZR_Text* text);  // null = an empty element
    void Append(const char* bytes);
    long Find(const ZR_Text* text) const;  // [1..count]; 0 = none
    long Find(const char* bytes) const;
    void To4Darray(PA_Variable* array);                   // another kind than text array: resized to 0
    void To4DParameter(PluginBlock* block, short index);  // [1..]; another kind = nothing
};

#endif
