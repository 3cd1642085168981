// Records of the published interface as owned C++ values, and tables of variables by name.
#ifndef ZRHOST_VARIABLES_H
#define ZRHOST_VARIABLES_H

#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "host/Value.h"
#include "plugin/ZR_HostInterface.h"

namespace zrhost {

// Functions over one record. Those that read accept any record with a valid value; a kind outside the table of kinds
// counts as undefined, null and dead handles as empty.
int UnifiedKind(const PA_Variable& record);  // folded; eVK_Operator (0) only for an operator
bool IsArrayKind(int kind);
int ElementKind(int arrayKind);                                   // eVK_Undefined if it is no array kind
int ArrayKindOf(int kind);                                        // the array kind whose elements are of this kind
void ResetRecord(PA_Variable* record, int kind = eVK_Undefined);  // overwrites: the empty value, nothing is freed
void ClearRecord(PA_Variable* record);                            // frees what it owns; becomes undefined
bool CopyRecord(const PA_Variable& source, PA_Variable* target);  // target overwritten; false = no memory, undefined
bool ResizeRecord(PA_Variable* array, int64_t size);  // false = no array, a negative or absurd size, no memory
bool MakeArray(PA_Variable* record, int arrayKind, int64_t size);  // overwrites; cleared elements 0..size
Value ReadRecord(const PA_Variable& record);                       // a copy
bool WriteRecord(PA_Variable* record, const Value& value);         // overwrites; takes the kind of the value
// Stores a value into a record that keeps its kind; an undefined record takes the kind of the value. False = unfit.
bool AssignRecord(PA_Variable* record, const Value& value);
int RecordArraySize(const PA_Variable& record);                   // elements 1..n; -1 = no array
char* ArrayElementAt(const PA_Variable& array, int64_t element);  // [0..size]; null outside or without storage
Value ReadElement(const PA_Variable& array, int64_t element);
bool WriteElement(PA_Variable* array, int64_t element, const Value& value);  // false = outside or unfit

// A record that is freed with its owner.
class Variable {
  public:
    Variable() { record_ = Empty(); }
    explicit Variable(const PA_Variable& copied) { CopyRecord(copied, &record_); }
    Variable(const Variable& other) : Variable(other.record_) {}
    Variable(Variable&& other) noexcept : record_(other.record_) { other.record_ = Empty(); }
    Variable& operator=(Variable other) noexcept {
        std::swap(record_, other.record_);
        return *this;
    }
    ~Variable() { ClearRecord(&record_); }
    PA_Variable& record() { return record_; }
    const PA_Variable& record() const { return record_; }

  private:
    static PA_Variable Empty();
    PA_Variable record_;
};

// Variables by name; ASCII letters of a name in any case. Each call is guarded; values are copied in and out.
class VariableTable {
  public:
    bool get(std::u16string_view name, PA_Variable* out) const;  // overwrites; undefined and false if there is none
    Value value(std::u16string_view name) const;
    int kind(std::u16string_view name) const;  // unified; eVK_Undefined if there is none
    int size(std::u16string_view name) const;  // elements of an array; -1
    // A copy is stored. A variable for numbers keeps its kind when a number is stored; else the kind of the value
    // counts.
    bool set(std::u16string_view name, const PA_Variable& value, bool make);  // false = missing and not made
    bool setValue(std::u16string_view name, const Value& value, bool make = true);
    void setLongint(std::u16string_view name, int32_t number);  // made if missing: the short way of OK
    bool element(std::u16string_view name, int64_t element, PA_Variable* out) const;
    bool setElement(std::u16string_view name, int64_t element, const Value& value);
    bool remove(std::u16string_view name);
    void clear();
    std::vector<std::u16string> names() const;  // in the order of their making

  private:
    struct Entry {
        std::u16string name;
        Variable value;
    };
    Entry* find(std::u16string_view name) const;

    mutable std::mutex mutex_;
    mutable std::vector<std::unique_ptr<Entry>> entries_;
    std::unordered_map<std::u16string, Entry*> byName_;
};

}  // namespace zrhost

#endif
