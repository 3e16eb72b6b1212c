// The module's resources, read back from the file by the system.

#include <gtest/gtest.h>

#include <windows.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

namespace {

/// The module's file, opened for its resources alone: no code of it runs.
class Resources : public testing::Test {
protected:
    void SetUp() override {
        m_hModule = LoadLibraryExW(MODULE_FILE, nullptr, LOAD_LIBRARY_AS_DATAFILE | LOAD_LIBRARY_AS_IMAGE_RESOURCE);
        ASSERT_NE(m_hModule, nullptr) << GetLastError();
    }
    void TearDown() override { FreeLibrary(m_hModule); }

    std::vector<BYTE> Bytes(LPCWSTR pszType, int nId) {
        const HRSRC hResource = FindResourceW(m_hModule, MAKEINTRESOURCEW(nId), pszType);
        if (hResource == nullptr) {
            return {};
        }
        const auto* pBytes = static_cast<const BYTE*>(LockResource(LoadResource(m_hModule, hResource)));
        return {pBytes, pBytes + SizeofResource(m_hModule, hResource)};
    }

    HMODULE m_hModule = nullptr;
};

template <typename T>
T ReadAt(const std::vector<BYTE>& bytes, size_t nOffset) {
    T value{};
    if (nOffset + sizeof(T) <= bytes.size()) {
        std::memcpy(&value, bytes.data() + nOffset, sizeof(T));
    }
    return value;
}

const std::vector<int> ICON_IDS = {7000, 7001, 7002, 7003, 7004, 7005, 7006, 7007, 7009, 7010, 7011, 7012, 7013};
const std::vector<int> ICON_SIZES = {16, 24, 32, 48};

TEST_F(Resources, EachIconGroupHoldsEachSize) {
    for (const int nId : ICON_IDS) {
        const std::vector<BYTE> group = Bytes(reinterpret_cast<LPCWSTR>(RT_GROUP_ICON), nId);
        // Reserved, type (1: icon), count; then 14 bytes for each picture.
        EXPECT_EQ(ReadAt<WORD>(group, 2), 1) << nId;
        const size_t nCount = ReadAt<WORD>(group, 4);
        ASSERT_EQ(group.size(), 6 + 14 * nCount) << nId;
        std::vector<int> sizes;
        for (size_t nOffset = 6; nOffset < group.size(); nOffset += 14) {
            sizes.push_back(group[nOffset]);
            EXPECT_EQ(group[nOffset], group[nOffset + 1]) << nId << ": as high as wide";
            const int nPicture = ReadAt<WORD>(group, nOffset + 12);
            EXPECT_EQ(Bytes(reinterpret_cast<LPCWSTR>(RT_ICON), nPicture).size(), ReadAt<DWORD>(group, nOffset + 8))
                << nId;
        }
        std::sort(sizes.begin(), sizes.end());
        EXPECT_EQ(sizes, ICON_SIZES) << nId;
    }
}

TEST_F(Resources, VersionRecordNamesTheModule) {
    DWORD nIgnored = 0;
    const DWORD nSize = GetFileVersionInfoSizeW(MODULE_FILE, &nIgnored);
    ASSERT_GT(nSize, 0u);
    std::vector<BYTE> record(nSize);
    ASSERT_TRUE(GetFileVersionInfoW(MODULE_FILE, 0, nSize, record.data()));

    void* pValue = nullptr;
    UINT nLength = 0;
    ASSERT_TRUE(VerQueryValueW(record.data(), L"\\", &pValue, &nLength));
    const auto* pFixed = static_cast<const VS_FIXEDFILEINFO*>(pValue);
    ASSERT_EQ(nLength, sizeof(*pFixed));
    EXPECT_EQ(pFixed->dwSignature, 0xFEEF04BDu);
    EXPECT_EQ(pFixed->dwFileType, static_cast<DWORD>(VFT_DLL));
    for (const auto& [nHigh, nLow] : {std::pair{pFixed->dwFileVersionMS, pFixed->dwFileVersionLS},
                                      std::pair{pFixed->dwProductVersionMS, pFixed->dwProductVersionLS}}) {
        EXPECT_EQ(std::to_wstring(HIWORD(nHigh)) + L"." + std::to_wstring(LOWORD(nHigh)) + L"." +
                      std::to_wstring(HIWORD(nLow)),
                  MODULE_VERSION);
        EXPECT_EQ(LOWORD(nLow), 0);
    }

    ASSERT_TRUE(VerQueryValueW(record.data(), L"\\VarFileInfo\\Translation", &pValue, &nLength));
    ASSERT_EQ(nLength, 4u);
    EXPECT_EQ(static_cast<const WORD*>(pValue)[0], 0x0409);
    EXPECT_EQ(static_cast<const WORD*>(pValue)[1], 1200);

    const auto Text = [&](const std::wstring& strName) {
        void* pText = nullptr;
        UINT nCharacters = 0; // with the terminating zero
        const std::wstring strPath = L"\\StringFileInfo\\040904b0\\" + strName;
        if (!VerQueryValueW(record.data(), strPath.c_str(), &pText, &nCharacters) || nCharacters == 0) {
            return std::wstring();
        }
        return std::wstring(static_cast<const wchar_t*>(pText), nCharacters - 1);
    };
    EXPECT_EQ(Text(L"ProductName"), MODULE_NAME);
    EXPECT_EQ(Text(L"InternalName"), MODULE_NAME);
    EXPECT_EQ(Text(L"OriginalFilename"), L"QORIOProcessx.dll");
    EXPECT_EQ(Text(L"FileVersion"), MODULE_VERSION);
    EXPECT_EQ(Text(L"ProductVersion"), MODULE_VERSION);
    EXPECT_EQ(Text(L"FileDescription"), MODULE_DESCRIPTION);
}

} // namespace
