// The steps by which a scene came to be what it is, to be undone and redone.
#pragma once

#include <deque>
#include <optional>
#include <string>
#include <vector>

#include "session/ScenePart.h"

/// A step, for people and for programs that tell it in other words.
struct SStep {
    std::string strName;        ///< "Delete Mouse 1"
    std::string strOp;          ///< the request that it was
    std::string strOf;          ///< what it was about, if that was one thing
    std::string strParam = {};  ///< what a node's panel calls the parameter that it changed
    std::string strSeries = {}; ///< not empty: it may go on with a step of the same series
    long long nTimeMs = 0;      ///< when it was taken, since 1970
};

/// Where the scene is kept.
struct SSceneFile {
    std::string strName;                          ///< empty: nowhere yet
    bool bUnsaved = false;                        ///< it was changed since
    std::optional<unsigned long long> saved = {}; ///< number of the state that is kept there
};

class CHistory {
public:
    static constexpr size_t MOST_STEPS = 200;
    static constexpr size_t MOST_BYTES = size_t{256} << 20; ///< of all steps together, unless one has more

    /// Add a step that was taken. What could be redone is forgotten, and beyond the limits the oldest steps are, too.
    /// One of the same series as the last step, and of the same nodes and notes, becomes one with it.
    void Add(SStep step, SScenePart before, SScenePart after);

    /// The last step loaded another scene from this file; empty: from none. bUnsaved: the file has an older version.
    void NoteOpened(const std::string& strFile, bool bUnsaved);

    /// The history begins with the scene as it is now, out of that file.
    void Begin(const std::string& strFile);

    /// The file has the scene as it is now.
    void NoteSaved(const std::string& strFile);

    /// The last step that is done, and the first that was undone; null for none.
    const SStep* ToUndo() const { return m_nDone > 0 ? &m_entries[m_nDone - 1].step : nullptr; }
    const SStep* ToRedo() const { return m_nDone < m_entries.size() ? &m_entries[m_nDone].step : nullptr; }

    /// Undo the last step, or with bForth redo the next; there must be one. If that fails, no step fits the scene any
    /// more: all are forgotten.
    SSceneChange Move(bool bForth, CHost& host, CPeers& peers);

    std::vector<SStep> Steps() const;

    /// Numbers of the scene's states before the first step and after each.
    const std::vector<unsigned long long>& States() const { return m_states; }
    size_t Done() const { return m_nDone; }

    /// Forget all steps: the scene isn't what they left.
    void Clear();

    /// Number of the scene's present state. States that undoing and redoing come back to have the same number.
    unsigned long long State() const { return m_states[m_nDone]; }

    SSceneFile File() const {
        return {m_kept.strFile, m_kept.state != State(), m_kept.strFile.empty() ? std::nullopt : m_kept.state};
    }

private:
    /// A file, and which state of the scene it has, if it has one of them.
    struct SKept {
        std::string strFile;
        std::optional<unsigned long long> state = 0;
    };

    struct SEntry {
        SStep step;
        SScenePart before;
        SScenePart after;
        size_t nBytes;
        std::optional<SKept> otherKept; ///< of a step that brought another scene: where the other one is kept
    };

    std::deque<SEntry> m_entries;
    size_t m_nDone = 0;
    size_t m_nBytes = 0;                         ///< of all entries
    std::vector<unsigned long long> m_states{0}; ///< before the first entry and after each
    unsigned long long m_nLastState = 0;         ///< the last number given
    SKept m_kept;
};
