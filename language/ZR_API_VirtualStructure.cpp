#include "language/ZR_API_VirtualStructure.h"

#include <algorithm>

#include "language/ZR_API_Names_Private.h"
#include "language/ZR_API_VirtualStructure_Private.h"

typedef ZR_Executer_VirtualStructure Record;

static constexpr long kShortList = 16;       // records; up to here a scan is as fast as an index
static constexpr long kSmallestRecord = 32;  // bytes of a record with three empty texts in a blob
static constexpr long kSpareRecords = 1000;  // empty records that a cut blob may still count
static constexpr long kBlobVersion = 1;

static std::atomic<unsigned long> sEdition{1};  // rises with every change of any record

void ZR_EXE_VStructureChanged() { sEdition.fetch_add(1, std::memory_order_relaxed); }

static Record* RecordAt(ZR_Handle* list, long index) { return reinterpret_cast<Record*>(list->GetMemPtr(index)); }

// Life ------------------------------------------------------------------------------------------------------------

void ZR_Executer_VirtualStructure::Create(short recordKind, long recordReference, long parentReference) {
    reference = recordReference;
    secondReference = parentReference;
    kind = recordKind;
    name.Create();
    virtualName.Create();
    extraText.Create();
    tableNumber = 0;
    fieldNumber = 0;
    flag = true;
    ZR_EXE_VStructureChanged();
}

void ZR_Executer_VirtualStructure::CreateTable(long table, ZR_Text* caption, long recordReference) {
    Create(ZR_VSTRUCTURE_TABLE, recordReference, 0);
    tableNumber = table;
    virtualName.AddText(caption);
}

void ZR_Executer_VirtualStructure::CreateField(long table, long field, ZR_Text* caption, long recordReference) {
    Create(ZR_VSTRUCTURE_FIELD, recordReference, 0);
    tableNumber = table;
    fieldNumber = field;
    virtualName.AddText(caption);
}

void ZR_Executer_VirtualStructure::CreateVariable(ZR_Text* trueName, ZR_Text* caption, long recordReference) {
    Create(ZR_VSTRUCTURE_VARIABLE, recordReference, 0);
    name.AddText(trueName);
    virtualName.AddText(caption);
}

void ZR_Executer_VirtualStructure::CreateGroup(ZR_Text* caption, long recordReference) {
    Create(ZR_VSTRUCTURE_GROUP, recordReference, 0);
    virtualName.AddText(caption);
}

void ZR_Executer_VirtualStructure::CreateMethod(ZR_Text* trueName, ZR_Text* caption, long recordReference,
                                                long number) {
    Create(ZR_VSTRUCTURE_METHOD, recordReference, 0);
    name.AddText(trueName);
    virtualName.AddText(caption);
    tableNumber = number;
}

void ZR_Executer_VirtualStructure::SetVirtualName(ZR_Text* caption) {
    if (caption != &virtualName) virtualName.Copy(caption);
    ZR_EXE_VStructureChanged();
}

void ZR_Executer_VirtualStructure::Dispose() {
    name.Dispose();
    virtualName.Dispose();
    extraText.Dispose();
    kind = 0;
    reference = 0;
    secondReference = 0;
    tableNumber = 0;
    fieldNumber = 0;
    flag = false;
    ZR_EXE_VStructureChanged();
}

// Lookups ---------------------------------------------------------------------------------------------------------

template <class Matches>
static Record* FirstOf(ZR_Handle* list, Matches matches) {
    if (!list) return nullptr;
    for (long i = 1; i <= list->count; i++)
        if (matches(RecordAt(list, i))) return RecordAt(list, i);
    return nullptr;
}

Record* ZR_EXE_GetVStructureByTableNo(ZR_Handle* list, long table) {
    return FirstOf(list, [=](Record* r) { return r->kind == ZR_VSTRUCTURE_TABLE && r->tableNumber == table; });
}

Record* ZR_EXE_GetVStructureByFieldNo(ZR_Handle* list, long table, long field) {
    return FirstOf(list, [=](Record* r) {
        return r->kind == ZR_VSTRUCTURE_FIELD && r->tableNumber == table && r->fieldNumber == field;
    });
}

static Record* FirstNamed(ZR_Handle* list, short kind, ZR_Text* name) {
    return FirstOf(list, [=](Record* r) { return r->kind == kind && r->name.Equal(name, false); });
}

static Record* FirstCaptioned(ZR_Handle* list, short kind, ZR_Text* caption) {
    return FirstOf(list, [=](Record* r) { return r->kind == kind && r->virtualName.Equal(caption, false); });
}

Record* ZR_EXE_GetVStructureByVariablename(ZR_Handle* list, ZR_Text* name) {
    return FirstNamed(list, ZR_VSTRUCTURE_VARIABLE, name);
}

Record* ZR_EXE_GetVStructureByVariableCaption(ZR_Handle* list, ZR_Text* caption) {
    return FirstCaptioned(list, ZR_VSTRUCTURE_VARIABLE, caption);
}

Record* ZR_EXE_GetVStructureByMethodname(ZR_Handle* list, ZR_Text* name) {
    return FirstNamed(list, ZR_VSTRUCTURE_METHOD, name);
}

Record* ZR_EXE_GetVStructureByMethodCaption(ZR_Handle* list, ZR_Text* caption) {
    return FirstCaptioned(list, ZR_VSTRUCTURE_METHOD, caption);
}

Record* ZR_EXE_GetVStructureByTableCaption(ZR_Handle* list, ZR_Text* caption) {
    return FirstCaptioned(list, ZR_VSTRUCTURE_TABLE, caption);
}

Record* ZR_EXE_GetVStructureByFieldCaption(ZR_Handle* list, long table, ZR_Text* caption) {
    return FirstOf(list, [=](Record* r) {
        return r->kind == ZR_VSTRUCTURE_FIELD && r->tableNumber == table && r->virtualName.Equal(caption, false);
    });
}

Record* ZR_EXE_GetVStructureByReference(ZR_Handle* list, long reference) {
    return FirstOf(list, [=](Record* r) { return r->reference == reference; });
}

bool ZR_EXE_DeleteVStructureByID(ZR_Handle* list, long reference) {
    if (!list) return false;
    for (long i = 1; i <= list->count; i++) {
        if (RecordAt(list, i)->reference != reference) continue;
        RecordAt(list, i)->Dispose();
        list->DeleteElement(i);
        return true;
    }
    return false;
}

void ZR_EXE_DisposeVirtualStructure(ZR_Handle* list) {
    for (long i = 1; i <= list->count; i++) RecordAt(list, i)->Dispose();
    list->Dispose();
}

// Index -----------------------------------------------------------------------------------------------------------

enum : unsigned { kMethodKey = 5, kTableKey = 1, kFieldKey = 2, kTableNumberKey = 6 };

static unsigned Key(unsigned tag, long table, unsigned hash) {
    unsigned long mixed = (static_cast<unsigned long>(table) * 8 + tag) * 0x9E3779B97F4A7C15ul;
    return hash ^ static_cast<unsigned>(mixed >> 32);
}

static unsigned CaptionKey(Record* record) {
    unsigned hash = zrExe_FoldedHash(record->virtualName.Units(), record->virtualName.count);
    switch (record->kind) {
        case ZR_VSTRUCTURE_METHOD: return Key(kMethodKey, 0, hash);
        case ZR_VSTRUCTURE_TABLE: return Key(kTableKey, 0, hash);
        default: return Key(kFieldKey, record->tableNumber, hash);
    }
}

static bool HasCaptionKey(Record* record) {
    return record->kind == ZR_VSTRUCTURE_METHOD || record->kind == ZR_VSTRUCTURE_TABLE ||
           record->kind == ZR_VSTRUCTURE_FIELD;
}

static void BuildIndex(ZR_VStructureIndex* index, ZR_Handle* list, unsigned long edition) {
    index->slots.Dispose();
    index->data = list->data;
    index->count = list->count;
    index->edition = edition;
    long patience = list->count * 16;  // slots to pass over; captions made to collide end in a plain scan
    if (!zrExe_CreateSlots(&index->slots, list->count * 2)) return;
    for (long i = 1; i <= list->count && patience > 0; i++) {
        Record* record = RecordAt(list, i);
        if (HasCaptionKey(record)) patience -= zrExe_EnterSlot(&index->slots, CaptionKey(record), i);
        if (record->kind == ZR_VSTRUCTURE_TABLE)
            patience -= zrExe_EnterSlot(&index->slots, Key(kTableNumberKey, record->tableNumber, 0), i);
    }
    if (patience <= 0) index->slots.Dispose();
}

// The index of the lookup's list, made when it is first asked for; null = the list is scanned.
static ZR_VStructureIndex* IndexOf(ZR_CaptionLookup* lookup) {
    if (lookup->index || lookup->list->count <= kShortList || lookup->list->count > 0x3FFFFFFF) return lookup->index;
    bool free = lookup->shared && lookup->shared->busy.exchange(1, std::memory_order_acquire) == 0;
    ZR_VStructureIndex* index = free ? &lookup->shared->index : &lookup->own;
    unsigned long edition = sEdition.load(std::memory_order_relaxed);
    bool valid = index->data == lookup->list->data && index->count == lookup->list->count && index->edition == edition;
    if (!valid) BuildIndex(index, lookup->list, edition);
    lookup->index = index;
    return index;
}

void ZR_VStructureCache::Create() {
    busy = 0;
    memset(static_cast<void*>(&index), 0, sizeof index);
}

void ZR_VStructureCache::Dispose() { index.slots.Dispose(); }

void ZR_CaptionLookup::Begin(ZR_Handle* structure, ZR_VStructureCache* cache) {
    list = structure;
    shared = cache;
    index = nullptr;
    memset(static_cast<void*>(&own), 0, sizeof own);
}

void ZR_CaptionLookup::End() {
    if (index && index != &own) shared->busy.exchange(0, std::memory_order_release);
    own.slots.Dispose();
    index = nullptr;
}

template <class Matches>
static Record* Find(ZR_CaptionLookup* lookup, unsigned key, Matches matches) {
    if (!lookup->list) return nullptr;
    ZR_VStructureIndex* index = IndexOf(lookup);
    if (!index || !index->slots.data) return FirstOf(lookup->list, matches);
    ZR_Handle* list = lookup->list;
    return RecordAt(list, zrExe_FindSlot(&index->slots, key, [=](long i) { return matches(RecordAt(list, i)); }));
}

Record* ZR_CaptionLookup::Method(const unsigned short* caption, long count) {
    if (!list) return nullptr;
    unsigned key = Key(kMethodKey, 0, zrExe_FoldedHash(caption, count));
    return Find(this, key, [=](Record* r) {
        return r->kind == ZR_VSTRUCTURE_METHOD && zrExe_EqualFolded(caption, count, &r->virtualName);
    });
}

Record* ZR_CaptionLookup::Table(const unsigned short* caption, long count) {
    if (!list) return nullptr;
    unsigned key = Key(kTableKey, 0, zrExe_FoldedHash(caption, count));
    return Find(this, key, [=](Record* r) {
        return r->kind == ZR_VSTRUCTURE_TABLE && zrExe_EqualFolded(caption, count, &r->virtualName);
    });
}

Record* ZR_CaptionLookup::Field(long table, const unsigned short* caption, long count) {
    if (!list) return nullptr;
    unsigned key = Key(kFieldKey, table, zrExe_FoldedHash(caption, count));
    return Find(this, key, [=](Record* r) {
        return r->kind == ZR_VSTRUCTURE_FIELD && r->tableNumber == table &&
               zrExe_EqualFolded(caption, count, &r->virtualName);
    });
}

Record* ZR_CaptionLookup::TableNumber(long table) {
    return Find(this, Key(kTableNumberKey, table, 0),
                [=](Record* r) { return r->kind == ZR_VSTRUCTURE_TABLE && r->tableNumber == table; });
}

// Serial form -----------------------------------------------------------------------------------------------------

void ZR_EXE_VStructureToBlob(ZR_Handle* list, ZR_Handle* blob) {
    blob->Dispose();
    blob->Create(1, 0);
    blob->growStep = 10000;
    blob->AddLong(kBlobVersion);
    blob->AddLong(list->count);
    for (long i = 1; i <= list->count; i++) {
        Record* record = RecordAt(list, i);
        blob->AddShort(record->kind);
        blob->AddLong(record->reference);
        blob->AddLong(record->secondReference);
        blob->AddLong(record->tableNumber);
        blob->AddLong(record->fieldNumber);
        blob->AddShort(record->flag ? 1 : 0);
        blob->AddTextWithLength(&record->name);
        blob->AddTextWithLength(&record->virtualName);
        blob->AddTextWithLength(&record->extraText);
    }
}

static void ReadRecord(ZR_Handle* blob, long* cursor, Record* record) {
    record->Create(blob->ReadShort(cursor), 0, 0);
    record->reference = blob->ReadLong(cursor);
    record->secondReference = blob->ReadLong(cursor);
    record->tableNumber = blob->ReadLong(cursor);
    record->fieldNumber = blob->ReadLong(cursor);
    record->flag = blob->ReadShort(cursor) == 1;
    blob->ReadTextWithLength(cursor, &record->name);
    blob->ReadTextWithLength(cursor, &record->virtualName);
    blob->ReadTextWithLength(cursor, &record->extraText);
}

void ZR_EXE_BlobToVStructure(ZR_Handle* blob, ZR_Handle* list) {
    ZR_EXE_DisposeVirtualStructure(list);
    list->Create(sizeof(Record), 0);
    long cursor = 0;
    blob->ReadLong(&cursor);  // Required: the version is not looked at
    long count = blob->ReadLong(&cursor);
    // A count that the bytes cannot hold is cut; a blob that lost its end still gives its empty records.
    count = std::clamp(count, 0L, blob->count / kSmallestRecord + kSpareRecords);
    list->Resize(count);
    if (list->count != count) return;  // no memory: stays empty
    for (long i = 1; i <= count; i++) ReadRecord(blob, &cursor, RecordAt(list, i));
    ZR_EXE_VStructureChanged();
}
