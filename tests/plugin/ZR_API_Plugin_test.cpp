#include "plugin/ZR_API_Plugin.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <cstring>
#include <thread>
#include <vector>

#include "core/ZR_API_AtomicHandle.h"
#include "plugin/ZR_API_Bridge.h"
#include "tests/plugin/FakeHost.h"

namespace {

void SomeCall4D(int, EngineBlock*) {}

// The 32 bytes of a start-up record, written out by offset as a host lays them down.
struct StartupBytes {
    unsigned char bytes[32];

    explicit StartupBytes(uint16_t version = 0x1760, ZR_Call4D call = SomeCall4D) {
        memset(bytes, 0xEE, sizeof bytes);
        memcpy(bytes, &version, 2);
        memcpy(bytes + 24, &call, 8);
    }
    uint32_t interfaceVersion() const {
        uint32_t version;
        memcpy(&version, bytes + 20, 4);
        return version;
    }
};

class Plugin : public testing::Test {
  protected:
    void SetUp() override { Reset(); }
    void TearDown() override { Reset(); }
    static void Reset() {
        DeinitPlugin();
        gCall4D = nullptr;
        Current4DVersion = 0;
    }
};

constexpr int kUnknownSelectors[] = {0, 15, 30, 31, 1000, -3, -199, -201, INT_MIN, INT_MAX};

}  // namespace

TEST_F(Plugin, Start_WithRecord_CapturesHostAndCreatesInstance) {
    StartupBytes record;
    FourDPackex(-1, &record, nullptr, nullptr);
    EXPECT_EQ(gCall4D, SomeCall4D);
    EXPECT_EQ(Current4DVersion, 0x1760u);
    EXPECT_EQ(record.interfaceVersion(), 5120u);
    ASSERT_NE(ZR_PackHandle_Get(), nullptr);
    EXPECT_EQ(ZR_PackHandle_Get(), pack);
    EXPECT_TRUE(pack->anyThread);
    EXPECT_EQ(pack->handle.count, 1);
    EXPECT_EQ(pack->lock.load(), 0);
}

TEST_F(Plugin, Start_WithRecord_WritesOnlyTheInterfaceVersion) {
    StartupBytes record;
    FourDPackex(-1, &record, nullptr, nullptr);
    for (int i = 2; i < 20; i++) EXPECT_EQ(record.bytes[i], 0xEE) << i;
    const unsigned char version[] = {0x00, 0x14, 0x00, 0x00};
    EXPECT_EQ(memcmp(record.bytes + 20, version, 4), 0);
}

TEST_F(Plugin, Start_WithHighVersion_WidensWithoutSign) {
    StartupBytes record(0xFFFE);
    FourDPackex(-1, &record, nullptr, nullptr);
    EXPECT_EQ(Current4DVersion, 0xFFFEu);
}

TEST_F(Plugin, Capture_WithRecord_CreatesNoInstance) {
    StartupBytes record;
    FourDPackex(-200, &record, nullptr, nullptr);
    EXPECT_EQ(gCall4D, SomeCall4D);
    EXPECT_EQ(Current4DVersion, 0x1760u);
    EXPECT_EQ(record.interfaceVersion(), 5120u);
    EXPECT_EQ(ZR_PackHandle_Get(), nullptr);
}

TEST_F(Plugin, StartAndCapture_WithoutRecord_LeaveTheHostAlone) {
    FourDPackex(-200, nullptr, nullptr, nullptr);
    FourDPackex(-1, nullptr, nullptr, nullptr);
    EXPECT_EQ(gCall4D, nullptr);
    EXPECT_NE(ZR_PackHandle_Get(), nullptr);
}

TEST_F(Plugin, Stop_AfterStart_ClearsInstanceAndKeepsCall) {
    StartupBytes record;
    FourDPackex(-1, &record, nullptr, nullptr);
    FourDPackex(-2, nullptr, nullptr, nullptr);
    EXPECT_EQ(ZR_PackHandle_Get(), nullptr);
    EXPECT_EQ(gCall4D, SomeCall4D);
}

TEST_F(Plugin, Stop_Twice_IsHarmless) {
    StartupBytes record;
    FourDPackex(-1, &record, nullptr, nullptr);
    FourDPackex(-2, nullptr, nullptr, nullptr);
    FourDPackex(-2, nullptr, nullptr, nullptr);
    EXPECT_EQ(ZR_PackHandle_Get(), nullptr);
}

TEST_F(Plugin, Start_Twice_LosesNoRecord) {  // the leak check of the sanitized build looks on
    StartupBytes record;
    FourDPackex(-1, &record, nullptr, nullptr);
    FourDPackex(-1, &record, nullptr, nullptr);
    EXPECT_NE(ZR_PackHandle_Get(), nullptr);
}

TEST_F(Plugin, InitPlugin_WithoutEntry_DoesAsStartAndStop) {
    InitPlugin();
    ASSERT_NE(ZR_PackHandle_Get(), nullptr);
    EXPECT_EQ(gCall4D, nullptr);
    DeinitPlugin();
    EXPECT_EQ(ZR_PackHandle_Get(), nullptr);
    DeinitPlugin();
}

TEST_F(Plugin, UnknownSelector_WithPresetResult_LeavesIt) {
    for (int selector : kUnknownSelectors) {
        uint64_t result = ~0ull, parameter = ~0ull;
        void* parameters[] = {&parameter};
        FourDPackex(selector, parameters, nullptr, &result);
        EXPECT_EQ(result, ~0ull) << selector;
        EXPECT_EQ(parameter, ~0ull) << selector;
        EXPECT_EQ(ZR_PackHandle_Get(), nullptr) << selector;
    }
}

TEST_F(Plugin, PackHandleCreate_OfAnySize_AnswersTheRecord) {
    for (long size : {1L, 8L, 1000L}) {
        EXPECT_EQ(ZR_PackHandle_Create(size), pack) << size;
        EXPECT_EQ(pack->handle.elementSize, size);
    }
    ZR_PackHandle_Dispose();
    ZR_PackHandle_Dispose();
    EXPECT_EQ(pack, nullptr);
}

// Area list --------------------------------------------------------------------------------------------------------

TEST_F(Plugin, AreaList_AddFindRemove_KeepsReferences) {
    ZR_Packhandle_Init();
    int first = 1, second = 2, third = 3;
    EXPECT_EQ(ZR_Packhandle_Manager(&first, true), 1);
    EXPECT_EQ(ZR_Packhandle_Manager(&second, true), 2);
    EXPECT_EQ(ZR_GetAreaPtrByReference(1), &first);
    EXPECT_EQ(ZR_GetAreaReferenceByPtr(&second), 2);
    EXPECT_TRUE(ZR_IsAreaValidByReference(2));
    EXPECT_EQ(ZR_Packhandle_Manager(&first, false), 0);
    EXPECT_FALSE(ZR_IsAreaValidByReference(1));  // though the area lives on
    EXPECT_EQ(ZR_Packhandle_Manager(&third, true), 3);
    ZR_DeletePackHandleByPtr(&second);
    EXPECT_EQ(ZR_GetAreaPtrByReference(2), nullptr);
    EXPECT_EQ(ZR_GetAreaReferenceByPtr(&second), 0);
}

TEST_F(Plugin, AreaList_RemoveUnknown_ChangesNothing) {
    ZR_Packhandle_Init();
    int known = 1, unknown = 2;
    ZR_Packhandle_Manager(&known, true);
    EXPECT_EQ(ZR_Packhandle_Manager(&unknown, false), 0);
    ZR_DeletePackHandleByPtr(&unknown);
    EXPECT_EQ(ZR_GetAreaPtrByReference(1), &known);
    EXPECT_EQ(ZR_GetAreaPtrByReference(0), nullptr);
    EXPECT_EQ(ZR_GetAreaPtrByReference(-1), nullptr);
    EXPECT_EQ(ZR_GetAreaPtrByReference(2), nullptr);
}

TEST_F(Plugin, AreaList_OnAnotherThread_KnowsNothing) {
    ZR_Packhandle_Init();
    int area = 1;
    long reference = ZR_Packhandle_Manager(&area, true);
    bool valid = true;
    std::thread([&] { valid = ZR_IsAreaValidByReference(reference); }).join();
    EXPECT_FALSE(valid);
    EXPECT_TRUE(ZR_IsAreaValidByReference(reference));
}

TEST_F(Plugin, AreaList_AfterStop_IsEmpty) {
    ZR_Packhandle_Init();
    int area = 1;
    ZR_Packhandle_Manager(&area, true);
    FourDPackex(-2, nullptr, nullptr, nullptr);
    EXPECT_FALSE(ZR_IsAreaValidByReference(1));
}

TEST_F(Plugin, IsAreaValid4D_ByParameter_WritesOneOrZero) {
    ZR_Packhandle_Init();
    int area = 1;
    ZR_Packhandle_Manager(&area, true);
    static const struct {
        int32_t reference;
        int64_t answer;
    } rows[] = {{1, 1}, {2, 0}, {0, 0}, {-1, 0}};
    for (const auto& row : rows) {
        struct {
            int32_t reference, behind;
        } parameter = {row.reference, -1};  // only 32 bits belong to the number
        int64_t result = -1;
        void* parameters[] = {&parameter};
        PluginBlock block = {parameters, &result, nullptr};
        ZR_IsAreaValid_4D(&block);
        EXPECT_EQ(result, row.answer) << row.reference;
        EXPECT_EQ(ZR_GetAreaPtrFromParameter(&block), row.answer == 1 ? &area : nullptr);
    }
}

TEST_F(Plugin, AreaCommands_WithoutParameters_AnswerNothing) {
    ZR_Packhandle_Init();
    PluginBlock block = {nullptr, nullptr, nullptr};
    ZR_IsAreaValid_4D(&block);
    ZR_GetAreaList_4D(&block);
    EXPECT_EQ(ZR_GetAreaPtrFromParameter(&block), nullptr);
    EXPECT_EQ(ZR_GetAreaPtrFromParameter(nullptr), nullptr);
}

TEST_F(Plugin, GetAreaList4D_OfTwoAreas_FillsBothArrays) {
    FakeHost host;
    ZR_Packhandle_Init();
    int first = 1, second = 2;
    ZR_Packhandle_Manager(&first, true);
    ZR_Packhandle_Manager(&second, true);
    PA_Variable references = PA_CreateVariable(eVK_ArrayLongint), threads = PA_CreateVariable(eVK_ArrayReal);
    void* parameters[] = {&references, &threads};
    PluginBlock block = {parameters, nullptr, nullptr};
    ZR_GetAreaList_4D(&block);
    ASSERT_EQ(PA_GetArrayNbElements(&references), 2);
    ASSERT_EQ(PA_GetArrayNbElements(&threads), 2);
    EXPECT_EQ(PA_GetLongintInArray(&references, 1), 1);
    EXPECT_EQ(PA_GetLongintInArray(&references, 2), 2);
    EXPECT_EQ(PA_GetRealInArray(&threads, 1), (double)ZR_GetCurrentThreadID());
    EXPECT_EQ(PA_GetRealInArray(&threads, 2), (double)ZR_GetCurrentThreadID());
    PA_ClearVariable(&references);
    PA_ClearVariable(&threads);
    EXPECT_EQ(host.liveHandles(), 0u);
}

// The module as a host loads it ------------------------------------------------------------------------------------

namespace {

using Entry = void (*)(int selector, void* params, void** data, void* result);

struct Module {
    void* object = dlopen(ZR_BINARY_DIR "/lib/libzr.so", RTLD_NOW | RTLD_LOCAL);
    Entry entry = object == nullptr ? nullptr : (Entry)dlsym(object, "FourDPackex");
    ~Module() {
        if (object != nullptr) dlclose(object);
    }
};

void CallEveryCommand(Entry entry) {
    uint64_t places[8], result;
    void* parameters[8];
    for (int i = 0; i < 8; i++) parameters[i] = &places[i];
    for (int selector = 1; selector <= 29; selector++) {
        if (selector == 15) continue;
        result = ~0ull;
        memset(places, -1, sizeof places);
        entry(selector, parameters, nullptr, &result);
        bool silent = selector == 21 || selector == 22 || selector == 27;
        EXPECT_EQ(result, silent ? ~0ull : 0) << selector;
    }
    for (int selector : kUnknownSelectors) {
        result = ~0ull;
        entry(selector, parameters, nullptr, &result);
        EXPECT_EQ(result, ~0ull) << selector;
    }
}

}  // namespace

TEST_F(Plugin, Module_LoadedByName_RunsFromStartToStop) {
    Module module;
    ASSERT_NE(module.entry, nullptr) << dlerror();
    StartupBytes capture(0x1800), start(0x1800);
    module.entry(-200, &capture, nullptr, nullptr);
    EXPECT_EQ(capture.interfaceVersion(), 5120u);
    module.entry(-1, &start, nullptr, nullptr);
    EXPECT_EQ(start.interfaceVersion(), 5120u);
    CallEveryCommand(module.entry);
    module.entry(-2, nullptr, nullptr, nullptr);
    CallEveryCommand(module.entry);  // a stopped module still answers empty
    module.entry(-2, nullptr, nullptr, nullptr);
}

TEST_F(Plugin, Module_EnteredBySeveralThreads_AnswersEach) {
    Module module;
    ASSERT_NE(module.entry, nullptr) << dlerror();
    StartupBytes start;
    module.entry(-1, &start, nullptr, nullptr);
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; i++)
        threads.emplace_back([&] {
            for (int round = 0; round < 50; round++) CallEveryCommand(module.entry);
        });
    for (std::thread& thread : threads) thread.join();
    module.entry(-2, nullptr, nullptr, nullptr);
    EXPECT_EQ(ZR_PackHandle_Get(), nullptr);
}

TEST_F(Plugin, AreaList_UsedBySeveralThreads_GivesEachItsOwnReferences) {
    ZR_Packhandle_Init();
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; i++)
        threads.emplace_back([] {
            std::vector<int> areas(50);
            std::vector<long> references;
            for (int& area : areas) references.push_back(ZR_Packhandle_Manager(&area, true));
            for (size_t k = 0; k < areas.size(); k++) EXPECT_EQ(ZR_GetAreaPtrByReference(references[k]), &areas[k]);
            for (int& area : areas) ZR_Packhandle_Manager(&area, false);
            for (long reference : references) EXPECT_FALSE(ZR_IsAreaValidByReference(reference));
        });
    for (std::thread& thread : threads) thread.join();
    int area = 1;
    EXPECT_EQ(ZR_Packhandle_Manager(&area, true), 201);
}
