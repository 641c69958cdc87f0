#pragma once

#include <string>
#include <vector>

namespace Lumivane::Host {

/// The files that a command reads and writes, checked before its work: no output takes the place of
/// an input or of another output, by whatever name.
class OutputNames {
 public:
  explicit OutputNames(std::vector<std::string> inputs);

  /// Adds an output. An empty name is none.
  /// \param option  that names it, for the error
  /// \throws ArgumentError if it is an input or another output
  /// \throws HostError if it cannot be written
  void add(const std::string& option, const std::string& path);

 private:
  std::vector<std::string> taken;
};

/// Texts are kept from being taken for formulas in tables of comma-separated values alone.
/// \param tables   the files of those that are written, or empty
/// \param options  that name them, for the error
/// \throws ArgumentError if `isSafe`, and none of them is such a table
void checkCsvSafe(bool isSafe, const std::vector<std::string>& tables, const std::string& options);

}  // namespace Lumivane::Host
