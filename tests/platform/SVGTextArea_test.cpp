#include "platform/SVG/SVGTextArea.h"

#include <cmath>
#include <map>

#include "platform/SVG/SVGPicture.h"
#include "platform/SharedObject.h"
#include "tests/platform/GraphicsSupport.h"

namespace {

const std::string kHead = R"(<svg xmlns="http://www.w3.org/2000/svg" width="200" height="100">)";

std::string Replaced(const std::string& inside) {
    std::string out;
    EXPECT_TRUE(ZRSVGReplaceTextAreas(kHead + inside + "</svg>", &out)) << inside;
    return out;
}

struct Line {
    std::map<std::string, std::string> attributes;
    std::string text;
    double x() const { return std::stod(attributes.at("x")); }
    double y() const { return std::stod(attributes.at("y")); }
};

// The "text" and "rect" elements that were written
std::vector<Line> Elements(const std::string& svg, const std::string& name) {
    std::vector<Line> found;
    const std::string open = "<" + name + " ";
    for (size_t at = svg.find(open); at != svg.npos; at = svg.find(open, at + 1)) {
        Line line;
        size_t end = svg.find('>', at), from = at + open.size();
        while (from < end) {
            size_t equals = svg.find('=', from), close = svg.find('"', equals + 2);
            if (equals > end) break;
            line.attributes[svg.substr(from, equals - from)] = svg.substr(equals + 2, close - equals - 2);
            from = close + 2;
        }
        line.text = svg.substr(end + 1, svg.find('<', end) - end - 1);
        found.push_back(line);
    }
    return found;
}

std::vector<Line> Lines(const std::string& inside) { return Elements(Replaced(inside), "text"); }

using Strings = std::vector<std::string>;

}  // namespace

TEST(SVGTextArea, Breaks_AreLines) {
    static const struct {
        const char* inside;
        Strings texts;
    } rows[] = {
        {R"(<textArea x="0" y="0" width="200">one</textArea>)", {"one"}},
        {R"(<textArea x="0" y="0">one<tbreak/>two<tbreak /><tbreak></tbreak>three</textArea>)",
         {"one", "two", "three"}},
        {R"(<textArea>a &lt;&amp;&#65;&#x42; <![CDATA[<c>]]><!-- no --></textArea>)", {"a &#60;&#38;AB &#60;c&#62;"}},
        {R"(<textArea width="60" font-size="10">aaaa bbbb cccc dddd</textArea>)", {"aaaa bbbb ", "cccc dddd"}},
        {R"(<textArea></textArea>)", {}},
        {R"(<textArea width="0">never</textArea>)", {}},
        {R"(<textArea height="30" font-size="20">one<tbreak/>two<tbreak/>three</textArea>)", {"one"}},
        {"<textArea>\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80</textArea>", {"&#233;&#8364;&#128512;"}},
    };
    for (const auto& row : rows) {
        Strings joined;
        double y = -1;
        for (const Line& line : Lines(row.inside)) {
            if (line.y() != y) joined.emplace_back();
            y = line.y();
            joined.back() += line.text;
        }
        EXPECT_EQ(joined, row.texts) << row.inside;
    }
}

TEST(SVGTextArea, Place_BaselinesBeginAtTheTop) {
    auto lines = Lines(
        R"(<textArea x="10" y="20" width="100" height="80" font-family="Arial" font-size="20">a<tbreak/>b</textArea>)");
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_EQ(lines[0].x(), 10);
    EXPECT_NEAR(lines[0].y(), 20 + 18.1, 0.5);
    EXPECT_NEAR(lines[1].y() - lines[0].y(), 23, 1);
}

TEST(SVGTextArea, Alignment_HorizontalAndVertical) {
    auto line = [](const char* attributes) {
        auto lines = Lines(std::string(R"(<textArea x="0" y="0" width="100" height="100" font-size="10" )") +
                           attributes + ">iiii</textArea>");
        EXPECT_EQ(lines.size(), 1U);
        return lines[0];
    };
    Line start = line(""), center = line(R"(text-align="center")"), end = line(R"(text-align="end")");
    EXPECT_EQ(start.x(), 0);
    EXPECT_NEAR(center.x() * 2, end.x(), 0.1);
    EXPECT_GT(end.x(), 85);
    Line middle = line(R"(display-align="center")"), after = line(R"(display-align="after")");
    EXPECT_NEAR(middle.y() - start.y(), (after.y() - start.y()) / 2, 0.1);
    EXPECT_NEAR(after.y(), 98, 1.5);
}

TEST(SVGTextArea, Justify_WordsFillTheLine) {
    auto lines = Lines(R"(<textArea width="70" font-size="10" text-align="justify">aaaa bbbb cccc dddd</textArea>)");
    ASSERT_EQ(lines.size(), 3U);  // two words, and the last line as it is
    EXPECT_EQ(lines[0].text, "aaaa");
    EXPECT_EQ(lines[0].x(), 0);
    EXPECT_EQ(lines[1].text, "bbbb");
    EXPECT_NEAR(lines[1].x(), 70 - 22.2, 1);
    EXPECT_EQ(lines[2].text, "cccc dddd");
}

TEST(SVGTextArea, Styles_OfSpansAndAncestors) {
    auto lines = Lines(
        R"x(<g font-size="30" font-family="'Courier New', x"><textArea fill="#112233" id="t" transform="scale(2)">)x"
        R"(<tspan style="font-family: 'Arial'; font-size:12; font-weight:bold; font-style:italic; )"
        R"(text-decoration:underline line-through; color:#FF0000; background-color:#00FF00;">one</tspan>)"
        R"(<tspan style="font-size:50%"> two</tspan></textArea></g>)");
    ASSERT_EQ(lines.size(), 2U);
    auto& one = lines[0].attributes;
    EXPECT_EQ(one["font-family"], "Arial");
    EXPECT_EQ(one["font-size"], "12.000");
    EXPECT_EQ(one["font-weight"], "bold");
    EXPECT_EQ(one["font-style"], "italic");
    EXPECT_EQ(one["text-decoration"], "underline line-through");
    EXPECT_EQ(one["fill"], "#FF0000");
    auto& two = lines[1].attributes;
    EXPECT_EQ(two["font-family"], "Courier New");
    EXPECT_EQ(two["font-size"], "15.000");
    EXPECT_EQ(two["font-weight"], "normal");
    EXPECT_EQ(two.count("fill"), 0U);
    EXPECT_EQ(two.count("text-decoration"), 0U);
    EXPECT_GT(lines[1].x(), lines[0].x());
    EXPECT_EQ(lines[1].y(), lines[0].y());
}

TEST(SVGTextArea, Group_TakesWhatTheLinesDoNot) {
    std::string out = Replaced(
        R"(<s:textArea x="1" y="2" width="90" height="9" text-align="end" display-align="after" font-size="8" fill="red" )"
        R"x(clip-path='url(#clip"1)' transform="scale(2)" class="c">a</s:textArea>)x");
    EXPECT_NE(out.find(R"x(<s:g fill="red" clip-path='url(#clip"1)' transform="scale(2)" class="c"><s:text )x"),
              out.npos)
        << out;
    EXPECT_NE(out.find("</s:text></s:g></svg>"), out.npos);
}

TEST(SVGTextArea, Background_IsARectangleUnderTheText) {
    std::string out = Replaced(
        R"(<textArea x="5" y="0" font-size="10"><tspan style="background-color:#00FF00">ab</tspan></textArea>)");
    auto boxes = Elements(out, "rect");
    ASSERT_EQ(boxes.size(), 1U);
    EXPECT_EQ(boxes[0].x(), 5);
    EXPECT_NEAR(std::stod(boxes[0].attributes["width"]), 11.1, 0.5);
    EXPECT_LT(out.find("<rect"), out.find("<text "));
}

TEST(SVGTextArea, RestOfTheDocument_StaysByteByByte) {
    const std::string before =
        "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><!DOCTYPE svg [<!ENTITY a \"<textArea>\">]><!-- <textArea> "
        "-->\n"
        "<svg xmlns=\"http://www.w3.org/2000/svg\" a='>' b = \"\xE9\"><style><![CDATA[ <textArea> ]]></style>";
    std::string out;
    ASSERT_TRUE(ZRSVGReplaceTextAreas(before + "<textArea>\xE9</textArea> \t<g/></svg>\n", &out));
    EXPECT_EQ(out.substr(0, before.size()), before);
    EXPECT_TRUE(out.ends_with("&#233;</text></g> \t<g/></svg>\n")) << out;
}

TEST(SVGTextArea, NothingToReplaceOrDamaged_IsLeftAlone) {
    for (const char* document :
         {"", "<svg/>", "textArea", "<svg><textArea/></svg>", "<svg><!-- <textArea>a</textArea> --></svg>",
          "<svg><textArea>open", "<svg><textArea x=1>a</textArea></svg>", "<svg><textArea x=\"1>a</textArea></svg>",
          "<svg><textArea><tspan>a</textArea>", "<svg><textArea x>a</textArea></svg>", "<textArea", "<",
          "<textArea><![CDATA[", "<textArea>a<!--", "<!DOCTYPE [textArea"}) {
        std::string out = "as it was";
        EXPECT_FALSE(ZRSVGReplaceTextAreas(document, &out)) << document;
        EXPECT_EQ(out, "as it was");
    }
}

TEST(SVGTextArea, AbsurdNumbers_AreBounded) {
    for (const char* attributes :
         {R"(width="1e300" height="1e300")", R"(x="1e308" y="-1e308")", R"(width="nan" height="inf")", R"(width="-5")",
          R"(font-size="1e300")", R"(font-size="-1")", R"(font-size="0")", R"(width="1e-300")",
          R"(style=";;:;font-size:;")"}) {
        std::string out = Replaced(std::string("<textArea ") + attributes + ">abc def</textArea>");
        for (const Line& line : Elements(out, "text")) EXPECT_TRUE(std::isfinite(line.x() + line.y())) << attributes;
        EXPECT_EQ(out.find("nan"), out.npos);
    }
    std::string deep = "<textArea>", out;
    for (int i = 0; i < 20000; ++i) deep += "<tspan>";
    EXPECT_FALSE(ZRSVGReplaceTextAreas(deep, &out));
    std::string word;
    for (int i = 0; i < 50000; ++i) word += "word ";
    for (const char* align : {"start", "justify"})
        EXPECT_GT(
            Lines(std::string(R"(<textArea width="300" text-align=")") + align + "\">" + word + "</textArea>").size(),
            1000U);
}

// The picture is painted with the lines; the bytes of the caller keep the area.
TEST(SVGTextArea, Picture_IsPaintedWithTheText) {
    const std::string svg =
        kHead + R"(<textArea x="10" y="10" width="100" height="80" font-size="40">MM</textArea></svg>)";
    Owned<CGImageRef> image = ZRSVGCreateImage(svg.data(), static_cast<long>(svg.size()), 1);
    std::vector<uint8_t> pixels = PixelsOf(image);
    int left = 999, dark = 0;
    for (int y = 0; y < 100; ++y)
        for (int x = 0; x < 200; ++x)
            if (pixels[static_cast<size_t>(y * 200 + x) * 4 + 3] > 128) {
                left = std::min(left, x);
                ++dark;
            }
    EXPECT_GT(dark, 200);
    EXPECT_NEAR(left, 13, 3);
    if (!ZRSharedObjectGetState(kZRObjectPDF)->available) GTEST_SKIP();
    Owned<CGPDFDocumentRef> document = ZRSVGCreateDocument(svg.data(), static_cast<long>(svg.size()));
    EXPECT_EQ(CGPDFDocumentGetNumberOfPages(document), 1U);
}
