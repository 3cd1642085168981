#include <gtest/gtest.h>

#include <string>

#include "plugin/ZR_API_Bridge.h"
#include "tests/plugin/FakeHost.h"

namespace {

void AnswerText(EngineBlock* block, const char* text) {
    for (int i = 0; i <= (int)strlen(text); i++) block->fText[i] = (unsigned char)text[i];
}

struct Buffer {
    PA_Unichar units[257];
    Buffer() { std::fill(std::begin(units), std::end(units), (PA_Unichar)'~'); }
};

}  // namespace

TEST(BridgeFormats, FormatCalls_Each_SendValueAndFormat) {
    FakeHost host;
    for (int selector :
         {ZR_SEL_FormatReal, ZR_SEL_FormatLongint, ZR_SEL_FormatDate, ZR_SEL_FormatTime, ZR_SEL_FormatString})
        host.answer[selector] = [](EngineBlock* block) { AnswerText(block, "done"); };

    Buffer real, whole, date, time, string;
    PA_FormatReal(-1.5, Wide("###,##0.00"), real.units);
    EXPECT_EQ(host.last().selector, ZR_SEL_FormatReal);
    EXPECT_EQ(host.last().in.fReal, -1.5);
    EXPECT_EQ(Narrow(host.last().in.fName), "###,##0.00");

    PA_FormatLongint(-7, Wide("000"), whole.units);
    EXPECT_EQ(host.last().selector, ZR_SEL_FormatLongint);
    EXPECT_EQ(host.last().in.fParam1, -7);
    EXPECT_EQ(Narrow(host.last().in.fName), "000");

    PA_FormatDate(31, 12, 1999, 2, date.units);
    EXPECT_EQ(host.last().selector, ZR_SEL_FormatDate);
    EXPECT_EQ(host.last().in.fParam1, 31);
    EXPECT_EQ(host.last().in.fParam2, 12);
    EXPECT_EQ(host.last().in.fParam3, 1999);
    EXPECT_EQ(host.last().in.fParam4, 2);

    PA_FormatTime(-3600, 1, time.units);
    EXPECT_EQ(host.last().selector, ZR_SEL_FormatTime);
    EXPECT_EQ(host.last().in.fParam1, -3600);
    EXPECT_EQ(host.last().in.fParam4, 1);

    Wide text("12345");
    PA_FormatString(text, Wide("##-###"), string.units);
    EXPECT_EQ(host.last().selector, ZR_SEL_FormatString);
    EXPECT_EQ(host.last().in.fParam1, (int64_t)(intptr_t)text.data());
    EXPECT_EQ(host.last().in.fLength1, 5);
    EXPECT_EQ(Narrow(host.last().in.fName), "##-###");

    for (Buffer* buffer : {&real, &whole, &date, &time, &string}) {
        EXPECT_EQ(Narrow(buffer->units), "done");
        EXPECT_EQ(buffer->units[256], '~');
    }
}

TEST(BridgeFormats, FormatCall_WithoutFormat_SendsTheEmptyOne) {
    FakeHost host;
    Buffer buffer;
    PA_FormatReal(1, nullptr, buffer.units);
    EXPECT_EQ(host.last().in.fName[0], 0);
    EXPECT_EQ(host.last().in.fText[0], 0);
    EXPECT_EQ(buffer.units[0], 0);
    PA_FormatReal(1, nullptr, nullptr);
}

TEST(BridgeFormats, FormatAnswer_OfWholeBuffer_EndsInsideIt) {
    FakeHost host;
    host.answer[ZR_SEL_FormatTime] = [](EngineBlock* block) {
        for (PA_Unichar& unit : block->fText) unit = 'x';
    };
    Buffer buffer;
    PA_FormatTime(1, 1, buffer.units);
    EXPECT_EQ(PA_GetUnicharsLength(buffer.units), 255);
    EXPECT_EQ(buffer.units[256], '~');
}

TEST(BridgeFormats, FormatCall_AfterAnError_LeavesAnEmptyText) {
    FakeHost host;
    host.answer[ZR_SEL_FormatDate] = [](EngineBlock* block) {
        AnswerText(block, "half");
        block->fError = 4001;
    };
    Buffer buffer;
    PA_FormatDate(1, 1, 1, 2, buffer.units);
    EXPECT_EQ(buffer.units[0], 0);
    EXPECT_EQ(PA_GetLastError(), 4001);
}

TEST(BridgeFormats, EvalDate_OfText_AnswersThreeUnits) {
    FakeHost host;
    host.answer[ZR_SEL_EvalDate] = [](EngineBlock* block) {
        EXPECT_EQ(block->fParam1 | block->fParam2 | block->fParam3, 0);
        block->fParam1 = 31;
        block->fParam2 = 12;
        block->fParam3 = -44;
    };
    short day = 0, month = 0, year = 0;
    PA_EvalDate(Wide("31.12.-44"), &day, &month, &year);
    EXPECT_EQ(Narrow(host.last().in.fName), "31.12.-44");
    EXPECT_EQ(day, 31);
    EXPECT_EQ(month, 12);
    EXPECT_EQ(year, -44);
    PA_EvalDate(Wide("x"), nullptr, nullptr, nullptr);
}

TEST(BridgeFormats, EvalTime_OfText_AnswersSeconds) {
    FakeHost host;
    host.answer[ZR_SEL_EvalTime] = [](EngineBlock* block) { block->fParam1 = 3661; };
    EXPECT_EQ(PA_EvalTime(Wide("01:01:01")), 3661);
    EXPECT_EQ(Narrow(host.last().in.fName), "01:01:01");
}
