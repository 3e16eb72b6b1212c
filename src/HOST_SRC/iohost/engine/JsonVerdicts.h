// Why a JSON node took or refused its last text, for people: the node itself only tells whether it took it.
#pragma once

#include <boost/core/noncopyable.hpp>
#include <map>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "JsonSink.h"
#include "host/EventRecord.h"
#include "scene/Scene.h"

struct STaken {};

/// The text came from another device than the node's.
struct SOtherDevice {
    int nDevice;
    int nExpected;
};

/// It is for another object than the node's.
struct SOtherObject {
    CString strClip;
    CString strObject;
    CString strExpectedClip;
    CString strExpectedObject;
};

/// It isn't JSON, or is null.
struct SNotJson {};

/// It isn't an object, and the node checks keys.
struct SNotObject {};

struct SKeyMissing {
    CString strKey;
};

struct SValueDiffers {
    CString strKey;
    CString strValue;
    CString strExpected;
};

/// The node has no clip, wasn't evaluated yet, or lacks an input.
struct SNotReady {};

struct SVerdict {
    std::variant<STaken, SOtherDevice, SOtherObject, SNotJson, SNotObject, SKeyMissing, SValueDiffers, SNotReady> what;
    CString strText = {}; ///< how the text begins
    int nLength = 0;      ///< of all of it
};

/// Verdicts by node handle.
using Verdicts = std::vector<std::pair<std::string, SVerdict>>;

/// Watches while events are handed to nodes.
class CJsonVerdicts final : private IJsonSink, boost::noncopyable {
public:
    /// Registers itself with the render library until it is destroyed.
    CJsonVerdicts();
    ~CJsonVerdicts();

    /// Whether a record, which may be null, brings a text: only texts get verdicts.
    static bool IsText(const SIOEventRecord* pRecord);

    /// A text is about to be handed to a node.
    void Begin();

    /// The text was handed over, with this result. Returns the verdict; null for nodes that take no such texts.
    const SVerdict* End(const SNode& node, const SIOEventRecord& record, int nResult);

    /// The verdict of each node that got a text, in the order of the nodes.
    Verdicts All(const CScene& scene) {
        return Those(scene, [](const SKept&) { return true; });
    }

    /// Those that came since the last call.
    Verdicts TakeNew(const CScene& scene) {
        return Those(scene, [](SKept& kept) { return std::exchange(kept.bNew, false); });
    }

    /// Let the next TakeNew return all.
    void ForgetTaken();

    /// The node is gone.
    void Forget(const VEKProperty* pNode) { m_verdicts.erase(pNode); }

private:
    struct SKept {
        SVerdict verdict;
        bool bNew;
    };

    template <typename Condition>
    Verdicts Those(const CScene& scene, Condition isMet) {
        Verdicts those;
        for (const auto& pNode : scene.Nodes()) {
            if (const auto found = m_verdicts.find(pNode->pNode); found != m_verdicts.end() && isMet(found->second)) {
                those.emplace_back(pNode->strHandle, found->second.verdict);
            }
        }
        return those;
    }

    void OnObjectSplit(const CStringArray& arKey, const CStringArray& arValue) override;
    void OnStringSought(const CString& strText, int nIndex) override;

    SVerdict JudgeDeviceText(const SNode& node, const SDeviceTextData& text) const;
    SVerdict JudgePairs(const SNode& node) const;

    std::map<const VEKProperty*, SKept> m_verdicts;

    // Of the call between Begin and End.
    CStringArray m_arValue; ///< of the object that was split
    int m_nSought = 0;      ///< keys looked for
    int m_nLastFound = -1;  ///< index of the last one
};
