#include "host/Xml.h"

#include <algorithm>
#include <cfloat>
#include <charconv>
#include <cmath>
#include <new>

#include "host/Host.h"

namespace zrhost {

namespace {

constexpr uint64_t kWasteAllowed = 1 << 16;
constexpr size_t kMostIndents = 64;  // deeper levels stand no further in: the text stays linear

uint32_t HashOf(std::u16string_view name) {
    uint32_t hash = 2166136261u;
    for (char16_t unit : name) hash = (hash ^ unit) * 16777619u;
    return hash ^ hash >> 15;
}

bool BeginsName(char16_t c) { return c >= 0x80 || c == '_' || c == ':' || ((c | 32) >= 'a' && (c | 32) <= 'z'); }

// What stands between <!DOCTYPE and >: a name, and identifiers in quotes.
bool IsDocumentType(std::u16string_view value) {
    char16_t quote = 0;
    for (char16_t c : value) {
        if (quote) quote = c == quote ? 0 : quote;
        else if (c == u'"' || c == u'\'') quote = c;
        else if (c == u'<' || c == u'>' || c == u'[') return false;
    }
    return quote == 0 && IsXmlName(value.substr(0, value.find_first_of(u" \t\r\n")));
}

// ASCII first; what XML cannot hold is left out, lone surrogates become U+FFFD.
void AppendUnits(std::string& out, std::u16string_view units) {
    const size_t start = out.size();
    out.resize(start + units.size());
    char* to = out.data() + start;
    for (size_t i = 0; i < units.size(); ++i) {
        const char16_t unit = units[i];
        if (unit >= 0x80 || (unit < 0x20 && !IsXmlCharacter(unit))) [[unlikely]] {
            out.resize(start + i);
            std::u16string rest;
            for (char16_t one : units.substr(i))
                if (one >= 0xD800 && one <= 0xDFFF) rest += one;
                else if (IsXmlCharacter(one)) rest += one;
            out += ToUtf8(rest);
            return;
        }
        to[i] = char(unit);
    }
}

constexpr struct {
    char character;
    bool inAttributes;  // alone
    std::string_view text;
} kEscapes[] = {
    {'&', false, "&amp;"}, {'<', false, "&lt;"},  {'>', false, "&gt;"}, {'\r', false, "&#13;"},
    {'"', true, "&quot;"}, {'\n', true, "&#10;"}, {'\t', true, "&#9;"},
};

template <bool attribute>
void AppendEscaped(std::string& out, std::string_view text) {
    size_t from = 0;
    for (size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c > '>' || c < 0 || (c >= '0' && c <= '9')) continue;
        for (const auto& row : kEscapes)
            if (row.character == c && (attribute || !row.inAttributes)) {
                out.append(text, from, i - from).append(row.text);
                from = i + 1;
            }
    }
    out.append(text, from);
}

}  // namespace

bool IsXmlCharacter(char32_t c) {
    if (c < 0x20) return c == '\t' || c == '\n' || c == '\r';
    return c != 0xFFFE && c != 0xFFFF && c <= 0x10FFFF && (c < 0xD800 || c > 0xDFFF);
}

bool IsXmlName(std::u16string_view name) {
    if (name.empty() || !BeginsName(name[0])) return false;
    for (char16_t c : name) {
        if (BeginsName(c) ? c < 0xFFFE : (c >= '0' && c <= '9') || c == '-' || c == '.') continue;
        return false;
    }
    return true;
}

size_t WriteXmlNumber(double number, char* out) {
    if (!std::isfinite(number) || number == 0) {
        *out = '0';
        return 1;
    }
    const float narrow = std::fabs(number) <= FLT_MAX ? float(number) : 0.0f;
    const auto end = double(narrow) == number ? std::to_chars(out, out + kXmlNumber, narrow, std::chars_format::fixed)
                                              : std::to_chars(out, out + kXmlNumber, number, std::chars_format::fixed);
    return size_t(end.ptr - out);
}

XmlDocument::XmlDocument() : nodes_(2), attributes_(1), names_(1), nameSlots_(64) {
    nodes_[kTop].kind = XmlKind::Document;
}

// Bytes ------------------------------------------------------------------------------------------------------------

void XmlDocument::Drop(Span span) { wasted_ += span.size; }

// A value in the place of an old one, or behind all others.
XmlDocument::Span XmlDocument::Keep(std::string_view value, Span old) {
    if (value.size() > UINT32_MAX) throw std::bad_alloc();
    if (value.size() <= old.size) {
        value.copy(bytes_.data() + old.at, value.size());
        wasted_ += old.size - value.size();
        return {old.at, uint32_t(value.size())};
    }
    const Span span = {bytes_.size(), uint32_t(value.size())};
    bytes_.append(value);
    Drop(old);
    return span;
}

XmlDocument::Span XmlDocument::KeepUnits(std::u16string_view value, Span old) {
    const size_t at = bytes_.size();
    AppendUnits(bytes_, value);
    if (bytes_.size() - at > UINT32_MAX) {
        bytes_.resize(at);
        throw std::bad_alloc();
    }
    Drop(old);
    return {at, uint32_t(bytes_.size() - at)};
}

void XmlDocument::Compact() {
    if (wasted_ < kWasteAllowed || wasted_ < bytes_.size() / 2) return;
    std::string packed;
    packed.reserve(bytes_.size() - wasted_);
    auto move = [&](Span& span) {
        const size_t at = packed.size();
        packed.append(Bytes(span));
        span.at = at;
    };
    for (NodeRecord& node : nodes_) {
        if (node.kind == XmlKind::Free) continue;
        move(node.value);
        for (Attribute a = node.firstAttribute; a; a = attributes_[a].next) move(attributes_[a].value);
    }
    bytes_.swap(packed);
    wasted_ = 0;
}

size_t XmlDocument::bytesInUse() const {
    return nodes_.capacity() * sizeof(NodeRecord) + attributes_.capacity() * sizeof(AttributeRecord) +
           bytes_.capacity();
}

// Names ------------------------------------------------------------------------------------------------------------

uint32_t XmlDocument::FindName(std::u16string_view name) const {
    const size_t mask = nameSlots_.size() - 1;
    for (size_t slot = HashOf(name) & mask; nameSlots_[slot]; slot = (slot + 1) & mask)
        if (names_[nameSlots_[slot]].units == name) return nameSlots_[slot];
    return 0;
}

uint32_t XmlDocument::KeepName(std::u16string_view name) {
    if (const uint32_t known = FindName(name)) return known;
    if (!IsXmlName(name)) return 0;
    std::string utf8 = ToUtf8(name);
    if (name != FromUtf8(utf8)) return 0;  // a lone surrogate
    names_.push_back({std::u16string(name), std::move(utf8)});
    const uint32_t number = uint32_t(names_.size() - 1);
    if (names_.size() * 2 <= nameSlots_.size()) {
        EnterName(number);
    } else {
        nameSlots_.assign(nameSlots_.size() * 2, 0);
        for (uint32_t one = 1; one <= number; ++one) EnterName(one);
    }
    return number;
}

void XmlDocument::EnterName(uint32_t number) {
    const size_t mask = nameSlots_.size() - 1;
    size_t slot = HashOf(names_[number].units) & mask;
    while (nameSlots_[slot]) slot = (slot + 1) & mask;
    nameSlots_[slot] = number;
}

// Nodes ------------------------------------------------------------------------------------------------------------

XmlDocument::Node XmlDocument::root() const {
    for (Node node = nodes_[kTop].first; node; node = nodes_[node].next)
        if (isElement(node)) return node;
    return 0;
}

XmlDocument::Node XmlDocument::NewNode(Node parent, Node before, XmlKind kind) {
    Node node = freeNodes_;
    if (node) {
        freeNodes_ = nodes_[node].next;
        const uint32_t generation = nodes_[node].generation;
        nodes_[node] = {};
        nodes_[node].generation = generation;
    } else {
        if (nodes_.size() >= UINT32_MAX) throw std::bad_alloc();
        node = Node(nodes_.size());
        nodes_.emplace_back();
    }
    NodeRecord& record = nodes_[node];
    NodeRecord& above = nodes_[parent];
    record.kind = kind;
    record.parent = parent;
    record.next = before;
    record.previous = before ? nodes_[before].previous : above.last;
    (record.previous ? nodes_[record.previous].next : above.first) = node;
    (before ? nodes_[before].previous : above.last) = node;
    return node;
}

void XmlDocument::Unlink(Node node) {
    const NodeRecord& record = nodes_[node];
    NodeRecord& above = nodes_[record.parent];
    (record.previous ? nodes_[record.previous].next : above.first) = record.next;
    (record.next ? nodes_[record.next].previous : above.last) = record.previous;
}

void XmlDocument::remove(Node node) {
    if (node == kTop) return;
    Unlink(node);
    // The deepest first child goes first; its next sibling or its parent is the one after it.
    for (Node at = node;;) {
        while (nodes_[at].first) at = nodes_[at].first;
        NodeRecord& record = nodes_[at];
        FreeAttributes(at);
        Drop(record.value);
        const Node parent = record.parent, next = at == node ? 0 : record.next;
        const uint32_t generation = record.generation + 1;
        record = {};
        record.generation = generation;
        if (generation != UINT32_MAX) {  // one that would begin again with an old generation stays free for good
            record.next = freeNodes_;
            freeNodes_ = at;
        }
        if (at == node) break;
        nodes_[parent].first = next;
        at = next ? next : parent;
    }
    Compact();
}

XmlDocument::Node XmlDocument::addElement(Node parent, std::u16string_view name) {
    const uint32_t number = KeepName(name);
    if (!number) return 0;
    const Node node = NewNode(parent, 0, XmlKind::Element);
    nodes_[node].name = number;
    return node;
}

// What is left of a text when the characters are gone that XML cannot hold: what is checked is what is written.
std::u16string HeldByXml(std::u16string_view value) {
    std::u16string held(value);
    std::erase_if(held, [](char16_t unit) {
        return (unit < 0x20 && unit != u'\t' && unit != u'\n' && unit != u'\r') || unit >= 0xFFFE;
    });
    return held;
}

XmlDocument::Node XmlDocument::add(Node parent, XmlKind kind, std::u16string_view given) {
    const std::u16string held = kind == XmlKind::Data || kind == XmlKind::Element ? std::u16string() : HeldByXml(given);
    std::u16string_view value = kind == XmlKind::Data || kind == XmlKind::Element ? given : held;
    std::u16string_view name;
    switch (kind) {
        case XmlKind::Element: return addElement(parent, value);
        case XmlKind::Comment:  // as it ends in "--" or holds it, it could not be read again
            if (value.find(u"--") != value.npos || value.ends_with(u'-')) return 0;
            break;
        case XmlKind::Instruction: {
            const size_t blank = std::min(value.find_first_of(u" \t\r\n"), value.size());
            name = value.substr(0, blank);
            if (!IsXmlName(name) || value.find(u"?>") != value.npos) return 0;
            value.remove_prefix(std::min(value.find_first_not_of(u" \t\r\n", blank), value.size()));
            break;
        }
        case XmlKind::Data: break;
        case XmlKind::CData:
            if (value.find(u"]]>") != value.npos) return 0;
            break;
        case XmlKind::DocumentType:
            if (!IsDocumentType(value) || parent != kTop) return 0;
            for (Node child = nodes_[kTop].first; child; child = nodes_[child].next)
                if (this->kind(child) == XmlKind::DocumentType) return 0;  // a document has one
            break;
        default: return 0;
    }
    const uint32_t number = name.empty() ? 0 : KeepName(name);
    const Span span = KeepUnits(value, {});
    const Node node = NewNode(parent, kind == XmlKind::DocumentType ? root() : 0, kind);
    nodes_[node].name = number;
    nodes_[node].value = span;
    return node;
}

bool XmlDocument::rename(Node element, std::u16string_view name) {
    const uint32_t number = KeepName(name);
    if (number) nodes_[element].name = number;
    return number != 0;
}

std::string XmlDocument::text(Node node) const {
    if (!isElement(node)) return std::string(value(node));
    std::string text;
    for (Node child = nodes_[node].first; child; child = nodes_[child].next)
        if (kind(child) == XmlKind::Data || kind(child) == XmlKind::CData) text += value(child);
    return text;
}

void XmlDocument::setText(Node element, std::u16string_view value, XmlKind kind) {
    if (!isElement(element)) {
        nodes_[element].value = KeepUnits(value, nodes_[element].value);
        return Compact();
    }
    for (Node child = nodes_[element].first; child;) {
        const Node next = nodes_[child].next;
        if (this->kind(child) == XmlKind::Data || this->kind(child) == XmlKind::CData) remove(child);
        child = next;
    }
    if (value.empty()) return;
    const Span span = KeepUnits(value, {});
    nodes_[NewNode(element, nodes_[element].first, kind)].value = span;
}

XmlDocument::Node XmlDocument::copy(Node parent, Node before, const XmlDocument& from, Node node) {
    struct Pair {
        Node source, target;
    };
    auto one = [&](Node source, Node under, Node ahead) {
        const Node made = NewNode(under, ahead, from.kind(source));
        if (from.nodes_[source].name) {
            const uint32_t name = KeepName(std::u16string(from.wideName(source)));
            nodes_[made].name = name;
        }
        const std::string value(from.value(source));
        nodes_[made].value = Keep(value, {});
        for (Attribute a = from.firstAttribute(source); a; a = from.nextAttribute(a)) {
            const std::u16string name = from.names_[from.attributes_[a].name].units;
            setAttribute(made, name, std::string_view(std::string(from.attributeValue(a))));
        }
        return made;
    };
    // The list is taken down first: source and target may be one document.
    std::vector<Node> order = {node};
    std::vector<size_t> above = {0};
    for (size_t i = 0; i < order.size(); ++i)
        for (Node child = from.first(order[i]); child; child = from.next(child)) {
            order.push_back(child);
            above.push_back(i);
        }
    std::vector<Node> made;
    for (size_t i = 0; i < order.size(); ++i)
        made.push_back(i == 0 ? one(order[0], parent, before) : one(order[i], made[above[i]], 0));
    return made[0];
}

// Attributes -------------------------------------------------------------------------------------------------------

namespace {

constexpr int kFewAttributes = 32;  // of an element; with more they are found through a table

uint64_t AttributeKey(uint32_t element, uint32_t name) { return uint64_t(element) << 32 | name; }  // name 0: the mark

}  // namespace

XmlDocument::Attribute XmlDocument::FindAttribute(Node element, uint32_t name, int* walked) const {
    *walked = 0;
    if (!manyAttributes_.empty() && manyAttributes_.contains(AttributeKey(element, 0))) {
        const auto found = manyAttributes_.find(AttributeKey(element, name));
        return found == manyAttributes_.end() ? 0 : found->second;
    }
    for (Attribute a = nodes_[element].firstAttribute; a; a = attributes_[a].next, ++*walked)
        if (attributes_[a].name == name) return a;
    return 0;
}

XmlDocument::Attribute XmlDocument::findAttribute(Node element, std::u16string_view name) const {
    const uint32_t number = FindName(name);
    int walked;
    return number ? FindAttribute(element, number, &walked) : 0;
}

// The attribute of that name, made behind the others if it is new.
XmlDocument::Attribute XmlDocument::NewAttribute(Node element, uint32_t name) {
    int walked;
    if (const Attribute known = FindAttribute(element, name, &walked)) return known;
    if (walked >= kFewAttributes) {
        manyAttributes_[AttributeKey(element, 0)] = 0;
        for (Attribute a = nodes_[element].firstAttribute; a; a = attributes_[a].next)
            manyAttributes_[AttributeKey(element, attributes_[a].name)] = a;
    }
    Attribute a = freeAttributes_;
    if (a) {
        freeAttributes_ = attributes_[a].next;
        attributes_[a] = {};
    } else {
        if (attributes_.size() >= UINT32_MAX) throw std::bad_alloc();
        a = Attribute(attributes_.size());
        attributes_.emplace_back();
    }
    NodeRecord& node = nodes_[element];
    attributes_[a].name = name;
    (node.lastAttribute ? attributes_[node.lastAttribute].next : node.firstAttribute) = a;
    node.lastAttribute = a;
    if (!manyAttributes_.empty() && manyAttributes_.contains(AttributeKey(element, 0)))
        manyAttributes_[AttributeKey(element, name)] = a;
    return a;
}

bool XmlDocument::setAttribute(Node element, std::u16string_view name, std::u16string_view value) {
    const uint32_t number = KeepName(name);
    if (!number) return false;
    const Attribute a = NewAttribute(element, number);
    attributes_[a].value = KeepUnits(value, attributes_[a].value);
    Compact();
    return true;
}

bool XmlDocument::setAttribute(Node element, std::u16string_view name, std::string_view value) {
    const uint32_t number = KeepName(name);
    if (!number) return false;
    const Attribute a = NewAttribute(element, number);
    attributes_[a].value = Keep(value, attributes_[a].value);
    Compact();
    return true;
}

bool XmlDocument::removeAttribute(Node element, std::u16string_view name) {
    const Attribute found = findAttribute(element, name);
    if (!found) return false;
    NodeRecord& node = nodes_[element];
    Attribute before = 0;
    for (Attribute a = node.firstAttribute; a != found; a = attributes_[a].next) before = a;
    (before ? attributes_[before].next : node.firstAttribute) = attributes_[found].next;
    if (node.lastAttribute == found) node.lastAttribute = before;
    if (!manyAttributes_.empty()) manyAttributes_.erase(AttributeKey(element, attributes_[found].name));
    Drop(attributes_[found].value);
    attributes_[found] = {};
    attributes_[found].next = freeAttributes_;
    freeAttributes_ = found;
    return true;
}

void XmlDocument::FreeAttributes(Node element) {
    for (Attribute a = nodes_[element].firstAttribute; a;) {
        const Attribute next = attributes_[a].next;
        if (!manyAttributes_.empty()) manyAttributes_.erase(AttributeKey(element, attributes_[a].name));
        Drop(attributes_[a].value);
        attributes_[a] = {};
        attributes_[a].next = freeAttributes_;
        freeAttributes_ = a;
        a = next;
    }
    if (!manyAttributes_.empty()) manyAttributes_.erase(AttributeKey(element, 0));
    nodes_[element].firstAttribute = nodes_[element].lastAttribute = 0;
}

// Writing ----------------------------------------------------------------------------------------------------------

void XmlDocument::WriteStart(std::string& out, Node node) const {
    const NodeRecord& record = nodes_[node];
    switch (record.kind) {
        case XmlKind::Data: return AppendEscaped<false>(out, value(node));
        case XmlKind::CData: out.append("<![CDATA[").append(value(node)).append("]]>"); return;
        case XmlKind::Comment: out.append("<!--").append(value(node)).append("-->"); return;
        case XmlKind::Instruction:
            out.append("<?").append(name(node)).append(record.value.size ? " " : "").append(value(node)).append("?>");
            return;
        case XmlKind::DocumentType: out.append("<!DOCTYPE ").append(value(node)).append(">"); return;
        default: break;
    }
    out.append("<").append(name(node));
    for (Attribute a = record.firstAttribute; a; a = attributes_[a].next) {
        out.append(" ").append(attributeName(a)).append("=\"");
        AppendEscaped<true>(out, attributeValue(a));
        out.append("\"");
    }
    out.append(record.first ? ">" : "/>");
}

bool XmlDocument::HoldsData(Node node) const {
    for (Node child = nodes_[node].first; child; child = nodes_[child].next)
        if (kind(child) == XmlKind::Data || kind(child) == XmlKind::CData) return true;
    return false;
}

std::string XmlDocument::write() const {
    std::string out = "<?xml version=\"" + version + "\" encoding=\"" + encoding + "\"";
    if (standalone) out += " standalone=\"yes\"";
    out += "?>\n";
    out.reserve(out.size() + bytes_.size() + nodes_.size() * 16 + attributes_.size() * 12);
    size_t depth = 0;  // levels below the top
    Node plain = 0;    // the element with data inside which nothing is laid out; 0 = none
    auto line = [&] {
        if (indented && !plain) out.append("\n").append(std::min(depth, kMostIndents) * 2, ' ');
    };
    for (Node node = nodes_[kTop].first; node;) {
        if (depth) line();
        WriteStart(out, node);
        if (nodes_[node].first) {
            if (!plain && HoldsData(node)) plain = node;
            ++depth;
            node = nodes_[node].first;
            continue;
        }
        while (!nodes_[node].next) {
            node = nodes_[node].parent;
            if (node == kTop) return out += '\n';
            --depth;
            line();
            if (plain == node) plain = 0;
            out.append("</").append(name(node)).append(">");
        }
        node = nodes_[node].next;
        if (depth == 0) out += '\n';
    }
    return out;
}

}  // namespace zrhost
