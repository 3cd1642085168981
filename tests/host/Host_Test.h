// What the tests of the host share: a host for a test, blocks for its door, records that clear themselves.
#ifndef ZRHOST_HOST_TEST_H
#define ZRHOST_HOST_TEST_H

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "host/Host.h"
#include "host/Memory.h"
#include "host/Objects.h"
#include "host/Pictures.h"
#include "host/Variables.h"

namespace zrhost {

inline void PrintTo(const Value& value, std::ostream* out) {
    *out << "kind " << value.kind() << " " << WriteJson(value);
}

inline EngineBlock Block() {
    EngineBlock block;
    std::memset(&block, 0, sizeof block);
    return block;
}

template <class T>
int64_t Address(T* pointer) {
    return reinterpret_cast<int64_t>(pointer);
}

inline int16_t Call(int selector, EngineBlock* block) {
    Host::Call4D(selector, block);
    return block->fError;
}

inline void SetName(EngineBlock* block, std::u16string_view name) { FillBlockText(block->fName, name); }
inline std::string NameOf(const EngineBlock& block) { return ToUtf8(BlockText(block.fName)); }
inline std::string TextOf(const EngineBlock& block) { return ToUtf8(BlockText(block.fText)); }

inline Variable RecordOf(const Value& value) {
    Variable record;
    WriteRecord(&record.record(), value);
    return record;
}

// Runs a selector with a table of parameters: ExecuteCommand, ExecuteMember.
inline Value Execute(int selector, int command, std::vector<Value> arguments, int16_t* error = nullptr) {
    std::vector<Variable> records;
    for (const Value& argument : arguments) records.push_back(RecordOf(argument));
    std::vector<PA_Variable*> table;
    for (Variable& record : records) table.push_back(&record.record());
    Variable result;
    EngineBlock block = Block();
    block.fParam1 = Address(table.data());
    block.fParam2 = Address(&result.record());
    block.fParam3 = command;
    block.fParam4 = int64_t(table.size());
    int16_t answer = Call(selector, &block);
    if (error) *error = answer;
    return ReadRecord(result.record());
}

inline Value Member(const Value& self, std::u16string_view name, std::vector<Value> arguments = {},
                    int16_t* error = nullptr) {
    arguments.insert(arguments.begin(), {self, Value(name)});
    return Execute(ZR_SEL_ExecuteMember, 0, std::move(arguments), error);
}

inline Value Parsed(std::string_view json) {
    std::optional<Value> value = ReadJsonUtf8(json);
    EXPECT_TRUE(value.has_value()) << json;
    return value.value_or(Value());
}

// A host for the length of a test, and a check that nothing of it is left.
class HostTest : public ::testing::Test {
  protected:
    HostTest() : HostTest(Options{}) {}
    explicit HostTest(Options options) : handles_(LiveHandles()), objects_(LiveObjects()), pictures_(LivePictures()) {
        options.alert = [this](std::u16string_view line) { alerts.push_back(ToUtf8(line)); };
        options.notServed = [this](int id, std::string_view name) {
            notServed.push_back(std::to_string(id) + " " + std::string(name));
        };
        host = Host::Start(std::move(options));
        EXPECT_TRUE(host);
    }
    ~HostTest() override {
        host.reset();
        EXPECT_EQ(LiveHandles(), handles_);
        EXPECT_EQ(LiveObjects(), objects_);
        EXPECT_EQ(LivePictures(), pictures_);
    }
    std::unique_ptr<Host> host;
    std::vector<std::string> alerts, notServed;

  private:
    long handles_, objects_, pictures_;
};

}  // namespace zrhost

#endif
