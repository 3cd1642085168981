// PDF documents and pages, and painting them on pixels and layers.
#include <atomic>

#include "platform/CoreGraphics/CGPDFDocument_Private.h"
#include "platform/pdfpaint_object/PDFPaintTable.h"

static const ZRQTable* Painter() { return static_cast<const ZRQTable*>(ZRSharedObjectGetTable(kZRObjectPDFPaint)); }

PDFCore::~PDFCore() {
    if (painted) Painter()->release(painted);
    table->release(document);
    CFRelease(data);
}

struct CGPDFDocument : CFObject {
    CGPDFDocument(std::shared_ptr<PDFCore> c, long n) : core(std::move(c)), pages(static_cast<size_t>(n)) {}
    ~CGPDFDocument() override {
        for (auto& page : pages) CGPDFPageRelease(page.load());
    }
    CFTypeID typeID() const override { return kCGTypePDFDocument; }
    const std::shared_ptr<PDFCore> core;
    std::vector<std::atomic<CGPDFPageRef>> pages;  // each made when it is asked for
};

CFTypeID CGPDFDocumentGetTypeID() { return kCGTypePDFDocument; }

// Handed over in any case.
static CGPDFDocumentRef OpenDocument(CFDataRef handedOver) {
    const ZRPTable* table = handedOver ? PDFTable() : nullptr;
    ZRPDocument* opened = nullptr;
    if (table) opened = table->open(CFDataGetBytePtr(handedOver), static_cast<size_t>(CFDataGetLength(handedOver)));
    if (!opened) {
        CFRelease(handedOver);
        return nullptr;
    }
    return CFGuarded([&] {
        auto core = std::make_shared<PDFCore>(table, handedOver, opened);
        return new CGPDFDocument(std::move(core), table->countPages(opened));
    });
}

CGPDFDocumentRef CGPDFDocumentCreateWithProvider(CGDataProviderRef provider) {
    return OpenDocument(CGDataProviderCopyData(provider));
}

CGPDFDocumentRef CGPDFDocumentCreateWithURL(CFURLRef url) { return OpenDocument(CreateDataFromFile(url)); }

size_t CGPDFDocumentGetNumberOfPages(CGPDFDocumentRef document) { return document ? document->pages.size() : 0; }

CGPDFPageRef CGPDFDocumentGetPage(CGPDFDocumentRef document, size_t number) {
    if (!document || number < 1 || number > document->pages.size()) return nullptr;
    auto& slot = document->pages[number - 1];
    if (CGPDFPageRef known = slot.load()) return known;
    CGPDFPageRef page = CFGuarded([&] { return new CGPDFPage(document->core, static_cast<long>(number - 1)); });
    CGPDFPageRef none = nullptr;
    if (slot.compare_exchange_strong(none, page)) return page;
    CGPDFPageRelease(page);  // another thread was first
    return none;
}

CGRect CGPDFPageGetBoxRect(CGPDFPageRef page, CGPDFBox box) {
    double b[4];
    if (!page || box < kCGPDFMediaBox || box > kCGPDFArtBox) return CGRectZero;
    return page->core->table->getBox(page->core->document, page->index, box, b) ? CGRectMake(b[0], b[1], b[2], b[3])
                                                                                : CGRectZero;
}

int CGPDFPageGetRotationAngle(CGPDFPageRef page) {
    return page ? page->core->table->getRotation(page->core->document, page->index) : 0;
}

size_t CGPDFPageGetPageNumber(CGPDFPageRef page) { return page ? static_cast<size_t>(page->index) + 1 : 0; }

// Painting ---------------------------------------------------------------------------------------------------------

static void PaintPage(CGContext& context, const CGPDFPage& page) {
    const ZRQTable* painter = Painter();
    PDFCore& core = *page.core;
    if (!painter) return;
    CGRect crop = CGPDFPageGetBoxRect(const_cast<CGPDFPageRef>(&page), kCGPDFCropBox);
    int rotation = CGPDFPageGetRotationAngle(const_cast<CGPDFPageRef>(&page));
    std::lock_guard guard(core.painting);
    if (!core.paintTried) {
        core.paintTried = true;
        core.painted = painter->open(CFDataGetBytePtr(core.data), static_cast<size_t>(CFDataGetLength(core.data)));
    }
    void* cairo = core.painted ? context.table->borrowCairo(context.canvas) : nullptr;
    if (!cairo) return;
    const CGAffineTransform& m = context.state.device;
    const double matrix[] = {m.a, m.b, m.c, m.d, m.tx, m.ty};
    const double box[] = {crop.origin.x, crop.origin.y, crop.size.width, crop.size.height};
    painter->paint(core.painted, page.index, cairo, matrix, box, rotation, context.state.alpha);
    context.table->returnCairo(context.canvas);
}

void CGContextDrawPDFPage(CGContextRef context, CGPDFPageRef page) {
    if (!context || !page || !context->state.usable) return;
    if (!context->TakePage(page)) PaintPage(*context, *page);
}
