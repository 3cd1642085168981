#include "graphics/ZR_API_MultiStyleText.h"

// Run --------------------------------------------------------------------------------------------------------------

void ZR_MultiStyleRun::Create() {
    font.Create();
    color = {0, 0, 0, 1};
    background = {0, 0, 0, 0};
    start = end = 0;
}

void ZR_MultiStyleRun::Create(const ZR_MultiStyleRun* source) {
    Create();
    if (!source) return;
    font.Create(&source->font);
    color = source->color;
    background = source->background;
    start = source->start;
    end = source->end;
}

void ZR_MultiStyleRun::Dispose() { font.Dispose(); }

// Life -------------------------------------------------------------------------------------------------------------

void ZR_MultiStyleText::Create() { runs.Create(sizeof(ZR_MultiStyleRun), 0); }

void ZR_MultiStyleText::Create(const ZR_MultiStyleText* source) {
    Create();
    if (source) AddRuns(0, source);
}

void ZR_MultiStyleText::Dispose() {
    for (long i = 1; i <= runs.count; ++i) GetRun(i)->Dispose();
    runs.Dispose();
}

void ZR_MultiStyleText::Clear() {
    Dispose();
    Create();
}

// Runs -------------------------------------------------------------------------------------------------------------

ZR_MultiStyleRun* ZR_MultiStyleText::AddRun(long start, long end, const ZR_Font* font, const ZR_RGBColor* color,
                                            const ZR_RGBColor* background) {
    ZR_MultiStyleRun run;  // made before the list grows: what is given may lie in it
    run.Create();
    if (font) run.font.Create(font);
    if (color) run.color = *color;
    if (background) run.background = *background;
    run.start = start;
    run.end = end;
    char* added = runs.AppendGetPtr();
    if (added) memcpy(added, &run, sizeof run);
    else run.Dispose();
    return reinterpret_cast<ZR_MultiStyleRun*>(added);
}

static long Moved(long position, long offset) {  // guard: the sum wraps
    return static_cast<long>(static_cast<unsigned long>(position) + static_cast<unsigned long>(offset));
}

void ZR_MultiStyleText::AddRuns(long offset, const ZR_MultiStyleText* other) {
    for (long i = 1, n = other ? other->runs.count : 0; i <= n; ++i) {
        const ZR_MultiStyleRun* run = other->GetRun(i);
        AddRun(Moved(run->start, offset), Moved(run->end, offset), &run->font, &run->color, &run->background);
    }
}

void ZR_MultiStyleText::OffsetRuns(long offset) {
    for (long i = 1; i <= runs.count; ++i) {
        ZR_MultiStyleRun* run = GetRun(i);
        run->start = Moved(run->start, offset);
        run->end = Moved(run->end, offset);
    }
}

ZR_MultiStyleRun* ZR_MultiStyleText::GetNextRun(long position) const { return GetNextRun(position, nullptr); }

ZR_MultiStyleRun* ZR_MultiStyleText::GetNextRun(long position, long* index) const {
    long i = 1;
    while (i <= runs.count && !(GetRun(i)->start <= position && position <= GetRun(i)->end)) ++i;
    if (index) *index = i <= runs.count ? i : 0;
    return GetRun(i);
}
