// The scene that the host plays: clips with their objects, nodes with their graph nodes, and links between them.
#pragma once

#include <boost/core/noncopyable.hpp>
#include <list>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "host/Clip.h"
#include "host/NodeBase.h"
#include "scene/Document.h"

struct SNode;

/// What a pin carries, by its type and control.
enum class EPinKind { Event, Integer, Float, Other };

EPinKind KindOf(const VEKParam& pin);

/// What a link does.
enum class ELinkKind {
    Event,   ///< firing the output triggers the input
    Copy,    ///< the output's value is copied to the input
    Rounded, ///< the same, and the input's integer becomes the output's float, rounded
};

/// One link of the graph: an output pin of one node, an input of another (or the same) node.
struct SLink {
    SNode* pFrom;
    unsigned nOutput;
    SNode* pTo;
    unsigned nInput;
    ELinkKind nKind;
    unsigned long long nOrder; ///< place in the order in which links were made

    bool operator==(const SLink&) const = default;
};

/// Pins by their ids.
using PinKinds = std::map<unsigned, EPinKind>;

/// What came of a node since it was made or its counters were reset, for people.
struct SNodeCounts {
    unsigned long long nFired = 0;                                ///< event outputs
    unsigned long long nReceived = 0;                             ///< events that it took
    unsigned long long nMatched = 0;                              ///< texts that it took
    unsigned long long nRejected = 0;                             ///< texts for it that it refused
    unsigned long long nSent = 0;                                 ///< items that it handed to devices
    unsigned long long nDropped = 0;                              ///< of these, items that waited too long
    std::vector<std::pair<unsigned, unsigned long long>> outputs; ///< how often each fired, of those that did
};

/// One node of the scene. The module's object belongs to the scene until it is handed to operation 3.
struct SNode {
    // What each frame looks at lies together.
    P_ExtDevIOProcess* pNode;
    std::unique_ptr<SGraphNode> pGraphNode;
    std::vector<SLink> arIncoming;       ///< links into this node, in the order in which they were made
    std::vector<unsigned> arTriggered;   ///< inputs that the next evaluation finds triggered, each once
    bool bActed = false;                 ///< something was counted since NoteActed
    bool bGotEvent = false;              ///< it took an event and wasn't evaluated since
    bool bCycleTold = false;             ///< that it triggers itself
    bool bEventWindow;                   ///< the node was given the event window
    bool bNotifyWindow;                  ///< the node was given the notification window
    unsigned long long nVisitedBy = 0;   ///< the call of CSession::Follow that looked at it last
    unsigned long long nEvaluatedBy = 0; ///< and that evaluated it last
    unsigned long long nOrder;           ///< place in the order of creation
    std::string strHandle;
    GUID guidType;
    PinKinds ownInputs;            ///< the inputs that the node makes by itself, also when they were dropped since
    PinKinds ownOutputs;           ///< the outputs, likewise
    std::vector<SLink> arOutgoing; ///< links out of this node, in the order in which they were made
    std::optional<SPlace> place;   ///< on the canvas; none: wherever the viewer puts it
    SParamSets left;               ///< the parameters as NoteParameters last found them
    SNodeCounts counts;
    bool bCountsTold = false;            ///< TakeChangedCounts has returned the present counts
    std::optional<std::uint64_t> tActed; ///< when NoteActed last found something counted

    void Count(unsigned long long SNodeCounts::*pCount, unsigned long long nMore = 1) {
        counts.*pCount += nMore;
        bCountsTold = false;
        bActed = true;
    }

    /// Called each frame: keeps when something was counted last. By the session's clock.
    void NoteActed(std::uint64_t tNow) {
        if (std::exchange(bActed, false)) {
            tActed = tNow;
        }
    }

    /// An event output fired; none: which one isn't known.
    void CountFired(std::optional<int> output);

    /// The kind of a pin that is there, or was dropped and may come back; none for any other.
    std::optional<EPinKind> InputKind(unsigned nInput) const;
    std::optional<EPinKind> OutputKind(unsigned nOutput) const;
};

/// Nodes in the order of their creation. Their places in memory stay.
using NodeList = std::vector<std::unique_ptr<SNode>>;

/// Call a function, which evaluates the node, for each of these nodes, and prefetch those further on: a large scene
/// doesn't fit into the processor's caches.
template <typename Nodes, typename Function>
void ForEachNode(const Nodes& nodes, Function function) {
    constexpr size_t AHEAD = 4;
    for (size_t i = 0; i < nodes.size(); ++i) {
        if (i + 3 * AHEAD < nodes.size()) { // one step at a time: each follows pointers that the step before it fetched
            __builtin_prefetch(std::to_address(nodes[i + 3 * AHEAD]));
            const SNode& later = *nodes[i + 2 * AHEAD];
            __builtin_prefetch(later.pNode);
            __builtin_prefetch(later.pGraphNode.get());
            const SNode& next = *nodes[i + AHEAD];
            __builtin_prefetch(next.pNode->m_lstParamGroup.GetHeadPosition());
            __builtin_prefetch(next.pGraphNode->m_lstInputGroup.GetHeadPosition());
            __builtin_prefetch(next.pGraphNode->m_lstOutputGroup.GetHeadPosition());
        }
        function(*nodes[i]);
    }
}

class CScene {
public:
    const NodeList& Nodes() const { return m_nodes; }

    /// Takes the node in as the last one. Its handle must be free.
    SNode& Add(SNode node);

    /// Takes the node and its links out. Frees the graph node, not the module's object.
    void Remove(SNode& node);

    /// Give nodes other places in the order of creation, which no other node may have.
    void SetOrders(const std::vector<std::pair<SNode*, unsigned long long>>& orders);

    /// The node, null for an unknown one. The pointers are compared only, never followed.
    SNode* Find(const std::string& strHandle);
    SNode* Find(const VEKProperty* pNode);
    SNode* Find(const SGraphNode* pGraphNode);

    const std::list<VEKClip>& Clips() const { return m_clips; }

    /// The clip of that name, null if there is none.
    VEKClip* FindClip(const CString& strName);

    /// The clip behind a pointer that is compared only; null when it is none of this scene.
    const VEKClip* FindClip(const void* pClip) const;

    /// The clip of that name, made if there is none.
    VEKClip& Clip(const CString& strName);

    /// Takes away the clip made last. No node may belong to it.
    void RemoveLastClip() { m_clips.pop_back(); }

    /// Make the clips these, in this order: existing ones stay, new ones are empty. No node may belong to a clip that
    /// isn't among them.
    void SetClips(const std::vector<CString>& names);

    /// Make a link; the same link twice is one. The pins must have a kind. Only with bRounding does a float output
    /// bring an integer input a value.
    void Link(SNode& from, unsigned nOutput, SNode& to, unsigned nInput, bool bRounding);

    /// Make a link that was there before, in its place among the others.
    void Relink(const SLink& link);

    /// Take a link away; false when there is none.
    bool Unlink(SNode& from, unsigned nOutput, SNode& to, unsigned nInput);

    /// The texts on the canvas.
    Notes& CanvasNotes() { return m_notes; }

    /// Trigger an input for its node's next evaluation.
    void Trigger(SNode& node, unsigned nInput);

    /// A node fired an event output: the inputs linked to it are triggered, in the order of the links.
    void Fire(SNode& node, unsigned nOutput);

    /// The nodes triggered since the last call, in order. One may be named twice, or evaluated since.
    std::vector<SNode*> TakeTriggered() { return std::exchange(m_triggered, {}); }

private:
    std::list<VEKClip> m_clips;
    NodeList m_nodes;
    std::unordered_map<std::string, SNode*> m_byHandle;
    std::unordered_map<const VEKProperty*, SNode*> m_byNode;
    std::unordered_map<const SGraphNode*, SNode*> m_byGraphNode;
    std::vector<SNode*> m_triggered;
    unsigned long long m_nNextOrder = 0;
    unsigned long long m_nNextLink = 0;
    Notes m_notes;
};

/// Applies the value links into a node, and sets its triggers until the destructor puts those inputs' values back.
class CEvaluationInputs : boost::noncopyable {
public:
    explicit CEvaluationInputs(SNode& node);
    ~CEvaluationInputs();

private:
    SNode& m_node;
    std::vector<std::pair<unsigned, int>> m_arRestored; ///< input and its value before
};
