#include "host/Variables.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "host/Memory.h"
#include "host/Objects.h"
#include "host/Pictures.h"
#include "host/Text.h"

namespace zrhost {

// Kinds ------------------------------------------------------------------------------------------------------------

namespace {

constexpr struct {
    int array, element;
} kArrayKinds[] = {
    {eVK_ArrayReal, eVK_Real},       {eVK_ArrayInteger, eVK_Integer}, {eVK_ArrayLongint, eVK_Longint},
    {eVK_ArrayDate, eVK_Date},       {eVK_ArrayPicture, eVK_Picture}, {eVK_ArrayPointer, eVK_Pointer},
    {eVK_ArrayBoolean, eVK_Boolean}, {eVK_ArrayBlob, eVK_Blob},       {eVK_ArrayTime, eVK_Time},
    {eVK_ArrayText, eVK_Text},       {eVK_ArrayObject, eVK_Object},
};

// Reads and writes of a field that may stand anywhere: arrays of dates and texts are packed.
template <class T>
T Get(const void* at) {
    T value;
    std::memcpy(&value, at, sizeof value);
    return value;
}
template <class T>
void Put(void* at, T value) {
    std::memcpy(at, &value, sizeof value);
}

PA_Variable EmptyRecord(int kind = eVK_Undefined) {
    PA_Variable record;
    std::memset(&record, 0, sizeof record);
    record.fType = uint8_t(kind);
    return record;
}

}  // namespace

int UnifiedKind(const PA_Variable& record) {
    switch (record.fType) {
        case 0: return record.fFiller == 1 ? int(eVK_Operator) : int(eVK_Text);
        case eVK_OldText:
        case eVK_OldUnicode: return eVK_Text;
        case eVK_OldArrayText:
        case eVK_OldArrayString: return eVK_ArrayText;
        case eVK_Real:
        case eVK_Date:
        case eVK_Boolean:
        case eVK_Integer:
        case eVK_Longint:
        case eVK_Picture:
        case eVK_Time:
        case eVK_Pointer:
        case eVK_Blob:
        case eVK_Text:
        case eVK_Object:
        case eVK_Collection:
        case eVK_Null: return record.fType;
        default: return IsArrayKind(record.fType) ? int(record.fType) : int(eVK_Undefined);
    }
}

bool IsArrayKind(int kind) { return ElementKind(kind) != eVK_Undefined; }

int ElementKind(int arrayKind) {
    for (const auto& row : kArrayKinds)
        if (row.array == arrayKind) return row.element;
    return eVK_Undefined;
}

int ArrayKindOf(int kind) {
    for (const auto& row : kArrayKinds)
        if (row.element == kind) return row.array;
    return eVK_Undefined;
}

// Elements as they lie in an array's handle ------------------------------------------------------------------------

namespace {

void FreeElement(int kind, char* at) {
    switch (kind) {
        case eVK_Text: {
            auto text = Get<PA_Unistring>(at);
            FreeUnistring(&text);
            break;
        }
        case eVK_Picture: Release(CheckedPicture(Get<void*>(at))); break;
        case eVK_Object: Release(CheckedObject(Get<void*>(at))); break;
        case eVK_Pointer: DisposeHandle(Get<PA_Handle>(at)); break;
        case eVK_Blob: DisposeHandle(Get<PA_Handle>(at + 4)); break;
        default: break;
    }
}

PA_Handle CopyHandle(PA_Handle source) { return HandleBytes(source) ? NewHandle(HandleSpan(source)) : nullptr; }

// Gives an element that was copied byte for byte storage of its own.
bool OwnElement(int kind, char* at) {
    switch (kind) {
        case eVK_Text: {
            auto text = Get<PA_Unistring>(at);
            PA_Unistring copy;
            bool ok = MakeUnistring(&copy, UnistringText(text));
            Put(at, copy);
            return ok;
        }
        case eVK_Picture: {
            Picture* picture = CheckedPicture(Get<void*>(at));
            Retain(picture);
            Put<void*>(at, picture);
            return true;
        }
        case eVK_Object: {
            Object* object = CheckedObject(Get<void*>(at));
            Retain(object);
            Put<void*>(at, object);
            return true;
        }
        case eVK_Pointer: Put(at, CopyHandle(Get<PA_Handle>(at))); return true;
        case eVK_Blob: {
            PA_Handle copy = CopyHandle(Get<PA_Handle>(at + 4));
            Put<int32_t>(at, int32_t(std::max<int64_t>(HandleSize(copy), 0)));
            Put(at + 4, copy);
            return true;
        }
        default: return true;
    }
}

Value BlobValue(PA_Handle handle, int64_t size) {
    std::span<const uint8_t> bytes = HandleSpan(handle);
    bytes = bytes.first(std::min<size_t>(bytes.size(), size_t(std::max<int64_t>(size, 0))));
    return Value(Value::Bytes(bytes.begin(), bytes.end()));
}

Value PointerValue(PA_Handle handle) {
    std::span<const uint8_t> bytes = HandleSpan(handle);
    PointerBlock block = {};
    if (bytes.size() >= sizeof block) std::memcpy(&block, bytes.data(), sizeof block);
    return Value(block);
}

Date DateValue(const PA_Date& date) { return {date.fDay, date.fMonth, date.fYear}; }

PA_Date DateRecord(Date date) { return {int16_t(date.day), int16_t(date.month), int16_t(date.year)}; }

Value ReadAt(int kind, const char* at) {
    switch (kind) {
        case eVK_Real: return Value(Get<double>(at));
        case eVK_Integer: return Value::Longint(Get<int16_t>(at));
        case eVK_Longint: return Value::Longint(Get<int32_t>(at));
        case eVK_Time: return Value::Time(Get<int32_t>(at));
        case eVK_Boolean: return Value(Get<int16_t>(at) != 0);
        case eVK_Date: return Value(DateValue(Get<PA_Date>(at)));
        case eVK_Text: return Value(UnistringText(Get<PA_Unistring>(at)));
        case eVK_Picture: return Value(Ref<Picture>(CheckedPicture(Get<void*>(at))));
        case eVK_Object: return Value(Ref<Object>(CheckedObject(Get<void*>(at))));
        case eVK_Pointer: return PointerValue(Get<PA_Handle>(at));
        case eVK_Blob: return BlobValue(Get<PA_Handle>(at + 4), Get<int32_t>(at));
        default: return Value();
    }
}

bool IsNumeric(const Value& value) { return value.isNumber() || value.kind() == eVK_Time; }

// Whether an element or variable of this kind can take the value as it is.
bool Fits(int kind, const Value& value) {
    switch (kind) {
        case eVK_Real:
        case eVK_Integer:
        case eVK_Longint: return IsNumeric(value);
        case eVK_Time: return IsNumeric(value);
        case eVK_Object: return value.kind() == eVK_Object || value.isNull();
        case eVK_Collection: return value.kind() == eVK_Collection || value.isNull();
        case eVK_Null: return value.isNull();
        default: return value.kind() == kind;
    }
}

// Into an element whose old value is replaced. The value fits.
bool WriteAt(int kind, char* at, const Value& value) {
    switch (kind) {
        case eVK_Real: Put(at, value.number()); return true;
        case eVK_Integer: Put(at, int16_t(uint32_t(value.integer()))); return true;
        case eVK_Longint:
        case eVK_Time: Put(at, value.integer()); return true;
        case eVK_Boolean: Put<int16_t>(at, value.boolean()); return true;
        case eVK_Date: Put(at, DateRecord(value.date())); return true;
        case eVK_Text: {
            PA_Unistring made;
            bool ok = MakeUnistring(&made, value.text());
            FreeElement(kind, at);
            Put(at, made);
            return ok;
        }
        case eVK_Picture: {
            Retain(value.picture());
            FreeElement(kind, at);
            Put<void*>(at, value.picture());
            return true;
        }
        case eVK_Object: {
            Retain(value.object());
            FreeElement(kind, at);
            Put<void*>(at, value.object());
            return true;
        }
        case eVK_Pointer: {
            const auto* bytes = reinterpret_cast<const uint8_t*>(value.pointer());
            PA_Handle made = bytes ? NewHandle(std::span(bytes, sizeof(PointerBlock))) : nullptr;
            FreeElement(kind, at);
            Put(at, made);
            return made != nullptr;
        }
        case eVK_Blob: {
            PA_Handle made = NewHandle(value.blob());
            FreeElement(kind, at);
            Put<int32_t>(at, made ? int32_t(value.blob().size()) : 0);
            Put(at + 4, made);
            return made != nullptr;
        }
        default: return false;
    }
}

// Elements 0..n that an array really has: its count, but no more than its handle holds. -1 = no storage.
int64_t LastElement(const PA_Variable& array, int elementSize) {
    int64_t bytes = HandleSize(array.uValue.fArray.fData);
    if (bytes < elementSize) return -1;
    int64_t size = array.uValue.fArray.fSize;
    return std::min(std::max<int64_t>(size, 0), bytes / elementSize - 1);
}

}  // namespace

// Records ----------------------------------------------------------------------------------------------------------

void ResetRecord(PA_Variable* record, int kind) {
    record->fType = uint8_t(kind);
    record->fFiller = 0;
    std::memset(&record->uValue, 0, 24);  // the longest value, a text, has 20 bytes
}

void ClearRecord(PA_Variable* record) {
    int kind = UnifiedKind(*record);
    if (IsArrayKind(kind)) {
        int elementSize = ZR_HostArrayElementSize(kind), element = ElementKind(kind);
        PA_Handle handle = record->uValue.fArray.fData;
        int64_t last = LastElement(*record, elementSize);
        for (int64_t i = 0; i <= last; ++i) FreeElement(element, HandleBytes(handle) + i * elementSize);
        DisposeHandle(handle);
    } else {
        switch (kind) {
            case eVK_Text: {
                PA_Unistring text = record->uValue.fText;
                FreeUnistring(&text);
                break;
            }
            case eVK_Blob: DisposeHandle(record->uValue.fArray.fData); break;
            case eVK_Pointer: DisposeHandle(record->uValue.fPointer); break;
            case eVK_Picture: Release(CheckedPicture(record->uValue.fPicture)); break;
            case eVK_Object: Release(CheckedObject(record->uValue.fObject)); break;
            case eVK_Collection: Release(CheckedCollection(record->uValue.fCollection)); break;
            default: break;
        }
    }
    ResetRecord(record);
}

bool CopyRecord(const PA_Variable& source, PA_Variable* target) {
    int kind = UnifiedKind(source);
    PA_Variable made = EmptyRecord(kind);
    bool ok = true;
    if (kind == eVK_Operator) {
        made = source;  // no storage
    } else if (IsArrayKind(kind)) {
        int elementSize = ZR_HostArrayElementSize(kind), element = ElementKind(kind);
        int64_t last = std::max<int64_t>(LastElement(source, elementSize), 0);
        ok = MakeArray(&made, kind, last);
        if (ok && LastElement(source, elementSize) >= 0) {
            char* bytes = HandleBytes(made.uValue.fArray.fData);
            std::memcpy(bytes, HandleBytes(source.uValue.fArray.fData), size_t((last + 1) * elementSize));
            for (int64_t i = 0; i <= last; ++i) ok &= OwnElement(element, bytes + i * elementSize);
            made.uValue.fArray.fCurrent = source.uValue.fArray.fCurrent;
        }
    } else {
        switch (kind) {
            case eVK_Text: {
                PA_Unistring text;
                ok = MakeUnistring(&text, UnistringText(source.uValue.fText));
                made.uValue.fText = text;
                break;
            }
            case eVK_Blob: {
                PA_Handle copy = CopyHandle(source.uValue.fArray.fData);
                made.uValue.fArray.fData = copy;
                made.uValue.fArray.fSize =
                    int32_t(std::clamp<int64_t>(source.uValue.fArray.fSize, 0, std::max<int64_t>(HandleSize(copy), 0)));
                break;
            }
            case eVK_Pointer: made.uValue.fPointer = CopyHandle(source.uValue.fPointer); break;
            case eVK_Picture: {
                Picture* picture = CheckedPicture(source.uValue.fPicture);
                Retain(picture);
                made.uValue.fPicture = picture;
                break;
            }
            case eVK_Object: {
                Object* object = CheckedObject(source.uValue.fObject);
                Retain(object);
                made.uValue.fObject = object;
                break;
            }
            case eVK_Collection: {
                Collection* collection = CheckedCollection(source.uValue.fCollection);
                Retain(collection);
                made.uValue.fCollection = collection;
                break;
            }
            case eVK_Undefined:
                if (source.fFiller == 1) made = source;  // a table or field
                break;
            default: made = source; break;  // no storage
        }
    }
    if (!ok) ClearRecord(&made);
    *target = made;
    return ok;
}

bool MakeArray(PA_Variable* record, int arrayKind, int64_t size) {
    ResetRecord(record);
    int elementSize = ZR_HostArrayElementSize(arrayKind);
    if (!elementSize || size < 0 || size >= kLargestHandle / elementSize) return false;
    PA_Handle handle = NewHandle((size + 1) * elementSize);
    if (!handle) return false;
    record->fType = uint8_t(arrayKind);
    record->uValue.fArray.fSize = int32_t(size);
    record->uValue.fArray.fData = handle;
    return true;
}

bool ResizeRecord(PA_Variable* array, int64_t size) {
    int kind = UnifiedKind(*array);
    int elementSize = ZR_HostArrayElementSize(kind);
    if (!elementSize || size < 0 || size >= kLargestHandle / elementSize) return false;
    int64_t last = LastElement(*array, elementSize);
    if (last < 0 && !HandleBytes(array->uValue.fArray.fData)) {  // without storage: a new array
        PA_Variable made;
        if (!MakeArray(&made, kind, size)) return false;
        *array = made;
        return true;
    }
    PA_Handle handle = array->uValue.fArray.fData;
    // Elements behind the count are not the array's: cleared by value before they become visible again.
    int64_t held = HandleSize(handle) / elementSize - 1;
    for (int64_t i = size + 1; i <= last; ++i) FreeElement(ElementKind(kind), HandleBytes(handle) + i * elementSize);
    if (last < std::min(held, size))
        std::memset(HandleBytes(handle) + (last + 1) * elementSize, 0,
                    size_t((std::min(held, size) - last) * elementSize));
    bool ok = ResizeHandle(handle, (size + 1) * elementSize);
    int64_t now = ok ? size : std::min(size, held);
    array->uValue.fArray.fSize = int32_t(now);
    if (array->uValue.fArray.fCurrent > now) array->uValue.fArray.fCurrent = 0;
    return ok;
}

Value ReadRecord(const PA_Variable& record) {
    int kind = UnifiedKind(record);
    if (IsArrayKind(kind)) {
        int elementSize = ZR_HostArrayElementSize(kind), element = ElementKind(kind);
        Value::Elements elements;
        int64_t last = LastElement(record, elementSize);
        if (last >= 0) elements.reserve(size_t(last + 1));
        for (int64_t i = 0; i <= last; ++i)
            elements.push_back(ReadAt(element, HandleBytes(record.uValue.fArray.fData) + i * elementSize));
        return Value::Array(PA_VariableKind(kind), std::move(elements));
    }
    switch (kind) {
        case eVK_Real: return Value(double(record.uValue.fReal));
        case eVK_Integer:
        case eVK_Longint: return Value::Longint(record.uValue.fLongint);
        case eVK_Time: return Value::Time(record.uValue.fLongint);
        case eVK_Boolean: return Value(record.uValue.fBoolean != 0);
        case eVK_Date: return Value(DateValue(record.uValue.fDate));
        case eVK_Text: return Value(UnistringText(record.uValue.fText));
        case eVK_Blob: return BlobValue(record.uValue.fArray.fData, record.uValue.fArray.fSize);
        case eVK_Pointer: return PointerValue(record.uValue.fPointer);
        case eVK_Picture: return Value(Ref<Picture>(CheckedPicture(record.uValue.fPicture)));
        case eVK_Object: return Value(Ref<Object>(CheckedObject(record.uValue.fObject)));
        case eVK_Collection: return Value(Ref<Collection>(CheckedCollection(record.uValue.fCollection)));
        case eVK_Null: return Value::Null();
        default: return Value();
    }
}

bool WriteRecord(PA_Variable* record, const Value& value) {
    int kind = value.kind();
    ResetRecord(record);
    if (IsArrayKind(kind)) {
        int64_t size = int64_t(value.elements().size()) - 1;
        if (!MakeArray(record, kind, std::max<int64_t>(size, 0))) return false;
        for (int64_t i = 0; i <= size; ++i) WriteElement(record, i, value.elements()[size_t(i)]);
        return true;
    }
    record->fType = uint8_t(kind);
    bool ok = true;
    switch (kind) {
        case eVK_Real: record->uValue.fReal = value.number(); break;
        case eVK_Integer:
        case eVK_Longint:
        case eVK_Time: record->uValue.fLongint = value.integer(); break;
        case eVK_Boolean: record->uValue.fBoolean = value.boolean(); break;
        case eVK_Date: record->uValue.fDate = DateRecord(value.date()); break;
        case eVK_Text: {
            PA_Unistring text;
            ok = MakeUnistring(&text, value.text());
            record->uValue.fText = text;
            break;
        }
        case eVK_Blob: {
            PA_Handle handle = value.blob().empty() ? nullptr : NewHandle(value.blob());
            ok = handle || value.blob().empty();
            record->uValue.fArray.fData = handle;
            record->uValue.fArray.fSize = handle ? int32_t(value.blob().size()) : 0;
            break;
        }
        case eVK_Pointer: {
            const auto* bytes = reinterpret_cast<const uint8_t*>(value.pointer());
            record->uValue.fPointer = bytes ? NewHandle(std::span(bytes, sizeof(PointerBlock))) : nullptr;
            break;
        }
        case eVK_Picture:
            Retain(value.picture());
            record->uValue.fPicture = value.picture();
            break;
        case eVK_Object:
            Retain(value.object());
            record->uValue.fObject = value.object();
            break;
        case eVK_Collection:
            Retain(value.collection());
            record->uValue.fCollection = value.collection();
            break;
        default: break;
    }
    return ok;
}

bool AssignRecord(PA_Variable* record, const Value& value) {
    int kind = UnifiedKind(*record);
    if (kind == eVK_Undefined && record->fFiller != 1) return WriteRecord(record, value);
    if (kind == eVK_Operator || kind == eVK_Undefined || !Fits(kind, value)) return false;
    int filler = record->fFiller, type = record->fType;
    PA_Variable made;
    bool ok = true;
    if (kind == eVK_Integer && value.isNumber()) {
        made = EmptyRecord(kind);
        made.uValue.fLongint = int16_t(uint32_t(value.integer()));
    } else if (IsNumeric(value)) {
        made = EmptyRecord(kind);
        if (kind == eVK_Real) made.uValue.fReal = value.number();
        else made.uValue.fLongint = value.integer();
    } else {
        ok = WriteRecord(&made, value);
        made.fType = uint8_t(kind);  // Null into an object variable: the variable without an object
        if (value.isNull()) made = EmptyRecord(kind);
    }
    ClearRecord(record);
    *record = made;
    record->fFiller = uint8_t(filler);
    if (kind == eVK_Text || kind == eVK_ArrayText) record->fType = uint8_t(type);  // an old kind of text stays one
    return ok;
}

int RecordArraySize(const PA_Variable& record) {
    int kind = UnifiedKind(record);
    if (!IsArrayKind(kind)) return -1;
    return int(std::max<int64_t>(LastElement(record, ZR_HostArrayElementSize(kind)), 0));
}

char* ArrayElementAt(const PA_Variable& array, int64_t element) {
    int elementSize = ZR_HostArrayElementSize(UnifiedKind(array));
    if (!elementSize || element < 0 || element > LastElement(array, elementSize)) return nullptr;
    return HandleBytes(array.uValue.fArray.fData) + element * elementSize;
}

Value ReadElement(const PA_Variable& array, int64_t element) {
    const char* at = ArrayElementAt(array, element);
    return at ? ReadAt(ElementKind(UnifiedKind(array)), at) : Value();
}

bool WriteElement(PA_Variable* array, int64_t element, const Value& value) {
    char* at = ArrayElementAt(*array, element);
    int kind = ElementKind(UnifiedKind(*array));
    return at && Fits(kind, value) && WriteAt(kind, at, value);
}

PA_Variable Variable::Empty() { return EmptyRecord(); }

// Tables -----------------------------------------------------------------------------------------------------------

VariableTable::Entry* VariableTable::find(std::u16string_view name) const {
    auto found = byName_.find(FoldName(name));
    return found == byName_.end() ? nullptr : found->second;
}

bool VariableTable::get(std::u16string_view name, PA_Variable* out) const {
    std::lock_guard guard(mutex_);
    Entry* entry = find(name);
    if (!entry) {
        *out = EmptyRecord();
        return false;
    }
    return CopyRecord(entry->value.record(), out);
}

Value VariableTable::value(std::u16string_view name) const {
    std::lock_guard guard(mutex_);
    Entry* entry = find(name);
    return entry ? ReadRecord(entry->value.record()) : Value();
}

int VariableTable::kind(std::u16string_view name) const {
    std::lock_guard guard(mutex_);
    Entry* entry = find(name);
    return entry ? UnifiedKind(entry->value.record()) : int(eVK_Undefined);
}

int VariableTable::size(std::u16string_view name) const {
    std::lock_guard guard(mutex_);
    Entry* entry = find(name);
    return entry ? RecordArraySize(entry->value.record()) : -1;
}

bool VariableTable::set(std::u16string_view name, const PA_Variable& value, bool make) {
    Variable copy(value);
    std::lock_guard guard(mutex_);
    Entry* entry = find(name);
    if (!entry) {
        if (!make) return false;
        entries_.push_back(std::make_unique<Entry>(Entry{std::u16string(name), {}}));
        entry = entries_.back().get();
        byName_[FoldName(name)] = entry;
    }
    int kind = UnifiedKind(entry->value.record());
    bool scalar = kind == eVK_Real || kind == eVK_Longint || kind == eVK_Time;  // an integer of 16 bits would cut
    if (scalar && kind != UnifiedKind(copy.record()) && AssignRecord(&entry->value.record(), ReadRecord(copy.record())))
        return true;  // a number into a variable for numbers: the variable keeps its kind
    entry->value = std::move(copy);
    return true;
}

bool VariableTable::setValue(std::u16string_view name, const Value& value, bool make) {
    Variable record;
    if (!WriteRecord(&record.record(), value)) return false;
    return set(name, record.record(), make);
}

void VariableTable::setLongint(std::u16string_view name, int32_t number) {
    {
        std::lock_guard guard(mutex_);
        Entry* entry = find(name);
        if (entry && entry->value.record().fType == eVK_Longint) {
            entry->value.record().uValue.fLongint = number;
            return;
        }
    }
    setValue(name, Value::Longint(number));
}

bool VariableTable::element(std::u16string_view name, int64_t element, PA_Variable* out) const {
    std::lock_guard guard(mutex_);
    Entry* entry = find(name);
    *out = EmptyRecord();
    return entry && ArrayElementAt(entry->value.record(), element) &&
           WriteRecord(out, ReadElement(entry->value.record(), element));
}

bool VariableTable::setElement(std::u16string_view name, int64_t element, const Value& value) {
    std::lock_guard guard(mutex_);
    Entry* entry = find(name);
    return entry && WriteElement(&entry->value.record(), element, value);
}

bool VariableTable::remove(std::u16string_view name) {
    std::lock_guard guard(mutex_);
    auto found = byName_.find(FoldName(name));
    if (found == byName_.end()) return false;
    Entry* entry = found->second;
    byName_.erase(found);
    std::erase_if(entries_, [entry](const auto& owned) { return owned.get() == entry; });
    return true;
}

void VariableTable::clear() {
    std::lock_guard guard(mutex_);
    byName_.clear();
    entries_.clear();
}

std::vector<std::u16string> VariableTable::names() const {
    std::lock_guard guard(mutex_);
    std::vector<std::u16string> names;
    for (const auto& entry : entries_) names.push_back(entry->name);
    return names;
}

}  // namespace zrhost
