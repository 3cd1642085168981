#include "platform/SharedObject.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <thread>

#include "platform/HIShape/HIShape.h"
#include "platform/SVG/SVGPicture.h"
#include "tests/platform/GraphicsSupport.h"

// Each of these needs a process in which nothing was opened yet: a death test runs in one of its own.
static void InNewProcess(const std::function<bool()>& body) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(_exit(body() ? 0 : 1), testing::ExitedWithCode(0), "");
}

static bool IsLoaded(const char* library) {
    std::stringstream maps;
    maps << std::ifstream("/proc/self/maps").rdbuf();
    return maps.str().find(library) != std::string::npos;
}

TEST(SharedObject, LinkingTheLibrary_LoadsNothingThatDraws) {
    InNewProcess([] {
        // What needs no object does not open one.
        Owned<CGMutablePathRef> path = CGPathCreateMutable();
        CGPathAddRect(path, nullptr, CGRectMake(0, 0, 1, 1));
        Owned<CGColorRef> color = CGColorCreateGenericRGB(0, 0, 0, 1);
        for (const char* library : {"libzr-", "libcairo", "libpng", "libqpdf", "libpoppler", "librsvg", "libtiff"})
            if (IsLoaded(library)) return false;
        return true;
    });
}

TEST(SharedObject, FirstUse_OpensOnlyWhatIsNeeded) {
    InNewProcess([] {
        Bitmap bitmap(4, 4);
        return IsLoaded("libzr-graphics") && IsLoaded("libcairo") && !IsLoaded("libqpdf") && !IsLoaded("libpoppler") &&
               !IsLoaded("librsvg");
    });
}

TEST(SharedObject, Missing_EverythingAnswersNeutrally) {
    InNewProcess([] {
        std::string empty = std::filesystem::temp_directory_path() / "zr-no-objects-here";
        ZRSharedObjectSetFolder(empty.c_str());
        Owned<CGColorSpaceRef> space = CGColorSpaceCreateDeviceRGB();
        CGRect rect = CGRectMake(0, 0, 10, 10);
        bool null = !CGBitmapContextCreate(nullptr, 10, 10, 8, 0, space, 1) &&
                    !CGLayerCreateWithContext(nullptr, {10, 10}, nullptr) && !HIShapeCreateMutable() &&
                    !HIShapeCreateWithRect(&rect) && !CGImageSourceCreateWithData(Data("x"), nullptr) &&
                    !CGPDFDocumentCreateWithProvider(
                        Owned<CGDataProviderRef>(CGDataProviderCreateWithCFData(Data("%PDF-1.4")))) &&
                    !ZRSVGCreateImage("<svg/>", 6, 1) && !ZRSVGCreateDocument("<svg/>", 6);
        Owned<CFMutableDataRef> data = CFDataCreateMutable(nullptr, 0);
        Owned<CGDataConsumerRef> consumer = CGDataConsumerCreateWithCFData(data);
        null = null && !CGImageDestinationCreateWithData(data, kUTTypePNG, 1, nullptr) &&
               !CGPDFContextCreate(consumer, &rect, nullptr);
        for (int i = 0; i < kZRObjectCount; ++i) {
            const ZRSharedObjectState* state = ZRSharedObjectGetState(i);
            null =
                null && !state->available && strstr(state->problem, state->file) && *state->packages && *state->purpose;
        }
        return null;
    });
}

TEST(SharedObject, MissingPDF_FileIsStillWritten) {
    InNewProcess([] {
        // A folder with the graphics object alone
        auto folder = std::filesystem::temp_directory_path() / ("zr-graphics-alone-" + std::to_string(getpid()));
        std::filesystem::create_directory(folder);
        std::filesystem::create_symlink(std::filesystem::path(ZR_BINARY_DIR) / "lib/libzr-graphics.so",
                                        folder / "libzr-graphics.so");
        ZRSharedObjectSetFolder(folder.c_str());
        Owned<CFMutableDataRef> data = CFDataCreateMutable(nullptr, 0);
        Owned<CGDataConsumerRef> consumer = CGDataConsumerCreateWithCFData(data);
        CGRect box = CGRectMake(10, 10, 100, 100);
        Owned<CGContextRef> context = CGPDFContextCreate(consumer, &box, nullptr);
        CGContextBeginPage(context, nullptr);
        CGContextFillRect(context, CGRectMake(20, 20, 10, 10));
        CGContextEndPage(context);
        CGPDFContextClose(context);
        std::filesystem::remove_all(folder);
        return BytesOf(data).substr(0, 5) == "%PDF-" && !ZRSharedObjectGetState(kZRObjectPDF)->available;
    });
}

TEST(SharedObject, NoObjectOfOurs_IsRefused) {
    InNewProcess([] {
        auto folder = std::filesystem::temp_directory_path() / ("zr-wrong-objects-" + std::to_string(getpid()));
        std::filesystem::create_directory(folder);
        std::ofstream(folder / "libzr-graphics.so") << "no shared object";
        std::filesystem::create_symlink(std::filesystem::path(ZR_BINARY_DIR) / "lib/libzr-graphics.so",
                                        folder / "libzr-pdf.so");  // another one under this name
        ZRSharedObjectSetFolder(folder.c_str());
        bool refused = !ZRSharedObjectGetState(kZRObjectGraphics)->available &&
                       !ZRSharedObjectGetState(kZRObjectPDF)->available &&
                       *ZRSharedObjectGetState(kZRObjectPDF)->problem;
        std::filesystem::remove_all(folder);
        return refused;
    });
}

TEST(SharedObject, FirstUse_FromManyThreads_OpensOnce) {
    InNewProcess([] {
        std::vector<std::thread> threads;
        std::atomic<int> made = 0;
        for (int t = 0; t < 8; ++t)
            threads.emplace_back([&] {
                Bitmap bitmap(4, 4);
                CGContextFillRect(bitmap, CGRectMake(0, 0, 4, 4));
                made += bitmap.At(1, 1) == kRed;
            });
        for (auto& thread : threads) thread.join();
        return made == 8;
    });
}

TEST(SharedObject, LibraryFoundByARelativePath_FolderChanges_ObjectsAreFound) {
    auto folder = std::filesystem::relative(std::filesystem::path(ZR_BINARY_DIR) / "lib");
    setenv("LD_LIBRARY_PATH", folder.c_str(), /*overwrite*/ 1);
    InNewProcess([] {
        Dl_info library = {};
        dladdr(reinterpret_cast<void*>(&ZRSharedObjectGetTable), &library);
        bool relative = library.dli_fname && library.dli_fname[0] != '/';
        return relative && chdir("/") == 0 && ZRSharedObjectGetState(kZRObjectGraphics)->available &&
               ZRSharedObjectGetState(kZRObjectPDF)->available;
    });
    unsetenv("LD_LIBRARY_PATH");
}

TEST(SharedObject, GetState_OutsideOfTheList_IsNull) {
    EXPECT_EQ(ZRSharedObjectGetState(-1), nullptr);
    EXPECT_EQ(ZRSharedObjectGetState(kZRObjectCount), nullptr);
    EXPECT_TRUE(ZRSharedObjectGetState(kZRObjectGraphics)->available);
    EXPECT_STREQ(ZRSharedObjectGetState(kZRObjectGraphics)->problem, "");
}
