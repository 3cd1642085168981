#include "core/ZR_API_Handle.h"

#include <malloc.h>

#include <algorithm>
#include <cstdlib>

#include "core/ZR_API_Memory_Private.h"
#include "core/ZR_API_Text.h"
#include "platform/CoreFoundation/CoreFoundation.h"

std::atomic<long> ZR_MEMORY_HANDLES{0};
std::atomic<long> ZR_MEMORY_BYTES{0};

void ZR_GetMemoryInfo(long* handles, long* bytes) {
    if (handles) *handles = ZR_MEMORY_HANDLES;
    if (bytes) *bytes = ZR_MEMORY_BYTES;
}

// Blocks -----------------------------------------------------------------------------------------------------------

#if defined(__SANITIZE_ADDRESS__)
#define ZR_WATCHED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define ZR_WATCHED 1
#endif
#endif
#ifdef ZR_WATCHED
static constexpr long kExactBelow = 1L << 16;  // bytes; no spare room, so that the sanitizer sees every overrun
#else
static constexpr long kExactBelow = 0;
#endif
static constexpr long kSmallBlock = 512;  // bytes; up to here a block grows to what is asked for

char* ZR_AllocateBlock(long bytes) {
    if (bytes < 1 || bytes > kLargestBlock) return nullptr;
    return static_cast<char*>(malloc(static_cast<size_t>(bytes)));
}

char* ZR_GrowBlock(char* block, long bytes) {
    if (!block) return ZR_AllocateBlock(bytes);
    if (bytes < 1 || bytes > kLargestBlock) return nullptr;
    if (bytes < kExactBelow) return static_cast<char*>(realloc(block, static_cast<size_t>(bytes)));
    long room = static_cast<long>(malloc_usable_size(block));
    if (bytes <= room) return block;
    long wanted = room < kSmallBlock ? bytes : std::max(bytes, room + room / 2);
    char* grown = static_cast<char*>(realloc(block, static_cast<size_t>(wanted)));
    if (!grown && wanted > bytes) grown = static_cast<char*>(realloc(block, static_cast<size_t>(bytes)));
    return grown;
}

void ZR_FreeBlock(void* block) { free(block); }

static bool LiesWithin(const void* pointer, const ZR_Handle* handle) {
    auto at = reinterpret_cast<uintptr_t>(pointer);
    auto begin = reinterpret_cast<uintptr_t>(handle->data);
    return handle->data && at >= begin && at < begin + static_cast<uintptr_t>(handle->allocatedBytes);
}

// Life -------------------------------------------------------------------------------------------------------------

static void Empty(ZR_Handle* handle, long elementSize) {
    handle->count = 0;
    handle->data = nullptr;
    handle->capacity = 0;
    handle->elementSize = elementSize;
    handle->allocatedBytes = 0;
    handle->growStep = 0;
}

static bool Allocate(ZR_Handle* handle, long bytes) {
    handle->data = ZR_AllocateBlock(bytes);
    if (!handle->data) return false;
    handle->allocatedBytes = bytes;
    ZR_MEMORY_HANDLES.fetch_add(1, std::memory_order_relaxed);
    ZR_MEMORY_BYTES.fetch_add(bytes, std::memory_order_relaxed);
    return true;
}

void ZR_Handle::Create(long elementBytes, long n) {
    Empty(this, elementBytes);
    if (n <= 0) return;
    long elements, bytes;
    // Elements without a size need no storage; a refused block leaves the handle empty.
    if (elementBytes > 0 && !(ZR_BlockSize(n, 0, elementBytes, &elements, &bytes) && Allocate(this, bytes))) return;
    count = capacity = n;
}

void ZR_Handle::Create(const ZR_Handle* source) {
    Empty(this, source ? source->elementSize : 1);
    if (!source) return;
    growStep = source->growStep;
    if (source->data && source->allocatedBytes > 0) {
        if (!Allocate(this, source->allocatedBytes)) return;
        memcpy(data, source->data, static_cast<size_t>(source->allocatedBytes));
    }
    count = capacity = source->count;
}

void ZR_Handle::CreateAndOwn(ZR_Handle* source) {
    if (source == this) return;  // guard: it owns its storage already
    *this = *source;
    capacity = source->count;
    source->count = source->capacity = source->allocatedBytes = 0;
    source->data = nullptr;
}

void ZR_Handle::Create(const __CFData* source) {
    Empty(this, 1);
    if (source) AddCharBuffer(reinterpret_cast<const char*>(CFDataGetBytePtr(source)), CFDataGetLength(source));
}

const __CFData* ZR_Handle::CreateCFData() {
    if (count <= 0 || !data) return nullptr;
    return CFDataCreate(kCFAllocatorDefault, reinterpret_cast<const UInt8*>(data), count);
}

void ZR_Handle::Dispose() {
    if (data) {
        ZR_FreeBlock(data);
        ZR_MEMORY_BYTES.fetch_sub(allocatedBytes, std::memory_order_relaxed);
        ZR_MEMORY_HANDLES.fetch_sub(1, std::memory_order_relaxed);
        data = nullptr;
    }
    count = capacity = allocatedBytes = 0;
}

// Size and elements ------------------------------------------------------------------------------------------------

bool ZR_Handle::Grow(long needed) {
    if (needed <= capacity && (data || elementSize < 1 || needed <= 0)) return true;
    long elements, bytes;
    long extra = std::max(growStep, 0L);
    if (elementSize < 1) {  // elements without a size: only the numbers move
        if (!ZR_BlockSize(needed, extra, 1, &elements, &bytes)) return false;
        capacity = elements;
        return true;
    }
    if (!ZR_BlockSize(needed, extra, elementSize, &elements, &bytes)) return false;
    char* grown = ZR_GrowBlock(data, bytes);
    if (!grown) return false;
    if (!data) ZR_MEMORY_HANDLES.fetch_add(1, std::memory_order_relaxed);
    ZR_MEMORY_BYTES.fetch_add(bytes - allocatedBytes, std::memory_order_relaxed);
    data = grown;
    allocatedBytes = bytes;
    capacity = elements;
    return true;
}

void ZR_Handle::Resize(long n) {
    n = std::max(n, 0L);  // guard: a negative count would be taken for an offset later
    if (Secure(n)) count = n;
}

char* ZR_Handle::AppendGetPtr() {
    long at = std::max(count, 0L);
    if (!Secure(at + 1)) return nullptr;
    count = at + 1;
    return data ? data + at * elementSize : nullptr;
}

char* ZR_Handle::InsertElement(long position, long n) {
    long needed;
    if (position < 0 || position > count || n < 0 || __builtin_add_overflow(count, n, &needed)) return nullptr;
    if (!Secure(needed)) return nullptr;
    if (!data) {
        count = needed;
        return nullptr;
    }
    char* gap = data + position * elementSize;
    memmove(gap + n * elementSize, gap, static_cast<size_t>((count - position) * elementSize));
    count = needed;
    return gap;
}

void ZR_Handle::DeleteElement(long index) {
    if (index < 1 || index > count) return;
    if (data) {
        char* at = data + (index - 1) * elementSize;
        memmove(at, at + elementSize, static_cast<size_t>((count - index) * elementSize));
    }
    --count;
}

// Appends ----------------------------------------------------------------------------------------------------------

char* ZR_Handle::AppendBytesGrowing(long n) {
    long at = std::max(count, 0L), needed;
    if (n < 0 || elementSize < 1 || __builtin_add_overflow(at, n, &needed) || !Secure(needed)) return nullptr;
    count = needed;
    return data ? data + at : nullptr;
}

void ZR_Handle::AddCharBuffer(const char* bytes, long n) {
    if (n <= 0) {
        count = n < -count ? 0 : count + n;
        return;
    }
    if (!bytes) return;
    bool own = LiesWithin(bytes, this);  // a piece of this handle itself moves with the growth
    long offset = own ? bytes - data : 0;
    char* to = AppendBytes(n);
    if (to) memmove(to, own ? data + offset : bytes, static_cast<size_t>(n));
}

void ZR_Handle::AddText(const ZR_Text* text, bool terminate) {
    if (text && text->data) AddCharBuffer(text->data, std::max(text->count, 0L) * 2);
    if (terminate) AddShort(0);
}

void ZR_Handle::AddTextWithLength(const ZR_Text* text) {
    long n = text && text->data ? std::max(text->count, 0L) : 0;
    AddLong(n);
    char* to = n > 0 ? AppendBytes(n * 2) : nullptr;
    if (!to) return;
    for (long i = 0; i < n; ++i) {
        to[2 * i] = text->data[2 * i + 1];
        to[2 * i + 1] = text->data[2 * i];
    }
}

// Room for n more units at unit index count; null = refused. Elements of 1 byte cannot hold a unit each.
static char* AppendUnits(ZR_Handle* handle, long n) {
    long at = std::max(handle->count, 0L), needed;
    if (handle->elementSize < 2 || __builtin_add_overflow(at, n, &needed) || !handle->Secure(needed)) return nullptr;
    handle->count = needed;
    return handle->data + at * 2;
}

void ZR_Handle::AddUniBuffer(const unsigned short* units, long n) {
    auto bytes = reinterpret_cast<const char*>(units);
    if (n <= 0 || !units || n > kLargestBlock / 2) return;
    if (elementSize == 1) return AddCharBuffer(bytes, n * 2);
    bool own = LiesWithin(bytes, this);
    long offset = own ? bytes - data : 0;
    char* to = AppendUnits(this, n);
    if (to) memmove(to, own ? data + offset : bytes, static_cast<size_t>(n) * 2);
}

void ZR_Handle::AddCharBufferAsUnichar(const unsigned char* bytes, long n) {
    if (n <= 0 || !bytes || n > kLargestBlock / 2) return;
    auto to = reinterpret_cast<unsigned short*>(AppendUnits(this, n));
    if (!to) return;
    for (long i = 0; i < n; ++i) to[i] = bytes[i];
}

// Reads ------------------------------------------------------------------------------------------------------------

void ZR_Handle::ReadTextWithLength(long* cursor, ZR_Text* text) const {
    long n = ReadLong(cursor);
    text->Dispose();
    text->Create();
    // Guard: a length from outside is taken only as far as the units are there.
    n = std::min(n, std::max(count - *cursor, 0L) / 2);
    if (n <= 0 || !Fits(*cursor, n * 2)) return;
    text->SetLength(n);
    if (text->count != n) return;
    const char* from = data + *cursor;
    for (long i = 0; i < n; ++i) {
        text->data[2 * i] = from[2 * i + 1];
        text->data[2 * i + 1] = from[2 * i];
    }
    *cursor += n * 2;
}

// Arrays of 8-byte values ------------------------------------------------------------------------------------------

void ZR_Handle::AddLongToArray(long value) {
    if (elementSize != 8) return;
    if (char* to = AppendGetPtr()) memcpy(to, &value, 8);
}

long ZR_Handle::FindLong(long value) const {
    if (elementSize != 8 || !data) return -1;
    auto values = reinterpret_cast<const long*>(data);
    for (long i = 0; i < count; ++i)
        if (values[i] == value) return i + 1;
    return -1;
}

bool ZR_Handle::DeleteLong(long value) {
    long index = FindLong(value);
    if (index < 1) return false;
    DeleteElement(index);
    return true;
}

// Others -----------------------------------------------------------------------------------------------------------

bool ZR_Handle::Equal(const ZR_Handle* other) const {
    if (!other || count != other->count || elementSize != other->elementSize) return false;
    // Required: a handle without storage equals any other of the same count.
    if (!data || !other->data || count * elementSize <= 0) return true;
    return memcmp(data, other->data, static_cast<size_t>(count * elementSize)) == 0;
}

void ZR_Handle::ToCString(char* out, long size) const {
    if (!out || size < 1) return;
    long n = data ? std::max(std::min(count, size - 1), 0L) : 0;
    if (n > 0) memcpy(out, data, static_cast<size_t>(n));
    out[n] = 0;
}

bool ZR_Handle::BeginsWithString(const char* prefix) const {
    long n = ZR_CStringLength(prefix);
    return n > 0 && n <= count && data && memcmp(data, prefix, static_cast<size_t>(n)) == 0;
}

static CFURLRef CreateFileURL(const ZR_Text* path) {
    CFStringRef string = CFStringCreateWithBytesNoCopy(kCFAllocatorDefault, reinterpret_cast<const UInt8*>(path->data),
                                                       path->data ? path->count * 2 : 0, kCFStringEncodingUnicode,
                                                       /*isExternal*/ false, kCFAllocatorNull);
    if (!string) return nullptr;
    CFURLRef url = CFURLCreateWithFileSystemPath(kCFAllocatorDefault, string, kCFURLPOSIXPathStyle,
                                                 /*isDirectory*/ false);
    CFRelease(string);
    return url;
}

static void WriteWhole(CFWriteStreamRef stream, const UInt8* bytes, long n) {
    if (!CFWriteStreamOpen(stream)) return;
    while (n > 0) {
        long written = CFWriteStreamWrite(stream, bytes, n);
        if (written <= 0) break;
        bytes += written;
        n -= written;
    }
    CFWriteStreamClose(stream);
}

void ZR_Handle::ToFile(const ZR_Text* path) const {
    CFURLRef url = path ? CreateFileURL(path) : nullptr;
    if (!url) return;
    CFWriteStreamRef stream = CFWriteStreamCreateWithFile(kCFAllocatorDefault, url);
    if (stream) {
        WriteWhole(stream, reinterpret_cast<const UInt8*>(data), data ? count * elementSize : 0);
        CFRelease(stream);
    }
    CFRelease(url);
}
