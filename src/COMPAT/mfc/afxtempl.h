// Template collections: CArray, CList.
#pragma once

#include <afx.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>
#include <utility>

// A growable array. Elements lie side by side; pointers and references to them end with the next change of the size.
// Indices outside [0, GetSize()) raise CInvalidArgException, failed allocations CMemoryException, in every build.
template <class TYPE, class ARG_TYPE = const TYPE&>
class CArray : public CObject {
public:
    CArray() = default;
    ~CArray() override { RemoveAll(); }

    INT_PTR GetSize() const { return m_nSize; }
    INT_PTR GetCount() const { return m_nSize; }
    BOOL IsEmpty() const { return m_nSize == 0; }
    INT_PTR GetUpperBound() const { return m_nSize - 1; }

    // New elements are value-initialised. Size 0 frees the storage. When the storage must grow it grows by nGrowBy
    // elements at least; by an eighth of the size, but no less than 4 and no more than 1024, when nGrowBy is 0
    // (-1: as before).
    void SetSize(INT_PTR nNewSize, INT_PTR nGrowBy = -1) {
        ENSURE(nNewSize >= 0 && nNewSize <= MaxCount());
        if (nGrowBy >= 0)
            m_nGrowBy = nGrowBy;

        if (nNewSize == 0) {
            DestroyElements(m_pData, m_nSize);
            FreeElements(m_pData);
            m_pData = nullptr;
            m_nSize = m_nMaxSize = 0;
            return;
        }
        if (nNewSize > m_nMaxSize)
            Reallocate(GrownCapacity(nNewSize));
        if (nNewSize > m_nSize)
            ConstructElements(m_pData + m_nSize, nNewSize - m_nSize);
        else
            DestroyElements(m_pData + nNewSize, m_nSize - nNewSize);
        m_nSize = nNewSize;
    }

    // Gives back storage that no element uses.
    void FreeExtra() {
        if (m_nSize == 0)
            RemoveAll();
        else if (m_nSize != m_nMaxSize)
            Reallocate(m_nSize);
    }
    void RemoveAll() { SetSize(0); }

    const TYPE& GetAt(INT_PTR nIndex) const { return m_pData[Checked(nIndex)]; }
    TYPE& GetAt(INT_PTR nIndex) { return m_pData[Checked(nIndex)]; }
    void SetAt(INT_PTR nIndex, ARG_TYPE newElement) { m_pData[Checked(nIndex)] = newElement; }
    const TYPE& ElementAt(INT_PTR nIndex) const { return m_pData[Checked(nIndex)]; }
    TYPE& ElementAt(INT_PTR nIndex) { return m_pData[Checked(nIndex)]; }
    const TYPE& operator[](INT_PTR nIndex) const { return m_pData[Checked(nIndex)]; }
    TYPE& operator[](INT_PTR nIndex) { return m_pData[Checked(nIndex)]; }

    // Null while nothing is allocated.
    const TYPE* GetData() const { return m_pData; }
    TYPE* GetData() { return m_pData; }

    // Like SetAt, but an index past the end makes the array long enough first.
    void SetAtGrow(INT_PTR nIndex, ARG_TYPE newElement) {
        ENSURE(nIndex >= 0 && nIndex < MaxCount());
        if (nIndex < m_nSize) {
            m_pData[nIndex] = newElement;
            return;
        }
        TYPE copyOfElement(newElement); // the argument may lie in this array
        SetSize(nIndex + 1);
        m_pData[nIndex] = std::move(copyOfElement);
    }
    // Index of the new element.
    INT_PTR Add(ARG_TYPE newElement) {
        const INT_PTR nIndex = m_nSize;
        SetAtGrow(nIndex, newElement);
        return nIndex;
    }
    // Index of the first appended element. The source must be another array.
    INT_PTR Append(const CArray& source) {
        ENSURE(this != &source);
        const INT_PTR nOldSize = m_nSize;
        SetSize(m_nSize + source.m_nSize);
        std::copy(source.m_pData, source.m_pData + source.m_nSize, m_pData + nOldSize);
        return nOldSize;
    }
    void Copy(const CArray& source) {
        if (this == &source)
            return;
        SetSize(source.m_nSize);
        std::copy(source.m_pData, source.m_pData + source.m_nSize, m_pData);
    }

    // nIndex may lie past the end: the gap is filled with value-initialised elements.
    void InsertAt(INT_PTR nIndex, ARG_TYPE newElement, INT_PTR nCount = 1) {
        ENSURE(nIndex >= 0 && nIndex <= MaxCount() && nCount > 0 && nCount <= MaxCount() - std::max(nIndex, m_nSize));
        const TYPE copyOfElement(newElement); // the argument may lie in this array
        OpenGap(nIndex, nCount);
        std::fill(m_pData + nIndex, m_pData + nIndex + nCount, copyOfElement);
    }
    void InsertAt(INT_PTR nStartIndex, CArray* pNewArray) {
        ENSURE(pNewArray != nullptr && pNewArray != this && nStartIndex >= 0);
        if (pNewArray->m_nSize == 0)
            return;
        ENSURE(nStartIndex <= MaxCount() && pNewArray->m_nSize <= MaxCount() - std::max(nStartIndex, m_nSize));
        OpenGap(nStartIndex, pNewArray->m_nSize);
        std::copy(pNewArray->m_pData, pNewArray->m_pData + pNewArray->m_nSize, m_pData + nStartIndex);
    }
    void RemoveAt(INT_PTR nIndex, INT_PTR nCount = 1) {
        ENSURE(nIndex >= 0 && nCount >= 0 && nIndex <= m_nSize && nCount <= m_nSize - nIndex);
        std::move(m_pData + nIndex + nCount, m_pData + m_nSize, m_pData + nIndex);
        DestroyElements(m_pData + m_nSize - nCount, nCount);
        m_nSize -= nCount;
    }

protected:
    // Kept in this order: host and module hand arrays to one another.
    TYPE* m_pData = nullptr;
    INT_PTR m_nSize = 0;
    INT_PTR m_nMaxSize = 0;
    INT_PTR m_nGrowBy = 0;

private:
    static_assert(alignof(TYPE) <= alignof(std::max_align_t), "the storage has the default alignment");

    static constexpr INT_PTR MaxCount() { return std::numeric_limits<INT_PTR>::max() / INT_PTR(sizeof(TYPE)); }

    INT_PTR Checked(INT_PTR nIndex) const {
        ENSURE(nIndex >= 0 && nIndex < m_nSize);
        return nIndex;
    }

    INT_PTR GrownCapacity(INT_PTR nNewSize) const {
        if (m_pData == nullptr)
            return std::max(nNewSize, std::min(m_nGrowBy, MaxCount()));
        const INT_PTR nGrowBy = m_nGrowBy != 0 ? m_nGrowBy : std::clamp<INT_PTR>(m_nSize / 8, 4, 1024);
        return nGrowBy > MaxCount() - m_nMaxSize ? nNewSize : std::max(nNewSize, m_nMaxSize + nGrowBy);
    }

    void Reallocate(INT_PTR nCapacity) {
        void* pStorage = ::operator new(static_cast<std::size_t>(nCapacity) * sizeof(TYPE), std::nothrow);
        if (pStorage == nullptr)
            AfxThrowMemoryException();
        TYPE* pNewData = static_cast<TYPE*>(pStorage);
        for (INT_PTR nIndex = 0; nIndex < m_nSize; nIndex++)
            ::new (static_cast<void*>(pNewData + nIndex)) TYPE(std::move(m_pData[nIndex]));
        DestroyElements(m_pData, m_nSize);
        FreeElements(m_pData);
        m_pData = pNewData;
        m_nMaxSize = nCapacity;
    }

    void OpenGap(INT_PTR nIndex, INT_PTR nCount) {
        const INT_PTR nOldSize = m_nSize;
        if (nIndex >= nOldSize) {
            SetSize(nIndex + nCount);
            return;
        }
        SetSize(nOldSize + nCount);
        std::move_backward(m_pData + nIndex, m_pData + nOldSize, m_pData + m_nSize);
    }

    static void ConstructElements(TYPE* pElements, INT_PTR nCount) {
        for (INT_PTR nIndex = 0; nIndex < nCount; nIndex++)
            ::new (static_cast<void*>(pElements + nIndex)) TYPE();
    }
    static void DestroyElements(TYPE* pElements, INT_PTR nCount) {
        for (INT_PTR nIndex = 0; nIndex < nCount; nIndex++)
            pElements[nIndex].~TYPE();
    }
    static void FreeElements(TYPE* pElements) { ::operator delete(static_cast<void*>(pElements)); }
};

// A doubly linked list. A POSITION stays valid until its own element is removed. A null or missing POSITION where one
// is needed, and taking from an empty list, raise CInvalidArgException.
template <class TYPE, class ARG_TYPE = const TYPE&>
class CList : public CObject {
    struct CNode : public __POSITION {
        CNode(CNode* pNextNode, CNode* pPrevNode, ARG_TYPE element)
            : pNext(pNextNode), pPrev(pPrevNode), data(element) {}
        CNode* pNext;
        CNode* pPrev;
        TYPE data;
    };

public:
    // Each element is allocated by itself; the block size is taken for compatibility.
    explicit CList(INT_PTR nBlockSize = 10) { static_cast<void>(nBlockSize); }
    ~CList() override { RemoveAll(); }

    INT_PTR GetCount() const { return m_nCount; }
    INT_PTR GetSize() const { return m_nCount; }
    BOOL IsEmpty() const { return m_nCount == 0; }

    TYPE& GetHead() { return NodeOf(m_pNodeHead)->data; }
    const TYPE& GetHead() const { return NodeOf(m_pNodeHead)->data; }
    TYPE& GetTail() { return NodeOf(m_pNodeTail)->data; }
    const TYPE& GetTail() const { return NodeOf(m_pNodeTail)->data; }

    TYPE RemoveHead() {
        CNode* pNode = NodeOf(m_pNodeHead);
        TYPE element(std::move(pNode->data));
        Unlink(pNode);
        return element;
    }
    TYPE RemoveTail() {
        CNode* pNode = NodeOf(m_pNodeTail);
        TYPE element(std::move(pNode->data));
        Unlink(pNode);
        return element;
    }

    POSITION AddHead(ARG_TYPE newElement) { return Link(newElement, nullptr, m_pNodeHead); }
    POSITION AddTail(ARG_TYPE newElement) { return Link(newElement, m_pNodeTail, nullptr); }
    // The source must be another list.
    void AddHead(CList* pNewList) {
        ENSURE(pNewList != nullptr && pNewList != this);
        for (CNode* pNode = pNewList->m_pNodeTail; pNode != nullptr; pNode = pNode->pPrev)
            AddHead(pNode->data);
    }
    void AddTail(CList* pNewList) {
        ENSURE(pNewList != nullptr && pNewList != this);
        for (CNode* pNode = pNewList->m_pNodeHead; pNode != nullptr; pNode = pNode->pNext)
            AddTail(pNode->data);
    }
    void RemoveAll() {
        while (m_pNodeHead != nullptr)
            Unlink(m_pNodeHead);
    }

    POSITION GetHeadPosition() const { return m_pNodeHead; }
    POSITION GetTailPosition() const { return m_pNodeTail; }
    // Element at the position, which then moves on (null behind the last, or before the first).
    TYPE& GetNext(POSITION& rPosition) {
        CNode* pNode = NodeOf(rPosition);
        rPosition = pNode->pNext;
        return pNode->data;
    }
    const TYPE& GetNext(POSITION& rPosition) const {
        CNode* pNode = NodeOf(rPosition);
        rPosition = pNode->pNext;
        return pNode->data;
    }
    TYPE& GetPrev(POSITION& rPosition) {
        CNode* pNode = NodeOf(rPosition);
        rPosition = pNode->pPrev;
        return pNode->data;
    }
    const TYPE& GetPrev(POSITION& rPosition) const {
        CNode* pNode = NodeOf(rPosition);
        rPosition = pNode->pPrev;
        return pNode->data;
    }

    TYPE& GetAt(POSITION position) { return NodeOf(position)->data; }
    const TYPE& GetAt(POSITION position) const { return NodeOf(position)->data; }
    void SetAt(POSITION position, ARG_TYPE newElement) { NodeOf(position)->data = newElement; }
    void RemoveAt(POSITION position) { Unlink(NodeOf(position)); }

    // With a null position: before the head, or after the tail.
    POSITION InsertBefore(POSITION position, ARG_TYPE newElement) {
        if (position == nullptr)
            return AddHead(newElement);
        CNode* pNode = NodeOf(position);
        return Link(newElement, pNode->pPrev, pNode);
    }
    POSITION InsertAfter(POSITION position, ARG_TYPE newElement) {
        if (position == nullptr)
            return AddTail(newElement);
        CNode* pNode = NodeOf(position);
        return Link(newElement, pNode, pNode->pNext);
    }

    // First element equal (==) to searchValue after startAfter, from the head for null. Null without one.
    POSITION Find(ARG_TYPE searchValue, POSITION startAfter = nullptr) const {
        CNode* pNode = startAfter == nullptr ? m_pNodeHead : NodeOf(startAfter)->pNext;
        while (pNode != nullptr && !(pNode->data == searchValue))
            pNode = pNode->pNext;
        return pNode;
    }
    // Null for an index past the end; a negative index raises CInvalidArgException.
    POSITION FindIndex(INT_PTR nIndex) const {
        ENSURE(nIndex >= 0);
        CNode* pNode = m_pNodeHead;
        while (pNode != nullptr && nIndex-- > 0)
            pNode = pNode->pNext;
        return pNode;
    }

private:
    static CNode* NodeOf(POSITION position) {
        ENSURE(position != nullptr);
        return static_cast<CNode*>(position);
    }

    POSITION Link(ARG_TYPE newElement, CNode* pPrev, CNode* pNext) {
        CNode* pNode = new CNode(pNext, pPrev, newElement);
        (pPrev != nullptr ? pPrev->pNext : m_pNodeHead) = pNode;
        (pNext != nullptr ? pNext->pPrev : m_pNodeTail) = pNode;
        m_nCount++;
        return pNode;
    }
    void Unlink(CNode* pNode) {
        (pNode->pPrev != nullptr ? pNode->pPrev->pNext : m_pNodeHead) = pNode->pNext;
        (pNode->pNext != nullptr ? pNode->pNext->pPrev : m_pNodeTail) = pNode->pPrev;
        m_nCount--;
        delete pNode;
    }

    CNode* m_pNodeHead = nullptr;
    CNode* m_pNodeTail = nullptr;
    INT_PTR m_nCount = 0;
};
