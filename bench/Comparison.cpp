#include "Comparison.h"

#include <algorithm>
#include <array>
#include <cwchar>
#include <stdexcept>

#include <benchmark/benchmark.h>

#include "host/EventRecord.h"
#include "host/GeneralEvent.h"
#include "host/HostLog.h"
#include "host/HostRender.h"

namespace {

// Set from what was measured (docs/benchmarks.md), with room for a busy machine: noise stays below them. Many nodes
// don't fit into the processor's caches; they get more room, because other programs disturb them most, and because a
// node must also touch itself and the values that the look-ups only find.
struct Size {
    size_t nNodes;
    double fProcessNodeLimit;
    double fEventLimit;
};
constexpr Size SIZES[] = {{1, 1.5, 1.4}, {100, 1.5, 1.4}, {LARGEST_NODE_COUNT, 3.0, 2.5}};

/// A message queue takes 10,000.
constexpr size_t MOST_PENDING_EVENTS = 5000;

// ---- The floors -----------------------------------------------------------------------------------------------------

/// What is looked up; null when it isn't there.
const void* Find(const CPlacedNode& placed, const LookUp& lookUp) {
    static constexpr std::array<char, 2> NOT_A_PARAMETER = {};
    const GUID guid = MakeParamGuid(lookUp.nId);
    switch (lookUp.place) {
    case Place::Input:
        return QORFindParamByGuid(guid, placed.m_graphNode.m_lstInputGroup, placed.m_pNode->m_lstParamGroup);
    case Place::Trigger:
        return FindParam(placed.m_graphNode.m_lstInputGroup, guid);
    case Place::Output:
        return FindParam(placed.m_graphNode.m_lstOutputGroup, guid);
    case Place::Key:
        return &NOT_A_PARAMETER[GetKeyState(static_cast<int>(lookUp.nId)) < 0 ? 1 : 0];
    case Place::MainWindow:
        return &NOT_A_PARAMETER[AfxGetApp()->GetMainWnd()->IsWindowEnabled() ? 1 : 0];
    }
    return nullptr;
}

void PostSameEvent(const CPlacedNode& placed, const Fired& fired) {
    VEKProperty* pNode = placed.m_pNode;
    if (fired.pszLogFormat != nullptr) {
        NSVEKLog::WriteLog(LOG_INFORMATION, 15, 567, 0, -1, fired.pszLogFormat,
                           pNode->m_pOwnerClip->m_strName.GetString(), placed.m_graphNode.m_strName.GetString(),
                           pNode->m_strName.GetString(), fired.pszLogText);
    }
    if (fired.bByHost) {
        PostGeneralEventMessage(pNode, pNode->m_pOwnerClip, nullptr, fired.nOutput);
    } else {
        PostGeneralEvent(*pNode, pNode->m_pOwnerClip, nullptr, fired.nOutput);
    }
}

void SendRecords(const CPlacedNode& placed, const FiringEvent& firing) {
    for (const SIOEventRecord& record : firing.records) {
        placed.m_pNode->DevIOEventOccurred(&record);
    }
}

} // namespace

void PostSameEvents(const CPlacedNode& placed, const FiringEvent& firing) {
    for (const Fired& fired : firing.fired) {
        PostSameEvent(placed, fired);
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

void CheckFloors(const MeasuredType& type, CBenchHost& host, const CPlacedNode& placed) {
    for (const LookUp& lookUp : type.lookUps) {
        if (Find(placed, lookUp) == nullptr) {
            throw std::runtime_error(std::string(type.pszName) + " has no parameter " + std::to_string(lookUp.nId));
        }
    }
    host.ReceiveEvents(); // those that a measured stroke left
    for (const FiringEvent& firing : type.events) {
        CString strNodeLog;
        host.KeepLog(&strNodeLog);
        SendRecords(placed, firing);
        const auto nodeEvents = TakeEvents(host);

        CString strFloorLog;
        host.KeepLog(&strFloorLog);
        PostSameEvents(placed, firing);
        const auto floorEvents = TakeEvents(host);

        host.KeepLog(nullptr);
        const bool bSameEvents =
            std::equal(nodeEvents.begin(), nodeEvents.end(), floorEvents.begin(), floorEvents.end(),
                       [](const auto& pLeft, const auto& pRight) { return IsSameEvent(pLeft.get(), pRight.get()); });
        if (!bSameEvents || strNodeLog != strFloorLog) {
            throw std::runtime_error(std::string(type.pszName) + ", " + firing.pszName +
                                     ": the floor posts or logs something else than the node");
        }
    }
}

// ---- Comparisons ----------------------------------------------------------------------------------------------------

std::string NameOf(const MeasuredType& type, const char* pszOperation, const Size& size) {
    return std::string(type.pszName) + "/" + pszOperation + "/" + std::to_string(size.nNodes);
}

Comparison CompareProcessNode(const MeasuredType& type, const Size& size, Nodes nodes) {
    const auto measured = [nodes] {
        bool bAllHandled = true;
        for (const auto& pPlaced : nodes) {
            bAllHandled &= pPlaced->m_pNode->ProcessNode(&pPlaced->m_graphNode) == 1;
        }
        return bAllHandled;
    };
    const auto floor = [nodes, &type] {
        for (const auto& pPlaced : nodes) {
            pPlaced->m_pNode->PreRender(); // no type does anything there: this is the call alone
            for (const LookUp& lookUp : type.lookUps) {
                benchmark::DoNotOptimize(Find(*pPlaced, lookUp));
            }
        }
        return true;
    };
    return {NameOf(type, "ProcessNode", size), size.nNodes, size.fProcessNodeLimit, false, measured, floor};
}

Comparison CompareEvent(const MeasuredType& type, const FiringEvent& firing, const Size& size, Nodes nodes,
                        const CBenchHost& host) {
    const auto work = [nodes, &firing, &host](void (*pWork)(const CPlacedNode&, const FiringEvent&)) {
        return [nodes, &firing, &host, pWork] {
            size_t nReceived = 0;
            size_t nPending = 0;
            for (const auto& pPlaced : nodes) {
                pWork(*pPlaced, firing);
                nPending += firing.fired.size();
                if (nPending > MOST_PENDING_EVENTS) {
                    nReceived += host.ReceiveEvents();
                    nPending = 0;
                }
            }
            return nReceived + host.ReceiveEvents() == nodes.size() * firing.fired.size();
        };
    };
    return {NameOf(type, firing.pszName, size),
            size.nNodes,
            size.fEventLimit,
            true,
            work(SendRecords),
            work(PostSameEvents),
            firing.fOwnAllocations,
            firing.fOwnLookUps};
}

} // namespace

std::vector<Comparison> MakeComparisons(const MeasuredType& type, CBenchHost& host, const CPopulation& population) {
    // A node takes no events before its first evaluation.
    for (const auto& pPlaced : population.First(LARGEST_NODE_COUNT)) {
        if (pPlaced->m_pNode->ProcessNode(&pPlaced->m_graphNode) == 0) {
            throw std::runtime_error(std::string(type.pszName) + ": ProcessNode does nothing");
        }
    }
    CheckFloors(type, host, *population.First(1).front());

    std::vector<Comparison> comparisons;
    for (const Size& size : SIZES) {
        comparisons.push_back(CompareProcessNode(type, size, population.First(size.nNodes)));
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
