#include "plugin/ZR_API_Bridge.h"
#include "plugin/ZR_API_Bridge_Private.h"

PA_Picture PA_CreatePicture(const void* bytes, long size) {
    if (bytes == nullptr || size < 0) size = 0;
    PA_Handle handle = PA_NewHandle(size);
    if (handle == nullptr) return nullptr;
    PA_MoveBlock(bytes, *handle, size);
    EngineBlock block;
    block.fHandle = handle;
    block.fParam1 = 0;
    bool ok = ZR_CallHost(ZR_SEL_CreatePicture, &block);
    ZR_FreeHandle(handle);
    return ok ? ZR_PointerOf(block.fParam1) : nullptr;
}

void PA_DisposePicture(PA_Picture picture) {
    sErrorCode = ZR_ERR_NONE;
    if (picture == nullptr) return;
    EngineBlock block;
    block.fParam1 = ZR_AddressOf(picture);
    ZR_CallHost(ZR_SEL_DisposePicture, &block);
}

// A call that makes something of a picture and answers its address.
static void* MakeFromPicture(int selector, PA_Picture picture) {
    EngineBlock block;
    block.fParam1 = ZR_AddressOf(picture);
    block.fParam2 = 0;
    return ZR_CallHost(selector, &block) ? ZR_PointerOf(block.fParam2) : nullptr;
}

PA_Picture PA_DuplicatePicture(PA_Picture picture) { return MakeFromPicture(ZR_SEL_DuplicatePicture, picture); }

PA_Unistring PA_GetPictureData(PA_Picture picture, long index, PA_Handle target) {
    PA_Unistring type = {0, nullptr, nullptr};
    EngineBlock block;
    block.fHandle = target;
    block.fParam1 = ZR_AddressOf(picture);
    block.fParam2 = index;
    block.fParam3 = ZR_AddressOf(&type);
    ZR_CallHost(ZR_SEL_GetPictureData, &block);
    return type;
}

void* PA_CreateNativePictureForScreen(PA_Picture picture) {
    return MakeFromPicture(ZR_SEL_NativePictureForScreen, picture);
}

void* PA_CreateNativePictureForPrinting(PA_Picture picture) {
    return MakeFromPicture(ZR_SEL_NativePictureForPrinting, picture);
}

// Through the language: PICTURE TO BLOB with the codec of GIF.
PA_Handle PA_PictureToGIF(PA_Picture picture) {
    static const PA_Unichar kCodec[] = {'.', 'g', 'i', 'f', 0};
    PA_Variable params[3] = {PA_CreateVariable(eVK_Picture), PA_CreateVariable(eVK_Blob), PA_CreateVariable(eVK_Text)};
    params[0].uValue.fPicture = picture;  // borrowed: this variable is not cleared
    PA_SetStringVariable(&params[2], PA_CreateUnistring(kCodec));
    PA_Variable result = PA_ExecuteCommandByID(692, params, 3);
    PA_Handle bytes = nullptr;
    if (params[1].fType == eVK_Blob && params[1].uValue.fArray.fSize > 0) {
        bytes = params[1].uValue.fArray.fData;  // handed over to the caller
        params[1].uValue.fArray = {0, nullptr, 0};
    }
    ZR_FreeVariable(&result);
    ZR_FreeVariable(&params[1]);
    ZR_FreeVariable(&params[2]);
    return bytes;
}
