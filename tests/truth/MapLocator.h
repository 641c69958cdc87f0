#pragma once

#include "truth/LongVector.h"

#include <lumivane/visibility/VisibleMap.h>

#include <array>
#include <cstddef>
#include <vector>

namespace Lumivane::Truth {

/// Says in which cell of a map a direction lies, from the map's edges alone: on an arc that leads
/// away from the direction, the side of the first edge that is crossed. The sphere is divided like
/// a cube into squares of squares, so that few edges are asked.
///
/// The map must outlive it.
class MapLocator {
 public:
  explicit MapLocator(const Visibility::VisibleMap& newMap);

  /// The cell; -1 outside the field.
  int cellOf(const Visibility::Vector& direction) const;
  /// The same from all edges, along an arc in another direction.
  int cellOfAll(const Visibility::Vector& direction) const;
  /// The angle to the nearest edge; pi if there is none.
  double angleToEdge(const Visibility::Vector& direction) const;

 private:
  struct Arc {
    LongVector from;
    LongVector to;
    LongVector pole;  ///< of length 1; directions left of the arc as the eye sees it are below it
  };
  struct Square {
    std::array<double, 4> bounds{};  ///< in the plane of the face: least and greatest u, then v
    int face = 0;
    int children = -1;       ///< the first of four squares
    int centreCell = -1;     ///< where the middle lies
    LongVector centre;       ///< a direction near the middle
    std::vector<int> edges;  ///< that may meet the square; empty for inner squares
  };

  LongVector onFace(int face, double u, double v) const;
  int firstCrossed(const LongVector& from, const LongVector& to, const std::vector<int>& among,
                   int otherwise) const;
  bool mayMeet(const Square& square, const Arc& arc) const;
  void divide(std::size_t square, int depth);

  const Visibility::VisibleMap& map;
  std::vector<Arc> arcs;
  std::vector<int> all;
  std::vector<Square> squares;
  std::array<LongVector, 3> axes;
  int onlyCell = -1;
};

}  // namespace Lumivane::Truth
