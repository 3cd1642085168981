// Documents of the XML commands: reading, writing, changing, numbers.
#include "host/Xml.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <clocale>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <random>

#include "host/Host.h"

using namespace zrhost;

namespace {

std::string Number(double number) {
    char text[kXmlNumber];
    return {text, WriteXmlNumber(number, text)};
}

// What is written for a text, without the declaration; "line:column message" if it is refused.
std::string RoundTrip(std::string_view text) {
    XmlDocument document;
    XmlError error;
    if (!document.parse(text, &error))
        return std::to_string(error.line) + ":" + std::to_string(error.column) + " " + error.text;
    const std::string out = document.write();
    const size_t line = out.find('\n');
    return out.substr(line + 1, out.size() - line - 2);
}

std::string Written(const XmlDocument& document) {
    const std::string out = document.write();
    const size_t line = out.find('\n');
    return out.substr(line + 1, out.size() - line - 2);
}

}  // namespace

TEST(XmlNumber, Values_AreShortestWithoutExponent) {
    static const struct {
        double number;
        const char* text;
    } rows[] = {
        {0, "0"},
        {-0.0, "0"},
        {1, "1"},
        {-1.5, "-1.5"},
        {0.1, "0.1"},
        {0.1f, "0.1"},
        {2.0 / 3, "0.6666666666666666"},
        {2.0f / 3, "0.6666667"},
        {1e21, "1000000000000000000000"},
        {1e-10, "0.0000000001"},
        {123456.78f, "123456.78"},
        {INFINITY, "0"},
        {-INFINITY, "0"},
        {NAN, "0"},
    };
    for (const auto& row : rows) EXPECT_EQ(Number(row.number), row.text);
}

TEST(XmlNumber, AnyBits_ReadBackAsTheSame) {
    std::mt19937_64 random(7);
    for (int i = 0; i < 20000; ++i) {
        uint64_t bits = random();
        double number;
        memcpy(&number, &bits, sizeof number);
        if (!std::isfinite(number)) continue;
        const std::string text = Number(number);
        EXPECT_EQ(std::strtod(text.c_str(), nullptr), number) << text;
        EXPECT_EQ(text.find_first_not_of("-.0123456789"), text.npos) << text;
        float narrow;
        memcpy(&narrow, &bits, sizeof narrow);
        if (!std::isfinite(narrow)) continue;
        EXPECT_EQ(std::strtof(Number(narrow).c_str(), nullptr), narrow) << narrow;
    }
    for (double edge : {DBL_MAX, -DBL_MAX, DBL_MIN, 5e-324, double(FLT_MAX) * 1.0001})
        EXPECT_EQ(std::strtod(Number(edge).c_str(), nullptr), edge);
}

TEST(XmlNames, Names_AreThoseThatXmlAllows) {
    for (const char16_t* name : {u"a", u"_x", u"svg:rect", u"a-b.c1", u"\u00E9t\u00E9", u"\u4E2D"})
        EXPECT_TRUE(IsXmlName(name)) << ToUtf8(name);
    for (const char16_t* name : {u"", u"1", u"-a", u".a", u"a b", u"a<", u"a>", u"a\"", u"a&", u"a/b", u"\uFFFE",
                                 u"a\n", u"[", u"a{", u"@", u"`"})
        EXPECT_FALSE(IsXmlName(name)) << ToUtf8(name);
    XmlDocument document;
    EXPECT_EQ(document.addElement(XmlDocument::kTop, u"a\xD800"), 0u);
}

TEST(XmlReading, WellFormedText_IsKept) {
    static const struct {
        const char *text, *written;
    } rows[] = {
        {"<a/>", "<a/>"},
        {"<a></a>", "<a/>"},
        {"  <a>\n <b/> x </a>\n", "<a>\n <b/> x </a>"},
        {"<?xml version='1.0' encoding=\"UTF-8\" standalone='yes' ?>\n<a/>", "<a/>"},
        {"\xEF\xBB\xBF<a/>", "<a/>"},
        {"<a b='1' c=\"2'\" d = '\"'/>", "<a b=\"1\" c=\"2'\" d=\"&quot;\"/>"},
        {"<a>&lt;&gt;&amp;&quot;&apos;&#65;&#x20AC;&#x1F600;</a>", "<a>&lt;&gt;&amp;\"'A\u20AC\U0001F600</a>"},
        {"<a b='x\ny\tz&#10;&#9;'/>", "<a b=\"x y z&#10;&#9;\"/>"},
        {"<a>1\r\n2\r3&#13;</a>", "<a>1\n2\n3&#13;</a>"},
        {"<a><![CDATA[<&]]></a>", "<a><![CDATA[<&]]></a>"},
        {"<!-- c --><a><!--x--></a><!-- d -->", "<!-- c -->\n<a><!--x--></a>\n<!-- d -->"},
        {"<?style x?><a><?p?></a>", "<?style x?>\n<a><?p?></a>"},
        {"<!DOCTYPE a SYSTEM \"x>y\" [<!ENTITY e \"]>\">]><a/>", "<!DOCTYPE a SYSTEM \"x>y\">\n<a/>"},
        {"<a xmlns:x='u'><x:b x:c='1'/></a>", "<a xmlns:x=\"u\"><x:b x:c=\"1\"/></a>"},
        {"<a> <b> </b> </a>", "<a> <b> </b> </a>"},
    };
    for (const auto& row : rows) EXPECT_EQ(RoundTrip(row.text), row.written) << row.text;
}

TEST(XmlReading, WhatIsNotWellFormed_IsRefusedWithItsPlace) {
    static const struct {
        const char *text, *error;
    } rows[] = {
        {"", "1:1 there is no root element"},
        {"  \n ", "2:2 there is no root element"},
        {"x<a/>", "1:1 text outside the root element"},
        {"<a/>x", "1:5 text outside the root element"},
        {"<a/><b/>", "1:7 a second root element"},
        {"<a>", "1:4 an element is not closed"},
        {"<a>\n</b>", "2:4 an end tag without its start"},
        {"</a>", "1:4 an end tag without its start"},
        {"<a b></a>", "1:5 = is expected"},
        {"<a b=1/>", "1:6 a quoted value is expected"},
        {"<a b='1", "1:8 a value is not closed"},
        {"<a b='<'/>", "1:7 < within a value"},
        {"<a b='1' b='2'/>", "1:11 an attribute stands twice"},
        {"<a b='1'c='2'/>", "1:9 a tag is not closed"},
        {"<a", "1:3 a tag is not closed"},
        {"<a><!-- ", "1:8 markup is not closed"},
        {"<a><!-- -- --></a>", "1:15 markup that is not allowed here"},
        {"<a>&x;</a>", "1:4 an unknown entity"},
        {"<a>&</a>", "1:4 an unknown entity"},
        {"<a>&#0;</a>", "1:4 an unknown entity"},
        {"<a>&#xD800;</a>", "1:4 an unknown entity"},
        {"<a>&#99999999999999999999;</a>", "1:4 an unknown entity"},
        {"<a>&#;</a>", "1:4 an unknown entity"},
        {"<a>\x01</a>", "1:4 a character that XML does not allow"},
        {"<1/>", "1:3 a name is expected"},
        {"< a/>", "1:2 a name is expected"},
        {"<a/><!DOCTYPE a>", "1:14 a document type after the root element"},
        {"<!DOCTYPE a [", "1:14 the document type is not closed"},
        {"<!DOCTYPE>", "1:11 a name is expected"},
        {"<a><?xml version='1.0'?></a>", "1:25 a declaration that is not the first"},
        {"<?xml version='1.0'", "1:20 the declaration is not closed"},
        {"<![CDATA[x]]><a/>", "1:10 text outside the root element"},
    };
    for (const auto& row : rows) EXPECT_EQ(RoundTrip(row.text), row.error) << row.text;
}

TEST(XmlReading, Fragment_IsLenientAndAllOrNothing) {
    XmlDocument document;
    const XmlDocument::Node root = document.addElement(XmlDocument::kTop, u"r");
    EXPECT_NE(document.parseFragment(root, "a & b < c &lt; <x> </x> &unknown; 1<2<y/>"), 0u);
    EXPECT_EQ(Written(document), "<r>a &amp; b &lt; c &lt; <x> </x> &amp;unknown; 1&lt;2<y/></r>");
    for (const char* bad : {"<x>", "</r>", "<x></y>", "t<x", "<x a=1/>", "\x02"})
        EXPECT_EQ(document.parseFragment(root, bad), 0u) << bad;
    EXPECT_EQ(Written(document), "<r>a &amp; b &lt; c &lt; <x> </x> &amp;unknown; 1&lt;2<y/></r>");
}

TEST(XmlReading, DeepTrees_AreReadWrittenCopiedAndRemovedWithoutRecursion) {
    const int depth = 200'000;
    std::string text;
    for (int i = 0; i < depth; ++i) text += "<a>";
    for (int i = 0; i < depth; ++i) text += "</a>";
    XmlDocument document;
    ASSERT_TRUE(document.parse(text, nullptr));
    document.indented = true;
    EXPECT_GT(document.write().size(), text.size() - 10);
    document.indented = false;
    const XmlDocument::Node below = document.first(document.root());
    const XmlDocument::Node copied = document.copy(document.root(), 0, document, below);
    document.remove(below);
    document.remove(copied);
    EXPECT_EQ(Written(document), "<a/>");
}

TEST(XmlWriting, Indented_KeepsElementsWithDataOnOneLine) {
    XmlDocument document;
    ASSERT_TRUE(document.parse("<!--c--><a><b><c/><d/></b><t>x<u/><v>y</v></t><e/></a>", nullptr));
    EXPECT_EQ(Written(document), "<!--c-->\n<a><b><c/><d/></b><t>x<u/><v>y</v></t><e/></a>");
    document.indented = true;
    EXPECT_EQ(Written(document),
              "<!--c-->\n<a>\n  <b>\n    <c/>\n    <d/>\n  </b>\n  <t>x<u/><v>y</v></t>\n  <e/>\n</a>");
    document.standalone = true;
    EXPECT_TRUE(document.write().starts_with("<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n"));
}

TEST(XmlWriting, TextThatXmlCannotHold_IsLeftOut) {
    XmlDocument document;
    const XmlDocument::Node root = document.addElement(XmlDocument::kTop, u"r");
    using namespace std::string_view_literals;
    document.setAttribute(root, u"a", u"x\0y\x01\uFFFEz\t"sv);
    document.add(root, XmlKind::Data, u"\xD800 \xD83D\xDE00 \x1F"sv);
    EXPECT_EQ(Written(document), "<r a=\"xyz&#9;\">\uFFFD \U0001F600 </r>");
}

// What is checked is what is left when the characters are gone that XML cannot hold.
TEST(XmlWriting, MarkupHiddenByControlCharacters_IsRefused) {
    static const struct {
        XmlKind kind;
        const char16_t* text;
        bool taken;
    } rows[] = {
        {XmlKind::CData, u"]]\x01><evil/>", false},
        {XmlKind::CData, u"]\xFFFE]>", false},
        {XmlKind::CData, u"]]\x01 >", true},
        {XmlKind::Comment, u"a -\x01- b", false},
        {XmlKind::Comment, u"a-\x01", false},
        {XmlKind::Comment, u"a\x01 b", true},
        {XmlKind::Instruction, u"p a?\x01><evil/>", false},
        {XmlKind::Instruction, u"p a?\x01 >", true},
    };
    for (const auto& row : rows) {
        XmlDocument document;
        const auto root = document.addElement(XmlDocument::kTop, u"a");
        EXPECT_EQ(document.add(root, row.kind, row.text) != 0, row.taken) << ToUtf8(row.text);
        XmlDocument again;
        XmlError error;
        EXPECT_TRUE(again.parse(document.write(), &error)) << document.write();
        EXPECT_EQ(again.write(), document.write());
    }
}

TEST(XmlReading, SecondDocumentType_IsRefused) {
    XmlDocument document;
    XmlError error;
    EXPECT_FALSE(document.parse("<!DOCTYPE a><!DOCTYPE a><a/>", &error));
    XmlDocument one;
    EXPECT_TRUE(one.parse("<!DOCTYPE a><a/>", &error)) << error.text;
    EXPECT_EQ(one.add(XmlDocument::kTop, XmlKind::DocumentType, u"a"), 0u);
}

TEST(XmlChanging, ManyAttributes_AreFoundChangedAndRemoved) {
    XmlDocument document;
    const auto root = document.addElement(XmlDocument::kTop, u"a");
    const auto name = [](int i) { return u"n" + FromUtf8(std::to_string(i)); };
    constexpr int kCount = 30000;  // a walk for each would take minutes under a sanitizer
    for (int i = 0; i < kCount; i++) ASSERT_TRUE(document.setAttribute(root, name(i), std::u16string_view(u"v")));
    for (int i = 0; i < kCount; i++) ASSERT_TRUE(document.setAttribute(root, name(i), std::u16string_view(u"w")));
    for (int i = 0; i < kCount; i += 3) {
        ASSERT_NE(document.findAttribute(root, name(i)), 0u);
        if (i < 300) { ASSERT_TRUE(document.removeAttribute(root, name(i))); }
    }
    EXPECT_EQ(document.findAttribute(root, u"n0"), 0u);
    EXPECT_NE(document.findAttribute(root, u"n1"), 0u);
    EXPECT_FALSE(document.removeAttribute(root, u"n0"));
    EXPECT_TRUE(document.setAttribute(root, u"n0", std::u16string_view(u"new")));
    EXPECT_EQ(document.attributeValue(document.findAttribute(root, u"n0")), "new");
    XmlDocument again;
    XmlError error;
    EXPECT_TRUE(again.parse(document.write(), &error)) << error.text;
    EXPECT_EQ(again.write(), document.write());
}

TEST(XmlChanging, Nodes_AreUsedAgainWithAnotherGeneration) {
    XmlDocument document;
    const XmlDocument::Node root = document.addElement(XmlDocument::kTop, u"r");
    const XmlDocument::Node first = document.addElement(root, u"a");
    const uint32_t generation = document.generation(first);
    document.addElement(first, u"below");
    document.setAttribute(first, u"x", u"1");
    document.remove(first);
    EXPECT_FALSE(document.alive(first, generation));
    const XmlDocument::Node again = document.addElement(root, u"b");
    EXPECT_EQ(again, first);
    EXPECT_NE(document.generation(again), generation);
    EXPECT_EQ(Written(document), "<r><b/></r>");
    EXPECT_FALSE(document.alive(0, 0));
    EXPECT_FALSE(document.alive(999, 0));
}

TEST(XmlChanging, RepeatedValues_DoNotGrowWithoutEnd) {
    XmlDocument document;
    const XmlDocument::Node root = document.addElement(XmlDocument::kTop, u"r");
    document.setAttribute(root, u"stays", u"here");
    const std::u16string one(500, u'x'), two(700, u'y');
    for (int i = 0; i < 20'000; ++i) {
        document.setAttribute(root, u"a", i % 2 ? std::u16string_view(one) : two);
        document.setText(root, i % 3 ? std::u16string_view(one) : two, XmlKind::Data);
    }
    EXPECT_LT(document.bytesInUse(), size_t(1) << 20);
    EXPECT_TRUE(Written(document).starts_with("<r stays=\"here\" a=\"xxx"));
}

TEST(XmlChanging, AnElementOfTenAttributes_TakesLessThanAKilobyte) {
    XmlDocument document;
    const XmlDocument::Node root = document.addElement(XmlDocument::kTop, u"r");
    const size_t count = 10'000, before = document.bytesInUse();
    for (size_t i = 0; i < count; ++i) {
        const XmlDocument::Node node = document.addElement(root, u"rect");
        for (const char16_t* name :
             {u"x", u"y", u"width", u"height", u"fill", u"stroke", u"rx", u"ry", u"id", u"class"})
            document.setAttribute(node, name, u"123.4567");
    }
    EXPECT_LT((document.bytesInUse() - before) / count, 1024u);
}

TEST(XmlChanging, ManyNames_AreFoundAgain) {
    XmlDocument document;
    const XmlDocument::Node root = document.addElement(XmlDocument::kTop, u"r");
    for (int round = 0; round < 2; ++round)
        for (int i = 0; i < 500; ++i) ASSERT_TRUE(document.setAttribute(root, FromUtf8("n" + std::to_string(i)), u"v"));
    int count = 0;
    for (XmlDocument::Attribute a = document.firstAttribute(root); a; a = document.nextAttribute(a)) ++count;
    EXPECT_EQ(count, 500);
    EXPECT_TRUE(document.removeAttribute(root, u"n0"));
    EXPECT_TRUE(document.removeAttribute(root, u"n499"));
    EXPECT_TRUE(document.removeAttribute(root, u"n250"));
    EXPECT_FALSE(document.removeAttribute(root, u"n250"));
    EXPECT_FALSE(document.removeAttribute(root, u"never"));
    document.setAttribute(root, u"last", u"1");
    EXPECT_TRUE(Written(document).ends_with(" n498=\"v\" last=\"1\"/>"));
}

TEST(XmlReading, RandomText_NeverCrashesAndReadsBackWhatItWrites) {
    std::mt19937 random(11);
    static const char* kPieces[] = {"<",   ">",    "/",     "a",         "=",         "'",  "\"", "&",       ";",
                                    "#",   "<!--", "-->",   "<![CDATA[", "]]>",       "<?", "?>", " ",       "\n",
                                    "<a>", "</a>", "&amp;", "x",         "<!DOCTYPE", "[",  "]",  "\xC3\xA9"};
    int read = 0;
    for (int i = 0; i < 30'000; ++i) {
        std::string text = i % 2 ? "<a>" : "";
        for (unsigned n = random() % 12; n > 0; --n) text += kPieces[random() % std::size(kPieces)];
        if (i % 2) text += "</a>";
        XmlDocument document, fragment;
        if (document.parse(text, nullptr)) {
            const std::string once = document.write();
            XmlDocument again;
            ASSERT_TRUE(again.parse(once, nullptr)) << once;
            EXPECT_EQ(again.write(), once);
            ++read;
        }
        fragment.parseFragment(fragment.addElement(XmlDocument::kTop, u"r"), text);
        const std::string once = fragment.write();
        XmlDocument again;
        EXPECT_TRUE(again.parse(once, nullptr)) << text << "\n" << once;
    }
    EXPECT_GT(read, 300);
}
