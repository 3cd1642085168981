#include "app/ScenePainter.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "app/Interpreter.h"
#include "app/Json.h"
#include "app/Source.h"
#include "graphics/ZR_API_LineDash.h"
#include "graphics/ZR_API_MultiStyleText.h"
#include "graphics/ZR_API_Path.h"
#include "graphics/ZR_API_SVGDocument.h"
#include "graphics/ZR_API_Shading.h"
#include "platform/CoreGraphics/CoreGraphics.h"

namespace zrtool {

// Records of the library for the length of a call --------------------------------------------------------------------

namespace {

std::string Number(double value) { return ShortestNumber(static_cast<double>(std::round(value * 10000) / 10000)); }

ZR_Text TextOf(std::u16string_view units) {  // handed over
    ZR_Text text;
    text.Create();
    if (!units.empty())
        text.AddUniBuffer(reinterpret_cast<const unsigned short*>(units.data()), static_cast<long>(units.size()));
    return text;
}

class PropertyList {
  public:
    PropertyList() { records_.Create(sizeof(ZR_DeviceProperty), 0); }
    ~PropertyList() {
        for (long i = 1; i <= records_.count; ++i) {
            record(i)->name.Dispose();
            record(i)->value.Dispose();
        }
        records_.Dispose();
    }
    PropertyList(const PropertyList&) = delete;
    PropertyList& operator=(const PropertyList&) = delete;

    void add(std::u16string_view name, std::u16string_view value) {
        auto* made = reinterpret_cast<ZR_DeviceProperty*>(records_.AppendGetPtr());
        if (!made) return;
        made->name = TextOf(name);
        made->value = TextOf(value);
    }
    ZR_Handle* get() { return &records_; }

  private:
    ZR_DeviceProperty* record(long index) { return reinterpret_cast<ZR_DeviceProperty*>(records_.GetMemPtr(index)); }
    ZR_Handle records_;
};

// A scene's own attributes win over what the painter adds; styles are put together.
void AddAttributes(const SceneProperties* own, const std::vector<std::pair<std::string, std::string>>& more,
                   PropertyList* out) {
    std::u16string style;
    for (const auto& [name, value] : more)
        if (name == "style") style += (style.empty() ? u"" : u";") + Utf16Of(value);
    auto isOwn = [own](const std::u16string& name) {
        return own && std::any_of(own->begin(), own->end(), [&](const auto& pair) { return pair.first == name; });
    };
    if (own)
        for (const auto& [name, value] : *own)
            out->add(name, name == u"style" && !style.empty() ? style + u";" + value : value);
    for (const auto& [name, value] : more)
        if (name != "style" && !isOwn(Utf16Of(name))) out->add(Utf16Of(name), Utf16Of(value));
    if (!style.empty() && !isOwn(u"style")) out->add(u"style", style);
}

// What several primitives take, as the library wants it.
class CallArguments {
  public:
    // gradient: instead of the call's own; null = that
    CallArguments(const SceneCall& call, const std::vector<std::pair<std::string, std::string>>& more,
                  const SceneGradient* gradient = nullptr);
    ~CallArguments();
    CallArguments(const CallArguments&) = delete;
    CallArguments& operator=(const CallArguments&) = delete;

    ZR_Matrix* matrix() { return matrix_ ? &*matrix_ : nullptr; }
    ZR_Gradient* gradient() { return hasGradient_ ? &gradient_ : nullptr; }
    ZR_LineDash* dash() { return hasDash_ ? &dash_ : nullptr; }
    ZR_Handle* properties() { return properties_.get(); }

  private:
    std::optional<ZR_Matrix> matrix_;
    ZR_Gradient gradient_;
    ZR_LineDash dash_;
    bool hasGradient_ = false, hasDash_ = false;
    PropertyList properties_;
};

bool Takes(const SceneCall& call, std::string_view argument) {
    for (const ArgumentRow& row : call.primitive->arguments)
        if (argument == row.name) return call.has(argument);
    return false;
}

void MakeGradient(const SceneGradient& source, ZR_Gradient* out) {
    out->Create(source.percent ? ZR_GRADIENT_PERCENT : ZR_GRADIENT_USER);
    out->isLinear = source.linear;
    out->x1 = source.from.x;
    out->y1 = source.from.y;
    out->x2 = source.to.x;
    out->y2 = source.to.y;
    out->radius = source.radius;
    out->matrix = source.matrix;
    for (const auto& [offset, colour] : source.stops) out->AddOffset(offset, &colour);
}

void MakeDash(const SceneDash& source, ZR_LineDash* out) {
    auto* lengths = new float[source.lengths.size()];
    std::copy(source.lengths.begin(), source.lengths.end(), lengths);
    out->Create(source.phase, lengths, static_cast<long>(source.lengths.size()));
}

CallArguments::CallArguments(const SceneCall& call, const std::vector<std::pair<std::string, std::string>>& more,
                             const SceneGradient* gradient) {
    if (Takes(call, "matrix")) matrix_ = call.get<ZR_Matrix>("matrix");
    hasGradient_ = Takes(call, "gradient");
    if (hasGradient_) MakeGradient(gradient ? *gradient : call.get<SceneGradient>("gradient"), &gradient_);
    if (Takes(call, "dash")) MakeDash(call.get<SceneDash>("dash"), &dash_), hasDash_ = true;
    AddAttributes(Takes(call, "properties") ? call.find<SceneProperties>("properties") : nullptr, more, &properties_);
}

CallArguments::~CallArguments() {
    if (hasGradient_) gradient_.Dispose();
    if (hasDash_) dash_.Dispose();
}

class Font {
  public:
    explicit Font(const SceneFont& source) {
        Text name(source.name);
        font_.Create(source.size, source.style, name.get());
    }
    ~Font() { font_.Dispose(); }
    Font(const Font&) = delete;
    Font& operator=(const Font&) = delete;
    ZR_Font* get() { return &font_; }

  private:
    ZR_Font font_;
};

// Colour of an argument; a pointer for the library, null = none.
class Paint {
  public:
    Paint(const SceneCall& call, std::string_view argument) {
        const ZR_RGBColor* colour = call.find<ZR_RGBColor>(argument);
        used_ = colour != nullptr;
        if (colour) colour_ = *colour;
    }
    bool used() const { return used_; }
    ZR_RGBColor* get() { return &colour_; }

  private:
    ZR_RGBColor colour_{0, 0, 0, 1};
    bool used_ = false;
};

bool SameRect(const ZR_Rect& a, const ZR_Rect& b) {
    return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
}

// The rectangles of a region, none over another: the plane cut along all edges, and each cell asked for the last step
// that covers it; cells of a row that touch are joined.
std::vector<ZR_Rect> PartsOf(const std::vector<ZR_RegionRecord>& steps) {
    std::vector<float> xs, ys;
    for (const ZR_RegionRecord& step : steps) {
        xs.insert(xs.end(), {step.rect.left, step.rect.right});
        ys.insert(ys.end(), {step.rect.top, step.rect.bottom});
    }
    for (auto* edges : {&xs, &ys}) {
        std::sort(edges->begin(), edges->end());
        edges->erase(std::unique(edges->begin(), edges->end()), edges->end());
    }
    std::vector<ZR_Rect> parts;
    for (size_t row = 0; row + 1 < ys.size(); ++row) {
        std::vector<char> inside(xs.size(), 0);
        for (const ZR_RegionRecord& step : steps) {
            if (step.rect.top > ys[row] || step.rect.bottom < ys[row + 1]) continue;
            auto first = std::lower_bound(xs.begin(), xs.end(), step.rect.left) - xs.begin();
            auto last = std::lower_bound(xs.begin(), xs.end(), step.rect.right) - xs.begin();
            std::fill(inside.begin() + first, inside.begin() + last, step.subtract ? 0 : 1);
        }
        for (size_t column = 0; column + 1 < xs.size(); ++column) {
            if (!inside[column]) continue;
            size_t end = column + 1;
            while (end + 1 < xs.size() && inside[end]) ++end;
            parts.push_back({ys[row], xs[column], xs[end], ys[row + 1]});
            column = end;
        }
    }
    return parts;
}

class Region {
  public:
    explicit Region(const std::vector<ZR_RegionRecord>& steps) {
        region_.Create();
        for (const ZR_RegionRecord& step : steps)
            if (step.subtract) region_.Difference(&step.rect);
            else region_.AddRect(&step.rect);
    }
    explicit Region(const std::vector<ZR_Rect>& parts) {
        region_.Create();
        for (const ZR_Rect& part : parts) region_.AddRect(&part);
    }
    ~Region() { region_.Dispose(); }
    Region(const Region&) = delete;
    Region& operator=(const Region&) = delete;
    ZR_Region* get() { return &region_; }

  private:
    ZR_Region region_;
};

// Through the points of the path, as cubic curves.
void Smooth(ZR_Handle* path) {
    std::vector<ZR_Point> points;
    for (long i = 1; i <= path->count; ++i) {
        ZR_PathRecord* record = ZR_GetPathRecord(path, i);
        points.push_back({record->x, record->y});
    }
    if (points.size() < 3) return;
    ZR_Spline spline(points.data(), static_cast<long>(points.size()));
    spline.Generate();
    if (spline.count < 3) return;
    path->Dispose();
    ZR_CreatePathHandle(path);
    ZR_AddPathMove(path, spline.x[0], spline.y[0]);
    for (long i = 0; i + 1 < spline.count; ++i) {
        float x = spline.x[i + 1], y = spline.y[i + 1];
        ZR_AddPathCurve(path, spline.x[i] + spline.tangentX[i] / 3, spline.y[i] + spline.tangentY[i] / 3,
                        x - spline.endTangentX[i] / 3, y - spline.endTangentY[i] / 3, x, y);
    }
}

// first acts first
ZR_Matrix Product(const ZR_Matrix& first, const ZR_Matrix* second) {
    ZR_Matrix product = first;
    if (second) product.Multiply(second);
    return product;
}

// Percent of a box as points. A radius is one of the height, drawn out to the width.
SceneGradient InPoints(SceneGradient gradient, const ZR_Rect& box) {
    if (!gradient.percent) return gradient;
    float width = box.right - box.left, height = box.bottom - box.top;
    auto place = [&](ZR_Point p) { return ZR_Point{p.x / 100 * width + box.left, p.y / 100 * height + box.top}; };
    bool ownFocus = gradient.linear || gradient.to.x != 0 || gradient.to.y != 0;
    gradient.from = place(gradient.from);
    if (ownFocus) gradient.to = place(gradient.to);
    gradient.percent = false;
    if (gradient.linear || height <= 0 || width <= 0) return gradient;
    float stretch = width / height;
    gradient.radius = gradient.radius / 100 * height;
    gradient.from.x /= stretch;
    if (ownFocus) gradient.to.x /= stretch;
    ZR_Matrix stretched{stretch, 0, 0, 1, 0, 0};
    gradient.matrix = Product(stretched, &gradient.matrix);
    return gradient;
}

// A linear gradient under a matrix is another linear one: its lines of one colour are moved along.
void BakeLinear(SceneGradient* gradient) {
    const ZR_Matrix m = gradient->matrix;
    double det = static_cast<double>(m.a) * m.d - static_cast<double>(m.b) * m.c;
    double dx = gradient->to.x - gradient->from.x, dy = gradient->to.y - gradient->from.y;
    double length = dx * dx + dy * dy;
    if (std::fabs(det) < 1e-9 || length < 1e-9) return;
    double gx = (m.d * dx - m.b * dy) / det / length, gy = (m.a * dy - m.c * dx) / det / length;
    double slope = gx * gx + gy * gy;
    m.TransformPoint(&gradient->from);
    gradient->to = {static_cast<float>(gradient->from.x + gx / slope),
                    static_cast<float>(gradient->from.y + gy / slope)};
    gradient->matrix.SetIdentity();
}

// The matrix of y down as GetSystemMatrix wants it to give the same on an unflipped context of that height.
ZR_Matrix ForSystem(const ZR_Matrix& m, float height) { return {m.a, -m.b, -m.c, m.d, m.tx + m.c * height, m.ty}; }

}  // namespace

// An element with its attributes below another one.
static void AddElement(ZR_DOM_Tree* svg, ZR_Text* parent, const char* name,
                       const std::vector<std::pair<const char*, std::string>>& attributes, ZR_Text* out) {
    svg->CreateElement(parent, name, out);
    for (const auto& [key, value] : attributes) svg->SetAttributeText(out, key, value.c_str());
}

// Painting ---------------------------------------------------------------------------------------------------------

void ScenePainter::paint(const Scene& scene) {
    device_->BeginDraw();
    if (scene.background) {
        ZR_RGBColor colour = *scene.background;
        ZR_Rect all = wholeBounds();
        device_->DrawRect(&all, /*fill*/ true, /*stroke*/ false, &colour, nullptr, 0, true, 0, /*rounded*/ false,
                          nullptr, nullptr, nullptr, nullptr);
    }
    paintCalls(scene.calls);
    device_->EndDraw();
    device_->Flush();
    deviceProperties_.clear();
    regionClip_.clear();
    device_->DisposeCustomProperties();
    device_->customProperties.Create(sizeof(ZR_DeviceProperty), 0);
}

void ScenePainter::paintCalls(const std::vector<SceneCall>& calls) {
    for (const SceneCall& call : calls) {
        const ZR_Matrix* matrix = Takes(call, "matrix") ? call.find<ZR_Matrix>("matrix") : nullptr;
        ClipInForce before = turnClip(matrix);
        (this->*call.primitive->draw)(call);
        if (before.turned) restoreClip(before);
    }
}

// An SVG clip is taken in the space of the element, so a matrix would move it: the element gets the clip turned back.
ScenePainter::ClipInForce ScenePainter::turnClip(const ZR_Matrix* matrix) {
    ClipInForce before;
    if (!svgHelped() || !matrix || matrix->IsIdentity()) return before;
    ZR_DOM_Tree* svg = device_->svg;
    ZR_Rect rect{};
    bool hasRect = svg->GetCurrentClip(&rect);
    if (!hasRect && regionClip_.empty()) return before;
    double det = static_cast<double>(matrix->a) * matrix->d - static_cast<double>(matrix->b) * matrix->c;
    if (std::fabs(det) < 1e-5) return before;  // nothing is seen of it
    before = {true, svg->currentClip, regionClip_};
    ZR_Matrix back = *matrix;
    back.Invert();
    std::vector<ZR_Rect> parts = hasRect ? std::vector<ZR_Rect>{rect} : regionParts_;
    addRegionClip(parts, &back);
    return before;
}

void ScenePainter::restoreClip(const ClipInForce& before) {
    device_->svg->currentClip = before.number;
    regionClip_ = before.region;
    setDeviceProperties({});
}

void ScenePainter::leaveOut(const SceneCall& call) {
    if (toldOf_.insert(call.primitive).second) leftOut_.push_back(call.path);
}

ZR_Rect ScenePainter::wholeBounds() const {
    const ZR_Rect& bounds = device_->bounds;
    return {0, 0, bounds.right - bounds.left, bounds.bottom - bounds.top};
}

// The attributes of every element: those of the scene, the clip of a region, and more for the next call.
void ScenePainter::setDeviceProperties(const Attributes& more) {
    if (!device_->svg) return;
    Attributes all = more;
    if (!regionClip_.empty()) all.emplace_back("clip-path", regionClip_);
    PropertyList list;
    AddAttributes(&deviceProperties_, all, &list);
    device_->DisposeCustomProperties();
    device_->customProperties = *list.get();
    list.get()->Create(sizeof(ZR_DeviceProperty), 0);  // the device owns what it held
}

ScenePainter::Attributes ScenePainter::lineAttributes(const SceneCall& call) const {
    Attributes attributes;
    if (!svgHelped()) return attributes;
    if (Takes(call, "dash")) {
        const auto& dash = call.get<SceneDash>("dash");
        std::string lengths;
        for (float length : dash.lengths) lengths += (lengths.empty() ? "" : " ") + Number(length);
        attributes.emplace_back("stroke-dasharray", lengths);
        if (dash.phase != 0) attributes.emplace_back("stroke-dashoffset", Number(dash.phase));
    }
    static constexpr const char* kJoins[] = {"miter", "round", "bevel"};
    static constexpr const char* kCaps[] = {"butt", "round", "square"};
    if (Takes(call, "join") && call.whole("join") > 0)
        attributes.emplace_back("stroke-linejoin", kJoins[call.whole("join")]);
    if (Takes(call, "cap") && call.whole("cap") > 0)
        attributes.emplace_back("stroke-linecap", kCaps[call.whole("cap")]);
    if (!call.flag("antialias")) attributes.emplace_back("shape-rendering", "crispEdges");
    return attributes;
}

// Shapes -----------------------------------------------------------------------------------------------------------

// The gradient that makes the library draw the one of the scene: its own matrix in the scene's points, and under the
// matrix of a call in the place where pixels look for it. local: paths, which pixels draw in a space of their own.
std::optional<SceneGradient> ScenePainter::preparedGradient(const SceneCall& call, const ZR_Rect& box,
                                                            bool local) const {
    const SceneGradient* given = call.find<SceneGradient>("gradient");
    if (!given || (device_->svg && plain_)) return std::nullopt;
    SceneGradient gradient = *given;
    float height = device_->bounds.bottom - device_->bounds.top, boxHeight = box.bottom - box.top;
    const ZR_Matrix* matrix = call.find<ZR_Matrix>("matrix");
    bool underMatrix = matrix && !matrix->IsIdentity();
    // The box around a turned path is not the same for all that show SVG.
    bool points = !gradient.matrix.IsIdentity() || (device_->svg && underMatrix);
    if (points) gradient = InPoints(gradient, box);
    if (gradient.linear && !gradient.matrix.IsIdentity()) BakeLinear(&gradient);
    if (device_->svg) return gradient;
    if (!underMatrix) {
        gradient.matrix = ForSystem(gradient.matrix, height);
        return gradient;
    }
    if (local && gradient.percent) return gradient;
    bool ownFocus = gradient.linear || gradient.to.x != 0 || gradient.to.y != 0;
    auto move = [&](ZR_Point* p) {
        if (local) *p = {p->x - box.left, height - box.bottom + p->y};
        else if (!gradient.percent) p->y = height - p->y;
        else if (boxHeight > 0) p->y = 100 * (height - 2 * box.top) / boxHeight - p->y;
    };
    move(&gradient.from);
    if (ownFocus) move(&gradient.to);
    return gradient;
}

void ScenePainter::rect(const SceneCall& call) {
    ZR_Rect box = call.get<ZR_Rect>("box");
    auto gradient = preparedGradient(call, box, /*local*/ false);
    CallArguments arguments(call, lineAttributes(call), gradient ? &*gradient : nullptr);
    Paint fill(call, "fill"), stroke(call, "stroke");
    float radius = call.number("radius");  // the library wants the diameter
    device_->DrawRect(&box, fill.used() || arguments.gradient(), stroke.used(), fill.get(), stroke.get(),
                      call.number("lineWidth"), call.flag("antialias"), radius * 2, /*rounded*/ radius > 0,
                      arguments.matrix(), arguments.gradient(), arguments.properties(), arguments.dash());
}

void ScenePainter::rects(const SceneCall& call) {
    std::vector<ZR_Rect> boxes = call.get<std::vector<ZR_Rect>>("boxes");
    std::vector<ZR_RGBColor> fills = call.get<std::vector<ZR_RGBColor>>("fills");
    if (svgHelped()) setDeviceProperties({{"shape-rendering", "crispEdges"}});
    device_->DrawRectsWithDifferentBackgroundColors(boxes.data(), fills.data(), static_cast<long>(boxes.size()));
    setDeviceProperties({});
}

void ScenePainter::oval(const SceneCall& call) {
    ZR_Rect box = call.get<ZR_Rect>("box");
    auto gradient = preparedGradient(call, box, /*local*/ false);
    CallArguments arguments(call, lineAttributes(call), gradient ? &*gradient : nullptr);
    Paint fill(call, "fill"), stroke(call, "stroke");
    device_->DrawOval(&box, fill.used() || arguments.gradient(), stroke.used(), fill.get(), stroke.get(),
                      call.number("lineWidth"), call.flag("antialias"), arguments.matrix(), arguments.gradient(),
                      arguments.properties(), arguments.dash());
}

void ScenePainter::line(const SceneCall& call) {
    CallArguments arguments(call, lineAttributes(call));
    ZR_Point from = call.get<ZR_Point>("from"), to = call.get<ZR_Point>("to");
    Paint stroke(call, "stroke");
    device_->DrawLine(from.x, from.y, to.x, to.y, stroke.get(), call.number("lineWidth"), call.flag("antialias"),
                      static_cast<short>(call.whole("join")), static_cast<short>(call.whole("cap")), arguments.matrix(),
                      arguments.properties(), arguments.dash());
}

void ScenePainter::lines(const SceneCall& call) {
    CallArguments arguments(call, {});
    std::vector<ZR_Rect> segments = call.get<SceneSegments>("segments").rects;
    Paint stroke(call, "stroke");
    setDeviceProperties(lineAttributes(call));
    device_->DrawLines(segments.data(), static_cast<long>(segments.size()), stroke.get(), call.number("lineWidth"),
                       call.flag("antialias"), arguments.dash());
    setDeviceProperties({});
}

void ScenePainter::arc(const SceneCall& call) {
    CallArguments arguments(call, lineAttributes(call));
    ZR_Rect box = call.get<ZR_Rect>("box");
    Paint fill(call, "fill"), stroke(call, "stroke");
    device_->DrawArc(&box, call.number("start"), call.number("end"), call.flag("clockwise"), fill.used(), stroke.used(),
                     fill.get(), stroke.get(), call.number("lineWidth"), call.flag("antialias"), arguments.matrix(),
                     arguments.gradient(), arguments.properties(), arguments.dash());
}

// A box without area cannot be laid into another one; a point more on both sides moves it all the same.
static void WidenTogether(ZR_Rect* bounds, ZR_Rect* target) {
    if (bounds->right <= bounds->left) {
        bounds->right = bounds->left + 1;
        target->right = target->left + 1;
    }
    if (bounds->bottom <= bounds->top) {
        bounds->bottom = bounds->top + 1;
        target->bottom = target->top + 1;
    }
}

void ScenePainter::path(const SceneCall& call) {
    Text data(call.get<std::u16string>("data"));
    Block block;
    ZR_Handle* records = block.get();
    ZR_CreateHandleFromPathText(data.get(), records, nullptr);
    if (records->count == 0) return;
    ZR_Rect bounds;
    ZR_GetPathBoundingBox(records, &bounds);
    if (call.has("bounds")) bounds = call.get<ZR_Rect>("bounds");
    ZR_Rect target = call.has("box") ? call.get<ZR_Rect>("box") : bounds;
    WidenTogether(&bounds, &target);
    Attributes more = lineAttributes(call);
    bool smooth = call.flag("smooth");
    if (svgHelped()) {
        if (!SameRect(bounds, target)) ZR_ScalePathHandle(records, &bounds, &target);
        if (smooth) Smooth(records);
        if (call.has("gradient")) {
            more.emplace_back("style", "fill:url(#gradient" + std::to_string(device_->svg->gradientCount + 1) + ")");
            if (call.whole("rule") == ZR_FILL_EVENODD) more.emplace_back("fill-rule", "evenodd");
        }
    }
    auto gradient = preparedGradient(call, target, /*local*/ true);
    CallArguments arguments(call, more, gradient ? &*gradient : nullptr);
    Paint fill(call, "fill"), stroke(call, "stroke");
    device_->DrawPath(smooth, records, &target, &bounds, fill.used() || arguments.gradient(), stroke.used(), fill.get(),
                      stroke.get(), call.number("lineWidth"), call.flag("antialias"), arguments.matrix(),
                      arguments.gradient(), arguments.properties(), arguments.dash(), nullptr,
                      static_cast<ZR_Fillrule>(call.whole("rule")));
}

// Text -------------------------------------------------------------------------------------------------------------

// SVG text of the library stands at whole points, in whole sizes, and never turns by itself.
static std::vector<std::pair<std::string, std::string>> SizeAttribute(const SceneFont& font) {
    if (font.size == std::trunc(font.size)) return {};
    return {{"style", "font-size:" + Number(font.size) + "px"}};
}

void ScenePainter::drawTextLine(const SceneCall& call, ZR_Text* text, float x, float y, const Attributes& more) {
    const auto& fontOfCall = call.get<SceneFont>("font");
    Font font(fontOfCall);
    Paint fill(call, "fill");
    float rotation = call.number("rotation");
    Attributes attributes = more;
    if (svgHelped())
        for (const auto& attribute : SizeAttribute(fontOfCall)) attributes.push_back(attribute);
    CallArguments arguments(call, attributes);
    ZR_Matrix* matrix = arguments.matrix();
    ZR_Matrix helped{1, 0, 0, 1, x - std::trunc(x), y - std::trunc(y)};
    ClipInForce before;
    if (svgHelped()) {
        if (rotation != 0 && !matrix) {
            double radians = -static_cast<double>(rotation) * std::numbers::pi / 180;
            auto k = static_cast<float>(std::cos(radians)), s = static_cast<float>(std::sin(radians));
            ZR_Matrix turn{k, s, -s, k, x - k * x + s * y, y - s * x - k * y};
            helped.Multiply(&turn);
        }
        helped = Product(helped, matrix);
        if (!matrix && rotation != 0) before = turnClip(&helped);
        matrix = &helped;
    } else if (matrix && !device_->svg) {
        *matrix = ForSystem(*matrix, device_->bounds.bottom - device_->bounds.top);
        rotation = 0;  // only moves the text to the origin there
    }
    device_->DrawText(text, x, y, font.get(), fill.get(), rotation, call.flag("antialias"), matrix,
                      arguments.properties());
    if (before.turned) restoreClip(before);
}

void ScenePainter::text(const SceneCall& call) {
    Text text(call.get<std::u16string>("text"));
    ZR_Point at = call.get<ZR_Point>("at");
    drawTextLine(call, text.get(), at.x, at.y, {});
}

void ScenePainter::alignedText(const SceneCall& call) {
    Text text(call.get<std::u16string>("text"));
    float left = call.number("left"), right = call.number("right"), y = call.number("y");
    long align = call.whole("align");
    if (svgHelped()) {  // whoever shows it centres by his own font
        if (align == ZR_ALIGNMENT_CENTER)
            return drawTextLine(call, text.get(), (left + right) / 2, y, {{"text-anchor", "middle"}});
        if (align == ZR_ALIGNMENT_RIGHT) return drawTextLine(call, text.get(), right, y, {{"text-anchor", "end"}});
        return drawTextLine(call, text.get(), left, y, {});
    }
    Font font(call.get<SceneFont>("font"));
    Paint fill(call, "fill");
    CallArguments arguments(call, {});
    ZR_Matrix* matrix = arguments.matrix();
    if (matrix && !device_->svg) *matrix = ForSystem(*matrix, device_->bounds.bottom - device_->bounds.top);
    device_->DrawTextAlignment(text.get(), left, right, y, font.get(), fill.get(), static_cast<ZR_Alignment>(align),
                               matrix ? 0 : call.number("rotation"), call.flag("antialias"), matrix,
                               arguments.properties());
}

void ScenePainter::textLayout(const SceneCall& call) {
    Text text(call.get<std::u16string>("text"));
    ZR_Rect box = call.get<ZR_Rect>("box");
    const auto& fontOfCall = call.get<SceneFont>("font");
    Font font(fontOfCall);
    Paint fill(call, "fill");
    Attributes more;
    if (svgHelped()) more = SizeAttribute(fontOfCall);
    if (svgHelped() && call.number("kerning") != 0)
        more.emplace_back("style", "letter-spacing:" + Number(call.number("kerning")) + "px");
    CallArguments arguments(call, more);
    device_->DrawTextLayout(text.get(), &box, static_cast<ZR_Alignment>(call.whole("align")),
                            static_cast<ZR_Alignment_Vertical>(call.whole("vertical")), font.get(), fill.get(),
                            call.flag("antialias"), arguments.matrix(), arguments.properties(), call.flag("wordWrap"),
                            ZR_TEXT_DRAW, call.flag("clip"), call.number("lineSpacing"), call.number("kerning"),
                            call.flag("keepTop"));
}

void ScenePainter::styledText(const SceneCall& call) {
    Text styled(call.get<std::u16string>("text")), plain;
    ZR_Rect box = call.get<ZR_Rect>("box");
    Font font(call.get<SceneFont>("font"));
    Paint fill(call, "fill");
    CallArguments arguments(call, {});
    ZR_MultiStyleText runs;
    runs.CreateWith4DStyledText(styled.get(), plain.get(), font.get(), fill.get());
    device_->DrawMultiStyleText(plain.get(), &runs, &box, static_cast<ZR_Alignment>(call.whole("align")),
                                static_cast<ZR_Alignment_Vertical>(call.whole("vertical")), font.get(), fill.get(),
                                call.flag("antialias"), arguments.matrix(), arguments.properties(),
                                call.flag("wordWrap"), ZR_TEXT_DRAW, /*lastFlag*/ false, call.number("lineSpacing"),
                                call.number("kerning"), call.flag("keepTop"));
    runs.Dispose();
}

// Pictures and layers ----------------------------------------------------------------------------------------------

static constexpr long kCentred = 1, kStretched = 2, kTopLeft = 3, kTopLeftToo = 4, kFittedAtTop = 5, kFitted = 6,
                      kTiled = 7;
static constexpr float kMostRows = 1000;  // of tiles in SVG

// Where pixels show it in natural size or fitted; the library's SVG knows the box alone.
static ZR_Rect PlaceInBox(const ZR_Picture* picture, const ZR_Rect& box, long mode) {
    auto width = static_cast<float>(picture->width), height = static_cast<float>(picture->height);
    float boxWidth = box.right - box.left, boxHeight = box.bottom - box.top;
    if (mode == kFitted) {
        float scale = std::min(boxWidth / width, boxHeight / height);
        width *= scale;
        height *= scale;
    }
    bool topLeft = mode == kTopLeft || mode == kTopLeftToo;
    float left = topLeft ? box.left : box.left + (boxWidth - width) / 2;
    float top = topLeft ? box.top : box.top + (boxHeight - height) / 2;
    return {top, left, left + width, top + height};
}

// The clip in force within a box, for what reaches beyond it.
ScenePainter::ClipInForce ScenePainter::clipToBox(const ZR_Rect& box, const ZR_Matrix* matrix) {
    ClipInForce before{true, device_->svg->currentClip, regionClip_};
    ZR_Rect rect{};
    std::vector<ZR_Rect> within = {box}, parts;
    if (!matrix && device_->svg->GetCurrentClip(&rect)) within = {rect};
    else if (!matrix && !regionClip_.empty()) within = regionParts_;
    for (ZR_Rect part : within) {
        ZR_CutBounds(&part, &box);
        if (part.right > part.left) parts.push_back(part);
    }
    addRegionClip(parts, nullptr);
    return before;
}

// Tiles in rows as on pixels; the library's SVG has one row.
static std::vector<ZR_Rect> RowsOf(const ZR_Picture* picture, const ZR_Rect& box) {
    auto width = static_cast<float>(picture->width), height = static_cast<float>(picture->height);
    std::vector<ZR_Rect> rows;
    float right = box.left + std::ceil((box.right - box.left) / width) * width;
    for (float row = 0; row < std::min(kMostRows, std::ceil((box.bottom - box.top) / height)); ++row)
        rows.push_back({box.top + row * height, box.left, right, box.top + (row + 1) * height});
    return rows;
}

void ScenePainter::picture(const SceneCall& call) {
    ZR_Picture* picture = call.get<std::shared_ptr<ScenePicture>>("source")->get();
    CallArguments arguments(call, {});
    ZR_Rect box = call.get<ZR_Rect>("box");
    long mode = call.whole("mode");
    std::vector<ZR_Rect> places = {box};
    ClipInForce before;
    bool knowsSize = picture->width > 0 && picture->height > 0 && box.right > box.left && box.bottom > box.top;
    if (svgHelped() && knowsSize && mode == kTiled) {
        places = RowsOf(picture, box);
        before = clipToBox(box, arguments.matrix());
    } else if (svgHelped() && knowsSize && mode != kStretched && mode != kFittedAtTop) {
        places = {PlaceInBox(picture, box, mode)};
        if (mode != kFitted) before = clipToBox(box, arguments.matrix());
        mode = kStretched;
    }
    picture->displayFormat = static_cast<short>(mode);
    for (ZR_Rect& place : places)
        picture->Draw(device_, &place, call.number("opacity") * 100, arguments.matrix(),
                      static_cast<ZR_Alignment>(call.whole("align")), arguments.properties());
    if (before.turned) restoreClip(before);
}

// A document of its own, as a picture in this one: identifiers of the two cannot meet.
void ScenePainter::layerSvg(const SceneCall& call, const ZR_Rect& rect, ZR_Matrix* matrix) {
    if (plain_) return leaveOut(call);
    ZR_Rect bounds{0, 0, static_cast<float>(call.whole("width")), static_cast<float>(call.whole("height"))};
    ZR_Device inner;
    inner.CreateSVG(&bounds);
    ScenePainter painter(&inner, pixelScale_, plain_);
    painter.paintCalls(call.get<std::vector<SceneCall>>("calls"));
    leftOut_.insert(leftOut_.end(), painter.leftOut_.begin(), painter.leftOut_.end());
    Block xml;
    inner.GetSVGBLOB(xml.get());
    inner.DisposeCustomProperties();
    inner.Dispose();
    std::string link = "data:image/svg+xml;base64,";
    AppendBase64(link, xml.bytes().data(), xml.bytes().size());

    ZR_DOM_Tree* svg = device_->svg;
    Text element, value(Utf16Of(link));
    svg->CreateElement("image", element.get());
    device_->SetCustomProperties(element.get(), &device_->customProperties);
    svg->SetAttributeDouble(element.get(), "x", rect.left);
    svg->SetAttributeDouble(element.get(), "y", rect.top);
    svg->SetAttributeDouble(element.get(), "width", rect.right - rect.left);
    svg->SetAttributeDouble(element.get(), "height", rect.bottom - rect.top);
    svg->SetAttributeText(element.get(), "preserveAspectRatio", "none");
    svg->SetAttributeText(element.get(), "xlink:href", value.get());
    svg->SetMatrix(element.get(), matrix, "transform");
    svg->Clip(element.get());
}

void ScenePainter::layer(const SceneCall& call) {
    CallArguments arguments(call, {});
    long width = call.whole("width"), height = call.whole("height");
    ZR_Point at = call.get<ZR_Point>("at");
    ZR_Rect rect{at.y, at.x, at.x + static_cast<float>(width), at.y + static_cast<float>(height)};
    if (call.has("box")) rect = call.get<ZR_Rect>("box");
    if (device_->svg) return layerSvg(call, rect, arguments.matrix());
    ZR_Device inner;
    if (inner.CreateOffscreen(width, height, /*bitmap*/ false, 0, 0)) {
        ScenePainter painter(&inner, 1, plain_);
        painter.paintCalls(call.get<std::vector<SceneCall>>("calls"));
        if (call.has("box")) ZR_CopyScaleBits(&inner, device_, &rect);
        else if (call.flag("clip")) device_->DrawLayer(&inner, &rect, arguments.matrix());
        else device_->DrawLayerWOclip(&inner, &rect, arguments.matrix());
    }
    inner.DisposeCustomProperties();
    inner.Dispose();
}

// Regions, gradients, shadows --------------------------------------------------------------------------------------

void ScenePainter::region(const SceneCall& call) {
    CallArguments arguments(call, {});
    const auto& steps = call.get<std::vector<ZR_RegionRecord>>("steps");
    Region region(steps);
    Paint fill(call, "fill"), stroke(call, "stroke");
    if (fill.used() && svgHelped()) {  // the library writes what is taken away as one more outline
        Region parts(PartsOf(steps));
        setDeviceProperties({{"shape-rendering", "crispEdges"}});
        device_->FillRegion(parts.get(), fill.get());
        setDeviceProperties({});
    } else if (fill.used()) {
        device_->FillRegion(region.get(), fill.get());
    }
    if (!stroke.used()) return;
    Attributes dashes;
    if (svgHelped() && call.has("dash")) {
        std::string lengths;
        for (float length : call.get<SceneDash>("dash").lengths)
            lengths += (lengths.empty() ? "" : " ") + Number(length);
        dashes.emplace_back("stroke-dasharray", lengths);
    }
    if (svgHelped()) {  // what FrameRegion writes
        device_->framePath.Dispose();
        device_->framePath = region.get()->CreatePath();
    }
    setDeviceProperties(dashes);
    device_->FrameRegion(region.get(), stroke.get(), call.number("lineWidth"), arguments.dash());
    setDeviceProperties({});
}

// A rectangle with a gradient in points, cut to the clip: what a gradient over the clip is in SVG.
void ScenePainter::fillClip(ZR_Rect rect, const SceneGradient& gradient) {
    ZR_Rect clip{};
    if (device_->svg->GetCurrentClip(&clip)) ZR_CutBounds(&rect, &clip);
    ZR_Gradient made;
    ZR_RGBColor none{0, 0, 0, 0};
    MakeGradient(gradient, &made);
    device_->DrawRect(&rect, /*fill*/ true, /*stroke*/ false, &none, &none, 0, true, 0, /*rounded*/ false, nullptr,
                      &made, nullptr, nullptr);
    made.Dispose();
}

void ScenePainter::gradient(const SceneCall& call) {
    ZR_Rect box = call.has("box") ? call.get<ZR_Rect>("box") : wholeBounds();
    SceneGradient source = call.get<SceneGradient>("gradient");
    if (device_->svg) return plain_ ? leaveOut(call) : fillClip(wholeBounds(), InPoints(source, box));
    if (!source.matrix.IsIdentity()) source = InPoints(source, box);
    CallArguments arguments(call, {}, &source);
    CGContextSaveGState(device_->context);
    if (!source.matrix.IsIdentity()) {
        ZR_Matrix matrix = ForSystem(source.matrix, device_->bounds.bottom - device_->bounds.top);
        CGContextConcatCTM(device_->context, device_->GetSystemMatrix(&matrix));
    }
    device_->DrawGradient(arguments.gradient(), &box);  // leaves the scale of percent in the context
    CGContextRestoreGState(device_->context);
}

void ScenePainter::shading(const SceneCall& call) {
    ZR_Rect box = call.get<ZR_Rect>("box");
    Paint fill(call, "fill");
    bool vertical = call.flag("vertical");
    if (!device_->svg) {
        if (vertical) ZR_SHADING_AxialShadingVertical(device_, &box, fill.get());
        else ZR_SHADING_AxialShading(device_, &box, fill.get());
        return;
    }
    if (plain_) return leaveOut(call);
    ZR_Rect all = wholeBounds();
    SceneGradient fading;
    fading.percent = false;
    fading.from = {box.left, box.top};
    fading.to = vertical ? ZR_Point{box.left, box.bottom} : ZR_Point{box.right, box.top};
    ZR_RGBColor start = *fill.get(), end = start;
    start.alpha = 1;
    end.alpha = 0.5F;
    fading.stops = {{0.0F, start}, {1.0F, end}};
    if (vertical) fillClip({box.top, all.left, all.right, box.bottom}, fading);
    else fillClip({all.top, box.left, box.right, all.bottom}, fading);
}

// The shadow of pixels: black of a third, blurred, to the right and up.
void ScenePainter::addShadowFilter(const SceneCall& call, const ZR_Rect& rect) {
    ZR_Point offset = call.get<ZR_Point>("offset");
    auto blur = static_cast<float>(call.whole("blur"));
    ZR_DOM_Tree* svg = device_->svg;
    std::string id = "shadow" + std::to_string(++shadows_);
    Text filter, step, part;
    AddElement(svg, &svg->defs, "filter",
               {{"id", id},
                {"filterUnits", "userSpaceOnUse"},
                {"color-interpolation-filters", "sRGB"},
                {"x", Number(rect.left - 2 * blur)},
                {"y", Number(rect.top - 2 * blur - offset.y)},
                {"width", Number(rect.right - rect.left + 4 * blur + offset.x)},
                {"height", Number(rect.bottom - rect.top + 4 * blur + offset.y)}},
               filter.get());
    AddElement(svg, filter.get(), "feGaussianBlur", {{"in", "SourceAlpha"}, {"stdDeviation", Number(blur / 2)}},
               step.get());
    AddElement(svg, filter.get(), "feOffset", {{"dx", Number(offset.x)}, {"dy", Number(-offset.y)}}, step.get());
    AddElement(svg, filter.get(), "feComponentTransfer", {{"result", "shadow"}}, step.get());
    AddElement(svg, step.get(), "feFuncA", {{"type", "linear"}, {"slope", "0.3333"}}, part.get());
    AddElement(svg, filter.get(), "feMerge", {}, step.get());
    AddElement(svg, step.get(), "feMergeNode", {{"in", "shadow"}}, part.get());
    AddElement(svg, step.get(), "feMergeNode", {{"in", "SourceGraphic"}}, part.get());
    setDeviceProperties({{"filter", "url(#" + id + ")"}});
}

void ScenePainter::shadow(const SceneCall& call) {
    ZR_Rect box = call.get<ZR_Rect>("box");
    ZR_Point offset = call.get<ZR_Point>("offset");
    Paint fill(call, "fill");
    bool casts = offset.x > 0 && offset.y > 0;
    if (svgHelped() && casts) addShadowFilter(call, box);
    else if (device_->svg && casts) leaveOut(call);
    auto scale = static_cast<float>(pixelScale_);  // the library counts shadows in pixels
    device_->FillRectWithShadow(&box, call.number("radius") * 2, fill.get(), offset.x * scale, offset.y * scale,
                                std::lround(static_cast<double>(call.whole("blur")) * pixelScale_),
                                call.flag("antialias"));
    setDeviceProperties({});
}

// State ------------------------------------------------------------------------------------------------------------

// A clip of rectangles that do not meet, as an attribute of later elements.
void ScenePainter::addRegionClip(const std::vector<ZR_Rect>& parts, ZR_Matrix* matrix) {
    Region region(parts);
    ZR_Handle path = region.get()->CreatePath();
    Text data, clip, shape;
    ZR_GetPathText(&path, data.get());
    path.Dispose();
    std::string id = "region" + std::to_string(++regionClips_);
    ZR_DOM_Tree* svg = device_->svg;
    AddElement(svg, &svg->defs, "clipPath", {{"id", id}}, clip.get());
    svg->CreateElement(clip.get(), "path", shape.get());
    svg->SetAttributeText(shape.get(), "d", data.get());
    svg->SetMatrix(shape.get(), matrix, "transform");
    svg->currentClip = 0;
    regionClip_ = "url(#" + id + ")";
    setDeviceProperties({});
}

void ScenePainter::clip(const SceneCall& call) {
    regionClip_.clear();
    if (call.has("steps")) {
        const auto& steps = call.get<std::vector<ZR_RegionRecord>>("steps");
        if (device_->svg && plain_) return leaveOut(call);
        if (device_->svg) {
            regionParts_ = PartsOf(steps);
            return addRegionClip(regionParts_, nullptr);
        }
        Region region(steps);
        return device_->SetClipRegion(region.get());
    }
    ZR_Rect box = call.has("box") ? call.get<ZR_Rect>("box") : wholeBounds();
    ZR_Rect within = call.has("within") ? call.get<ZR_Rect>("within") : ZR_Rect{};
    if (call.has("within")) device_->ClipRect(&box, &within);
    else if (svgHelped() && !call.has("box")) device_->svg->currentClip = 0;  // the whole: none is needed
    else device_->ClipRect(&box);
    setDeviceProperties({});
}

void ScenePainter::clear(const SceneCall& call) {
    if (device_->svg) return leaveOut(call);
    ZR_Rect box = call.has("box") ? call.get<ZR_Rect>("box") : wholeBounds();
    device_->ClearRect(&box);
}

void ScenePainter::transform(const SceneCall& call) {
    if (device_->svg) return leaveOut(call);
    ZR_Matrix matrix = ForSystem(call.get<ZR_Matrix>("matrix"), device_->bounds.bottom - device_->bounds.top);
    device_->SetTransform(&matrix);
}

void ScenePainter::properties(const SceneCall& call) {
    deviceProperties_ = call.get<SceneProperties>("set");
    setDeviceProperties({});
}

}  // namespace zrtool
