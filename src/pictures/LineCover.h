#pragma once

#include "kernel/Vec.h"

#include <cstdint>
#include <unordered_map>
#include <utility>
#include <vector>

namespace Lumivane::Pictures {

/// Lines that are drawn already, asked for the parts of other lines that do not lie on them: so
/// that no line is drawn twice. Lines are arcs between directions, or straight in the plane z = 1
/// of parallel projections.
class LineCover {
 public:
  explicit LineCover(bool isFlat) : flat(isFlat) {}

  /// Makes the space in which lines lie large enough; before all others are called.
  void extend(Kernel::Vec3 a, Kernel::Vec3 b);
  void add(Kernel::Vec3 a, Kernel::Vec3 b);
  /// The parts of a line that lie on none of those that were added.
  std::vector<std::pair<Kernel::Vec3, Kernel::Vec3>> uncovered(Kernel::Vec3 a, Kernel::Vec3 b);

 private:
  struct Kept {
    Kernel::Vec3 a;
    Kernel::Vec3 b;
    Kernel::Vec3 normal;  // a x b
    double length;        // of the normal
  };
  using Interval = std::pair<double, double>;

  Kernel::Vec3 placed(Kernel::Vec3 p) const;
  template <class Visit>
  void forCells(Kernel::Vec3 a, Kernel::Vec3 b, Visit visit) const;
  void addCovered(const Kept& line, Kernel::Vec3 a, Kernel::Vec3 b, Kernel::Vec3 normal);

  bool flat;
  double low[2] = {1e300, 1e300};  // of the plane
  double high[2] = {-1e300, -1e300};
  std::vector<Kept> lines;
  std::unordered_map<std::uint64_t, std::vector<int>> cells;
  std::vector<int> lastAsked;  // of each line, the number of the question it was last looked at for
  int question = 0;
  std::vector<Interval> covered;  // scratch
};

}  // namespace Lumivane::Pictures
