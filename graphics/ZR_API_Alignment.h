// Words of text drawing that several headers share: alignments, and what a layout call is asked for.
#ifndef ZR_API_ALIGNMENT_H
#define ZR_API_ALIGNMENT_H

enum ZR_Alignment : int {
    ZR_ALIGN_DEFAULT = 1,
    ZR_ALIGN_LEFT = 2,
    ZR_ALIGN_CENTER = 3,
    ZR_ALIGN_RIGHT = 4,
    ZR_ALIGN_JUSTIFIED = 5
};

enum ZR_Alignment_Vertical : int { ZR_VALIGN_TOP = 1, ZR_VALIGN_CENTER = 2, ZR_VALIGN_BOTTOM = 3 };

enum ZR_Textmeasuring : int {
    ZR_MEASURE_DRAW = 0,      // draw, measure nothing
    ZR_MEASURE_WIDTH = 1,     // measure at the rectangle's width
    ZR_MEASURE_UNLIMITED = 2  // measure without a limit of the width
};

#endif
