#include "host/Variables.h"

#include <cmath>

#include "host/CommandCall.h"
#include "host/Process.h"
#include "tests/host/Host_Test.h"

namespace zrhost {
namespace {

class HostVariables : public HostTest {
  protected:
    Value get(std::u16string_view name, int selector = ZR_SEL_GetProcessVariable) {
        Variable record;
        EngineBlock block = Block();
        SetName(&block, name);
        block.fParam1 = Address(&record.record());
        EXPECT_EQ(Call(selector, &block), 0);
        return ReadRecord(record.record());
    }
    int16_t set(std::u16string_view name, const Value& value, bool make, int selector = ZR_SEL_SetProcessVariable) {
        Variable record = RecordOf(value);
        EngineBlock block = Block();
        SetName(&block, name);
        block.fParam1 = Address(&record.record());
        block.fFlags = make;
        return Call(selector, &block);
    }
};

// One value of every kind.
std::vector<Value> EveryKind() {
    Ref<Object> object = NewObject();
    object->set(u"a", Value(1.0));
    Ref<Collection> collection = NewCollection();
    collection->push(Value(u"x"));
    static const uint8_t png[] = {0x89, 'P', 'N', 'G', 13, 10, 26, 10, 0};
    PointerBlock pointer = {};
    pointer.fTable = 3;
    std::vector<Value> values = {Value(1.5),
                                 Value(Date{1, 2, 2003}),
                                 Value(true),
                                 Value::Longint(-7),
                                 Value(NewPicture(std::span(png))),
                                 Value::Time(90),
                                 Value(pointer),
                                 Value(Value::Bytes{1, 2, 3}),
                                 Value(u"text \u00e9"),
                                 Value(object),
                                 Value(collection),
                                 Value::Null(),
                                 Value()};
    static const int kinds[] = {eVK_ArrayReal,    eVK_ArrayInteger, eVK_ArrayLongint, eVK_ArrayDate,
                                eVK_ArrayPicture, eVK_ArrayPointer, eVK_ArrayBoolean, eVK_ArrayBlob,
                                eVK_ArrayTime,    eVK_ArrayText,    eVK_ArrayObject};
    for (int kind : kinds) {
        Value::Elements elements(3);
        for (const Value& value : std::vector<Value>(values))
            if (value.kind() == ElementKind(kind) || (kind == eVK_ArrayInteger && value.kind() == eVK_Longint))
                elements[1] = elements[2] = value;
        Variable record;  // element 0 as the host clears it
        EXPECT_TRUE(MakeArray(&record.record(), kind, 2));
        for (int i = 1; i <= 2; ++i) EXPECT_TRUE(WriteElement(&record.record(), i, elements[size_t(i)])) << kind;
        values.push_back(ReadRecord(record.record()));
    }
    return values;
}

TEST_F(HostVariables, Records_EveryKind_ReadWriteAndCopy) {
    for (const Value& value : EveryKind()) {
        Variable record = RecordOf(value);
        EXPECT_EQ(UnifiedKind(record.record()), value.kind());
        EXPECT_TRUE(DeepEqual(ReadRecord(record.record()), value, true) || !value.elements().empty()) << value.kind();
        Variable target;
        EngineBlock block = Block();
        block.fParam1 = Address(&record.record());
        block.fParam2 = Address(&target.record());
        EXPECT_EQ(Call(ZR_SEL_CopyVariable, &block), 0);
        EXPECT_EQ(WriteJson(ReadRecord(target.record())), WriteJson(value)) << value.kind();
        EXPECT_EQ(RecordArraySize(target.record()), value.elements().empty() ? -1 : 2);
        EXPECT_EQ(Call(ZR_SEL_ClearVariable, &block), 0);
        EXPECT_EQ(record.record().fType, eVK_Undefined);
        EXPECT_EQ(WriteJson(ReadRecord(target.record())), WriteJson(value)) << "its own storage, kind " << value.kind();
    }
}

TEST_F(HostVariables, Records_CopyOntoItself_KeepsTheValue) {
    Variable record = RecordOf(Value(u"abc"));
    EngineBlock block = Block();
    block.fParam1 = block.fParam2 = Address(&record.record());
    EXPECT_EQ(Call(ZR_SEL_CopyVariable, &block), 0);
    EXPECT_EQ(ReadRecord(record.record()).text(), u"abc");
    block = Block();
    EXPECT_EQ(Call(ZR_SEL_CopyVariable, &block), ZR_ERR_PARAMETER);
    EXPECT_EQ(Call(ZR_SEL_ClearVariable, &block), ZR_ERR_PARAMETER);
}

TEST_F(HostVariables, Records_WithDeadHandlesAndAbsurdCounts_AreEmpty) {
    static const int kinds[] = {eVK_ArrayReal,
                                eVK_ArrayText,
                                eVK_ArrayObject,
                                eVK_ArrayPicture,
                                eVK_ArrayBlob,
                                eVK_Blob,
                                eVK_Pointer,
                                eVK_Object,
                                eVK_Collection,
                                eVK_Picture,
                                eVK_Text,
                                12,
                                13,
                                99,
                                254};
    char foreign[64] = {};
    for (int kind : kinds)
        for (int32_t count : {0, -1, INT32_MIN, INT32_MAX, 1000000}) {
            PA_Variable record;
            std::memset(&record, 0, sizeof record);
            record.fType = uint8_t(kind);
            if (kind == eVK_Text) {
                record.uValue.fText.fLength = count;
            } else if (kind == eVK_Pointer || kind == eVK_Object || kind == eVK_Collection || kind == eVK_Picture) {
                record.uValue.fObject = foreign;
            } else {
                record.uValue.fArray.fSize = count;
                record.uValue.fArray.fData = reinterpret_cast<PA_Handle>(foreign);
            }
            Variable copy(record);
            ReadRecord(record);
            EXPECT_LE(RecordArraySize(record), 0);
            EXPECT_EQ(ArrayElementAt(record, 0), nullptr);
            ClearRecord(&record);
            EXPECT_EQ(record.fType, eVK_Undefined);
        }
    Variable array;
    ASSERT_TRUE(MakeArray(&array.record(), eVK_ArrayLongint, 3));
    array.record().uValue.fArray.fSize = 1000000;  // more than the handle holds
    EXPECT_EQ(RecordArraySize(array.record()), 3);
    EXPECT_EQ(int(Variable(array.record()).record().uValue.fArray.fSize), 3);
}

TEST_F(HostVariables, OldKinds_FoldToText) {
    static const struct {
        int kind, filler, unified;
    } rows[] = {
        {0, 0, eVK_Text},       {0, 1, eVK_Operator},   {2, 0, eVK_Text},  {24, 0, eVK_Text},
        {18, 0, eVK_ArrayText}, {21, 0, eVK_ArrayText}, {33, 0, eVK_Text}, {7, 0, eVK_Undefined},
    };
    for (const auto& row : rows) {
        PA_Variable record;
        std::memset(&record, 0, sizeof record);
        record.fType = uint8_t(row.kind);
        record.fFiller = uint8_t(row.filler);
        EXPECT_EQ(UnifiedKind(record), row.unified) << row.kind;
    }
}

TEST_F(HostVariables, ResizeArray_KeepsElementsAndClearsNewOnes) {
    for (int kind : {int(eVK_ArrayText), int(eVK_ArrayReal), int(eVK_ArrayDate), int(eVK_ArrayObject)}) {
        Variable array;
        ASSERT_TRUE(MakeArray(&array.record(), kind, 3));
        Value one = kind == eVK_ArrayText   ? Value(u"one")
                    : kind == eVK_ArrayReal ? Value(1.0)
                    : kind == eVK_ArrayDate ? Value(Date{1, 1, 2001})
                                            : Value(NewObject());
        for (int i = 0; i <= 3; ++i) EXPECT_TRUE(WriteElement(&array.record(), i, one));
        array.record().uValue.fArray.fCurrent = 3;
        EngineBlock block = Block();
        block.fParam1 = Address(&array.record());
        for (int64_t size : {5, 2, 4, 0, 1}) {
            block.fParam2 = size;
            EXPECT_EQ(Call(ZR_SEL_ResizeArray, &block), 0);
            EXPECT_EQ(RecordArraySize(array.record()), size);
        }
        EXPECT_TRUE(DeepEqual(ReadElement(array.record(), 0), one, true)) << "element 0 stays";
        EXPECT_FALSE(DeepEqual(ReadElement(array.record(), 1), one, true)) << "cleared";
        EXPECT_EQ(int(array.record().uValue.fArray.fCurrent), 0);
        for (int64_t absurd : {int64_t(-1), INT64_MIN, INT64_MAX, int64_t(1) << 32}) {
            block.fParam2 = absurd;
            EXPECT_EQ(Call(ZR_SEL_ResizeArray, &block), ZR_ERR_PARAMETER) << absurd;
        }
        EXPECT_EQ(RecordArraySize(array.record()), 1);
    }
    Variable number = RecordOf(Value(1.0));
    EngineBlock block = Block();
    block.fParam1 = Address(&number.record());
    EXPECT_EQ(Call(ZR_SEL_ResizeArray, &block), ZR_ERR_PARAMETER);
}

TEST_F(HostVariables, ResizeArray_WithoutStorage_MakesIt) {
    PA_Variable record;
    std::memset(&record, 0, sizeof record);
    record.fType = eVK_ArrayLongint;
    EXPECT_TRUE(ResizeRecord(&record, 2));
    EXPECT_TRUE(WriteElement(&record, 2, Value(5.0)));
    EXPECT_FALSE(WriteElement(&record, 3, Value(5.0)));
    EXPECT_FALSE(WriteElement(&record, 1, Value(u"5")));
    ClearRecord(&record);
}

TEST_F(HostVariables, Process_GetAndSet_MakeOnDemand) {
    EXPECT_EQ(set(u"vTotal", Value(1.0), false), ZR_ERR_PARAMETER);
    EXPECT_TRUE(get(u"vTotal").isUndefined());
    EXPECT_EQ(set(u"vTotal", Value(1.0), true), 0);
    EXPECT_EQ(get(u"VTOTAL").number(), 1.0);
    EXPECT_EQ(set(u"vtotal", Value::Longint(7), false), 0);
    EXPECT_EQ(get(u"vTotal").kind(), eVK_Real) << "a number keeps the kind of the variable";
    EXPECT_EQ(get(u"vTotal").number(), 7.0);
    EXPECT_EQ(set(u"vTotal", Value(u"now text"), false), 0);
    EXPECT_EQ(get(u"vTotal").text(), u"now text");
    Variable small = RecordOf(Value::Longint(5));
    small.record().fType = eVK_Integer;
    host->currentProcess().variables.set(u"vSmall", small.record(), true);
    EXPECT_EQ(set(u"vSmall", Value::Longint(70000), false), 0);
    EXPECT_EQ(get(u"vSmall").number(), 70000) << "an integer of 16 bits gives way";
    EXPECT_EQ(set(u"", Value(1.0), true), ZR_ERR_PARAMETER);
    EXPECT_TRUE(get(u"<>vTotal", ZR_SEL_GetInterprocessVariable).isUndefined());
}

TEST_F(HostVariables, Interprocess_IsApartFromProcess) {
    EXPECT_EQ(set(u"x", Value(1.0), true), 0);
    EXPECT_EQ(set(u"x", Value(2.0), true, ZR_SEL_SetInterprocessVariable), 0);
    EXPECT_EQ(get(u"x").number(), 1.0);
    EXPECT_EQ(get(u"x", ZR_SEL_GetInterprocessVariable).number(), 2.0);
    EXPECT_EQ(host->interprocessVariable(u"X").number(), 2.0);
}

TEST_F(HostVariables, OK_And_Document_AreVariables) {
    EXPECT_EQ(get(u"OK").kind(), eVK_Longint);
    host->setOK(true);
    EXPECT_EQ(get(u"ok").integer(), 1);
    EXPECT_EQ(set(u"OK", Value(0.0), false), 0);
    EXPECT_FALSE(host->ok());
    host->setDocument(u"/tmp/a");
    EXPECT_EQ(get(u"document").text(), u"/tmp/a");
}

TEST_F(HostVariables, Variables_EveryKind_GoInAndOut) {
    for (const Value& value : EveryKind()) {
        EXPECT_EQ(set(u"v", value, true), 0);
        EXPECT_EQ(get(u"v").kind(), value.kind());
        EXPECT_EQ(WriteJson(get(u"v")), WriteJson(value));
        host->currentProcess().variables.remove(u"v");
    }
}

TEST_F(HostVariables, Table_NamesAndRemoval_KeepOrder) {
    VariableTable table;
    for (const char16_t* name : {u"b", u"A", u"c"}) table.setValue(name, Value(1.0));
    EXPECT_TRUE(table.remove(u"a"));
    EXPECT_FALSE(table.remove(u"a"));
    EXPECT_EQ(table.names(), (std::vector<std::u16string>{u"b", u"c"}));
    EXPECT_EQ(table.size(u"b"), -1);
    table.clear();
    EXPECT_TRUE(table.names().empty());
}

// Pointers ---------------------------------------------------------------------------------------------------------

PA_Handle PointerTo(std::u16string_view name) {
    EngineBlock block = Block();
    SetName(&block, name);
    Call(ZR_SEL_PointerByName, &block);
    return block.fHandle;
}

TEST_F(HostVariables, Pointer_ToVariable_ReadsAndWrites) {
    host->setVariable(u"vName", Value(u"old"));
    PA_Handle pointer = PointerTo(u"VNAME");
    ASSERT_TRUE(pointer);
    EXPECT_EQ(HandleSize(pointer), 42);
    EXPECT_EQ(HandleSpan(pointer)[0], 1);

    EngineBlock block = Block();
    block.fHandle = pointer;
    EXPECT_EQ(Call(ZR_SEL_PointerProperties, &block), 0);
    EXPECT_EQ(block.fParam1, eVK_Text);
    EXPECT_EQ(block.fParam2, 0);

    Variable record;
    block.fParam1 = Address(&record.record());
    EXPECT_EQ(Call(ZR_SEL_GetPointerValue, &block), 0);
    EXPECT_EQ(ReadRecord(record.record()).text(), u"old");
    record = RecordOf(Value(u"new"));
    EXPECT_EQ(Call(ZR_SEL_SetPointerValue, &block), 0);
    EXPECT_EQ(host->variable(u"vName").text(), u"new");
    DisposeHandle(pointer);
}

TEST_F(HostVariables, Pointer_ToInterprocessAndElement_Reaches) {
    host->setInterprocessVariable(u"all", Value(5.0));
    PA_Handle pointer = PointerTo(u"<>all");
    Variable record;
    EngineBlock block = Block();
    block.fHandle = pointer;
    block.fParam1 = Address(&record.record());
    EXPECT_EQ(Call(ZR_SEL_GetPointerValue, &block), 0);
    EXPECT_EQ(ReadRecord(record.record()).number(), 5.0);
    DisposeHandle(pointer);

    host->setVariable(u"list", Value::Array(eVK_ArrayText, {Value(u""), Value(u"one"), Value(u"two")}));
    pointer = PointerTo(u"list");
    uint16_t element = 2;
    std::memcpy(*pointer + offsetof(PointerBlock, fElement), &element, 2);
    block.fHandle = pointer;
    record = Variable();
    EXPECT_EQ(Call(ZR_SEL_GetPointerValue, &block), 0);
    EXPECT_EQ(ReadRecord(record.record()).text(), u"two");
    record = RecordOf(Value(u"zwei"));
    EXPECT_EQ(Call(ZR_SEL_SetPointerValue, &block), 0);
    EXPECT_EQ(host->variable(u"list").elements()[2].text(), u"zwei");
    EXPECT_EQ(Call(ZR_SEL_PointerProperties, &block), 0);
    EXPECT_EQ(block.fParam1, eVK_Text);
    EXPECT_EQ(block.fParam2, 2);
    element = 99;
    std::memcpy(*pointer + offsetof(PointerBlock, fElement), &element, 2);
    block.fParam1 = Address(&record.record());
    EXPECT_EQ(Call(ZR_SEL_SetPointerValue, &block), ZR_ERR_PARAMETER);
    DisposeHandle(pointer);
}

TEST_F(HostVariables, Pointer_BadOrToFields_IsRefused) {
    Variable record;
    PA_Handle small = NewHandle(10), field = NewHandle(42), unknown = NewHandle(42);
    (*field)[2] = 1;
    (*field)[4] = 1;
    (*unknown)[0] = 1;
    static const struct {
        int which;
        int16_t error;
    } rows[] = {{0, ZR_ERR_PARAMETER}, {1, ZR_ERR_PARAMETER}, {2, ZR_ERR_NO_RECORD}};
    for (const auto& row : rows) {
        EngineBlock block = Block();
        block.fHandle = row.which == 0 ? nullptr : row.which == 1 ? small : field;
        block.fParam1 = Address(&record.record());
        EXPECT_EQ(Call(ZR_SEL_GetPointerValue, &block), row.error) << row.which;
        EXPECT_EQ(Call(ZR_SEL_SetPointerValue, &block), row.error) << row.which;
        EXPECT_EQ(Call(ZR_SEL_PointerProperties, &block), row.which == 2 ? 0 : ZR_ERR_PARAMETER);
        EXPECT_EQ(block.fParam1, eVK_Undefined);
    }
    EngineBlock block = Block();
    block.fHandle = unknown;
    block.fParam1 = Address(&record.record());
    EXPECT_EQ(Call(ZR_SEL_GetPointerValue, &block), 0);
    EXPECT_TRUE(ReadRecord(record.record()).isUndefined());
    EXPECT_EQ(Call(ZR_SEL_SetPointerValue, &block), ZR_ERR_PARAMETER);
    EXPECT_EQ(PointerTo(u""), nullptr);
    EXPECT_EQ(PointerTo(u"<>"), nullptr);
    for (PA_Handle handle : {small, field, unknown}) DisposeHandle(handle);
}

// The view of a command --------------------------------------------------------------------------------------------

struct Calling {
    std::vector<Variable> records;
    std::vector<PA_Variable*> table;
    Variable result;
    CommandCall call;
    Calling(Host& host, const std::vector<Value>& arguments)
        : records(Made(arguments)),
          table(Table(&records)),
          call{host, host.currentProcess(), 1, table.data(), int(table.size()), &result.record()} {}
    static std::vector<Variable> Made(const std::vector<Value>& arguments) {
        std::vector<Variable> records;
        for (const Value& argument : arguments) records.push_back(RecordOf(argument));
        return records;
    }
    static std::vector<PA_Variable*> Table(std::vector<Variable>* records) {
        std::vector<PA_Variable*> table;
        for (Variable& record : *records) table.push_back(&record.record());
        return table;
    }
};

TEST_F(HostVariables, CommandCall_Readers_AnswerNeutrallyForOtherKinds) {
    Calling calling(*host, {Value(2.9), Value::Longint(-5), Value(u"text"), Value(true), Value(Date{1, 2, 2003}),
                            Value::Time(90), Value(Value::Bytes{1, 2}), Value()});
    CommandCall& call = calling.call;
    EXPECT_EQ(call.number(1), 2.9);
    EXPECT_EQ(call.integer(1), 2);
    EXPECT_EQ(call.integer(2), -5);
    EXPECT_EQ(call.number(3), 0);
    EXPECT_EQ(call.text(3), u"text");
    EXPECT_EQ(call.text(1), u"");
    EXPECT_TRUE(call.boolean(4));
    EXPECT_EQ(call.date(5), (Date{1, 2, 2003}));
    EXPECT_EQ(call.date(1), Date{});
    EXPECT_EQ(call.time(6), 90);
    EXPECT_EQ(call.blob(7).size(), 2u);
    EXPECT_TRUE(call.isUndefined(8));
    EXPECT_TRUE(call.isUndefined(9));
    EXPECT_FALSE(call.has(9));
    EXPECT_EQ(call.number(9, 42), 42);
    EXPECT_EQ(call.integer(-1, 7), 7);
    EXPECT_EQ(call.object(1), nullptr);
    EXPECT_EQ(call.arraySize(1), -1);
    EXPECT_EQ(call.operatorCode(1), -1);
    Calling huge(*host, {Value(1e300), Value(-1e300), Value(std::nan(""))});
    EXPECT_EQ(huge.call.integer(1), INT32_MAX);
    EXPECT_EQ(huge.call.integer(2), INT32_MIN);
    EXPECT_EQ(huge.call.integer64(1), INT64_MAX);
    EXPECT_EQ(huge.call.integer(3), 0);
}

TEST_F(HostVariables, CommandCall_Star_IsTakenOnce) {
    Calling calling(*host, {Value(u"a"), Value()});
    calling.records[1].record().fType = 0;
    calling.records[1].record().fFiller = 1;
    calling.records[1].record().uValue.fOperator = ZR_OP_TIMES;
    EXPECT_TRUE(calling.call.isStar(2));
    EXPECT_EQ(calling.call.kind(2), eVK_Operator);
    EXPECT_TRUE(calling.call.takeStar());
    EXPECT_FALSE(calling.call.takeStar());
    EXPECT_EQ(calling.call.count, 1);
    EXPECT_FALSE(calling.call.assignText(2, u"x"));
}

TEST_F(HostVariables, CommandCall_TableOrField_IsToldFromUndefined) {
    Calling calling(*host, {Value(), Value()});
    calling.records[0].record().fFiller = 1;
    calling.records[0].record().uValue.fTableField = {3, 4};
    EXPECT_TRUE(calling.call.isTableOrField(1));
    EXPECT_FALSE(calling.call.isUndefined(1));
    EXPECT_EQ(calling.call.tableField(1).table, 3);
    EXPECT_EQ(calling.call.tableField(1).field, 4);
    EXPECT_FALSE(calling.call.isTableOrField(2));
    EXPECT_EQ(calling.call.tableField(2).table, 0);
    EXPECT_FALSE(calling.call.assignText(1, u"x"));
    Variable copy(calling.records[0].record());
    EXPECT_EQ(int(copy.record().uValue.fTableField.fField), 4);
}

TEST_F(HostVariables, CommandCall_Writers_KeepTheKindOfAVariable) {
    Calling calling(*host, {Value(1.0), Value::Longint(1), Value(u"t"), Value(), Value::Time(1), Value(true)});
    CommandCall& call = calling.call;
    EXPECT_TRUE(call.assignLongint(1, 7));
    EXPECT_EQ(call.kind(1), eVK_Real);
    EXPECT_EQ(call.number(1), 7);
    EXPECT_TRUE(call.assignReal(2, 2.9));
    EXPECT_EQ(call.kind(2), eVK_Longint);
    EXPECT_EQ(call.integer(2), 2);
    EXPECT_FALSE(call.assignLongint(3, 7));
    EXPECT_EQ(call.text(3), u"t");
    EXPECT_TRUE(call.assignText(4, u"made"));
    EXPECT_EQ(call.text(4), u"made");
    EXPECT_TRUE(call.assignLongint(5, 60));
    EXPECT_EQ(call.kind(5), eVK_Time);
    EXPECT_FALSE(call.assignText(6, u"x"));
    EXPECT_FALSE(call.assignText(7, u"x"));
    EXPECT_TRUE(call.clear(4));
    EXPECT_EQ(call.kind(4), eVK_Text);
    EXPECT_EQ(call.text(4), u"");
}

TEST_F(HostVariables, CommandCall_Arrays_ReadWriteAndGrow) {
    Calling calling(*host, {Value(), Value::Array(eVK_ArrayInteger, Value::Elements(4, Value::Longint(3)))});
    CommandCall& call = calling.call;
    std::vector<std::u16string> texts = {u"one", u"two"};
    EXPECT_TRUE(call.assignTextArray(1, texts));
    EXPECT_EQ(call.arraySize(1), 2);
    EXPECT_EQ(call.arrayText(1, 2), u"two");
    EXPECT_EQ(call.arrayText(1, 3), u"");
    EXPECT_EQ(call.arrayText(1, -1), u"");
    EXPECT_TRUE(call.swapArrayElements(1, 1, 2));
    EXPECT_EQ(call.arrayText(1, 1), u"two");
    EXPECT_FALSE(call.swapArrayElements(1, 1, 9));
    EXPECT_TRUE(call.setCurrentElement(1, 2));
    EXPECT_EQ(call.currentElement(1), 2);
    EXPECT_FALSE(call.setCurrentElement(1, 3));
    EXPECT_TRUE(call.setArrayNumber(2, 1, 70000));
    EXPECT_EQ(call.arrayNumber(2, 1), 4464) << "16 bits";
    EXPECT_FALSE(call.setArrayText(2, 1, u"x"));
    EXPECT_FALSE(call.resizeArray(2, -1));
    EXPECT_FALSE(call.resizeArray(2, INT32_MAX));
    std::vector<double> numbers = {1.5, 2.5};
    EXPECT_FALSE(call.assignTextArray(2, texts)) << "an array keeps its kind";
    EXPECT_TRUE(call.assignRealArray(2, numbers));
    EXPECT_EQ(call.arrayNumber(2, 2), 2);
    EXPECT_FALSE(call.prepareArray(9, eVK_ArrayText, 1));
}

TEST_F(HostVariables, CommandCall_Result_TakesEveryKind) {
    for (const Value& value : EveryKind()) {
        Calling calling(*host, {});
        calling.call.setText(u"first");
        calling.call.setValue(value);
        EXPECT_EQ(WriteJson(ReadRecord(calling.result.record())), WriteJson(value));
    }
    Calling calling(*host, {Value(u"shared")});
    calling.call.setText(calling.call.text(1));
    EXPECT_EQ(ReadRecord(calling.result.record()).text(), u"shared");
    calling.call.notServed();
    EXPECT_TRUE(ReadRecord(calling.result.record()).isUndefined());
    EXPECT_EQ(calling.call.error, ZR_ERR_UNKNOWN_COMMAND);
}

}  // namespace
}  // namespace zrhost
