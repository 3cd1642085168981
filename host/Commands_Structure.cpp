// Commands by number: Structure Access. The structure of this host is empty: it has no table, and says so.
#include "host/CommandCall.h"

namespace zrhost {
namespace {

// 254 Get last table number, 255 Get last field number(table or pointer)
void NoLastNumber(CommandCall& call) { call.setLongint(0); }

// 252 Table(number or pointer): the number of a pointer, 0 for a number
void Table(CommandCall& call) {
    const PointerBlock* pointer = call.pointer(1);
    call.setLongint(pointer && !pointer->fIsVariable ? pointer->fTable : 0);
}

// 253 Field(table; number) | (pointer): the number of a pointer, 0 for numbers
void Field(CommandCall& call) {
    const PointerBlock* pointer = call.pointer(1);
    call.setLongint(pointer && !pointer->fIsVariable ? pointer->fField : 0);
}

// 256 Table name(table or pointer), 257 Field name(table; field) | (pointer): empty
void NoName(CommandCall& call) { call.setText(u""); }

// 258 GET FIELD PROPERTIES(table; field; type; [length]; [indexed]; [unique]; [invisible]) | (pointer; type; ...)
void GetFieldProperties(CommandCall& call) {
    const int type = call.kind(1) == eVK_Pointer ? 2 : 3;
    call.assignLongint(type, 0);
    if (call.has(type + 1)) call.assignLongint(type + 1, 0);
    for (int i = type + 2; i <= type + 4 && call.has(i); ++i) call.assignBoolean(i, false);
}

// 999 Is table number valid(table), 1000 Is field number valid(table; field)
void NotValid(CommandCall& call) { call.setBoolean(false); }

// 964 Is field value Null(field)
void IsFieldValueNull(CommandCall& call) { call.setBoolean(true); }

constexpr CommandRow kRows[] = {
    {252, Table},    {253, Field},     {254, NoLastNumber},       {255, NoLastNumber},
    {256, NoName},   {257, NoName},    {258, GetFieldProperties}, {964, IsFieldValueNull},
    {999, NotValid}, {1000, NotValid},
};

}  // namespace

std::span<const CommandRow> commandsStructure() { return kRows; }

}  // namespace zrhost
