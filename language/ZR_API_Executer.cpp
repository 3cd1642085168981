#include "language/ZR_API_Executer.h"

#include "core/ZR_API_BLOBArray.h"
#include "language/ZR_API_Names_Private.h"
#include "plugin/ZR_API_Bridge.h"

static constexpr long kCommandNameCommand = 538;
static constexpr long kSystemFormatCommand = 994;
static constexpr unsigned kFirstVersionWithThreadSafety = 0x1700;
static constexpr long kDecimalSeparatorFormat = 0;
static constexpr long kThousandSeparatorFormat = 1;

// Host facts ------------------------------------------------------------------------------------------------------

static PA_Variable LongintVariable(long value) {
    PA_Variable variable = PA_CreateVariable(eVK_Longint);
    PA_SetLongintVariable(&variable, static_cast<int>(value));
    return variable;
}

static void ReplaceByVariable(ZR_Text* text, PA_Variable* variable) {
    text->Dispose();
    text->CreateFrom4DVariable(variable);
}

static void ReadCommandName(long id, ZR_Text* name, bool* threadSafe) {
    PA_Variable parameters[2] = {LongintVariable(id), LongintVariable(0)};
    PA_Variable result = PA_ExecuteCommandByID(kCommandNameCommand, parameters, 2);
    ReplaceByVariable(name, &result);
    *threadSafe = parameters[1].fType == eVK_Longint && (parameters[1].uValue.fLongint & 1) != 0;
    PA_ClearVariable(&result);
    if (parameters[1].fType != eVK_Longint) PA_ClearVariable(&parameters[1]);  // a longint owns nothing
}

void ZR_GetCommandName(long id, ZR_Text* name, bool* threadSafe) {
    if (Current4DVersion >= kFirstVersionWithThreadSafety) return ReadCommandName(id, name, threadSafe);
    PA_Unichar buffer[256] = {0};
    PA_GetCommandName(id, buffer);
    name->Resize(0);
    name->AddUnichar(buffer);
    *threadSafe = false;
}

void ZR_GetCommandName(long id, ZR_Text* name) {
    bool threadSafe = false;
    ZR_GetCommandName(id, name, &threadSafe);
}

void ZR_GetSystemFormat(long format, ZR_Text* out) {
    PA_Variable parameters[2] = {LongintVariable(format), PA_CreateVariable(eVK_Text)};
    PA_Variable result = PA_ExecuteCommandByID(kSystemFormatCommand, parameters, 2);
    ReplaceByVariable(out, &parameters[1]);
    PA_ClearVariable(&parameters[1]);
    PA_ClearVariable(&result);
}

int zrExe_MapVarKindTo4D(ZR_EXE_VariableKind kind) {
    switch (static_cast<int>(kind)) {
        case eVK_ArrayText: return eVK_OldArrayText;
        case eVK_Text: return eVK_OldText;
        case eVK_Picture: return 3;
        default: return kind;
    }
}

// Life ------------------------------------------------------------------------------------------------------------

void ZR_Executer::Create() {
    CreateTables();
    InitCommands();
    GetSystemFormat();
}

void ZR_Executer::CreateTables() {
    contexts.Create();
    codeStyles.CreateAnyThread(sizeof(ZR_Executer_Codestyle), 0);
    commands.Create(sizeof(ZR_Executer_Command), 0);
    decimalSeparator = 0;
    thousandSeparator = 0;
    isEnglish = false;
    commandIndex.Create(sizeof(ZR_NameSlot), 0);
    captionIndex.Create();
}

void ZR_Executer::Dispose() {
    DeinitCommands();
    contexts.Dispose();
    codeStyles.Dispose();
    captionIndex.Dispose();
}

// The command table -----------------------------------------------------------------------------------------------

static ZR_Executer_Command* CommandAt(ZR_Handle* commands, long row) {
    return reinterpret_cast<ZR_Executer_Command*>(commands->GetMemPtr(row));
}

void ZR_Executer::CreateCommands() {
    DeinitCommands();
    commands.Create(sizeof(ZR_Executer_Command), ZR_EXE_COMMAND_ROWS);
    for (long row = 1; row <= commands.count; row++) {
        ZR_Executer_Command* command = CommandAt(&commands, row);
        command->id = 0;
        command->name.Create();
        command->upperName.Create();
        command->supported = false;
        command->threadSafe = false;
    }
}

ZR_Executer_Command* ZR_Executer::ReadHostCommand(long number) {
    if (number < 1 || number > ZR_EXE_HOST_COMMANDS) return nullptr;
    ZR_Executer_Command* command = CommandAt(&commands, number);
    if (!command) return nullptr;
    ZR_GetCommandName(number, &command->name, &command->threadSafe);
    if (command->name.count == 0) return nullptr;  // Required: threadSafe keeps what the name lookup wrote
    command->id = number;
    command->upperName.Copy(&command->name);
    return command;
}

static void FillBuiltInRows(ZR_Handle* commands, bool english) {
    long row = ZR_EXE_FIRST_KEYWORD_ROW;
    for (const ZR_BuiltInCommandRow& builtIn : kZR_BuiltInCommands) {
        ZR_Executer_Command* command = CommandAt(commands, row++);
        if (!command) return;
        command->id = builtIn.id;
        command->name.Resize(0);
        command->name.AddString(english ? builtIn.english : builtIn.other);
        command->upperName.Copy(&command->name);
        command->supported = true;
        command->threadSafe = true;
    }
}

// Required: rows are entered in order, so that a host name spelled as a keyword hides the keyword.
static void BuildCommandIndex(ZR_Handle* index, ZR_Handle* commands) {
    index->Dispose();
    if (!zrExe_CreateSlots(index, commands->count)) return;
    for (long row = 1; row <= commands->count; row++) {
        ZR_Text* name = &CommandAt(commands, row)->upperName;
        if (name->count > 0) zrExe_EnterSlot(index, zrExe_FoldedHash(name->Units(), name->count), row);
    }
}

void ZR_Executer::FinishCommands() {
    ZR_Executer_Command* first = CommandAt(&commands, 1);
    isEnglish = first && first->name.Equal("Sum");
    FillBuiltInRows(&commands, isEnglish);
    for (long row = 1; row <= commands.count; row++) CommandAt(&commands, row)->upperName.Uppercase();
    BuildCommandIndex(&commandIndex, &commands);
}

void ZR_Executer::DeinitCommands() {
    for (long row = 1; row <= commands.count; row++) {
        CommandAt(&commands, row)->name.Dispose();
        CommandAt(&commands, row)->upperName.Dispose();
    }
    commands.Dispose();
    commandIndex.Dispose();
}

ZR_Executer_Command* ZR_Executer::Search4DCommandForTokenization(ZR_Text* name) {
    return Search4DCommandForTokenization(name->Units(), name->count);
}

ZR_Executer_Command* ZR_Executer::Search4DCommandForTokenization(const unsigned short* units, long count) {
    if (!units || count < 1) return nullptr;
    auto matches = [=, this](long row) {
        return zrExe_EqualFolded(units, count, &CommandAt(&commands, row)->upperName);
    };
    if (commandIndex.data)
        return CommandAt(&commands, zrExe_FindSlot(&commandIndex, zrExe_FoldedHash(units, count), matches));
    for (long row = 1; row <= commands.count; row++)
        if (matches(row)) return CommandAt(&commands, row);
    return nullptr;
}

void ZR_Executer::Get4DCommand(long id, ZR_Text* out) {
    if (id >= 1 && id <= ZR_EXE_HOST_COMMANDS) {
        ZR_Executer_Command* command = CommandAt(&commands, id);
        if (command && command->id == id) return out->AddText(&command->name);
    }
    for (long row = 1; row <= commands.count; row++)
        if (CommandAt(&commands, row)->id == id) return out->AddText(&CommandAt(&commands, row)->name);
}

static bool IsAvailable(ZR_Executer_Command* command) {
    return command->supported && command->id <= ZR_EXE_LAST_AVAILABLE_ID;
}

void ZR_Executer::GetAvailableCommands(PA_Variable* out) {
    long available = 0;
    for (long row = 1; row <= commands.count; row++)
        if (IsAvailable(CommandAt(&commands, row))) available++;
    PA_ResizeArray(out, 0);
    PA_ResizeArray(out, available);
    long index = 0;
    for (long row = 1; row <= commands.count; row++)
        if (IsAvailable(CommandAt(&commands, row)))
            ZR_SetNumInArray(out, ++index, static_cast<double>(CommandAt(&commands, row)->id));
}

static unsigned short FirstUnitOfSystemFormat(long format) {
    ZR_Text text;
    text.Create();
    ZR_GetSystemFormat(format, &text);
    unsigned short unit = text.GetChar(0);
    text.Dispose();
    return unit;
}

void ZR_Executer::GetSystemFormat() {
    decimalSeparator = FirstUnitOfSystemFormat(kDecimalSeparatorFormat);
    thousandSeparator = FirstUnitOfSystemFormat(kThousandSeparatorFormat);
}

void ZR_Executer::ReadStructure() {}

// Code styles -----------------------------------------------------------------------------------------------------

void ZR_Executer::SetCodeStyle(short type, ZR_RGBColor color, short style) {
    codeStyles.Lock();
    ZR_Executer_Codestyle* record = GetCodeStyleByType(type);
    if (!record) record = reinterpret_cast<ZR_Executer_Codestyle*>(codeStyles.handle.AppendGetPtr());
    if (record) {
        memset(static_cast<void*>(record), 0, sizeof *record);
        record->type = type;
        record->color = color;
        record->style = style;
    }
    codeStyles.Unlock();
}

ZR_Executer_Codestyle* ZR_Executer::GetCodeStyleByType(long type) {
    return zrExe_GetCodeStyleByType(&codeStyles.handle, type);
}
