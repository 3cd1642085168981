// What the implementation of a command by number sees: its parameters, its result, and the process that asks.
//
// Parameters are [1..count]. Reading one that was not given, or one of another kind, answers the neutral value, so that
// an action tests only what it must. Writers keep the kind of a variable that has one (a number goes into a real, an
// integer or a longint) and give an undefined one the natural kind; they answer false, and change nothing, when the
// value does not fit. The result starts undefined.
//
// A file of commands holds its actions, one row a command, and one function that hands the rows out:
//
//     // 13 (T)|(T,*): capitals; * keeps the accents.
//     static void Uppercase(CommandCall& call) {
//         bool keep = call.takeStar();
//         call.setText(Upper(call.text(1), keep));
//     }
//     static constexpr CommandRow kRows[] = {{13, Uppercase}};
//     std::span<const CommandRow> commandsText() { return kRows; }
//
// and one line in host/CommandTable.cpp: X(commandsText). Rows of all files together hold each number once.
#ifndef ZRHOST_COMMANDCALL_H
#define ZRHOST_COMMANDCALL_H

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/Host.h"
#include "host/Value.h"
#include "plugin/ZR_HostInterface.h"

namespace zrhost {

struct TableField {
    int table = 0, field = 0;  // field 0 = the table itself; table 0 = no reference
};

struct CommandCall {
    Host& host;
    Process& process;
    int id;
    PA_Variable** parameters;  // borrowed; entries are never null
    int count;                 // parameters in use; takeStar lowers it
    PA_Variable* result;       // borrowed; write it through the setters
    int16_t error = 0;         // ZR_ERR_...; handed back in the block

    // Kinds -------------------------------------------------------------------------------------------------------
    bool has(int i) const { return i >= 1 && i <= count; }
    int kind(int i) const;          // unified kind; eVK_Operator (0) for an operator; eVK_Undefined outside
    bool isUndefined(int i) const;  // not given, or a variable without a value
    bool isNumber(int i) const;     // real, integer, longint
    bool isText(int i) const;
    bool isArray(int i) const;
    bool isOperator(int i) const;
    int operatorCode(int i) const;  // ZR_OP_...; -1 = no operator
    bool isStar(int i) const;       // the operator *
    bool takeStar();                // true if the last parameter is *, which is then no longer counted
    bool isTableOrField(int i) const;

    // Reading -----------------------------------------------------------------------------------------------------
    double number(int i, double missing = 0) const;     // numbers and times; a Boolean as 0 or 1
    int32_t integer(int i, int32_t missing = 0) const;  // number truncated, cut to the 32-bit range
    int64_t integer64(int i, int64_t missing = 0) const;
    bool boolean(int i, bool missing = false) const;  // Boolean; a number that is not 0
    std::u16string_view text(int i) const;            // borrowed until parameter i is written
    std::string utf8(int i) const;                    // the same as UTF-8
    Date date(int i) const;
    int32_t time(int i) const;                   // seconds; a number counts as seconds
    std::span<const uint8_t> blob(int i) const;  // borrowed until parameter i is written
    Object* object(int i) const;                 // borrowed; null = none
    Collection* collection(int i) const;
    Picture* picture(int i) const;
    TableField tableField(int i) const;        // from a table or field reference, or a pointer to one
    const PointerBlock* pointer(int i) const;  // borrowed; null = none
    Value value(int i) const;                  // a copy of any kind

    // Arrays: elements [0..arraySize]; element 0 exists besides 1..n ------------------------------------------------
    int arraySize(int i) const;  // elements 1..n; -1 = no array
    int currentElement(int i) const;
    double arrayNumber(int i, int element) const;  // real, integer, longint, time arrays; Booleans as 0 or 1
    std::u16string_view arrayText(int i, int element) const;
    bool arrayBoolean(int i, int element) const;
    Date arrayDate(int i, int element) const;
    Value arrayElement(int i, int element) const;  // a copy; undefined outside
    bool resizeArray(int i, int size);             // keeps elements, clears new ones; false = no array, no memory
    bool prepareArray(int i, PA_VariableKind arrayKind, int size);  // an undefined one becomes an array; then as above
    bool setArrayNumber(int i, int element, double number);
    bool setArrayText(int i, int element, std::u16string_view text);
    bool setArrayBoolean(int i, int element, bool boolean);
    bool setArrayDate(int i, int element, Date date);
    bool setArrayElement(int i, int element, const Value& value);  // false = does not fit
    bool swapArrayElements(int i, int left, int right);
    bool setCurrentElement(int i, int element);
    bool assignTextArray(int i, std::span<const std::u16string> texts);  // prepared as a text array, filled from 1
    bool assignLongintArray(int i, std::span<const int32_t> numbers);
    bool assignRealArray(int i, std::span<const double> numbers);
    bool assignBooleanArray(int i, const std::vector<bool>& booleans);
    bool assignDateArray(int i, std::span<const Date> dates);

    // Writing parameters that are variables -----------------------------------------------------------------------
    bool assignReal(int i, double number);
    bool assignLongint(int i, int32_t number);
    bool assignText(int i, std::u16string_view text);
    bool assignBoolean(int i, bool boolean);
    bool assignDate(int i, Date date);
    bool assignTime(int i, int32_t seconds);
    bool assignBlob(int i, std::span<const uint8_t> bytes);
    bool assignObject(int i, Ref<Object> object);
    bool assignCollection(int i, Ref<Collection> collection);
    bool assignPicture(int i, Ref<Picture> picture);
    bool assignValue(int i, const Value& value);
    bool clear(int i);  // the empty value of its kind

    // The result --------------------------------------------------------------------------------------------------
    void setReal(double number);
    void setLongint(int32_t number);
    void setText(std::u16string_view text);
    void setText(std::string_view utf8);
    void setBoolean(bool boolean);
    void setDate(Date date);
    void setTime(int32_t seconds);
    void setBlob(std::span<const uint8_t> bytes);
    void setObject(Ref<Object> object);  // null = an object variable without an object
    void setCollection(Ref<Collection> collection);
    void setPicture(Ref<Picture> picture);
    void setPointer(const PointerBlock& pointer);
    void setNull();
    void setUndefined();
    void setValue(const Value& value);

    // The process -------------------------------------------------------------------------------------------------
    void setOK(bool ok);
    bool ok() const;
    void setDocument(std::u16string_view path);
    void setError(int code) { error = int16_t(code); }
    bool interrupted() const { return host.interrupted(); }  // poll in every long loop; end with OK 0 when true
    void notServed();  // this form of the command is not served: OK 0, undefined, 4003, named once
};

using CommandFunction = void (*)(CommandCall& call);

struct CommandRow {
    int id;
    CommandFunction run;
};

CommandFunction FindCommand(int id);  // the action of a number; null = not served

}  // namespace zrhost

#endif
