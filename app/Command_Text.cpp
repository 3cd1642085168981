// zr text: what the exported commands over fonts give for a text.
#include <cstring>

#include "app/Commands.h"
#include "app/Files.h"
#include "app/Interpreter.h"
#include "app/Json.h"
#include "app/Messages.h"
#include "app/Output.h"
#include "app/SceneOutput.h"
#include "app/Source.h"
#include "core/ZR_API_TextArray.h"
#include "graphics/ZR_API_Font.h"
#include "platform/SharedObject.h"
#include "plugin/ZR_API_Bridge.h"
#include "plugin/ZR_API_Plugin.h"

namespace zrtool {

namespace {

constexpr size_t kLargestText = 4 << 20;                       // bytes
constexpr long kLargestSize = 32767, kLargestWidth = 1000000;  // points

struct Asked {
    Text text, font;
    int size = 12, style = 0;
    int width = 0;  // points
};

// The parameters of one call, as a host lays them out.
class Parameters {
  public:
    Parameters& add(Text& text) {
        strings_[count_] = *text.get()->GetUnistringPtr();
        return at(&strings_[count_]);
    }
    Parameters& add(int& number) { return at(&number); }
    Parameters& add(double& number) { return at(&number); }
    Parameters& add(PA_Variable& variable) { return at(&variable); }
    void call(void (*command)(PluginBlock*), void* result) {
        PluginBlock block = {addresses_, result, nullptr};
        command(&block);
    }

  private:
    Parameters& at(void* address) {
        addresses_[count_++] = address;
        return *this;
    }
    void* addresses_[8] = {};
    PA_Unistring strings_[8] = {};  // borrowed
    size_t count_ = 0;
};

std::u16string TextOf(const std::string& given) {
    std::string bytes = given == "-" ? ReadTextFile(given, kLargestText, "text") : given;
    if (given == "-" && bytes.ends_with('\n')) bytes.pop_back();  // the end of the last line, no line of its own
    return Utf16Of(bytes);
}

int WholePoints(const Arguments& arguments, const char* option, long most, int preset) {
    auto given = arguments.value(option);
    if (!given) return preset;
    long points = PositiveInteger(option, *given);
    if (points <= most) return static_cast<int>(points);
    throw Refusal{std::string("--") + option + " is at most " + std::to_string(most) + ", not " + *given};
}

void NeedDrawing() {
    const ZRSharedObjectState* state = ZRSharedObjectGetState(kZRObjectGraphics);
    if (!state || !state->available)
        throw Refusal{std::string(state ? state->file : "the drawing object") + " is missing; it needs the packages " +
                      (state ? state->packages : "")};
}

// Facts ------------------------------------------------------------------------------------------------------------

struct Measures {
    long rounded = 0;
    double width = 0, measuredWidth = 0, height = 0, ascent = 0, below = 0;
    std::string family;
};

Measures MeasuresOf(Asked& asked) {
    Measures measures;
    double size = asked.size;
    PA_Unistring family;
    memset(&family, 0, sizeof family);
    Parameters()
        .add(asked.text)
        .add(asked.font)
        .add(asked.size)
        .add(asked.style)
        .call(ZR_GetStringWidth4D, &measures.rounded);
    Parameters()
        .add(asked.text)
        .add(asked.font)
        .add(asked.size)
        .add(asked.style)
        .call(ZR_GetStringWidth4DDouble, &measures.width);
    Parameters()
        .add(asked.text)
        .add(asked.font)
        .add(size)
        .add(asked.style)
        .add(measures.measuredWidth)
        .add(measures.height)
        .add(measures.ascent)
        .add(measures.below)
        .call(ZR_GetTextMeasures, nullptr);
    Parameters().add(asked.font).call(ZR_GetFontFamilyName, &family);
    Text name;
    name.get()->AddUnistring(&family);
    measures.family = Utf8Of(*name.get());
    PA_DisposeUnistring(&family);
    return measures;
}

std::vector<std::string> LinesOf(Asked& asked) {
    std::vector<std::string> lines;
    PA_Variable array = PA_CreateVariable(eVK_ArrayText);
    PA_ResizeArray(&array, 0);
    Parameters()
        .add(asked.text)
        .add(array)
        .add(asked.width)
        .add(asked.font)
        .add(asked.size)
        .add(asked.style)
        .call(ZR_Text2Array, nullptr);
    ZR_TextArray texts;
    texts.Create(&array);
    for (long i = 1; i <= texts.count; ++i) lines.push_back(Utf8Of(*texts.GetTextPtr(i)));
    texts.Dispose();
    PA_ClearVariable(&array);
    return lines;
}

// Commands ---------------------------------------------------------------------------------------------------------

void PrintMeasures(const Measures& measures, bool json) {
    const struct {
        const char* key;
        double value;
    } rows[] = {{"width", measures.width},
                {"rounded", static_cast<double>(measures.rounded)},
                {"height", measures.height},
                {"ascent", measures.ascent},
                {"below", measures.below}};
    std::string out = json ? "{" : "";
    for (const auto& row : rows) {
        if (json) out += "\"" + std::string(row.key) + "\":" + ShortestNumber(row.value) + ",";
        else out += std::string(row.key) + std::string(9 - strlen(row.key), ' ') + ShortestNumber(row.value) + "\n";
    }
    if (json) AppendJsonText(out += "\"family\":", std::string_view(measures.family));
    else out += "family   " + measures.family;
    StandardOutput::Write(out + (json ? "}\n" : "\n"));
}

void PrintLines(const std::vector<std::string>& lines, bool json) {
    std::string out = json ? "{\"lines\":[" : "";
    for (const std::string& line : lines) {
        if (json) AppendJsonText(out += &line == lines.data() ? "" : ",\n", std::string_view(line));
        else out += line + "\n";
    }
    StandardOutput::Write(out + (json ? "]}\n" : ""));
}

}  // namespace

int TextFacts(const Arguments& arguments) {
    const std::string& what = arguments.plain()[0];
    bool wrap = what == "wrap";
    if (!wrap && what != "width") throw Refusal{"zr text shows width or wrap, not " + Quoted(what)};
    if (wrap && !arguments.has("width")) throw Refusal{"zr text wrap needs --width N; see zr text --help"};
    if (!wrap && arguments.has("width")) throw Refusal{"--width is for zr text wrap alone"};
    DrawingHost host;  // outlives the texts, which keep strings of it
    Asked asked = {.text = Text(TextOf(arguments.plain()[1])),
                   .font = Text(Utf16Of(arguments.value("font").value_or("Liberation Sans")))};
    asked.size = WholePoints(arguments, "size", kLargestSize, 12);
    asked.width = WholePoints(arguments, "width", kLargestWidth, 0);
    asked.style = (arguments.has("bold") ? kZRBold : 0) | (arguments.has("italic") ? kZRItalic : 0) |
                  (arguments.has("underline") ? kZRUnderline : 0);
    NeedDrawing();
    if (wrap) PrintLines(LinesOf(asked), arguments.has("json"));
    else PrintMeasures(MeasuresOf(asked), arguments.has("json"));
    return kSuccess;
}

}  // namespace zrtool
