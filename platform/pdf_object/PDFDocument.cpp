// PDF documents on qpdf: pages, boxes, rotation, and new documents whose pages are stacks of forms.
#include <algorithm>
#include <charconv>
#include <cmath>
#include <map>
#include <memory>
#include <mutex>
#include <qpdf/Pl_Buffer.hh>
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFPageDocumentHelper.hh>
#include <qpdf/QPDFPageObjectHelper.hh>
#include <qpdf/QPDFWriter.hh>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/pdf_object/PDFTable.h"

static constexpr double kLetterWidth = 612, kLetterHeight = 792;  // of a page without a box
static constexpr double kLargestBox = 1e7;                        // points
static constexpr size_t kLongestContent = 256UL << 20;            // bytes of a page, without filters

struct ZRPDocument {
    std::mutex lock;  // qpdf resolves objects when they are asked for
    QPDF file;
    std::vector<QPDFPageObjectHelper> pages;
    bool flattened = false;  // annotations have become part of the pages
};

// Runs a body that may throw; what fails gives the neutral value.
template <class Result, class Body>
static Result Safely(Result neutral, Body body) {
    try {
        return body();
    } catch (const std::exception&) { return neutral; }
}

// Reading ----------------------------------------------------------------------------------------------------------

static ZRPDocument* Open(const uint8_t* bytes, size_t n) {
    return Safely<ZRPDocument*>(nullptr, [&] {
        auto document = std::make_unique<ZRPDocument>();
        document->file.setSuppressWarnings(true);
        document->file.processMemoryFile("memory", reinterpret_cast<const char*>(bytes), n);
        document->pages = QPDFPageDocumentHelper(document->file).getAllPages();
        return document.release();
    });
}

static void Release(ZRPDocument* document) { delete document; }

static long CountPages(ZRPDocument* document) { return static_cast<long>(document->pages.size()); }

// The corners in any order; false = no box.
static bool ReadBox(QPDFObjectHandle box, double out[4]) {
    if (!box.isRectangle()) return false;
    auto r = box.getArrayAsRectangle();
    out[0] = std::min(r.llx, r.urx);
    out[1] = std::min(r.lly, r.ury);
    out[2] = std::abs(r.urx - r.llx);
    out[3] = std::abs(r.ury - r.lly);
    for (int i = 0; i < 4; ++i)
        if (!std::isfinite(out[i]) || std::abs(out[i]) > kLargestBox) return false;
    return out[2] > 0 && out[3] > 0;
}

static void MediaBox(QPDFPageObjectHelper& page, double out[4]) {
    if (ReadBox(page.getAttribute("/MediaBox", false), out)) return;
    out[0] = out[1] = 0;
    out[2] = kLetterWidth;
    out[3] = kLetterHeight;
}

static void CutTo(const double limit[4], double box[4]) {
    for (int i = 0; i < 2; ++i) {
        double low = std::max(box[i], limit[i]), high = std::min(box[i] + box[i + 2], limit[i] + limit[i + 2]);
        if (high <= low) {  // outside of the page: the page
            std::copy_n(limit, 4, box);
            return;
        }
        box[i] = low;
        box[i + 2] = high - low;
    }
}

static void CropBox(QPDFPageObjectHelper& page, double out[4]) {
    double media[4];
    MediaBox(page, media);
    if (!ReadBox(page.getAttribute("/CropBox", false), out)) std::copy_n(media, 4, out);
    CutTo(media, out);
}

static bool GetBox(ZRPDocument* document, long index, int box, double out[4]) {
    static constexpr const char* kNames[] = {nullptr, nullptr, "/BleedBox", "/TrimBox", "/ArtBox"};
    std::lock_guard guard(document->lock);
    return Safely(false, [&] {
        QPDFPageObjectHelper& page = document->pages.at(static_cast<size_t>(index));
        if (box == 0) MediaBox(page, out);
        else if (box == 1 || !ReadBox(page.getAttribute(kNames[box], false), out)) CropBox(page, out);
        return true;
    });
}

static int GetRotation(ZRPDocument* document, long index) {
    std::lock_guard guard(document->lock);
    return Safely(0, [&] {
        auto angle = document->pages.at(static_cast<size_t>(index)).getAttribute("/Rotate", false);
        if (!angle.isNumber() || std::abs(angle.getNumericValue()) > 1e9) return 0;
        auto degrees = static_cast<long>(angle.getNumericValue()) % 360;
        return static_cast<int>((degrees + 360) % 360 / 90 * 90);
    });
}

// Assembly ---------------------------------------------------------------------------------------------------------

static std::string Number(double value) {
    if (!std::isfinite(value)) return "0";
    char text[400];
    auto end = std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, 6).ptr;
    std::string number(text, end);
    number.erase(number.find_last_not_of('0') + 1);
    if (number.back() == '.') number.pop_back();
    return number == "-0" ? "0" : number;
}

static QPDFObjectHandle BoxArray(const double box[4]) {
    return QPDFObjectHandle::newFromRectangle({box[0], box[1], box[0] + box[2], box[1] + box[3]});
}

// Annotations would be lost in a form: their looks become part of the pages, once a document.
static void Flatten(ZRPDocument& document) {
    if (document.flattened) return;
    document.flattened = true;
    Safely(false, [&] {
        QPDFPageDocumentHelper(document.file).flattenAnnotations(0, an_invisible | an_hidden);
        return true;
    });
}

// Counts what comes out of a filter, and ends it when it is too much for memory.
struct ContentCounter : Pipeline {
    ContentCounter() : Pipeline("count", nullptr) {}
    void write(const unsigned char*, size_t n) override {
        total += n;
        if (total > kLongestContent) throw std::runtime_error("content is too long");
    }
    void finish() override {}
    size_t total = 0;
};

// Whether the content of all forms of a page can be looked through.
static bool FormsAreBounded(QPDFPageObjectHelper& page) {
    return Safely(false, [&] {
        ContentCounter counter;
        page.forEachFormXObject(/*recursive*/ true, [&](QPDFObjectHandle& form, QPDFObjectHandle&, std::string const&) {
            form.pipeStreamData(&counter, 0, qpdf_dl_specialized, /*suppress_warnings*/ true);
        });
        return true;
    });
}

// The page as a form of the new document, cut to its crop box in its own, unturned space. Throws if it cannot be.
static QPDFObjectHandle FormOf(QPDF& to, QPDFPageObjectHelper& page) {
    double crop[4];
    CropBox(page, crop);
    ContentCounter counter;
    page.pipeContents(&counter);
    if (FormsAreBounded(page)) page.removeUnreferencedResources();
    QPDFObjectHandle form = page.getFormXObjectForPage(/*handle transformations*/ false);
    form.getDict().replaceKey("/BBox", BoxArray(crop));
    if (!form.getDict().hasKey("/Group"))
        form.getDict().replaceKey("/Group", QPDFObjectHandle::parse("<< /S /Transparency >>"));
    return to.copyForeignObject(form);
}

// The forms made so far: a page that is put in again stands in the file once. Null = it cannot be read.
using KnownForms = std::map<std::pair<const ZRPDocument*, long>, QPDFObjectHandle>;

static QPDFObjectHandle KnownForm(QPDF& to, ZRPDocument& source, long page, KnownForms* known) {
    auto found = known->try_emplace({&source, page}, QPDFObjectHandle::newNull());
    QPDFObjectHandle& form = found.first->second;
    if (found.second)
        Safely(false, [&] {
            form = FormOf(to, source.pages.at(static_cast<size_t>(page)));
            return true;
        });
    return form;
}

// A page under construction.
struct MadePage {
    QPDFObjectHandle forms = QPDFObjectHandle::newDictionary(), states = QPDFObjectHandle::newDictionary();
    long formCount = 0, stateCount = 0;
    std::string content;
};

// Puts one item on the page. An item that cannot be read is left out.
static void AddItem(const ZRPItem& item, QPDFObjectHandle form, MadePage* page) {
    if (form.isNull()) return;
    std::string name = "/L" + std::to_string(++page->formCount), *content = &page->content;
    page->forms.replaceKey(name, form);
    *content += "q\n";
    if (item.clip) *content += item.clip;
    if (item.alpha < 1) {
        std::string state = "/G" + std::to_string(++page->stateCount);
        page->states.replaceKey(
            state, QPDFObjectHandle::parse("<< /ca " + Number(item.alpha) + " /CA " + Number(item.alpha) + " >>"));
        *content += state + " gs\n";
    }
    for (double value : item.matrix) *content += Number(value) + " ";
    *content += "cm\n" + name + " Do\nQ\n";
}

static void AddPage(QPDF& to, const ZRPPage& page, ZRPDocument& drawn, KnownForms* known) {
    MadePage parts;
    for (long i = 0; i < page.itemCount; ++i) {
        const ZRPItem& item = page.items[i];
        AddItem(item, KnownForm(to, item.document ? *item.document : drawn, item.page, known), &parts);
    }
    auto resources = QPDFObjectHandle::newDictionary(), made = QPDFObjectHandle::newDictionary();
    resources.replaceKey("/XObject", parts.forms);
    resources.replaceKey("/ExtGState", parts.states);
    made.replaceKey("/Type", QPDFObjectHandle::newName("/Page"));
    made.replaceKey("/MediaBox", BoxArray(page.mediaBox));
    if (page.cropBox) made.replaceKey("/CropBox", BoxArray(page.cropBox));
    made.replaceKey("/Resources", resources);
    made.replaceKey("/Contents", QPDFObjectHandle::newStream(&to, parts.content));
    QPDFPageDocumentHelper(to).addPage(QPDFPageObjectHelper(to.makeIndirectObject(made)), /*first*/ false);
}

// The documents of all items, each locked as long as the result lives; in one order, lest two assemblies wait for each
// other.
static std::vector<std::unique_lock<std::mutex>> LockSources(const ZRPPage* pages, long count) {
    std::vector<ZRPDocument*> sources;
    for (long i = 0; i < count; ++i)
        for (long j = 0; j < pages[i].itemCount; ++j)
            if (pages[i].items[j].document) sources.push_back(pages[i].items[j].document);
    std::sort(sources.begin(), sources.end());
    sources.erase(std::unique(sources.begin(), sources.end()), sources.end());
    std::vector<std::unique_lock<std::mutex>> locks;
    for (ZRPDocument* source : sources) {
        locks.emplace_back(source->lock);
        Flatten(*source);
    }
    return locks;
}

static bool Assemble(const uint8_t* drawn, size_t n, const ZRPPage* pages, long count, ZRPWrite write, void* info) {
    return Safely(false, [&] {
        std::unique_ptr<ZRPDocument> parts(Open(drawn, n));
        if (!parts) return false;
        auto locks = LockSources(pages, count);
        QPDF to;
        to.emptyPDF();
        KnownForms known;
        for (long i = 0; i < count; ++i) AddPage(to, pages[i], *parts, &known);
        QPDFWriter writer(to);
        writer.setObjectStreamMode(qpdf_o_generate);
        writer.setOutputMemory();
        writer.write();
        std::unique_ptr<Buffer> bytes(writer.getBuffer());
        return write(info, bytes->getBuffer(), bytes->getSize());
    });
}

extern "C" __attribute__((visibility("default"))) const void* ZRPDFGetTable() {
    static constexpr ZRPTable table = {kZRPVersion, Open, Release, CountPages, GetBox, GetRotation, Assemble};
    return &table;
}
