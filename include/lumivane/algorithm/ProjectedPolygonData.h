#pragma once

#include <lumivane/export.h>

#include <vector>

namespace Lumivane::Algorithm {

class Bounds2D;

/// A polygon of the picture with its bounds, as the depth sort works on it.
///
/// Owns neither: copies share both, and the destructor does nothing.
class LUMIVANE_EXPORT ProjectedPolygonData {
 public:
  /// Points of 2 coordinates.
  using Points = std::vector<std::vector<double>>;

  ProjectedPolygonData() = default;  ///< Without points and bounds.

  Points* getPoints() const { return points; }  ///< Borrowed; may be null.
  /// Stores the pointer and frees nothing. If it is not null and the list is not empty, `bounds`
  /// becomes a new object around the points; otherwise it stays as it was.
  ///
  /// \param value  points of 2 coordinates, a ring whose first point is not repeated; borrowed
  /// \throws std::out_of_range "invalid vector subscript" if a point has fewer than 2 coordinates
  void setPoints(Points* value);

  Bounds2D* getBounds() const { return bounds; }  ///< Around the points; null before there are any.
  void setBounds(Bounds2D* value) { bounds = value; }  ///< Stores it; frees nothing.

 private:
  Points* points = nullptr;
  Bounds2D* bounds = nullptr;
};

}  // namespace Lumivane::Algorithm
