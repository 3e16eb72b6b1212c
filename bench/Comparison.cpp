#include "Comparison.h"

#include <algorithm>
#include <cwchar>
#include <stdexcept>

#include <benchmark/benchmark.h>

#include "host/EventRecord.h"
#include "host/GeneralEvent.h"

namespace {

// Set close above what was measured (docs/benchmarks.md). Many nodes don't fit into the processor's caches;
// they get more room, because other programs disturb them most.
struct Size {
    size_t nNodes;
    double fProcessNodeLimit;
    double fTriggeredLimit;
    double fEventLimit;
};
constexpr Size SIZES[] = {{1, 1.4, 1.8, 2.2}, {100, 1.4, 1.8, 1.8}, {LARGEST_NODE_COUNT, 2.0, 2.0, 3.5}};

/// A message queue takes 10,000.
constexpr size_t MOST_PENDING_EVENTS = 5000;

// ---- The floors -----------------------------------------------------------------------------------------------------

void SendRecords(const CPlacedNode& placed, const FiringEvent& firing) {
    for (const SIOEventRecord& record : firing.records) {
        placed.m_pNode->DevIOEventOccurred(&record);
    }
}

} // namespace

void PostSameEvents(const CPlacedNode& placed, const FiringEvent& firing) {
    for (const int nOutput : firing.outputs) {
        PostGeneralEvent(*placed.m_pNode, nOutput);
    }
}

namespace {

// ---- Whether the floors are the right ones --------------------------------------------------------------------------

bool IsSameParam(const VEKParam& left, const VEKParam& right) {
    const bool bEventId = std::wcscmp(left.m_szTypeName, L"EventID") == 0;
    return IsEqualGUID(left.m_guid, right.m_guid) && left.m_strName == right.m_strName &&
           left.m_strDisplay == right.m_strDisplay && left.m_nType == right.m_nType &&
           left.m_nControl == right.m_nControl && std::wcscmp(left.m_szTypeName, right.m_szTypeName) == 0 &&
           (bEventId ? *static_cast<int*>(left.m_pValue) == *static_cast<int*>(right.m_pValue)
                     : left.m_pValue == right.m_pValue);
}

bool IsSameEvent(const SQOREvent* pLeft, const SQOREvent* pRight) {
    if (pLeft == nullptr || pRight == nullptr || pLeft->m_nId != pRight->m_nId ||
        pLeft->m_strName != pRight->m_strName || pLeft->m_lstParam.GetCount() != pRight->m_lstParam.GetCount()) {
        return false;
    }
    POSITION posRight = pRight->m_lstParam.GetHeadPosition();
    for (POSITION posLeft = pLeft->m_lstParam.GetHeadPosition(); posLeft != nullptr;) {
        if (!IsSameParam(*pLeft->m_lstParam.GetNext(posLeft), *pRight->m_lstParam.GetNext(posRight))) {
            return false;
        }
    }
    return true;
}

/// The events that were posted.
std::vector<std::unique_ptr<SQOREvent>> TakeEvents(const CBenchHost& host) {
    std::vector<std::unique_ptr<SQOREvent>> events;
    while (auto pEvent = host.TakeEvent()) {
        events.push_back(std::move(pEvent));
    }
    return events;
}

void CheckFloors(const MeasuredType& type, const CBenchHost& host, Nodes one) {
    const auto isFound = [&](bool (*pFloor)(Nodes)) { return pFloor == nullptr || pFloor(one); };
    if (!isFound(type.pFloor) || !isFound(type.pTriggeredFloor)) {
        throw std::runtime_error(std::string(type.pszName) + ": a floor doesn't find what it looks up");
    }
    const CPlacedNode& placed = *one.front();
    host.ReceiveEvents(); // those that a measured stroke left
    for (const FiringEvent& firing : type.events) {
        SendRecords(placed, firing);
        const auto nodeEvents = TakeEvents(host);
        PostSameEvents(placed, firing);
        const auto floorEvents = TakeEvents(host);
        if (!std::ranges::equal(nodeEvents, floorEvents, [](const auto& pLeft, const auto& pRight) {
                return IsSameEvent(pLeft.get(), pRight.get());
            })) {
            throw std::runtime_error(std::string(type.pszName) + ", " + firing.pszName +
                                     ": the floor posts something else than the node");
        }
    }
}

// ---- Comparisons ----------------------------------------------------------------------------------------------------

std::string NameOf(const MeasuredType& type, const char* pszOperation, const Size& size) {
    return std::string(type.pszName) + "/" + pszOperation + "/" + std::to_string(size.nNodes);
}

/// An evaluation; a triggered one without its log line.
Comparison CompareProcessNode(const MeasuredType& type, bool bTriggered, const Size& size, Nodes nodes,
                              CBenchHost& host) {
    const auto measured = [=] {
        bool bAllHandled = true;
        for (const auto& pPlaced : nodes) {
            bAllHandled &= pPlaced->m_pNode->ProcessNode(&pPlaced->m_graphNode) == 1;
        }
        return bAllHandled;
    };
    const auto floor = [nodes, pFloor = bTriggered ? type.pTriggeredFloor : type.pFloor] { return pFloor(nodes); };
    const auto begin = [=, &type, &host] {
        host.TakeLogLines(false);
        for (const auto& pPlaced : nodes) {
            if (type.nTrigger != 0) {
                FindParam(pPlaced->m_graphNode.m_lstInputGroup, MakeParamGuid(type.nTrigger))->m_nValue = bTriggered;
            }
        }
    };
    return {.strName = NameOf(type, bTriggered ? "Triggered" : "ProcessNode", size),
            .nNodes = size.nNodes,
            .fRatioLimit = bTriggered ? size.fTriggeredLimit : size.fProcessNodeLimit,
            .bMayAllocate = false,
            .measured = measured,
            .floor = floor,
            .begin = begin};
}

Comparison CompareEvent(const MeasuredType& type, const FiringEvent& firing, const Size& size, Nodes nodes,
                        CBenchHost& host) {
    const auto work = [nodes, &firing, &host](void (*pWork)(const CPlacedNode&, const FiringEvent&)) {
        return [nodes, &firing, &host, pWork] {
            size_t nReceived = 0;
            size_t nPending = 0;
            for (const auto& pPlaced : nodes) {
                pWork(*pPlaced, firing);
                nPending += firing.outputs.size();
                if (nPending > MOST_PENDING_EVENTS) {
                    nReceived += host.ReceiveEvents();
                    nPending = 0;
                }
            }
            return nReceived + host.ReceiveEvents() == nodes.size() * firing.outputs.size();
        };
    };
    return {NameOf(type, firing.pszName, size),
            size.nNodes,
            size.fEventLimit,
            true,
            work(SendRecords),
            work(PostSameEvents),
            firing.fOwnAllocations,
            firing.fOwnLookUps,
            [&host] { host.TakeLogLines(true); }};
}

} // namespace

std::vector<Comparison> MakeComparisons(const MeasuredType& type, CBenchHost& host, const CPopulation& population) {
    // A node takes no events before its first evaluation.
    for (const auto& pPlaced : population.First(LARGEST_NODE_COUNT)) {
        if (pPlaced->m_pNode->ProcessNode(&pPlaced->m_graphNode) == 0) {
            throw std::runtime_error(std::string(type.pszName) + ": ProcessNode does nothing");
        }
    }
    CheckFloors(type, host, population.First(1));

    std::vector<Comparison> comparisons;
    for (const Size& size : SIZES) {
        comparisons.push_back(CompareProcessNode(type, false, size, population.First(size.nNodes), host));
    }
    if (type.nTrigger != 0) {
        for (const Size& size : SIZES) {
            comparisons.push_back(CompareProcessNode(type, true, size, population.First(size.nNodes), host));
        }
    }
    for (const FiringEvent& firing : type.events) {
        for (const Size& size : SIZES) {
            comparisons.push_back(CompareEvent(type, firing, size, population.First(size.nNodes), host));
        }
    }
    for (Comparison& comparison : MakeSampleComparisons(type, host, population)) {
        comparisons.push_back(std::move(comparison));
    }
    return comparisons;
}
