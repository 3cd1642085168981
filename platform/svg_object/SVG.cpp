// SVG pictures by librsvg.
#include <cairo-pdf.h>
#include <librsvg/rsvg.h>

#include <cmath>
#include <cstring>

#include "platform/svg_object/SVGTable.h"

static constexpr double kDefaultWidth = 300, kDefaultHeight = 150;  // of a picture that tells no size

// Handed over; null = no SVG. No base URL: references to files lead nowhere.
static RsvgHandle* Read(const uint8_t* bytes, size_t n) {
    RsvgHandle* handle = rsvg_handle_new_from_data(bytes, n, nullptr);
    if (handle) rsvg_handle_set_dpi(handle, 72);
    return handle;
}

// Pixels of the picture count as points. A picture with only a view box has the view box's size.
static void SizeOf(RsvgHandle* handle, double* width, double* height) {
    gboolean hasWidth, hasHeight, hasBox;
    RsvgLength w, h;
    RsvgRectangle box;
    rsvg_handle_get_intrinsic_dimensions(handle, &hasWidth, &w, &hasHeight, &h, &hasBox, &box);
    if (rsvg_handle_get_intrinsic_size_in_pixels(handle, width, height)) return;
    *width = hasBox ? box.width : kDefaultWidth;
    *height = hasBox ? box.height : kDefaultHeight;
}

static bool GetSize(const uint8_t* bytes, size_t n, double* width, double* height) {
    RsvgHandle* handle = Read(bytes, n);
    if (!handle) return false;
    SizeOf(handle, width, height);
    g_object_unref(handle);
    return std::isfinite(*width) && std::isfinite(*height) && *width > 0 && *height > 0;
}

static bool Render(const uint8_t* bytes, size_t n, cairo_surface_t* surface, double width, double height) {
    RsvgHandle* handle = Read(bytes, n);
    if (!handle) return false;
    cairo_t* cr = cairo_create(surface);
    RsvgRectangle place = {0, 0, width, height};
    GError* error = nullptr;
    bool ok = rsvg_handle_render_document(handle, cr, &place, &error);
    g_clear_error(&error);
    cairo_destroy(cr);
    g_object_unref(handle);
    return ok && cairo_surface_status(surface) == CAIRO_STATUS_SUCCESS;
}

static bool Paint(const uint8_t* bytes, size_t n, long width, long height, uint8_t* rgba) {
    memset(rgba, 0, static_cast<size_t>(width * height) * 4);
    cairo_surface_t* surface = cairo_image_surface_create_for_data(
        rgba, CAIRO_FORMAT_ARGB32, static_cast<int>(width), static_cast<int>(height), static_cast<int>(width * 4));
    bool ok = Render(bytes, n, surface, static_cast<double>(width), static_cast<double>(height));
    cairo_surface_destroy(surface);
    for (long i = 0; ok && i < width * height; ++i, rgba += 4) {
        uint8_t blue = rgba[0];
        rgba[0] = rgba[2];
        rgba[2] = blue;
    }
    return ok;
}

struct Output {
    ZRSWrite write;
    void* info;
};

static cairo_status_t WriteBytes(void* closure, const unsigned char* bytes, unsigned n) {
    auto output = static_cast<Output*>(closure);
    return output->write(output->info, bytes, n) ? CAIRO_STATUS_SUCCESS : CAIRO_STATUS_WRITE_ERROR;
}

static bool WritePDF(const uint8_t* bytes, size_t n, double width, double height, ZRSWrite write, void* info) {
    Output output = {write, info};
    cairo_surface_t* surface = cairo_pdf_surface_create_for_stream(WriteBytes, &output, width, height);
    bool ok = Render(bytes, n, surface, width, height);
    cairo_surface_finish(surface);
    ok = ok && cairo_surface_status(surface) == CAIRO_STATUS_SUCCESS;
    cairo_surface_destroy(surface);
    return ok;
}

extern "C" __attribute__((visibility("default"))) const void* ZRSVGGetTable() {
    static constexpr ZRSTable table = {kZRSVersion, GetSize, Paint, WritePDF};
    return &table;
}
