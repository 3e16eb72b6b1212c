// CString: what the module, the host libraries and iohost do with texts.

#include "CompatTest.h"

TEST(CStringTest, IsMadeOfTextsPartsAndCharacters) {
    const struct {
        CString strText;
        const wchar_t* pszExpected;
    } cases[] = {{CString(L"text"), L"text"}, {CString(L"text", 2), L"te"},
                 {CString(L'x', 3), L"xxx"},  {CString(L'x', 0), L""},
                 {CString(L'x', -1), L""},    {CString(static_cast<const wchar_t*>(nullptr)), L""}};
    for (const auto& [strText, pszExpected] : cases)
        EXPECT_EQ(strText, pszExpected);
    EXPECT_THROWS_FRAMEWORK(CString(L"text", -1), CInvalidArgException);
    EXPECT_THROWS_FRAMEWORK(CString(nullptr, 1), CInvalidArgException);
    const CString strZero(L"a\0b", 3);
    EXPECT_EQ(strZero.GetLength(), 3);
    EXPECT_EQ((strZero + L"c").GetLength(), 4);
    EXPECT_EQ(strZero[2], L'b');
    EXPECT_EQ(strZero[3], 0);
    EXPECT_THROWS_FRAMEWORK(strZero.GetAt(4), CInvalidArgException);
    EXPECT_THROWS_FRAMEWORK(strZero[-1], CInvalidArgException);
}

TEST(CStringTest, CopiesStayAsTheyWereWhenOneIsWritten) {
    const CString strOriginal(L"shared");
    CString strCopy(strOriginal);
    CString strAssigned;
    strAssigned = strOriginal;
    CString strBuffer(strOriginal);
    strCopy += L" no more";
    std::wmemcpy(strBuffer.GetBufferSetLength(10), L"written", 7);
    strBuffer.ReleaseBuffer(7);
    EXPECT_EQ(strCopy, L"shared no more");
    EXPECT_EQ(strBuffer, L"written");
    EXPECT_EQ(strBuffer.GetLength(), 7);
    EXPECT_EQ(strOriginal, L"shared");
    EXPECT_EQ(strAssigned, L"shared");
    strAssigned = std::move(strCopy);
    strCopy = L"again"; // NOLINT: that it can be used is the point
    EXPECT_EQ(strAssigned, L"shared no more");
    EXPECT_EQ(strCopy, L"again");
    EXPECT_THROWS_FRAMEWORK(strBuffer.ReleaseBuffer(8), CInvalidArgException);
    EXPECT_THROWS_FRAMEWORK(strBuffer.GetBufferSetLength(-1), CInvalidArgException);
    strBuffer.Empty();
    EXPECT_TRUE(strBuffer.IsEmpty());
}

TEST(CStringTest, TakesItsOwnCharacters) {
    CString strText(L"abcdef");
    const CString& strSame = strText;
    strText = strSame;
    strText = strText.GetString() + 2;
    EXPECT_EQ(strText, L"cdef");
    strText.Append(strText.GetString() + 1);
    strText += strText;
    EXPECT_EQ(strText, L"cdefdefcdefdef");
    strText.Format(L"<%s>", strText.Left(2).GetString());
    strText.AppendFormat(L"%s", strText.GetString());
    EXPECT_EQ(strText, L"<cd><cd>");
}

TEST(CStringTest, Concatenates) {
    const CString strLeft(L"left");
    const CString strRight(L"right");
    for (const CString& strBoth : {strLeft + strRight, strLeft + L"right", L"left" + strRight})
        EXPECT_EQ(strBoth, L"leftright");
    EXPECT_EQ(strLeft + L'-', L"left-");
    EXPECT_EQ(L'-' + strRight, L"-right");
    CString strText;
    strText += strLeft;
    strText += L'x';
    strText.Append(L"y");
    strText.Append(L"zzz", 1);
    EXPECT_EQ(strText, L"leftxyz");
    strText = static_cast<const wchar_t*>(nullptr);
    EXPECT_EQ(strText, L"");
}

TEST(CStringTest, IsOrderedByCharacterValueNotByAddress) {
    const CString texts[] = {L"", L"B", L"a", L"ab", L"abc", L"abd", L"\xFFFF"};
    for (int nLeft = 0; nLeft < 7; nLeft++) {
        for (int nRight = 0; nRight < 7; nRight++) {
            const CString strLeft(texts[nLeft].GetString());
            const wchar_t* const pszRight = texts[nRight];
            EXPECT_EQ(strLeft == texts[nRight], nLeft == nRight);
            EXPECT_EQ(strLeft != pszRight, nLeft != nRight);
            EXPECT_EQ(pszRight == strLeft, nLeft == nRight);
            EXPECT_EQ(strLeft < texts[nRight], nLeft < nRight);
            EXPECT_EQ(strLeft < pszRight, nLeft < nRight);
            EXPECT_EQ(pszRight >= strLeft, nRight >= nLeft);
            EXPECT_EQ(strLeft.Compare(pszRight) < 0, nLeft < nRight);
        }
    }
}

TEST(CStringTest, PartsClampTheirArguments) {
    const CString strText(L"abcdef");
    const struct {
        CString strPart;
        const wchar_t* pszExpected;
    } cases[] = {{strText.Left(2), L"ab"},    {strText.Left(-2), L""},    {strText.Left(99), L"abcdef"},
                 {strText.Mid(2), L"cdef"},   {strText.Mid(2, 2), L"cd"}, {strText.Mid(4, 99), L"ef"},
                 {strText.Mid(-3, 2), L"ab"}, {strText.Mid(6), L""},      {strText.Mid(7, 1), L""}};
    for (const auto& [strPart, pszExpected] : cases)
        EXPECT_EQ(strPart, pszExpected);
}

TEST(CStringTest, FindsAndDeletes) {
    CString strText(L"one two two");
    EXPECT_EQ(strText.Find(L't', 5), 8);
    EXPECT_EQ(strText.Find(L'x'), -1);
    EXPECT_EQ(strText.Find(L'o', 99), -1);
    EXPECT_EQ(strText.Find(L"two"), 4);
    EXPECT_EQ(strText.Find(L"two", 5), 8);
    EXPECT_EQ(strText.Find(L"twox"), -1);
    EXPECT_EQ(strText.Delete(0, 4), 7);
    EXPECT_EQ(strText.Delete(3, 99), 3);
    EXPECT_EQ(strText.Delete(99), 3);
    EXPECT_EQ(strText, L"two");
}

TEST(CStringTest, FormatsTextsAndNumbers) {
    CString strText;
    strText.Format(L"[%s.%s] %d|%d, 100%%", L"\x540D", static_cast<const wchar_t*>(nullptr), -7, 2147483647);
    EXPECT_EQ(strText, L"[\x540D.(null)] -7|2147483647, 100%");
    for (const wchar_t* pszFormat : {L"%", L"%5d", L"%f", L"%S", L"%n", static_cast<const wchar_t*>(nullptr)})
        EXPECT_THROWS_FRAMEWORK(strText.Format(pszFormat, 0), CInvalidArgException);
    EXPECT_EQ(strText.GetLength(), 30);
    const CString strLong(L'x', 100000);
    strText.Format(L"%s%s", strLong.GetString(), strLong.GetString());
    EXPECT_EQ(strText.GetLength(), 200000);
}
