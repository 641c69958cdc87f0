#pragma once

#include <lumivane/measure/FaceFactors.h>

#include <cstdint>
#include <string>
#include <vector>

namespace Lumivane::Host {

/// Rows that have been made, in a file beside the output, so that a run that was ended goes on
/// where it was. Its first line stands for all that rows depend on; each further one is a row. A
/// journal of other things, and a last line without an end, are passed over.
class FactorJournal {
 public:
  /// Reads what is there, and opens the file to append to. \throws HostError
  FactorJournal(const std::string& path, std::uint64_t key);
  FactorJournal(const FactorJournal&) = delete;
  FactorJournal& operator=(const FactorJournal&) = delete;
  ~FactorJournal();

  std::vector<Measure::FactorRow> takeRows() { return std::move(rows); }
  void append(const Measure::FactorRow& row);  ///< \throws HostError
  void remove();                               ///< When the output has been written.

 private:
  std::string path;
  int descriptor = -1;
  std::vector<Measure::FactorRow> rows;
};

}  // namespace Lumivane::Host
