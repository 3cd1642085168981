// PDF contexts. What is drawn goes into a scratch PDF in memory. As long as no page of another document is put in and
// every media box begins at the origin, that is the document. Otherwise the pages are put together at the end: each is
// a stack of drawn segments and pages of other documents, which stay as they are.
#include <charconv>
#include <cmath>
#include <cstring>
#include <deque>

#include "platform/CoreGraphics/CGPDFDocument_Private.h"

static constexpr CGRect kLetter = {{0, 0}, {612, 792}};
static constexpr double kLargestPage = 1e6;  // points

const CFStringRef kCGPDFContextMediaBox = CFConstantString("kCGPDFContextMediaBox");
const CFStringRef kCGPDFContextCropBox = CFConstantString("kCGPDFContextCropBox");

// PDF operators of clips -------------------------------------------------------------------------------------------

static void AppendNumber(std::string* out, double value) {
    char text[64];
    auto end = std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, 4).ptr;
    out->append(text, end);
    *out += ' ';
}

struct ClipWriter {
    CGAffineTransform toPage;  // from device to the page's space
    std::string text;
};

static void WriteClip(void* info, const ZRGPath* path) {
    auto writer = static_cast<ClipWriter*>(info);
    static constexpr const char* kOperators[] = {"m\n", "l\n", "c\n", "h\n"};
    static constexpr int kPoints[] = {1, 1, 3, 0};
    const double* p = path->points;
    if (path->verbCount == 0) writer->text += "0 0 0 0 re\n";  // an empty clip leaves nothing
    for (long i = 0; i < path->verbCount; ++i) {
        for (int k = 0; k < kPoints[path->verbs[i]]; ++k, p += 2) {
            CGPoint at = CGPointApplyAffineTransform({p[0], p[1]}, writer->toPage);
            AppendNumber(&writer->text, at.x);
            AppendNumber(&writer->text, at.y);
        }
        writer->text += kOperators[path->verbs[i]];
    }
    writer->text += path->evenOdd ? "W* n\n" : "W n\n";
}

// The context ------------------------------------------------------------------------------------------------------

namespace {
struct Item {
    CGPDFPageRef page;  // owned; null = a drawn segment
    long segment;       // [0..) of the scratch PDF's pages
    CGAffineTransform matrix;
    std::string clip;
    double alpha;
};
struct Page {
    CGRect mediaBox;
    bool hasCrop;
    CGRect cropBox;
    std::deque<Item> items;
};

struct PDFContext : CGContext {
    PDFContext(const ZRGTable* functions, ZRGCanvas* c, CGDataConsumerRef target, CGRect box,
               std::unique_ptr<std::string> bytes)
        : CGContext(functions, c), consumer(target), defaultBox(box), scratch(std::move(bytes)) {
        CGDataConsumerRetain(consumer);
    }
    ~PDFContext() override {
        PDFContext::ClosePDF();
        for (auto& page : pages)
            for (auto& item : page.items) CGPDFPageRelease(item.page);
        CGDataConsumerRelease(consumer);
    }
    void BeginPage(const CGRect* mediaBox, const CGRect* cropBox) override;
    void EndPage() override;
    void ClosePDF() override;
    bool TakePage(CGPDFPageRef page) override;

    static bool Append(void* info, const void* bytes, size_t n) {
        return CFGuarded([&]() -> void* {
            static_cast<std::string*>(info)->append(static_cast<const char*>(bytes), n);
            return info;
        });
    }

  private:
    bool NeedsAssembly() const;
    void Assemble();

    const CGDataConsumerRef consumer;
    const CGRect defaultBox;
    const std::unique_ptr<std::string> scratch;  // what is drawn, as a PDF
    std::deque<Page> pages;
    long segments = 0;
    bool pageOpen = false, closed = false;
};
}  // namespace

static bool IsPage(const CGRect& box) {
    return IsFinite(box) && std::abs(box.origin.x) <= kLargestPage && std::abs(box.origin.y) <= kLargestPage &&
           box.size.width > 0 && box.size.height > 0 && box.size.width <= kLargestPage &&
           box.size.height <= kLargestPage;
}

void PDFContext::BeginPage(const CGRect* mediaBox, const CGRect* cropBox) {
    if (closed) return;
    EndPage();
    CGRect media = mediaBox ? CGRectStandardize(*mediaBox) : defaultBox;
    if (!IsPage(media)) media = defaultBox;
    CGRect crop = cropBox ? CGRectStandardize(*cropBox) : CGRectZero;
    CFGuarded([&]() -> void* {
        pages.push_back({media, IsPage(crop), crop, {}});
        pages.back().items.push_back({nullptr, segments, CGAffineTransformIdentity, "", 1});
        ++segments;
        table->beginPage(canvas, media.size.width, media.size.height);
        SetBase({1, 0, 0, -1, -media.origin.x, media.origin.y + media.size.height});
        pageOpen = true;
        return nullptr;
    });
}

void PDFContext::EndPage() {
    if (!pageOpen) return;
    pageOpen = false;
    table->endPage(canvas);
    SetBase(CGAffineTransformIdentity);
}

// The running segment ends, the page is noted with matrix and clip, and a new segment goes on above it.
bool PDFContext::TakePage(CGPDFPageRef page) {
    if (!pageOpen || !PDFTable()) return true;  // a page cannot be painted into a PDF without loss: then not at all
    CFGuarded([&]() -> void* {
        ClipWriter writer = {CGAffineTransformInvert(base), {}};
        table->eachClip(canvas, WriteClip, &writer);
        auto& items = pages.back().items;
        items.push_back({page, 0, state.ctm, std::move(writer.text), state.alpha});
        CGPDFPageRetain(page);
        items.push_back({nullptr, segments, CGAffineTransformIdentity, "", 1});
        ++segments;
        table->nextSegment(canvas);
        return nullptr;
    });
    return true;
}

bool PDFContext::NeedsAssembly() const {
    for (auto& page : pages) {
        bool atOrigin = page.mediaBox.origin.x == 0 && page.mediaBox.origin.y == 0;
        bool cropped = page.hasCrop && !CGRectEqualToRect(page.cropBox, page.mediaBox);
        if (!atOrigin || cropped || page.items.size() > 1) return true;
    }
    return false;
}

static ZRPItem Described(const Item& item, const Page& page) {
    ZRPItem out = {};
    const CGAffineTransform& m = item.matrix;
    double matrix[6] = {m.a, m.b, m.c, m.d, m.tx, m.ty};
    if (!item.page) {  // a segment was drawn with its lower left corner at the origin
        matrix[4] += page.mediaBox.origin.x;
        matrix[5] += page.mediaBox.origin.y;
    }
    memcpy(out.matrix, matrix, sizeof matrix);
    out.document = item.page ? item.page->core->document : nullptr;
    out.page = item.page ? item.page->index : item.segment;
    out.clip = item.clip.empty() ? nullptr : item.clip.c_str();
    out.alpha = item.alpha;
    return out;
}

static bool WriteToConsumer(void* info, const void* bytes, size_t n) {
    return static_cast<CGDataConsumerRef>(info)->Write(bytes, n);
}

static void CopyBox(const CGRect& r, double out[4]) {
    out[0] = r.origin.x, out[1] = r.origin.y, out[2] = r.size.width, out[3] = r.size.height;
}

void PDFContext::Assemble() {
    std::deque<std::vector<ZRPItem>> items;
    std::vector<ZRPPage> described;
    std::deque<double[4]> crops(pages.size());
    for (size_t i = 0; i < pages.size(); ++i) {
        items.emplace_back();
        for (auto& item : pages[i].items) items.back().push_back(Described(item, pages[i]));
        ZRPPage page = {};
        CopyBox(pages[i].mediaBox, page.mediaBox);
        CopyBox(pages[i].cropBox, crops[i]);
        page.cropBox = pages[i].hasCrop ? crops[i] : nullptr;
        page.items = items.back().data();
        page.itemCount = static_cast<long>(items.back().size());
        described.push_back(page);
    }
    PDFTable()->assemble(reinterpret_cast<const uint8_t*>(scratch->data()), scratch->size(), described.data(),
                         static_cast<long>(described.size()), WriteToConsumer, consumer);
}

void PDFContext::ClosePDF() {
    if (closed) return;
    EndPage();
    closed = true;
    if (!table->finishPDF(canvas)) return;
    CFGuarded([&]() -> void* {
        if (NeedsAssembly() && PDFTable()) Assemble();
        else consumer->Write(scratch->data(), scratch->size());
        return nullptr;
    });
}

// The interface ----------------------------------------------------------------------------------------------------

CGContextRef CGPDFContextCreate(CGDataConsumerRef consumer, const CGRect* mediaBox, CFDictionaryRef) {
    const ZRGTable* table = consumer ? Graphics() : nullptr;
    if (!table) return nullptr;
    CGRect box = mediaBox ? CGRectStandardize(*mediaBox) : kLetter;
    return CFGuarded([&]() -> CGContextRef {
        auto scratch = std::make_unique<std::string>();
        ZRGCanvas* canvas = table->createPDF(PDFContext::Append, scratch.get());
        if (!canvas) return nullptr;
        return new PDFContext(table, canvas, consumer, IsPage(box) ? box : kLetter, std::move(scratch));
    });
}

CGContextRef CGPDFContextCreateWithURL(CFURLRef url, const CGRect* mediaBox, CFDictionaryRef info) {
    if (!Graphics()) return nullptr;  // before the file is replaced
    CGDataConsumerRef consumer = CGDataConsumerCreateWithURL(url);
    CGContextRef context = CGPDFContextCreate(consumer, mediaBox, info);
    CGDataConsumerRelease(consumer);
    return context;
}

// A box of a page's dictionary; false = none
static bool BoxOf(CFDictionaryRef info, CFStringRef key, CGRect* out) {
    CFTypeRef value = CFDictionaryGetValue(info, key);
    if (!value || CFGetTypeID(value) != CFDataGetTypeID()) return false;
    auto data = static_cast<CFDataRef>(value);
    if (CFDataGetLength(data) != static_cast<CFIndex>(sizeof *out)) return false;
    memcpy(out, CFDataGetBytePtr(data), sizeof *out);
    return true;
}

void CGPDFContextBeginPage(CGContextRef context, CFDictionaryRef pageInfo) {
    CGRect media, crop;
    bool hasMedia = BoxOf(pageInfo, kCGPDFContextMediaBox, &media),
         hasCrop = BoxOf(pageInfo, kCGPDFContextCropBox, &crop);
    if (context) context->BeginPage(hasMedia ? &media : nullptr, hasCrop ? &crop : nullptr);
}

void CGPDFContextEndPage(CGContextRef context) {
    if (context) context->EndPage();
}

void CGPDFContextClose(CGContextRef context) {
    if (context) context->ClosePDF();
}

void CGContextBeginPage(CGContextRef context, const CGRect* mediaBox) {
    if (context) context->BeginPage(mediaBox, nullptr);
}

void CGContextEndPage(CGContextRef context) {
    if (context) context->EndPage();
}
