#include "tests/host/Commands_Test.h"

namespace zrhost::test {
namespace {

using Digests = CommandTest;

TEST_F(Digests, Digest_PublishedVectors_Match) {
    static const Row rows[] = {
        {1147, {"", 0}, "\"d41d8cd98f00b204e9800998ecf8427e\""},
        {1147, {"message digest", 0}, "\"f96b697d7cb7938d525a2f31aaf161d0\""},
        {1147,
         {"12345678901234567890123456789012345678901234567890123456789012345678901234567890", 0},
         "\"57edf4a22be3c955ac49da2e2107b67a\""},
        {1147, {"abc", 1}, "\"a9993e364706816aba3e25717850c26c9cd0d89d\""},
        {1147,
         {"abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq", 1},
         "\"84983e441c3bd26ebaae4aa1f95129e5e54670f1\""},
        {1147, {"abc", 3}, "\"ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad\""},
        {1147, {"", 3}, "\"e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855\""},
        {1147,
         {"abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq", 3},
         "\"248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1\""},
        {1147,
         {"abc", 4},
         "\"ddaf35a193617abacc417349ae20413112e6fa4e89a97ea20a9eeee64b55d39a2192992a274fc1a836ba3c23a3feebbd454d4423643"
         "ce80e"
         "2a9ac94fa54ca49f\""},
        {1147, {Hex("616263"), 1}, "\"a9993e364706816aba3e25717850c26c9cd0d89d\""},
        {1147, {"abc", 3, Star()}, "\"ungWv48Bz-pBQUDeXa4iI7ADYaOWF3qctBD_YfIAFa0\""},
        {1147, {"abc", 2}, "undefined"},
        {1147, {"abc"}, "undefined"},
    };
    EXPECT_ROWS(rows);
    EXPECT_EQ(Text(1147, {Json("{}"), 0}), Text(1147, {"{}", 0}));
}

TEST_F(Digests, Digest_EveryLengthAroundABlock_DiffersFromItsNeighbours) {
    for (int algorithm : {0, 1, 3, 4}) {
        std::string last;
        for (size_t length = 50; length < 140; ++length) {
            const std::string digest = Text(1147, {std::string(length, 'x'), algorithm});
            EXPECT_NE(digest, last) << length;
            last = digest;
        }
    }
}

}  // namespace
}  // namespace zrhost::test
