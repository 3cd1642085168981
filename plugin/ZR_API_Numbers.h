// Numbers, and the few facts about the host that the interpreter and the drawing library need from the day they start:
// rounding with settled rules, hexadecimal text, the host's variable OK, and whether a table, a field or the running
// process is of the wanted sort.
//
// Conversions of a value that the result cannot hold end at the nearest end of its range, and NaN gives 0.
#ifndef ZR_API_NUMBERS_H
#define ZR_API_NUMBERS_H

#include "plugin/ZR_HostInterface.h"

// Host facts -------------------------------------------------------------------------------------------------------

bool ZR_IsTableNoValid(long table);              // false = no such table, or the host does not answer
bool ZR_IsFieldNoValid(long table, long field);  // likewise
bool ZR_IsCurrentProcessPreemptive();

bool ZR_GetOK();          // the host's variable OK is a number other than 0
long ZR_GetOKVariable();  // OK as the host evaluates it; 0 unless a longint

// Rounding ---------------------------------------------------------------------------------------------------------

long ZR_FloatToLong(float value);  // half and more goes up; a negative value is only truncated
long ZR_DoubleToLong(double value);
long ZR_FloatToLongAlwaysRoundUp(float value);  // any fraction above 0 goes up
// A number of 32 bits, signed or not, as 32 bits signed. Larger ones keep their low 32 bits, beyond 64 bits 0.
long ZR_DoubleToLongManageOverflow(double value);

// Numbers ----------------------------------------------------------------------------------------------------------

unsigned long ZR_Potenz(unsigned long base, unsigned long exponent);  // modulo 2^64; exponent 0 gives 1
void decimal2hex(unsigned long value, char* target);  // 8 upper-case digits of the low 32 bits, no terminator
unsigned long hex2decimal(const char* digits);        // terminated, upper or lower case; null and empty give 0
long ZR_Max(long a, long b);
long ZR_BoolToLong(bool value);  // 1 or 0

PA_VariableKind ZR_Convert4DToPluginType(short kind);  // 0, 2 give 33; 18, 21 give 34; others stay
short ZR_ConvertPluginTo4DType(PA_VariableKind kind);  // 33 gives 2, 34 gives 18; others stay

long ZR_Milliseconds();  // monotonic, since the system started

#endif
