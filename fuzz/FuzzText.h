// A text of any units from the input of a target.
#ifndef ZR_FUZZ_FUZZTEXT_H
#define ZR_FUZZ_FUZZTEXT_H

#include "fuzz/FuzzSupport.h"

// Bytes as Latin-1, or as units of 16 bits; a living text, handed over.
inline ZR_Text FuzzText(const uint8_t* data, size_t size, bool wide) {
    ZR_Text text;
    text.Create();
    for (size_t i = 0; i + (wide ? 1 : 0) < size; i += wide ? 2 : 1)
        text.AddUnit(static_cast<unsigned short>(wide ? data[i] | data[i + 1] << 8 : data[i]));
    return text;
}

#endif
