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

  /// The point of the picture that lies there in the sweep's frame.
  static Kernel::Vec2 picturePoint(Kernel::Vec2 sweep);

  /// What the straight piece of an edge from height y0 up to y1 adds to what lies left of it.
  /// Summed along a closed outline it is what the outline encloses; a single one means nothing.
  Content line(const SweepEdge& edge, double y0, double y1) const;

  /// The same for the great circle's arc from the edge's lower to its upper end.
  Content arc(const SweepEdge& edge) const;

  double wholeArea() const;
  /// Whether an area of the picture is pi times a view factor; else that is summed up, too.
  bool areasAreViewFactors() const;
  Content whole() const;

 private:
  Kernel::Vec2 angles(Kernel::Vec2 sweep) const;
  Content discArc(const SweepEdge& edge) const;
  Content bandArc(const SweepEdge& edge) const;

  Algorithm::ProjectionType type;
};

}  // namespace Lumivane::Measure
