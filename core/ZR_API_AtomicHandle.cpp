#include "core/ZR_API_AtomicHandle.h"

#include <sys/syscall.h>
#include <unistd.h>

#include "core/ZR_API_BLOBArray.h"
#include "plugin/ZR_API_Bridge.h"

// Threads ----------------------------------------------------------------------------------------------------------

// The system's number in the low half. The system gives numbers of ended threads to new ones, so the high half counts.
static unsigned long NewThreadID() {
    static std::atomic<unsigned long> threads{0};
    return (++threads << 32) | static_cast<unsigned int>(syscall(SYS_gettid));
}

unsigned long ZR_GetCurrentThreadID() {
    static thread_local unsigned long id = 0;  // 0 = not yet known
    if (id == 0) id = NewThreadID();
    return id;
}

// Life -------------------------------------------------------------------------------------------------------------

void ZR_AtomicHandle::Create() {
    handle.Create(sizeof(ZR_AtomicHandleEntry), 0);
    lock = 0;
    nextReference = 1;
    anyThread = false;
}

void ZR_AtomicHandle::CreateAnyThread(long elementSize, long count) {
    handle.Create(elementSize, count);
    lock = 0;
    nextReference = 1;
    anyThread = true;
}

void ZR_AtomicHandle::Dispose() {
    Lock();
    handle.Dispose();
    Unlock();
}

ZR_Handle ZR_AtomicHandle::Create_ZR_Handle_Copy() {
    ZR_Handle copy;
    Lock();
    copy.Create(&handle);
    Unlock();
    return copy;
}

// Pointer table ----------------------------------------------------------------------------------------------------

static ZR_AtomicHandleEntry* Entry(ZR_AtomicHandle* table, long index) {  // [1..count]
    return reinterpret_cast<ZR_AtomicHandleEntry*>(table->handle.GetMemPtr(index));
}

// The first entry with the pointer; 0 = none. The lock is held.
static long FindPointer(ZR_AtomicHandle* table, const void* pointer) {
    for (long i = 1; i <= table->handle.count; ++i)
        if (Entry(table, i)->pointer == pointer) return i;
    return 0;
}

long ZR_AtomicHandle::Append(void* pointer) {
    if (anyThread || handle.elementSize != sizeof(ZR_AtomicHandleEntry)) return 0;  // or never created
    long reference = 0;
    Lock();
    if (char* entry = handle.AppendGetPtr()) {
        reference = nextReference++;
        ZR_AtomicHandleEntry filled = {ZR_GetCurrentThreadID(), pointer, reference};
        memcpy(entry, &filled, sizeof filled);
    }
    Unlock();
    return reference;
}

void* ZR_AtomicHandle::GetByReference(long reference) {
    if (anyThread) return nullptr;
    unsigned long thread = ZR_GetCurrentThreadID();
    void* pointer = nullptr;
    Lock();
    for (long i = 1; i <= handle.count; ++i) {
        if (Entry(this, i)->reference != reference) continue;
        if (Entry(this, i)->threadID == thread) pointer = Entry(this, i)->pointer;
        break;  // the first entry decides
    }
    Unlock();
    return pointer;
}

long ZR_AtomicHandle::GetByPtr(void* pointer) {
    if (anyThread) return 0;
    unsigned long thread = ZR_GetCurrentThreadID();
    long reference = 0;
    Lock();
    long index = FindPointer(this, pointer);
    if (index > 0 && Entry(this, index)->threadID == thread) reference = Entry(this, index)->reference;
    Unlock();
    return reference;
}

void ZR_AtomicHandle::DeleteByPtr(void* pointer) {
    if (anyThread) return;
    unsigned long thread = ZR_GetCurrentThreadID();
    Lock();
    long index = FindPointer(this, pointer);
    if (index > 0 && Entry(this, index)->threadID == thread) handle.DeleteElement(index);
    Unlock();
}

void ZR_AtomicHandle::To4DArrays(PA_Variable* references, PA_Variable* threads) {
    // The host is called on a copy: the lock is held for no longer than the copying takes.
    ZR_Handle entries;
    if (anyThread) entries.Create(sizeof(ZR_AtomicHandleEntry), 0);
    else entries = Create_ZR_Handle_Copy();
    PA_ResizeArray(references, entries.count);
    PA_ResizeArray(threads, entries.count);
    for (long i = 1; i <= entries.count; ++i) {
        auto entry = reinterpret_cast<ZR_AtomicHandleEntry*>(entries.GetMemPtr(i));
        ZR_SetNumInArray(references, i, static_cast<double>(entry->reference));
        ZR_SetNumInArray(threads, i, static_cast<double>(entry->threadID));
    }
    entries.Dispose();
}
