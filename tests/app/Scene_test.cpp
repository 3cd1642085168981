// Scenes as zr draw reads them: what is wrong is told with the path of the value, and the table of primitives, the
// schema, the help and docs/scenes.md say the same.
#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>

#include "tests/support/JsonSchema.h"
#include "tests/support/RunTool.h"

namespace {

using nlohmann::json;
using zrtest::RunTool;
using zrtest::TempFolder;
using zrtest::ToolResult;

constexpr int kOk = 0, kDocumentFailed = 1;

std::string Source(const std::string& name) { return zrtest::ReadFile(std::string(ZR_SOURCE_DIR) + "/" + name); }

ToolResult Check(const std::string& scene) { return RunTool({"draw", "--check", "-"}, scene); }

std::string SceneOf(const std::string& calls, const std::string& more = "") {
    return R"({"width":100,"height":100,)" + more + R"("calls":[)" + calls + "]}";
}

std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
}

// Values ------------------------------------------------------------------------------------------------------------

struct Wrong {
    std::string calls;     // the one call of the scene, or several
    std::string sentence;  // without "<stdin>: calls[0]"
    bool schemaKnows;      // the schema refuses it as well
};

const Wrong kWrong[] = {
    {R"({"rect":{"box":[0,0,9,9],"fill":5}})", ".rect.fill: a colour is expected, such as \"#FF0000\" or \"Red\"",
     true},
    {R"({"rect":{"box":[0,0,9,9],"fill":"Rde"}})",
     ".rect.fill: a colour is expected, such as \"#FF0000\" or \"Red\", not \"Rde\"", false},
    {R"({"rect":{"box":[0,0,9,9],"fill":"#12345"}})",
     ".rect.fill: a colour is expected, such as \"#FF0000\" or \"Red\", not \"#12345\"", false},
    {R"({"rect":{"box":[0,0,9,9],"fill":"#12345G"}})",
     ".rect.fill: a colour is expected, such as \"#FF0000\" or \"Red\", not \"#12345G\"", false},
    {R"x({"rect":{"box":[0,0,9,9],"fill":"rgb16(1,2,65536)"}})x",
     ".rect.fill: a colour is expected, such as \"#FF0000\" or \"Red\", not \"rgb16(1,2,65536)\"", false},
    {R"({"rect":{"box":[0,0,9,9],"fill":{"color":"Red","alpha":1.5}}})",
     ".rect.fill.alpha: a number from 0 to 1 is expected, not 1.5", true},
    {R"({"rect":{"box":[0,0,9,9],"fill":{"alpha":1}}})", ".rect.fill: color is missing", true},
    {R"({"rect":{"box":[0,0,9,9],"fil":"Red"}})", ".rect.fil: unknown key, did you mean fill?", true},
    {R"({"rect":{"box":[0,0,9,9],"nothingLikeIt":1}})", ".rect.nothingLikeIt: unknown key", true},
    {R"({"rect":{"fill":"Red"}})", ".rect: box is missing", true},
    {R"({"rect":{"box":[0,0,9]}})", ".rect.box: a box [x, y, width, height] is expected", true},
    {R"({"rect":{"box":[0,0,9,-1]}})", ".rect.box[3]: a size of 0 or more is expected, not -1", true},
    {R"({"rect":{"box":[0,"a",9,9]}})", ".rect.box[1]: a number is expected", true},
    {R"({"rect":{"box":[0,1000001,9,9]}})", ".rect.box[1]: a number from -1000000 to 1000000 is expected, not 1000001",
     true},
    {R"({"rect":{"box":[0,0,9,9],"lineWidth":-0.5}})",
     ".rect.lineWidth: a number from 0 to 1000000 is expected, not -0.5", true},
    {R"({"rect":{"box":[0,0,9,9],"antialias":1}})", ".rect.antialias: true or false is expected", true},
    {R"({"rect":{"box":[0,0,9,9],"properties":{"1a":"x"}}})", ".rect.properties.1a: this is no name of an attribute",
     false},
    {R"({"rect":{"box":[0,0,9,9],"properties":{"id":1}}})", ".rect.properties.id: a text is expected", true},
    {R"({"rect":{"box":[0,0,9,9],"dash":[]}})", ".rect.dash: a list of lengths is expected", true},
    {R"({"rect":{"box":[0,0,9,9],"dash":[0,0]}})", ".rect.dash: a length above 0 is expected", false},
    {R"({"rect":{"box":[0,0,9,9],"dash":{"phase":1}}})", ".rect.dash: lengths is missing", true},
    {R"({"rect":{"box":[0,0,9,9],"dash":"dotted"}})", ".rect.dash: the scene defines no dash \"dotted\"", false},
    {R"({"rect":{"box":[0,0,9,9],"gradient":{"stops":[]}}})", ".rect.gradient: either linear or radial is expected",
     true},
    {R"({"rect":{"box":[0,0,9,9],"gradient":{"linear":{"from":[0,0],"to":[1,1]},"stops":[[0,"Red"]]}}})",
     ".rect.gradient.stops: a list of at least two stops [offset, colour] is expected", true},
    {R"({"rect":{"box":[0,0,9,9],"gradient":{"linear":{"from":[0,0],"to":[1,1]},"stops":[[0,"Red"],[2,"Red"]]}}})",
     ".rect.gradient.stops[1][0]: a number from 0 to 1 is expected, not 2", true},
    {R"({"rect":{"box":[0,0,9,9],"gradient":{"radial":{"center":[0,0]},"stops":[[0,"Red"],[1,"Red"]]}}})",
     ".rect.gradient.radial: radius is missing", true},
    {R"({"rect":{"box":[0,0,9,9],"matrix":[1,0,0,1,0]}})",
     ".rect.matrix: a matrix of six numbers or a list of {\"translate\":[x, y]}, {\"rotate\":degrees} and "
     "{\"scale\":factor} is expected",
     true},
    {R"({"rect":{"box":[0,0,9,9],"matrix":[{"skew":3}]}})",
     ".rect.matrix[0].skew: unknown key, translate, rotate or scale is expected", true},
    {R"({"rect":{"box":[0,0,9,9],"matrix":[{"scale":1000000},{"scale":1000000}]}})",
     ".rect.matrix: the steps together become too large", false},
    {R"({"line":{"from":[0,0],"to":[1,1],"cap":"flat"}})", ".line.cap: one of butt, round, square is expected", true},
    {R"({"line":{"from":[0,0],"to":[1]}})", ".line.to: a point [x, y] is expected", true},
    {R"({"lines":{"segments":[[0,0,1]]}})", ".lines.segments[0]: a line [x1, y1, x2, y2] is expected", true},
    {R"({"rects":{"boxes":[[0,0,1,1],[2,2,1,1]],"fills":["Red"]}})",
     ".rects.fills: 2 colours are expected, one for each of the boxes, not 1", false},
    {R"({"path":{"data":"M0 0X"}})", ".path.data: the path data has a letter that is no command", false},
    {R"({"path":{"data":"M0"}})", ".path.data: a number of the path data is missing or too long", false},
    {R"({"text":{"text":7,"at":[0,0]}})", ".text.text: a text is expected", true},
    {R"({"text":{"text":"a","at":[0,0],"font":"big"}})", ".text.font: the scene defines no font \"big\"", false},
    {R"({"text":{"text":"a","at":[0,0],"font":{"size":-1}}})",
     ".text.font.size: a number from 0 to 10000 is expected, not -1", true},
    {R"({"text":{"text":"a","at":[0,0],"font":{"weight":1}}})", ".text.font.weight: unknown key", true},
    {R"({"styledText":{"text":"a<SPAN STYLE=\"x","box":[0,0,9,9]}})",
     ".styledText.text: a span that cannot be read; <SPAN STYLE=\"...\"> or <SPAN> is expected", false},
    {R"({"shadow":{"box":[0,0,9,9],"blur":1.5}})", ".shadow.blur: a whole number from 0 to 500 is expected, not 1.5",
     true},
    {R"({"region":{"steps":[{"add":[0,0,1,1],"subtract":[0,0,1,1]}]}})",
     ".region.steps[0]: {\"add\":[x, y, width, height]} or {\"subtract\":...} is expected", true},
    {R"({"picture":{"source":"/nowhere/a.png","box":[0,0,9,9]}})",
     ".picture.source: cannot read /nowhere/a.png: No such file or directory", false},
    {R"({"picture":{"source":"/dev/zero","box":[0,0,9,9]}})", ".picture.source: /dev/zero is no file", false},
    {R"({"picture":{"source":"data:image/png;base64,AAAA","box":[0,0,9,9]}})",
     ".picture.source: data:image/png;base64,AAAA is no picture that can be read", false},
    {R"({"picture":{"source":"data:image/png,AAAA","box":[0,0,9,9]}})",
     ".picture.source: a data: URL is expected to have ;base64, before its data", false},
    {R"({"picture":{"source":"data:image/png;base64,A*","box":[0,0,9,9]}})",
     ".picture.source: the data: URL holds a character that is not base64", false},
    {R"({"layer":{"width":0,"height":9,"calls":[]}})",
     ".layer.width: a whole number from 1 to 20000 is expected, not 0", true},
    {R"({"layer":{"width":9,"height":9,"calls":[{"rect":{}}]}})", ".layer.calls[0].rect: box is missing", true},
    {R"({"rct":{}})", ".rct: there is no such call, did you mean rect?", true},
    {R"({"somethingElse":{}})", ".somethingElse: there is no such call; zr draw --help lists them", true},
    {R"({"rect":[]})", ".rect: an object with the arguments is expected", true},
    {R"({"rect":{"box":[0,0,1,1]},"oval":{"box":[0,0,1,1]}})",
     ": an object with one key is expected, such as {\"rect\":{...}}", true},
    {"5", ": an object with one key is expected, such as {\"rect\":{...}}", true},
};

TEST(Scene, WrongValue_IsToldWithItsPath) {
    for (const Wrong& row : kWrong) {
        const ToolResult run = Check(SceneOf(row.calls));
        EXPECT_EQ(run.status, kDocumentFailed) << row.calls;
        EXPECT_EQ(run.out, "");
        EXPECT_EQ(run.err, "<stdin>: calls[0]" + row.sentence + "\n");
    }
}

TEST(Scene, WrongScene_IsToldWithItsPath) {
    static const struct {
        const char *scene, *sentence;
    } rows[] = {
        {"[]", "an object with width, height and calls is expected"},
        {R"({"height":1,"calls":[]})", "width is missing"},
        {R"({"width":1.5,"height":1,"calls":[]})", "width: a whole number from 1 to 20000 is expected, not 1.5"},
        {R"({"width":1,"height":20001,"calls":[]})", "height: a whole number from 1 to 20000 is expected, not 20001"},
        {R"({"width":1,"height":1,"calls":{}})", "calls: a list of calls is expected"},
        {R"({"width":1,"height":1,"calls":[],"colour":1})", "colour: unknown key"},
        {R"({"width":1,"height":1,"calls":[],"define":{"fonts":{"a":{"size":"b"}}}})",
         "define.fonts.a.size: a number is expected"},
        {R"({"width":1,"height":1,"calls":[],"define":{"brushes":{}}})", "define.brushes: unknown key"},
        {R"({"width":1,"width":2,"height":1,"calls":[]})", "the key \"width\" stands twice in one object"},
        {"{\"width\":1,\n  \"height\":}",
         "line 2, column 12: this is not JSON: syntax error while parsing value - "
         "unexpected '}'; expected '[', '{', or a literal"},
        {R"({"width":1e999,"height":1,"calls":[]})", "this is not JSON: number overflow parsing '1e999'"},
        {"",
         "line 1, column 1: this is not JSON: syntax error while parsing value - unexpected end of input; expected "
         "'[', '{', or a literal"},
    };
    for (const auto& row : rows) {
        const ToolResult run = Check(row.scene);
        EXPECT_EQ(run.status, kDocumentFailed) << row.scene;
        EXPECT_EQ(run.err, std::string("<stdin>: ") + row.sentence + "\n") << row.scene;
    }
}

TEST(Scene, SeveralWrongValues_AreAllTold_TwentyAtMost) {
    std::string calls = R"({"rect":{"box":1}},{"oval":{"box":2}})";
    EXPECT_EQ(Lines(Check(SceneOf(calls)).err).size(), 2U);
    for (int i = 0; i < 30; ++i) calls += R"(,{"oval":{"box":2}})";
    const std::vector<std::string> lines = Lines(Check(SceneOf(calls)).err);
    ASSERT_EQ(lines.size(), 21U);
    EXPECT_EQ(lines.back(), "<stdin>: and 12 more");
}

TEST(Scene, NameInAKey_IsShownHarmless) {
    const ToolResult run = Check(SceneOf("{\"\\u001b[31m\":{}}"));
    EXPECT_EQ(run.err.find('\x1b'), std::string::npos);
}

TEST(Scene, LayersInLayers_EndAtEight) {
    auto nested = [](int depth) {
        std::string calls;
        for (int i = 0; i < depth; ++i) calls = R"({"layer":{"width":9,"height":9,"calls":[)" + calls + "]}}";
        return SceneOf(calls);
    };
    EXPECT_EQ(Check(nested(8)).status, kOk);
    const ToolResult run = Check(nested(9));
    EXPECT_EQ(run.status, kDocumentFailed);
    EXPECT_NE(run.err.find("more than 8 layers lie in each other"), std::string::npos) << run.err;
    EXPECT_EQ(Check(nested(3000)).status, kDocumentFailed);
    EXPECT_EQ(Check(std::string(200000, '[')).status, kDocumentFailed);
}

TEST(Scene, DefinedNames_StandForTheirValues) {
    const std::string define =
        R"("define":{"colours":{"accent":"#2F6DB5","Red":"#102030"},"fonts":{"big":{"size":30}},)"
        R"("gradients":{"sky":{"linear":{"from":[0,0],"to":[0,9]},"stops":[[0,"accent"],[1,"White"]]}},)"
        R"("dashes":{"dots":[1,2]}},)";
    const std::string calls =
        R"({"rect":{"box":[0,0,9,9],"fill":"accent","stroke":"Red","dash":"dots"}},)"
        R"({"rect":{"box":[0,0,9,9],"gradient":"sky"}},{"text":{"text":"a","at":[0,9],"font":"big"}})";
    const ToolResult run = RunTool({"draw", "-", "-o", "-", "--format", "svg"}, SceneOf(calls, define));
    EXPECT_EQ(run.status, kOk) << run.err;
    for (const char* part : {"fill=\"#2F6DB5\"", "stroke=\"#102030\"", "stroke-dasharray=\"1 2\"",
                             "stop-color=\"#2F6DB5\"", "font-size=\"30\""})
        EXPECT_NE(run.out.find(part), std::string::npos) << part << " in " << run.out;
    const ToolResult near = Check(SceneOf(R"({"rect":{"box":[0,0,9,9],"dash":"dost"}})", define));
    EXPECT_EQ(near.err, "<stdin>: calls[0].rect.dash: the scene defines no dash \"dost\", did you mean \"dots\"?\n");
}

TEST(Scene, Colour_InEveryForm_IsTheSameInTheDrawing) {
    static const struct {
        const char *given, *attributes;
    } rows[] = {
        {R"("#1A2B3C")", "fill=\"#1A2B3C\""},
        {R"("#F80")", "fill=\"#FF8800\""},
        {R"x("rgb16(65535,0,256)")x", "fill=\"#FF0001\""},
        {R"x("rgb16(65535,0,256,0.25)")x", "fill=\"#FF0001\" fill-opacity=\"0.25\""},
        {R"("teal")", "fill=\"#008080\""},
        {R"("WHITE")", "fill=\"#FFFFFF\""},
        {R"("black")", "fill=\"#000000\""},
        {R"({"color":"Red","alpha":0.5})", "fill=\"#FF0000\" fill-opacity=\"0.5\""},
        {R"({"color":"#00F"})", "fill=\"#0000FF\""},
    };
    for (const auto& row : rows) {
        const std::string scene = SceneOf(R"({"rect":{"box":[0,0,9,9],"fill":)" + std::string(row.given) + "}}");
        const ToolResult run = RunTool({"draw", "-", "-o", "-", "-f", "svg"}, scene);
        EXPECT_NE(run.out.find(std::string("height=\"9\" ") + row.attributes + "/>"), std::string::npos)
            << row.given << ": " << run.out << run.err;
    }
}

TEST(Scene, MatrixSteps_ActInTheirOrder) {
    static const struct {
        const char *given, *written;
    } rows[] = {
        {"[1,2,3,4,5,6]", "matrix(1 2 3 4 5 6)"},
        {R"([{"translate":[5,6]}])", "matrix(1 0 0 1 5 6)"},
        {R"([{"rotate":90}])", "matrix(0 1 -1 0 0 0)"},
        {R"([{"rotate":[90,10,0]}])", "matrix(0 1 -1 0 10 -10)"},
        {R"([{"scale":2},{"translate":[5,6]}])", "matrix(2 0 0 2 5 6)"},
        {R"([{"translate":[5,6]},{"scale":[2,3]}])", "matrix(2 0 0 3 10 18)"},
    };
    for (const auto& row : rows) {
        const std::string scene = SceneOf(R"({"rect":{"box":[0,0,9,9],"matrix":)" + std::string(row.given) + "}}");
        const ToolResult run = RunTool({"draw", "-", "-o", "-", "-f", "svg"}, scene);
        EXPECT_NE(run.out.find(std::string("transform=\"") + row.written + "\""), std::string::npos)
            << row.given << ": " << run.out << run.err;
    }
    const ToolResult none =
        RunTool({"draw", "-", "-o", "-", "-f", "svg"}, SceneOf(R"({"rect":{"box":[0,0,9,9],"matrix":[]}})"));
    EXPECT_EQ(none.out.find("transform"), std::string::npos) << "no steps are no matrix";
}

// Schema, help and page ----------------------------------------------------------------------------------------------

json Schema() { return json::parse(RunTool({"draw", "--schema"}).out); }

const json& CallsOf(const json& schema) { return schema["$defs"]["calls"]["items"]["properties"]; }

TEST(SceneSchema, Page_IsWhatTheToolPrints) {
    EXPECT_EQ(Source("docs/scene.schema.json"), RunTool({"draw", "--schema"}).out);
}

TEST(SceneSchema, EachExample_Fits) {
    const zrtest::JsonSchema schema(Schema());
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(std::string(ZR_SOURCE_DIR) + "/examples/drawing")) {
        if (entry.path().extension() != ".json") continue;
        ++count;
        EXPECT_EQ(schema.problemOf(json::parse(zrtest::ReadFile(entry.path().string()))), "") << entry.path();
        const ToolResult run = RunTool({"draw", "--check", entry.path().string()});
        EXPECT_EQ(run.status, kOk) << run.err;
        EXPECT_EQ(run.err, "");
    }
    EXPECT_GE(count, 6);
}

TEST(SceneSchema, WrongValue_IsRefusedWhereTheSchemaCanKnow) {
    const zrtest::JsonSchema schema(Schema());
    for (const Wrong& row : kWrong)
        EXPECT_EQ(schema.problemOf(json::parse(SceneOf(row.calls))) != "", row.schemaKnows) << row.calls;
}

TEST(SceneSchema, EachCall_StandsInHelpAndPage) {
    const json schema = Schema();
    const std::string help = RunTool({"draw", "--help"}).out, page = Source("docs/scenes.md");
    EXPECT_GE(CallsOf(schema).size(), 20U);
    for (const auto& [name, call] : CallsOf(schema).items()) {
        bool helped = help.find(" " + name + ",") != std::string::npos ||
                      help.find(" " + name + ".") != std::string::npos ||
                      help.find("\n" + name + ",") != std::string::npos;
        EXPECT_TRUE(helped) << name << " is not in the help";
        const size_t start = page.find("\n### " + name + "\n"), end = page.find("\n##", start + 1);
        ASSERT_NE(start, std::string::npos) << name << " has no section in docs/scenes.md";
        const std::string section = page.substr(start, end - start);
        EXPECT_NE(section.find(call["description"].get<std::string>()), std::string::npos) << name;
        size_t rows = 0;
        for (const std::string& line : Lines(section)) rows += line.rfind("| `", 0) == 0;
        EXPECT_EQ(rows, call["properties"].size()) << name;
        for (const auto& [argument, value] : call["properties"].items()) {
            const size_t row = section.find("\n| `" + argument + "` | ");
            ASSERT_NE(row, std::string::npos) << name << "." << argument;
            const std::string line = section.substr(row + 1, section.find('\n', row + 1) - row - 1);
            const json required = call.value("required", json::array());
            bool needed = std::find(required.begin(), required.end(), argument) != required.end();
            EXPECT_EQ(line.find("| needed |") != std::string::npos, needed) << line;
            if (value.contains("enum"))
                for (const json& word : value["enum"])
                    EXPECT_NE(line.find("`" + word.get<std::string>() + "`"), std::string::npos) << line;
        }
    }
}

TEST(SceneSchema, ExamplesOfThePage_AreScenes) {
    const std::vector<std::string> lines = Lines(Source("docs/scenes.md"));
    int scenes = 0;
    for (size_t i = 0; i < lines.size(); ++i) {
        if (lines[i] != "```json") continue;
        std::string block;
        for (++i; lines[i] != "```"; ++i) block += lines[i] + "\n";
        if (block.find("\"calls\"") == std::string::npos) continue;
        ++scenes;
        EXPECT_EQ(Check(block).status, kOk) << block;
    }
    EXPECT_GE(scenes, 1);
}

}  // namespace
