// ZR_Handle: the growable memory block under every list, buffer, blob and text.
// A plain structure: alive from a Create member to Dispose, both called by hand; a Create assumes nothing about what
// the structure held before. Belongs to one thread at a time. Growth is exact: the needed count plus growStep elements,
// as count, capacity and allocatedBytes tell it; the block behind them may have more room, so that appends stay linear.
// A refused growth (too large, or no memory) leaves count, capacity and data as they were.
// Integers are written high byte first, doubles in memory order: the wire form of every blob.
#ifndef ZR_API_HANDLE_H
#define ZR_API_HANDLE_H

#include <atomic>
#include <cstdint>
#include <cstring>

#include "plugin/ZR_HostInterface.h"

struct PluginBlock;
struct ZR_Text;
struct __CFData;

extern std::atomic<long> ZR_MEMORY_HANDLES;  // handles that own storage
extern std::atomic<long> ZR_MEMORY_BYTES;    // sum of their allocatedBytes
void ZR_GetMemoryInfo(long* handles, long* bytes);

struct ZR_Handle {
    long count;           // elements in use
    char* data;           // the elements; owned; null = nothing allocated
    long capacity;        // elements that data can hold
    long elementSize;     // bytes per element; set by Create, kept by Dispose
    long allocatedBytes;  // bytes of data as counted in ZR_MEMORY_BYTES; a copy may have more than capacity needs
    long growStep;        // extra elements of each growth; 0 after Create, callers write it, kept by Dispose

    // Life ---------------------------------------------------------------------------------------------------------
    void Create(long elementSize, long count);  // count elements, not cleared; negative count = 0; refused = empty
    void Create(const ZR_Handle* source);       // copy, spare bytes included; null = empty, 1-byte elements
    void CreateAndOwn(ZR_Handle* source);       // takes the storage over; the source is empty afterwards
    void Create(const __CFData* source);        // its bytes; null = empty
    const __CFData* CreateCFData();             // a copy of count bytes; handed over; null = empty handle
    void Dispose();                             // frees the storage; elementSize and growStep stay

    // Size and elements --------------------------------------------------------------------------------------------
    void Resize(long n);                 // n elements, new ones not cleared; shrinking keeps the storage
    char* AppendGetPtr();                // one more element, not cleared; borrowed; null = refused
    char* GetMemPtr(long index) const {  // the element; [1..count]; borrowed until the next growth; null outside
        if (index < 1 || index > count || !data) return nullptr;
        return data + (index - 1) * elementSize;
    }
    char* InsertElement(long position, long n);  // n new elements, not cleared; [gap 0..count]; borrowed; null outside
    void DeleteElement(long index);              // [1..count]; outside = nothing
    // Makes room for needed elements by the growth rule, count stays; false = refused, nothing changed.
    bool Secure(long needed) { return needed <= capacity && data ? true : Grow(needed); }

    // Appends: count is a byte offset, for 1-byte elements ---------------------------------------------------------
    void AddByte(char value) {
        if (char* to = AppendBytes(1)) *to = value;
    }
    void AddShort(short value) {  // 2 bytes, high byte first
        uint16_t swapped = __builtin_bswap16(static_cast<uint16_t>(value));
        if (char* to = AppendBytes(2)) memcpy(to, &swapped, 2);
    }
    void AddLong(long value) {  // the low 32 bits, high byte first
        uint32_t swapped = __builtin_bswap32(static_cast<uint32_t>(value));
        if (char* to = AppendBytes(4)) memcpy(to, &swapped, 4);
    }
    void AddDouble(double value) {  // Required: 8 bytes in memory order, not swapped as the integers are
        if (char* to = AppendBytes(8)) memcpy(to, &value, 8);
    }
    void AddCharBuffer(const char* bytes, long n);      // Required: a negative n lowers count (not below 0)
    void AddText(const ZR_Text* text, bool terminate);  // units low byte first; terminate = two zero bytes behind
    void AddTextWithLength(const ZR_Text* text);        // AddLong of the units, then units high byte first

    // Unit appends -------------------------------------------------------------------------------------------------
    void AddUniBuffer(const unsigned short* units,
                      long n);  // 1-byte elements: 2n bytes at byte count; else at unit count
    void AddCharBufferAsUnichar(const unsigned char* bytes, long n);  // zero extension; elements of 2 bytes and more

    // Reads: the cursor is a byte offset, [0..count); does not fit = 0 and the cursor stays ------------------------
    long ReadLong(long* cursor) const {  // 4 bytes, high first, sign extended
        uint32_t raw = 0;
        if (!Fits(*cursor, 4)) return 0;
        memcpy(&raw, data + *cursor, 4);
        *cursor += 4;
        return static_cast<int32_t>(__builtin_bswap32(raw));
    }
    short ReadShort(long* cursor) const {  // 2 bytes, high first
        uint16_t raw = 0;
        if (!Fits(*cursor, 2)) return 0;
        memcpy(&raw, data + *cursor, 2);
        *cursor += 2;
        return static_cast<int16_t>(__builtin_bswap16(raw));
    }
    double ReadDouble(long* cursor) const {  // 8 bytes in memory order
        double value = 0;
        if (!Fits(*cursor, 8)) return 0;
        memcpy(&value, data + *cursor, 8);
        *cursor += 8;
        return value;
    }
    // Length by ReadLong, then units high byte first; replaces a living text; at most the units that are there.
    void ReadTextWithLength(long* cursor, ZR_Text* text) const;

    // Arrays of 8-byte values; another element size = nothing, -1, false -------------------------------------------
    void AddLongToArray(long value);
    long FindLong(long value) const;  // index of the first, [1..count]; -1 = none
    bool DeleteLong(long value);      // the first; false = none

    // Others -------------------------------------------------------------------------------------------------------
    bool Equal(const ZR_Handle* other) const;         // Required: equal counts and a null data on either side are equal
    void ToCString(char* out, long size) const;       // at most size - 1 bytes and a zero byte
    bool BeginsWithString(const char* prefix) const;  // empty prefix = false
    void ToFile(const ZR_Text* path) const;           // count elements to a POSIX path; nothing is reported

    // Blobs and host exchange: ZR_API_BLOBArray.cpp ----------------------------------------------------------------
    void CreateBLOBArray(const ZR_Handle* handles,
                         long n);               // overwrites all fields; n of 0 or below: no blocks, n as it is
    ZR_Handle* ExpandBLOBArray(long* n) const;  // n byte handles; caller disposes each, then delete[]; null = bad
    void CreateFrom4DParameter(PluginBlock* block, short index);  // BLOB parameter; [1..]
    void CreateFrom4DVariable(PA_Variable* variable);             // BLOB variable
    void CreateFrom4DArray(PA_Variable* array, long index);       // element of a BLOB array; [1..size]
    void CreateFrom4DBlobField(short table, short field);         // of the current record
    void CreateFrom4DPictureField(short table, short field);      // the stored picture in its own format
    void To4DBlobField(short table, short field);
    void To4DParameter(PluginBlock* block, short index);  // [1..]
    void To4DArray(PA_Variable* array, long index);       // an empty handle leaves the element as it is
    PA_Variable CreateVariable();                         // kind 30; handed over

    // Growth, for the members above --------------------------------------------------------------------------------
    char* AppendBytes(long n) {  // n bytes at byte offset count, count moved on; null = refused
        if (!data || elementSize != 1 || count < 0 || capacity - count < n) [[unlikely]]
            return AppendBytesGrowing(n);
        char* to = data + count;
        count += n;
        return to;
    }
    char* AppendBytesGrowing(long n);
    bool Grow(long needed);  // the growth rule, out of line
    bool Fits(long offset, long n) const { return data && offset >= 0 && offset <= count - n; }
};
static_assert(sizeof(ZR_Handle) == 48, "six 64-bit fields");

#endif
