// The structure, the records and selections, and the values of fields.
#include <atomic>
#include <climits>

#include "plugin/ZR_API_Bridge.h"
#include "plugin/ZR_API_Bridge_Private.h"

// Structure --------------------------------------------------------------------------------------------------------

static std::atomic<bool> sVirtualStructureMode = false;  // of the process: seen by all threads, ordered with nothing

void PA_UseVirtualStructure() { sVirtualStructureMode.store(true, std::memory_order_relaxed); }
void PA_UseRealStructure() { sVirtualStructureMode.store(false, std::memory_order_relaxed); }

int64_t ZR_StructureRequest() {
    return sVirtualStructureMode.load(std::memory_order_relaxed) ? ZR_VIRTUAL_STRUCTURE_REQUEST : 0;
}

// A structure call on a table or field.
static bool CallStructure(int selector, long table, long field, EngineBlock* block) {
    block->fParam1 = table;
    block->fParam2 = field;
    block->fParam4 = ZR_StructureRequest();
    return ZR_CallHost(selector, block);
}

static void GetStructureName(int selector, long table, long field, PA_Unichar* name) {
    EngineBlock block;
    block.fName[0] = 0;
    ZR_CopyName(name, CallStructure(selector, table, field, &block) ? block.fName : nullptr);
}

void PA_GetTableName(long table, PA_Unichar* name) { GetStructureName(ZR_SEL_TableName, table, 0, name); }

void PA_GetFieldName(long table, long field, PA_Unichar* name) {
    GetStructureName(ZR_SEL_FieldName, table, field, name);
}

void PA_GetFieldProperties(long table, long field, short* type, long* length, bool* indexed, bool* unique,
                           bool* invisible) {
    EngineBlock block;
    block.fParam3 = -1;
    block.fLength1 = 0;
    block.fFlags = 0;
    bool ok = CallStructure(ZR_SEL_FieldProperties, table, field, &block);
    if (type != nullptr) *type = ok ? (short)block.fParam3 : -1;
    if (length != nullptr) *length = ok ? block.fLength1 : 0;
    if (indexed != nullptr) *indexed = ok && (block.fFlags & 1) != 0;
    if (unique != nullptr) *unique = ok && (block.fFlags & 2) != 0;
    if (invisible != nullptr) *invisible = ok && (block.fFlags & 4) != 0;
}

short PA_GetFieldType(long table, long field) {
    short type;
    PA_GetFieldProperties(table, field, &type, nullptr, nullptr, nullptr, nullptr);
    return type;
}

void PA_GetTableAndFieldNumbers(const PA_Unichar* text, short* table, short* field) {
    EngineBlock block;
    ZR_CopyName(block.fName, text);
    bool ok = CallStructure(ZR_SEL_TableAndFieldNumbers, 0, 0, &block);
    if (table != nullptr) *table = ok ? (short)block.fParam1 : 0;
    if (field != nullptr) *field = ok ? (short)block.fParam2 : 0;
}

// Records and selections -------------------------------------------------------------------------------------------

static void CallTable(int selector, long table, long second) {
    EngineBlock block;
    block.fParam1 = table;
    block.fParam2 = second;
    ZR_CallHost(selector, &block);
}

static long AskTable(int selector, long table, long none) {
    EngineBlock block;
    block.fParam1 = table;
    block.fParam2 = none;
    return ZR_CallHost(selector, &block) ? block.fParam2 : none;
}

void PA_NextRecord(long table) { CallTable(ZR_SEL_NextRecord, table, 0); }
void PA_FirstRecord(long table) { CallTable(ZR_SEL_FirstRecord, table, 0); }
void PA_GotoSelectedRecord(long table, long position) { CallTable(ZR_SEL_GotoSelectedRecord, table, position); }
long PA_SelectedRecordNumber(long table) { return AskTable(ZR_SEL_SelectedRecordNumber, table, 0); }
long PA_RecordsInSelection(long table) { return AskTable(ZR_SEL_RecordsInSelection, table, 0); }
long PA_RecordNumber(long table) { return AskTable(ZR_SEL_RecordNumber, table, -1); }

enum { kRelateOne = 1, kRelateMany = 2, kRelateOneSelection = 3, kRelateManySelection = 4 };

static void Relate(long table, long second, int how) {
    EngineBlock block;
    block.fParam1 = table;
    block.fParam2 = second;
    block.fParam3 = how;
    ZR_CallHost(ZR_SEL_Relate, &block);
}

void PA_RelateOne(long table) { Relate(table, 0, kRelateOne); }
void PA_RelateMany(long table) { Relate(table, 0, kRelateMany); }
void PA_RelateOneSelection(long manyTable, long oneTable) { Relate(manyTable, oneTable, kRelateOneSelection); }
void PA_RelateManySelection(long table, long field) { Relate(table, field, kRelateManySelection); }
void PA_UseAutomaticRelations(bool one, bool many) { CallTable(ZR_SEL_UseAutomaticRelations, one, many); }

// Field values -----------------------------------------------------------------------------------------------------

static PA_Variable GetField(long table, long field) {
    PA_Variable value = ZR_UndefinedVariable();
    EngineBlock block;
    block.fParam1 = table;
    block.fParam2 = field;
    block.fParam3 = ZR_AddressOf(&value);
    ZR_CallHost(ZR_SEL_GetField, &block);
    return value;
}

static void SetField(long table, long field, const PA_Variable* value) {
    EngineBlock block;
    block.fParam1 = table;
    block.fParam2 = field;
    block.fParam3 = ZR_AddressOf(value);
    ZR_CallHost(ZR_SEL_SetField, &block);
}

// Reads the field with a reader of variables; what the value owns is freed.
template <class T>
static T ReadField(long table, long field, T (*read)(const PA_Variable*)) {
    PA_Variable value = GetField(table, field);
    T answer = read(&value);
    ZR_FreeVariable(&value);
    return answer;
}

double PA_GetRealField(long table, long field) { return ReadField(table, field, PA_GetRealVariable); }
int PA_GetLongintField(long table, long field) { return ReadField(table, field, PA_GetLongintVariable); }
int PA_GetTimeField(long table, long field) { return ReadField(table, field, PA_GetTimeVariable); }
short PA_GetIntegerField(long table, long field) { return (short)ReadField(table, field, PA_GetLongintVariable); }
bool PA_GetBooleanField(long table, long field) { return ReadField(table, field, PA_GetBooleanVariable); }

void PA_GetDateField(long table, long field, short* day, short* month, short* year) {
    PA_Variable value = GetField(table, field);
    PA_GetDateVariable(&value, day, month, year);
    ZR_FreeVariable(&value);
}

PA_Unistring PA_GetStringField(long table, long field) {
    PA_Variable value = GetField(table, field);
    return ZR_TakeString(&value);
}

long PA_GetBlobField(long table, long field, void* target) {
    PA_Variable value = GetField(table, field);
    long size = PA_GetBlobVariable(&value, target);
    ZR_FreeVariable(&value);
    return size;
}

PA_Picture PA_GetPictureField(long table, long field) {
    PA_Variable value = GetField(table, field);
    PA_Picture picture = PA_GetPictureVariable(&value);  // handed over
    if (picture == nullptr) ZR_FreeVariable(&value);
    return picture;
}

void PA_SetStringField(long table, long field, const PA_Unistring* value) {
    PA_Variable text = ZR_TextVariable(value);
    SetField(table, field, &text);
}

void PA_SetBlobField(long table, long field, const void* bytes, long size) {
    PA_Variable value = PA_CreateVariable(eVK_Blob);
    PA_SetBlobVariable(&value, bytes, size);
    SetField(table, field, &value);
    ZR_FreeHandle(value.uValue.fArray.fData);
}

void PA_SetPictureField(long table, long field, PA_Picture picture) {
    PA_Variable value = PA_CreateVariable(eVK_Picture);
    value.uValue.fPicture = picture;
    SetField(table, field, &value);
}

void PA_SetRealField(long table, long field, double number) {
    PA_Variable value = PA_CreateVariable(eVK_Real);
    PA_SetRealVariable(&value, number);
    SetField(table, field, &value);
}

void PA_SetLongintField(long table, long field, int number) {
    PA_Variable value = PA_CreateVariable(eVK_Longint);
    PA_SetLongintVariable(&value, number);
    SetField(table, field, &value);
}

void PA_SetTimeField(long table, long field, int seconds) {
    PA_Variable value = PA_CreateVariable(eVK_Time);
    PA_SetTimeVariable(&value, seconds);
    SetField(table, field, &value);
}

void PA_SetIntegerField(long table, long field, short number) {
    PA_Variable value = PA_CreateVariable(eVK_Integer);
    PA_SetLongintVariable(&value, number);
    SetField(table, field, &value);
}

void PA_SetDateField(long table, long field, short day, short month, short year) {
    PA_Variable value = PA_CreateVariable(eVK_Date);
    PA_SetDateVariable(&value, day, month, year);
    SetField(table, field, &value);
}

void PA_SetBooleanField(long table, long field, bool truth) {
    PA_Variable value = PA_CreateVariable(eVK_Boolean);
    PA_SetBooleanVariable(&value, truth);
    SetField(table, field, &value);
}
