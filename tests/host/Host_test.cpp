#include "host/Host.h"

#include <atomic>
#include <chrono>
#include <fstream>
#include <map>
#include <sstream>
#include <thread>

#include "host/CommandCall.h"
#include "host/Process.h"
#include "tests/host/Host_Test.h"

namespace zrhost {
namespace {

class HostEngine : public HostTest {};

// Life -------------------------------------------------------------------------------------------------------------

TEST(HostLife, Start_OneAtATime) {
    EXPECT_EQ(Host::active(), nullptr);
    auto host = Host::Start();
    ASSERT_TRUE(host);
    EXPECT_EQ(Host::active(), host.get());
    EXPECT_EQ(Host::Start(), nullptr);
    host.reset();
    EXPECT_EQ(Host::active(), nullptr);
    EXPECT_TRUE(Host::Start());
}

TEST(HostLife, Call4D_WithoutAHost_ServesMemoryAlone) {
    EngineBlock block = Block();
    block.fParam1 = ZR_HANDLE_NEW;
    block.fParam2 = 4;
    EXPECT_EQ(Call(ZR_SEL_Handle, &block), 0);
    EXPECT_TRUE(DisposeHandle(block.fHandle));
    for (int selector : {ZR_SEL_GetProcessVariable, ZR_SEL_ExecuteCommand, ZR_SEL_Yield, ZR_SEL_Alert}) {
        EngineBlock other = Block();
        EXPECT_EQ(Call(selector, &other), ZR_ERR_NOT_NOW) << selector;
    }
    Host::Call4D(ZR_SEL_Handle, nullptr);
}

TEST(HostLife, StartupRecord_CarriesVersionAndDoor) {
    Options options;
    options.version = 0x1760;
    auto host = Host::Start(options);
    ZR_StartupRecord record = host->startupRecord();
    EXPECT_EQ(record.fHostVersion, 0x1760);
    EngineBlock block = Block();
    block.fParam3 = ZR_HOST_VERSION_REQUEST;
    record.fCall4D(ZR_SEL_HostVersion, &block);
    EXPECT_EQ(block.fError, 0);
    EXPECT_EQ(block.fParam1, 0x1760);
    EXPECT_EQ(block.fFlags, 0);
    EXPECT_FALSE(host->options().applicationPath.empty());
}

TEST(HostLife, HostVersion_Compiled_SetsBothFlags) {
    Options options;
    options.compiled = true;
    auto host = Host::Start(options);
    EngineBlock block = Block();
    block.fParam3 = ZR_HOST_VERSION_REQUEST;
    EXPECT_EQ(Call(ZR_SEL_HostVersion, &block), 0);
    EXPECT_EQ(block.fFlags, 0x8800000);
    block.fParam3 = 0;
    EXPECT_EQ(Call(ZR_SEL_HostVersion, &block), ZR_ERR_PARAMETER);
}

// Every selector ---------------------------------------------------------------------------------------------------

TEST_F(HostEngine, Selectors_Unknown_AreNamedSo) {
    for (int selector : {0, 1, -1, -999, 514, INT32_MAX, INT32_MIN, -435}) {
        EngineBlock block = Block();
        block.fParam1 = 77;
        EXPECT_EQ(Call(selector, &block), ZR_ERR_UNKNOWN_SELECTOR) << selector;
        EXPECT_EQ(block.fParam1, 77);
    }
}

TEST_F(HostEngine, Selectors_WithEmptyBlocks_NeverCrash) {
    for (const ZR_HostSelectorRow& row : kHostSelectors) {
        EngineBlock block = Block();
        Call(row.number, &block);
        EXPECT_NE(block.fError, ZR_ERR_UNKNOWN_SELECTOR) << row.name;
        if (block.fHandle) DisposeHandle(block.fHandle);
        if (row.number == ZR_SEL_CollectionCreate) Release(CheckedCollection(reinterpret_cast<void*>(block.fParam1)));
    }
}

TEST_F(HostEngine, Selectors_WithAbsurdNumbers_NeverCrash) {
    // Fields that are no addresses in any selector, or are null: handles, lengths, the fourth parameter, the reals.
    for (const ZR_HostSelectorRow& row : kHostSelectors)
        for (int64_t number : {int64_t(-1), INT64_MIN, INT64_MAX, int64_t(1) << 33, int64_t(-5)}) {
            EngineBlock block = Block();
            block.fHandle = reinterpret_cast<PA_Handle>(number);
            block.fLength1 = block.fLength2 = number;
            block.fReal = double(number) * 1e300;
            block.fFlags = int32_t(number);
            for (PA_Unichar& unit : block.fName) unit = 0xD800;
            bool addressInFour = row.number == ZR_SEL_ExecuteMethod || row.number == ZR_SEL_ExecuteFunction ||
                                 row.number == ZR_SEL_MethodByID || row.number == ZR_SEL_OpenDialog;
            if (!addressInFour) block.fParam4 = number;
            Call(row.number, &block);
            if (row.number == ZR_SEL_PointerByName || row.number == ZR_SEL_Tokenize) DisposeHandle(block.fHandle);
            if (row.number == ZR_SEL_CollectionCreate)
                Release(CheckedCollection(reinterpret_cast<void*>(block.fParam1)));
        }
}

TEST_F(HostEngine, Selectors_NumbersInTheFirstParameters_MayBeAbsurd) {
    static const int selectors[] = {ZR_SEL_FormatLongint,
                                    ZR_SEL_FormatDate,
                                    ZR_SEL_FormatTime,
                                    ZR_SEL_TableName,
                                    ZR_SEL_FieldName,
                                    ZR_SEL_FieldProperties,
                                    ZR_SEL_NextRecord,
                                    ZR_SEL_FirstRecord,
                                    ZR_SEL_GotoSelectedRecord,
                                    ZR_SEL_SelectedRecordNumber,
                                    ZR_SEL_RecordsInSelection,
                                    ZR_SEL_RecordNumber,
                                    ZR_SEL_Relate,
                                    ZR_SEL_UseAutomaticRelations,
                                    ZR_SEL_CommandName,
                                    ZR_SEL_WindowPtr,
                                    ZR_SEL_ObjectAddRef,
                                    ZR_SEL_ObjectRelease,
                                    ZR_SEL_CollectionLength,
                                    ZR_SEL_DisposePicture,
                                    ZR_SEL_GetPictureData,
                                    ZR_SEL_Handle};
    for (int selector : selectors)
        for (int64_t number : {int64_t(-1), INT64_MIN, INT64_MAX, int64_t(2001), int64_t(8)}) {
            EngineBlock block = Block();
            block.fParam1 = block.fParam2 = block.fParam4 = number;
            if (selector == ZR_SEL_FormatDate || selector == ZR_SEL_FormatTime) block.fParam3 = number;
            Call(selector, &block);
        }
}

// Structure, dialogs -----------------------------------------------------------------------------------------------

TEST_F(HostEngine, Structure_IsEmpty) {
    EngineBlock block = Block();
    block.fParam1 = 1;
    block.fParam2 = 1;
    EXPECT_EQ(Call(ZR_SEL_FieldProperties, &block), 0);
    EXPECT_EQ(block.fParam3, -1);
    SetName(&block, u"[Table]Field");
    EXPECT_EQ(Call(ZR_SEL_TableAndFieldNumbers, &block), 0);
    EXPECT_EQ(block.fParam1, 0);
    EXPECT_EQ(block.fParam2, 0);
    static const struct {
        int selector;
        int64_t second;
    } rows[] = {
        {ZR_SEL_TableName, 5},          {ZR_SEL_FieldName, 5},          {ZR_SEL_NextRecord, 5},
        {ZR_SEL_FirstRecord, 5},        {ZR_SEL_GotoSelectedRecord, 5}, {ZR_SEL_SelectedRecordNumber, 0},
        {ZR_SEL_RecordsInSelection, 0}, {ZR_SEL_RecordNumber, -1},      {ZR_SEL_Relate, 5},
        {ZR_SEL_SetField, 5},
    };
    for (const auto& row : rows) {
        block = Block();
        block.fParam1 = 1;
        block.fParam2 = 5;
        SetName(&block, u"old");
        EXPECT_EQ(Call(row.selector, &block), ZR_ERR_NO_RECORD) << row.selector;
        EXPECT_EQ(block.fParam2, row.second) << row.selector;
        if (row.selector == ZR_SEL_TableName || row.selector == ZR_SEL_FieldName) { EXPECT_EQ(NameOf(block), ""); }
    }
    Variable record;
    block = Block();
    block.fParam1 = block.fParam2 = 1;
    block.fParam3 = Address(&record.record());
    EXPECT_EQ(Call(ZR_SEL_GetField, &block), ZR_ERR_NO_RECORD);
    EXPECT_EQ(record.record().fType, eVK_Undefined);
    EXPECT_EQ(Call(ZR_SEL_UseAutomaticRelations, &block), 0);
}

TEST_F(HostEngine, Dialogs_AreRefused_AlertPrints) {
    std::u16string text = u"Hello \u00e4";
    EngineBlock block = Block();
    block.fParam1 = Address(text.data());
    block.fLength1 = int64_t(text.size());
    EXPECT_EQ(Call(ZR_SEL_Alert, &block), 0);
    EXPECT_EQ(alerts, (std::vector<std::string>{"Hello \u00e4"}));
    for (int selector :
         {ZR_SEL_OpenDialog, ZR_SEL_ModalDialog, ZR_SEL_CloseDialog, ZR_SEL_DialogUpdate, ZR_SEL_DialogSet,
          ZR_SEL_DialogGet, ZR_SEL_DialogSetEnterable, ZR_SEL_DialogWindow, ZR_SEL_WindowPtr}) {
        block = Block();
        EXPECT_EQ(Call(selector, &block), ZR_ERR_NO_DIALOG) << selector;
        EXPECT_EQ(block.fHandle, nullptr);
    }
}

TEST_F(HostEngine, Localise_AnswersTheKey) {
    PA_Unistring record;
    EngineBlock block = Block();
    SetName(&block, u"Key");
    block.fParam1 = Address(&record);
    EXPECT_EQ(Call(ZR_SEL_LocaliseString, &block), 0);
    EXPECT_EQ(UnistringText(record), u"Key");
    FreeUnistring(&record);
    EXPECT_EQ(Call(ZR_SEL_LocaliseStringByID, &block), 0);
    EXPECT_EQ(UnistringText(record), u"");
}

// Commands ---------------------------------------------------------------------------------------------------------

std::vector<std::vector<std::string>> TsvRows(const std::string& name) {
    std::ifstream file(std::string(ZR_SOURCE_DIR) + "/host/data/" + name);
    EXPECT_TRUE(file) << name;
    std::vector<std::vector<std::string>> rows;
    std::string line;
    std::getline(file, line);
    while (std::getline(file, line)) {
        std::vector<std::string> fields;
        std::istringstream cells(line + "\t");
        for (std::string cell; std::getline(cells, cell, '\t');) fields.push_back(cell);
        rows.push_back(fields);
    }
    return rows;
}

TEST_F(HostEngine, CommandTable_EqualsTheData) {
    std::map<int, std::vector<std::string>> english;
    for (auto& row : TsvRows("commands.tsv")) english[std::stoi(row[0])] = row;
    EXPECT_GT(english.size(), 1400u);
    for (int id = -5; id <= Host::kLastCommand + 5; ++id) {
        CommandInfo info = host->command(id);
        auto row = english.find(id);
        ASSERT_EQ(info.id, row == english.end() ? 0 : id);
        EngineBlock block = Block();
        block.fParam1 = id;
        SetName(&block, u"stale");
        EXPECT_EQ(Call(ZR_SEL_CommandName, &block), info.id ? 0 : ZR_ERR_UNKNOWN_COMMAND);
        EXPECT_EQ(NameOf(block), info.name);
        if (!info.id) continue;
        EXPECT_EQ(info.name, row->second[1]);
        EXPECT_EQ(info.threadSafe, row->second[2] == "1") << id;
        EXPECT_EQ(info.served, FindCommand(id) != nullptr);
    }
}

TEST(HostFrench, CommandNames_AreFrenchWhereThereIsOne) {
    Options options;
    options.language = "fr";
    auto host = Host::Start(options);
    size_t checked = 0;
    for (auto& row : TsvRows("commands_fr.tsv")) {
        EXPECT_EQ(host->command(std::stoi(row[0])).name, row[1]);
        ++checked;
    }
    EXPECT_GT(checked, 300u);
    EXPECT_EQ(host->command(1).name, "Somme");
    EXPECT_EQ(host->commandNumber("somme"), 1);
    EXPECT_EQ(host->commandNumber("SUM"), 1);
    EXPECT_EQ(host->commandNumber("_O_C_INTEGER"), 282);
    EXPECT_EQ(host->commandNumber("no such command"), 0);
    EXPECT_EQ(host->commandNumber(""), 0);
}

TEST_F(HostEngine, Commands_NotServed_AnswerUndefinedAndAreNamedOnce) {
    int unserved = 0;
    for (int id = 1; id <= Host::kLastCommand && !unserved; ++id)
        if (host->command(id).id && !host->command(id).served) unserved = id;
    ASSERT_NE(unserved, 0);
    for (int i = 0; i < 3; ++i) {
        host->setOK(true);
        int16_t error = 0;
        EXPECT_TRUE(Execute(ZR_SEL_ExecuteCommand, unserved, {Value(1.0)}, &error).isUndefined());
        EXPECT_EQ(error, ZR_ERR_UNKNOWN_COMMAND);
        EXPECT_FALSE(host->ok());
    }
    EXPECT_EQ(notServed.size(), 1u);
    EXPECT_EQ(notServed[0], std::to_string(unserved) + " " + std::string(host->command(unserved).name));
    for (int id : {0, -1, 2001, INT32_MAX, INT32_MIN}) {
        int16_t error = 0;
        Execute(ZR_SEL_ExecuteCommand, id, {}, &error);
        EXPECT_EQ(error, ZR_ERR_UNKNOWN_COMMAND) << id;
    }
}

TEST_F(HostEngine, ExecuteCommand_BadTables_AreRefused) {
    static const struct {
        bool table;
        int64_t count;
        int16_t error;
    } rows[] = {{false, 1, ZR_ERR_PARAMETER},
                {true, -1, ZR_ERR_PARAMETER},
                {true, INT64_MAX, ZR_ERR_PARAMETER},
                {true, 32768, ZR_ERR_PARAMETER},
                {true, INT64_MIN, ZR_ERR_PARAMETER}};
    PA_Variable* nothing[1] = {nullptr};
    for (const auto& row : rows) {
        Variable result;
        EngineBlock block = Block();
        block.fParam1 = row.table ? Address(nothing) : 0;
        block.fParam2 = Address(&result.record());
        block.fParam3 = 10;
        block.fParam4 = row.count;
        EXPECT_EQ(Call(ZR_SEL_ExecuteCommand, &block), row.error) << row.count;
    }
    EngineBlock block = Block();  // null entries and no place for the result
    block.fParam1 = Address(nothing);
    block.fParam3 = 13;
    block.fParam4 = 1;
    Call(ZR_SEL_ExecuteCommand, &block);
}

TEST_F(HostEngine, EveryCommand_WithoutParameters_NeverCrashes) {
    static const int dangerous[] = {
        151,  // beeps
        372,  // ends the process
    };
    host->setVariable(u"unused", Value(1.0));
    for (int id = 1; id <= Host::kLastCommand; ++id) {
        if (std::find(std::begin(dangerous), std::end(dangerous), id) != std::end(dangerous)) continue;
        const std::string name(host->command(id).name);
        if (name.find("QUIT") != name.npos || name.find("PAUSE") != name.npos || name.find("Execute") != name.npos)
            continue;
        Execute(ZR_SEL_ExecuteCommand, id, {});
    }
}

// Methods and expressions ------------------------------------------------------------------------------------------

Value RunText(int selector, std::u16string_view code, std::vector<Value> arguments, int16_t* error) {
    std::vector<Variable> records;
    for (const Value& argument : arguments) records.push_back(RecordOf(argument));
    std::vector<PA_Variable*> table;
    for (Variable& record : records) table.push_back(&record.record());
    Variable result;
    EngineBlock block = Block();
    block.fParam1 = Address(code.data());
    block.fLength1 = int64_t(code.size());
    block.fParam2 = Address(table.data());
    block.fParam3 = int64_t(table.size());
    block.fParam4 = Address(&result.record());
    *error = Call(selector, &block);
    return ReadRecord(result.record());
}

TEST_F(HostEngine, Methods_Registered_RunByNameAndNumber) {
    int number = host->registerMethod(u"Add", [](std::span<Value> arguments) {
        double sum = 0;
        for (const Value& argument : arguments) sum += argument.number();
        return Value(sum);
    });
    int16_t error = 0;
    EXPECT_EQ(RunText(ZR_SEL_ExecuteMethod, u"ADD", {Value(1.0), Value::Longint(2)}, &error).number(), 3.0);
    EXPECT_EQ(error, 0);
    EngineBlock block = Block();
    SetName(&block, u"add");
    EXPECT_EQ(Call(ZR_SEL_MethodID, &block), 0);
    EXPECT_EQ(block.fParam1, number);
    Variable result;
    block.fParam4 = Address(&result.record());
    EXPECT_EQ(Call(ZR_SEL_MethodByID, &block), 0);
    EXPECT_EQ(ReadRecord(result.record()).number(), 0.0);
    block.fParam1 = 99;
    EXPECT_EQ(Call(ZR_SEL_MethodByID, &block), ZR_ERR_UNKNOWN_METHOD);
    host->unregisterMethod(u"aDD");
    RunText(ZR_SEL_ExecuteMethod, u"Add", {}, &error);
    EXPECT_EQ(error, ZR_ERR_UNKNOWN_METHOD);
    SetName(&block, u"add");
    EXPECT_EQ(Call(ZR_SEL_MethodID, &block), 0);
    EXPECT_EQ(block.fParam1, 0);
}

TEST_F(HostEngine, Methods_ThatThrow_EndWithAnError) {
    host->registerMethod(u"Bad", [](std::span<Value>) -> Value { throw std::runtime_error("no"); });
    int16_t error = 0;
    EXPECT_TRUE(RunText(ZR_SEL_ExecuteMethod, u"Bad", {}, &error).isUndefined());
    EXPECT_EQ(error, ZR_ERR_PARAMETER);
}

TEST_F(HostEngine, Methods_Resolver_IsAskedOnce) {
    int asked = 0;
    host->setMethodResolver([&](std::u16string_view name) -> Method {
        ++asked;
        if (name != u"Late") return {};
        return [](std::span<Value>) { return Value(u"loaded"); };
    });
    Value result;
    EXPECT_TRUE(host->runMethod(u"Late", {}, &result));
    EXPECT_TRUE(host->runMethod(u"late", {}, &result));
    EXPECT_EQ(result.text(), u"loaded");
    EXPECT_EQ(asked, 1);
    EXPECT_FALSE(host->runMethod(u"Never", {}, &result));
    EXPECT_EQ(asked, 2);
}

TEST_F(HostEngine, ExecuteFunction_ReadsNamesAndLiterals) {
    host->setVariable(u"vName", Value(u"Anna"));
    host->setVariable(u"my list", Value::Array(eVK_ArrayReal, {Value(0.0), Value(7.0)}));
    host->setInterprocessVariable(u"all", Value(5.0));
    host->registerMethod(u"Twice", [](std::span<Value> arguments) { return Value(arguments[0].number() * 2); });
    static const struct {
        const char16_t* text;
        const char* json;
        int kind;
    } rows[] = {
        {u"vName", "\"Anna\"", eVK_Text},
        {u" vname ", "\"Anna\"", eVK_Text},
        {u"OK", "0", eVK_Longint},
        {u"<>all", "5", eVK_Real},
        {u"my list{1}", "7", eVK_Real},
        {u"12", "12", eVK_Longint},
        {u"-12.5", "-12.5", eVK_Real},
        {u"1e3", "1000", eVK_Real},
        {u"0xFF", "255", eVK_Longint},
        {u"3000000000", "3000000000", eVK_Real},
        {u"\"a\\\"b\\n\"", "\"a\\\"b\\n\"", eVK_Text},
        {u"True", "true", eVK_Boolean},
        {u"false", "false", eVK_Boolean},
        {u"!2024-02-29!", "\"2024-02-29\"", eVK_Date},
        {u"?01:00:00?", "3600", eVK_Time},
        {u"Twice(21)", "42", eVK_Real},
        {u"Twice(Twice(my list{1}))", "28", eVK_Real},
        {u"<>none", "null", eVK_Undefined},
    };
    for (const auto& row : rows) {
        int16_t error = 0;
        Variable result;
        EngineBlock block = Block();
        block.fParam1 = Address(row.text);
        block.fLength1 = int64_t(std::u16string_view(row.text).size());
        block.fParam4 = Address(&result.record());
        error = Call(ZR_SEL_ExecuteFunction, &block);
        EXPECT_EQ(error, 0) << ToUtf8(row.text);
        EXPECT_EQ(WriteJson(ReadRecord(result.record())), row.json) << ToUtf8(row.text);
        EXPECT_EQ(UnifiedKind(result.record()), row.kind) << ToUtf8(row.text);
    }
    static const char16_t* const unreadable[] = {u"",           u"nothing",  u"1+2",      u"\"open", u"!2024-01-01",
                                                 u"my list{9}", u"Twice(1",  u"Twice(1;", u"(1)",    u"0x",
                                                 u"1 2",        u"vName{1}", u"-",        u"<>"};
    for (const char16_t* text : unreadable) {
        int16_t error = 0;
        Variable result;
        EngineBlock block = Block();
        block.fParam1 = Address(text);
        block.fLength1 = int64_t(std::u16string_view(text).size());
        block.fParam4 = Address(&result.record());
        error = Call(ZR_SEL_ExecuteFunction, &block);
        EXPECT_EQ(error, ZR_ERR_UNKNOWN_METHOD) << ToUtf8(text);
        EXPECT_EQ(result.record().fType, eVK_Undefined) << ToUtf8(text);
    }
    std::u16string deep;
    for (int i = 0; i < 10000; ++i) deep += u"Twice(";
    int16_t error = 0;
    RunText(ZR_SEL_ExecuteMethod, deep, {}, &error);
    EXPECT_EQ(error, ZR_ERR_UNKNOWN_METHOD);
}

TEST_F(HostEngine, ExecuteMethod_ALineOfCode_Assigns) {
    int16_t error = 0;
    RunText(ZR_SEL_ExecuteMethod, u"vTotal := 5", {}, &error);
    EXPECT_EQ(error, 0);
    EXPECT_EQ(host->variable(u"vTotal").number(), 5);
    RunText(ZR_SEL_ExecuteMethod, u"<>shared:=\"x\"", {}, &error);
    EXPECT_EQ(error, 0);
    EXPECT_EQ(host->interprocessVariable(u"shared").text(), u"x");
    RunText(ZR_SEL_ExecuteMethod, u"5:=5", {}, &error);
    EXPECT_EQ(error, ZR_ERR_UNKNOWN_METHOD);
}

// Processes --------------------------------------------------------------------------------------------------------

TEST_F(HostEngine, Processes_HaveTheirOwnVariables) {
    host->setVariable(u"x", Value(1.0));
    std::atomic<int> seen{0};
    int number = host->runProcess(u"worker", /*preemptive*/ false, [&] {
        if (Host::active()->variable(u"x").isUndefined()) seen = Host::active()->currentProcess().number;
        Host::active()->setVariable(u"x", Value(2.0));
    });
    EXPECT_EQ(number, 2);
    EXPECT_TRUE(host->waitForProcess(number));
    EXPECT_EQ(seen, 2);
    EXPECT_EQ(host->variable(u"x").number(), 1.0);
    EXPECT_EQ(FindProcess(*host, number).state, ProcessState::DoesNotExist);
    EXPECT_FALSE(host->waitForProcess(99));
    EXPECT_FALSE(host->waitForProcess(1)) << "not for oneself";
    EngineBlock block = Block();
    EXPECT_EQ(Call(ZR_SEL_CurrentProcessNumber, &block), 0);
    EXPECT_EQ(block.fParam1, 1);
}

TEST_F(HostEngine, Cooperative_Processes_RunOneAtATime) {
    int running = 0, most = 0, turns = 0;  // guarded by the turn
    auto body = [&] {
        for (int i = 0; i < 50; ++i) {
            most = std::max(most, ++running);
            ++turns;
            --running;
            Yield(*Host::active());
        }
    };
    std::vector<int> numbers;
    for (int i = 0; i < 4; ++i) numbers.push_back(host->runProcess(u"p", false, body));
    EXPECT_EQ(turns, 0) << "the main process has not yielded yet";
    for (int number : numbers) EXPECT_TRUE(host->waitForProcess(number));
    EXPECT_EQ(most, 1);
    EXPECT_EQ(turns, 200);
}

TEST_F(HostEngine, Preemptive_Process_RunsWhileTheMainOneDoes) {
    std::atomic<bool> done{false};
    int number = host->runProcess(u"free", /*preemptive*/ true, [&] {
        EXPECT_TRUE(IsPreemptive(*Host::active()));
        done = true;
    });
    for (int i = 0; i < 5000 && !done; ++i) std::this_thread::sleep_for(std::chrono::milliseconds(1));
    EXPECT_TRUE(done) << "without a yield";
    EXPECT_TRUE(host->waitForProcess(number));
}

TEST_F(HostEngine, RunInMainProcess_RunsOnTheMainThread) {
    std::thread::id main = std::this_thread::get_id(), ran;
    EngineBlock block = Block();
    static int argument;
    argument = 0;
    block.fParam1 = Address(reinterpret_cast<void*>(+[](void* data) { ++*static_cast<int*>(data); }));
    block.fParam2 = Address(&argument);
    EXPECT_EQ(Call(ZR_SEL_RunInMainProcess, &block), 0);
    EXPECT_EQ(argument, 1);
    block.fParam1 = 0;
    EXPECT_EQ(Call(ZR_SEL_RunInMainProcess, &block), ZR_ERR_PARAMETER);
    for (bool preemptive : {false, true}) {
        ran = {};
        int number = host->runProcess(
            u"p", preemptive, [&] { Host::active()->runInMainProcess([&] { ran = std::this_thread::get_id(); }); });
        EXPECT_TRUE(host->waitForProcess(number));
        EXPECT_EQ(ran, main);
    }
}

TEST_F(HostEngine, ForeignThread_IsGivenAProcess) {
    int64_t number = 0;
    size_t listed = 0;
    std::thread([&] {
        EngineBlock block = Block();
        Call(ZR_SEL_CurrentProcessNumber, &block);
        number = block.fParam1;
        listed = ListProcesses(*host).size();
    }).join();
    EXPECT_GT(number, 1);
    EXPECT_EQ(listed, 2u);
    EXPECT_EQ(ListProcesses(*host).size(), 1u);
}

TEST_F(HostEngine, Semaphores_BelongToOneProcess) {
    EXPECT_FALSE(SetSemaphore(*host, u"Lock", 0));
    EXPECT_TRUE(SetSemaphore(*host, u"LOCK", 0));
    EXPECT_TRUE(TestSemaphore(*host, u"lock"));
    bool other = false, later = true;
    int number = host->runProcess(u"p", true, [&] {
        other = SetSemaphore(*Host::active(), u"lock", 5);
        later = SetSemaphore(*Host::active(), u"lock", 10000);
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    ClearSemaphore(*host, u"lock");
    EXPECT_TRUE(host->waitForProcess(number));
    EXPECT_TRUE(other);
    EXPECT_FALSE(later);
    EXPECT_FALSE(TestSemaphore(*host, u"lock")) << "let go with its process";
}

TEST_F(HostEngine, DelayAndResume_PauseAndResume) {
    std::atomic<int> steps{0};
    int number = host->runProcess(u"p", true, [&] {
        Sleep(*Host::active(), 60000);
        ++steps;
        PauseProcess(*Host::active(), Host::active()->currentProcess().number);
        ++steps;
    });
    for (int expected : {1, 2}) {
        ProcessState wanted = expected == 1 ? ProcessState::Delayed : ProcessState::Paused;
        for (int i = 0; i < 5000 && FindProcess(*host, number).state != wanted; ++i)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        EXPECT_EQ(FindProcess(*host, number).state, wanted);
        ResumeProcess(*host, number);
        for (int i = 0; i < 5000 && steps < expected; ++i) std::this_thread::sleep_for(std::chrono::milliseconds(1));
        EXPECT_EQ(steps, expected);
    }
    EXPECT_TRUE(host->waitForProcess(number));
    ResumeProcess(*host, 99);
    PauseProcess(*host, 99);
    DelayProcess(*host, 99, 5);
}

TEST_F(HostEngine, Stop_EndsSleepingAndWaitingProcesses) {
    for (bool preemptive : {false, true})
        host->runProcess(u"sleeper", preemptive, [] { Sleep(*Host::active(), 3600000); });
    host->runProcess(u"asker", true, [] { Host::active()->runInMainProcess([] {}); });
    host->runProcess(u"looper", true, [] {
        while (!Host::active()->interrupted()) Yield(*Host::active());
    });
    host->runProcess(u"late", false, [] {});
    auto start = std::chrono::steady_clock::now();
    host.reset();
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
}

TEST(HostInterrupt, Options_Interrupted_EndsASleep) {
    std::atomic<bool> stop{false};
    Options options;
    options.interrupted = [&] { return stop.load(); };
    auto host = Host::Start(options);
    EXPECT_FALSE(host->interrupted());
    std::thread later([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        stop = true;
    });
    Sleep(*host, 3600000);
    EXPECT_TRUE(host->interrupted());
    later.join();
}

TEST_F(HostEngine, State_OfCommands_IsMadeOnceAndEndsWithTheHost) {
    struct Documents {
        int open = 0;
        std::shared_ptr<int> mark;
    };
    host->state<Documents>().open = 5;
    EXPECT_EQ(host->state<Documents>().open, 5);
    auto mark = std::make_shared<int>(1);
    host->state<Documents>().mark = mark;
    struct Held {
        int n = 0;
    };
    host->currentProcess().of<Held>().n = 3;
    EXPECT_EQ(host->currentProcess().of<Held>().n, 3);
    host.reset();
    EXPECT_EQ(mark.use_count(), 1);
}

}  // namespace
}  // namespace zrhost
