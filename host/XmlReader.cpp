// Reading XML text into a document. Strict on whole documents: what is not well formed is refused with its line and
// column. No entities but the five of XML, nothing is fetched from anywhere, no recursion: depth is bounded by memory.
#include <algorithm>

#include "host/Host.h"
#include "host/Xml.h"

namespace zrhost {

namespace {

constexpr struct {
    std::string_view name;
    char character;
} kEntities[] = {{"amp", '&'}, {"lt", '<'}, {"gt", '>'}, {"quot", '"'}, {"apos", '\''}};

bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }
bool EndsName(char c) { return IsBlank(c) || c == '/' || c == '>' || c == '=' || c == '<' || c == '?' || c == '['; }
bool StartsName(char c) { return c < 0 || c == '_' || c == ':' || ((c | 32) >= 'a' && (c | 32) <= 'z'); }

void AppendCharacter(std::string& out, uint32_t c) {
    if (c < 0x80) {
        out += char(c);
    } else if (c < 0x800) {
        out += char(0xC0 | c >> 6);
        out += char(0x80 | (c & 63));
    } else {
        if (c < 0x10000) {
            out += char(0xE0 | c >> 12);
        } else {
            out += char(0xF0 | c >> 18);
            out += char(0x80 | (c >> 12 & 63));
        }
        out += char(0x80 | (c >> 6 & 63));
        out += char(0x80 | (c & 63));
    }
}

}  // namespace

class XmlReader {
  public:
    XmlReader(XmlDocument& document, std::string_view text, bool fragment)
        : document_(document), text_(text), fragment_(fragment) {}

    bool read(XmlDocument::Node parent) {
        top_ = at_ = parent;
        if (!ReadableText()) return false;
        if (!fragment_ && !ReadDeclaration()) return false;
        while (pos_ < text_.size())
            if (!(text_[pos_] == '<' && !IsPlain() ? ReadMarkup() : ReadData())) return false;
        if (at_ != top_) return Fail("an element is not closed");
        if (!fragment_ && !document_.root()) return Fail("there is no root element");
        return true;
    }
    XmlError error() const {
        XmlError error = {message_, 1, 1};
        for (char c : text_.substr(0, std::min(pos_, text_.size()))) {
            if (c == '\n') ++error.line, error.column = 1;
            else if ((c & 0xC0) != 0x80) ++error.column;
        }
        return error;
    }

  private:
    bool Fail(const char* message) {
        if (message_.empty()) message_ = message;
        return false;
    }
    bool Follows(std::string_view what) const { return text_.substr(pos_, what.size()) == what; }
    bool Take(std::string_view what) {
        if (!Follows(what)) return false;
        pos_ += what.size();
        return true;
    }
    bool SkipBlanks() {  // true = there was one
        const size_t from = pos_;
        while (pos_ < text_.size() && IsBlank(text_[pos_])) ++pos_;
        return pos_ > from;
    }
    // A "<" of a fragment that begins no markup.
    bool IsPlain() const {
        const char next = pos_ + 1 < text_.size() ? text_[pos_ + 1] : 0;
        return fragment_ && !StartsName(next) && next != '/' && next != '!' && next != '?';
    }

    bool ReadableText() {
        for (size_t i = 0; i < text_.size(); ++i) {
            const unsigned char c = (unsigned char)text_[i];
            if (c >= 0x20 || IsXmlCharacter(c)) {
                const bool none = c == 0xEF && text_.substr(i, 2) == "\xEF\xBF" && i + 2 < text_.size() &&
                                  (unsigned char)text_[i + 2] >= 0xBE;
                if (!none) continue;
            }
            pos_ = i;
            return Fail("a character that XML does not allow");
        }
        return true;
    }

    bool ReadName(std::u16string* name) {
        const size_t from = pos_;
        while (pos_ < text_.size() && !EndsName(text_[pos_])) ++pos_;
        *name = FromUtf8(text_.substr(from, pos_ - from));
        return IsXmlName(*name) || Fail("a name is expected");
    }

    // The text up to end, which is stepped over; line ends become one LF.
    bool ReadUpTo(std::string_view end, std::string* out) {
        const size_t found = text_.find(end, pos_);
        if (found == text_.npos) return Fail("markup is not closed");
        AppendLines(out, text_.substr(pos_, found - pos_));
        pos_ = found + end.size();
        return true;
    }
    static void AppendLines(std::string* out, std::string_view text) {
        for (size_t i = 0; i < text.size(); ++i) {
            if (text[i] != '\r') *out += text[i];
            else if (i + 1 == text.size() || text[i + 1] != '\n') *out += '\n';
        }
    }

    // An entity at "&".
    bool ReadEntity(std::string* out) {
        const size_t end = text_.substr(0, std::min(text_.size(), pos_ + 16)).find(';', pos_);
        const std::string_view name = end == text_.npos ? "" : text_.substr(pos_ + 1, end - pos_ - 1);
        uint32_t character = 0;
        if (name.starts_with('#')) {
            const bool hex = name.size() > 1 && name[1] == 'x';
            const std::string_view digits = name.substr(hex ? 2 : 1);
            for (char c : digits) {
                const int digit = c >= '0' && c <= '9'                        ? c - '0'
                                  : hex && (c | 32) >= 'a' && (c | 32) <= 'f' ? (c | 32) - 'a' + 10
                                                                              : 99;
                character =
                    digit == 99 || character > 0x10FFFF ? 0x110000 : character * (hex ? 16 : 10) + uint32_t(digit);
            }
            if (digits.empty() || !IsXmlCharacter(character)) character = 0;
        } else {
            for (const auto& row : kEntities)
                if (row.name == name) character = uint32_t(row.character);
        }
        if (character) {
            AppendCharacter(*out, character);
            pos_ = end + 1;
            return true;
        }
        if (!fragment_) return Fail("an unknown entity");
        *out += '&';
        ++pos_;
        return true;
    }

    bool ReadData() {
        std::string data;
        const size_t from = pos_;
        do {
            const char c = text_[pos_];
            if (c == '&') {
                if (!ReadEntity(&data)) return false;
            } else {
                if (c != '\r') data += c;
                else if (pos_ + 1 == text_.size() || text_[pos_ + 1] != '\n') data += '\n';
                ++pos_;
            }
        } while (pos_ < text_.size() && (text_[pos_] != '<' || IsPlain()));
        if (at_ != XmlDocument::kTop) return Put(XmlKind::Data, data);
        if (data.find_first_not_of(" \t\n") == data.npos) return true;
        pos_ = from;
        return Fail("text outside the root element");
    }

    bool Put(XmlKind kind, const std::string& value) {
        return document_.add(at_, kind, FromUtf8(value)) != 0 || Fail("markup that is not allowed here");
    }

    bool ReadDeclaration() {
        Take("\xEF\xBB\xBF");
        if (!Follows("<?xml") || pos_ + 5 >= text_.size() || !IsBlank(text_[pos_ + 5])) return true;
        pos_ += 5;
        while (SkipBlanks() && !Follows("?>")) {
            std::u16string name;
            std::string value;
            if (!ReadName(&name) || !ReadAttributeValue(&value)) return false;
            if (name == u"version") document_.version = value;
            else if (name == u"encoding") document_.encoding = value;
            else if (name == u"standalone") document_.standalone = value == "yes";
            else return Fail("an unknown part of the declaration");
            for (char c : value)
                if (c == '"' || c == '<' || c == '&' || c < '-') return Fail("a value of the declaration");
        }
        return Take("?>") || Fail("the declaration is not closed");
    }

    bool ReadAttributeValue(std::string* value) {
        SkipBlanks();
        if (!Take("=")) return Fail("= is expected");
        SkipBlanks();
        const char quote = pos_ < text_.size() ? text_[pos_] : 0;
        if (quote != '"' && quote != '\'') return Fail("a quoted value is expected");
        for (++pos_; pos_ < text_.size() && text_[pos_] != quote;) {
            const char c = text_[pos_];
            if (c == '<') return Fail("< within a value");
            if (c == '&') {
                if (!ReadEntity(value)) return false;
                continue;
            }
            if (c != '\r' || pos_ + 1 == text_.size() || text_[pos_ + 1] != '\n') *value += IsBlank(c) ? ' ' : c;
            ++pos_;
        }
        return pos_ < text_.size() ? ++pos_ > 0 : Fail("a value is not closed");
    }

    bool ReadMarkup() {
        std::string value;
        if (Take("<!--")) return ReadUpTo("-->", &value) && Put(XmlKind::Comment, value);
        if (Take("<![CDATA["))
            return at_ == XmlDocument::kTop ? Fail("text outside the root element")
                                            : ReadUpTo("]]>", &value) && Put(XmlKind::CData, value);
        if (Take("<?")) {
            if (!ReadUpTo("?>", &value)) return false;
            const std::string_view name = std::string_view(value).substr(0, value.find_first_of(" \t\n"));
            if (name.size() == 3 && (name[0] | 32) == 'x' && (name[1] | 32) == 'm' && (name[2] | 32) == 'l')
                return Fail("a declaration that is not the first");
            return Put(XmlKind::Instruction, value);
        }
        if (Take("<!DOCTYPE")) return ReadDocumentType();
        if (Take("</")) return ReadEnd();
        ++pos_;
        return ReadStart();
    }

    // Name and identifiers are kept; the declarations between [ and ] are stepped over.
    bool ReadDocumentType() {
        if (at_ != XmlDocument::kTop || document_.root()) return Fail("a document type after the root element");
        std::string kept;
        int inside = 0;
        for (; pos_ < text_.size(); ++pos_) {
            const char c = text_[pos_];
            if (c == '"' || c == '\'') {
                const size_t end = text_.find(c, pos_ + 1);
                if (end == text_.npos) break;
                if (!inside) kept.append(text_, pos_, end + 1 - pos_);
                pos_ = end;
            } else if (c == '[') {
                ++inside;
            } else if (c == ']' && inside) {
                --inside;
            } else if (c == '>' && !inside) {
                ++pos_;
                const size_t from = kept.find_first_not_of(" \t\r\n"), to = kept.find_last_not_of(" \t\r\n");
                if (from == kept.npos) return Fail("a name is expected");
                return Put(XmlKind::DocumentType, kept.substr(from, to + 1 - from));
            } else if (!inside) {
                kept += c;
            }
        }
        return Fail("the document type is not closed");
    }

    bool ReadStart() {
        std::u16string name;
        if (!ReadName(&name)) return false;
        if (at_ == XmlDocument::kTop && document_.root()) return Fail("a second root element");
        const XmlDocument::Node element = document_.addElement(at_, name);
        if (!element) return Fail("a name is expected");
        while (SkipBlanks()) {
            if (pos_ >= text_.size() || text_[pos_] == '/' || text_[pos_] == '>') break;
            std::string value;
            if (!ReadName(&name)) return false;
            if (document_.findAttribute(element, name)) return Fail("an attribute stands twice");
            if (!ReadAttributeValue(&value)) return false;
            if (!document_.setAttribute(element, name, std::string_view(value))) return Fail("a name is expected");
        }
        if (Take("/>")) return true;
        at_ = element;
        return Take(">") || Fail("a tag is not closed");
    }

    bool ReadEnd() {
        std::u16string name;
        if (!ReadName(&name)) return false;
        SkipBlanks();
        if (at_ == top_ || document_.wideName(at_) != name) return Fail("an end tag without its start");
        at_ = document_.parent(at_);
        return Take(">") || Fail("a tag is not closed");
    }

    XmlDocument& document_;
    const std::string_view text_;
    const bool fragment_;
    size_t pos_ = 0;
    XmlDocument::Node top_ = 0, at_ = 0;
    std::string message_;
};

bool XmlDocument::parse(std::string_view utf8, XmlError* error) {
    XmlReader reader(*this, utf8, /*fragment*/ false);
    const bool read = reader.read(kTop);
    if (!read && error) *error = reader.error();
    return read;
}

XmlDocument::Node XmlDocument::parseFragment(Node parent, std::string_view utf8) {
    const Node before = nodes_[parent].last;
    XmlReader reader(*this, utf8, /*fragment*/ true);
    const bool read = reader.read(parent);
    while (!read && nodes_[parent].last != before) remove(nodes_[parent].last);
    return read ? before ? nodes_[before].next : nodes_[parent].first : 0;
}

}  // namespace zrhost
