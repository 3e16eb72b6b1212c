#include "Comparison.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <memory>
#include <stdexcept>

#include <afxtempl.h>
#include <gdiplus.h>

#include "host/EventRecord.h"
#include "host/NodeTypeGuid.h"

namespace {

// Set close above what was measured (docs/benchmarks.md).
struct Size {
    size_t nNodes;
    size_t
        nStrokeSamples; ///< a stroke is released, and the next one begun, after so many; all strokes take 16 MB at most
    double fGestureLimit;
    double fHandleLimit;
};
constexpr Size SIZES[] = {{1, 8000, 2.0, 1.5}, {100, 8000, 2.0, 1.5}, {LARGEST_NODE_COUNT, 200, 2.0, 4.5}};

std::string NameOf(const MeasuredType& type, const char* pszSample, const Size& size) {
    return std::string(type.pszName) + "/" + pszSample + "/" + std::to_string(size.nNodes);
}

// ---- Touch gesture --------------------------------------------------------------------------------------------------

/// The coordinates of the kind of point that the node keeps.
CPoint PointOf(const SQORMouseData& sample, CPoint /*kind*/) {
    return sample.m_ptPixel;
}

Gdiplus::PointF PointOf(const SQORMouseData& sample, Gdiplus::PointF /*kind*/) {
    return {sample.m_fRelativeX, sample.m_fRelativeY};
}

/// Strokes of many samples to the right: a drag begins, and a swipe ends it. The floor keeps the samples in arrays of
/// its own and posts the same events.
template <typename Point>
class CStrokes {
public:
    CStrokes(const MeasuredType& type, CBenchHost& host, Nodes nodes, size_t nStrokeSamples, int bRelative)
        : m_swipe(type.events.back()), m_host(host), m_nodes(nodes), m_nStrokeSamples(nStrokeSamples),
          m_sample(0, 0.0f, 2.0f, CPoint(0, 4), bRelative), m_points(nodes.size()) {
        for (size_t i = 0; i <= nStrokeSamples; ++i) {
            if (!Measured()) {
                throw std::runtime_error("the gesture node doesn't take the samples");
            }
        }
        if (m_nEvents != m_swipe.outputs.size() * nodes.size()) {
            throw std::runtime_error("a stroke isn't a swipe");
        }
    }

    /// Begin new strokes. Other comparisons had the nodes meanwhile.
    void Begin() {
        m_host.TakeLogLines(true);
        m_nMeasured = 0;
        m_nFloor = 0;
    }

    bool Measured() {
        const size_t nSample = m_nMeasured++ % m_nStrokeSamples;
        if (nSample == 0) {
            m_nEvents = m_host.ReceiveEvents();
            SendToAll(EVENT_LEFT_UP);
            MoveTo(0);
            SendToAll(EVENT_LEFT_DOWN);
        }
        MoveTo(DRAG_DISTANCE + nSample);
        return SendToAll(EVENT_POINTER_SAMPLE);
    }

    bool Floor() {
        const size_t nSample = m_nFloor++ % m_nStrokeSamples;
        if (nSample == 0) {
            MoveTo(0);
            for (size_t i = 0; i < m_nodes.size(); ++i) {
                PostSameEvents(*m_nodes[i], m_swipe);
                m_nEvents += m_host.ReceiveEvents();
                m_points[i].RemoveAll();
                m_points[i].Add(PointOf(m_sample, Point()));
            }
        }
        MoveTo(DRAG_DISTANCE + nSample);
        for (size_t i = 0; i < m_nodes.size(); ++i) {
            m_nodes[i]->m_pNode->PreRender();
            m_points[i].Add(PointOf(m_sample, Point()));
        }
        return true;
    }

private:
    static constexpr size_t DRAG_DISTANCE = 100; ///< the first sample begins the drag

    void MoveTo(size_t nX) {
        m_sample.m_ptPixel.x = static_cast<LONG>(nX);
        m_sample.m_fRelativeX = static_cast<float>(nX);
    }

    bool SendToAll(int nEvent) {
        const SIOEventRecord record = {DEVICE_POINTER, nEvent, &m_sample};
        bool bAllTaken = true;
        for (const auto& pPlaced : m_nodes) {
            bAllTaken &= pPlaced->m_pNode->DevIOEventOccurred(&record) == 1;
            if (nEvent == EVENT_LEFT_UP) {
                m_nEvents += m_host.ReceiveEvents(); // the queue doesn't take those of all nodes
            }
        }
        return bAllTaken;
    }

    const FiringEvent& m_swipe;
    CBenchHost& m_host;
    const Nodes m_nodes;
    const size_t m_nStrokeSamples;
    SQORMouseData m_sample;
    std::vector<CArray<Point>> m_points; ///< the floor's
    size_t m_nMeasured = 0;
    size_t m_nFloor = 0;
    size_t m_nEvents = 0; ///< received when the strokes were begun last
};

template <typename Point>
Comparison CompareStrokes(const MeasuredType& type, CBenchHost& host, const CPopulation& population, const Size& size,
                          const char* pszName, int bRelative) {
    const auto pStrokes =
        std::make_shared<CStrokes<Point>>(type, host, population.First(size.nNodes), size.nStrokeSamples, bRelative);
    return {.strName = NameOf(type, pszName, size),
            .nNodes = size.nNodes,
            .fRatioLimit = size.fGestureLimit,
            .bMayAllocate = true,
            .measured = [pStrokes] { return pStrokes->Measured(); },
            .floor = [pStrokes] { return pStrokes->Floor(); },
            .fOwnLookUps = type.events.back().fOwnLookUps / static_cast<double>(size.nStrokeSamples),
            .begin = [pStrokes] { pStrokes->Begin(); }};
}

// ---- VR handle ------------------------------------------------------------------------------------------------------

/// Samples in which nothing is pressed. The floor finds the object and the outputs, and copies the same.
class CControllerSamples {
public:
    explicit CControllerSamples(Nodes nodes) : m_nodes(nodes), m_previous(nodes.size()) {
        for (int i = 0; i < 16; ++i) {
            m_sample.m_fPose[i] = static_cast<float>(i);
        }
        std::copy_n(m_sample.m_fPose, 3, m_sample.m_fHitPosition);
    }

    bool Measured() {
        const SIOEventRecord record = {DEVICE_VR_HANDLE, 0, &m_sample};
        bool bAllTaken = true;
        for (const auto& pPlaced : m_nodes) {
            bAllTaken &= pPlaced->m_pNode->DevIOEventOccurred(&record) == 1;
        }
        return bAllTaken;
    }

    bool Floor() {
        for (size_t i = 0; i < m_nodes.size(); ++i) {
            const CPlacedNode& placed = *m_nodes[i];
            placed.m_pNode->PreRender();
            VEKObject* pObject = placed.m_pNode->m_pOwnerClip->FindObject(m_strObject, 0);
            std::copy(std::begin(m_sample.m_fPose), std::end(m_sample.m_fPose), pObject->m_fMatrix);
            for (unsigned nElement = 0; nElement < 3; ++nElement) {
                Output(placed, 852 + nElement) = m_sample.m_fPose[12 + nElement];
            }
            for (unsigned nElement = 0; nElement < 3; ++nElement) {
                Output(placed, 857 + nElement) = m_sample.m_fHitPosition[nElement];
            }
            m_previous[i] = m_sample;
        }
        return true;
    }

    /// Let node and floor do it once, and compare what they leave.
    void Check() {
        const auto left = [this](bool (CControllerSamples::*pWork)()) {
            const CPlacedNode& placed = *m_nodes.front();
            VEKObject& object = *placed.m_pNode->m_pOwnerClip->m_lstObject.GetHead();
            std::fill(std::begin(object.m_fMatrix), std::end(object.m_fMatrix), -1.0f);
            std::array<float, 22> values;
            for (const unsigned nOutput : OUTPUTS) {
                Output(placed, nOutput) = -1.0f;
            }
            if (!(this->*pWork)()) {
                throw std::runtime_error("the VR handle node doesn't take the samples");
            }
            std::copy(std::begin(object.m_fMatrix), std::end(object.m_fMatrix), values.begin());
            std::transform(std::begin(OUTPUTS), std::end(OUTPUTS), values.begin() + 16,
                           [&](unsigned nOutput) { return Output(placed, nOutput); });
            return values;
        };
        const auto ofNode = left(&CControllerSamples::Measured);
        if (left(&CControllerSamples::Floor) != ofNode || ofNode[12] != 12.0f || ofNode[21] != 2.0f) {
            throw std::runtime_error("the VR handle's floor leaves something else than the node");
        }
    }

private:
    static constexpr unsigned OUTPUTS[] = {852, 853, 854, 857, 858, 859};

    static float& Output(const CPlacedNode& placed, unsigned nId) {
        return FindParam(placed.m_graphNode.m_lstOutputGroup, MakeParamGuid(nId))->m_fValue;
    }

    const Nodes m_nodes;
    const CString m_strObject = MEASURED_OBJECT;
    SVRPluginData m_sample;
    std::vector<SVRPluginData> m_previous; ///< the floor's
};

Comparison CompareController(const MeasuredType& type, const CPopulation& population, const Size& size) {
    const auto pSamples = std::make_shared<CControllerSamples>(population.First(size.nNodes));
    pSamples->Check();
    return {.strName = NameOf(type, "Sample", size),
            .nNodes = size.nNodes,
            .fRatioLimit = size.fHandleLimit,
            .bMayAllocate = false,
            .measured = [pSamples] { return pSamples->Measured(); },
            .floor = [pSamples] { return pSamples->Floor(); }};
}

} // namespace

std::vector<Comparison> MakeSampleComparisons(const MeasuredType& type, CBenchHost& host,
                                              const CPopulation& population) {
    std::vector<Comparison> comparisons;
    if (IsEqualGUID(type.guidType, GUID_IOPROCESS_GESTURE)) {
        for (const Size& size : SIZES) {
            comparisons.push_back(CompareStrokes<CPoint>(type, host, population, size, "PixelSample", 0));
        }
        for (const Size& size : SIZES) {
            comparisons.push_back(CompareStrokes<Gdiplus::PointF>(type, host, population, size, "RelativeSample", 1));
        }
    } else if (IsEqualGUID(type.guidType, GUID_IOPROCESS_VR_HANDLE)) {
        for (const Size& size : SIZES) {
            comparisons.push_back(CompareController(type, population, size));
        }
    }
    return comparisons;
}
