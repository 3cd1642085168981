// ZR_Text: UTF-16 code units in a ZR_Handle of 2-byte elements, with two caches for the host's interfaces.
// Length, index and comparison count code units; case knows ASCII only. Alive from a Create member to Dispose; a Create
// assumes nothing about what the structure held before; creating an empty text allocates nothing. A disposed text may
// be refilled with the appends. A text with count 0 may have null data. Belongs to one thread at a time. Index bases
// differ by member and are given with it.
#ifndef ZR_API_TEXT_H
#define ZR_API_TEXT_H

#include "core/ZR_API_Handle.h"

struct __CFString;

struct ZR_Text : ZR_Handle {
    PA_Unistring unistring;  // made by GetUnistringPtr; a snapshot; owned while unistringValid
    bool unistringValid;     // unistring must go through PA_DisposeUnistring
    char* cString;           // made by GetCStringPtr; a snapshot; owned; null = none

    // Creation; a null or empty source gives the empty text --------------------------------------------------------
    void Create() {
        count = capacity = allocatedBytes = growStep = 0;
        data = cString = nullptr;
        elementSize = 2;
        unistring = {};
        unistringValid = false;
    }
    void Create(const unsigned short* units);  // zero-terminated
    void Create(const __CFString* string);     // stays the caller's
    void Create(void* string);                 // the same, an NSString
    void Create(const ZR_Text* source);        // copy; caches are not copied
    void Copy(const ZR_Text* source);          // for a living text. Required: of itself leaves it empty
    void Create(const char* bytes, long n, PA_4DCharSet charset);
    void CreateFromHandle(const ZR_Handle* bytes, PA_4DCharSet charset);
    void CreateWithUnistringPtr(const PA_Unistring* record);           // record stays the caller's
    void CreateWithUnistringAndDisposeUnistring(PA_Unistring record);  // record is taken
    void CreateFrom4DParameter(PluginBlock* block, short index);       // [1..]
    void CreateFrom4DVariable(PA_Variable* variable);                  // another kind than text = empty
    void CreateFrom4DArray(PA_Variable* array, long index);            // [1..size]
    void Dispose();                                                    // storage and caches

    // Appending; a source without units adds nothing ---------------------------------------------------------------
    void AddText(const ZR_Text* text);
    void AddUniBuffer(const unsigned short* units, long n) { ZR_Handle::AddUniBuffer(units, n); }
    void AddUnichar(const unsigned short* units);  // zero-terminated
    void AddUnit(unsigned short unit) {            // one unit
        if (data && count >= 0 && count < capacity) {
            memcpy(data + count * 2, &unit, 2);
            ++count;
        } else {
            ZR_Handle::AddUniBuffer(&unit, 1);
        }
    }
    void AddUnistring(const PA_Unistring* record);
    void AddCFString(const __CFString* string);
    void AddBuffer(const unsigned char* bytes, long n);  // zero extension
    void AddString(const unsigned char* bytes);          // zero-terminated, zero extension: Latin-1
    void AddString(const char* bytes) { AddString(reinterpret_cast<const unsigned char*>(bytes)); }
    void AddPascalString(const char* string);  // Required: signed length, sign extension: 0xE9 becomes 0xFFE9
    void AddUTF8String(const char* bytes);     // zero-terminated
    void AddUTF8String(const char* bytes, long n);
    void Add_wstring(void* string);  // a std::wstring
    void Add_wchar_t(const wchar_t* characters, long n);
    void AddLong(long value);                                     // decimal
    void AddLongWithFormat(long value, const char* format);       // the host's format
    void AddDouble(double value, long decimals, bool keepZeros);  // truncated, "." as point
    void AddTableName(long table);  // Required: replaces the contents, as AddFieldName does
    void AddFieldName(long table, long field);

    // Reading out --------------------------------------------------------------------------------------------------
    unsigned short* Units() const { return reinterpret_cast<unsigned short*>(data); }  // null = none
    unsigned short GetChar(long index) const { return index >= 0 && index < count && data ? Units()[index] : 0; }
    unsigned short* GetUniCharPtr();  // data with a zero unit behind the last, not counted; borrowed; null = no memory
    char* GetCStringPtr();            // units from 256 up as blanks; borrowed until the next call or Dispose
    PA_Unistring GetUnistring();      // handed over; all count units, zero units among them
    PA_Unistring* GetUnistringPtr();  // the cached record; borrowed until the next call or Dispose
    void SetUnistring(const PA_Unistring* record);  // replaces the contents
    // Units from first, the smaller of wanted and room; units behind the end read as 0; [0..count).
    // Required: terminating puts the zero at out[first + number], not at out[number].
    void ReadUniBuffer(unsigned short* out, long first, long wanted, long room, bool terminate) const;
    void ReadBuffer(char* out, long first, long n) const;  // low bytes; behind the end 0; [0..count)
    void ReadAsString(unsigned char* out, long n) const;   // at most n low bytes and a zero byte
    void ToCString(char* out, long size) const;            // at most size - 1 low bytes and a zero byte
    void ToWString(unsigned short* out, long size) const;  // the same in units
    ZR_Handle CreateHandle(PA_4DCharSet charset);          // bytes; handed over. Required: UTF-8 has 2 bytes a unit
    void Get_wstring(void* string);                        // assigns to a std::wstring
    const __CFString* GetNSStringRef();                    // handed over
    PA_Variable CreateVariable();                          // kind 33; handed over
    void To4DVariable(PA_Variable* variable);
    void To4DArray(PA_Variable* array, long index);       // [1..size]
    void To4DParameter(PluginBlock* block, short index);  // [1..]
    void ReturnText(PluginBlock* block);

    // Editing ------------------------------------------------------------------------------------------------------
    void SetLength(long n);                                    // new units are not cleared
    void SetChar(long index, unsigned short unit);             // [0..capacity)
    void Substring(ZR_Text* to, long first, long last) const;  // both ends inclusive, [0..count]; replaces to
    void Insert(long position, const ZR_Text* text);           // [gap 0..count]; outside = nothing
    void Insert(long position, const char* bytes);             // Required: sign extension
    void Delete(long first, long last);                        // both ends inclusive, [0..count)
    void Uppercase();                                          // ASCII
    void Lowercase();

    // Searching and comparing; the flag is case sensitivity, folding ASCII -----------------------------------------
    long SearchForByte(unsigned short unit, long start) const;                 // [0..count); -1 = none
    long SearchForByteString(const unsigned char* pattern, long start) const;  // [0..count); -1 = none
    long SearchForByteString(const char* pattern, long start) const {
        return SearchForByteString(reinterpret_cast<const unsigned char*>(pattern), start);
    }
    long CountChar(unsigned short unit) const;
    bool Equal(const ZR_Text* other) const;
    bool Equal(const ZR_Text* other, bool caseSensitive) const;
    bool Equal(const unsigned char* bytes) const;  // zero-terminated, zero extension
    bool Equal(const unsigned char* bytes, bool caseSensitive) const;
    bool Equal(const char* bytes) const { return Equal(reinterpret_cast<const unsigned char*>(bytes)); }
    bool Equal(const char* bytes, bool caseSensitive) const {
        return Equal(reinterpret_cast<const unsigned char*>(bytes), caseSensitive);
    }
    bool Equal(const unsigned short* units, long n, bool caseSensitive) const;
    bool BeginsWithString(const char* pattern) const;                 // empty = false; sign extension
    bool BeginsWithString(const char* pattern, long position) const;  // [1..count]
    bool BeginsWithString(const char* pattern, long position, bool caseSensitive) const;
    bool EqualWithWildChar(const ZR_Text* other);  // the host's comparison, @ in other is a wildcard

    // Numbers ------------------------------------------------------------------------------------------------------
    long ReadLong(long position) const;        // digits only; overflow wraps; [1..count]
    long ReadLongAsText(long position) const;  // the same, [0..count)
    ZR_Text ReadNumbers(long position) const;  // the run of digits; [1..count]; handed over
    double ReadDouble(long position) const;    // digits, a point, at most four decimals; [1..count]

    // Host localisation: append what the host knows under the key --------------------------------------------------
    void GetLocalizedString(const char* key);
    void GetLocalizedString(long list, long number);

    // HTML: ZR_API_Text_HTML.cpp -----------------------------------------------------------------------------------
    void EncodeHTML();  // every unit that has an entity becomes its name, in place
    // The unit at *position becomes the name, with "&" and ";" around it if wrap; *position moves to its last unit.
    void AddEntity(long* position, const char* name, bool wrap);
    // Quotes, & and angle brackets as names, units above 159 as numbers; destination is living and replaced.
    void GetHTMLText(ZR_Text* destination) const;

    // Matching: ZR_API_Text_Matching.cpp ---------------------------------------------------------------------------
    // Of the first units of both, exact by unit. matrix: at least a row more than thisLength of a column more than
    // otherLength, kept for the caller; null = made and freed. Beyond 2^32 cells the greater length.
    long EditDistance(long thisLength, const ZR_Text* other, long otherLength, long** matrix) const;
    // 0..100; two empty texts 0. Required: without caseSensitive both texts stay in upper case.
    double PercentMatch(ZR_Text* other, bool caseSensitive, long** matrix);

    // Base64: ZR_API_Text_Base64.cpp -------------------------------------------------------------------------------
    void Encode(const ZR_Handle* source);  // appends the source's bytes, without line breaks
    void Decode(ZR_Handle* destination);   // up to the first other character; destination is living and replaced

    // Replacing: ZR_API_Text_Replace.cpp ---------------------------------------------------------------------------
    // Every place in turn; null or empty replacement = taken out. Required: then the unit behind a place is passed
    // over.
    void Replace(const ZR_Text* search, const ZR_Text* replacement);
    void Replace(const char* search, const char* replacement);
    void Replace(const char* search, const ZR_Text* replacement);
    void ReplaceChar(unsigned short from, unsigned short to);
    void Filter(const ZR_Text* search);    // as Replace with nothing
    void Filter(unsigned short unit);      // every one
    ZR_Text CreateCSVConformText() const;  // in quotes, quotes doubled, if it holds " , ; CR or LF; handed over
};
static_assert(sizeof(ZR_Text) == 80, "a handle, a 20-byte record, a flag, a pointer");

extern const char base64_chars[65];  // the alphabet of base64, by value, and a zero byte

// The table of EditDistance: rows of columns cells, not cleared; null = refused. The rows must be those it was made
// with.
long** ZR_createMatrix(long rows, long columns);
void ZR_killMatrix(long** matrix, long rows);  // null = nothing

// Zero-terminated and Pascal strings -------------------------------------------------------------------------------
long ZR_CStringLength(const char* string);                               // null = 0
long ZR_CStringLength(const unsigned char* string);                      // null = 0
long ZR_UniStringLength(const unsigned short* units);                    // null = 0
long ZR_FindInCString(const unsigned char* string, unsigned char byte);  // [0..length); -1 = none
void ZR_NumToString(long value, char* out);                              // at most 20 characters and a zero byte
void ZR_NumToZRText(long value, ZR_Text* text);                          // replaces the contents
// Rounded half up. Required: below 1 neither a point nor leading zeros appear: 0.25 with 2 decimals is "25".
void ZR_RealToString(double value, long decimals, char* out);        // at most 21 characters and a zero byte
void ZR_CstrToPstr(const char* string, unsigned char* out);          // at most 255 characters; null = length 0
void ZR_CstrToPstr(const char* string, unsigned char* out, long n);  // exactly n bytes
void ZR_CstrToPstrWithMaxLen(const char* string, char* out, long maximum);
void ZR_PstrToCstr(const char* string, char* out);  // Required: signed length, from 128 nothing
bool ZR_StringCompare(const char* left, const char* right, bool caseSensitive);  // true = equal

#endif
