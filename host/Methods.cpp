// Methods given by C++ code, and what the host can read of the language by itself: a literal, a variable, an array
// element, a call of a method or command with such arguments, and the assignment of one to a variable. Whatever has an
// operator in it is refused: it is the module that runs the language.
#include <cstring>

#include "host/CommandCall.h"
#include "host/Host_Private.h"
#include "host/Text.h"

namespace zrhost {

namespace {

bool IsNameStart(char16_t unit) { return IsLetter(unit) || unit == u'_'; }
bool IsDigit(char16_t unit) { return unit >= u'0' && unit <= u'9'; }

class LineReader {
  public:
    LineReader(Host& host, std::u16string_view text) : host_(host), text_(text) {}

    // The whole text as one expression. Not 0 = unreadable.
    int16_t expression(Value* result) {
        int16_t error = primary(result);
        skip();
        if (!error && at_ < text_.size()) error = ZR_ERR_UNKNOWN_METHOD;
        if (error == ZR_ERR_UNKNOWN_METHOD) *result = Value();
        return error;
    }

    // name:=expression, or an expression.
    int16_t line(Value* result) {
        size_t assign = text_.find(u":=");
        if (assign == text_.npos || text_.substr(0, assign).find_first_of(u"\"(") != text_.npos)
            return expression(result);
        LineReader target(host_, text_.substr(0, assign));
        Place place;
        if (!target.place(&place)) return ZR_ERR_UNKNOWN_METHOD;
        at_ = assign + 2;
        Value value;
        if (int16_t error = expression(&value)) return error;
        bool ok = place.element < 0 ? place.table->setValue(place.name, value)
                                    : place.table->setElement(place.name, place.element, value);
        return ok ? int16_t(0) : int16_t(ZR_ERR_PARAMETER);
    }

  private:
    struct Place {
        VariableTable* table = nullptr;
        std::u16string name;
        int64_t element = -1;  // -1 = the variable itself
    };
    static constexpr int kDeepest = 64;

    void skip() {
        while (at_ < text_.size() && IsSpace(text_[at_])) ++at_;
    }
    bool take(std::u16string_view sign) {
        skip();
        if (text_.substr(at_, sign.size()) != sign) return false;
        at_ += sign.size();
        return true;
    }
    std::u16string_view until(char16_t end) {  // behind the opening mark; the closing one is taken
        size_t close = text_.find(end, at_);
        if (close == text_.npos) return {};
        std::u16string_view inside = text_.substr(at_, close - at_);
        at_ = close + 1;
        return inside;
    }
    // Letters, digits, "_" and single blanks between words.
    std::u16string_view name() {
        skip();
        size_t start = at_, end = at_;
        if (at_ == text_.size() || !IsNameStart(text_[at_])) return {};
        while (at_ < text_.size() && (IsNameStart(text_[at_]) || IsDigit(text_[at_]) || text_[at_] == u' ')) {
            if (text_[at_++] != u' ') end = at_;
        }
        at_ = end;
        return text_.substr(start, end - start);
    }
    bool place(Place* out) {
        out->table = take(u"<>") ? &host_.inside().interprocess : &host_.currentProcess().variables;
        out->name = name();
        if (out->name.empty()) return false;
        if (take(u"{")) {
            Value index;
            if (primary(&index) || !index.isNumber() || index.number() < 0 || !take(u"}")) return false;
            out->element = index.integer();
        }
        skip();
        return at_ == text_.size();
    }
    int16_t primary(Value* result) {
        if (++depth_ > kDeepest) return ZR_ERR_UNKNOWN_METHOD;
        int16_t error = primaryInside(result);
        --depth_;
        return error;
    }
    int16_t primaryInside(Value* result) {
        skip();
        if (at_ == text_.size()) return ZR_ERR_UNKNOWN_METHOD;
        char16_t first = text_[at_];
        if (first == u'"') return string(result);
        if (IsDigit(first) || first == u'-' || first == u'.') return number(result);
        if (first == u'!' || first == u'?') {
            ++at_;
            bool closed = text_.find(first, at_) != text_.npos;
            std::u16string_view inside = until(first);
            if (!closed) return ZR_ERR_UNKNOWN_METHOD;
            if (first == u'!') *result = Value(ReadDate(inside, host_.inside().locale));
            else *result = Value::Time(int32_t(ReadTime(inside, host_.inside().locale)));
            return 0;
        }
        bool interprocess = take(u"<>");
        std::u16string_view word = name();
        if (word.empty()) return ZR_ERR_UNKNOWN_METHOD;
        VariableTable& table = interprocess ? host_.inside().interprocess : host_.currentProcess().variables;
        if (take(u"{")) {
            Value index;
            if (primary(&index) || !index.isNumber() || !take(u"}")) return ZR_ERR_UNKNOWN_METHOD;
            Variable element;
            if (!table.element(word, index.integer(), &element.record())) return ZR_ERR_UNKNOWN_METHOD;
            *result = ReadRecord(element.record());
            return 0;
        }
        if (interprocess) {
            *result = table.value(word);
            return 0;
        }
        std::vector<Argument> arguments;
        bool called = take(u"(");
        if (called && !take(u")")) {
            do {
                arguments.emplace_back();
                if (int16_t error = argument(&arguments.back())) return error;
            } while (take(u";"));
            if (!take(u")")) return ZR_ERR_UNKNOWN_METHOD;
        }
        return callOrVariable(word, called, arguments, result);
    }
    struct Argument {
        Value value;
        std::u16string variable;  // the process variable it is; empty = a value
    };
    int16_t argument(Argument* out) {
        skip();
        size_t start = at_;
        std::u16string_view word = name();
        skip();
        bool alone = at_ < text_.size() && (text_[at_] == u';' || text_[at_] == u')');
        VariableTable& table = host_.currentProcess().variables;
        if (!word.empty() && alone && table.kind(word) != eVK_Undefined) {
            out->variable = word;
            out->value = table.value(word);
            return 0;
        }
        at_ = start;
        return primary(&out->value);
    }
    // A word: a variable, true or false, a method, a command.
    int16_t callOrVariable(std::u16string_view word, bool called, std::vector<Argument>& arguments, Value* result) {
        VariableTable& table = host_.currentProcess().variables;
        if (!called && table.kind(word) != eVK_Undefined) {
            *result = table.value(word);
            return 0;
        }
        if (!called && (EqualNames(word, u"true") || EqualNames(word, u"vrai"))) {
            *result = Value(true);
            return 0;
        }
        if (!called && (EqualNames(word, u"false") || EqualNames(word, u"faux"))) {
            *result = Value(false);
            return 0;
        }
        if (int method = host_.methodNumber(word)) {
            std::vector<Value> values;
            for (Argument& argument : arguments) values.push_back(std::move(argument.value));
            return RunRegistered(host_, method, values, result);
        }
        if (int command = host_.commandNumber(ToUtf8(word))) return runCommand(command, arguments, result);
        return ZR_ERR_UNKNOWN_METHOD;
    }
    int16_t runCommand(int command, std::vector<Argument>& arguments, Value* result) {
        std::vector<Variable> records(arguments.size());
        std::vector<PA_Variable*> table;
        for (size_t i = 0; i < arguments.size(); ++i) {
            WriteRecord(&records[i].record(), arguments[i].value);
            table.push_back(&records[i].record());
        }
        Variable answer;
        int16_t error = RunCommand(host_, command, table.data(), int(table.size()), &answer.record());
        for (size_t i = 0; i < arguments.size(); ++i)
            if (!arguments[i].variable.empty())
                host_.currentProcess().variables.set(arguments[i].variable, records[i].record(), true);
        *result = ReadRecord(answer.record());
        return error;
    }
    int16_t string(Value* result) {
        std::u16string out;
        for (++at_; at_ < text_.size() && text_[at_] != u'"'; ++at_) {
            char16_t unit = text_[at_];
            if (unit == u'\\' && at_ + 1 < text_.size()) {
                unit = text_[++at_];
                if (unit == u'n') unit = u'\n';
                else if (unit == u'r') unit = u'\r';
                else if (unit == u't') unit = u'\t';
            }
            out += unit;
        }
        if (at_ == text_.size()) return ZR_ERR_UNKNOWN_METHOD;
        ++at_;
        *result = Value(std::move(out));
        return 0;
    }
    int16_t number(Value* result) {
        size_t start = at_;
        if (text_[at_] == u'-') ++at_;
        bool hexadecimal = text_.substr(at_, 2) == u"0x";
        bool fraction = false;
        if (hexadecimal) {
            at_ += 2;
            uint32_t value = 0;
            size_t digits = at_;
            for (; at_ < text_.size(); ++at_) {
                char16_t unit = text_[at_] | 0x20;
                bool letter = unit >= u'a' && unit <= u'f';
                if (!IsDigit(text_[at_]) && !letter) break;
                value = value << 4 | uint32_t(letter ? unit - u'a' + 10 : text_[at_] - u'0');
            }
            if (at_ == digits || at_ - digits > 8) return ZR_ERR_UNKNOWN_METHOD;
            *result = Value::Longint(int32_t(value));
            return 0;
        }
        size_t digits = at_;
        while (at_ < text_.size() && (IsDigit(text_[at_]) || text_[at_] == u'.')) fraction |= text_[at_++] == u'.';
        if (at_ == digits) return ZR_ERR_UNKNOWN_METHOD;
        if (at_ < text_.size() && (text_[at_] | 0x20) == u'e') {
            fraction = true;
            ++at_;
            if (at_ < text_.size() && (text_[at_] == u'-' || text_[at_] == u'+')) ++at_;
            while (at_ < text_.size() && IsDigit(text_[at_])) ++at_;
        }
        double value = ReadNumber(text_.substr(start, at_ - start), u'.');
        bool whole = !fraction && value >= -2147483648.0 && value <= 2147483647.0;
        *result = whole ? Value::Longint(int32_t(value)) : Value(value);
        return 0;
    }

    Host& host_;
    std::u16string_view text_;
    size_t at_ = 0;
    int depth_ = 0;
};

}  // namespace

int16_t RunRegistered(Host& host, int number, std::span<Value> arguments, Value* result) {
    Method method;
    {
        std::lock_guard guard(host.inside().methodsMutex);
        const auto& methods = host.inside().methods;
        if (number >= 1 && size_t(number) <= methods.size()) method = methods[size_t(number) - 1];
    }
    if (!method) return ZR_ERR_UNKNOWN_METHOD;
    try {
        *result = method(arguments);
    } catch (...) {
        *result = Value();
        return ZR_ERR_PARAMETER;
    }
    return ZR_ERR_NONE;
}

int16_t RunMethodOrLine(Host& host, std::u16string_view code, std::span<Value> arguments, Value* result) {
    if (int number = host.methodNumber(code)) return RunRegistered(host, number, arguments, result);
    return LineReader(host, code).line(result);
}

int16_t EvaluateText(Host& host, std::u16string_view expression, Value* result) {
    return LineReader(host, expression).expression(result);
}

}  // namespace zrhost
