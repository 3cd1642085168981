// Commands by number: Objects (Language), Collections, JSON, and the conversion of both to arrays.
#include <algorithm>
#include <cmath>
#include <optional>

#include "host/CommandCall.h"
#include "host/Commands_Private.h"
#include "host/Formats.h"
#include "host/Objects.h"
#include "host/Text.h"

namespace zrhost {
namespace {

// Kinds as the language's own constants number them: Type, OB Get and their like.
constexpr int kIsPicture = 3, kIsText = 2, kIsTextArray = 18;

// A value as the kind that was asked for; one that cannot be converted gives the empty value of that kind.
Value ConvertedTo(const Host& host, const Value& value, int kind) {
    switch (kind) {
        case eVK_OldString:
        case eVK_OldUnicode:
        case eVK_Text:
        case kIsText: {
            const bool structured = value.kind() == eVK_Object || value.kind() == eVK_Collection;
            return Value(structured ? FromUtf8(WriteJson(value)) : TextOf(host, value));
        }
        case eVK_Real:
            return Value(value.isText() ? ReadNumber(value.text(), CurrentLocale().decimal) : value.number());
        case eVK_Integer:
        case eVK_Longint:
            return Value::Longint(value.isText() ? Value(ReadNumber(value.text(), CurrentLocale().decimal)).integer()
                                                 : value.integer());
        case eVK_Date:
            return Value(value.isText() ? ReadDate(value.text().substr(0, value.text().find(u'T'))) : value.date());
        case eVK_Time:
            return Value::Time(value.isText()
                                   ? int32_t(std::clamp<int64_t>(ReadTime(value.text()), INT32_MIN, INT32_MAX))
                                   : value.integer());
        case eVK_Boolean: return Value(value.isText() ? value.text() == u"true" : value.boolean());
        case eVK_Object: return value.kind() == eVK_Object ? value : Value(Ref<Object>());
        case eVK_Collection: return value.kind() == eVK_Collection ? value : Value(Ref<Collection>());
        case eVK_Picture:
        case kIsPicture: return value.kind() == eVK_Picture ? value : Value(Ref<Picture>());
        case eVK_Null: return Value::Null();
        default: return value;
    }
}

// Making -----------------------------------------------------------------------------------------------------------

// The object of a parameter; one without an object gets a new one.
Ref<Object> ObjectOrNew(CommandCall& call, int i) {
    Ref<Object> object(call.object(i));
    if (!object && call.kind(i) != eVK_Object && !call.isUndefined(i)) return {};
    if (!object) {
        object = NewObject();
        if (!call.assignObject(i, object)) return {};
    }
    return object;
}

void SetPairs(CommandCall& call, Object* object, int first) {
    for (int i = first; i + 1 <= call.count; i += 2)
        if (call.isText(i)) object->set(call.text(i), call.value(i + 1));
}

// 1471 New object([property; value]...), 1526 New shared object: every object of this host may be shared.
void NewObjectCommand(CommandCall& call) {
    Ref<Object> object = NewObject();
    SetPairs(call, object.get(), 1);
    call.setObject(object);
}

// 1472 New collection([value]...), 1527 New shared collection
void NewCollectionCommand(CommandCall& call) {
    Ref<Collection> collection = NewCollection();
    for (int i = 1; i <= call.count; ++i) collection->push(call.value(i));
    call.setCollection(collection);
}

// 1517 Null
void NullCommand(CommandCall& call) { call.setNull(); }

struct SharedStorage {
    Ref<Object> object = NewObject();
};

// 1525 Storage: one object for all processes
void Storage(CommandCall& call) { call.setObject(call.host.state<SharedStorage>().object); }

// 1225 OB Copy(object): with all it holds
void ObCopy(CommandCall& call) {
    const Value copy = DeepCopy(call.value(1));
    if (copy.kind() == eVK_Object || copy.kind() == eVK_Collection) call.setValue(copy);
}

// Properties -------------------------------------------------------------------------------------------------------

// 1220 OB SET(object; property; value...): an object variable without an object gets one.
void ObSet(CommandCall& call) {
    if (const Ref<Object> object = ObjectOrNew(call, 1)) SetPairs(call, object.get(), 2);
}

// 1233 OB SET NULL(object; property)
void ObSetNull(CommandCall& call) {
    if (!call.isText(2)) return;
    if (const Ref<Object> object = ObjectOrNew(call, 1)) object->set(call.text(2), Value::Null());
}

// The index that a text stands for; nothing if it holds anything but digits.
std::optional<size_t> IndexOf(std::u16string_view text) {
    size_t index = 0;
    for (char16_t unit : text) {
        if (unit < u'0' || unit > u'9' || index > Collection::kMaximum) return std::nullopt;
        index = index * 10 + (unit - u'0');
    }
    return text.empty() ? std::nullopt : std::optional(index);
}

// 1224 OB Get(object; property; [kind]): undefined if there is none. Of a collection, the property is an index as text.
void ObGet(CommandCall& call) {
    Value value;
    if (const Object* object = call.object(1)) value = object->get(call.text(2));
    else if (const Collection* collection = call.collection(1))
        if (const std::optional<size_t> index = IndexOf(call.text(2))) value = collection->at(*index);
    call.setValue(call.has(3) ? ConvertedTo(call.host, value, call.integer(3)) : value);
}

// 1230 OB Get type(object; property): the language's number of the kind; numbers are reals
void ObGetType(CommandCall& call) {
    const Object* object = call.object(1);
    const Value value = object ? object->get(call.text(2)) : Value();
    call.setLongint(value.isNumber() ? int(eVK_Real) : LanguageKind(value.kind()));
}

// 1226 OB REMOVE(object; property)
void ObRemove(CommandCall& call) {
    if (Object* object = call.object(1)) object->remove(call.text(2));
}

// 1231 OB Is defined(object; [property])
void ObIsDefined(CommandCall& call) {
    const Object* object = call.object(1);
    call.setBoolean(object && (!call.has(2) || !object->get(call.text(2)).isUndefined()));
}

// 1297 OB Is empty(object): without a property, or without an object
void ObIsEmpty(CommandCall& call) { call.setBoolean(!call.object(1) || call.object(1)->size() == 0); }

// 1232 OB GET PROPERTY NAMES(object; names; [kinds])
void ObGetPropertyNames(CommandCall& call) {
    std::vector<std::u16string> names;
    std::vector<int32_t> kinds;
    if (const Object* object = call.object(1))
        for (const Property& property : object->properties()) {
            names.push_back(property.first);
            const Value& value = property.second;
            kinds.push_back(value.isNumber() ? int(eVK_Real) : LanguageKind(value.kind()));
        }
    call.assignTextArray(2, names);
    if (call.has(3)) call.assignLongintArray(3, kinds);
}

enum class Listed { Keys, Values, Entries };

void ListProperties(CommandCall& call, Listed listed) {
    Ref<Collection> list = NewCollection();
    if (const Object* object = call.object(1))
        for (const Property& property : object->properties()) {
            if (listed == Listed::Keys) list->push(Value(property.first));
            if (listed == Listed::Values) list->push(property.second);
            if (listed != Listed::Entries) continue;
            Ref<Object> entry = NewObject();
            entry->set(u"key", Value(property.first));
            entry->set(u"value", property.second);
            list->push(Value(entry));
        }
    call.setCollection(list);
}

// 1719 OB Keys(object)
void ObKeys(CommandCall& call) { ListProperties(call, Listed::Keys); }

// 1718 OB Values(object)
void ObValues(CommandCall& call) { ListProperties(call, Listed::Values); }

// 1720 OB Entries(object): objects of key and value
void ObEntries(CommandCall& call) { ListProperties(call, Listed::Entries); }

// Arrays -----------------------------------------------------------------------------------------------------------

Ref<Collection> CollectionOfArray(const CommandCall& call, int i) {
    Ref<Collection> collection = NewCollection();
    for (int element = 1; element <= call.arraySize(i); ++element) collection->push(call.arrayElement(i, element));
    return collection;
}

PA_VariableKind ArrayKindFor(const Value& first) {
    switch (first.kind()) {
        case eVK_Real:
        case eVK_Integer:
        case eVK_Longint: return eVK_ArrayReal;
        case eVK_Boolean: return eVK_ArrayBoolean;
        case eVK_Date: return eVK_ArrayDate;
        case eVK_Object: return eVK_ArrayObject;
        case eVK_Picture: return eVK_ArrayPicture;
        default: return eVK_ArrayText;
    }
}

int ElementKindOf(int arrayKind) {
    static constexpr struct {
        int array, element;
    } kKinds[] = {
        {eVK_ArrayReal, eVK_Real},       {eVK_ArrayInteger, eVK_Integer}, {eVK_ArrayLongint, eVK_Longint},
        {eVK_ArrayDate, eVK_Date},       {eVK_ArrayPicture, eVK_Picture}, {eVK_ArrayBoolean, eVK_Boolean},
        {eVK_ArrayTime, eVK_Time},       {eVK_ArrayText, eVK_Text},       {eVK_ArrayObject, eVK_Object},
        {eVK_ArrayPointer, eVK_Pointer}, {eVK_ArrayBlob, eVK_Blob},
    };
    for (const auto& row : kKinds)
        if (row.array == arrayKind) return row.element;
    return eVK_Undefined;
}

// Elements converted to the kind of the array; an undefined variable becomes the array that suits the first element.
bool AssignElements(CommandCall& call, int i, const std::vector<Value>& elements) {
    const bool isNew = call.isUndefined(i);
    const PA_VariableKind kind =
        isNew ? ArrayKindFor(elements.empty() ? Value() : elements[0]) : PA_VariableKind(call.kind(i));
    if (!call.prepareArray(i, kind, 0) || !call.resizeArray(i, int(elements.size()))) return false;
    const int wanted = ElementKindOf(kind);
    for (size_t at = 0; at < elements.size(); ++at) {
        const Value& value = elements[at];
        const bool empty = value.isNull() || value.isUndefined();
        if (!empty) call.setArrayElement(i, int(at) + 1, ConvertedTo(call.host, value, wanted));
    }
    return true;
}

// 1227 OB SET ARRAY(object; property; array): as a collection
void ObSetArray(CommandCall& call) {
    if (!call.isText(2)) return;
    const Ref<Object> object = ObjectOrNew(call, 1);
    if (!object) return;
    object->set(call.text(2), call.isArray(3) ? Value(CollectionOfArray(call, 3)) : call.value(3));
}

std::vector<Value> ElementsOf(const Value& value) {
    if (value.collection()) return value.collection()->elements();
    if (value.isUndefined() || value.isNull() || value.kind() == eVK_Collection) return {};
    return {value};
}

// 1229 OB GET ARRAY(object; property; array)
void ObGetArray(CommandCall& call) {
    const Object* object = call.object(1);
    AssignElements(call, 3, ElementsOf(object ? object->get(call.text(2)) : Value()));
}

// 1562 COLLECTION TO ARRAY(collection; array; [property; array; property]...): the elements, or a property of each
void CollectionToArray(CommandCall& call) {
    const Collection* collection = call.collection(1);
    const std::vector<Value> elements = collection ? collection->elements() : std::vector<Value>();
    for (int i = 2; i <= call.count; i += 2) {
        if (!call.isText(i + 1)) {
            AssignElements(call, i, elements);
            continue;
        }
        std::vector<Value> column;
        for (const Value& element : elements)
            column.push_back(element.object() ? element.object()->get(call.text(i + 1)) : Value());
        AssignElements(call, i, column);
    }
}

// 1563 ARRAY TO COLLECTION(collection; array; [property; array; property]...)
void ArrayToCollection(CommandCall& call) {
    Ref<Collection> collection(call.collection(1));
    if (!collection) collection = NewCollection();
    if (!call.isText(3)) {
        if (call.isArray(2)) collection->assign(CollectionOfArray(call, 2)->elements());
        return void(call.assignCollection(1, collection));
    }
    int rows = 0;
    for (int i = 2; i + 1 <= call.count; i += 2) rows = std::max(rows, call.arraySize(i));
    collection->assign({});
    for (int row = 1; row <= rows; ++row) {
        Ref<Object> object = NewObject();
        for (int i = 2; i + 1 <= call.count; i += 2)
            if (row <= call.arraySize(i)) object->set(call.text(i + 1), call.arrayElement(i, row));
        collection->push(Value(object));
    }
    call.assignCollection(1, collection);
}

// JSON -------------------------------------------------------------------------------------------------------------

// 1217 JSON Stringify(value; [*]): * on several lines
void JsonStringify(CommandCall& call) {
    const bool pretty = call.takeStar();
    if (call.isUndefined(1)) return call.setText(u"");
    const Value value = call.isArray(1) ? Value(CollectionOfArray(call, 1)) : call.value(1);
    call.setText(std::string_view(WriteJson(value, pretty)));
}

// 1218 JSON Parse(text; [kind]; [*]): undefined, OK 0 if it is no JSON
void JsonParse(CommandCall& call) {
    call.takeStar();
    const std::optional<Value> value = ReadJson(call.text(1));
    if (!value) return Finish(call, ZR_ERR_PARAMETER);
    call.setValue(call.has(2) ? ConvertedTo(call.host, *value, call.integer(2)) : *value);
}

// 1219 JSON PARSE ARRAY(text; array): OK 0, and the array stays, if it is no JSON array
void JsonParseArray(CommandCall& call) {
    const std::optional<Value> value = ReadJson(call.text(1));
    if (!value || !value->collection()) return Finish(call, ZR_ERR_PARAMETER);
    if (!AssignElements(call, 2, value->collection()->elements())) Finish(call, ZR_ERR_PARAMETER);
}

constexpr CommandRow kRows[] = {
    {1217, JsonStringify},
    {1218, JsonParse},
    {1219, JsonParseArray},
    {1220, ObSet},
    {1224, ObGet},
    {1225, ObCopy},
    {1226, ObRemove},
    {1227, ObSetArray},
    {1228, JsonStringify},
    {1229, ObGetArray},
    {1230, ObGetType},
    {1231, ObIsDefined},
    {1232, ObGetPropertyNames},
    {1233, ObSetNull},
    {1297, ObIsEmpty},
    {1471, NewObjectCommand},
    {1472, NewCollectionCommand},
    {1517, NullCommand},
    {1525, Storage},
    {1526, NewObjectCommand},
    {1527, NewCollectionCommand},
    {1562, CollectionToArray},
    {1563, ArrayToCollection},
    {1718, ObValues},
    {1719, ObKeys},
    {1720, ObEntries},
};

}  // namespace

int LanguageKind(int kind) {
    switch (kind) {
        case eVK_Text: return kIsText;
        case eVK_Picture: return kIsPicture;
        case eVK_ArrayText: return kIsTextArray;
        default: return kind;
    }
}

std::span<const CommandRow> commandsObjects() { return kRows; }

}  // namespace zrhost
