#pragma once

#include "measure/ContourRule.h"
#include "measure/Outlines.h"
#include "measure/TileSweep.h"

#include <vector>

namespace Lumivane::Measure {

/// What is visible of each of `regions` regions whose outlines are `edges`, region r covering all
/// of lower number. Entry 0 of the sums is what stays open of the whole picture.
Totals visibleTotals(const std::vector<SweepEdge>& edges, size_t regions, const ContourRule& rule);

}  // namespace Lumivane::Measure
