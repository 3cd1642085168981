#include "graphics/ZR_API_SVGDocument.h"

#include <algorithm>
#include <climits>
#include <cstdio>

#include "graphics/ZR_API_Gradient.h"
#include "graphics/ZR_API_Matrix.h"
#include "plugin/ZR_API_Bridge.h"
#include "plugin/ZR_API_Numbers.h"

enum : int {  // the host's commands
    kCloseDocument = 722,
    kCreateDocument = 861,
    kExportToVariable = 863,
    kCreateElement = 865,
    kSetAttribute = 866,
    kSetElementValue = 868,
    kExportToPicture = 1017,
    kAppendChild = 1080
};

// Arguments --------------------------------------------------------------------------------------------------------
// The host only reads what these commands are given, so the variables lend the texts that are there: nothing is copied
// and nothing has to be cleared.

static constexpr long kNameUnits = 255;  // longer names are cut, as everywhere on the bridge

// As PA_CreateVariable makes it, in place: a record has 260 bytes, and there are three of them an attribute.
static void Begin(PA_Variable* variable, PA_VariableKind kind) {
    memset(static_cast<void*>(variable), 0, sizeof *variable);
    variable->fType = static_cast<uint8_t>(kind);
}

static void Lend(PA_Variable* variable, PA_Unichar* units, long count) {
    Begin(variable, eVK_Text);
    variable->uValue.fText.fLength = static_cast<int32_t>(std::clamp(count, 0L, static_cast<long>(INT_MAX)));
    variable->uValue.fText.fString = units;
}

static void Lend(PA_Variable* variable, ZR_Text* text) {
    PA_Unichar* units = text ? text->GetUniCharPtr() : nullptr;
    Lend(variable, units, units ? text->count : 0);
}

struct LentName {  // bytes as units, for the length of a call
    PA_Unichar units[kNameUnits + 1];
    long count;
};

static void Lend(PA_Variable* variable, LentName* name, const char* bytes) {
    long n = 0;
    for (; bytes && bytes[n] && n < kNameUnits; n++) name->units[n] = static_cast<unsigned char>(bytes[n]);
    name->units[n] = 0;
    name->count = n;
    Lend(variable, name->units, n);
}

static void SetReal(PA_Variable* variable, double value) {
    Begin(variable, eVK_Real);
    PA_SetRealVariable(variable, value);
}

static void SetLong(PA_Variable* variable, long value) {  // a longint has 32 bits: beyond them the nearest end
    Begin(variable, eVK_Longint);
    PA_SetLongintVariable(variable, static_cast<int>(std::clamp<long>(value, INT_MIN, INT_MAX)));
}

// Commands ---------------------------------------------------------------------------------------------------------

static void Run(int command, PA_Variable* arguments, short count) {
    PA_Variable result = PA_ExecuteCommandByID(command, arguments, count);
    if (PA_GetVariableKind(&result) != eVK_Undefined) PA_ClearVariable(&result);
}

// out becomes the text that the command answers.
static void RunForReference(int command, PA_Variable* arguments, short count, ZR_Text* out) {
    PA_Variable result = PA_ExecuteCommandByID(command, arguments, count);
    out->Dispose();
    out->CreateFrom4DVariable(&result);
    if (PA_GetVariableKind(&result) != eVK_Undefined) PA_ClearVariable(&result);
}

// The attribute of arguments [1], the name, and [2], the value, on an element.
static void SetAttribute(ZR_Text* element, PA_Variable* arguments) {
    Lend(&arguments[0], element);
    Run(kSetAttribute, arguments, 3);
}

// Life -------------------------------------------------------------------------------------------------------------

static constexpr long kClipGrowStep = 20;

void ZR_DOM_Tree::Create(ZR_Text* rootName) {
    root.Create();
    defs.Create();
    clips.Create(sizeof(ZR_Rect), 0);
    clips.growStep = kClipGrowStep;
    clipSlots.Create(sizeof(long), 0);
    currentClip = gradientCount = 0;
    PA_Variable name;
    Lend(&name, rootName);
    RunForReference(kCreateDocument, &name, 1, &root);
    CreateElement(&root, "defs", &defs);
}

void ZR_DOM_Tree::Create(const char* rootName) {
    ZR_Text name;
    name.Create();
    name.AddString(rootName);
    Create(&name);
    name.Dispose();
}

void ZR_DOM_Tree::Dispose() {
    PA_Variable reference;
    Lend(&reference, &root);
    Run(kCloseDocument, &reference, 1);
    root.Dispose();
    defs.Dispose();
    clips.Dispose();
    clipSlots.Dispose();
    currentClip = gradientCount = 0;
}

// Elements ---------------------------------------------------------------------------------------------------------

void ZR_DOM_Tree::CreateElement(const char* name, ZR_Text* out) { CreateElement(&root, name, out); }

void ZR_DOM_Tree::CreateElement(ZR_Text* parent, const char* name, ZR_Text* out) {
    PA_Variable arguments[2];
    LentName lent;
    Lend(&arguments[0], parent);
    Lend(&arguments[1], &lent, name);
    RunForReference(kCreateElement, arguments, 2, out);
}

void ZR_DOM_Tree::CreateElement(ZR_Text* parent, ZR_Text* name, ZR_Text* out) {
    PA_Variable arguments[2];
    Lend(&arguments[0], parent);
    Lend(&arguments[1], name);
    RunForReference(kCreateElement, arguments, 2, out);
}

void ZR_DOM_Tree::AppendChildNode(ZR_Text* element, long kind, ZR_Text* value) {
    PA_Variable arguments[3];
    Lend(&arguments[0], element);
    SetLong(&arguments[1], kind);
    Lend(&arguments[2], value);
    Run(kAppendChild, arguments, 3);
}

void ZR_DOM_Tree::SetElementValue(ZR_Text* element, ZR_Text* value) {
    PA_Variable arguments[2];
    Lend(&arguments[0], element);
    Lend(&arguments[1], value);
    Run(kSetElementValue, arguments, 2);
}

void ZR_DOM_Tree::SetElementValueWithBreaks(ZR_Text* element, ZR_Text* value) {
    if (!value) return;
    ZR_Text piece, word;
    piece.Create();
    word.Create();
    word.AddString("tbreak");
    const unsigned short* units = value->Units();
    for (long i = 0, start = 0; units && i <= value->count; i++) {
        bool cut = i < value->count && units[i] == '\r';
        if (!cut && i < value->count) continue;
        piece.SetLength(0);
        piece.AddUniBuffer(units + start, i - start);
        if (piece.count > 0) AppendChildNode(element, ZR_XML_DATA, &piece);
        if (cut) AppendChildNode(element, ZR_XML_ELEMENT, &word);
        if (cut && i + 1 < value->count && units[i + 1] == '\n') i++;
        start = i + 1;
    }
    word.Dispose();
    piece.Dispose();
}

// Attributes -------------------------------------------------------------------------------------------------------

void ZR_DOM_Tree::SetAttributeText(ZR_Text* element, ZR_Text* name, ZR_Text* value) {
    PA_Variable arguments[3];
    Lend(&arguments[1], name);
    Lend(&arguments[2], value);
    SetAttribute(element, arguments);
}

void ZR_DOM_Tree::SetAttributeText(ZR_Text* element, const char* name, ZR_Text* value) {
    PA_Variable arguments[3];
    LentName lent;
    Lend(&arguments[1], &lent, name);
    Lend(&arguments[2], value);
    SetAttribute(element, arguments);
}

void ZR_DOM_Tree::SetAttributeText(ZR_Text* element, const char* name, const char* value) {
    if (ZR_CStringLength(value) > kNameUnits) {
        ZR_Text text;
        text.Create();
        text.AddString(value);
        SetAttributeText(element, name, &text);
        text.Dispose();
        return;
    }
    PA_Variable arguments[3];
    LentName lent, lentValue;
    Lend(&arguments[1], &lent, name);
    Lend(&arguments[2], &lentValue, value);
    SetAttribute(element, arguments);
}

void ZR_DOM_Tree::SetAttributeDouble(ZR_Text* element, ZR_Text* name, double value) {
    PA_Variable arguments[3];
    Lend(&arguments[1], name);
    SetReal(&arguments[2], value);
    SetAttribute(element, arguments);
}

void ZR_DOM_Tree::SetAttributeDouble(ZR_Text* element, const char* name, double value) {
    PA_Variable arguments[3];
    LentName lent;
    Lend(&arguments[1], &lent, name);
    SetReal(&arguments[2], value);
    SetAttribute(element, arguments);
}

void ZR_DOM_Tree::SetAttributeLong(ZR_Text* element, ZR_Text* name, long value) {
    PA_Variable arguments[3];
    Lend(&arguments[1], name);
    SetLong(&arguments[2], value);
    SetAttribute(element, arguments);
}

void ZR_DOM_Tree::SetAttributeLong(ZR_Text* element, const char* name, long value) {
    PA_Variable arguments[3];
    LentName lent;
    Lend(&arguments[1], &lent, name);
    SetLong(&arguments[2], value);
    SetAttribute(element, arguments);
}

void ZR_DOM_Tree::SetColor(ZR_Text* element, ZR_RGBColor* color, const char* colorName, const char* opacityName) {
    if (!color) return;
    char text[8];
    color->GetRGBWebtext(text);
    SetAttributeText(element, colorName, text);
    if (color->alpha != 1) SetAttributeDouble(element, opacityName, color->alpha);
}

void ZR_DOM_Tree::SetMatrix(ZR_Text* element, ZR_Matrix* matrix, const char* name) {
    if (!matrix || matrix->IsIdentity()) return;
    ZR_Text text;
    text.Create();
    matrix->GetText(&text);
    SetAttributeText(element, name, &text);
    text.Dispose();
}

// Gradients --------------------------------------------------------------------------------------------------------

static constexpr long kPercentDecimals = 3;

static void SetPercent(ZR_DOM_Tree* tree, ZR_Text* element, const char* name, float value) {
    ZR_Text text;
    text.Create();
    text.AddDouble(value, kPercentDecimals, /*keepZeros*/ false);
    text.AddUnit('%');
    tree->SetAttributeText(element, name, &text);
    text.Dispose();
}

static void SetLength(ZR_DOM_Tree* tree, ZR_Text* element, const char* name, float value, bool userUnits) {
    if (userUnits) tree->SetAttributeDouble(element, name, value);
    else SetPercent(tree, element, name, value);
}

static void SetLinear(ZR_DOM_Tree* tree, ZR_Text* element, const ZR_Gradient* g, bool userUnits) {
    SetLength(tree, element, "x1", g->x1, userUnits);
    SetLength(tree, element, "y1", g->y1, userUnits);
    SetLength(tree, element, "x2", g->x2, userUnits);
    SetLength(tree, element, "y2", g->y2, userUnits);
}

static void SetRadial(ZR_DOM_Tree* tree, ZR_Text* element, const ZR_Gradient* g, bool userUnits) {
    SetLength(tree, element, "cx", g->x1, userUnits);
    SetLength(tree, element, "cy", g->y1, userUnits);
    tree->SetAttributeDouble(element, "r", g->radius);
    if (g->x2 != 0) SetLength(tree, element, "fx", g->x2, userUnits);
    if (g->y2 != 0) SetLength(tree, element, "fy", g->y2, userUnits);
    // Required: "r" is written a second time, in percent, and keeps its place among the attributes.
    if (!userUnits) SetPercent(tree, element, "r", g->radius);
}

static void AddStop(ZR_DOM_Tree* tree, ZR_Text* definition, ZR_GradientOffset* stop, bool userUnits) {
    ZR_Text element;
    element.Create();
    tree->CreateElement(definition, "stop", &element);
    SetLength(tree, &element, "offset", userUnits ? stop->offset : stop->offset * 100, userUnits);
    tree->SetColor(&element, &stop->color, "stop-color", "stop-opacity");
    element.Dispose();
}

void ZR_DOM_Tree::SetGradient(ZR_Text* element, ZR_Gradient* gradient) {
    if (!gradient || gradient->boundsType == ZR_GRADIENT_NONE || gradient->stops.count < 1) return;
    const bool userUnits = gradient->boundsType == ZR_GRADIENT_USER;
    char id[32], fill[48];
    gradientCount++;
    snprintf(id, sizeof id, "gradient%ld", gradientCount);
    snprintf(fill, sizeof fill, "url(#gradient%ld)", gradientCount);

    ZR_Text definition;
    definition.Create();
    CreateElement(&defs, gradient->isLinear ? "linearGradient" : "radialGradient", &definition);
    SetAttributeText(&definition, "id", id);
    if (gradient->isLinear) SetLinear(this, &definition, gradient, userUnits);
    else SetRadial(this, &definition, gradient, userUnits);
    SetMatrix(&definition, &gradient->matrix, "gradientTransform");
    if (userUnits) SetAttributeText(&definition, "gradientUnits", "userSpaceOnUse");
    SetAttributeText(element, "fill", fill);
    for (long i = 1; i <= gradient->stops.count; i++)
        if (char* stop = gradient->stops.GetMemPtr(i))
            AddStop(this, &definition, reinterpret_cast<ZR_GradientOffset*>(stop), userUnits);
    definition.Dispose();
}

// Clips ------------------------------------------------------------------------------------------------------------

struct WholeRect {  // within 32 bits, as a longint carries it
    long left, top, right, bottom;
};

static long Within32Bits(long value) { return std::clamp<long>(value, INT_MIN, INT_MAX); }

static uint64_t HashOf(const ZR_Rect* rect) {
    uint64_t words[2];
    memcpy(words, rect, sizeof words);
    // Whole floats have zeros in their low bits: the high ones are brought down before each multiplication.
    uint64_t mixed = (words[0] ^ words[0] >> 32) * 0x9E3779B97F4A7C15u;
    mixed = (mixed ^ mixed >> 32 ^ words[1] ^ words[1] >> 32) * 0xC2B2AE3D27D4EB4Fu;
    return mixed ^ mixed >> 32;
}

// The slot of a rectangle, or the free one where it belongs; null = there are no slots.
static long* SlotOf(ZR_DOM_Tree* tree, const ZR_Rect* rect) {
    const uint64_t slots = static_cast<uint64_t>(tree->clipSlots.count);
    if (slots == 0) return nullptr;
    for (uint64_t at = HashOf(rect) % slots;; at = (at + 1) % slots) {
        auto slot = reinterpret_cast<long*>(tree->clipSlots.GetMemPtr(static_cast<long>(at) + 1));
        if (*slot == 0 || memcmp(tree->clips.GetMemPtr(*slot), rect, sizeof *rect) == 0) return slot;
    }
}

// Room for one clip more, with half of the slots free; false = no memory.
static bool GrowSlots(ZR_DOM_Tree* tree) {
    const long slots = tree->clipSlots.count;
    if (tree->clips.count * 2 < slots) return true;
    const long wanted = slots == 0 ? 64 : slots * 2;
    tree->clipSlots.Resize(wanted);
    if (tree->clipSlots.count != wanted) return false;
    memset(tree->clipSlots.data, 0, static_cast<size_t>(wanted) * sizeof(long));
    for (long i = 1; i <= tree->clips.count; i++)
        *SlotOf(tree, reinterpret_cast<ZR_Rect*>(tree->clips.GetMemPtr(i))) = i;
    return true;
}

// The number of a new clip, written under defs; 0 = no memory.
static long AddClip(ZR_DOM_Tree* tree, const WholeRect* whole, const ZR_Rect* rect) {
    if (!GrowSlots(tree)) return 0;
    char* record = tree->clips.AppendGetPtr();
    if (!record) return 0;
    long* slot = SlotOf(tree, rect);
    memcpy(record, rect, sizeof *rect);
    *slot = tree->clips.count;

    char id[32];
    snprintf(id, sizeof id, "clip%ld", tree->clips.count);
    ZR_Text clip, element;
    clip.Create();
    element.Create();
    tree->CreateElement(&tree->defs, "clipPath", &clip);
    tree->SetAttributeText(&clip, "id", id);
    tree->CreateElement(&clip, "rect", &element);
    tree->SetAttributeLong(&element, "x", whole->left);
    tree->SetAttributeLong(&element, "y", whole->top);
    tree->SetAttributeLong(&element, "width", whole->right - whole->left);
    tree->SetAttributeLong(&element, "height", whole->bottom - whole->top);
    element.Dispose();
    clip.Dispose();
    return tree->clips.count;
}

void ZR_DOM_Tree::ClipRect(const ZR_Rect* rect) {
    if (!rect) return;
    // Required: right and bottom go up to whole points, left and top are cut toward zero.
    const WholeRect whole = {Within32Bits(ZR_TruncatedToLong(rect->left)), Within32Bits(ZR_TruncatedToLong(rect->top)),
                             Within32Bits(ZR_FloatToLongAlwaysRoundUp(rect->right)),
                             Within32Bits(ZR_FloatToLongAlwaysRoundUp(rect->bottom))};
    const ZR_Rect key = {static_cast<float>(whole.top), static_cast<float>(whole.left), static_cast<float>(whole.right),
                         static_cast<float>(whole.bottom)};
    const long* slot = SlotOf(this, &key);
    currentClip = slot && *slot != 0 ? *slot : AddClip(this, &whole, &key);
}

bool ZR_DOM_Tree::GetCurrentClip(ZR_Rect* out) {
    *out = {0, 0, 0, 0};
    const char* clip = clips.GetMemPtr(currentClip);
    if (!clip) return false;
    memcpy(out, clip, sizeof *out);
    return true;
}

void ZR_DOM_Tree::Clip(ZR_Text* element) {
    if (currentClip <= 0) return;
    char reference[48];
    snprintf(reference, sizeof reference, "url(#clip%ld)", currentClip);
    SetAttributeText(element, "clip-path", reference);
}

// Output -----------------------------------------------------------------------------------------------------------

void ZR_DOM_Tree::ExportToVar(ZR_Handle* out) {
    PA_Variable arguments[2];
    Lend(&arguments[0], &root);
    arguments[1] = PA_CreateVariable(eVK_Blob);
    Run(kExportToVariable, arguments, 2);
    out->Resize(0);
    const long size = PA_GetBlobVariable(&arguments[1], nullptr);
    if (size > 0) {
        out->Resize(size);
        if (out->count == size) PA_GetBlobVariable(&arguments[1], out->data);
    }
    PA_ClearVariable(&arguments[1]);
}

PA_Variable ZR_DOM_Tree::ExportToPicture() {
    PA_Variable arguments[2];
    Lend(&arguments[0], &root);
    arguments[1] = PA_CreateVariable(eVK_Picture);
    Run(kExportToPicture, arguments, 2);
    return arguments[1];
}
