#pragma once

#include "pictures/SvgText.h"

#include <lumivane/pictures/Drawing.h>

#include <cstddef>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace Lumivane::Pictures {

/// Path data of a drawing that has arcs in place of the chords which stand for them.
class SvgArcs {
 public:
  /// \param svgNumbers  is borrowed
  SvgArcs(const std::vector<Drawing::Arc>& arcs, const SvgNumbers& svgNumbers);

  std::string data(const std::vector<Drawing::Line>& lines, bool closed) const;

 private:
  void add(const Drawing::Line& line, bool closed, std::string& data) const;
  template <class At>
  const Drawing::Arc* arcAt(const At& at, std::size_t first, std::size_t chords) const;
  std::string place(const Drawing::Point& p) const;

  const SvgNumbers& numbers;
  std::multimap<std::pair<double, double>, Drawing::Arc> known;  // by their second point
};

}  // namespace Lumivane::Pictures
