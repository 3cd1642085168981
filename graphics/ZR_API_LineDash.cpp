#include "graphics/ZR_API_LineDash.h"

#include <algorithm>
#include <new>

#include "core/ZR_API_Text.h"

static constexpr long kTextGrowStep = 10;

void ZR_LineDash::Create() {
    phase = 0;
    count = 0;
    lengths = nullptr;
}

void ZR_LineDash::Create(float dashPhase, float* values, long n) {
    phase = dashPhase;
    lengths = values;
    count = values ? std::max(n, 0L) : 0;  // guard: a count needs its lengths
}

void ZR_LineDash::Create(float dashPhase, float on, float off) {
    Create(dashPhase, new (std::nothrow) float[2]{on, off}, 2);
}

void ZR_LineDash::Create(const ZR_LineDash* source) {
    Create();
    if (!source) return;
    bool some = source->lengths && source->count > 0;
    float* copy = some ? new (std::nothrow) float[static_cast<size_t>(source->count)] : nullptr;
    if (copy) std::copy_n(source->lengths, source->count, copy);
    Create(source->phase, copy, source->count);
}

void ZR_LineDash::Dispose() {
    if (!lengths) return;  // Required: the phase of a dash without an array stays
    delete[] lengths;
    Create();
}

bool ZR_LineDash::Equal(const ZR_LineDash* other) const {
    if (!other) return count == 0 && phase == 0;
    return count == other->count && phase == other->phase &&
           (count < 1 || std::equal(lengths, lengths + count, other->lengths));
}

void ZR_LineDash::GetPoDoFoText(ZR_Text* out) const {
    if (!out) return;
    out->growStep = kTextGrowStep;
    out->AddUnit('[');
    for (long i = 0; i < count; ++i) {
        out->AddDouble(lengths[i], 1, /*keepZeros*/ false);
        out->AddUnit(' ');
    }
    out->AddString("] ");
    out->AddDouble(phase, 1, /*keepZeros*/ false);
}
