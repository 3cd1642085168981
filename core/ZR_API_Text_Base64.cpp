// Bytes as base64 text and back.
#include <algorithm>
#include <array>

#include "core/ZR_API_Text.h"

const char base64_chars[65] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

static constexpr float kUnitsOfByte = 1.4F;  // growStep of the text for each byte of the source
static constexpr long kPieceBytes = 3 * 1024;

// What each byte stands for; -1 = no character of the alphabet.
static std::array<signed char, 256> MakeValues() {
    std::array<signed char, 256> values;
    values.fill(-1);
    for (signed char i = 0; i < 64; ++i) values[static_cast<unsigned char>(base64_chars[i])] = i;
    return values;
}

// The four characters of 1 to 3 bytes, filled with "=".
static void EncodeGroup(const unsigned char* bytes, long n, unsigned short* out) {
    unsigned group = static_cast<unsigned>(bytes[0] << 16 | (n > 1 ? bytes[1] << 8 : 0) | (n > 2 ? bytes[2] : 0));
    for (long i = 0; i < 4; ++i)
        out[i] = i <= n ? static_cast<unsigned char>(base64_chars[group >> (18 - 6 * i) & 63]) : '=';
}

void ZR_Text::Encode(const ZR_Handle* source) {
    if (!source) return;
    growStep = static_cast<long>(static_cast<float>(source->count) * kUnitsOfByte);
    if (source == this) {  // guard: bytes that would move while they are read
        ZR_Handle copy;
        copy.Create(source);
        Encode(&copy);
        growStep = static_cast<long>(static_cast<float>(copy.count) * kUnitsOfByte);
        copy.Dispose();
        return;
    }
    const auto bytes = reinterpret_cast<const unsigned char*>(source->data);
    const long n = bytes && source->elementSize > 0 ? source->count : 0;
    unsigned short piece[kPieceBytes / 3 * 4];
    for (long at = 0; at < n; at += kPieceBytes) {
        long units = 0;
        for (long i = at; i < std::min(n, at + kPieceBytes); i += 3, units += 4)
            EncodeGroup(bytes + i, std::min(n - i, 3L), piece + units);
        AddUniBuffer(piece, units);
    }
}

void ZR_Text::Decode(ZR_Handle* destination) {
    static const std::array<signed char, 256> kValues = MakeValues();
    const long n = data ? std::max(count, 0L) : 0;
    const auto characters = reinterpret_cast<const unsigned char*>(GetCStringPtr());  // stays in cString
    if (!destination) return;
    destination->Dispose();
    destination->Create(1, 0);
    destination->growStep = n;
    unsigned group = 0;
    long k = 0;  // characters of the group
    // Required: what is no character of the alphabet ends the decoding, blanks and line ends too.
    for (long i = 0; characters && i < n && kValues[characters[i]] >= 0; ++i) {
        group = group << 6 | static_cast<unsigned>(kValues[characters[i]]);
        if (++k < 4) continue;
        for (int shift : {16, 8, 0}) destination->AddByte(static_cast<char>(group >> shift));
        group = 0;
        k = 0;
    }
    group <<= 6 * (4 - k);
    for (long i = 0; k > 0 && i < k - 1; ++i) destination->AddByte(static_cast<char>(group >> (16 - 8 * i)));
}
