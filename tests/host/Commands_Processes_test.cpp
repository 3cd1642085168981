#include <chrono>
#include <thread>

#include "tests/host/Commands_Test.h"

namespace zrhost::test {
namespace {

using Processes = CommandTest;

TEST_F(Processes, Facts_OfTheMainProcess_AreTruthful) {
    EXPECT_EQ(Text(322), "1");
    EXPECT_EQ(Text(335), "1");
    EXPECT_EQ(Text(342), "1");
    EXPECT_EQ(Text(343), "1");
    EXPECT_EQ(Text(330, {1}), "0");
    EXPECT_EQ(Text(330, {99}), "-100");
    EXPECT_EQ(Text(330), "-100");
    EXPECT_EQ(Text(672), "false");
    Run(336, {1, "", L(9), L(-1), L(9)});
    const std::string name = ShowAfter(2);
    EXPECT_EQ(name, Text(1392));
    EXPECT_EQ(Text(372, {"no such process"}), "0");
    Run(336, {1, "", L(9), L(-1), L(9)});
    EXPECT_EQ(ShowAfter(3), "0");
    EXPECT_GE(After(4).integer(), 0);
    EXPECT_EQ(ShowAfter(5), "0") << "cooperative";
    Run(336, {99, "old", L(9), L(9), L(9)});
    EXPECT_EQ(ShowAfter(2), "\"\"");
    EXPECT_EQ(ShowAfter(3), "-100");
    Run(336, {});
}

class PreemptiveProcesses : public CommandTest {
    void Configure(Options& options) override { options.preemptive = true; }
};

TEST_F(PreemptiveProcesses, Properties_PreemptiveProcess_HaveBitOne) {
    Run(336, {1, "", L(0), L(0), L(0)});
    EXPECT_EQ(ShowAfter(5), "2");
}

TEST_F(Processes, NewProcess_Method_RunsWithItsArguments) {
    host->registerMethod(u"Work", [this](std::span<Value> arguments) {
        host->setInterprocessVariable(u"seen", arguments[0]);
        return Value();
    });
    const int number = Run(317, {"Work", 0, "Worker", 42}).integer();
    EXPECT_GT(number, 1);
    host->waitForProcess(number);
    EXPECT_EQ(Show(host->interprocessVariable(u"seen")), "42");
    EXPECT_EQ(Text(317), "0");
    EXPECT_EQ(Text(317, {""}), "0");
    const int lost = Run(317, {"no such method"}).integer();
    host->waitForProcess(lost);
}

TEST_F(Processes, CountTasks_WithAGap_ReachesTheHighestNumber) {
    auto wait = [this] {
        while (!host->interrupted()) Run(311);
    };
    const int first = host->runProcess(u"First", false, [] {}), second = host->runProcess(u"Second", false, wait);
    host->waitForProcess(first);
    EXPECT_EQ(Run(335).integer(), second);
    EXPECT_EQ(Run(343).integer(), 2);
    Run(1634, {second});
    host->waitForProcess(second);
}

TEST_F(Processes, NewProcess_SameNameWithStar_IsNotStartedTwice) {
    host->registerMethod(u"Wait", [this](std::span<Value>) {
        Run(323, {host->currentProcess().number, 6000});
        return Value();
    });
    const int number = host->runProcess(u"Once", false, [this] {
        while (!host->interrupted()) std::this_thread::sleep_for(std::chrono::milliseconds(1)), host->currentProcess();
    });
    EXPECT_EQ(Run(317, {"Wait", 0, "ONCE", Star()}).integer(), number);
    EXPECT_EQ(Run(372, {"once"}).integer(), number);
    Run(1634, {number});
    host->waitForProcess(number);
    EXPECT_EQ(Run(330, {number}).integer(), -100);
}

TEST_F(Processes, Delay_OwnProcess_LastsAndIsInterruptible) {
    const auto start = std::chrono::steady_clock::now();
    Run(323, {1, 6});
    const auto delayed = std::chrono::steady_clock::now() - start;
    EXPECT_GE(delayed, std::chrono::milliseconds(90));
    interrupt = true;
    Run(323, {1, 1e9});
    Run(323, {1, -5});
    Run(323, {99, 5});
    Run(323, {});
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
}

TEST_F(Processes, Semaphores_SetTestClear_AsDocumented) {
    EXPECT_EQ(Text(652, {"lock"}), "false");
    EXPECT_EQ(Text(143, {"lock"}), "false");
    EXPECT_EQ(Text(652, {"lock"}), "true");
    bool other = false;
    const int number = host->runProcess(u"Other", false, [&] {
        EngineBlock block{};
        Variable name, result;
        WriteRecord(&name.record(), Value(u"lock"));
        PA_Variable* table[] = {&name.record()};
        block.fParam1 = int64_t(table);
        block.fParam2 = int64_t(&result.record());
        block.fParam3 = 143;
        block.fParam4 = 1;
        Host::Call4D(ZR_SEL_ExecuteCommand, &block);
        other = ReadRecord(result.record()).boolean();
    });
    host->waitForProcess(number);
    EXPECT_TRUE(other) << "another process has it";
    Run(144, {"lock"});
    EXPECT_EQ(Text(652, {"lock"}), "false");
    Run(144, {"lock"});
    Run(144, {});
    EXPECT_EQ(Text(652, {}), "false");
}

TEST_F(Processes, Worker_Tasks_RunInOrderInOneProcess) {
    std::vector<std::string> seen;
    host->registerMethod(u"Note", [&](std::span<Value> arguments) {
        seen.push_back(Show(arguments[0]) + " in " + std::to_string(host->currentProcess().number != 1));
        return Value();
    });
    for (int i = 1; i <= 3; ++i) Run(1389, {"bench", "Note", i});
    Run(1390, {"bench"});
    for (int wait = 0; wait < 500 && seen.size() < 3; ++wait) Run(323, {1, 1});
    EXPECT_EQ(seen, (std::vector<std::string>{"1 in 1", "2 in 1", "3 in 1"}));
    Run(1389, {"", "Note"});
    EXPECT_NE(error, 0);
    Run(1389, {});
    EXPECT_NE(error, 0);
    Run(1389, {77, "Note"});
    EXPECT_NE(error, 0);
    Run(1390, {"no such worker"});
    Run(1390, {});
}

TEST_F(Processes, Worker_HostEnds_DoesNotHoldItUp) {
    Run(1389, {"idle", "no such method"});
    Run(311);
}

TEST_F(Processes, Errors_AndAssertions_AsDocumented) {
    Run(155, {"OnError"});
    EXPECT_EQ(Text(704), "\"OnError\"");
    Run(155, {""});
    EXPECT_EQ(Text(704), "\"\"");
    host->setOK(true);
    Run(1129, {true, "fine"});
    EXPECT_TRUE(OK());
    Run(1129, {false, "not fine"});
    EXPECT_FALSE(OK());
    EXPECT_EQ(lines.back(), "Assert failed: not fine");
    EXPECT_EQ(Text(1130), "true");
    Run(1131, {false});
    EXPECT_EQ(Text(1130), "false");
    host->setOK(true);
    Run(1129, {false});
    EXPECT_TRUE(OK());
    EXPECT_EQ(Text(1132, {false}), "false");
    EXPECT_EQ(Text(1132, {true, "x"}), "true");
    for (int id : {324, 325, 326}) Run(id, {1});
    EXPECT_EQ(Text(327), "1");
}

TEST_F(Processes, PauseAndResume_OtherProcess_TakeEffect) {
    std::atomic<int> turns{0};
    const int number = host->runProcess(u"Turning", false, [&] {
        while (!host->interrupted()) {
            ++turns;
            EngineBlock block{};
            Host::Call4D(ZR_SEL_Yield, &block);
        }
    });
    while (turns == 0) Run(323, {1, 1});
    Run(319, {number});
    Run(323, {1, 6});
    EXPECT_EQ(Text(330, {number}), "5");
    const int held = turns;
    Run(323, {1, 6});
    EXPECT_EQ(turns, held);
    Run(320, {number});
    for (int wait = 0; wait < 500 && turns == held; ++wait) Run(323, {1, 1});
    EXPECT_GT(turns, held);
    Run(1634, {number});
    host->waitForProcess(number);
}

}  // namespace
}  // namespace zrhost::test
