// The two back ends draw the same picture wherever nothing says that they are to differ.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <fstream>
#include <map>
#include <sstream>

#include "tests/agreement/Cases.h"

using namespace agreement;

namespace {

bool StandsTheSame(const Draw& draw) {
    Extent a = ExtentOf(DrawPixels(draw)), b = ExtentOf(RenderDocument(DrawDocument(draw)));
    return std::abs(a.left - b.left) <= 1 && std::abs(a.top - b.top) <= 1 && std::abs(a.right - b.right) <= 1 &&
           std::abs(a.bottom - b.bottom) <= 1;
}

std::string FullName(const Case& row) { return row.group + ": " + row.name; }

}  // namespace

TEST(Agreement, Shapes_AgreeUnlessTheyAreToDiffer) {
    int compared = 0;
    for (const Case& row : AllCases()) {
        if (row.kind != Kind::Shapes || row.reason) continue;
        Comparison result = CompareBoth(row.draw);
        EXPECT_TRUE(result.agrees()) << FullName(row) << ": " << result.text();
        compared++;
    }
    EXPECT_GT(compared, 250);
}

TEST(Agreement, EveryCase_DrawsSomethingOnPixels) {
    for (const Case& row : AllCases()) {
        if (row.name.find("neither") != std::string::npos || row.reason == kSingleStop || row.reason == kFullArc)
            continue;
        Extent extent = ExtentOf(DrawPixels(row.draw));
        EXPECT_LT(extent.left, extent.right) << FullName(row);
    }
}

TEST(Agreement, EveryReason_HoldsForACaseAtLeast) {
    std::map<std::string, int> differing;
    for (const Case& row : AllCases()) {
        if (!row.reason) continue;
        bool differs = row.kind == Kind::Text ? !StandsTheSame(row.draw) : !CompareBoth(row.draw).agrees();
        differing[row.reason] += differs;
    }
    for (const char* reason : AllReasons()) EXPECT_GT(differing[reason], 0) << reason;
    EXPECT_EQ(differing.size(), AllReasons().size());
}

TEST(Agreement, Text_StandsWithinAPoint) {
    for (const Case& row : AllCases()) {
        if (row.kind != Kind::Text || row.reason) continue;
        Extent pixels = ExtentOf(DrawPixels(row.draw)), document = ExtentOf(RenderDocument(DrawDocument(row.draw)));
        EXPECT_NEAR(pixels.left, document.left, 1) << FullName(row);
        EXPECT_NEAR(pixels.top, document.top, 1) << FullName(row);
        EXPECT_NEAR(pixels.right, document.right, 1) << FullName(row);
        EXPECT_NEAR(pixels.bottom, document.bottom, 1) << FullName(row);
    }
}

TEST(Agreement, RandomScenes_AgreeCallByCall) {
    const char* asked = getenv("ZR_AGREEMENT_SCENES");
    const unsigned scenes = asked ? static_cast<unsigned>(atoi(asked)) : 150;
    for (unsigned seed = 1; seed <= scenes; seed++) {
        const Scene scene = RandomScene(seed);
        const std::vector<Draw>& calls = scene.calls;
        auto first = [&](size_t count) {
            return [&calls, count](ZR_Device* device) {
                for (size_t i = 0; i < count; i++) calls[i](device);
            };
        };
        Comparison whole = CompareBoth(first(calls.size()));
        if (whole.agrees(kTolerance + scene.translucent)) continue;
        size_t guilty = 1;  // the call that makes the difference: the first without which there is none
        while (guilty < calls.size() && CompareBoth(first(guilty)).agrees(kTolerance + scene.translucent)) guilty++;
        ADD_FAILURE() << "seed " << seed << ", call " << guilty << " of " << calls.size() << ": " << whole.text()
                      << "\n"
                      << DrawDocument(first(guilty));
    }
}

TEST(Agreement, Reasons_StandInTheManual) {
    std::ifstream file(std::string(ZR_SOURCE_DIR) + "/docs/drawing.md");
    std::stringstream manual;
    manual << file.rdbuf();
    for (const char* reason : AllReasons()) EXPECT_NE(manual.str().find(reason), std::string::npos) << reason;
}
