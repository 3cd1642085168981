// zr draw and zr text as a person runs them: what is written where, the words of refusals, and each primitive in SVG,
// PNG and PDF, which have to show the same.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

#include "platform/SVG/SVGPicture.h"
#include "tests/platform/GraphicsSupport.h"
#include "tests/support/RunTool.h"

namespace {

using zrtest::RunTool;
using zrtest::TempFolder;
using zrtest::ToolResult;
using Arguments = std::vector<std::string>;

constexpr int kOk = 0, kDocumentFailed = 1, kWrongUsage = 2;

bool Has(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

std::string SceneOf(const std::string& calls, const std::string& more = "") {
    return R"({"width":60,"height":40,)" + more + R"("calls":[)" + calls + "]}";
}

const char kRedBox[] = R"({"rect":{"box":[10,5,20,10],"fill":"Red"}})";

ToolResult Drawn(const std::string& scene, const std::string& format, Arguments more = {}) {
    Arguments arguments = {"draw", "-", "-o", "-", "--format", format};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return RunTool(arguments, scene);
}

void ExpectRefusal(const ToolResult& run, const std::string& sentence) {
    EXPECT_EQ(run.status, kWrongUsage);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err, "zr: " + sentence + "\n");
}

// Pixels of a drawing on white; y down.
class Pixels {
  public:
    Pixels(int width, int height) : bitmap_(width, height) {
        CGContextSetRGBFillColor(bitmap_.context, 1, 1, 1, 1);
        CGContextFillRect(bitmap_.context, CGRectMake(0, 0, width, height));
    }
    static Pixels OfPng(const std::string& bytes, int width, int height) {
        Pixels pixels(width, height);
        Owned<CFDataRef> data =
            CFDataCreate(nullptr, reinterpret_cast<const UInt8*>(bytes.data()), static_cast<CFIndex>(bytes.size()));
        Owned<CGImageSourceRef> source = CGImageSourceCreateWithData(data, nullptr);
        pixels.show(CGImageSourceCreateImageAtIndex(source, 0, nullptr));
        return pixels;
    }
    static Pixels OfSvg(const std::string& bytes, int width, int height) {
        Pixels pixels(width, height);
        pixels.show(ZRSVGCreateImage(bytes.data(), static_cast<long>(bytes.size()), 1));
        return pixels;
    }
    static Pixels OfPdf(const std::string& bytes, int width, int height) {
        Pixels pixels(width, height);
        Owned<CFDataRef> data =
            CFDataCreate(nullptr, reinterpret_cast<const UInt8*>(bytes.data()), static_cast<CFIndex>(bytes.size()));
        Owned<CGDataProviderRef> provider = CGDataProviderCreateWithCFData(data);
        Owned<CGPDFDocumentRef> document = CGPDFDocumentCreateWithProvider(provider);
        EXPECT_EQ(CGPDFDocumentGetNumberOfPages(document), 1U);
        CGContextDrawPDFPage(pixels.bitmap_.context, CGPDFDocumentGetPage(document, 1));
        CGContextFlush(pixels.bitmap_.context);
        return pixels;
    }
    Pixel at(int x, int y) const {
        if (x < 0 || y < 0 || x >= bitmap_.width || y >= bitmap_.height) return {-1, -1, -1, -1};
        const uint8_t* p = bitmap_.bytes.data() + (y * bitmap_.width + x) * 4;
        return {p[0], p[1], p[2], p[3]};
    }
    long inked() const {  // pixels that are not white
        long count = 0;
        for (int y = 0; y < bitmap_.height; ++y)
            for (int x = 0; x < bitmap_.width; ++x) count += !(at(x, y) == kWhite);
        return count;
    }
    // How far two drawings are apart: the mean of the differences of boxes of 4 by 4 pixels, 0 to 255.
    double distance(const Pixels& other) const {
        double sum = 0;
        int boxes = 0;
        for (int y = 0; y + 4 <= bitmap_.height; y += 4) {
            for (int x = 0; x + 4 <= bitmap_.width; x += 4, ++boxes) {
                double difference[3] = {};
                for (int i = 0; i < 16; ++i) {
                    Pixel a = at(x + i % 4, y + i / 4), b = other.at(x + i % 4, y + i / 4);
                    difference[0] += a.r - b.r;
                    difference[1] += a.g - b.g;
                    difference[2] += a.b - b.b;
                }
                sum += (std::fabs(difference[0]) + std::fabs(difference[1]) + std::fabs(difference[2])) / 48;
            }
        }
        return sum / boxes;
    }

  private:
    void show(CGImageRef image) {
        Owned<CGImageRef> owned = image;
        ASSERT_NE(image, nullptr);
        EXPECT_EQ(CGImageGetWidth(image), static_cast<size_t>(bitmap_.width));
        EXPECT_EQ(CGImageGetHeight(image), static_cast<size_t>(bitmap_.height));
        CGContextDrawImage(bitmap_.context, CGRectMake(0, 0, bitmap_.width, bitmap_.height), image);
        CGContextFlush(bitmap_.context);
    }
    Bitmap bitmap_;
};

// Formats ----------------------------------------------------------------------------------------------------------

TEST(Draw, Svg_IsTheWholeDocument) {
    const ToolResult run = Drawn(SceneOf(kRedBox, R"("background":"#FAFAFA",)"), "svg");
    EXPECT_EQ(run.status, kOk) << run.err;
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(run.out,
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
              "<svg width=\"60\" height=\"40\" xmlns=\"http://www.w3.org/2000/svg\" "
              "xmlns:xlink=\"http://www.w3.org/1999/xlink\" viewBox=\"0 0 60 40\"><defs/>"
              "<rect x=\"0\" y=\"0\" width=\"60\" height=\"40\" fill=\"#FAFAFA\"/>"
              "<rect x=\"10\" y=\"5\" width=\"20\" height=\"10\" fill=\"#FF0000\"/></svg>\n");
}

TEST(Draw, Png_HasThePixelsAndTheResolution) {
    const ToolResult run = Drawn(SceneOf(kRedBox), "png");
    ASSERT_EQ(run.status, kOk) << run.err;
    Pixels pixels = Pixels::OfPng(run.out, 60, 40);
    static const struct {
        int x, y;
        Pixel colour;
    } rows[] = {{10, 5, kRed}, {29, 14, kRed}, {9, 5, kWhite}, {30, 14, kWhite}, {10, 4, kWhite}, {10, 15, kWhite}};
    for (const auto& row : rows) EXPECT_EQ(pixels.at(row.x, row.y), row.colour) << row.x << " " << row.y;

    const ToolResult fine = Drawn(SceneOf(kRedBox), "png", {"--dpi", "144"});
    Pixels twice = Pixels::OfPng(fine.out, 120, 80);
    EXPECT_EQ(twice.at(20, 10), kRed);
    EXPECT_EQ(twice.at(19, 10), kWhite);
    Owned<CFDataRef> data =
        CFDataCreate(nullptr, reinterpret_cast<const UInt8*>(fine.out.data()), static_cast<CFIndex>(fine.out.size()));
    Owned<CGImageSourceRef> source = CGImageSourceCreateWithData(data, nullptr);
    Owned<CFDictionaryRef> facts = CGImageSourceCopyPropertiesAtIndex(source, 0, nullptr);
    float dpi = 0;
    CFNumberGetValue(static_cast<CFNumberRef>(CFDictionaryGetValue(facts, kCGImagePropertyDPIWidth)),
                     kCFNumberFloatType, &dpi);
    EXPECT_NEAR(dpi, 144, 0.01F);
}

TEST(Draw, Png_WithoutBackground_IsTransparent) {
    const std::string bytes =
        Drawn(SceneOf(R"({"rect":{"box":[0,0,30,40],"fill":{"color":"Red","alpha":0.5}}})"), "png").out;
    Owned<CFDataRef> data =
        CFDataCreate(nullptr, reinterpret_cast<const UInt8*>(bytes.data()), static_cast<CFIndex>(bytes.size()));
    Owned<CGImageSourceRef> source = CGImageSourceCreateWithData(data, nullptr);
    Owned<CGImageRef> image = CGImageSourceCreateImageAtIndex(source, 0, nullptr);
    Bitmap bitmap(60, 40);
    CGContextDrawImage(bitmap.context, CGRectMake(0, 0, 60, 40), image);
    EXPECT_EQ(bitmap.At(45, 20), kClear);
    EXPECT_NEAR(bitmap.At(15, 20).a, 128, 1);
}

TEST(Draw, SeveralScenesIntoOnePdf_AreItsPages) {
    TempFolder folder;
    const std::string a = folder.Write("a.json", R"({"width":60,"height":40,"calls":[]})");
    const std::string b = folder.Write("b.json", R"({"width":200,"height":100,"calls":[]})");
    const ToolResult run = RunTool({"draw", a, b, "-o", folder.Path("out.pdf")});
    ASSERT_EQ(run.status, kOk) << run.err;
    EXPECT_EQ(run.out + run.err, "");
    const std::string bytes = zrtest::ReadFile(folder.Path("out.pdf"));
    Owned<CFDataRef> data =
        CFDataCreate(nullptr, reinterpret_cast<const UInt8*>(bytes.data()), static_cast<CFIndex>(bytes.size()));
    Owned<CGDataProviderRef> provider = CGDataProviderCreateWithCFData(data);
    Owned<CGPDFDocumentRef> document = CGPDFDocumentCreateWithProvider(provider);
    ASSERT_EQ(CGPDFDocumentGetNumberOfPages(document), 2U);
    CGRect first = CGPDFPageGetBoxRect(CGPDFDocumentGetPage(document, 1), kCGPDFMediaBox);
    CGRect second = CGPDFPageGetBoxRect(CGPDFDocumentGetPage(document, 2), kCGPDFMediaBox);
    EXPECT_EQ(first.size.width, 60);
    EXPECT_EQ(first.size.height, 40);
    EXPECT_EQ(second.size.width, 200);
    EXPECT_EQ(second.size.height, 100);
}

TEST(Draw, SeveralScenesIntoAFolder_AreAFileEach) {
    TempFolder folder;
    const std::string a = folder.Write("a.json", SceneOf(kRedBox)), b = folder.Write("b.JSON", SceneOf(kRedBox));
    for (const std::string format : {"svg", "png", "pdf"}) {
        const ToolResult run = RunTool({"draw", a, b, "-o", folder.Path("out/"), "-f", format});
        EXPECT_EQ(run.status, kOk) << run.err;
        EXPECT_TRUE(folder.Has("out/a." + format));
        EXPECT_TRUE(folder.Has("out/b." + format));
    }
    const ToolResult again = RunTool({"draw", a, "-o", folder.Path("out"), "-f", "svg"});
    EXPECT_EQ(again.status, kOk) << "a folder that stands needs no slash: " << again.err;
    const ToolResult input = RunTool({"draw", "-", "-o", folder.Path("out"), "-f", "svg"}, SceneOf(kRedBox));
    EXPECT_TRUE(folder.Has("out/stdin.svg")) << input.err;
}

TEST(Draw, Json_TellsWhatIsWritten) {
    TempFolder folder;
    const std::string a = folder.Write("a.json", SceneOf(kRedBox)), out = folder.Path("a.png");
    const auto json = nlohmann::json::parse(RunTool({"draw", a, "-o", out, "--dpi", "36", "--json"}).out);
    const auto expected = nlohmann::json::parse(
        R"({"errors":[],"written":[{"bytes":0,"file":"","format":"png","height":40,"pixelHeight":20,)"
        R"("pixelWidth":30,"scene":"","width":60}]})");
    auto found = json;
    EXPECT_EQ(found["written"][0]["bytes"], zrtest::ReadFile(out).size());
    EXPECT_EQ(found["written"][0]["file"], out);
    EXPECT_EQ(found["written"][0]["scene"], a);
    found["written"][0]["bytes"] = 0;
    found["written"][0]["file"] = found["written"][0]["scene"] = "";
    EXPECT_EQ(found, expected);

    const ToolResult wrong = RunTool({"draw", "-", "--check", "--json"}, SceneOf(R"({"rect":{"box":1}})"));
    EXPECT_EQ(wrong.status, kDocumentFailed);
    EXPECT_EQ(wrong.err, "");
    EXPECT_EQ(nlohmann::json::parse(wrong.out),
              nlohmann::json::parse(R"({"written":[],"errors":[{"scene":"<stdin>","path":"calls[0].rect.box",)"
                                    R"("text":"a box [x, y, width, height] is expected"}]})"));
}

// Refusals -----------------------------------------------------------------------------------------------------------

TEST(Draw, WrongUsage_IsRefusedWithWords) {
    TempFolder folder;
    const std::string a = folder.Write("a.json", SceneOf(kRedBox)), b = folder.Write("x/a.json", SceneOf(kRedBox));
    const std::string out = folder.Path("out.png"), none = folder.Path("none.json");
    const struct {
        Arguments arguments;
        std::string sentence;
    } rows[] = {
        {{}, "zr draw needs SCENE; see zr draw --help"},
        {{a}, "zr draw needs -o FILE with .svg, .png or .pdf, or -o FOLDER/; see zr draw --help"},
        {{a, "-o", "out.gif"}, "the output \"out.gif\" ends in none of .svg, .png and .pdf; see --format"},
        {{a, "-o", "-"}, "--format svg, png or pdf is needed with this output"},
        {{a, "-o", folder.Path("x/")}, "--format svg, png or pdf is needed with this output"},
        {{a, "-o", out, "-f", "gif"}, "--format is svg, png or pdf, not \"gif\""},
        {{a, "-o", out, "--dpi", "0"}, "--dpi needs a whole number from 1, not \"0\""},
        {{a, "-o", out, "--dpi", "2401"}, "--dpi is at most 2400, not 2401"},
        {{a, "-o", "out.svg", "--dpi", "72"}, "--dpi is for PNG alone"},
        {{a, "-o", out, "--plain"}, "--plain is for SVG alone"},
        {{a, "-o", "-", "-f", "svg", "--json"}, "--json and the drawing cannot both go to standard output"},
        {{a, "--check", "-o", out}, "--check draws nothing; --output is not wanted with it"},
        {{a, b, "-o", out}, "2 scenes need a folder, -o FOLDER/, or a PDF of 2 pages, -o FILE.pdf"},
        {{a, b, "-o", folder.Path("o/"), "-f", "svg"}, "two scenes would both be written to " + folder.Path("o/a.svg")},
        {{"-", "-", "-o", "out.pdf"}, "standard input can be one of the scenes, not several"},
        {{none, "-o", out}, "cannot read " + none + ": No such file or directory"},
        {{folder.Path("x"), "-o", out}, folder.Path("x") + " is a folder, not a scene"},
        {{folder.Write("latin.json", "{\"width\":\"\xE4\"}"), "-o", out},
         folder.Path("latin.json") + " is not a text in UTF-8"},
        {{a, "-o", folder.Path("none/out.png")},
         "cannot write " + folder.Path("none/out.png") + ": No such file or directory"},
        {{a, "-o", folder.Path("none/o/"), "-f", "png"},
         "cannot make the folder " + folder.Path("none/o/") + ": No such file or directory"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.sentence);
        Arguments arguments = {"draw"};
        arguments.insert(arguments.end(), row.arguments.begin(), row.arguments.end());
        ExpectRefusal(RunTool(arguments), row.sentence);
    }
    EXPECT_FALSE(folder.Has("out.png"));
}

TEST(Draw, WrongSceneAmongOthers_NothingIsWritten) {
    TempFolder folder;
    const std::string good = folder.Write("good.json", SceneOf(kRedBox)), bad = folder.Write("bad.json", SceneOf("1"));
    const ToolResult run = RunTool({"draw", good, bad, "-o", folder.Path("out/"), "-f", "svg"});
    EXPECT_EQ(run.status, kDocumentFailed);
    EXPECT_EQ(run.err, bad + ": calls[0]: an object with one key is expected, such as {\"rect\":{...}}\n");
    EXPECT_FALSE(folder.Has("out"));
}

TEST(Draw, OutputThatStands_IsReplacedWholeOrStays) {
    TempFolder folder;
    const std::string out = folder.Write("out.svg", "before");
    EXPECT_EQ(RunTool({"draw", "-", "-o", out}, "{").status, kDocumentFailed);
    EXPECT_EQ(zrtest::ReadFile(out), "before");
    EXPECT_EQ(RunTool({"draw", "-", "-o", out}, SceneOf(kRedBox)).status, kOk);
    EXPECT_TRUE(Has(zrtest::ReadFile(out), "</svg>"));
    int files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder.Path(""))) files += entry.is_regular_file();
    EXPECT_EQ(files, 1) << "nothing is left beside it";
}

TEST(Draw, BitmapBeyondTheBounds_IsRefusedBeforeItIsMade) {
    static const struct {
        const char *scene, *dpi, *size;
    } rows[] = {
        {R"({"width":20000,"height":1,"calls":[]})", "2400", "20000 x 1 points at 2400"},
        {R"({"width":20000,"height":20000,"calls":[]})", "72", "20000 x 20000 points at 72"},
        {R"({"width":10,"height":10,"calls":[]})", "1", "10 x 10 points at 1"},
    };
    for (const auto& row : rows) {
        const ToolResult run = Drawn(row.scene, "png", {"--dpi", row.dpi});
        EXPECT_EQ(run.status, kDocumentFailed);
        EXPECT_EQ(run.err, std::string("<stdin>: a bitmap of ") + row.size +
                               " dpi has sides of no pixel, over 32767 pixels or over 2^27 pixels in all\n");
        EXPECT_EQ(run.out, "");
    }
}

// Primitives ---------------------------------------------------------------------------------------------------------

struct Primitive {
    const char* name;
    std::string calls;
    const char* element;  // of SVG that it must write
    double most;          // distance of SVG and PDF from the pixels
};

std::string PictureUrl() {
    static const std::string url = [] {
        const std::string bytes = Drawn(R"({"width":8,"height":8,"background":"Blue","calls":[)"
                                        R"({"rect":{"box":[0,0,4,4],"fill":"Yellow"}}]})",
                                        "png")
                                      .out;
        static const char digits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
        std::string text = "data:image/png;base64,";
        unsigned gathered = 0, bits = 0;
        for (unsigned char byte : bytes) {
            gathered = gathered << 8 | byte;
            for (bits += 8; bits >= 6; bits -= 6) text += digits[gathered >> (bits - 6) & 63];
            gathered &= 0xFFFF;
        }
        if (bits) text += digits[gathered << (6 - bits) & 63];
        return text;
    }();
    return url;
}

std::vector<Primitive> Everything() {
    const std::string picture = R"({"picture":{"box":[5,5,50,30],"source":")" + PictureUrl() + R"(","mode":")";
    const std::string sky = R"("stops":[[0,"White"],[1,"Navy"]]})";
    return {
        {"rect", R"({"rect":{"box":[5,5,50,30],"fill":"Teal","stroke":"Red","lineWidth":3,"radius":8}})", "rect", 3},
        {"rects", R"({"rects":{"boxes":[[5,5,20,30],[30,5,20,30]],"fills":["Red","Blue"]}})", "rect", 0.5},
        {"oval", R"({"oval":{"box":[5,5,50,30],"fill":"Teal","stroke":"Red","lineWidth":3}})", "ellipse", 3},
        {"line", R"({"line":{"from":[5,5],"to":[50,35],"lineWidth":6,"cap":"round","dash":[10,8]}})", "line", 4},
        {"lines", R"({"lines":{"segments":[[5,5,50,5],[5,20,50,35]],"lineWidth":4}})", "line", 3},
        {"arc", R"({"arc":{"box":[5,5,50,30],"start":0,"end":100,"fill":"Teal","stroke":"Red","lineWidth":2}})", "path",
         3},
        {"arc the other way", R"({"arc":{"box":[5,5,50,30],"start":10,"end":100,"clockwise":false,"fill":"Teal"}})",
         "path", 3},
        {"path", R"({"path":{"data":"M5 5L55 5L30 35Z","fill":"Teal","stroke":"Red","lineWidth":2}})", "path", 3},
        {"path in a box", R"({"path":{"data":"M0 0L1 0L0.5 1Z","box":[5,5,50,30],"fill":"Teal"}})", "path", 3},
        {"path, smooth", R"({"path":{"data":"M5 30L20 8L35 30L55 8","smooth":true,"stroke":"Red","lineWidth":3}})",
         "path", 3},
        {"path, even-odd",
         R"({"path":{"data":"M5 5L55 5L55 35L5 35ZM15 10L45 10L45 30L15 30Z","fill":"Teal","rule":"evenodd"}})", "path",
         2},
        {"path with a gradient",
         R"({"path":{"data":"M5 5L55 5L30 35Z","gradient":{"linear":{"from":[0,0],"to":[0,100]},)" + sky + "}}", "path",
         3},
        {"text", R"({"text":{"text":"Wide","at":[4.5,28.5],"font":{"size":22.5,"bold":true}}})", "text", 8},
        {"text, turned", R"({"text":{"text":"turn","at":[15,38],"rotation":40,"font":{"size":18,"bold":true}}})",
         "text", 8},
        {"text under a matrix",
         R"({"text":{"text":"turn","at":[5,10],"matrix":[{"rotate":[30,5,10]}],"font":{"size":18,"bold":true}}})",
         "text", 8},
        {"alignedText",
         R"({"alignedText":{"text":"mid","left":0,"right":60,"y":28,"align":"center",)"
         R"("font":{"size":20,"bold":true}}})",
         "text", 8},
        {"textLayout",
         R"({"textLayout":{"text":"two lines","box":[5,2,50,36],"align":"right","vertical":"center",)"
         R"("font":{"size":15,"bold":true}}})",
         "text", 8},
        {"styledText",
         R"({"styledText":{"text":"<SPAN STYLE=\"color:#FF0000\">red</SPAN> ink","box":[2,5,58,30],)"
         R"("font":{"size":15,"bold":true}}})",
         "text", 8},
        {"picture, centred", picture + "center\"}}", "image", 2},
        {"picture, stretched", picture + "stretch\"}}", "image", 12},  // each smooths large pixels in its own way
        {"picture, top left", picture + "topLeft\"}}", "image", 2},
        {"picture, to fit", picture + "fit\"}}", "image", 12},
        {"picture, tiled", picture + "tile\"}}", "image", 3},
        {"region", R"({"region":{"steps":[{"add":[5,5,50,30]},{"subtract":[20,12,20,16]}],"fill":"Teal"}})", "path", 1},
        {"region, framed", R"({"region":{"steps":[{"add":[5,5,50,30]}],"stroke":"Teal","lineWidth":4}})", "path", 3},
        {"gradient", R"({"gradient":{"gradient":{"linear":{"from":[0,0],"to":[100,0]},)" + sky + "}}", "rect", 2},
        {"gradient, radial",
         R"({"clip":{"box":[10,5,40,30]}},{"gradient":{"box":[10,5,40,30],"gradient":{"radial":{"center":[50,50],"radius":60},)" +
             sky + "}}",
         "rect", 3},
        {"shadow", R"({"shadow":{"box":[8,12,36,20],"radius":4,"fill":"Teal","offset":[4,4],"blur":4}})", "rect", 3},
        {"shading", R"({"shading":{"box":[5,5,50,30],"fill":"Teal"}})", "rect", 3},
        {"shading, vertical", R"({"shading":{"box":[5,5,50,30],"fill":"Teal","vertical":true}})", "rect", 3},
        {"clip", R"({"clip":{"box":[10,10,20,20]}},{"rect":{"box":[0,0,60,40],"fill":"Teal"}})", "rect", 1},
        {"clip of a clip",
         R"({"clip":{"box":[10,10,30,20],"within":[20,0,30,40]}},{"rect":{"box":[0,0,60,40],"fill":"Teal"}})", "rect",
         1},
        {"clip, given back", R"({"clip":{"box":[10,10,20,20]}},{"clip":{}},{"rect":{"box":[0,0,60,40],"fill":"Teal"}})",
         "rect", 1},
        {"clip of a region",
         R"({"clip":{"steps":[{"add":[5,5,50,30]},{"subtract":[20,12,20,16]}]}},)"
         R"({"rect":{"box":[0,0,60,40],"fill":"Teal"}})",
         "rect", 1},
        {"clip under a matrix",
         R"({"clip":{"box":[10,10,40,20]}},{"rect":{"box":[0,0,60,40],"fill":"Teal",)"
         R"("matrix":[{"rotate":[30,30,20]}]}})",
         "rect", 1},
        {"layer",
         R"({"layer":{"width":30,"height":20,"at":[10,10],"calls":[{"rect":{"box":[0,0,60,60],"fill":"Teal"}},)"
         R"({"oval":{"box":[5,5,20,10],"fill":"Yellow"}}]}})",
         "image", 3},
        {"layer, scaled",
         R"({"layer":{"width":30,"height":20,"box":[5,5,50,30],"calls":[)"
         R"({"rect":{"box":[0,0,15,20],"fill":"Teal"}}]}})",
         "image", 4},
        {"matrix", R"({"rect":{"box":[15,10,30,20],"fill":"Teal","matrix":[{"rotate":[30,30,20]}]}})", "rect", 2},
        {"gradient under a matrix",
         R"({"rect":{"box":[15,10,30,20],"matrix":[{"rotate":[30,30,20]}],"gradient":)"
         R"({"linear":{"from":[0,0],"to":[0,100]},)" +
             sky + "}}",
         "rect", 3},
        {"gradient with a matrix",
         R"({"rect":{"box":[5,5,50,30],"gradient":{"matrix":[{"rotate":[60,30,20]}],"linear":{"from":[20,0],"to":[80,0]},)" +
             sky + "}}",
         "rect", 3},
    };
}

TEST(Draw, EachPrimitive_ShowsTheSameInSvgPngAndPdf) {
    for (const Primitive& row : Everything()) {
        SCOPED_TRACE(row.name);
        const std::string scene = SceneOf(row.calls, R"("background":"White",)");
        const ToolResult png = Drawn(scene, "png"), svg = Drawn(scene, "svg"), pdf = Drawn(scene, "pdf");
        for (const ToolResult* run : {&png, &svg, &pdf}) {
            ASSERT_EQ(run->status, kOk) << run->err;
            EXPECT_EQ(run->err, "");
        }
        Pixels pixels = Pixels::OfPng(png.out, 60, 40), vectors = Pixels::OfSvg(svg.out, 60, 40),
               page = Pixels::OfPdf(pdf.out, 60, 40);
        EXPECT_GT(pixels.inked(), 50);
        EXPECT_TRUE(Has(svg.out, std::string("<") + row.element + " ")) << svg.out;
        EXPECT_LE(pixels.distance(vectors), row.most) << svg.out;
        EXPECT_LE(pixels.distance(page), row.most);
    }
}

TEST(Draw, EachCallOfTheSchema_IsDrawnByATest) {
    const auto schema = nlohmann::json::parse(RunTool({"draw", "--schema"}).out);
    std::string all = R"({"clear"{"transform"{"properties")";  // have tests of their own
    for (const Primitive& row : Everything()) all += row.calls;
    for (const auto& [name, call] : schema["$defs"]["calls"]["items"]["properties"].items())
        EXPECT_TRUE(Has(all, "{\"" + name + "\"")) << name;
}

TEST(Draw, Examples_ShowTheSameInSvgAndPng) {
    for (const auto& entry : std::filesystem::directory_iterator(std::string(ZR_SOURCE_DIR) + "/examples/drawing")) {
        if (entry.path().extension() != ".json") continue;
        SCOPED_TRACE(entry.path());
        const auto scene = nlohmann::json::parse(zrtest::ReadFile(entry.path().string()));
        int width = scene["width"], height = scene["height"];
        const ToolResult png = RunTool({"draw", entry.path().string(), "-o", "-", "-f", "png"});
        const ToolResult svg = RunTool({"draw", entry.path().string(), "-o", "-", "-f", "svg"});
        ASSERT_EQ(png.status + svg.status, kOk) << png.err << svg.err;
        Pixels pixels = Pixels::OfPng(png.out, width, height), vectors = Pixels::OfSvg(svg.out, width, height);
        EXPECT_GT(pixels.inked(), width * height / 50);
        EXPECT_LE(pixels.distance(vectors), 4);
    }
}

TEST(Draw, Clear_MakesPixelsTransparent) {
    const std::string scene = SceneOf(R"({"rect":{"box":[0,0,60,40],"fill":"Red"}},{"clear":{"box":[10,10,20,20]}})");
    Pixels pixels = Pixels::OfPng(Drawn(scene, "png").out, 60, 40);
    EXPECT_EQ(pixels.at(5, 5), kRed);
    EXPECT_EQ(pixels.at(15, 15), kWhite);
    const ToolResult svg = Drawn(scene, "svg");
    EXPECT_EQ(svg.status, kOk);
    EXPECT_EQ(svg.err, "zr: <stdin>: calls[1].clear has no form in SVG and is left out\n");
}

TEST(Draw, Transform_HoldsForLaterCallsWithinThoseBefore) {
    const std::string scene =
        SceneOf(R"({"transform":{"matrix":[{"translate":[20,10]}]}},{"rect":{"box":[0,0,10,10],"fill":"Red"}},)"
                R"({"transform":{"matrix":[{"rotate":90}]}},{"rect":{"box":[5,10,10,10],"fill":"Red"}})");
    Pixels pixels = Pixels::OfPng(Drawn(scene, "png").out, 60, 40);
    EXPECT_EQ(pixels.at(25, 15), kRed);
    EXPECT_EQ(pixels.at(5, 5), kWhite);
    EXPECT_EQ(pixels.at(5, 20), kRed) << "turned to the right, within the one before";
    EXPECT_EQ(pixels.at(15, 20), kWhite);
    EXPECT_EQ(Drawn(scene, "svg").err, "zr: <stdin>: calls[0].transform has no form in SVG and is left out\n");
}

TEST(Draw, Properties_StandOnSvgElements) {
    const std::string scene = SceneOf(
        R"({"properties":{"set":{"class":"all"}}},{"rect":{"box":[0,0,9,9],"properties":{"id":"one","class":"own"}}},)"
        R"({"properties":{"set":{}}},{"oval":{"box":[0,0,9,9],"properties":{"style":"fill:red","id":"<&>"}}})");
    const std::string svg = Drawn(scene, "svg").out;
    EXPECT_TRUE(Has(svg, "<rect class=\"all\" id=\"one\" x=")) << svg;
    EXPECT_TRUE(Has(svg, "<ellipse id=\"&lt;&amp;&gt;\" style=\"fill:red\" cx=")) << svg;
}

TEST(Draw, Plain_WritesWhatThePrimitivesWrite) {
    static const struct {
        std::string calls, added, plain;
    } rows[] = {
        {R"({"line":{"from":[0,0],"to":[9,9],"dash":[3,1],"cap":"round"}})",
         "<line stroke-dasharray=\"3 1\" stroke-linecap=\"round\" x1=", "<line x1="},
        {R"({"text":{"text":"a","at":[1.5,9.25],"font":{"size":12.5}}})",
         "<text style=\"font-size:12.5px\" x=\"1\" y=\"9\"", "<text x=\"1\" y=\"9\""},
        {R"({"path":{"data":"M0 0L9 0L9 9Z","gradient":{"linear":{"from":[0,0],"to":[9,9]},"stops":[[0,"Red"],[1,"Blue"]]}}})",
         "<path style=\"fill:url(#gradient1)\" d=", "<path d="},
        {R"({"styledText":{"text":"ab","box":[0,0,50,30]}})", "<text", "<textArea x="},
        {R"({"clip":{}},{"rect":{"box":[0,0,9,9]}})", "fill=\"none\"/>", "clip-path=\"url(#clip1)\"/>"},
    };
    for (const auto& row : rows) {
        const ToolResult added = Drawn(SceneOf(row.calls), "svg"),
                         plain = Drawn(SceneOf(row.calls), "svg", {"--plain"});
        EXPECT_TRUE(Has(added.out, row.added)) << added.out;
        EXPECT_TRUE(Has(plain.out, row.plain)) << plain.out;
        EXPECT_FALSE(Has(plain.out, "viewBox"));
    }
    const ToolResult told =
        Drawn(SceneOf(R"({"shading":{"box":[0,0,9,9],"fill":"Red"}},{"shading":{"box":[0,0,9,9],"fill":"Red"}},)"
                      R"({"layer":{"width":9,"height":9,"calls":[]}},{"clip":{"steps":[]}})"),
              "svg", {"--plain"});
    EXPECT_EQ(told.status, kOk);
    EXPECT_EQ(told.err,
              "zr: <stdin>: calls[0].shading has no form in SVG and is left out\n"
              "zr: <stdin>: calls[2].layer has no form in SVG and is left out\n"
              "zr: <stdin>: calls[3].clip has no form in SVG and is left out\n");
}

TEST(Draw, PictureBesideTheScene_IsFoundFromAnywhere) {
    TempFolder folder;
    folder.Write("pictures/dot.png", Drawn(R"({"width":4,"height":4,"background":"Red","calls":[]})", "png").out);
    const std::string scene =
        folder.Write("scene.json", SceneOf(R"({"picture":{"source":"pictures/dot.png","box":[10,10,20,20]}})"));
    const ToolResult run = RunTool({"draw", scene, "-o", "-", "-f", "png"});
    ASSERT_EQ(run.status, kOk) << run.err;
    EXPECT_EQ(Pixels::OfPng(run.out, 60, 40).at(20, 20), kRed);
}

TEST(Draw, SameScene_GivesTheSameBytes) {
    const std::string scene = SceneOf(Everything()[0].calls + "," + Everything()[12].calls);
    for (const char* format : {"svg", "png", "pdf"})
        EXPECT_EQ(Drawn(scene, format).out, Drawn(scene, format).out) << format;
}

TEST(Draw, AbsurdNumbers_DrawWithoutHarm) {
    const char* const calls[] = {
        R"({"rect":{"box":[-1000000,-1000000,1000000,1000000],"fill":"Red","stroke":"Red","lineWidth":1000000,"dash":[0.001,0.001]}})",
        R"({"rect":{"box":[1,1,9,9],"fill":"Red","matrix":[0,0,0,0,0,0]}})",
        R"({"oval":{"box":[0,0,0,0],"fill":"Red","stroke":"Red"}})",
        R"({"arc":{"box":[0,0,0,0],"start":-360000,"end":360000,"fill":"Red","stroke":"Red"}})",
        R"({"path":{"data":"M0 0A0 0 0 0 0 1 1A1e9 1e-9 0 1 1 1e9 1e9","smooth":true,"stroke":"Red"}})",
        R"({"path":{"data":"M0 0L1e9 1e9L-1e9 3L5 1e9","smooth":true,"stroke":"Red"}})",
        R"({"text":{"text":"a","at":[1000000,-1000000],"font":{"size":10000},"rotation":359}})",
        R"({"text":{"text":"","at":[0,0],"font":{"size":0,"name":""}}})",
        R"({"textLayout":{"text":"\u0000\ud83d\ude00\n\r\n","box":[0,0,1,1000000],"kerning":-1000,"lineSpacing":-1000}})",
        R"({"styledText":{"text":"<SPAN STYLE=\"font-size:99999p\">a</SPAN>","box":[0,0,0.001,1000000]}})",
        R"({"gradient":{"gradient":{"radial":{"center":[0,0],"radius":0},"stops":[[0,"Red"],[0,"Blue"]]},"box":[0,0,0,0]}})",
        R"({"layer":{"width":20000,"height":20000,"calls":[{"rect":{"box":[0,0,9,9],"fill":"Red"}}],"box":[0,0,0,0]}})",
        R"({"shadow":{"box":[0,0,1000000,1000000],"offset":[1000000,1000000],"blur":500}})",
        R"({"clip":{"box":[0,0,0,0]}},{"rect":{"box":[0,0,60,40],"fill":"Red"}})",
        R"({"region":{"steps":[]}},{"clip":{"steps":[]}},{"rect":{"box":[0,0,60,40],"fill":"Red"}})",
    };
    for (const char* call : calls) {
        for (const char* format : {"svg", "png", "pdf"}) {
            const ToolResult run = Drawn(SceneOf(call), format);
            EXPECT_FALSE(run.timedOut) << format << " " << call;
            EXPECT_EQ(run.status, kOk) << format << " " << call << "\n" << run.err;
        }
    }
}

TEST(Draw, DrawingObjects_AreLoadedByDrawingAlone) {
    TempFolder folder;
    const std::string method = folder.Write("a.4dm", "ALERT(\"a\")\n");
    setenv("LD_DEBUG", "files", 1);
    const ToolResult run = RunTool({"run", method}), help = RunTool({"draw", "--help"}),
                     svg = Drawn(SceneOf(kRedBox), "svg"), png = Drawn(SceneOf(kRedBox), "png");
    unsetenv("LD_DEBUG");
    ASSERT_TRUE(Has(run.err, "libzr.so")) << "the loader tells what it loads";
    EXPECT_FALSE(Has(run.err, "libzr-graphics"));
    EXPECT_FALSE(Has(help.err, "libzr-graphics"));
    EXPECT_FALSE(Has(svg.err, "libzr-graphics")) << "shapes in SVG need no drawing object";
    EXPECT_TRUE(Has(png.err, "libzr-graphics"));
}

TEST(Draw, IntoAPipe_NoProgressIsShown) {
    TempFolder folder;
    Arguments arguments = {"draw", "-o", folder.Path("out/"), "-f", "png"};
    for (int i = 0; i < 20; ++i)
        arguments.push_back(folder.Write(std::to_string(i) + ".json", R"({"width":2000,"height":1000,"calls":[]})"));
    const ToolResult run = RunTool(arguments);
    EXPECT_EQ(run.status, kOk);
    EXPECT_EQ(run.out + run.err, "");
}

// Text -------------------------------------------------------------------------------------------------------------

TEST(TextFacts, Width_GivesWhatTheCommandsGive) {
    const auto plain = nlohmann::json::parse(RunTool({"text", "width", "Hello", "--size", "20", "--json"}).out);
    const auto bold = nlohmann::json::parse(RunTool({"text", "width", "Hello", "-s20", "-b", "--json"}).out);
    const auto twice = nlohmann::json::parse(RunTool({"text", "width", "HelloHello", "--size", "20", "--json"}).out);
    EXPECT_GT(plain["width"].get<double>(), 40);
    EXPECT_GT(bold["width"], plain["width"]);
    EXPECT_NEAR(twice["width"].get<double>(), 2 * plain["width"].get<double>(), 0.5);
    EXPECT_EQ(plain["rounded"].get<double>(), std::floor(plain["width"].get<double>() + 0.5));
    EXPECT_NEAR(plain["height"].get<double>(), plain["ascent"].get<double>() + plain["below"].get<double>(), 0.001);
    EXPECT_EQ(plain["family"], "Liberation Sans");
    const ToolResult words = RunTool({"text", "width", "Hello", "--size", "20", "--font", "Liberation Serif"});
    EXPECT_TRUE(Has(words.out, "family   Liberation Serif\n")) << words.out;
    EXPECT_EQ(words.out.rfind("width    ", 0), 0U) << words.out;
    const auto empty = nlohmann::json::parse(RunTool({"text", "width", "", "--json"}).out);
    EXPECT_EQ(empty["width"], 0);
}

TEST(TextFacts, Wrap_PrintsTheLines) {
    const ToolResult run = RunTool({"text", "wrap", "The quick brown fox", "--width", "60"});
    EXPECT_EQ(run.status, kOk);
    EXPECT_EQ(run.out, "The quick\nbrown fox\n");
    const ToolResult json = RunTool({"text", "wrap", "-", "--width", "60", "--json"}, "The quick brown fox\n");
    EXPECT_EQ(nlohmann::json::parse(json.out), nlohmann::json::parse(R"({"lines":["The quick","brown fox"]})"));
    EXPECT_EQ(RunTool({"text", "wrap", "", "--width", "60"}).out, "");
}

TEST(TextFacts, WrongUsage_IsRefusedWithWords) {
    const struct {
        Arguments arguments;
        std::string sentence;
    } rows[] = {
        {{"text"}, "zr text needs width|wrap TEXT; see zr text --help"},
        {{"text", "height", "a"}, "zr text shows width or wrap, not \"height\""},
        {{"text", "wrap", "a"}, "zr text wrap needs --width N; see zr text --help"},
        {{"text", "width", "a", "--width", "5"}, "--width is for zr text wrap alone"},
        {{"text", "width", "a", "--size", "0"}, "--size needs a whole number from 1, not \"0\""},
        {{"text", "width", "a", "--size", "40000"}, "--size is at most 32767, not 40000"},
        {{"text", "wrap", "a", "--width", "1000001"}, "--width is at most 1000000, not 1000001"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.sentence);
        ExpectRefusal(RunTool(row.arguments), row.sentence);
    }
}

}  // namespace
