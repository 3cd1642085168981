// The bounds that keep any program from crashing or hanging the process: depth of the native stack, wall time, and the
// size of one value. Each has one home here and one error.
#ifndef ZR_API_GUARDS_H
#define ZR_API_GUARDS_H

inline constexpr long ZR_STACK_RESERVE = 320 * 1024;  // bytes of native stack left to whatever a call runs last
inline constexpr long ZR_MAX_VALUE_BYTES = 4L << 30;  // storage of one text, BLOB or array
inline constexpr long ZR_MAX_TEXT_UNITS = 1L << 30;

long ZR_NativeStackLeft();     // bytes between here and the end of this thread's stack
double ZR_MonotonicSeconds();  // for deadlines

#endif
