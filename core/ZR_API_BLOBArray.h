// A list of byte blocks in one block, and numbers in the host's variables and arrays.
//
//     offset  size
//     0       4     "sako"
//     4       4     elementCount: number of blocks, high byte first
//     8       4     totalSize: sum of the block sizes, without their size fields
//     12      4     size of block 1
//     16            bytes of block 1, then size and bytes of block 2, nothing between
//
// The members that write and read it, CreateBLOBArray and ExpandBLOBArray, belong to ZR_Handle, as do the members that
// exchange a handle with the host's BLOBs.
#ifndef ZR_API_BLOBARRAY_H
#define ZR_API_BLOBARRAY_H

#include "core/ZR_API_Handle.h"

inline constexpr long kBLOBArrayMagic = 0x73616B6F;  // "sako"
inline constexpr long kBLOBArrayHeader = 12;         // bytes

// [0..size]; kinds 14, 15, 16 and 32, written in place; anything else = nothing.
void ZR_SetNumInArray(PA_Variable* array, long index, double value);
double ZR_GetNumInArray(PA_Variable* array, long index);  // kinds 14, 15, 16 and 32; else 0.0
// Kinds 1, 8, 9, 11. Required: kind 8 reads as 0.0, only a stored kind of 9 has its value taken.
double ZR_GetNumFromVariable(PA_Variable* variable);
bool ZR_IsArray(PA_Variable* variable);    // kinds 14 to 17, 19, 20, 22 and 34, older kinds folded
bool ZR_Is2DArray(PA_Variable* variable);  // kind 13

#endif
