#include <cmath>

#include "tests/runtime/FieldHost.h"
#include "tests/runtime/RuntimeTesting.h"

using namespace rt;

namespace {

// One token of every kind that an accumulator can be of.
enum Held {
    kNothing,
    kNumber,
    kLongint,
    kText,
    kDate,
    kTime,
    kBoolean,
    kPointer,
    kBlob,
    kPicture,
    kObject,
    kCollection,
    kNull,
    kHeldKinds
};

class Accumulator {
  public:
    explicit Accumulator(Held held) {
        switch (held) {
            case kNothing: tokens_.Kind(ZREXE_TOKEN_OTHER); break;
            case kNumber: tokens_.Number(7); break;
            case kLongint: tokens_.Longint(7); break;
            case kText: tokens_.String("ab"); break;
            case kDate: tokens_.Date(31, 1, 2000); break;
            case kTime: tokens_.Time(60); break;
            case kBoolean: tokens_.Boolean(true); break;
            case kPointer: tokens_.Named(ZREXE_TOKEN_POINTER, "v", -1); break;
            case kBlob: tokens_.Blob("xy"); break;
            case kPicture: tokens_.Picture("picture"); break;
            case kObject:
                tokens_.Kind(ZREXE_TOKEN_OBJECT);
                tokens_.at(1)->SetObjectRefNoIncrement(PA_CreateObject());
                break;
            case kCollection:
                tokens_.Kind(ZREXE_TOKEN_COLLECTION);
                tokens_.at(1)->SetCollectionRefNoIncrement(PA_CreateCollection());
                break;
            case kNull: tokens_.Kind(ZREXE_TOKEN_NULL); break;
            default: break;
        }
        before_ = text();
    }
    operator ZR_Executer_Token*() { return tokens_.at(1); }
    ZR_Executer_Token* operator->() { return tokens_.at(1); }
    std::string text() { return Describe(tokens_.at(1)); }
    std::string before() const { return before_; }

  private:
    Tokens tokens_;
    std::string before_;
};

std::string Ended(Program& program) {  // "" or "-2 Division by zero"
    if (!program->lastError) return "";
    return std::to_string(program->lastError) + " " + Narrow(&program->lastErrorText);
}

constexpr const char* kInvalid = "-10 Syntax error: Invalid type";
constexpr const char* kFormula = "-32 Formula not supported!";
constexpr const char* kDivision = "-2 Division by zero";

void CheckSources(const std::vector<std::pair<const char*, const char*>>& rows) {
    for (const auto& [expression, value] : rows)
        EXPECT_EQ(RunFor(std::string("$r:=") + expression), value) << expression;
}

}  // namespace

// The folds, cell by cell ------------------------------------------------------------------------------------------

TEST(FoldNumber, OnNumbers_EveryOperator) {
    static const struct {
        Held held;
        char formula;
        double n;
        const char* value;
        const char* error;
    } rows[] = {
        {kNothing, '+', 2, "number 2", ""},        {kNothing, '-', 2, "number -2", ""},
        {kNothing, '*', 2, "number 0", ""},        {kNothing, '/', 2, "number 0", ""},
        {kNothing, '%', 2, "number 0", ""},        {kNothing, '\\', 2, "number 0", ""},
        {kNothing, '^', 2, "number 0", ""},        {kNothing, '?', 2, "number 0", ""},
        {kNothing, '/', 0, "number 0", kDivision}, {kNumber, '+', 2, "number 9", ""},
        {kNumber, '-', 2, "number 5", ""},         {kNumber, '*', 2, "number 14", ""},
        {kNumber, '/', 2, "number 3.5", ""},       {kNumber, '%', 2, "number 1", ""},
        {kNumber, '\\', 2, "number 3", ""},        {kNumber, '^', 2, "number 49", ""},
        {kNumber, '?', 2, "number 7", ""},         {kNumber, '/', 0, "number 7", kDivision},
        {kLongint, '+', 2, "number 9", ""},        {kLongint, '-', 2, "number 5", ""},
        {kLongint, '*', 2, "number 14", ""},       {kLongint, '/', 2, "number 3.5", ""},
        {kLongint, '%', 2, "number 1", ""},        {kLongint, '\\', 2, "number 3", ""},
        {kLongint, '^', 2, "number 49", ""},       {kLongint, '?', 2, "number 7", ""},
        {kNumber, '%', -2, "number 1", ""},        {kNumber, '%', 2.5, "number 2", ""},
        {kNumber, '\\', -2, "number -3", ""},      {kNumber, '\\', 0.5, "number 14", ""},
        {kNumber, '^', 0, "number 1", ""},         {kNumber, '^', 2.9, "number 49", ""},
        {kNothing, '^', 0, "number 1", ""},        {kNumber, '^', 1, "number 7", ""},
        {kNumber, '+', 0.5, "number 7.5", ""},
    };
    for (const auto& row : rows) {
        Program program;
        Accumulator value(row.held);
        program->ExecuteTokenizedBlockNumber(row.n, value, static_cast<unsigned short>(row.formula));
        EXPECT_EQ(value.text(), row.value) << row.held << row.formula << row.n;
        EXPECT_EQ(Ended(program), row.error) << row.held << row.formula << row.n;
    }
    Program program;
    Accumulator value(kLongint);
    program->ExecuteTokenizedBlockNumber(0, value, '/');
    EXPECT_EQ(value->GetNumber(), 7);
    EXPECT_EQ(Ended(program), kDivision);
}

TEST(FoldNumber, Extremes_StayDefined) {
    const auto fold = [](double left, double right, char formula) {
        Program program;
        Accumulator value(kNumber);
        value->SetNumber(left);
        program->ExecuteTokenizedBlockNumber(right, value, static_cast<unsigned short>(formula));
        EXPECT_EQ(Ended(program), "") << left << formula << right;
        return value->GetNumber();
    };
    EXPECT_TRUE(std::isnan(fold(7, 0, '%')));
    EXPECT_TRUE(std::isnan(fold(INFINITY, 3, '%')));
    // What 64 bits do not hold truncates to the lowest number.
    EXPECT_EQ(fold(7, 0, '\\'), -9223372036854775808.0);
    EXPECT_EQ(fold(-7, 0, '\\'), -9223372036854775808.0);
    EXPECT_EQ(fold(0, 0, '\\'), -9223372036854775808.0);
    EXPECT_EQ(fold(1e300, 1, '\\'), -9223372036854775808.0);
    // Powers are of unsigned 64-bit numbers and wrap.
    EXPECT_EQ(fold(2, 63, '^'), 9223372036854775808.0);
    EXPECT_EQ(fold(2, 64, '^'), 0);
    EXPECT_EQ(fold(3, 40, '^'), 12157665459056928801.0);
    EXPECT_EQ(fold(-2, 2, '^'), 4);
    EXPECT_EQ(fold(-2, 3, '^'), 18446744073709551608.0);
    EXPECT_EQ(fold(2, -1, '^'), 0);
    EXPECT_EQ(fold(1, -1, '^'), 1);
    EXPECT_EQ(fold(3, -1, '^'), 12297829382473034411.0);  // modulo 2^64, without counting to 2^64
    EXPECT_EQ(fold(1e300, 0, '^'), 1);
    EXPECT_EQ(fold(1e308, 10, '*'), INFINITY);
}

TEST(FoldNumber, OnTextAndDate_RepeatsAndAddsDays) {
    static const struct {
        Held held;
        char formula;
        double n;
        const char* value;
        const char* error;
    } rows[] = {
        {kText, '*', 2, "text abab", ""},
        {kText, '*', 2.9, "text abab", ""},
        {kText, '*', 1, "text ab", ""},
        {kText, '*', 0, "text ", ""},
        {kText, '*', 0.9, "text ", ""},
        {kText, '*', -3, "text ", ""},
        {kText, '+', 2, "text ab", kFormula},
        {kText, '-', 2, "text ab", kFormula},
        {kText, '/', 2, "text ab", kFormula},
        {kText, '%', 2, "text ab", kFormula},
        {kText, '\\', 2, "text ab", kFormula},
        {kText, '^', 2, "text ab", kFormula},
        {kDate, '+', 1, "date 2000-2-1", ""},
        {kDate, '+', 30, "date 2000-3-1", ""},
        {kDate, '-', 31, "date 1999-12-31", ""},
        {kDate, '+', 1.9, "date 2000-2-1", ""},
        {kDate, '-', -1, "date 2000-2-1", ""},
        {kDate, '+', 0, "date 2000-1-31", ""},
        {kDate, '*', 1, "date 2000-1-31", kFormula},
        {kDate, '/', 1, "date 2000-1-31", kFormula},
        {kDate, '%', 1, "date 2000-1-31", kFormula},
        {kDate, '\\', 1, "date 2000-1-31", kFormula},
        {kDate, '^', 1, "date 2000-1-31", kFormula},
    };
    for (const auto& row : rows) {
        Program program;
        Accumulator value(row.held);
        program->ExecuteTokenizedBlockNumber(row.n, value, static_cast<unsigned short>(row.formula));
        EXPECT_EQ(value.text(), row.value) << row.held << row.formula << row.n;
        EXPECT_EQ(Ended(program), row.error) << row.held << row.formula << row.n;
    }
}

TEST(FoldNumber, OnOtherKinds_InvalidType) {
    for (Held held : {kTime, kBoolean, kPointer, kBlob, kPicture, kObject, kCollection, kNull})
        for (char formula : {'+', '-', '*', '/', '%', '\\', '^'}) {
            Program program;
            Accumulator value(held);
            program->ExecuteTokenizedBlockNumber(2, value, static_cast<unsigned short>(formula));
            EXPECT_EQ(Ended(program), kInvalid) << held << formula;
            EXPECT_EQ(value.text(), value.before()) << held << formula;
        }
}

TEST(FoldTime, EveryCell) {
    static const struct {
        Held held;
        char formula;
        long t;
        const char* value;
        const char* error;
    } rows[] = {
        {kNothing, '+', 30, "time 30", ""}, {kNothing, '-', 30, "time -30", ""},
        {kNothing, '*', 30, "time 0", ""},  {kNothing, '/', 30, "time 0", ""},
        {kNothing, '%', 30, "time 0", ""},  {kNothing, '/', 0, "time 0", kDivision},
        {kTime, '+', 30, "time 90", ""},    {kTime, '-', 90, "time -30", ""},
        {kTime, '*', 2, "time 120", ""},    {kTime, '/', 7, "time 8", ""},
        {kTime, '/', -7, "time -8", ""},    {kTime, '/', 0, "time 60", kDivision},
        {kTime, '%', 7, "time 60", ""},     {kTime, '\\', 7, "time 60", ""},
        {kTime, '^', 7, "time 60", ""},
    };
    for (const auto& row : rows) {
        Program program;
        Accumulator value(row.held);
        program->ExecuteTokenizedBlockTime(row.t, value, static_cast<unsigned short>(row.formula));
        EXPECT_EQ(value.text(), row.value) << row.held << row.formula << row.t;
        EXPECT_EQ(Ended(program), row.error) << row.held << row.formula << row.t;
    }
    for (int held = 0; held < kHeldKinds; held++) {
        if (held == kNothing || held == kTime) continue;
        Program program;
        Accumulator value(static_cast<Held>(held));
        program->ExecuteTokenizedBlockTime(30, value, '+');
        EXPECT_EQ(Ended(program), kInvalid) << held;
        EXPECT_EQ(value.text(), value.before()) << held;
    }
}

TEST(FoldTime, Extremes_WrapAt64Bits) {
    Program program;
    Accumulator value(kTime);
    value->value.integer = 9223372036854775807L;
    program->ExecuteTokenizedBlockTime(1, value, '+');
    EXPECT_EQ(value->value.integer, -9223372036854775807L - 1);
    program->ExecuteTokenizedBlockTime(-1, value, '/');  // the lowest by -1 does not fit
    EXPECT_EQ(Ended(program), "");
    program->ExecuteTokenizedBlockTime(3, value, '*');
    EXPECT_EQ(Ended(program), "");
}

TEST(FoldDate, EveryCell) {
    static const struct {
        Held held;
        char formula;
        const char* value;
        const char* error;
    } rows[] = {
        {kDate, '-', "number 30", ""},        {kDate, '+', "date 2000-1-31", kFormula},
        {kDate, '*', "date 2000-1-1", ""},    {kDate, '/', "date 2000-1-1", ""},
        {kDate, '%', "date 2000-1-1", ""},    {kDate, '\\', "date 2000-1-1", ""},
        {kDate, '^', "date 2000-1-1", ""},    {kNothing, '+', "date 2000-1-1", ""},
        {kNothing, '-', "date 2000-1-1", ""}, {kNothing, '*', "date 2000-1-1", ""},
    };
    ZR_Date date = {1, 1, 2000};
    for (const auto& row : rows) {
        Program program;
        Accumulator value(row.held);
        program->ExecuteTokenizedBlockDate(&date, value, static_cast<unsigned short>(row.formula));
        EXPECT_EQ(value.text(), row.value) << row.held << row.formula;
        EXPECT_EQ(Ended(program), row.error) << row.held << row.formula;
    }
    for (int held = 0; held < kHeldKinds; held++) {
        if (held == kNothing || held == kDate) continue;
        for (char formula : {'+', '-', '*'}) {
            Program program;
            Accumulator value(static_cast<Held>(held));
            program->ExecuteTokenizedBlockDate(&date, value, static_cast<unsigned short>(formula));
            EXPECT_EQ(Ended(program), "") << held;
            EXPECT_EQ(value.text(), value.before()) << held;
        }
    }
}

TEST(FoldText, EveryCell) {
    static const struct {
        Held held;
        char formula;
        const char* value;
        const char* error;
    } rows[] = {
        {kNumber, '*', "text xyxyxyxyxyxyxy", ""},
        {kLongint, '*', "text xyxyxyxyxyxyxy", ""},
        {kNumber, '+', "number 7", kFormula},
        {kNumber, '-', "number 7", kFormula},
        {kNumber, '/', "number 7", kFormula},
        {kLongint, '+', "longint 7", kFormula},
        {kText, '+', "text abxy", ""},
        {kText, '-', "text ab", ""},
        {kText, '*', "text ab", ""},
        {kText, '/', "text ab", ""},
        {kNothing, '+', "text xy", ""},
        {kNothing, '-', "text ", ""},
        {kNothing, '*', "text ", ""},
    };
    for (const auto& row : rows) {
        Program program;
        Accumulator value(row.held);
        Text text("xy");
        program->ExecuteTokenizedBlockText(text, value, static_cast<unsigned short>(row.formula));
        EXPECT_EQ(value.text(), row.value) << row.held << row.formula;
        EXPECT_EQ(Ended(program), row.error) << row.held << row.formula;
    }
    for (Held held : {kDate, kTime, kBoolean, kPointer, kBlob, kPicture, kObject, kCollection, kNull}) {
        Program program;
        Accumulator value(held);
        Text text("xy");
        program->ExecuteTokenizedBlockText(text, value, '+');
        EXPECT_EQ(Ended(program), "") << held;
        EXPECT_EQ(value.text(), value.before()) << held;
    }
    for (double times : {0.0, -1.0, 0.99, 1.0}) {
        Program program;
        Accumulator value(kNumber);
        value->SetNumber(times);
        Text text("xy");
        program->ExecuteTokenizedBlockText(text, value, '*');
        EXPECT_EQ(value.text(), times == 1 ? "text xy" : "text ") << times;
    }
}

TEST(FoldBoolean, EveryCell) {
    for (int left = 0; left < 3; left++)  // 2 = nothing, which counts as false
        for (int right = 0; right < 2; right++)
            for (long logic : {0, 1, 2, 3, -1}) {
                Program program;
                Accumulator value(left == 2 ? kNothing : kBoolean);
                if (left < 2) value->value.integer = left;
                std::string before = value.text();
                program->ExecuteTokenizedBlockBoolean(right == 1, value, logic);
                bool first = left == 1, second = right == 1;
                bool answer = logic == 0 ? second : logic == 1 ? first && second : first || second;
                std::string expected = logic < 0 || logic > 2 ? before : answer ? "boolean true" : "boolean false";
                EXPECT_EQ(value.text(), expected) << left << " " << right << " " << logic;
                EXPECT_EQ(Ended(program), "");
            }
    for (int held = 0; held < kHeldKinds; held++) {
        if (held == kNothing || held == kBoolean) continue;
        Program program;
        Accumulator value(static_cast<Held>(held));
        program->ExecuteTokenizedBlockBoolean(true, value, 0);
        EXPECT_EQ(value.text(), value.before()) << held;
        EXPECT_EQ(Ended(program), "") << held;
    }
}

TEST(FoldWhole, BlobPictureObjectCollectionPointer_ReplaceTheirKindAndNothingElse) {
    static const struct {
        Held operand;
        void (*fold)(ZR_ExecutionContext* context, ZR_Executer_Token* value, ZR_Executer_Token* operand);
    } rows[] = {
        {kBlob, [](ZR_ExecutionContext* c, ZR_Executer_Token* v,
                   ZR_Executer_Token* o) { c->ExecuteTokenizedBlockBlob(o->GetBlob(), v); }},
        {kPicture, [](ZR_ExecutionContext* c, ZR_Executer_Token* v,
                      ZR_Executer_Token* o) { c->ExecuteTokenizedBlockPicture(o->GetPicture(), v); }},
        {kObject, [](ZR_ExecutionContext* c, ZR_Executer_Token* v,
                     ZR_Executer_Token* o) { c->ExecuteTokenizedBlockObject(o->objectRef, v); }},
        {kCollection, [](ZR_ExecutionContext* c, ZR_Executer_Token* v,
                         ZR_Executer_Token* o) { c->ExecuteTokenizedBlockCollection(o->collectionRef, v); }},
        {kPointer, [](ZR_ExecutionContext* c, ZR_Executer_Token* v,
                      ZR_Executer_Token* o) { c->ExecuteTokenizedBlockPointer(o, v); }},
    };
    for (const auto& row : rows)
        for (int held = 0; held < kHeldKinds; held++) {
            Program program;
            Accumulator value(static_cast<Held>(held)), operand(row.operand);
            row.fold(program, value, operand);
            bool taken = held == kNothing || held == row.operand;
            EXPECT_EQ(Ended(program), taken ? "" : kInvalid) << row.operand << " on " << held;
            EXPECT_EQ(value.text(), taken ? operand.text() : value.before()) << row.operand << " on " << held;
            if (row.operand == kObject && taken) { EXPECT_EQ(value->objectRef, operand->objectRef); }
            if (row.operand == kCollection && taken) { EXPECT_EQ(value->collectionRef, operand->collectionRef); }
        }
}

// Comparison -------------------------------------------------------------------------------------------------------

TEST(Comparison, ByKindAndOperator_EveryCell) {
    // For each pair the answers for <= >= = # < >: 1, 0, or x for not possible.
    static const struct {
        const char* label;
        void (*fill)(Tokens* left, Tokens* right);
        const char* answers;
    } rows[] = {
        {"1 2", [](Tokens* l, Tokens* r) { l->Number(1), r->Number(2); }, "100110"},
        {"2 2", [](Tokens* l, Tokens* r) { l->Number(2), r->Number(2); }, "111000"},
        {"3 2", [](Tokens* l, Tokens* r) { l->Number(3), r->Number(2); }, "010101"},
        {"0.1+0.2 0.3", [](Tokens* l, Tokens* r) { l->Number(0.1 + 0.2), r->Number(0.3); }, "010101"},
        {"longint 1 2", [](Tokens* l, Tokens* r) { l->Longint(1), r->Longint(2); }, "100110"},
        {"longint 2 2", [](Tokens* l, Tokens* r) { l->Longint(2), r->Longint(2); }, "111000"},
        {"text equal", [](Tokens* l, Tokens* r) { l->String("abc"), r->String("ABC"); }, "xx10xx"},
        {"text unequal", [](Tokens* l, Tokens* r) { l->String("abc"), r->String("abd"); }, "xx01xx"},
        {"wildcard right", [](Tokens* l, Tokens* r) { l->String("abc"), r->String("a@"); }, "xx10xx"},
        {"wildcard left", [](Tokens* l, Tokens* r) { l->String("a@"), r->String("abc"); }, "xx01xx"},
        {"empty texts", [](Tokens* l, Tokens* r) { l->String(""), r->String(""); }, "xx10xx"},
        {"date before", [](Tokens* l, Tokens* r) { l->Date(1, 1, 2000), r->Date(2, 1, 2000); }, "100110"},
        {"date same", [](Tokens* l, Tokens* r) { l->Date(2, 1, 2000), r->Date(2, 1, 2000); }, "111000"},
        {"date after", [](Tokens* l, Tokens* r) { l->Date(1, 2, 2000), r->Date(2, 1, 2000); }, "010101"},
        {"time before", [](Tokens* l, Tokens* r) { l->Time(-1), r->Time(1); }, "100110"},
        {"time same", [](Tokens* l, Tokens* r) { l->Time(1), r->Time(1); }, "111000"},
        {"time after", [](Tokens* l, Tokens* r) { l->Time(1L << 40), r->Time(1); }, "010101"},
        {"booleans same", [](Tokens* l, Tokens* r) { l->Boolean(true), r->Boolean(true); }, "xx10xx"},
        {"booleans differ", [](Tokens* l, Tokens* r) { l->Boolean(true), r->Boolean(false); }, "xx01xx"},
        {"nothing", [](Tokens* l, Tokens* r) { l->Kind(999), r->Kind(999); }, "xxxxxx"},
        {"pointers", [](Tokens* l, Tokens* r) { l->Named(23, "a", -1), r->Named(23, "a", -1); }, "xxxxxx"},
        {"blobs", [](Tokens* l, Tokens* r) { l->Blob("a"), r->Blob("a"); }, "xxxxxx"},
        {"pictures", [](Tokens* l, Tokens* r) { l->Picture("a"), r->Picture("a"); }, "xxxxxx"},
        {"nulls", [](Tokens* l, Tokens* r) { l->Kind(38), r->Kind(38); }, "xxxxxx"},
        {"tables", [](Tokens* l, Tokens* r) { l->Kind(21, 1), r->Kind(21, 1); }, "xxxxxx"},
    };
    for (const auto& row : rows) {
        Tokens left, right;
        row.fill(&left, &right);
        for (long comparison = 1; comparison <= 6; comparison++) {
            Program program;
            bool answer = program->ExecuteTokenizedComparison(left.at(1), right.at(1), comparison);
            char expected = row.answers[comparison - 1];
            EXPECT_EQ(answer, expected == '1') << row.label << " " << comparison;
            EXPECT_EQ(Ended(program), expected == 'x' ? "-26 Comparison not possible!" : "")
                << row.label << " " << comparison;
        }
    }
}

TEST(Comparison, InABlock_SplitsItInTwo) {
    CheckSources({
        {"1=1", "boolean true"},
        {"1+2=3", "boolean true"},
        {"3=1+2", "boolean true"},
        {"2*3<=2+3", "boolean false"},
        {"2*3>=2+3", "boolean true"},
        {"\"abc\"=\"a@\"", "boolean true"},
        {"\"abc\"#\"a@\"", "boolean false"},
        {"\"ABC\"=\"abc\"", "boolean true"},
        {"!2000-01-02!>!2000-01-01!", "boolean true"},
        {"?00:01:00?<?00:02:00?", "boolean true"},
        {"True=True", "boolean true"},
        {"True#False", "boolean true"},
        {"0xFF=255", "boolean true"},
        {"1=2=3", "-1@1 Comparison with more than two values is not allowed"},
        {"1=1 & 2=2", "-1@1 Comparison with more than two values is not allowed"},
        {"(1=1) & (2=2)", "boolean true"},
        {"(1=1)=(2=2)", "boolean true"},
        {"=1", "-23@1 Empty comparison (left)"},
        {"1=", "-25@1 Empty comparison (right)Wrong type in comparison"},  // the kinds are compared all the same
        {"=", "-23@1 Empty comparison (left)"},
        {"1=\"1\"", "-25@1 Wrong type in comparison"},
        {"\"1\"=1", "-25@1 Wrong type in comparison"},
        {"?00:00:01?=1", "-25@1 Wrong type in comparison"},
        {"!2000-01-01!=1", "-25@1 Wrong type in comparison"},
        {"\"abc\">\"a\"", "-26@1 Comparison not possible!"},
        {"True>False", "-26@1 Comparison not possible!"},
        {"()=()", "-23@1 Empty comparison (left)"},
        {"//c", "-5@1 Undefined assignment variable type"},
    });
}

TEST(Comparison, WithALogicOperator_TakesThePartsAsTheyStand) {
    // $b & $x=1 has one comparison, and its left side is $b & $x.
    EXPECT_EQ(RunForError("$b:=True\n$x:=1\n$r:=$b & $x=1"), "-10@3 Syntax error: Invalid type");
    EXPECT_EQ(RunFor("$b:=True\n$c:=False\n$r:=$b & $c=False"), "boolean true");
}

TEST(Comparison, FailedRightSide_IsNotTestedBeforeTheKinds) {
    Outcome outcome = RunText("$r:=1=$missing");
    EXPECT_EQ(outcome.number, -25);
    EXPECT_EQ(outcome.text, "Unknown Variable \"$missing\"Wrong type in comparison");
    // A failed left side ends it.
    EXPECT_EQ(RunForError("$r:=$missing=$other"), "-14@1 Unknown Variable \"$missing\"");
    EXPECT_EQ(RunForError("$r:=1+$missing=1"), "-14@1 Unknown Variable \"$missing\"");
}

// The pass from left to right --------------------------------------------------------------------------------------

TEST(Pass, LeftToRight_WithoutPrecedence) {
    CheckSources({
        {"1+2*3", "real 9"},
        {"2^3^2", "real 64"},
        {"7\\2", "real 3"},
        {"2+3*4-5/3", "real 5"},
        {"10-4-3", "real 3"},
        {"-5", "real -5"},
        {"3*-5", "real -2"},   // the minus stands for itself
        {"3+4 5", "real 12"},  // the operator stays
        {"0xFF+1", "real 256"},
        {"7/0", "-2@1 Division by zero"},
        {"\"ab\"*2", "text abab"},
        {"2*\"ab\"", "text abab"},
        {"\"ab\"*2+\"c\"", "text ababc"},
        {"\"a\"+1", "-32@1 Formula not supported!"},
        {"1+\"a\"", "-32@1 Formula not supported!"},
        {"\"a\"-\"b\"", "text a"},
        {"!2000-01-01!+1", "date 2000-1-2"},
        {"!2000-02-01!-!2000-01-01!", "real 31"},
        {"!2000-01-01!+!2000-01-01!", "-32@1 Formula not supported!"},
        {"5+!2000-01-01!", "real 5"},
        {"?00:01:00?+?00:00:30?", "time 90"},
        {"?00:01:00?*2", "-10@1 Syntax error: Invalid type"},
        {"1+?00:00:01?", "-10@1 Syntax error: Invalid type"},
        {"1+True", "real 1"},
        {"True+1", "-10@1 Syntax error: Invalid type"},
        {"$a", "-14@1 Unknown Variable \"$a\""},
        {"a", "-14@1 Unknown Variable \"a\""},
        {"<>a", "-14@1 Unknown Variable \"<>a\""},
        {"", "-5@1 Undefined assignment variable type"},
        {"+", "-5@1 Undefined assignment variable type"},
        {";1", "real 1"},
    });
}

TEST(Pass, Operator_StaysAfterUse) {
    Program program;
    Tokens tokens;
    tokens.Number(3).Formula('+').Number(4).Number(5);
    Value value;
    program->ExecuteTokenizedBlock(value, tokens, 0);
    EXPECT_EQ(value.text(), "number 12");
    Tokens product;
    product.Number(3).Formula('*').Number(4).Number(5);
    Value other;
    program->ExecuteTokenizedBlock(other, product, 0);
    EXPECT_EQ(other.text(), "number 60");
    // The one of the left side of a comparison does not reach the right side.
    Tokens sides;
    sides.Number(3).Formula('*').Number(4).Kind(ZREXE_TOKEN_COMPARISON, 3).Number(12);
    Value truth;
    program->ExecuteTokenizedBlock(truth, sides, 0);
    EXPECT_EQ(truth.text(), "boolean true");
}

TEST(Pass, EmptyBlock_GivesNothing) {
    Program program;
    Tokens tokens;
    Value value;
    program->ExecuteTokenizedBlock(value, tokens, 0);
    EXPECT_EQ(value.text(), "nothing");
    EXPECT_EQ(Ended(program), "");
}

TEST(Pass, SkippedKinds_HaveNoEffect) {
    for (int kind : {1, 5, 7, 8, 11, 13, 14, 15, 21, 24, 25, 26, 27, 32, 33, 38, 39, 40, 41, 998, 999}) {
        Program program;
        Tokens tokens;
        tokens.Number(3).Kind(kind, 77).Formula('+').Kind(kind, 77).Number(4).Kind(kind, 77);
        Value value;
        program->ExecuteTokenizedBlock(value, tokens, 0);
        EXPECT_EQ(value.text(), "number 7") << kind;
        EXPECT_EQ(Ended(program), "") << kind;
    }
}

TEST(Pass, Logic_FromLeftToRightWithoutShortcut) {
    Program program = {{"Ask", "trail:=trail+$1\n$0:=($1=\"t\")"}};
    Outcome outcome = program.Run("trail:=\"\"\n$r:=(Ask(\"f\")) & (Ask(\"t\"))\n$s:=(Ask(\"t\")) | (Ask(\"f\"))");
    EXPECT_EQ(outcome.error(), "");
    EXPECT_EQ(outcome["trail"], "text fttf");
    EXPECT_EQ(outcome["$r"], "boolean false");
    EXPECT_EQ(outcome["$s"], "boolean true");
    static const struct {
        const char* expression;
        const char* value;
    } rows[] = {{"$t | $f & $f", "false"}, {"$f & $f | $t", "true"}, {"$t $f", "false"}, {"$t & $t $f", "false"},
                {"$t | $f $f", "true"},    {"& $t", "false"},        {"| $t", "true"}};
    for (const auto& row : rows) {
        std::string expression = row.expression;
        Program logic;
        Tokens tokens;
        for (size_t i = 0; i < expression.size(); i++) {
            if (expression[i] == '$') tokens.Boolean(expression[++i] == 't');
            else if (expression[i] == '&') tokens.Kind(ZREXE_TOKEN_LOGIC, 1);
            else if (expression[i] == '|') tokens.Kind(ZREXE_TOKEN_LOGIC, 2);
        }
        Value value;
        logic->ExecuteTokenizedBlock(value, tokens, 0);
        EXPECT_EQ(value.text(), std::string("boolean ") + row.value) << row.expression;
    }
}

// Required: a command without brackets takes no part in arithmetic, nor in logic.
TEST(Pass, CommandWithoutBrackets_ReplacesTheAccumulator) {
    CheckSources({
        {"False & True", "boolean true"},
        {"True & False", "boolean false"},
        {"True | False", "boolean false"},
        {"5+True", "real 5"},
        {"True", "boolean true"},
    });
    Recorder recorder;
    recorder.answer = [](const HostCall& call, PA_Variable**, PA_Variable* result) {
        if (call.command != 100) return false;
        Answer(result, 42.0);
        return true;
    };
    EXPECT_EQ(RunFor("$r:=3+Random"), "real 42");
    EXPECT_EQ(RunFor("$r:=Random+3"), "real 45");
    EXPECT_EQ(RunFor("$r:=\"a\"+Random"), "text a");
}

TEST(Pass, PointerToken_TakenWholeOrRefused) {
    Program program;
    Tokens tokens;
    tokens.Named(ZREXE_TOKEN_POINTER, "a", -1).Named(ZREXE_TOKEN_POINTER, "b", -2);
    Value value;
    program->ExecuteTokenizedBlock(value, tokens, 0);
    EXPECT_EQ(value.text(), "pointer b -2");
    Tokens mixed;
    mixed.Number(1).Named(ZREXE_TOKEN_POINTER, "a", -1);
    Value other;
    program->ExecuteTokenizedBlock(other, mixed, 0);
    EXPECT_EQ(Ended(program), kInvalid);
}

TEST(Pass, Error_EndsItAtTheNextToken) {
    Program program;
    Tokens tokens;
    tokens.Number(1).Formula('/').Number(0).Formula('+').Number(5).Process("missing");
    Value value;
    program->ExecuteTokenizedBlock(value, tokens, 0);
    EXPECT_EQ(Ended(program), kDivision);
    EXPECT_EQ(value.text(), "number 1");
}

TEST(Pass, Null_IsAValueButLostInBrackets) {
    Recorder recorder;
    recorder.answer = [](const HostCall& call, PA_Variable**, PA_Variable* result) {
        if (call.command != 1517) return false;
        *result = PA_CreateVariable(eVK_Null);
        return true;
    };
    EXPECT_EQ(RunFor("$r:=Null"), "null");
    EXPECT_EQ(RunForError("$r:=(Null)"), "-5@1 Undefined assignment variable type");
    EXPECT_EQ(RunForError("$r:=Null\n$r:=1"), "-10@2 Variable \"$r\" has incorrect type!");
    EXPECT_EQ(RunFor("$r:=Null\n$r:=Null"), "null");
}

// Variables --------------------------------------------------------------------------------------------------------

TEST(VariableOperand, ByKind_FoldsItsValue) {
    static const struct {
        const char* make;
        const char* value;
    } rows[] = {
        {"$v:=2.5", "real 2.5"},
        {"C_LONGINT($v)\n$v:=3", "real 3"},
        {"$v:=!2000-01-02!", "date 2000-1-2"},
        {"$v:=?00:00:30?", "time 30"},
        {"$v:=\"abc\"", "text abc"},
        {"$v:=(1=1)", "boolean true"},
        {"C_BLOB($v)\nSET BLOB SIZE($v;2)", "blob 0000"},
        {"C_PICTURE($v)", "picture 0 bytes"},
        {"C_OBJECT($v)", "object none"},
        {"C_COLLECTION($v)", "collection none"},
        {"$v:=New object", "object {}"},
        {"$v:=New collection", "collection []"},
    };
    for (const auto& row : rows) EXPECT_EQ(RunFor(std::string(row.make) + "\n$r:=$v"), row.value) << row.make;
    for (const char* make : {"$v:=->$x", "C_POINTER($v)", "ARRAY TEXT($v;2)", "ARRAY PICTURE($v;1)"})
        EXPECT_EQ(RunFor(std::string(make) + "\n$r:=7+$v"), "real 7") << make;
}

TEST(VariableOperand, Object_SharedByReference) {
    EXPECT_EQ(RunFor("$v:=New object\n$r:=$v\n$v.a:=1"), "object {\"a\":1}");
    EXPECT_EQ(RunForError("$v:=New object\n$r:=1+$v"), "-10@2 Syntax error: Invalid type");
    EXPECT_EQ(RunForError("$v:=New collection\n$r:=\"a\"+$v"), "-10@2 Syntax error: Invalid type");
    EXPECT_EQ(RunForError("C_BLOB($v)\n$r:=1+$v"), "-10@2 Syntax error: Invalid type");
    EXPECT_EQ(RunForError("C_PICTURE($v)\n$r:=1+$v"), "-10@2 Syntax error: Invalid type");
}

TEST(VariableOperand, DeclaringCommands_MakeTheVariableAndEvaluateNothing) {
    static const struct {
        long command;
        const char* made;
    } rows[] = {{282, "longint 0"},       {283, "longint 0"},       {284, "text"},       {293, "text"},
                {285, "real 0"},          {286, "picture 0 bytes"}, {301, "pointer  0"}, {305, "boolean false"},
                {306, "time 0"},          {307, "date 0-0-0"},      {604, "blob"},       {1216, "object none"},
                {1488, "collection none"}};
    for (const auto& row : rows) {
        Program program;
        Tokens tokens;
        tokens.Process("v");
        Value value;
        program->ExecuteTokenizedBlock(value, tokens, row.command);
        EXPECT_EQ(value.text(), "nothing") << row.command;
        EXPECT_EQ(Describe(program.Find("v")), row.made) << row.command;
        // One that exists stays as it is.
        Text name("w");
        zrExe_FindVariableByNameAndCreate(&program->processVariables, name, ZR_EXE_Null);
        Tokens other;
        other.Process("w");
        program->ExecuteTokenizedBlock(value, other, row.command);
        EXPECT_EQ(Describe(program.Find("w")), "null") << row.command;
        EXPECT_EQ(Ended(program), "") << row.command;
    }
    Program program;
    Tokens tokens;
    tokens.Process("v");
    Value value;
    program->ExecuteTokenizedBlock(value, tokens, 10);
    EXPECT_EQ(Ended(program), "-14 Unknown Variable \"v\"");
}

// Indexes ----------------------------------------------------------------------------------------------------------

TEST(StringIndex, OneCharacter) {
    const auto value = [](const char* expression) {
        return RunFor(std::string("$s:=\"abc\"\n$i:=2\n$r:=") + expression);
    };
    EXPECT_EQ(value("$s[[1]]"), "text a");
    EXPECT_EQ(value("$s[[3]]"), "text c");
    EXPECT_EQ(value("$s[[$i]]"), "text b");
    EXPECT_EQ(value("$s[[$i+1]]"), "text c");
    EXPECT_EQ(value("$s[[1.9]]"), "text a");
    EXPECT_EQ(value("$s[[0x02]]"), "text b");
    EXPECT_EQ(value("$s[[1]]+$s[[3]]"), "text ac");
    EXPECT_EQ(value("$s[[1]]+\"x\"+$s[[3]]"), "text axc");
    EXPECT_EQ(value("\"x\"+$s[[2]]"), "text xb");
    EXPECT_EQ(value("2*$s[[2]]"), "text bb");
    EXPECT_EQ(value("$s[[1]]=\"A\""), "boolean true");
    EXPECT_EQ(value("$s[[0]]"), "-36@3 String access \"s\" not possible. Index: 0 String size: 3");
    EXPECT_EQ(value("$s[[4]]"), "-36@3 String access \"s\" not possible. Index: 4 String size: 3");
    EXPECT_EQ(value("$s[[-1]]"), "-36@3 String access \"s\" not possible. Index: -1 String size: 3");
    EXPECT_EQ(value("$s[[\"1\"]]"), "-35@3 String index must be a number");
    EXPECT_EQ(value("$s[[ ]]"), "-35@3 String index must be a number");
    EXPECT_EQ(value("$s[[?00:00:01?]]"), "-35@3 String index must be a number");
}

TEST(StringIndex, NotClosed_LeavesTheNumberInTheBlock) {
    EXPECT_EQ(RunForError("$s:=\"abc\"\n$r:=$s[[1"), "-32@2 Formula not supported!");
    EXPECT_EQ(RunFor("$s:=\"abc\"\n$r:=$s]]"), "text abc");
    EXPECT_EQ(RunForError("$s:=\"abc\"\n$r:=$s]]1[["), "-32@2 Formula not supported!");
}

// Required: the first [[ anywhere behind the variable is taken, not only one that stands right behind it.
TEST(StringIndex, FartherOn_AppliesToTheFirstVariable) {
    EXPECT_EQ(RunFor("$a:=\"xyz\"\n$b:=\"abc\"\n$r:=$a+$b[[2]]"), "text y");
    EXPECT_EQ(RunFor("$a:=\"xyz\"\n$b:=\"abc\"\n$r:=$a+$b[[1]]+$b[[3]]"), "text xc");
}

TEST(ArrayIndex, OneElement) {
    const auto value = [](const char* expression) {
        return RunFor(std::string("ARRAY REAL($a;3)\n$a{1}:=1.5\n$a{2}:=3\n$a{3}:=7\n$i:=2\n$r:=") + expression);
    };
    EXPECT_EQ(value("$a{1}"), "real 1.5");
    EXPECT_EQ(value("$a{3}"), "real 7");
    EXPECT_EQ(value("$a{$i}"), "real 3");
    EXPECT_EQ(value("$a{$i+1}"), "real 7");
    EXPECT_EQ(value("$a{2.9}"), "real 3");
    EXPECT_EQ(value("$a{0x03}"), "real 7");
    EXPECT_EQ(value("$a{1}+$a{2}*$a{3}"), "real 31.5");
    EXPECT_EQ(value("10-$a{2}"), "real 7");
    EXPECT_EQ(value("$a{0}"), "-36@6 Array access \"a\" not possible. Index: 0 Array size: 3");
    EXPECT_EQ(value("$a{4}"), "-36@6 Array access \"a\" not possible. Index: 4 Array size: 3");
    EXPECT_EQ(value("$a{-1}"), "-36@6 Array access \"a\" not possible. Index: -1 Array size: 3");
    EXPECT_EQ(value("$a{\"1\"}"), "-35@6 Array index must be a number");
    EXPECT_EQ(value("$a{ }"), "-35@6 Array index must be a number");
    EXPECT_EQ(value("$a{$a{2}}"), "real 3");  // the first } ends it, so that the inner array adds nothing to the 2
    EXPECT_EQ(value("5+$a"), "real 5");
    EXPECT_EQ(value("$a"), "-5@6 Undefined assignment variable type");
    EXPECT_EQ(value("$i{1}"), "real 3");  // a plain variable takes no index: the tokens fold on
}

TEST(ArrayIndex, ElementKinds_FoldedByTheirKind) {
    static const struct {
        const char* make;
        const char* value;
    } rows[] = {
        {"ARRAY REAL($a;1)\n$a{1}:=2.5", "real 2.5"},
        {"ARRAY INTEGER($a;1)\n$a{1}:=2", "real 2"},
        {"ARRAY LONGINT($a;1)\n$a{1}:=2.9", "real 2"},
        {"ARRAY TEXT($a;1)\n$a{1}:=\"x\"", "text x"},
        {"ARRAY STRING($a;1)", "text"},
        {"ARRAY BOOLEAN($a;1)\n$a{1}:=(1=1)", "boolean true"},
        {"ARRAY DATE($a;1)\n$a{1}:=!2000-01-02!", "date 2000-1-2"},
        {"ARRAY PICTURE($a;1)", "-5"},
        {"ARRAY POINTER($a;1)\n$a{1}:=->x", "-5"},
    };
    for (const auto& row : rows) {
        std::string value = RunFor(std::string(row.make) + "\n$r:=$a{1}");
        EXPECT_EQ(value.substr(0, row.value[0] == '-' ? 2 : std::string::npos), row.value) << row.make;
    }
}

// Members ----------------------------------------------------------------------------------------------------------

TEST(Member, Chain_ReplacesStepByStep) {
    static const char* make =
        "$o:=New object\n$o.a:=New object\n$o.a.b:=\"deep\"\n$o.n:=5\n$o.t:=(1=1)\n$o.d:=!2000-01-02!\n$o.c:=New "
        "collection\n";
    const auto value = [](const char* expression) { return RunFor(std::string(make) + "$r:=" + expression); };
    EXPECT_EQ(value("$o.n"), "real 5");
    EXPECT_EQ(value("$o.a.b"), "text deep");
    EXPECT_EQ(value("$o.t"), "boolean true");
    EXPECT_EQ(value("$o.c"), "collection []");
    EXPECT_EQ(value("$o.a"), "object {\"b\":\"deep\"}");
    EXPECT_EQ(value("$o.n+1"), "real 6");
    EXPECT_EQ(value("$o.n=5"), "boolean true");
    EXPECT_EQ(value("($o.n)*2"), "real 10");
    EXPECT_EQ(value("1+$o.n"), "-10@8 Syntax error: Invalid type");  // an object does not fold into a number
    EXPECT_EQ(value("$o.missing"), "-5@8 Undefined assignment variable type");
    EXPECT_EQ(value("$o.n.m"), "-10@8 Syntax error: No Object Ref");
    EXPECT_EQ(value("$o.missing.m"), "-10@8 Syntax error: No Object Ref");
}

TEST(Member, WithoutAnObject_NoObjectRef) {
    EXPECT_EQ(RunForError("C_OBJECT($o)\n$r:=$o.a"), "-10@2 Syntax error: No Object Ref");
    EXPECT_EQ(RunForError("$o:=5\n$r:=$o.a"), "-10@2 Syntax error: No Object Ref");
    EXPECT_EQ(RunForError("$r:=.a"), "-10@1 Syntax error: No Object Ref");
    for (int held = 0; held < kHeldKinds; held++) {
        if (held == kObject) continue;
        Program program;
        Accumulator value(static_cast<Held>(held));
        Text name("a");
        program->ExecuteTokenizedBlockMember(name, value);
        EXPECT_EQ(Ended(program), "-10 Syntax error: No Object Ref") << held;
        EXPECT_EQ(value.text(), value.before()) << held;
    }
}

TEST(MemberFunction, Call_ReplacesTheAccumulatorByItsAnswer) {
    Recorder recorder;
    recorder.answer = [](const HostCall& call, PA_Variable**, PA_Variable* result) {
        if (call.name != ".sum") return false;
        Answer(result, static_cast<double>(call.parameters.size()));
        return true;
    };
    EXPECT_EQ(RunFor("$o:=New object\n$r:=$o.sum(1;2;\"c\")+10"), "real 13");
    EXPECT_EQ(recorder.last(".sum"), ".sum(real 1; real 2; text c)");
    EXPECT_EQ(RunFor("$o:=New object\n$r:=$o.sum(1+2)"), "real 1");
    EXPECT_EQ(recorder.last(".sum"), ".sum(real 3)");
    // In order behind a member.
    EXPECT_EQ(RunFor("$o:=New object\n$o.p:=New object\n$r:=$o.p.sum(1;1)"), "real 2");
}

// Required: with empty brackets the function is not called, and the object stays.
TEST(MemberFunction, EmptyBrackets_NotCalled) {
    Recorder recorder;
    EXPECT_EQ(RunFor("$o:=New object\n$r:=$o.sum()"), "object {}");
    for (const HostCall& call : recorder.calls) EXPECT_NE(call.name, ".sum");
}

TEST(MemberFunction, Refusals_ExactWords) {
    EXPECT_EQ(RunForError("C_OBJECT($o)\n$r:=$o.sum(1)"), "-10@2 Syntax error: No Object Ref");
    EXPECT_EQ(RunForError("$o:=5\n$r:=$o.sum(1)"), "-10@2 Syntax error: No Object Ref");
    // A collection is no object.
    EXPECT_EQ(RunForError("$o:=New collection\n$r:=$o.push(1)"), "-10@2 Syntax error: No Object Ref");
    uint32_t version = Current4DVersion;
    Current4DVersion = 0x1759;
    std::string old = RunForError("$o:=New object\n$r:=$o.sum(1)");
    Current4DVersion = version;
    EXPECT_EQ(old, "-60@2 Executing member functions are supported from 4D v17R6 only.");
}

TEST(MemberFunction, AsOneOperation_SameChecks) {
    Recorder recorder;
    recorder.answer = [](const HostCall& call, PA_Variable**, PA_Variable* result) {
        if (call.name != ".f") return false;
        Answer(result, 8.0);
        return true;
    };
    Text name("f");
    Tokens parameters;
    parameters.Number(1);
    for (int held = 0; held < kHeldKinds; held++) {
        Program program;
        Accumulator value(static_cast<Held>(held));
        program->ExecuteTokenizedBlockMemberFunction(name, parameters, value);
        EXPECT_EQ(Ended(program), held == kObject ? "" : "-10 Syntax error: No Object Ref") << held;
        EXPECT_EQ(value.text(), held == kObject ? "number 8" : value.before()) << held;
    }
    Program program;
    Accumulator value(kObject);
    uint32_t version = Current4DVersion;
    Current4DVersion = 0x1700;
    program->ExecuteTokenizedBlockMemberFunction(name, parameters, value);
    Current4DVersion = version;
    EXPECT_EQ(Ended(program), "-60 Executing member functions are supported from 4D v17R6 only.");
}

// Fields -----------------------------------------------------------------------------------------------------------

TEST(FieldOperand, ByFieldType_FoldsItsValue) {
    static const struct {
        int type;
        const char* value;
    } rows[] = {{0, "text field"},   {2, "text field"}, {1, "number 2.5"},   {4, "date 2001-2-3"},
                {6, "boolean true"}, {8, "number -7"},  {9, "number 70000"}, {11, "time 90"},
                {30, "blob 7879"},   {7, "nothing"},    {38, "nothing"},     {-1, "nothing"}};
    for (const auto& row : rows) {
        Program program;
        FieldHost host;
        Value value;
        program->ExecuteTokenizedBlockField(1, 100 + row.type, value, '+', 0);
        EXPECT_EQ(value.text(), row.value) << row.type;
        EXPECT_EQ(Ended(program), "") << row.type;
    }
}

TEST(FieldOperand, InABlock_FoldedOrRefused) {
    Program program;
    FieldHost host;
    Tokens tokens;
    tokens.Number(10).Formula('*').Kind(ZREXE_TOKEN_FIELD, (1 << 16) + 101);
    Value value;
    program->ExecuteTokenizedBlock(value, tokens, 0);
    EXPECT_EQ(value.text(), "number 25");
    Tokens logic;
    logic.Boolean(false).Kind(ZREXE_TOKEN_LOGIC, 1).Kind(ZREXE_TOKEN_FIELD, (1 << 16) + 106);
    Value truth;
    program->ExecuteTokenizedBlock(truth, logic, 0);
    EXPECT_EQ(truth.text(), "boolean false");
    Tokens unknown;
    unknown.Kind(ZREXE_TOKEN_FIELD, (2 << 16) + 3);
    Value nothing;
    program->ExecuteTokenizedBlock(nothing, unknown, 0);
    EXPECT_EQ(nothing.text(), "nothing");
    EXPECT_EQ(Ended(program), "-38 Unknown Field: Table: 2, Field: 3");
}
