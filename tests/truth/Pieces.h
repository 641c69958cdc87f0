#pragma once

#include "truth/LongVector.h"

#include <lumivane/visibility/PolygonScene.h>

#include <cstddef>
#include <vector>

namespace Lumivane::Truth {

/// The tolerances of what is seen, as `Visibility::IndexOptions` has them.
struct Tolerances {
  double flatness = 1e-4;  ///< part of an outline's size that a corner may be off its plane
  double coplanar = 1e-7;  ///< part of the larger size within which two outlines are one layer
  double drift = 1e-6;     ///< part of its size that a member may be off the layer's first plane
};

/// A flat part of the scene: an outline, or a triangle of one that is not flat.
struct Piece {
  std::size_t outline = 0;
  std::vector<int> corners;  ///< positions in the scene's points
  LongVector normal;         ///< unit; the eye sees the piece if it lies on the other side
  LongVector middle;         ///< mean of the corners
  LongVector across;         ///< a unit vector in the plane
  Real size = 0.0L;          ///< greatest distance between two corners
  Real deviation = 0.0L;     ///< greatest distance of a corner from the plane
  bool sliver = false;       ///< whether the normal hangs on small differences
  int layer = -1;            ///< pieces of one layer have the same number
};

/// What an outline list becomes before anybody looks at it.
struct Pieces {
  std::vector<Piece> list;
  std::size_t dropped = 0;       ///< outlines without a normal
  std::size_t triangulated = 0;  ///< outlines that are not flat
  std::size_t layers = 0;        ///< layers of two or more outlines
  /// Outlines whose flatness hangs on what is meant by their size.
  std::size_t nearlyFlat = 0;
};

/// Pieces of a scene by the rules that the engine has, in code of its own and wide arithmetic.
Pieces piecesOf(const Visibility::PolygonScene& scene, const Tolerances& tolerances);

/// The triangles of an outline, as positions in it: always the ear with the largest least angle,
/// of equal ones that with the lowest number.
std::vector<std::vector<int>> clipEars(const std::vector<LongVector>& corners,
                                       const LongVector& normal);

}  // namespace Lumivane::Truth
