// How alike two texts are.
#include <algorithm>
#include <cstring>
#include <new>

#include "core/ZR_API_Text.h"

static constexpr long kMostCells =
    1L << 32;  // of one distance: half a minute; beyond it texts are equal or wholly apart

static constexpr long kMostMatrixCells = 1L << 28;  // 2 GiB
static constexpr long kRowCost = 8;                 // of a row's own block and pointer, in cells

// The matrix -------------------------------------------------------------------------------------------------------

long** ZR_createMatrix(long rows, long columns) {
    long cells;
    if (rows < 1 || columns < 1 || columns > kMostMatrixCells) return nullptr;
    if (__builtin_mul_overflow(rows, columns + kRowCost, &cells) || cells > kMostMatrixCells) return nullptr;
    long** matrix = new (std::nothrow) long*[static_cast<size_t>(rows)]();
    for (long i = 0; matrix && i < rows; ++i) {
        matrix[i] = new (std::nothrow) long[static_cast<size_t>(columns)];
        if (matrix[i]) continue;
        ZR_killMatrix(matrix, i);
        return nullptr;
    }
    return matrix;
}

void ZR_killMatrix(long** matrix, long rows) {
    for (long i = 0; matrix && i < rows; ++i) delete[] matrix[i];
    delete[] matrix;
}

// Distance ---------------------------------------------------------------------------------------------------------

// The rows of the table: the caller's, or three in turn, since no cell looks back further.
struct DistanceRows {
    long** matrix;
    long* three;
    long columns;
    long* Row(long i) const { return matrix ? matrix[i] : three + i % 3 * columns; }
};

// a and b count from 1.
static void FillRow(const DistanceRows& rows, long i, const unsigned short* a, const unsigned short* b, long m) {
    long* row = rows.Row(i);
    const long *above = rows.Row(i - 1), *second = i >= 3 ? rows.Row(i - 2) : nullptr;
    row[0] = i;
    for (long j = 1; j <= m; ++j) {
        long best = std::min({above[j] + 1, row[j - 1] + 1, above[j - 1] + (a[i] == b[j] ? 0 : 1)});
        // Required: the swap starts at the third unit of both, and costs its mismatches instead of asking for none.
        if (second && j >= 3)
            best = std::min(best, second[j - 2] + 1 + (a[i - 1] == b[j] ? 0 : 1) + (a[i] == b[j - 1] ? 0 : 1));
        row[j] = best;
    }
}

long ZR_Text::EditDistance(long thisLength, const ZR_Text* other, long otherLength, long** matrix) const {
    // Guard: at most the units that are there.
    const long n = std::clamp(thisLength, 0L, data ? std::max(count, 0L) : 0);
    const long m = other && other->data ? std::clamp(otherLength, 0L, std::max(other->count, 0L)) : 0;
    if (n == 0) return m;
    if (m == 0) return n;
    if (m > kMostCells / n) {
        const bool equal = n == m && memcmp(Units(), other->Units(), static_cast<size_t>(n) * sizeof(short)) == 0;
        return equal ? 0 : std::max(n, m);
    }
    DistanceRows rows = {matrix, nullptr, m + 1};
    if (!matrix) rows.three = new (std::nothrow) long[static_cast<size_t>(m + 1) * 3];
    if (!matrix && !rows.three) return std::max(n, m);
    for (long j = 0; j <= m; ++j) rows.Row(0)[j] = j;
    for (long i = 1; i <= n; ++i) FillRow(rows, i, Units() - 1, other->Units() - 1, m);
    const long distance = rows.Row(n)[m];
    delete[] rows.three;
    return distance;
}

double ZR_Text::PercentMatch(ZR_Text* other, bool caseSensitive, long** matrix) {
    const long there = other ? other->count : 0, longest = std::max(count, there);
    if (longest < 1) return 0;  // Required: two empty texts are not alike
    if (!caseSensitive) {       // Required: both texts stay in upper case
        Uppercase();
        if (other) other->Uppercase();
    }
    const long distance = EditDistance(count, other, there, matrix);
    return (1.0 - static_cast<double>(distance) / static_cast<double>(longest)) * 100.0;
}
