// Commands by number: XML DOM, XML and SVG, over host/Xml.h.
//
// A reference is a text of 32 hexadecimal digits: the number of the document, which no other document of this host has
// or had, the generation of the node and its index. A reference to what is closed or removed is refused: OK 0 and an
// error. The null reference, 32 times "0", stands for what was not found.
// Documents of a preemptive process belong to it and end with it; cooperative processes share theirs.
#include <algorithm>
#include <atomic>
#include <charconv>
#include <memory>

#include "host/CommandCall.h"
#include "host/Commands_Private.h"
#include "host/Formats.h"
#include "host/Pictures.h"
#include "host/Process.h"
#include "host/Text.h"
#include "host/Xml.h"

namespace zrhost {
namespace {

using Node = XmlDocument::Node;
constexpr size_t kDocumentDigits = 16, kReference = 32;
constexpr Node kNone = 0;

// Documents and references -----------------------------------------------------------------------------------------

struct Store {
    std::unordered_map<uint64_t, std::unique_ptr<XmlDocument>> documents;
    // The document of the last reference, with the digits that name it; null = none yet
    XmlDocument* last = nullptr;
    uint64_t lastNumber = 0;
    char16_t lastDigits[kDocumentDigits] = {};
    XmlError error;  // of the last text that was read
};

struct SharedStore : Store {           // of all cooperative processes
    std::atomic<uint64_t> numbers{0};  // the last one that a document was given
};

struct Access {  // of one process, made at its first XML command
    Store* store = nullptr;
    SharedStore* shared = nullptr;
    std::unique_ptr<Store> own;
};

Access& AccessOf(CommandCall& call) {
    Access& access = call.process.of<Access>();
    if (!access.store) {
        access.shared = &call.host.state<SharedStore>();
        if (call.process.preemptive) access.own = std::make_unique<Store>();
        access.store = access.own ? access.own.get() : access.shared;
    }
    return access;
}

void WriteDigits(uint64_t number, size_t digits, char16_t* out) {
    for (size_t i = digits; i-- > 0; number >>= 4) out[i] = u"0123456789ABCDEF"[number & 15];
}

bool ReadDigits(const char16_t* digits, size_t count, uint64_t* out) {
    uint64_t number = 0;
    bool good = true;
    for (size_t i = 0; i < count; ++i) {
        const unsigned decimal = digits[i] - u'0', letter = digits[i] - u'A';
        good &= decimal < 10 || letter < 6;
        number = number << 4 | (decimal < 10 ? decimal : letter + 10);
    }
    *out = number;
    return good;
}

struct Place {
    XmlDocument* document = nullptr;  // null = no such reference
    uint64_t number = 0;              // of the document
    Node node = kNone;

    explicit operator bool() const { return document != nullptr; }
    XmlDocument* operator->() const { return document; }
    bool isElement() const { return document && document->isElement(node); }
};

Place PlaceOf(Store& store, std::u16string_view reference) {
    if (reference.size() != kReference) return {};
    if (!store.last || !std::equal(store.lastDigits, store.lastDigits + kDocumentDigits, reference.data())) {
        uint64_t number = 0;
        if (!ReadDigits(reference.data(), kDocumentDigits, &number)) return {};
        const auto found = store.documents.find(number);
        if (found == store.documents.end()) return {};
        store.last = found->second.get();
        store.lastNumber = number;
        reference.copy(store.lastDigits, kDocumentDigits);
    }
    uint64_t rest = 0;
    if (!ReadDigits(reference.data() + kDocumentDigits, kReference - kDocumentDigits, &rest)) return {};
    if (!store.last->alive(Node(rest), uint32_t(rest >> 32))) return {};
    return {store.last, store.lastNumber, Node(rest)};
}

void Refuse(CommandCall& call) { Finish(call, ZR_ERR_PARAMETER); }

// The node of reference i; refused if there is none.
Place At(CommandCall& call, int i) {
    const Place place = PlaceOf(*AccessOf(call).store, call.text(i));
    if (!place) Refuse(call);
    return place;
}

Place ElementAt(CommandCall& call, int i) {  // the same, and it must be an element
    const Place place = At(call, i);
    if (place && !place.isElement()) {
        Refuse(call);
        return {};
    }
    return place;
}

struct Reference {
    char16_t units[kReference];
    Reference(const Place& at, Node node) {
        std::fill(units, units + kReference, u'0');
        if (!node) return;
        WriteDigits(at.number, kDocumentDigits, units);
        WriteDigits(uint64_t(at.document->generation(node)) << 32 | node, kReference - kDocumentDigits,
                    units + kDocumentDigits);
    }
    std::u16string_view view() const { return {units, kReference}; }
};

// The answer of a command that looks for a node: OK 0 and the null reference if there is none.
void Found(CommandCall& call, const Place& at, Node node) {
    call.setText(Reference(at, node).view());
    call.setOK(node != kNone);
}

// The answer of one that makes a node: none is an error.
void Made(CommandCall& call, const Place& at, Node node) {
    if (!node) return Refuse(call);
    call.setText(Reference(at, node).view());
    call.setOK(true);
}

Place Keep(CommandCall& call, std::unique_ptr<XmlDocument> document) {
    Access& access = AccessOf(call);
    const uint64_t number = ++access.shared->numbers;
    XmlDocument* kept = (access.store->documents[number] = std::move(document)).get();
    return {kept, number, kept->root()};
}

// Values -----------------------------------------------------------------------------------------------------------

// A parameter as XML writes it: numbers without a locale, dates as 2024-02-29, times as PT1H2M3S, Booleans as words.
std::u16string ValueText(const CommandCall& call, int i) {
    char text[kXmlNumber];
    switch (call.kind(i)) {
        case eVK_Text: return std::u16string(call.text(i));
        case eVK_Boolean: return call.boolean(i) ? u"true" : u"false";
        case eVK_Date: {
            const Date date = call.date(i);
            return FromUtf8(
                {text, size_t(snprintf(text, sizeof text, "%04d-%02d-%02d", date.year, date.month, date.day))});
        }
        case eVK_Time: {
            const int seconds = call.time(i);
            const unsigned all = seconds < 0 ? 0u - unsigned(seconds) : unsigned(seconds);
            return FromUtf8({text, size_t(snprintf(text, sizeof text, "%sPT%uH%uM%uS", seconds < 0 ? "-" : "",
                                                   all / 3600, all / 60 % 60, all % 60))});
        }
        case eVK_Real:
        case eVK_Integer:
        case eVK_Longint: return FromUtf8({text, WriteXmlNumber(call.number(i), text)});
        default: return TextOf(call.host, call.value(i));
    }
}

bool SetAttribute(const CommandCall& call, const Place& at, int name, int value) {
    char text[kXmlNumber];
    if (call.isText(value)) return at->setAttribute(at.node, call.text(name), call.text(value));
    if (call.isNumber(value)) {
        const size_t size = WriteXmlNumber(call.number(value), text);
        return at->setAttribute(at.node, call.text(name), std::string_view(text, size));
    }
    return at->setAttribute(at.node, call.text(name), std::u16string_view(ValueText(call, value)));
}

// Names and values in turn from parameter first on.
bool SetAttributes(const CommandCall& call, const Place& at, int first) {
    bool good = true;
    for (int i = first; i < call.count; i += 2) good = SetAttribute(call, at, i, i + 1) && good;
    return good;
}

// XML text into a variable of its kind.
bool AssignRead(CommandCall& call, int i, std::string_view utf8) {
    const std::u16string text = FromUtf8(utf8);
    switch (call.kind(i)) {
        case eVK_Real:
        case eVK_Integer:
        case eVK_Longint: return call.assignReal(i, ReadNumber(text, u'.'));
        case eVK_Boolean: return call.assignBoolean(i, utf8 == "true" || utf8 == "1");
        case eVK_Date: return call.assignDate(i, ReadDate(std::u16string_view(text).substr(0, text.find(u'T'))));
        case eVK_Blob: return call.assignBlob(i, {reinterpret_cast<const uint8_t*>(utf8.data()), utf8.size()});
        default: return call.assignText(i, text);
    }
}

// Paths: names divided by "/", each with an index [n] from 1 or a condition [@name="value"]; "*" is any name ----------

struct Step {
    std::u16string name, attribute, value;
    int index = 0;  // 0 = not given
};

bool ReadPath(std::u16string_view path, std::vector<Step>* steps) {
    while (!path.empty()) {
        // A "/" within quotes belongs to a value.
        size_t end = 0;
        for (bool quoted = false; end < path.size() && (quoted || path[end] != u'/'); ++end)
            if (path[end] == u'"' || path[end] == u'\'') quoted = !quoted;
        std::u16string_view part = path.substr(0, end);
        path.remove_prefix(std::min(end + 1, path.size()));
        Step step;
        if (const size_t open = part.find(u'['); open != part.npos) {
            if (!part.ends_with(u']')) return false;
            const std::u16string_view inside = part.substr(open + 1, part.size() - open - 2);
            part = part.substr(0, open);
            const size_t equals = inside.find(u'=');
            if (inside.starts_with(u'@') && equals != inside.npos && inside.size() >= equals + 3) {
                step.attribute = inside.substr(1, equals - 1);
                step.value = inside.substr(equals + 2, inside.size() - equals - 3);
            } else {
                const std::string digits = ToUtf8(inside);
                if (std::from_chars(digits.data(), digits.data() + digits.size(), step.index).ec != std::errc() ||
                    step.index < 1)
                    return false;
            }
        }
        step.name = part;
        if (step.name != u"*" && !IsXmlName(step.name)) return false;
        steps->push_back(std::move(step));
    }
    return !steps->empty();
}

// All nodes that a path leads to, in the order of the document. A path that begins with "/" begins at the node itself,
// whose name it repeats, or at the root.
std::vector<Node> Follow(const Place& at, std::u16string_view path, size_t most = SIZE_MAX) {
    std::vector<Step> steps;
    const bool absolute = path.starts_with(u'/');
    if (absolute) path.remove_prefix(1);
    if (!ReadPath(path, &steps)) return {};
    std::vector<Node> from = {at.node};
    size_t first = 0;
    if (absolute) {
        const bool self = at.isElement() && (steps[0].name == u"*" || at->wideName(at.node) == steps[0].name);
        from = {self ? at.node : XmlDocument::kTop};
        first = self ? 1 : 0;
    }
    for (size_t i = first; i < steps.size(); ++i) {
        std::vector<Node> to;
        for (Node node : from) {
            int index = 0;
            for (Node child = at->first(node); child; child = at->next(child)) {
                if (!at->isElement(child) || (steps[i].name != u"*" && at->wideName(child) != steps[i].name)) continue;
                if (!steps[i].attribute.empty()) {
                    const XmlDocument::Attribute a = at->findAttribute(child, steps[i].attribute);
                    if (!a || FromUtf8(at->attributeValue(a)) != steps[i].value) continue;
                }
                if (++index == steps[i].index || steps[i].index == 0) to.push_back(child);
                if (i + 1 == steps.size() && to.size() >= most) return to;
            }
        }
        from.swap(to);
    }
    return from;
}

// The element of a path below a node, made with all that is missing on the way to it; a plain name is always new.
Node MakePath(const Place& at, std::u16string_view path) {
    if (IsXmlName(path)) return at->addElement(at.node, path);
    std::vector<Step> steps;
    const bool absolute = path.starts_with(u'/');
    if (absolute) path.remove_prefix(1);
    if (!ReadPath(path, &steps)) return kNone;
    int64_t wanted = 0;  // elements of the whole path: a short text must not make millions
    for (const Step& step : steps) {
        wanted += std::max(1, step.index);
        if (step.name == u"*" || !step.attribute.empty() || wanted > 0xFFFF) return kNone;
    }
    Node node = at.node;
    const size_t first = absolute && at->wideName(node) == steps[0].name ? 1 : 0;
    if (absolute && !first) return kNone;
    for (size_t i = first; i < steps.size(); ++i) {
        int index = 0;
        Node child = at->first(node);
        for (; child; child = at->next(child))
            if (at->isElement(child) && at->wideName(child) == steps[i].name)
                if (++index == std::max(1, steps[i].index)) break;
        const bool last = i + 1 == steps.size();
        if (!child || (last && steps[i].index == 0)) {
            child = at->addElement(node, steps[i].name);
            for (++index; child && index < steps[i].index; ++index) child = at->addElement(node, steps[i].name);
        }
        if (!child) return kNone;
        node = child;
    }
    return first == steps.size() ? kNone : node;
}

// Whole documents --------------------------------------------------------------------------------------------------

// 861 DOM Create XML Ref(root; [nameSpace]; {name; value}...): reference of the root element
void CreateXmlRef(CommandCall& call) {
    auto document = std::make_unique<XmlDocument>();
    const Node root = document->addElement(XmlDocument::kTop, call.text(1));
    if (!root) return Refuse(call);
    if (!call.text(2).empty()) document->setAttribute(root, u"xmlns", call.text(2));
    const Place place = Keep(call, std::move(document));
    SetAttributes(call, place, 3);
    Made(call, place, place.node);
}

// Bytes of a document as UTF-8: by the byte order mark, else by the encoding that the declaration names.
bool DecodeXml(std::span<const uint8_t> bytes, std::string* utf8) {
    std::string charset;
    if (bytes.size() >= 2 && bytes[0] == 0xFE && bytes[1] == 0xFF) charset = "UTF-16BE";
    if (bytes.size() >= 2 && bytes[0] == 0xFF && bytes[1] == 0xFE) charset = "UTF-16LE";
    if (!charset.empty()) bytes = bytes.subspan(2);
    const std::string_view head(reinterpret_cast<const char*>(bytes.data()), std::min<size_t>(bytes.size(), 256));
    if (charset.empty() && head.starts_with("<?xml")) {
        const size_t at = head.substr(0, head.find("?>")).find("encoding");
        const size_t open = at == head.npos ? at : head.find_first_of("\"'", at);
        const size_t close = open == head.npos ? open : head.find(head[open], open + 1);
        if (close != head.npos) charset = head.substr(open + 1, close - open - 1);
    }
    std::u16string units;
    if (!DecodeText(bytes, charset.empty() ? "UTF-8" : charset, &units)) return false;
    *utf8 = ToUtf8(units);
    return true;
}

void ParseInto(CommandCall& call, const std::string* utf8) {
    Store& store = *AccessOf(call).store;
    store.error = {};
    auto document = std::make_unique<XmlDocument>();
    if (!utf8) store.error = {"the encoding is not known", 1, 1};
    else document->parse(*utf8, &store.error);
    if (!store.error.text.empty()) return Refuse(call);
    const Place place = Keep(call, std::move(document));
    Made(call, place, place.node);
}

// 719 DOM Parse XML source(path; ...): a file; nothing is validated, nothing that it refers to is fetched
void ParseXmlSource(CommandCall& call) {
    std::vector<uint8_t> bytes;
    const std::string path = FullPath(call, 1);
    const int error = path.empty() ? int(kBadName) : ReadWholeFile(path, &bytes);
    if (error != 0) return Finish(call, error);
    std::string utf8;
    ParseInto(call, DecodeXml(bytes, &utf8) ? &utf8 : nullptr);
}

// 720 DOM Parse XML variable(text|blob; ...)
void ParseXmlVariable(CommandCall& call) {
    std::string utf8;
    if (call.isText(1)) {
        utf8 = call.utf8(1);
        return ParseInto(call, &utf8);
    }
    ParseInto(call, DecodeXml(call.blob(1), &utf8) ? &utf8 : nullptr);
}

// 722 DOM CLOSE XML(root): all references into the document end
void CloseXml(CommandCall& call) {
    const Place place = At(call, 1);
    if (!place) return;
    if (place.node != place->root() && place.node != XmlDocument::kTop) return Refuse(call);
    Store& store = *AccessOf(call).store;
    store.last = nullptr;
    store.documents.erase(place.number);
    call.setOK(true);
}

// The text of a document in its encoding.
bool ExportBytes(const Place& place, std::vector<uint8_t>* bytes) {
    const std::string text = place->write();
    bytes->assign(text.begin(), text.end());
    return place->encoding == "UTF-8" || EncodeText(FromUtf8(text), place->encoding, bytes);
}

// 862 DOM EXPORT TO FILE(ref; path)
void ExportToFile(CommandCall& call) {
    const Place place = At(call, 1);
    if (!place) return;
    std::vector<uint8_t> bytes;
    const std::string path = FullPath(call, 2);
    if (path.empty() || !ExportBytes(place, &bytes))
        return Finish(call, path.empty() ? int(kBadName) : int(ZR_ERR_PARAMETER));
    Finish(call, WriteWholeFile(path, bytes));
}

// 863 DOM EXPORT TO VAR(ref; text|blob): a BLOB is in the encoding of the document
void ExportToVar(CommandCall& call) {
    const Place place = At(call, 1);
    if (!place) return;
    if (call.kind(2) != eVK_Blob)
        return Finish(call, call.assignText(2, FromUtf8(place->write())) ? 0 : ZR_ERR_PARAMETER);
    std::vector<uint8_t> bytes;
    Finish(call, ExportBytes(place, &bytes) && call.assignBlob(2, bytes) ? 0 : ZR_ERR_PARAMETER);
}

// 1017 SVG EXPORT TO PICTURE(ref; picture; [type]): an SVG picture whose bytes are the document
void ExportToPicture(CommandCall& call) {
    const Place place = At(call, 1);
    if (!place) return;
    std::vector<uint8_t> bytes;
    if (!ExportBytes(place, &bytes)) return Refuse(call);
    std::vector<Representation> one;
    one.push_back({"image/svg+xml", std::move(bytes)});
    Finish(call, call.assignPicture(2, NewPicture(std::move(one))) ? 0 : ZR_ERR_PARAMETER);
}

// 721 DOM Get XML information(ref; what): 3 document type, 4 encoding, 5 version; others empty
void GetXmlInformation(CommandCall& call) {
    const Place place = At(call, 1);
    if (!place) return;
    std::string_view text;
    if (call.integer(2) == 4) text = place->encoding;
    if (call.integer(2) == 5) text = place->version;
    for (Node node = place->first(XmlDocument::kTop); node && call.integer(2) == 3; node = place->next(node))
        if (place->kind(node) == XmlKind::DocumentType)
            text = place->value(node).substr(0, place->value(node).find_first_of(" \t\r\n"));
    call.setText(text);
    call.setOK(true);
}

// 732 XML GET ERROR(ref; text; [row]; [column]): of the last text that could not be read, whatever the reference
void XmlGetError(CommandCall& call) {
    const XmlError& error = AccessOf(call).store->error;
    call.assignText(2, FromUtf8(error.text));
    call.assignLongint(3, error.line);
    call.assignLongint(4, error.column);
}

// 859 DOM SET XML DECLARATION(ref; encoding; [standalone]; [indentation])
void SetXmlDeclaration(CommandCall& call) {
    const Place place = At(call, 1);
    if (!place) return;
    const std::string encoding = call.utf8(2);
    if (!encoding.empty() && (!IsCharset(encoding) || encoding.find_first_of("\"<>&") != encoding.npos))
        return Refuse(call);
    if (!encoding.empty()) place->encoding = encoding;
    place->standalone = call.boolean(3);
    if (call.has(4)) place->indented = call.boolean(4);
    call.setOK(true);
}

// 1090 XML SET OPTIONS(ref; selector; value): 4 indentation, 1 with, 2 without; other selectors are not served
constexpr int kIndentation = 4, kWithIndentation = 1, kNoIndentation = 2;
void XmlSetOptions(CommandCall& call) {
    const Place place = At(call, 1);
    if (!place) return;
    for (int i = 2; i < call.count; i += 2) {
        if (call.integer(i) != kIndentation) return call.notServed();
        place->indented = call.integer(i + 1) == kWithIndentation;
    }
    call.setOK(true);
}

// 1096 XML GET OPTIONS(ref; selector; variable)
void XmlGetOptions(CommandCall& call) {
    const Place place = At(call, 1);
    if (!place) return;
    for (int i = 2; i < call.count; i += 2) {
        if (call.integer(i) != kIndentation) return call.notServed();
        call.assignLongint(i + 1, place->indented ? kWithIndentation : kNoIndentation);
    }
    call.setOK(true);
}

// Making and changing ----------------------------------------------------------------------------------------------

// 865 DOM Create XML element(parent; path; {name; value}...): reference of the element
void CreateXmlElement(CommandCall& call) {
    const Place place = ElementAt(call, 1);
    if (!place) return;
    const Node made = MakePath(place, call.text(2));
    if (made && !SetAttributes(call, {place.document, place.number, made}, 3)) {
        place->remove(made);
        return Refuse(call);
    }
    Made(call, place, made);
}

// 1097 DOM Create XML element arrays(parent; path; {names; values}...)
void CreateXmlElementArrays(CommandCall& call) {
    const Place place = ElementAt(call, 1);
    if (!place) return;
    const Node made = MakePath(place, call.text(2));
    bool good = made != kNone;
    for (int i = 3; good && i < call.count; i += 2)
        for (int element = 1; good && element <= call.arraySize(i); ++element) {
            const Value value = call.arrayElement(i + 1, element);
            const std::u16string text = value.isText() ? value.text() : TextOf(call.host, value);
            good = place->setAttribute(made, call.arrayText(i, element), std::u16string_view(text));
        }
    if (made && !good) place->remove(made);
    Made(call, place, good ? made : kNone);
}

// 866 DOM SET XML ATTRIBUTE(ref; {name; value}...)
void SetXmlAttribute(CommandCall& call) {
    const Place place = ElementAt(call, 1);
    if (place) Finish(call, SetAttributes(call, place, 2) ? 0 : ZR_ERR_PARAMETER);
}

// 867 DOM SET XML ELEMENT NAME(ref; name)
void SetXmlElementName(CommandCall& call) {
    const Place place = ElementAt(call, 1);
    if (place) Finish(call, place->rename(place.node, call.text(2)) ? 0 : ZR_ERR_PARAMETER);
}

// 868 DOM SET XML ELEMENT VALUE(ref; [path]; value; [*]): data ahead of the child elements; * makes it a CDATA section
void SetXmlElementValue(CommandCall& call) {
    const bool section = call.takeStar();
    Place place = At(call, 1);
    if (!place) return;
    if (place.node == XmlDocument::kTop) return Refuse(call);
    if (call.has(3)) {
        const std::vector<Node> found = Follow(place, call.text(2), 1);
        place.node = found.empty() ? MakePath(place, call.text(2)) : found[0];
        if (!place.node) return Refuse(call);
    }
    const int value = call.has(3) ? 3 : 2;
    const std::u16string other = call.isText(value) ? u"" : ValueText(call, value);
    const std::u16string_view text = call.isText(value) ? call.text(value) : std::u16string_view(other);
    const bool endsSection = HeldByXml(text).find(u"]]>") != std::u16string::npos;
    if (section && endsSection) return Refuse(call);
    if (!place.isElement()) {  // as a child of its kind could not be written, it is not taken
        const XmlKind kind = place->kind(place.node);
        const bool data = kind == XmlKind::Data || (kind == XmlKind::CData && !endsSection);
        if (!data) return Refuse(call);
    }
    place->setText(place.node, text, section ? XmlKind::CData : XmlKind::Data);
    call.setOK(true);
}

// 869 DOM REMOVE XML ELEMENT(ref): with all below it; the root stays
void RemoveXmlElement(CommandCall& call) {
    const Place place = At(call, 1);
    if (!place) return;
    if (place.node == place->root() || place.node == XmlDocument::kTop) return Refuse(call);
    place->remove(place.node);
    call.setOK(true);
}

// 1080 DOM Append XML child node(ref; kind; value): reference of the node; of several elements the first
void AppendXmlChildNode(CommandCall& call) {
    const Place place = At(call, 1);
    if (!place) return;
    const XmlKind kind = XmlKind(std::clamp(call.integer(2), 0, 254));
    const bool inside = place.isElement() || (place.node == XmlDocument::kTop && kind != XmlKind::Data &&
                                              kind != XmlKind::CData && kind != XmlKind::Element);
    if (!inside) return Refuse(call);
    const std::u16string_view text = call.text(3);
    if (kind == XmlKind::Element && text.find(u'<') != text.npos)
        return Made(call, place, place->parseFragment(place.node, ToUtf8(text)));
    Made(call, place, place->add(place.node, kind, call.isText(3) ? text : std::u16string_view(ValueText(call, 3))));
}

// 1082 DOM Append XML element(target; source), 1083 DOM Insert XML element(target; source; index): a copy with all
// below it, behind the other children or ahead of child element number index
void InsertCopy(CommandCall& call) {
    const Place target = ElementAt(call, 1), source = target ? At(call, 2) : Place();
    if (!source) return;
    Node from = source.node == XmlDocument::kTop ? source->root() : source.node, before = kNone;
    if (call.has(3)) {
        int left = call.integer(3);
        for (before = target->first(target.node); before; before = target->next(before))
            if (target->isElement(before) && --left <= 0) break;
    }
    Made(call, target, target->copy(target.node, before, *source.document, from));
}

// 1084 DOM REMOVE XML ATTRIBUTE(ref; name)
void RemoveXmlAttribute(CommandCall& call) {
    const Place place = ElementAt(call, 1);
    if (place) Finish(call, place->removeAttribute(place.node, call.text(2)) ? 0 : ZR_ERR_PARAMETER);
}

// Walking ----------------------------------------------------------------------------------------------------------

// The name of the element goes to variable i, its value to the next one.
void NameAndValue(CommandCall& call, const Place& place, Node node, int i) {
    if (!node) return;
    if (call.has(i)) call.assignText(i, FromUtf8(place->name(node)));
    if (call.has(i + 1)) AssignRead(call, i + 1, place->text(node));
}

Node ElementFrom(const Place& place, Node node, Node (XmlDocument::*step)(Node) const) {
    while (node && !place->isElement(node)) node = ((*place.document).*step)(node);
    return node;
}

void Answer(CommandCall& call, const Place& place, Node node) {
    NameAndValue(call, place, node, 2);
    Found(call, place, node);
}

// 723 DOM Get first child XML element(ref; [name]; [value])
void FirstChild(CommandCall& call) {
    if (const Place p = At(call, 1)) Answer(call, p, ElementFrom(p, p->first(p.node), &XmlDocument::next));
}
// 925 DOM Get last child XML element(ref; [name]; [value])
void LastChild(CommandCall& call) {
    if (const Place p = At(call, 1)) Answer(call, p, ElementFrom(p, p->last(p.node), &XmlDocument::previous));
}
// 724 DOM Get next sibling XML element(ref; [name]; [value])
void NextSibling(CommandCall& call) {
    if (const Place p = At(call, 1)) Answer(call, p, ElementFrom(p, p->next(p.node), &XmlDocument::next));
}
// 924 DOM Get previous sibling XML element(ref; [name]; [value])
void PreviousSibling(CommandCall& call) {
    if (const Place p = At(call, 1)) Answer(call, p, ElementFrom(p, p->previous(p.node), &XmlDocument::previous));
}

// 923 DOM Get parent XML element(ref; [name]; [value]): with a name that is not empty, the nearest one that bears it
void ParentElement(CommandCall& call) {
    const Place place = At(call, 1);
    if (!place) return;
    const std::u16string wanted(call.text(2));
    Node node = place->parent(place.node);
    while (node > XmlDocument::kTop && !wanted.empty() && place->wideName(node) != wanted) node = place->parent(node);
    if (node == XmlDocument::kTop) node = kNone;
    if (node && call.has(3)) AssignRead(call, 3, place->text(node));
    Found(call, place, node);
}

// 725 DOM Get XML element(ref; name; index; [value]): the child element of that name, [1..]
void GetXmlElement(CommandCall& call) {
    const Place place = At(call, 1);
    if (!place) return;
    int left = call.integer(3, 1);
    Node node = place->first(place.node);
    for (; node; node = place->next(node))
        if (place->isElement(node) && place->wideName(node) == call.text(2) && --left == 0) break;
    if (node && call.has(4)) AssignRead(call, 4, place->text(node));
    Found(call, place, node);
}

// 726 DOM Count XML elements(ref; name): child elements of that name
void CountXmlElements(CommandCall& call) {
    const Place place = At(call, 1);
    if (!place) return;
    int count = 0;
    for (Node node = place->first(place.node); node; node = place->next(node))
        count += place->isElement(node) && place->wideName(node) == call.text(2);
    call.setLongint(count);
    call.setOK(true);
}

// 864 DOM Find XML element(ref; path; [references])
void FindXmlElement(CommandCall& call) {
    const Place place = At(call, 1);
    if (!place) return;
    const std::vector<Node> found = Follow(place, call.text(2), call.has(3) ? SIZE_MAX : 1);
    if (call.has(3)) {
        std::vector<std::u16string> references;
        for (Node node : found) references.emplace_back(Reference(place, node).view());
        call.assignTextArray(3, references);
    }
    Found(call, place, found.empty() ? kNone : found[0]);
}

// 1010 DOM Find XML element by ID(ref; id): the first in the document, at or below the reference
void FindXmlElementByID(CommandCall& call) {
    const Place place = At(call, 1);
    if (!place) return;
    const std::string wanted = call.utf8(2);
    for (Node node = place.node;;) {
        if (place->isElement(node))
            if (const XmlDocument::Attribute a = place->findAttribute(node, u"id");
                a && place->attributeValue(a) == wanted)
                return Found(call, place, node);
        if (place->first(node)) {
            node = place->first(node);
            continue;
        }
        while (node != place.node && !place->next(node)) node = place->parent(node);
        if (node == place.node) return Found(call, place, kNone);
        node = place->next(node);
    }
}

// 1053 DOM Get root XML element(ref)
void RootElement(CommandCall& call) {
    if (const Place place = At(call, 1)) Found(call, place, place->root());
}
// 1088 DOM Get XML document ref(ref): the document as a node; what stands beside the root hangs there
void DocumentRef(CommandCall& call) {
    if (const Place place = At(call, 1)) Found(call, place, XmlDocument::kTop);
}

// 1081 DOM GET XML CHILD NODES(ref; kinds; values): elements by their reference, all others by their text
void GetXmlChildNodes(CommandCall& call) {
    const Place place = At(call, 1);
    if (!place) return;
    std::vector<int32_t> kinds;
    std::vector<std::u16string> values;
    for (Node node = place->first(place.node); node; node = place->next(node)) {
        kinds.push_back(int32_t(place->kind(node)));
        if (place->isElement(node)) values.emplace_back(Reference(place, node).view());
        else if (place->kind(node) == XmlKind::Instruction)
            values.push_back(FromUtf8(std::string(place->name(node)) + " " + std::string(place->value(node))));
        else values.push_back(FromUtf8(place->value(node)));
    }
    call.assignLongintArray(2, kinds);
    call.assignTextArray(3, values);
    call.setOK(true);
}

// Reading ----------------------------------------------------------------------------------------------------------

// 727 DOM Count XML attributes(ref)
void CountXmlAttributes(CommandCall& call) {
    const Place place = ElementAt(call, 1);
    if (!place) return;
    int count = 0;
    for (XmlDocument::Attribute a = place->firstAttribute(place.node); a; a = place->nextAttribute(a)) ++count;
    call.setLongint(count);
    call.setOK(true);
}

// 728 DOM GET XML ATTRIBUTE BY NAME(ref; name; variable): an error if there is none
void GetXmlAttributeByName(CommandCall& call) {
    const Place place = ElementAt(call, 1);
    if (!place) return;
    const XmlDocument::Attribute a = place->findAttribute(place.node, call.text(2));
    Finish(call, a && AssignRead(call, 3, place->attributeValue(a)) ? 0 : ZR_ERR_PARAMETER);
}

// 729 DOM GET XML ATTRIBUTE BY INDEX(ref; index; name; value): [1..], in the order in which they were set
void GetXmlAttributeByIndex(CommandCall& call) {
    const Place place = ElementAt(call, 1);
    if (!place) return;
    int left = call.integer(2);
    XmlDocument::Attribute a = left < 1 ? 0 : place->firstAttribute(place.node);
    while (a && --left > 0) a = place->nextAttribute(a);
    if (!a) return Refuse(call);
    call.assignText(3, FromUtf8(place->attributeName(a)));
    AssignRead(call, 4, place->attributeValue(a));
    call.setOK(true);
}

// 730 DOM GET XML ELEMENT NAME(ref; variable)
void GetXmlElementName(CommandCall& call) {
    const Place place = ElementAt(call, 1);
    if (place) Finish(call, call.assignText(2, FromUtf8(place->name(place.node))) ? 0 : ZR_ERR_PARAMETER);
}

// 731 DOM GET XML ELEMENT VALUE(ref; variable; [cdata]): the data; the CDATA sections alone
void GetXmlElementValue(CommandCall& call) {
    const Place place = At(call, 1);
    if (!place) return;
    std::string sections;
    for (Node node = place->first(place.node); node; node = place->next(node))
        if (place->kind(node) == XmlKind::CData) sections += place->value(node);
    if (call.has(3)) AssignRead(call, 3, sections);
    Finish(call, AssignRead(call, 2, place->text(place.node)) ? 0 : ZR_ERR_PARAMETER);
}

constexpr CommandRow kRows[] = {
    {719, ParseXmlSource},
    {720, ParseXmlVariable},
    {721, GetXmlInformation},
    {722, CloseXml},
    {723, FirstChild},
    {724, NextSibling},
    {725, GetXmlElement},
    {726, CountXmlElements},
    {727, CountXmlAttributes},
    {728, GetXmlAttributeByName},
    {729, GetXmlAttributeByIndex},
    {730, GetXmlElementName},
    {731, GetXmlElementValue},
    {732, XmlGetError},
    {859, SetXmlDeclaration},
    {861, CreateXmlRef},
    {862, ExportToFile},
    {863, ExportToVar},
    {864, FindXmlElement},
    {865, CreateXmlElement},
    {866, SetXmlAttribute},
    {867, SetXmlElementName},
    {868, SetXmlElementValue},
    {869, RemoveXmlElement},
    {923, ParentElement},
    {924, PreviousSibling},
    {925, LastChild},
    {1010, FindXmlElementByID},
    {1017, ExportToPicture},
    {1053, RootElement},
    {1080, AppendXmlChildNode},
    {1081, GetXmlChildNodes},
    {1082, InsertCopy},
    {1083, InsertCopy},
    {1084, RemoveXmlAttribute},
    {1088, DocumentRef},
    {1090, XmlSetOptions},
    {1096, XmlGetOptions},
    {1097, CreateXmlElementArrays},
};

}  // namespace

std::span<const CommandRow> commandsXML() { return kRows; }

}  // namespace zrhost
