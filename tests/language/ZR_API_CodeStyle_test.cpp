#include "language/ZR_API_CodeStyle.h"

#include "tests/language/LanguageTesting.h"

using CodeStyle = LanguageTest;

TEST_F(CodeStyle, Record_Is20Bytes) {
    EXPECT_EQ(sizeof(ZR_Executer_Codestyle), 20u);
    EXPECT_EQ(offsetof(ZR_Executer_Codestyle, color), 4u);
    EXPECT_EQ(offsetof(ZR_Executer_Codestyle, style), 16u);
}

TEST_F(CodeStyle, StyleOfTokenKind_Map) {
    static const struct {
        short kind, style;
    } rows[] = {{2, 8}, {3, 7}, {4, 9},  {11, 13}, {12, 2}, {21, 4}, {22, 5},  {28, 6}, {1, 1},
                {5, 1}, {6, 1}, {10, 1}, {29, 1},  {36, 1}, {37, 1}, {999, 1}, {0, 1},  {-1, 1}};
    for (const auto& row : rows) EXPECT_EQ(zrExe_Get4DCodeStyleFromTokenType(row.kind), row.style) << row.kind;
}

TEST_F(CodeStyle, GetCodeStyleByType_FirstOfType) {
    Block styles(sizeof(ZR_Executer_Codestyle));
    for (short type : {3, 5, 3}) {
        auto* style = reinterpret_cast<ZR_Executer_Codestyle*>(styles->AppendGetPtr());
        *style = {type, {1, 2, 3, 0.5f}, static_cast<short>(styles->count)};
    }
    EXPECT_EQ(zrExe_GetCodeStyleByType(styles, 3)->style, 1);
    EXPECT_EQ(zrExe_GetCodeStyleByType(styles, 5)->style, 2);
    EXPECT_EQ(zrExe_GetCodeStyleByType(styles, 4), nullptr);
    EXPECT_EQ(zrExe_GetCodeStyleByType(nullptr, 4), nullptr);
}
