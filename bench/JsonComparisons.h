// The device JSON receive node against the bare parse of the same text.
#pragma once

#include <memory>
#include <span>
#include <string>
#include <vector>

#include "Comparison.h"

/// Made anew for measuring; holds on to the host.
class CJsonComparisons {
public:
    /// Throws when a node doesn't do what is to be measured.
    explicit CJsonComparisons(const CBenchHost& host);
    ~CJsonComparisons();

    CJsonComparisons(const CJsonComparisons&) = delete;
    CJsonComparisons& operator=(const CJsonComparisons&) = delete;

    std::span<const Comparison> All() const { return m_comparisons; }

private:
    class CReceiver;

    std::vector<std::unique_ptr<CReceiver>> m_receivers;
    std::vector<Comparison> m_comparisons;
};
