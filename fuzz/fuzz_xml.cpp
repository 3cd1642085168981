// Any bytes as an XML document of the host: what can be read is written, read again and written the same; nodes are
// walked, copied and removed on the way.
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "host/Xml.h"

#define FUZZ_CHECK(condition)                                               \
    do {                                                                    \
        if (!(condition)) {                                                 \
            fprintf(stderr, "%s:%d: %s\n", __FILE__, __LINE__, #condition); \
            abort();                                                        \
        }                                                                   \
    } while (0)

using zrhost::XmlDocument;
using zrhost::XmlError;

static void Walk(XmlDocument& document, XmlDocument::Node top) {
    std::vector<XmlDocument::Node> pending = {top};
    size_t most = 100000;
    while (!pending.empty() && most--) {
        XmlDocument::Node node = pending.back();
        pending.pop_back();
        FUZZ_CHECK(document.alive(node, document.generation(node)));
        for (auto a = document.firstAttribute(node); a; a = document.nextAttribute(a))
            FUZZ_CHECK(!document.attributeName(a).empty());
        for (auto child = document.first(node); child; child = document.next(child)) {
            FUZZ_CHECK(document.parent(child) == node);
            pending.push_back(child);
        }
    }
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    XmlDocument document;
    XmlError error;
    if (!document.parse(text, &error)) {
        FUZZ_CHECK(!error.text.empty());
        XmlDocument other;  // the same as a piece of a document
        auto root = other.addElement(XmlDocument::kTop, u"root");
        other.parseFragment(root, text);
        Walk(other, XmlDocument::kTop);
        other.write();
        return 0;
    }
    Walk(document, XmlDocument::kTop);
    const std::string written = document.write();
    XmlDocument again;
    FUZZ_CHECK(again.parse(written, &error));
    FUZZ_CHECK(again.write() == written);
    if (auto root = document.root()) {
        document.copy(root, document.first(root), again, again.root());
        Walk(document, XmlDocument::kTop);
        if (auto first = document.first(root)) document.remove(first);
        FUZZ_CHECK(!document.write().empty());
    }
    return 0;
}
