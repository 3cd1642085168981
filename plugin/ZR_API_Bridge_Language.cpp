#include <climits>

#include "plugin/ZR_API_Bridge.h"
#include "plugin/ZR_API_Bridge_Private.h"

static constexpr unsigned kFirstWithMembers = 0x1760;  // v17 R6

// Parameter tables -------------------------------------------------------------------------------------------------

// The addresses of a call's parameters, in a locked host handle.
struct ParameterTable {
    PA_Handle handle;  // null = the host refused it
    int64_t address;   // of the first entry
    int64_t count;
};

// leading: entries before the consecutive params. The table ends with EndTable.
static ParameterTable BeginTable(PA_Variable* const* leading, int leadingCount, PA_Variable* params, short count) {
    if (params == nullptr || count < 0) count = 0;
    ParameterTable table = {PA_NewHandle((leadingCount + count) * (long)sizeof(PA_Variable*)), 0, leadingCount + count};
    if (table.handle == nullptr) return table;
    PA_LockHandle(table.handle);
    char* entry = *table.handle;
    table.address = ZR_AddressOf(entry);
    for (int i = 0; i < leadingCount; i++, entry += sizeof(PA_Variable*)) ZR_WriteAt(entry, leading[i]);
    for (int i = 0; i < count; i++, entry += sizeof(PA_Variable*)) ZR_WriteAt(entry, &params[i]);
    return table;
}

static void EndTable(ParameterTable* table) {  // the error stays that of the call
    short kept = sErrorCode;
    PA_UnlockHandle(table->handle);
    PA_DisposeHandle(table->handle);
    sErrorCode = kept;
}

static PA_Variable ZeroedVariable() { return PA_CreateVariable(0); }

// Commands ---------------------------------------------------------------------------------------------------------

// A call in the shape of a command: the table, the result, the command's number, the count.
static PA_Variable RunCommand(int selector, int commandID, PA_Variable* const* leading, int leadingCount,
                              PA_Variable* params, short count) {
    PA_Variable result = ZeroedVariable();
    ParameterTable table = BeginTable(leading, leadingCount, params, count);
    if (table.handle == nullptr) return result;
    result.fType = eVK_Undefined;
    EngineBlock block;
    block.fParam1 = table.address;
    block.fParam2 = ZR_AddressOf(&result);
    block.fParam3 = commandID;
    block.fParam4 = table.count;
    ZR_CallHost(selector, &block);
    EndTable(&table);
    return result;
}

PA_Variable PA_ExecuteCommandByID(int commandID, PA_Variable* params, short count) {
    return RunCommand(ZR_SEL_ExecuteCommand, commandID, nullptr, 0, params, count);
}

// A member function: the object or collection and the name go before the arguments.
static PA_Variable RunMember(int kind, void* reference, const PA_Unistring* name, PA_Variable* params, short count) {
    if (Current4DVersion < kFirstWithMembers) {
        sErrorCode = ZR_ERR_UNKNOWN_MEMBER;
        return ZR_UndefinedVariable();
    }
    PA_Variable owner = PA_CreateVariable(kind);  // both are borrowed: not cleared
    owner.uValue.fObject = reference;
    PA_Variable member = ZR_TextVariable(name);
    PA_Variable* leading[] = {&owner, &member};
    return RunCommand(ZR_SEL_ExecuteMember, 0, leading, 2, params, count);
}

PA_Variable PA_ExecuteObjectMethod(PA_ObjectRef object, const PA_Unistring* name, PA_Variable* params, short count) {
    return RunMember(eVK_Object, object, name, params, count);
}

PA_Variable PA_ExecuteCollectionMethod(PA_CollectionRef collection, const PA_Unistring* name, PA_Variable* params,
                                       short count) {
    return RunMember(eVK_Collection, collection, name, params, count);
}

void PA_GetCommandName(long commandID, PA_Unichar* name) {
    EngineBlock block;
    block.fParam1 = commandID;
    block.fName[0] = 0;
    ZR_CopyName(name, ZR_CallHost(ZR_SEL_CommandName, &block) ? block.fName : nullptr);
}

// Methods ----------------------------------------------------------------------------------------------------------

// A call in the shape of a method: what is run stands in the block already; table, count and result are added.
static PA_Variable RunMethod(int selector, EngineBlock* block, PA_Variable* params, short count) {
    PA_Variable result = ZeroedVariable();
    ParameterTable table = BeginTable(nullptr, 0, params, count);
    if (table.handle == nullptr) return result;
    result.fType = eVK_Undefined;
    block->fParam2 = table.address;
    block->fParam3 = table.count;
    block->fParam4 = ZR_AddressOf(&result);
    ZR_CallHost(selector, block);
    EndTable(&table);
    return result;
}

static void SetCode(EngineBlock* block, const PA_Unistring* code) {
    bool empty = code == nullptr || code->fString == nullptr || code->fLength < 0;
    block->fParam1 = empty ? 0 : ZR_AddressOf(code->fString);
    block->fLength1 = empty ? 0 : code->fLength;
}

PA_Variable PA_ExecuteMethod(const PA_Unistring* code, PA_Variable* params, short count) {
    EngineBlock block;
    SetCode(&block, code);
    return RunMethod(ZR_SEL_ExecuteMethod, &block, params, count);
}

PA_Variable PA_ExecuteFunction(const PA_Unistring* expression) {
    PA_Variable result = ZR_UndefinedVariable();
    EngineBlock block;
    SetCode(&block, expression);
    block.fParam4 = ZR_AddressOf(&result);
    ZR_CallHost(ZR_SEL_ExecuteFunction, &block);
    return result;
}

PA_Handle PA_Tokenize(const PA_Unistring* code) {
    EngineBlock block;
    SetCode(&block, code);
    block.fHandle = nullptr;
    ZR_CallHost(ZR_SEL_Tokenize, &block);
    return block.fHandle;
}

PA_Unistring PA_Detokenize(PA_Handle tokens) {
    PA_Unistring code = {0, nullptr, nullptr};
    EngineBlock block;
    block.fHandle = tokens;
    block.fParam1 = ZR_AddressOf(&code);
    ZR_CallHost(ZR_SEL_Detokenize, &block);
    return code;
}

bool PA_ByteSwapTokens(PA_Handle tokens) {
    EngineBlock block;
    block.fHandle = tokens;
    return ZR_CallHost(ZR_SEL_ByteSwapTokens, &block);
}

void PA_ExecuteTokens(PA_Handle tokens) {
    EngineBlock block;
    block.fHandle = tokens;
    ZR_CallHost(ZR_SEL_ExecuteTokens, &block);
}

long PA_GetMethodID(const PA_Unichar* name) {
    EngineBlock block;
    ZR_CopyName(block.fName, name);
    block.fParam1 = 0;
    return ZR_CallHost(ZR_SEL_MethodID, &block) ? block.fParam1 : 0;
}

PA_Variable PA_ExecuteMethodByID(long method, PA_Variable* params, short count) {
    EngineBlock block;
    block.fParam1 = method;
    return RunMethod(ZR_SEL_MethodByID, &block, params, count);
}

PA_Variable PA_ExecuteMethodByName(const PA_Unichar* name, PA_Variable* params, short count) {
    long method = PA_GetMethodID(name);
    if (method != 0) return PA_ExecuteMethodByID(method, params, count);
    if (sErrorCode == ZR_ERR_NONE) sErrorCode = ZR_ERR_UNKNOWN_METHOD;
    return ZR_UndefinedVariable();
}
