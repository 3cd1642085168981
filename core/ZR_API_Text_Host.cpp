// Texts and the host: charsets, host strings, variables, arrays, parameters and localisation; CFStrings.
#include <algorithm>
#include <climits>
#include <string>

#include "core/ZR_API_Memory_Private.h"
#include "core/ZR_API_Text.h"
#include "platform/CoreFoundation/CoreFoundation.h"
#include "plugin/ZR_API_Bridge.h"

static constexpr long kNameUnits = 256;  // a name or a formatted text of the host, with its terminator

// Parameter records of a command: [1..]; null = none.
template <class Record>
static Record* ParameterRecord(PluginBlock* block, long index) {
    if (!block || !block->parameters || index < 1) return nullptr;
    return static_cast<Record*>(block->parameters[index - 1]);
}

// Charsets ---------------------------------------------------------------------------------------------------------

static void AddConverted(ZR_Text* text, const char* bytes, long n, PA_4DCharSet charset) {
    if (!bytes || n < 1 || n > INT_MAX / 2) return;  // the host counts in 32 bits
    char* units = ZR_AllocateBlock(n * 2);
    if (!units) return;
    long written = PA_ConvertCharsetToCharset(bytes, n, charset, units, n * 2, eCS_UTF16);
    text->AddUniBuffer(reinterpret_cast<unsigned short*>(units), std::min(written, n * 2) / 2);
    ZR_FreeBlock(units);
}

void ZR_Text::Create(const char* bytes, long n, PA_4DCharSet charset) {
    Create();
    AddConverted(this, bytes, n, charset);
}

void ZR_Text::CreateFromHandle(const ZR_Handle* bytes, PA_4DCharSet charset) {
    Create();
    if (bytes) AddConverted(this, bytes->data, bytes->count, charset);
}

void ZR_Text::AddUTF8String(const char* bytes) { AddUTF8String(bytes, ZR_CStringLength(bytes)); }

void ZR_Text::AddUTF8String(const char* bytes, long n) { AddConverted(this, bytes, n, eCS_UTF8); }

// The text in a charset, in a block of shift times its units; *written = bytes; null = nothing.
static char* ConvertOut(const ZR_Text* text, PA_4DCharSet charset, long* written) {
    *written = 0;
    // Required: 2 bytes a unit for every charset but the 32-bit one, so that UTF-8 may be cut where the host stops.
    long room = text->count << (charset == eCS_UTF32 ? 2 : 1);
    if (!text->data || text->count < 1 || room > INT_MAX) return nullptr;
    char* bytes = ZR_AllocateBlock(room);
    if (!bytes) return nullptr;
    *written = PA_ConvertCharsetToCharset(text->data, text->count * 2, eCS_UTF16, bytes, room, charset);
    *written = std::clamp(*written, 0L, room);
    return bytes;
}

ZR_Handle ZR_Text::CreateHandle(PA_4DCharSet charset) {
    ZR_Handle handle;
    handle.Create(1, 0);
    long written;
    char* bytes = ConvertOut(this, charset, &written);
    handle.AddCharBuffer(bytes, written);
    ZR_FreeBlock(bytes);
    return handle;
}

void ZR_Text::Get_wstring(void* string) {
    if (!string) return;
    long written;
    char* bytes = ConvertOut(this, eCS_UTF32, &written);
    auto wide = static_cast<std::wstring*>(string);
    wide->resize(static_cast<size_t>(written) / sizeof(wchar_t));
    if (!wide->empty()) memcpy(wide->data(), bytes, wide->size() * sizeof(wchar_t));
    ZR_FreeBlock(bytes);
}

// CFStrings and wide strings ---------------------------------------------------------------------------------------

void ZR_Text::Create(const __CFString* string) {
    Create();
    AddCFString(string);
}

void ZR_Text::Create(void* string) { Create(static_cast<const __CFString*>(string)); }

void ZR_Text::AddCFString(const __CFString* string) {
    CFIndex n = string ? CFStringGetLength(string) : 0, used = 0;
    char* bytes = ZR_AllocateBlock(n * 2);
    if (!bytes) return;
    CFStringGetBytes(string, CFRangeMake(0, n), kCFStringEncodingUnicode, /*lossByte*/ 0, /*isExternal*/ false,
                     reinterpret_cast<UInt8*>(bytes), n * 2, &used);
    AddUniBuffer(reinterpret_cast<unsigned short*>(bytes), used / 2);
    ZR_FreeBlock(bytes);
}

void ZR_Text::Add_wstring(void* string) {
    if (auto wide = static_cast<std::wstring*>(string)) Add_wchar_t(wide->data(), static_cast<long>(wide->size()));
}

void ZR_Text::Add_wchar_t(const wchar_t* characters, long n) {
    static_assert(sizeof(wchar_t) == 4, "wide characters are 32-bit units");
    if (!characters || n < 1 || n > kLargestBlock / 4) return;
    CFStringRef string = CFStringCreateWithBytes(kCFAllocatorDefault, reinterpret_cast<const UInt8*>(characters), n * 4,
                                                 kCFStringEncodingUTF32LE, /*isExternal*/ false);
    if (!string) return;
    AddCFString(string);
    CFRelease(string);
}

const __CFString* ZR_Text::GetNSStringRef() {
    return CFStringCreateWithBytes(kCFAllocatorDefault, reinterpret_cast<const UInt8*>(data), data ? count * 2 : 0,
                                   kCFStringEncodingUTF16LE, /*isExternal*/ false);
}

// Host strings -----------------------------------------------------------------------------------------------------

void ZR_Text::CreateWithUnistringPtr(const PA_Unistring* record) {
    Create();
    AddUnistring(record);
}

void ZR_Text::CreateWithUnistringAndDisposeUnistring(PA_Unistring record) {
    Create();
    AddUnistring(&record);
    PA_DisposeUnistring(&record);
}

void ZR_Text::Dispose() {
    ZR_Handle::Dispose();
    ZR_FreeBlock(cString);
    cString = nullptr;
    if (unistringValid) PA_DisposeUnistring(&unistring);
    unistringValid = false;
}

PA_Unistring ZR_Text::GetUnistring() { return PA_CreateUnistringWithLength(GetUniCharPtr(), count); }

PA_Unistring* ZR_Text::GetUnistringPtr() {
    if (unistringValid) PA_DisposeUnistring(&unistring);
    unistring = GetUnistring();
    unistringValid = true;
    return &unistring;
}

bool ZR_Text::EqualWithWildChar(const ZR_Text* other) {
    long left = std::max(count, 0L), right = other ? std::max(other->count, 0L) : 0;
    if (left == 0 || right == 0) return left == right;
    return PA_CompareUniBuffers(Units(), left, other->Units(), right, /*diacritic*/ false, /*wildcard*/ true) == 0;
}

// Variables, arrays, parameters ------------------------------------------------------------------------------------

void ZR_Text::CreateFrom4DVariable(PA_Variable* variable) {
    Create();
    if (!variable || UnifyVarKind(variable->fType) != eVK_Text) return;
    PA_Unistring record = PA_GetStringVariable(variable);
    AddUnistring(&record);
    PA_DisposeUnistring(&record);
}

void ZR_Text::CreateFrom4DArray(PA_Variable* array, long index) {
    Create();
    PA_Unistring record = PA_GetStringInArray(array, index);  // borrowed from the array
    AddUnistring(&record);
}

void ZR_Text::CreateFrom4DParameter(PluginBlock* block, short index) {
    Create();
    AddUnistring(ParameterRecord<PA_Unistring>(block, index));
}

PA_Variable ZR_Text::CreateVariable() {
    PA_Variable variable = PA_CreateVariable(eVK_Text);
    PA_SetStringVariable(&variable, GetUnistring());
    return variable;
}

void ZR_Text::To4DVariable(PA_Variable* variable) {
    if (variable) PA_SetStringVariable(variable, GetUnistring());
}

void ZR_Text::To4DArray(PA_Variable* array, long index) {
    if (array) PA_SetStringInArray(array, index, GetUnistring());
}

void ZR_Text::To4DParameter(PluginBlock* block, short index) {
    if (auto record = ParameterRecord<PA_Unistring>(block, index))
        PA_SetUnistringWithLength(record, GetUniCharPtr(), count);
}

void ZR_Text::ReturnText(PluginBlock* block) {
    if (block && block->result)
        PA_SetUnistringWithLength(static_cast<PA_Unistring*>(block->result), GetUniCharPtr(), count);
}

// Names, formats, localisation -------------------------------------------------------------------------------------

void ZR_Text::AddTableName(long table) {
    PA_Unichar name[kNameUnits] = {};
    Resize(0);
    PA_GetTableName(table, name);
    AddUnichar(name);
}

void ZR_Text::AddFieldName(long table, long field) {
    PA_Unichar name[kNameUnits] = {};
    Resize(0);
    PA_GetFieldName(table, field, name);
    AddUnichar(name);
}

void ZR_Text::AddLongWithFormat(long value, const char* format) {
    PA_Unichar buffer[kNameUnits] = {};
    ZR_Text wide;
    wide.Create();
    wide.AddString(format);
    PA_FormatLongint(value, wide.GetUniCharPtr(), buffer);
    AddUnichar(buffer);
    wide.Dispose();
}

void ZR_Text::GetLocalizedString(const char* key) {
    ZR_Text wide;
    wide.Create();
    wide.AddString(key);
    PA_Unistring record = {};
    PA_LocaliseString(wide.GetUniCharPtr(), &record, 1);
    AddUnistring(&record);
    PA_DisposeUnistring(&record);
    wide.Dispose();
}

void ZR_Text::GetLocalizedString(long list, long number) {
    PA_Unistring record = PA_LocaliseStringByID(list, number, 1);
    AddUnistring(&record);
    PA_DisposeUnistring(&record);
}
