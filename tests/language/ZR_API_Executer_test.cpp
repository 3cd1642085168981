#include "language/ZR_API_Executer.h"

#include "plugin/ZR_API_Bridge.h"
#include "tests/language/LanguageTesting.h"

using Executer = LanguageTest;

static ZR_Executer_Command* Row(ZR_Executer* executer, long row) {
    return reinterpret_cast<ZR_Executer_Command*>(executer->commands.GetMemPtr(row));
}

static std::string NameOf(ZR_Executer* executer, long id) {
    Text out;
    executer->Get4DCommand(id, out);
    return Printable(out);
}

static long Find(ZR_Executer* executer, const std::u16string& name) {
    ZR_Executer_Command* command = executer->Search4DCommandForTokenization(Text(name));
    return command ? command->id : 0;
}

// Host facts ------------------------------------------------------------------------------------------------------

TEST_F(Executer, GetCommandName_FromVersion17) {
    Text name(u"old");
    bool safe = false;
    ZR_GetCommandName(1, name, &safe);
    EXPECT_EQ(Units(name), u"Sum");
    EXPECT_TRUE(safe);
    ZR_GetCommandName(41, name, &safe);
    EXPECT_EQ(Units(name), u"ALERT");
    EXPECT_FALSE(safe);
    ZR_GetCommandName(2, name, &safe);
    EXPECT_EQ(Units(name), u"");
    ZR_GetCommandName(10, name);
    EXPECT_EQ(Units(name), u"String");
}

TEST_F(Executer, GetCommandName_ReceiverOfAnotherKind_IsNotThreadSafe) {
    host->spoilReceiver = true;
    Text name;
    bool safe = true;
    ZR_GetCommandName(1, name, &safe);
    EXPECT_EQ(Units(name), u"Sum");
    EXPECT_FALSE(safe);
}

TEST_F(Executer, GetCommandName_BelowVersion17_HasNoThreadSafety) {
    host = &FakeHost::Start(0x1660);
    Text name(u"old");
    bool safe = true;
    ZR_GetCommandName(1, name, &safe);
    EXPECT_EQ(Units(name), u"Sum");
    EXPECT_FALSE(safe);
    ZR_GetCommandName(2, name);
    EXPECT_EQ(Units(name), u"");
}

TEST_F(Executer, GetSystemFormat_ReplacesTheText) {
    Text out(u"old");
    ZR_GetSystemFormat(1, out);
    EXPECT_EQ(Units(out), u",");
    ZR_GetSystemFormat(7, out);
    EXPECT_EQ(Units(out), u"");
}

TEST_F(Executer, Separators_AreTheFirstUnits) {
    static const struct {
        const char16_t* decimal;
        unsigned short unit;
    } rows[] = {{u",", ','}, {u".x", '.'}, {u"", 0}, {u"\u066B", 0x066B}};
    TestExecuter executer;
    EXPECT_EQ(executer.decimalSeparator, '.');
    EXPECT_EQ(executer.thousandSeparator, ',');
    for (const auto& row : rows) {
        host->formats[0] = row.decimal;
        executer.GetSystemFormat();
        EXPECT_EQ(executer.decimalSeparator, row.unit);
    }
}

TEST_F(Executer, MapVarKindTo4D) {
    static const struct {
        int kind, mapped;
    } rows[] = {{34, 18}, {33, 2}, {10, 3}, {1, 1}, {9, 9}, {38, 38}, {255, 255}};
    for (const auto& row : rows)
        EXPECT_EQ(zrExe_MapVarKindTo4D(static_cast<ZR_EXE_VariableKind>(row.kind)), row.mapped) << row.kind;
}

// The command table -----------------------------------------------------------------------------------------------

TEST_F(Executer, Commands_RowsOfTheHost) {
    TestExecuter executer;
    EXPECT_EQ(executer.commands.count, 2022);
    EXPECT_EQ(Row(&executer, 1)->id, 1);
    EXPECT_EQ(Units(&Row(&executer, 274)->name), u"Size of array");
    EXPECT_EQ(Units(&Row(&executer, 274)->upperName), u"SIZE OF ARRAY");
    EXPECT_TRUE(Row(&executer, 274)->threadSafe);
    EXPECT_FALSE(Row(&executer, 274)->supported);
    EXPECT_EQ(Row(&executer, 2)->id, 0);
    EXPECT_EQ(Row(&executer, 2)->name.count, 0);
    EXPECT_EQ(Row(&executer, 2)->upperName.count, 0);
    EXPECT_FALSE(Row(&executer, 2)->supported);
}

TEST_F(Executer, Commands_UnnamedRow_KeepsThreadSafetyOfTheLookup) {  // Required
    host->commands[5] = {u"", true};
    TestExecuter executer;
    EXPECT_EQ(Row(&executer, 5)->id, 0);
    EXPECT_TRUE(Row(&executer, 5)->threadSafe);
}

TEST_F(Executer, Commands_BuiltInRows) {
    static const struct {
        long row, id;
        const char *english, *other;
    } rows[] = {
        {2001, 30001, "If", "Si"},
        {2002, 30002, "Else", "Sinon"},
        {2003, 30003, "End If", "Fin de si"},
        {2004, 30004, "For", "Boucle"},
        {2005, 30005, "End For", "Fin de boucle"},
        {2006, 30006, "Repeat", "Repeter"},
        {2007, 30007, "Until", "Jusque"},
        {2008, 30008, "While", "Tant que"},
        {2009, 30009, "End while", "Fin tant que"},
        {2010, 30010, "Case of", "Au cas ou"},
        {2011, 30011, "End case", "Fin de cas"},
        {2012, 30012, ":", ":"},
        {2013, 40001, "_Get Color", "_Get Color"},
        {2014, 40002, "_Get Fitting Text", "_Get Fitting Text"},
        {2015, 40003, "_Get Current Execution Context", "_Get Current Execution Context"},
        {2016, 40004, "_Add Styled Text", "_Add Styled Text"},
        {2017, 40005, "_Set Chart Data", "_Set Chart Data"},
        {2018, 40006, "_Get 4D Variable Pointer", "_Get 4D Variable Pointer"},
        {2019, 40007, "_GET 4D VARIABLE", "_GET 4D VARIABLE"},
        {2020, 40008, "_SET 4D VARIABLE", "_SET 4D VARIABLE"},
        {2021, 40009, "_HTML Encode", "_HTML Encode"},
        {2022, 40010, "_SET ANCHOR", "_SET ANCHOR"},
    };
    TestExecuter executer;
    for (bool english : {true, false}) {
        if (!english) host->commands[1].name = u"Somme";
        executer.ReadCommands();
        EXPECT_EQ(executer.isEnglish, english);
        for (const auto& row : rows) {
            ZR_Executer_Command* command = Row(&executer, row.row);
            EXPECT_EQ(command->id, row.id);
            EXPECT_EQ(Printable(&command->name), english ? row.english : row.other);
            EXPECT_TRUE(command->supported) << row.id;
            EXPECT_TRUE(command->threadSafe) << row.id;
            Text upper(Units(&command->name));
            upper->Uppercase();
            EXPECT_TRUE(command->upperName.Equal(upper)) << row.id;
        }
    }
}

TEST_F(Executer, Commands_HostWithoutSum_GetsTheOtherSpellings) {
    for (const char16_t* name : {u"", u"SUM", u"Summe", u"Somme"}) {
        host->commands[1].name = name;
        TestExecuter executer;
        EXPECT_FALSE(executer.isEnglish);
        EXPECT_EQ(NameOf(&executer, 30001), "Si");
        EXPECT_EQ(Find(&executer, u"If"), 0);
        EXPECT_EQ(Find(&executer, u"si"), 30001);
    }
}

TEST_F(Executer, Search_AnyCase) {
    static const struct {
        const char16_t* name;
        long id;
    } rows[] = {{u"Size of array", 274},
                {u"SIZE OF ARRAY", 274},
                {u"size of array", 274},
                {u"Size of array ", 0},
                {u"Size  of array", 0},
                {u"if", 30001},
                {u"End IF", 30003},
                {u":", 30012},
                {u"_set anchor", 40010},
                {u"", 0},
                {u"Size of arra", 0},
                {u"alert", 41},
                {u"Ärger", 0}};
    TestExecuter executer;
    for (const auto& row : rows) EXPECT_EQ(Find(&executer, row.name), row.id) << Printable(row.name);
    executer.commandIndex.Dispose();  // the plain scan gives the same
    for (const auto& row : rows) EXPECT_EQ(Find(&executer, row.name), row.id) << Printable(row.name);
}

TEST_F(Executer, Search_FoldsOnlyAscii) {
    host->commands[500] = {u"Größe", false};
    TestExecuter executer;
    EXPECT_EQ(Find(&executer, u"GRößE"), 500);
    EXPECT_EQ(Find(&executer, u"GRÖßE"), 0);
}

TEST_F(Executer, Search_FirstRowWins) {  // Required: a host name spelled as a keyword hides the keyword
    host->commands[700] = {u"IF", false};
    host->commands[600] = {u"if", false};
    host->commands[283] = {u"Alert", false};
    TestExecuter executer;
    EXPECT_EQ(Find(&executer, u"If"), 600);
    EXPECT_EQ(Find(&executer, u"ALERT"), 41);
}

TEST_F(Executer, Search_AllocatesNothing) {
    TestExecuter executer;
    Text name(u"size of array");
    long handles = 0, bytes = 0, handlesAfter = 0, bytesAfter = 0;
    ZR_GetMemoryInfo(&handles, &bytes);
    EXPECT_NE(executer.Search4DCommandForTokenization(name), nullptr);
    ZR_GetMemoryInfo(&handlesAfter, &bytesAfter);
    EXPECT_EQ(handles, handlesAfter);
    EXPECT_EQ(bytes, bytesAfter);
}

TEST_F(Executer, Search_EveryCommandOfTheHost_AsThePlainScan) {
    ASSERT_TRUE(host->LoadCommands(std::string(ZR_SOURCE_DIR) + "/host/data/commands.tsv"));
    TestExecuter executer;
    for (long row = 1; row <= 2022; row++) {
        if (Row(&executer, row)->name.count == 0) continue;
        Text name(Units(&Row(&executer, row)->name));
        name->Lowercase();
        long expected = 0;
        for (long other = 1; other <= 2022 && expected == 0; other++)
            if (Row(&executer, other)->upperName.Equal(name, false)) expected = Row(&executer, other)->id;
        EXPECT_EQ(executer.Search4DCommandForTokenization(name)->id, expected) << row;
    }
}

TEST_F(Executer, Search_WithoutTable_FindsNothing) {
    ZR_Executer executer;
    executer.CreateTables();
    EXPECT_EQ(executer.Search4DCommandForTokenization(Text(u"If")), nullptr);
    EXPECT_EQ(executer.ReadHostCommand(1), nullptr);
    executer.Dispose();
}

TEST_F(Executer, Get4DCommand_Appends) {
    TestExecuter executer;
    Text out(u"x ");
    executer.Get4DCommand(30012, out);
    EXPECT_EQ(Units(out), u"x :");
    executer.Get4DCommand(99999, out);
    executer.Get4DCommand(2, out);  // a number that the host does not know
    executer.Get4DCommand(0, out);
    executer.Get4DCommand(-1, out);
    EXPECT_EQ(Units(out), u"x :");
    EXPECT_EQ(NameOf(&executer, 40001), "_Get Color");
    EXPECT_EQ(NameOf(&executer, 2022), "");
    EXPECT_EQ(NameOf(&executer, 1), "Sum");
}

TEST_F(Executer, ReadHostCommand_OutsideTheHostRows_IsNull) {
    TestExecuter executer;
    for (long number : {-1L, 0L, 2L, 2001L, 2022L, 2023L}) EXPECT_EQ(executer.ReadHostCommand(number), nullptr);
    EXPECT_EQ(NameOf(&executer, 30001), "If");
}

TEST_F(Executer, GetAvailableCommands_SupportedUpTo9999) {
    TestExecuter executer;
    for (long row : {10L, 1L, 1471L}) Row(&executer, row)->supported = true;
    PA_Variable array = PA_CreateVariable(eVK_ArrayLongint);
    PA_ResizeArray(&array, 9);
    executer.GetAvailableCommands(&array);
    ASSERT_EQ(PA_GetArrayNbElements(&array), 3);
    EXPECT_EQ(PA_GetLongintInArray(&array, 1), 1);
    EXPECT_EQ(PA_GetLongintInArray(&array, 2), 10);
    EXPECT_EQ(PA_GetLongintInArray(&array, 3), 1471);
    PA_ClearVariable(&array);
}

TEST_F(Executer, Create_Twice_LeavesNothing) {
    TestExecuter executer;
    executer.ReadStructure();
    executer.DeinitCommands();
    EXPECT_EQ(executer.commands.count, 0);
    EXPECT_EQ(Find(&executer, u"If"), 0);
    executer.ReadCommands();
    EXPECT_EQ(Find(&executer, u"If"), 30001);
}

TEST_F(Executer, AllowedCommand_Modes) {
    EXPECT_EQ(ZR_EXE_AllowOnly, 0);
    EXPECT_EQ(ZR_EXE_AllowAdd, 1);
    EXPECT_EQ(ZR_EXE_AllowRemove, 2);
    EXPECT_EQ(ZR_EXE_AllowAll, 3);
}

// Code styles -----------------------------------------------------------------------------------------------------

TEST_F(Executer, SetCodeStyle_Twice_KeepsOneRecord) {
    TestExecuter executer;
    EXPECT_EQ(executer.GetCodeStyleByType(2), nullptr);
    executer.SetCodeStyle(2, {1, 2, 3, 1.0f}, ZR_CODESTYLE_BOLD);
    executer.SetCodeStyle(5, {0, 0, 0, 1.0f}, 0);
    executer.SetCodeStyle(2, {4, 5, 6, 0.5f}, ZR_CODESTYLE_ITALIC);
    EXPECT_EQ(executer.codeStyles.handle.count, 2);
    ZR_Executer_Codestyle* style = executer.GetCodeStyleByType(2);
    EXPECT_EQ(style->color.green, 5);
    EXPECT_EQ(style->color.alpha, 0.5f);
    EXPECT_EQ(style->style, ZR_CODESTYLE_ITALIC);
    EXPECT_EQ(executer.codeStyles.lock, 0);
    ZR_Handle copy = executer.codeStyles.Create_ZR_Handle_Copy();
    EXPECT_EQ(zrExe_GetCodeStyleByType(&copy, 5)->type, 5);
    copy.Dispose();
}
