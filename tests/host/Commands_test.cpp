// All commands together: what must be served, what the documentation lists, and that no argument hurts any of them.
#include <cstring>
#include <map>
#include <set>

#include "tests/host/Commands_Test.h"

namespace zrhost::test {
namespace {

using Commands = CommandTest;

// What the interpreter forwards, and what the library runs by number.
constexpr int kRequired[] = {
    // with a value
    100,
    182,
    254,
    335,
    342,
    343,
    397,
    458,
    459,
    483,
    484,
    486,
    489,
    490,
    491,
    494,
    495,
    524,
    1471,
    1472,
    1482,
    1517,
    8,
    9,
    17,
    18,
    19,
    20,
    21,
    22,
    99,
    255,
    94,
    95,
    98,
    23,
    24,
    25,
    114,
    16,
    102,
    179,
    400,
    523,
    460,
    356,
    899,
    1012,
    393,
    533,
    231,
    234,
    232,
    33,
    178,
    492,
    487,
    180,
    11,
    143,
    13,
    14,
    12,
    485,
    493,
    233,
    15,
    10,
    // without
    175,
    181,
    239,
    240,
    241,
    63,
    144,
    159,
    332,
    333,
    41,
    365,
    48,
    49,
    718,
    1007,
    // followed by OK
    268,
    267,
    265,
    266,
    264,
    163,
    162,
    678,
    682,
    692,
    229,
    955,
    // run by number by the library
    999,
    1000,
    256,
    257,
    336,
    538,
    994,
    1217,
    1218,
    1219,
    1225,
    1228,
    525,
    526,
    530,
    531,
    476,
    534,
    535,
    536,
    543,
    643,
    788,
    1009,
    1224,
    401,
    402,
    403,
    976,
    443,
    47,
    640,
    964,
};

TEST_F(Commands, Required_EveryNumber_IsServed) {
    for (int id : kRequired) EXPECT_NE(FindCommand(id), nullptr) << id << " " << host->command(id).name;
}

TEST_F(Commands, Rows_EveryServedNumber_HasAName) {
    for (int id = 1; id <= Host::kLastCommand; ++id)
        EXPECT_FALSE(FindCommand(id) && host->command(id).name.empty()) << id;
}

TEST_F(Commands, Documentation_Table_ListsWhatIsServed) {
    std::ifstream file(ZR_SOURCE_DIR "/docs/host-commands.md");
    ASSERT_TRUE(file.is_open());
    std::map<int, std::string> listed;
    std::string line;
    while (std::getline(file, line)) {
        int id = 0, after = 0;
        if (sscanf(line.c_str(), "| %d | %n", &id, &after) != 1 || after == 0) continue;
        const std::string rest = line.substr(size_t(after));
        EXPECT_TRUE(listed.emplace(id, rest.substr(0, rest.find(" |"))).second) << id << " is listed twice";
    }
    for (int id = 1; id <= Host::kLastCommand; ++id) {
        EXPECT_EQ(listed.count(id) == 1, FindCommand(id) != nullptr) << id << " " << host->command(id).name;
        EXPECT_TRUE(!listed.count(id) || listed[id] == host->command(id).name) << id << " " << listed[id];
    }
}

TEST_F(Commands, Unknown_Number_IsUndefinedAndNamedOnce) {
    host->setOK(true);
    EXPECT_EQ(Text(5, {1}), "undefined");
    EXPECT_FALSE(OK());
    EXPECT_EQ(error, ZR_ERR_UNKNOWN_COMMAND);
    Run(5, {1});
    EXPECT_EQ(notServed, (std::vector<int>{5}));
    for (int id : {0, -1, 2001, 1 << 30}) EXPECT_EQ(Text(id), "undefined") << id;
}

// Records as a careless caller might hand them over.
std::vector<Variable> Oddities() {
    std::vector<Variable> all;
    auto add = [&](const Arg& arg) {
        Variable variable;
        WriteRecord(&variable.record(), arg.value);
        all.push_back(variable);
    };
    for (const Arg& arg : {Arg(),
                           Arg(""),
                           Arg("x"),
                           Arg("no/such\x01/place"),
                           Arg(0),
                           Arg(-1),
                           Arg(2),
                           Arg(1e308),
                           Arg(NAN),
                           L(INT32_MIN),
                           L(INT32_MAX),
                           H(-1),
                           Arg(true),
                           Arg(Value(Date{})),
                           D(-1, 99, 77),
                           Hex(""),
                           Hex("00ff"),
                           Arg(Value(Ref<Object>())),
                           Arg(Value(Ref<Collection>())),
                           Arg(Value(Ref<Picture>())),
                           Json("{}"),
                           Json("[1]"),
                           Arg(Value::Null()),
                           Arg(Value(PointerBlock{})),
                           Reals({}),
                           Longints({1}),
                           Texts({"a", "b"})})
        add(arg);
    auto raw = [&](int kind, int filler, uint8_t fill) {
        Variable variable;
        PA_Variable record;
        std::memset(&record, fill, sizeof record);
        record.fType = uint8_t(kind);
        record.fFiller = uint8_t(filler);
        std::memcpy(&variable.record(), &record, sizeof record);
        all.push_back(std::move(variable));
    };
    raw(eVK_Operator, 1, 3);   // *
    raw(eVK_Operator, 1, 4);   // <
    raw(eVK_Undefined, 1, 1);  // a reference to a table that is not there
    raw(200, 0, 0);            // no such kind
    return all;
}

// Commands that end or pause this very process, or wait, as they should.
bool MayWait(int id, bool interrupted) {
    static const std::set<int> ends = {319, 1634}, waits = {143, 323, 811, 1389};
    return ends.count(id) != 0 || (!interrupted && waits.count(id) != 0);
}

bool MayTakeGigabytes(int id) { return id == 559 || id == 606; }  // a BLOB of the size that is asked for

void CallOddly(int id, const std::vector<Variable>& oddities, size_t first, int count, unsigned* turn) {
    std::vector<Variable> given;
    std::vector<PA_Variable*> table;
    for (int i = 0; i < count; ++i) {
        *turn = *turn * 1103515245 + 12345;
        given.push_back(oddities[i == 0 ? first : (*turn >> 16) % oddities.size()]);
        PA_Variable& last = given.back().record();
        const bool huge = last.fType == eVK_Longint && last.uValue.fLongint == INT32_MAX;
        if (huge && MayTakeGigabytes(id)) last.uValue.fLongint = 70000;
    }
    for (Variable& one : given) table.push_back(&one.record());
    Variable result;
    EngineBlock block{};
    block.fParam1 = int64_t(table.data());
    block.fParam2 = int64_t(&result.record());
    block.fParam3 = id;
    block.fParam4 = count;
    Host::Call4D(ZR_SEL_ExecuteCommand, &block);
    ReadRecord(result.record());
    for (Variable& one : given) ReadRecord(one.record());
}

TEST_F(Commands, OddArguments_EveryCommandAndCount_DoNoHarm) {
    unsigned turn = 12345;
    for (bool interrupted : {true, false}) {
        interrupt = interrupted;
        const std::vector<Variable> oddities = Oddities();
        for (int id = 1; id <= Host::kLastCommand; ++id) {
            if (!FindCommand(id) || MayWait(id, interrupted)) continue;
            for (int count = 0; count <= 6; ++count)
                for (size_t first = 0; first < (count ? oddities.size() : 1); ++first)
                    CallOddly(id, oddities, first, count, &turn);
        }
    }
    Run(392, {19, 30});
    interrupt = true;  // the processes that were started end
}

TEST_F(Commands, Objects_AfterManyCalls_AreAllFreed) {
    const long before = LiveObjects();
    {
        Value object = Run(1471, {"a", Json("[1,{}]")});
        Run(1225, {object});
        Run(1217, {object});
        Run(1224, {object, "a"});
        Run(1720, {object});
        Run(1554, {"a;b", ";"});
        parameters.clear();
    }
    EXPECT_EQ(LiveObjects(), before);
}

}  // namespace
}  // namespace zrhost::test
