#include "runtime/ZR_API_Guards.h"

#include <pthread.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <cstddef>

#include "core/ZR_API_Handle.h"

static const long kUnknownStack = 256L << 10;  // taken to be left where the system cannot tell
static const long kLargestStack = 256L << 20;  // used at most, however large the stack may be, or without a limit

static char* LowestStackAddress() {
    char* here = static_cast<char*>(__builtin_frame_address(0));
    pthread_attr_t attributes;
    void* lowest = nullptr;
    size_t size = 0;
    if (pthread_getattr_np(pthread_self(), &attributes) != 0) return here - kUnknownStack;
    pthread_attr_getstack(&attributes, &lowest, &size);
    pthread_attr_destroy(&attributes);
    return here - static_cast<char*>(lowest) > kLargestStack ? here - kLargestStack : static_cast<char*>(lowest);
}

long ZR_NativeStackLeft() {
    static thread_local char* lowest = LowestStackAddress();
    return static_cast<char*>(__builtin_frame_address(0)) - lowest;
}

static std::atomic<long> sMemoryLimit = 0;

static long DefaultMemoryLimit() {
    static const long limit = sysconf(_SC_PHYS_PAGES) / 4 * 3 * sysconf(_SC_PAGESIZE);
    return limit;
}

void ZR_SetMemoryLimit(long bytes) { sMemoryLimit = bytes; }

bool ZR_MemoryAllows(long moreBytes) {
    long limit = sMemoryLimit.load(std::memory_order_relaxed);
    if (limit < 1) limit = DefaultMemoryLimit();
    return moreBytes <= limit && ZR_MEMORY_BYTES.load(std::memory_order_relaxed) <= limit - moreBytes;
}

static double Seconds(clockid_t clock) {
    timespec now;
    clock_gettime(clock, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

double ZR_MonotonicSeconds() { return Seconds(CLOCK_MONOTONIC); }

double ZR_CoarseSeconds() { return Seconds(CLOCK_MONOTONIC_COARSE); }
