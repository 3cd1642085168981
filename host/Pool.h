// Slots of one type at addresses that stay: what the host hands out by address lives in such a pool, so that an address
// that comes back can be told from one that is dead or was never given.
//
// Chunks of slots double in size and are never given back; an address is checked against the few chunk bounds and the
// slot's own mark. Free slots hang in several lists, so that threads seldom meet.
#ifndef ZRHOST_POOL_H
#define ZRHOST_POOL_H

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <mutex>
#include <new>
#include <utility>

#include "host/SpinLock.h"

namespace zrhost {

template <class T>
class Pool {
  public:
    // A new T; null = no memory.
    template <class... Arguments>
    T* create(Arguments&&... arguments) {
        Slot* slot = take();
        if (!slot) return nullptr;
        T* made = new (slot->storage) T(std::forward<Arguments>(arguments)...);
        live_.fetch_add(1, std::memory_order_relaxed);
        slot->live.store(kLive, std::memory_order_release);
        return made;
    }
    // Ends it. False = it was not alive (or another thread has just ended it).
    bool destroy(T* object) {
        Slot* slot = slotOf(object);
        uint32_t expected = kLive;
        if (!slot || !slot->live.compare_exchange_strong(expected, kEnding)) return false;
        object->~T();
        live_.fetch_sub(1, std::memory_order_relaxed);
        slot->live.store(0, std::memory_order_release);
        give(slot);
        return true;
    }
    // The object at an address from outside; null = none lives there.
    T* find(const void* address) const {
        Slot* slot = slotOf(address);
        return slot && slot->live.load(std::memory_order_acquire) == kLive ? reinterpret_cast<T*>(slot->storage)
                                                                           : nullptr;
    }
    long live() const { return live_.load(std::memory_order_relaxed); }

  private:
    static constexpr uint32_t kLive = 0x5a48414e, kEnding = 1;
    static constexpr int kChunks = 24, kLists = 8;
    static constexpr size_t kFirstChunk = 256;

    struct Slot {
        alignas(T) alignas(16) unsigned char storage[sizeof(T)];  // first, so that its address is the object's
        std::atomic<uint32_t> live;
        Slot* next;
    };
    struct alignas(64) List {
        SpinLock lock;
        Slot* free = nullptr;
    };

    Slot* slotOf(const void* address) const {
        uintptr_t at = reinterpret_cast<uintptr_t>(address);
        for (int chunk = chunks_.load(std::memory_order_acquire) - 1; chunk >= 0; --chunk) {
            uintptr_t first = reinterpret_cast<uintptr_t>(chunk_[chunk]);
            if (at - first < (kFirstChunk << chunk) * sizeof(Slot))
                return (at - first) % sizeof(Slot) == 0 ? reinterpret_cast<Slot*>(at) : nullptr;
        }
        return nullptr;
    }
    static int listOfThread() {
        static std::atomic<int> threads{0};
        thread_local const int mine = threads.fetch_add(1, std::memory_order_relaxed) % kLists;
        return mine;
    }
    Slot* take() {
        List& list = lists_[listOfThread()];
        std::lock_guard guard(list.lock);
        if (!list.free) list.free = addChunk();
        Slot* slot = list.free;
        if (slot) list.free = slot->next;
        return slot;
    }
    void give(Slot* slot) {
        List& list = lists_[listOfThread()];
        std::lock_guard guard(list.lock);
        slot->next = list.free;
        list.free = slot;
    }
    Slot* addChunk() {  // its slots as a list; null = no memory
        std::lock_guard guard(growing_);
        int index = chunks_.load(std::memory_order_relaxed);
        if (index == kChunks) return nullptr;
        size_t count = kFirstChunk << index;
        void* memory = std::aligned_alloc(alignof(Slot), count * sizeof(Slot));
        if (!memory) return nullptr;
        Slot* slots = static_cast<Slot*>(memory);
        for (size_t i = 0; i < count; ++i) {
            new (&slots[i].live) std::atomic<uint32_t>(0);
            slots[i].next = i + 1 < count ? &slots[i + 1] : nullptr;
        }
        chunk_[index] = slots;
        chunks_.store(index + 1, std::memory_order_release);
        return slots;
    }

    List lists_[kLists];
    std::mutex growing_;
    std::atomic<int> chunks_{0};
    Slot* chunk_[kChunks] = {};
    std::atomic<long> live_{0};
};

}  // namespace zrhost

#endif
