#include "graphics/ZR_API_Region.h"

#include "graphics/ZR_API_Device.h"
#include "graphics/ZR_API_Path.h"
#include "tests/core/FakeHost.h"

static constexpr ZR_Rect kBig = {0, 0, 100, 100}, kMiddle = {20, 20, 80, 80}, kSmall = {40, 40, 60, 60};

TEST(Region, PointInRgn_EdgesBelongToIt) {
    MemoryCheck check;
    ZR_Region region;
    region.Create();
    region.AddRect(&kMiddle);
    static const struct {
        ZR_Point p;
        bool inside;
    } rows[] = {{{80, 50}, true},  {{20, 50}, true},  {{50, 20}, true},  {{50, 80}, true},    {{80, 80}, true},
                {{81, 50}, false}, {{19, 50}, false}, {{50, 19}, false}, {{50, 80.5F}, false}};
    for (const auto& row : rows) EXPECT_EQ(region.PointInRgn(&row.p, nullptr), row.inside) << row.p.x << " " << row.p.y;
    region.Dispose();
}

TEST(Region, PointInRgn_TheLastRecordDecides) {
    MemoryCheck check;
    ZR_Region region;
    region.Create();
    ZR_Point p = {50, 50}, outside = {10, 10};
    ZR_Rect hit = {-1, -1, -1, -1};
    EXPECT_FALSE(region.PointInRgn(&p, &hit));  // empty
    EXPECT_EQ(hit.top, -1);
    region.AddRect(&kBig);
    region.Difference(&kMiddle);
    EXPECT_FALSE(region.PointInRgn(&p, &hit));
    region.AddRect(&kSmall);
    EXPECT_TRUE(region.PointInRgn(&p, &hit));  // added, taken away, added
    EXPECT_EQ(hit.left, kSmall.left);
    EXPECT_TRUE(region.PointInRgn(&outside, &hit));
    EXPECT_EQ(hit.right, kBig.right);
    EXPECT_FALSE(region.PointInRgn(nullptr, &hit));
    region.SetAsRect(&kSmall);
    EXPECT_FALSE(region.PointInRgn(&outside, nullptr));
    region.SetEmpty();
    EXPECT_FALSE(region.PointInRgn(&p, nullptr));
    region.Dispose();
}

TEST(Region, DifferenceOfARegion_TakesAllItsRectsWhateverTheirFlag) {  // Required
    MemoryCheck check;
    ZR_Region other, region, copy;
    other.Create();
    other.AddRect(&kMiddle);
    other.Difference(&kSmall);
    region.Create();
    region.AddRect(&kBig);
    region.Difference(&other);
    EXPECT_EQ(region.records.count, 3);
    ZR_Point hole = {50, 50}, ring = {30, 30}, rim = {10, 10};
    EXPECT_FALSE(region.PointInRgn(&hole, nullptr));
    EXPECT_FALSE(region.PointInRgn(&ring, nullptr));
    EXPECT_TRUE(region.PointInRgn(&rim, nullptr));
    copy.Create(&region);
    EXPECT_EQ(copy.records.count, 3);
    EXPECT_TRUE(copy.dirty);
    EXPECT_EQ(copy.shape, nullptr);
    region.Difference(&region);  // itself: each record once more
    EXPECT_EQ(region.records.count, 6);
    EXPECT_FALSE(region.PointInRgn(&rim, nullptr));
    EXPECT_TRUE(copy.PointInRgn(&rim, nullptr));
    region.SetAsRect(reinterpret_cast<ZR_Rect*>(region.records.GetMemPtr(6)));  // one of its own
    EXPECT_EQ(region.records.count, 1);
    EXPECT_TRUE(region.PointInRgn(&hole, nullptr));
    copy.Dispose();
    copy.Create(nullptr);
    EXPECT_EQ(copy.records.count, 0);
    for (ZR_Region* r : {&copy, &region, &other}) r->Dispose();
}

TEST(Region, CreatePath_FiveRecordsARect_SubtractedOnesToo) {  // Required
    MemoryCheck check;
    ZR_Region region;
    region.Create();
    region.AddRect(&kBig);
    region.Difference(&kSmall);
    ZR_Handle path = region.CreatePath();
    ZR_Text text;
    text.Create();
    ZR_GetPathText(&path, &text);
    EXPECT_EQ(Units(text), u"M0 0 L100 0 L100 100 L0 100 L0 0 M40 40 L60 40 L60 60 L40 60 L40 40");
    text.Dispose();
    path.Dispose();
    region.SetEmpty();
    path = region.CreatePath();
    EXPECT_EQ(path.count, 0);
    path.Dispose();
    region.Dispose();
}

TEST(Region, GetRegion_IsMadeFlippedOnceAfterAChange) {
    MemoryCheck check;
    ZR_Device device;
    device.Create();
    device.bounds = {0, 0, 200, 300};
    ZR_Region region;
    region.Create();
    region.AddRect(&kBig);
    region.Difference(&kMiddle);
    region.AddRect(&kSmall);
    EXPECT_TRUE(region.dirty);
    HIShapeRef shape = region.GetRegion(&device);
    ASSERT_NE(shape, nullptr);
    EXPECT_FALSE(region.dirty);
    static const struct {
        CGPoint p;  // y up: 300 - y
        bool inside;
    } rows[] = {{{10, 290}, true}, {{30, 270}, false}, {{50, 250}, true}, {{10, 10}, false}, {{150, 250}, false}};
    for (const auto& row : rows) EXPECT_EQ(HIShapeContainsPoint(shape, &row.p), row.inside) << row.p.x;
    device.bounds.bottom = 400;
    EXPECT_EQ(region.GetRegion(&device), shape);  // Required: as long as nothing changed
    EXPECT_TRUE(HIShapeContainsPoint(shape, &rows[0].p));
    region.SetAsRect(&kBig);
    shape = region.GetRegion(&device);
    const CGPoint moved = {10, 390};
    EXPECT_TRUE(HIShapeContainsPoint(shape, &moved));
    EXPECT_FALSE(HIShapeContainsPoint(shape, &rows[0].p));
    region.SetEmpty();
    EXPECT_TRUE(HIShapeIsEmpty(region.GetRegion(&device)));
    region.Dispose();
    EXPECT_EQ(region.shape, nullptr);
    device.Dispose();
}

TEST(Region, GetRegion_BadRects_AreLeftOut) {
    ZR_Device device;
    device.Create();
    device.bounds = {0, 0, 200, 300};
    ZR_Region region;
    region.Create();
    const ZR_Rect rects[] = {
        {__builtin_nanf(""), 0, 1, 1}, {0, 0, __builtin_inff(), 1}, {5, 5, 5, 5}, {0, 0, 1e30F, 1e30F}};
    for (const ZR_Rect& r : rects) region.AddRect(&r);
    EXPECT_NE(region.GetRegion(&device), nullptr);
    EXPECT_EQ(region.GetRegion(nullptr), region.shape);
    region.Dispose();
    device.Dispose();
}
