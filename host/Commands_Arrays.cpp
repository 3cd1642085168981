// Commands by number: Arrays. Elements count from 1; element 0 exists besides and is left alone by all of them.
#include <algorithm>
#include <cstring>
#include <numeric>

#include "host/CommandCall.h"
#include "host/Commands_Private.h"
#include "host/Text.h"
#include "host/Variables.h"

namespace zrhost {
namespace {

// Comparing --------------------------------------------------------------------------------------------------------

template <class T>
int Order(T left, T right) {
    return left < right ? -1 : right < left ? 1 : 0;
}

int64_t DateKey(Date date) { return (int64_t(date.year) * 16 + date.month) * 32 + date.day; }

bool IsNumberArray(int kind) {
    return kind == eVK_ArrayReal || kind == eVK_ArrayInteger || kind == eVK_ArrayLongint || kind == eVK_ArrayTime ||
           kind == eVK_ArrayBoolean;
}

bool CanBeSorted(int kind) { return IsNumberArray(kind) || kind == eVK_ArrayText || kind == eVK_ArrayDate; }

// The elements of one array in a form that compares fast.
struct SortKeys {
    int kind = 0;
    bool descending = false;
    std::vector<double> numbers;
    std::vector<int64_t> dates;
    std::vector<std::u16string_view> texts;

    SortKeys(const CommandCall& call, int parameter, bool descending) : descending(descending) {
        kind = call.kind(parameter);
        const int count = call.arraySize(parameter);
        for (int i = 1; i <= count; ++i) {
            if (kind == eVK_ArrayText) texts.push_back(call.arrayText(parameter, i));
            else if (kind == eVK_ArrayDate) dates.push_back(DateKey(call.arrayDate(parameter, i)));
            else numbers.push_back(call.arrayNumber(parameter, i));
        }
    }
    int compare(size_t left, size_t right) const {
        const int order = kind == eVK_ArrayText
                              ? CompareText(texts[left], texts[right], /*exact*/ false, /*wildcard*/ false)
                          : kind == eVK_ArrayDate ? Order(dates[left], dates[right])
                                                  : Order(numbers[left], numbers[right]);
        return descending ? -order : order;
    }
};

struct Interrupted {};

// The order of positions [0..count) by the keys, the first key first; equal ones stay in their order. Empty = the user
// ended it.
std::vector<uint32_t> SortedOrder(CommandCall& call, const std::vector<SortKeys>& keys, size_t count) {
    std::vector<uint32_t> order(count);
    std::iota(order.begin(), order.end(), 0);
    size_t steps = 0;
    try {
        std::stable_sort(order.begin(), order.end(), [&](uint32_t left, uint32_t right) {
            if ((++steps & 0xFFFF) == 0 && call.interrupted()) throw Interrupted();
            for (const SortKeys& key : keys)
                if (const int compared = key.compare(left, right)) return compared < 0;
            return false;
        });
    } catch (const Interrupted&) { order.clear(); }
    return order;
}

// Elements are plain records, so that they move by their bytes.
void Rearrange(PA_Variable* array, const std::vector<uint32_t>& order) {
    const size_t size = size_t(ZR_HostArrayElementSize(UnifiedKind(*array)));
    char* first = ArrayElementAt(*array, 1);
    if (!first || size == 0) return;
    std::vector<char> old(first, first + size * order.size());
    for (size_t i = 0; i < order.size(); ++i) std::memcpy(first + i * size, old.data() + order[i] * size, size);
}

// Sorts all array parameters by the keys. False = they are not of one size, or the user ended it.
bool SortTogether(CommandCall& call, const std::vector<int>& arrays, const std::vector<SortKeys>& keys) {
    const int count = arrays.empty() ? -1 : call.arraySize(arrays[0]);
    for (int i : arrays)
        if (call.arraySize(i) != count || ZR_HostArrayElementSize(call.kind(i)) == 0) return false;
    if (count < 2 || keys.empty()) return count >= 0;
    const std::vector<uint32_t> order = SortedOrder(call, keys, size_t(count));
    if (order.empty()) return false;
    for (int i : arrays) Rearrange(call.parameters[i - 1], order);
    return true;
}

// 229 SORT ARRAY(array; [array]...; [< or >]): the others follow the first; > is ascending, as without a sign. Arrays
// of different sizes stay as they are.
void SortArray(CommandCall& call) {
    const bool descending = call.count > 1 && call.operatorCode(call.count) == ZR_OP_LESS;
    std::vector<int> arrays;
    for (int i = 1; i <= call.count; ++i)
        if (!call.isOperator(i)) arrays.push_back(i);
    if (arrays.empty() || !CanBeSorted(call.kind(1))) return Finish(call, ZR_ERR_PARAMETER);
    std::vector<SortKeys> keys;
    keys.emplace_back(call, 1, descending);
    if (!SortTogether(call, arrays, keys)) Finish(call, ZR_ERR_PARAMETER);
}

// 718 MULTI SORT ARRAY(array; [> or <]; [array; [> or <]]...): those with a sign are the levels, from the left; those
// without follow. The form with an array of pointers is not served.
void MultiSortArray(CommandCall& call) {
    if (call.kind(1) == eVK_ArrayPointer) return call.notServed();
    std::vector<int> arrays;
    std::vector<SortKeys> keys;
    for (int i = 1; i <= call.count; ++i) {
        if (call.isOperator(i)) continue;
        arrays.push_back(i);
        const int sign = call.operatorCode(i + 1);
        if (sign != ZR_OP_LESS && sign != ZR_OP_GREATER) continue;
        if (!CanBeSorted(call.kind(i))) return Finish(call, ZR_ERR_PARAMETER);
        keys.emplace_back(call, i, sign == ZR_OP_LESS);
    }
    if (!SortTogether(call, arrays, keys)) Finish(call, ZR_ERR_PARAMETER);
}

// Finding ----------------------------------------------------------------------------------------------------------

// Whether the element equals parameter value; a text may hold wildcards.
bool Matches(const CommandCall& call, int array, int element, int value) {
    const int kind = call.kind(array);
    if (kind == eVK_ArrayText) return call.isText(value) && EqualText(call.arrayText(array, element), call.text(value));
    if (kind == eVK_ArrayDate)
        return call.kind(value) == eVK_Date && call.arrayDate(array, element) == call.date(value);
    if (IsNumberArray(kind)) {
        const bool comparable = call.isNumber(value) || call.kind(value) == eVK_Time || call.kind(value) == eVK_Boolean;
        return comparable && call.arrayNumber(array, element) == call.number(value);
    }
    const Value left = call.arrayElement(array, element), right = call.value(value);
    if (kind == eVK_ArrayObject) return left.object() && left.object() == right.object();
    if (kind == eVK_ArrayPointer && left.pointer() && right.pointer())
        return std::memcmp(left.pointer(), right.pointer(), sizeof(PointerBlock)) == 0;
    return false;
}

int FindFrom(const CommandCall& call, int start) {  // -1 = none
    for (int i = std::max(1, start); i <= call.arraySize(1); ++i) {
        if (Matches(call, 1, i, 2)) return i;
        if ((i & 0xFFFF) == 0 && call.interrupted()) break;
    }
    return -1;
}

// 230 Find in array(array; value; [start]): -1 if there is none
void FindInArray(CommandCall& call) { call.setLongint(FindFrom(call, call.integer(3, 1))); }

// 907 Count in array(array; value)
void CountInArray(CommandCall& call) {
    int count = 0;
    for (int i = FindFrom(call, 1); i != -1 && i < INT32_MAX; i = FindFrom(call, i + 1)) ++count;
    call.setLongint(count);
}

// -1, 0, 1: the element against parameter 2.
int CompareElement(const CommandCall& call, int element) {
    if (call.kind(1) == eVK_ArrayText)
        return CompareText(call.arrayText(1, element), call.text(2), /*exact*/ false, /*wildcard*/ false);
    if (call.kind(1) == eVK_ArrayDate) return Order(DateKey(call.arrayDate(1, element)), DateKey(call.date(2)));
    return Order(call.arrayNumber(1, element), call.number(2));
}

// 1333 Find in sorted array(array; value; > or <; [first]; [last]): Boolean; the positions of the first and last match,
// or twice where it would be inserted
void FindInSortedArray(CommandCall& call) {
    const bool descending = call.operatorCode(3) == ZR_OP_LESS;
    if (!CanBeSorted(call.kind(1))) return call.setBoolean(false);
    auto bound = [&](bool behindEqual) {  // the first position whose element does not stand before the value
        int low = 1, high = call.arraySize(1) + 1;
        while (low < high) {
            const int middle = low + (high - low) / 2;
            const int order = descending ? -CompareElement(call, middle) : CompareElement(call, middle);
            if (order < 0 || (behindEqual && order == 0)) low = middle + 1;
            else high = middle;
        }
        return low;
    };
    const int first = bound(false), behind = bound(true);
    const bool found = behind > first;
    if (call.has(4)) call.assignLongint(4, first);
    if (call.has(5)) call.assignLongint(5, found ? behind - 1 : first);
    call.setBoolean(found);
}

// 274 Size of array(array): 0 for what is none
void SizeOfArray(CommandCall& call) { call.setLongint(std::max(0, call.arraySize(1))); }

// Changing ---------------------------------------------------------------------------------------------------------

// Elements from one position on, moved by their bytes within the size that is there.
void Rotate(PA_Variable* array, int first, int middle, int last) {  // [first, middle) goes behind [middle, last)
    const size_t size = size_t(ZR_HostArrayElementSize(UnifiedKind(*array)));
    char* start = ArrayElementAt(*array, first);
    if (start && size != 0)
        std::rotate(start, start + size_t(middle - first) * size, start + size_t(last - first) * size);
}

// 227 INSERT IN ARRAY(array; where; [count]): behind the last one if the position lies there
void InsertInArray(CommandCall& call) {
    const int size = call.arraySize(1), count = call.integer(3, 1);
    if (size < 0 || count <= 0 || count > INT32_MAX - size) return;
    const int where = std::clamp(call.integer(2, 1), 1, size + 1);
    if (call.resizeArray(1, size + count) && where <= size)
        Rotate(call.parameters[0], where, size + 1, size + count + 1);
}

// 228 DELETE FROM ARRAY(array; where; [count])
void DeleteFromArray(CommandCall& call) {
    const int size = call.arraySize(1), where = call.integer(2);
    if (where < 1 || where > size) return;
    const int count = std::min(call.integer(3, 1), size - where + 1);
    if (count <= 0) return;
    Rotate(call.parameters[0], where, where + count, size + 1);
    call.resizeArray(1, size - count);
}

// 911 APPEND TO ARRAY(array; value): an undefined variable becomes the array that suits the value.
void AppendToArray(CommandCall& call) {
    const Value value = call.value(2);
    const int kind = ArrayKindOf(value.kind());
    if (call.isUndefined(1) && (kind == eVK_Undefined || !call.prepareArray(1, PA_VariableKind(kind), 0))) return;
    const int size = call.arraySize(1);
    if (size < 0 || size == INT32_MAX || !call.resizeArray(1, size + 1)) return;
    if (!call.setArrayElement(1, size + 1, value)) call.resizeArray(1, size);
}

// 226 COPY ARRAY(source; target): element 0 as well
void CopyArray(CommandCall& call) {
    if (call.isArray(1)) call.assignValue(2, call.value(1));
}

// Declaring --------------------------------------------------------------------------------------------------------

// 218 ARRAY STRING(width; array; size); 219 to 224, 279, 280, 1221 to 1223 ARRAY kind(array; size): elements that are
// there are kept. Arrays of two dimensions are not served.
void DeclareArray(CommandCall& call) {
    static constexpr struct {
        int command, kind;
    } kKinds[] = {
        {218, eVK_ArrayText},    {219, eVK_ArrayReal},    {220, eVK_ArrayInteger}, {221, eVK_ArrayLongint},
        {222, eVK_ArrayText},    {223, eVK_ArrayBoolean}, {224, eVK_ArrayDate},    {279, eVK_ArrayPicture},
        {280, eVK_ArrayPointer}, {1221, eVK_ArrayObject}, {1222, eVK_ArrayBlob},   {1223, eVK_ArrayTime},
    };
    const int array = call.id == 218 && call.isNumber(1) ? 2 : 1;
    if (call.has(array + 2)) return call.notServed();
    const auto row =
        std::find_if(std::begin(kKinds), std::end(kKinds), [&](const auto& r) { return r.command == call.id; });
    const int size = call.integer(array + 1, -1);
    if (size < 0 || !call.prepareArray(array, PA_VariableKind(row->kind), size)) call.setError(ZR_ERR_PARAMETER);
}

constexpr CommandRow kRows[] = {
    {218, DeclareArray},  {219, DeclareArray},       {220, DeclareArray},  {221, DeclareArray},
    {222, DeclareArray},  {223, DeclareArray},       {224, DeclareArray},  {226, CopyArray},
    {227, InsertInArray}, {228, DeleteFromArray},    {229, SortArray},     {230, FindInArray},
    {274, SizeOfArray},   {279, DeclareArray},       {280, DeclareArray},  {718, MultiSortArray},
    {907, CountInArray},  {911, AppendToArray},      {1221, DeclareArray}, {1222, DeclareArray},
    {1223, DeclareArray}, {1333, FindInSortedArray},
};

}  // namespace

std::span<const CommandRow> commandsArrays() { return kRows; }

}  // namespace zrhost
