// What the tests of the commands by number share: a host with a folder of its own, a call with readable arguments, and
// values written as text.
#ifndef ZRHOST_COMMANDS_TEST_H
#define ZRHOST_COMMANDS_TEST_H

#include <gtest/gtest.h>
#include <stdlib.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "host/CommandCall.h"
#include "host/Host.h"
#include "host/Objects.h"
#include "host/Pictures.h"
#include "host/Process.h"
#include "host/Variables.h"

namespace zrhost::test {

// One argument: a value, an operator, or nothing (undefined).
struct Arg {
    Value value;
    int operatorCode = -1;

    Arg() = default;
    Arg(Value given) : value(std::move(given)) {}
    Arg(double number) : value(number) {}
    Arg(int number) : value(double(number)) {}
    Arg(bool boolean) : value(boolean) {}
    Arg(const char* utf8) : value(FromUtf8(utf8)) {}
    Arg(const std::string& utf8) : value(FromUtf8(utf8)) {}
};
using Args = std::vector<Arg>;

inline Arg Operator(int code) {
    Arg arg;
    arg.operatorCode = code;
    return arg;
}
inline Arg Star() { return Operator(ZR_OP_TIMES); }
inline Arg L(int number) { return Value::Longint(number); }
inline Arg D(int year, int month, int day) { return Value(Date{day, month, year}); }
inline Arg H(int seconds) { return Value::Time(seconds); }
inline Arg B(const std::string& bytes) { return Value(Value::Bytes(bytes.begin(), bytes.end())); }
inline Arg Hex(const std::string& digits) {
    Value::Bytes bytes;
    for (size_t i = 0; i + 1 < digits.size(); i += 2)
        bytes.push_back(uint8_t(std::stoi(digits.substr(i, 2), nullptr, 16)));
    return Value(bytes);
}
inline Arg Reals(std::vector<double> numbers) {
    Value::Elements elements(1, Value(0.0));
    for (double number : numbers) elements.emplace_back(number);
    return Value::Array(eVK_ArrayReal, elements);
}
inline Arg Longints(std::vector<int> numbers) {
    Value::Elements elements(1, Value::Longint(0));
    for (int number : numbers) elements.push_back(Value::Longint(number));
    return Value::Array(eVK_ArrayLongint, elements);
}
inline Arg Texts(std::vector<const char*> texts) {
    Value::Elements elements(1, Value(u""));
    for (const char* text : texts) elements.emplace_back(FromUtf8(text));
    return Value::Array(eVK_ArrayText, elements);
}
inline Arg Booleans(std::vector<bool> booleans) {
    Value::Elements elements(1, Value(false));
    for (bool boolean : booleans) elements.emplace_back(boolean);
    return Value::Array(eVK_ArrayBoolean, elements);
}
inline Arg Dates(std::vector<Date> dates) {
    Value::Elements elements(1, Value(Date{}));
    for (Date date : dates) elements.emplace_back(date);
    return Value::Array(eVK_ArrayDate, elements);
}
inline Arg Json(const char* utf8) {
    std::optional<Value> value = ReadJsonUtf8(utf8);
    return value ? Arg(*value) : Arg();
}

// A value as text: 1.5  "text"  true  2024-02-29  13:45:00  <0102>  [1, 2]  {"a":1}  null  undefined
inline std::string Show(const Value& value) {
    std::ostringstream out;
    out.precision(15);
    char text[64];
    switch (value.kind()) {
        case eVK_Real:
        case eVK_Integer:
        case eVK_Longint: out << value.number(); break;
        case eVK_Text: out << '"' << ToUtf8(value.text()) << '"'; break;
        case eVK_Boolean: out << (value.boolean() ? "true" : "false"); break;
        case eVK_Date:
            snprintf(text, sizeof text, "%04d-%02d-%02d", value.date().year, value.date().month, value.date().day);
            out << text;
            break;
        case eVK_Time:
            snprintf(text, sizeof text, "%02d:%02d:%02d", value.integer() / 3600, value.integer() / 60 % 60,
                     value.integer() % 60);
            out << text;
            break;
        case eVK_Blob:
            out << '<';
            for (uint8_t byte : value.blob()) {
                snprintf(text, sizeof text, "%02x", byte);
                out << text;
            }
            out << '>';
            break;
        case eVK_Object:
        case eVK_Collection: out << WriteJson(value); break;
        case eVK_Null: out << "null"; break;
        case eVK_Undefined: out << "undefined"; break;
        case eVK_Picture: out << "picture of " << (value.picture() ? value.picture()->byteCount() : 0); break;
        case eVK_Pointer: out << "pointer"; break;
        default:
            out << '[';
            for (size_t i = 1; i < value.elements().size(); ++i)
                out << (i > 1 ? ", " : "") << Show(value.elements()[i]);
            out << ']';
    }
    return out.str();
}

class CommandTest : public ::testing::Test {
  protected:
    void SetUp() override {
        char pattern[] = "/tmp/zr-commands-XXXXXX";
        ASSERT_NE(mkdtemp(pattern), nullptr);
        folder = std::string(pattern) + "/";
        Options options;
        options.structurePath = folder + "Start.4dm";
        options.alert = [this](std::u16string_view line) { lines.push_back(ToUtf8(line)); };
        options.notServed = [this](int id, std::string_view) { notServed.push_back(id); };
        options.interrupted = [this] { return interrupt; };
        Configure(options);
        host = Host::Start(options);
        ASSERT_NE(host, nullptr);
    }
    void TearDown() override {
        parameters.clear();
        host.reset();
        std::error_code error;
        if (!folder.empty()) std::filesystem::remove_all(folder, error);
    }
    virtual void Configure(Options&) {}

    // Runs a command; the arguments as it left them are in parameters.
    Value Run(int id, const Args& args = {}) {
        parameters.assign(args.size(), Variable());
        std::vector<PA_Variable*> table;
        for (size_t i = 0; i < args.size(); ++i) {
            PA_Variable& record = parameters[i].record();
            if (args[i].operatorCode >= 0) {
                record = PA_Variable{};
                record.fType = eVK_Operator;
                record.fFiller = 1;
                record.uValue.fOperator = uint8_t(args[i].operatorCode);
            } else {
                EXPECT_TRUE(WriteRecord(&record, args[i].value));
            }
            table.push_back(&record);
        }
        Variable result;
        EngineBlock block{};
        block.fParam1 = int64_t(table.data());
        block.fParam2 = int64_t(&result.record());
        block.fParam3 = id;
        block.fParam4 = int64_t(table.size());
        Host::Call4D(ZR_SEL_ExecuteCommand, &block);
        error = block.fError;
        return ReadRecord(result.record());
    }
    std::string Text(int id, const Args& args = {}) { return Show(Run(id, args)); }
    Value After(size_t i) { return ReadRecord(parameters.at(i - 1).record()); }  // parameter i from 1, after the call
    std::string ShowAfter(size_t i) { return Show(After(i)); }
    bool OK() const { return host->ok(); }

    std::string Path(const std::string& name) const { return folder + name; }
    void Write(const std::string& name, const std::string& bytes) const {
        std::ofstream(Path(name), std::ios::binary) << bytes;
    }
    std::string Read(const std::string& name) const {
        std::ifstream file(Path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    std::unique_ptr<Host> host;
    std::string folder;  // ends with the separator; deleted afterwards
    std::vector<std::string> lines;
    std::vector<int> notServed;
    bool interrupt = false;
    std::vector<Variable> parameters;
    int error = 0;
};

struct Row {  // one call and the value that it gives
    int id;
    Args args;
    const char* expected;
};

#define EXPECT_ROWS(rows)                                                                                       \
    for (const Row& row : rows) {                                                                               \
        EXPECT_EQ(Text(row.id, row.args), row.expected) << "row " << (&row - rows) << " of command " << row.id; \
    }

}  // namespace zrhost::test

#endif
