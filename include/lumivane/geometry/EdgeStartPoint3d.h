#pragma once

#include <lumivane/export.h>
#include <lumivane/geometry/Point3d.h>

namespace Lumivane::Geometry {

/// A vertex of a polygon that also says whether the edge from it to the next vertex is to be drawn.
/// Its file form is that of a Point3d, so the flag never reaches a file. Copies keep the flag.
class LUMIVANE_EXPORT EdgeStartPoint3d : public Point3d {
 public:
  EdgeStartPoint3d() = default;  ///< The origin, its edge drawn.
  /// Stores the coordinates as given; the edge is drawn.
  EdgeStartPoint3d(double xValue, double yValue, double zValue) : Point3d(xValue, yValue, zValue) {}

  bool getHasEdge() const { return hasEdge; }       ///< Whether the edge starting here is drawn.
  void setHasEdge(bool value) { hasEdge = value; }  ///< Says whether the edge is drawn.

 private:
  bool hasEdge = true;
};

}  // namespace Lumivane::Geometry
