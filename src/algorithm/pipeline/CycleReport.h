#pragma once

#include "kernel/Order.h"

#include <string>
#include <vector>

/// What a topological sort reports of a cycle.
namespace Lumivane::Algorithm {

/// Where the sort of the objects reports to, in the working directory; a graph does the same.
constexpr const char* CycleReportFile = "log_sort.txt";

/// Prints the message, sorts the remaining edges by the numbers that their ends are named after,
/// and writes the report. A file that cannot be written is passed over in silence.
///
/// \param fileName  none if empty: then there is no report
/// \param names     of the nodes, by position
/// \throws std::invalid_argument, std::out_of_range if a name that the sort compares is no number
void reportCycle(const std::string& fileName, const std::vector<std::string>& names,
                 Kernel::TopologicalOrder& order);

}  // namespace Lumivane::Algorithm
