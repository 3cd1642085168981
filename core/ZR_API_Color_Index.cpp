// The host's 256 colour numbers: three tables of channels.
//
// Rows 0 to 15 are the base colours. The others follow from the rows in kHues, kGrays and the steps below, and move
// evenly from one such row to the next, rounded to the nearest number:
//   16..127   once around the hue circle. A hue is a place on the hexagon red, yellow, green, cyan, blue, magenta, with
//             the high channel at FFFF and the low one at 0001. Rows given are as given, 120 with its own low channel.
//   128..239  sixteen rows for each of red, orange, yellow, green, cyan, blue and magenta. Seven tints in steps of 2000
//             of the low channel, from E001 to the full colour in the eighth row, then eight shades in steps of 13E8
//             of the high channel, from there to 60BF. Orange has its middle channel half way between the two.
//   240..255  gray.
#include "core/ZR_API_Color.h"

static constexpr long kRows = 256, kBaseRows = 16, kFirstTint = 128, kFirstGray = 240;
static constexpr long kRange = 0xFFFF - 0x0001;  // of a channel at full saturation: one side of the hexagon

struct ColorRow {
    unsigned short red, green, blue;
};

static constexpr ColorRow kBase[kBaseRows] = {
    {0xFFFF, 0xFFFF, 0xFFFF}, {0xFFFF, 0xFFFF, 0x0000}, {0xFFFF, 0x6666, 0x0000}, {0xEEEE, 0x0000, 0x0000},
    {0xFFFF, 0x0000, 0x9999}, {0x0000, 0x0000, 0x9999}, {0x0000, 0x0000, 0xFFFF}, {0x0000, 0x9999, 0xFFFF},
    {0x0000, 0xBBBB, 0x0000}, {0x0000, 0x9999, 0x0000}, {0x6666, 0x3333, 0x0000}, {0x4444, 0x4444, 0x4444},
    {0xDDDD, 0xDDDD, 0xDDDD}, {0x9999, 0x6666, 0x0000}, {0xAAAA, 0xAAAA, 0xAAAA}, {0x0000, 0x0000, 0x0000},
};

// Rows that are given; turn counts whole turns of the circle behind the first of them.
static constexpr struct {
    long row;
    ColorRow color;
    long turn;
} kHues[] = {
    {16, {0xFFFF, 0x0001, 0x5E98}, 0}, {48, {0xFFFF, 0xC02F, 0x0001}, 1},  {64, {0xBC90, 0xFFFF, 0x0001}, 1},
    {96, {0x0001, 0xB440, 0xFFFF}, 1}, {120, {0xFFFF, 0x03DF, 0xEFF6}, 1}, {128, {0xFFFF, 0x0001, 0x5E98}, 1},
};
static constexpr struct { long row, value; } kGrays[] = {{240, 0xFFFE}, {244, 0xC000}, {251, 0x4000}, {255, 0x0000}};

// From first to last in steps, rounded to the nearest.
static constexpr long Between(long first, long last, long step, long steps) {
    long twice = 2 * (last - first) * step + (last < first ? -steps : steps);
    return first + twice / (2 * steps);
}

// Where a colour stands on the hexagon, [0..6 * kRange): red 0, yellow kRange, and so on.
static constexpr long PlaceOf(ColorRow c) {
    long channels[] = {c.red, c.green, c.blue}, high = 0, low = 0;
    for (long i = 1; i < 3; ++i) {
        if (channels[i] > channels[high]) high = i;
        if (channels[i] <= channels[low]) low = i;
    }
    long middle = 3 - high - low;
    long part = Between(0, kRange, channels[middle] - channels[low], channels[high] - channels[low]);
    long place = 2 * kRange * high + (middle == (high + 1) % 3 ? part : -part);
    return (place + 6 * kRange) % (6 * kRange);
}

static constexpr ColorRow ColorAt(long place) {
    long side = place / kRange % 6, along = place % kRange, channels[3] = {1, 1, 1};
    long high = (side + 1) / 2 % 3, rising = side % 2 == 0 ? (high + 1) % 3 : (high + 2) % 3;
    channels[high] += kRange;
    channels[rising] += side % 2 == 0 ? along : kRange - along;
    return {static_cast<unsigned short>(channels[0]), static_cast<unsigned short>(channels[1]),
            static_cast<unsigned short>(channels[2])};
}

static constexpr ColorRow HueRow(long row) {
    long i = 0;
    while (kHues[i + 1].row <= row) ++i;
    if (kHues[i].row == row) return kHues[i].color;
    long first = PlaceOf(kHues[i].color) + kHues[i].turn * 6 * kRange;
    long last = PlaceOf(kHues[i + 1].color) + kHues[i + 1].turn * 6 * kRange;
    return ColorAt(Between(first, last, row - kHues[i].row, kHues[i + 1].row - kHues[i].row));
}

static constexpr ColorRow TintRow(long row) {
    enum { kLow, kMiddle, kHigh };
    constexpr long kParts[7][3] = {{kHigh, kLow, kLow}, {kHigh, kMiddle, kLow}, {kHigh, kHigh, kLow},
                                   {kLow, kHigh, kLow}, {kLow, kHigh, kHigh},   {kLow, kLow, kHigh},
                                   {kHigh, kLow, kHigh}};
    long family = (row - kFirstTint) / 16, step = (row - kFirstTint) % 16;
    long low = step < 7 ? 0xE001 - step * 0x2000 : 0x0001, high = step < 8 ? 0xFFFF : 0xFFFF - (step - 7) * 0x13E8;
    const long values[] = {low, (low + high) / 2, high};
    const auto& parts = kParts[family];
    return {static_cast<unsigned short>(values[parts[0]]), static_cast<unsigned short>(values[parts[1]]),
            static_cast<unsigned short>(values[parts[2]])};
}

static constexpr ColorRow GrayRow(long row) {
    long i = 0;
    while (kGrays[i + 1].row < row) ++i;
    auto gray = static_cast<unsigned short>(
        Between(kGrays[i].value, kGrays[i + 1].value, row - kGrays[i].row, kGrays[i + 1].row - kGrays[i].row));
    return {gray, gray, gray};
}

struct ColorTables {
    unsigned short red[kRows], green[kRows], blue[kRows];
};

static constexpr ColorTables MakeTables() {
    ColorTables tables = {};
    for (long row = 0; row < kRows; ++row) {
        ColorRow color = row < kBaseRows    ? kBase[row]
                         : row < kFirstTint ? HueRow(row)
                         : row < kFirstGray ? TintRow(row)
                                            : GrayRow(row);
        tables.red[row] = color.red;
        tables.green[row] = color.green;
        tables.blue[row] = color.blue;
    }
    return tables;
}

static constexpr ColorTables kTables = MakeTables();

void ZR_RGBColor::Set4DIndex(long index) {
    *this = {0, 0, 0, 1};
    if (index < 0 || index >= kRows) return;
    red = kTables.red[index];
    green = kTables.green[index];
    blue = kTables.blue[index];
}
