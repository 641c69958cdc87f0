#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

namespace Lumivane::Measure {

/// Sorts what is nearly in order: by insertion as long as there are few.
template <class Value, class Before>
void sortNearlySorted(std::vector<Value>& values, Before before) {
  constexpr std::size_t Few = 60;
  if (values.size() > Few) return std::sort(values.begin(), values.end(), before);
  for (std::size_t i = 1; i < values.size(); ++i) {
    if (!before(values[i], values[i - 1])) continue;
    const Value moved = values[i];
    std::size_t k = i;
    for (; k > 0 && before(moved, values[k - 1]); --k) values[k] = values[k - 1];
    values[k] = moved;
  }
}

}  // namespace Lumivane::Measure
