#include "HeapUse.h"

#if !defined(_WIN32)

#include <atomic>

namespace {

std::atomic<unsigned long long> s_nAllocations = 0;
bool (*s_pMallocFails)() = nullptr;

} // namespace

void LetMallocFail(bool (*pFails)()) {
    s_pMallocFails = pFails;
}

std::optional<unsigned long long> AllocationCount() {
    return s_nAllocations.load();
}

#endif

// Where malloc is defined here, the program's own definition comes before that of its libraries, for every caller.

#if defined(__SANITIZE_ADDRESS__)

// Of the sanitizer's run-time; this compiler comes without the header that declares them.
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();
extern "C" int __sanitizer_install_malloc_and_free_hooks(void (*pOnMalloc)(const volatile void*, std::size_t),
                                                         void (*pOnFree)(const volatile void*));

namespace {

[[maybe_unused]] const int s_nHooks = __sanitizer_install_malloc_and_free_hooks(
    [](const volatile void*, size_t) { ++s_nAllocations; }, [](const volatile void*) {});

} // namespace

// The sanitizer's malloc by its other name.
extern "C" void* __interceptor_malloc(std::size_t nBytes);

extern "C" void* malloc(std::size_t nBytes) {
    return s_pMallocFails != nullptr && s_pMallocFails() ? nullptr : __interceptor_malloc(nBytes);
}

std::size_t HeapBytesInUse() {
    return __sanitizer_get_current_allocated_bytes();
}

#elif defined(__GLIBC__)

#include <malloc.h>

// Operator new rests on it.
extern "C" void* __libc_malloc(std::size_t nBytes);

extern "C" void* malloc(std::size_t nBytes) {
    if (s_pMallocFails != nullptr && s_pMallocFails()) {
        return nullptr;
    }
    ++s_nAllocations;
    return __libc_malloc(nBytes);
}

std::size_t HeapBytesInUse() {
    return mallinfo2().uordblks;
}

#else

#include <windows.h>

std::size_t HeapBytesInUse() {
    HANDLE heaps[64];
    const DWORD nHeaps = GetProcessHeaps(64, heaps);
    std::size_t nBytes = 0;
    for (DWORD i = 0; i < nHeaps && i < 64; ++i) {
        PROCESS_HEAP_ENTRY entry = {};
        while (HeapWalk(heaps[i], &entry)) {
            if (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) {
                nBytes += entry.cbData;
            }
        }
    }
    return nBytes;
}

std::optional<unsigned long long> AllocationCount() {
    return std::nullopt;
}

#endif
