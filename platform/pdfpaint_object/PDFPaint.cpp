// Painting of PDF pages by poppler-glib. It paints the crop box, turned and with y down; that is undone here.
#include <cairo.h>
#include <poppler.h>

#include "platform/pdfpaint_object/PDFPaintTable.h"

static void* Open(const uint8_t* bytes, size_t n) {
    GBytes* data = g_bytes_new_static(bytes, n);
    PopplerDocument* document = poppler_document_new_from_bytes(data, nullptr, nullptr);
    g_bytes_unref(data);
    return document;
}

static void Release(void* document) { g_object_unref(document); }

// From the page's own space to the space that poppler paints in.
static cairo_matrix_t PainterSpace(const double crop[4], int rotation) {
    double left = crop[0], low = crop[1], right = crop[0] + crop[2], high = crop[1] + crop[3];
    switch (rotation) {
        case 90: return {0, 1, 1, 0, -low, -left};
        case 180: return {-1, 0, 0, 1, right, -low};
        case 270: return {0, -1, -1, 0, high, right};
        default: return {1, 0, 0, -1, -left, high};
    }
}

static void Paint(void* document, long index, void* cairo, const double matrix[6], const double crop[4], int rotation,
                  double alpha) {
    auto cr = static_cast<cairo_t*>(cairo);
    auto file = static_cast<PopplerDocument*>(document);
    if (index < 0 || index >= poppler_document_get_n_pages(file)) return;  // it may see fewer pages than qpdf
    PopplerPage* page = poppler_document_get_page(file, static_cast<int>(index));
    if (!page) return;
    cairo_matrix_t place = {matrix[0], matrix[1], matrix[2], matrix[3], matrix[4], matrix[5]};
    cairo_matrix_t undo = PainterSpace(crop, rotation);
    if (cairo_matrix_invert(&undo) == CAIRO_STATUS_SUCCESS) {
        cairo_save(cr);
        cairo_transform(cr, &place);
        cairo_rectangle(cr, crop[0], crop[1], crop[2], crop[3]);
        cairo_clip(cr);
        cairo_transform(cr, &undo);
        if (alpha < 1) cairo_push_group(cr);
        poppler_page_render_for_printing(page, cr);
        if (alpha < 1) {
            cairo_pop_group_to_source(cr);
            cairo_paint_with_alpha(cr, alpha);
        }
        cairo_restore(cr);
    }
    g_object_unref(page);
}

extern "C" __attribute__((visibility("default"))) const void* ZRPDFPaintGetTable() {
    static constexpr ZRQTable table = {kZRQVersion, Open, Release, Paint};
    return &table;
}
