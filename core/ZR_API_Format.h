// A host variable as text, by the host's format services.
#ifndef ZR_API_FORMAT_H
#define ZR_API_FORMAT_H

#include "core/ZR_API_Text.h"

// Appends the formatted value. format: of numbers and booleans, null = empty; formatNumber: of dates and times.
// skipEmptyDates: a date with a part of 0 adds nothing. Other kinds than real, longint, integer, date, time, boolean
// and text add nothing. Required: a boolean replaces what the result held.
void ZR_Format(PA_Variable* value, ZR_Text* format, long formatNumber, ZR_Text* result, bool skipEmptyDates);

#endif
