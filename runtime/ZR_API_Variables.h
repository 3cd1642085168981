// A variable of the interpreter: a named value whose kind is fixed when it is made. Variables live by value in the list
// of their scope (locals of a frame, process and interprocess variables of a context), so a pointer to one is good only
// until the list grows. Arrays hold whole variables of the element kind; elements are [1..count].
// Setters on the wrong kind do nothing, getters answer the neutral value. One thread at a time.
#ifndef ZR_API_VARIABLES_H
#define ZR_API_VARIABLES_H

#include "core/ZR_API_Date.h"
#include "core/ZR_API_Handle.h"
#include "core/ZR_API_Picture.h"
#include "core/ZR_API_Text.h"
#include "plugin/ZR_HostInterface.h"

struct ZR_Executer_Token;

enum ZR_EXE_VariableKind : int {  // the host's numbers
    ZR_EXE_Real = 1,
    ZR_EXE_Date = 4,
    ZR_EXE_Undefined = 5,
    ZR_EXE_Boolean = 6,
    ZR_EXE_Integer = 8,
    ZR_EXE_Longint = 9,
    ZR_EXE_Picture = 10,
    ZR_EXE_Time = 11,
    ZR_EXE_ArrayReal = 14,
    ZR_EXE_ArrayInteger = 15,
    ZR_EXE_ArrayLongint = 16,
    ZR_EXE_ArrayDate = 17,
    ZR_EXE_ArrayPicture = 19,
    ZR_EXE_ArrayPointer = 20,
    ZR_EXE_ArrayBoolean = 22,
    ZR_EXE_Pointer = 23,
    ZR_EXE_Blob = 30,
    ZR_EXE_Text = 33,
    ZR_EXE_ArrayText = 34,
    ZR_EXE_Object = 38,
    ZR_EXE_Collection = 42,
    ZR_EXE_Null = 255  // made only by assigning Null to a new variable
};

enum { ZR_SCOPE_LOCAL = 1, ZR_SCOPE_PROCESS = 2, ZR_SCOPE_INTERPROCESS = 3 };
// value of a pointer to a variable: below 0 the scope, above 0 the reference of the method that made it
enum { ZR_POINTER_PROCESS = -1, ZR_POINTER_INTERPROCESS = -2, ZR_POINTER_HOST = -3 };

constexpr bool zrExe_IsArrayKind(int kind) {
    return (kind >= ZR_EXE_ArrayReal && kind <= ZR_EXE_ArrayDate) || kind == ZR_EXE_ArrayPicture ||
           kind == ZR_EXE_ArrayPointer || kind == ZR_EXE_ArrayBoolean || kind == ZR_EXE_ArrayText;
}

union ZR_VariableValue {
    long integer;  // boolean 1 or 0, integer, longint, time in seconds, pointer scope or table and field
    double real;
    short date[4];  // day, month, year
};

struct ZR_Executer_Variable {
    ZR_VariableValue value;
    void* objectRef;      // kind 38; one counted reference while set
    void* collectionRef;  // kind 42; one counted reference while set
    ZR_EXE_VariableKind kind;
    ZR_Text name;        // without $ or <>; parameters: their decimal number
    ZR_Text text;        // text value; a pointer's target name
    ZR_Handle elements;  // of ZR_Executer_Variable
    ZR_Handle blob;      // bytes
    ZR_Picture picture;

    void Create(ZR_EXE_VariableKind kind);
    void Create(ZR_EXE_VariableKind kind, ZR_Text* name);
    void Create(ZR_Executer_Variable* source, ZR_Text* name);  // deep copy; null name = the source's
    void Create(ZR_Text* name, ZR_Executer_Token* value);      // a parameter: the kind follows the value
    void Dispose();

    void SetNumber(double number);  // integer kinds wrap at 32 bits
    void SetBoolean(bool flag);
    void SetDate(ZR_Date* date);
    void SetTime(long seconds);
    void SetObjectRef(void* object);          // adds a reference. Required: the old one is not released.
    void SetCollectionRef(void* collection);  // the same
    void SetEmpty();                          // value, elements and references; text, blob and picture stay

    double GetNumber();
    long GetTime();
    bool GetBoolean();
    void GetDate(ZR_Date* date);
    bool PointerToTable();  // true for a nil pointer as well
    bool PointerToField();
    bool IsPointerNil();
    long GetTable();  // 0 for a pointer to a field
    long GetField();
    long GetStackIDFromPointerToLocalVariable();
    bool isNull();  // an object or collection without reference

    bool IsArray() { return zrExe_IsArrayKind(kind); }
    ZR_EXE_VariableKind GetVariableTypeFromArrayType();  // 5 = no array
    bool ResizeArray(long n);                            // false = not enough memory, nothing changed
    bool InsertArrayElements(long position, long n);     // before element position [1..count]; false as above
    void DeleteArrayElements(long position, long n);
    ZR_Executer_Variable* GetVariablePtrFromArrayByIndex(long index);  // [1..count]; null outside
    double Sum();

    PA_Variable CreatePAVariable(bool duplicateObject);  // handed over
    bool SetPAVariable(PA_Variable* host);               // host kind already unified; false = not taken, unchanged
    void ToPAVariable(PA_Variable* host);                // into the host's record, then to the host under the name
};

// Lists of variables. Names compare without regard to ASCII case.
ZR_Executer_Variable* zrExe_FindVariableByName(ZR_Handle* list, ZR_Text* name);  // null = none
bool zrExe_DeleteVariableByName(ZR_Handle* list, ZR_Text* name);
ZR_Executer_Variable* zrExe_FindVariableByNameAndCreate(ZR_Handle* list, ZR_Text* name, ZR_EXE_VariableKind kind);
void zrExe_DisposeVariables(ZR_Handle* list);

#endif
