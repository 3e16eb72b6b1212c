// Template collections: CArray, CList.
#pragma once

#include <afx.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>
#include <utility>

// What all arrays are. Elements lie side by side; pointers and references to them end with the next change of the size.
// Indices outside [0, GetSize()) raise CInvalidArgException, failed allocations CMemoryException, in every build.
template <class TYPE, class ARG_TYPE = const TYPE&>
class CArrayBase : public CObject {
public:
    CArrayBase() = default;
    ~CArrayBase() override { RemoveAll(); }

    INT_PTR GetSize() const { return m_nSize; }
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

    void RemoveAll() { SetSize(0); }

    const TYPE& GetAt(INT_PTR nIndex) const { return m_pData[Checked(nIndex)]; }
    void SetAt(INT_PTR nIndex, ARG_TYPE newElement) { m_pData[Checked(nIndex)] = newElement; }
    const TYPE& operator[](INT_PTR nIndex) const { return m_pData[Checked(nIndex)]; }
    TYPE& operator[](INT_PTR nIndex) { return m_pData[Checked(nIndex)]; }

    // Null while nothing is allocated.
    const TYPE* GetData() const { return m_pData; }
    TYPE* GetData() { return m_pData; }

    // Index of the new element.
    INT_PTR Add(ARG_TYPE newElement) {
        ENSURE(m_nSize < MaxCount());
        TYPE copyOfElement(newElement); // the argument may lie in this array
        SetSize(m_nSize + 1);
        m_pData[m_nSize - 1] = std::move(copyOfElement);
        return m_nSize - 1;
    }
    void Copy(const CArrayBase& source) {
        if (this == &source)
            return;
        SetSize(source.m_nSize);
        std::copy(source.m_pData, source.m_pData + source.m_nSize, m_pData);
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

// A growable array; see CArrayBase for indices and growth.
template <class TYPE, class ARG_TYPE = const TYPE&>
class CArray : public CArrayBase<TYPE, ARG_TYPE> {};

// Head of a block of nodes, which follow it.
struct CPlex {
    CPlex* pNext;
};

// A doubly linked list. A POSITION stays valid until its own element is removed. A null or missing POSITION where one
// is needed, and taking from an empty list, raise CInvalidArgException. Nodes are allocated in blocks of nBlockSize;
// one that was removed serves the next element, and all blocks are freed with the last element.
template <class TYPE, class ARG_TYPE = const TYPE&>
class CList : public CObject {
protected:
    struct CNode {
        CNode* pNext;
        CNode* pPrev;
        TYPE data; // an object while the node is in the list
    };

public:
    explicit CList(INT_PTR nBlockSize = 10) : m_nBlockSize(nBlockSize) { ENSURE(nBlockSize > 0); }
    ~CList() override { RemoveAll(); }

    INT_PTR GetCount() const { return m_nCount; }
    BOOL IsEmpty() const { return m_nCount == 0; }

    TYPE& GetHead() { return Checked(m_pNodeHead)->data; }
    const TYPE& GetHead() const { return Checked(m_pNodeHead)->data; }
    TYPE& GetTail() { return Checked(m_pNodeTail)->data; }
    const TYPE& GetTail() const { return Checked(m_pNodeTail)->data; }

    TYPE RemoveHead() {
        CNode* pNode = Checked(m_pNodeHead);
        TYPE element(std::move(pNode->data));
        Unlink(pNode);
        return element;
    }

    POSITION AddHead(ARG_TYPE newElement) { return Link(newElement, nullptr, m_pNodeHead); }
    POSITION AddTail(ARG_TYPE newElement) { return Link(newElement, m_pNodeTail, nullptr); }
    // The source must be another list.
    void AddTail(CList* pNewList) {
        ENSURE(pNewList != nullptr && pNewList != this);
        for (CNode* pNode = pNewList->m_pNodeHead; pNode != nullptr; pNode = pNode->pNext)
            AddTail(pNode->data);
    }
    void RemoveAll() {
        for (CNode* pNode = m_pNodeHead; pNode != nullptr; pNode = pNode->pNext)
            pNode->data.~TYPE();
        m_pNodeHead = m_pNodeTail = m_pNodeFree = nullptr;
        m_nCount = 0;
        while (m_pBlocks != nullptr)
            ::operator delete(std::exchange(m_pBlocks, m_pBlocks->pNext));
    }

    POSITION GetHeadPosition() const { return PositionOf(m_pNodeHead); }
    // Element at the position, which then moves on (null behind the last).
    TYPE& GetNext(POSITION& rPosition) {
        CNode* pNode = NodeOf(rPosition);
        rPosition = PositionOf(pNode->pNext);
        return pNode->data;
    }
    const TYPE& GetNext(POSITION& rPosition) const {
        CNode* pNode = NodeOf(rPosition);
        rPosition = PositionOf(pNode->pNext);
        return pNode->data;
    }

    TYPE& GetAt(POSITION position) { return NodeOf(position)->data; }
    const TYPE& GetAt(POSITION position) const { return NodeOf(position)->data; }
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

    // First element equal (==) to searchValue. Null without one.
    POSITION Find(ARG_TYPE searchValue) const {
        CNode* pNode = m_pNodeHead;
        while (pNode != nullptr && !(pNode->data == searchValue))
            pNode = pNode->pNext;
        return PositionOf(pNode);
    }
    // Null for an index past the end; a negative index raises CInvalidArgException.
    POSITION FindIndex(INT_PTR nIndex) const {
        ENSURE(nIndex >= 0);
        CNode* pNode = m_pNodeHead;
        while (pNode != nullptr && nIndex-- > 0)
            pNode = pNode->pNext;
        return PositionOf(pNode);
    }

protected:
    // Kept in this order: host and module hand lists to one another.
    CNode* m_pNodeHead = nullptr;
    CNode* m_pNodeTail = nullptr;
    INT_PTR m_nCount = 0;
    CNode* m_pNodeFree = nullptr; // chained by pNext
    CPlex* m_pBlocks = nullptr;
    INT_PTR m_nBlockSize;

private:
    static POSITION PositionOf(CNode* pNode) { return reinterpret_cast<POSITION>(pNode); }
    static CNode* NodeOf(POSITION position) { return Checked(reinterpret_cast<CNode*>(position)); }
    static CNode* Checked(CNode* pNode) {
        ENSURE(pNode != nullptr);
        return pNode;
    }

    POSITION Link(ARG_TYPE newElement, CNode* pPrev, CNode* pNext) {
        if (m_pNodeFree == nullptr)
            AddBlock();
        CNode* pNode = m_pNodeFree;
        ::new (static_cast<void*>(&pNode->data)) TYPE(newElement);
        m_pNodeFree = pNode->pNext;
        pNode->pNext = pNext;
        pNode->pPrev = pPrev;
        (pPrev != nullptr ? pPrev->pNext : m_pNodeHead) = pNode;
        (pNext != nullptr ? pNext->pPrev : m_pNodeTail) = pNode;
        m_nCount++;
        return PositionOf(pNode);
    }
    void Unlink(CNode* pNode) {
        (pNode->pPrev != nullptr ? pNode->pPrev->pNext : m_pNodeHead) = pNode->pNext;
        (pNode->pNext != nullptr ? pNode->pNext->pPrev : m_pNodeTail) = pNode->pPrev;
        m_nCount--;
        pNode->data.~TYPE();
        pNode->pNext = std::exchange(m_pNodeFree, pNode);
        if (m_nCount == 0)
            RemoveAll();
    }

    void AddBlock() {
        static_assert(alignof(CNode) <= alignof(CPlex), "nodes lie right behind the head of their block");
        const std::size_t nNodes = static_cast<std::size_t>(m_nBlockSize);
        CPlex* pBlock = static_cast<CPlex*>(::operator new(sizeof(CPlex) + nNodes * sizeof(CNode)));
        pBlock->pNext = std::exchange(m_pBlocks, pBlock);
        CNode* pNodes = reinterpret_cast<CNode*>(pBlock + 1);
        for (INT_PTR nIndex = m_nBlockSize - 1; nIndex >= 0; nIndex--)
            pNodes[nIndex].pNext = std::exchange(m_pNodeFree, &pNodes[nIndex]);
    }
};
