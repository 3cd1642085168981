#include <sys/stat.h>
#include <unistd.h>

#include "tests/host/Commands_Test.h"

namespace zrhost::test {
namespace {

constexpr int kNotFound = -43, kBadName = -37, kExists = -48, kOpenAlready = -49, kBadReference = -51, kNotEmpty = -47,
              kNoFolder = -120;

using Documents = CommandTest;

TEST_F(Documents, Create_NewFile_ReferenceDocumentAndOK) {
    const Value reference = Run(266, {Path("a.txt"), "TEXT"});
    EXPECT_EQ(reference.kind(), eVK_Time);
    EXPECT_GT(reference.integer(), 0);
    EXPECT_TRUE(OK());
    EXPECT_EQ(ToUtf8(host->document()), Path("a.txt"));
    Run(103, {reference, "häl"});
    Run(103, {reference, B("lo\n")});
    EXPECT_TRUE(OK());
    EXPECT_EQ(Run(481, {reference}).number(), 7);
    Run(267, {reference});
    EXPECT_TRUE(OK());
    EXPECT_EQ(Read("a.txt"), "h\xC3\xA4llo\n");
    Run(267, {reference});
    EXPECT_FALSE(OK());
    EXPECT_EQ(error, kBadReference);
}

TEST_F(Documents, Paths_RelativeOnes_CountFromTheStructure) {
    const Value reference = Run(266, {"sub.txt"});
    EXPECT_TRUE(std::filesystem::exists(Path("sub.txt")));
    EXPECT_EQ(ToUtf8(host->document()), Path("sub.txt"));
    Run(267, {reference});
    EXPECT_EQ(Text(476, {"sub.txt"}), "1");
    EXPECT_EQ(Text(476, {"./x/../sub.txt"}), "1");
}

TEST_F(Documents, Open_MissingEmptyFolderAndTwice_AreRefused) {
    Write("a.txt", "abc");
    static const struct {
        int id;
        const char* path;
        int error;
    } rows[] = {{264, "missing.txt", kNotFound},
                {265, "missing.txt", kNotFound},
                {264, "a\x01/x", kNotFound},
                {264, ".", kNotFound}};
    for (const auto& row : rows) {
        EXPECT_EQ(Text(row.id, {row.path}), "00:00:00") << row.path;
        EXPECT_FALSE(OK());
        EXPECT_EQ(error, row.error) << row.path;
    }
    EXPECT_EQ(Text(264, {""}), "00:00:00");  // a dialog that no one sees
    EXPECT_FALSE(OK());
    EXPECT_EQ(error, 0);
    const Value first = Run(264, {"a.txt"});
    EXPECT_TRUE(OK());
    Run(264, {"a.txt"});
    EXPECT_FALSE(OK());
    EXPECT_EQ(error, kOpenAlready);
    const Value reading = Run(264, {"a.txt", "", 2});
    EXPECT_TRUE(OK());
    EXPECT_NE(reading.integer(), first.integer());
    Run(159, {"a.txt"});
    EXPECT_EQ(error, kOpenAlready);
}

TEST_F(Documents, Open_ModePathOnly_FillsDocumentAndOpensNothing) {
    Write("a.txt", "abc");
    EXPECT_EQ(Text(264, {"a.txt", "", 3}), "00:00:00");
    EXPECT_TRUE(OK());
    EXPECT_EQ(ToUtf8(host->document()), Path("a.txt"));
    Run(264, {"", 3});
    EXPECT_FALSE(OK());
}

TEST_F(Documents, ReceivePacket_StopsAndCounts_ReadThePieces) {
    Write("a.txt", "one\r\ntwo\r\n\r\nlast");
    const Value reference = Run(264, {"a.txt", "", 2});
    static const struct {
        const char* piece;
        bool ok;
    } rows[] = {{"\"one\"", true}, {"\"two\"", true}, {"\"\"", true}, {"\"last\"", true}, {"\"\"", false}};
    for (const auto& row : rows) {
        Run(104, {reference, "", "\r\n"});
        EXPECT_EQ(ShowAfter(2), row.piece);
        EXPECT_EQ(OK(), row.ok);
    }
    Run(482, {reference, 0});
    Run(104, {reference, "", 5});
    EXPECT_EQ(ShowAfter(2), "\"one\r\n\"");
    Run(104, {reference, B(""), 3});
    EXPECT_EQ(ShowAfter(2), "<74776f>");
    Run(104, {reference, "", ""});
    EXPECT_FALSE(OK());
    Run(104, {H(9999), "", 5});
    EXPECT_EQ(error, kBadReference);
    Run(104, {"", 5});
    EXPECT_FALSE(OK());
}

TEST_F(Documents, ReceivePacket_CountOfUnits_KeepsCharactersWhole) {
    Write("a.txt", "\xC3\xA4\xF0\x9F\x98\x80z");
    const Value reference = Run(264, {"a.txt", "", 2});
    Run(104, {reference, "", 2});
    EXPECT_EQ(ShowAfter(2), "\"ä\"");  // the next character needs two units
    Run(104, {reference, "", 3});
    EXPECT_EQ(ShowAfter(2), "\"\xF0\x9F\x98\x80z\"");
}

TEST_F(Documents, ReceivePacket_LargeFile_FindsStopsAcrossBuffers) {
    std::string text;
    for (int i = 0; i < 40000; ++i) text += "line " + std::to_string(i) + "<>";
    Write("big.txt", text);
    const Value reference = Run(264, {"big.txt", "", 2});
    for (int i = 0; i < 40000; ++i) {
        Run(104, {reference, "", "<>"});
        ASSERT_EQ(ShowAfter(2), "\"line " + std::to_string(i) + "\"");
    }
}

TEST_F(Documents, SizeAndPosition_OpenDocument_AsDocumented) {
    const Value reference = Run(266, {"a.bin"});
    Run(103, {reference, "0123456789"});
    EXPECT_EQ(Text(479, {reference}), "10");
    EXPECT_EQ(Text(479, {"a.bin"}), "10");
    Run(482, {reference, 4});
    EXPECT_EQ(Text(481, {reference}), "4");
    Run(482, {reference, -1, 2});
    EXPECT_EQ(Text(481, {reference}), "9");
    Run(482, {reference, -3, 3});
    EXPECT_EQ(Text(481, {reference}), "6");
    for (const Args& wrong :
         {Args{reference, -1}, Args{reference, 11}, Args{reference, 1e300}, Args{H(99), 1}, Args{}}) {
        Run(482, wrong);
        EXPECT_FALSE(OK());
    }
    EXPECT_EQ(Text(481, {reference}), "6");
    Run(480, {reference, 3});
    EXPECT_TRUE(OK());
    EXPECT_EQ(Text(479, {reference}), "3");
    Run(480, {reference, -1});
    EXPECT_FALSE(OK());
    EXPECT_EQ(Text(479, {"missing"}), "0");
    EXPECT_EQ(error, kNotFound);
}

TEST_F(Documents, Append_Existing_WritesAtItsEnd) {
    Write("a.txt", "abc");
    const Value reference = Run(265, {"a.txt"});
    Run(103, {reference, "def"});
    Run(267, {reference});
    EXPECT_EQ(Read("a.txt"), "abcdef");
    Run(267, {Run(266, {"a.txt"})});
    EXPECT_EQ(Read("a.txt"), "");
}

TEST_F(Documents, TestPathName_Kinds_AreToldApart) {
    Write("a.txt", "abc");
    mkdir(Path("folder").c_str(), 0777);
    static const Row rows[] = {
        {476, {"a.txt"}, "1"},     {476, {"folder"}, "0"}, {476, {"folder/"}, "0"}, {476, {"missing"}, "-43"},
        {476, {"a.txt/"}, "-120"}, {476, {""}, "-37"},     {476, {}, "-37"},        {476, {5}, "-37"},
    };
    EXPECT_ROWS(rows);
    EXPECT_EQ(Text(476, {Value(std::u16string(u"a\0b", 3))}), "-37");
}

TEST_F(Documents, CopyMoveDelete_FilesAndFolders_AsDocumented) {
    Write("a.txt", "abc");
    mkdir(Path("folder").c_str(), 0777);
    Run(541, {"a.txt", "b.txt"});
    EXPECT_TRUE(OK());
    EXPECT_EQ(Read("b.txt"), "abc");
    Write("a.txt", "new");
    Run(541, {"a.txt", "b.txt"});
    EXPECT_EQ(error, kExists);
    EXPECT_EQ(Read("b.txt"), "abc");
    Run(541, {"a.txt", "b.txt", Star()});
    EXPECT_TRUE(OK());
    EXPECT_EQ(Read("b.txt"), "new");
    Run(541, {"a.txt", "folder/"});
    EXPECT_EQ(Read("folder/a.txt"), "new");
    Run(541, {"a.txt", "folder/", "other.txt"});
    EXPECT_EQ(Read("folder/other.txt"), "new");
    Run(541, {"a.txt", "folder/", "../up.txt"});
    EXPECT_EQ(error, kBadName);
    Run(541, {"folder", "copy"});
    EXPECT_EQ(Read("copy/other.txt"), "new");
    Run(541, {"folder/", "folder/within"});
    EXPECT_EQ(error, kBadName);
    Run(541, {"a.txt", "a.txt", Star()});
    EXPECT_EQ(error, kBadName);
    Run(541, {"missing", "x"});
    EXPECT_EQ(error, kNotFound);
    Run(540, {"b.txt", "folder/c.txt"});
    EXPECT_TRUE(OK());
    EXPECT_EQ(Read("folder/c.txt"), "new");
    EXPECT_FALSE(std::filesystem::exists(Path("b.txt")));
    Run(540, {"a.txt", "folder/c.txt"});
    EXPECT_EQ(error, kExists);
    Run(540, {"missing", "x"});
    EXPECT_EQ(error, kNotFound);
    Run(159, {"folder/c.txt"});
    EXPECT_TRUE(OK());
    Run(159, {"folder/c.txt"});
    EXPECT_FALSE(OK());
    EXPECT_EQ(error, kNotFound);
    Run(159, {"folder"});
    EXPECT_EQ(error, kNotFound);
    EXPECT_TRUE(std::filesystem::exists(Path("folder")));
}

TEST_F(Documents, Folders_CreateAndDelete_AsDocumented) {
    Run(475, {"one"});
    EXPECT_TRUE(OK());
    Run(475, {"one"});
    EXPECT_EQ(error, kExists);
    Run(475, {"x/y/z/"});
    EXPECT_FALSE(OK());
    Run(475, {"x/y/z/", Star()});
    EXPECT_TRUE(OK());
    EXPECT_TRUE(std::filesystem::is_directory(Path("x/y/z")));
    Run(475, {"p/q/file.txt", Star()});
    EXPECT_TRUE(std::filesystem::is_directory(Path("p/q")));
    EXPECT_FALSE(std::filesystem::exists(Path("p/q/file.txt")));
    Run(475, {"x/y/", Star()});
    EXPECT_TRUE(OK());
    Run(693, {"x"});
    EXPECT_EQ(error, kNotEmpty);
    Run(693, {"x", 1});
    EXPECT_TRUE(OK());
    EXPECT_FALSE(std::filesystem::exists(Path("x")));
    Run(693, {"one/"});
    EXPECT_TRUE(OK());
    Run(693, {"one"});
    EXPECT_EQ(error, kNoFolder);
    Run(693, {"/", 1});
    EXPECT_EQ(error, kBadName);
    Run(475, {""});
    EXPECT_EQ(error, kBadName);
}

TEST_F(Documents, Lists_FoldersAndDocuments_AreOrdered) {
    for (const char* name : {"l", "l/b", "l/A", "l/b/deep"}) mkdir(Path(name).c_str(), 0777);
    for (const char* name : {"l/z.txt", "l/a.txt", "l/.hidden", "l/b/in.txt", "l/b/deep/er.txt"}) Write(name, "x");
    Run(473, {"l", Arg()});
    EXPECT_TRUE(OK());
    EXPECT_EQ(ShowAfter(2), R"(["A", "b"])");
    Run(474, {"l/", Texts({"old", "old", "old", "old"})});
    EXPECT_EQ(ShowAfter(2), R"([".hidden", "a.txt", "z.txt"])");
    Run(474, {"l", Arg(), 8});
    EXPECT_EQ(ShowAfter(2), R"(["a.txt", "z.txt"])");
    Run(474, {"l", Arg(), 1 + 8});
    EXPECT_EQ(ShowAfter(2), R"(["/a.txt", "/b/deep/er.txt", "/b/in.txt", "/z.txt"])");
    Run(474, {"l/b", Arg(), 2});
    EXPECT_EQ(ShowAfter(2), "[\"" + Path("l/b/in.txt") + "\"]");
    Run(474, {"missing", Texts({"old"})});
    EXPECT_FALSE(OK());
    EXPECT_EQ(ShowAfter(2), "[]");
    Run(473, {"l", 5});
    EXPECT_FALSE(OK());
}

TEST_F(Documents, Properties_GetAndSet_AreThoseOfTheFile) {
    Write("a.txt", "x");
    Run(478, {"a.txt", true, false, D(2001, 2, 3), H(60), D(2001, 2, 3), H(3661)});
    EXPECT_TRUE(OK());
    Run(477, {"a.txt", Arg(), Arg(), Arg(), Arg(), Arg(), Arg()});
    EXPECT_EQ(ShowAfter(2), "true");
    EXPECT_EQ(ShowAfter(3), "false");
    EXPECT_EQ(ShowAfter(6), "2001-02-03");
    EXPECT_EQ(ShowAfter(7), "01:01:01");
    Run(478, {"a.txt", false});
    Run(477, {"a.txt", Arg(), Arg(), Arg(), Arg(), Arg(), Arg()});
    EXPECT_EQ(ShowAfter(2), "false");
    Run(477, {"missing", true});
    EXPECT_FALSE(OK());
    Run(477, {});
    EXPECT_FALSE(OK());
    Run(472, {"/", 0, 0, 0});
    EXPECT_TRUE(OK());
    EXPECT_GT(After(2).number(), 0);
    Run(471, {Arg()});
    EXPECT_EQ(ShowAfter(1), R"(["/"])");
}

TEST_F(Documents, Alias_CreatedAndResolved_LeadsToTheTarget) {
    Write("a.txt", "x");
    Run(694, {"a.txt", "link"});
    EXPECT_TRUE(OK());
    Run(695, {"link", ""});
    EXPECT_EQ(ShowAfter(2), "\"" + Path("a.txt") + "\"");
    Run(694, {"missing", "link2"});
    EXPECT_EQ(error, kNotFound);
    Run(159, {"a.txt"});
    Run(695, {"link", "old"});
    EXPECT_FALSE(OK());
    EXPECT_EQ(ShowAfter(2), "\"old\"");
}

TEST_F(Documents, BlobAndText_WholeDocuments_RoundTrip) {
    Run(526, {"a.bin", Hex("0001ff")});
    EXPECT_TRUE(OK());
    Run(525, {"a.bin", Arg()});
    EXPECT_TRUE(OK());
    EXPECT_EQ(ShowAfter(2), "<0001ff>");
    Run(526, {"a.bin", "no blob"});
    EXPECT_FALSE(OK());
    Run(526, {"missing/a.bin", Hex("00")});
    EXPECT_FALSE(OK());
    Run(525, {"missing", Hex("aa")});
    EXPECT_EQ(error, kNotFound);
    EXPECT_EQ(ShowAfter(2), "<aa>");
    Run(525, {"", Arg()});
    EXPECT_FALSE(OK());
    Run(1237, {"t.txt", "é\r\nb"});
    EXPECT_EQ(Read("t.txt"), "\xEF\xBB\xBF\xC3\xA9\nb");
    EXPECT_EQ(Text(1236, {"t.txt"}), "\"é\nb\"");
    Run(1237, {"t.txt", "é\nb", "UTF-8-no-bom", 2});
    EXPECT_EQ(Read("t.txt"), "\xC3\xA9\r\nb");
    EXPECT_EQ(Text(1236, {"t.txt", "utf-8", 0}), "\"é\r\nb\"");
    Run(1237, {"t.txt", "é", "ISO-8859-1", 0});
    EXPECT_EQ(Read("t.txt"), "\xE9");
    EXPECT_EQ(Text(1236, {"t.txt", "ISO-8859-1"}), "\"é\"");
    Run(1237, {"u.txt", "a", "UTF-16LE"});
    EXPECT_EQ(Read("u.txt"), std::string("\xFF\xFE"
                                         "a\0",
                                         4));
    EXPECT_EQ(Text(1236, {"u.txt", "UTF-16LE"}), "\"a\"");
    EXPECT_EQ(Text(1236, {"u.txt"}), "\"a\"") << "told by the byte order mark";
    Run(1237, {"w.txt", "a", "UTF-16"});
    EXPECT_EQ(Text(1236, {"w.txt", "UTF-16"}), "\"a\"");
    EXPECT_EQ(Read("w.txt").size(), 4u);
    Run(1237, {"w.txt", "a", "UTF-16-no-bom"});
    EXPECT_EQ(Read("w.txt").size(), 2u);
    Run(1237, {"w.txt", "", "UTF-32-NO-BOM"});
    EXPECT_EQ(Read("w.txt").size(), 0u);
    EXPECT_EQ(Text(1236, {"t.txt", "no such charset"}), "\"\"");
    EXPECT_FALSE(OK());
    EXPECT_EQ(Text(1236, {"missing"}), "\"\"");
    EXPECT_EQ(error, kNotFound);
    Run(1237, {"", "x"});
    EXPECT_FALSE(OK());
}

TEST_F(Documents, DocumentToBlob_FilesWithoutASize_AreReadWhole) {
    Run(525, {"/proc/self/status", Arg()});
    EXPECT_TRUE(OK());
    EXPECT_GT(After(2).blob().size(), 100u);
    mkfifo(Path("pipe").c_str(), 0666);
    Run(525, {"pipe", Arg()});  // nobody writes: it ends at once
    Run(526, {"pipe", Hex("00")});
    EXPECT_FALSE(OK());
}

TEST_F(Documents, Paths_AsTextAndObject_RoundTrip) {
    static const Row rows[] = {
        {1106, {"/a b/ä", Star()}, "\"/a%20b/%C3%A4\""},
        {1106, {"/a b"}, "\"/a b\""},
        {1107, {"/a%20b/%C3%A4%", Star()}, "\"/a b/ä%\""},
        {1107, {"%4", Star()}, "\"%4\""},
        {1105, {"/x"}, "\"/x\""},
        {1547, {"/a/b.c/d.txt"}, R"({"parentFolder":"/a/b.c/","name":"d","extension":".txt","isFolder":false})"},
        {1547, {"/a/b/"}, R"({"parentFolder":"/a/","name":"b","extension":"","isFolder":true})"},
        {1547, {".profile"}, R"({"parentFolder":"","name":".profile","extension":"","isFolder":false})"},
        {1547, {""}, R"({"parentFolder":"","name":"","extension":"","isFolder":false})"},
        {1548, {Json(R"({"parentFolder":"/a","name":"b","extension":"txt"})")}, "\"/a/b.txt\""},
        {1548, {Json(R"({"name":"b","isFolder":true})")}, "\"b/\""},
        {1548, {}, "\"\""},
    };
    EXPECT_ROWS(rows);
}

TEST_F(Documents, Dialogs_Headless_AreCancelled) {
    for (int id : {670, 905}) {
        host->setOK(true);
        EXPECT_EQ(Text(id, {"Choose"}), "\"\"");
        EXPECT_FALSE(OK());
    }
    Run(922, {"/tmp"});
    EXPECT_FALSE(OK());
    Write("a.txt", "x");
    for (int id : {528, 529}) EXPECT_EQ(Text(id, {"a.txt"}), "\"\"");
    for (int id : {530, 531}) {
        Run(id, {"a.txt", "TEXT"});
        EXPECT_TRUE(OK());
        Run(id, {"missing", "TEXT"});
        EXPECT_FALSE(OK());
    }
    Run(268, {10});
    EXPECT_TRUE(OK());
}

}  // namespace
}  // namespace zrhost::test
