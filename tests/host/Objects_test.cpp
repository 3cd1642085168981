#include "host/Objects.h"

#include <cmath>
#include <thread>

#include "tests/host/Host_Test.h"

namespace zrhost {
namespace {

class HostObjects : public HostTest {};

EngineBlock OnKey(Object* object, const Variable& key, Variable* record) {
    EngineBlock block = Block();
    block.fParam1 = Address(object);
    block.fParam2 = Address(&key.record().uValue.fText);
    block.fParam3 = record ? Address(&record->record()) : 0;
    return block;
}

TEST_F(HostObjects, Properties_ThroughTheDoor_AreSetReadAndTested) {
    Ref<Object> object = NewObject();
    Variable key = RecordOf(Value(u"name")), record = RecordOf(Value(u"Anna"));
    EngineBlock block = OnKey(object.get(), key, &record);
    EXPECT_EQ(Call(ZR_SEL_ObjectSetProperty, &block), 0);
    Variable read;
    block = OnKey(object.get(), key, &read);
    EXPECT_EQ(Call(ZR_SEL_ObjectGetProperty, &block), 0);
    EXPECT_EQ(ReadRecord(read.record()).text(), u"Anna");
    block = OnKey(object.get(), key, nullptr);
    EXPECT_EQ(Call(ZR_SEL_ObjectHasProperty, &block), 0);
    EXPECT_EQ(block.fParam2, 1);
    Variable other = RecordOf(Value(u"NAME"));  // names are told by case
    block = OnKey(object.get(), other, nullptr);
    EXPECT_EQ(Call(ZR_SEL_ObjectHasProperty, &block), 0);
    EXPECT_EQ(block.fParam2, 0);
}

TEST_F(HostObjects, Properties_AnArray_BecomesACollection) {
    Ref<Object> object = NewObject();
    Variable key = RecordOf(Value(u"list"));
    Variable record = RecordOf(Value::Array(eVK_ArrayText, {Value(u"zero"), Value(u"a"), Value(u"b")}));
    EngineBlock block = OnKey(object.get(), key, &record);
    EXPECT_EQ(Call(ZR_SEL_ObjectSetProperty, &block), 0);
    EXPECT_EQ(WriteJson(Value(object)), R"({"list":["a","b"]})");
}

TEST_F(HostObjects, References_Count_FreeWithTheLast) {
    long before = LiveObjects();
    Object* object = NewObject().detach();
    EngineBlock block = Block();
    block.fParam1 = Address(object);
    EXPECT_EQ(Call(ZR_SEL_ObjectAddRef, &block), 0);
    EXPECT_EQ(Call(ZR_SEL_ObjectRelease, &block), 0);
    EXPECT_EQ(LiveObjects(), before + 1);
    EXPECT_EQ(Call(ZR_SEL_ObjectRelease, &block), 0);
    EXPECT_EQ(LiveObjects(), before);
    EXPECT_EQ(Call(ZR_SEL_ObjectRelease, &block), ZR_ERR_PARAMETER) << "dead";
    EXPECT_EQ(Call(ZR_SEL_ObjectAddRef, &block), ZR_ERR_PARAMETER);
    for (int selector : {ZR_SEL_ObjectGetProperty, ZR_SEL_ObjectSetProperty, ZR_SEL_ObjectHasProperty}) {
        Variable key = RecordOf(Value(u"k")), record;
        EngineBlock bad = OnKey(object, key, &record);
        EXPECT_EQ(Call(selector, &bad), ZR_ERR_PARAMETER) << selector;
    }
}

TEST_F(HostObjects, Collection_ThroughTheDoor_GrowsWithNulls) {
    EngineBlock block = Block();
    ASSERT_EQ(Call(ZR_SEL_CollectionCreate, &block), 0);
    int64_t collection = block.fParam1;
    Variable record = RecordOf(Value(7.0));
    block = Block();
    block.fParam1 = collection;
    block.fParam2 = 2;
    block.fParam3 = Address(&record.record());
    EXPECT_EQ(Call(ZR_SEL_CollectionSetElement, &block), 0);
    EXPECT_EQ(Call(ZR_SEL_CollectionLength, &block), 0);
    EXPECT_EQ(block.fParam2, 3);
    static const struct {
        int64_t index;
        int16_t error;
        int kind;
    } rows[] = {{0, 0, eVK_Null},
                {2, 0, eVK_Real},
                {3, ZR_ERR_PARAMETER, eVK_Undefined},
                {-1, ZR_ERR_PARAMETER, eVK_Undefined},
                {INT64_MAX, ZR_ERR_PARAMETER, eVK_Undefined}};
    for (const auto& row : rows) {
        Variable read;
        block.fParam2 = row.index;
        block.fParam3 = Address(&read.record());
        EXPECT_EQ(Call(ZR_SEL_CollectionGetElement, &block), row.error) << row.index;
        EXPECT_EQ(UnifiedKind(read.record()), row.kind) << row.index;
    }
    for (int64_t absurd : {int64_t(-1), INT64_MAX, INT64_MIN, int64_t(1) << 40}) {
        block.fParam2 = absurd;
        block.fParam3 = Address(&record.record());
        EXPECT_EQ(Call(ZR_SEL_CollectionSetElement, &block), ZR_ERR_PARAMETER) << absurd;
    }
    EXPECT_EQ(Call(ZR_SEL_CollectionAddRef, &block), 0);
    EXPECT_EQ(Call(ZR_SEL_CollectionRelease, &block), 0);
    EXPECT_EQ(Call(ZR_SEL_CollectionRelease, &block), 0);
    EXPECT_EQ(Call(ZR_SEL_CollectionRelease, &block), ZR_ERR_PARAMETER);
}

TEST_F(HostObjects, Object_ManyProperties_KeepTheirOrder) {
    Ref<Object> object = NewObject();
    for (int i = 0; i < 100; ++i) object->set(FromUtf8("p" + std::to_string(i)), Value(double(i)));
    object->set(u"p5", Value(u"five"));
    EXPECT_TRUE(object->remove(u"p0"));
    EXPECT_FALSE(object->remove(u"p0"));
    std::vector<std::u16string> names = object->names();
    ASSERT_EQ(names.size(), 99u);
    for (int i = 1; i < 100; ++i) {
        EXPECT_EQ(ToUtf8(names[size_t(i) - 1]), "p" + std::to_string(i));
        EXPECT_TRUE(object->has(names[size_t(i) - 1]));
    }
    EXPECT_EQ(object->get(u"p5").text(), u"five");
    EXPECT_EQ(object->get(u"p99").number(), 99);
    object->clear();
    EXPECT_EQ(object->size(), 0u);
}

TEST_F(HostObjects, Release_OfADeepChain_DoesNotRecurse) {
    Ref<Object> inner = NewObject();
    for (int i = 0; i < 200000; ++i) {
        Ref<Object> outer = NewObject();
        outer->set(u"next", Value(std::move(inner)));
        inner = std::move(outer);
    }
    EXPECT_GE(LiveObjects(), 200000);
}

TEST_F(HostObjects, Object_FromSeveralThreads_StaysWhole) {
    Ref<Object> shared = NewObject();
    Ref<Collection> list = NewCollection();
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&, t] {
            for (int i = 0; i < 500; ++i) {
                shared->set(u"k" + FromUtf8(std::to_string((i + t) % 30)), Value(NewObject()));
                shared->get(u"k1");
                list->push(Value(double(i)));
                if (i % 50 == 0) WriteJson(Value(shared));
            }
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(shared->size(), 30u);
    EXPECT_EQ(list->size(), 2000u);
}

// JSON -------------------------------------------------------------------------------------------------------------

TEST_F(HostObjects, Json_ReadAndWrite_KeepOrderAndKinds) {
    static const char* const rows[] = {
        "null",
        "true",
        "false",
        "0",
        "-1.5",
        "1e+300",
        R"("text")",
        "[]",
        "{}",
        "[1,[2,[3]],{}]",
        R"({"z":1,"a":{"y":null,"b":[true,false]},"":"empty"})",
        R"("\"\\\n\r\t\b\f\u0001é😀")",
        "0.1",
        "12345678901",
        "[null]",
    };
    for (const char* json : rows) EXPECT_EQ(WriteJson(Parsed(json)), json);
    EXPECT_EQ(WriteJson(Parsed("{\"a\":1,\"a\":2}")), "{\"a\":2}");
    EXPECT_EQ(WriteJson(Parsed("{\"a\":[1,2],\"b\":{}}"), true), "{\n\t\"a\": [\n\t\t1,\n\t\t2\n\t],\n\t\"b\": {}\n}");
}

TEST_F(HostObjects, Json_Values_OfTheLanguage) {
    Ref<Object> object = NewObject();
    object->set(u"date", Value(Date{5, 1, 2024}));
    object->set(u"none", Value(Date{}));
    object->set(u"time", Value::Time(3600));
    object->set(u"blob", Value(Value::Bytes{1, 2, 3}));
    object->set(u"gone", Value());
    object->set(u"nan", Value(std::nan("")));
    object->set(u"inf", Value(HUGE_VAL));
    object->set(u"array", Value::Array(eVK_ArrayReal, {Value(0.0), Value(1.0)}));
    object->set(u"nothing", Value(Ref<Object>()));
    EXPECT_EQ(
        WriteJson(Value(object)),
        R"({"date":"2024-01-05","none":"","time":3600,"blob":"AQID","nan":null,"inf":null,"array":[1],"nothing":null})");
    host->setVariable(u"x", Value(1.0));
    EXPECT_EQ(WriteJson(Execute(ZR_SEL_ExecuteCommand, 304, {Value(u"x")})).substr(0, 1), "\"");
}

TEST_F(HostObjects, Json_Cycle_IsWrittenAsNull) {
    Ref<Object> object = NewObject();
    Ref<Collection> list = NewCollection();
    list->push(Value(object));
    object->set(u"self", Value(object));
    object->set(u"list", Value(list));
    EXPECT_EQ(WriteJson(Value(object)), R"({"self":null,"list":[null]})");
    EXPECT_EQ(WriteJson(DeepCopy(Value(object))), R"({"self":null,"list":[null]})");
    EXPECT_TRUE(DeepEqual(Value(object), Value(object), true));
    EXPECT_FALSE(DeepEqual(Value(object), DeepCopy(Value(object)), true));
    object->clear();
    Ref<Object> twice = NewObject(), leaf = NewObject();  // shared, no cycle
    twice->set(u"a", Value(leaf));
    twice->set(u"b", Value(leaf));
    EXPECT_EQ(WriteJson(Value(twice)), R"({"a":{},"b":{}})");
}

TEST_F(HostObjects, Json_Invalid_IsRefused) {
    static const char* const rows[] = {"",      "{",       "[1,]", "{\"a\"}", "nul", "1 2",  "'a'",
                                       "{a:1}", "\"\\x\"", "\xff", "1e999",   "[1",  "\"abc"};
    for (const char* json : rows) EXPECT_FALSE(ReadJsonUtf8(json).has_value()) << json;
    EXPECT_TRUE(ReadJsonUtf8(std::string(1000, '[') + std::string(1000, ']')).has_value());
    EXPECT_FALSE(ReadJsonUtf8(std::string(1001, '[') + std::string(1001, ']')).has_value());
    EXPECT_FALSE(ReadJsonUtf8(std::string(1000000, '[')).has_value());
}

TEST_F(HostObjects, Json_DeepNesting_IsCutByTheWriter) {
    Ref<Collection> outer = NewCollection();
    for (int i = 0; i < 5000; ++i) {
        Ref<Collection> wrapped = NewCollection();
        wrapped->push(Value(outer));
        outer = wrapped;
    }
    std::string json = WriteJson(Value(outer));
    EXPECT_NE(json.find("null"), json.npos);
    EXPECT_TRUE(ReadJsonUtf8(json).has_value());
    EXPECT_TRUE(DeepCopy(Value(outer)).collection());
}

TEST_F(HostObjects, Base64_ThereAndBack) {
    static const struct {
        const char *bytes, *text;
    } rows[] = {{"", ""}, {"f", "Zg=="}, {"fo", "Zm8="}, {"foo", "Zm9v"}, {"foob", "Zm9vYg=="}, {"fooba", "Zm9vYmE="}};
    for (const auto& row : rows) {
        std::string bytes = row.bytes;
        EXPECT_EQ(WriteBase64({reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size()}), row.text);
        auto read = ReadBase64(row.text);
        ASSERT_TRUE(read);
        EXPECT_EQ(std::string(read->begin(), read->end()), bytes);
    }
    EXPECT_TRUE(ReadBase64("Zm9v\r\nYmE"));
    EXPECT_FALSE(ReadBase64("Z"));
    EXPECT_FALSE(ReadBase64("Zm=9"));
    EXPECT_FALSE(ReadBase64("Zm9*"));
}

TEST_F(HostObjects, CompareValues_MixedKinds_SortByKindFirst) {
    std::vector<Value> order = {Value::Null(),
                                Value(false),
                                Value(true),
                                Value(u"a"),
                                Value(u"B"),
                                Value(-1.0),
                                Value::Longint(3),
                                Value(NewObject()),
                                Value(NewCollection()),
                                Value(Date{1, 1, 2000}),
                                Value(Date{2, 1, 2000}),
                                Value()};
    for (size_t i = 0; i < order.size(); ++i)
        for (size_t j = 0; j < order.size(); ++j)
            EXPECT_EQ(CompareValues(order[i], order[j]), i < j ? -1 : i > j ? 1 : 0) << i << " " << j;
}

// Member functions -------------------------------------------------------------------------------------------------

TEST_F(HostObjects, Members_OfCollections_AnswerAsDocumented) {
    static const struct {
        const char* self;
        const char16_t* name;
        const char* arguments;
        const char *result, *after;
    } rows[] = {
        {"[1,2]", u"push", "[3,4]", "[1,2,3,4]", "[1,2,3,4]"},
        {"[1,2]", u"unshift", "[3,4]", "[3,4,1,2]", "[3,4,1,2]"},
        {"[1,2]", u"pop", "[]", "2", "[1]"},
        {"[]", u"pop", "[]", "null", "[]"},
        {"[1,2]", u"shift", "[]", "1", "[2]"},
        {"[]", u"shift", "[]", "null", "[]"},
        {"[1,2]", u"insert", "[1,\"x\"]", "[1,\"x\",2]", "[1,\"x\",2]"},
        {"[1,2]", u"insert", "[-1,\"x\"]", "[1,\"x\",2]", "[1,\"x\",2]"},
        {"[1]", u"insert", "[3,\"x\"]", "[1,null,null,\"x\"]", "[1,null,null,\"x\"]"},
        {"[1]", u"insert", "[-9,\"x\"]", "[\"x\",1]", "[\"x\",1]"},
        {"[1,2,3]", u"remove", "[1]", "[1,3]", "[1,3]"},
        {"[1,2,3]", u"remove", "[-2,5]", "[1]", "[1]"},
        {"[1,2,3]", u"remove", "[9]", "[1,2,3]", "[1,2,3]"},
        {"[1,2,3]", u"remove", "[0,0]", "[1,2,3]", "[1,2,3]"},
        {"[1,2,3]", u"length", "[]", "3", "[1,2,3]"},
        {"[1,2,3]", u"clear", "[]", "[]", "[]"},
        {"[1,2,3]", u"resize", "[1]", "[1]", "[1]"},
        {"[1]", u"resize", "[3,0]", "[1,0,0]", "[1,0,0]"},
        {"[1]", u"resize", "[2]", "[1,null]", "[1,null]"},
        {"[1,2,3]", u"fill", "[0]", "[0,0,0]", "[0,0,0]"},
        {"[1,2,3]", u"fill", "[0,-1]", "[1,2,0]", "[1,2,0]"},
        {"[1,2,3]", u"fill", "[0,0,1]", "[0,2,3]", "[0,2,3]"},
        {"[\"a\",\"B\",\"\u00c0\"]", u"indexOf", "[\"b\"]", "1", nullptr},
        {"[\"a\",\"B\",\"\u00c0\"]", u"indexOf", "[\"A\",1]", "2", nullptr},
        {"[1,2]", u"indexOf", "[3]", "-1", nullptr},
        {"[1,2,1]", u"indexOf", "[1,-1]", "2", nullptr},
        {"[1,2,1]", u"lastIndexOf", "[1]", "2", nullptr},
        {"[1,2,1]", u"lastIndexOf", "[1,1]", "0", nullptr},
        {"[1,2,1]", u"lastIndexOf", "[1,-2]", "0", nullptr},
        {"[]", u"lastIndexOf", "[1]", "-1", nullptr},
        {"[1,\"x\",null]", u"includes", "[null]", "true", nullptr},
        {"[1,\"x\"]", u"includes", "[2]", "false", nullptr},
        {"[1,\"b\",null,true,\"\"]", u"join", "[\"-\"]", "\"1-b-null-true-\"", nullptr},
        {"[1,\"b\",null,\"\"]", u"join", "[\",\",1]", "\"1,b\"", nullptr},
        {"[1,2]", u"join", "[]", "\"12\"", nullptr},
        {"[1,2,3]", u"reverse", "[]", "[3,2,1]", "[1,2,3]"},
        {"[1,2,3,4]", u"slice", "[1,3]", "[2,3]", "[1,2,3,4]"},
        {"[1,2,3,4]", u"slice", "[-2]", "[3,4]", nullptr},
        {"[1,2]", u"slice", "[5]", "[]", nullptr},
        {"[1,2]", u"slice", "[]", "[1,2]", nullptr},
        {"[1]", u"concat", "[2,[3,4]]", "[1,2,3,4]", "[1]"},
        {"[1]", u"combine", "[[2,3]]", "[1,2,3]", "[1,2,3]"},
        {"[1,4]", u"combine", "[[2,3],1]", "[1,2,3,4]", "[1,2,3,4]"},
        {"[3,1,2]", u"sort", "[]", "[1,2,3]", "[1,2,3]"},
        {"[3,1,2]", u"sort", "[1]", "[3,2,1]", "[3,2,1]"},
        {"[\"b\",3,null,true,\"A\"]", u"orderBy", "[]", "[null,true,\"A\",\"b\",3]", "[\"b\",3,null,true,\"A\"]"},
        {R"([{"n":"b","v":1},{"n":"a","v":1},{"n":"c","v":2}])", u"orderBy", R"(["v desc, n"])",
         R"([{"n":"c","v":2},{"n":"a","v":1},{"n":"b","v":1}])", nullptr},
        {R"([{"a":{"b":2}},{"a":{"b":1}}])", u"orderBy", R"([[{"propertyPath":"a.b"}]])",
         R"([{"a":{"b":1}},{"a":{"b":2}}])", nullptr},
        {R"([{"a":1},{"a":2}])", u"orderBy", R"([[{"propertyPath":"a","descending":true}]])", R"([{"a":2},{"a":1}])",
         nullptr},
        {"[\"b\",\"A\",\"a\",null,2,2]", u"distinct", "[]", "[\"A\",\"b\",2]", nullptr},
        {"[\"b\",\"A\",\"a\"]", u"distinct", "[8]", "[\"a\",\"A\",\"b\"]", nullptr},
        {R"([{"k":2},{"k":1},{"k":2},{}])", u"distinct", "[\"k\"]", "[1,2]", nullptr},
        {R"([{"a":1,"b":{"c":2}},{"a":3}])", u"extract", "[\"b.c\"]", "[2]", nullptr},
        {R"([{"a":1,"b":{"c":2}},{"a":3}])", u"extract", R"(["a","x","b.c","y"])", R"([{"x":1,"y":2},{"x":3}])",
         nullptr},
        {"[1,[2,[3]]]", u"flat", "[]", "[1,2,[3]]", "[1,[2,[3]]]"},
        {"[1,[2,[3]]]", u"flat", "[5]", "[1,2,3]", nullptr},
        {"[1,2]", u"at", "[-1]", "2", nullptr},
        {"[1,2]", u"at", "[2]", "null", nullptr},
        {"[1,2]", u"first", "[]", "1", nullptr},
        {"[1,2]", u"last", "[]", "2", nullptr},
        {"[]", u"last", "[]", "null", nullptr},
        {"[1,null,2]", u"count", "[]", "2", nullptr},
        {R"([{"a":1},{"b":1}])", u"count", "[\"a\"]", "1", nullptr},
        {"[1,2,1,\"1\"]", u"countValues", "[1]", "2", nullptr},
        {R"([{"a":"X"},{"a":"x"},{"a":"y"}])", u"countValues", "[\"x\",\"a\"]", "2", nullptr},
        {"[1,2.5,\"3\",null]", u"sum", "[]", "3.5", nullptr},
        {"[]", u"sum", "[]", "0", nullptr},
        {R"([{"v":1},{"v":2}])", u"sum", "[\"v\"]", "3", nullptr},
        {"[1,2]", u"average", "[]", "1.5", nullptr},
        {"[]", u"average", "[]", "null", nullptr},
        {"[3,1,2]", u"min", "[]", "1", nullptr},
        {"[3,1,2]", u"max", "[]", "3", nullptr},
        {"[\"b\",\"a\",null]", u"min", "[]", "\"a\"", nullptr},
        {R"([{"v":1},{"v":2}])", u"max", "[\"v\"]", "2", nullptr},
        {"[1,\"A\",{\"x\":[1]}]", u"equal", "[[1,\"a\",{\"x\":[1]}]]", "true", nullptr},
        {"[1,\"A\"]", u"equal", "[[1,\"a\"],8]", "false", nullptr},
        {"[1]", u"equal", "[[1,2]]", "false", nullptr},
    };
    for (const auto& row : rows) {
        Value self = Parsed(row.self), list = Parsed(row.arguments);
        int16_t error = 0;
        Value result = Member(self, row.name, list.collection()->elements(), &error);
        EXPECT_EQ(error, 0) << ToUtf8(row.name);
        EXPECT_EQ(WriteJson(result), row.result) << ToUtf8(row.name) << row.self << row.arguments;
        if (row.after) { EXPECT_EQ(WriteJson(self), row.after) << ToUtf8(row.name); }
    }
}

TEST_F(HostObjects, Members_Copy_IsDeep) {
    Value self = Parsed(R"([{"a":[1]}])");
    Value copy = Member(self, u"copy");
    self.collection()->at(0).object()->set(u"a", Value(2.0));
    EXPECT_EQ(WriteJson(copy), R"([{"a":[1]}])");
}

TEST_F(HostObjects, Members_UnknownOrWrong_AreErrors) {
    static const struct {
        const char* self;
        const char16_t* name;
        const char* arguments;
        int16_t error;
    } rows[] = {
        {"[1]", u"nosuch", "[]", ZR_ERR_UNKNOWN_MEMBER},
        {"[1]", u"Push", "[1]", ZR_ERR_UNKNOWN_MEMBER},
        {"[1]", u"", "[]", ZR_ERR_UNKNOWN_MEMBER},
        {"{}", u"push", "[1]", ZR_ERR_UNKNOWN_MEMBER},
        {"{}", u"a.push", "[1]", ZR_ERR_UNKNOWN_MEMBER},
        {"1", u"push", "[1]", ZR_ERR_UNKNOWN_MEMBER},
        {"[1]", u"push", "[]", ZR_ERR_MEMBER_ARGUMENT},
        {"[1]", u"pop", "[1]", ZR_ERR_MEMBER_ARGUMENT},
        {"[1]", u"insert", "[\"x\",1]", ZR_ERR_MEMBER_ARGUMENT},
        {"[1]", u"insert", "[1e300,1]", ZR_ERR_MEMBER_ARGUMENT},
        {"[1]", u"remove", "[\"x\"]", ZR_ERR_MEMBER_ARGUMENT},
        {"[1]", u"resize", "[-1]", ZR_ERR_MEMBER_ARGUMENT},
        {"[1]", u"resize", "[1e300]", ZR_ERR_MEMBER_ARGUMENT},
        {"[1]", u"combine", "[1]", ZR_ERR_MEMBER_ARGUMENT},
        {"[1]", u"equal", "[1]", ZR_ERR_MEMBER_ARGUMENT},
        {"[1]", u"join", "[1]", ZR_ERR_MEMBER_ARGUMENT},
        {"[1]", u"orderBy", "[true]", ZR_ERR_MEMBER_ARGUMENT},
        {"[1]", u"orderBy", "[[1]]", ZR_ERR_MEMBER_ARGUMENT},
        {"[1]", u"extract", "[\"a\",\"b\",\"c\"]", ZR_ERR_MEMBER_ARGUMENT},
        {"[1]", u"sum", "[1]", ZR_ERR_MEMBER_ARGUMENT},
    };
    for (const auto& row : rows) {
        Value self = Parsed(row.self), list = Parsed(row.arguments);
        std::string before = WriteJson(self);
        int16_t error = 0;
        EXPECT_TRUE(Member(self, row.name, list.collection()->elements(), &error).isUndefined());
        EXPECT_EQ(error, row.error) << ToUtf8(row.name);
        EXPECT_EQ(WriteJson(self), before);
    }
    int16_t error = 0;
    Execute(ZR_SEL_ExecuteMember, 0, {Parsed("[1]")}, &error);
    EXPECT_EQ(error, ZR_ERR_PARAMETER);
    Execute(ZR_SEL_ExecuteMember, 0, {}, &error);
    EXPECT_EQ(error, ZR_ERR_PARAMETER);
}

TEST_F(HostObjects, Members_OfAPropertyOfAnObject_AreReached) {
    Value self = Parsed(R"({"a":{"list":[1,2]}})");
    EXPECT_EQ(Member(self, u"a.list.push", {Value(3.0)}).collection()->size(), 3u);
    EXPECT_EQ(WriteJson(self), R"({"a":{"list":[1,2,3]}})");
    EXPECT_EQ(Member(self, u"a.list.sum").number(), 6.0);
}

TEST_F(HostObjects, Members_ACollectionInItself_Ends) {
    Ref<Collection> self = NewCollection();
    self->push(Value(self));
    EXPECT_EQ(WriteJson(Member(Value(self), u"copy")), "[null]");
    EXPECT_EQ(Member(Value(self), u"flat", {Value(100.0)}).collection()->size(), 1u);
    EXPECT_EQ(Member(Value(self), u"join", {Value(u",")}).text(), u"[null]");
    EXPECT_EQ(Member(Value(self), u"indexOf", {Value(self)}).number(), 0);
    self->assign({});
}

// Pictures ---------------------------------------------------------------------------------------------------------

TEST_F(HostObjects, Pictures_AreTypedByTheirBytes) {
    using namespace std::string_literals;
    static const struct {
        std::string bytes;
        const char* type;
        int width, height;
    } rows[] = {
        {"\x89PNG\r\n\x1a\n\0\0\0\rIHDR\0\0\0\x10\0\0\0\x20"s, "image/png", 16, 32},
        {"\xff\xd8\xff\xe0\0\x04\0\0\xff\xc0\0\x11\x08\0\x05\0\x07\0\0\0\0"s, "image/jpg", 7, 5},
        {"GIF89a\x03\0\x04\0"s, "image/gif", 3, 4},
        {"GIF87a"s, "image/gif", 0, 0},
        {"BM"s + std::string(16, '\0') + "\x02\0\0\0\xfe\xff\xff\xff"s, "image/bmp", 2, 2},
        {"II*\0\x08\0\0\0\x02\0\0\x01\x03\0\x01\0\0\0\x09\0\0\0\x01\x01\x04\0\x01\0\0\0\x0a\0\0\0"s, "image/tiff", 9,
         10},
        {"MM\0*\xff\xff\xff\xff"s, "image/tiff", 0, 0},
        {"%PDF-1.7"s, "application/pdf", 0, 0},
        {"<svg width=\"12\" height=\"7.5\">"s, "image/svg+xml", 12, 7},
        // As drawing programs write them.
        {"<!DOCTYPE svg PUBLIC \"x\" \"y>\" [ <!ENTITY ns \"a>b\"> <!-- c --> ]>\n<svg width=\"3\" height=\"4\">"s,
         "image/svg+xml", 3, 4},
        {"<!--" + std::string(9000, '-') + "--><svg width=\"3\" height=\"4\">", "image/svg+xml", 3, 4},
        {"<ns0:svg xmlns:ns0=\"http://www.w3.org/2000/svg\" width=\"3\" height=\"4\">"s, "image/svg+xml", 3, 4},
        {"\xef\xbb\xbf<?xml version=\"1.0\"?>\n<!-- a > b -->\n<!DOCTYPE svg>\n<svg>"s, "image/svg+xml", 0, 0},
        {"II\xbc\x01"s, "image/vnd.ms-photo", 0, 0},
        {"DDS |\0\0\0\0\0\0\0\x08\0\0\0\x04\0\0\0"s, "image/vnd-ms.dds", 4, 8},
        {std::string(40, '\0') + " EMF", "image/x-emf", 0, 0},
    };
    for (const auto& row : rows) {
        std::span bytes(reinterpret_cast<const uint8_t*>(row.bytes.data()), row.bytes.size());
        const PictureKind* kind = SniffPicture(bytes);
        ASSERT_TRUE(kind) << row.type;
        EXPECT_STREQ(kind->type, row.type);
        EXPECT_EQ(PictureSize(bytes), std::pair(row.width, row.height)) << row.type;
        for (size_t cut = 0; cut < row.bytes.size(); ++cut) PictureSize(bytes.first(cut));  // never past the end
    }
    for (const char* text : {"", "B", "svg", "<svgx>", "<html>", "<!-- <svg>", "<?xml"}) {
        std::string bytes = text;
        EXPECT_EQ(SniffPicture({reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size()}), nullptr) << text;
    }
    EXPECT_STREQ(FindPictureKind(".JPEG")->type, "image/jpg");
    EXPECT_STREQ(FindPictureKind("image/jpeg")->extension, ".jpg");
    EXPECT_STREQ(FindPictureKind("png")->name, "PNG");
    EXPECT_EQ(FindPictureKind("text/plain"), nullptr);
}

TEST_F(HostObjects, Pictures_ThroughTheDoor_KeepTheirBytes) {
    static const uint8_t gif[] = {'G', 'I', 'F', '8', '9', 'a', 1, 0, 2, 0};
    PA_Handle bytes = NewHandle(std::span(gif));
    EngineBlock block = Block();
    block.fHandle = bytes;
    ASSERT_EQ(Call(ZR_SEL_CreatePicture, &block), 0);
    int64_t picture = block.fParam1;
    ASSERT_TRUE(picture);
    block = Block();
    block.fParam1 = picture;
    EXPECT_EQ(Call(ZR_SEL_DuplicatePicture, &block), 0);
    EXPECT_TRUE(block.fParam2);
    EXPECT_EQ(Call(ZR_SEL_DisposePicture, &block), 0);

    static const struct {
        int64_t index;
        int16_t error;
    } rows[] = {{0, 0},
                {1, 0},
                {2, ZR_ERR_NO_REPRESENTATION},
                {-1, ZR_ERR_NO_REPRESENTATION},
                {INT64_MAX, ZR_ERR_NO_REPRESENTATION}};
    for (const auto& row : rows) {
        PA_Handle target = NewHandle(1);
        PA_Unistring type;
        block = Block();
        block.fParam1 = picture;
        block.fParam2 = row.index;
        block.fParam3 = Address(&type);
        block.fHandle = target;
        EXPECT_EQ(Call(ZR_SEL_GetPictureData, &block), row.error) << row.index;
        EXPECT_EQ(ToUtf8(UnistringText(type)), row.error ? "" : "image/gif");
        EXPECT_EQ(HandleSize(target), row.error ? 1 : int64_t(sizeof gif));
        FreeUnistring(&type);
        DisposeHandle(target);
    }
    for (int selector : {ZR_SEL_NativePictureForScreen, ZR_SEL_NativePictureForPrinting}) {
        block.fParam2 = 99;
        EXPECT_EQ(Call(selector, &block), 0);
        EXPECT_EQ(block.fParam2, 0);
    }
    block = Block();
    block.fParam1 = picture;
    EXPECT_EQ(Call(ZR_SEL_DisposePicture, &block), 0);
    EXPECT_EQ(Call(ZR_SEL_DisposePicture, &block), ZR_ERR_PARAMETER) << "dead";
    EXPECT_EQ(Call(ZR_SEL_GetPictureData, &block), ZR_ERR_NO_REPRESENTATION);
    DisposeHandle(bytes);

    block = Block();
    EXPECT_EQ(Call(ZR_SEL_CreatePicture, &block), 0) << "no bytes, no picture";
    EXPECT_EQ(block.fParam1, 0);
    EXPECT_EQ(Call(ZR_SEL_DisposePicture, &block), 0);
    block.fHandle = bytes;
    EXPECT_EQ(Call(ZR_SEL_CreatePicture, &block), ZR_ERR_PARAMETER);
}

}  // namespace
}  // namespace zrhost
