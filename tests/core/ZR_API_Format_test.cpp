#include "core/ZR_API_Format.h"

#include "host/Host.h"
#include "tests/core/FakeHost.h"

namespace {

class Format : public ::testing::Test {
  protected:
    void SetUp() override {
        ZR_StartupRecord record = host_->startupRecord();
        FourDPackex(-1, &record, nullptr, nullptr);
    }
    void TearDown() override { FourDPackex(-2, nullptr, nullptr, nullptr); }

    // What "<" becomes; value is cleared.
    std::u16string Formatted(PA_Variable value, const std::u16string& format, long number = 0, bool skip = false) {
        MemoryCheck check;
        ZR_Text pattern = MakeText(format), result = MakeText(u"<");
        ZR_Format(&value, &pattern, number, &result, skip);
        std::u16string units = Units(result);
        result.Dispose();
        pattern.Dispose();
        PA_ClearVariable(&value);
        return units;
    }
    static PA_Variable Date(short day, short month, short year) {
        PA_Variable value = PA_CreateVariable(eVK_Date);
        PA_SetDateVariable(&value, day, month, year);
        return value;
    }
    static PA_Variable Boolean(bool truth) {
        PA_Variable value = PA_CreateVariable(eVK_Boolean);
        PA_SetBooleanVariable(&value, truth);
        return value;
    }

  private:
    std::unique_ptr<zrhost::Host> host_ = zrhost::Host::Start();
};

}  // namespace

TEST_F(Format, Numbers_AreAppendedInTheFormat) {
    PA_Variable real = PA_CreateVariable(eVK_Real), whole = PA_CreateVariable(eVK_Longint),
                small = PA_CreateVariable(eVK_Integer);
    PA_SetRealVariable(&real, 1234.5);
    PA_SetLongintVariable(&whole, 42);
    PA_SetLongintVariable(&small, 7);
    EXPECT_EQ(Formatted(real, u"###0.00"), u"<1234.50");
    EXPECT_EQ(Formatted(whole, u"0000"), u"<0042");
    EXPECT_EQ(Formatted(small, u"00"), u"<07");
}

TEST_F(Format, Date_ZeroPartWithSkip_AppendsNothing) {
    EXPECT_EQ(Formatted(Date(0, 0, 0), u"", 7, /*skip*/ true), u"<");
    EXPECT_EQ(Formatted(Date(0, 5, 2020), u"", 7, /*skip*/ true), u"<");
    EXPECT_NE(Formatted(Date(0, 0, 0), u"", 7, /*skip*/ false), u"<");  // the host decides
    std::u16string day = Formatted(Date(24, 12, 2020), u"", 7, /*skip*/ true);
    EXPECT_NE(day.find(u"2020"), std::u16string::npos);
    EXPECT_EQ(day, Formatted(Date(24, 12, 2020), u"", 7, /*skip*/ false));
}

TEST_F(Format, Time_ByNumber) {
    PA_Variable time = PA_CreateVariable(eVK_Time);
    PA_SetTimeVariable(&time, 3661);
    EXPECT_EQ(Formatted(time, u"", 1), u"<01:01:01");
}

TEST_F(Format, Boolean_OneSemicolon_IsDoubledAndReplacesTheResult) {  // Required
    EXPECT_EQ(Formatted(Boolean(true), u"yes;no"), u"yes");
    EXPECT_EQ(Formatted(Boolean(false), u"yes;no"), u"no");
    EXPECT_EQ(Formatted(Boolean(true), u"yes;minus;no"), u"yes");
    EXPECT_EQ(Formatted(Boolean(false), u"yes;minus;no"), u"no");
    EXPECT_EQ(Formatted(Boolean(true), u"###"), u"1");
}

TEST_F(Format, Text_IgnoresTheFormat) {
    for (int kind : {+eVK_Text}) {
        PA_Variable text = PA_CreateVariable(kind);
        PA_SetStringVariable(&text, PA_CreateUnistring(reinterpret_cast<const PA_Unichar*>(u"h\u00E4")));
        EXPECT_EQ(Formatted(text, u"###"), u"<h\u00E4");
    }
}

TEST_F(Format, OtherKindsAndNulls_AddNothing) {
    EXPECT_EQ(Formatted(PA_CreateVariable(eVK_Blob), u"###"), u"<");
    EXPECT_EQ(Formatted(PA_CreateVariable(eVK_ArrayText), u"###"), u"<");
    EXPECT_EQ(Formatted(PA_CreateVariable(eVK_Undefined), u"###"), u"<");
    PA_Variable whole = PA_CreateVariable(eVK_Longint);
    ZR_Text result = MakeText(u"<");
    ZR_Format(nullptr, nullptr, 0, &result, false);
    EXPECT_EQ(Units(result), u"<");
    ZR_Format(&whole, nullptr, 0, &result, false);
    EXPECT_EQ(Units(result), u"<0");
    ZR_Format(&whole, nullptr, 0, nullptr, false);
    result.Dispose();
    PA_ClearVariable(&whole);
}
