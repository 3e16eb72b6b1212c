// Arrays and lists.

#include "CompatTest.h"

#include <limits>
#include <vector>

namespace {

template <class TYPE>
std::vector<TYPE> Elements(const CArray<TYPE>& array) {
    return {array.GetData(), array.GetData() + array.GetSize()};
}

template <class TYPE>
std::vector<TYPE> Elements(const CList<TYPE>& list) {
    std::vector<TYPE> elements;
    for (POSITION position = list.GetHeadPosition(); position != nullptr;)
        elements.push_back(list.GetNext(position));
    return elements;
}

} // namespace

TEST(CArrayTest, NewElementsAreZero) {
    CArray<int> array;
    for (const int nSize : {1, 2, 80, 81, 100000}) {
        array.SetSize(nSize);
        EXPECT_EQ(array[nSize - 1], 0);
    }
    array.SetSize(0);
    EXPECT_EQ(array.GetData(), nullptr);
}

TEST(CArrayTest, AddsReadsAndCopies) {
    CStringArray array;
    EXPECT_EQ(array.GetUpperBound(), -1);
    EXPECT_EQ(array.Add(L"long enough to live in a buffer of its own"), 0);
    for (int nRound = 0; nRound < 20; nRound++)
        EXPECT_EQ(array.Add(array[0]), nRound + 1);
    array.SetAt(1, L"one");
    array[1] += L"!";
    CStringArray copy;
    copy.Add(L"gone");
    copy.Copy(array);
    copy.Copy(copy);
    EXPECT_EQ(copy.GetSize(), 21);
    EXPECT_EQ(copy.GetAt(1), L"one!");
    EXPECT_EQ(copy[20], array[0]);
}

TEST(CArrayTest, RemovesRangesAndRefusesWrongOnes) {
    constexpr INT_PTR MOST = std::numeric_limits<INT_PTR>::max();
    CArray<int> array;
    for (const int nElement : {0, 1, 2, 3, 4})
        array.Add(nElement);
    array.RemoveAt(1, 2);
    array.RemoveAt(2);
    array.RemoveAt(2, 0);
    for (const auto& [nIndex, nCount] : {std::pair<INT_PTR, INT_PTR>{2, 1}, {1, 2}, {-1, 1}, {1, MOST}})
        EXPECT_THROWS_FRAMEWORK(array.RemoveAt(nIndex, nCount), CInvalidArgException);
    for (const INT_PTR nIndex : {-1, 2}) {
        EXPECT_THROWS_FRAMEWORK(array[nIndex], CInvalidArgException);
        EXPECT_THROWS_FRAMEWORK(std::as_const(array)[nIndex], CInvalidArgException);
        EXPECT_THROWS_FRAMEWORK(array.GetAt(nIndex), CInvalidArgException);
        EXPECT_THROWS_FRAMEWORK(array.SetAt(nIndex, 0), CInvalidArgException);
    }
    EXPECT_THROWS_FRAMEWORK(array.SetSize(-1), CInvalidArgException);
    EXPECT_THROWS_FRAMEWORK(array.SetSize(MOST), CInvalidArgException);
    EXPECT_EQ(Elements(array), (std::vector{0, 3}));
}

TEST(CListTest, AddsInsertsFindsAndRemoves) {
    CList<CString> list(2);
    EXPECT_EQ(list.GetHeadPosition(), nullptr);
    const POSITION middle = list.AddTail(L"b");
    list.InsertBefore(middle, L"a");
    list.InsertAfter(middle, L"c");
    list.InsertBefore(nullptr, L"first");
    list.InsertAfter(nullptr, L"last");
    EXPECT_EQ(Elements(list), (std::vector<CString>{L"first", L"a", L"b", L"c", L"last"}));
    EXPECT_EQ(list.GetAt(list.FindIndex(3)), L"c");
    EXPECT_EQ(list.FindIndex(5), nullptr);
    EXPECT_EQ(list.Find(L"b"), middle);
    EXPECT_EQ(list.Find(L"x"), nullptr);
    for (int nRound = 0; nRound < 10; nRound++) { // positions outlive other elements
        list.AddHead(L"before");
        list.AddTail(L"behind");
    }
    while (list.GetHeadPosition() != middle)
        list.RemoveHead();
    while (list.GetCount() > 1) {
        POSITION next = middle;
        list.GetNext(next);
        list.RemoveAt(next);
    }
    EXPECT_EQ(list.GetTail(), L"b");
    EXPECT_EQ(list.RemoveHead(), L"b");
    EXPECT_TRUE(list.IsEmpty());
    CList<CString> source;
    source.AddTail(L"1");
    list.AddTail(&source);
    EXPECT_EQ(Elements(list), Elements(source));
    EXPECT_THROWS_FRAMEWORK(list.AddTail(&list), CInvalidArgException);
}

TEST(CListTest, EmptyListsAndNullPositionsAreRefused) {
    CList<int> list;
    POSITION position = nullptr;
    EXPECT_THROWS_FRAMEWORK(list.GetHead(), CInvalidArgException);
    EXPECT_THROWS_FRAMEWORK(list.GetTail(), CInvalidArgException);
    EXPECT_THROWS_FRAMEWORK(list.RemoveHead(), CInvalidArgException);
    EXPECT_THROWS_FRAMEWORK(list.GetAt(nullptr), CInvalidArgException);
    EXPECT_THROWS_FRAMEWORK(list.RemoveAt(nullptr), CInvalidArgException);
    EXPECT_THROWS_FRAMEWORK(list.GetNext(position), CInvalidArgException);
    EXPECT_THROWS_FRAMEWORK(list.FindIndex(-1), CInvalidArgException);
    EXPECT_THROWS_FRAMEWORK(CList<int>(0), CInvalidArgException);
}
