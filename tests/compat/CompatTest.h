// What the tests of the framework and system subset share.
#pragma once

#include <afxtempl.h>
#include <afxwin.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <ostream>
#include <string>

// Shows strings in failure messages; what is not ASCII as its number.
inline void PrintTo(const CString& strText, std::ostream* pStream) {
    *pStream << "L\"";
    for (int nIndex = 0; nIndex < strText.GetLength(); nIndex++) {
        const unsigned nCharacter = static_cast<unsigned>(strText[nIndex]);
        if (nCharacter >= 0x20 && nCharacter < 0x7F)
            *pStream << static_cast<char>(nCharacter);
        else
            *pStream << "\\x" << std::hex << nCharacter << std::dec;
    }
    *pStream << '"';
}

// The statement must throw a pointer to this very framework exception.
#define EXPECT_THROWS_FRAMEWORK(statement, exception_class)                                                            \
    do {                                                                                                               \
        bool bThrown = false;                                                                                          \
        try {                                                                                                          \
            statement;                                                                                                 \
        } catch (CException * pException) {                                                                            \
            bThrown = pException->IsKindOf(RUNTIME_CLASS(exception_class)) != FALSE;                                   \
            pException->Delete();                                                                                      \
        }                                                                                                              \
        EXPECT_TRUE(bThrown) << #statement " must throw " #exception_class;                                            \
    } while (false)

// A file that exists as long as the object.
class CTemporaryFile {
public:
    CTemporaryFile(const char* pszName, const std::string& strBytes)
        : m_path(std::filesystem::temp_directory_path() / (std::to_string(GetCurrentProcessId()) + pszName)) {
        std::ofstream(m_path, std::ios::binary) << strBytes;
    }
    ~CTemporaryFile() {
        std::error_code error;
        std::filesystem::remove(m_path, error);
    }
    CTemporaryFile(const CTemporaryFile&) = delete;
    CTemporaryFile& operator=(const CTemporaryFile&) = delete;

    // With the platform's separators.
    std::wstring Path() const { return m_path.wstring(); }

private:
    std::filesystem::path m_path;
};
