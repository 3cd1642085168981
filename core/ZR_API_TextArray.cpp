#include "core/ZR_API_TextArray.h"

#include <algorithm>

#include "core/ZR_API_Memory_Private.h"
#include "plugin/ZR_API_Bridge.h"

// Life -------------------------------------------------------------------------------------------------------------

void ZR_TextArray::Create() {
    count = 0;
    texts = nullptr;
}

void ZR_TextArray::Create(const ZR_Text* text, unsigned short separator) {
    Create();
    if (!text) return;
    Resize(text->CountChar(separator) + 1);
    long length = text->data ? std::max(text->count, 0L) : 0, start = 0;
    for (long i = 0; i < count; ++i) {
        long place = text->SearchForByte(separator, start);
        if (place < 0) place = length;
        if (place > start) text->Substring(&texts[i], start, place - 1);
        start = place + 1;
    }
}

void ZR_TextArray::Create(PA_Variable* array) {
    Create();
    if (!array || array->fType != eVK_ArrayText) return;
    Resize(PA_GetArrayNbElements(array));
    for (long i = 1; i <= count; ++i) texts[i - 1].CreateFrom4DArray(array, i);
}

void ZR_TextArray::CreateFrom4DParameter(PluginBlock* block, long index) {
    PA_Variable variable = PA_GetVariableParameter(block, static_cast<short>(index));
    Create(&variable);
}

void ZR_TextArray::Dispose() {
    for (long i = 0; i < count; ++i) texts[i].Dispose();
    ZR_FreeBlock(texts);
    Create();
}

// Elements ---------------------------------------------------------------------------------------------------------

void ZR_TextArray::Resize(long n) {
    long elements, bytes;
    n = std::max(n, 0L);
    for (long i = n; i < count; ++i) texts[i].Dispose();
    if (n > count) {
        if (!ZR_BlockSize(n, 0, sizeof(ZR_Text), &elements, &bytes)) return;
        char* grown = ZR_GrowBlock(reinterpret_cast<char*>(texts), bytes);
        if (!grown) return;
        texts = reinterpret_cast<ZR_Text*>(grown);
        for (long i = count; i < n; ++i) texts[i].Create();
    }
    count = n;
}

void ZR_TextArray::GetText(long index, ZR_Text* target) const {
    ZR_Text* element = GetTextPtr(index);
    if (element && target) target->Copy(element);
}

void ZR_TextArray::SetText(long index, const ZR_Text* text) {
    if (ZR_Text* element = GetTextPtr(index)) element->Copy(text);
}

void ZR_TextArray::SetString(long index, const unsigned char* bytes) {
    ZR_Text* element = GetTextPtr(index);
    if (!element) return;
    ZR_Text fresh;  // first: the bytes may be the element's own
    fresh.Create();
    fresh.AddString(bytes);
    element->Dispose();
    *element = fresh;
}

void ZR_TextArray::SetString(long index, const char* bytes) {
    SetString(index, reinterpret_cast<const unsigned char*>(bytes));
}

void ZR_TextArray::Append(const ZR_Text* text) {
    ZR_Text copy;  // taken before the growth, which moves an element of this array
    copy.Create(text);
    long old = count;
    Resize(old + 1);
    if (count > old) texts[old] = copy;
    else copy.Dispose();
}

void ZR_TextArray::Append(const char* bytes) {
    long old = count;
    Resize(old + 1);
    if (count > old) texts[old].AddString(bytes);
}

long ZR_TextArray::Find(const ZR_Text* text) const {
    for (long i = 0; i < count; ++i)
        if (texts[i].Equal(text)) return i + 1;
    return 0;
}

long ZR_TextArray::Find(const char* bytes) const {
    for (long i = 0; i < count; ++i)
        if (texts[i].Equal(bytes)) return i + 1;
    return 0;
}

// Host -------------------------------------------------------------------------------------------------------------

void ZR_TextArray::To4Darray(PA_Variable* array) {
    if (!array) return;
    if (array->fType != eVK_ArrayText || !texts) return PA_ResizeArray(array, 0);
    PA_ResizeArray(array, count);
    for (long i = 1; i <= count; ++i) texts[i - 1].To4DArray(array, i);
}

void ZR_TextArray::To4DParameter(PluginBlock* block, short index) {
    PA_Variable variable = PA_GetVariableParameter(block, index);
    if (variable.fType != eVK_ArrayText) return;
    To4Darray(&variable);
    PA_SetVariableParameter(block, index, &variable, /*clearOld*/ false);
}
