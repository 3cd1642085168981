// Commands by number: Language, Formulas, Tools, Variables, as far as they work on values.
#include <algorithm>

#include "host/CommandCall.h"
#include "host/Commands_Private.h"
#include "host/Objects.h"

namespace zrhost {
namespace {

// Facts ------------------------------------------------------------------------------------------------------------

// 538 Command name(command; [info]; [theme]): bit 0 of info = may run on a preemptive process. Empty for no command.
void CommandName(CommandCall& call) {
    const CommandInfo info = call.host.command(call.integer(1));
    if (call.has(2)) call.assignLongint(2, info.threadSafe ? 1 : 0);
    if (call.has(3)) call.assignText(3, u"");
    call.setText(info.name);
}

// 295 Type(variable), 1509 Value type(value): as the language numbers kinds
void TypeOf(CommandCall& call) { call.setLongint(LanguageKind(call.kind(1))); }

// 82 Undefined(value)
void Undefined(CommandCall& call) { call.setBoolean(call.isUndefined(1)); }

// 89 CLEAR VARIABLE(variable)
void ClearVariable(CommandCall& call) { call.clear(1); }

// 955 Choose(Boolean; ifTrue; ifFalse) | (number; value for 0; value for 1; ...): undefined outside the list
void Choose(CommandCall& call) {
    const int64_t index = call.kind(1) == eVK_Boolean ? (call.boolean(1) ? 0 : 1) : call.integer64(1, -1);
    if (index >= 0 && index <= call.count - 2) call.setValue(call.value(int(index) + 2));
}

// Pointers ---------------------------------------------------------------------------------------------------------

void Dispose(PA_Handle handle) {
    EngineBlock block{};
    block.fParam1 = ZR_HANDLE_DISPOSE;
    block.fHandle = handle;
    Host::Call4D(ZR_SEL_Handle, &block);
}

// The kind of what a pointer leads to; -1 for none.
int PointedKind(const PointerBlock& pointer) {
    EngineBlock made{}, ask{};
    made.fParam1 = ZR_USERDATA_FROM;
    made.fParam2 = int64_t(&pointer);
    made.fParam3 = sizeof pointer;
    Host::Call4D(ZR_SEL_UserData, &made);
    if (!made.fHandle) return -1;
    ask.fHandle = made.fHandle;
    Host::Call4D(ZR_SEL_PointerProperties, &ask);
    Dispose(made.fHandle);
    return ask.fError == 0 ? int(ask.fParam1) : -1;
}

bool IsNil(const PointerBlock* pointer) {
    return !pointer || (!pointer->fIsVariable && pointer->fTable == 0) || (pointer->fIsVariable && pointer->fName == 0);
}

// 315 Is nil pointer(pointer)
void IsNilPointer(CommandCall& call) { call.setBoolean(IsNil(call.pointer(1))); }

// 294 Is a variable(pointer): it leads to a variable that exists
void IsAVariable(CommandCall& call) {
    const PointerBlock* pointer = call.pointer(1);
    const bool variable = !IsNil(pointer) && pointer->fIsVariable;
    const int kind = variable ? PointedKind(*pointer) : -1;
    call.setBoolean(kind != -1 && kind != eVK_Undefined);
}

// 304 Get pointer(name): to the host's variable of that name
void GetPointer(CommandCall& call) {
    const std::u16string_view name = call.text(1);
    EngineBlock block{};
    if (name.empty() || name.size() >= std::size(block.fName)) return;
    std::copy(name.begin(), name.end(), block.fName);
    Host::Call4D(ZR_SEL_PointerByName, &block);
    if (!block.fHandle) return;
    call.setPointer(*reinterpret_cast<const PointerBlock*>(*block.fHandle));
    Dispose(block.fHandle);
}

// Running ----------------------------------------------------------------------------------------------------------

// 63 EXECUTE FORMULA(line): a line of code or a method name
void ExecuteFormula(CommandCall& call) {
    const std::u16string line(call.text(1));
    PA_Variable result{};
    result.fType = eVK_Undefined;
    EngineBlock block{};
    block.fParam1 = int64_t(line.c_str());
    block.fLength1 = int64_t(line.size());
    block.fParam4 = int64_t(&result);
    Host::Call4D(ZR_SEL_ExecuteMethod, &block);
    EngineBlock clear{};
    clear.fParam1 = int64_t(&result);
    Host::Call4D(ZR_SEL_ClearVariable, &clear);
    if (block.fError != 0) Finish(call, block.fError);
}

// 1007 EXECUTE METHOD(method; [result or *]; [parameter]...): OK 0 for an unknown method
void ExecuteMethod(CommandCall& call) {
    std::vector<Value> arguments;
    for (int i = 3; i <= call.count; ++i) arguments.push_back(call.value(i));
    Value result;
    if (!call.host.runMethod(std::u16string(call.text(1)), arguments, &result))
        return Finish(call, ZR_ERR_UNKNOWN_METHOD);
    if (call.has(2) && !call.isStar(2) && !result.isUndefined()) call.assignValue(2, result);
    call.setOK(true);
}

constexpr CommandRow kRows[] = {
    {63, ExecuteFormula}, {82, Undefined},       {89, ClearVariable}, {294, IsAVariable},
    {295, TypeOf},        {304, GetPointer},     {315, IsNilPointer}, {538, CommandName},
    {955, Choose},        {1007, ExecuteMethod}, {1509, TypeOf},
};

}  // namespace

std::span<const CommandRow> commandsLanguage() { return kRows; }

}  // namespace zrhost
