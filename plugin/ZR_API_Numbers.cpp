#include "plugin/ZR_API_Numbers.h"

#include <chrono>
#include <climits>
#include <cmath>

#include "plugin/ZR_API_Bridge.h"
#include "plugin/ZR_API_Bridge_Private.h"

// Host facts -------------------------------------------------------------------------------------------------------

enum { kProcessProperties = 336, kIsTableNumberValid = 999, kIsFieldNumberValid = 1000 };
static constexpr int kPreemptiveBit = 1 << 1;  // of the last number that the process properties fill

static PA_Variable Longint(long value) {
    PA_Variable variable = PA_CreateVariable(eVK_Longint);
    PA_SetLongintVariable(&variable, (int)value);
    return variable;
}

// Runs a command that answers a Boolean and clears all variables.
static bool AskBoolean(int command, PA_Variable* params, short count) {
    PA_Variable answer = PA_ExecuteCommandByID(command, params, count);
    bool truth = PA_GetBooleanVariable(&answer);
    for (short i = 0; i < count; i++) PA_ClearVariable(&params[i]);
    PA_ClearVariable(&answer);
    return truth;
}

bool ZR_IsTableNoValid(long table) {
    PA_Variable params[1] = {Longint(table)};
    return AskBoolean(kIsTableNumberValid, params, 1);
}

bool ZR_IsFieldNoValid(long table, long field) {
    PA_Variable params[2] = {Longint(table), Longint(field)};
    return AskBoolean(kIsFieldNumberValid, params, 2);
}

bool ZR_IsCurrentProcessPreemptive() {
    PA_Variable params[5] = {Longint(PA_GetCurrentProcessNumber()), PA_CreateVariable(eVK_Text), Longint(0), Longint(0),
                             Longint(0)};
    PA_Variable answer = PA_ExecuteCommandByID(kProcessProperties, params, 5);
    bool preemptive = (PA_GetLongintVariable(&params[4]) & kPreemptiveBit) != 0;
    for (PA_Variable& parameter : params) PA_ClearVariable(&parameter);
    PA_ClearVariable(&answer);
    return preemptive;
}

static PA_Unichar kNameOfOK[] = {'O', 'K', 0};

bool ZR_GetOK() {
    PA_Variable ok = PA_GetVariable(kNameOfOK);
    bool truth = false;
    if (PA_GetLastError() == ZR_ERR_NONE) {
        if (ok.fType == eVK_Real) truth = PA_GetRealVariable(&ok) != 0;
        if (ok.fType == eVK_Longint) truth = PA_GetLongintVariable(&ok) != 0;
    }
    PA_ClearVariable(&ok);
    return truth;
}

long ZR_GetOKVariable() {
    const PA_Unistring expression = {2, kNameOfOK, nullptr};
    PA_Variable ok = PA_ExecuteFunction(&expression);
    long value = ok.fType == eVK_Longint ? PA_GetLongintVariable(&ok) : 0;
    PA_ClearVariable(&ok);
    return value;
}

// Rounding ---------------------------------------------------------------------------------------------------------

// Toward zero. Outside the 64-bit range the language leaves the conversion open: the nearest end, and 0 for NaN.
static long Truncate(double value) {
    if (std::isnan(value)) return 0;
    if (value >= 0x1p63) return LONG_MAX;
    if (value < -0x1p63) return LONG_MIN;
    return (long)value;
}

long ZR_DoubleToLong(double value) {
    long whole = Truncate(value);
    // Required: -2.5 gives -2, since a negative fraction is never half or more.
    return value - (double)whole >= 0.5 && whole < LONG_MAX ? whole + 1 : whole;
}

long ZR_FloatToLong(float value) { return ZR_DoubleToLong(value); }

long ZR_FloatToLongAlwaysRoundUp(float value) {
    long whole = Truncate(value);
    return (double)value - (double)whole > 0 && whole < LONG_MAX ? whole + 1 : whole;
}

long ZR_DoubleToLongManageOverflow(double value) {
    if (value >= 2147483648.0) value -= 4294967296.0;
    if (!(std::fabs(value) < 0x1p63)) return 0;  // no whole number of 64 bits to take 32 of
    return (int32_t)(uint32_t)(unsigned long)Truncate(value);
}

// Numbers ----------------------------------------------------------------------------------------------------------

unsigned long ZR_Potenz(unsigned long base, unsigned long exponent) {
    unsigned long power = 1;
    for (; exponent != 0; exponent >>= 1, base *= base)
        if ((exponent & 1) != 0) power *= base;
    return power;
}

static constexpr int kHexDigits = 8;

void decimal2hex(unsigned long value, char* target) {
    if (target == nullptr) return;
    for (int i = kHexDigits - 1; i >= 0; i--, value >>= 4) target[i] = "0123456789ABCDEF"[value & 15];
}

static unsigned ValueOfHexDigit(char digit) {  // anything else counts as 0
    if (digit >= '0' && digit <= '9') return digit - '0';
    if (digit >= 'A' && digit <= 'F') return digit - 'A' + 10;
    if (digit >= 'a' && digit <= 'f') return digit - 'a' + 10;
    return 0;
}

unsigned long hex2decimal(const char* digits) {
    unsigned long value = 0;
    if (digits != nullptr)
        for (; *digits != 0; digits++) value = value << 4 | ValueOfHexDigit(*digits);
    return value;
}

long ZR_Max(long a, long b) { return a > b ? a : b; }

long ZR_BoolToLong(bool value) { return value ? 1 : 0; }

PA_VariableKind ZR_Convert4DToPluginType(short kind) {
    // Required: 24 stays, unlike in UnifyVarKind.
    return kind == eVK_OldUnicode ? eVK_OldUnicode : (PA_VariableKind)UnifyVarKind(kind);
}

short ZR_ConvertPluginTo4DType(PA_VariableKind kind) {
    if (kind == eVK_Text) return eVK_OldText;
    if (kind == eVK_ArrayText) return eVK_OldArrayText;
    return (short)kind;
}

long ZR_Milliseconds() {
    auto sinceStart = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::milliseconds>(sinceStart).count();
}
