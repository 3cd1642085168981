// Member functions of collections and objects, looked up by name.
//
// Collections: what the language offers without a formula or a class. Plain objects have no functions of their own in
// the language; what is asked of one is a function of the value that its property holds, "list.push", or unknown.
#include <algorithm>
#include <cmath>

#include "host/Formats.h"
#include "host/Host_Private.h"
#include "host/Objects.h"
#include "host/Text.h"

namespace zrhost {

namespace {

constexpr int kDescending = 1;         // argument of sort and orderBy
constexpr int kIgnoreNullOrEmpty = 1;  // argument of join
constexpr int kDiacritical = 8;        // argument of distinct and equal

struct MemberCall {
    Collection* self;
    std::span<const Value> arguments;
    Value* result;
    int16_t error = ZR_ERR_NONE;

    bool has(size_t i) const { return i < arguments.size() && !arguments[i].isUndefined(); }
    void refuse() { error = ZR_ERR_MEMBER_ARGUMENT; }
    void answerSelf() { *result = Value(Ref<Collection>(self)); }
    void answer(std::vector<Value> elements) {
        Ref<Collection> made = NewCollection();
        made->assign(std::move(elements));
        *result = Value(made);
    }
    // Argument i as a number; false, with the error set, if it is another kind. Not given: the number stays.
    bool number(size_t i, double* out) {
        if (!has(i)) return true;
        if (!arguments[i].isNumber()) refuse();
        else *out = arguments[i].number();
        return !error;
    }
    // Argument i as a place in a collection of that size: a negative one counts from the end, cut to 0..size.
    bool place(size_t i, size_t size, size_t* out) {
        double at = double(*out);
        if (!number(i, &at)) return false;
        if (at < 0) at += double(size);
        *out = at > 0 ? size_t(std::min(at, double(size))) : 0;
        return true;
    }
};

// The value at a path of property names, "a.b"; an empty path is the value itself.
Value AtPath(Value value, std::u16string_view path) {
    while (!path.empty()) {
        size_t dot = path.find(u'.');
        std::u16string_view name = path.substr(0, dot);
        path = dot == path.npos ? std::u16string_view() : path.substr(dot + 1);
        if (value.collection() && name == u"length") value = Value(double(value.collection()->size()));
        else value = value.object() ? value.object()->get(name) : Value();
    }
    return value;
}

bool PathArgument(MemberCall& call, size_t i, std::u16string_view* path) {
    if (!call.has(i)) return true;
    if (!call.arguments[i].isText()) call.refuse();
    else *path = call.arguments[i].text();
    return !call.error;
}

// Equality as the search functions see it: objects and collections by reference, texts as the language compares them.
bool Same(const Value& left, const Value& right) {
    if (left.object() || right.object()) return left.object() == right.object() && left.kind() == right.kind();
    if (left.collection() || right.collection()) return left.collection() == right.collection();
    return DeepEqual(left, right, /*exact*/ false);
}

// Changing ---------------------------------------------------------------------------------------------------------

void Push(MemberCall& call) {
    for (const Value& value : call.arguments) call.self->push(value);
    call.answerSelf();
}

void Unshift(MemberCall& call) {
    std::vector<Value> elements = call.self->elements();
    elements.insert(elements.begin(), call.arguments.begin(), call.arguments.end());
    call.self->assign(std::move(elements));
    call.answerSelf();
}

void Pop(MemberCall& call) {
    size_t size = call.self->size();
    if (size == 0) return;
    *call.result = call.self->at(size - 1);
    call.self->resize(size - 1);
}

void Shift(MemberCall& call) {
    std::vector<Value> elements = call.self->elements();
    if (elements.empty()) return;
    *call.result = std::move(elements.front());
    elements.erase(elements.begin());
    call.self->assign(std::move(elements));
}

void Insert(MemberCall& call) {
    std::vector<Value> elements = call.self->elements();
    double index = 0;
    if (!call.number(0, &index)) return;
    if (index < 0) index = std::max(index + double(elements.size()), 0.0);
    if (index >= double(Collection::kMaximum)) return call.refuse();
    if (index > double(elements.size())) elements.resize(size_t(index), Value::Null());
    elements.insert(elements.begin() + std::ptrdiff_t(index), call.arguments[1]);
    call.self->assign(std::move(elements));
    call.answerSelf();
}

void Remove(MemberCall& call) {
    std::vector<Value> elements = call.self->elements();
    size_t at = 0;
    double count = 1;
    if (!call.place(0, elements.size(), &at) || !call.number(1, &count)) return;
    size_t many = count >= 1 ? size_t(std::min(count, double(elements.size() - at))) : 0;
    elements.erase(elements.begin() + std::ptrdiff_t(at), elements.begin() + std::ptrdiff_t(at + many));
    call.self->assign(std::move(elements));
    call.answerSelf();
}

void Clear(MemberCall& call) {
    call.self->assign({});
    call.answerSelf();
}

void Resize(MemberCall& call) {
    double size = 0;
    if (!call.number(0, &size)) return;
    if (!(size >= 0) || size > double(Collection::kMaximum)) return call.refuse();
    call.self->resize(size_t(size), call.arguments.size() > 1 ? call.arguments[1] : Value::Null());
    call.answerSelf();
}

void Fill(MemberCall& call) {
    std::vector<Value> elements = call.self->elements();
    size_t from = 0, to = elements.size();
    if (!call.place(1, elements.size(), &from) || !call.place(2, elements.size(), &to)) return;
    for (size_t i = from; i < to; ++i) elements[i] = call.arguments[0];
    call.self->assign(std::move(elements));
    call.answerSelf();
}

void Combine(MemberCall& call) {
    std::vector<Value> elements = call.self->elements();
    Collection* other = call.arguments[0].collection();
    if (!other) return call.refuse();
    size_t at = elements.size();
    if (!call.place(1, elements.size(), &at)) return;
    std::vector<Value> added = other->elements();
    elements.insert(elements.begin() + std::ptrdiff_t(at), added.begin(), added.end());
    call.self->assign(std::move(elements));
    call.answerSelf();
}

// Order ------------------------------------------------------------------------------------------------------------

struct SortKey {
    std::u16string path;
    bool descending = false;
};

void SortBy(std::vector<Value>* elements, const std::vector<SortKey>& keys) {
    std::stable_sort(elements->begin(), elements->end(), [&](const Value& left, const Value& right) {
        for (const SortKey& key : keys) {
            int order = CompareValues(AtPath(left, key.path), AtPath(right, key.path));
            if (order != 0) return key.descending ? order > 0 : order < 0;
        }
        return false;
    });
}

std::u16string_view Trim(std::u16string_view text) {
    while (!text.empty() && IsSpace(text.front())) text.remove_prefix(1);
    while (!text.empty() && IsSpace(text.back())) text.remove_suffix(1);
    return text;
}

// "name, address.city desc": property paths, each with asc or desc behind it.
std::vector<SortKey> KeysFromText(std::u16string_view text) {
    std::vector<SortKey> keys;
    while (!text.empty()) {
        size_t comma = text.find(u',');
        std::u16string_view part = Trim(text.substr(0, comma));
        text = comma == text.npos ? std::u16string_view() : text.substr(comma + 1);
        size_t blank = part.find_last_of(u" \t");
        SortKey key;
        if (blank != part.npos) {
            std::u16string_view word = part.substr(blank + 1);
            key.descending = EqualNames(word, u"desc");
            if (key.descending || EqualNames(word, u"asc")) part = Trim(part.substr(0, blank));
        }
        key.path = part;
        keys.push_back(std::move(key));
    }
    return keys;
}

bool KeysOf(MemberCall& call, std::vector<SortKey>* keys) {
    if (!call.has(0)) {
        keys->push_back({});
    } else if (call.arguments[0].isNumber()) {
        keys->push_back({{}, call.arguments[0].integer() == kDescending});
    } else if (call.arguments[0].isText()) {
        *keys = KeysFromText(call.arguments[0].text());
    } else if (Collection* list = call.arguments[0].collection()) {
        for (const Value& entry : list->elements()) {
            if (!entry.object()) {
                call.refuse();
                return false;
            }
            keys->push_back(
                {entry.object()->get(u"propertyPath").text(), entry.object()->get(u"descending").boolean()});
        }
    } else {
        call.refuse();
    }
    return !call.error;
}

void Sort(MemberCall& call) {
    std::vector<SortKey> keys;
    if (!KeysOf(call, &keys)) return;
    std::vector<Value> elements = call.self->elements();
    SortBy(&elements, keys);
    call.self->assign(std::move(elements));
    call.answerSelf();
}

void OrderBy(MemberCall& call) {
    std::vector<SortKey> keys;
    if (!KeysOf(call, &keys)) return;
    std::vector<Value> elements = call.self->elements();
    SortBy(&elements, keys);
    call.answer(std::move(elements));
}

void Reverse(MemberCall& call) {
    std::vector<Value> elements = call.self->elements();
    std::reverse(elements.begin(), elements.end());
    call.answer(std::move(elements));
}

// New collections --------------------------------------------------------------------------------------------------

void Slice(MemberCall& call) {
    std::vector<Value> elements = call.self->elements();
    size_t from = 0, to = elements.size();
    if (!call.place(0, elements.size(), &from) || !call.place(1, elements.size(), &to)) return;
    if (from >= to) return call.answer({});
    call.answer({elements.begin() + std::ptrdiff_t(from), elements.begin() + std::ptrdiff_t(to)});
}

void Concat(MemberCall& call) {
    std::vector<Value> elements = call.self->elements();
    for (const Value& value : call.arguments) {
        if (Collection* other = value.collection())
            for (Value& element : other->elements()) elements.push_back(std::move(element));
        else elements.push_back(value);
    }
    call.answer(std::move(elements));
}

void Copy(MemberCall& call) { *call.result = DeepCopy(Value(Ref<Collection>(call.self))); }

void Distinct(MemberCall& call) {
    std::u16string_view path;
    double options = 0;
    bool byPath = call.has(0) && call.arguments[0].isText();
    if (byPath && !PathArgument(call, 0, &path)) return;
    if (!call.number(byPath ? 1 : 0, &options)) return;
    bool exact = (int(std::clamp(options, 0.0, 1000.0)) & kDiacritical) != 0;
    std::vector<Value> kept;
    for (const Value& element : call.self->elements()) {
        Value value = AtPath(element, path);
        if (!value.isNull() && !value.isUndefined()) kept.push_back(std::move(value));
    }
    std::stable_sort(kept.begin(), kept.end(),
                     [exact](const Value& left, const Value& right) { return CompareValues(left, right, exact) < 0; });
    std::vector<Value> distinct;
    for (Value& value : kept) {
        bool seen = false;  // among the neighbours that the order does not tell apart
        for (size_t i = distinct.size(); !seen && i-- > 0 && CompareValues(distinct[i], value, exact) == 0;)
            seen =
                value.object() || value.collection() ? Same(distinct[i], value) : DeepEqual(distinct[i], value, exact);
        if (!seen) distinct.push_back(std::move(value));
    }
    call.answer(std::move(distinct));
}

void Extract(MemberCall& call) {
    std::vector<Value> made;
    bool pairs = call.arguments.size() > 1;  // path and target, again and again: objects; one path: values
    if (pairs && call.arguments.size() % 2 != 0) return call.refuse();
    for (const Value& argument : call.arguments)
        if (!argument.isText()) return call.refuse();
    for (const Value& element : call.self->elements()) {
        if (!pairs) {
            Value value = AtPath(element, call.arguments[0].text());
            if (!value.isUndefined()) made.push_back(std::move(value));
            continue;
        }
        Ref<Object> object = NewObject();
        for (size_t i = 0; i + 1 < call.arguments.size(); i += 2) {
            Value value = AtPath(element, call.arguments[i].text());
            if (!value.isUndefined()) object->set(call.arguments[i + 1].text(), std::move(value));
        }
        made.push_back(Value(object));
    }
    call.answer(std::move(made));
}

void FlatInto(std::vector<Value>* out, Collection* from, int depth) {
    for (Value& element : from->elements()) {
        if (element.collection() && depth > 0 && element.collection() != from)
            FlatInto(out, element.collection(), depth - 1);
        else out->push_back(std::move(element));
    }
}

void Flat(MemberCall& call) {
    double depth = 1;
    if (!call.number(0, &depth)) return;
    std::vector<Value> elements;
    FlatInto(&elements, call.self, int(std::clamp(depth, 0.0, 100.0)));
    call.answer(std::move(elements));
}

// Looking ----------------------------------------------------------------------------------------------------------

void Length(MemberCall& call) { *call.result = Value(double(call.self->size())); }

void At(MemberCall& call) {
    double index = 0;
    if (!call.number(0, &index)) return;
    if (index < 0) index += double(call.self->size());
    if (index >= 0 && index < double(Collection::kMaximum)) *call.result = call.self->at(size_t(index));
}

void First(MemberCall& call) { *call.result = call.self->at(0); }

void Last(MemberCall& call) {
    if (size_t size = call.self->size()) *call.result = call.self->at(size - 1);
}

void IndexOf(MemberCall& call) {
    std::vector<Value> elements = call.self->elements();
    size_t from = 0;
    if (!call.place(1, elements.size(), &from)) return;
    auto at = std::find_if(elements.begin() + std::ptrdiff_t(from), elements.end(),
                           [&](const Value& element) { return Same(element, call.arguments[0]); });
    *call.result = Value(at == elements.end() ? -1.0 : double(at - elements.begin()));
}

void LastIndexOf(MemberCall& call) {
    std::vector<Value> elements = call.self->elements();
    double from = double(elements.size()) - 1;
    if (!call.number(1, &from)) return;
    if (from < 0 && call.has(1)) from += double(elements.size());
    *call.result = Value(-1.0);
    for (double i = std::min(std::floor(from), double(elements.size()) - 1); i >= 0; --i)
        if (Same(elements[size_t(i)], call.arguments[0])) {
            *call.result = Value(i);
            return;
        }
}

void Includes(MemberCall& call) {
    IndexOf(call);
    if (!call.error) *call.result = Value(call.result->number() >= 0);
}

void Equal(MemberCall& call) {
    double options = 0;
    Collection* other = call.arguments[0].collection();
    if (!other) return call.refuse();
    if (!call.number(1, &options)) return;
    bool exact = (int(std::clamp(options, 0.0, 1000.0)) & kDiacritical) != 0;
    *call.result = Value(DeepEqual(Value(Ref<Collection>(call.self)), call.arguments[0], exact));
}

std::u16string ElementText(const Value& value) {
    switch (value.kind()) {
        case eVK_Text: return value.text();
        case eVK_Real:
        case eVK_Integer:
        case eVK_Longint: return FormatReal(value.number(), {});
        case eVK_Boolean: return value.boolean() ? u"true" : u"false";
        case eVK_Date: return FormatDate(value.date(), 1);
        case eVK_Time: return FormatTime(value.integer(), 1);
        case eVK_Null: return u"null";
        case eVK_Undefined: return {};
        default: return FromUtf8(WriteJson(value));
    }
}

void Join(MemberCall& call) {
    double options = 0;
    if (call.has(0) && !call.arguments[0].isText()) return call.refuse();
    if (!call.number(1, &options)) return;
    std::u16string separator = call.has(0) ? call.arguments[0].text() : std::u16string();
    std::u16string text;
    bool first = true;
    for (const Value& element : call.self->elements()) {
        bool empty = element.isNull() || element.isUndefined() || (element.isText() && element.text().empty());
        if (empty && options == kIgnoreNullOrEmpty) continue;
        if (!first) text += separator;
        first = false;
        text += ElementText(element);
    }
    *call.result = Value(std::move(text));
}

// Statistics -------------------------------------------------------------------------------------------------------

void Count(MemberCall& call) {
    std::u16string_view path;
    if (!PathArgument(call, 0, &path)) return;
    double count = 0;
    for (const Value& element : call.self->elements()) {
        Value value = AtPath(element, path);
        count += !value.isNull() && !value.isUndefined();
    }
    *call.result = Value(count);
}

void CountValues(MemberCall& call) {
    std::u16string_view path;
    if (!PathArgument(call, 1, &path)) return;
    double count = 0;
    for (const Value& element : call.self->elements()) count += Same(AtPath(element, path), call.arguments[0]);
    *call.result = Value(count);
}

void Total(MemberCall& call, bool average) {
    std::u16string_view path;
    if (!PathArgument(call, 0, &path)) return;
    double sum = 0, count = 0;
    for (const Value& element : call.self->elements()) {
        Value value = AtPath(element, path);
        if (!value.isNumber()) continue;
        sum += value.number();
        ++count;
    }
    if (!average) *call.result = Value(sum);
    else if (count > 0) *call.result = Value(sum / count);
}

void Sum(MemberCall& call) { Total(call, /*average*/ false); }
void Average(MemberCall& call) { Total(call, /*average*/ true); }

void Extreme(MemberCall& call, int sign) {
    std::u16string_view path;
    if (!PathArgument(call, 0, &path)) return;
    for (const Value& element : call.self->elements()) {
        Value value = AtPath(element, path);
        if (value.isNull() || value.isUndefined()) continue;
        if (call.result->isUndefined() || CompareValues(value, *call.result) * sign > 0)
            *call.result = std::move(value);
    }
}

void Min(MemberCall& call) { Extreme(call, -1); }
void Max(MemberCall& call) { Extreme(call, 1); }

struct MemberRow {
    const char16_t* name;
    size_t least, most;  // arguments
    void (*run)(MemberCall& call);
};
constexpr size_t kMany = 32767;
constexpr MemberRow kMembers[] = {
    {u"at", 1, 1, At},
    {u"average", 0, 1, Average},
    {u"clear", 0, 0, Clear},
    {u"combine", 1, 2, Combine},
    {u"concat", 1, kMany, Concat},
    {u"copy", 0, 3, Copy},
    {u"count", 0, 1, Count},
    {u"countValues", 1, 2, CountValues},
    {u"distinct", 0, 2, Distinct},
    {u"equal", 1, 2, Equal},
    {u"extract", 1, kMany, Extract},
    {u"fill", 1, 3, Fill},
    {u"first", 0, 0, First},
    {u"flat", 0, 1, Flat},
    {u"includes", 1, 2, Includes},
    {u"indexOf", 1, 2, IndexOf},
    {u"insert", 2, 2, Insert},
    {u"join", 0, 2, Join},
    {u"last", 0, 0, Last},
    {u"lastIndexOf", 1, 2, LastIndexOf},
    {u"length", 0, 0, Length},
    {u"max", 0, 1, Max},
    {u"min", 0, 1, Min},
    {u"orderBy", 0, 1, OrderBy},
    {u"pop", 0, 0, Pop},
    {u"push", 1, kMany, Push},
    {u"remove", 1, 2, Remove},
    {u"resize", 1, 2, Resize},
    {u"reverse", 0, 0, Reverse},
    {u"shift", 0, 0, Shift},
    {u"slice", 0, 2, Slice},
    {u"sort", 0, 1, Sort},
    {u"sum", 0, 1, Sum},
    {u"unshift", 1, kMany, Unshift},
};

}  // namespace

int16_t RunMember(Host&, const Value& target, std::u16string_view name, std::span<const Value> arguments,
                  Value* result) {
    Value self = target;
    if (self.object()) {  // a function of what a property holds
        size_t dot = name.rfind(u'.');
        if (dot == name.npos) return ZR_ERR_UNKNOWN_MEMBER;
        self = AtPath(self, name.substr(0, dot));
        name = name.substr(dot + 1);
    }
    if (!self.collection()) return ZR_ERR_UNKNOWN_MEMBER;
    for (const MemberRow& row : kMembers) {
        if (name != row.name) continue;  // names of functions are told by case
        MemberCall call = {self.collection(), arguments, result};
        if (arguments.size() < row.least || arguments.size() > row.most) call.refuse();
        else row.run(call);
        if (call.error) *result = Value();
        return call.error;
    }
    return ZR_ERR_UNKNOWN_MEMBER;
}

}  // namespace zrhost
