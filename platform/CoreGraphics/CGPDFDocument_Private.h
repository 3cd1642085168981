// Documents and pages as the PDF sources see them.
#ifndef ZR_PLATFORM_CGPDFDOCUMENT_PRIVATE_H
#define ZR_PLATFORM_CGPDFDOCUMENT_PRIVATE_H

#include "platform/CoreGraphics/CoreGraphics_Private.h"
#include "platform/pdf_object/PDFTable.h"

inline const ZRPTable* PDFTable() { return static_cast<const ZRPTable*>(ZRSharedObjectGetTable(kZRObjectPDF)); }

// What a document and its pages share; a page that is retained outlives its document.
struct PDFCore {
    PDFCore(const ZRPTable* functions, CFDataRef handedOver, ZRPDocument* opened)
        : table(functions), data(handedOver), document(opened) {}
    ~PDFCore();
    const ZRPTable* const table;
    const CFDataRef data;
    ZRPDocument* const document;
    std::mutex painting;      // guards the painter's form of the document
    void* painted = nullptr;  // made at the first painting; null = none, or unreadable
    bool paintTried = false;
};

struct CGPDFPage : CFObject {
    CGPDFPage(std::shared_ptr<PDFCore> c, long i) : core(std::move(c)), index(i) {}
    CFTypeID typeID() const override { return kCGTypePDFPage; }
    const std::shared_ptr<PDFCore> core;
    const long index;  // [0..count)
};

#endif
