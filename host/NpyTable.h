#pragma once

#include <string>
#include <vector>

namespace Lumivane::Host {

/// A table as the file of an array of records (numpy's format .npy, version 1.0 or 2.0), one field
/// for each column: numbers as doubles, NaN where a cell is empty, and columns that hold anything
/// else as texts of the longest one's length.
/// \param heading  a line of CSV, and \param rows  one each. \throws HostError if a row has other
///                 fields than the heading
std::string npyOfTable(const std::string& heading, const std::vector<std::string>& rows);

}  // namespace Lumivane::Host
