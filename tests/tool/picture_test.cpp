// zr picture as a person runs it.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "tests/support/RunTool.h"

namespace {

using zrtest::RunTool;
using zrtest::TempFolder;
using zrtest::ToolResult;

constexpr int kOk = 0, kDocumentFailed = 1, kWrongUsage = 2;

const std::string kSVG =
    R"(<svg xmlns="http://www.w3.org/2000/svg" width="40" height="20"><rect width="40" height="20" fill="red"/></svg>)";
const std::string kPDF =
    "%PDF-1.4\n1 0 obj<</Type/Catalog/Pages 2 0 R>>endobj\n2 0 obj<</Type/Pages/Kids[3 0 R]/Count 1>>endobj\n"
    "3 0 obj<</Type/Page/Parent 2 0 R/MediaBox[0 0 72 36]/Contents 4 0 R>>endobj\n"
    "4 0 obj<</Length 22>>stream\n1 0 0 rg 0 0 72 36 re f\nendstream endobj\ntrailer<</Root 1 0 R>>\n";

bool Has(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

void ExpectRefusal(const ToolResult& run, const std::string& part) {
    EXPECT_EQ(run.status, kWrongUsage) << run.err;
    EXPECT_EQ(run.out, "");
    EXPECT_TRUE(Has(run.err, part)) << run.err;
}

// The one object that info --json prints of a file
nlohmann::json Facts(const std::string& path, int status = kOk) {
    const ToolResult run = RunTool({"picture", "info", "--json", path});
    EXPECT_EQ(run.status, status) << run.err;
    auto json = nlohmann::json::parse(run.out, nullptr, /*allow_exceptions*/ false);
    EXPECT_TRUE(json.is_array() && json.size() == 1) << run.out;
    return json.is_array() && !json.empty() ? json[0] : nlohmann::json::object();
}

void Convert(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"picture", "convert"});
    const ToolResult run = RunTool(arguments);
    EXPECT_EQ(run.status, kOk) << run.err;
    EXPECT_EQ(run.out + run.err, "");
}

}  // namespace

TEST(ToolPicture, Convert_EveryFormat_AndInfoTellsIt) {
    TempFolder folder;
    const std::string svg = folder.Write("a.svg", kSVG);
    static const struct {
        const char *name, *format, *type;
        bool keepsDpi;
    } rows[] = {{"a.jpg", "JPEG", "image/jpg", true},
                {"a.PNG", "PNG", "image/png", true},
                {"a.bmp", "BMP", "image/bmp", true},
                {"a.gif", "GIF", "image/gif", false},
                {"a.tiff", "TIFF", "image/tiff", true}};
    std::string before = svg;
    for (const auto& row : rows) {  // each from the one before
        const std::string path = folder.Path(row.name);
        Convert({before, path, "--dpi", "72"});
        const auto facts = Facts(path);
        EXPECT_EQ(facts["format"], row.format);
        EXPECT_EQ(facts["decoded"], true);
        EXPECT_EQ(facts["width"], 40) << row.name;
        EXPECT_EQ(facts["height"], 20) << row.name;
        EXPECT_EQ(facts["dpiX"], row.keepsDpi ? 72 : 0) << row.name;
        EXPECT_EQ(facts["types"], nlohmann::json::array({row.type}));
        EXPECT_EQ(facts["bytes"], std::filesystem::file_size(path));
        before = path;
    }
}

TEST(ToolPicture, Convert_Documents_AreDrawnAtTheResolution) {
    TempFolder folder;
    const std::string svg = folder.Write("a.svg", kSVG), pdf = folder.Write("a.pdf", kPDF);
    static const struct {
        bool pdf;
        const char* dpi;
        int width, height;
    } rows[] = {{true, "", 72, 36}, {true, "144", 144, 72}, {false, "", 40, 20}, {false, "360", 200, 100}};
    for (const auto& row : rows) {
        std::vector<std::string> arguments = {row.pdf ? pdf : svg, folder.Path("a.png")};
        if (*row.dpi) arguments.insert(arguments.end(), {"--dpi", row.dpi});
        Convert(arguments);
        const auto facts = Facts(folder.Path("a.png"));
        EXPECT_EQ(facts["width"], row.width);
        EXPECT_EQ(facts["height"], row.height);
        EXPECT_EQ(facts["dpiX"], *row.dpi ? std::stoi(row.dpi) : 72);
    }
    const std::string turned =
        folder.Write("turned.pdf", std::string(kPDF).replace(kPDF.find("/Contents"), 0, "/Rotate 90"));
    Convert({turned, folder.Path("a.png")});
    EXPECT_EQ(Facts(folder.Path("a.png"))["width"], 36);
    EXPECT_EQ(Facts(folder.Path("a.png"))["height"], 72);
    EXPECT_EQ(Facts(pdf)["width"], 72);
    EXPECT_EQ(Facts(pdf)["format"], "PDF");
}

TEST(ToolPicture, Convert_OptionsTypeAndQuality) {
    TempFolder folder;
    std::string noise = R"(<svg xmlns="http://www.w3.org/2000/svg" width="90" height="90">)";
    for (int i = 0; i < 90; ++i)
        noise += "<circle r=\"9\" cx=\"" + std::to_string(i * 37 % 90) + "\" cy=\"" + std::to_string(i) +
                 "\" fill=\"hsl(" + std::to_string(i * 41 % 360) + ",90%,50%)\"/>";
    const std::string svg = folder.Write("a.svg", noise + "</svg>");
    Convert({svg, folder.Path("low.jpg"), "--quality=5"});
    Convert({svg, folder.Path("high.jpg"), "-q", "100"});
    EXPECT_LT(std::filesystem::file_size(folder.Path("low.jpg")), std::filesystem::file_size(folder.Path("high.jpg")));
    Convert({svg, folder.Path("named.xyz"), "--type", "gif"});
    EXPECT_EQ(Facts(folder.Path("named.xyz"))["format"], "GIF");
    const ToolResult piped = RunTool({"picture", "convert", "-", "-", "-t", "png"}, kSVG);
    EXPECT_EQ(piped.status, kOk) << piped.err;
    EXPECT_TRUE(piped.out.starts_with("\x89PNG"));
}

TEST(ToolPicture, Info_ForPeople_IsALineAFile) {
    TempFolder folder;
    const std::string svg = folder.Write("a.svg", kSVG), pdf = folder.Write("a.pdf", kPDF);
    const ToolResult run = RunTool({"picture", "info", svg, pdf});
    EXPECT_EQ(run.status, kOk);
    EXPECT_EQ(run.out, svg + ": SVG, 40 x 20 pixels, " + std::to_string(kSVG.size()) + " bytes, image/svg+xml\n" + pdf +
                           ": PDF, 72 x 36 points, " + std::to_string(kPDF.size()) + " bytes, application/pdf\n");
    EXPECT_EQ(run.err, "");
}

TEST(ToolPicture, DamagedPictures_EndWithOne) {
    TempFolder folder;
    const std::string good = folder.Write("good.svg", kSVG), text = folder.Write("a.txt", "text"),
                      empty = folder.Write("empty.png", ""), cut = folder.Write("cut.png", "\x89PNG\r\n\x1a\n"),
                      fonts = folder.Write("a.emf", std::string(40, '\0') + " EMF");
    for (const std::string& path : {text, empty, cut}) {
        const auto facts = Facts(path, kDocumentFailed);
        EXPECT_EQ(facts["decoded"], false) << path;
        EXPECT_EQ(facts["width"], 0) << path;
        const ToolResult run = RunTool({"picture", "convert", path, folder.Path("out.png")});
        EXPECT_EQ(run.status, kDocumentFailed) << path;
        EXPECT_NE(run.err, "") << path;
        EXPECT_FALSE(folder.Has("out.png")) << path;
    }
    EXPECT_EQ(Facts(cut, kDocumentFailed)["format"], "PNG");
    EXPECT_EQ(Facts(text, kDocumentFailed)["format"], "unknown");
    EXPECT_EQ(Facts(fonts)["format"], "EMF");  // a format that is only carried
    EXPECT_EQ(RunTool({"picture", "info", good, cut}).status, kDocumentFailed);
    const ToolResult large = RunTool({"picture", "convert", good, folder.Path("out.png"), "--dpi", "10000"});
    EXPECT_EQ(large.status, kOk);
    const std::string wide =
        folder.Write("wide.svg", R"(<svg xmlns="http://www.w3.org/2000/svg" width="9000" height="9"/>)");
    const ToolResult larger = RunTool({"picture", "convert", wide, folder.Path("wide.png"), "--dpi", "10000"});
    EXPECT_EQ(larger.status, kDocumentFailed);
    EXPECT_TRUE(Has(larger.err, "cannot be drawn at this resolution")) << larger.err;
}

TEST(ToolPicture, WrongUsage_EndsWithTwo) {
    TempFolder folder;
    const std::string svg = folder.Write("a.svg", kSVG), out = folder.Path("out.png");
    const struct {
        std::vector<std::string> arguments;
        const char* part;
    } rows[] = {{{"picture"}, "needs"},
                {{"picture", "info"}, "needs"},
                {{"picture", "inof", svg}, "did you mean info?"},
                {{"picture", "paint", svg}, "it has info and convert"},
                {{"picture", "convert", svg}, "FILE OUT"},
                {{"picture", "convert", svg, out, out}, "FILE OUT"},
                {{"picture", "convert", svg, folder.Path("a.pdf")}, "jpeg, png, bmp, gif or tiff"},
                {{"picture", "convert", svg, folder.Path("noname")}, "--type"},
                {{"picture", "convert", svg, "-"}, "--type"},
                {{"picture", "convert", svg, out, "--type", "svg"}, "jpeg, png, bmp, gif or tiff"},
                {{"picture", "convert", svg, out, "--type", ""}, "jpeg, png, bmp, gif or tiff"},
                {{"picture", "convert", svg, out, "--quality", "101"}, "0 to 100"},
                {{"picture", "convert", svg, out, "--quality", "nan"}, "0 to 100"},
                {{"picture", "convert", svg, out, "--quality", "5%"}, "0 to 100"},
                {{"picture", "convert", svg, out, "--dpi", "0"}, "--dpi"},
                {{"picture", "convert", svg, out, "--dpi", "1e9"}, "--dpi"},
                {{"picture", "convert", svg, out, "--json"}, "--json"},
                {{"picture", "info", svg, "--dpi", "72"}, "--dpi"},
                {{"picture", "info", folder.Path("missing.png")}, "No such file"},
                {{"picture", "info", folder.Path(".")}, "is a folder, not a picture file"},
                {{"picture", "convert", svg, folder.Path("no/such/folder.png")}, "No such file"}};
    for (const auto& row : rows) ExpectRefusal(RunTool(row.arguments), row.part);
    EXPECT_FALSE(folder.Has("out.png"));
}

TEST(ToolPicture, HelpManualAndCompletion_NameIt) {
    EXPECT_TRUE(Has(RunTool({"picture", "--help"}).out, "--quality"));
    EXPECT_TRUE(Has(RunTool({"--help"}).out, "picture info|convert"));
    EXPECT_TRUE(Has(RunTool({"manual"}).out, "zr picture"));
    const std::string completion = RunTool({"completion", "bash"}).out;
    EXPECT_TRUE(Has(completion, "words=\"info convert\"")) << completion;
    EXPECT_TRUE(Has(completion, "suffixes+=(.png)")) << completion;
    EXPECT_TRUE(Has(completion, "\"jpeg png bmp gif tiff\"")) << completion;
}

// What draws and decodes is opened by those who need it alone.
TEST(ToolPicture, PlainMethod_OpensNoDrawingObject) {
    TempFolder folder;
    const std::string method = folder.Write("a.4dm", "C_PICTURE($p)\nALERT(\"hello\")\n"),
                      svg = folder.Write("a.svg", kSVG);
    setenv("LD_DEBUG", "files", 1);
    const ToolResult plain = RunTool({"run", method}), picture = RunTool({"picture", "info", svg});
    unsetenv("LD_DEBUG");
    EXPECT_EQ(plain.out, "hello\n");
    EXPECT_TRUE(Has(plain.err, "libzr.so")) << "the loader tells nothing here";
    for (const char* object : {"libzr-graphics", "libzr-svg", "libzr-pdf", "libcairo"})
        EXPECT_FALSE(Has(plain.err, object)) << object;
    EXPECT_TRUE(Has(picture.err, "libzr-svg"));
}
