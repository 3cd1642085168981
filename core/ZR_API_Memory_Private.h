// The one place that allocates blocks for handles, texts and text arrays. A block may be larger than asked for; growing
// within it costs nothing, and growing out of it asks for half as much again, so that appends one by one stay linear.
#ifndef ZR_API_MEMORY_PRIVATE_H
#define ZR_API_MEMORY_PRIVATE_H

inline constexpr long kLargestBlock = 1L << 36;  // bytes; beyond it a block is refused without asking the system

char* ZR_AllocateBlock(long bytes);           // not cleared; null = refused
char* ZR_GrowBlock(char* block, long bytes);  // contents kept, may move; null = refused, the block is as it was
void ZR_FreeBlock(void* block);               // null = nothing

// count elements of size bytes plus extra elements; false = negative, or more than a block may hold.
inline bool ZR_BlockSize(long count, long extra, long size, long* elements, long* bytes) {
    if (count < 0 || extra < 0 || size < 1) return false;
    return !__builtin_add_overflow(count, extra, elements) && !__builtin_mul_overflow(*elements, size, bytes) &&
           *bytes <= kLargestBlock;
}

#endif
