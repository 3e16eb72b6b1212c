#include "AllocationCount.h"

#include <atomic>
#include <cerrno>
#include <cstddef>

namespace {

std::atomic<unsigned long long> s_nAllocations = 0;

/// Not one locked addition: the benchmarks run on one thread, and counting should weigh little in what is measured.
void CountAllocation() {
    s_nAllocations.store(s_nAllocations.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
}

} // namespace

unsigned long long AllocationCount() {
    return s_nAllocations.load(std::memory_order_relaxed);
}

// The program's own definitions come before the C library's, for every library that is loaded, if they are visible.
#pragma GCC visibility push(default)

extern "C" {

void* __libc_malloc(std::size_t nBytes);
void* __libc_calloc(std::size_t nElements, std::size_t nBytes);
void* __libc_realloc(void* pBlock, std::size_t nBytes);
void* __libc_memalign(std::size_t nAlignment, std::size_t nBytes);

void* malloc(std::size_t nBytes) {
    CountAllocation();
    return __libc_malloc(nBytes);
}

void* calloc(std::size_t nElements, std::size_t nBytes) {
    CountAllocation();
    return __libc_calloc(nElements, nBytes);
}

void* realloc(void* pBlock, std::size_t nBytes) {
    CountAllocation();
    return __libc_realloc(pBlock, nBytes);
}

void* memalign(std::size_t nAlignment, std::size_t nBytes) {
    CountAllocation();
    return __libc_memalign(nAlignment, nBytes);
}

void* aligned_alloc(std::size_t nAlignment, std::size_t nBytes) {
    return memalign(nAlignment, nBytes);
}

int posix_memalign(void** ppBlock, std::size_t nAlignment, std::size_t nBytes) {
    *ppBlock = memalign(nAlignment, nBytes);
    return *ppBlock != nullptr ? 0 : ENOMEM;
}

} // extern "C"

#pragma GCC visibility pop
