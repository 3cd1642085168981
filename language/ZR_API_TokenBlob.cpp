#include "language/ZR_API_TokenBlob.h"

#include <algorithm>

#include "language/ZR_API_Token_Private.h"

enum Payload : unsigned char {  // of a record, behind its kind
    kUnknown,                   // written as the kind alone; reads as no token
    kNothing,                   // an empty token
    kText,                      // 32-bit unit count, units
    kReal,                      // 8 bytes, memory order
    kUnit,                      // 16 bits
    kLong,                      // 32 bits, sign extended
    kDate,                      // day, month, year: 16 bits each
    kShort                      // 16 bits, sign extended
};

static constexpr struct {
    ZREXE_TOKEN kind;
    Payload payload;
} kPayloads[] = {
    // clang-format off
    {ZREXE_TOKEN_LINE, kNothing},         {ZREXE_TOKEN_VARIABLE, kText},        {ZREXE_TOKEN_LOCAL, kText},
    {ZREXE_TOKEN_INTERPROCESS, kText},    {ZREXE_TOKEN_ASSIGN, kNothing},       {ZREXE_TOKEN_NUMBER, kReal},
    {ZREXE_TOKEN_OPEN, kNothing},         {ZREXE_TOKEN_CLOSE, kNothing},        {ZREXE_TOKEN_FORMULA, kUnit},
    {ZREXE_TOKEN_STRING, kText},          {ZREXE_TOKEN_COMMENT, kText},         {ZREXE_TOKEN_COMMAND, kLong},
    {ZREXE_TOKEN_EMPTY_13, kNothing},     {ZREXE_TOKEN_EMPTY_14, kNothing},     {ZREXE_TOKEN_SEMICOLON, kNothing},
    {ZREXE_TOKEN_DATE, kDate},            {ZREXE_TOKEN_TIME, kLong},            {ZREXE_TOKEN_BOOLEAN, kShort},
    {ZREXE_TOKEN_COMPARISON, kShort},     {ZREXE_TOKEN_LOGIC, kShort},          {ZREXE_TOKEN_TABLE, kLong},
    {ZREXE_TOKEN_FIELD, kLong},           {ZREXE_TOKEN_POINTER, kNothing},      {ZREXE_TOKEN_ELEMENT_OPEN, kNothing},
    {ZREXE_TOKEN_ELEMENT_CLOSE, kNothing},{ZREXE_TOKEN_ARROW, kNothing},        {ZREXE_TOKEN_RESERVED, kUnknown},
    {ZREXE_TOKEN_METHOD, kText},          {ZREXE_TOKEN_LONGINT, kLong},         {ZREXE_TOKEN_BLOB, kUnknown},
    {ZREXE_TOKEN_PICTURE, kUnknown},      {ZREXE_TOKEN_INDEX_OPEN, kNothing},   {ZREXE_TOKEN_INDEX_CLOSE, kNothing},
    {ZREXE_TOKEN_OBJECT, kUnknown},       {ZREXE_TOKEN_COLLECTION, kUnknown},   {ZREXE_TOKEN_MEMBER, kText},
    {ZREXE_TOKEN_MEMBER_CALL, kText},
    // clang-format on
};  // row N is kind N + 1

static constexpr bool RowsStandByKind() {
    for (long i = 0; i < static_cast<long>(std::size(kPayloads)); i++)
        if (kPayloads[i].kind != i + 1) return false;
    return true;
}
static_assert(RowsStandByKind(), "looked up by kind");

static Payload PayloadOf(long kind) {
    if (kind == ZREXE_TOKEN_OTHER) return kText;
    return kind >= 1 && kind <= static_cast<long>(std::size(kPayloads)) ? kPayloads[kind - 1].payload : kUnknown;
}

// Writing ---------------------------------------------------------------------------------------------------------

static long ShortOf(ZR_Executer_Token* token) {
    return token->kind == ZREXE_TOKEN_BOOLEAN ? (token->GetBoolean() ? 1 : 0) : token->value.integer;
}

static void WriteToken(ZR_Handle* bytes, ZR_Executer_Token* token) {
    bytes->AddShort(static_cast<short>(token->kind));
    switch (PayloadOf(token->kind)) {
        case kText: bytes->AddTextWithLength(token->GetText()); break;
        case kReal: bytes->AddDouble(token->value.real); break;
        case kUnit: bytes->AddShort(static_cast<short>(token->value.unit)); break;
        case kLong: bytes->AddLong(token->value.integer); break;
        case kShort: bytes->AddShort(static_cast<short>(ShortOf(token))); break;
        case kDate:
            bytes->AddShort(token->value.date.day);
            bytes->AddShort(token->value.date.month);
            bytes->AddShort(token->value.date.year);
            break;
        default: break;
    }
}

void zrExe_TokensToBlob(ZR_Handle* tokens, ZR_Handle* blob) {
    ZR_Handle bytes;
    bytes.Create(1, 0);
    bytes.growStep = 1000;
    bytes.AddLong(ZR_TOKENBLOB_VERSION);
    bytes.AddLong(tokens->count);
    for (long i = 1; i <= tokens->count; i++) WriteToken(&bytes, zrExe_TokenAt(tokens, i));
    blob->Dispose();
    blob->CreateBLOBArray(&bytes, 1);
    bytes.Dispose();
}

// Reading ---------------------------------------------------------------------------------------------------------

static void ReadPayload(const ZR_Handle* bytes, long* cursor, ZR_Executer_Token* token, Payload payload) {
    switch (payload) {
        case kText: bytes->ReadTextWithLength(cursor, &token->text); break;
        case kReal: token->value.real = bytes->ReadDouble(cursor); break;
        case kUnit: token->value.unit = static_cast<unsigned short>(bytes->ReadShort(cursor)); break;
        case kLong: token->value.integer = bytes->ReadLong(cursor); break;
        case kShort: token->value.integer = bytes->ReadShort(cursor); break;
        case kDate:
            token->value.date.day = bytes->ReadShort(cursor);
            token->value.date.month = bytes->ReadShort(cursor);
            token->value.date.year = bytes->ReadShort(cursor);
            break;
        default: break;
    }
}

static void ReadTokens(const ZR_Handle* bytes, long* cursor, ZR_Handle* tokens) {
    long count = bytes->ReadLong(cursor);
    // A record has two bytes at least: a count that the bytes cannot hold reserves no memory and runs no further.
    long possible = (bytes->count - *cursor) / 2;
    count = std::clamp(count, 0L, possible);
    tokens->growStep = count;
    zrExe_ReserveTokens(tokens, count);
    while (count-- > 0 && bytes->count - *cursor >= 2) {
        short kind = bytes->ReadShort(cursor);
        Payload payload = PayloadOf(kind);
        if (payload == kUnknown) continue;  // Required: no payload is read, what follows is taken as a kind
        ZR_Executer_Token* token = zrExe_AppendToken(tokens, static_cast<ZREXE_TOKEN>(kind));
        if (!token) return;
        ReadPayload(bytes, cursor, token, payload);
    }
}

void zrExe_BlobToTokens(ZR_Handle* blob, ZR_Handle* tokens) {
    zrExe_DisposeTokens(tokens);
    tokens->Create(sizeof(ZR_Executer_Token), 0);
    long elements = 0;
    ZR_Handle* expanded = blob->ExpandBLOBArray(&elements);
    if (!expanded) return;
    long cursor = 0;
    if (elements == 1 && expanded[0].ReadLong(&cursor) == ZR_TOKENBLOB_VERSION)
        ReadTokens(&expanded[0], &cursor, tokens);
    for (long i = 0; i < elements; i++) expanded[i].Dispose();
    delete[] expanded;
}
