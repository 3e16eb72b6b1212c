// How much of the heap the program uses.
#pragma once

#include <cstddef>
#include <optional>

/// Bytes of all blocks that are allocated now.
std::size_t HeapBytesInUse();

/// Number of blocks allocated so far; nothing where they aren't counted.
std::optional<unsigned long long> AllocationCount();

#if !defined(_WIN32)
/// From now on malloc asks this function and answers null when it says so; null for asking nobody.
void LetMallocFail(bool (*pFails)());
#endif
