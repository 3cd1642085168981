// ZR_Matrix: an affine transform in the row-vector convention, x' = a x + c y + tx, y' = b x + d y + ty.
#ifndef ZR_API_MATRIX_H
#define ZR_API_MATRIX_H

#include "graphics/ZR_API_Geometry.h"

struct ZR_Text;

struct ZR_Matrix {
    float a, b, c, d, tx, ty;

    void SetIdentity();       // (1, 0, 0, 1, 0, 0)
    bool IsIdentity() const;  // exactly

    void Multiply(const ZR_Matrix* second);  // this one acts first; null = nothing
    void TransformRotate(float degrees);     // only between 0 and 360, both excluded; tx and ty stay
    // Required: turns in the opposite sense to TransformRotate for the same number. Same bounds.
    void TransformRotateAt(float degrees, ZR_Point p);
    void TransformScale(float sx, float sy);  // Required: b and c stay unscaled
    void Invert();                            // stays if the determinant is below 1e-5

    void TransformPoint(ZR_Point* p) const;
    void ApplyToPoint(ZR_Point* p) const;  // the same
    void TransformRect(ZR_Rect* r) const;  // r becomes the box around its four corners
    void ApplyToRect(ZR_Rect* r) const;    // the same, but the identity leaves r alone
    void GetText(ZR_Text* out) const;      // appends "matrix(a b c d tx ty)", at most 8 decimals each
};
static_assert(sizeof(ZR_Matrix) == 24, "six floats");

void ZR_MatrixMultiply(const ZR_Matrix* first, const ZR_Matrix* second, ZR_Matrix* out);  // out may be one of them

#endif
