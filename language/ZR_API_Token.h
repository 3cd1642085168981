// One token: a lexical item of 4D code and, at run time, a value. A method is a flat list of tokens: a ZR_Handle whose
// element size is sizeof(ZR_Executer_Token), positions [1..count]. Tokens live by value and move when their list grows,
// so an address is good until the next append. Create assumes raw memory; Dispose ends what the token owns.
// A token belongs to one thread at a time.
#ifndef ZR_API_TOKEN_H
#define ZR_API_TOKEN_H

#include "core/ZR_API_Date.h"
#include "core/ZR_API_Handle.h"
#include "core/ZR_API_Picture.h"
#include "core/ZR_API_Text.h"
#include "plugin/ZR_HostInterface.h"

// Kinds: 32 bits in the record, 16 bits in a token blob and in a code run.
enum ZREXE_TOKEN : int {
    ZREXE_TOKEN_LINE = 1,               // in front of every line, also an empty one
    ZREXE_TOKEN_VARIABLE = 2,           // name; text: the name
    ZREXE_TOKEN_LOCAL = 3,              // $name; text: the name without the $
    ZREXE_TOKEN_INTERPROCESS = 4,       // <>name; text: the name without the <>
    ZREXE_TOKEN_ASSIGN = 5,             // :=
    ZREXE_TOKEN_NUMBER = 6,             // 12.5; value.real
    ZREXE_TOKEN_OPEN = 7,               // (
    ZREXE_TOKEN_CLOSE = 8,              // )
    ZREXE_TOKEN_FORMULA = 9,            // + - * / % \ ^; value.unit: the operator
    ZREXE_TOKEN_STRING = 10,            // "text"; text: escapes resolved
    ZREXE_TOKEN_COMMENT = 11,           // //text; text: what follows the slashes
    ZREXE_TOKEN_COMMAND = 12,           // command or keyword; value.integer: its number
    ZREXE_TOKEN_EMPTY_13 = 13,          // made by no code; a blob may carry it, and it has no text
    ZREXE_TOKEN_EMPTY_14 = 14,          // the same
    ZREXE_TOKEN_SEMICOLON = 15,         // ;
    ZREXE_TOKEN_DATE = 16,              // !1/2/2003!; value.date
    ZREXE_TOKEN_TIME = 17,              // ?12:00:00?; value.integer: seconds, readers take the low 32 bits
    ZREXE_TOKEN_BOOLEAN = 18,           // run time; value.integer: 1 or 0
    ZREXE_TOKEN_COMPARISON = 19,        // value.integer: see kZR_Comparisons
    ZREXE_TOKEN_LOGIC = 20,             // value.integer: 1 &, 2 |
    ZREXE_TOKEN_TABLE = 21,             // [Table]; value.integer: the number
    ZREXE_TOKEN_FIELD = 22,             // [Table]Field; value.integer: (table << 16) + field
    ZREXE_TOKEN_POINTER = 23,           // run time; see Pointers below
    ZREXE_TOKEN_ELEMENT_OPEN = 24,      // {
    ZREXE_TOKEN_ELEMENT_CLOSE = 25,     // }
    ZREXE_TOKEN_ARROW = 26,             // ->: makes or follows a pointer, by position
    ZREXE_TOKEN_RESERVED = 27,          // in no list; in a parameter form it stands for a variable token
    ZREXE_TOKEN_METHOD = 28,            // caption of a project method; text: its true name
    ZREXE_TOKEN_LONGINT = 29,           // 0xFF; value.integer
    ZREXE_TOKEN_BLOB = 30,              // run time; blob
    ZREXE_TOKEN_PICTURE = 31,           // run time; picture
    ZREXE_TOKEN_INDEX_OPEN = 32,        // [[: character of a text
    ZREXE_TOKEN_INDEX_CLOSE = 33,       // ]]
    ZREXE_TOKEN_OBJECT = 34,            // run time; objectRef
    ZREXE_TOKEN_COLLECTION = 35,        // run time; collectionRef
    ZREXE_TOKEN_MEMBER = 36,            // .name; text: the property
    ZREXE_TOKEN_MEMBER_CALL = 37,       // .name(; text: the member function; the ( is a token of its own behind it
    ZREXE_TOKEN_NULL = 38,              // run time; the host's Null
    ZREXE_TOKEN_PARAMETERS_BEGIN = 39,  // run time; around the evaluated parameters of a member function
    ZREXE_TOKEN_PARAMETERS_END = 40,    // the same, behind them
    ZREXE_TOKEN_OTHER = 999             // text: raw source; blanks between tokens; a failed conversion
};

enum : long {  // value of a comparison token
    ZREXE_COMPARISON_LESS_EQUAL = 1,
    ZREXE_COMPARISON_GREATER_EQUAL = 2,
    ZREXE_COMPARISON_EQUAL = 3,
    ZREXE_COMPARISON_UNEQUAL = 4,
    ZREXE_COMPARISON_LESS = 5,
    ZREXE_COMPARISON_GREATER = 6
};
enum : long { ZREXE_LOGIC_AND = 1, ZREXE_LOGIC_OR = 2 };  // value of a logic token

struct ZR_ComparisonRow {
    long value;        // of the token
    const char* text;  // source form
    short hostCode;    // ZR_OP_...
};
inline constexpr ZR_ComparisonRow kZR_Comparisons[] = {
    {ZREXE_COMPARISON_LESS_EQUAL, "<=", ZR_OP_LESS_EQUAL},
    {ZREXE_COMPARISON_GREATER_EQUAL, ">=", ZR_OP_GREATER_EQUAL},
    {ZREXE_COMPARISON_EQUAL, "=", ZR_OP_EQUAL},
    {ZREXE_COMPARISON_UNEQUAL, "#", ZR_OP_UNEQUAL},
    {ZREXE_COMPARISON_LESS, "<", ZR_OP_LESS},
    {ZREXE_COMPARISON_GREATER, ">", ZR_OP_GREATER},
};  // row N is value N; read by the tokeniser, the detokeniser and the host bridge

enum : long {  // value of a pointer to a variable; above 0 it names the frame of a local
    ZREXE_POINTER_HOST = -3,
    ZREXE_POINTER_INTERPROCESS = -2,
    ZREXE_POINTER_PROCESS = -1
};

// 64 bits, read by kind.
union ZR_TokenValue {
    long integer;
    double real;
    struct {
        short day, month, year;
    } date;
    unsigned short unit;  // low 16 bits
};
static_assert(sizeof(ZR_TokenValue) == 8, "64 bits");

// Pointers (kind 23): to a variable: text is the name, value.integer a ZREXE_POINTER_ scope or a frame above 0; to a
// table: no text, the number in the low 16 bits; to a field: no text, (first << 16) + second of SetPointerToField.
// Sharing: text, picture and blob are read from the last token of the parent chain, so that a shallow copy shares them.
// kind and value are always the token's own. A child must not outlive its parent; nothing counts this.
struct ZR_Executer_Token {
    ZREXE_TOKEN kind;
    ZR_Executer_Token* parent;  // whose storage this token reads; borrowed; null = its own
    ZR_Text text;               // owned
    ZR_Text nameCache;          // made by GetVariableName; owned
    ZR_TokenValue value;
    ZR_Picture picture;   // kind 31; owned
    ZR_Handle blob;       // kind 30; bytes; owned
    void* objectRef;      // kind 34; one reference while set; null = none
    void* collectionRef;  // kind 35; one reference while set; null = none

    // Life
    void Create(ZREXE_TOKEN tokenKind, ZR_Text* source);   // text copied, null = empty; value stays as it was
    void Create(ZR_Executer_Token* source, bool shallow);  // shallow: shares by parent; references +1 in both
    void Create(void* variable);                           // from a ZR_Executer_Variable; defined in runtime/
    void Create(PA_Variable* variable);                    // from a host value, which stays the caller's
    void Dispose();                                        // releases all but parent; kind and value stay

    // Re-creating: disposed first, whatever it held
    void CreateNumberLongint(long number);                 // kind 6, not 29
    void SetBoolean(bool truth);                           // kind 18
    void SetPointerToTable(long table);                    // kind 23
    void SetPointerToField(long first, long second);       // kind 23; called with table, field
    void SetPointerToVariable(ZR_Text* name, long scope);  // kind 23; name copied

    // Changing; nothing happens for another kind
    void SetNumber(double number);                       // kinds 6, 29
    void SetDate(ZR_Date* date);                         // kind 16
    void Add(long days);                                 // kind 16
    void SetObjectRef(void* object);                     // kind 34; takes a reference of its own
    void SetObjectRefNoIncrement(void* object);          // kind 34; the reference is handed over
    void SetCollectionRef(void* collection);             // kind 35; takes a reference of its own
    void SetCollectionRefNoIncrement(void* collection);  // kind 35; the reference is handed over
    void SetObjectProperty(ZR_Executer_Token* source);   // kind 34 with a text: sets the property text

    // Reading; the neutral value for another kind
    ZR_Text* GetText();           // of the chain's end; borrowed; never null
    ZR_Picture* GetPicture();     // of the chain's end; borrowed; never null
    ZR_Handle* GetBlob();         // of the chain's end; borrowed; never null
    double GetNumber();           // kinds 6, 29; 0.0
    bool GetBoolean();            // kind 18: value is exactly 1
    long GetComparison();         // kind 19; 0
    long GetOperation();          // kind 20; 0
    unsigned short GetFormula();  // kind 9: the operator; 0
    long GetTable();              // kind 21 all; 22 bits 16 to 31; 23 low 16 bits; 0
    long GetField();              // kind 22 low 16 bits; 23 bits 16 to 31; 0
    void GetDate(ZR_Date* out);   // kind 16; 0, 0, 0
    long GetPictureSize();        // bytes; 0 if a token on the chain is of another kind
    ZR_Text* GetVariableName();   // kinds 2 to 4 with prefix; borrowed until the next call
    bool PointerToTable();
    bool PointerToField();

    // Host bridge
    PA_Variable ToPAVariable();  // caller disposes, save references: passed uncounted
};

// A project method of the host.
struct ZR_Executer_4DMethod {
    ZR_Text name;  // owned
    long id;

    void Create(ZR_Text* methodName, long methodID);  // name copied
    void Dispose();
};

void zrExe_Dispose4DMethods(ZR_Handle* methods);                                    // the entries, then the list
ZR_Executer_4DMethod* zrExe_Find4DMethodByName(ZR_Handle* methods, ZR_Text* name);  // any ASCII case; null = none
ZR_Executer_4DMethod* zrExe_Find4DMethodByID(ZR_Handle* methods, long id);          // null = none

#endif
