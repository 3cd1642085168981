// Any bytes as XML: a whole document that is read writes a text that reads back the same, and a fragment leaves a
// document that can be read, whatever it was.
#include <string>

#include "fuzz/FuzzSupport.h"
#include "host/Host.h"
#include "host/Xml.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using zrhost::XmlDocument;
    // As the commands do: what comes in is UTF-8 without invalid bytes.
    const std::string text = zrhost::ToUtf8(zrhost::FromUtf8({reinterpret_cast<const char*>(data), size}));
    XmlDocument document, fragment;
    if (document.parse(text, nullptr)) {
        document.indented = size % 2 != 0;
        const std::string once = document.write();
        XmlDocument again;
        FUZZ_CHECK(again.parse(once, nullptr));
        if (!document.indented) FUZZ_CHECK(again.write() == once);
    }
    const XmlDocument::Node root = fragment.addElement(XmlDocument::kTop, u"r");
    fragment.parseFragment(root, text);
    XmlDocument again;
    const std::string once = fragment.write();
    FUZZ_CHECK(again.parse(once, nullptr) && again.write() == once);
    const XmlDocument::Node copied = fragment.copy(root, fragment.first(root), fragment, root);
    fragment.remove(copied);
    FUZZ_CHECK(fragment.write() == once);
    return 0;
}
