// ZR_AtomicHandle: a ZR_Handle under a spin lock, in one of two modes for life.
// Pointer table: gives each registered object a small reference that can travel through 4D code; only the thread that
// registered an object reaches it. Record store (anyThread): any thread may take a copy; records are written by code
// that holds the lock and uses the handle's members. The lock is not reentrant.
#ifndef ZR_API_ATOMICHANDLE_H
#define ZR_API_ATOMICHANDLE_H

#include <atomic>

#include "core/ZR_API_Handle.h"

struct ZR_AtomicHandleEntry {  // of a pointer table
    unsigned long threadID;    // the owner
    void* pointer;             // borrowed
    long reference;
};
static_assert(sizeof(ZR_AtomicHandleEntry) == 24, "element size of a pointer table");

struct ZR_AtomicHandle {
    ZR_Handle handle;
    std::atomic<unsigned char> lock;  // 0 free, 1 held
    long nextReference;               // starts at 1 and only rises
    bool anyThread;                   // false: pointer table; true: record store

    void Create();                                       // an empty pointer table
    void CreateAnyThread(long elementSize, long count);  // a store of count records, not cleared
    void Dispose();
    long Append(void* pointer);                                      // its new reference; 0 in a store
    void* GetByReference(long reference);                            // null = none, or another thread's
    long GetByPtr(void* pointer);                                    // its reference; 0 = none, or another thread's
    void DeleteByPtr(void* pointer);                                 // another thread's stays
    void To4DArrays(PA_Variable* references, PA_Variable* threads);  // host arrays of numbers; a store empties both
    ZR_Handle Create_ZR_Handle_Copy();                               // handed over
    void Lock() {
        while (lock.exchange(1, std::memory_order_acquire) != 0) __builtin_ia32_pause();
    }
    void Unlock() { lock.exchange(0, std::memory_order_release); }
};

unsigned long ZR_GetCurrentThreadID();  // the same for the life of a thread, never another thread's

#endif
