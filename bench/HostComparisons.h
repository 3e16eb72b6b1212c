// The reference host around its nodes: frames, events and requests in scenes of many sizes.
#pragma once

#include <memory>
#include <span>
#include <vector>

#include "Comparison.h"

/// A session of its own, in the application folder. There is one host at a time in a process.
class CHostComparisons {
public:
    /// Throws when the session or a node can't be had.
    CHostComparisons();
    ~CHostComparisons();

    CHostComparisons(const CHostComparisons&) = delete;
    CHostComparisons& operator=(const CHostComparisons&) = delete;

    /// A scene of as many nodes, the same number of each type, and what is compared in it. Ends the one before.
    std::span<const Comparison> ForScene(size_t nNodes);

    static constexpr size_t SIZES[] = {13, 130, 1300, 13000};

private:
    class CScene;

    std::unique_ptr<CScene> m_pScene;
    std::vector<Comparison> m_comparisons;
};
