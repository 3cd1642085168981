// The published interface between the module and its host: the records that both sides read and write,
// the kinds of values, and the table of selectors with what each call carries.
//
// The host gives the module one function, Call4D(selector, block). Every request is an EngineBlock on the caller's
// stack. The caller clears fError and the fields that the selector's row names as "in", makes the call, and reads the
// fields named as "out". A selector that a host does not serve leaves the block alone and sets fError to
// ZR_ERR_UNKNOWN_SELECTOR.
//
// Text is UTF-16 in machine order, terminated by 0 where a length is not given. Handles are addresses of a pointer to
// the bytes: *handle is the data, and stays put while the handle is locked or not resized.
// This header stands alone: plain C++ with fixed widths, nothing of the library or of a host.
#ifndef ZR_HOST_INTERFACE_H
#define ZR_HOST_INTERFACE_H

#include <cstddef>
#include <cstdint>

// Values -----------------------------------------------------------------------------------------------------------

typedef unsigned short PA_Unichar;  // one UTF-16 code unit
typedef char** PA_Handle;           // *handle = the bytes; owned by the host; null = none
typedef void* PA_ObjectRef;         // counted by the host; null = no object
typedef void* PA_CollectionRef;
typedef void* PA_Picture;  // the host's picture; null = empty

enum PA_VariableKind : int {
    eVK_Real = 1,
    eVK_Date = 4,
    eVK_Undefined = 5,
    eVK_Boolean = 6,
    eVK_Integer = 8,
    eVK_Longint = 9,
    eVK_Picture = 10,
    eVK_Time = 11,
    eVK_ArrayOfArray = 13,
    eVK_ArrayReal = 14,
    eVK_ArrayInteger = 15,
    eVK_ArrayLongint = 16,
    eVK_ArrayDate = 17,
    eVK_ArrayPicture = 19,
    eVK_ArrayPointer = 20,
    eVK_ArrayBoolean = 22,
    eVK_Pointer = 23,
    eVK_Blob = 30,
    eVK_ArrayBlob = 31,
    eVK_ArrayTime = 32,
    eVK_Text = 33,
    eVK_ArrayText = 34,
    eVK_Object = 38,
    eVK_ArrayObject = 39,
    eVK_Collection = 42,
    eVK_Null = 255,
    // Older kinds that UnifyVarKind folds: 0, 2, 24 into 33; 18, 21 into 34.
    eVK_OldString = 0,
    eVK_OldText = 2,
    eVK_OldArrayText = 18,
    eVK_OldArrayString = 21,
    eVK_OldUnicode = 24,
    // Kind 0 doubles as an operator in a parameter list: filler 1, the code in the first byte of the value.
    eVK_Operator = 0
};

// Charsets of ConvertCharset.
enum PA_4DCharSet : int {
    eCS_UTF16 = 2,  // machine order
    eCS_UTF32 = 4,  // machine order
    eCS_UTF8 = 7,
    eCS_System = 100  // the bytes that the system's own calls take: UTF-8 on Linux
};

#pragma pack(push, 1)

struct PA_Unistring {     // 20 bytes; made and ended by the host
    int32_t fLength;      // UTF-16 units, without the terminator
    PA_Unichar* fString;  // terminated; owned by the record; null = empty
    void* fReserved;      // the host's
};

struct PA_Date {
    int16_t fDay, fMonth, fYear;
};

struct PA_ArrayValue {  // arrays and BLOBs, offsets 2, 6 and 14 of the variable
    int32_t fSize;      // elements 1..n (element 0 exists besides); BLOB: bytes
    PA_Handle fData;    // element 0 first; BLOB: the bytes; null = none
    int16_t fCurrent;   // arrays: the current element
};

struct PA_TableField {
    int16_t fTable, fField;
};

struct PA_Variable {  // 260 bytes
    uint8_t fType;    // PA_VariableKind
    uint8_t fFiller;  // cleared; 1 in a table or field reference and in an operator
    union {
        double fReal;
        PA_Date fDate;
        uint8_t fBoolean;
        int32_t fLongint;  // also integer and time
        PA_Picture fPicture;
        PA_Unistring fText;
        PA_ObjectRef fObject;
        PA_CollectionRef fCollection;
        PA_Handle fPointer;    // a PointerBlock of 42 bytes
        PA_ArrayValue fArray;  // arrays and BLOBs
        PA_TableField fTableField;
        uint8_t fOperator;
        uint8_t fBytes[258];
    } uValue;
};

struct PointerBlock {     // 42 bytes, behind a variable of kind 23
    uint8_t fIsVariable;  // 1 = pointer to a variable
    uint8_t fFiller;
    uint16_t fField;    // 0 = none
    uint16_t fTable;    // 0 = none
    uint16_t fElement;  // array element, 0 = the variable itself
    uint8_t fScope;     // variables: 1 process, 2 interprocess
    uint8_t fReserved[25];
    uint64_t fName;  // variables: the host's number of the name
};

struct PA_Rect {  // 8 bytes; pixels, y down
    int16_t fTop, fLeft, fBottom, fRight;
};

struct PA_PluginProperties {  // 80 bytes; parameter 2 of an area's event
    PA_Rect fArea;            // the area in its window
    void* fContext;           // a CGContextRef to draw on; borrowed; null = none
    PA_Unistring fName;       // the name given to the area; borrowed
    int32_t fWindow;          // window number; 0 = none
    uint8_t fReserved[40];
};

struct ZR_StartupRecord {   // parameter of FourDPackex with selector -1 or -200
    uint16_t fHostVersion;  // in; 0x1800 reads "18.0"
    uint8_t fReserved1[18];
    uint32_t fInterfaceVersion;                                // out; 5120
    void (*fCall4D)(int selector, struct EngineBlock* block);  // in
};

#pragma pack(pop)

struct EngineBlock {
    PA_Handle fHandle;
    int64_t fParam1, fParam2, fParam3, fParam4;  // numbers, or addresses as integers
    int64_t fLength1, fLength2;                  // lengths of what fParam1 and fParam2 address
    double fReal;
    int32_t fFlags;
    int16_t fError;         // 0 = no error
    PA_Unichar fName[256];  // 255 units and a terminator
    PA_Unichar fText[256];
};

typedef void (*ZR_Call4D)(int selector, EngineBlock* block);

static_assert(sizeof(PA_Unistring) == 20 && sizeof(PA_Variable) == 260 && sizeof(PointerBlock) == 42,
              "published sizes");
static_assert(offsetof(PA_Variable, uValue) == 2 && sizeof(PA_ArrayValue) == 14, "published offsets");
static_assert(offsetof(PA_ArrayValue, fData) == 4 && offsetof(PA_ArrayValue, fCurrent) == 12, "published offsets");
static_assert(offsetof(PointerBlock, fField) == 2 && offsetof(PointerBlock, fTable) == 4, "published offsets");
static_assert(offsetof(ZR_StartupRecord, fInterfaceVersion) == 20 && offsetof(ZR_StartupRecord, fCall4D) == 24,
              "published offsets");
static_assert(sizeof(PA_Rect) == 8 && sizeof(PA_PluginProperties) == 80, "published sizes");
static_assert(sizeof(void*) == 8 && sizeof(long) == 8, "64-bit, LP64");

// Numbers ----------------------------------------------------------------------------------------------------------

enum {  // fError
    ZR_ERR_NONE = 0,
    ZR_ERR_MEMORY = -108,     // the host could not allocate
    ZR_ERR_PARAMETER = 4001,  // a parameter is out of range or of a wrong kind
    ZR_ERR_UNKNOWN_SELECTOR = 4002,
    ZR_ERR_UNKNOWN_COMMAND = 4003,  // no such command, or not served by this host
    ZR_ERR_UNKNOWN_METHOD = 4004,
    ZR_ERR_WRONG_EVENT = 4005,        // PA_GetPluginProperties: not an event with a properties record
    ZR_ERR_NO_REPRESENTATION = 4006,  // a picture has no representation of that index
    ZR_ERR_NO_RECORD = 4007,          // no current record, no such table or field
    ZR_ERR_UNKNOWN_MEMBER = 4008,     // an object or collection has no such member function
    ZR_ERR_MEMBER_ARGUMENT = 4009,    // a member function was given a wrong argument
    ZR_ERR_NO_DIALOG = 4010,          // no such dialog, or no one to show it to
    ZR_ERR_NOT_NOW = 4011             // not possible on this process
};

enum {  // operation code of selector Handle, in fParam1
    ZR_HANDLE_NEW = 1,
    ZR_HANDLE_DISPOSE = 2,
    ZR_HANDLE_GET_SIZE = 3,
    ZR_HANDLE_SET_SIZE = 4,
    ZR_HANDLE_LOCK = 5,
    ZR_HANDLE_UNLOCK = 6,
    ZR_HANDLE_GET_STATE = 7,
    ZR_HANDLE_SET_STATE = 8
};
enum { ZR_USERDATA_TO = 4, ZR_USERDATA_FROM = 5 };  // operation code of selector UserData

enum {                            // fFlags of the answer to selector HostVersion
    ZR_HOST_COMPILED = 0x800000,  // the running process is compiled (bit 23)
    ZR_HOST_DATABASE_COMPILED = 0x8000000
};
inline constexpr int64_t ZR_HOST_VERSION_REQUEST = 0x46415354;  // third parameter of selector HostVersion
inline constexpr int64_t ZR_VIRTUAL_STRUCTURE_REQUEST = 911;    // fParam4 of the structure selectors: virtual numbers

// Operators in a parameter list: kind eVK_Operator, fFiller 1, the code in uValue.fOperator.
enum {
    ZR_OP_PLUS = 0,
    ZR_OP_MINUS = 1,
    ZR_OP_DIVIDE = 2,
    ZR_OP_TIMES = 3,
    ZR_OP_LESS = 4,
    ZR_OP_GREATER = 5,
    ZR_OP_EQUAL = 6,
    ZR_OP_UNEQUAL = 7,
    ZR_OP_AND = 8,
    ZR_OP_OR = 9,
    ZR_OP_LESS_EQUAL = 11,
    ZR_OP_GREATER_EQUAL = 12
};

// Bytes per element of an array kind, 0 for a kind that is no array.
constexpr int ZR_HostArrayElementSize(int kind) {
    switch (kind) {
        case eVK_ArrayReal:
        case eVK_ArrayPicture:
        case eVK_ArrayObject:
        case eVK_ArrayPointer: return 8;
        case eVK_ArrayInteger:
        case eVK_ArrayBoolean: return 2;
        case eVK_ArrayLongint:
        case eVK_ArrayTime: return 4;
        case eVK_ArrayDate: return 6;
        case eVK_ArrayBlob: return 12;  // 32-bit size, then the handle
        case eVK_ArrayText: return 20;  // a PA_Unistring
        default: return 0;
    }
}

// Selectors --------------------------------------------------------------------------------------------------------
// X(name, number, what the block carries in, what it carries out). Addresses travel as integers. "record" is the
// address of a PA_Variable or PA_Unistring. What a call hands out in a receiver is the caller's, who ends it with
// ClearVariable, DisposeUnistring and so on; what it hands in stays the caller's unless the row says "taken".
#define ZR_HOST_SELECTORS(X)                                                                                           \
    /* Memory */                                                                                                       \
    X(Handle, -434,                                                                                                    \
      "fParam1 operation; 1 new: fParam2 bytes; 2 dispose, 3 get size, 5 lock, 6 unlock, 7 get state: "                \
      "fHandle; 4 set size: fHandle, fParam2 bytes; 8 set state: fHandle, fParam2 state",                              \
      "1: fHandle, zeroed bytes, null and -108 if refused; 3: fParam2 bytes; 5: fParam2 address of the bytes; "        \
      "7: fParam2 lock count")                                                                                         \
    X(UserData, -424, "fParam1 operation; 5 from: fParam2 bytes, fParam3 size; 4 to: fHandle, fParam2 target or null", \
      "5: fHandle; 4: fParam3 size")                                                                                   \
    /* Strings */                                                                                                      \
    X(CreateUnistring, -2, "fParam1 record to fill, fParam2 units or null, fLength2 length", "the record")             \
    X(SetUnistring, -3, "fParam1 record, fParam2 units or null, fLength2 length", "the record, its old text freed")    \
    X(DisposeUnistring, -4, "fParam1 record", "the record's storage is freed; the record itself is not cleared")       \
    X(CompareUnibuffers, -5,                                                                                           \
      "fParam1 left units, fLength1 length, fParam2 right units, fLength2 length, "                                    \
      "fParam3 1 = case and diacritics count, fParam4 1 = @ on the right is a wildcard",                               \
      "fParam1 -1, 0 or 1")                                                                                            \
    X(ConvertCharset, -6,                                                                                              \
      "fParam1 source, fLength1 bytes, fParam3 charset, fParam2 target, fLength2 room in bytes, "                      \
      "fParam4 charset",                                                                                               \
      "fLength2 bytes written; ends at the last whole character that fits")                                            \
    X(LocaliseString, -7, "fName key, fParam1 record to fill, fFlags 1", "the record; the key itself if unknown")      \
    X(LocaliseStringByID, -8, "fParam2 list, fParam3 number, fParam1 record to fill, fFlags 1", "the record")          \
    /* Variables */                                                                                                    \
    X(GetProcessVariable, -19, "fName, fParam1 record to fill", "a copy of the value, kind 5 if there is none")        \
    X(SetProcessVariable, -20, "fName, fParam1 record, copied; fFlags 1 = made if missing",                            \
      "4001 if missing and not made")                                                                                  \
    X(GetInterprocessVariable, -125, "fName without <>, fParam1 record to fill", "as GetProcessVariable")              \
    X(SetInterprocessVariable, -126, "fName without <>, fParam1 record, fFlags", "as SetProcessVariable")              \
    X(ClearVariable, -21, "fParam1 record", "what the value owns is freed; the record becomes kind 5")                 \
    X(CopyVariable, -22, "fParam1 source record, fParam2 target record, overwritten", "a copy with its own storage")   \
    X(ResizeArray, -23, "fParam1 array record, fParam2 new count of elements 1..n",                                    \
      "the record; elements kept, new ones cleared")                                                                   \
    X(PointerByName, 513, "fName variable name", "fHandle: a PointerBlock; the caller disposes it")                    \
    X(PointerProperties, -24, "fHandle PointerBlock, fParam4 0 or 911",                                                \
      "fParam1 kind, fParam2 element, fParam3 field length")                                                           \
    X(GetPointerValue, -25, "fHandle PointerBlock, fParam1 record to fill", "a copy of the value")                     \
    X(SetPointerValue, -26, "fHandle PointerBlock, fParam1 record", "the value is copied in")                          \
    /* Objects and collections */                                                                                      \
    X(ObjectAddRef, -30, "fParam1 object", "one more reference")                                                       \
    X(ObjectRelease, -31, "fParam1 object", "one reference less; freed with the last")                                 \
    X(ObjectGetProperty, -32, "fParam1 object, fParam2 key record, fParam3 variable record to fill",                   \
      "a copy, or one more reference; kind 5 if there is none")                                                        \
    X(ObjectSetProperty, -33, "fParam1 object, fParam2 key record, fParam3 variable record",                           \
      "stored as a copy or one more reference")                                                                        \
    X(ObjectHasProperty, -34, "fParam1 object, fParam2 key record", "fParam2 1 or 0")                                  \
    X(CollectionCreate, -35, "", "fParam1 collection with one reference")                                              \
    X(CollectionAddRef, -36, "fParam1 collection", "one more reference")                                               \
    X(CollectionRelease, -37, "fParam1 collection", "one reference less; freed with the last")                         \
    X(CollectionLength, -38, "fParam1 collection", "fParam2 length")                                                   \
    X(CollectionGetElement, -39, "fParam1 collection, fParam2 index [0..length), fParam3 record to fill",              \
      "a copy, or one more reference")                                                                                 \
    X(CollectionSetElement, -40, "fParam1 collection, fParam2 index from 0, fParam3 record",                           \
      "stored; grows with Nulls")                                                                                      \
    /* Language */                                                                                                     \
    X(ExecuteCommand, -636,                                                                                            \
      "fParam1 table of parameter addresses, fParam2 result record of kind 5, fParam3 command, fParam4 count",         \
      "the result; parameters that the command fills are written in place; 4003 if not served")                        \
    X(ExecuteMember, -720,                                                                                             \
      "as ExecuteCommand with fParam3 unused; entry 1 the object or collection, entry 2 the name as text, "            \
      "then the arguments; fParam4 counts all entries",                                                                \
      "the result; 4008 no such function, 4009 wrong argument")                                                        \
    X(ExecuteMethod, -57,                                                                                              \
      "fParam1 units of a method name or line of code, fLength1, fParam2 table of parameter addresses, "               \
      "fParam3 count, fParam4 result record of kind 5",                                                                \
      "the result; 4004 if unknown")                                                                                   \
    X(ExecuteFunction, -58, "fParam1 units of an expression, fLength1, fParam4 result record of kind 5",               \
      "the result; 4004 if unreadable")                                                                                \
    X(MethodID, -59, "fName method name", "fParam1 number, 0 if unknown")                                              \
    X(MethodByID, -60, "fParam1 number, fParam2 table, fParam3 count, fParam4 result record", "as ExecuteMethod")      \
    X(CommandName, -61, "fParam1 command", "fName, empty if there is none")                                            \
    X(Tokenize, -62, "fParam1 units of code, fLength1", "fHandle the host's tokens, the caller's")                     \
    X(Detokenize, -63, "fHandle tokens, fParam1 string record of the caller", "it is filled; 4001 if unreadable")      \
    X(ByteSwapTokens, -64, "fHandle tokens", "their other byte order, in place; 4001 if unreadable")                   \
    X(ExecuteTokens, -65, "fHandle tokens", "every line has run; the first error; 4001 if unreadable")                 \
    X(HostVersion, -56, "fParam3 0x46415354",                                                                          \
      "fParam1 version, fFlags: bit 23 running compiled, bit 27 database compiled")                                    \
    /* Formats */                                                                                                      \
    X(FormatReal, -70, "fReal, fName format", "fText")                                                                 \
    X(FormatLongint, -71, "fParam1, fName format", "fText")                                                            \
    X(FormatDate, -72, "fParam1 day, fParam2 month, fParam3 year, fParam4 format number", "fText")                     \
    X(FormatTime, -73, "fParam1 seconds, fParam4 format number", "fText")                                              \
    X(FormatString, -74, "fParam1 units, fLength1, fName format", "fText")                                             \
    X(EvalDate, -75, "fName", "fParam1 day, fParam2 month, fParam3 year; all 0 if unreadable")                         \
    X(EvalTime, -76, "fName", "fParam1 seconds; 0 if unreadable")                                                      \
    /* Structure, records and selections, field values */                                                              \
    X(TableName, -80, "fParam1 table, fParam4 0 or 911", "fName")                                                      \
    X(FieldName, -81, "fParam1 table, fParam2 field, fParam4 0 or 911", "fName")                                       \
    X(FieldProperties, -82, "fParam1 table, fParam2 field, fParam4 0 or 911",                                          \
      "fParam3 type, -1 if unknown; fLength1 length; fFlags: 1 indexed, 2 unique, 4 invisible")                        \
    X(TableAndFieldNumbers, -83, "fName [Table]Field, fParam4 0 or 911", "fParam1 table, fParam2 field, 0 if unknown") \
    X(NextRecord, -84, "fParam1 table", "")                                                                            \
    X(FirstRecord, -85, "fParam1 table", "")                                                                           \
    X(GotoSelectedRecord, -86, "fParam1 table, fParam2 position from 1", "")                                           \
    X(SelectedRecordNumber, -87, "fParam1 table", "fParam2 position, 0 if none")                                       \
    X(RecordsInSelection, -88, "fParam1 table", "fParam2 count")                                                       \
    X(RecordNumber, -89, "fParam1 table", "fParam2 number, -1 if none")                                                \
    X(Relate, -90, "fParam1 table, fParam2 field, fParam3 1 one, 2 many, 3 one selection, 4 many selection", "")       \
    X(UseAutomaticRelations, -91, "fParam1 one, fParam2 many: 1 or 0", "")                                             \
    X(GetField, -92, "fParam1 table, fParam2 field, fParam3 record to fill", "a copy of the current record's value")   \
    X(SetField, -93, "fParam1 table, fParam2 field, fParam3 record",                                                   \
      "stored in the current record, which is not saved")                                                              \
    /* Pictures */                                                                                                     \
    X(CreatePicture, -100, "fHandle encoded bytes, copied", "fParam1 picture, null if empty")                          \
    X(DisposePicture, -101, "fParam1 picture", "")                                                                     \
    X(DuplicatePicture, -102, "fParam1 picture", "fParam2 picture")                                                    \
    X(GetPictureData, -103,                                                                                            \
      "fParam1 picture, fParam2 index from 1 (0 counts as 1), fHandle target or null, fParam3 type record to fill",    \
      "the target resized to the bytes; the type, such as image/png; 4006 if there is none")                           \
    X(NativePictureForScreen, -104, "fParam1 picture",                                                                 \
      "fParam2 a CGImageRef, null if it cannot be drawn; owned by the caller")                                         \
    X(NativePictureForPrinting, -105, "fParam1 picture",                                                               \
      "fParam2 a CGPDFDocumentRef, null if it cannot be drawn; owned by the caller")                                   \
    /* Processes */                                                                                                    \
    X(CurrentProcessNumber, -110, "", "fParam1 number from 1")                                                         \
    X(Yield, -111, "fFlags 1 = at once", "")                                                                           \
    X(RunInMainProcess, -112, "fParam1 void (*)(void*), fParam2 argument", "returns when the function has run")        \
    /* Dialogs */                                                                                                      \
    X(Alert, -120, "fParam1 units, fLength1", "")                                                                      \
    X(OpenDialog, -121,                                                                                                \
      "fParam1 table, fName form, fParam2 units of the title, fLength2, fParam3 window kind, fParam4 four 16-bit "     \
      "units left, top, right, bottom, fFlags 1 = centred",                                                            \
      "fHandle dialog; null and 4010 if refused")                                                                      \
    X(ModalDialog, -122, "fHandle dialog",                                                                             \
      "fParam1 0 = a variable was set, else an action (2 closed); fName the variable")                                 \
    X(CloseDialog, -123, "fHandle dialog", "")                                                                         \
    X(DialogUpdate, -124, "fHandle dialog, fParam1 1 begin, 0 end", "")                                                \
    X(DialogSet, -127, "fHandle dialog, fName variable, fParam1 record, fParam2 array element or -1", "")              \
    X(DialogGet, -128, "fHandle dialog, fName variable, fParam1 record to fill, fParam2 array element or -1",          \
      "a copy")                                                                                                        \
    X(DialogSetEnterable, -129, "fHandle dialog, fName variable, fParam1 1 or 0", "")                                  \
    X(DialogWindow, -130, "fHandle dialog", "fParam1 window number, 0 if none")                                        \
    X(WindowPtr, -131, "fParam1 window number", "fParam2 the system's window, null if none")                           \
    X(CustomizeDesignMode, -132, "fParam1 picture, taken, fParam2 1 = draw the frame", "")

enum ZR_HostSelector : int {
#define ZR_X(name, number, in, out) ZR_SEL_##name = number,
    ZR_HOST_SELECTORS(ZR_X)
#undef ZR_X
};

struct ZR_HostSelectorRow {
    const char* name;
    int number;
    const char* in;
    const char* out;
};
inline constexpr ZR_HostSelectorRow kHostSelectors[] = {  // the same table to walk through: tests, documentation
#define ZR_X(name, number, in, out) {#name, number, in, out},
    ZR_HOST_SELECTORS(ZR_X)
#undef ZR_X
};

#endif
