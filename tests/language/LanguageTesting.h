// What the language tests share: texts from literals, an Executer over the fake host, tokens as readable text, and the
// check that nothing is left behind.
#ifndef ZR_TESTS_LANGUAGE_LANGUAGETESTING_H
#define ZR_TESTS_LANGUAGE_LANGUAGETESTING_H

#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "language/ZR_API_Executer.h"
#include "language/ZR_API_TokenList.h"
#include "language/ZR_API_Tokeniser.h"
#include "tests/language/FakeHost.h"

// A living text from a literal, ended with its scope.
class Text {
  public:
    Text() { text.Create(); }
    Text(const std::u16string& units) {
        text.Create();
        text.AddUniBuffer(reinterpret_cast<const unsigned short*>(units.data()), static_cast<long>(units.size()));
    }
    Text(const char16_t* units) : Text(std::u16string(units)) {}
    Text(const Text&) = delete;
    ~Text() { text.Dispose(); }
    operator ZR_Text*() { return &text; }
    ZR_Text* operator->() { return &text; }

  private:
    ZR_Text text;
};

inline std::u16string Units(const ZR_Text* text) {
    return {reinterpret_cast<const char16_t*>(text->data), static_cast<size_t>(text->count)};
}

inline std::string Printable(const std::u16string& units) {
    std::string out;
    char buffer[8];
    for (char16_t unit : units) {
        if (unit >= 32 && unit < 127) {
            out += static_cast<char>(unit);
        } else {
            snprintf(buffer, sizeof buffer, "~%04X", unit);
            out += buffer;
        }
    }
    return out;
}

inline std::string Printable(const ZR_Text* text) { return Printable(Units(text)); }

inline std::string Number(double value) {
    char buffer[40];
    bool whole = std::fabs(value) < 1e17 && value == std::floor(value);
    snprintf(buffer, sizeof buffer, whole ? "%.0f" : "%.17g", value);
    std::string shortest = buffer;
    if (whole) return shortest;
    for (int digits = 1; digits < 17; digits++) {
        snprintf(buffer, sizeof buffer, "%.*g", digits, value);
        if (strtod(buffer, nullptr) == value) return buffer;
    }
    return shortest;
}

// One token: L line, v:a, $:a, <>:a, :=, n:1, (, ), f:+, s:text, c:text, #41 command, ;, d:1/2/2003, t:60, cmp:3,
// log:1, [3] table, [3]5 field, {, }, ->, m:name, x:255, [[, ]], .name, .name(), o:text; else kN.
inline std::string Describe(ZR_Executer_Token* token) {
    std::string text = Printable(token->GetText());
    switch (token->kind) {
        case ZREXE_TOKEN_LINE: return "L";
        case ZREXE_TOKEN_VARIABLE: return "v:" + text;
        case ZREXE_TOKEN_LOCAL: return "$:" + text;
        case ZREXE_TOKEN_INTERPROCESS: return "<>:" + text;
        case ZREXE_TOKEN_ASSIGN: return ":=";
        case ZREXE_TOKEN_NUMBER: return "n:" + Number(token->GetNumber());
        case ZREXE_TOKEN_OPEN: return "(";
        case ZREXE_TOKEN_CLOSE: return ")";
        case ZREXE_TOKEN_FORMULA: return std::string("f:") + static_cast<char>(token->GetFormula());
        case ZREXE_TOKEN_STRING: return "s:" + text;
        case ZREXE_TOKEN_COMMENT: return "c:" + text;
        case ZREXE_TOKEN_COMMAND: return "#" + std::to_string(token->value.integer);
        case ZREXE_TOKEN_SEMICOLON: return ";";
        case ZREXE_TOKEN_DATE:
            return "d:" + std::to_string(token->value.date.day) + "/" + std::to_string(token->value.date.month) + "/" +
                   std::to_string(token->value.date.year);
        case ZREXE_TOKEN_TIME: return "t:" + std::to_string(token->value.integer);
        case ZREXE_TOKEN_BOOLEAN: return "b:" + std::to_string(token->value.integer);
        case ZREXE_TOKEN_COMPARISON: return "cmp:" + std::to_string(token->GetComparison());
        case ZREXE_TOKEN_LOGIC: return "log:" + std::to_string(token->GetOperation());
        case ZREXE_TOKEN_TABLE: return "[" + std::to_string(token->GetTable()) + "]";
        case ZREXE_TOKEN_FIELD:
            return "[" + std::to_string(token->GetTable()) + "]" + std::to_string(token->GetField());
        case ZREXE_TOKEN_ELEMENT_OPEN: return "{";
        case ZREXE_TOKEN_ELEMENT_CLOSE: return "}";
        case ZREXE_TOKEN_ARROW: return "->";
        case ZREXE_TOKEN_METHOD: return "m:" + text;
        case ZREXE_TOKEN_LONGINT: return "x:" + std::to_string(token->value.integer);
        case ZREXE_TOKEN_INDEX_OPEN: return "[[";
        case ZREXE_TOKEN_INDEX_CLOSE: return "]]";
        case ZREXE_TOKEN_MEMBER: return "." + text;
        case ZREXE_TOKEN_MEMBER_CALL: return "." + text + "()";
        case ZREXE_TOKEN_OTHER: return "o:" + text;
        default: return "k" + std::to_string(token->kind);
    }
}

inline ZR_Executer_Token* TokenAt(ZR_Handle* tokens, long index) {
    return reinterpret_cast<ZR_Executer_Token*>(tokens->GetMemPtr(index));
}

inline std::string Describe(ZR_Handle* tokens) {  // joined by " | "
    std::string out;
    for (long i = 1; i <= tokens->count; i++) out += (i > 1 ? " | " : "") + Describe(TokenAt(tokens, i));
    return out;
}

// A living token list.
class Tokens {
  public:
    Tokens() { zrExe_CreateTokens(&list); }
    Tokens(const Tokens&) = delete;
    ~Tokens() { zrExe_DisposeTokens(&list); }
    operator ZR_Handle*() { return &list; }
    ZR_Handle* operator->() { return &list; }
    ZR_Executer_Token* At(long index) { return TokenAt(&list, index); }

  private:
    ZR_Handle list;
};

// A living handle.
class Block {
  public:
    explicit Block(long elementSize = 1) { handle.Create(elementSize, 0); }
    Block(const Block&) = delete;
    ~Block() { handle.Dispose(); }
    operator ZR_Handle*() { return &handle; }
    ZR_Handle* operator->() { return &handle; }
    std::string Bytes() const { return {handle.data ? handle.data : "", static_cast<size_t>(handle.count)}; }

  private:
    ZR_Handle handle;
};

// A virtual structure list.
class Structure {
  public:
    Structure() { list.Create(sizeof(ZR_Executer_VirtualStructure), 0); }
    Structure(const Structure&) = delete;
    ~Structure() { ZR_EXE_DisposeVirtualStructure(&list); }
    operator ZR_Handle*() { return &list; }
    ZR_Handle* operator->() { return &list; }
    ZR_Executer_VirtualStructure* Add() { return reinterpret_cast<ZR_Executer_VirtualStructure*>(list.AppendGetPtr()); }
    ZR_Executer_VirtualStructure* At(long index) {
        return reinterpret_cast<ZR_Executer_VirtualStructure*>(list.GetMemPtr(index));
    }
    void Table(long table, const std::u16string& caption) { Add()->CreateTable(table, Text(caption), next++); }
    void Field(long table, long field, const std::u16string& caption) {
        Add()->CreateField(table, field, Text(caption), next++);
    }
    void Method(const std::u16string& name, const std::u16string& caption) {
        Add()->CreateMethod(Text(name), Text(caption), next++, 0);
    }
    void Variable(const std::u16string& name, const std::u16string& caption) {
        Add()->CreateVariable(Text(name), Text(caption), next++);
    }

  private:
    ZR_Handle list;
    long next = 1;
};

// An Executer whose table comes from the fake host; the steps of the start without the probe.
class TestExecuter : public ZR_Executer {
  public:
    TestExecuter() {
        CreateTables();
        ReadCommands();
        GetSystemFormat();
    }
    TestExecuter(const TestExecuter&) = delete;
    ~TestExecuter() { Dispose(); }
    void ReadCommands() {
        CreateCommands();
        for (long number = 1; number <= ZR_EXE_HOST_COMMANDS; number++) ReadHostCommand(number);
        FinishCommands();
    }
};

// Every test starts with a clean host and leaves no memory behind, neither here nor there.
class LanguageTest : public testing::Test {
  protected:
    void SetUp() override {
        host = &FakeHost::Start();
        ZR_GetMemoryInfo(&handlesBefore, &bytesBefore);
    }
    void TearDown() override {
        long handles = 0, bytes = 0;
        ZR_GetMemoryInfo(&handles, &bytes);
        EXPECT_EQ(handles, handlesBefore);
        EXPECT_EQ(bytes, bytesBefore);
        EXPECT_EQ(host->liveHandles, 0);
        EXPECT_EQ(host->liveStrings, 0);
        EXPECT_EQ(host->livePictures, 0);
        for (const auto& reference : host->references) EXPECT_EQ(reference.second, 0) << "references left";
    }
    FakeHost* host = nullptr;

  private:
    long handlesBefore = 0, bytesBefore = 0;
};

#endif
