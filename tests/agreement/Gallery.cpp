// Writes the gallery: each case as a pair of pictures, pixels on the left and the SVG document on the right, on one
// sheet a primitive, with how far they are apart.
//     zr_gallery FOLDER     writes FOLDER/gallery.md and FOLDER/gallery/*.png
#include <cctype>
#include <cstdio>
#include <filesystem>
#include <fstream>

#include "graphics/ZR_API_Device.h"
#include "graphics/ZR_API_Font.h"
#include "platform/CoreGraphics/CoreGraphics.h"
#include "tests/agreement/Cases.h"

using namespace agreement;

namespace {

constexpr long kColumns = 4, kGap = 8, kLabel = 26, kCellWidth = kWidth * 2 + kGap, kCellHeight = kHeight + kLabel;

struct Sheet {
    std::string group;
    std::vector<Case> cases;
};

std::vector<Sheet> SheetsOf(const std::vector<Case>& cases) {
    std::vector<Sheet> sheets;
    for (const Case& row : cases) {
        Sheet* sheet = nullptr;
        for (Sheet& known : sheets)
            if (known.group == row.group) sheet = &known;
        if (!sheet) sheet = &sheets.emplace_back(Sheet{row.group, {}});
        sheet->cases.push_back(row);
    }
    return sheets;
}

std::string FileName(const std::string& group) {
    std::string name;
    for (char c : group)
        if (isalnum(static_cast<unsigned char>(c))) name += static_cast<char>(tolower(static_cast<unsigned char>(c)));
        else if (!name.empty() && name.back() != '-') name += '-';
    return name;
}

ZR_Rect Rect(float left, float top, float width, float height) {
    ZR_Rect rect;
    rect.left = left, rect.top = top, rect.right = left + width, rect.bottom = top + height;
    return rect;
}

void DrawImage(ZR_Device* device, const Image& image, float left, float top) {
    ZR_Rect rect = Rect(left, top, kWidth, kHeight);
    ZR_RGBColor grid = {0xD000, 0xD000, 0xD000, 1};
    device->DrawRect(&rect, false, true, &grid, &grid, 0.5F, true, 0, false, nullptr, nullptr, nullptr, nullptr);
    CGImageRef picture = CreateImage(image);
    CGContextDrawImage(device->context, device->GetCGRect(&rect), picture);
    CFRelease(picture);
}

void DrawLabel(ZR_Device* device, const std::string& words, float left, float top, bool differs) {
    ZR_Font font;
    font.Create(8, 0, "Arial");
    ZR_Text text;
    text.Create();
    text.AddString(words.c_str());
    ZR_RGBColor color = {static_cast<unsigned short>(differs ? 0xB000 : 0x3000), 0x3000, 0x3000, 1};
    ZR_Rect rect = Rect(left, top, kCellWidth - kGap, kLabel - 4);
    device->DrawTextLayout(&text, &rect, static_cast<ZR_Alignment>(2), static_cast<ZR_Alignment_Vertical>(1), &font,
                           &color, true, nullptr, nullptr, true, static_cast<ZR_Textmeasuring>(0), true, 0, 0, true);
    text.Dispose();
    font.Dispose();
}

Image DrawSheet(const Sheet& sheet) {
    const long rows = (static_cast<long>(sheet.cases.size()) + kColumns - 1) / kColumns;
    const long width = kColumns * kCellWidth + kGap, height = rows * kCellHeight + kGap;
    ZR_Device device;
    Image image{static_cast<int>(width), static_cast<int>(height), {}};
    if (!device.CreateOffscreen(width, height, true, 72, 72)) return image;
    ZR_Rect all = Rect(0, 0, float(width), float(height));
    ZR_RGBColor white = {0xFFFF, 0xFFFF, 0xFFFF, 1};
    device.DrawRect(&all, true, false, &white, &white, 1, true, 0, false, nullptr, nullptr, nullptr, nullptr);
    for (size_t i = 0; i < sheet.cases.size(); i++) {
        const Case& row = sheet.cases[i];
        const float left = float(static_cast<long>(i) % kColumns * kCellWidth + kGap);
        const float top = float(static_cast<long>(i) / kColumns * kCellHeight + kGap);
        DrawImage(&device, DrawPixels(row.draw, 1), left, top);
        DrawImage(&device, RenderDocument(DrawDocument(row.draw), 1), left + kWidth, top);
        DrawLabel(&device, row.name, left, top + kHeight + 2, row.reason != nullptr);
    }
    device.Flush();
    image.pixels.assign(device.bitmapData, device.bitmapData + width * height * 4);
    device.Dispose();
    return image;
}

void WriteSheet(std::ofstream& page, const Sheet& sheet, const std::filesystem::path& folder) {
    const std::string file = FileName(sheet.group) + ".png";
    std::vector<uint8_t> png = PngOf(DrawSheet(sheet));
    std::ofstream(folder / "gallery" / file, std::ios::binary)
        .write(reinterpret_cast<const char*>(png.data()), static_cast<std::streamsize>(png.size()));
    page << "\n## " << sheet.group << "\n\n![" << sheet.group << "](gallery/" << file << ")\n\n"
         << "| Case | Interior | Largest | Pixels | Remark |\n|---|---|---|---|---|\n";
    for (const Case& row : sheet.cases) {
        Comparison result = CompareBoth(row.draw);
        char numbers[80];
        snprintf(numbers, sizeof numbers, "%d | %d | %.2f %%", result.interior, result.largest, result.share * 100);
        page << "| " << row.name << " | " << numbers << " | "
             << (row.reason               ? row.reason
                 : row.kind == Kind::Text ? "compared by position"
                                          : "")
             << " |\n";
    }
}

}  // namespace

int main(int count, char** arguments) {
    if (count != 2) {
        fprintf(stderr, "usage: zr_gallery FOLDER\n");
        return 2;
    }
    const std::filesystem::path folder = arguments[1];
    std::filesystem::create_directories(folder / "gallery");
    std::ofstream page(folder / "gallery.md");
    page
        << "# The two back ends side by side\n\n"
        << "Written by `./dev gallery`. Each case is drawn on pixels (left) and as an SVG document that librsvg draws "
           "(right).\n\n"
        << "- Interior: the largest difference of a channel, of 255, where neither picture has an edge.\n"
        << "- Largest: of any pixel; at edges the antialiasing may differ, but not beyond what the neighbouring pixels "
           "span.\n"
        << "- Pixels: the share that differs by more than " << kTolerance << ".\n"
        << "- Remark: why the two are to differ, with a red label on the sheet; [drawing.md](drawing.md) has the list. "
           "Text is compared by where it stands.\n";
    for (const Sheet& sheet : SheetsOf(AllCases())) WriteSheet(page, sheet, folder);
    return page.good() ? 0 : 1;
}
