#include "host/Objects.h"

#include <algorithm>
#include <functional>
#include <mutex>
#include <set>

#include "host/Pool.h"
#include "host/Text.h"

namespace zrhost {

namespace {

Pool<Object>& ObjectPool() {
    static Pool<Object>& pool = *new Pool<Object>;  // never ended: references may outlive every other static
    return pool;
}

Pool<Collection>& CollectionPool() {
    static Pool<Collection>& pool = *new Pool<Collection>;
    return pool;
}

constexpr size_t kIndexedFrom = 16;  // properties; below, a walk is faster

size_t Hash(std::u16string_view name) { return std::hash<std::u16string_view>()(name); }

}  // namespace

// References -------------------------------------------------------------------------------------------------------

// The last release ends the object. A long chain of objects ends one after the other, not one inside the other.
namespace {

thread_local std::vector<Value>* tEnding = nullptr;

template <class Move>
void EndInTurn(Move moveContents) {
    if (tEnding) return moveContents(tEnding);
    std::vector<Value> ending;
    tEnding = &ending;
    moveContents(&ending);
    while (!ending.empty()) {
        Value next = std::move(ending.back());
        ending.pop_back();
        next = Value();  // may add to the list
    }
    tEnding = nullptr;
}

}  // namespace

void Retain(Object* object) {
    if (object) object->references_.fetch_add(1, std::memory_order_relaxed);
}

void Release(Object* object) {
    if (!object || object->references_.fetch_sub(1, std::memory_order_acq_rel) != 1) return;
    EndInTurn([object](std::vector<Value>* ending) {
        for (Property& property : object->properties_) ending->push_back(std::move(property.second));
        ObjectPool().destroy(object);
    });
}

void Retain(Collection* collection) {
    if (collection) collection->references_.fetch_add(1, std::memory_order_relaxed);
}

void Release(Collection* collection) {
    if (!collection || collection->references_.fetch_sub(1, std::memory_order_acq_rel) != 1) return;
    EndInTurn([collection](std::vector<Value>* ending) {
        for (Value& element : collection->elements_) ending->push_back(std::move(element));
        CollectionPool().destroy(collection);
    });
}

Ref<Object> NewObject() { return Ref<Object>::Adopt(ObjectPool().create()); }
Ref<Collection> NewCollection() { return Ref<Collection>::Adopt(CollectionPool().create()); }
Object* CheckedObject(const void* address) { return address ? ObjectPool().find(address) : nullptr; }
Collection* CheckedCollection(const void* address) { return address ? CollectionPool().find(address) : nullptr; }
long LiveObjects() { return ObjectPool().live() + CollectionPool().live(); }

// Objects ----------------------------------------------------------------------------------------------------------

size_t Object::find(std::u16string_view name) const {
    if (properties_.size() < kIndexedFrom) {
        for (size_t i = 0; i < properties_.size(); ++i)
            if (properties_[i].first == name) return i;
        return properties_.size();
    }
    auto [first, last] = index_.equal_range(Hash(name));
    for (; first != last; ++first)
        if (properties_[first->second].first == name) return first->second;
    return properties_.size();
}

void Object::index() {
    index_.clear();
    if (properties_.size() < kIndexedFrom) return;
    for (size_t i = 0; i < properties_.size(); ++i) index_.emplace(Hash(properties_[i].first), i);
}

Value Object::get(std::u16string_view name) const {
    std::lock_guard guard(lock_);
    size_t at = find(name);
    return at < properties_.size() ? properties_[at].second : Value();
}

bool Object::has(std::u16string_view name) const {
    std::lock_guard guard(lock_);
    return find(name) < properties_.size();
}

void Object::set(std::u16string_view name, Value value) {
    std::lock_guard guard(lock_);
    size_t at = find(name);
    if (at < properties_.size()) {
        std::swap(properties_[at].second, value);  // the old value ends with this call, after the lock
        return;
    }
    properties_.emplace_back(std::u16string(name), std::move(value));
    if (properties_.size() == kIndexedFrom) index();
    else if (properties_.size() > kIndexedFrom) index_.emplace(Hash(name), properties_.size() - 1);
}

bool Object::remove(std::u16string_view name) {
    Property removed;
    std::lock_guard guard(lock_);
    size_t at = find(name);
    if (at == properties_.size()) return false;
    removed = std::move(properties_[at]);
    properties_.erase(properties_.begin() + std::ptrdiff_t(at));
    index();
    return true;
}

void Object::clear() {
    std::vector<Property> removed;
    std::lock_guard guard(lock_);
    removed.swap(properties_);
    index_.clear();
}

size_t Object::size() const {
    std::lock_guard guard(lock_);
    return properties_.size();
}

std::vector<Property> Object::properties() const {
    std::lock_guard guard(lock_);
    return properties_;
}

std::vector<std::u16string> Object::names() const {
    std::lock_guard guard(lock_);
    std::vector<std::u16string> names;
    names.reserve(properties_.size());
    for (const Property& property : properties_) names.push_back(property.first);
    return names;
}

// Collections ------------------------------------------------------------------------------------------------------

size_t Collection::size() const {
    std::lock_guard guard(lock_);
    return elements_.size();
}

Value Collection::at(size_t index) const {
    std::lock_guard guard(lock_);
    return index < elements_.size() ? elements_[index] : Value();
}

bool Collection::set(size_t index, Value value) {
    if (index >= kMaximum) return false;
    std::lock_guard guard(lock_);
    if (index >= elements_.size()) elements_.resize(index + 1, Value::Null());
    std::swap(elements_[index], value);
    return true;
}

void Collection::push(Value value) {
    std::lock_guard guard(lock_);
    elements_.push_back(std::move(value));
}

bool Collection::resize(size_t size, const Value& filler) {
    if (size > kMaximum) return false;
    std::vector<Value> surplus;
    std::lock_guard guard(lock_);
    if (size < elements_.size())
        surplus.assign(std::make_move_iterator(elements_.begin() + std::ptrdiff_t(size)),
                       std::make_move_iterator(elements_.end()));
    elements_.resize(size, filler);
    return true;
}

std::vector<Value> Collection::elements() const {
    std::lock_guard guard(lock_);
    return elements_;
}

void Collection::assign(std::vector<Value> elements) {
    std::lock_guard guard(lock_);
    elements_.swap(elements);
}

// Walks over values ------------------------------------------------------------------------------------------------

namespace {

constexpr int kDeepest = 1000;  // nesting that the walkers follow

// The objects and collections between the start of a walk and where it stands.
using Path = std::vector<const void*>;

bool Enter(Path* path, const void* inside) {
    if (path->size() >= kDeepest || std::find(path->begin(), path->end(), inside) != path->end()) return false;
    path->push_back(inside);
    return true;
}

Value CopyInside(const Value& value, Path* path) {
    if (Object* object = value.object()) {
        if (!Enter(path, object)) return Value::Null();
        Ref<Object> copy = NewObject();
        for (const Property& property : object->properties())
            copy->set(property.first, CopyInside(property.second, path));
        path->pop_back();
        return Value(copy);
    }
    if (Collection* collection = value.collection()) {
        if (!Enter(path, collection)) return Value::Null();
        Ref<Collection> copy = NewCollection();
        std::vector<Value> elements = collection->elements();
        for (Value& element : elements) element = CopyInside(element, path);
        copy->assign(std::move(elements));
        path->pop_back();
        return Value(copy);
    }
    return value;
}

bool EqualInside(const Value& left, const Value& right, bool exact, Path* path);

bool EqualObjects(Object* left, Object* right, bool exact, Path* path) {
    if (left == right) return true;
    std::vector<Property> properties = left->properties();
    if (properties.size() != right->size() || !Enter(path, left)) return false;
    bool equal = true;
    for (size_t i = 0; equal && i < properties.size(); ++i)
        equal = right->has(properties[i].first) &&
                EqualInside(properties[i].second, right->get(properties[i].first), exact, path);
    path->pop_back();
    return equal;
}

bool EqualCollections(Collection* left, Collection* right, bool exact, Path* path) {
    if (left == right) return true;
    std::vector<Value> a = left->elements(), b = right->elements();
    if (a.size() != b.size() || !Enter(path, left)) return false;
    bool equal = true;
    for (size_t i = 0; equal && i < a.size(); ++i) equal = EqualInside(a[i], b[i], exact, path);
    path->pop_back();
    return equal;
}

bool EqualInside(const Value& left, const Value& right, bool exact, Path* path) {
    if (left.isNumber() && right.isNumber()) return left.number() == right.number();
    if (left.kind() != right.kind()) return false;
    switch (left.kind()) {
        case eVK_Text: return CompareText(left.text(), right.text(), exact, /*wildcard*/ false) == 0;
        case eVK_Object:
            if (!left.object() || !right.object()) return left.object() == right.object();
            return EqualObjects(left.object(), right.object(), exact, path);
        case eVK_Collection:
            if (!left.collection() || !right.collection()) return left.collection() == right.collection();
            return EqualCollections(left.collection(), right.collection(), exact, path);
        case eVK_Date: return left.date() == right.date();
        case eVK_Picture: return left.picture() == right.picture();
        case eVK_Blob: return left.blob() == right.blob();
        case eVK_Pointer:
            return left.pointer() && right.pointer() &&
                   std::equal(reinterpret_cast<const char*>(left.pointer()),
                              reinterpret_cast<const char*>(left.pointer() + 1),
                              reinterpret_cast<const char*>(right.pointer()));
        default: return left.number() == right.number();
    }
}

// The order of kinds in a mixed sort.
int Rank(const Value& value) {
    switch (value.kind()) {
        case eVK_Boolean: return 1;
        case eVK_Text: return 2;
        case eVK_Real:
        case eVK_Integer:
        case eVK_Longint:
        case eVK_Time: return 3;
        case eVK_Object: return 4;
        case eVK_Collection: return 5;
        case eVK_Date: return 6;
        case eVK_Null: return 0;
        case eVK_Undefined: return 8;
        default: return 7;
    }
}

template <class T>
int Order(const T& left, const T& right) {
    return left < right ? -1 : right < left ? 1 : 0;
}

}  // namespace

Value DeepCopy(const Value& value) {
    Path path;
    return CopyInside(value, &path);
}

bool DeepEqual(const Value& left, const Value& right, bool exact) {
    Path path;
    return EqualInside(left, right, exact, &path);
}

int CompareValues(const Value& left, const Value& right, bool exact) {
    int a = Rank(left), b = Rank(right);
    if (a != b) return Order(a, b);
    switch (a) {
        case 1:
        case 3: return Order(left.number(), right.number());
        case 2: return CompareText(left.text(), right.text(), exact, /*wildcard*/ false);
        case 6: {
            Date x = left.date(), y = right.date();
            return Order(std::tuple(x.year, x.month, x.day), std::tuple(y.year, y.month, y.day));
        }
        default: return 0;
    }
}

}  // namespace zrhost
