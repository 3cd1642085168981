// Values of a dialog for callers that hold names in bytes and texts as ZR_Text.
#include "core/ZR_API_Text.h"
#include "plugin/ZR_API_Bridge.h"
#include "plugin/ZR_API_Bridge_Private.h"

struct WideName {
    PA_Unichar units[kNameUnits + 1];
};

// Latin-1, cut as every name is; null = empty.
static WideName Widen(const char* name) {
    WideName wide;
    long length = 0;
    if (name != nullptr)
        for (; length < kNameUnits && name[length] != 0; length++) wide.units[length] = (unsigned char)name[length];
    wide.units[length] = 0;
    return wide;
}

void PA_Dial4DSet(PA_Dial4D dialog, const char* name, long value) {
    PA_Dial4DSetLong(dialog, Widen(name).units, (int)value);
}

void PA_Dial4DSet(PA_Dial4D dialog, const char* name, int value) { PA_Dial4DSetLong(dialog, Widen(name).units, value); }

void PA_Dial4DSet(PA_Dial4D dialog, const char* name, bool value) {
    PA_Variable truth = PA_CreateVariable(eVK_Boolean);
    PA_SetBooleanVariable(&truth, value);
    PA_Dial4DSet(dialog, Widen(name).units, &truth);
}

void PA_Dial4DSet(PA_Dial4D dialog, const char* name, double value) {
    PA_Dial4DSetReal(dialog, Widen(name).units, value);
}

void PA_Dial4DSet(PA_Dial4D dialog, const char* name, double value, short decimals) {
    ZR_Text text;
    text.Create();
    text.AddDouble(value, decimals, /*keepZeros*/ true);
    PA_Dial4DSet(dialog, name, &text);
    text.Dispose();
}

void PA_Dial4DSet(PA_Dial4D dialog, const char* name, ZR_Text* value) {
    PA_Dial4DSetText(dialog, Widen(name).units, value == nullptr ? nullptr : value->GetUnistringPtr());
}

void PA_Dial4DSetLocalized(PA_Dial4D dialog, const char* name, const char* key) {
    ZR_Text text;
    text.Create();
    text.GetLocalizedString(key);
    PA_Dial4DSet(dialog, name, &text);
    text.Dispose();
}

void PA_Dial4DSetArrayElement(PA_Dial4D dialog, const char* name, long element, ZR_Text* value) {
    PA_Dial4DSetArrayText(dialog, Widen(name).units, element, value == nullptr ? nullptr : value->GetUnistringPtr());
}

void PA_Dial4DSetArrayElementLocalized(PA_Dial4D dialog, const char* name, long element, const char* key) {
    ZR_Text text;
    text.Create();
    text.GetLocalizedString(key);
    PA_Dial4DSetArrayElement(dialog, name, element, &text);
    text.Dispose();
}

void PA_Dial4DSetEnterable(PA_Dial4D dialog, const char* name, bool enterable) {
    PA_Dial4DSetEnterable(dialog, Widen(name).units, enterable);
}

long PA_Dial4DGetLong(PA_Dial4D dialog, const char* name) { return PA_Dial4DGetLong(dialog, Widen(name).units); }

double PA_Dial4DGetDouble(PA_Dial4D dialog, const char* name) { return PA_Dial4DGetReal(dialog, Widen(name).units); }

void PA_Dial4DGet(PA_Dial4D dialog, const char* name, ZR_Text* target) {
    if (target == nullptr) return;
    PA_Unistring text = PA_Dial4DGetText(dialog, Widen(name).units);
    target->SetUnistring(&text);
    ZR_FreeUnistring(&text);
}
