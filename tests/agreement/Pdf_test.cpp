// PDF pages keep vectors and text: what is drawn on one is read back by programs that are not ours.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "graphics/ZR_API_Device.h"
#include "platform/CoreGraphics/CoreGraphics.h"
#include "tests/agreement/Cases.h"

using namespace agreement;

namespace {

std::string OutputOf(const std::string& command) {
    std::string output;
    FILE* pipe = popen((command + " 2>/dev/null").c_str(), "r");
    if (!pipe) return output;
    char buffer[4096];
    for (size_t n; (n = fread(buffer, 1, sizeof buffer, pipe)) > 0;) output.append(buffer, n);
    pclose(pipe);
    return output;
}

// One page a case, of the size of the cases.
class PdfFile {
  public:
    explicit PdfFile(const std::vector<Case>& cases) {
        StartHost();
        path_ = testing::TempDir() + "zr-agreement-XXXXXX";
        int file = mkstemp(path_.data());
        if (file >= 0) fclose(fdopen(file, "w"));
        CFStringRef text = CFStringCreateWithCString(nullptr, path_.c_str(), kCFStringEncodingUTF8);
        CFURLRef url = CFURLCreateWithFileSystemPath(nullptr, text, kCFURLPOSIXPathStyle, false);
        CGRect page = CGRectMake(0, 0, kWidth, kHeight);
        CGContextRef context = CGPDFContextCreateWithURL(url, &page, nullptr);
        for (const Case& row : cases) {
            CGPDFContextBeginPage(context, nullptr);
            ZR_Rect bounds = {};
            bounds.right = kWidth, bounds.bottom = kHeight;
            ZR_Device device;
            device.CreateWithCGContext(context, &bounds, 0, 0, false);
            row.draw(&device);
            device.Dispose();
            CGPDFContextEndPage(context);
        }
        CGPDFContextClose(context);
        CFRelease(context);
        CFRelease(url);
        CFRelease(text);
    }
    ~PdfFile() { remove(path_.c_str()); }
    const std::string& path() const { return path_; }

  private:
    std::string path_;
};

std::vector<Case> CasesOf(std::initializer_list<const char*> groups) {
    std::vector<Case> chosen;
    for (const Case& row : AllCases())
        for (const char* group : groups)
            if (row.group == group) chosen.push_back(row);
    return chosen;
}

long CountOf(const std::string& text, const std::string& part) {
    long count = 0;
    for (size_t at = 0; (at = text.find(part, at)) != text.npos; at += part.size()) count++;
    return count;
}

}  // namespace

TEST(PdfPages, Text_CanBeReadOut) {
    std::vector<Case> cases = CasesOf({"Text", "Aligned text", "Text layout", "Styled text"});
    PdfFile file(cases);
    std::string text = OutputOf("pdftotext -layout " + file.path() + " -");
    EXPECT_GE(CountOf(text, "Hxg"), 20) << text;
    EXPECT_EQ(CountOf(text, "quick"), 15) << text;
    EXPECT_EQ(CountOf(text, "marked"), 3) << text;
    std::string fonts = OutputOf("pdffonts " + file.path());
    EXPECT_NE(fonts.find("yes"), std::string::npos) << fonts;  // embedded
}

TEST(PdfPages, Shapes_AreVectors) {
    std::vector<Case> cases = CasesOf({"Rectangle", "Rounded rectangle", "Oval", "Arc", "Path", "Path, even-odd",
                                       "Line", "Region", "Cells", "Layer"});
    PdfFile file(cases);
    std::string info = OutputOf("pdfinfo " + file.path());
    EXPECT_NE(info.find("Pages:           " + std::to_string(cases.size())), std::string::npos) << info;
    EXPECT_NE(info.find("Page size:       96 x 72 pts"), std::string::npos) << info;
    std::string images = OutputOf("pdfimages -list " + file.path());
    EXPECT_EQ(CountOf(images, "\n"), 2) << images;  // the two lines of its head
}

TEST(PdfPages, Text_StandsWhereThePixelsHaveIt) {
    for (const Case& row : CasesOf({"Aligned text"})) {
        PdfFile file({row});
        std::string box = OutputOf("pdftotext -bbox " + file.path() + " -");
        double left = -1, right = -1;
        const size_t at = box.find("<word ");
        ASSERT_NE(at, std::string::npos) << box;
        sscanf(box.c_str() + at, "<word xMin=\"%lf\" yMin=\"%*f\" xMax=\"%lf\"", &left, &right);
        Extent pixels = ExtentOf(DrawPixels(row.draw));
        EXPECT_NEAR(left, pixels.left, 1.5) << row.name;  // the box has the side bearings, the pixels have not
        EXPECT_NEAR(right, pixels.right, 1.5) << row.name;
    }
}

// A renderer that is not ours draws the same page.
TEST(PdfPages, Shapes_AgreeWithPixels) {
    std::vector<Case> cases = CasesOf({"Rectangle", "Oval", "Arc", "Path", "Region"});
    for (size_t i = 0; i < cases.size(); i += 7) {
        const Case& row = cases[i];
        if (row.reason || row.name.find("antialias") != row.name.npos) continue;
        PdfFile file({row});
        const std::string stem = file.path() + "-page";
        OutputOf("pdftocairo -png -transp -r 144 -singlefile " + file.path() + " " + stem);
        Image page = ReadPng(stem + ".png");
        remove((stem + ".png").c_str());
        Comparison result = Compare(DrawPixels(row.draw), page);
        EXPECT_TRUE(result.agrees()) << row.group << ": " << row.name << ": " << result.text();
    }
}
