#include "graphics/ZR_API_Matrix.h"

#include <algorithm>
#include <cmath>

#include "core/ZR_API_Text.h"

static constexpr double kRadian = 3.14159265358979323846 / 180;  // of a degree
static constexpr double kSmallestDeterminant = 1e-5;
static constexpr long kTextDecimals = 8;

void ZR_Matrix::SetIdentity() { *this = {1, 0, 0, 1, 0, 0}; }

bool ZR_Matrix::IsIdentity() const { return a == 1 && b == 0 && c == 0 && d == 1 && tx == 0 && ty == 0; }

// Products ---------------------------------------------------------------------------------------------------------

void ZR_MatrixMultiply(const ZR_Matrix* first, const ZR_Matrix* second, ZR_Matrix* out) {
    if (!first || !second || !out) return;
    const ZR_Matrix m = *first, n = *second;
    *out = {m.a * n.a + m.b * n.c, m.a * n.b + m.b * n.d,          m.c * n.a + m.d * n.c,
            m.c * n.b + m.d * n.d, m.tx * n.a + m.ty * n.c + n.tx, m.tx * n.b + m.ty * n.d + n.ty};
}

void ZR_Matrix::Multiply(const ZR_Matrix* second) { ZR_MatrixMultiply(this, second, this); }

// a to d turned by an angle in radians.
static void Turn(ZR_Matrix* m, double sine, double cosine) {
    *m = {static_cast<float>(m->a * cosine - m->b * sine),
          static_cast<float>(m->a * sine + m->b * cosine),
          static_cast<float>(m->c * cosine - m->d * sine),
          static_cast<float>(m->c * sine + m->d * cosine),
          m->tx,
          m->ty};
}

static bool Turns(float degrees) { return degrees > 0 && degrees < 360; }

void ZR_Matrix::TransformRotate(float degrees) {
    if (!Turns(degrees)) return;
    double radians = degrees * kRadian;
    Turn(this, std::sin(radians), std::cos(radians));
}

void ZR_Matrix::TransformRotateAt(float degrees, ZR_Point p) {
    if (!Turns(degrees)) return;
    // Required: 360 - degrees, so that this turns the other way than TransformRotate; the two are not one.
    float opposite = 360.0F - degrees;
    double s = std::sin(opposite * kRadian), k = std::cos(opposite * kRadian), x = tx, y = ty;
    Turn(this, s, k);
    tx = static_cast<float>(k * x - s * y + s * p.y + p.x - k * p.x);
    ty = static_cast<float>(s * x + k * y + p.y - s * p.x - k * p.y);
}

void ZR_Matrix::TransformScale(float sx, float sy) {
    a *= sx;  // Required: b and c stay
    d *= sy;
    tx *= sx;
    ty *= sy;
}

void ZR_Matrix::Invert() {
    const double p = a, q = b, r = c, s = d, x = tx, y = ty, determinant = p * s - q * r;
    if (!(std::fabs(determinant) >= kSmallestDeterminant)) return;
    *this = {static_cast<float>(s / determinant),
             static_cast<float>(-q / determinant),
             static_cast<float>(-r / determinant),
             static_cast<float>(p / determinant),
             static_cast<float>((r * y - s * x) / determinant),
             static_cast<float>(-(p * y - q * x) / determinant)};
}

// Points and rectangles --------------------------------------------------------------------------------------------

void ZR_Matrix::TransformPoint(ZR_Point* p) const {
    if (p) *p = {a * p->x + c * p->y + tx, b * p->x + d * p->y + ty};
}

void ZR_Matrix::ApplyToPoint(ZR_Point* p) const { TransformPoint(p); }

void ZR_Matrix::TransformRect(ZR_Rect* r) const {
    if (!r) return;
    ZR_Point corners[] = {{r->left, r->top}, {r->right, r->top}, {r->right, r->bottom}, {r->left, r->bottom}};
    for (ZR_Point& corner : corners) TransformPoint(&corner);
    *r = {corners[0].y, corners[0].x, corners[0].x, corners[0].y};
    for (const ZR_Point& corner : corners) r->ExpandRect(corner);
}

void ZR_Matrix::ApplyToRect(ZR_Rect* r) const {
    if (!IsIdentity()) TransformRect(r);
}

void ZR_Matrix::GetText(ZR_Text* out) const {
    if (!out) return;
    out->AddString("matrix(");
    for (float value : {a, b, c, d, tx, ty}) {
        if (out->GetChar(out->count - 1) != '(') out->AddUnit(' ');
        out->AddDouble(value, kTextDecimals, /*keepZeros*/ false);
    }
    out->AddUnit(')');
}
