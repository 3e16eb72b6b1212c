// What the session keeps for people to look at: the last lines of its log, and what became of each node.
#include "session/Session.h"

Result CSession::On(const SCountersCommand& /*command*/) {
    SCounters counters;
    for (const auto& pNode : Scene().Nodes()) {
        counters.nodes.emplace_back(pNode->strHandle, pNode->counts);
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
    for (const auto& pNode : Scene().Nodes()) {
        pNode->NoteActed(tNow);
        if (!std::exchange(pNode->bCountsTold, true)) {
            changed.nodes.emplace_back(pNode->strHandle, pNode->counts);
            if (pNode->tActed) {
                changed.idle.emplace_back(pNode->strHandle, m_clock.Since(*pNode->tActed));
            }
        }
    }
    return changed;
}

void CSession::ForgetToldCounts() {
    for (const auto& pNode : Scene().Nodes()) {
        pNode->bCountsTold = false;
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
