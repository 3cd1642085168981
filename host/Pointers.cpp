// Pointers of the language: the block names a variable by a number that the host gives, or a table and field.
#include <cstring>

#include "host/Host_Private.h"
#include "host/Text.h"

namespace zrhost {

namespace {

constexpr int kProcessScope = 1, kInterprocessScope = 2;

VariableTable* TableOf(Host::Inside& inside, const PointerBlock& pointer) {
    if (pointer.fIsVariable != 1) return nullptr;
    return pointer.fScope == kInterprocessScope ? &inside.interprocess : &inside.host->currentProcess().variables;
}

}  // namespace

uint64_t NumberOfName(Host::Inside& inside, std::u16string_view name) {
    std::lock_guard guard(inside.namesMutex);
    auto [entry, isNew] = inside.nameNumbers.try_emplace(FoldName(name), inside.names.size() + 1);
    if (isNew) inside.names.emplace_back(name);
    return entry->second;
}

std::u16string NameOfNumber(Host::Inside& inside, uint64_t number) {
    std::lock_guard guard(inside.namesMutex);
    return number >= 1 && number <= inside.names.size() ? inside.names[number - 1] : std::u16string();
}

PointerBlock PointerToVariable(Host::Inside& inside, std::u16string_view name, bool interprocess, int element) {
    PointerBlock pointer = {};
    pointer.fIsVariable = 1;
    pointer.fScope = interprocess ? kInterprocessScope : kProcessScope;
    pointer.fElement = uint16_t(element);
    pointer.fName = NumberOfName(inside, name);
    return pointer;
}

std::u16string PointerText(const PointerBlock& pointer) {
    Host* host = Host::active();
    if (!host) return {};
    if (pointer.fIsVariable != 1) {
        if (!pointer.fTable) return {};
        std::u16string text = u"->[Table_" + FromUtf8(std::to_string(pointer.fTable)) + u"]";
        if (pointer.fField) text += u"Field_" + FromUtf8(std::to_string(pointer.fField));
        return text;
    }
    std::u16string text = u"->";
    if (pointer.fScope == kInterprocessScope) text += u"<>";
    text += NameOfNumber(host->inside(), pointer.fName);
    if (pointer.fElement) text += u"{" + FromUtf8(std::to_string(pointer.fElement)) + u"}";
    return text;
}

bool ReadPointer(Host::Inside& inside, const PointerBlock& pointer, PA_Variable* out) {
    std::memset(out, 0, sizeof *out);
    out->fType = eVK_Undefined;
    VariableTable* table = TableOf(inside, pointer);
    if (!table) return false;
    std::u16string name = NameOfNumber(inside, pointer.fName);
    return pointer.fElement ? table->element(name, pointer.fElement, out) : table->get(name, out);
}

bool WritePointer(Host::Inside& inside, const PointerBlock& pointer, const PA_Variable& value) {
    VariableTable* table = TableOf(inside, pointer);
    std::u16string name = table ? NameOfNumber(inside, pointer.fName) : std::u16string();
    if (name.empty()) return false;
    if (pointer.fElement) return table->setElement(name, pointer.fElement, ReadRecord(value));
    return table->set(name, value, /*make*/ true);
}

int PointerTargetKind(Host::Inside& inside, const PointerBlock& pointer) {
    VariableTable* table = TableOf(inside, pointer);
    if (!table) return eVK_Undefined;
    int kind = table->kind(NameOfNumber(inside, pointer.fName));
    return pointer.fElement ? ElementKind(kind) : kind;
}

}  // namespace zrhost
