// The published interface against itself and against its documentation.
#include "plugin/ZR_HostInterface.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace {

using Cells = std::vector<std::string>;

std::string Trimmed(const std::string& text) {
    size_t first = text.find_first_not_of(" `"), last = text.find_last_not_of(" `");
    return first == std::string::npos ? "" : text.substr(first, last - first + 1);
}

std::string Unescaped(std::string text) {
    for (size_t at; (at = text.find("\\|")) != std::string::npos;) text.replace(at, 2, "\x01");
    return text;
}

// The rows of all tables of the page under a heading that begins so, each with its cells; all headings for "".
std::vector<Cells> Rows(const std::string& heading) {
    std::ifstream page(ZR_SOURCE_DIR "/docs/host-interface.md");
    EXPECT_TRUE(page.good());
    std::vector<Cells> rows;
    std::string line;
    bool inside = heading.empty(), inCode = false;
    size_t depth = 0;
    while (std::getline(page, line)) {
        if (line.rfind("```", 0) == 0) inCode = !inCode;
        if (inCode) continue;
        if (line[0] == '#') {
            size_t level = line.find_first_not_of('#');
            if (!heading.empty()) {
                if (line.compare(level + 1, heading.size(), heading) == 0) {
                    inside = true;
                    depth = level;
                } else if (inside && level <= depth) {
                    inside = false;
                }
            }
        }
        if (!inside || line[0] != '|') continue;
        Cells cells;
        std::istringstream parts(Unescaped(line).substr(1));
        for (std::string cell; std::getline(parts, cell, '|');) cells.push_back(Trimmed(cell));
        rows.push_back(cells);
    }
    return rows;
}

bool IsNumber(const std::string& text) {
    size_t first = text[0] == '-' ? 1 : 0;
    return text.size() > first && text.find_first_not_of("0123456789", first) == std::string::npos;
}

// Every pair of a name and the number in the next cell, anywhere in the tables under the heading.
std::map<std::string, std::set<int>> NamedNumbers(const std::string& heading) {
    std::map<std::string, std::set<int>> found;
    for (const Cells& cells : Rows(heading))
        for (size_t i = 0; i + 1 < cells.size(); i++)
            if (!IsNumber(cells[i]) && IsNumber(cells[i + 1])) found[cells[i]].insert(std::stoi(cells[i + 1]));
    return found;
}

struct Named {
    const char* name;
    int number;
};
#define ZR_NAMED(name) \
    { #name, name }

}  // namespace

TEST(HostInterface, Selectors_AllTogether_AreUniqueByNameAndNumber) {
    std::set<int> numbers;
    std::set<std::string> names;
    for (const auto& row : kHostSelectors) {
        EXPECT_TRUE(numbers.insert(row.number).second) << row.name << " " << row.number;
        EXPECT_TRUE(names.insert(row.name).second) << row.name;
        EXPECT_NE(row.number, 0) << row.name;
        EXPECT_FALSE(std::string(row.in).empty() && std::string(row.out).empty()) << row.name;
    }
}

TEST(HostInterface, Selectors_ThatAreGiven_StayAsGiven) {
    static const Named given[] = {{"Handle", -434},
                                  {"ExecuteCommand", -636},
                                  {"ExecuteMember", -720},
                                  {"UserData", -424},
                                  {"GetProcessVariable", -19},
                                  {"SetProcessVariable", -20},
                                  {"GetInterprocessVariable", -125},
                                  {"SetInterprocessVariable", -126},
                                  {"HostVersion", -56},
                                  {"PointerByName", 513}};
    for (const Named& row : given) {
        bool found = false;
        for (const auto& selector : kHostSelectors)
            if (selector.name == std::string(row.name)) {
                found = true;
                EXPECT_EQ(selector.number, row.number) << row.name;
            }
        EXPECT_TRUE(found) << row.name;
    }
}

TEST(HostInterface, Page_SelectorTables_HoldEachSelectorOnceAndNothingElse) {
    std::map<std::string, int> documented;
    for (const Cells& cells : Rows("7. Requests")) {
        // Name, Selector, In, Out. The operations of Handle and the field types stand in tables of their own.
        if (cells.size() < 4 || !IsNumber(cells[1]) || cells[0].rfind("ZR_HANDLE_", 0) == 0 || IsNumber(cells[0]))
            continue;
        if (cells[0].find(' ') != std::string::npos) continue;
        EXPECT_TRUE(documented.emplace(cells[0], std::stoi(cells[1])).second) << cells[0] << " twice";
        EXPECT_FALSE(cells[2].empty() && cells[3].empty()) << cells[0];
    }
    EXPECT_EQ(documented.size(), std::size(kHostSelectors));
    for (const auto& row : kHostSelectors) {
        auto found = documented.find(row.name);
        ASSERT_NE(found, documented.end()) << row.name << " is not documented";
        EXPECT_EQ(found->second, row.number) << row.name;
    }
}

// Each field that a row of the header reads or writes is named by the page, in the column where it belongs.
TEST(HostInterface, Page_SelectorTables_NameTheFieldsOfTheHeader) {
    static const char* const kFields[] = {"fHandle",  "fParam1", "fParam2", "fParam3", "fParam4", "fLength1",
                                          "fLength2", "fReal",   "fFlags",  "fName",   "fText"};
    for (const Cells& cells : Rows("7. Requests")) {
        for (const auto& row : kHostSelectors) {
            if (cells[0] != row.name || cells.size() < 4 || row.number == ZR_SEL_Handle) continue;
            for (const char* field : kFields) {
                if (std::string(row.out).find(field) != std::string::npos) {
                    EXPECT_NE(cells[3].find(field), std::string::npos) << row.name << " out " << field;
                }
                // A pair such as "left units, fLength1 length" may be told by the rule of lengths alone.
                if (std::string(row.in).find(field) != std::string::npos) {
                    EXPECT_NE(cells[2].find(field), std::string::npos) << row.name << " in " << field;
                }
            }
        }
    }
}

TEST(HostInterface, Page_NumberTables_AgreeWithTheHeader) {
    static const Named rows[] = {
        ZR_NAMED(eVK_Real),
        ZR_NAMED(eVK_Date),
        ZR_NAMED(eVK_Undefined),
        ZR_NAMED(eVK_Boolean),
        ZR_NAMED(eVK_Integer),
        ZR_NAMED(eVK_Longint),
        ZR_NAMED(eVK_Picture),
        ZR_NAMED(eVK_Time),
        ZR_NAMED(eVK_ArrayOfArray),
        ZR_NAMED(eVK_ArrayReal),
        ZR_NAMED(eVK_ArrayInteger),
        ZR_NAMED(eVK_ArrayLongint),
        ZR_NAMED(eVK_ArrayDate),
        ZR_NAMED(eVK_ArrayPicture),
        ZR_NAMED(eVK_ArrayPointer),
        ZR_NAMED(eVK_ArrayBoolean),
        ZR_NAMED(eVK_Pointer),
        ZR_NAMED(eVK_Blob),
        ZR_NAMED(eVK_ArrayBlob),
        ZR_NAMED(eVK_ArrayTime),
        ZR_NAMED(eVK_Text),
        ZR_NAMED(eVK_ArrayText),
        ZR_NAMED(eVK_Object),
        ZR_NAMED(eVK_ArrayObject),
        ZR_NAMED(eVK_Collection),
        ZR_NAMED(eVK_Null),
        ZR_NAMED(eCS_UTF16),
        ZR_NAMED(eCS_UTF32),
        ZR_NAMED(eCS_UTF8),
        ZR_NAMED(eCS_System),
        ZR_NAMED(ZR_OP_PLUS),
        ZR_NAMED(ZR_OP_MINUS),
        ZR_NAMED(ZR_OP_DIVIDE),
        ZR_NAMED(ZR_OP_TIMES),
        ZR_NAMED(ZR_OP_LESS),
        ZR_NAMED(ZR_OP_GREATER),
        ZR_NAMED(ZR_OP_EQUAL),
        ZR_NAMED(ZR_OP_UNEQUAL),
        ZR_NAMED(ZR_OP_AND),
        ZR_NAMED(ZR_OP_OR),
        ZR_NAMED(ZR_OP_LESS_EQUAL),
        ZR_NAMED(ZR_OP_GREATER_EQUAL),
        ZR_NAMED(ZR_ERR_NONE),
        ZR_NAMED(ZR_ERR_MEMORY),
        ZR_NAMED(ZR_ERR_PARAMETER),
        ZR_NAMED(ZR_ERR_UNKNOWN_SELECTOR),
        ZR_NAMED(ZR_ERR_UNKNOWN_COMMAND),
        ZR_NAMED(ZR_ERR_UNKNOWN_METHOD),
        ZR_NAMED(ZR_ERR_WRONG_EVENT),
        ZR_NAMED(ZR_ERR_NO_REPRESENTATION),
        ZR_NAMED(ZR_ERR_NO_RECORD),
        ZR_NAMED(ZR_ERR_UNKNOWN_MEMBER),
        ZR_NAMED(ZR_ERR_MEMBER_ARGUMENT),
        ZR_NAMED(ZR_ERR_NO_DIALOG),
        ZR_NAMED(ZR_ERR_NOT_NOW),
        ZR_NAMED(ZR_HANDLE_NEW),
        ZR_NAMED(ZR_HANDLE_DISPOSE),
        ZR_NAMED(ZR_HANDLE_GET_SIZE),
        ZR_NAMED(ZR_HANDLE_SET_SIZE),
        ZR_NAMED(ZR_HANDLE_LOCK),
        ZR_NAMED(ZR_HANDLE_UNLOCK),
        ZR_NAMED(ZR_HANDLE_GET_STATE),
        ZR_NAMED(ZR_HANDLE_SET_STATE),
    };
    auto documented = NamedNumbers("");
    for (const Named& row : rows) EXPECT_EQ(documented[row.name], std::set<int>{row.number}) << row.name;
}

TEST(HostInterface, Page_RecordTables_AgreeWithTheOffsets) {
    struct Field {
        const char *heading, *name;
        size_t offset, bytes;
    };
#define ZR_FIELD(heading, record, field) \
    { heading, #field, offsetof(record, field), sizeof(record::field) }
    static const Field fields[] = {
        ZR_FIELD("Start-up record", ZR_StartupRecord, fHostVersion),
        ZR_FIELD("Start-up record", ZR_StartupRecord, fReserved1),
        ZR_FIELD("Start-up record", ZR_StartupRecord, fInterfaceVersion),
        ZR_FIELD("Start-up record", ZR_StartupRecord, fCall4D),
        ZR_FIELD("Areas", PA_PluginProperties, fArea),
        ZR_FIELD("Areas", PA_PluginProperties, fContext),
        ZR_FIELD("Areas", PA_PluginProperties, fName),
        ZR_FIELD("Areas", PA_PluginProperties, fWindow),
        ZR_FIELD("Areas", PA_PluginProperties, fReserved),
        ZR_FIELD("2. The door", EngineBlock, fHandle),
        ZR_FIELD("2. The door", EngineBlock, fParam1),
        ZR_FIELD("2. The door", EngineBlock, fParam2),
        ZR_FIELD("2. The door", EngineBlock, fParam3),
        ZR_FIELD("2. The door", EngineBlock, fParam4),
        ZR_FIELD("2. The door", EngineBlock, fLength1),
        ZR_FIELD("2. The door", EngineBlock, fLength2),
        ZR_FIELD("2. The door", EngineBlock, fReal),
        ZR_FIELD("2. The door", EngineBlock, fFlags),
        ZR_FIELD("2. The door", EngineBlock, fError),
        ZR_FIELD("2. The door", EngineBlock, fName),
        ZR_FIELD("2. The door", EngineBlock, fText),
        ZR_FIELD("`PA_Variable`", PA_Variable, fType),
        ZR_FIELD("`PA_Variable`", PA_Variable, fFiller),
        ZR_FIELD("`PA_Variable`", PA_Variable, uValue),
        ZR_FIELD("`PA_Unistring`", PA_Unistring, fLength),
        ZR_FIELD("`PA_Unistring`", PA_Unistring, fString),
        ZR_FIELD("`PA_Unistring`", PA_Unistring, fReserved),
        ZR_FIELD("`PointerBlock`", PointerBlock, fIsVariable),
        ZR_FIELD("`PointerBlock`", PointerBlock, fFiller),
        ZR_FIELD("`PointerBlock`", PointerBlock, fField),
        ZR_FIELD("`PointerBlock`", PointerBlock, fTable),
        ZR_FIELD("`PointerBlock`", PointerBlock, fElement),
        ZR_FIELD("`PointerBlock`", PointerBlock, fScope),
        ZR_FIELD("`PointerBlock`", PointerBlock, fReserved),
        ZR_FIELD("`PointerBlock`", PointerBlock, fName),
        ZR_FIELD("`PA_Rect`", PA_Rect, fTop),
        ZR_FIELD("`PA_Rect`", PA_Rect, fLeft),
        ZR_FIELD("`PA_Rect`", PA_Rect, fBottom),
        ZR_FIELD("`PA_Rect`", PA_Rect, fRight),
    };
#undef ZR_FIELD
    std::map<std::string, size_t> rowsOf, fieldsOf;
    for (const Field& field : fields) {
        fieldsOf[field.heading]++;
        bool found = false;
        rowsOf[field.heading] = 0;
        for (const Cells& cells : Rows(field.heading)) {
            if (cells.size() < 3 || !IsNumber(cells[0]) || !IsNumber(cells[1])) continue;
            rowsOf[field.heading]++;
            if (cells[2] != field.name) continue;
            found = true;
            EXPECT_EQ(cells[0], std::to_string(field.offset)) << field.heading << " " << field.name;
            EXPECT_EQ(cells[1], std::to_string(field.bytes)) << field.heading << " " << field.name;
        }
        EXPECT_TRUE(found) << field.heading << " " << field.name;
    }
    EXPECT_EQ(rowsOf, fieldsOf);
}

TEST(HostInterface, Page_ElementTable_AgreesWithTheSizes) {
    int checked = 0;
    for (const Cells& cells : Rows("Arrays")) {
        if (cells.size() < 3 || !IsNumber(cells[1])) continue;
        std::istringstream kinds(cells[0]);  // such as "15 integer, 22 Boolean"
        for (std::string word; kinds >> word;) {
            if (!IsNumber(word)) continue;
            EXPECT_EQ(ZR_HostArrayElementSize(std::stoi(word)), std::stoi(cells[1])) << word;
            checked++;
        }
    }
    int withElements = 0;
    for (int kind = 0; kind < 256; kind++) withElements += ZR_HostArrayElementSize(kind) > 0;
    EXPECT_EQ(checked, withElements);
}

TEST(HostInterface, Page_CommandTable_AgreesWithTheListOfCommands) {
    std::map<int, std::string> names;
    std::ifstream list(ZR_SOURCE_DIR "/host/data/commands.tsv");
    ASSERT_TRUE(list.good());
    for (std::string line; std::getline(list, line);) {
        std::istringstream parts(line);
        std::string number, name;
        std::getline(parts, number, '\t');
        std::getline(parts, name, '\t');
        if (IsNumber(number)) names[std::stoi(number)] = name;
    }
    static const int run[] = {10,  47,  159, 254,  255,  256,  257,  264,  266,  267,  336,  365,  401,  402,
                              403, 443, 476, 486,  487,  493,  494,  525,  526,  530,  531,  534,  535,  536,
                              538, 543, 640, 643,  678,  692,  722,  788,  861,  863,  865,  866,  868,  964,
                              976, 994, 999, 1000, 1009, 1017, 1080, 1217, 1218, 1219, 1224, 1225, 1228, 1471};
    std::vector<int> documented;
    for (const Cells& cells : Rows("8. Commands")) {
        if (!IsNumber(cells[0])) continue;
        documented.push_back(std::stoi(cells[0]));
        EXPECT_EQ(cells[1], names[documented.back()]) << cells[0];
    }
    EXPECT_EQ(documented, std::vector<int>(std::begin(run), std::end(run)));
}
