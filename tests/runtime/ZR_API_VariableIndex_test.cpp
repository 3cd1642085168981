#include <random>

#include "tests/runtime/RuntimeTesting.h"

using namespace rt;

namespace {

// The description of a search: from the first record, names without ASCII case.
long LinearFind(ZR_Handle* list, ZR_Text* name) {
    for (long i = 1; i <= list->count; i++)
        if (reinterpret_cast<ZR_Executer_Variable*>(list->GetMemPtr(i))->name.Equal(name, false)) return i;
    return 0;
}

std::string RandomName(std::mt19937* random, int names) {
    std::string name = "name" + std::to_string((*random)() % names);
    if ((*random)() % 3 == 0) name[0] = 'N';
    if ((*random)() % 7 == 0) name[3] = 'E';
    return name;
}

void Append(ZR_Handle* list, const std::string& name) {
    Text text(name);
    reinterpret_cast<ZR_Executer_Variable*>(list->AppendGetPtr())->Create(ZR_EXE_Real, text);
}

}  // namespace

TEST(VariableIndex, AgainstTheLinearSearch_UnderRandomChanges) {
    for (unsigned seed = 1; seed <= 6; seed++) {
        std::mt19937 random(seed);
        int names = seed % 2 ? 40 : 3000;
        ZR_Handle list;
        list.Create(sizeof(ZR_Executer_Variable), 0);
        ZR_VariableIndex index;
        index.Create();
        for (int step = 0; step < 3000; step++) {
            std::string name = RandomName(&random, names);
            Text text(name);
            switch (random() % 8) {
                case 0:
                case 1:
                case 2: zrExe_FindVariableByNameAndCreate(&list, text, ZR_EXE_Real); break;
                case 3:
                    if (random() % 4 == 0) Append(&list, name);  // possibly a second one of the name
                    break;
                case 4:
                    if (random() % 3 == 0) zrExe_DeleteVariableByName(&list, text);
                    break;
                case 5:  // deleted and appended: the count is the same again
                    if (random() % 3 == 0 && zrExe_DeleteVariableByName(&list, text))
                        Append(&list, RandomName(&random, names));
                    break;
                default: break;
            }
            for (int probe = 0; probe < 2; probe++) {
                Text wanted(RandomName(&random, names + 5));
                long expected = LinearFind(&list, wanted), found = index.Find(&list, wanted);
                ASSERT_EQ(found, expected) << "seed " << seed << " step " << step;
                ZR_Executer_Variable* free = zrExe_FindVariableByName(&list, wanted);
                ASSERT_EQ(reinterpret_cast<char*>(free), list.GetMemPtr(expected));
                ASSERT_EQ(ZR_VariableIndex::IsAt(&list, expected, wanted), expected > 0);
            }
        }
        index.Dispose();
        zrExe_DisposeVariables(&list);
    }
}

TEST(VariableIndex, IsAt_ChecksTheRecord) {
    ZR_Handle list;
    list.Create(sizeof(ZR_Executer_Variable), 0);
    Append(&list, "Abc");
    Append(&list, "x");
    Text name("aBC"), other("y");
    EXPECT_TRUE(ZR_VariableIndex::IsAt(&list, 1, name));
    EXPECT_FALSE(ZR_VariableIndex::IsAt(&list, 2, name));
    for (long outside : {0L, 3L, -1L, 1L << 40}) EXPECT_FALSE(ZR_VariableIndex::IsAt(&list, outside, name)) << outside;
    EXPECT_FALSE(ZR_VariableIndex::IsAt(&list, 1, other));
    zrExe_DisposeVariables(&list);
}

TEST(VariableIndex, EmptyList_FindsNothing) {
    ZR_Handle list;
    list.Create(sizeof(ZR_Executer_Variable), 0);
    ZR_VariableIndex index;
    index.Create();
    Text name("a"), empty;
    EXPECT_EQ(index.Find(&list, name), 0);
    EXPECT_EQ(index.Find(&list, empty), 0);
    Append(&list, "");
    EXPECT_EQ(index.Find(&list, empty), 1);
    index.Dispose();
    zrExe_DisposeVariables(&list);
}

TEST(VariableIndex, InAContext_ManyVariablesKeepTheirValues) {
    std::string source;
    for (int i = 0; i < 500; i++)
        source += "$v" + std::to_string(i) + ":=" + std::to_string(i) + "\nv" + std::to_string(i) + ":=$V" +
                  std::to_string(i) + "*2\n";
    Outcome outcome = RunText(source);
    ASSERT_EQ(outcome.error(), "");
    EXPECT_EQ(outcome.variables.size(), 1000u);
    for (int i = 0; i < 500; i++) EXPECT_EQ(outcome["v" + std::to_string(i)], "real " + std::to_string(2 * i));
}
