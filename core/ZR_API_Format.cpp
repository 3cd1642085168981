#include "core/ZR_API_Format.h"

#include "plugin/ZR_API_Bridge.h"

static constexpr long kBufferUnits = 256;
static constexpr int kStringCommand = 10;
static PA_Unichar kNoFormat[] = {0};

static void AddDate(const PA_Variable* value, long formatNumber, PA_Unichar* buffer, bool skipEmpty) {
    short day = 0, month = 0, year = 0;
    PA_GetDateVariable(value, &day, &month, &year);
    if (skipEmpty && (day == 0 || month == 0 || year == 0)) return;
    PA_FormatDate(day, month, year, static_cast<int>(formatNumber), buffer);
}

// "yes;no" is the format of positive and negative numbers; 0 and 1 need it as positive;;zero.
static void FormatBoolean(PA_Variable* value, const ZR_Text* format, ZR_Text* result) {
    ZR_Text pattern;
    pattern.Create(format);
    if (pattern.CountChar(';') == 1) pattern.Replace(";", ";;");
    PA_Variable arguments[] = {PA_CreateVariable(eVK_Longint), pattern.CreateVariable()};
    PA_SetLongintVariable(&arguments[0], PA_GetBooleanVariable(value) ? 1 : 0);
    PA_Variable answer = PA_ExecuteCommandByID(kStringCommand, arguments, 2);
    PA_Unistring text = PA_GetStringVariable(&answer);
    result->SetUnistring(&text);  // Required: whatever stood there
    PA_DisposeUnistring(&text);
    PA_ClearVariable(&answer);
    for (PA_Variable& argument : arguments) PA_ClearVariable(&argument);
    pattern.Dispose();
}

void ZR_Format(PA_Variable* value, ZR_Text* format, long formatNumber, ZR_Text* result, bool skipEmptyDates) {
    PA_Unichar buffer[kBufferUnits] = {0};
    if (!value || !result) return;
    const PA_Unichar* units = format ? format->GetUniCharPtr() : nullptr;
    if (!units) units = kNoFormat;
    switch (UnifyVarKind(value->fType)) {
        case eVK_Date: AddDate(value, formatNumber, buffer, skipEmptyDates); break;
        case eVK_Real: PA_FormatReal(PA_GetRealVariable(value), units, buffer); break;
        case eVK_Integer:
        case eVK_Longint: PA_FormatLongint(PA_GetLongintVariable(value), units, buffer); break;
        case eVK_Time: PA_FormatTime(PA_GetTimeVariable(value), static_cast<int>(formatNumber), buffer); break;
        case eVK_Boolean: return FormatBoolean(value, format, result);
        case eVK_Text: {
            PA_Unistring text = PA_GetStringVariable(value);
            result->AddUnistring(&text);
            PA_DisposeUnistring(&text);
            return;
        }
        default: return;
    }
    result->AddUnichar(buffer);
}
