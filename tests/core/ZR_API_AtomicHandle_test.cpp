#include "core/ZR_API_AtomicHandle.h"

#include <set>
#include <thread>

#include "core/ZR_API_BLOBArray.h"
#include "tests/core/FakeHost.h"

TEST(AtomicHandle, Append_References_RiseAndAreNeverReused) {
    MemoryCheck check;
    int first, second, third;
    ZR_AtomicHandle table;
    table.Create();
    EXPECT_EQ(table.handle.elementSize, 24);
    EXPECT_EQ(table.handle.data, nullptr);
    EXPECT_EQ(table.Append(&first), 1);
    EXPECT_EQ(table.Append(&second), 2);
    table.DeleteByPtr(&first);
    EXPECT_EQ(table.Append(&third), 3);
    EXPECT_EQ(table.GetByReference(1), nullptr);
    EXPECT_EQ(table.GetByReference(2), &second);
    EXPECT_EQ(table.GetByReference(3), &third);
    EXPECT_EQ(table.GetByReference(4), nullptr);
    EXPECT_EQ(table.GetByReference(-1), nullptr);
    EXPECT_EQ(table.GetByPtr(&second), 2);
    EXPECT_EQ(table.GetByPtr(&first), 0);
    table.DeleteByPtr(&first);
    EXPECT_EQ(table.handle.count, 2);
    table.Dispose();
    EXPECT_EQ(table.handle.count, 0);
    EXPECT_EQ(table.GetByReference(2), nullptr);
    table.Dispose();
}

TEST(AtomicHandle, SamePointerTwice_FirstEntryDecides) {
    int object;
    ZR_AtomicHandle table;
    table.Create();
    std::thread([&] { EXPECT_EQ(table.Append(&object), 1); }).join();
    EXPECT_EQ(table.Append(&object), 2);
    EXPECT_EQ(table.GetByPtr(&object), 0);  // the first is another thread's
    table.DeleteByPtr(&object);
    EXPECT_EQ(table.handle.count, 2);
    EXPECT_EQ(table.GetByReference(2), &object);
    EXPECT_EQ(table.GetByReference(1), nullptr);
    table.Dispose();
}

TEST(AtomicHandle, OtherThread_Entries_CountAsNotThere) {
    MemoryCheck check;
    int object;
    ZR_AtomicHandle table;
    table.Create();
    long reference = table.Append(&object);
    std::thread([&] {
        EXPECT_EQ(table.GetByReference(reference), nullptr);
        EXPECT_EQ(table.GetByPtr(&object), 0);
        table.DeleteByPtr(&object);
    }).join();
    EXPECT_EQ(table.GetByReference(reference), &object);
    table.Dispose();
}

TEST(AtomicHandle, AnyThread_PointerMembers_DoNothing) {
    MemoryCheck check;
    int object;
    ZR_AtomicHandle store;
    store.CreateAnyThread(20, 2);
    EXPECT_EQ(store.handle.count, 2);
    EXPECT_EQ(store.handle.allocatedBytes, 40);
    EXPECT_EQ(store.Append(&object), 0);
    EXPECT_EQ(store.GetByReference(1), nullptr);
    EXPECT_EQ(store.GetByPtr(&object), 0);
    store.DeleteByPtr(&object);
    EXPECT_EQ(store.handle.count, 2);
    EXPECT_EQ(store.nextReference, 1);
    store.Lock();
    memset(store.handle.data, 'x', 40);
    store.Unlock();
    std::thread([&] {
        ZR_Handle copy = store.Create_ZR_Handle_Copy();
        EXPECT_EQ(copy.count, 2);
        EXPECT_EQ(copy.elementSize, 20);
        EXPECT_EQ(memcmp(copy.data, store.handle.data, 40), 0);
        copy.Dispose();
    }).join();
    store.Dispose();
}

TEST(AtomicHandle, Create_SetLock_IsCleared) {
    alignas(ZR_AtomicHandle) unsigned char storage[sizeof(ZR_AtomicHandle)];
    memset(storage, 0xAA, sizeof storage);
    auto table = new (storage) ZR_AtomicHandle;
    table->Create();
    EXPECT_EQ(table->Append(storage), 1);
    EXPECT_EQ(table->lock, 0);
    table->Dispose();
    table->CreateAnyThread(1, 1);
    table->Dispose();
    EXPECT_EQ(table->lock, 0);
}

TEST(AtomicHandle, ManyThreads_AppendFindDelete_KeepTheTableWhole) {
    MemoryCheck check;
    constexpr int kThreads = 4, kObjects = 300;
    static char objects[kThreads][kObjects];
    ZR_AtomicHandle table;
    table.Create();
    std::vector<std::thread> threads;
    for (auto& own : objects)
        threads.emplace_back([&table, &own] {
            for (char& object : own) {
                long reference = table.Append(&object);
                EXPECT_EQ(table.GetByReference(reference), &object);
                EXPECT_EQ(table.GetByPtr(&object), reference);
            }
            for (int i = 0; i < kObjects; i += 2) table.DeleteByPtr(&own[i]);
        });
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(table.handle.count, kThreads * kObjects / 2);
    std::set<long> references;
    for (long i = 1; i <= table.handle.count; ++i)
        references.insert(reinterpret_cast<ZR_AtomicHandleEntry*>(table.handle.GetMemPtr(i))->reference);
    EXPECT_EQ(references.size(), static_cast<size_t>(table.handle.count));
    EXPECT_EQ(table.nextReference, kThreads * kObjects + 1);
    table.Dispose();
}

TEST(AtomicHandle, CurrentThreadID_Threads_DifferAndStay) {
    unsigned long own = ZR_GetCurrentThreadID();
    EXPECT_NE(own, 0UL);
    EXPECT_EQ(ZR_GetCurrentThreadID(), own);
    std::set<unsigned long> ids = {own};
    for (int i = 0; i < 20; ++i)  // one after the other, so that the system may give its numbers again
        std::thread([&ids] { ids.insert(ZR_GetCurrentThreadID()); }).join();
    EXPECT_EQ(ids.size(), 21UL);
}

using AtomicHandleHost = fake::Test;

TEST_F(AtomicHandleHost, To4DArrays_TableAndStore_FilledOrEmptied) {
    int first, second;
    ZR_AtomicHandle table, store;
    table.Create();
    store.CreateAnyThread(8, 3);
    table.Append(&first);
    table.Append(&second);
    PA_Variable references = PA_CreateVariable(eVK_ArrayLongint), threads = PA_CreateVariable(eVK_ArrayReal);
    table.To4DArrays(&references, &threads);
    ASSERT_EQ(PA_GetArrayNbElements(&references), 2);
    ASSERT_EQ(PA_GetArrayNbElements(&threads), 2);
    EXPECT_EQ(ZR_GetNumInArray(&references, 1), 1);
    EXPECT_EQ(ZR_GetNumInArray(&references, 2), 2);
    EXPECT_EQ(ZR_GetNumInArray(&threads, 1), static_cast<double>(ZR_GetCurrentThreadID()));
    store.To4DArrays(&references, &threads);
    EXPECT_EQ(PA_GetArrayNbElements(&references), 0);
    EXPECT_EQ(PA_GetArrayNbElements(&threads), 0);
    store.To4DArrays(nullptr, nullptr);
    PA_ClearVariable(&references);
    PA_ClearVariable(&threads);
    table.Dispose();
    store.Dispose();
}
