// From visible polygons to polygons on the plane: every region of an object through
// RegionProjector, which works on fixed-size values, with the errors that name object and region.

#include "algorithm/pipeline/ObjectProjection.h"

#include "algorithm/pipeline/RegionProjector.h"
#include "algorithm/pipeline/SceneAccess.h"
#include "utils/Reports.h"
#include "utils/Shapes.h"
#include "utils/StageScope.h"

#include <lumivane/algorithm/ProjectionType.h>
#include <lumivane/base/View.h>
#include <lumivane/cmd/CmdManager.h>
#include <lumivane/geometry/EdgeStartPoint2d.h>
#include <lumivane/geometry/Points3d.h>
#include <lumivane/geometry/Region.h>
#include <lumivane/geometry/Regions.h>
#include <lumivane/scene/Object.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace Lumivane::Algorithm {

using Geometry::EdgeStartPoint2d;
using Kernel::Vec3;

namespace {

// The region that holds the camera is split this many times finer.
constexpr std::int64_t CameraRegionFactor = 300;

std::vector<Vec3> regionPointsOf(Geometry::Region* region, Geometry::Points3d* points) {
  std::vector<Vec3> result;
  if (region == nullptr) return result;
  const std::vector<int>& numbers = numbersOf(region->getPoints());
  result.reserve(numbers.size());
  for (const int number : numbers) result.push_back(scenePoint(points, number));
  return result;
}

// The frame of a view: forward, and the direction to the left of the picture.
Kernel::BackFrame frameOfView(Base::View& view) {
  const Vec3 up = Utils::reported(Kernel::normalise(upOf(view)));
  const Vec3 forward = Utils::reported(Kernel::normalise(forwardOf(view)));
  const Vec3 right = Utils::reported(Kernel::normalise(Kernel::cross(up, forward)));
  return Kernel::backFrame(right, forward);
}

// Whether the eye stands on a point of the edge from `a` to `b`, as near as single precision shows.
bool isOnEdge(Vec3 eye, Vec3 a, Vec3 b) {
  constexpr double rounding = 0x1p-22;
  const Vec3 edge = b - a;
  const double along = Kernel::dot(edge, eye - a) / Kernel::dot(edge, edge);
  const Vec3 nearest = a + (along > 0.0 ? std::min(along, 1.0) : 0.0) * edge;
  const auto reach = [&](double first, double second) {
    return rounding * std::max(std::abs(first), std::abs(second));
  };
  const double most = std::max({reach(a.x, b.x), reach(a.y, b.y), reach(a.z, b.z)});
  return std::abs(nearest.x - eye.x) <= most && std::abs(nearest.y - eye.y) <= most &&
         std::abs(nearest.z - eye.z) <= most;
}

// Where on a polygon's outline the eye stands: "corner 2", "edge 1", numbered from 1, or nothing.
std::string placeOnOutline(Vec3 eye, const std::vector<Vec3>& corners) {
  for (std::size_t i = 0; i < corners.size(); ++i)
    if (isOnEdge(eye, corners[i], corners[i])) return "corner " + std::to_string(i + 1);
  for (std::size_t i = 0; i < corners.size(); ++i)
    if (isOnEdge(eye, corners[i], corners[(i + 1) % corners.size()]))
      return "edge " + std::to_string(i + 1);
  return "";
}

// An edge that the eye stands on spans an angle however finely it is cut.
[[noreturn]] void throwEndlessSplitting(const Scene::Object& object, std::size_t regionIndex,
                                        const std::string& place) {
  const std::string cause =
      place.empty() ? "no splitting brings its pieces below the length limit"
                    : "the eye stands on its " + place +
                          ", so no splitting brings its pieces below the length limit: move the "
                          "eye off the " +
                          place.substr(0, place.find(' '));
  throw std::length_error("Scene::Object \"" + object.getId() + "\", region " +
                          std::to_string(regionIndex + 1) + ": " + cause);
}

[[noreturn]] void throwTooManyPoints(const Scene::Object& object, std::size_t regionIndex,
                                     const RegionProjector::TooManyPoints& tooMany,
                                     const ShotBudget& budget) {
  throw std::length_error("Scene::Object \"" + object.getId() + "\", region " +
                          std::to_string(regionIndex + 1) + ": its edges of " +
                          std::to_string(tooMany.pieceCount) + " pieces each need " +
                          std::to_string(tooMany.needed) + " point references, and " +
                          budget.limitText() + ": raise it or the maximum length, or move the eye");
}

std::int64_t pointCount(const std::vector<PlanePolygon>& polygons) {
  std::size_t count = 0;
  for (const PlanePolygon& polygon : polygons) count += polygon.size();
  return static_cast<std::int64_t>(count);
}

}  // namespace

EdgeStartPolygon edgeStartPoints(const PlanePolygon& polygon) {
  EdgeStartPolygon result;
  result.reserve(polygon.size());
  for (const Kernel::Vec2 point : polygon.points)
    result.push_back(new EdgeStartPoint2d(point.x, point.y));
  for (const int number : polygon.edgeless)
    result[static_cast<std::size_t>(number) - 1]->setHasEdge(false);
  return result;
}

EdgeStartRegions* edgeStartPoints(const PlaneRegions& regions) {
  auto* result = new EdgeStartRegions(regions.size());
  for (std::size_t r = 0; r < regions.size(); ++r) {
    for (const PlanePolygon& polygon : regions[r]) {
      (*result)[r].push_back(edgeStartPoints(polygon));
    }
  }
  return result;
}

ObjectProjection projectRegions(Scene::Object& object, const std::vector<PlainPolygons>& visible,
                                const ProjectionSetting& setting, ShotBudget& budget,
                                std::size_t firstRegion) {
  const Utils::StageScope stage(Utils::Stage::Projection);
  const std::optional<ProjectionType> acting = actingType(setting.type);
  ObjectProjection projected;
  projected.plane.resize(visible.size());
  projected.recipe.regions.resize(visible.size());
  RegionProjector projector;
  for (std::size_t r = 0; r < visible.size(); ++r) {
    const int index = static_cast<int>(firstRegion + r);
    Geometry::Region* const region =
        object.getRegions() == nullptr ? nullptr : object.getRegions()->getRegion(index);
    // Wrong numbers and a view without a frame are found for every region, projected or not.
    std::vector<Vec3> regionPoints = regionPointsOf(region, setting.points);
    const Kernel::BackFrame frame = frameOfView(*setting.view);
    if (!acting) continue;

    const std::vector<int>* docking = region == nullptr ? nullptr : region->getDockingEdges();
    projected.recipe.frame = {*acting, eyeOf(*setting.view), frame, nullptr, {}, setting.precision};
    projector.setRegion({*acting, eyeOf(*setting.view), frame, docking, std::move(regionPoints),
                         setting.precision});
    std::int64_t firstCount = Cmd::CmdManager::minSegmentsNumber;
    if (index == object.getCameraInRegionIndex()) firstCount *= CameraRegionFactor;
    try {
      auto result = projector.settle(visible[r], firstCount, Cmd::CmdManager::maxSegmentsLength,
                                     budget.left());
      if (!result)
        throwEndlessSplitting(
            object, firstRegion + r,
            placeOnOutline(eyeOf(*setting.view), regionPointsOf(region, setting.points)));
      const std::int64_t points = pointCount(result->polygons);
      projected.needed = std::max(projected.needed, projected.taken + result->mostPoints);
      projected.taken += points;
      budget.take(points);
      projected.plane[r] = std::move(result->polygons);
      projected.recipe.regions[r] = {result->pieceCounts.empty() ? 0 : result->pieceCounts.front(),
                                     projector.takeSegments()};
    } catch (const RegionProjector::TooManyPoints& tooMany) {
      throwTooManyPoints(object, firstRegion + r, tooMany, budget);
    }
  }
  return projected;
}

void ObjectProjection::append(ObjectProjection&& more) {
  std::move(more.plane.begin(), more.plane.end(), std::back_inserter(plane));
  std::move(more.recipe.regions.begin(), more.recipe.regions.end(),
            std::back_inserter(recipe.regions));
  recipe.frame = std::move(more.recipe.frame);
  needed = std::max(needed, taken + more.needed);
  taken += more.taken;
}

PlaneRegions PlaneRecipe::carriedOut(const std::vector<PlainPolygons>& visible) const {
  PlaneRegions plane(visible.size());
  RegionProjector projector;
  for (std::size_t r = 0; r < visible.size(); ++r) {
    projector.setRegion(frame, regions[r].segments);
    for (const std::vector<Vec3>& polygon : visible[r])
      plane[r].push_back(projector.project(polygon, regions[r].pieceCount));
  }
  return plane;
}

}  // namespace Lumivane::Algorithm
