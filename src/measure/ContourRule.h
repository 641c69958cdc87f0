#pragma once

#include "kernel/Vec.h"

#include <lumivane/algorithm/ProjectionType.h>

namespace Lumivane::Measure {

struct SweepEdge;

/// What the hemisphere's measures of a piece of outline come to.
struct Content {
  double solidAngle = 0.0;
  double viewFactor = 0.0;  ///< of the square picture; in the round one it follows from the area

  Content& operator+=(const Content& other) {
    solidAngle += other.solidAngle;
    viewFactor += other.viewFactor;
    return *this;
  }
  Content& operator-=(const Content& other) {
    solidAngle -= other.solidAngle;
    viewFactor -= other.viewFactor;
    return *this;
  }
};

inline Content operator-(Content a, const Content& b) { return a -= b; }
inline Content operator*(double s, const Content& c) {
  return {s * c.solidAngle, s * c.viewFactor};
}

/// How one of the two pictures lies in the sweep's frame and what its outlines enclose.
///
/// The frame is the picture turned by an odd angle, so that no edge of a sensible picture is level
/// in it: a sweep by level lines never meets a level edge.
class ContourRule {
 public:
  explicit ContourRule(Algorithm::ProjectionType projection) : type(projection) {}

  /// A point of the picture, brought back onto its rim if it lies outside, in the sweep's frame.
  Kernel::Vec2 sweepPoint(Kernel::Vec2 picture) const;

  /// What lies between the straight piece of an edge from height y0 to y1 and the axis x = 0 of the
  /// sweep's frame, both cut off by level lines. Level lines themselves add nothing.
  Content piece(const SweepEdge& edge, double y0, double y1) const;

  /// What lies between the great circle's arc from the edge's lower to its upper end and the
  /// straight edge.
  Content bulge(const SweepEdge& edge) const;

  double wholeArea() const;
  Content whole() const;

 private:
  Content chord(Kernel::Vec2 a, Kernel::Vec2 b) const;
  Kernel::Vec2 angles(Kernel::Vec2 sweep) const;

  Algorithm::ProjectionType type;
};

}  // namespace Lumivane::Measure
