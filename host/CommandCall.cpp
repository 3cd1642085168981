#include "host/CommandCall.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "host/Host_Private.h"
#include "host/Memory.h"
#include "host/Objects.h"
#include "host/Pictures.h"

namespace zrhost {

namespace {

const PA_Variable& Missing() {
    static const Variable undefined;
    return undefined.record();
}

const PA_Variable& Parameter(const CommandCall& call, int i) {
    return call.has(i) ? *call.parameters[i - 1] : Missing();
}

int64_t Whole(double number) {
    if (std::isnan(number)) return 0;
    constexpr double kLimit = 9223372036854775808.0;
    if (number >= kLimit) return INT64_MAX;
    if (number <= -kLimit) return INT64_MIN;
    return int64_t(number);
}

bool Assign(CommandCall& call, int i, const Value& value) {
    return call.has(i) && AssignRecord(call.parameters[i - 1], value);
}

// The result as an empty value of that kind; what it held is freed.
PA_Variable* Clean(CommandCall& call, int kind) {
    if (call.result->fType != eVK_Undefined) ClearRecord(call.result);
    ResetRecord(call.result, kind);
    return call.result;
}

void Set(CommandCall& call, const Value& value) {
    ClearRecord(call.result);
    if (!WriteRecord(call.result, value)) call.error = ZR_ERR_MEMORY;
}

template <class T>
bool AssignArray(CommandCall& call, int i, PA_VariableKind kind, std::span<const T> values, Value (*make)(const T&)) {
    if (!call.prepareArray(i, kind, int(values.size()))) return false;
    for (size_t at = 0; at < values.size(); ++at)
        if (!WriteElement(call.parameters[i - 1], int64_t(at) + 1, make(values[at]))) return false;
    return true;
}

}  // namespace

// Kinds ------------------------------------------------------------------------------------------------------------

int CommandCall::kind(int i) const { return UnifiedKind(Parameter(*this, i)); }
bool CommandCall::isUndefined(int i) const { return kind(i) == eVK_Undefined && !isTableOrField(i); }
bool CommandCall::isNumber(int i) const {
    int is = kind(i);
    return is == eVK_Real || is == eVK_Integer || is == eVK_Longint;
}
bool CommandCall::isText(int i) const { return kind(i) == eVK_Text; }
bool CommandCall::isArray(int i) const { return IsArrayKind(kind(i)); }
bool CommandCall::isOperator(int i) const { return has(i) && kind(i) == eVK_Operator; }
int CommandCall::operatorCode(int i) const { return isOperator(i) ? Parameter(*this, i).uValue.fOperator : -1; }
bool CommandCall::isStar(int i) const { return operatorCode(i) == ZR_OP_TIMES; }

bool CommandCall::takeStar() {
    if (!isStar(count)) return false;
    --count;
    return true;
}

bool CommandCall::isTableOrField(int i) const {
    if (kind(i) == eVK_Undefined) return Parameter(*this, i).fFiller == 1;
    const PointerBlock* block = pointer(i);
    return block && block->fIsVariable != 1 && block->fTable != 0;
}

// Reading ----------------------------------------------------------------------------------------------------------

double CommandCall::number(int i, double missing) const {
    const PA_Variable& record = Parameter(*this, i);
    switch (UnifiedKind(record)) {
        case eVK_Real: return record.uValue.fReal;
        case eVK_Integer:
        case eVK_Longint:
        case eVK_Time: return record.uValue.fLongint;
        case eVK_Boolean: return record.uValue.fBoolean != 0;
        default: return has(i) ? 0 : missing;
    }
}

int32_t CommandCall::integer(int i, int32_t missing) const {
    return int32_t(std::clamp<int64_t>(integer64(i, missing), INT32_MIN, INT32_MAX));
}

int64_t CommandCall::integer64(int i, int64_t missing) const { return has(i) ? Whole(number(i)) : missing; }

bool CommandCall::boolean(int i, bool missing) const { return has(i) ? number(i) != 0 : missing; }

std::u16string_view CommandCall::text(int i) const {
    const PA_Variable& record = Parameter(*this, i);
    return UnifiedKind(record) == eVK_Text ? UnistringText(record.uValue.fText) : std::u16string_view();
}

std::string CommandCall::utf8(int i) const { return ToUtf8(text(i)); }

Date CommandCall::date(int i) const {
    const PA_Variable& record = Parameter(*this, i);
    if (UnifiedKind(record) != eVK_Date) return {};
    return {record.uValue.fDate.fDay, record.uValue.fDate.fMonth, record.uValue.fDate.fYear};
}

int32_t CommandCall::time(int i) const { return kind(i) == eVK_Boolean ? 0 : integer(i); }

std::span<const uint8_t> CommandCall::blob(int i) const {
    const PA_Variable& record = Parameter(*this, i);
    if (UnifiedKind(record) != eVK_Blob) return {};
    std::span<const uint8_t> bytes = HandleSpan(record.uValue.fArray.fData);
    int64_t size = record.uValue.fArray.fSize;
    return bytes.first(std::min<size_t>(bytes.size(), size_t(std::max<int64_t>(size, 0))));
}

Object* CommandCall::object(int i) const {
    return kind(i) == eVK_Object ? CheckedObject(Parameter(*this, i).uValue.fObject) : nullptr;
}

Collection* CommandCall::collection(int i) const {
    return kind(i) == eVK_Collection ? CheckedCollection(Parameter(*this, i).uValue.fCollection) : nullptr;
}

Picture* CommandCall::picture(int i) const {
    return kind(i) == eVK_Picture ? CheckedPicture(Parameter(*this, i).uValue.fPicture) : nullptr;
}

TableField CommandCall::tableField(int i) const {
    if (!isTableOrField(i)) return {};
    if (const PointerBlock* block = pointer(i)) return {block->fTable, block->fField};
    PA_TableField reference = Parameter(*this, i).uValue.fTableField;
    return {uint16_t(reference.fTable), uint16_t(reference.fField)};
}

const PointerBlock* CommandCall::pointer(int i) const {
    if (kind(i) != eVK_Pointer) return nullptr;
    std::span<const uint8_t> bytes = HandleSpan(Parameter(*this, i).uValue.fPointer);
    return bytes.size() >= sizeof(PointerBlock) ? reinterpret_cast<const PointerBlock*>(bytes.data()) : nullptr;
}

Value CommandCall::value(int i) const { return ReadRecord(Parameter(*this, i)); }

// Arrays -----------------------------------------------------------------------------------------------------------

int CommandCall::arraySize(int i) const { return RecordArraySize(Parameter(*this, i)); }

int CommandCall::currentElement(int i) const { return isArray(i) ? Parameter(*this, i).uValue.fArray.fCurrent : 0; }

double CommandCall::arrayNumber(int i, int element) const { return arrayElement(i, element).number(); }

std::u16string_view CommandCall::arrayText(int i, int element) const {
    const char* at = kind(i) == eVK_ArrayText ? ArrayElementAt(Parameter(*this, i), element) : nullptr;
    if (!at) return {};
    PA_Unistring text;
    std::memcpy(&text, at, sizeof text);
    return UnistringText(text);
}

bool CommandCall::arrayBoolean(int i, int element) const { return arrayElement(i, element).boolean(); }
Date CommandCall::arrayDate(int i, int element) const { return arrayElement(i, element).date(); }

Value CommandCall::arrayElement(int i, int element) const { return ReadElement(Parameter(*this, i), element); }

bool CommandCall::resizeArray(int i, int size) { return has(i) && ResizeRecord(parameters[i - 1], size); }

bool CommandCall::prepareArray(int i, PA_VariableKind arrayKind, int size) {
    if (!has(i)) return false;
    if (isUndefined(i)) return MakeArray(parameters[i - 1], arrayKind, size);
    return resizeArray(i, size);
}

bool CommandCall::setArrayNumber(int i, int element, double number) {
    return setArrayElement(i, element, kind(i) == eVK_ArrayBoolean ? Value(number != 0) : Value(number));
}
bool CommandCall::setArrayText(int i, int element, std::u16string_view text) {
    return setArrayElement(i, element, Value(text));
}
bool CommandCall::setArrayBoolean(int i, int element, bool boolean) {
    return setArrayElement(i, element, Value(boolean));
}
bool CommandCall::setArrayDate(int i, int element, Date date) { return setArrayElement(i, element, Value(date)); }

bool CommandCall::setArrayElement(int i, int element, const Value& value) {
    return has(i) && WriteElement(parameters[i - 1], element, value);
}

bool CommandCall::swapArrayElements(int i, int left, int right) {
    if (!has(i)) return false;
    char* a = ArrayElementAt(*parameters[i - 1], left);
    char* b = ArrayElementAt(*parameters[i - 1], right);
    if (!a || !b) return false;
    if (a != b) std::swap_ranges(a, a + ZR_HostArrayElementSize(kind(i)), b);
    return true;
}

bool CommandCall::setCurrentElement(int i, int element) {
    if (!isArray(i) || element < 0 || element > arraySize(i)) return false;
    parameters[i - 1]->uValue.fArray.fCurrent = int16_t(std::min(element, 0x7FFF));
    return true;
}

bool CommandCall::assignTextArray(int i, std::span<const std::u16string> texts) {
    return AssignArray<std::u16string>(*this, i, eVK_ArrayText, texts,
                                       [](const std::u16string& text) { return Value(text); });
}
bool CommandCall::assignLongintArray(int i, std::span<const int32_t> numbers) {
    return AssignArray<int32_t>(*this, i, eVK_ArrayLongint, numbers,
                                [](const int32_t& number) { return Value::Longint(number); });
}
bool CommandCall::assignRealArray(int i, std::span<const double> numbers) {
    return AssignArray<double>(*this, i, eVK_ArrayReal, numbers, [](const double& number) { return Value(number); });
}
bool CommandCall::assignBooleanArray(int i, const std::vector<bool>& booleans) {
    if (!prepareArray(i, eVK_ArrayBoolean, int(booleans.size()))) return false;
    for (size_t at = 0; at < booleans.size(); ++at)
        if (!setArrayBoolean(i, int(at) + 1, booleans[at])) return false;
    return true;
}
bool CommandCall::assignDateArray(int i, std::span<const Date> dates) {
    return AssignArray<Date>(*this, i, eVK_ArrayDate, dates, [](const Date& date) { return Value(date); });
}

// Writing parameters -----------------------------------------------------------------------------------------------

bool CommandCall::assignReal(int i, double number) { return Assign(*this, i, Value(number)); }
bool CommandCall::assignLongint(int i, int32_t number) { return Assign(*this, i, Value::Longint(number)); }
bool CommandCall::assignText(int i, std::u16string_view text) { return Assign(*this, i, Value(text)); }
bool CommandCall::assignBoolean(int i, bool boolean) { return Assign(*this, i, Value(boolean)); }
bool CommandCall::assignDate(int i, Date date) { return Assign(*this, i, Value(date)); }
bool CommandCall::assignTime(int i, int32_t seconds) { return Assign(*this, i, Value::Time(seconds)); }
bool CommandCall::assignBlob(int i, std::span<const uint8_t> bytes) {
    return Assign(*this, i, Value(Value::Bytes(bytes.begin(), bytes.end())));
}
bool CommandCall::assignObject(int i, Ref<Object> object) { return Assign(*this, i, Value(std::move(object))); }
bool CommandCall::assignCollection(int i, Ref<Collection> collection) {
    return Assign(*this, i, Value(std::move(collection)));
}
bool CommandCall::assignPicture(int i, Ref<Picture> picture) { return Assign(*this, i, Value(std::move(picture))); }
bool CommandCall::assignValue(int i, const Value& value) { return Assign(*this, i, value); }

bool CommandCall::clear(int i) {
    if (!has(i) || isOperator(i) || isTableOrField(i)) return false;
    PA_Variable* record = parameters[i - 1];
    int old = record->fType;
    if (IsArrayKind(kind(i))) return resizeArray(i, 0);
    ClearRecord(record);
    record->fType = uint8_t(old);
    return true;
}

// The result -------------------------------------------------------------------------------------------------------

void CommandCall::setReal(double number) { Clean(*this, eVK_Real)->uValue.fReal = number; }
void CommandCall::setLongint(int32_t number) { Clean(*this, eVK_Longint)->uValue.fLongint = number; }
void CommandCall::setText(std::u16string_view text) {
    PA_Unistring made;
    if (!MakeUnistring(&made, text)) error = ZR_ERR_MEMORY;
    Clean(*this, eVK_Text)->uValue.fText = made;
}
void CommandCall::setText(std::string_view utf8) { setText(FromUtf8(utf8)); }
void CommandCall::setBoolean(bool boolean) { Clean(*this, eVK_Boolean)->uValue.fBoolean = boolean; }
void CommandCall::setDate(Date date) { Set(*this, Value(date)); }
void CommandCall::setTime(int32_t seconds) { Clean(*this, eVK_Time)->uValue.fLongint = seconds; }
void CommandCall::setBlob(std::span<const uint8_t> bytes) {
    Set(*this, Value(Value::Bytes(bytes.begin(), bytes.end())));
}
void CommandCall::setObject(Ref<Object> object) { Set(*this, Value(std::move(object))); }
void CommandCall::setCollection(Ref<Collection> collection) { Set(*this, Value(std::move(collection))); }
void CommandCall::setPicture(Ref<Picture> picture) { Set(*this, Value(std::move(picture))); }
void CommandCall::setPointer(const PointerBlock& pointer) { Set(*this, Value(pointer)); }
void CommandCall::setNull() { Set(*this, Value::Null()); }
void CommandCall::setUndefined() { ClearRecord(result); }
void CommandCall::setValue(const Value& value) { Set(*this, value); }

// The process ------------------------------------------------------------------------------------------------------

void CommandCall::setOK(bool ok) { process.setOK(ok); }
bool CommandCall::ok() const { return process.ok(); }
void CommandCall::setDocument(std::u16string_view path) { process.setDocument(path); }

void CommandCall::notServed() {
    setUndefined();
    setOK(false);
    error = ZR_ERR_UNKNOWN_COMMAND;
    ReportNotServed(host, id);
}

}  // namespace zrhost
