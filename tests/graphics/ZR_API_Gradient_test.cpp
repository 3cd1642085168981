#include "graphics/ZR_API_Gradient.h"

#include "graphics/ZR_API_LineDash.h"
#include "tests/core/FakeHost.h"

static const ZR_GradientOffset& Stop(const ZR_Gradient& gradient, long index) {
    return *reinterpret_cast<ZR_GradientOffset*>(gradient.stops.GetMemPtr(index));
}

TEST(Gradient, Create_Defaults) {
    MemoryCheck check;
    ZR_Gradient gradient;
    gradient.Create(ZR_GRADIENT_PERCENT);
    for (float value : {gradient.y1, gradient.x1, gradient.x2, gradient.y2, gradient.radius}) EXPECT_EQ(value, 0);
    EXPECT_TRUE(gradient.isLinear);
    EXPECT_EQ(gradient.boundsType, 2);
    EXPECT_TRUE(gradient.matrix.IsIdentity());
    EXPECT_EQ(gradient.stops.count, 0);
    gradient.x1 = 5;
    gradient.AddOffset(0.5F, nullptr);
    EXPECT_EQ(Stop(gradient, 1).color.alpha, 1);
    EXPECT_EQ(Stop(gradient, 1).offset, 0.5F);
    gradient.Dispose();
    EXPECT_EQ(gradient.x1, 0);
    EXPECT_EQ(gradient.boundsType, ZR_GRADIENT_NONE);
    EXPECT_EQ(gradient.stops.count, 0);
}

TEST(Gradient, SetOffsetColor_IndexOrAll) {
    MemoryCheck check;
    const ZR_RGBColor red = {65535, 0, 0, 0.5F}, blue = {0, 0, 65535, 0.25F}, green = {0, 65535, 0, 0.75F};
    ZR_Gradient gradient;
    gradient.Create(ZR_GRADIENT_USER);
    gradient.AddOffset(0, &red);
    gradient.AddOffset(1, &blue);
    for (long index : {0L, 3L, -1L, 1000L}) gradient.SetOffsetColor(index, &green);  // changes nothing
    EXPECT_EQ(Stop(gradient, 1).color.red, 65535);
    EXPECT_EQ(Stop(gradient, 2).color.blue, 65535);
    gradient.SetOffsetColorWithoutAlpha(&green);
    EXPECT_EQ(Stop(gradient, 1).color.green, 65535);
    EXPECT_EQ(Stop(gradient, 1).color.red, 0);
    EXPECT_EQ(Stop(gradient, 1).color.alpha, 0.5F);
    EXPECT_EQ(Stop(gradient, 2).color.alpha, 0.25F);
    gradient.SetOffsetColor(2, &red);
    EXPECT_EQ(Stop(gradient, 2).color.red, 65535);
    EXPECT_EQ(Stop(gradient, 2).color.alpha, 0.5F);
    gradient.SetOffsetColor(&blue);
    for (long i : {1L, 2L}) EXPECT_EQ(Stop(gradient, i).color.alpha, 0.25F);
    gradient.SetOffsetColor(nullptr);
    gradient.SetOffsetColor(1, nullptr);
    gradient.SetOffsetColorWithoutAlpha(nullptr);
    EXPECT_EQ(Stop(gradient, 1).color.blue, 65535);
    gradient.Dispose();
}

TEST(LineDash, Creators_OwnOrCopy) {
    ZR_LineDash empty, two, adopted, copy;
    empty.Create();
    EXPECT_EQ(empty.lengths, nullptr);
    two.Create(1.5F, 3, 2);
    ASSERT_EQ(two.count, 2);
    EXPECT_EQ(two.lengths[0], 3);
    EXPECT_EQ(two.lengths[1], 2);
    float* lengths = new float[3]{1, 2, 3};
    adopted.Create(0, lengths, 3);
    EXPECT_EQ(adopted.lengths, lengths);
    copy.Create(&adopted);
    EXPECT_NE(copy.lengths, lengths);
    EXPECT_TRUE(copy.Equal(&adopted));
    adopted.Dispose();
    EXPECT_EQ(adopted.count, 0);
    EXPECT_EQ(copy.lengths[2], 3);
    copy.Dispose();
    empty.phase = 4;
    copy.Create(&empty);
    EXPECT_EQ(copy.lengths, nullptr);  // no lengths, no array
    EXPECT_EQ(copy.phase, 4);
    copy.Dispose();
    EXPECT_EQ(copy.phase, 4);  // Required: without an array nothing is cleared
    copy.Create(nullptr);
    EXPECT_EQ(copy.count, 0);
    copy.Create(1, nullptr, 5);  // lengths that are not there
    EXPECT_EQ(copy.count, 0);
    two.Dispose();
    EXPECT_EQ(two.phase, 0);
}

TEST(LineDash, Equal_CountPhaseAndLengths) {
    ZR_LineDash a, b, c, phase, empty;
    a.Create(1, 3, 2);
    b.Create(1, 3, 2);
    c.Create(1, 3, 4);
    phase.Create(2, 3, 2);
    empty.Create();
    EXPECT_TRUE(a.Equal(&b));
    EXPECT_FALSE(a.Equal(&c));
    EXPECT_FALSE(a.Equal(&phase));
    EXPECT_FALSE(a.Equal(&empty));
    EXPECT_FALSE(a.Equal(nullptr));
    EXPECT_TRUE(empty.Equal(nullptr));
    EXPECT_TRUE(empty.Equal(&empty));
    empty.phase = 1;
    EXPECT_FALSE(empty.Equal(nullptr));
    for (ZR_LineDash* dash : {&a, &b, &c, &phase}) dash->Dispose();
}

TEST(LineDash, GetPoDoFoText_ABlankBehindEachLength) {
    ZR_LineDash dash;
    dash.Create(1.5F, 3, 2.25F);
    ZR_Text text = MakeText(u"");
    dash.GetPoDoFoText(&text);
    EXPECT_EQ(Units(text), u"[3 2.2 ] 1.5");
    EXPECT_EQ(text.growStep, 10);
    dash.Dispose();
    dash.Create();
    text.Resize(0);
    dash.GetPoDoFoText(&text);
    EXPECT_EQ(Units(text), u"[] 0");
    dash.GetPoDoFoText(nullptr);
    text.Dispose();
}
