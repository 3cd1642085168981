// Words of text drawing that several headers share: alignments, and what a layout call is asked for.
#ifndef ZR_API_ALIGNMENT_H
#define ZR_API_ALIGNMENT_H

enum ZR_Alignment : int {
    ZR_ALIGNMENT_DEFAULT = 1,  // left, or right where the text runs from right to left
    ZR_ALIGNMENT_LEFT = 2,
    ZR_ALIGNMENT_CENTER = 3,
    ZR_ALIGNMENT_RIGHT = 4,
    ZR_ALIGNMENT_JUSTIFIED = 5
};
enum ZR_Alignment_Vertical : int { ZR_VERTICAL_TOP = 1, ZR_VERTICAL_CENTER = 2, ZR_VERTICAL_BOTTOM = 3 };

enum ZR_Textmeasuring : int {
    ZR_TEXT_DRAW = 0,
    ZR_TEXT_MEASURE = 1,           // at the rectangle's width; right and bottom of the rectangle are set
    ZR_TEXT_MEASURE_UNLIMITED = 2  // without a width limit
};

#endif
