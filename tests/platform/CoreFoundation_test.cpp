#include "platform/CoreFoundation/CoreFoundation.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <set>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "platform/CoreGraphics/CGTypes.h"

namespace {

const UInt8* B(const std::string& bytes) { return reinterpret_cast<const UInt8*>(bytes.data()); }

std::u16string UnitsOf(CFStringRef string) {
    std::u16string units(static_cast<size_t>(CFStringGetLength(string)), 0);
    CFStringGetCharacters(string, CFRangeMake(0, CFStringGetLength(string)), reinterpret_cast<UniChar*>(units.data()));
    return units;
}

CFStringRef Make(const std::u16string& units) {
    return CFStringCreateWithCharacters(nullptr, reinterpret_cast<const UniChar*>(units.data()),
                                        static_cast<CFIndex>(units.size()));
}

struct Counted : CFObject {
    Counted() { ++living; }
    ~Counted() override { --living; }
    static inline int living = 0;
};

}  // namespace

// Objects ----------------------------------------------------------------------------------------------------------

TEST(CFObject, RetainRelease_LastReference_Frees) {
    auto object = new Counted;
    EXPECT_EQ(CFRetain(object), object);
    EXPECT_EQ(CFGetRetainCount(object), 2);
    CFRelease(object);
    EXPECT_EQ(Counted::living, 1);
    CFRelease(object);
    EXPECT_EQ(Counted::living, 0);
    CFRelease(nullptr);
    EXPECT_EQ(CFRetain(nullptr), nullptr);
    EXPECT_EQ(CFGetRetainCount(nullptr), 0);
    EXPECT_EQ(CFGetTypeID(nullptr), 0UL);
    EXPECT_EQ(CFHash(nullptr), 0UL);
}

TEST(CFObject, Retain_ManyThreads_CountsEach) {
    auto object = new Counted;
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([object] {
            for (int i = 0; i < 5000; ++i) CFRetain(object);
            for (int i = 0; i < 5000; ++i) CFRelease(object);
        });
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(CFGetRetainCount(object), 1);
    CFRelease(object);
    EXPECT_EQ(Counted::living, 0);
}

TEST(CFObject, GraphicsReferences_Null_IsHarmless) {
    EXPECT_EQ(CGImageRetain(nullptr), nullptr);
    EXPECT_EQ(CGPDFDocumentRetain(nullptr), nullptr);
    CGImageRelease(nullptr);
    CGPDFDocumentRelease(nullptr);
}

TEST(CFObject, Equal_TypesAndContents) {
    CFStringRef a = Make(u"abc"), b = Make(u"abc"), c = Make(u"abd");
    CFDataRef data = CFDataCreate(nullptr, B("abc"), 3), same = CFDataCreate(nullptr, B("abc"), 3);
    EXPECT_TRUE(CFEqual(a, a));
    EXPECT_TRUE(CFEqual(a, b));
    EXPECT_EQ(CFHash(a), CFHash(b));
    EXPECT_FALSE(CFEqual(a, c));
    EXPECT_FALSE(CFEqual(a, data));
    EXPECT_FALSE(CFEqual(a, nullptr));
    EXPECT_TRUE(CFEqual(nullptr, nullptr));
    EXPECT_TRUE(CFEqual(data, same));
    EXPECT_EQ(CFHash(data), CFHash(same));
    std::set<CFTypeID> types = {CFStringGetTypeID(), CFDataGetTypeID(), CFURLGetTypeID(), CFWriteStreamGetTypeID(),
                                CFUUIDGetTypeID()};
    EXPECT_EQ(types.size(), 5UL);
    EXPECT_EQ(CFGetTypeID(a), CFStringGetTypeID());
    EXPECT_EQ(CFGetTypeID(data), CFDataGetTypeID());
    for (CFTypeRef each : {CFTypeRef(a), CFTypeRef(b), CFTypeRef(c), CFTypeRef(data), CFTypeRef(same)}) CFRelease(each);
}

// Strings ----------------------------------------------------------------------------------------------------------

TEST(CFString, CreateWithBytes_Encodings_DecodeOrRefuse) {
    static const struct {
        const char* name;
        std::string bytes;
        CFStringEncoding encoding;
        bool external, refused;
        std::u16string expected;
    } rows[] = {
        {"utf8", "a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80", kCFStringEncodingUTF8, false, false,
         u"a\u00E4\u20AC\U0001F600"},
        {"utf8 empty", "", kCFStringEncodingUTF8, false, false, u""},
        {"utf8 zero", std::string("a\0b", 3), kCFStringEncodingUTF8, false, false, std::u16string(u"a\0b", 3)},
        {"utf8 cut", "\xE2\x82", kCFStringEncodingUTF8, false, true, u""},
        {"utf8 lone continuation", "\x80", kCFStringEncodingUTF8, false, true, u""},
        {"utf8 overlong 2", "\xC0\x80", kCFStringEncodingUTF8, false, true, u""},
        {"utf8 overlong 3", "\xE0\x80\x80", kCFStringEncodingUTF8, false, true, u""},
        {"utf8 overlong 4", "\xF0\x80\x80\x80", kCFStringEncodingUTF8, false, true, u""},
        {"utf8 surrogate", "\xED\xA0\x80", kCFStringEncodingUTF8, false, true, u""},
        {"utf8 too large", "\xF4\x90\x80\x80", kCFStringEncodingUTF8, false, true, u""},
        {"utf8 FF", "\xFF", kCFStringEncodingUTF8, false, true, u""},
        {"utf8 bad second", "\xC3\x41", kCFStringEncodingUTF8, false, true, u""},
        {"unicode", std::string("a\0\xAC\x20", 4), kCFStringEncodingUnicode, false, false, u"a\u20AC"},
        {"unicode odd", "abc", kCFStringEncodingUnicode, false, true, u""},
        {"unicode lone surrogate", "\x3D\xD8", kCFStringEncodingUnicode, false, false, u"\xD83D"},
        {"unicode mark kept", std::string("\xFF\xFE\x61\0", 4), kCFStringEncodingUnicode, false, false, u"\xFEFF\x61"},
        {"unicode mark taken", std::string("\xFF\xFE\x61\0", 4), kCFStringEncodingUnicode, true, false, u"a"},
        {"unicode other order", std::string("\xFE\xFF\0\x61", 4), kCFStringEncodingUnicode, true, false, u"a"},
        {"utf16le", std::string("a\0", 2), kCFStringEncodingUTF16LE, false, false, u"a"},
        {"utf16be", std::string("\0a", 2), kCFStringEncodingUTF16BE, false, false, u"a"},
        {"utf32le", std::string("\0\xF6\1\0", 4), kCFStringEncodingUTF32LE, false, false, u"\U0001F600"},
        {"utf32be", std::string("\0\1\xF6\0", 4), kCFStringEncodingUTF32BE, false, false, u"\U0001F600"},
        {"utf32", std::string("a\0\0\0", 4), kCFStringEncodingUTF32, false, false, u"a"},
        {"utf32 too large", std::string("\0\0\x11\0", 4), kCFStringEncodingUTF32LE, false, true, u""},
        {"utf32 surrogate", std::string("\0\xD8\0\0", 4), kCFStringEncodingUTF32LE, false, true, u""},
        {"utf32 odd", "abc", kCFStringEncodingUTF32LE, false, true, u""},
        {"latin1", "a\xE9", kCFStringEncodingISOLatin1, false, false, u"a\u00E9"},
        {"ascii", "abc", kCFStringEncodingASCII, false, false, u"abc"},
        {"ascii high", "\xE9", kCFStringEncodingASCII, false, true, u""},
        {"roman high", "\xE9", kCFStringEncodingMacRoman, false, true, u""},
        {"unknown encoding", "abc", 0x4711, false, true, u""},
    };
    for (const auto& row : rows) {
        CFStringRef string = CFStringCreateWithBytes(nullptr, B(row.bytes), static_cast<CFIndex>(row.bytes.size()),
                                                     row.encoding, row.external);
        EXPECT_EQ(string == nullptr, row.refused) << row.name;
        EXPECT_EQ(UnitsOf(string), row.expected) << row.name;
        CFRelease(string);
    }
    EXPECT_EQ(CFStringCreateWithBytes(nullptr, nullptr, 3, kCFStringEncodingUTF8, false), nullptr);
    EXPECT_EQ(CFStringCreateWithBytes(nullptr, B("abc"), -1, kCFStringEncodingUTF8, false), nullptr);
    EXPECT_EQ(CFStringCreateWithCharacters(nullptr, nullptr, 1), nullptr);
    EXPECT_EQ(CFStringCreateWithCString(nullptr, nullptr, kCFStringEncodingUTF8), nullptr);
}

TEST(CFString, CreateWithBytesNoCopy_Deallocator_FreesOrLeaves) {
    auto bytes = static_cast<UInt8*>(malloc(2));
    memcpy(bytes, "ab", 2);
    CFStringRef kept = CFStringCreateWithBytesNoCopy(nullptr, bytes, 2, kCFStringEncodingUTF8, false, kCFAllocatorNull);
    bytes[0] = 'x';
    CFStringRef freed =
        CFStringCreateWithBytesNoCopy(nullptr, bytes, 2, kCFStringEncodingUTF8, false, kCFAllocatorMalloc);
    EXPECT_EQ(UnitsOf(kept), u"ab");
    EXPECT_EQ(UnitsOf(freed), u"xb");
    CFRelease(kept);
    CFRelease(freed);
}

TEST(CFString, GetBytes_EncodingsRoomAndLoss) {
    static const struct {
        const char* name;
        std::u16string text;
        CFRange range;
        CFStringEncoding encoding;
        UInt8 loss;
        bool external;
        CFIndex room, converted;
        std::string bytes;
    } rows[] = {
        {"utf8",
         u"a\u00E4\u20AC\U0001F600",
         {0, 5},
         kCFStringEncodingUTF8,
         0,
         false,
         99,
         5,
         "a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80"},
        {"utf8 room", u"a\u20AC", {0, 2}, kCFStringEncodingUTF8, 0, false, 3, 1, "a"},
        {"utf8 lone", u"a\xD83Dz", {0, 3}, kCFStringEncodingUTF8, 0, false, 99, 1, "a"},
        {"utf8 loss", u"a\xD83Dz", {0, 3}, kCFStringEncodingUTF8, '?', false, 99, 3, "a?z"},
        {"part", u"abcdef", {2, 3}, kCFStringEncodingASCII, 0, false, 99, 3, "cde"},
        {"part beyond", u"abc", {2, 99}, kCFStringEncodingASCII, 0, false, 99, 1, "c"},
        {"outside", u"abc", {5, 1}, kCFStringEncodingASCII, 0, false, 99, 0, ""},
        {"negative", u"abc", {-1, 2}, kCFStringEncodingASCII, 0, false, 99, 0, ""},
        {"ascii stops", u"a\u00E4z", {0, 3}, kCFStringEncodingASCII, 0, false, 99, 1, "a"},
        {"ascii loss", u"a\u00E4z", {0, 3}, kCFStringEncodingASCII, '.', false, 99, 3, "a.z"},
        {"latin1", u"\u00E9\u0100", {0, 2}, kCFStringEncodingISOLatin1, ' ', false, 99, 2, "\xE9 "},
        {"unicode", u"a\u20AC", {0, 2}, kCFStringEncodingUnicode, 0, false, 99, 2, std::string("a\0\xAC\x20", 4)},
        {"unicode room", u"abc", {0, 3}, kCFStringEncodingUnicode, 0, false, 5, 2, std::string("a\0b\0", 4)},
        {"unicode pair", u"\U0001F600", {0, 2}, kCFStringEncodingUnicode, 0, false, 2, 0, ""},
        {"unicode lone", u"\xD83D", {0, 1}, kCFStringEncodingUnicode, 0, false, 2, 1, "\x3D\xD8"},
        {"unicode external", u"a", {0, 1}, kCFStringEncodingUnicode, 0, true, 99, 1, std::string("\xFF\xFE\x61\0", 4)},
        {"utf16be",
         u"a\U0001F600",
         {0, 3},
         kCFStringEncodingUTF16BE,
         0,
         false,
         99,
         3,
         std::string("\0a\xD8\x3D\xDE\x00", 6)},
        {"utf16le pair cut", u"\U0001F600", {0, 2}, kCFStringEncodingUTF16LE, 0, false, 3, 0, ""},
        {"utf32", u"\U0001F600", {0, 2}, kCFStringEncodingUTF32, 0, false, 99, 2, std::string("\0\xF6\1\0", 4)},
        {"utf32be", u"a", {0, 1}, kCFStringEncodingUTF32BE, 0, false, 99, 1, std::string("\0\0\0a", 4)},
        {"unknown", u"a", {0, 1}, 0x4711, '?', false, 99, 0, ""},
    };
    for (const auto& row : rows) {
        CFStringRef string = Make(row.text);
        std::string out(100, '~');
        CFIndex used = -1;
        CFIndex converted = CFStringGetBytes(string, row.range, row.encoding, row.loss, row.external,
                                             reinterpret_cast<UInt8*>(out.data()), row.room, &used);
        EXPECT_EQ(converted, row.converted) << row.name;
        EXPECT_EQ(out.substr(0, static_cast<size_t>(used)), row.bytes) << row.name;
        EXPECT_EQ(out[static_cast<size_t>(used)], '~') << row.name;
        if (row.room == 99) {
            CFIndex counted = -1;
            CFStringGetBytes(string, row.range, row.encoding, row.loss, row.external, nullptr, 0, &counted);
            EXPECT_EQ(counted, used) << row.name;
        }
        CFRelease(string);
    }
}

TEST(CFString, Characters_IndexAndCString) {
    CFStringRef string = CFStringCreateWithCString(nullptr, "a\xC3\xA4", kCFStringEncodingUTF8);
    CFStringRef copy = CFStringCreateCopy(nullptr, string);
    EXPECT_TRUE(CFEqual(copy, string));
    EXPECT_EQ(CFStringGetCharacterAtIndex(string, 1), 0xE4);
    EXPECT_EQ(CFStringGetCharacterAtIndex(string, 2), 0);
    EXPECT_EQ(CFStringGetCharacterAtIndex(string, -1), 0);
    EXPECT_EQ(CFStringGetCharactersPtr(string)[0], 'a');
    EXPECT_EQ(CFStringGetCharactersPtr(nullptr), nullptr);
    EXPECT_EQ(CFStringGetLength(nullptr), 0);
    char out[8];
    EXPECT_TRUE(CFStringGetCString(string, out, 8, kCFStringEncodingUTF8));
    EXPECT_STREQ(out, "a\xC3\xA4");
    EXPECT_TRUE(CFStringGetCString(string, out, 4, kCFStringEncodingUTF8));
    EXPECT_FALSE(CFStringGetCString(string, out, 3, kCFStringEncodingUTF8));
    EXPECT_STREQ(out, "");
    EXPECT_FALSE(CFStringGetCString(string, out, 8, kCFStringEncodingASCII));
    EXPECT_FALSE(CFStringGetCString(string, out, 0, kCFStringEncodingUTF8));
    EXPECT_FALSE(CFStringGetCString(nullptr, out, 8, kCFStringEncodingUTF8));
    CFRelease(string);
    CFRelease(copy);
}

// Bytes ------------------------------------------------------------------------------------------------------------

TEST(CFData, Bytes_AreCopiedAndBounded) {
    std::string bytes = "abcdef";
    CFDataRef data = CFDataCreate(nullptr, B(bytes), 6);
    bytes[0] = 'x';
    EXPECT_EQ(CFDataGetLength(data), 6);
    EXPECT_EQ(memcmp(CFDataGetBytePtr(data), "abcdef", 6), 0);
    UInt8 out[8] = {'~', '~', '~', '~', '~', '~', '~', '~'};
    CFDataGetBytes(data, CFRangeMake(4, 99), out);
    EXPECT_EQ(memcmp(out, "ef~", 3), 0);
    CFDataGetBytes(data, CFRangeMake(-1, 2), out);
    CFDataGetBytes(data, CFRangeMake(7, 2), out);
    CFDataGetBytes(data, CFRangeMake(0, -2), out);
    EXPECT_EQ(memcmp(out, "ef~", 3), 0);
    CFDataRef copy = CFDataCreateCopy(nullptr, data);
    EXPECT_TRUE(CFEqual(copy, data));
    CFRelease(copy);
    CFRelease(data);
    EXPECT_EQ(CFDataCreate(nullptr, nullptr, 3), nullptr);
    EXPECT_EQ(CFDataCreate(nullptr, B("a"), -1), nullptr);
    EXPECT_EQ(CFDataGetLength(nullptr), 0);
    EXPECT_EQ(CFDataGetBytePtr(nullptr), nullptr);
}

// File URLs --------------------------------------------------------------------------------------------------------

TEST(CFURL, FileSystemPath_Paths) {
    static const struct {
        std::u16string path;
        bool directory;
        const char *posix, *url;  // null = refused
    } rows[] = {{u"/a/b", false, "/a/b", "file:///a/b"},
                {u"/a/b", true, "/a/b", "file:///a/b/"},
                {u"/a/b/", true, "/a/b", "file:///a/b/"},
                {u"/", true, "/", "file:///"},
                {u"/a b/\u00FC#?%", false, "/a b/\xC3\xBC#?%", "file:///a%20b/%C3%BC%23%3F%25"},
                {u"", false, nullptr, nullptr},
                {std::u16string(u"/a\0b", 4), false, nullptr, nullptr}};
    for (const auto& row : rows) {
        CFStringRef path = Make(row.path);
        CFURLRef url = CFURLCreateWithFileSystemPath(nullptr, path, kCFURLPOSIXPathStyle, row.directory);
        EXPECT_EQ(url != nullptr, row.posix != nullptr);
        CFRelease(path);
        if (!url) continue;
        UInt8 out[64];
        ASSERT_TRUE(CFURLGetFileSystemRepresentation(url, true, out, 64));
        EXPECT_STREQ(reinterpret_cast<char*>(out), row.posix);
        EXPECT_FALSE(CFURLGetFileSystemRepresentation(url, true, out, static_cast<CFIndex>(strlen(row.posix))));
        char text[64];
        ASSERT_TRUE(CFStringGetCString(CFURLGetString(url), text, 64, kCFStringEncodingUTF8));
        EXPECT_STREQ(text, row.url);
        EXPECT_EQ(CFURLGetString(url), CFURLGetString(url));
        EXPECT_EQ(CFURLHasDirectoryPath(url), row.directory);
        CFStringRef copied = CFURLCopyFileSystemPath(url, kCFURLPOSIXPathStyle);
        ASSERT_TRUE(CFStringGetCString(copied, text, 64, kCFStringEncodingUTF8));
        EXPECT_STREQ(text, row.posix);
        CFRelease(copied);
        CFURLRef again = CFURLCreateFromFileSystemRepresentation(
            nullptr, reinterpret_cast<const UInt8*>(row.posix), static_cast<CFIndex>(strlen(row.posix)), row.directory);
        EXPECT_TRUE(CFEqual(url, again));
        EXPECT_EQ(CFHash(url), CFHash(again));
        CFRelease(again);
        CFRelease(url);
    }
    EXPECT_EQ(CFURLCreateWithFileSystemPath(nullptr, nullptr, kCFURLPOSIXPathStyle, false), nullptr);
    EXPECT_EQ(CFURLCreateFromFileSystemRepresentation(nullptr, nullptr, 1, false), nullptr);
    EXPECT_EQ(CFURLCopyFileSystemPath(nullptr, kCFURLPOSIXPathStyle), nullptr);
    EXPECT_EQ(CFURLGetString(nullptr), nullptr);
    EXPECT_FALSE(CFURLHasDirectoryPath(nullptr));
    UInt8 out[4];
    EXPECT_FALSE(CFURLGetFileSystemRepresentation(nullptr, true, out, 4));
}

TEST(CFURL, RelativePath_Resolved_IsAbsolute) {
    CFURLRef url = CFURLCreateFromFileSystemRepresentation(nullptr, B("x.bin"), 5, false);
    UInt8 out[5000];
    ASSERT_TRUE(CFURLGetFileSystemRepresentation(url, true, out, 5000));
    EXPECT_EQ(out[0], '/');
    EXPECT_STREQ(strrchr(reinterpret_cast<char*>(out), '/'), "/x.bin");
    ASSERT_TRUE(CFURLGetFileSystemRepresentation(url, false, out, 5000));
    EXPECT_STREQ(reinterpret_cast<char*>(out), "x.bin");
    CFRelease(url);
}

// Write streams ----------------------------------------------------------------------------------------------------

TEST(CFWriteStream, Write_OpenedStream_ReplacesTheFile) {
    std::string path = ::testing::TempDir() + "zr_stream_" + std::to_string(getpid());
    CFURLRef url = CFURLCreateFromFileSystemRepresentation(nullptr, B(path), static_cast<CFIndex>(path.size()), false);
    for (const char* contents : {"first contents", "second"}) {
        CFWriteStreamRef stream = CFWriteStreamCreateWithFile(nullptr, url);
        EXPECT_EQ(CFWriteStreamWrite(stream, B("x"), 1), -1);  // not open
        ASSERT_TRUE(CFWriteStreamOpen(stream));
        EXPECT_FALSE(CFWriteStreamOpen(stream));
        auto n = static_cast<CFIndex>(strlen(contents));
        EXPECT_EQ(CFWriteStreamWrite(stream, B(contents), n), n);
        EXPECT_EQ(CFWriteStreamWrite(stream, nullptr, 0), 0);
        EXPECT_EQ(CFWriteStreamWrite(stream, nullptr, 1), -1);
        EXPECT_EQ(CFWriteStreamWrite(stream, B("x"), -1), -1);
        CFWriteStreamClose(stream);
        EXPECT_EQ(CFWriteStreamWrite(stream, B("x"), 1), -1);
        CFRelease(stream);
        std::ifstream file(path, std::ios::binary);
        std::stringstream read;
        read << file.rdbuf();
        EXPECT_EQ(read.str(), contents);
    }
    unlink(path.c_str());
    CFRelease(url);
    EXPECT_EQ(CFWriteStreamCreateWithFile(nullptr, nullptr), nullptr);
    EXPECT_FALSE(CFWriteStreamOpen(nullptr));
    EXPECT_EQ(CFWriteStreamWrite(nullptr, B("x"), 1), -1);
    CFWriteStreamClose(nullptr);
}

TEST(CFWriteStream, Open_NoSuchFolder_IsFalse) {
    std::string path = "/no/such/folder/file";
    CFURLRef url = CFURLCreateFromFileSystemRepresentation(nullptr, B(path), static_cast<CFIndex>(path.size()), false);
    CFWriteStreamRef stream = CFWriteStreamCreateWithFile(nullptr, url);
    EXPECT_FALSE(CFWriteStreamOpen(stream));
    CFRelease(stream);
    CFRelease(url);
}

// Identifiers ------------------------------------------------------------------------------------------------------

TEST(CFUUID, Create_Many_DifferAndAreVersionFour) {
    std::set<std::string> seen;
    for (int i = 0; i < 200; ++i) {
        CFUUIDRef uuid = CFUUIDCreate(nullptr);
        CFStringRef text = CFUUIDCreateString(nullptr, uuid);
        char out[40];
        ASSERT_TRUE(CFStringGetCString(text, out, 40, kCFStringEncodingASCII));
        ASSERT_EQ(strlen(out), 36UL);
        EXPECT_EQ(out[14], '4');
        EXPECT_NE(strchr("89AB", out[19]), nullptr);
        EXPECT_EQ(out[8], '-');
        EXPECT_EQ(out[23], '-');
        EXPECT_EQ(strspn(out, "0123456789ABCDEF-"), 36UL);
        seen.insert(out);
        CFRelease(text);
        CFRelease(uuid);
    }
    EXPECT_EQ(seen.size(), 200UL);
}

TEST(CFUUID, FromBytes_Text_IsUpperCaseWithHyphens) {
    CFUUIDBytes bytes;
    for (int i = 0; i < 16; ++i) bytes.byte[i] = static_cast<UInt8>(i * 17);
    CFUUIDRef uuid = CFUUIDCreateFromUUIDBytes(nullptr, bytes), same = CFUUIDCreateFromUUIDBytes(nullptr, bytes);
    CFStringRef text = CFUUIDCreateString(nullptr, uuid);
    EXPECT_EQ(UnitsOf(text), u"00112233-4455-6677-8899-AABBCCDDEEFF");
    EXPECT_TRUE(CFEqual(uuid, same));
    EXPECT_EQ(CFHash(uuid), CFHash(same));
    EXPECT_EQ(CFUUIDGetUUIDBytes(uuid).byte[15], 255);
    EXPECT_EQ(CFUUIDGetUUIDBytes(nullptr).byte[15], 0);
    EXPECT_EQ(CFUUIDCreateString(nullptr, nullptr), nullptr);
    for (CFTypeRef each : {CFTypeRef(uuid), CFTypeRef(same), CFTypeRef(text)}) CFRelease(each);
}
