#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "plugin/ZR_API_Bridge.h"
#include "tests/plugin/FakeHost.h"

namespace {

// The language of a host, as far as this file runs commands by number.
struct Commands {
    struct Run {
        int command;
        std::vector<PA_Variable> params;
        std::vector<std::string> texts;  // of text parameters, read while they lived
    };
    std::vector<Run> runs;
    int resultKind = eVK_Object;
    void* reference = nullptr;
    const char* text = "";
    FakeHost& host;

    explicit Commands(FakeHost& fake) : host(fake) {
        host.answer[ZR_SEL_ExecuteCommand] = [this](EngineBlock* block) { Answer(block); };
    }
    void Answer(EngineBlock* block) {
        Run run = {(int)block->fParam3, {}, {}};
        for (int i = 0; i < block->fParam4; i++) {
            const PA_Variable& param = *At<PA_Variable*>(block->fParam1)[i];
            run.params.push_back(param);
            run.texts.push_back(param.fType == eVK_Text ? Narrow(param.uValue.fText) : "");
        }
        runs.push_back(run);
        PA_Variable* result = At<PA_Variable>(block->fParam2);
        result->fType = (uint8_t)resultKind;
        if (resultKind == eVK_Object) result->uValue.fObject = reference;
        if (resultKind == eVK_Text) result->uValue.fText = host.String(text);
    }
};

}  // namespace

TEST(BridgeObjects, CreateObject_ByHostVersion_TakesItsBranch) {
    static const struct {
        uint32_t version;
        int command;  // 0 = none
    } rows[] = {{0, 0},         {0x13FF, 0},    {0x1400, 1218}, {0x1500, 1218},
                {0x162F, 1218}, {0x1630, 1471}, {0x1760, 1471}, {0x1830, 1471}};
    for (const auto& row : rows) {
        FakeHost host;
        Current4DVersion = row.version;
        Commands commands(host);
        int object;
        commands.reference = &object;
        EXPECT_EQ(PA_CreateObject(), row.command == 0 ? nullptr : &object) << row.version;
        ASSERT_EQ(commands.runs.size(), row.command == 0 ? 0u : 1u) << row.version;
        if (row.command == 0) continue;
        const auto& run = commands.runs[0];
        EXPECT_EQ(run.command, row.command) << row.version;
        if (row.command == 1471) {
            EXPECT_TRUE(run.params.empty());
        } else {
            ASSERT_EQ(run.params.size(), 2u);
            EXPECT_EQ(run.params[0].fType, eVK_Text);
            EXPECT_EQ(run.texts[0], "{}");
            EXPECT_EQ(run.params[1].fType, eVK_Longint);
            EXPECT_EQ(+run.params[1].uValue.fLongint, 38);
        }
        EXPECT_EQ(host.liveHandles(), 0u);
        EXPECT_EQ(host.liveStrings, 0);
    }
}

TEST(BridgeObjects, CreateObject_AnsweredByAnotherKind_IsNullAndFreesIt) {
    FakeHost host;
    Commands commands(host);
    commands.resultKind = eVK_Text;
    EXPECT_EQ(PA_CreateObject(), nullptr);
    EXPECT_EQ(host.liveStrings, 0);
}

TEST(BridgeObjects, DuplicateObject_OfAnObject_RunsCommand1225) {
    FakeHost host;
    Commands commands(host);
    int source, copy;
    commands.reference = &copy;
    EXPECT_EQ(PA_DuplicateObject(&source), &copy);
    ASSERT_EQ(commands.runs[0].params.size(), 1u);
    EXPECT_EQ(commands.runs[0].command, 1225);
    EXPECT_EQ(PA_GetObjectVariable(&commands.runs[0].params[0]), &source);
    EXPECT_EQ(host.count(ZR_SEL_ClearVariable), 0);  // the source is the caller's
}

TEST(BridgeObjects, ReferenceCalls_Each_SendTheReference) {
    static const struct {
        void (*call)(void*);
        int selector;
    } rows[] = {{PA_IncrementObjectRef, ZR_SEL_ObjectAddRef},
                {PA_DecrementObjectRef, ZR_SEL_ObjectRelease},
                {PA_DisposeObject, ZR_SEL_ObjectRelease},
                {PA_IncrementCollectionRef, ZR_SEL_CollectionAddRef},
                {PA_DecrementCollectionRef, ZR_SEL_CollectionRelease},
                {PA_DisposeCollection, ZR_SEL_CollectionRelease}};
    for (const auto& row : rows) {
        FakeHost host;
        int reference;
        row.call(&reference);
        ASSERT_EQ(host.calls.size(), 1u);
        EXPECT_EQ(host.last().selector, row.selector);
        EXPECT_EQ(host.last().in.fParam1, (int64_t)(intptr_t)&reference);
        sErrorCode = 5;
        row.call(nullptr);
        EXPECT_EQ(host.calls.size(), 1u);
        EXPECT_EQ(sErrorCode, 0);
    }
}

TEST(BridgeObjects, ObjectProperty_GetSetHas_SendKeyAndValue) {
    FakeHost host;
    int object;
    Wide keyUnits("na\0me", 5);
    PA_Unistring key = keyUnits.record();
    host.answer[ZR_SEL_ObjectGetProperty] = [](EngineBlock* block) {
        PA_Variable* value = At<PA_Variable>(block->fParam3);
        EXPECT_EQ(value->fType, eVK_Undefined);
        EXPECT_EQ(Narrow(*At<PA_Unistring>(block->fParam2)), std::string("na\0me", 5));
        *value = PA_CreateVariable(eVK_Longint);
        PA_SetLongintVariable(value, 4);
    };
    PA_Variable value = PA_GetObjectProperty(&object, &key);
    EXPECT_EQ(PA_GetLongintVariable(&value), 4);
    EXPECT_EQ(host.last().in.fParam1, (int64_t)(intptr_t)&object);

    PA_SetObjectProperty(&object, &key, &value);
    EXPECT_EQ(host.last().selector, ZR_SEL_ObjectSetProperty);
    EXPECT_EQ(host.last().in.fParam1, (int64_t)(intptr_t)&object);
    EXPECT_EQ(host.last().in.fParam2, (int64_t)(intptr_t)&key);
    EXPECT_EQ(host.last().in.fParam3, (int64_t)(intptr_t)&value);

    for (int64_t has : {0, 1}) {
        host.answer[ZR_SEL_ObjectHasProperty] = [&](EngineBlock* block) { block->fParam2 = has; };
        EXPECT_EQ(PA_HasObjectProperty(&object, &key), has == 1);
    }
    // The key's address is in the field of the answer: a host that leaves it must not read as yes.
    host.answer[ZR_SEL_ObjectHasProperty] = [](EngineBlock*) {};
    EXPECT_FALSE(PA_HasObjectProperty(&object, &key));

    size_t calls = host.calls.size();
    EXPECT_EQ(PA_GetObjectProperty(nullptr, &key).fType, eVK_Undefined);
    EXPECT_EQ(PA_GetObjectProperty(&object, nullptr).fType, eVK_Undefined);
    PA_SetObjectProperty(nullptr, &key, &value);
    PA_SetObjectProperty(&object, nullptr, &value);
    PA_SetObjectProperty(&object, &key, nullptr);
    EXPECT_FALSE(PA_HasObjectProperty(nullptr, &key));
    EXPECT_EQ(host.calls.size(), calls);
}

TEST(BridgeObjects, Collections_Each_SendTheirCall) {
    FakeHost host;
    int collection;
    host.answer[ZR_SEL_CollectionCreate] = [&](EngineBlock* block) { block->fParam1 = (int64_t)(intptr_t)&collection; };
    host.answer[ZR_SEL_CollectionLength] = [](EngineBlock* block) { block->fParam2 = 3; };
    host.answer[ZR_SEL_CollectionGetElement] = [](EngineBlock* block) {
        EXPECT_EQ(At<PA_Variable>(block->fParam3)->fType, eVK_Undefined);
        *At<PA_Variable>(block->fParam3) = PA_CreateVariable(eVK_Boolean);
    };
    EXPECT_EQ(PA_CreateCollection(), &collection);
    EXPECT_EQ(PA_GetCollectionLength(&collection), 3);
    EXPECT_EQ(PA_GetCollectionElement(&collection, 2).fType, eVK_Boolean);
    EXPECT_EQ(host.last().in.fParam2, 2);
    PA_Variable value = PA_CreateVariable(eVK_Boolean);
    PA_SetCollectionElement(&collection, 7, &value);
    EXPECT_EQ(host.last().selector, ZR_SEL_CollectionSetElement);
    EXPECT_EQ(host.last().in.fParam1, (int64_t)(intptr_t)&collection);
    EXPECT_EQ(host.last().in.fParam2, 7);
    EXPECT_EQ(host.last().in.fParam3, (int64_t)(intptr_t)&value);

    size_t calls = host.calls.size();
    EXPECT_EQ(PA_GetCollectionLength(nullptr), 0);
    EXPECT_EQ(PA_GetCollectionElement(nullptr, 0).fType, eVK_Undefined);
    EXPECT_EQ(PA_GetCollectionElement(&collection, -1).fType, eVK_Undefined);
    PA_SetCollectionElement(nullptr, 0, &value);
    PA_SetCollectionElement(&collection, -1, &value);
    PA_SetCollectionElement(&collection, 0, nullptr);
    EXPECT_EQ(host.calls.size(), calls);
}

TEST(BridgeObjects, JsonParse_ByKind_ChoosesTheCommand) {
    static const struct {
        int kind, command, params;
    } rows[] = {{0, 1218, 1}, {38, 1218, 2}, {42, 1218, 2}, {9, 1218, 2}, {39, 1219, 2}};
    for (const auto& row : rows) {
        FakeHost host;
        Commands commands(host);
        commands.resultKind = eVK_Boolean;
        Wide json("[1,2]");
        PA_Unistring record = json.record();
        PA_Variable answer = PA_JsonParse(&record, row.kind);
        const auto& run = commands.runs[0];
        EXPECT_EQ(run.command, row.command) << row.kind;
        ASSERT_EQ((int)run.params.size(), row.params) << row.kind;
        EXPECT_EQ(run.texts[0], "[1,2]");
        if (row.command == 1219) {
            EXPECT_EQ(run.params[1].fType, eVK_ArrayObject);
            EXPECT_EQ(answer.fType, eVK_ArrayObject);  // the array that the command filled
        } else {
            EXPECT_EQ(answer.fType, eVK_Boolean);
            if (row.params == 2) { EXPECT_EQ(PA_GetLongintVariable(&run.params[1]), row.kind); }
        }
        PA_ClearVariable(&answer);
        EXPECT_EQ(host.liveHandles(), 0u);
        EXPECT_EQ(Narrow(record), "[1,2]");  // borrowed
    }
}

TEST(BridgeObjects, JsonStringify_ByKind_ChoosesTheCommand) {
    static const struct {
        int kind, command;
    } rows[] = {{38, 1217}, {42, 1217}, {9, 1217}, {33, 1217}, {14, 1228}, {16, 1228}, {34, 1228}, {39, 1228}};
    for (const auto& row : rows) {
        for (bool pretty : {false, true}) {
            FakeHost host;
            Commands commands(host);
            commands.resultKind = eVK_Text;
            commands.text = "{}";
            PA_Variable value = {};
            value.fType = (uint8_t)row.kind;
            PA_Unistring json = PA_JsonStringify(&value, pretty);
            EXPECT_EQ(Narrow(json), "{}");
            const auto& run = commands.runs[0];
            EXPECT_EQ(run.command, row.command) << row.kind;
            ASSERT_EQ(run.params.size(), pretty ? 2u : 1u);
            if (pretty) {
                uint16_t kind;  // both bytes of the kind: 256, with the code behind
                memcpy(&kind, &run.params[1], 2);
                EXPECT_EQ(kind, 256);
                EXPECT_EQ(((const char*)&run.params[1])[2], 3);
            }
            EXPECT_EQ(host.count(ZR_SEL_ClearVariable), 0);  // the value is the caller's
            PA_DisposeUnistring(&json);
        }
    }
}

TEST(BridgeObjects, JsonStringify_WithoutAText_IsEmptyAndKeepsTheError) {
    FakeHost host;
    host.answer[ZR_SEL_ExecuteCommand] = [](EngineBlock* block) { block->fError = 4003; };
    PA_Variable value = PA_CreateVariable(eVK_Object);
    EXPECT_EQ(+PA_JsonStringify(&value, false).fString, nullptr);
    EXPECT_EQ(PA_GetLastError(), 4003);
    EXPECT_EQ(+PA_JsonStringify(nullptr, false).fString, nullptr);
}
