#pragma once

#include "Csv.h"

#include <cstddef>
#include <string>
#include <vector>

namespace Lumivane::Host {

/// A table of views as a file of numpy's format .npy: an array of doubles with a row for each view,
/// which has 3 numbers (the eye), 6 (eye and forward) or 9 (eye, forward and up).
class NpyRows {
 public:
  /// Whether a file is one, by its first bytes or its name.
  static bool isNpy(const std::string& bytes, const std::string& file);

  /// Reads the header. Borrows the file's bytes. \throws HostError that names the file if it is no
  /// such array, or not whole
  NpyRows(const std::string& theBytes, const std::string& file);

  std::size_t size() const { return rows; }
  /// The columns of a table in text with the same views: "eye_x" and so on.
  std::vector<std::string> heading() const;
  /// The fields of a row, from 0, in such a table: each number with the fewest digits that give all
  /// its bits. Sets CsvRecord::line to its number from 1.
  void read(std::size_t row, CsvRecord& record) const;

 private:
  const std::string& bytes;
  std::size_t rows = 0;
  std::size_t columns = 0;
  std::size_t start = 0;  // of the numbers
};

}  // namespace Lumivane::Host
