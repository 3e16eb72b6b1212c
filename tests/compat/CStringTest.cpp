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
    EXPECT_EQ(strDefault.GetAllocLength(), 0);
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

    strCopy.SetAt(0, L'S');
    EXPECT_NE(strCopy.GetString(), strOriginal.GetString());
    EXPECT_EQ(strCopy, L"Shared");
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
    strText.Insert(1, strText.GetString());
    EXPECT_EQ(strText, L"ccdefdefcdefdefdefdefcdefdef");
    strText = L"abc";
    strText.Preallocate(100); // so that the text stays where it is
    strText.Insert(0, strText.GetString() + 1);
    EXPECT_EQ(strText, L"bcabc");
    const CString strEmpty;
    EXPECT_EQ(CString(strEmpty.GetString(), 1).GetLength(), 1);
}

TEST(CStringTest, AssignsTextNullAndCharacter) {
    CString strText(L"old");
    strText = L"new";
    EXPECT_EQ(strText, L"new");
    strText = L'c';
    EXPECT_EQ(strText, L"c");
    strText = static_cast<const wchar_t*>(nullptr);
    EXPECT_EQ(strText, L"");
}

TEST(CStringTest, ConcatenatesAllCombinations) {
    const CString strLeft(L"left");
    const CString strRight(L"right");
    EXPECT_EQ(strLeft + strRight, L"leftright");
    EXPECT_EQ(strLeft + L"right", L"leftright");
    EXPECT_EQ(L"left" + strRight, L"leftright");
    EXPECT_EQ(strLeft + L'!', L"left!");
    EXPECT_EQ(L'!' + strRight, L"!right");
    EXPECT_EQ(strLeft, L"left");

    CString strText;
    strText += strLeft;
    strText += L"-";
    strText += L'x';
    strText.AppendChar(L'y');
    EXPECT_EQ(strText, L"left-xy");
}

TEST(CStringTest, AppendingManyTimesReallocatesSeldom) {
    CString strText;
    int nReallocations = 0;
    for (int nIndex = 0; nIndex < 10000; nIndex++) {
        const wchar_t* pszBefore = strText;
        strText.AppendChar(L'x');
        nReallocations += strText.GetString() != pszBefore;
    }
    EXPECT_EQ(strText.GetLength(), 10000);
    EXPECT_LT(nReallocations, 40);
}

TEST(CStringTest, ComparesByCharacterValue) {
    const CString strText(L"bcd");
    EXPECT_TRUE(strText == L"bcd" && L"bcd" == strText && strText == CString(L"bcd"));
    EXPECT_TRUE(strText != L"bce" && L"bce" != strText && strText != CString(L"BCD"));
    EXPECT_TRUE(strText < L"bce" && L"bcc" < strText && strText < CString(L"c"));
    EXPECT_TRUE(strText > L"bc" && L"c" > strText && strText > CString(L"B"));
    EXPECT_TRUE(strText <= L"bcd" && L"bcd" <= strText && strText <= CString(L"bcd"));
    EXPECT_TRUE(strText >= L"bcd" && L"bcd" >= strText && strText >= CString(L"bcd"));
    EXPECT_FALSE(strText < L"bcd" || strText > L"bcd");
    EXPECT_EQ(strText.CompareNoCase(L"BcD"), 0);
    EXPECT_LT(strText.CompareNoCase(L"BCE"), 0);
    EXPECT_GT(strText.Compare(nullptr), 0);
}

TEST(CStringTest, ReadsTheZeroAtTheEndButNothingBehind) {
    CString strText(L"ab");
    EXPECT_EQ(strText.GetAt(1), L'b');
    EXPECT_EQ(strText[2], 0);
    EXPECT_THROWS_FRAMEWORK(strText.GetAt(3), CInvalidArgException);
    EXPECT_THROWS_FRAMEWORK(strText[-1], CInvalidArgException);
    EXPECT_THROWS_FRAMEWORK(strText.SetAt(2, L'x'), CInvalidArgException);
    EXPECT_THROWS_FRAMEWORK(strText.SetAt(-1, L'x'), CInvalidArgException);
    EXPECT_EQ(strText, L"ab");
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
    EXPECT_EQ(strText.ReverseFind(L't'), 8);
    EXPECT_EQ(strText.ReverseFind(L'x'), -1);
    EXPECT_EQ(strText.FindOneOf(L"wn"), 1);
    EXPECT_EQ(strText.FindOneOf(L"xyz"), -1);
}

TEST(CStringTest, ChangesCaseOfItsOwnCopyOnly) {
    const CString strOriginal(L"Shift+a1");
    CString strUpper(strOriginal);
    CString strLower(strOriginal);
    EXPECT_EQ(strUpper.MakeUpper(), L"SHIFT+A1");
    EXPECT_EQ(strLower.MakeLower(), L"shift+a1");
    EXPECT_EQ(strOriginal, L"Shift+a1");
    EXPECT_EQ(CString(L"abc").MakeReverse(), L"cba");
    EXPECT_EQ(CString().MakeUpper(), L"");
}

TEST(CStringTest, ReplacesRemovesInsertsAndDeletes) {
    CString strText(L"a.b.c");
    EXPECT_EQ(strText.Replace(L'.', L'-'), 2);
    EXPECT_EQ(strText, L"a-b-c");
    EXPECT_EQ(strText.Replace(L"-", L"<->"), 2);
    EXPECT_EQ(strText, L"a<->b<->c");
    EXPECT_EQ(strText.Replace(L"<->", L""), 2);
    EXPECT_EQ(strText, L"abc");
    EXPECT_EQ(strText.Replace(L"x", L"y"), 0);
    EXPECT_EQ(strText.Replace(L"", L"y"), 0);
    EXPECT_EQ(strText.Replace(L"b", nullptr), 1);
    EXPECT_EQ(strText, L"ac");

    strText = L"banana";
    EXPECT_EQ(strText.Remove(L'a'), 3);
    EXPECT_EQ(strText, L"bnn");
    EXPECT_EQ(strText.Remove(L'x'), 0);

    EXPECT_EQ(strText.Insert(1, L"ana"), 6);
    EXPECT_EQ(strText, L"banann");
    EXPECT_EQ(strText.Insert(99, L'!'), 7);
    EXPECT_EQ(strText.Insert(-5, L'!'), 8);
    EXPECT_EQ(strText, L"!banann!");

    EXPECT_EQ(strText.Delete(0), 7);
    EXPECT_EQ(strText.Delete(6, 99), 6);
    EXPECT_EQ(strText.Delete(99), 6);
    EXPECT_EQ(strText.Delete(2, 2), 4);
    EXPECT_EQ(strText.Delete(0, 0), 4);
    EXPECT_EQ(strText, L"bann");
    EXPECT_EQ(strText.Delete(0, 99), 0);
}

TEST(CStringTest, Trims) {
    EXPECT_EQ(CString(L" \t\r\n text \n").Trim(), L"text");
    EXPECT_EQ(CString(L" text ").TrimLeft(), L"text ");
    EXPECT_EQ(CString(L" text ").TrimRight(), L" text");
    EXPECT_EQ(CString(L"xxtextxx").Trim(L'x'), L"te"
                                               L"xt");
    EXPECT_EQ(CString(L"xyte stxy").Trim(L"xy"), L"te st");
    EXPECT_EQ(CString(L"   ").Trim(), L"");
    EXPECT_EQ(CString().Trim(), L"");
}

TEST(CStringTest, TokenizeSkipsEmptyPieces) {
    const CString strText(L"%First#Second##Third%");
    int nStart = 0;
    EXPECT_EQ(strText.Tokenize(L"%#", nStart), L"First");
    EXPECT_EQ(strText.Tokenize(L"%#", nStart), L"Second");
    EXPECT_EQ(strText.Tokenize(L"%#", nStart), L"Third");
    EXPECT_EQ(strText.Tokenize(L"%#", nStart), L"");
    EXPECT_EQ(nStart, -1);
}

TEST(CStringTest, BufferIsTheStringsOwnAndWritable) {
    const CString strOriginal(L"ab");
    CString strText(strOriginal);
    wchar_t* pszBuffer = strText.GetBuffer(10);
    std::wmemcpy(pszBuffer, L"written", 8);
    strText.ReleaseBuffer();
    EXPECT_EQ(strText, L"written");
    EXPECT_EQ(strOriginal, L"ab");

    strText.GetBuffer(20)[4] = L'!';
    strText.ReleaseBuffer(5);
    EXPECT_EQ(strText, L"writ!");
    EXPECT_THROWS_FRAMEWORK(strText.ReleaseBuffer(1000), CInvalidArgException);

    std::wmemset(strText.GetBufferSetLength(3), L'z', 3);
    EXPECT_EQ(strText, L"zzz");
    strText.GetBuffer(5)[0] = L'q';
    strText.ReleaseBuffer(0);
    EXPECT_EQ(strText, L"");
    EXPECT_EQ(*strText.GetString(), 0);
    EXPECT_THROWS_FRAMEWORK(strText.GetBufferSetLength(-1), CInvalidArgException);

    strText = L"abc";
    strText.Preallocate(100);
    EXPECT_GE(strText.GetAllocLength(), 100);
    strText.FreeExtra();
    EXPECT_EQ(strText.GetAllocLength(), 3);
    EXPECT_EQ(strText, L"abc");
}

TEST(CStringTest, CopiesInManyThreadsKeepTheCountRight) {
    const CString strShared(L"shared between threads");
    std::vector<std::thread> threads;
    for (int nThread = 0; nThread < 4; nThread++) {
        threads.emplace_back([&strShared] {
            for (int nRound = 0; nRound < 2000; nRound++) {
                CString strCopy(strShared);
                strCopy.AppendChar(L'!');
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
    strText.AppendFormat(L" %ls|%S|%hs", L"wide", "narrow", "short");
    EXPECT_EQ(strText, L"[\x540D\x79F0.x] wide|narrow|short");
}

TEST(CStringFormatTest, TextsTakeWidthAndPrecision) {
    CString strText;
    strText.Format(L"%5s|%-5s|%.2s|%*.*s|%c|%3c", L"ab", L"ab", L"abcdef", 4, 1, L"xyz", L'\x4E2D', L'c');
    EXPECT_EQ(strText, L"   ab|ab   |ab|   x|\x4E2D|  c");
    const wchar_t unterminated[] = {L'a', L'b'};
    strText.Format(L"%.2s", unterminated);
    EXPECT_EQ(strText, L"ab");
    strText.Format(L"%s", static_cast<const wchar_t*>(nullptr));
    EXPECT_EQ(strText, L"(null)");
}

TEST(CStringFormatTest, NumbersPrintAsInC) {
    CString strText;
    strText.Format(L"%d|%5d|%-5d|%05d|%+d|%i", -7, 42, 42, 42, 42, 0);
    EXPECT_EQ(strText, L"-7|   42|42   |00042|+42|0");
    strText.Format(L"%u|%x|%X|%#x|%o|%.3d", 4294967295u, 255u, 255u, 255u, 8u, 5);
    EXPECT_EQ(strText, L"4294967295|ff|FF|0xff|10|005");
    strText.Format(L"%I64d|%lld|%I64u|%ld", -5000000000LL, 5000000000LL, 18446744073709551615ULL, LONG(-1));
    EXPECT_EQ(strText, L"-5000000000|5000000000|18446744073709551615|-1");
    strText.Format(L"%f|%.2f|%8.3f|%g|%e|%G", 1.5, 3.14159, 2.0, 0.0001, 12345.678, 1e20);
    EXPECT_EQ(strText, L"1.500000|3.14|   2.000|0.0001|1.234568e+04|1E+20");
    strText.Format(L"%hd|%hu|%hhd", 65537, 65537, 257);
    EXPECT_EQ(strText, L"1|1|1");
    strText.Format(L"%Id|%zu", INT_PTR(-3), SIZE_T(3));
    EXPECT_EQ(strText, L"-3|3");
}

TEST(CStringFormatTest, PointersAreUpperCaseHexadecimalOfFullWidth) {
    CString strText;
    strText.Format(L"%p", reinterpret_cast<void*>(0xAB12));
    EXPECT_EQ(strText, sizeof(void*) == 8 ? L"000000000000AB12" : L"0000AB12");
}

TEST(CStringFormatTest, PercentSignsAndUnfinishedConversions) {
    CString strText;
    strText.Format(L"100%% %");
    EXPECT_EQ(strText, L"100% ");
    strText.Format(L"");
    EXPECT_EQ(strText, L"");
    EXPECT_THROWS_FRAMEWORK(strText.Format(nullptr), CInvalidArgException);
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
