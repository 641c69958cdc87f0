#pragma once

#include "measure/ContourRule.h"
#include "measure/Outlines.h"
#include "measure/TileSweep.h"

#include <vector>

namespace Lumivane::Measure {

/// What is visible of each of `regions` regions whose outlines are `edges`, region r covering all
/// of lower number. Entry 0 of the sums is what stays open of the whole picture.
Totals visibleTotals(const std::vector<SweepEdge>& edges, size_t regions, const ContourRule& rule);

/// How much of the picture two regions of different sets share; 0 is what a set leaves open.
struct SharedArea {
  RegionNumber first = 0;
  RegionNumber second = 0;
  double area = 0.0;
};

/// Lays two sets of regions over each other. The regions up to `lastOfFirst` are the first set, the
/// others the second, each with its own order; their outlines are `edges`.
/// \param stretches  if not null, what bounds the areas: left and right are positions among them
std::vector<SharedArea> sharedAreas(const std::vector<SweepEdge>& edges, RegionNumber lastOfFirst,
                                    const ContourRule& rule,
                                    std::vector<Stretch>* stretches = nullptr);

}  // namespace Lumivane::Measure
