// zr picture: facts of pictures, and their conversion.
#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>

#include "app/Commands.h"
#include "app/HostOptions.h"
#include "app/Interpreter.h"
#include "app/Json.h"
#include "app/Messages.h"
#include "app/Output.h"
#include "core/ZR_API_Picture.h"
#include "core/ZR_API_TextArray.h"
#include "graphics/ZR_API_PictureCommands.h"
#include "host/Pictures.h"
#include "platform/NativePicture/NativePicture.h"
#include "plugin/ZR_API_Bridge.h"
#include "plugin/ZR_API_Plugin.h"

namespace zrtool {

static constexpr size_t kLargestPicture = 1 << 30;  // bytes
static constexpr double kLargestDpi = 10000;
static constexpr long kPointsAnInch = 72;

static void SayMissing(std::string_view object, std::string_view packages) {
    Say(std::string(object) + " cannot be opened; it needs the packages " + std::string(packages));
}

// The host and the module, without the interpreter.
class PictureHost {
  public:
    PictureHost() {
        zrhost::Options options;
        options.missingObject = SayMissing;
        host_ = zrhost::Host::Start(std::move(options));
        if (!host_) throw Refusal{"the host does not start: one is active already"};
        ZR_StartupRecord record = host_->startupRecord();
        FourDPackex(-1, &record, nullptr, nullptr);
    }
    ~PictureHost() { FourDPackex(-2, nullptr, nullptr, nullptr); }
    PictureHost(const PictureHost&) = delete;

  private:
    std::unique_ptr<zrhost::Host> host_;
};

// A picture of the library and of the host for the length of a scope.
class LoadedPicture {
  public:
    explicit LoadedPicture(const std::string& path)
        : bytes_(ReadFileBytes(path, "picture", kLargestPicture)),
          host_(PA_CreatePicture(bytes_.data(), static_cast<long>(bytes_.size()))) {
        picture_.Create(static_cast<void**>(host_));
        auto tell = [](void*, const char* object, const char* packages) { SayMissing(object, packages); };
        bool asksHost = picture_.format == ZR_PICT_SVG;  // which tells it itself
        if (known() && !decoded() && !asksHost) ZRNativePictureGetTable()->eachMissing(picture_.format, tell, nullptr);
    }
    ~LoadedPicture() {
        picture_.Dispose();
        PA_DisposePicture(host_);
    }
    LoadedPicture(const LoadedPicture&) = delete;
    ZR_Picture* operator->() { return &picture_; }
    bool known() const { return picture_.format != ZR_PICT_UNKNOWN; }
    bool decoded() const { return picture_.image || picture_.document; }
    size_t size() const { return bytes_.size(); }
    const std::string& bytes() const { return bytes_; }
    std::vector<std::string> types();

  private:
    std::string bytes_;
    PA_Picture host_;
    ZR_Picture picture_;
};

std::vector<std::string> LoadedPicture::types() {
    PA_Picture picture = host_;
    PA_Variable list = PA_CreateVariable(eVK_ArrayText);
    void* parameters[] = {&picture, &list};
    PluginBlock block = {parameters, nullptr, nullptr};
    ZR_GetPictureTypes(&block);
    ZR_TextArray texts;
    texts.Create(&list);
    std::vector<std::string> types;
    for (long i = 1; i <= texts.count; ++i) types.push_back(Utf8Of(*texts.GetTextPtr(i)));
    texts.Dispose();
    PA_ClearVariable(&list);
    return types;
}

// Facts ------------------------------------------------------------------------------------------------------------

static std::string FormatName(ZR_Pictformat format) {
    if (format == ZR_PICT_UNKNOWN) return "unknown";
    return zrhost::PictureKinds()[static_cast<size_t>(format) - 1].name;
}

static std::string Joined(const std::vector<std::string>& texts) {
    std::string joined;
    for (const std::string& text : texts) joined += (joined.empty() ? "" : " ") + text;
    return joined;
}

static std::string SizeShown(long width, long height) { return std::to_string(width) + " x " + std::to_string(height); }

static void AppendFacts(std::string& out, const std::string& path, LoadedPicture& picture) {
    const char* unit = picture->format == ZR_PICT_PDF ? " points" : " pixels";
    out += Shown(path) + ": " + FormatName(picture->format);
    if (picture.decoded()) out += ", " + SizeShown(picture->width, picture->height) + unit;
    else out += picture.known() ? ", cannot be decoded" : "";
    if (picture->dpiX > 0 && picture->dpiY > 0)
        out += ", " + ShortestNumber(static_cast<double>(picture->dpiX)) + " x " +
               ShortestNumber(static_cast<double>(picture->dpiY)) + " dpi, " +
               SizeShown(picture->GetWidthDPI(), picture->GetHeightDPI()) + " points";
    out += ", " + std::to_string(picture.size()) + " bytes, " + Joined(picture.types()) + "\n";
}

static void AppendObject(std::string& out, const std::string& path, LoadedPicture& picture) {
    auto number = [&](const char* name, double value) {
        out += std::string(",\"") + name + "\":" + ShortestNumber(value);
    };
    out += out.size() > 1 ? ",\n{\"file\":" : "{\"file\":";
    AppendJsonText(out, std::string_view(path));
    out += ",\"format\":";
    AppendJsonText(out, std::string_view(FormatName(picture->format)));
    out += std::string(",\"decoded\":") + (picture.decoded() ? "true" : "false");
    number("width", static_cast<double>(picture->width));
    number("height", static_cast<double>(picture->height));
    number("dpiX", static_cast<double>(picture->dpiX));
    number("dpiY", static_cast<double>(picture->dpiY));
    number("widthPoints", static_cast<double>(picture->GetWidthDPI()));
    number("heightPoints", static_cast<double>(picture->GetHeightDPI()));
    number("bytes", static_cast<double>(picture.size()));
    out += ",\"types\":[";
    std::vector<std::string> types = picture.types();
    for (size_t i = 0; i < types.size(); ++i) {
        if (i > 0) out += ',';
        AppendJsonText(out, std::string_view(types[i]));
    }
    out += "]}";
}

static int ShowFacts(const Arguments& arguments) {
    for (const char* option : {"type", "quality", "dpi"})
        if (arguments.has(option)) throw Refusal{std::string("--") + option + " is of zr picture convert"};
    PictureHost host;
    bool json = arguments.has("json"), all = true, readable = true;
    std::string out = json ? "[" : "";
    for (size_t i = 1; i < arguments.plain().size(); ++i) {
        const std::string& path = arguments.plain()[i];
        try {
            LoadedPicture picture(path);
            (json ? AppendObject : AppendFacts)(out, path, picture);
            if (!picture.known() || (!picture.decoded() && picture->format <= ZR_PICT_SVG)) all = false;
        } catch (const Refusal& refusal) {  // the others are told all the same
            Say(refusal.sentence);
            readable = false;
        }
    }
    StandardOutput::Write(out + (json ? "]\n" : ""));
    return !readable ? kWrongUsage : all ? kSuccess : kCodeFailed;
}

// Conversion -------------------------------------------------------------------------------------------------------

// Of the format's name or suffix; throws Refusal for what cannot be written.
static ZR_Pictformat FormatOf(const std::string& name) {
    const zrhost::PictureKind* kind = name.empty() ? nullptr : zrhost::FindPictureKind(name);
    long format = kind ? kind - zrhost::PictureKinds().data() + 1 : 0;
    if (format >= ZR_PICT_JPEG && format <= ZR_PICT_TIFF) return static_cast<ZR_Pictformat>(format);
    throw Refusal{"a picture is written as jpeg, png, bmp, gif or tiff, not as " + Quoted(name)};
}

static ZR_Pictformat TargetFormat(const Arguments& arguments, const std::string& path) {
    if (auto type = arguments.value("type")) return FormatOf(*type);
    size_t dot = path.find_last_of("./");
    if (dot != std::string::npos && path[dot] == '.') return FormatOf(path.substr(dot));
    throw Refusal{"the format cannot be told from " + Quoted(path) + "; give it with --type"};
}

static float Quality(const Arguments& arguments) {
    auto given = arguments.value("quality");
    if (!given) return 1;
    double percent = -1;
    auto [end, problem] = std::from_chars(given->data(), given->data() + given->size(), percent);
    if (problem == std::errc() && end == given->data() + given->size() && percent >= 0 && percent <= 100)
        return static_cast<float>(percent / 100);
    throw Refusal{"--quality needs a number from 0 to 100, not " + Quoted(*given)};
}

static long Resolution(const Arguments& arguments) {  // 0 = not given
    auto given = arguments.value("dpi");
    if (!given) return 0;
    double dpi = PositiveNumber("dpi", *given);
    if (dpi < 1 || dpi > kLargestDpi)
        throw Refusal{"--dpi needs a number from 1 to " + ShortestNumber(kLargestDpi) + ", not " + Quoted(*given)};
    return std::lround(dpi);
}

// Draws a document upright at the resolution; empty = too large, or an object is missing, which is told.
static std::string DrawDocument(LoadedPicture& from, long dpi, ZR_Pictformat format, float quality) {
    const ZRNativePictureTable* table = ZRNativePictureGetTable();
    ZRNativePixels pixels;
    std::string bytes;
    double scale = static_cast<double>(dpi) / kPointsAnInch;
    if (!table->decode(from.bytes().data(), static_cast<long>(from.size()), from->format, scale, &pixels)) {
        auto tell = [](void*, const char* object, const char* packages) { SayMissing(object, packages); };
        table->eachMissing(from->format, tell, nullptr);
        return bytes;
    }
    pixels.dpiX = pixels.dpiY = static_cast<double>(dpi);
    auto take = [](void* info, const void* made, long n) {
        static_cast<std::string*>(info)->assign(static_cast<const char*>(made), static_cast<size_t>(n));
    };
    table->encode(&pixels, format, static_cast<double>(quality), take, &bytes);
    table->release(&pixels);
    return bytes;
}

static std::string EncodeImage(LoadedPicture& from, long dpi, ZR_Pictformat format, float quality) {
    ZR_Picture made;
    made.Create(from.operator->());
    made.format = format;
    made.quality = quality;
    if (dpi > 0) made.dpiX = made.dpiY = static_cast<float>(dpi);
    Block block;
    made.ToBlob(block.get(), /*white*/ false);
    made.Dispose();
    return std::string(block.bytes());
}

static int Convert(const Arguments& arguments) {
    if (arguments.plain().size() != 3) throw Refusal{"zr picture convert needs FILE OUT; see zr picture --help"};
    if (arguments.has("json")) throw Refusal{"--json is of zr picture info"};
    const std::string &path = arguments.plain()[1], &target = arguments.plain()[2];
    ZR_Pictformat format = TargetFormat(arguments, target);
    float quality = Quality(arguments);
    long dpi = Resolution(arguments);
    if (target == "-" && StandardOutput::IsTerminal()) throw Refusal{"a picture is binary, not for a terminal"};
    PictureHost host;
    LoadedPicture picture(path);
    bool draws = picture->document != nullptr;
    std::string bytes = draws ? DrawDocument(picture, dpi ? dpi : kPointsAnInch, format, quality)
                              : EncodeImage(picture, dpi, format, quality);
    if (bytes.empty()) {
        Say(Shown(path) + (!picture.known()     ? " is no picture"
                           : !picture.decoded() ? " cannot be decoded"
                           : draws              ? " cannot be drawn at this resolution"
                                                : " cannot be written in this format"));
        return kCodeFailed;
    }
    WriteFile(target, bytes);
    return kSuccess;
}

int WorkOnPicture(const Arguments& arguments) {
    const std::string& action = arguments.plain()[0];
    if (action == "info") return ShowFacts(arguments);
    if (action == "convert") return Convert(arguments);
    static const char* const kActions[] = {"info", "convert"};
    std::string near = Nearest(action, kActions, 2);
    throw Refusal{"zr picture has no " + Quoted(action) +
                  (near.empty() ? "; it has info and convert" : ", did you mean " + near + "?")};
}

}  // namespace zrtool
