#include "CallCounts.h"

#include <atomic>
#include <cerrno>
#include <cstddef>

#include <dlfcn.h>

#include <afxwin.h>

#include "host/Clip.h"
#include "host/HostCommon.h"
#include "host/ParamModel.h"
#include "host/PlayControlDevice.h"

namespace {

using Counter = std::atomic<unsigned long long>;

Counter s_nAllocations = 0;
Counter s_nLookUps = 0;

/// Not one locked addition: the benchmarks run on one thread, and counting should weigh little in what is measured.
void Count(Counter& nCalls) {
    nCalls.store(nCalls.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
}

/// The function that a library defines under that name.
template <typename Function>
Function* Library(const char* pszName) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, pszName));
}

} // namespace

SCallCounts CallCounts() {
    return {s_nAllocations.load(std::memory_order_relaxed), s_nLookUps.load(std::memory_order_relaxed)};
}

// The program's own definitions come before the libraries', for every library that is loaded, if they are visible.
#pragma GCC visibility push(default)

VEKParam* FindParam(const VEKParamGroupList& lstGroup, const GUID& guid) {
    static auto* const s_pFind =
        Library<VEKParam*(const VEKParamGroupList&, const GUID&)>("_Z9FindParamRK5CListIP13VEKParamGroupRKS1_ERK4GUID");
    Count(s_nLookUps);
    return s_pFind(lstGroup, guid);
}

SHORT WINAPI GetKeyState(int nKey) {
    static auto* const s_pGetKeyState = Library<decltype(GetKeyState)>("GetKeyState");
    Count(s_nLookUps);
    return s_pGetKeyState(nKey);
}

CWinApp* AfxGetApp() {
    static auto* const s_pGetApp = Library<decltype(AfxGetApp)>("_Z9AfxGetAppv");
    Count(s_nLookUps);
    return s_pGetApp();
}

CString PXLoadString(const wchar_t* pszKey) {
    static auto* const s_pLoadString = Library<decltype(PXLoadString)>("_Z12PXLoadStringPKw");
    Count(s_nLookUps);
    return s_pLoadString(pszKey);
}

SQORNetPlayCtrlDev* G_FindNetPlayCtrlDevByID(int nId) {
    static auto* const s_pFind = Library<decltype(G_FindNetPlayCtrlDevByID)>("_Z24G_FindNetPlayCtrlDevByIDi");
    Count(s_nLookUps);
    return s_pFind(nId);
}

VEKObject* VEKClip::FindObject(const CString& strName, int nOption) {
    static auto* const s_pFind =
        Library<VEKObject*(VEKClip*, const CString&, int)>("_ZN7VEKClip10FindObjectERK7CStringi");
    Count(s_nLookUps);
    return s_pFind(this, strName, nOption);
}

extern "C" {

void* __libc_malloc(std::size_t nBytes);
void* __libc_calloc(std::size_t nElements, std::size_t nBytes);
void* __libc_realloc(void* pBlock, std::size_t nBytes);
void* __libc_memalign(std::size_t nAlignment, std::size_t nBytes);

void* malloc(std::size_t nBytes) {
    Count(s_nAllocations);
    return __libc_malloc(nBytes);
}

void* calloc(std::size_t nElements, std::size_t nBytes) {
    Count(s_nAllocations);
    return __libc_calloc(nElements, nBytes);
}

void* realloc(void* pBlock, std::size_t nBytes) {
    Count(s_nAllocations);
    return __libc_realloc(pBlock, nBytes);
}

void* memalign(std::size_t nAlignment, std::size_t nBytes) {
    Count(s_nAllocations);
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
