// The bounds that keep any program from crashing or hanging the process: depth of the native stack, wall time, and the
// size of one value. Each has one home here and one error.
#ifndef ZR_API_GUARDS_H
#define ZR_API_GUARDS_H

inline constexpr long ZR_STACK_RESERVE = 320 * 1024;  // bytes of native stack left to whatever a call runs last
inline constexpr long ZR_MAX_VALUE_BYTES = 4L << 30;  // storage of one text, BLOB or array
inline constexpr long ZR_MAX_TEXT_UNITS = 1L << 30;

// Storage of all handles of the process together. Whoever makes a value larger than ZR_SMALL_BYTES asks first. The
// limit is three quarters of the machine's memory unless it is set.
void ZR_SetMemoryLimit(long bytes);    // below 1 = the default
bool ZR_MemoryAllows(long moreBytes);  // any thread
inline constexpr long ZR_SMALL_BYTES = 1 << 20;

long ZR_NativeStackLeft();     // bytes between here and the end of this thread's stack
double ZR_MonotonicSeconds();  // for deadlines
double ZR_CoarseSeconds();     // the same clock, some milliseconds behind, at a fraction of the cost

#endif
