// JSON of host/Objects.h: written here, read through the library's event interface.
#include <charconv>
#include <cmath>
#include <nlohmann/json.hpp>
#include <span>

#include "host/Formats.h"
#include "host/Host.h"
#include "host/Host_Private.h"
#include "host/Objects.h"

namespace zrhost {

namespace {

constexpr size_t kDeepest = 1000;

// Writing ----------------------------------------------------------------------------------------------------------

class Writer {
  public:
    explicit Writer(bool pretty) : pretty_(pretty) {}
    std::string take() { return std::move(out_); }

    void value(const Value& value) {
        switch (value.kind()) {
            case eVK_Real:
            case eVK_Integer:
            case eVK_Longint:
            case eVK_Time: return number(value.number());
            case eVK_Boolean: out_ += value.boolean() ? "true" : "false"; return;
            case eVK_Text: return text(ToUtf8(value.text()));
            case eVK_Date: return date(value.date());
            case eVK_Blob: return text(WriteBase64(value.blob()));
            case eVK_Picture: return text("[object Picture]");
            case eVK_Pointer: return text(ToUtf8(PointerText(*value.pointer())));
            case eVK_Object: return object(value.object());
            case eVK_Collection:
                if (!value.collection()) break;
                return list(value.collection(), value.collection()->elements());
            default:
                if (!value.elements().empty())  // an array: elements 1..n
                    return list(&value, std::vector<Value>(value.elements().begin() + 1, value.elements().end()));
                break;
        }
        out_ += "null";
    }

  private:
    void number(double number) {
        if (!std::isfinite(number)) {
            out_ += "null";
            return;
        }
        char digits[32];
        auto end = std::to_chars(digits, digits + sizeof digits, number).ptr;
        if (number == std::floor(number) && std::fabs(number) < 1e15)
            end = std::to_chars(digits, digits + sizeof digits, int64_t(number)).ptr;
        out_.append(digits, end);
    }
    void date(Date date) {
        if (date == Date{}) out_ += "\"\"";
        else text(ToUtf8(FormatPattern(date, 0, u"yyyy-MM-dd")));
    }
    void text(std::string_view utf8) {
        static constexpr char kHex[] = "0123456789abcdef";
        out_ += '"';
        for (char c : utf8) {
            switch (c) {
                case '"': out_ += "\\\""; break;
                case '\\': out_ += "\\\\"; break;
                case '\n': out_ += "\\n"; break;
                case '\r': out_ += "\\r"; break;
                case '\t': out_ += "\\t"; break;
                case '\b': out_ += "\\b"; break;
                case '\f': out_ += "\\f"; break;
                default:
                    if (uint8_t(c) < 0x20) {
                        out_ += "\\u00";
                        out_ += kHex[c >> 4];
                        out_ += kHex[c & 15];
                    } else {
                        out_ += c;
                    }
            }
        }
        out_ += '"';
    }
    bool enter(const void* inside) {
        if (path_.size() >= kDeepest || std::find(path_.begin(), path_.end(), inside) != path_.end()) return false;
        path_.push_back(inside);
        return true;
    }
    void lineBreak() {
        if (!pretty_) return;
        out_ += '\n';
        out_.append(path_.size(), '\t');
    }
    void close(bool any, char bracket) {
        path_.pop_back();
        if (any) lineBreak();
        out_ += bracket;
    }
    void object(Object* object) {
        if (!object || !enter(object)) {
            out_ += "null";
            return;
        }
        out_ += '{';
        bool any = false;
        for (const Property& property : object->properties()) {
            if (property.second.isUndefined()) continue;
            if (any) out_ += ',';
            any = true;
            lineBreak();
            text(ToUtf8(property.first));
            out_ += pretty_ ? ": " : ":";
            value(property.second);
        }
        close(any, '}');
    }
    void list(const void* inside, const std::vector<Value>& elements) {
        if (!enter(inside)) {
            out_ += "null";
            return;
        }
        out_ += '[';
        for (size_t i = 0; i < elements.size(); ++i) {
            if (i) out_ += ',';
            lineBreak();
            value(elements[i]);
        }
        close(!elements.empty(), ']');
    }

    bool pretty_;
    std::string out_;
    std::vector<const void*> path_;
};

// Reading ----------------------------------------------------------------------------------------------------------

// Builds values from the parser's events. An answer of false ends the parser.
class Reader : public nlohmann::json_sax<nlohmann::json> {
  public:
    Value result;

    bool null() override { return put(Value::Null()); }
    bool boolean(bool boolean) override { return put(Value(boolean)); }
    bool number_integer(number_integer_t number) override { return put(Value(double(number))); }
    bool number_unsigned(number_unsigned_t number) override { return put(Value(double(number))); }
    bool number_float(number_float_t number, const string_t&) override { return put(Value(double(number))); }
    bool string(string_t& text) override { return put(Value(FromUtf8(text))); }
    bool binary(binary_t&) override { return false; }
    bool start_object(size_t) override { return open(Value(NewObject())); }
    bool start_array(size_t) override { return open(Value(NewCollection())); }
    bool end_object() override { return close(); }
    bool end_array() override { return close(); }
    bool key(string_t& name) override {
        keys_.back() = FromUtf8(name);
        return true;
    }
    bool parse_error(size_t, const std::string&, const nlohmann::detail::exception&) override { return false; }

  private:
    bool put(Value value) {
        if (open_.empty()) result = std::move(value);
        else if (Collection* collection = open_.back().collection()) collection->push(std::move(value));
        else open_.back().object()->set(keys_.back(), std::move(value));
        return true;
    }
    bool open(Value value) {
        if (open_.size() >= kDeepest) return false;
        put(value);
        open_.push_back(std::move(value));
        keys_.emplace_back();
        return true;
    }
    bool close() {
        open_.pop_back();
        keys_.pop_back();
        return true;
    }
    std::vector<Value> open_;
    std::vector<std::u16string> keys_;
};

constexpr char kBase64[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

int Base64Digit(char c) {
    if (c >= 'A' && c <= 'Z') return c - 'A';
    if (c >= 'a' && c <= 'z') return c - 'a' + 26;
    if (c >= '0' && c <= '9') return c - '0' + 52;
    if (c == '+' || c == '-') return 62;
    if (c == '/' || c == '_') return 63;
    return -1;
}

}  // namespace

std::string WriteJson(const Value& value, bool pretty) {
    Writer writer(pretty);
    writer.value(value);
    return writer.take();
}

std::optional<Value> ReadJsonUtf8(std::string_view text) {
    Reader reader;
    if (!nlohmann::json::sax_parse(text.begin(), text.end(), &reader)) return std::nullopt;
    return std::move(reader.result);
}

std::optional<Value> ReadJson(std::u16string_view text) { return ReadJsonUtf8(ToUtf8(text)); }

std::string WriteBase64(std::span<const uint8_t> bytes) {
    std::string out;
    out.reserve((bytes.size() + 2) / 3 * 4);
    for (size_t i = 0; i < bytes.size(); i += 3) {
        size_t left = std::min<size_t>(bytes.size() - i, 3);
        uint32_t group = uint32_t(bytes[i]) << 16;
        if (left > 1) group |= uint32_t(bytes[i + 1]) << 8;
        if (left > 2) group |= bytes[i + 2];
        out += kBase64[group >> 18];
        out += kBase64[group >> 12 & 63];
        out += left > 1 ? kBase64[group >> 6 & 63] : '=';
        out += left > 2 ? kBase64[group & 63] : '=';
    }
    return out;
}

std::optional<std::vector<uint8_t>> ReadBase64(std::string_view text) {
    std::vector<uint8_t> out;
    out.reserve(text.size() / 4 * 3);
    uint32_t group = 0;
    int digits = 0;
    bool ended = false;
    for (char c : text) {
        if (c == ' ' || (c >= 9 && c <= 13)) continue;
        if (c == '=') {
            ended = true;
            continue;
        }
        int digit = Base64Digit(c);
        if (digit < 0 || ended) return std::nullopt;
        group = group << 6 | uint32_t(digit);
        if (++digits == 4) {
            out.push_back(uint8_t(group >> 16));
            out.push_back(uint8_t(group >> 8));
            out.push_back(uint8_t(group));
            group = 0;
            digits = 0;
        }
    }
    if (digits == 1) return std::nullopt;
    if (digits > 1) out.push_back(uint8_t(group >> (digits * 6 - 8)));
    if (digits == 3) out.push_back(uint8_t(group >> 2));
    return out;
}

}  // namespace zrhost
