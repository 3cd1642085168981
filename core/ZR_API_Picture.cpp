#include "core/ZR_API_Picture.h"

#include "core/ZR_API_Text.h"
#include "plugin/ZR_API_Bridge.h"

const ZR_PictureDecoder* gPictureDecoder = nullptr;

// Life -------------------------------------------------------------------------------------------------------------

void ZR_Picture::Create() {
    image = nullptr;
    document = nullptr;
    width = height = 0;
    dpiX = dpiY = 0;
    format = ZR_PICT_UNKNOWN;
    displayFormat = 3;
    quality = 1;
    nativeData.Create(1, 0);
}

void ZR_Picture::Create(const ZR_Picture* source) {
    if (!source) return Create();
    *this = *source;
    CGImageRetain(image);
    CGPDFDocumentRetain(document);
    nativeData.Create(&source->nativeData);
}

void ZR_Picture::SetNativePicture(const ZR_Handle* bytes) {
    ZR_Handle copy;
    copy.Create(bytes);
    nativeData.Dispose();
    nativeData = copy;
}

void ZR_Picture::Dispose() {
    CGImageRelease(image);
    CGPDFDocumentRelease(document);
    image = nullptr;
    document = nullptr;
    format = ZR_PICT_UNKNOWN;
    width = height = 0;
    nativeData.Dispose();
}

// From the host ----------------------------------------------------------------------------------------------------

static ZR_Pictformat FormatOfType(const PA_Unistring* type) {
    ZR_Pictformat found = ZR_PICT_UNKNOWN;
    ZR_Text text;
    text.CreateWithUnistringPtr(type);
    for (const auto& row : kPictformats)  // the last match wins
        if (text.SearchForByteString(row.typeText, 0) >= 0) found = row.format;
    text.Dispose();
    return found;
}

// The first representation of a known format, [1..]; *format is left alone if there is none.
static long FindRepresentation(PA_Picture picture, ZR_Pictformat* format) {
    static constexpr long kMostRepresentations = 1000;  // guard: a host that never reports an end
    for (long index = 1; index <= kMostRepresentations; ++index) {
        PA_Unistring type = PA_GetPictureData(picture, index, nullptr);
        bool none = PA_GetLastError() != 0;
        if (!none) *format = FormatOfType(&type);
        PA_DisposeUnistring(&type);
        if (none || *format != ZR_PICT_UNKNOWN) return index;
    }
    return kMostRepresentations;
}

static void FetchBytes(PA_Picture picture, long index, ZR_Handle* bytes) {
    PA_Handle fetched = PA_NewHandle(0);
    if (!fetched) return;
    PA_Unistring type = PA_GetPictureData(picture, index, fetched);
    PA_DisposeUnistring(&type);
    bytes->AddCharBuffer(PA_LockHandle(fetched), PA_GetHandleSize(fetched));
    PA_UnlockHandle(fetched);
    PA_DisposeHandle(fetched);
}

static void DecodeDocument(ZR_Picture* picture) {
    double width = 0, height = 0;
    picture->document =
        gPictureDecoder->openDocument(picture->nativeData.data, picture->nativeData.count, &width, &height);
    if (!picture->document) return;
    picture->width = static_cast<long>(width);
    picture->height = static_cast<long>(height);
}

static void Decode(ZR_Picture* picture, PA_Picture hostPicture) {
    ZR_Handle* bytes = &picture->nativeData;
    if (picture->format >= ZR_PICT_JPEG && picture->format <= ZR_PICT_TIFF && gPictureDecoder)
        picture->image = gPictureDecoder->decodeImage(bytes->data, bytes->count, &picture->dpiX, &picture->dpiY);
    if (picture->format == ZR_PICT_PDF && gPictureDecoder) DecodeDocument(picture);
    if (picture->format == ZR_PICT_SVG) {
        picture->image = static_cast<CGImageRef>(PA_CreateNativePictureForScreen(hostPicture));
        picture->document = static_cast<CGPDFDocumentRef>(PA_CreateNativePictureForPrinting(hostPicture));
    }
    if (picture->image && gPictureDecoder)
        gPictureDecoder->getImageSize(picture->image, &picture->width, &picture->height);
}

void ZR_Picture::Create(void** hostPicture) {
    auto picture = static_cast<PA_Picture>(hostPicture);
    Create();
    if (!picture) return;
    long index = FindRepresentation(picture, &format);
    FetchBytes(picture, index, &nativeData);
    if (nativeData.count < 1) format = ZR_PICT_UNKNOWN;
    Decode(this, picture);
}

// To the host ------------------------------------------------------------------------------------------------------

PA_Picture ZR_Picture::To4DPicture() {
    return nativeData.data && nativeData.count > 0 ? PA_CreatePicture(nativeData.data, nativeData.count) : nullptr;
}

void ZR_Picture::To4DVariable(PA_Variable* variable) {
    if (!variable) return;
    if (variable->fType != eVK_Picture) *variable = PA_CreateVariable(eVK_Picture);
    PA_SetPictureVariable(variable, To4DPicture());
}
