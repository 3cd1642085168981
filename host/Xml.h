// A document of the XML commands: a tree of nodes in flat tables, with names kept once and values in one block of
// bytes. A node is an index and a generation: an index is used again after a removal, with another generation. An
// element of ten attributes takes about 300 bytes beside its values, and writing is a walk without recursion, however
// deep the tree.
#ifndef ZRHOST_XML_H
#define ZRHOST_XML_H

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace zrhost {

enum class XmlKind : uint8_t {  // as the constants of the language number them
    Free = 0,
    Comment = 2,
    Instruction = 3,
    Data = 6,
    CData = 7,
    DocumentType = 10,
    Element = 11,
    Document = 255
};

struct XmlError {
    std::string text;  // empty = none
    int line = 0, column = 0;
};

class XmlDocument {
  public:
    using Node = uint32_t;  // 0 = none
    using Attribute = uint32_t;
    static constexpr Node kTop = 1;  // the document: parent of the root element and of what stands beside it

    XmlDocument();

    // Nodes ----------------------------------------------------------------------------------------------------------
    bool alive(Node node, uint32_t generation) const {
        return node != 0 && node < nodes_.size() && nodes_[node].generation == generation &&
               nodes_[node].kind != XmlKind::Free;
    }
    uint32_t generation(Node node) const { return nodes_[node].generation; }
    XmlKind kind(Node node) const { return nodes_[node].kind; }
    bool isElement(Node node) const { return nodes_[node].kind == XmlKind::Element; }
    Node root() const;  // the root element; 0 = none
    Node parent(Node node) const { return nodes_[node].parent; }
    Node first(Node node) const { return nodes_[node].first; }
    Node last(Node node) const { return nodes_[node].last; }
    Node next(Node node) const { return nodes_[node].next; }
    Node previous(Node node) const { return nodes_[node].previous; }
    std::string_view name(Node node) const { return names_[nodes_[node].name].utf8; }  // of elements, instructions
    std::u16string_view wideName(Node node) const { return names_[nodes_[node].name].units; }
    std::string_view value(Node node) const { return Bytes(nodes_[node].value); }  // of all others; borrowed
    std::string text(Node node) const;  // of an element: its data and CDATA children joined

    Node addElement(Node parent, std::u16string_view name);               // 0 = not a name
    Node add(Node parent, XmlKind kind, std::u16string_view value);       // 0 = not to be written as such
    bool rename(Node element, std::u16string_view name);                  // false = not a name
    void setText(Node element, std::u16string_view value, XmlKind kind);  // Data or CData in place of the former ones
    void remove(Node node);                                               // with all below it; not the root, not kTop
    Node copy(Node parent, Node before, const XmlDocument& from, Node node);  // before: a child of parent, 0 = behind

    // Attributes -----------------------------------------------------------------------------------------------------
    bool setAttribute(Node element, std::u16string_view name, std::u16string_view value);  // false = not a name
    bool setAttribute(Node element, std::u16string_view name, std::string_view value);     // UTF-8 that XML can hold
    bool removeAttribute(Node element, std::u16string_view name);                          // false = has none
    Attribute findAttribute(Node element, std::u16string_view name) const;                 // 0 = has none
    Attribute firstAttribute(Node element) const { return nodes_[element].firstAttribute; }
    Attribute nextAttribute(Attribute a) const { return attributes_[a].next; }
    std::string_view attributeName(Attribute a) const { return names_[attributes_[a].name].utf8; }
    std::string_view attributeValue(Attribute a) const { return Bytes(attributes_[a].value); }  // borrowed

    // Text -----------------------------------------------------------------------------------------------------------
    // Whole documents. False = not well formed; the document is then to be dropped.
    bool parse(std::string_view utf8, XmlError* error);
    // Children for a parent: elements and data. A "&" or "<" that begins nothing stands for itself. The first of them;
    // 0 = not well formed, nothing is added.
    Node parseFragment(Node parent, std::string_view utf8);
    std::string write() const;  // UTF-8, with the declaration
    size_t bytesInUse() const;

    std::string encoding = "UTF-8", version = "1.0";  // of the declaration
    bool standalone = false;                          // written if true
    bool indented = false;                            // children on lines of their own, where a parent has no data

  private:
    friend class XmlReader;
    struct Span {
        uint64_t at = 0;
        uint32_t size = 0;
    };
    struct NodeRecord {
        Span value;
        uint32_t generation = 0;
        Node parent = 0, first = 0, last = 0, previous = 0, next = 0;  // next links free nodes too
        uint32_t name = 0;
        Attribute firstAttribute = 0, lastAttribute = 0;
        XmlKind kind = XmlKind::Free;
    };
    struct AttributeRecord {
        Span value;
        uint32_t name = 0;
        Attribute next = 0;
    };
    struct Name {
        std::u16string units;
        std::string utf8;
    };

    std::string_view Bytes(Span span) const { return {bytes_.data() + span.at, span.size}; }
    Span Keep(std::string_view value, Span old);
    Span KeepUnits(std::u16string_view value, Span old);
    void Drop(Span span);
    void Compact();
    uint32_t FindName(std::u16string_view name) const;  // 0 = not in use here
    uint32_t KeepName(std::u16string_view name);        // 0 = not a name
    void EnterName(uint32_t number);
    Node NewNode(Node parent, Node before, XmlKind kind);
    void Unlink(Node node);
    Attribute FindAttribute(Node element, uint32_t name, int* walked) const;  // 0 = has none
    Attribute NewAttribute(Node element, uint32_t name);
    void FreeAttributes(Node element);
    void WriteStart(std::string& out, Node node) const;
    bool HoldsData(Node node) const;

    std::vector<NodeRecord> nodes_;
    std::vector<AttributeRecord> attributes_;
    Node freeNodes_ = 0;
    Attribute freeAttributes_ = 0;
    std::unordered_map<uint64_t, Attribute> manyAttributes_;  // of elements that have many, by element and name
    std::vector<Name> names_;                                 // number 0 = none
    std::vector<uint32_t> nameSlots_;
    std::string bytes_;
    uint64_t wasted_ = 0;  // bytes that no node uses any more
};

bool IsXmlName(std::u16string_view name);
std::u16string HeldByXml(std::u16string_view value);  // without the characters that XML cannot hold
bool IsXmlCharacter(char32_t character);
// A number as the XML commands write it: no exponent, the shortest decimal that reads back as the same float where the
// number is a float, else as the same double; 0 for what is no number. At most kXmlNumber bytes; how many.
constexpr size_t kXmlNumber = 400;
size_t WriteXmlNumber(double number, char* out);

}  // namespace zrhost

#endif
