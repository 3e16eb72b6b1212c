#include "session/History.h"

#include <algorithm>
#include <utility>

#include "base/Clock.h"

void CHistory::Add(SStep step, SScenePart before, SScenePart after) {
    while (m_entries.size() > m_nDone) {
        m_nBytes -= m_entries.back().nBytes;
        m_entries.pop_back();
    }
    m_states.resize(m_nDone + 1);
    if (const SStep* pLast = ToUndo(); pLast != nullptr && !step.strSeries.empty() &&
                                       pLast->strSeries == step.strSeries && m_entries.back().after == before) {
        before = std::move(m_entries.back().before);
        m_nBytes -= m_entries.back().nBytes;
        m_entries.pop_back();
        m_states.pop_back();
        m_nDone = m_entries.size();
        if (before == after) {
            return; // it led back
        }
    }
    step.nTimeMs = TimeOfDayMs();
    m_states.push_back(++m_nLastState);
    const size_t nBytes = BytesOf(before) + BytesOf(after);
    m_entries.push_back({std::move(step), std::move(before), std::move(after), nBytes, {}});
    m_nBytes += nBytes;
    while (m_entries.size() > MOST_STEPS || (m_nBytes > MOST_BYTES && m_entries.size() > 1)) {
        m_nBytes -= m_entries.front().nBytes;
        m_entries.pop_front();
        m_states.erase(m_states.begin());
    }
    m_nDone = m_entries.size();
}

void CHistory::NoteOpened(const std::string& strFile, bool bUnsaved) {
    m_entries.back().otherKept = std::exchange(m_kept, {strFile, bUnsaved ? std::nullopt : std::optional(State())});
}

void CHistory::Begin(const std::string& strFile) {
    Clear();
    NoteSaved(strFile);
}

void CHistory::NoteSaved(const std::string& strFile) {
    m_kept = {strFile, State()};
    for (SEntry& entry : m_entries) {
        if (entry.otherKept && entry.otherKept->strFile == strFile) {
            entry.otherKept->state.reset(); // the file has this scene now
        }
    }
}

SSceneChange CHistory::Move(bool bForth, CHost& host, CPeers& peers) {
    SEntry& entry = m_entries[bForth ? m_nDone : m_nDone - 1];
    const SScenePart& from = bForth ? entry.before : entry.after;
    const SScenePart& to = bForth ? entry.after : entry.before;
    try {
        if (entry.otherKept) { // the two scenes have nothing in common
            host.DestroyAll();
            SScenePart none;
            none.clips.emplace();
            none.devices = from.devices;
            ChangePart(host, peers, none, to);
        } else {
            ChangePart(host, peers, from, to);
        }
    } catch (...) {
        Clear();
        throw;
    }
    m_nDone = bForth ? m_nDone + 1 : m_nDone - 1;
    if (entry.otherKept) {
        std::swap(m_kept, *entry.otherKept);
    }
    SSceneChange change = ChangeBetween(from, to);
    change.bEverything = entry.otherKept.has_value();
    return change;
}

std::vector<SStep> CHistory::Steps() const {
    std::vector<SStep> steps;
    std::ranges::transform(m_entries, std::back_inserter(steps), &SEntry::step);
    return steps;
}

void CHistory::Clear() {
    m_entries.clear();
    m_nDone = 0;
    m_nBytes = 0;
    m_states = {++m_nLastState};
}
