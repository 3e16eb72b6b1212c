// Icon resources: .ico files that the libraries carry.

#include "module_table.h"

#include <compat/module_registry.h>

#include <algorithm>
#include <cstdlib>
#include <map>
#include <optional>
#include <span>
#include <utility>

namespace {

struct SImage {
    LONG nWidth;
    LONG nHeight;
    WORD nBitsPerPixel;
};

struct SResources {
    std::map<std::pair<HMODULE, WORD>, std::span<const BYTE>> icons;
    std::map<HICON, SImage> loadedIcons;
    std::map<HBITMAP, SImage> bitmaps;
    std::uintptr_t nNextHandle = 0x20003;
};

// With ModuleMutex held.
SResources& Resources() {
    static SResources& resources = *new SResources; // outlives the static objects of all libraries
    return resources;
}

template <class HANDLE_TYPE>
HANDLE_TYPE NewHandle(std::map<HANDLE_TYPE, SImage>& table, const SImage& image) {
    const auto handle = reinterpret_cast<HANDLE_TYPE>(Resources().nNextHandle);
    Resources().nNextHandle += 4;
    table[handle] = image;
    return handle;
}

// The bytes are checked before each use; 0 behind the end is never read as data.
std::optional<std::uint32_t> ReadNumber(std::span<const BYTE> bytes, std::size_t nOffset, std::size_t nBytes,
                                        bool bBigEndian = false) {
    if (nOffset > bytes.size() || nBytes > bytes.size() - nOffset)
        return std::nullopt;
    std::uint32_t nValue = 0;
    for (std::size_t nIndex = 0; nIndex < nBytes; nIndex++)
        nValue = nValue << 8 | bytes[nOffset + (bBigEndian ? nIndex : nBytes - 1 - nIndex)];
    return nValue;
}

std::optional<SImage> ReadPng(std::span<const BYTE> bytes) {
    constexpr BYTE signature[] = {0x89, 'P', 'N', 'G', 0x0D, 0x0A, 0x1A, 0x0A, 0, 0, 0, 13, 'I', 'H', 'D', 'R'};
    constexpr WORD nBitsPerPixel = 32; // how such images appear
    if (bytes.size() < sizeof(signature) || !std::equal(std::begin(signature), std::end(signature), bytes.begin()))
        return std::nullopt;
    const auto nWidth = ReadNumber(bytes, 16, 4, true);
    const auto nHeight = ReadNumber(bytes, 20, 4, true);
    if (!nWidth || !nHeight || *nWidth == 0 || *nHeight == 0 || *nWidth > 0xFFFF || *nHeight > 0xFFFF)
        return std::nullopt;
    return SImage{static_cast<LONG>(*nWidth), static_cast<LONG>(*nHeight), nBitsPerPixel};
}

// A device independent bitmap whose height counts the colour rows and the mask rows.
std::optional<SImage> ReadDib(std::span<const BYTE> bytes) {
    const auto nHeaderSize = ReadNumber(bytes, 0, 4);
    const auto nWidth = ReadNumber(bytes, 4, 4);
    const auto nDoubleHeight = ReadNumber(bytes, 8, 4);
    const auto nBits = ReadNumber(bytes, 14, 2);
    const auto nCompression = ReadNumber(bytes, 16, 4);
    const auto nColoursUsed = ReadNumber(bytes, 32, 4);
    if (!nColoursUsed || *nHeaderSize < 40 || *nWidth == 0 || *nWidth > 0xFFFF || *nDoubleHeight < 2 ||
        *nDoubleHeight > 0x1FFFE || *nCompression != 0)
        return std::nullopt;
    if (*nBits != 1 && *nBits != 4 && *nBits != 8 && *nBits != 24 && *nBits != 32)
        return std::nullopt;

    const std::uint64_t nHeight = *nDoubleHeight / 2;
    const std::uint64_t nColours = *nBits > 8 ? 0 : *nColoursUsed != 0 ? *nColoursUsed : 1u << *nBits;
    const std::uint64_t nRowBytes = (std::uint64_t(*nWidth) * *nBits + 31) / 32 * 4;
    if (*nHeaderSize + nColours * 4 + nRowBytes * nHeight > bytes.size())
        return std::nullopt;
    return SImage{static_cast<LONG>(*nWidth), static_cast<LONG>(nHeight), static_cast<WORD>(*nBits)};
}

// The image of an .ico file that is nearest to the wanted size, among equals the one with most colours; the first one
// when no size is wanted (0). Every image must be sound.
std::optional<SImage> ReadIcon(std::span<const BYTE> bytes, LONG nWantedWidth, LONG nWantedHeight) {
    constexpr std::size_t nDirectorySize = 6;
    constexpr std::size_t nEntrySize = 16;
    const auto nReserved = ReadNumber(bytes, 0, 2);
    const auto nType = ReadNumber(bytes, 2, 2);
    const auto nCount = ReadNumber(bytes, 4, 2);
    if (!nCount || *nReserved != 0 || *nType != 1)
        return std::nullopt;

    std::optional<SImage> best;
    const auto distance = [&](const SImage& image) {
        return std::abs(image.nWidth - nWantedWidth) + std::abs(image.nHeight - nWantedHeight);
    };
    for (std::size_t nEntry = 0; nEntry < *nCount; nEntry++) {
        const auto nSize = ReadNumber(bytes, nDirectorySize + nEntry * nEntrySize + 8, 4);
        const auto nOffset = ReadNumber(bytes, nDirectorySize + nEntry * nEntrySize + 12, 4);
        if (!nSize || !nOffset || *nOffset > bytes.size() || *nSize > bytes.size() - *nOffset)
            return std::nullopt;
        const std::span<const BYTE> imageBytes = bytes.subspan(*nOffset, *nSize);
        std::optional<SImage> image = ReadPng(imageBytes);
        if (!image)
            image = ReadDib(imageBytes);
        if (!image)
            return std::nullopt;
        if (!best)
            best = image;
        if (nWantedWidth == 0 && nWantedHeight == 0)
            continue;
        if (distance(*image) < distance(*best) ||
            (distance(*image) == distance(*best) && image->nBitsPerPixel > best->nBitsPerPixel))
            best = image;
    }
    return best;
}

const std::span<const BYTE>* FindIcon(HMODULE hModule, LPCWSTR pszName) {
    if (!IS_INTRESOURCE(pszName))
        return nullptr; // only numbers name resources here
    if (hModule == nullptr)
        hModule = GetModuleHandleW(nullptr);
    const auto found = Resources().icons.find({hModule, static_cast<WORD>(reinterpret_cast<std::uintptr_t>(pszName))});
    return found == Resources().icons.end() ? nullptr : &found->second;
}

} // namespace

CompatIconResource::CompatIconResource(WORD nId, const BYTE* pBegin, const BYTE* pEnd)
    : m_hModule(ModuleFromAddress(pBegin)), m_nId(nId) {
    const std::lock_guard lock(ModuleMutex());
    Resources().icons[{m_hModule, nId}] = std::span<const BYTE>(pBegin, pEnd);
}

CompatIconResource::~CompatIconResource() {
    const std::lock_guard lock(ModuleMutex());
    Resources().icons.erase({m_hModule, m_nId});
}

HRSRC WINAPI FindResourceW(HMODULE hModule, LPCWSTR pszName, LPCWSTR pszType) {
    const std::lock_guard lock(ModuleMutex());
    if (pszType != RT_GROUP_ICON) {
        SetLastError(ERROR_RESOURCE_TYPE_NOT_FOUND);
        return nullptr;
    }
    const std::span<const BYTE>* pIcon = FindIcon(hModule, pszName);
    if (pIcon == nullptr)
        SetLastError(ERROR_RESOURCE_NAME_NOT_FOUND);
    return reinterpret_cast<HRSRC>(const_cast<std::span<const BYTE>*>(pIcon));
}

HANDLE WINAPI LoadImageW(HINSTANCE hInstance, LPCWSTR pszName, UINT nType, int nWidth, int nHeight, UINT nFlags) {
    constexpr int nDefaultSize = 32;
    if (nType != IMAGE_ICON) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    const std::lock_guard lock(ModuleMutex());
    const std::span<const BYTE>* pIcon = FindIcon(hInstance, pszName);
    if (pIcon == nullptr) {
        SetLastError(ERROR_RESOURCE_NAME_NOT_FOUND);
        return nullptr;
    }
    const int nDefault = (nFlags & LR_DEFAULTSIZE) != 0 ? nDefaultSize : 0;
    const auto image = ReadIcon(*pIcon, nWidth != 0 ? nWidth : nDefault, nHeight != 0 ? nHeight : nDefault);
    if (!image) {
        SetLastError(ERROR_RESOURCE_DATA_NOT_FOUND);
        return nullptr;
    }
    return NewHandle(Resources().loadedIcons, *image);
}

BOOL WINAPI DestroyIcon(HICON hIcon) {
    const std::lock_guard lock(ModuleMutex());
    if (Resources().loadedIcons.erase(hIcon) == 0) {
        SetLastError(ERROR_INVALID_CURSOR_HANDLE);
        return FALSE;
    }
    return TRUE;
}

BOOL WINAPI GetIconInfo(HICON hIcon, PICONINFO pInfo) {
    const std::lock_guard lock(ModuleMutex());
    const auto icon = Resources().loadedIcons.find(hIcon);
    if (icon == Resources().loadedIcons.end() || pInfo == nullptr) {
        SetLastError(ERROR_INVALID_CURSOR_HANDLE);
        return FALSE;
    }
    const SImage& image = icon->second;
    pInfo->fIcon = TRUE;
    pInfo->xHotspot = static_cast<DWORD>(image.nWidth / 2);
    pInfo->yHotspot = static_cast<DWORD>(image.nHeight / 2);
    pInfo->hbmMask = NewHandle(Resources().bitmaps, SImage{image.nWidth, image.nHeight, 1});
    pInfo->hbmColor = NewHandle(Resources().bitmaps, image);
    return TRUE;
}

int WINAPI GetObjectW(HANDLE hObject, int nBufferSize, LPVOID pBuffer) {
    const std::lock_guard lock(ModuleMutex());
    const auto found = Resources().bitmaps.find(static_cast<HBITMAP>(hObject));
    if (found == Resources().bitmaps.end())
        return 0;
    if (pBuffer == nullptr)
        return sizeof(BITMAP);
    if (nBufferSize < static_cast<int>(sizeof(BITMAP)))
        return 0;
    const SImage& image = found->second;
    BITMAP bitmap{};
    bitmap.bmWidth = image.nWidth;
    bitmap.bmHeight = image.nHeight;
    bitmap.bmPlanes = 1;
    bitmap.bmBitsPixel = image.nBitsPerPixel;
    bitmap.bmWidthBytes = (image.nWidth * image.nBitsPerPixel + 15) / 16 * 2;
    std::memcpy(pBuffer, &bitmap, sizeof(bitmap));
    return sizeof(bitmap);
}

BOOL WINAPI DeleteObject(HGDIOBJ hObject) {
    const std::lock_guard lock(ModuleMutex());
    return Resources().bitmaps.erase(static_cast<HBITMAP>(hObject)) != 0;
}
