#include "base/Platform.h"

#include <algorithm>
#include <csignal>
#include <utility>

#include <mstcpip.h>

#include <fcntl.h>
#include <io.h>
#include <stdio.h>

namespace {

DWORD g_nFrozenTicks = 0;
ULONG_PTR* g_pTickCountImport = nullptr; ///< where the module keeps the address of GetTickCount
std::function<void()> g_datagramTaker;
ULONG_PTR* g_pSendToImport = nullptr; ///< where it keeps the one of sendto

DWORD WINAPI FrozenTickCount() {
    return g_nFrozenTicks;
}

int WSAAPI TakenSendTo(SOCKET /*hSocket*/, const char* /*pBytes*/, int nBytes, int /*nFlags*/,
                       const sockaddr* /*pAddress*/, int /*nAddressSize*/) {
    g_datagramTaker();
    return nBytes;
}

/// Where a loaded library keeps the address of an imported function; null when it doesn't import it.
ULONG_PTR* FindImport(HMODULE hModule, ULONG_PTR nFunction) {
    auto* pBase = reinterpret_cast<BYTE*>(hModule);
    const auto& start = *reinterpret_cast<const IMAGE_DOS_HEADER*>(pBase);
    const auto& header = *reinterpret_cast<const IMAGE_NT_HEADERS*>(pBase + start.e_lfanew);
    const DWORD nImports = header.OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
    if (nImports == 0) {
        return nullptr;
    }
    for (const auto* pLibrary = reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(pBase + nImports); pLibrary->Name != 0;
         ++pLibrary) {
        for (auto* pAddress = reinterpret_cast<ULONG_PTR*>(pBase + pLibrary->FirstThunk); *pAddress != 0; ++pAddress) {
            if (*pAddress == nFunction) {
                return pAddress;
            }
        }
    }
    return nullptr;
}

/// Make the module call another function; null: it doesn't import the one to replace.
void Redirect(ULONG_PTR* pImport, ULONG_PTR nFunction) {
    DWORD nProtection = 0;
    if (pImport != nullptr && VirtualProtect(pImport, sizeof(*pImport), PAGE_READWRITE, &nProtection)) {
        *pImport = nFunction;
        VirtualProtect(pImport, sizeof(*pImport), nProtection, &nProtection);
    }
}

} // namespace

/// The clock is the system's, so the module is led to another function instead.
void FreezeClock(std::optional<std::uint64_t> nMilliseconds) {
    g_nFrozenTicks = static_cast<DWORD>(nMilliseconds.value_or(0));
    Redirect(g_pTickCountImport, reinterpret_cast<ULONG_PTR>(nMilliseconds ? &FrozenTickCount : &GetTickCount));
}

void TakeDatagrams(std::function<void()> taker) {
    g_datagramTaker = std::move(taker);
    Redirect(g_pSendToImport, reinterpret_cast<ULONG_PTR>(g_datagramTaker ? &TakenSendTo : &sendto));
}

void SetModule(HMODULE hModule) {
    FreezeClock(std::nullopt); // the library that was the module until now may stay loaded
    TakeDatagrams(nullptr);
    const auto find = [&](auto* pFunction) {
        return hModule == nullptr ? nullptr : FindImport(hModule, reinterpret_cast<ULONG_PTR>(pFunction));
    };
    g_pTickCountImport = find(&GetTickCount);
    g_pSendToImport = find(&sendto);
}

// No limit but memory.
void AllowManySockets() {}

// That is so anyway; the option would let two programs share the port.
void LetPortBeReused(std::uintptr_t /*hSocket*/) {}

void NoticeLostPeer(std::uintptr_t hSocket) {
    tcp_keepalive settings = {1, 5'000, 1'000}; // on; milliseconds of silence, and between questions
    DWORD nReturned = 0;
    WSAIoctl(static_cast<SOCKET>(hSocket), SIO_KEEPALIVE_VALS, &settings, sizeof(settings), nullptr, 0, &nReturned,
             nullptr, nullptr);
}

bool HasStoppedAnswering(std::uintptr_t /*hSocket*/, std::chrono::milliseconds /*patience*/) {
    return false;
}

std::string LoadErrorDetail() {
    return {};
}

void PrepareStandardStreams() {
    _setmode(_fileno(stdin), _O_BINARY);
    _setmode(_fileno(stdout), _O_BINARY);
    _setmode(_fileno(stderr), _O_BINARY);
}

std::filesystem::path StandardInputFile() {
    wchar_t szPath[4096];
    const DWORD nLength =
        GetFinalPathNameByHandleW(GetStdHandle(STD_INPUT_HANDLE), szPath, static_cast<DWORD>(std::size(szPath)), 0);
    return nLength < std::size(szPath) ? std::filesystem::path(std::wstring(szPath, nLength)) : std::filesystem::path();
}

bool WriteStandard(int nStream, std::string_view text) {
    constexpr size_t MOST_AT_ONCE = 32768; // a console takes no more
    while (!text.empty()) {
        const int nWritten = _write(nStream, text.data(), static_cast<unsigned>(std::min(text.size(), MOST_AT_ONCE)));
        if (nWritten <= 0) {
            return false;
        }
        text.remove_prefix(static_cast<size_t>(nWritten));
    }
    return true;
}

const int TERMINAL_SIGNAL = SIGBREAK;
