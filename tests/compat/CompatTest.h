// What the tests of the framework and system subset share.
#pragma once

#include <afxtempl.h>
#include <afxwin.h>

#include <gtest/gtest.h>

#include <ostream>
#include <string>

// Shows strings in failure messages.
inline void PrintTo(const CString& strText, std::ostream* pStream) {
    *pStream << testing::PrintToString(
        std::wstring(strText.GetString(), static_cast<std::size_t>(strText.GetLength())));
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
