#include "app/Scene.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <map>
#include <nlohmann/json.hpp>
#include <numbers>
#include <set>

#include "app/Interpreter.h"
#include "app/Json.h"
#include "app/Messages.h"
#include "app/Source.h"
#include "graphics/ZR_API_Font.h"
#include "graphics/ZR_API_MultiStyleText.h"
#include "graphics/ZR_API_Path.h"

namespace zrtool {

using Json = nlohmann::json;

static constexpr size_t kLargestPicture = 256U << 20;  // bytes
static constexpr size_t kMostProblems = 100;           // that are gathered
static constexpr const char* kColourWanted = "a colour is expected, such as \"#FF0000\" or \"Red\"";

// Values -----------------------------------------------------------------------------------------------------------

ScenePicture::ScenePicture(std::string_view bytes) {
    Block block;
    block.get()->AddCharBuffer(bytes.data(), static_cast<long>(bytes.size()));
    picture_.Create(block.get());
}

static size_t IndexOf(const PrimitiveRow& primitive, std::string_view argument) {
    for (size_t i = 0; i < primitive.arguments.size(); ++i)
        if (argument == primitive.arguments[i].name) return i;
    throw std::logic_error("the table of primitives has no " + std::string(argument));
}

const SceneValue& SceneCall::value(std::string_view argument) const { return values[IndexOf(*primitive, argument)]; }

bool SceneCall::has(std::string_view argument) const {
    return !std::holds_alternative<std::monostate>(value(argument));
}

// Colours ----------------------------------------------------------------------------------------------------------

static int DigitOf(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1;
}

static unsigned short ChannelOfByte(int byte) { return static_cast<unsigned short>(byte * 257); }

// "#RGB" or "#RRGGBB"
static std::optional<ZR_RGBColor> ColourOfDigits(std::string_view text) {
    size_t each = (text.size() - 1) / 3;
    if (text.size() != 4 && text.size() != 7) return std::nullopt;
    int bytes[3];
    for (size_t i = 0; i < 3; ++i) {
        int first = DigitOf(text[1 + i * each]), second = DigitOf(text[i * each + each]);
        if (first < 0 || second < 0) return std::nullopt;
        bytes[i] = first * 16 + second;
    }
    return ZR_RGBColor{ChannelOfByte(bytes[0]), ChannelOfByte(bytes[1]), ChannelOfByte(bytes[2]), 1};
}

template <class Number>
static bool TakeNumber(std::string_view* text, Number least, Number most, Number* out) {
    auto [end, problem] = std::from_chars(text->data(), text->data() + text->size(), *out);
    if (problem != std::errc() || !(*out >= least && *out <= most)) return false;
    text->remove_prefix(static_cast<size_t>(end - text->data()));
    return true;
}

static bool Take(std::string_view* text, char c) {
    if (!text->starts_with(c)) return false;
    text->remove_prefix(1);
    return true;
}

// "rgb16(r,g,b)" or "rgb16(r,g,b,alpha)"
static std::optional<ZR_RGBColor> ColourOfChannels(std::string_view text) {
    long channels[3];
    double alpha = 1;
    text.remove_prefix(std::string_view("rgb16(").size());
    for (int i = 0; i < 3; ++i)
        if ((i > 0 && !Take(&text, ',')) || !TakeNumber(&text, 0L, 65535L, &channels[i])) return std::nullopt;
    if (Take(&text, ',') && !TakeNumber(&text, 0.0, 1.0, &alpha)) return std::nullopt;
    if (text != ")") return std::nullopt;
    return ZR_RGBColor{static_cast<unsigned short>(channels[0]), static_cast<unsigned short>(channels[1]),
                       static_cast<unsigned short>(channels[2]), static_cast<float>(alpha)};
}

// A name of the drawing library; its channels end in zeros there, here White is as white as "#FFFFFF".
static std::optional<ZR_RGBColor> ColourOfName(std::string_view name) {
    Text text(Utf16Of(name));
    ZR_RGBColor colour;
    colour.SetColorText(text.get());
    bool isBlack = name.size() == 5 && (name[0] | 32) == 'b' && (name[1] | 32) == 'l' && (name[2] | 32) == 'a' &&
                   (name[3] | 32) == 'c' && (name[4] | 32) == 'k';
    if (!isBlack && !colour.red && !colour.green && !colour.blue) return std::nullopt;
    return ZR_RGBColor{ChannelOfByte(colour.red >> 8), ChannelOfByte(colour.green >> 8),
                       ChannelOfByte(colour.blue >> 8), 1};
}

// Files ------------------------------------------------------------------------------------------------------------

// The bytes of a regular file; the words of what went wrong otherwise.
static std::string ReadPictureFile(const std::string& path, std::string* bytes) {
    int file = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (file < 0) return "cannot read " + Shown(path) + ": " + ReasonOf(errno);
    struct stat facts;
    std::string problem;
    if (fstat(file, &facts) != 0 || !S_ISREG(facts.st_mode)) problem = Shown(path) + " is no file";
    else if (static_cast<size_t>(facts.st_size) > kLargestPicture)
        problem = Shown(path) + " is larger than " + std::to_string(kLargestPicture >> 20) + " MiB";
    else bytes->resize(static_cast<size_t>(facts.st_size));
    size_t done = 0;
    while (problem.empty() && done < bytes->size()) {
        ssize_t count = read(file, bytes->data() + done, bytes->size() - done);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) problem = "cannot read " + Shown(path) + ": " + ReasonOf(errno);
        if (count <= 0) break;
        done += static_cast<size_t>(count);
    }
    bytes->resize(done);
    close(file);
    return problem;
}

static int SextetOf(char c) {
    if (c >= 'A' && c <= 'Z') return c - 'A';
    if (c >= 'a' && c <= 'z') return c - 'a' + 26;
    if (c >= '0' && c <= '9') return c - '0' + 52;
    return c == '+' || c == '-' ? 62 : c == '/' || c == '_' ? 63 : -1;
}

// Blanks and line ends are passed over; false = another character that does not belong there.
static bool DecodeBase64(std::string_view text, std::string* bytes) {
    unsigned gathered = 0, bits = 0;
    for (char c : text) {
        if (c == ' ' || c == '\n' || c == '\r' || c == '\t' || c == '=') continue;
        int sextet = SextetOf(c);
        if (sextet < 0) return false;
        gathered = (gathered << 6 | static_cast<unsigned>(sextet)) & 0xFFFF;
        bits += 6;
        if (bits < 8) continue;
        bits -= 8;
        *bytes += static_cast<char>(gathered >> bits & 0xFF);
    }
    return true;
}

// Matrices ---------------------------------------------------------------------------------------------------------

struct Affine {
    double a = 1, b = 0, c = 0, d = 1, tx = 0, ty = 0;
    void then(const Affine& next) {
        *this = {a * next.a + b * next.c,
                 a * next.b + b * next.d,
                 c * next.a + d * next.c,
                 c * next.b + d * next.d,
                 tx * next.a + ty * next.c + next.tx,
                 tx * next.b + ty * next.d + next.ty};
    }
};

static Affine Rotation(double degrees, double x, double y) {
    double radians = degrees * std::numbers::pi / 180, k = std::cos(radians), s = std::sin(radians);
    if (std::fmod(degrees, 90) == 0) k = std::round(k), s = std::round(s);
    return {k, s, -s, k, x - k * x + s * y, y - s * x - k * y};
}

// Reader -----------------------------------------------------------------------------------------------------------

namespace {

class Reader {
  public:
    Reader(const SceneSource& source, std::vector<SceneProblem>* problems) : source_(source), problems_(problems) {}
    Scene scene(const Json& json);

  private:
    bool problem(const std::string& path, std::string text);
    bool isObject(const Json& json, const std::string& path, const char* wanted);
    bool isList(const Json& json, const std::string& path, const char* wanted, size_t least, size_t most);
    bool onlyKeys(const Json& json, const std::string& path, std::vector<const char*> keys);

    bool number(const Json& json, const std::string& path, double least, double most, double* out);
    bool whole(const Json& json, const std::string& path, double least, double most, long* out);
    bool flag(const Json& json, const std::string& path, bool* out);
    bool text(const Json& json, const std::string& path, std::u16string* out);
    bool word(const Json& json, const std::string& path, const ArgumentRow& row, long* out);
    bool coordinates(const Json& json, const std::string& path, const char* wanted, size_t count, double* out);
    bool point(const Json& json, const std::string& path, ZR_Point* out);
    bool box(const Json& json, const std::string& path, ZR_Rect* out);
    bool colour(const Json& json, const std::string& path, ZR_RGBColor* out);
    bool colourOfText(const std::string& text, const std::string& path, ZR_RGBColor* out);
    bool font(const Json& json, const std::string& path, SceneFont* out);
    bool gradient(const Json& json, const std::string& path, SceneGradient* out);
    bool gradientShape(const Json& json, const std::string& path, SceneGradient* out);
    bool stops(const Json& json, const std::string& path, SceneGradient* out);
    bool dash(const Json& json, const std::string& path, SceneDash* out);
    bool lengths(const Json& json, const std::string& path, SceneDash* out);
    bool matrix(const Json& json, const std::string& path, ZR_Matrix* out);
    bool matrixStep(const Json& json, const std::string& path, Affine* out);
    bool properties(const Json& json, const std::string& path, SceneProperties* out);
    bool pathData(const Json& json, const std::string& path, std::u16string* out);
    bool region(const Json& json, const std::string& path, std::vector<ZR_RegionRecord>* out);
    bool picture(const Json& json, const std::string& path, std::shared_ptr<ScenePicture>* out);
    bool segments(const Json& json, const std::string& path, SceneSegments* out);
    template <class Item>
    bool list(const Json& json, const std::string& path, const char* wanted, std::vector<Item>* out,
              bool (Reader::*read)(const Json&, const std::string&, Item*));
    template <class Item>
    bool named(const Json& json, const std::string& path, const char* wanted, const std::map<std::string, Item>& known,
               Item* out, bool (Reader::*read)(const Json&, const std::string&, Item*));
    template <class Item>
    void definitions(const Json& define, const char* key, std::map<std::string, Item>* out,
                     bool (Reader::*read)(const Json&, const std::string&, Item*));

    SceneValue value(const Json& json, const std::string& path, const ArgumentRow& row);
    bool calls(const Json& json, const std::string& path, std::vector<SceneCall>* out);
    bool call(const Json& json, const std::string& path, SceneCall* out);
    void sizes(const SceneCall& call);
    void spans(const SceneCall& call);
    void define(const Json& json);

    const SceneSource& source_;
    std::vector<SceneProblem>* problems_;
    std::map<std::string, ZR_RGBColor> colours_;
    std::map<std::string, SceneFont> fonts_;
    std::map<std::string, SceneGradient> gradients_;
    std::map<std::string, SceneDash> dashes_;
    std::map<std::string, std::shared_ptr<ScenePicture>> pictures_;  // by source, so that each is read once
    long depth_ = 0;                                                 // layers around what is read
};

std::string Member(const std::string& path, std::string_view key) {
    return path.empty() ? Shown(key) : path + "." + Shown(key);
}

std::string Element(const std::string& path, size_t index) { return path + "[" + std::to_string(index) + "]"; }

std::string Near(std::string_view word, const std::vector<const char*>& candidates) {
    return Nearest(word, candidates.data(), candidates.size());
}

template <class Item>
std::vector<const char*> KeysOf(const std::map<std::string, Item>& known) {
    std::vector<const char*> keys;
    for (const auto& [key, item] : known) keys.push_back(key.c_str());
    return keys;
}

bool Reader::problem(const std::string& path, std::string text) {
    if (problems_->size() < kMostProblems) problems_->push_back({path, std::move(text)});
    return false;
}

bool Reader::isObject(const Json& json, const std::string& path, const char* wanted) {
    return json.is_object() || problem(path, std::string(wanted) + " is expected");
}

bool Reader::isList(const Json& json, const std::string& path, const char* wanted, size_t least, size_t most) {
    bool fits = json.is_array() && json.size() >= least && json.size() <= most;
    return fits || problem(path, std::string(wanted) + " is expected");
}

bool Reader::onlyKeys(const Json& json, const std::string& path, std::vector<const char*> keys) {
    bool good = true;
    for (const auto& [key, item] : json.items()) {
        if (std::find(keys.begin(), keys.end(), key) != keys.end()) continue;
        std::string near = Near(key, keys);
        good = problem(Member(path, key), near.empty() ? "unknown key" : "unknown key, did you mean " + near + "?");
    }
    return good;
}

// Plain values

std::string NumberShown(double number) {
    bool isWhole = number == std::floor(number) && std::fabs(number) < 1e15;
    return isWhole ? std::to_string(static_cast<long>(number)) : ShortestNumber(number);
}

std::string RangeShown(const char* what, double least, double most) {
    return std::string(what) + " from " + NumberShown(least) + " to " + NumberShown(most);
}

bool Reader::number(const Json& json, const std::string& path, double least, double most, double* out) {
    if (!json.is_number()) return problem(path, "a number is expected");
    *out = json.get<double>();
    if (*out >= least && *out <= most) return true;
    return problem(path, RangeShown("a number", least, most) + " is expected, not " + NumberShown(*out));
}

bool Reader::whole(const Json& json, const std::string& path, double least, double most, long* out) {
    double value = 0;
    if (!json.is_number()) return problem(path, "a whole number is expected");
    value = json.get<double>();
    bool good = value >= least && value <= most && value == std::floor(value);
    if (!good)
        return problem(path, RangeShown("a whole number", least, most) + " is expected, not " + NumberShown(value));
    *out = static_cast<long>(value);
    return true;
}

bool Reader::flag(const Json& json, const std::string& path, bool* out) {
    if (!json.is_boolean()) return problem(path, "true or false is expected");
    *out = json.get<bool>();
    return true;
}

bool Reader::text(const Json& json, const std::string& path, std::u16string* out) {
    if (!json.is_string()) return problem(path, "a text is expected");
    *out = Utf16Of(json.get_ref<const std::string&>());
    return true;
}

bool Reader::word(const Json& json, const std::string& path, const ArgumentRow& row, long* out) {
    *out = json.is_string() ? NumberOfWord(row, json.get_ref<const std::string&>()) : -1;
    if (*out >= 0) return true;
    std::string words = row.words;
    for (size_t at = 0; (at = words.find('|', at)) != std::string::npos; at += 2) words.replace(at, 1, ", ");
    return problem(path, "one of " + words + " is expected");
}

bool Reader::coordinates(const Json& json, const std::string& path, const char* wanted, size_t count, double* out) {
    if (!isList(json, path, wanted, count, count)) return false;
    bool good = true;
    for (size_t i = 0; i < count; ++i)
        good &= number(json[i], Element(path, i), -kLargestCoordinate, kLargestCoordinate, &out[i]);
    return good;
}

bool Reader::point(const Json& json, const std::string& path, ZR_Point* out) {
    double values[2] = {};
    bool good = coordinates(json, path, "a point [x, y]", 2, values);
    *out = {static_cast<float>(values[0]), static_cast<float>(values[1])};
    return good;
}

bool Reader::box(const Json& json, const std::string& path, ZR_Rect* out) {
    double v[4] = {};
    if (!coordinates(json, path, "a box [x, y, width, height]", 4, v)) return false;
    for (size_t i = 2; i < 4; ++i)
        if (v[i] < 0) return problem(Element(path, i), "a size of 0 or more is expected, not " + NumberShown(v[i]));
    *out = {static_cast<float>(v[1]), static_cast<float>(v[0]), static_cast<float>(v[0] + v[2]),
            static_cast<float>(v[1] + v[3])};
    return true;
}

bool Reader::segments(const Json& json, const std::string& path, SceneSegments* out) {
    if (!isList(json, path, "a list of lines [x1, y1, x2, y2]", 0, SIZE_MAX)) return false;
    bool good = true;
    for (size_t i = 0; i < json.size(); ++i) {
        double v[4] = {};
        good &= coordinates(json[i], Element(path, i), "a line [x1, y1, x2, y2]", 4, v);
        out->rects.push_back(
            {static_cast<float>(v[1]), static_cast<float>(v[0]), static_cast<float>(v[2]), static_cast<float>(v[3])});
    }
    return good;
}

template <class Item>
bool Reader::list(const Json& json, const std::string& path, const char* wanted, std::vector<Item>* out,
                  bool (Reader::*read)(const Json&, const std::string&, Item*)) {
    if (!isList(json, path, wanted, 0, SIZE_MAX)) return false;
    bool good = true;
    out->reserve(json.size());
    for (size_t i = 0; i < json.size(); ++i) {
        out->emplace_back();
        good &= (this->*read)(json[i], Element(path, i), &out->back());
    }
    return good;
}

// Either the value itself, or the name of one that the scene defines.
template <class Item>
bool Reader::named(const Json& json, const std::string& path, const char* wanted,
                   const std::map<std::string, Item>& known, Item* out,
                   bool (Reader::*read)(const Json&, const std::string&, Item*)) {
    if (!json.is_string()) return (this->*read)(json, path, out);
    const std::string& name = json.get_ref<const std::string&>();
    auto found = known.find(name);
    if (found == known.end()) {
        std::string near = Near(name, KeysOf(known));
        return problem(path, std::string("the scene defines no ") + wanted + " " + Quoted(name) +
                                 (near.empty() ? "" : ", did you mean " + Quoted(near) + "?"));
    }
    *out = found->second;
    return true;
}

// Colours, fonts, gradients, dashes

bool Reader::colourOfText(const std::string& text, const std::string& path, ZR_RGBColor* out) {
    std::optional<ZR_RGBColor> found;
    auto defined = colours_.find(text);
    if (defined != colours_.end()) found = defined->second;
    else if (text.starts_with('#')) found = ColourOfDigits(text);
    else if (text.starts_with("rgb16(")) found = ColourOfChannels(text);
    else found = ColourOfName(text);
    if (found) *out = *found;
    if (found) return true;
    std::string near = Near(text, KeysOf(colours_));
    return problem(path,
                   kColourWanted + (near.empty() ? ", not " + Quoted(text) : "; did you mean " + Quoted(near) + "?"));
}

bool Reader::colour(const Json& json, const std::string& path, ZR_RGBColor* out) {
    if (json.is_string()) return colourOfText(json.get_ref<const std::string&>(), path, out);
    if (!json.is_object()) return problem(path, kColourWanted);
    bool good = onlyKeys(json, path, {"color", "alpha"});
    auto colour = json.find("color"), alpha = json.find("alpha");
    if (colour == json.end()) return problem(path, "color is missing");
    if (!colour->is_string()) return problem(Member(path, "color"), kColourWanted);
    good &= colourOfText(colour->get_ref<const std::string&>(), Member(path, "color"), out);
    double value = 1;
    if (alpha == json.end()) return good;
    good &= number(*alpha, Member(path, "alpha"), 0, 1, &value);
    out->alpha = static_cast<float>(value);
    return good;
}

bool Reader::font(const Json& json, const std::string& path, SceneFont* out) {
    static constexpr struct {
        const char* key;
        short bit;
    } kStyles[] = {
        {"bold", kZRBold}, {"italic", kZRItalic}, {"underline", kZRUnderline}, {"strikethrough", kZRStrikethrough}};
    if (!isObject(json, path, "a font, such as {\"name\":\"Liberation Sans\",\"size\":12},")) return false;
    bool good = onlyKeys(json, path, {"name", "size", "bold", "italic", "underline", "strikethrough"});
    if (auto name = json.find("name"); name != json.end()) good &= text(*name, Member(path, "name"), &out->name);
    double size = 12;
    if (auto found = json.find("size"); found != json.end())
        good &= number(*found, Member(path, "size"), 0, kLargestFont, &size);
    out->size = static_cast<float>(size);
    for (const auto& style : kStyles) {
        bool on = false;
        auto found = json.find(style.key);
        if (found != json.end()) good &= flag(*found, Member(path, style.key), &on);
        if (on) out->style = static_cast<short>(out->style | style.bit);
    }
    return good;
}

bool Reader::gradientShape(const Json& json, const std::string& path, SceneGradient* out) {
    std::string shapePath = Member(path, out->linear ? "linear" : "radial");
    if (!isObject(json, shapePath,
                  out->linear ? "{\"from\":[x, y],\"to\":[x, y]}" : "{\"center\":[x, y],\"radius\":r}"))
        return false;
    bool good = out->linear ? onlyKeys(json, shapePath, {"from", "to"})
                            : onlyKeys(json, shapePath, {"center", "focus", "radius"});
    const char* first = out->linear ? "from" : "center";
    const char* second = out->linear ? "to" : "radius";
    for (const char* key : {first, second})
        if (!json.contains(key)) good = problem(shapePath, std::string(key) + " is missing");
    if (json.contains(first)) good &= point(json[first], Member(shapePath, first), &out->from);
    if (out->linear && json.contains(second)) good &= point(json[second], Member(shapePath, second), &out->to);
    if (out->linear) return good;
    if (json.contains("focus")) good &= point(json["focus"], Member(shapePath, "focus"), &out->to);
    double radius = 0;
    if (json.contains(second)) good &= number(json[second], Member(shapePath, second), 0, kLargestCoordinate, &radius);
    out->radius = static_cast<float>(radius);
    return good;
}

bool Reader::stops(const Json& json, const std::string& path, SceneGradient* out) {
    if (!isList(json, path, "a list of at least two stops [offset, colour]", 2, kMostStops)) return false;
    bool good = true;
    for (size_t i = 0; i < json.size(); ++i) {
        std::string stopPath = Element(path, i);
        double offset = 0;
        ZR_RGBColor stopColour{};
        if (!isList(json[i], stopPath, "a stop [offset, colour]", 2, 2)) {
            good = false;
            continue;
        }
        good &= number(json[i][0], Element(stopPath, 0), 0, 1, &offset);
        good &= colour(json[i][1], Element(stopPath, 1), &stopColour);
        out->stops.emplace_back(static_cast<float>(offset), stopColour);
    }
    return good;
}

bool Reader::gradient(const Json& json, const std::string& path, SceneGradient* out) {
    static constexpr ArgumentRow kUnits = {"units", ArgumentKind::Word, false, nullptr, nullptr, "percent|points", 0, 0,
                                           0};
    if (!isObject(json, path, "a gradient with linear or radial, and stops,")) return false;
    bool good = onlyKeys(json, path, {"linear", "radial", "units", "matrix", "stops"});
    bool linear = json.contains("linear"), radial = json.contains("radial");
    if (linear == radial) return problem(path, "either linear or radial is expected");
    out->linear = linear;
    good &= gradientShape(json[linear ? "linear" : "radial"], path, out);
    long units = 0;
    if (json.contains("units")) good &= word(json["units"], Member(path, "units"), kUnits, &units);
    out->percent = units == 0;
    if (json.contains("matrix")) good &= matrix(json["matrix"], Member(path, "matrix"), &out->matrix);
    if (!json.contains("stops")) return problem(path, "stops is missing");
    return stops(json["stops"], Member(path, "stops"), out) && good;
}

bool Reader::lengths(const Json& json, const std::string& path, SceneDash* out) {
    if (!isList(json, path, "a list of lengths", 1, kMostDashes)) return false;
    bool good = true;
    double sum = 0;
    for (size_t i = 0; i < json.size(); ++i) {
        double length = 0;
        good &= number(json[i], Element(path, i), 0, kLargestCoordinate, &length);
        out->lengths.push_back(static_cast<float>(length));
        sum += length;
    }
    return good && (sum > 0 || problem(path, "a length above 0 is expected"));
}

bool Reader::dash(const Json& json, const std::string& path, SceneDash* out) {
    if (json.is_array()) return lengths(json, path, out);
    if (!isObject(json, path, "a dash, such as [4, 2] or {\"lengths\":[4, 2],\"phase\":1},")) return false;
    bool good = onlyKeys(json, path, {"lengths", "phase"});
    double phase = 0;
    if (json.contains("phase")) good &= number(json["phase"], Member(path, "phase"), 0, kLargestCoordinate, &phase);
    out->phase = static_cast<float>(phase);
    if (!json.contains("lengths")) return problem(path, "lengths is missing");
    return lengths(json["lengths"], Member(path, "lengths"), out) && good;
}

// Matrices, properties, paths, regions, pictures

static constexpr const char* kMatrixWanted =
    "a matrix of six numbers or a list of {\"translate\":[x, y]}, {\"rotate\":degrees} and {\"scale\":factor}";

bool Reader::matrixStep(const Json& json, const std::string& path, Affine* out) {
    double v[3] = {};
    if (!json.is_object() || json.size() != 1) return problem(path, std::string(kMatrixWanted) + " is expected");
    const std::string& key = json.begin().key();
    const Json& item = json.begin().value();
    std::string stepPath = Member(path, key);
    if (key == "translate") {
        if (!coordinates(item, stepPath, "[x, y]", 2, v)) return false;
        *out = {1, 0, 0, 1, v[0], v[1]};
        return true;
    }
    if (key == "rotate") {
        bool good = item.is_number() ? number(item, stepPath, -kLargestCoordinate, kLargestCoordinate, v)
                                     : coordinates(item, stepPath, "degrees or [degrees, x, y]", 3, v);
        *out = Rotation(v[0], v[1], v[2]);
        return good;
    }
    if (key == "scale") {
        bool one = item.is_number();
        bool good = one ? number(item, stepPath, -kLargestCoordinate, kLargestCoordinate, v)
                        : coordinates(item, stepPath, "a factor or [x, y]", 2, v);
        *out = {v[0], 0, 0, one ? v[0] : v[1], 0, 0};
        return good;
    }
    return problem(stepPath, "unknown key, translate, rotate or scale is expected");
}

bool Reader::matrix(const Json& json, const std::string& path, ZR_Matrix* out) {
    if (!json.is_array()) return problem(path, std::string(kMatrixWanted) + " is expected");
    Affine all;
    bool good = true;
    if (!json.empty() && json[0].is_number()) {
        double v[6] = {};
        good = coordinates(json, path, kMatrixWanted, 6, v);
        all = {v[0], v[1], v[2], v[3], v[4], v[5]};
    } else {
        for (size_t i = 0; i < json.size(); ++i) {
            Affine step;
            good &= matrixStep(json[i], Element(path, i), &step);
            all.then(step);
        }
    }
    for (double term : {all.a, all.b, all.c, all.d, all.tx, all.ty})
        if (good && !(std::fabs(term) <= 1e9)) return problem(path, "the steps together become too large");
    *out = {static_cast<float>(all.a), static_cast<float>(all.b),  static_cast<float>(all.c),
            static_cast<float>(all.d), static_cast<float>(all.tx), static_cast<float>(all.ty)};
    return good;
}

// What an XML attribute may be called, ASCII letters alone.
bool IsAttributeName(std::string_view name) {
    auto starts = [](char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_' || c == ':'; };
    if (name.empty() || !starts(name[0])) return false;
    for (char c : name)
        if (!starts(c) && !(c >= '0' && c <= '9') && c != '-' && c != '.') return false;
    return true;
}

bool Reader::properties(const Json& json, const std::string& path, SceneProperties* out) {
    if (!isObject(json, path, "an object of names and texts, such as {\"id\":\"sun\"},")) return false;
    bool good = true;
    for (const auto& [key, item] : json.items()) {
        std::u16string attribute;
        if (!IsAttributeName(key)) good = problem(Member(path, key), "this is no name of an attribute");
        good &= text(item, Member(path, key), &attribute);
        out->emplace_back(Utf16Of(key), attribute);
    }
    return good;
}

bool Reader::pathData(const Json& json, const std::string& path, std::u16string* out) {
    if (!text(json, path, out)) return false;
    Text data(*out);
    Block records(sizeof(ZR_PathRecord));
    long error = 0;
    ZR_CreateHandleFromPathText(data.get(), records.get(), &error);
    if (!error) return true;
    return problem(path, error == ZR_PATH_BAD_NUMBER ? "a number of the path data is missing or too long"
                                                     : "the path data has a letter that is no command");
}

bool Reader::region(const Json& json, const std::string& path, std::vector<ZR_RegionRecord>* out) {
    static constexpr const char* kWanted = "a list of {\"add\":[x, y, width, height]} and {\"subtract\":...}";
    if (!isList(json, path, kWanted, 0, kMostRegionSteps)) return false;
    bool good = true;
    for (size_t i = 0; i < json.size(); ++i) {
        std::string stepPath = Element(path, i);
        bool add = json[i].contains("add"), subtract = json[i].contains("subtract");
        if (!json[i].is_object() || json[i].size() != 1 || add == subtract) {
            good = problem(stepPath, "{\"add\":[x, y, width, height]} or {\"subtract\":...} is expected");
            continue;
        }
        ZR_RegionRecord record{};
        record.subtract = subtract;
        const char* key = add ? "add" : "subtract";
        good &= box(json[i][key], Member(stepPath, key), &record.rect);
        out->push_back(record);
    }
    return good;
}

bool Reader::picture(const Json& json, const std::string& path, std::shared_ptr<ScenePicture>* out) {
    if (!json.is_string()) return problem(path, "a file or a data: URL is expected");
    const std::string& source = json.get_ref<const std::string&>();
    auto known = pictures_.find(source);
    if (known != pictures_.end()) *out = known->second;
    if (*out) return true;
    std::string bytes, shown = Shown(source.size() > 80 ? source.substr(0, 40) + "..." : source);
    if (source.starts_with("data:")) {
        size_t comma = source.find(',');
        std::string_view head = std::string_view(source).substr(0, comma);
        if (comma == std::string::npos || !head.ends_with(";base64"))
            return problem(path, "a data: URL is expected to have ;base64, before its data");
        if (!DecodeBase64(std::string_view(source).substr(comma + 1), &bytes))
            return problem(path, "the data: URL holds a character that is not base64");
    } else {
        if (!source_.readsFiles) return problem(path, "files are not read here");
        std::string file = source.starts_with('/') ? source : source_.folder + source;
        std::string why = source.find('\0') == std::string::npos ? ReadPictureFile(file, &bytes) : "a zero in a name";
        if (!why.empty()) return problem(path, why);
    }
    auto made = std::make_shared<ScenePicture>(bytes);
    if (!made->canBeDrawn()) return problem(path, shown + " is no picture that can be read");
    *out = pictures_[source] = made;
    return true;
}

// Calls

// What a member reads, or nothing if it could not.
template <class Type, class Read>
SceneValue Value(Read read) {
    Type out{};
    return read(&out) ? SceneValue(std::move(out)) : SceneValue();
}

SceneValue Reader::value(const Json& json, const std::string& path, const ArgumentRow& row) {
    switch (row.kind) {
        case ArgumentKind::Number:
            return Value<double>([&](auto* out) { return number(json, path, row.least, row.most, out); });
        case ArgumentKind::Whole:
            return Value<long>([&](auto* out) { return whole(json, path, row.least, row.most, out); });
        case ArgumentKind::Flag: return Value<bool>([&](auto* out) { return flag(json, path, out); });
        case ArgumentKind::Text: return Value<std::u16string>([&](auto* out) { return text(json, path, out); });
        case ArgumentKind::Word: return Value<long>([&](auto* out) { return word(json, path, row, out); });
        case ArgumentKind::Colour: return Value<ZR_RGBColor>([&](auto* out) { return colour(json, path, out); });
        case ArgumentKind::Colours:
            return Value<std::vector<ZR_RGBColor>>(
                [&](auto* out) { return list(json, path, "a list of colours", out, &Reader::colour); });
        case ArgumentKind::Point: return Value<ZR_Point>([&](auto* out) { return point(json, path, out); });
        case ArgumentKind::Box: return Value<ZR_Rect>([&](auto* out) { return box(json, path, out); });
        case ArgumentKind::Boxes:
            return Value<std::vector<ZR_Rect>>([&](auto* out) {
                return list(json, path, "a list of boxes [x, y, width, height]", out, &Reader::box);
            });
        case ArgumentKind::Segments: return Value<SceneSegments>([&](auto* out) { return segments(json, path, out); });
        case ArgumentKind::Font:
            return Value<SceneFont>([&](auto* out) { return named(json, path, "font", fonts_, out, &Reader::font); });
        case ArgumentKind::Gradient:
            return Value<SceneGradient>(
                [&](auto* out) { return named(json, path, "gradient", gradients_, out, &Reader::gradient); });
        case ArgumentKind::Dash:
            return Value<SceneDash>([&](auto* out) { return named(json, path, "dash", dashes_, out, &Reader::dash); });
        case ArgumentKind::Matrix: return Value<ZR_Matrix>([&](auto* out) { return matrix(json, path, out); });
        case ArgumentKind::Properties:
            return Value<SceneProperties>([&](auto* out) { return properties(json, path, out); });
        case ArgumentKind::Path: return Value<std::u16string>([&](auto* out) { return pathData(json, path, out); });
        case ArgumentKind::Region:
            return Value<std::vector<ZR_RegionRecord>>([&](auto* out) { return region(json, path, out); });
        case ArgumentKind::Picture:
            return Value<std::shared_ptr<ScenePicture>>([&](auto* out) { return picture(json, path, out); });
        case ArgumentKind::Calls:
            return Value<std::vector<SceneCall>>([&](auto* out) { return calls(json, path, out); });
    }
    return {};
}

// Spans that cannot be read would end the text in front of them.
void Reader::spans(const SceneCall& call) {
    if (call.primitive != FindPrimitive("styledText") || !call.has("text")) return;
    Text styled(call.get<std::u16string>("text")), plain;
    ZR_MultiStyleText runs;
    ZR_Font font;
    ZR_RGBColor black{0, 0, 0, 1};
    font.Create();
    if (!runs.CreateWith4DStyledText(styled.get(), plain.get(), &font, &black))
        problem(Member(call.path, "text"), "a span that cannot be read; <SPAN STYLE=\"...\"> or <SPAN> is expected");
    runs.Dispose();
    font.Dispose();
}

// What one argument asks of another.
void Reader::sizes(const SceneCall& call) {
    if (call.primitive != FindPrimitive("rects") || !call.has("boxes") || !call.has("fills")) return;
    size_t boxes = call.get<std::vector<ZR_Rect>>("boxes").size();
    size_t fills = call.get<std::vector<ZR_RGBColor>>("fills").size();
    if (boxes != fills)
        problem(
            Member(call.path, "fills"),
            std::to_string(boxes) + " colours are expected, one for each of the boxes, not " + std::to_string(fills));
}

bool Reader::call(const Json& json, const std::string& path, SceneCall* out) {
    std::vector<const char*> names;
    for (const PrimitiveRow& row : Primitives()) names.push_back(row.name);
    if (!json.is_object() || json.size() != 1)
        return problem(path, "an object with one key is expected, such as {\"rect\":{...}}");
    const std::string& name = json.begin().key();
    const Json& given = json.begin().value();
    out->primitive = FindPrimitive(name);
    out->path = Member(path, name);
    if (!out->primitive) {
        std::string near = Near(name, names);
        return problem(out->path, near.empty() ? "there is no such call; zr draw --help lists them"
                                               : "there is no such call, did you mean " + near + "?");
    }
    if (!isObject(given, out->path, "an object with the arguments")) return false;
    std::vector<const char*> keys;
    for (const ArgumentRow& row : out->primitive->arguments) keys.push_back(row.name);
    bool good = onlyKeys(given, out->path, keys);
    for (const ArgumentRow& row : out->primitive->arguments) {
        auto found = given.find(row.name);
        bool isGiven = found != given.end();
        if (!isGiven && row.needed) good = problem(out->path, std::string(row.name) + " is missing");
        if (isGiven) out->values.push_back(value(*found, Member(out->path, row.name), row));
        else if (row.fallback) out->values.push_back(value(Json::parse(row.fallback), out->path, row));
        else out->values.emplace_back();
    }
    sizes(*out);
    spans(*out);
    return good;
}

bool Reader::calls(const Json& json, const std::string& path, std::vector<SceneCall>* out) {
    if (++depth_ > kDeepestLayer + 1) {
        --depth_;
        return problem(path, "more than " + std::to_string(kDeepestLayer) + " layers lie in each other");
    }
    bool good = list(json, path, "a list of calls", out, &Reader::call);
    --depth_;
    return good;
}

// Scenes

template <class Item>
void Reader::definitions(const Json& define, const char* key, std::map<std::string, Item>* out,
                         bool (Reader::*read)(const Json&, const std::string&, Item*)) {
    if (!define.contains(key)) return;
    std::string path = Member("define", key);
    if (!isObject(define[key], path, "an object of names and values")) return;
    std::map<std::string, Item> all;
    for (const auto& [name, json] : define[key].items()) {
        Item item{};
        (this->*read)(json, Member(path, name), &item);
        all.emplace(name, std::move(item));
    }
    *out = std::move(all);
}

void Reader::define(const Json& json) {
    if (!isObject(json, "define", "an object with colours, fonts, gradients and dashes")) return;
    onlyKeys(json, "define", {"colours", "fonts", "gradients", "dashes"});
    definitions(json, "colours", &colours_, &Reader::colour);
    definitions(json, "fonts", &fonts_, &Reader::font);
    definitions(json, "gradients", &gradients_, &Reader::gradient);
    definitions(json, "dashes", &dashes_, &Reader::dash);
}

Scene Reader::scene(const Json& json) {
    Scene scene;
    scene.name = source_.name;
    if (!isObject(json, "", "an object with width, height and calls")) return scene;
    onlyKeys(json, "", {"$schema", "width", "height", "background", "define", "calls"});
    for (const char* key : {"width", "height", "calls"})
        if (!json.contains(key)) problem("", std::string(key) + " is missing");
    if (json.contains("define")) define(json["define"]);
    double most = static_cast<double>(kLongestSide);
    if (json.contains("width")) whole(json["width"], "width", 1, most, &scene.width);
    if (json.contains("height")) whole(json["height"], "height", 1, most, &scene.height);
    ZR_RGBColor background{};
    if (json.contains("background") && colour(json["background"], "background", &background))
        scene.background = background;
    if (json.contains("calls")) calls(json["calls"], "calls", &scene.calls);
    return scene;
}

// JSON -------------------------------------------------------------------------------------------------------------

// "line 3, column 5: " of a byte, from 1.
std::string PlaceOf(std::string_view bytes, size_t byte) {
    size_t line = 1, column = 1;
    for (size_t i = 0; i + 1 < byte && i < bytes.size(); ++i) {
        column = bytes[i] == '\n' ? 1 : column + ((bytes[i] & 0xC0) != 0x80 ? 1 : 0);
        line += bytes[i] == '\n';
    }
    return "line " + std::to_string(line) + ", column " + std::to_string(column) + ": ";
}

// What the parser says, without the names of its own and the place, which stands before.
std::string WordsOf(std::string_view message) {
    for (std::string_view lead : {"syntax error while parsing ", "parse error", "] "}) {
        size_t at = message.find(lead);
        if (at == std::string_view::npos) continue;
        return Shown(message.substr(lead == "] " ? at + lead.size() : at));
    }
    return Shown(message);
}

// A key that stands twice in one object would silently win over the first. The parser's own callback would cost the
// square of a long list.
class TwiceGiven : public nlohmann::json_sax<Json> {
  public:
    bool null() override { return true; }
    bool boolean(bool) override { return true; }
    bool number_integer(number_integer_t) override { return true; }
    bool number_unsigned(number_unsigned_t) override { return true; }
    bool number_float(number_float_t, const string_t&) override { return true; }
    bool string(string_t&) override { return true; }
    bool binary(binary_t&) override { return true; }
    bool start_array(std::size_t) override { return true; }
    bool end_array() override { return true; }
    bool start_object(std::size_t) override {
        keys_.emplace_back();
        return true;
    }
    bool end_object() override {
        keys_.pop_back();
        return true;
    }
    bool key(string_t& key) override {
        bool isNew = keys_.back().insert(key).second;
        if (!isNew) twice = key;
        return isNew;
    }
    bool parse_error(std::size_t, const std::string&, const nlohmann::detail::exception&) override { return false; }

    std::optional<std::string> twice;

  private:
    std::vector<std::set<std::string>> keys_;
};

}  // namespace

Scene ReadScene(const SceneSource& source, std::vector<SceneProblem>* problems) {
    TwiceGiven keys;
    Json json;
    try {
        json = Json::parse(source.bytes);
        Json::sax_parse(source.bytes, &keys);
    } catch (const Json::parse_error& error) {
        problems->push_back({"", PlaceOf(source.bytes, error.byte) + "this is not JSON: " + WordsOf(error.what())});
    } catch (const Json::exception& error) { problems->push_back({"", "this is not JSON: " + WordsOf(error.what())}); }
    if (problems->empty() && keys.twice)
        problems->push_back({"", "the key " + Quoted(*keys.twice) + " stands twice in one object"});
    return problems->empty() ? Reader(source, problems).scene(json) : Scene{};
}

std::string ProblemShown(const SceneSource& source, const SceneProblem& problem) {
    std::string shown = source.name + ": ";
    if (!problem.path.empty()) shown += problem.path + ": ";
    return shown + problem.text;
}

}  // namespace zrtool
