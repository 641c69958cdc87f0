#pragma once

#include "algorithm/RegionProjector.h"
#include "kernel/Vec.h"

#include <lumivane/algorithm/ProjectionType.h>
#include <lumivane/algorithm/ShotCreator.h>

#include <memory>
#include <unordered_map>
#include <vector>

/// What the passes over a scene's objects hand to each other, as plain values.
namespace Lumivane::Algorithm {

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

/// Projects the visible polygons of an object, and settles how finely each region is split.
/// Polygons of an object without a list of regions have no docking edges.
///
/// \throws as ShotCreator::projectPoints
PlaneRegions projectRegions(Scene::Object& object, const std::vector<PlainPolygons>& visible,
                            const ProjectionSetting& setting);

/// The same as the lists of pointers that an object hands out; all owned by the caller.
ShotCreator::RegionProjections* edgeStartPoints(const PlaneRegions& regions);

/// What the first pass leaves for the second.
struct ShotCreator::Projections {
  std::unordered_map<const Scene::Object*, std::shared_ptr<const PlaneRegions>> of;
};

}  // namespace Lumivane::Algorithm
