#pragma once

#include <lumivane/session/ViewSettings.h>

#include <cmath>
#include <cstddef>
#include <string>

namespace Lumivane::Host {

/// Where the coordinates of a scene lie in those of the file that it was read from.
struct FilePlace {
  Session::Vector shift{};      ///< was added to every point, after turning and scaling
  double scale = 1.0;           ///< factor of all lengths
  bool isTurned = false;        ///< (x, y, z) of the file became (x, -z, y)
  std::string referenceSystem;  ///< of the file's coordinates, as the file names it; or empty

  /// A point of the scene in the file's coordinates, without what the shift leaves behind the ninth
  /// decimal.
  Session::Vector inFile(const Session::Vector& point) const {
    Session::Vector p{};
    for (std::size_t axis = 0; axis < p.size(); ++axis)
      p[axis] = std::round((point[axis] - shift[axis]) / scale * 1e9) / 1e9;
    return isTurned ? Session::Vector{p[0], p[2], -p[1]} : p;
  }
};

}  // namespace Lumivane::Host
