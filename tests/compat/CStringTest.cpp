#include "CompatTest.h"

#include <thread>
#include <vector>

static_assert(sizeof(CString) == sizeof(void*));

TEST(CStringTest, IsOnePointerToItsCharacters) {
    const CString strText(L"pointer");
    EXPECT_EQ(*reinterpret_cast<const wchar_t* const*>(&strText), strText.GetString());
    EXPECT_EQ(std::wcscmp(strText, L"pointer"), 0);
}

TEST(CStringTest, EmptyStringsShareOneBuffer) {
    const CString strDefault;
    const CString strFromNull(static_cast<const wchar_t*>(nullptr));
    CString strEmptied(L"x");
    strEmptied.Empty();
    EXPECT_EQ(strDefault.GetString(), strFromNull.GetString());
    EXPECT_EQ(strDefault.GetString(), strEmptied.GetString());
    EXPECT_TRUE(strDefault.IsEmpty());
    EXPECT_EQ(*strDefault.GetString(), 0);
}

TEST(CStringTest, IsConstructedFromTextPartAndRepeatedCharacter) {
    EXPECT_EQ(CString(L"text"), L"text");
    EXPECT_EQ(CString(L"text", 2), L"te");
    EXPECT_EQ(CString(L'x', 3), L"xxx");
    EXPECT_EQ(CString(L'x', 0), L"");
    EXPECT_EQ(CString(L'x', -1), L"");
    EXPECT_THROWS_FRAMEWORK(CString(L"text", -1), CInvalidArgException);
    EXPECT_THROWS_FRAMEWORK(CString(nullptr, 1), CInvalidArgException);
}

TEST(CStringTest, KeepsZerosInsideWhenGivenALength) {
    const CString strText(L"a\0b", 3);
    EXPECT_EQ(strText.GetLength(), 3);
    EXPECT_EQ(strText[2], L'b');
    EXPECT_EQ((strText + L"c").GetLength(), 4);
}

TEST(CStringTest, CopiesShareTheBufferUntilOneIsWritten) {
    const CString strOriginal(L"shared");
    CString strCopy(strOriginal);
    CString strAssigned;
    strAssigned = strOriginal;
    EXPECT_EQ(strCopy.GetString(), strOriginal.GetString());
    EXPECT_EQ(strAssigned.GetString(), strOriginal.GetString());

    strCopy += L" no more";
    EXPECT_NE(strCopy.GetString(), strOriginal.GetString());
    EXPECT_EQ(strCopy, L"shared no more");
    EXPECT_EQ(strOriginal, L"shared");
    EXPECT_EQ(strAssigned, L"shared");
}

TEST(CStringTest, MovedFromStringIsUsable) {
    CString strSource(L"moved");
    const CString strTarget(std::move(strSource));
    strSource = L"again"; // NOLINT: that it can be used is the point
    EXPECT_EQ(strTarget, L"moved");
    EXPECT_EQ(strSource, L"again");
}

TEST(CStringTest, AssignsFromItself) {
    CString strText(L"abcdef");
    const CString& strSame = strText;
    strText = strSame;
    EXPECT_EQ(strText, L"abcdef");
    strText = strText.GetString() + 2;
    EXPECT_EQ(strText, L"cdef");
    strText.Append(strText.GetString() + 1);
    EXPECT_EQ(strText, L"cdefdef");
    strText += strText;
    EXPECT_EQ(strText, L"cdefdefcdefdef");
    const CString strEmpty;
    EXPECT_EQ(CString(strEmpty.GetString(), 1).GetLength(), 1);
}

TEST(CStringTest, AssignsTextAndNull) {
    CString strText(L"old");
    strText = L"new";
    EXPECT_EQ(strText, L"new");
    strText = static_cast<const wchar_t*>(nullptr);
    EXPECT_EQ(strText, L"");
    strText.SetString(L"part", 3);
    EXPECT_EQ(strText, L"par");
    strText.SetString(nullptr, 0);
    EXPECT_EQ(strText, L"");
    EXPECT_THROWS_FRAMEWORK(strText.SetString(nullptr, 1), CInvalidArgException);
}

TEST(CStringTest, ConcatenatesAllCombinations) {
    const CString strLeft(L"left");
    const CString strRight(L"right");
    EXPECT_EQ(strLeft + strRight, L"leftright");
    EXPECT_EQ(strLeft + L"right", L"leftright");
    EXPECT_EQ(L"left" + strRight, L"leftright");
    EXPECT_EQ(strLeft + L'-', L"left-");
    EXPECT_EQ(L'-' + strRight, L"-right");
    EXPECT_EQ(strLeft + L'\0' + strRight, CString(L"left\0right", 10));
    EXPECT_EQ(strLeft, L"left");

    CString strText;
    strText += strLeft;
    strText += L"-";
    strText += L'x';
    strText.Append(L"y");
    strText.Append(L"zzz", 1);
    EXPECT_EQ(strText, L"left-xyz");
    EXPECT_THROWS_FRAMEWORK(strText.Append(nullptr, 1), CInvalidArgException);
}

TEST(CStringTest, AppendsIntoPreallocatedRoomWithoutMoving) {
    const CString strOriginal(L"ab");
    CString strText(strOriginal);
    strText.Preallocate(100);
    EXPECT_EQ(strText, L"ab");
    const wchar_t* const pszBefore = strText;
    EXPECT_NE(pszBefore, strOriginal.GetString());
    strText += CString(L'x', 98);
    EXPECT_EQ(strText.GetString(), pszBefore);
    EXPECT_EQ(strText.GetLength(), 100);
}

TEST(CStringTest, AppendingManyTimesReallocatesSeldom) {
    CString strText;
    int nReallocations = 0;
    for (int nIndex = 0; nIndex < 10000; nIndex++) {
        const wchar_t* pszBefore = strText;
        strText += L'x';
        nReallocations += strText.GetString() != pszBefore;
    }
    EXPECT_EQ(strText.GetLength(), 10000);
    EXPECT_LT(nReallocations, 40);
}

TEST(CStringTest, ComparesByCharacterValue) {
    const CString strText(L"bcd");
    EXPECT_TRUE(strText == L"bcd" && L"bcd" == strText && strText == CString(L"bcd"));
    EXPECT_TRUE(strText != L"bce" && L"bce" != strText && strText != CString(L"BCD"));
    EXPECT_FALSE(strText != L"bcd" || L"bcd" != strText || strText != CString(L"bcd"));
    EXPECT_EQ(strText.Compare(L"bcd"), 0);
    EXPECT_LT(strText.Compare(L"bce"), 0);
    EXPECT_GT(strText.Compare(L"BCD"), 0);
    EXPECT_GT(strText.Compare(nullptr), 0);
}

TEST(CStringTest, OrdersByCharacterValueNotByAddress) {
    const CString strLow(L"abc");
    const CString strHigh(L"abd");
    const CString strSame(L"abc", 3);
    ASSERT_NE(strLow.GetString(), strSame.GetString());
    EXPECT_TRUE(strLow <= strSame && strLow >= strSame);
    EXPECT_FALSE(strLow < strSame || strLow > strSame);
    EXPECT_TRUE(strLow < strHigh && strHigh > strLow && strLow <= strHigh && strHigh >= strLow);
    EXPECT_FALSE(strHigh < strLow || strLow > strHigh || strHigh <= strLow || strLow >= strHigh);

    const wchar_t szSame[] = L"abc";
    EXPECT_TRUE(strLow <= szSame && strLow >= szSame && szSame <= strLow && szSame >= strLow);
    EXPECT_TRUE(strHigh > szSame && szSame < strHigh && strHigh >= szSame && szSame <= strHigh);
    EXPECT_FALSE(strHigh < szSame || szSame > strHigh || strHigh <= szSame || szSame >= strHigh);
    EXPECT_TRUE(CString(L"B") < L"a" && CString(L"ab") < L"abc" && CString() < L"a");
}

TEST(CStringTest, ReadsTheZeroAtTheEndButNothingBehind) {
    CString strText(L"ab");
    EXPECT_EQ(strText.GetAt(1), L'b');
    EXPECT_EQ(strText[2], 0);
    EXPECT_THROWS_FRAMEWORK(strText.GetAt(3), CInvalidArgException);
    EXPECT_THROWS_FRAMEWORK(strText[-1], CInvalidArgException);
}

TEST(CStringTest, PartsClampTheirArguments) {
    const CString strText(L"abcdef");
    EXPECT_EQ(strText.Left(2), L"ab");
    EXPECT_EQ(strText.Left(-2), L"");
    EXPECT_EQ(strText.Left(99), L"abcdef");
    EXPECT_EQ(strText.Right(2), L"ef");
    EXPECT_EQ(strText.Right(-2), L"");
    EXPECT_EQ(strText.Right(99), L"abcdef");
    EXPECT_EQ(strText.Mid(2), L"cdef");
    EXPECT_EQ(strText.Mid(2, 2), L"cd");
    EXPECT_EQ(strText.Mid(4, 99), L"ef");
    EXPECT_EQ(strText.Mid(-3, 2), L"ab");
    EXPECT_EQ(strText.Mid(6), L"");
    EXPECT_EQ(strText.Mid(7, 1), L"");
    EXPECT_EQ(strText.Mid(0).GetString(), strText.GetString());
}

TEST(CStringTest, FindsCharactersAndTexts) {
    const CString strText(L"one two two");
    EXPECT_EQ(strText.Find(L't'), 4);
    EXPECT_EQ(strText.Find(L't', 5), 8);
    EXPECT_EQ(strText.Find(L'x'), -1);
    EXPECT_EQ(strText.Find(L'o', 99), -1);
    EXPECT_EQ(strText.Find(L'o', -1), -1);
    EXPECT_EQ(strText.Find(L"two"), 4);
    EXPECT_EQ(strText.Find(L"two", 5), 8);
    EXPECT_EQ(strText.Find(L"twox"), -1);
    EXPECT_EQ(strText.Find(L""), 0);
}

TEST(CStringTest, DeletesCharacters) {
    CString strText(L"!banann!");
    EXPECT_EQ(strText.Delete(0), 7);
    EXPECT_EQ(strText.Delete(6, 99), 6);
    EXPECT_EQ(strText.Delete(99), 6);
    EXPECT_EQ(strText.Delete(2, 2), 4);
    EXPECT_EQ(strText.Delete(0, 0), 4);
    EXPECT_EQ(strText, L"bann");
    EXPECT_EQ(strText.Delete(0, 99), 0);
}

TEST(CStringTest, BufferIsTheStringsOwnAndWritable) {
    const CString strOriginal(L"ab");
    CString strText(strOriginal);
    std::wmemcpy(strText.GetBufferSetLength(10), L"written", 7);
    strText.ReleaseBuffer(7);
    EXPECT_EQ(strText, L"written");
    EXPECT_EQ(strText.GetLength(), 7);
    EXPECT_EQ(strOriginal, L"ab");
    EXPECT_THROWS_FRAMEWORK(strText.ReleaseBuffer(8), CInvalidArgException);

    std::wmemset(strText.GetBufferSetLength(3), L'z', 3);
    EXPECT_EQ(strText, L"zzz");
    strText.ReleaseBuffer(0);
    EXPECT_EQ(strText, L"");
    EXPECT_EQ(*strText.GetString(), 0);
    EXPECT_THROWS_FRAMEWORK(strText.GetBufferSetLength(-1), CInvalidArgException);
}

TEST(CStringTest, CopiesInManyThreadsKeepTheCountRight) {
    const CString strShared(L"shared between threads");
    std::vector<std::thread> threads;
    for (int nThread = 0; nThread < 4; nThread++) {
        threads.emplace_back([&strShared] {
            for (int nRound = 0; nRound < 2000; nRound++) {
                CString strCopy(strShared);
                strCopy += L'!';
                ASSERT_EQ(strCopy.GetLength(), strShared.GetLength() + 1);
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(strShared, L"shared between threads");
}

TEST(CStringFormatTest, PercentSTakesWideText) {
    const CString strName(L"\x540D\x79F0");
    CString strText;
    strText.Format(L"[%s.%s]", strName.GetString(), L"x");
    EXPECT_EQ(strText, L"[\x540D\x79F0.x]");
    strText.AppendFormat(L" %s", L"wide");
    EXPECT_EQ(strText, L"[\x540D\x79F0.x] wide");
    strText.Format(L"%s", static_cast<const wchar_t*>(nullptr));
    EXPECT_EQ(strText, L"(null)");
}

TEST(CStringFormatTest, PercentDTakesANumber) {
    CString strText;
    strText.Format(L"%d|%d|%d", -7, 0, 2147483647);
    EXPECT_EQ(strText, L"-7|0|2147483647");
}

TEST(CStringFormatTest, PercentSignsAreDoubled) {
    CString strText;
    strText.Format(L"100%% of %s", L"50%");
    EXPECT_EQ(strText, L"100% of 50%");
    strText.Format(L"");
    EXPECT_EQ(strText, L"");
}

TEST(CStringFormatTest, OtherConversionsAreRefused) {
    CString strText(L"kept");
    for (const wchar_t* pszFormat : {L"%", L"%5d", L"%f", L"%S", L"%n"})
        EXPECT_THROWS_FRAMEWORK(strText.Format(pszFormat, 0), CInvalidArgException);
    EXPECT_THROWS_FRAMEWORK(strText.Format(nullptr), CInvalidArgException);
    EXPECT_EQ(strText, L"kept");
}

TEST(CStringFormatTest, ArgumentsMayBeTheStringItself) {
    CString strText(L"self");
    strText.Format(L"<%s>", strText.GetString());
    EXPECT_EQ(strText, L"<self>");
    strText.AppendFormat(L"%s", strText.GetString());
    EXPECT_EQ(strText, L"<self><self>");
}

TEST(CStringFormatTest, LongResultsAreNotCut) {
    const CString strLong(L'x', 100000);
    CString strText;
    strText.Format(L"%s%s", strLong.GetString(), strLong.GetString());
    EXPECT_EQ(strText.GetLength(), 200000);
}
