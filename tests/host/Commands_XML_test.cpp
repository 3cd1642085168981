// Commands by number: XML DOM, XML and SVG.
#include "tests/host/Commands_Test.h"

namespace zrhost::test {
namespace {

const std::string kNull(32, '0');

class CommandsXML : public CommandTest {
  protected:
    using CommandTest::Text;
    std::string Text(int id, Args args, size_t after) {  // parameter after, from 1, as the command left it
        Run(id, args);
        return ShowAfter(after);
    }
    Value RunAfter(int id, Args args, size_t after) {
        Run(id, args);
        return After(after);
    }
    std::string Ref(int id, Args args) {  // a reference that a command answers, without its quotes
        const std::string shown = Text(id, std::move(args));
        return shown.size() >= 2 ? shown.substr(1, shown.size() - 2) : shown;
    }
    std::string Parse(const std::string& xml) { return Ref(720, {xml}); }
    std::string Xml(const std::string& ref) {  // without the declaration
        const std::string shown = Text(863, {ref, ""}, 2);
        const size_t line = shown.find('\n');
        return line == shown.npos ? shown : shown.substr(line + 1, shown.size() - line - 3);
    }
};

TEST_F(CommandsXML, DomCreate_RootAndElements_AreWritten) {
    const std::string root = Ref(861, {"svg"});
    EXPECT_TRUE(OK());
    EXPECT_EQ(root.size(), 32u);
    const std::string element = Ref(865, {root, "rect", "x", 1.5, "on", true, "day", D(2024, 2, 29), "at", H(3723)});
    Run(866, {element, "id", "r&1", "n", L(-7), "r", 0.1});
    EXPECT_TRUE(OK());
    Run(868, {element, "a<b"});
    EXPECT_EQ(Xml(root),
              "<svg><rect x=\"1.5\" on=\"true\" day=\"2024-02-29\" at=\"PT1H2M3S\" id=\"r&amp;1\" n=\"-7\" "
              "r=\"0.1\">a&lt;b</rect></svg>");
    Run(722, {root});
    EXPECT_TRUE(OK());
    Run(866, {element, "id", "late"});
    EXPECT_FALSE(OK());
    EXPECT_EQ(error, ZR_ERR_PARAMETER);
}

TEST_F(CommandsXML, References_ThatAreNone_AreRefusedByEveryCommand) {
    const std::string root = Parse("<a><b/></a>");
    const std::string gone = Ref(723, {root});
    Run(869, {gone});
    const std::string other = Parse("<x/>");
    Run(722, {other});
    std::string wide = root;
    wide[0] = 'F';
    for (const std::string& bad : {std::string(), std::string("x"), kNull, gone, other, wide, root + "0",
                                   std::string(32, 'z'), std::string(31, '0') + "\xC3\xA9"})
        for (int id :
             {721, 722, 723, 724, 725, 726, 727,  728,  729,  730,  731,  859,  862,  863,  864,  865,  866,
              867, 868, 869, 923, 924, 925, 1010, 1017, 1053, 1080, 1081, 1082, 1083, 1084, 1088, 1090, 1097}) {
            Run(id, {bad, "p", "q", "r"});
            EXPECT_FALSE(OK()) << id << " " << bad;
            EXPECT_EQ(error, ZR_ERR_PARAMETER) << id << " " << bad;
        }
    EXPECT_EQ(Xml(root), "<a/>");
}

TEST_F(CommandsXML, ParseVariable_TextAndBlobs_AreRead) {
    EXPECT_EQ(Xml(Parse("<a>\xC3\xA9</a>")), "<a>\xC3\xA9</a>");
    EXPECT_EQ(Xml(Ref(720, {B("<?xml version='1.0' encoding='ISO-8859-1'?><a>\xE9</a>")})), "<a>\xC3\xA9</a>");
    EXPECT_EQ(Xml(Ref(720, {Hex("fffe3c0061002f003e00")})), "<a/>");
    EXPECT_EQ(Xml(Ref(720, {Hex("feff003c0061002f003e")})), "<a/>");
    Run(720, {"<a>\n  <b></a>"});
    EXPECT_FALSE(OK());
    EXPECT_EQ(error, ZR_ERR_PARAMETER);
    EXPECT_EQ(Text(732, {"", "", L(0), L(0)}, 2), "\"an end tag without its start\"");
    EXPECT_EQ(Text(732, {"", "", L(0), L(0)}, 3), "2");
    EXPECT_EQ(Text(732, {"", "", L(0), L(0)}, 4), "9");
    Run(720, {B("<?xml version='1.0' encoding='no-such'?><a/>")});
    EXPECT_FALSE(OK());
    Run(720, {});
    EXPECT_FALSE(OK());
}

TEST_F(CommandsXML, FilesAndEncodings_WrittenAndRead_AreTheSame) {
    const std::string root = Parse("<a>\xC3\xA9</a>");
    Run(859, {root, "ISO-8859-1", true, false});
    EXPECT_TRUE(OK());
    EXPECT_EQ(Text(721, {root, 4}), "\"ISO-8859-1\"");
    EXPECT_EQ(Text(721, {root, 5}), "\"1.0\"");
    EXPECT_EQ(Text(863, {root, B("")}, 2), Show(Value(Value::Bytes([] {
                  const std::string s =
                      "<?xml version=\"1.0\" encoding=\"ISO-8859-1\" standalone=\"yes\"?>\n<a>\xE9</a>\n";
                  return Value::Bytes(s.begin(), s.end());
              }()))));
    Run(862, {root, folder + "out.xml"});
    EXPECT_TRUE(OK());
    EXPECT_EQ(Xml(Ref(719, {folder + "out.xml"})), "<a>\xC3\xA9</a>");
    Run(719, {folder + "missing.xml"});
    EXPECT_FALSE(OK());
    EXPECT_EQ(error, -43);
    Run(859, {root, "no-such"});
    EXPECT_FALSE(OK());
    const std::string typed = Parse("<!DOCTYPE svg PUBLIC \"x\"><svg/>");
    EXPECT_EQ(Text(721, {typed, 3}), "\"svg\"");
    EXPECT_EQ(Text(721, {typed, 1}), "\"\"");
}

TEST_F(CommandsXML, Options_Indentation_IsSetAndAsked) {
    const std::string root = Parse("<a><b/></a>");
    EXPECT_EQ(Text(1096, {root, 4, L(0)}, 3), "2");
    Run(1090, {root, 4, 1});
    EXPECT_TRUE(OK());
    EXPECT_EQ(Text(1096, {root, 4, L(0)}, 3), "1");
    EXPECT_EQ(Xml(root), "<a>\n  <b/>\n</a>");
    Run(1090, {root, 1, 1});
    EXPECT_FALSE(OK());
    EXPECT_EQ(notServed, (std::vector<int>{1090}));
}

TEST_F(CommandsXML, Walk_ChildrenSiblingsParents_AreFoundOrNull) {
    const std::string root = Parse("<a>t<b>one</b><!--c--><c/><b>2.5</b></a>");
    EXPECT_EQ(Text(723, {root, "", ""}, 2), "\"b\"");
    EXPECT_EQ(Text(723, {root, "", ""}, 3), "\"one\"");
    const std::string first = Ref(723, {root}), last = Ref(925, {root}), middle = Ref(724, {first});
    EXPECT_TRUE(OK());
    EXPECT_EQ(Text(730, {middle, ""}, 2), "\"c\"");
    EXPECT_EQ(Ref(924, {last}), middle);
    EXPECT_EQ(Ref(724, {last}), kNull);
    EXPECT_FALSE(OK());
    EXPECT_EQ(error, 0);
    EXPECT_EQ(Ref(924, {first}), kNull);
    EXPECT_EQ(Ref(723, {middle}), kNull);
    EXPECT_EQ(Ref(923, {middle}), root);
    EXPECT_EQ(Ref(923, {root}), kNull);
    EXPECT_EQ(Ref(923, {middle, "a"}), root);
    EXPECT_EQ(Ref(923, {middle, "z"}), kNull);
    EXPECT_EQ(Ref(1053, {middle}), root);
    EXPECT_TRUE(OK());
    EXPECT_EQ(Ref(725, {root, "b", 2}), last);
    EXPECT_EQ(Text(725, {root, "b", 2, 0.0}, 4), "2.5");
    EXPECT_EQ(Ref(725, {root, "b", 3}), kNull);
    EXPECT_EQ(Ref(725, {root, "b", 0}), kNull);
    EXPECT_EQ(Text(726, {root, "b"}), "2");
    EXPECT_EQ(Text(726, {root, "zz"}), "0");
}

TEST_F(CommandsXML, Attributes_ByNameAndIndex_AreReadIntoTheKind) {
    const std::string root = Parse("<a x='1.5' y='true' z='2024-02-29T00:00:00' id='q'/>");
    EXPECT_EQ(Text(727, {root}), "4");
    EXPECT_EQ(Text(728, {root, "x", ""}, 3), "\"1.5\"");
    EXPECT_EQ(Text(728, {root, "x", 0.0}, 3), "1.5");
    EXPECT_EQ(Text(728, {root, "y", false}, 3), "true");
    EXPECT_EQ(Text(728, {root, "z", D(0, 0, 0)}, 3), "2024-02-29");
    EXPECT_EQ(Text(728, {root, "none", "old"}, 3), "\"old\"");
    EXPECT_FALSE(OK());
    EXPECT_EQ(Text(729, {root, 4, "", ""}, 3), "\"id\"");
    EXPECT_EQ(Text(729, {root, 4, "", ""}, 4), "\"q\"");
    Run(729, {root, 5, "", ""});
    EXPECT_FALSE(OK());
    Run(729, {root, 0, "", ""});
    EXPECT_FALSE(OK());
    Run(1084, {root, "y"});
    EXPECT_TRUE(OK());
    Run(1084, {root, "y"});
    EXPECT_FALSE(OK());
    Run(866, {root, "bad name", "1"});
    EXPECT_FALSE(OK());
    EXPECT_EQ(Xml(root), "<a x=\"1.5\" z=\"2024-02-29T00:00:00\" id=\"q\"/>");
}

TEST_F(CommandsXML, Find_Paths_LeadToElements) {
    const std::string root = Parse("<a><b n='1'><c>x</c></b><b n='2'><c>y</c><c>z</c></b></a>");
    static const struct {
        const char *path, *value;  // null = not found
    } rows[] = {
        {"/a/b/c", "x"},   {"b/c", "x"},       {"/a/b[2]/c[2]", "z"},     {"b[2]/c", "y"},
        {"*/c", "x"},      {"/*/*[2]/c", "y"}, {"/a/b[@n=\"2\"]/c", "y"}, {"/a", "xyz?"},
        {"/z/b", nullptr}, {"b[3]", nullptr},  {"b[0]", nullptr},         {"", nullptr},
        {"b[x]", nullptr}, {"b/", "ok"},       {"b[", nullptr},           {"/", nullptr},
        {"//c", nullptr},
    };
    for (const auto& row : rows) {
        const std::string found = Ref(864, {root, row.path});
        EXPECT_EQ(OK(), row.value != nullptr) << row.path;
        EXPECT_EQ(found == kNull, row.value == nullptr) << row.path;
        if (!row.value || strlen(row.value) != 1) continue;
        EXPECT_EQ(Text(731, {found, ""}, 2), std::string("\"") + row.value + "\"") << row.path;
    }
    EXPECT_EQ(RunAfter(864, {root, "b/c", Texts({})}, 3).elements().size(), 4u);
    const std::string ids = Parse("<a><b><c id='deep'/></b><c id='two'/></a>");
    EXPECT_EQ(Ref(1010, {ids, "deep"}), Ref(864, {ids, "b/c"}));
    EXPECT_EQ(Ref(1010, {ids, "two"}), Ref(864, {ids, "c"}));
    EXPECT_EQ(Ref(1010, {Ref(864, {ids, "b"}), "two"}), kNull);
}

TEST_F(CommandsXML, Create_Paths_AreMadeWhereTheyAreMissing) {
    const std::string root = Ref(861, {"a"});
    Ref(865, {root, "b/c", "n", "1"});
    Ref(865, {root, "b/c", "n", "2"});
    Ref(865, {root, "/a/d[2]/e"});
    Ref(865, {root, "b"});
    EXPECT_EQ(Xml(root), "<a><b><c n=\"1\"/><c n=\"2\"/></b><d/><d><e/></d><b/></a>");
    for (const char* bad : {"", "1", "b/", "/x/y", "*", "b//c", "b[100000]"}) {
        if (std::string(bad) == "b/") continue;
        Run(865, {root, bad});
        EXPECT_FALSE(OK()) << bad;
    }
    Run(865, {root, "f", "bad name", "x"});
    EXPECT_FALSE(OK());
    EXPECT_EQ(Xml(root), "<a><b><c n=\"1\"/><c n=\"2\"/></b><d/><d><e/></d><b/></a>");
    Ref(1097, {root, "g", Texts({"x", "y"}), Reals({1, 2.5})});
    EXPECT_TRUE(Xml(root).ends_with("<g x=\"1\" y=\"2.5\"/></a>"));
}

TEST_F(CommandsXML, Values_SetAndRead_AreData) {
    const std::string root = Parse("<a>old<b/>er</a>");
    Run(868, {root, "new"});
    EXPECT_EQ(Xml(root), "<a>new<b/></a>");
    Run(868, {root, "x<y", Star()});
    EXPECT_EQ(Xml(root), "<a><![CDATA[x<y]]><b/></a>");
    Run(868, {root, "x]]>y", Star()});
    EXPECT_FALSE(OK());
    Run(868, {root, "b", "deep"});
    Run(868, {root, "c/d", 1.5});
    EXPECT_EQ(Xml(root), "<a><![CDATA[x<y]]><b>deep</b><c><d>1.5</d></c></a>");
    EXPECT_EQ(Text(731, {root, "", ""}, 2), "\"x<y\"");
    EXPECT_EQ(Text(731, {root, "", ""}, 3), "\"x<y\"");
    EXPECT_EQ(Text(731, {Ref(864, {root, "c/d"}), 0.0}, 2), "1.5");
    Run(867, {Ref(864, {root, "b"}), "renamed"});
    Run(867, {root, "bad name"});
    EXPECT_FALSE(OK());
    EXPECT_EQ(Xml(root), "<a><![CDATA[x<y]]><renamed>deep</renamed><c><d>1.5</d></c></a>");
}

TEST_F(CommandsXML, AppendChild_EachKind_IsWritten) {
    const std::string root = Ref(861, {"a"});
    static const struct {
        int kind;
        const char* value;
        bool good;
    } rows[] = {
        {2, "note", true},  {2, "no -- note", false}, {2, "no-", false},         {3, "style x='1'", true},
        {3, "1x", false},   {3, "p ?> q", false},     {6, "data & more", true},  {7, "<c>", true},
        {7, "]]>", false},  {11, "b", true},          {11, "<c x='1'/>t", true}, {11, "<c", false},
        {11, "b c", false}, {10, "a", false},         {0, "x", false},           {255, "x", false},
        {-1, "x", false},
    };
    for (const auto& row : rows) {
        const std::string made = Ref(1080, {root, row.kind, row.value});
        EXPECT_EQ(OK(), row.good) << row.kind << " " << row.value;
        EXPECT_EQ(made.size() == 32, row.good);
    }
    EXPECT_EQ(Xml(root), "<a><!--note--><?style x='1'?>data &amp; more<![CDATA[<c>]]><b/><c x=\"1\"/>t</a>");
    const std::string top = Ref(1088, {root});
    Ref(1080, {top, 2, "above"});
    EXPECT_TRUE(OK());
    Ref(1080, {top, 10, "a SYSTEM \"x.dtd\""});
    EXPECT_TRUE(OK());
    Ref(1080, {top, 6, "text"});
    EXPECT_FALSE(OK());
    Ref(1080, {top, 11, "second"});
    EXPECT_FALSE(OK());
    EXPECT_TRUE(Xml(root).starts_with("<!DOCTYPE a SYSTEM \"x.dtd\">\n<a>"));
    EXPECT_EQ(Show(RunAfter(1081, {root, Longints({}), Texts({})}, 2)), "[2, 3, 6, 7, 11, 11, 6]");
    EXPECT_EQ(RunAfter(1081, {root, Longints({}), Texts({})}, 3).elements()[2].text(), u"style x='1'");
    const std::string data = Ref(1080, {root, 6, "end"});
    EXPECT_EQ(Text(731, {data, ""}, 2), "\"end\"");
    Run(868, {data, "ended"});
    EXPECT_TRUE(Xml(root).find("tended</a>") != std::string::npos);
    Run(866, {data, "x", "1"});
    EXPECT_FALSE(OK());
    Run(1080, {data, 6, "x"});
    EXPECT_FALSE(OK());
}

TEST_F(CommandsXML, Copies_OfElements_StandWhereAsked) {
    const std::string root = Parse("<a><b x='1'>t<c/></b></a>"), other = Parse("<z><y/></z>");
    const std::string b = Ref(723, {root});
    Ref(1082, {other, b});
    EXPECT_EQ(Xml(other), "<z><y/><b x=\"1\">t<c/></b></z>");
    Ref(1083, {other, root, 1});
    EXPECT_EQ(Xml(other), "<z><a><b x=\"1\">t<c/></b></a><y/><b x=\"1\">t<c/></b></z>");
    Ref(1083, {other, Ref(865, {root, "new"}), 99});
    EXPECT_TRUE(Xml(other).ends_with("<new/></z>"));
    Ref(1082, {b, root});  // into itself: what stood there before
    EXPECT_EQ(Xml(root), "<a><b x=\"1\">t<c/><a><b x=\"1\">t<c/></b><new/></a></b><new/></a>");
}

TEST_F(CommandsXML, Remove_Element_EndsItsReferences) {
    const std::string root = Parse("<a><b><c/></b><d/></a>");
    const std::string b = Ref(723, {root}), c = Ref(723, {b});
    Run(869, {b});
    EXPECT_TRUE(OK());
    EXPECT_EQ(Xml(root), "<a><d/></a>");
    Run(730, {c, ""});
    EXPECT_FALSE(OK());
    const std::string fresh = Ref(865, {root, "e"});  // takes a place that became free
    EXPECT_NE(fresh, b);
    EXPECT_NE(fresh, c);
    Run(869, {root});
    EXPECT_FALSE(OK());
    Run(722, {fresh});
    EXPECT_FALSE(OK());
}

TEST_F(CommandsXML, ExportToPicture_Document_IsAnSvgPicture) {
    const std::string root = Ref(861, {"svg", "http://www.w3.org/2000/svg"});
    Run(866, {root, "width", L(20), "height", L(10)});
    const Value picture = RunAfter(1017, {root, Value(zrhost::Ref<Picture>())}, 2);
    EXPECT_TRUE(OK());
    ASSERT_NE(picture.picture(), nullptr);
    EXPECT_EQ(picture.picture()->representations()[0].type, "image/svg+xml");
    const auto& bytes = picture.picture()->representations()[0].bytes;
    EXPECT_EQ(std::string(bytes.begin(), bytes.end()),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"20\" "
              "height=\"10\"/>\n");
    EXPECT_EQ(PictureSize(bytes), (std::pair<int, int>(20, 10)));
}

TEST_F(CommandsXML, Processes_Preemptive_KeepTheirDocumentsToThemselves) {
    const std::string root = Parse("<a/>");
    std::vector<std::string> seen;
    for (bool preemptive : {false, true}) {
        const int number = host->runProcess(u"worker", preemptive, [&] {
            Run(866, {root, preemptive ? "p" : "c", "1"});
            seen.push_back(OK() ? "yes" : "no");
            const std::string own = Parse("<own/>");
            seen.push_back(Xml(own));
        });
        host->waitForProcess(number);
    }
    EXPECT_EQ(seen, (std::vector<std::string>{"yes", "<own/>", "no", "<own/>"}));
    EXPECT_EQ(Xml(root), "<a c=\"1\"/>");
}

}  // namespace
}  // namespace zrhost::test
