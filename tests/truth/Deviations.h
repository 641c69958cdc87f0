#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace Lumivane::Truth {

/// Many deviations from what was expected, each in standard deviations, against the normal
/// distribution that they have if nothing is wrong.
class Deviations {
 public:
  void add(double by) { all.push_back(by); }
  std::size_t count() const { return all.size(); }
  /// How many are beyond some standard deviations, to either side.
  std::size_t beyond(double limit) const;
  double greatest() const;  ///< by magnitude; 0 if there are none
  double mean() const;
  double spread() const;  ///< the standard deviation; 1 if nothing is wrong

  /// A table of what was found and what is expected of as many normal deviates.
  std::string text() const;

 private:
  std::vector<double> all;
};

/// The part of normal deviates that are beyond some standard deviations, to either side.
double normalPartBeyond(double limit);

/// What the greatest magnitude of some normal deviates exceeds with a probability.
double normalMaximum(std::size_t count, double probability = 0.5);

}  // namespace Lumivane::Truth
