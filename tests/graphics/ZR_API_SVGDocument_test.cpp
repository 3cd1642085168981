// The SVG document: what each operation leaves in the text that the host writes.
#include "graphics/ZR_API_SVGDocument.h"

#include <climits>
#include <cmath>
#include <limits>

#include "plugin/ZR_API_Bridge.h"
#include "tests/graphics/DrawingSupport.h"

namespace {

// A document with one element "e" to work on.
struct Tree {
    Tree() {
        tree.Create("svg");
        element.Create();
        tree.CreateElement("e", &element);
    }
    ~Tree() {
        element.Dispose();
        tree.Dispose();
    }
    std::string Text() {
        ZR_Handle bytes;
        bytes.Create(1, 0);
        tree.ExportToVar(&bytes);
        std::string text(bytes.data ? bytes.data : "", static_cast<size_t>(bytes.count));
        bytes.Dispose();
        const std::string head = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<svg>";
        EXPECT_TRUE(text.starts_with(head) && text.ends_with("</svg>\n")) << text;
        text = text.substr(head.size(), text.size() - head.size() - 7);
        for (char& c : text)
            if (c == '"') c = '\'';
        return text;
    }
    std::string Element() {  // what stands behind an empty defs
        const std::string text = Text();
        EXPECT_TRUE(text.starts_with("<defs/>")) << text;
        return text.substr(7);
    }
    ZR_DOM_Tree* operator->() { return &tree; }
    ZR_DOM_Tree tree;
    ZR_Text element;
};

class SVGDocument : public DrawingTest {};

}  // namespace

TEST_F(SVGDocument, Create_Root_HasDefsAsFirstChildAndNothingElse) {
    Tree t;
    EXPECT_EQ(t.Text(), "<defs/><e/>");
    EXPECT_GT(t.tree.root.count, 0);
    EXPECT_GT(t.tree.defs.count, 0);
    EXPECT_EQ(t.tree.clips.count, 0);
    EXPECT_EQ(t.tree.clips.growStep, 20);
    EXPECT_EQ(t.tree.clips.elementSize, 16);
    EXPECT_EQ(t.tree.currentClip, 0);
    EXPECT_EQ(t.tree.gradientCount, 0);
    ZR_DOM_Tree other;
    other.Create(TestText("root"));
    ZR_Handle bytes;
    bytes.Create(1, 0);
    other.ExportToVar(&bytes);
    EXPECT_EQ(std::string(bytes.data, static_cast<size_t>(bytes.count)),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<root><defs/></root>\n");
    bytes.Dispose();
    other.Dispose();
}

TEST_F(SVGDocument, CreateElement_OfRootAndOfParent_StandInOrder) {
    Tree t;
    ZR_Text child;
    child.Create();
    t->CreateElement(&t.element, "a", &child);
    t->CreateElement(&child, TestText("b"), &child);  // out is replaced, though it is the parent
    t->SetAttributeText(&child, "id", "deep");
    t->CreateElement("c", &child);
    EXPECT_EQ(t.Element(), "<e><a><b id='deep'/></a></e><c/>");
    child.Dispose();
}

TEST_F(SVGDocument, CreateElement_NameThatXmlDoesNotAllow_LeavesAnEmptyReferenceAndWhatFollowsHarmless) {
    Tree t;
    for (const char* name : {"", "1a", "a b", "<", "a>"}) {
        ZR_Text child;
        child.Create();
        child.AddString("old");
        t->CreateElement(&t.element, name, &child);
        EXPECT_EQ(child.count, 0) << name;
        t->SetAttributeText(&child, "x", "1");
        t->SetElementValue(&child, TestText("v"));
        t->AppendChildNode(&child, ZR_XML_DATA, TestText("v"));
        t->CreateElement(&child, "below", &child);
        EXPECT_EQ(child.count, 0) << name;
        child.Dispose();
    }
    EXPECT_EQ(t.Element(), "<e/>");
}

TEST_F(SVGDocument, SetAttribute_EveryForm_IsWrittenInTheOrderOfTheCalls) {
    Tree t;
    t->SetAttributeText(&t.element, TestText("a"), TestText("\xC3\xA4 & < > \" '"));
    t->SetAttributeText(&t.element, "b", TestText("two"));
    t->SetAttributeText(&t.element, "c", "three");
    t->SetAttributeDouble(&t.element, TestText("d"), 1.5);
    t->SetAttributeDouble(&t.element, "e", -0.25);
    t->SetAttributeLong(&t.element, TestText("f"), 7);
    t->SetAttributeLong(&t.element, "g", -8);
    t->SetAttributeText(&t.element, "b", "again");  // keeps its place
    EXPECT_EQ(t.Element(),
              "<e a='\xC3\xA4 &amp; &lt; &gt; &quot; '' b='again' c='three' d='1.5' e='-0.25' f='7' g='-8'/>");
}

TEST_F(SVGDocument, SetAttributeDouble_AnyValue_HasNoExponentAndReadsBackAsTheFloat) {
    static const struct {
        double value;
        const char* text;
    } rows[] = {
        {0, "0"},
        {-0.0, "0"},
        {1, "1"},
        {100, "100"},
        {0.1f, "0.1"},  // the shortest that reads back as the float
        {0.1, "0.1"},
        {1.0 / 3, "0.3333333333333333"},  // the shortest that reads back as the double
        {1.0f / 3, "0.33333334"},
        {1e-7, "0.0000001"},
        {16777216, "16777216"},
        {-123456.789, "-123456.789"},
        {1e20, "100000000000000000000"},
        {std::nan(""), "0"},
        {std::numeric_limits<double>::infinity(), "0"},
        {-std::numeric_limits<double>::infinity(), "0"},
    };
    for (const auto& row : rows) {
        Tree t;
        t->SetAttributeDouble(&t.element, "v", row.value);
        EXPECT_EQ(t.Element(), std::string("<e v='") + row.text + "'/>");
    }
}

TEST_F(SVGDocument, SetAttributeLong_BeyondALongint_IsTheNearestEnd) {
    Tree t;
    t->SetAttributeLong(&t.element, "a", LONG_MAX);
    t->SetAttributeLong(&t.element, "b", LONG_MIN);
    EXPECT_EQ(t.Element(), "<e a='2147483647' b='-2147483648'/>");
}

TEST_F(SVGDocument, SetAttributeText_LongNamesAndValues_AreWhole) {
    Tree t;
    const std::string value(1000, 'v');
    t->SetAttributeText(&t.element, "a", value.c_str());
    EXPECT_EQ(t.Element(), "<e a='" + value + "'/>");
    t->SetAttributeText(&t.element, nullptr, "x");
    t->SetAttributeText(&t.element, "b", static_cast<const char*>(nullptr));
    EXPECT_EQ(t.Element(), "<e a='" + value + "' b=''/>");
}

TEST_F(SVGDocument, SetColor_AlphaOne_WritesNoOpacity) {
    static const struct {
        ZR_RGBColor color;
        const char* text;
    } rows[] = {
        {{0x1234, 0xABCD, 0xFF00, 1}, "<e c='#12ABFF'/>"},
        {{0, 0, 0, 0.5f}, "<e c='#000000' o='0.5'/>"},
        {{0, 0, 0, 0}, "<e c='#000000' o='0'/>"},
        {{0xFFFF, 0xFFFF, 0xFFFF, 0.1f}, "<e c='#FFFFFF' o='0.1'/>"},
    };
    for (const auto& row : rows) {
        Tree t;
        ZR_RGBColor color = row.color;
        t->SetColor(&t.element, &color, "c", "o");
        EXPECT_EQ(t.Element(), row.text);
    }
}

TEST_F(SVGDocument, SetMatrix_NullOrIdentity_WritesNothing) {
    Tree t;
    ZR_Matrix matrix = {1, 0, 0, 1, 0, 0};
    t->SetMatrix(&t.element, nullptr, "transform");
    t->SetMatrix(&t.element, &matrix, "transform");
    EXPECT_EQ(t.Element(), "<e/>");
    matrix = {2, 0.5f, -0.25f, 3, 10, -20.125f};
    t->SetMatrix(&t.element, &matrix, "transform");
    EXPECT_EQ(t.Element(), "<e transform='matrix(2 0.5 -0.25 3 10 -20.125)'/>");
}

TEST_F(SVGDocument, SetElementValueWithBreaks_LineEnds_BecomeTbreakBetweenData) {
    static const struct {
        const char* value;
        const char* text;
    } rows[] = {
        {"A\r\nB\r", "<e>A<tbreak/>B<tbreak/></e>"},
        {"A\rB", "<e>A<tbreak/>B</e>"},
        {"\r\r", "<e><tbreak/><tbreak/></e>"},
        {"\r\n\r\nA", "<e><tbreak/><tbreak/>A</e>"},
        {"A\nB", "<e>A\nB</e>"},
        {"", "<e/>"},
        {"a<b&c", "<e>a&lt;b&amp;c</e>"},
        {"\r\n", "<e><tbreak/></e>"},
    };
    for (const auto& row : rows) {
        Tree t;
        TestText value(row.value);
        t->SetElementValueWithBreaks(&t.element, value);
        EXPECT_EQ(t.Element(), row.text);
        EXPECT_TRUE(value.text.Equal(row.value)) << "the caller's text stays";
    }
}

TEST_F(SVGDocument, AppendChildNode_ElementAsText_KeepsBlanksAndOrder) {
    Tree t;
    t->AppendChildNode(&t.element, ZR_XML_ELEMENT,
                       TestText("<tspan style=\"a\"> </tspan>between<tspan>b &amp; c & d</tspan><tbreak />"));
    EXPECT_EQ(t.Element(), "<e><tspan style='a'> </tspan>between<tspan>b &amp; c &amp; d</tspan><tbreak/></e>");
    t->AppendChildNode(&t.element, ZR_XML_ELEMENT, TestText("<open>"));  // not well formed: nothing is added
    t->AppendChildNode(&t.element, 99, TestText("x"));
    EXPECT_EQ(t.Element(), "<e><tspan style='a'> </tspan>between<tspan>b &amp; c &amp; d</tspan><tbreak/></e>");
}

TEST_F(SVGDocument, SetElementValue_Text_IsEscapedAndReplaced) {
    Tree t;
    t->SetElementValue(&t.element, TestText("x < y & z"));
    EXPECT_EQ(t.Element(), "<e>x &lt; y &amp; z</e>");
    t->SetElementValue(&t.element, TestText("\xE2\x82\xAC"));
    EXPECT_EQ(t.Element(), "<e>\xE2\x82\xAC</e>");
    t->SetElementValue(&t.element, nullptr);
    EXPECT_EQ(t.Element(), "<e/>");
}

// Gradients --------------------------------------------------------------------------------------------------------

TEST_F(SVGDocument, SetGradient_EachForm_WritesItsDefinition) {
    static const struct {
        const char* name;
        Gradient_Bounds_Type bounds;
        bool linear;
        float x1, y1, x2, y2, radius;
        const char* definition;
    } rows[] = {
        {"linear, user units", ZR_GRADIENT_USER, true, 1, 2, 3.5f, 4, 0,
         "<linearGradient id='gradient1' x1='1' y1='2' x2='3.5' y2='4' gradientUnits='userSpaceOnUse'>"
         "<stop offset='0.25' stop-color='#FF0000'/><stop offset='0.7' stop-color='#0000FF' stop-opacity='0.5'/>"
         "</linearGradient>"},
        {"linear, percent", ZR_GRADIENT_PERCENT, true, 0, 12.3456f, 100, 4, 0,
         "<linearGradient id='gradient1' x1='0%' y1='12.345%' x2='100%' y2='4%'>"
         "<stop offset='25%' stop-color='#FF0000'/><stop offset='70%' stop-color='#0000FF' stop-opacity='0.5'/>"
         "</linearGradient>"},
        {"radial, user units, no focus", ZR_GRADIENT_USER, false, 5, 6, 0, 0, 7.5f,
         "<radialGradient id='gradient1' cx='5' cy='6' r='7.5' gradientUnits='userSpaceOnUse'>"
         "<stop offset='0.25' stop-color='#FF0000'/><stop offset='0.7' stop-color='#0000FF' stop-opacity='0.5'/>"
         "</radialGradient>"},
        {"radial, user units, fx alone", ZR_GRADIENT_USER, false, 5, 6, 3, 0, 7.5f,
         "<radialGradient id='gradient1' cx='5' cy='6' r='7.5' fx='3' gradientUnits='userSpaceOnUse'>"
         "<stop offset='0.25' stop-color='#FF0000'/><stop offset='0.7' stop-color='#0000FF' stop-opacity='0.5'/>"
         "</radialGradient>"},
        // Required: r is first written as a number, and replaced in its place
        {"radial, percent", ZR_GRADIENT_PERCENT, false, 50, 50, 25, 30, 60,
         "<radialGradient id='gradient1' cx='50%' cy='50%' r='60%' fx='25%' fy='30%'>"
         "<stop offset='25%' stop-color='#FF0000'/><stop offset='70%' stop-color='#0000FF' stop-opacity='0.5'/>"
         "</radialGradient>"},
    };
    for (const auto& row : rows) {
        Tree t;
        TestGradient g(row.bounds, row.linear);
        g.From(row.x1, row.y1, row.x2, row.y2, row.radius);
        g.Stop(0.25f, Color(255, 0, 0)).Stop(0.7f, Color(0, 0, 255, 0.5f));
        t->SetGradient(&t.element, g);
        EXPECT_EQ(t.Text(), std::string("<defs>") + row.definition + "</defs><e fill='url(#gradient1)'/>") << row.name;
    }
}

TEST_F(SVGDocument, SetGradient_WithAMatrix_WritesGradientTransform) {
    Tree t;
    TestGradient g(ZR_GRADIENT_USER);
    g.Stop(0, Color(0, 0, 0));
    g.gradient.matrix = {2, 0, 0, 2, 0, 0};
    t->SetGradient(&t.element, g);
    EXPECT_EQ(t.Text(),
              "<defs><linearGradient id='gradient1' x1='0' y1='0' x2='0' y2='0' gradientTransform='matrix(2 0 0 2 0 "
              "0)' gradientUnits='userSpaceOnUse'><stop offset='0' stop-color='#000000'/></linearGradient></defs>"
              "<e fill='url(#gradient1)'/>");
}

TEST_F(SVGDocument, SetGradient_NoStopsOrNoBounds_WritesNothingAndUsesNoId) {
    Tree t;
    TestGradient none(ZR_GRADIENT_PERCENT), off(ZR_GRADIENT_NONE), good(ZR_GRADIENT_PERCENT);
    off.Stop(0, Color(1, 2, 3));
    good.Stop(0, Color(1, 2, 3));
    t->SetGradient(&t.element, none);
    t->SetGradient(&t.element, off);
    t->SetGradient(&t.element, nullptr);
    EXPECT_EQ(t.Text(), "<defs/><e/>");
    EXPECT_EQ(t.tree.gradientCount, 0);
    t->SetGradient(&t.element, good);
    t->SetGradient(&t.element, good);  // no reuse
    EXPECT_EQ(t.tree.gradientCount, 2);
    EXPECT_NE(t.Text().find("<e fill='url(#gradient2)'/>"), std::string::npos);
}

// Clips ------------------------------------------------------------------------------------------------------------

TEST_F(SVGDocument, ClipRect_Fractions_AreCutAtLeftAndTopAndWidenedAtRightAndBottom) {
    SvgCanvas c;
    ZR_Rect clip = Rect(10.2f, 20.9f, 30.1f, 40);
    c->ClipRect(&clip);
    EXPECT_EQ(c.Body(), "<defs><clipPath id='clip1'><rect x='10' y='20' width='21' height='20'/></clipPath></defs>");
    ZR_Rect current;
    EXPECT_TRUE(c->svg->GetCurrentClip(&current));
    EXPECT_EQ(current.left, 10);
    EXPECT_EQ(current.right, 31);
}

TEST_F(SVGDocument, ClipRect_DifferenceBelowAPoint_UsesTheClipAgain) {
    SvgCanvas c;
    ZR_Rect first = Rect(10.2f, 0, 20, 20), second = Rect(10.4f, 0, 20, 20), third = Rect(11, 0, 20, 20);
    c->ClipRect(&first);
    c->ClipRect(&second);
    EXPECT_EQ(c->svg->clips.count, 1);
    EXPECT_EQ(c->svg->currentClip, 1);
    c->ClipRect(&third);
    EXPECT_EQ(c->svg->currentClip, 2);
    c->ClipRect(&first);
    EXPECT_EQ(c->svg->currentClip, 1);
    EXPECT_EQ(c->svg->clips.count, 2);
}

TEST_F(SVGDocument, ClipRect_ThousandsOfClips_AreFoundAgain) {
    SvgCanvas c;
    for (int round = 0; round < 2; ++round)
        for (int i = 0; i < 3000; ++i) {
            ZR_Rect clip = Rect(static_cast<float>(i), 0, static_cast<float>(i + 5), 9);
            c->ClipRect(&clip);
            ASSERT_EQ(c->svg->currentClip, i + 1);
        }
    EXPECT_EQ(c->svg->clips.count, 3000);
}

TEST_F(SVGDocument, ClipRect_HugeAndNoNumbers_StayWithinALongint) {
    SvgCanvas c;
    const float inf = std::numeric_limits<float>::infinity(), nan = std::nanf("");
    ZR_Rect all = Rect(-inf, -1e30f, inf, 1e30f), none = Rect(nan, nan, nan, nan);
    c->ClipRect(&all);
    c->ClipRect(&none);
    c->ClipRect(nullptr);
    EXPECT_EQ(c.Body(),
              "<defs><clipPath id='clip1'><rect x='-2147483648' y='-2147483648' width='2147483647' "
              "height='2147483647'/></clipPath><clipPath id='clip2'><rect x='0' y='0' width='0' height='0'/>"
              "</clipPath></defs>");
}

TEST_F(SVGDocument, Clip_AfterClipRect_IsOnTheFilledElementAndNotOnItsGradient) {
    SvgCanvas c;
    ZR_Rect clip = Rect(0, 0, 50, 50), rect = Rect(1, 2, 3, 4);
    TestGradient g(ZR_GRADIENT_PERCENT);
    g.From(0, 0, 100, 0).Stop(0, Color(0, 0, 0));
    ZR_RGBColor black = Color(0, 0, 0);
    c->ClipRect(&clip);
    c->DrawRect(&rect, true, false, &black, &black, 1, true, 0, false, nullptr, g, nullptr, nullptr);
    EXPECT_EQ(c.Body(),
              "<defs><clipPath id='clip1'><rect x='0' y='0' width='50' height='50'/></clipPath>"
              "<linearGradient id='gradient1' x1='0%' y1='0%' x2='100%' y2='0%'><stop offset='0%' "
              "stop-color='#000000'/></linearGradient></defs>"
              "<rect x='1' y='2' width='2' height='2' fill='url(#gradient1)' clip-path='url(#clip1)'/>");
}

TEST_F(SVGDocument, GetCurrentClip_None_ClearsAndIsFalse) {
    Tree t;
    ZR_Rect r = Rect(1, 2, 3, 4);
    EXPECT_FALSE(t->GetCurrentClip(&r));
    EXPECT_EQ(r.left + r.top + r.right + r.bottom, 0);
    t->Clip(&t.element);
    EXPECT_EQ(t.Element(), "<e/>");
}

// Output -----------------------------------------------------------------------------------------------------------

TEST_F(SVGDocument, ExportToVar_Twice_IsTheSameAndTheDocumentStaysUsable) {
    Tree t;
    const std::string before = t.Text();
    EXPECT_EQ(t.Text(), before);
    t->SetAttributeLong(&t.element, "x", 1);
    EXPECT_EQ(t.Element(), "<e x='1'/>");
    ZR_Handle wide;  // what a handle held goes
    wide.Create(1, 5);
    t->ExportToVar(&wide);
    EXPECT_EQ(static_cast<size_t>(wide.count),
              strlen("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<svg><defs/><e x=\"1\"/></svg>\n"));
    wide.Dispose();
}

TEST_F(SVGDocument, ExportToPicture_Document_IsAnSvgPictureOfTheSameBytes) {
    Tree t;
    PA_Variable picture = t->ExportToPicture();
    EXPECT_EQ(PA_GetVariableKind(&picture), 10);
    PA_Handle bytes = PA_NewHandle(0);
    PA_Unistring type = PA_GetPictureData(PA_GetPictureVariable(&picture), 1, bytes);
    EXPECT_EQ(std::string(type.fString, type.fString + type.fLength), "image/svg+xml");
    EXPECT_EQ(std::string(*bytes, static_cast<size_t>(PA_GetHandleSize(bytes))),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<svg><defs/><e/></svg>\n");
    PA_DisposeUnistring(&type);
    PA_DisposeHandle(bytes);
    PA_ClearVariable(&picture);
    EXPECT_EQ(t.Text(), "<defs/><e/>");
}

TEST_F(SVGDocument, Dispose_Document_ClosesItInTheHost) {
    ZR_DOM_Tree tree;
    tree.Create("svg");
    ZR_Text root;
    root.Create(&tree.root);
    tree.Dispose();
    tree.root.Create(&root);
    ZR_Handle bytes;
    bytes.Create(1, 0);
    tree.ExportToVar(&bytes);
    EXPECT_EQ(bytes.count, 0);
    EXPECT_FALSE(host->ok());
    bytes.Dispose();
    tree.root.Dispose();
    root.Dispose();
}
