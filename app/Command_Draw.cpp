// zr draw: scenes as SVG, PNG or PDF.
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <climits>
#include <set>

#include "app/Commands.h"
#include "app/Files.h"
#include "app/Json.h"
#include "app/Messages.h"
#include "app/Output.h"
#include "app/Progress.h"
#include "app/SceneOutput.h"

namespace zrtool {

namespace {

constexpr size_t kLargestScene = 64U << 20;  // bytes
constexpr size_t kMostShown = 20;            // problems of a scene that are printed

enum class Format { None, Svg, Png, Pdf };
constexpr struct {
    Format format;
    const char* name;
} kFormats[] = {{Format::Svg, "svg"}, {Format::Png, "png"}, {Format::Pdf, "pdf"}};

const char* NameOf(Format format) {
    for (const auto& row : kFormats)
        if (row.format == format) return row.name;
    return "";
}

Format FormatNamed(std::string_view name) {
    for (const auto& row : kFormats)
        if (name == row.name) return row.format;
    return Format::None;
}

std::string Lower(std::string text) {
    for (char& c : text)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + 32);
    return text;
}

// What is wanted ---------------------------------------------------------------------------------------------------

struct Order {
    std::vector<std::string> files;
    std::string output;  // empty with check
    bool intoFolder = false, check = false, json = false, plain = false;
    Format format = Format::None;
    long dpi = 72;
};

std::string FileNameOf(const std::string& path) {
    size_t slash = path.rfind('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

Format FormatOfSuffix(const std::string& path) {
    std::string name = FileNameOf(path);
    size_t dot = name.rfind('.');
    return dot == std::string::npos ? Format::None : FormatNamed(Lower(name.substr(dot + 1)));
}

bool IsFolder(const std::string& path) {
    struct stat facts;
    return path.ends_with('/') || (path != "-" && stat(path.c_str(), &facts) == 0 && S_ISDIR(facts.st_mode));
}

Format FormatOf(const Arguments& arguments, const Order& order) {
    auto asked = arguments.value("format");
    if (asked) {
        Format format = FormatNamed(Lower(*asked));
        if (format == Format::None) throw Refusal{"--format is svg, png or pdf, not " + Quoted(*asked)};
        return format;
    }
    Format format = order.intoFolder ? Format::None : FormatOfSuffix(order.output);
    if (format != Format::None) return format;
    if (order.intoFolder || order.output == "-") throw Refusal{"--format svg, png or pdf is needed with this output"};
    throw Refusal{"the output " + Quoted(order.output) + " ends in none of .svg, .png and .pdf; see --format"};
}

long ResolutionOf(const std::string& value) {
    long dpi = PositiveInteger("dpi", value);
    if (dpi <= kHighestResolution) return dpi;
    throw Refusal{"--dpi is at most " + std::to_string(kHighestResolution) + ", not " + value};
}

Order OrderOf(const Arguments& arguments) {
    Order order;
    order.files = arguments.plain();
    order.check = arguments.has("check");
    order.json = arguments.has("json");
    order.plain = arguments.has("plain");
    if (order.files.empty()) throw Refusal{"zr draw needs SCENE; see zr draw --help"};
    if (std::count(order.files.begin(), order.files.end(), "-") > 1)
        throw Refusal{"standard input can be one of the scenes, not several"};
    if (auto dpi = arguments.value("dpi")) order.dpi = ResolutionOf(*dpi);
    auto output = arguments.value("output");
    if (order.check) {
        if (output) throw Refusal{"--check draws nothing; --output is not wanted with it"};
        return order;
    }
    if (!output) throw Refusal{"zr draw needs -o FILE with .svg, .png or .pdf, or -o FOLDER/; see zr draw --help"};
    order.output = *output;
    order.intoFolder = IsFolder(order.output);
    order.format = FormatOf(arguments, order);
    if (order.json && order.output == "-") throw Refusal{"--json and the drawing cannot both go to standard output"};
    if (order.files.size() > 1 && !order.intoFolder && order.format != Format::Pdf)
        throw Refusal{std::to_string(order.files.size()) + " scenes need a folder, -o FOLDER/, or a PDF of " +
                      std::to_string(order.files.size()) + " pages, -o FILE.pdf"};
    if (order.plain && order.format != Format::Svg) throw Refusal{"--plain is for SVG alone"};
    if (arguments.has("dpi") && order.format != Format::Png) throw Refusal{"--dpi is for PNG alone"};
    return order;
}

// Where the drawing of a scene goes. The names of files in a folder are those of the scenes.
std::string OutputOf(const Order& order, const std::string& file) {
    if (!order.intoFolder) return order.output;
    std::string name = file == "-" ? "stdin" : FileNameOf(file);
    if (Lower(name).ends_with(".json") && name.size() > 5) name.resize(name.size() - 5);
    return order.output + (order.output.ends_with('/') ? "" : "/") + name + "." + NameOf(order.format);
}

void RefuseSameOutput(const Order& order) {
    std::set<std::string> seen;
    if (!order.intoFolder) return;
    for (const std::string& file : order.files) {
        std::string output = OutputOf(order, file);
        if (!seen.insert(output).second) throw Refusal{"two scenes would both be written to " + Shown(output)};
    }
}

void MakeFolder(const Order& order) {
    if (!order.intoFolder || mkdir(order.output.c_str(), 0777) == 0 || errno == EEXIST) return;
    throw Refusal{"cannot make the folder " + Shown(order.output) + ": " + ReasonOf(errno)};
}

// Reading ----------------------------------------------------------------------------------------------------------

struct ReadScenes {
    std::vector<Scene> scenes;
    std::vector<std::pair<SceneSource, std::vector<SceneProblem>>> failed;
};

SceneSource SourceOf(const std::string& file) {
    SceneSource source;
    source.name = file == "-" ? "<stdin>" : Shown(file);
    source.folder = file == "-" ? "" : file.substr(0, file.rfind('/') + 1);  // npos + 1 = 0
    source.bytes = ReadTextFile(file, kLargestScene, "scene");
    return source;
}

ReadScenes ReadAll(const Order& order) {
    ReadScenes all;
    for (const std::string& file : order.files) {
        SceneSource source = SourceOf(file);
        std::vector<SceneProblem> problems;
        Scene scene = ReadScene(source, &problems);
        if (problems.empty() && order.format == Format::Png && !FitsBitmap(scene, order.dpi))
            problems.push_back({"", "a bitmap of " + std::to_string(scene.width) + " x " +
                                        std::to_string(scene.height) + " points at " + std::to_string(order.dpi) +
                                        " dpi has sides of no pixel, over 32767 pixels or over 2^27 pixels in all"});
        source.bytes.clear();
        if (problems.empty()) all.scenes.push_back(std::move(scene));
        else all.failed.emplace_back(std::move(source), std::move(problems));
    }
    return all;
}

void PrintProblems(const ReadScenes& all) {
    std::string lines;
    for (const auto& [source, problems] : all.failed) {
        for (size_t i = 0; i < std::min(problems.size(), kMostShown); ++i)
            lines += ProblemShown(source, problems[i]) + "\n";
        if (problems.size() > kMostShown)
            lines += source.name + ": and " + std::to_string(problems.size() - kMostShown) + " more\n";
    }
    Print(lines);
}

// Drawing ----------------------------------------------------------------------------------------------------------

struct Written {
    std::string file, scene;
    Format format;
    long width = 0, height = 0, page = 1;
    size_t bytes = 0;
    long pixelWidth = 0, pixelHeight = 0;
};

void SayLeftOut(const Scene& scene, const std::vector<std::string>& leftOut, const char* format) {
    for (const std::string& path : leftOut)
        Say(scene.name + ": " + path + " has no form in " + format + " and is left out");
}

std::vector<Written> DrawPages(const Order& order, const std::vector<Scene>& scenes, Progress* progress) {
    std::vector<Written> written;
    ScenePdf pdf;
    for (const Scene& scene : scenes) {
        progress->step(scene.name);
        std::vector<std::string> leftOut;
        pdf.addPage(scene, &leftOut);
        written.push_back(
            {order.output, scene.name, Format::Pdf, scene.width, scene.height, static_cast<long>(written.size()) + 1});
    }
    std::string bytes = pdf.finish();
    WriteFile(order.output, bytes);
    for (Written& page : written) page.bytes = bytes.size();
    return written;
}

SceneDrawing Draw(const Order& order, const Scene& scene) {
    if (order.format == Format::Svg) return DrawSvg(scene, order.plain);
    if (order.format == Format::Png) return DrawPng(scene, order.dpi);
    SceneDrawing drawing;
    ScenePdf pdf;
    pdf.addPage(scene, &drawing.leftOut);
    drawing.bytes = pdf.finish();
    return drawing;
}

std::vector<Written> DrawFiles(const Order& order, const std::vector<Scene>& scenes, Progress* progress) {
    std::vector<Written> written;
    for (size_t i = 0; i < scenes.size(); ++i) {
        const Scene& scene = scenes[i];
        progress->step(scene.name);
        SceneDrawing drawing = Draw(order, scene);
        std::string output = OutputOf(order, order.files[i]);
        WriteFile(output, drawing.bytes);
        SayLeftOut(scene, drawing.leftOut, "SVG");
        written.push_back({output, scene.name, order.format, scene.width, scene.height, 1, drawing.bytes.size(),
                           drawing.pixelWidth, drawing.pixelHeight});
    }
    return written;
}

// One object: {"written":[...],"errors":[...]}
void PrintJson(const std::vector<Written>& written, const ReadScenes& all) {
    std::string out = "{\"written\":[";
    auto text = [&out](const char* key, std::string_view value) {
        out += std::string("\"") + key + "\":";
        AppendJsonText(out, value);
        out += ',';
    };
    for (const Written& file : written) {
        out += &file == written.data() ? "{" : ",\n{";
        text("file", file.file);
        text("scene", file.scene);
        text("format", NameOf(file.format));
        if (file.format == Format::Pdf) out += "\"page\":" + std::to_string(file.page) + ",";
        if (file.format == Format::Png)
            out += "\"pixelWidth\":" + std::to_string(file.pixelWidth) +
                   ",\"pixelHeight\":" + std::to_string(file.pixelHeight) + ",";
        out += "\"width\":" + std::to_string(file.width) + ",\"height\":" + std::to_string(file.height) +
               ",\"bytes\":" + std::to_string(file.bytes) + "}";
    }
    out += "],\n\"errors\":[";
    bool first = true;
    for (const auto& [source, problems] : all.failed) {
        for (const SceneProblem& problem : problems) {
            out += first ? "{" : ",\n{";
            first = false;
            text("scene", source.name);
            text("path", problem.path);
            text("text", problem.text);
            out.back() = '}';
        }
    }
    StandardOutput::Write(out + "]}\n");
}

}  // namespace

int DrawScenes(const Arguments& arguments) {
    if (arguments.has("schema")) {
        StandardOutput::Write(SceneSchema());
        return kSuccess;
    }
    Order order = OrderOf(arguments);
    RefuseSameOutput(order);
    DrawingHost host;
    ReadScenes all = ReadAll(order);
    std::vector<Written> written;
    if (all.failed.empty() && !order.check) {
        MakeFolder(order);
        Progress progress("Drawing", all.scenes.size());
        bool pages = order.format == Format::Pdf && !order.intoFolder;
        written = (pages ? DrawPages : DrawFiles)(order, all.scenes, &progress);
    }
    if (order.json) PrintJson(written, all);
    else PrintProblems(all);
    return all.failed.empty() ? kSuccess : kCodeFailed;
}

}  // namespace zrtool
