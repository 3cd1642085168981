// A lock of one byte for the few steps of an access.
#ifndef ZRHOST_SPINLOCK_H
#define ZRHOST_SPINLOCK_H

#include <sched.h>

#include <atomic>

namespace zrhost {

class SpinLock {
  public:
    void lock() {
        for (int turn = 0; flag_.exchange(true, std::memory_order_acquire); ++turn)
            if (turn > 64) sched_yield();  // the holder may not be running
    }
    void unlock() { flag_.store(false, std::memory_order_release); }

  private:
    std::atomic<bool> flag_{false};
};

}  // namespace zrhost

#endif
