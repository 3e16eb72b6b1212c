#include "CompatTest.h"

#include <gdiplus.h>

#include <limits>

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

TEST(CArrayTest, FreeExtraGivesBackUnusedStorage) {
    CArray<int> array;
    array.SetSize(3, 50);
    array[2] = 9;
    array.FreeExtra();
    EXPECT_EQ(LayoutOf(array).nMaxSize, 3);
    EXPECT_EQ(array[2], 9);
    array.RemoveAt(0, 3);
    array.FreeExtra();
    EXPECT_EQ(array.GetData(), nullptr);
}

TEST(CArrayTest, AddsSetsAndReads) {
    CArray<CString> array;
    EXPECT_EQ(array.Add(L"zero"), 0);
    EXPECT_EQ(array.Add(L"one"), 1);
    array.SetAt(0, L"null");
    array.ElementAt(1) += L"!";
    EXPECT_EQ(array.GetAt(0), L"null");
    EXPECT_EQ(array[1], L"one!");
    EXPECT_EQ(array.GetCount(), 2);
    array.SetAtGrow(4, L"four");
    EXPECT_EQ(array.GetSize(), 5);
    EXPECT_EQ(array[3], L"");
    EXPECT_EQ(array[4], L"four");
}

TEST(CArrayTest, AddsAnElementOfItself) {
    CArray<CString> array;
    array.Add(L"long enough to live in a buffer of its own");
    for (int nRound = 0; nRound < 20; nRound++)
        array.Add(array[0]);
    EXPECT_EQ(array[20], array[0]);
    array.InsertAt(0, array[20], 50);
    EXPECT_EQ(array[49], L"long enough to live in a buffer of its own");
    EXPECT_EQ(array.GetSize(), 71);
}

TEST(CArrayTest, InsertsInsideAtTheEndAndPastIt) {
    CArray<int> array;
    Filled(array, {1, 2, 3});
    array.InsertAt(1, 9, 2);
    ExpectElements(array, {1, 9, 9, 2, 3});
    array.InsertAt(5, 4);
    array.InsertAt(8, 5);
    ExpectElements(array, {1, 9, 9, 2, 3, 4, 0, 0, 5});

    CArray<int> other;
    Filled(other, {7, 8});
    array.InsertAt(0, &other);
    ExpectElements(array, {7, 8, 1, 9, 9, 2, 3, 4, 0, 0, 5});
    EXPECT_THROWS_FRAMEWORK(array.InsertAt(0, 1, 0), CInvalidArgException);
    EXPECT_THROWS_FRAMEWORK(array.InsertAt(-1, 1), CInvalidArgException);
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

TEST(CArrayTest, CopiesAndAppends) {
    CArray<int> source;
    Filled(source, {1, 2});
    CArray<int> array;
    Filled(array, {9, 9, 9});
    array.Copy(source);
    ExpectElements(array, {1, 2});
    EXPECT_EQ(array.Append(source), 2);
    ExpectElements(array, {1, 2, 1, 2});
    array.Copy(array);
    ExpectElements(array, {1, 2, 1, 2});
    EXPECT_THROWS_FRAMEWORK(array.Append(array), CInvalidArgException);
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
    EXPECT_THROWS_FRAMEWORK(array.ElementAt(-1), CInvalidArgException);
    EXPECT_THROWS_FRAMEWORK(array.SetAt(2, 0), CInvalidArgException);
    EXPECT_THROWS_FRAMEWORK(array.SetAtGrow(-1, 0), CInvalidArgException);
    EXPECT_THROWS_FRAMEWORK(array.SetSize(-1), CInvalidArgException);
    EXPECT_THROWS_FRAMEWORK(array.SetSize(std::numeric_limits<INT_PTR>::max()), CInvalidArgException);
    EXPECT_THROWS_FRAMEWORK(array.SetAtGrow(std::numeric_limits<INT_PTR>::max(), 0), CInvalidArgException);
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
        array.InsertAt(0, SCounted(1), 3);
        EXPECT_EQ(SCounted::s_nAlive, 23);
        array.SetSize(2);
        EXPECT_EQ(SCounted::s_nAlive, 2);
    }
    EXPECT_EQ(SCounted::s_nAlive, 0);
}

TEST(CArrayTest, HoldsPoints) {
    CArray<CPoint> pixels;
    pixels.Add(CPoint(3, 4));
    EXPECT_EQ(pixels[0], CPoint(3, 4));
    EXPECT_EQ(pixels[0] - CPoint(1, 1), CSize(2, 3));
    CArray<Gdiplus::PointF> relative;
    relative.Add(Gdiplus::PointF(0.5f, 0.25f));
    EXPECT_TRUE(relative[0].Equals(Gdiplus::PointF(0.5f, 0.25f)));
    EXPECT_FALSE(relative[0].Equals(Gdiplus::PointF(0.5f, 0.5f)));
    EXPECT_TRUE((relative[0] + Gdiplus::PointF(1.0f, 1.0f)).Equals(Gdiplus::PointF(1.5f, 1.25f)));
    EXPECT_TRUE((relative[0] - relative[0]).Equals(Gdiplus::PointF()));
}

TEST(CStringArrayTest, CopiesAppendAndKnowTheirClass) {
    CStringArray array;
    array.Add(L"a");
    array.Add(CString(L"b"));
    CStringArray copy;
    copy.Copy(array);
    EXPECT_EQ(copy.Append(array), 2);
    EXPECT_EQ(copy.GetSize(), 4);
    EXPECT_EQ(copy[3], L"b");
    EXPECT_TRUE(array.IsKindOf(RUNTIME_CLASS(CStringArray)));
    EXPECT_FALSE(array.IsKindOf(RUNTIME_CLASS(CUIntArray)));
    CUIntArray numbers;
    numbers.Add(7);
    EXPECT_EQ(numbers[0], 7u);
}

TEST(CListTest, AddsAndTakesAtBothEnds) {
    CList<int> list;
    list.AddTail(2);
    list.AddTail(3);
    list.AddHead(1);
    EXPECT_EQ(list.GetCount(), 3);
    EXPECT_EQ(list.GetHead(), 1);
    EXPECT_EQ(list.GetTail(), 3);
    EXPECT_EQ(list.RemoveHead(), 1);
    EXPECT_EQ(list.RemoveTail(), 3);
    EXPECT_EQ(list.GetHead(), 2);
    EXPECT_EQ(list.RemoveHead(), 2);
    EXPECT_TRUE(list.IsEmpty());
    EXPECT_EQ(list.GetHeadPosition(), nullptr);
    EXPECT_EQ(list.GetTailPosition(), nullptr);
}

TEST(CListTest, WalksInBothDirections) {
    CList<int> list;
    for (int nValue = 0; nValue < 5; nValue++)
        list.AddTail(nValue);
    int nExpected = 0;
    for (POSITION position = list.GetHeadPosition(); position != nullptr;)
        EXPECT_EQ(list.GetNext(position), nExpected++);
    EXPECT_EQ(nExpected, 5);
    const CList<int>& constant = list;
    for (POSITION position = constant.GetTailPosition(); position != nullptr;)
        EXPECT_EQ(constant.GetPrev(position), --nExpected);
    EXPECT_EQ(nExpected, 0);
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
    EXPECT_EQ(list.Find(L"b", middle), nullptr);
    EXPECT_EQ(list.Find(L"x"), nullptr);

    list.SetAt(middle, L"B");
    EXPECT_EQ(list.GetAt(middle), L"B");
    list.RemoveAt(middle);
    list.RemoveAt(list.GetHeadPosition());
    list.RemoveAt(list.GetTailPosition());
    EXPECT_EQ(list.GetHead(), L"a");
    EXPECT_EQ(list.GetTail(), L"c");
    EXPECT_EQ(list.GetSize(), 2);
}

TEST(CListTest, TakesOverTheElementsOfAnotherList) {
    CList<int> source;
    source.AddTail(1);
    source.AddTail(2);
    CList<int> list;
    list.AddTail(9);
    list.AddHead(&source);
    list.AddTail(&source);
    const int expected[] = {1, 2, 9, 1, 2};
    for (INT_PTR nIndex = 0; nIndex < 5; nIndex++)
        EXPECT_EQ(list.GetAt(list.FindIndex(nIndex)), expected[nIndex]);
    EXPECT_EQ(source.GetCount(), 2);
}

TEST(CListTest, EmptyListsAndNullPositionsAreRefused) {
    CList<int> list;
    POSITION position = nullptr;
    EXPECT_THROWS_FRAMEWORK(list.GetHead(), CInvalidArgException);
    EXPECT_THROWS_FRAMEWORK(list.GetTail(), CInvalidArgException);
    EXPECT_THROWS_FRAMEWORK(list.RemoveHead(), CInvalidArgException);
    EXPECT_THROWS_FRAMEWORK(list.RemoveTail(), CInvalidArgException);
    EXPECT_THROWS_FRAMEWORK(list.GetAt(nullptr), CInvalidArgException);
    EXPECT_THROWS_FRAMEWORK(list.SetAt(nullptr, 1), CInvalidArgException);
    EXPECT_THROWS_FRAMEWORK(list.RemoveAt(nullptr), CInvalidArgException);
    EXPECT_THROWS_FRAMEWORK(list.GetNext(position), CInvalidArgException);
    EXPECT_THROWS_FRAMEWORK(list.GetPrev(position), CInvalidArgException);
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

TEST(CRectTest, RightAndBottomEdgeLieOutside) {
    const CRect rect(1, 2, 4, 6);
    EXPECT_EQ(rect.Size(), CSize(3, 4));
    EXPECT_TRUE(rect.PtInRect(CPoint(1, 2)));
    EXPECT_FALSE(rect.PtInRect(CPoint(4, 5)));
    EXPECT_FALSE(rect.PtInRect(CPoint(3, 6)));
    EXPECT_TRUE(CRect().IsRectEmpty());
    EXPECT_EQ(rect, CRect(CPoint(1, 2), CSize(3, 4)));
    EXPECT_EQ(rect.CenterPoint(), CPoint(2, 4));
}
