// Commands by number: digests of Tools. The four algorithms are those of RFC 1321 and FIPS 180-4.
#include <array>
#include <bit>
#include <cmath>
#include <cstring>

#include "host/CommandCall.h"
#include "host/Commands_Private.h"
#include "host/Objects.h"

namespace zrhost {
namespace {

using Bytes = std::vector<uint8_t>;

template <class Word>
Word ReadBig(const uint8_t* at) {
    Word word = 0;
    for (size_t i = 0; i < sizeof(Word); ++i) word = word << 8 | at[i];
    return word;
}

uint32_t ReadLittle(const uint8_t* at) { return at[0] | at[1] << 8 | at[2] << 16 | uint32_t(at[3]) << 24; }

// The message with a bit of 1, zeros, and its length in bits in the last bytes of a whole block.
Bytes Padded(std::span<const uint8_t> message, size_t block, size_t lengthBytes, bool bigEndian) {
    Bytes bytes(message.begin(), message.end());
    bytes.push_back(0x80);
    while (bytes.size() % block != block - lengthBytes) bytes.push_back(0);
    const uint64_t bits = uint64_t(message.size()) * 8;
    for (size_t i = 0; i < lengthBytes; ++i) {
        const size_t place = bigEndian ? lengthBytes - 1 - i : i;
        bytes.push_back(place < 8 ? uint8_t(bits >> (8 * place)) : 0);
    }
    return bytes;
}

template <class Word>
Bytes BigEndian(std::span<const Word> words) {
    Bytes bytes;
    for (Word word : words)
        for (int shift = int(sizeof(Word)) * 8 - 8; shift >= 0; shift -= 8) bytes.push_back(uint8_t(word >> shift));
    return bytes;
}

// MD5 --------------------------------------------------------------------------------------------------------------

Bytes Md5(std::span<const uint8_t> message) {
    static constexpr int kTurns[4][4] = {{7, 12, 17, 22}, {5, 9, 14, 20}, {4, 11, 16, 23}, {6, 10, 15, 21}};
    static const std::array<uint32_t, 64> kSines = [] {
        std::array<uint32_t, 64> sines{};
        for (int i = 0; i < 64; ++i) sines[size_t(i)] = uint32_t(int64_t(std::fabs(std::sin(i + 1.0)) * 4294967296.0));
        return sines;
    }();
    uint32_t state[4] = {0x67452301, 0xEFCDAB89, 0x98BADCFE, 0x10325476};
    const Bytes bytes = Padded(message, 64, 8, /*bigEndian*/ false);
    for (size_t at = 0; at < bytes.size(); at += 64) {
        uint32_t a = state[0], b = state[1], c = state[2], d = state[3];
        for (int i = 0; i < 64; ++i) {
            const int round = i / 16;
            const uint32_t mix = round == 0   ? (b & c) | (~b & d)
                                 : round == 1 ? (d & b) | (~d & c)
                                 : round == 2 ? b ^ c ^ d
                                              : c ^ (b | ~d);
            const int word = round == 0 ? i : round == 1 ? 5 * i + 1 : round == 2 ? 3 * i + 5 : 7 * i;
            const uint32_t sum = a + mix + kSines[size_t(i)] + ReadLittle(&bytes[at + size_t(word % 16) * 4]);
            a = std::exchange(d, std::exchange(c, std::exchange(b, b + std::rotl(sum, kTurns[round][i % 4]))));
        }
        state[0] += a, state[1] += b, state[2] += c, state[3] += d;
    }
    Bytes out;
    for (uint32_t word : state)
        for (int shift = 0; shift < 32; shift += 8) out.push_back(uint8_t(word >> shift));
    return out;
}

// SHA-1 ------------------------------------------------------------------------------------------------------------

Bytes Sha1(std::span<const uint8_t> message) {
    static constexpr uint32_t kRounds[4] = {0x5A827999, 0x6ED9EBA1, 0x8F1BBCDC, 0xCA62C1D6};
    uint32_t state[5] = {0x67452301, 0xEFCDAB89, 0x98BADCFE, 0x10325476, 0xC3D2E1F0};
    const Bytes bytes = Padded(message, 64, 8, /*bigEndian*/ true);
    for (size_t at = 0; at < bytes.size(); at += 64) {
        uint32_t words[80];
        for (size_t i = 0; i < 80; ++i)
            words[i] = i < 16 ? ReadBig<uint32_t>(&bytes[at + i * 4])
                              : std::rotl(words[i - 3] ^ words[i - 8] ^ words[i - 14] ^ words[i - 16], 1);
        uint32_t a = state[0], b = state[1], c = state[2], d = state[3], e = state[4];
        for (size_t i = 0; i < 80; ++i) {
            const uint32_t mix = i < 20              ? (b & c) | (~b & d)
                                 : i >= 40 && i < 60 ? (b & c) | (b & d) | (c & d)
                                                     : b ^ c ^ d;
            const uint32_t sum = std::rotl(a, 5) + mix + e + kRounds[i / 20] + words[i];
            e = std::exchange(d, std::exchange(c, std::rotl(std::exchange(b, std::exchange(a, sum)), 30)));
        }
        state[0] += a, state[1] += b, state[2] += c, state[3] += d, state[4] += e;
    }
    return BigEndian<uint32_t>(state);
}

// SHA-2 ------------------------------------------------------------------------------------------------------------

// The round words are the first bits of the fractions of the cube roots of the first primes, the start words those of
// the square roots: found by whole numbers, so that every bit is right.
bool IsPrime(unsigned number) {
    for (unsigned divisor = 2; divisor * divisor <= number; ++divisor)
        if (number % divisor == 0) return false;
    return number >= 2;
}

// The first 64 bits of the fraction of the root of a small prime: bit by bit, the largest x with x^power <= prime *
// 2^(64*power), in numbers of 320 bits.
uint64_t FractionOfRoot(unsigned prime, int power) {
    using Wide = std::array<uint64_t, 5>;  // low word first
    auto times = [](const Wide& left, const Wide& right) {
        Wide product{};
        for (size_t i = 0; i < 5; ++i) {
            unsigned __int128 carry = 0;
            for (size_t j = 0; i + j < 5; ++j) {
                carry += static_cast<unsigned __int128>(left[i]) * right[j] + product[i + j];
                product[i + j] = uint64_t(carry);
                carry >>= 64;
            }
        }
        return product;
    };
    Wide limit{}, root{};
    limit[size_t(power)] = prime;
    for (int bit = 68; bit >= 0; --bit) {
        Wide trial = root;
        trial[size_t(bit / 64)] |= uint64_t(1) << (bit % 64);
        Wide raised = times(trial, trial);
        if (power == 3) raised = times(raised, trial);
        bool within = true;
        for (size_t i = 5; i-- > 0;)
            if (raised[i] != limit[i]) {
                within = raised[i] < limit[i];
                break;
            }
        if (within) root = trial;
    }
    return root[0];
}

struct Sha2Constants {
    std::array<uint64_t, 80> rounds{};
    std::array<uint64_t, 8> start{};
    Sha2Constants() {
        size_t count = 0;
        for (unsigned number = 2; count < rounds.size(); ++number) {
            if (!IsPrime(number)) continue;
            rounds[count] = FractionOfRoot(number, 3);
            if (count < start.size()) start[count] = FractionOfRoot(number, 2);
            ++count;
        }
    }
};

const Sha2Constants& Constants() {
    static const Sha2Constants constants;
    return constants;
}

template <class Word>
struct Sha2Turns;
template <>
struct Sha2Turns<uint32_t> {
    static constexpr int e[3] = {6, 11, 25}, a[3] = {2, 13, 22}, low[3] = {7, 18, 3}, high[3] = {17, 19, 10},
                         rounds = 64;
};
template <>
struct Sha2Turns<uint64_t> {
    static constexpr int e[3] = {14, 18, 41}, a[3] = {28, 34, 39}, low[3] = {1, 8, 7}, high[3] = {19, 61, 6},
                         rounds = 80;
};

template <class Word>  // 32 bits: SHA-256; 64 bits: SHA-512
Bytes Sha2(std::span<const uint8_t> message) {
    using Turns = Sha2Turns<Word>;
    constexpr int kShift = 64 - int(sizeof(Word)) * 8;
    constexpr size_t kBlock = sizeof(Word) * 16;
    auto turned = [](Word word, const int(&by)[3]) {
        return std::rotr(word, by[0]) ^ std::rotr(word, by[1]) ^ std::rotr(word, by[2]);
    };
    auto shifted = [](Word word, const int(&by)[3]) {
        return std::rotr(word, by[0]) ^ std::rotr(word, by[1]) ^ (word >> by[2]);
    };
    std::array<Word, 8> state;
    for (size_t i = 0; i < 8; ++i) state[i] = Word(Constants().start[i] >> kShift);
    const Bytes bytes = Padded(message, kBlock, sizeof(Word) * 2, /*bigEndian*/ true);
    for (size_t at = 0; at < bytes.size(); at += kBlock) {
        Word words[Turns::rounds];
        for (size_t i = 0; i < size_t(Turns::rounds); ++i)
            words[i] = i < 16 ? ReadBig<Word>(&bytes[at + i * sizeof(Word)])
                              : Word(shifted(words[i - 2], Turns::high) + words[i - 7] +
                                     shifted(words[i - 15], Turns::low) + words[i - 16]);
        std::array<Word, 8> s = state;
        for (size_t i = 0; i < size_t(Turns::rounds); ++i) {
            const Word choice = (s[4] & s[5]) ^ (~s[4] & s[6]),
                       majority = (s[0] & s[1]) ^ (s[0] & s[2]) ^ (s[1] & s[2]);
            const Word first =
                s[7] + turned(s[4], Turns::e) + choice + Word(Constants().rounds[i] >> kShift) + words[i];
            const Word second = turned(s[0], Turns::a) + majority;
            s = {Word(first + second), s[0], s[1], s[2], Word(s[3] + first), s[4], s[5], s[6]};
        }
        for (size_t i = 0; i < 8; ++i) state[i] += s[i];
    }
    return BigEndian<Word>(state);
}

// The command ------------------------------------------------------------------------------------------------------

enum Algorithm { kMd5 = 0, kSha1 = 1, kSha256 = 3, kSha512 = 4 };

// 1147 Generate digest(text or BLOB or object; algorithm; [*]): 0 MD5, 1 SHA-1, 3 SHA-256, 4 SHA-512, in small
// hexadecimal digits; * in base64 for URLs. The algorithm 2 is not served. Text counts as UTF-8, an object as its JSON.
void GenerateDigest(CommandCall& call) {
    const bool url = call.takeStar();
    const bool structured = call.kind(1) == eVK_Object || call.kind(1) == eVK_Collection;
    const std::string text = structured ? WriteJson(call.value(1)) : call.utf8(1);
    const std::span<const uint8_t> bytes =
        call.kind(1) == eVK_Blob ? call.blob(1) : std::span(reinterpret_cast<const uint8_t*>(text.data()), text.size());
    Bytes digest;
    switch (call.has(2) ? call.integer(2) : -1) {
        case kMd5: digest = Md5(bytes); break;
        case kSha1: digest = Sha1(bytes); break;
        case kSha256: digest = Sha2<uint32_t>(bytes); break;
        case kSha512: digest = Sha2<uint64_t>(bytes); break;
        default: return call.notServed();
    }
    std::string out;
    if (url) {
        out = WriteBase64(digest);
        for (char& c : out) c = c == '+' ? '-' : c == '/' ? '_' : c;
        out.erase(std::min(out.find('='), out.size()));
    } else {
        for (uint8_t byte : digest) out.append({"0123456789abcdef"[byte >> 4], "0123456789abcdef"[byte & 15]});
    }
    call.setText(std::string_view(out));
}

constexpr CommandRow kRows[] = {{1147, GenerateDigest}};

}  // namespace

std::span<const CommandRow> commandsDigests() { return kRows; }

}  // namespace zrhost
