// Objects and collections of the language, counted and shared; JSON in and out.
//
// Properties keep their insertion order, and names are told by case. Each access is guarded, so that processes may
// share one; a walk works on a snapshot. A reference cycle keeps its members alive, as the counts say; the walkers
// (JSON, copy, comparison) end at it.
#ifndef ZRHOST_OBJECTS_H
#define ZRHOST_OBJECTS_H

#include <atomic>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "host/SpinLock.h"
#include "host/Value.h"

namespace zrhost {

using Property = std::pair<std::u16string, Value>;

class Object {
  public:
    Value get(std::u16string_view name) const;  // undefined if there is none
    bool has(std::u16string_view name) const;
    void set(std::u16string_view name, Value value);  // an undefined value is kept as undefined
    bool remove(std::u16string_view name);            // false = there was none
    void clear();
    size_t size() const;
    std::vector<Property> properties() const;  // a snapshot, in order
    std::vector<std::u16string> names() const;

  private:
    friend void Retain(Object*);
    friend void Release(Object*);
    size_t find(std::u16string_view name) const;  // the lock is held; properties_.size() = none
    void index();

    mutable SpinLock lock_;
    std::atomic<long> references_{1};
    std::vector<Property> properties_;
    std::unordered_multimap<size_t, size_t> index_;  // hash of the name to position; kept from 16 properties on
};

class Collection {
  public:
    size_t size() const;
    Value at(size_t index) const;         // [0..size); undefined outside
    bool set(size_t index, Value value);  // grows with Nulls; false = the index is absurd
    void push(Value value);
    bool resize(size_t size, const Value& filler = Value::Null());  // false = the size is absurd
    std::vector<Value> elements() const;                            // a snapshot
    void assign(std::vector<Value> elements);

    static constexpr size_t kMaximum = size_t(1) << 28;

  private:
    friend void Retain(Collection*);
    friend void Release(Collection*);
    mutable SpinLock lock_;
    std::atomic<long> references_{1};
    std::vector<Value> elements_;
};

Ref<Object> NewObject();
Ref<Collection> NewCollection();
Object* CheckedObject(const void* address);          // the object at an address from outside; null = none lives there
Collection* CheckedCollection(const void* address);  // the same
long LiveObjects();                                  // objects and collections that are alive: for leak tests

Value DeepCopy(const Value& value);  // objects and collections with all they hold; a cyclic reference becomes Null
// Same kinds and contents. Text without regard to case and accents unless exact. Objects: same properties in any order.
bool DeepEqual(const Value& left, const Value& right, bool exact);
// The order in which the language sorts mixed values: Null, Booleans, texts, numbers, objects, collections, dates;
// within a kind by value; undefined last.
int CompareValues(const Value& left, const Value& right, bool exact = false);

// JSON. Dates are written as "yyyy-mm-dd" and times as numbers of seconds; a BLOB as base64, a picture as
// "[object Picture]", a pointer as "->name", an undefined value as null inside collections and left out of objects;
// a cyclic reference is written as null. Numbers have the shortest text that reads back the same.
std::string WriteJson(const Value& value, bool pretty = false);  // UTF-8
// Nothing if the text is no JSON, or is nested deeper than 1000. Texts stay texts, dates among them.
std::optional<Value> ReadJson(std::u16string_view text);
std::optional<Value> ReadJsonUtf8(std::string_view text);

std::string WriteBase64(std::span<const uint8_t> bytes);
std::optional<std::vector<uint8_t>> ReadBase64(std::string_view text);  // blanks and line ends are passed over

}  // namespace zrhost

#endif
