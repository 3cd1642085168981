#include "plugin/ZR_API_Bridge.h"

#include <algorithm>
#include "plugin/ZR_API_Bridge_Private.h"

// Runs a format call whose other fields are set and copies its text out.
static void CallFormat(int selector, EngineBlock* block, PA_Unichar* buffer) {
    block->fText[0] = 0;
    ZR_CopyName(buffer, ZR_CallHost(selector, block) ? block->fText : nullptr);
}

void PA_FormatReal(double value, const PA_Unichar* format, PA_Unichar* buffer) {
    EngineBlock block;
    block.fReal = value;
    ZR_CopyName(block.fName, format);
    CallFormat(ZR_SEL_FormatReal, &block, buffer);
}

void PA_FormatLongint(long value, const PA_Unichar* format, PA_Unichar* buffer) {
    EngineBlock block;
    block.fParam1 = value;
    ZR_CopyName(block.fName, format);
    CallFormat(ZR_SEL_FormatLongint, &block, buffer);
}

void PA_FormatDate(short day, short month, short year, int format, PA_Unichar* buffer) {
    EngineBlock block;
    block.fParam1 = day;
    block.fParam2 = month;
    block.fParam3 = year;
    block.fParam4 = format;
    CallFormat(ZR_SEL_FormatDate, &block, buffer);
}

void PA_FormatTime(long seconds, int format, PA_Unichar* buffer) {
    EngineBlock block;
    block.fParam1 = seconds;
    block.fParam4 = format;
    CallFormat(ZR_SEL_FormatTime, &block, buffer);
}

void PA_FormatString(const PA_Unichar* text, const PA_Unichar* format, PA_Unichar* buffer) {
    EngineBlock block;
    block.fParam1 = ZR_AddressOf(text);
    block.fLength1 = std::min(PA_GetUnicharsLength(text), kNameUnits);  // cut as every name is
    ZR_CopyName(block.fName, format);
    CallFormat(ZR_SEL_FormatString, &block, buffer);
}

void PA_EvalDate(const PA_Unichar* text, short* day, short* month, short* year) {
    EngineBlock block;
    ZR_CopyName(block.fName, text);
    block.fParam1 = block.fParam2 = block.fParam3 = 0;
    PA_Date date = {0, 0, 0};
    if (ZR_CallHost(ZR_SEL_EvalDate, &block))
        date = {(int16_t)block.fParam1, (int16_t)block.fParam2, (int16_t)block.fParam3};
    ZR_StoreDate(day, month, year, date);
}

int PA_EvalTime(const PA_Unichar* text) {
    EngineBlock block;
    ZR_CopyName(block.fName, text);
    block.fParam1 = 0;
    return ZR_CallHost(ZR_SEL_EvalTime, &block) ? (int)block.fParam1 : 0;
}
