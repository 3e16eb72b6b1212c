// What the JSON nodes made of the last text that came to them, for people: nodes themselves tell only that they took
// it.
#pragma once

#include <map>

#include "JsonSink.h"
#include "engine/Happened.h"
#include "host/EventRecord.h"
#include "host/NodeBase.h"

/// Watches while events are handed to nodes.
class CJsonVerdicts final : private IJsonSink {
public:
    /// Registers itself with the render library until it is destroyed. The lines that nodes log tell some of the
    /// reasons.
    explicit CJsonVerdicts(const CHappened& happened);
    ~CJsonVerdicts();

    CJsonVerdicts(const CJsonVerdicts&) = delete;
    CJsonVerdicts& operator=(const CJsonVerdicts&) = delete;

    /// A record, or null, is about to be handed to a node.
    void Begin();

    /// It was, with this result.
    void End(const SNode& node, const SIOEventRecord* pRecord, int nResult);

    /// The verdict of each node that got a text, by handle: how the text begins, how long it is, and
    ///   {"verdict":"taken"}
    ///   {"verdict":"other_device","device":2,"expected":1}
    ///   {"verdict":"other_object","clip","object","expected_clip","expected_object"}
    ///   {"verdict":"not_json"}
    ///   {"verdict":"not_object"}
    ///   {"verdict":"key_missing","key"}
    ///   {"verdict":"value_differs","key","value","expected"}
    ///   {"verdict":"not_ready"}      no clip, no evaluation yet, or an input is missing
    OrderedJson All(const CScene& scene) const;

    /// Those that came since the last call; an empty object for none.
    OrderedJson TakeNew(const CScene& scene);

    /// Let the next TakeNew return all.
    void ForgetTaken();

    /// The node is gone.
    void Forget(const VEKProperty* pNode) { m_verdicts.erase(pNode); }

private:
    struct SVerdict {
        OrderedJson json;
        bool bNew;
    };

    void OnObjectSplit(const CStringArray& arKey, const CStringArray& arValue) override;
    void OnStringSought(const CString& strText, int nIndex) override;

    OrderedJson JudgeDeviceText(const SNode& node, const SDeviceTextData& text) const;
    OrderedJson JudgePairs(const SNode& node) const;

    const CHappened& m_happened;
    std::map<const VEKProperty*, SVerdict> m_verdicts;

    // Of the call between Begin and End.
    CHappened::Mark m_begin{};
    CStringArray m_arValue; ///< of the object that was split
    int m_nSought = 0;      ///< keys looked for
    int m_nLastFound = -1;  ///< index of the last one
};
