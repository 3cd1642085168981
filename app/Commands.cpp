// The table of commands. Every fact about the command line stands here and nowhere else.
#include "app/Commands.h"

namespace zrtool {

static constexpr OptionRow kLanguage = {"language", 0,      "en|fr", "Language of the commands and keywords (en).",
                                        false,      nullptr};
static constexpr OptionRow kLocale = {
    "locale", 0, "L", "Locale of formats, such as en-US, de-DE or fr-FR (en-US).", false, nullptr};
static constexpr OptionRow kHostVersion = {
    "host-version",
    0,
    "0xHHHH",
    "Version that the host answers, in hexadecimal digits (0x1800). The interpreter behaves as on that version.",
    false,
    nullptr};
static constexpr OptionRow kProject = {
    "project",
    0,
    "DIR",
    "Methods of this folder can be called as well. Of a project folder, the methods in Project/Sources/Methods.",
    false,
    nullptr};

static constexpr OptionRow kRunOptions[] = {
    {"method", 'm', "NAME", "Start this method of the folder instead of the one in FILE.", false, nullptr},
    {"set", 's', "NAME=VALUE",
     "Declare a variable before the run: $x is a local of the started method ($1 its first parameter), x a process "
     "variable, <>x an interprocess one. What reads as a number is a number, true and false are Booleans, yyyy-mm-dd "
     "is a date, anything else a text; \"VALUE\" in double quotes is a text in any case. May be repeated.",
     true, nullptr},
    {"json", 0, nullptr, "Print one JSON object with the output, the error and the variables, and nothing else.", false,
     nullptr},
    kProject,
    {"allow", 0, "COMMANDS",
     "Only these commands may run. Names or numbers, separated by commas; keywords are always allowed. May be "
     "repeated.",
     true, nullptr},
    {"deny", 0, "COMMANDS", "These commands may not run, the others may. May be repeated.", true, nullptr},
    {"max-seconds", 0, "N", "End the run with error -62 after N seconds.", false, nullptr},
    {"max-depth", 0, "N", "End the run with error -61 when more than N methods are active at once.", false, nullptr},
    {"preemptive", 0, nullptr, "Run as a preemptive process: commands that are not thread-safe are refused.", false,
     nullptr},
    kLanguage,
    kLocale,
    kHostVersion,
    {"db", 0, "FILE", nullptr, false, "is not available yet: the database comes with a later version"},
};

static constexpr OptionRow kTokenizeOptions[] = {
    {"output", 'o', "FILE", "Write the token blob to this file, - for standard output. zr run runs it.", false,
     nullptr},
    {"list", 'l', nullptr,
     "Print the tokens, one a line: position, line, number and name of the kind, text or value, with tabs between.",
     false, nullptr},
    {"json", 0, nullptr, "Print the tokens as a JSON list.", false, nullptr},
    kProject,
    kLanguage,
};

static constexpr OptionRow kCommandsOptions[] = {
    {"supported", 0, nullptr, "Only the commands that the interpreter can run.", false, nullptr},
    {"json", 0, nullptr, "Print a JSON list of objects with id, name, supported and threadSafe.", false, nullptr},
    kLanguage,
    kHostVersion,
};

static constexpr OptionRow kDrawOptions[] = {
    {"output", 'o', "FILE",
     "Write to this file; .svg, .png or .pdf says what it becomes. FOLDER/ takes a file a scene, named like it, - is "
     "standard output; both want --format. Several scenes into one .pdf become its pages.",
     false, nullptr},
    {"format", 'f', "svg|png|pdf", "What is written, whatever the output is called.", false, nullptr},
    {"dpi", 0, "N", "Pixels an inch of a PNG, up to 2400 (72: a point is a pixel). The file tells it.", false, nullptr},
    {"plain", 0, nullptr, "Write SVG with what the primitives of the library write and nothing else.", false, nullptr},
    {"check", 0, nullptr, "Read the scenes, tell what is wrong, draw nothing.", false, nullptr},
    {"json", 0, nullptr, "Print one JSON object with what was written and what is wrong, and nothing else.", false,
     nullptr},
    {"schema", 0, nullptr, "Print the JSON Schema of scenes, for editors and for those who write them by program.",
     false, nullptr},
};

static constexpr OptionRow kTextOptions[] = {
    {"font", 'n', "NAME", "Family, full or PostScript name of the font (Liberation Sans).", false, nullptr},
    {"size", 's', "N", "Size in points (12).", false, nullptr},
    {"bold", 'b', nullptr, "Bold.", false, nullptr},
    {"italic", 'i', nullptr, "Italic.", false, nullptr},
    {"underline", 'u', nullptr, "Underlined.", false, nullptr},
    {"width", 'w', "N", "Whole points that zr text wrap breaks lines at.", false, nullptr},
    {"json", 0, nullptr, "Print one JSON object and nothing else.", false, nullptr},
};

static constexpr OptionRow kPictureOptions[] = {
    {"json", 0, nullptr, "info: print a JSON list with one object a file, and nothing else.", false, nullptr},
    {"type", 't', "jpeg|png|bmp|gif|tiff", "convert: the format to write, instead of that of OUT's name.", false,
     nullptr},
    {"quality", 'q', "N", "convert: quality of a JPEG, 0 to 100 (100).", false, nullptr},
    {"dpi", 0, "N",
     "convert: resolution to write. PDF and SVG pictures are drawn at it (72); the pixels of others stay.", false,
     nullptr},
};

static constexpr CommandRow kCommands[] = {
    {"run", "FILE", 1, 1, "Run a method.",
     "Runs the method in FILE, a text in UTF-8, or - for standard input. Every other *.4dm file in its folder is a "
     "method that can be called by its file name; it is read when it is first called. FILE may also be a token blob "
     "that zr tokenize wrote.\n\n"
     "ALERT prints a line to standard output. CONFIRM and Request ask on a terminal and take their default otherwise. "
     "An error ends the run and is told on standard error: file, line, number and words, the source line, and the "
     "chain of calls, innermost first.\n\n"
     "Files of a 4D project run as they are: a first line //%attributes, and the suffixes :C123, :K1:2 and :P123 "
     "behind names are understood.\n\n"
     "  zr run examples/tour.4dm\n"
     "  zr run sum.4dm --set '$1=5' --json\n"
     "  echo 'ALERT(Uppercase(\"hello\"))' | zr run -",
     kRunOptions, ".4dm .tok", RunProgram},
    {"tokenize", "FILE", 1, 1, "Turn a method into tokens.",
     "Tokenises the method in FILE, or reads a token blob, and writes the tokens as a blob or lists them.\n\n"
     "  zr tokenize sum.4dm -o sum.tok\n"
     "  zr tokenize sum.4dm --list",
     kTokenizeOptions, ".4dm .tok", TokenizeFile},
    {"commands", "", 0, 0, "List the commands of the language.",
     "Lists every command that the host names, the keywords of the language and the private commands of the "
     "interpreter: number, name, whether the interpreter can run it, and whether it may run on a preemptive process.",
     kCommandsOptions, nullptr, ListCommands},
    {"draw", "SCENE...", 0, 1 << 20, "Draw scenes as SVG, PNG or PDF.",
     "Draws scenes. A scene is JSON, a size and a list of calls, each with the arguments of one primitive of the "
     "drawing library; - is standard input. Coordinates are points, to the right and down from the top left "
     "corner.\n\n"
     "  {\"width\":200, \"height\":60, \"calls\":[\n"
     "    {\"rect\":{\"box\":[10,10,180,40], \"radius\":8, \"fill\":\"#2F6DB5\"}},\n"
     "    {\"textLayout\":{\"text\":\"Hello\", \"box\":[10,10,180,40], \"align\":\"center\",\n"
     "      \"vertical\":\"center\", \"fill\":\"White\"}}\n"
     "  ]}\n\n"
     "The calls: rect, rects, oval, line, lines, arc, path, text, alignedText, textLayout, styledText, picture, "
     "region, gradient, shadow, shading, clip, clear, layer, transform, properties. What is wrong in a scene is told "
     "on standard error with the path of the value, and then nothing is written.\n\n"
     "  zr draw chart.json -o chart.svg\n"
     "  zr draw chart.json -o chart.png --dpi 144\n"
     "  zr draw page1.json page2.json -o report.pdf\n"
     "  zr draw examples/drawing/*.json -o pictures/ --format png",
     kDrawOptions, ".json", DrawScenes},
    {"text", "width|wrap TEXT", 2, 2, "Measure a text, or break it into lines.",
     "Shows what the exported commands of the library give for a text in a font; TEXT may be - for standard input.\n\n"
     "zr text width prints the width in points, rounded and exact, height, ascent and what is left below the base "
     "line, and the family that the name of the font leads to. zr text wrap prints the lines that the text breaks "
     "into at --width.\n\n"
     "  zr text width 'Hello, world' --font 'Liberation Serif' --size 18\n"
     "  zr text wrap - --width 200 < letter.txt",
     kTextOptions, "width wrap", TextFacts},
    {"picture", "info|convert FILE...", 2, 1000, "Look at pictures and convert them.",
     "zr picture info FILE... tells format, size in pixels (of PDF in points), resolution, the size in points that "
     "follows from it, the types that 4D code sees, and how many bytes a file has.\n\n"
     "zr picture convert FILE OUT writes the picture in the format of OUT's name: JPEG, PNG, BMP, GIF or TIFF. JPEG, "
     "PNG, BMP, GIF, TIFF, PDF (its first page) and SVG are read. FILE and OUT may be - for standard input and "
     "output; OUT then needs --type.\n\n"
     "A file that is no picture, or a damaged one, ends with status 1.\n\n"
     "  zr picture info photo.jpg --json\n"
     "  zr picture convert photo.png photo.jpg --quality 80\n"
     "  zr picture convert page.pdf page.png --dpi 150",
     kPictureOptions, "info convert .jpg .jpeg .png .bmp .gif .tif .tiff .pdf .svg", WorkOnPicture},
    {"help", "[COMMAND]", 0, 1, "Explain a command.", "Explains a command, or lists them all.", {}, "help", ShowHelp},
    {"completion",
     "bash",
     1,
     1,
     "Print completion for a shell.",
     "Prints a script that completes commands, options and files.\n\n"
     "  source <(zr completion bash)",
     {},
     "bash",
     ShowCompletion},
    {"manual",
     "",
     0,
     0,
     "Print the manual page.",
     "Prints the manual page in the form that man reads.\n\n"
     "  zr manual | man -l -",
     {},
     nullptr,
     ShowManual},
};

std::span<const CommandRow> Commands() { return kCommands; }

}  // namespace zrtool
