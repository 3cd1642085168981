// The bridge to the host: every operation that the library needs of it, as functions over the one call gCall4D.
//
// Errors. A function that calls the host leaves the host's error of this thread in sErrorCode, and answers the neutral
// value (0, null, empty text, an undefined variable) if the host refuses or does not know the call. Functions that only
// touch a record leave sErrorCode alone. Nothing is reported in words.
// Variables go in by address and come out by value. Null, a variable of another kind and an index outside are harmless:
// a reader answers the neutral value, a writer does nothing.
// Ownership. A pointer is borrowed for the call, a result by value is handed over and ends with PA_ClearVariable,
// PA_DisposeUnistring, PA_DisposePicture or PA_DisposeHandle. Parameters taken by value as a PA_Unistring are handed
// over as well. Exceptions stand at the function.
// Names are cut at 255 units without a word; null is the empty name. Buffers for names and formatted text hold 256.
#ifndef ZR_API_BRIDGE_H
#define ZR_API_BRIDGE_H

#include "plugin/ZR_API_Plugin.h"
#include "plugin/ZR_HostInterface.h"

struct ZR_Text;

typedef PA_Handle PA_Dial4D;  // an open dialog; null = none

// Errors and version -----------------------------------------------------------------------------------------------

extern constinit thread_local short sErrorCode;  // host error of the last call on this thread; 0 = none

int PA_GetLastError();             // sErrorCode
unsigned int PA_GetVersion();      // Current4DVersion, without a call
int PA_Get4DVersion();             // asks the host
bool PA_IsCompiled(bool running);  // true: the running code is compiled; false: the database is

// Host memory ------------------------------------------------------------------------------------------------------

PA_Handle PA_NewHandle(long size);                   // zeroed bytes; handed over; null = refused
void PA_DisposeHandle(PA_Handle handle);             // null: no call, no error
long PA_GetHandleSize(PA_Handle handle);             // bytes
bool PA_SetHandleSize(PA_Handle handle, long size);  // false = refused, the bytes are as they were
char* PA_LockHandle(PA_Handle handle);               // the bytes; stable until unlocked
void PA_UnlockHandle(PA_Handle handle);
long PA_GetHandleState(PA_Handle handle);  // locks that are held
void PA_SetHandleState(PA_Handle handle, long state);
void PA_MoveBlock(const void* source, void* target, long length);  // bytes; overlaps are safe; null or below 1: nothing

PA_Handle FromUserData(const void* bytes, int size);  // a new handle with these bytes; handed over; null gives null
int ToUserData(PA_Handle handle, void* bytes);        // the size; copies unless bytes is null; null handle gives 0

// Unicode strings --------------------------------------------------------------------------------------------------

PA_Unistring PA_CreateUnistring(const PA_Unichar* text);                          // terminated; null = empty
PA_Unistring PA_CreateUnistringWithLength(const PA_Unichar* units, long length);  // units may hold 0
void PA_SetUnistring(PA_Unistring* target, const PA_Unichar* text);               // the old text is freed
void PA_SetUnistringWithLength(PA_Unistring* target, const PA_Unichar* units, long length);
void PA_DisposeUnistring(PA_Unistring* string);     // all 20 bytes of the record become 0
long PA_GetUnicharsLength(const PA_Unichar* text);  // units before the terminator; null gives 0

// -1, 0, 1 by the host's collation; 0 after an error.
// diacritic: case and accents count. wildcard: @ in the right text stands for anything.
int PA_CompareUniBuffers(const PA_Unichar* left, long leftLength, const PA_Unichar* right, long rightLength,
                         bool diacritic, bool wildcard);

// Bytes written, [0..targetBytes]; ends at the last whole character that fits.
long PA_ConvertCharsetToCharset(const void* source, long sourceBytes, int sourceCharset, void* target, long targetBytes,
                                int targetCharset);

void PA_LocaliseString(const PA_Unichar* key, PA_Unistring* result, int flags);  // result handed over; old not freed
PA_Unistring PA_LocaliseStringByID(long list, long number, int flags);

// Variables --------------------------------------------------------------------------------------------------------
// A writer writes only into its own kind, so a variable is made with the kind it is to hold. Writing a text, a BLOB, a
// picture or a pointer frees the old one.

PA_Variable PA_CreateVariable(int kind);  // cleared; an array gets element 0 and size 0
void PA_ClearVariable(PA_Variable* variable);
void PA_CopyVariable(const PA_Variable* source, PA_Variable* target);  // target overwritten, not freed; owns its copy
PA_Variable PA_GetVariable(const PA_Unichar* name);  // of the host, <>name is interprocess; a copy; kind 5 = none
void PA_SetVariable(const PA_Unichar* name, const PA_Variable* value, int create);  // copied; create: made if missing

int UnifyVarKind(int kind);                           // 0, 2, 24 give 33; 18, 21 give 34; others stay
int PA_GetVariableKind(const PA_Variable* variable);  // unified; null gives 5

int PA_GetLongintVariable(const PA_Variable* variable);  // kinds 8, 9
double PA_GetRealVariable(const PA_Variable* variable);
bool PA_GetBooleanVariable(const PA_Variable* variable);
int PA_GetTimeVariable(const PA_Variable* variable);                                          // seconds
void PA_GetDateVariable(const PA_Variable* variable, short* day, short* month, short* year);  // each may be null
PA_Unistring PA_GetStringVariable(const PA_Variable* variable);                               // a copy
long PA_GetBlobVariable(const PA_Variable* variable, void* target);      // the size; copies unless target is null
PA_Picture PA_GetPictureVariable(const PA_Variable* variable);           // borrowed
PA_ObjectRef PA_GetObjectVariable(const PA_Variable* variable);          // borrowed: no reference is added
PA_CollectionRef PA_GetCollectionVariable(const PA_Variable* variable);  // borrowed: no reference is added
PA_Handle PA_GetPointerVariable(const PA_Variable* variable);  // a PointerBlock of 42 bytes; borrowed; null = nil

void PA_SetLongintVariable(PA_Variable* variable, int value);  // kinds 8, 9
void PA_SetRealVariable(PA_Variable* variable, double value);
void PA_SetBooleanVariable(PA_Variable* variable, bool value);
void PA_SetTimeVariable(PA_Variable* variable, int seconds);
void PA_SetDateVariable(PA_Variable* variable, short day, short month, short year);
void PA_SetStringVariable(PA_Variable* variable, PA_Unistring string);         // handed over, freed if the kind differs
void PA_SetBlobVariable(PA_Variable* variable, const void* bytes, long size);  // copied
void PA_SetPictureVariable(PA_Variable* variable, PA_Picture picture);         // handed over
void PA_SetObjectVariable(PA_Variable* variable,
                          PA_ObjectRef object);  // handed over: no reference is added or released
void PA_SetCollectionVariable(PA_Variable* variable, PA_CollectionRef collection);  // as PA_SetObjectVariable
void PA_SetPointerVariable(PA_Variable* variable, PA_Handle pointer);               // handed over

// What commands take beside values. These overwrite the whole variable, whatever its kind; it then owns nothing.
void PA_SetTableFieldVariable(PA_Variable* variable, long table, long field);  // kind 5, filler 1; field 0 = the table
void PA_SetOperatorVariable(PA_Variable* variable, int code);                  // kind 0, filler 1; ZR_OP_...
void PA_SetVariableOrFieldReference(PA_Variable* variable, const PointerBlock* target);  // a variable: kind 23, filler
                                                                                         // 1, which owns its handle

// Arrays -----------------------------------------------------------------------------------------------------------
// Straight in the array's storage, without a call. Elements are [1..count], and element 0 exists. Kinds are exact but
// for the older text arrays.

bool PA_IsArrayVariable(const PA_Variable* variable);     // kinds 13 to 22, 31, 32, 34 that are arrays; not 39
long PA_GetArrayNbElements(const PA_Variable* variable);  // -1 = no array, null among them
void PA_ResizeArray(PA_Variable* variable, long count);   // keeps elements, clears new ones, frees dropped ones
long PA_GetArrayCurrent(const PA_Variable* variable);     // the current element
void PA_SetArrayCurrent(PA_Variable* variable, long index);

short PA_GetIntegerInArray(const PA_Variable* array, long index);
int PA_GetLongintInArray(const PA_Variable* array, long index);  // longint and time arrays
int PA_GetTimeInArray(const PA_Variable* array, long index);     // seconds
double PA_GetRealInArray(const PA_Variable* array, long index);
void PA_GetDateInArray(const PA_Variable* array, long index, short* day, short* month, short* year);
bool PA_GetBooleanInArray(const PA_Variable* array, long index);
PA_Unistring PA_GetStringInArray(const PA_Variable* array, long index);        // borrowed: not to be disposed
PA_Handle PA_GetBlobInArray(const PA_Variable* array, long index, int* size);  // borrowed; null = empty
PA_Picture PA_GetPictureInArray(const PA_Variable* array, long index);         // borrowed
PA_ObjectRef PA_GetObjectInArray(const PA_Variable* array, long index);        // borrowed: no reference is added
PA_Handle PA_GetPointerInArray(const PA_Variable* array, long index);          // borrowed

void PA_SetIntegerInArray(PA_Variable* array, long index, short value);
void PA_SetLongintInArray(PA_Variable* array, long index, int value);  // longint and time arrays
void PA_SetTimeInArray(PA_Variable* array, long index, int seconds);
void PA_SetRealInArray(PA_Variable* array, long index, double value);
void PA_SetDateInArray(PA_Variable* array, long index, short day, short month, short year);
void PA_SetBooleanInArray(PA_Variable* array, long index, bool value);
void PA_SetStringInArray(PA_Variable* array, long index, PA_Unistring string);     // handed over; old one freed
void PA_SetBlobInArray(PA_Variable* array, long index, int size, PA_Handle blob);  // handed over; old one freed
void PA_SetPictureInArray(PA_Variable* array, long index, PA_Picture picture);     // handed over; old one freed
void PA_SetObjectInArray(PA_Variable* array, long index, PA_ObjectRef object);     // handed over; old one released
void PA_SetPointerInArray(PA_Variable* array, long index, PA_Handle pointer);      // handed over; old one freed

// Objects and collections ------------------------------------------------------------------------------------------
// References are counted by the host. A reference by value is handed over with one count.

PA_ObjectRef PA_CreateObject();  // null on a host below 0x1400
PA_ObjectRef PA_DuplicateObject(PA_ObjectRef object);
void PA_DisposeObject(PA_ObjectRef object);  // gives one reference back, as PA_DecrementObjectRef
void PA_IncrementObjectRef(PA_ObjectRef object);
void PA_DecrementObjectRef(PA_ObjectRef object);
PA_Variable PA_GetObjectProperty(PA_ObjectRef object, const PA_Unistring* key);                     // kind 5 = none
void PA_SetObjectProperty(PA_ObjectRef object, const PA_Unistring* key, const PA_Variable* value);  // copied
bool PA_HasObjectProperty(PA_ObjectRef object, const PA_Unistring* key);

PA_CollectionRef PA_CreateCollection();
void PA_DisposeCollection(PA_CollectionRef collection);
void PA_IncrementCollectionRef(PA_CollectionRef collection);
void PA_DecrementCollectionRef(PA_CollectionRef collection);
long PA_GetCollectionLength(PA_CollectionRef collection);
PA_Variable PA_GetCollectionElement(PA_CollectionRef collection, long index);                     // [0..length)
void PA_SetCollectionElement(PA_CollectionRef collection, long index, const PA_Variable* value);  // copied; grows

PA_Variable PA_JsonParse(const PA_Unistring* json, int kind);  // kind wanted, 0 = as written; 39 = an object array
PA_Unistring PA_JsonStringify(const PA_Variable* value, bool pretty);

// Language ---------------------------------------------------------------------------------------------------------
// Parameters are count consecutive variables; a command writes its output parameters back into them.

PA_Variable PA_ExecuteCommandByID(int commandID, PA_Variable* params, short count);
// Below host version 0x1760 the two member calls are not made, and the answer is undefined with error 4008.
PA_Variable PA_ExecuteObjectMethod(PA_ObjectRef object, const PA_Unistring* name, PA_Variable* params, short count);
PA_Variable PA_ExecuteCollectionMethod(PA_CollectionRef collection, const PA_Unistring* name, PA_Variable* params,
                                       short count);
PA_Variable PA_ExecuteMethod(const PA_Unistring* code, PA_Variable* params, short count);  // a name or a line of code
PA_Variable PA_ExecuteFunction(const PA_Unistring* expression);
// The host's own tokens of code; they have nothing to do with the interpreter's.
PA_Handle PA_Tokenize(const PA_Unistring* code);  // the caller's; null = no memory
PA_Unistring PA_Detokenize(PA_Handle tokens);     // the caller's; empty = unreadable
bool PA_ByteSwapTokens(PA_Handle tokens);         // turns the byte order in place; false = unreadable
void PA_ExecuteTokens(PA_Handle tokens);          // line by line, up to the first error
long PA_GetMethodID(const PA_Unichar* name);      // 0 = unknown
PA_Variable PA_ExecuteMethodByID(long method, PA_Variable* params, short count);
PA_Variable PA_ExecuteMethodByName(const PA_Unichar* name, PA_Variable* params, short count);
void PA_GetCommandName(long commandID, PA_Unichar* name);  // empty = no such command

// Parameters of a command [1..] and its result ---------------------------------------------------------------------
// In the host's format: a number is 32 bits or 8 bytes of a double, a date three units, a text a PA_Unistring, a BLOB a
// PA_Handle, a picture a PA_Picture, an array or a value of any kind a PA_Variable.

int PA_GetLongParameter(PluginBlock* block, short index);
double PA_GetDoubleParameter(PluginBlock* block, short index);
void PA_GetDateParameter(PluginBlock* block, short index, short* day, short* month, short* year);
PA_Unistring* PA_GetStringParameter(PluginBlock* block, short index);     // borrowed; null = none
long PA_GetBlobParameter(PluginBlock* block, short index, void* target);  // the size; copies unless target is null
PA_Picture PA_GetPictureParameter(PluginBlock* block, short index);       // borrowed
PA_Variable PA_GetVariableParameter(PluginBlock* block, short index);   // borrowed: what it owns stays the parameter's
PointerBlock* PA_GetPointerParameter(PluginBlock* block, short index);  // borrowed; null = none
void PA_SetLongParameter(PluginBlock* block, short index, int value);
void PA_SetDoubleParameter(PluginBlock* block, short index, double value);
void PA_SetDateParameter(PluginBlock* block, short index, short day, short month, short year);
void PA_SetBlobParameter(PluginBlock* block, short index, const void* bytes, long size);  // copied; old one freed
void PA_SetPictureParameter(PluginBlock* block, short index, PA_Picture picture);         // handed over; old one freed
// Copies kind, filler and what the kind uses of the value, which is handed over. Required: for kinds without a rule,
// objects and collections among them, kind and filler only; the value's old bytes stay, and the reference the caller's.
// clearOld frees what the parameter held.
void PA_SetVariableParameter(PluginBlock* block, short index, PA_Variable* variable, bool clearOld);

void PA_ReturnLong(PluginBlock* block, long value);      // 8 bytes
void PA_ReturnDouble(PluginBlock* block, double value);  // 8 bytes
void PA_ReturnDate(PluginBlock* block, short day, short month, short year);
void PA_ReturnPicture(PluginBlock* block, PA_Picture picture);  // handed over

void PA_GetPluginProperties(PluginBlock* block, PA_PluginProperties* properties);  // area events only, else error 4005
void PA_CustomizeDesignMode(PA_Picture picture, bool frame);                       // picture handed over

// Pointers ---------------------------------------------------------------------------------------------------------

PA_Handle PA_GetPointerByName(const PA_Unichar* name);  // a PointerBlock; handed over; null = none
int PA_GetPointerKind(const PointerBlock* pointer);     // -1 null, 0 variable, 1 table, 2 field
void PA_GetPointerValueProperties(const PointerBlock* pointer, int* kind, long* element, long* fieldLength);
PA_Variable PA_GetPointerValue(const PointerBlock* pointer);
void PA_SetPointerValue(const PointerBlock* pointer, const PA_Variable* value);  // copied

// Structure --------------------------------------------------------------------------------------------------------
// Process-wide and unguarded: one thread's switch is seen by all.

void PA_UseVirtualStructure();  // structure calls take and answer virtual numbers
void PA_UseRealStructure();

void PA_GetTableName(long table, PA_Unichar* name);
void PA_GetFieldName(long table, long field, PA_Unichar* name);
void PA_GetFieldProperties(long table, long field, short* type, long* length, bool* indexed, bool* unique,
                           bool* invisible);    // each may be null; type -1 = unknown
short PA_GetFieldType(long table, long field);  // -1 = unknown
void PA_GetTableAndFieldNumbers(const PA_Unichar* text, short* table, short* field);  // [Table]Field; 0 = unknown

// Records and selections of the calling process --------------------------------------------------------------------

void PA_NextRecord(long table);
void PA_FirstRecord(long table);
void PA_GotoSelectedRecord(long table, long position);  // position from 1
long PA_SelectedRecordNumber(long table);               // 0 = none
long PA_RecordsInSelection(long table);
long PA_RecordNumber(long table);  // -1 = none
void PA_RelateOne(long table);
void PA_RelateMany(long table);
void PA_RelateOneSelection(long manyTable, long oneTable);
void PA_RelateManySelection(long table, long field);
void PA_UseAutomaticRelations(bool one, bool many);

// Field values of the current record, which is not saved -----------------------------------------------------------

PA_Unistring PA_GetStringField(long table, long field);
long PA_GetBlobField(long table, long field, void* target);  // the size; copies unless target is null
PA_Picture PA_GetPictureField(long table, long field);       // a copy; caller disposes
double PA_GetRealField(long table, long field);
int PA_GetLongintField(long table, long field);
int PA_GetTimeField(long table, long field);  // seconds
short PA_GetIntegerField(long table, long field);
void PA_GetDateField(long table, long field, short* day, short* month, short* year);
bool PA_GetBooleanField(long table, long field);

void PA_SetStringField(long table, long field, const PA_Unistring* value);
void PA_SetBlobField(long table, long field, const void* bytes, long size);
void PA_SetPictureField(long table, long field, PA_Picture picture);  // copied
void PA_SetRealField(long table, long field, double value);
void PA_SetLongintField(long table, long field, int value);
void PA_SetTimeField(long table, long field, int seconds);
void PA_SetIntegerField(long table, long field, short value);
void PA_SetDateField(long table, long field, short day, short month, short year);
void PA_SetBooleanField(long table, long field, bool value);

// Formatting and parsing in the host's locale ----------------------------------------------------------------------
// buffer: 256 units, terminated in every case, empty after an error.

void PA_FormatReal(double value, const PA_Unichar* format, PA_Unichar* buffer);
void PA_FormatLongint(long value, const PA_Unichar* format, PA_Unichar* buffer);
void PA_FormatDate(short day, short month, short year, int format, PA_Unichar* buffer);
void PA_FormatTime(long seconds, int format, PA_Unichar* buffer);
void PA_FormatString(const PA_Unichar* text, const PA_Unichar* format, PA_Unichar* buffer);
void PA_EvalDate(const PA_Unichar* text, short* day, short* month, short* year);  // all 0 = unreadable
int PA_EvalTime(const PA_Unichar* text);                                          // seconds; 0 = unreadable

// Pictures ---------------------------------------------------------------------------------------------------------

PA_Picture PA_CreatePicture(const void* bytes, long size);  // encoded bytes, copied; null = empty or refused
void PA_DisposePicture(PA_Picture picture);
PA_Picture PA_DuplicatePicture(PA_Picture picture);
// The type of representation index, from 1 (0 counts as 1), such as image/png. Error 4006 = no such representation.
// target: resized to the encoded bytes and filled; null = the type only.
PA_Unistring PA_GetPictureData(PA_Picture picture, long index, PA_Handle target);
void* PA_CreateNativePictureForScreen(PA_Picture picture);    // a CGImageRef; caller releases; null = cannot be drawn
void* PA_CreateNativePictureForPrinting(PA_Picture picture);  // a CGPDFDocumentRef; caller releases; null = likewise
PA_Handle PA_PictureToGIF(PA_Picture picture);                // the bytes of a GIF file; handed over; null = refused

// Processes --------------------------------------------------------------------------------------------------------

long PA_GetCurrentProcessNumber();  // from 1
void PA_Yield();
void PA_YieldAbsolute();                                            // even if the host would rather not
void PA_RunInMainProcess(void (*function)(void*), void* argument);  // returns when the function has run

// Dialogs ----------------------------------------------------------------------------------------------------------

void PA_Alert(const PA_Unichar* text);
// table: its name, null = a form of the project. null = refused.
PA_Dial4D PA_OpenDialog(const PA_Unichar* table, const PA_Unichar* form, const PA_Unichar* title, short windowKind,
                        PA_Rect bounds, bool centred);
long PA_ModalDialog(PA_Dial4D dialog, PA_Unichar* variableName);  // 0 = a variable was set; 2 = closed, or an error
void PA_CloseDialog(PA_Dial4D dialog);
void PA_Dial4DBeginUpdateVariables(PA_Dial4D dialog);
void PA_Dial4DEndUpdateVariables(PA_Dial4D dialog);
long PA_Dial4DWindowFromDial4D(PA_Dial4D dialog);  // 0 = none
void* PA_GetWindowPtr(long window);                // the system's window; null = none

void PA_Dial4DSet(PA_Dial4D dialog, const PA_Unichar* name, const PA_Variable* value);  // copied
PA_Variable PA_Dial4DGet(PA_Dial4D dialog, const PA_Unichar* name);
void PA_Dial4DSetLong(PA_Dial4D dialog, const PA_Unichar* name, int value);
int PA_Dial4DGetLong(PA_Dial4D dialog, const PA_Unichar* name);
void PA_Dial4DSetReal(PA_Dial4D dialog, const PA_Unichar* name, double value);
double PA_Dial4DGetReal(PA_Dial4D dialog, const PA_Unichar* name);
void PA_Dial4DSetText(PA_Dial4D dialog, const PA_Unichar* name, const PA_Unistring* text);
PA_Unistring PA_Dial4DGetText(PA_Dial4D dialog, const PA_Unichar* name);
void PA_Dial4DSetArrayText(PA_Dial4D dialog, const PA_Unichar* name, long element, const PA_Unistring* text);
PA_Unistring PA_Dial4DGetArrayText(PA_Dial4D dialog, const PA_Unichar* name, long element);
void PA_Dial4DSetEnterable(PA_Dial4D dialog, const PA_Unichar* name, bool enterable);

// The same for a name in bytes, which is widened.
void PA_Dial4DSet(PA_Dial4D dialog, const char* name, long value);
void PA_Dial4DSet(PA_Dial4D dialog, const char* name, int value);
void PA_Dial4DSet(PA_Dial4D dialog, const char* name, bool value);
void PA_Dial4DSet(PA_Dial4D dialog, const char* name, double value);
void PA_Dial4DSet(PA_Dial4D dialog, const char* name, double value, short decimals);  // as text, zeros kept
void PA_Dial4DSet(PA_Dial4D dialog, const char* name, ZR_Text* value);
void PA_Dial4DSetLocalized(PA_Dial4D dialog, const char* name, const char* key);
void PA_Dial4DSetArrayElement(PA_Dial4D dialog, const char* name, long element, ZR_Text* value);
void PA_Dial4DSetArrayElementLocalized(PA_Dial4D dialog, const char* name, long element, const char* key);
void PA_Dial4DSetEnterable(PA_Dial4D dialog, const char* name, bool enterable);
long PA_Dial4DGetLong(PA_Dial4D dialog, const char* name);
double PA_Dial4DGetDouble(PA_Dial4D dialog, const char* name);
void PA_Dial4DGet(PA_Dial4D dialog, const char* name, ZR_Text* target);  // emptied first

#endif
