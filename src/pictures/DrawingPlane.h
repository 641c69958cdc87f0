#pragma once

#include "kernel/Vec.h"

#include <lumivane/pictures/DrawingOptions.h>

#include <memory>
#include <vector>

namespace Lumivane::Pictures {

/// Places of the plane, joined by straight pieces.
using PlaneLine = std::vector<Kernel::Vec2>;

/// A rectangle of the plane.
struct PlaneBox {
  Kernel::Vec2 low;
  Kernel::Vec2 high;

  double width() const { return high.x - low.x; }
  double height() const { return high.y - low.y; }
};

/// From directions, as `DrawnLine` has them, to the plane of one projection: cuts what reaches over
/// its border, and turns curves into chords. y is upwards.
class DrawingPlane {
 public:
  explicit DrawingPlane(const PlaneBox& newBox) : theBox(newBox) {}
  DrawingPlane(const DrawingPlane&) = delete;
  DrawingPlane& operator=(const DrawingPlane&) = delete;
  virtual ~DrawingPlane() = default;

  /// The box around the border.
  const PlaneBox& box() const { return theBox; }
  /// How far chords may be off curves, in the plane; before all others are called.
  void setTolerance(double distance) { tolerance = distance; }

  /// Appends the parts of an arc that are within the border.
  virtual void addLine(Kernel::Vec3 a, Kernel::Vec3 b, std::vector<PlaneLine>& lines) const = 0;
  /// Appends closed lines, the even-odd sum of which is a cell: all rings of one cell at once.
  virtual void addCell(const std::vector<std::vector<Kernel::Vec3>>& rings,
                       std::vector<PlaneLine>& lines) const = 0;
  /// The border, closed.
  virtual PlaneLine border() const;

 protected:
  double tolerance = 1e-4;

 private:
  PlaneBox theBox;
};

/// A fisheye of the hemisphere in front: a disc of radius 1.
std::unique_ptr<DrawingPlane> discPlane(DrawingProjection projection);
/// The distance of a direction from the centre of a fisheye's disc, by its angle from forward.
double discRadius(DrawingProjection projection, double angle);
/// Azimuth to the right in units of a quarter turn; equirectangular, or cylindrical to a greatest
/// tangent of elevation.
std::unique_ptr<DrawingPlane> bandPlane(bool isWhole);
std::unique_ptr<DrawingPlane> cylinderPlane(double greatestTangent);
/// (x / z, y / z) within a box: perspectives and parallel projections.
std::unique_ptr<DrawingPlane> straightPlane(const PlaneBox& box);

/// A closed line cut by a box: even-odd, its area in the box.
PlaneLine clippedToBox(const PlaneLine& line, const PlaneBox& box);
/// Appends the parts of an open line that are in a box.
void addClippedToBox(const PlaneLine& line, const PlaneBox& box, std::vector<PlaneLine>& lines);

}  // namespace Lumivane::Pictures
