// An event against an Open Sound Control message of the same content.
#pragma once

#include <memory>
#include <span>

#include "Comparison.h"

/// Firing an event of a node, without its log line, against an Open Sound Control message with as many arguments that
/// is written and dispatched by liblo. Made anew for measuring; holds on to the host.
class COscComparison {
public:
    explicit COscComparison(const CBenchHost& host);
    ~COscComparison();

    COscComparison(const COscComparison&) = delete;
    COscComparison& operator=(const COscComparison&) = delete;

    std::span<const Comparison> All() const { return {&m_comparison, 1}; }

private:
    struct SSides;

    std::unique_ptr<SSides> m_pSides;
    Comparison m_comparison;
};
