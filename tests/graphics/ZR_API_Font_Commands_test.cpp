#include <cmath>

#include "plugin/ZR_API_Bridge.h"
#include "plugin/ZR_API_Numbers.h"
#include "tests/graphics/TextSupport.h"

namespace {

class FontCommands : public DrawingTest {
  protected:
    // Parameters as the host passes them: texts, longints, reals, an array.
    void Text(int index, const char* utf8) {
        TestText text(utf8);
        PA_DisposeUnistring(&strings_[index]);
        strings_[index] = text.text.GetUnistring();
        parameters_[index - 1] = &strings_[index];
    }
    void Long(int index, int value) {
        longs_[index] = value;
        parameters_[index - 1] = &longs_[index];
    }
    void Real(int index, double value) {
        reals_[index] = value;
        parameters_[index - 1] = &reals_[index];
    }
    void StringWidth(const char* text, const char* font, int size, int style) {
        Text(1, text);
        Text(2, font);
        Long(3, size);
        Long(4, style);
    }
    ~FontCommands() override {
        for (auto& string : strings_) PA_DisposeUnistring(&string);
    }
    PA_Unistring strings_[9] = {};
    int longs_[9] = {};
    double reals_[9] = {};
    void* parameters_[9] = {};
    alignas(8) char result_[20] = {};
    PluginBlock block = {parameters_, result_, nullptr};

    long ResultLong() const {
        int64_t value;
        memcpy(&value, result_, 8);
        return value;
    }
    double ResultReal() const {
        double value;
        memcpy(&value, result_, 8);
        return value;
    }
};

}  // namespace

TEST_F(FontCommands, GetStringWidth_HalfGoesUpLessGoesDown) {
    static const struct {
        const char* text;
        int size;
        double width;
        long rounded;
    } rows[] = {
        {"mm", 512, 614.5, 615},  // 1229 of 2048 a letter
        {"m", 512, 307.25, 307}, {"mmm", 512, 921.75, 922}, {"mmmm", 512, 1229, 1229}, {"", 512, 0, 0},
    };
    for (auto& row : rows) {
        StringWidth(row.text, "Courier New", row.size, 0);
        ZR_GetStringWidth4D(&block);
        EXPECT_EQ(ResultLong(), row.rounded) << row.text;
        StringWidth(row.text, "Courier New", row.size, 0);
        ZR_GetStringWidth4DDouble(&block);
        EXPECT_DOUBLE_EQ(ResultReal(), row.width) << row.text;
        for (auto& string : strings_) {
            PA_DisposeUnistring(&string);
            string = {};
        }
    }
}

TEST_F(FontCommands, GetStringWidth_TenPointFiveIsElevenAndTenPointFourNineIsTen) {
    EXPECT_EQ(ZR_FloatToLong(10.5f), 11);
    EXPECT_EQ(ZR_FloatToLong(10.49f), 10);
}

TEST_F(FontCommands, GetTextMeasures_WritesFourReals) {
    Text(1, "iii");
    Text(2, "Arial");
    Real(3, 12.9);  // truncated to 12
    Long(4, 0);
    for (int i = 5; i <= 8; ++i) Real(i, -1);
    ZR_GetTextMeasures(&block);
    EXPECT_NEAR(reals_[5], 3 * 455.0 / 2048 * 12, 0.01);
    EXPECT_FLOAT_EQ(static_cast<float>(reals_[6]), 12 * (kArialAscent + kArialDescent));
    EXPECT_FLOAT_EQ(static_cast<float>(reals_[7]), 12 * kArialAscent);
    EXPECT_NEAR(reals_[8], 12.0 * kArialDescent, 1e-5);
}

TEST_F(FontCommands, GetTextMeasures_SizesOutOfRange_AreBounded) {
    for (double size : {static_cast<double>(NAN), static_cast<double>(INFINITY), 1e300, -1e300, -5.0}) {
        Text(1, "iii");
        Text(2, "Arial");
        Real(3, size);
        Long(4, 0);
        for (int i = 5; i <= 8; ++i) Real(i, -1);
        ZR_GetTextMeasures(&block);
        EXPECT_TRUE(std::isfinite(reals_[5]) && reals_[5] >= 0) << size;
        EXPECT_EQ(reals_[6] == 0, size < 0) << size;
        PA_DisposeUnistring(&strings_[1]);
        PA_DisposeUnistring(&strings_[2]);
        strings_[1] = strings_[2] = {};
    }
}

TEST_F(FontCommands, GetFontFamilyName_IsThatOfTheFont) {
    static const struct {
        const char *name, *family;
    } rows[] = {{"LiberationSans-Bold", "Liberation Sans"}, {"ArialMT", "Arial"}, {"Helvetica", "Helvetica"}};
    for (auto& row : rows) {
        Text(1, row.name);
        memset(result_, 0, sizeof result_);
        ZR_GetFontFamilyName(&block);
        PA_Unistring answer;
        memcpy(&answer, result_, sizeof answer);
        ZR_Text text;
        text.CreateWithUnistringPtr(&answer);
        EXPECT_TRUE(text.Equal(row.family)) << row.name;
        text.Dispose();
        PA_DisposeUnistring(&answer);
        PA_DisposeUnistring(&strings_[1]);
        strings_[1] = {};
    }
}

TEST_F(FontCommands, Text2Array_FillsTheArray) {
    static const struct {
        const char* text;
        int width;
        std::vector<std::u16string> lines;
    } rows[] = {{"one two", 30, {u"one", u"two"}}, {"one\rtwo", 200, {u"one", u"two"}}, {"", 200, {}}};
    for (auto& row : rows) {
        PA_Variable array = PA_CreateVariable(eVK_ArrayText);
        PA_ResizeArray(&array, 5);
        Text(1, row.text);
        parameters_[1] = &array;
        Long(3, row.width);
        Text(4, "Arial");
        Long(5, 12);
        Long(6, 0);
        ZR_Text2Array(&block);
        TestLines lines;
        lines.array.Create(&array);
        EXPECT_EQ(lines.All(), row.lines) << row.text;
        PA_ClearVariable(&array);
        PA_DisposeUnistring(&strings_[1]);
        PA_DisposeUnistring(&strings_[4]);
        strings_[1] = strings_[4] = {};
    }
}

TEST_F(FontCommands, NoParameters_DoNothing) {
    PluginBlock none = {nullptr, nullptr, nullptr};
    ZR_GetStringWidth4D(&none);
    ZR_GetStringWidth4DDouble(&none);
    ZR_GetTextMeasures(&none);
    ZR_GetFontFamilyName(&none);
    ZR_Text2Array(&none);
}
