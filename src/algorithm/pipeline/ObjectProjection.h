#pragma once

#include "algorithm/pipeline/RegionProjector.h"
#include "algorithm/pipeline/ShotBudget.h"
#include "kernel/Vec.h"

#include <lumivane/algorithm/ProjectionType.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Lumivane::Base {
class View;
}
namespace Lumivane::Geometry {
class EdgeStartPoint2d;
class Points3d;
}  // namespace Lumivane::Geometry
namespace Lumivane::Scene {
class Object;
}

/// What the passes over a scene's objects hand to each other, as plain values.
namespace Lumivane::Algorithm {

/// A projected polygon, and those of each region of an object, as the model hands them out.
using EdgeStartPolygon = std::vector<Geometry::EdgeStartPoint2d*>;
using EdgeStartRegions = std::vector<std::vector<EdgeStartPolygon>>;

/// The visible polygons of one region. One that is not kept leaves an empty one in its place.
using PlainPolygons = std::vector<std::vector<Kernel::Vec3>>;

/// The polygons of each region of an object on the plane.
using PlaneRegions = std::vector<std::vector<PlanePolygon>>;

/// What the way onto the plane depends on besides the object.
struct ProjectionSetting {
  ProjectionType type;
  Base::View* view;
  Geometry::Points3d* points;
  double precision;
};

/// How the regions of an object came onto the plane, so that they can be carried there once more.
/// That takes little memory; the points themselves are the largest part of a shot.
struct PlaneRecipe {
  struct Region {
    std::int64_t pieceCount = 0;  ///< of each edge of all its polygons
    std::vector<Kernel::DockingSegment> segments;
  };

  RegionFrame frame;  ///< of all regions, without docking edges
  std::vector<Region> regions;

  /// The same regions to the bit. \param visible  the polygons that they were made of
  PlaneRegions carriedOut(const std::vector<PlainPolygons>& visible) const;
};

/// The regions of an object on the plane, and how they came there.
struct ObjectProjection {
  PlaneRegions plane;
  PlaneRecipe recipe;
  std::int64_t taken = 0;   ///< points, from the budget
  std::int64_t needed = 0;  ///< with this much in the budget, it has no effect on the result

  /// Adds the next regions of the same object behind its own.
  void append(ObjectProjection&& more);
};

/// Projects the visible polygons of an object, and settles how finely each region is split.
/// Polygons of an object without a list of regions have no docking edges.
///
/// \param budget       what the points of the regions are taken from
/// \param firstRegion  the position of the region that the first polygons are of
/// \throws as ShotCreator::projectPoints and, if the budget has too little, std::length_error that
///         names object, region and limit
ObjectProjection projectRegions(Scene::Object& object, const std::vector<PlainPolygons>& visible,
                                const ProjectionSetting& setting, ShotBudget& budget,
                                std::size_t firstRegion = 0);

/// The same as the lists of pointers that an object hands out; all owned by the caller.
EdgeStartRegions* edgeStartPoints(const PlaneRegions& regions);
EdgeStartPolygon edgeStartPoints(const PlanePolygon& polygon);

}  // namespace Lumivane::Algorithm
