// Values of the language as C++ code sees them: a tagged value for arguments, results and properties, and counted
// references to the host's objects, collections and pictures.
//
// A Value is a plain value: copying it copies text, BLOBs and arrays and adds a reference to an object, collection or
// picture. Kinds are those of the published interface.
#ifndef ZRHOST_VALUE_H
#define ZRHOST_VALUE_H

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "plugin/ZR_HostInterface.h"

namespace zrhost {

class Object;      // host/Objects.h
class Collection;  // host/Objects.h
class Picture;     // host/Pictures.h

void Retain(Object* object);  // null does nothing
void Release(Object* object);
void Retain(Collection* collection);
void Release(Collection* collection);
void Retain(Picture* picture);
void Release(Picture* picture);

// A counted reference; null = none.
template <class T>
class Ref {
  public:
    Ref() = default;
    Ref(std::nullptr_t) {}
    explicit Ref(T* shared) : pointer_(shared) { Retain(pointer_); }  // adds a reference
    static Ref Adopt(T* owned) {                                      // takes the caller's reference over
        Ref ref;
        ref.pointer_ = owned;
        return ref;
    }
    Ref(const Ref& other) : pointer_(other.pointer_) { Retain(pointer_); }
    Ref(Ref&& other) noexcept : pointer_(std::exchange(other.pointer_, nullptr)) {}
    Ref& operator=(Ref other) noexcept {
        std::swap(pointer_, other.pointer_);
        return *this;
    }
    ~Ref() { Release(pointer_); }

    T* get() const { return pointer_; }
    T* operator->() const { return pointer_; }
    T& operator*() const { return *pointer_; }
    explicit operator bool() const { return pointer_ != nullptr; }
    bool operator==(const Ref& other) const { return pointer_ == other.pointer_; }
    T* detach() { return std::exchange(pointer_, nullptr); }  // the reference is handed over

  private:
    T* pointer_ = nullptr;
};

struct Date {
    int day = 0, month = 0, year = 0;  // all 0 = the empty date
    bool operator==(const Date&) const = default;
};

class Value {
  public:
    using Bytes = std::vector<uint8_t>;
    using Elements = std::vector<Value>;  // arrays: element 0 first, so size() - 1 elements 1..n

    Value() = default;  // undefined
    Value(const Value& other);
    Value(Value&& other) noexcept;
    Value& operator=(const Value& other);
    Value& operator=(Value&& other) noexcept;
    ~Value();
    Value(double real) : kind_(eVK_Real), data_(real) {}
    Value(bool boolean) : kind_(eVK_Boolean), data_(int32_t(boolean)) {}
    Value(Date date) : kind_(eVK_Date), data_(date) {}
    Value(std::u16string text);
    Value(std::u16string_view text) : Value(std::u16string(text)) {}
    Value(const char16_t* text) : Value(std::u16string(text)) {}
    Value(Ref<Object> object);
    Value(Ref<Collection> collection);
    Value(Ref<Picture> picture);
    Value(Bytes blob);
    Value(const PointerBlock& pointer);
    Value(const void*) = delete;  // no pointer becomes a Boolean by accident
    static Value Null() { return Value(eVK_Null); }
    static Value Longint(int32_t number) { return Value(eVK_Longint, number); }
    static Value Time(int32_t seconds) { return Value(eVK_Time, seconds); }
    static Value Array(PA_VariableKind arrayKind, Elements elements);  // element 0 first; one is added if empty

    PA_VariableKind kind() const { return kind_; }
    bool isUndefined() const { return kind_ == eVK_Undefined; }
    bool isNull() const { return kind_ == eVK_Null; }
    bool isNumber() const { return kind_ == eVK_Real || kind_ == eVK_Longint || kind_ == eVK_Integer; }
    bool isText() const { return kind_ == eVK_Text; }

    // Readers: the neutral value if the kind is another one.
    double number() const;    // numbers and times; a Boolean as 0 or 1
    int32_t integer() const;  // number, cut to the range and truncated
    bool boolean() const;     // Boolean, or a number that is not 0
    Date date() const;
    const std::u16string& text() const;
    const Bytes& blob() const;
    const Elements& elements() const;  // arrays: element 0 first; else empty
    Object* object() const;            // borrowed
    Collection* collection() const;
    Picture* picture() const;
    const PointerBlock* pointer() const;  // null = no pointer

  private:
    explicit Value(PA_VariableKind kind) : kind_(kind) {}
    Value(PA_VariableKind kind, int32_t number) : kind_(kind), data_(number) {}

    PA_VariableKind kind_ = eVK_Undefined;
    std::variant<std::monostate, double, int32_t, Date, std::u16string, Ref<Object>, Ref<Collection>, Ref<Picture>,
                 Bytes, Elements, std::shared_ptr<const PointerBlock>>
        data_;
};

}  // namespace zrhost

#endif
