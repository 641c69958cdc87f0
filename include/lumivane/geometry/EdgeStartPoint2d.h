#pragma once

#include <lumivane/export.h>
#include <lumivane/geometry/Point2d.h>

namespace Lumivane::Geometry {

/// A vertex of a polygon that also says whether the edge from it to the next vertex is to be drawn.
/// Its file form is that of a Point2d, so the flag never reaches a file. Copies keep the flag.
class LUMIVANE_EXPORT EdgeStartPoint2d : public Point2d {
 public:
  EdgeStartPoint2d() = default;  ///< The origin, its edge drawn.
  /// Stores the coordinates as given; the edge is drawn.
  EdgeStartPoint2d(double xValue, double yValue) : Point2d(xValue, yValue) {}

  bool getHasEdge() const { return hasEdge; }       ///< Whether the edge starting here is drawn.
  void setHasEdge(bool value) { hasEdge = value; }  ///< Says whether the edge is drawn.

 private:
  bool hasEdge = true;
};

}  // namespace Lumivane::Geometry
