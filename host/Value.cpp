#include "host/Value.h"

#include <cmath>

namespace zrhost {

Value::Value(const Value& other) = default;
Value::Value(Value&& other) noexcept = default;
Value& Value::operator=(const Value& other) = default;
Value& Value::operator=(Value&& other) noexcept = default;
Value::~Value() = default;

Value::Value(std::u16string text) : kind_(eVK_Text), data_(std::move(text)) {}
Value::Value(Ref<Object> object) : kind_(eVK_Object), data_(std::move(object)) {}
Value::Value(Ref<Collection> collection) : kind_(eVK_Collection), data_(std::move(collection)) {}
Value::Value(Ref<Picture> picture) : kind_(eVK_Picture), data_(std::move(picture)) {}
Value::Value(Bytes blob) : kind_(eVK_Blob), data_(std::move(blob)) {}
Value::Value(const PointerBlock& pointer) : kind_(eVK_Pointer), data_(std::make_shared<const PointerBlock>(pointer)) {}

Value Value::Array(PA_VariableKind arrayKind, Elements elements) {
    Value value(arrayKind);
    if (elements.empty()) elements.emplace_back();
    value.data_ = std::move(elements);
    return value;
}

double Value::number() const {
    if (const double* real = std::get_if<double>(&data_)) return *real;
    if (const int32_t* whole = std::get_if<int32_t>(&data_)) return *whole;
    return 0;
}

int32_t Value::integer() const {
    if (const int32_t* whole = std::get_if<int32_t>(&data_)) return *whole;
    double real = number();
    if (std::isnan(real)) return 0;
    if (real >= 2147483647.0) return INT32_MAX;
    if (real <= -2147483648.0) return INT32_MIN;
    return int32_t(real);
}

bool Value::boolean() const { return number() != 0; }

Date Value::date() const {
    const Date* date = std::get_if<Date>(&data_);
    return date ? *date : Date{};
}

const std::u16string& Value::text() const {
    static const std::u16string none;
    const std::u16string* text = std::get_if<std::u16string>(&data_);
    return text ? *text : none;
}

const Value::Bytes& Value::blob() const {
    static const Bytes none;
    const Bytes* bytes = std::get_if<Bytes>(&data_);
    return bytes ? *bytes : none;
}

const Value::Elements& Value::elements() const {
    static const Elements none;
    const Elements* elements = std::get_if<Elements>(&data_);
    return elements ? *elements : none;
}

Object* Value::object() const {
    const Ref<Object>* ref = std::get_if<Ref<Object>>(&data_);
    return ref ? ref->get() : nullptr;
}

Collection* Value::collection() const {
    const Ref<Collection>* ref = std::get_if<Ref<Collection>>(&data_);
    return ref ? ref->get() : nullptr;
}

Picture* Value::picture() const {
    const Ref<Picture>* ref = std::get_if<Ref<Picture>>(&data_);
    return ref ? ref->get() : nullptr;
}

const PointerBlock* Value::pointer() const {
    const auto* block = std::get_if<std::shared_ptr<const PointerBlock>>(&data_);
    return block ? block->get() : nullptr;
}

}  // namespace zrhost
