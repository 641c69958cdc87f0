#pragma once

#include "RowJournal.h"

#include <lumivane/measure/FaceFactors.h>

#include <cstdint>
#include <string>
#include <vector>

namespace Lumivane::Host {

/// The rows of a matrix of view factors that have been made.
class FactorJournal {
 public:
  /// \throws HostError
  FactorJournal(const std::string& path, std::uint64_t key);

  std::vector<Measure::FactorRow> takeRows() { return std::move(rows); }
  void append(const Measure::FactorRow& row);  ///< \throws HostError
  void remove() { journal.remove(); }          ///< When the output has been written.

 private:
  RowJournal journal;
  std::vector<Measure::FactorRow> rows;
};

}  // namespace Lumivane::Host
