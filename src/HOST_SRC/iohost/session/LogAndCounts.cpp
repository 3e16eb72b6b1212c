// What the session keeps for people to look at: the last lines of its log, and what became of each node.
#include "session/Session.h"

Result CSession::On(const SLogCommand& command) {
    return SLogLines{m_pHost->Activity().Lines().Behind(command.nAfter)};
}

Result CSession::On(const SCountersCommand& /*command*/) {
    SCounters counters;
    for (const auto& [nOrder, node] : Scene().Nodes()) {
        counters.nodes.emplace_back(node.strHandle, node.counts);
    }
    return counters;
}

void CSession::On(const SResetCountersCommand& command) {
    for (SNode* pNode : NodeOrAll(command.handle)) {
        pNode->counts = {};
        pNode->bCountsTold = false;
    }
}

SCounters CSession::TakeChangedCounts() {
    SCounters changed;
    const std::uint64_t tNow = m_clock.Now();
    for (auto& [nOrder, node] : Scene().Nodes()) {
        node.NoteActed(tNow);
        if (!std::exchange(node.bCountsTold, true)) {
            changed.nodes.emplace_back(node.strHandle, node.counts);
            if (node.tActed) {
                changed.idle.emplace_back(node.strHandle, m_clock.Since(*node.tActed));
            }
        }
    }
    return changed;
}

void CSession::ForgetToldCounts() {
    for (auto& [nOrder, node] : Scene().Nodes()) {
        node.bCountsTold = false;
    }
}

void CSession::OnDropped(const SDroppedItems& dropped) {
    if (SNode* pNode = dropped.sender ? Scene().Find(*dropped.sender) : nullptr) {
        pNode->Count(&SNodeCounts::nDropped, dropped.nItems);
    }
    for (ISessionObserver* pObserver : m_observers) {
        pObserver->OnDropped(dropped);
    }
}
