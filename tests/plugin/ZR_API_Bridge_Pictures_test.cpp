#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "plugin/ZR_API_Bridge.h"
#include "tests/plugin/FakeHost.h"

TEST(BridgePictures, CreatePicture_OfBytes_HandsThemOverInAHandle) {
    FakeHost host;
    int picture;
    std::string sent;
    host.answer[ZR_SEL_CreatePicture] = [&](EngineBlock* block) {
        EXPECT_EQ(block->fParam1, 0);
        sent.assign(*block->fHandle, (size_t)host.sizeOf(block->fHandle));
        block->fParam1 = (int64_t)(intptr_t)&picture;
        block->fError = sent.empty() ? 4001 : 0;
    };
    EXPECT_EQ(PA_CreatePicture("\x89PNG", 4), &picture);
    EXPECT_EQ(sent, "\x89PNG");
    EXPECT_EQ(PA_CreatePicture(nullptr, 4), nullptr);
    EXPECT_EQ(PA_GetLastError(), 4001);  // of the call, not of the handle's end
    EXPECT_EQ(PA_CreatePicture("x", -1), nullptr);
    EXPECT_EQ(host.liveHandles(), 0u);
    host.refusesHandles = true;
    EXPECT_EQ(PA_CreatePicture("x", 1), nullptr);
    EXPECT_EQ(PA_GetLastError(), -108);
}

TEST(BridgePictures, PictureCalls_Each_SendThePicture) {
    FakeHost host;
    int picture, made;
    static const struct {
        void* (*call)(void*);
        int selector;
    } rows[] = {{PA_DuplicatePicture, ZR_SEL_DuplicatePicture},
                {PA_CreateNativePictureForScreen, ZR_SEL_NativePictureForScreen},
                {PA_CreateNativePictureForPrinting, ZR_SEL_NativePictureForPrinting}};
    for (const auto& row : rows) {
        host.answer[row.selector] = [&](EngineBlock* block) {
            EXPECT_EQ(block->fParam1, (int64_t)(intptr_t)&picture);
            EXPECT_EQ(block->fParam2, 0);
            block->fParam2 = (int64_t)(intptr_t)&made;
        };
        EXPECT_EQ(row.call(&picture), &made);
        EXPECT_EQ(host.last().selector, row.selector);
    }
    PA_DisposePicture(&picture);
    EXPECT_EQ(host.last().selector, ZR_SEL_DisposePicture);
    EXPECT_EQ(host.last().in.fParam1, (int64_t)(intptr_t)&picture);
    size_t calls = host.calls.size();
    sErrorCode = 3;
    PA_DisposePicture(nullptr);
    EXPECT_EQ(host.calls.size(), calls);
    EXPECT_EQ(sErrorCode, 0);
}

TEST(BridgePictures, GetPictureData_ByIndex_AnswersTypeAndBytes) {
    FakeHost host;
    int picture;
    PA_Handle target = PA_NewHandle(0);
    host.answer[ZR_SEL_GetPictureData] = [&](EngineBlock* block) {
        EXPECT_EQ(block->fParam1, (int64_t)(intptr_t)&picture);
        PA_Unistring* type = At<PA_Unistring>(block->fParam3);
        EXPECT_EQ(+type->fString, nullptr);
        if (block->fParam2 > 1) {
            block->fError = 4006;
            return;
        }
        *type = host.String("image/png");
        if (block->fHandle != nullptr) PA_SetHandleSize(block->fHandle, 7);
    };
    PA_Unistring type = PA_GetPictureData(&picture, 0, target);
    EXPECT_EQ(Narrow(type), "image/png");
    EXPECT_EQ(PA_GetHandleSize(target), 7);
    PA_DisposeUnistring(&type);
    type = PA_GetPictureData(&picture, 1, nullptr);
    EXPECT_EQ(PA_GetLastError(), 0);
    PA_DisposeUnistring(&type);
    type = PA_GetPictureData(&picture, 2, nullptr);
    EXPECT_EQ(PA_GetLastError(), 4006);
    EXPECT_EQ(+type.fString, nullptr);
    PA_DisposeHandle(target);
}

TEST(BridgePictures, PictureToGIF_OfAPicture_AnswersTheBlobOfTheCommand) {
    FakeHost host;
    int picture;
    host.answer[ZR_SEL_ExecuteCommand] = [&](EngineBlock* block) {
        EXPECT_EQ(block->fParam3, 692);
        EXPECT_EQ(block->fParam4, 3);
        PA_Variable** params = At<PA_Variable*>(block->fParam1);
        EXPECT_EQ(PA_GetPictureVariable(params[0]), &picture);
        EXPECT_EQ(Narrow(params[2]->uValue.fText), ".gif");
        PA_SetBlobVariable(params[1], "GIF89a", 6);
    };
    PA_Handle bytes = PA_PictureToGIF(&picture);
    ASSERT_NE(bytes, nullptr);
    EXPECT_EQ(std::string(*bytes, 6), "GIF89a");
    EXPECT_EQ(host.liveHandles(), 1u);
    EXPECT_EQ(host.liveStrings, 0);
    PA_DisposeHandle(bytes);
    host.answer[ZR_SEL_ExecuteCommand] = [](EngineBlock* block) { block->fError = 4003; };
    EXPECT_EQ(PA_PictureToGIF(&picture), nullptr);
    EXPECT_EQ(PA_GetLastError(), 4003);
    EXPECT_EQ(host.liveHandles(), 0u);
    EXPECT_EQ(host.liveStrings, 0);
}
