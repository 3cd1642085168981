#include "host/Memory.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <cstring>

#include "host/Pool.h"

namespace zrhost {

namespace {

struct Block {
    char* bytes = nullptr;  // first: *handle is the address of the bytes
    int64_t size = 0;
    int64_t capacity = 0;
    std::atomic<int> locks{0};
    ~Block() { std::free(bytes); }
};

Pool<Block>& Blocks() {
    static Pool<Block>& pool = *new Pool<Block>;  // never ended: handles may outlive every other static
    return pool;
}

Block* Find(PA_Handle handle) { return handle ? Blocks().find(handle) : nullptr; }

}  // namespace

// Handles ----------------------------------------------------------------------------------------------------------

PA_Handle NewHandle(int64_t bytes) {
    if (bytes < 0 || bytes > kLargestHandle) return nullptr;
    int64_t capacity = std::max<int64_t>(bytes, 1);  // the bytes of an empty handle have an address too
    char* memory = static_cast<char*>(std::calloc(1, size_t(capacity)));
    if (!memory) return nullptr;
    Block* block = Blocks().create();
    if (!block) {
        std::free(memory);
        return nullptr;
    }
    block->bytes = memory;
    block->size = bytes;
    block->capacity = capacity;
    return &block->bytes;
}

PA_Handle NewHandle(std::span<const uint8_t> copied) {
    PA_Handle handle = NewHandle(int64_t(copied.size()));
    if (handle && !copied.empty()) std::memcpy(*handle, copied.data(), copied.size());
    return handle;
}

bool DisposeHandle(PA_Handle handle) {
    Block* block = Find(handle);
    return block && Blocks().destroy(block);
}

int64_t HandleSize(PA_Handle handle) {
    Block* block = Find(handle);
    return block ? block->size : -1;
}

bool ResizeHandle(PA_Handle handle, int64_t bytes) {
    Block* block = Find(handle);
    if (!block || bytes < 0 || bytes > kLargestHandle) return false;
    if (bytes > block->capacity || bytes < block->capacity / 4) {
        // A handle that grows again gets room ahead, so that appends stay linear.
        int64_t wanted = std::max<int64_t>(bytes, 1);
        if (bytes > block->capacity && block->capacity > 64) wanted = std::min(bytes + bytes / 4, kLargestHandle);
        char* moved = static_cast<char*>(std::realloc(block->bytes, size_t(wanted)));
        if (!moved) return false;
        block->bytes = moved;
        block->capacity = wanted;
    }
    if (bytes > block->size) std::memset(block->bytes + block->size, 0, size_t(bytes - block->size));
    block->size = bytes;
    return true;
}

char* HandleBytes(PA_Handle handle) {
    Block* block = Find(handle);
    return block ? block->bytes : nullptr;
}

std::span<const uint8_t> HandleSpan(PA_Handle handle) {
    Block* block = Find(handle);
    if (!block) return {};
    return {reinterpret_cast<const uint8_t*>(block->bytes), size_t(block->size)};
}

bool LockHandle(PA_Handle handle) {
    Block* block = Find(handle);
    if (block) block->locks.fetch_add(1, std::memory_order_relaxed);
    return block != nullptr;
}

bool UnlockHandle(PA_Handle handle) {
    Block* block = Find(handle);
    if (!block) return false;
    int locks = block->locks.load(std::memory_order_relaxed);
    while (locks > 0 && !block->locks.compare_exchange_weak(locks, locks - 1)) {}
    return true;
}

int HandleLocks(PA_Handle handle) {
    Block* block = Find(handle);
    return block ? block->locks.load(std::memory_order_relaxed) : -1;
}

bool SetHandleLocks(PA_Handle handle, int64_t count) {
    Block* block = Find(handle);
    if (!block || count < 0 || count > 0x7FFFFFFF) return false;
    block->locks.store(int(count), std::memory_order_relaxed);
    return true;
}

long LiveHandles() { return Blocks().live(); }

// Text records -----------------------------------------------------------------------------------------------------

bool MakeUnistring(PA_Unistring* record, std::u16string_view text) {
    PA_Unistring made = {};
    bool fits = text.size() < size_t(kLargestHandle) / 2;
    if (fits && !text.empty()) {
        auto* units = static_cast<PA_Unichar*>(std::malloc((text.size() + 1) * sizeof(PA_Unichar)));
        if (units) {
            std::memcpy(units, text.data(), text.size() * sizeof(PA_Unichar));
            units[text.size()] = 0;
            made.fString = units;
            made.fLength = int32_t(text.size());
        } else {
            fits = false;
        }
    }
    std::memcpy(record, &made, sizeof made);
    return fits;
}

void FreeUnistring(PA_Unistring* record) {
    std::free(record->fString);
    std::memset(record, 0, sizeof *record);
}

std::u16string_view UnistringText(const PA_Unistring& record) {
    if (!record.fString || record.fLength <= 0) return {};
    return {reinterpret_cast<const char16_t*>(record.fString), size_t(record.fLength)};
}

bool AssignUnistring(PA_Unistring* record, std::u16string_view text) {
    PA_Unistring made;
    bool ok = MakeUnistring(&made, text);
    FreeUnistring(record);
    std::memcpy(record, &made, sizeof made);
    return ok;
}

std::u16string_view BlockText(const PA_Unichar (&buffer)[256]) {
    size_t length = 0;
    while (length < 255 && buffer[length]) ++length;
    return {reinterpret_cast<const char16_t*>(buffer), length};
}

void FillBlockText(PA_Unichar (&buffer)[256], std::u16string_view text) {
    size_t length = std::min<size_t>(text.size(), 255);
    if (length < text.size() && length > 0 && (text[length - 1] & 0xFC00) == 0xD800) --length;
    if (length) std::memcpy(buffer, text.data(), length * sizeof(PA_Unichar));
    buffer[length] = 0;
}

}  // namespace zrhost
