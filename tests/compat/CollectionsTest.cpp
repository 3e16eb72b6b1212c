#include "CompatTest.h"

#include <gdiplus.h>

#include <limits>
#include <stdexcept>
#include <type_traits>

namespace {

// Counts its living objects.
struct SCounted {
    SCounted() { s_nAlive++; }
    explicit SCounted(int n) : nValue(n) { s_nAlive++; }
    SCounted(const SCounted& other) : nValue(other.nValue) { s_nAlive++; }
    SCounted& operator=(const SCounted& other) = default;
    ~SCounted() { s_nAlive--; }
    bool operator==(const SCounted& other) const { return nValue == other.nValue; }

    int nValue = 0;
    static int s_nAlive;
};
int SCounted::s_nAlive = 0;

// Shows the fields of an array as they lie behind the virtual table pointer.
struct SArrayLayout {
    void* pVirtualTable;
    void* pData;
    INT_PTR nSize;
    INT_PTR nMaxSize;
    INT_PTR nGrowBy;
};

const SArrayLayout& LayoutOf(const CObject& array) {
    return *reinterpret_cast<const SArrayLayout*>(&array);
}

// Shows the fields of a list.
class COpenList : public CList<int> {
public:
    using CList::CList;
    using CList::m_nBlockSize;
    using CList::m_nCount;
    using CList::m_pBlocks;
    using CList::m_pNodeFree;
    using CList::m_pNodeHead;
    using CList::m_pNodeTail;
};

// Length of a chain of nodes or blocks.
template <class LINK>
int LengthOf(const LINK* pLink) {
    int nLength = 0;
    for (; pLink != nullptr; pLink = pLink->pNext)
        nLength++;
    return nLength;
}

template <class TYPE>
CArray<TYPE>& Filled(CArray<TYPE>& array, std::initializer_list<TYPE> elements) {
    for (const TYPE& element : elements)
        array.Add(element);
    return array;
}

template <class TYPE>
void ExpectElements(const CArray<TYPE>& array, std::initializer_list<TYPE> elements) {
    ASSERT_EQ(array.GetSize(), static_cast<INT_PTR>(elements.size()));
    INT_PTR nIndex = 0;
    for (const TYPE& element : elements)
        EXPECT_EQ(array[nIndex++], element);
}

} // namespace

static_assert(sizeof(CArray<int>) == sizeof(SArrayLayout));
static_assert(sizeof(CStringArray) == sizeof(SArrayLayout));
static_assert(!std::is_base_of_v<CArray<CString>, CStringArray>, "a class of its own");
static_assert(sizeof(CList<int>) == 56);
static_assert(sizeof(CPoint) == 8 && sizeof(Gdiplus::PointF) == 8);

TEST(CArrayTest, LaysOutDataSizeCapacityAndGrowBy) {
    CArray<int> array;
    array.SetSize(3, 7);
    const SArrayLayout& layout = LayoutOf(array);
    EXPECT_EQ(layout.pData, array.GetData());
    EXPECT_EQ(layout.nSize, 3);
    EXPECT_EQ(layout.nMaxSize, 7);
    EXPECT_EQ(layout.nGrowBy, 7);
}

TEST(CArrayTest, NewElementsAreZero) {
    CArray<int> array;
    array.SetSize(100);
    for (INT_PTR nIndex = 0; nIndex < array.GetSize(); nIndex++)
        EXPECT_EQ(array[nIndex], 0);
    CArray<CString*> pointers;
    pointers.SetSize(2);
    EXPECT_EQ(pointers[1], nullptr);
}

TEST(CArrayTest, GrowsByFourThenAnEighthThenAtMost1024) {
    CArray<int> array;
    array.SetSize(1);
    EXPECT_EQ(LayoutOf(array).nMaxSize, 1);
    array.SetSize(2);
    EXPECT_EQ(LayoutOf(array).nMaxSize, 5);
    array.SetSize(80);
    EXPECT_EQ(LayoutOf(array).nMaxSize, 80);
    array.SetSize(81);
    EXPECT_EQ(LayoutOf(array).nMaxSize, 90);
    array.SetSize(100000);
    array.SetSize(100001);
    EXPECT_EQ(LayoutOf(array).nMaxSize, 101024);
}

TEST(CArrayTest, SizeZeroFreesTheStorageAndKeepsGrowBy) {
    CArray<int> array;
    array.SetSize(3, 5);
    array.SetSize(0);
    EXPECT_EQ(array.GetData(), nullptr);
    EXPECT_EQ(LayoutOf(array).nMaxSize, 0);
    EXPECT_EQ(LayoutOf(array).nGrowBy, 5);
    EXPECT_TRUE(array.IsEmpty());
    EXPECT_EQ(array.GetUpperBound(), -1);
}

TEST(CArrayTest, AddsAndReads) {
    CArray<CString> array;
    EXPECT_EQ(array.Add(L"zero"), 0);
    EXPECT_EQ(array.Add(L"one"), 1);
    array.SetAt(0, L"null");
    array[1] += L"!";
    EXPECT_EQ(array.GetAt(0), L"null");
    EXPECT_EQ(array[1], L"one!");
    EXPECT_EQ(array.GetSize(), 2);
    EXPECT_EQ(array.GetUpperBound(), 1);
}

TEST(CArrayTest, AddsAnElementOfItself) {
    CArray<CString> array;
    array.Add(L"long enough to live in a buffer of its own");
    for (int nRound = 0; nRound < 20; nRound++)
        array.Add(array[0]);
    EXPECT_EQ(array[20], array[0]);
}

TEST(CArrayTest, RemovesRanges) {
    CArray<int> array;
    Filled(array, {0, 1, 2, 3, 4});
    array.RemoveAt(1, 2);
    ExpectElements(array, {0, 3, 4});
    array.RemoveAt(2);
    array.RemoveAt(2, 0);
    ExpectElements(array, {0, 3});
    EXPECT_THROWS_FRAMEWORK(array.RemoveAt(2), CInvalidArgException);
    EXPECT_THROWS_FRAMEWORK(array.RemoveAt(1, 2), CInvalidArgException);
    EXPECT_THROWS_FRAMEWORK(array.RemoveAt(-1), CInvalidArgException);
    EXPECT_THROWS_FRAMEWORK(array.RemoveAt(1, std::numeric_limits<INT_PTR>::max()), CInvalidArgException);
    ExpectElements(array, {0, 3});
}

TEST(CArrayTest, Copies) {
    CArray<int> source;
    Filled(source, {1, 2});
    CArray<int> array;
    Filled(array, {9, 9, 9});
    array.Copy(source);
    ExpectElements(array, {1, 2});
    array.Copy(array);
    ExpectElements(array, {1, 2});
}

TEST(CArrayTest, WrongIndicesAndSizesAreRefused) {
    CArray<int> array;
    EXPECT_THROWS_FRAMEWORK(array[0], CInvalidArgException);
    Filled(array, {1, 2});
    const CArray<int>& constant = array;
    EXPECT_THROWS_FRAMEWORK(array[2], CInvalidArgException);
    EXPECT_THROWS_FRAMEWORK(array[-1], CInvalidArgException);
    EXPECT_THROWS_FRAMEWORK(constant[2], CInvalidArgException);
    EXPECT_THROWS_FRAMEWORK(array.GetAt(2), CInvalidArgException);
    EXPECT_THROWS_FRAMEWORK(array.SetAt(2, 0), CInvalidArgException);
    EXPECT_THROWS_FRAMEWORK(array.SetSize(-1), CInvalidArgException);
    EXPECT_THROWS_FRAMEWORK(array.SetSize(std::numeric_limits<INT_PTR>::max()), CInvalidArgException);
    ExpectElements(array, {1, 2});
}

TEST(CArrayTest, DestroysEveryElementOnce) {
    {
        CArray<SCounted> array;
        array.SetSize(10);
        for (int nIndex = 0; nIndex < 20; nIndex++)
            array.Add(SCounted(nIndex));
        EXPECT_EQ(SCounted::s_nAlive, 30);
        array.RemoveAt(5, 10);
        EXPECT_EQ(SCounted::s_nAlive, 20);
        array.SetSize(2);
        EXPECT_EQ(SCounted::s_nAlive, 2);
    }
    EXPECT_EQ(SCounted::s_nAlive, 0);
}

TEST(CArrayTest, HoldsPoints) {
    CArray<CPoint> pixels;
    pixels.SetSize(1);
    pixels.Add(CPoint(3, 4));
    EXPECT_TRUE(pixels[0].x == 0 && pixels[0].y == 0);
    EXPECT_TRUE(pixels[1].x == 3 && pixels[1].y == 4);
    CArray<Gdiplus::PointF> relative;
    relative.SetSize(1);
    relative.Add(Gdiplus::PointF(0.5f, 0.25f));
    EXPECT_TRUE(relative[0].X == 0.0f && relative[0].Y == 0.0f);
    EXPECT_TRUE(relative[1].X == 0.5f && relative[1].Y == 0.25f);
}

TEST(CStringArrayTest, HoldsAndCopiesStrings) {
    CStringArray array;
    array.Add(L"a");
    array.Add(CString(L"b"));
    CStringArray copy;
    copy.Copy(array);
    EXPECT_EQ(copy.GetSize(), 2);
    EXPECT_EQ(copy[1], L"b");
}

TEST(CListTest, AddsAtBothEndsAndTakesFromTheHead) {
    CList<int> list;
    EXPECT_TRUE(list.IsEmpty());
    EXPECT_EQ(list.GetHeadPosition(), nullptr);
    list.AddTail(1);
    list.AddTail(2);
    list.AddHead(0);
    EXPECT_EQ(list.GetCount(), 3);
    EXPECT_EQ(list.GetHead(), 0);
    EXPECT_EQ(list.GetTail(), 2);
    EXPECT_EQ(list.RemoveHead(), 0);
    EXPECT_EQ(list.RemoveHead(), 1);
    EXPECT_EQ(list.GetHead(), 2);
    EXPECT_EQ(list.RemoveHead(), 2);
    EXPECT_TRUE(list.IsEmpty());
    EXPECT_EQ(list.GetHeadPosition(), nullptr);
}

TEST(CListTest, WalksFromTheHead) {
    CList<int> list;
    for (int nValue = 0; nValue < 5; nValue++)
        list.AddTail(nValue);
    int nExpected = 0;
    for (POSITION position = list.GetHeadPosition(); position != nullptr;)
        EXPECT_EQ(list.GetNext(position), nExpected++);
    EXPECT_EQ(nExpected, 5);

    const CList<int>& constant = list;
    EXPECT_EQ(constant.GetHead(), 0);
    EXPECT_EQ(constant.GetTail(), 4);
    POSITION position = constant.GetHeadPosition();
    EXPECT_EQ(constant.GetAt(position), 0);
    EXPECT_EQ(constant.GetNext(position), 0);
    EXPECT_EQ(constant.GetAt(position), 1);
}

TEST(CListTest, InsertsFindsAndRemovesAtPositions) {
    CList<CString> list;
    const POSITION middle = list.AddTail(L"b");
    list.InsertBefore(middle, L"a");
    list.InsertAfter(middle, L"c");
    list.InsertBefore(nullptr, L"first");
    list.InsertAfter(nullptr, L"last");
    const wchar_t* expected[] = {L"first", L"a", L"b", L"c", L"last"};
    for (INT_PTR nIndex = 0; nIndex < 5; nIndex++)
        EXPECT_EQ(list.GetAt(list.FindIndex(nIndex)), expected[nIndex]);
    EXPECT_EQ(list.FindIndex(5), nullptr);
    EXPECT_EQ(list.Find(L"b"), middle);
    EXPECT_EQ(list.Find(L"x"), nullptr);

    list.RemoveAt(middle);
    list.RemoveAt(list.GetHeadPosition());
    list.RemoveAt(list.Find(L"last"));
    EXPECT_EQ(list.GetHead(), L"a");
    EXPECT_EQ(list.GetTail(), L"c");
    EXPECT_EQ(list.GetCount(), 2);
}

TEST(CListTest, TakesOverTheElementsOfAnotherList) {
    CList<int> source;
    source.AddTail(1);
    source.AddTail(2);
    CList<int> list;
    list.AddTail(9);
    list.AddTail(&source);
    const int expected[] = {9, 1, 2};
    ASSERT_EQ(list.GetCount(), 3);
    for (INT_PTR nIndex = 0; nIndex < 3; nIndex++)
        EXPECT_EQ(list.GetAt(list.FindIndex(nIndex)), expected[nIndex]);
    EXPECT_EQ(source.GetCount(), 2);
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
}

TEST(CListTest, FreesEveryElement) {
    {
        CList<SCounted> list;
        for (int nValue = 0; nValue < 10; nValue++)
            list.AddTail(SCounted(nValue));
        list.RemoveHead();
        list.RemoveAt(list.Find(SCounted(5)));
        EXPECT_EQ(SCounted::s_nAlive, 8);
        list.RemoveAll();
        EXPECT_EQ(SCounted::s_nAlive, 0);
        list.AddTail(SCounted(1));
    }
    EXPECT_EQ(SCounted::s_nAlive, 0);
}

TEST(CListTest, ChainsNodesBothWays) {
    COpenList list;
    const POSITION head = list.AddTail(1);
    const POSITION tail = list.AddTail(2);
    EXPECT_EQ(reinterpret_cast<POSITION>(list.m_pNodeHead), head);
    EXPECT_EQ(reinterpret_cast<POSITION>(list.m_pNodeTail), tail);
    EXPECT_EQ(list.m_nCount, 2);
    EXPECT_EQ(list.m_pNodeHead->pNext, list.m_pNodeTail);
    EXPECT_EQ(list.m_pNodeHead->pPrev, nullptr);
    EXPECT_EQ(list.m_pNodeHead->data, 1);
    EXPECT_EQ(list.m_pNodeTail->pNext, nullptr);
    EXPECT_EQ(list.m_pNodeTail->pPrev, list.m_pNodeHead);
    EXPECT_EQ(list.m_pNodeTail->data, 2);
}

TEST(CListTest, AllocatesNodesInBlocks) {
    COpenList list(3);
    EXPECT_EQ(list.m_pBlocks, nullptr);
    for (int nValue = 0; nValue < 3; nValue++)
        list.AddTail(nValue);
    EXPECT_EQ(LengthOf(list.m_pBlocks), 1);
    EXPECT_EQ(LengthOf(list.m_pNodeFree), 0);
    list.AddTail(3);
    EXPECT_EQ(LengthOf(list.m_pBlocks), 2);
    EXPECT_EQ(LengthOf(list.m_pNodeFree), 2);
}

TEST(CListTest, BlocksHaveTenNodesUnlessToldOtherwise) {
    EXPECT_EQ(COpenList().m_nBlockSize, 10);
    EXPECT_EQ(COpenList(3).m_nBlockSize, 3);
    EXPECT_THROWS_FRAMEWORK(COpenList(0), CInvalidArgException);
}

TEST(CListTest, UsesRemovedNodesAgain) {
    COpenList list(3);
    list.AddTail(0);
    const POSITION middle = list.AddTail(1);
    list.AddTail(2);
    list.RemoveAt(middle);
    EXPECT_EQ(list.AddHead(3), middle);
    EXPECT_EQ(list.GetHead(), 3);
    EXPECT_EQ(LengthOf(list.m_pBlocks), 1);
}

TEST(CListTest, FreesItsBlocksWithTheLastElement) {
    COpenList list(2);
    const auto fill = [&list] {
        for (int nValue = 0; nValue < 5; nValue++)
            list.AddTail(nValue);
        EXPECT_EQ(LengthOf(list.m_pBlocks), 3);
    };
    const auto expectNoStorage = [&list] {
        EXPECT_EQ(list.m_pBlocks, nullptr);
        EXPECT_EQ(list.m_pNodeFree, nullptr);
        EXPECT_EQ(list.m_pNodeHead, nullptr);
        EXPECT_EQ(list.m_pNodeTail, nullptr);
        EXPECT_EQ(list.m_nCount, 0);
    };
    fill();
    while (list.GetCount() > 1)
        list.RemoveHead();
    EXPECT_EQ(LengthOf(list.m_pBlocks), 3);
    EXPECT_EQ(list.RemoveHead(), 4);
    expectNoStorage();
    fill();
    list.RemoveAll();
    expectNoStorage();
    fill();
}

TEST(CListTest, PositionsOutliveOtherElements) {
    CList<CString> list(2);
    const POSITION position = list.AddTail(L"stays");
    for (int nRound = 0; nRound < 10; nRound++) {
        list.AddHead(L"before");
        list.InsertAfter(position, L"after");
        list.AddTail(L"last");
    }
    for (int nRound = 0; nRound < 10; nRound++)
        list.RemoveHead();
    EXPECT_EQ(list.GetHeadPosition(), position);
    EXPECT_EQ(list.GetAt(position), L"stays");
    while (list.GetCount() > 1) {
        POSITION next = position;
        list.GetNext(next);
        list.RemoveAt(next);
    }
    EXPECT_EQ(list.GetAt(position), L"stays");
}

TEST(CListTest, StaysAsItIsWhenAnElementCannotBeCopied) {
    struct SFragile {
        SFragile() = default;
        SFragile(const SFragile& other) : bBroken(other.bBroken) {
            if (bBroken)
                throw std::runtime_error("broken");
        }
        bool bBroken = false;
    };
    CList<SFragile> list;
    SFragile element;
    list.AddTail(element);
    element.bBroken = true;
    EXPECT_THROW(list.AddHead(element), std::runtime_error);
    element.bBroken = false;
    list.AddTail(element);
    EXPECT_EQ(list.GetCount(), 2);
    POSITION position = list.GetHeadPosition();
    list.GetNext(position);
    list.GetNext(position);
    EXPECT_EQ(position, nullptr);
}
