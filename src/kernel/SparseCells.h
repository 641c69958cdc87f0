#pragma once

#include "kernel/Classify.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace Lumivane::Kernel {

/// One cell for every pair of faces, as a square matrix of which the cells [i][j] with i > j count.
/// Most pairs are apart, so only the others take memory.
///
/// Rows are made of zeros and filled once, from the top down and each from the left; a filled row
/// reads "apart" left of the diagonal wherever nothing was put.
class SparseCells {
 public:
  struct Entry {
    std::uint32_t column;
    std::int32_t cell;
  };

  /// The entries of a row, by column.
  struct Row {
    const Entry* first;
    const Entry* last;
    const Entry* begin() const { return first; }
    const Entry* end() const { return last; }
  };

  void addRows(std::size_t count) { rows += count; }
  std::size_t rowCount() const { return rows; }

  /// Starts over with the first row.
  void restart() {
    starts.assign(1, 0);
    entries.clear();
  }

  /// Puts a cell into the row that is being filled; what is apart need not be put.
  void put(std::size_t column, int cell) {
    if (cell != Cell::Apart) entries.push_back({static_cast<std::uint32_t>(column), cell});
  }

  /// How many cells were put and are not apart.
  std::size_t entryCount() const { return entries.size(); }

  void endRow() { starts.push_back(entries.size()); }

  /// What was put into a row, except what is apart; nothing for a row that is not filled.
  Row row(std::size_t i) const {
    if (i + 1 >= starts.size()) return {nullptr, nullptr};
    return {entries.data() + starts[i], entries.data() + starts[i + 1]};
  }

  int at(std::size_t i, std::size_t j) const {
    if (i + 1 >= starts.size() || j >= i) return 0;
    const Row cells = row(i);
    const Entry* const found = std::lower_bound(
        cells.begin(), cells.end(), j,
        [](const Entry& entry, std::size_t column) { return entry.column < column; });
    return found != cells.end() && found->column == j ? found->cell : Cell::Apart;
  }

 private:
  std::size_t rows = 0;
  std::vector<std::size_t> starts{0};  // of the filled rows, and the end of the last
  std::vector<Entry> entries;
};

}  // namespace Lumivane::Kernel
