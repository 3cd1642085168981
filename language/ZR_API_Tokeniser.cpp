#include "language/ZR_API_Tokeniser.h"

#include <algorithm>
#include <charconv>

#include "language/ZR_API_Executer.h"
#include "language/ZR_API_Names_Private.h"
#include "language/ZR_API_TokenBlob.h"
#include "language/ZR_API_Token_Private.h"
#include "language/ZR_API_VirtualStructure_Private.h"
#include "plugin/ZR_API_Bridge.h"
#include "plugin/ZR_API_Numbers.h"

// Units -----------------------------------------------------------------------------------------------------------

enum : unsigned char {
    kDigit = 1,
    kLetter = 2,      // ASCII
    kNameLetter = 4,  // the seven letters beyond ASCII that a name may hold
    kUnderscore = 8,
    kBlank = 16,
    kHexDigit = 32,
    kBracket = 64,  // [ and ]
    kNameStart = kLetter | kNameLetter | kUnderscore,
    kName = kNameStart | kDigit | kBlank,
    kMember = kLetter | kDigit | kUnderscore,
    kReference = kName | kBracket
};

struct UnitClasses {
    unsigned char of[256];
};

static constexpr UnitClasses MakeUnitClasses() {
    UnitClasses classes = {};
    for (int c = 0; c < 128; c++) {
        bool digit = c >= '0' && c <= '9';
        bool letter = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
        bool hex = digit || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f');
        classes.of[c] =
            static_cast<unsigned char>((digit ? kDigit : 0) | (letter ? kLetter : 0) | (hex ? kHexDigit : 0));
    }
    for (int c : {0xC4, 0xD6, 0xDC, 0xDF, 0xE4, 0xF6, 0xFC}) classes.of[c] = kNameLetter;
    classes.of[static_cast<int>('_')] = kUnderscore;
    classes.of[static_cast<int>(' ')] = kBlank;
    classes.of[static_cast<int>('[')] = kBracket;
    classes.of[static_cast<int>(']')] = kBracket;
    return classes;
}

static constexpr UnitClasses kUnitClasses = MakeUnitClasses();

static inline bool Is(unsigned short unit, unsigned char classes) {
    return unit < 256 && (kUnitClasses.of[unit] & classes) != 0;
}

// Scanner ---------------------------------------------------------------------------------------------------------

static constexpr long kStaleUnitsPerUnit = 64;  // see Flush

struct Scanner {
    ZR_Handle* tokens;
    ZR_Handle* runs;    // null = none wanted
    ZR_Handle* styles;  // read only with runs
    ZR_Executer* executer;
    ZR_CaptionLookup captions;
    unsigned short decimalSeparator;  // 0 = none

    const unsigned short* line;
    long count;         // units of the line
    long lineStart;     // units ahead of the line
    long at;            // [0..count]: the unit to be scanned next
    long pendingStart;  // [0..count]: units read but in no token
    long pendingLength;
    bool pendingStale;  // flushed before and not cleared
    long staleUnits;    // that this line may still emit again
};

static unsigned short UnitAt(const Scanner* scanner, long index) {  // 0 behind the end
    return index < scanner->count ? scanner->line[index] : 0;
}

static long EndOfClass(const Scanner* scanner, long from, unsigned char classes) {
    while (from < scanner->count && Is(scanner->line[from], classes)) from++;
    return from;
}

static long Search(const Scanner* scanner, unsigned short unit, long from) {  // -1 = none
    for (; from < scanner->count; from++)
        if (scanner->line[from] == unit) return from;
    return -1;
}

// A list that grows in a long text grows by half its size, so that it is not moved again and again.
static ZR_Executer_Token* Append(ZR_Handle* tokens, ZREXE_TOKEN kind) {
    if (tokens->count >= tokens->capacity) zrExe_ReserveTokens(tokens, tokens->count / 2 + 1);
    return zrExe_AppendToken(tokens, kind);
}

static void AddText(Scanner* scanner, ZREXE_TOKEN kind, long from, long length) {
    ZR_Executer_Token* token = Append(scanner->tokens, kind);
    if (token && length > 0) token->text.AddUniBuffer(scanner->line + from, length);
}

static void AddInteger(Scanner* scanner, ZREXE_TOKEN kind, long value) {
    ZR_Executer_Token* token = Append(scanner->tokens, kind);
    if (token) token->value.integer = value;
}

// Runs ------------------------------------------------------------------------------------------------------------

void zrExe_AddCodeStyleRun(long start, long end, ZREXE_TOKEN kind, ZR_Handle* runs, ZR_Handle* styles) {
    char* place = runs ? runs->AppendGetPtr() : nullptr;
    if (!place) return;
    memset(place, 0, sizeof(ZR_Executer_CodeRun));
    ZR_Executer_CodeRun* run = reinterpret_cast<ZR_Executer_CodeRun*>(place);
    run->kind = static_cast<short>(kind);
    run->color.alpha = 1.0f;
    run->start = start;
    run->end = end;
    short type = zrExe_Get4DCodeStyleFromTokenType(run->kind);
    if (const ZR_Executer_Codestyle* style = zrExe_GetCodeStyleByType(styles, type)) {
        run->color = style->color;
        run->style = style->style;
    }
}

// A run that starts at a unit of the line and ends that many units on.
static void AddRun(Scanner* scanner, ZREXE_TOKEN kind, long from, long further) {
    if (!scanner->runs) return;
    long position = scanner->lineStart + from + 1;
    zrExe_AddCodeStyleRun(position, position + further, kind, scanner->runs, scanner->styles);
}

// Pending units ---------------------------------------------------------------------------------------------------

static void EmitPending(Scanner* scanner, long start, long length) {
    AddText(scanner, ZREXE_TOKEN_OTHER, start, length);
    AddRun(scanner, ZREXE_TOKEN_OTHER, start, length - 1);
}

// Required: flushing alone does not clear, so behind [[, ]] and 0x the same units are emitted again.
static void Flush(Scanner* scanner) {
    if (scanner->pendingLength <= 0) return;
    if (scanner->pendingStale) {
        // Repeats grow with the square of the line: a line of more than 512 units stops repeating at some point.
        scanner->staleUnits -= scanner->pendingLength;
        if (scanner->staleUnits < 0) return;
    }
    EmitPending(scanner, scanner->pendingStart, scanner->pendingLength);
    scanner->pendingStale = true;
}

static inline void Clear(Scanner* scanner) {
    scanner->pendingStart = scanner->at;
    scanner->pendingLength = 0;
    scanner->pendingStale = false;
}

void zrExe_TokenCheckRest2(ZR_Text* line, long start, long length, ZR_Handle* tokens, ZR_Handle* runs,
                           ZR_Handle* styles, long lineStart) {
    long from = start - 1;
    if (from < 0 || from >= line->count) return;  // units that are not there are not read
    length = std::min(length, line->count - from);
    if (length <= 0) return;
    ZR_Executer_Token* token = zrExe_AppendToken(tokens, ZREXE_TOKEN_OTHER);
    if (token) token->text.AddUniBuffer(line->Units() + from, length);
    if (runs) zrExe_AddCodeStyleRun(lineStart + start, lineStart + start + length - 1, ZREXE_TOKEN_OTHER, runs, styles);
}

// Single marks ----------------------------------------------------------------------------------------------------

static void ScanMark(Scanner* scanner, ZREXE_TOKEN kind, long length) {  // with a run, cleared
    Flush(scanner);
    Append(scanner->tokens, kind);
    AddRun(scanner, kind, scanner->at, length - 1);
    scanner->at += length;
    Clear(scanner);
}

static void ScanIndexMark(Scanner* scanner, ZREXE_TOKEN kind) {  // [[ and ]]; Required: not cleared
    Append(scanner->tokens, kind);
    AddRun(scanner, kind, scanner->at, 0);
    scanner->at += 2;
}

static void ScanFormula(Scanner* scanner, unsigned short unit) {
    Flush(scanner);
    ZR_Executer_Token* token = Append(scanner->tokens, ZREXE_TOKEN_FORMULA);
    if (token) token->value.unit = unit;
    AddRun(scanner, ZREXE_TOKEN_FORMULA, scanner->at, 0);
    scanner->at++;
    Clear(scanner);
}

static void ScanSilentMark(Scanner* scanner, ZREXE_TOKEN kind, long value, long length) {  // no run
    Flush(scanner);
    AddInteger(scanner, kind, value);
    scanner->at += length;
    Clear(scanner);
}

static void ScanBranch(Scanner* scanner) {  // the : of Case of
    Flush(scanner);
    AddInteger(scanner, ZREXE_TOKEN_COMMAND, ZR_CMD_BRANCH);
    AddRun(scanner, ZREXE_TOKEN_COMMAND, scanner->at, 0);
    scanner->at++;
    Clear(scanner);
}

// Literals --------------------------------------------------------------------------------------------------------

static void FinishAsRaw(Scanner* scanner) {  // no closing mark: the rest of the line is raw text
    AddText(scanner, ZREXE_TOKEN_OTHER, scanner->at, scanner->count - scanner->at);
    scanner->at = scanner->count;
    Clear(scanner);
}

static void CopyName(PA_Unichar (&name)[256], const unsigned short* units, long count) {
    count = std::min(count, 255L);  // as the host's names are cut
    if (count > 0) memcpy(name, units, count * sizeof(PA_Unichar));
    name[count] = 0;
}

static void ScanDateOrTime(Scanner* scanner, unsigned short mark) {
    Flush(scanner);
    long first = scanner->at + 1;
    long closing = Search(scanner, mark, first);
    if (closing < 0) return FinishAsRaw(scanner);
    PA_Unichar name[256];
    CopyName(name, scanner->line + first, closing - first);
    if (mark == '?') {
        AddInteger(scanner, ZREXE_TOKEN_TIME, PA_EvalTime(name));
    } else {
        ZR_TokenValue value = {0};
        PA_EvalDate(name, &value.date.day, &value.date.month, &value.date.year);
        AddInteger(scanner, ZREXE_TOKEN_DATE, value.integer);
    }
    scanner->at = closing + 1;
    Clear(scanner);
}

static long EndOfString(const Scanner* scanner, long from) {  // the closing quote; -1 = none
    for (long i = from; i < scanner->count; i++)
        if (scanner->line[i] == '"' && (i == from || scanner->line[i - 1] != '\\')) return i;
    return -1;
}

static long ReplaceEscape(unsigned short* units, long count, unsigned short escaped, unsigned short unit) {
    long to = 0;
    for (long from = 0; from < count; from++) {
        bool found = units[from] == '\\' && from + 1 < count && units[from + 1] == escaped;
        units[to++] = found ? unit : units[from];
        if (found) from++;
    }
    return to;
}

static constexpr struct {
    unsigned short escaped, unit;
} kEscapes[] = {{'"', '"'}, {'r', '\r'}, {'n', '\n'}, {'t', '\t'}, {'\\', '\\'}};

// Required: each escape is replaced over the whole text, the backslash last, so \\r becomes a backslash and CR.
static void ResolveEscapes(ZR_Text* text) {
    if (text->SearchForByte('\\', 0) < 0) return;
    for (const auto& row : kEscapes) text->count = ReplaceEscape(text->Units(), text->count, row.escaped, row.unit);
}

static void ScanString(Scanner* scanner) {
    Flush(scanner);
    long first = scanner->at + 1;
    long closing = EndOfString(scanner, first);
    if (closing < 0) return FinishAsRaw(scanner);
    ZR_Executer_Token* token = Append(scanner->tokens, ZREXE_TOKEN_STRING);
    if (token && closing > first) {
        token->text.AddUniBuffer(scanner->line + first, closing - first);
        ResolveEscapes(&token->text);
    }
    scanner->at = closing + 1;
    Clear(scanner);
}

static constexpr double kPowersOfTen[] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                          1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
static constexpr long kExactDigits = 15;  // so many decimal digits fit a double exactly

// As atof in the C locale: what does not fit is infinite, or 0.
static double ParseDecimal(const char* text, long length) {
    double value = 0;
    std::from_chars_result result = std::from_chars(text, text + length, value);
    if (result.ec != std::errc::result_out_of_range) return value;
    bool large = false;
    for (const char* at = text; at < result.ptr && *at != '.'; at++) large = large || *at != '0';
    return large ? __builtin_inf() : 0.0;
}

// Digits and separators to a number; "," counts as ".", a second point ends it, so does any other separator.
static double NumberOf(const unsigned short* units, long count) {
    unsigned long digits = 0;
    long decimals = -1;  // behind the point; -1 = no point yet
    long used = 0;
    for (; used < count; used++) {
        unsigned short unit = units[used];
        bool point = unit == '.' || unit == ',';
        if (point ? decimals >= 0 : !Is(unit, kDigit)) break;
        if (point) {
            decimals = 0;
            continue;
        }
        if (used < 18) digits = digits * 10 + (unit - '0');
        if (decimals >= 0) decimals++;
    }
    if (used <= kExactDigits) return static_cast<double>(digits) / kPowersOfTen[std::max(decimals, 0L)];
    ZR_Handle text;
    text.Create(1, used);
    if (text.data)
        for (long i = 0; i < used; i++) text.data[i] = units[i] == ',' ? '.' : static_cast<char>(units[i]);
    double value = text.data ? ParseDecimal(text.data, used) : 0.0;
    text.Dispose();
    return value;
}

static void ScanNumber(Scanner* scanner) {
    Flush(scanner);
    long end = scanner->at;
    while (end < scanner->count &&
           (Is(scanner->line[end], kDigit) ||
            (scanner->line[end] == scanner->decimalSeparator && scanner->decimalSeparator != 0)))
        end++;
    ZR_Executer_Token* token = Append(scanner->tokens, ZREXE_TOKEN_NUMBER);
    if (token) token->value.real = NumberOf(scanner->line + scanner->at, end - scanner->at);
    AddRun(scanner, ZREXE_TOKEN_NUMBER, scanner->at, end - scanner->at - 1);
    scanner->at = end;
    Clear(scanner);
}

static long HexValue(const unsigned short* units, long digits) {
    char text[9] = "00000000";
    for (long i = 0; i < digits; i++) text[8 - digits + i] = static_cast<char>(units[i]);
    return static_cast<long>(hex2decimal(text));
}

static void ScanHexadecimal(Scanner* scanner) {  // Required: not cleared
    Flush(scanner);
    long start = scanner->at;
    long first = start + 2;
    if (first >= scanner->count) {  // Required: an x that ends the line is scanned next, as a name
        scanner->at = start + 1;
        return;
    }
    long end = EndOfClass(scanner, first, kHexDigit);
    long digits = end - first;
    scanner->at = end;
    if (digits == 0) return;
    ZREXE_TOKEN kind = digits > 8 ? ZREXE_TOKEN_OTHER : ZREXE_TOKEN_LONGINT;
    if (digits > 8) AddText(scanner, kind, start, digits + 2);
    else AddInteger(scanner, kind, HexValue(scanner->line + first, digits));
    AddRun(scanner, kind, start, digits - 1);  // Required: two units short
}

static void ScanComment(Scanner* scanner) {
    Flush(scanner);
    long first = scanner->at + 2;
    long length = scanner->count - first;
    AddText(scanner, ZREXE_TOKEN_COMMENT, first, length);
    AddRun(scanner, ZREXE_TOKEN_COMMENT, scanner->at, length - 1);  // Required: two units short
    scanner->at = scanner->count;
    Clear(scanner);
}

// Names -----------------------------------------------------------------------------------------------------------

static void ScanMember(Scanner* scanner) {
    Flush(scanner);
    long first = scanner->at + 1;
    long end = EndOfClass(scanner, first, kMember);
    ZREXE_TOKEN kind = UnitAt(scanner, end) == '(' ? ZREXE_TOKEN_MEMBER_CALL : ZREXE_TOKEN_MEMBER;
    if (end > first) AddText(scanner, kind, first, end - first);
    scanner->at = end;
    Clear(scanner);
}

// Blanks inside belong to a name, trailing ones do not.
// Required: a name ends in front of a blank and 0x, so that a 0x12 is a name and a literal.
static long EndOfName(const Scanner* scanner, long first) {
    long end = first;
    for (; end < scanner->count && Is(scanner->line[end], kName); end++) {
        bool behindBlank = end > first && scanner->line[end - 1] == ' ';
        if (behindBlank && scanner->line[end] == '0' && UnitAt(scanner, end + 1) == 'x') break;
    }
    while (end > first && scanner->line[end - 1] == ' ') end--;
    return end;
}

static ZREXE_TOKEN AddName(Scanner* scanner, long first, long length) {
    const unsigned short* name = scanner->line + first;
    if (scanner->executer) {
        if (ZR_Executer_Command* command = scanner->executer->Search4DCommandForTokenization(name, length)) {
            AddInteger(scanner, ZREXE_TOKEN_COMMAND, command->id);
            return ZREXE_TOKEN_COMMAND;
        }
    }
    if (ZR_Executer_VirtualStructure* method = scanner->captions.Method(name, length)) {
        ZR_Executer_Token* token = Append(scanner->tokens, ZREXE_TOKEN_METHOD);
        if (token) token->text.AddText(&method->name);
        return ZREXE_TOKEN_METHOD;
    }
    AddText(scanner, ZREXE_TOKEN_VARIABLE, first, length);
    return ZREXE_TOKEN_VARIABLE;
}

static void ScanName(Scanner* scanner) {
    Flush(scanner);
    long end = EndOfName(scanner, scanner->at);
    ZREXE_TOKEN kind = AddName(scanner, scanner->at, end - scanner->at);
    AddRun(scanner, kind, scanner->at, end - scanner->at - 1);
    scanner->at = end;
    Clear(scanner);
}

static void ScanPrefixedName(Scanner* scanner, ZREXE_TOKEN kind, long prefix) {  // the name may be empty
    Flush(scanner);
    long first = scanner->at + prefix;
    long end = EndOfName(scanner, first);
    AddText(scanner, kind, first, end - first);
    AddRun(scanner, kind, scanner->at, end - scanner->at - 1);
    scanner->at = end;
    Clear(scanner);
}

// Table and field references --------------------------------------------------------------------------------------

struct Reference {
    const unsigned short* units;
    long count;
    long table, field;     // 0 = not found
    long rest, restCount;  // units behind the table that are no field
};

static void ResolveByCaption(ZR_CaptionLookup* captions, Reference* reference) {
    const unsigned short* units = reference->units;
    long closing = 1;
    while (closing < reference->count && units[closing] != ']') closing++;
    if (closing >= reference->count) return;
    if (ZR_Executer_VirtualStructure* table = closing > 1 ? captions->Table(units + 1, closing - 1) : nullptr)
        reference->table = table->tableNumber;
    // Required: the units behind ] are kept whether the table was found or not, and trailing blanks count.
    reference->rest = closing + 1;
    reference->restCount = reference->count - reference->rest;
    if (reference->restCount == 0) return;
    if (ZR_Executer_VirtualStructure* field =
            captions->Field(reference->table, units + reference->rest, reference->restCount)) {
        reference->field = field->fieldNumber;
        reference->restCount = 0;
    }
}

static void ResolveByHost(ZR_CaptionLookup* captions, Reference* reference) {
    PA_Unichar name[256];
    CopyName(name, reference->units, reference->count);
    short table = 0, field = 0;
    PA_GetTableAndFieldNumbers(name, &table, &field);
    if (captions->TableNumber(table)) return;  // Required: a listed table hides its true name
    reference->table = table;
    reference->field = field;
}

static void ScanReference(Scanner* scanner) {
    Flush(scanner);
    long start = scanner->at;
    long end = EndOfClass(scanner, start, kReference);
    Reference reference = {scanner->line + start, end - start, 0, 0, 0, 0};
    if (scanner->captions.list) ResolveByCaption(&scanner->captions, &reference);
    if (reference.table == 0 && reference.field == 0) ResolveByHost(&scanner->captions, &reference);

    ZREXE_TOKEN kind = ZREXE_TOKEN_OTHER;
    if (reference.field > 0) {
        kind = ZREXE_TOKEN_FIELD;
        unsigned long packed =
            (static_cast<unsigned long>(reference.table) << 16) + static_cast<unsigned long>(reference.field);
        AddInteger(scanner, kind, static_cast<long>(packed));
    } else if (reference.table > 0) {
        kind = ZREXE_TOKEN_TABLE;
        AddInteger(scanner, kind, reference.table);
    } else {
        AddText(scanner, kind, start, end - start);
    }
    if (scanner->runs)  // Required: the end is counted in the line, and in any later line lies ahead of the start
        zrExe_AddCodeStyleRun(scanner->lineStart + start + 1, end, kind, scanner->runs, scanner->styles);
    if (reference.restCount > 0) AddText(scanner, ZREXE_TOKEN_OTHER, start + reference.rest, reference.restCount);
    scanner->at = end;
    Clear(scanner);
}

// Rules -----------------------------------------------------------------------------------------------------------

// The marks that come before numbers; false = none of them, nothing done.
static bool ScanEarlyMark(Scanner* scanner, unsigned short c) {
    unsigned short next = UnitAt(scanner, scanner->at + 1);
    switch (c) {
        case '!':
        case '?': ScanDateOrTime(scanner, c); return true;
        case '"': ScanString(scanner); return true;
        case '(': ScanMark(scanner, ZREXE_TOKEN_OPEN, 1); return true;
        case ')': ScanMark(scanner, ZREXE_TOKEN_CLOSE, 1); return true;
        case '.': ScanMember(scanner); return true;
        case ';': ScanMark(scanner, ZREXE_TOKEN_SEMICOLON, 1); return true;
        case '[':
            if (next != '[') {
                ScanReference(scanner);
            } else {
                Flush(scanner);
                ScanIndexMark(scanner, ZREXE_TOKEN_INDEX_OPEN);
            }
            return true;
        case ']':  // Required: pending units stay pending; a single ] is dropped
            if (next == ']') ScanIndexMark(scanner, ZREXE_TOKEN_INDEX_CLOSE);
            else scanner->at++;
            return true;
        case '{': ScanMark(scanner, ZREXE_TOKEN_ELEMENT_OPEN, 1); return true;
        case '}': ScanMark(scanner, ZREXE_TOKEN_ELEMENT_CLOSE, 1); return true;
        case '-':
            if (next == '>') ScanMark(scanner, ZREXE_TOKEN_ARROW, 2);
            else ScanFormula(scanner, c);
            return true;
        case '/':
            if (next == '/') return false;
            ScanFormula(scanner, c);
            return true;
        case '*':
        case '+':
        case '%':
        case '\\':
        case '^': ScanFormula(scanner, c); return true;
        case ':':
            if (next == '=') ScanMark(scanner, ZREXE_TOKEN_ASSIGN, 2);
            else ScanBranch(scanner);
            return true;
        case '0':
            if (next != 'x') return false;
            ScanHexadecimal(scanner);
            return true;
        default: return false;
    }
}

static void ScanLateMark(Scanner* scanner, unsigned short c) {
    unsigned short next = UnitAt(scanner, scanner->at + 1);
    switch (c) {
        case '/': return ScanComment(scanner);
        case '$': return ScanPrefixedName(scanner, ZREXE_TOKEN_LOCAL, 1);
        case '<':
            if (next == '>') return ScanPrefixedName(scanner, ZREXE_TOKEN_INTERPROCESS, 2);
            if (next == '=') return ScanSilentMark(scanner, ZREXE_TOKEN_COMPARISON, ZREXE_COMPARISON_LESS_EQUAL, 2);
            return ScanSilentMark(scanner, ZREXE_TOKEN_COMPARISON, ZREXE_COMPARISON_LESS, 1);
        case '>':
            if (next == '=') return ScanSilentMark(scanner, ZREXE_TOKEN_COMPARISON, ZREXE_COMPARISON_GREATER_EQUAL, 2);
            return ScanSilentMark(scanner, ZREXE_TOKEN_COMPARISON, ZREXE_COMPARISON_GREATER, 1);
        case '#': return ScanSilentMark(scanner, ZREXE_TOKEN_COMPARISON, ZREXE_COMPARISON_UNEQUAL, 1);
        case '=': return ScanSilentMark(scanner, ZREXE_TOKEN_COMPARISON, ZREXE_COMPARISON_EQUAL, 1);
        case '&': return ScanSilentMark(scanner, ZREXE_TOKEN_LOGIC, ZREXE_LOGIC_AND, 1);
        case '|': return ScanSilentMark(scanner, ZREXE_TOKEN_LOGIC, ZREXE_LOGIC_OR, 1);
        default:  // anything else waits for the next token
            scanner->at++;
            scanner->pendingLength++;
    }
}

static void ScanLine(Scanner* scanner, const unsigned short* line, long count, long lineStart) {
    scanner->line = line;
    scanner->count = count;
    scanner->lineStart = lineStart;
    scanner->at = 0;
    scanner->staleUnits = count * kStaleUnitsPerUnit;
    Clear(scanner);
    while (scanner->at < count) {
        unsigned short c = line[scanner->at];
        if (ScanEarlyMark(scanner, c)) continue;
        bool separator = c == scanner->decimalSeparator && c != 0;
        if (separator || Is(c, kDigit)) {
            ScanNumber(scanner);
        } else if (Is(c, kNameStart)) {
            ScanName(scanner);
        } else {
            ScanLateMark(scanner, c);
        }
    }
    Flush(scanner);
}

static void BeginScan(Scanner* scanner, ZR_Handle* tokens, ZR_Handle* vstructure, ZR_Handle* runs, ZR_Handle* styles,
                      unsigned short decimalSeparator, ZR_Executer* executer) {
    scanner->tokens = tokens;
    scanner->runs = runs;
    scanner->styles = styles;
    scanner->executer = executer;
    scanner->decimalSeparator = decimalSeparator;
    scanner->captions.Begin(vstructure, executer ? &executer->captionIndex : nullptr);
}

void zrExe_Tokenize_Line(ZR_Text* line, ZR_Handle* tokens, ZR_Handle* vstructure, ZR_Handle* runs, ZR_Handle* styles,
                         long* lineStart, unsigned short decimalSeparator, ZR_Executer* executer) {
    if (!line || line->count <= 0) return;
    Scanner scanner;
    BeginScan(&scanner, tokens, vstructure, runs, styles, decimalSeparator, executer);
    ScanLine(&scanner, line->Units(), line->count, lineStart ? *lineStart : 0);
    scanner.captions.End();
}

// Whole texts -----------------------------------------------------------------------------------------------------

static constexpr long kMostReserved =
    1L << 20;  // tokens; one for three units is usual, and room not written to takes no memory of the machine

static bool IsLineEnd(unsigned short unit) { return unit == '\r' || unit == '\n' || unit == 0x2028; }

void ZR_Executer::TokenizeToTokens(ZR_Text* source, ZR_Handle* tokens, ZR_Handle* vstructure, ZR_Handle* runs,
                                   ZR_Handle* styles) {
    const unsigned short* units = source ? source->Units() : nullptr;
    long count = units ? source->count : 0;
    zrExe_ReserveTokens(tokens, std::min(count / 2 + 2, kMostReserved));
    Scanner scanner;
    BeginScan(&scanner, tokens, vstructure, runs, styles, decimalSeparator, this);
    long lineStart = 0;
    for (long from = 0; from <= count;) {
        long end = from;
        while (end < count && !IsLineEnd(units[end])) end++;
        Append(tokens, ZREXE_TOKEN_LINE);
        if (end > from) ScanLine(&scanner, units + from, end - from, lineStart);
        lineStart += end - from + 1;
        bool pair = end + 1 < count && units[end] == '\r' && units[end + 1] == '\n';  // counts as one
        from = end + (pair ? 2 : 1);
    }
    scanner.captions.End();
}

void ZR_Executer::Tokenize(ZR_Text* source, ZR_Handle* blob, ZR_Handle* vstructure, ZR_Handle* runs,
                           ZR_Handle* styles) {
    ZR_Handle tokens;
    zrExe_CreateTokens(&tokens);
    tokens.growStep = 100;
    TokenizeToTokens(source, &tokens, vstructure, runs, styles);
    zrExe_TokensToBlob(&tokens, blob);
    zrExe_DisposeTokens(&tokens);
}
