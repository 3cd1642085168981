// ZR_LineDash: lengths of line and gap in turn. Alive from a Create member to Dispose.
#ifndef ZR_API_LINEDASH_H
#define ZR_API_LINEDASH_H

struct ZR_Text;

struct ZR_LineDash {
    float phase;     // points into the first length
    long count;      // lengths
    float* lengths;  // points; new[]; owned; null = none

    void Create();
    void Create(float phase, float* lengths, long count);  // the array (new[]) is handed over
    void Create(float phase, float on, float off);
    void Create(const ZR_LineDash* source);  // a copy; null = empty
    void Dispose();
    bool Equal(const ZR_LineDash* other) const;  // null = the dash without lengths and phase
    void GetPoDoFoText(ZR_Text* out) const;      // appends a PDF dash array, "[3 2.5 ] 1.5"
};

#endif
