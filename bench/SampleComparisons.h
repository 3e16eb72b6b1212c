// The samples of a pointer and of a VR controller, which come many times a second.
#pragma once

#include "Comparison.h"

/// The comparisons of the type's samples: none for most types. They hold on to host, type and population. Throws when a
/// node doesn't take the samples, or when the floor leaves other outputs than the node.
std::vector<Comparison> MakeSampleComparisons(const MeasuredType& type, const CBenchHost& host,
                                              const CPopulation& population);
