// From visible polygons to polygons on the plane. The protected operations by containers and the
// loop over an object's regions share RegionProjector, which works on fixed-size values.

#include "algorithm/pipeline/ObjectProjection.h"

#include "algorithm/pipeline/RegionProjector.h"
#include "algorithm/pipeline/SceneAccess.h"
#include "base/Indices.h"
#include "kernel/Docking.h"
#include "kernel/Split.h"
#include "utils/Reports.h"
#include "utils/Shapes.h"
#include "utils/StageScope.h"

#include <lumivane/algorithm/ProjectionType.h>
#include <lumivane/algorithm/ShotCreator.h>
#include <lumivane/base/View.h>
#include <lumivane/cmd/CmdManager.h>
#include <lumivane/cmd/Log.h>
#include <lumivane/geometry/EdgeStartPoint2d.h>
#include <lumivane/geometry/EdgeStartPoint3d.h>
#include <lumivane/geometry/Points3d.h>
#include <lumivane/geometry/Region.h>
#include <lumivane/geometry/Regions.h>
#include <lumivane/scene/Object.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace Lumivane::Algorithm {

using Geometry::EdgeStartPoint2d;
using Geometry::EdgeStartPoint3d;
using Kernel::Vec3;

namespace {

// The region that holds the camera is split this many times finer.
constexpr std::int64_t CameraRegionFactor = 300;

ShotCreator::ProjectedPolygon edgeStartPoints(const PlanePolygon& polygon) {
  ShotCreator::ProjectedPolygon result;
  result.reserve(polygon.size());
  for (const Kernel::Vec2 point : polygon.points)
    result.push_back(new EdgeStartPoint2d(point.x, point.y));
  for (const int number : polygon.edgeless)
    result[static_cast<std::size_t>(number) - 1]->setHasEdge(false);
  return result;
}

std::vector<Vec3> regionPointsOf(Geometry::Region* region, Geometry::Points3d* points) {
  std::vector<Vec3> result;
  if (region == nullptr) return result;
  for (const int number : numbersOf(region->getPoints())) {
    result.push_back(scenePoint(points, number));
  }
  return result;
}

// The frame of a view: forward, and the direction to the left of the picture.
Kernel::BackFrame frameOfView(Base::View& view) {
  const Vec3 up = Utils::reported(Kernel::normalise(upOf(view)));
  const Vec3 forward = Utils::reported(Kernel::normalise(forwardOf(view)));
  const Vec3 right = Utils::reported(Kernel::normalise(Kernel::cross(up, forward)));
  return Kernel::backFrame(right, forward);
}

std::vector<std::vector<Vec3>> plainPolygons(const std::vector<ShotCreator::Polygon>& polygons) {
  std::vector<std::vector<Vec3>> result;
  result.reserve(polygons.size());
  for (const ShotCreator::Polygon& polygon : polygons) result.push_back(Utils::toVec3s(polygon));
  return result;
}

Kernel::BackFrame frameOf(const ShotCreator::Point& right, const ShotCreator::Point& forward) {
  return Kernel::backFrame(Utils::toVec3(right), Utils::toVec3(forward));
}

// One polygon of a region, at one piece count.
ShotCreator::ProjectedPolygon projectedAlone(RegionFrame region,
                                             const ShotCreator::Polygon& polygon,
                                             int segmentCount) {
  RegionProjector projector(std::move(region));
  return edgeStartPoints(projector.project(Utils::toVec3s(polygon), segmentCount));
}

// The number, from 1, of the corner that the eye stands on, as near as single precision tells; or
// 0.
std::size_t cornerAt(Vec3 eye, const std::vector<Vec3>& corners) {
  constexpr double rounding = 0x1p-22;
  for (std::size_t i = 0; i < corners.size(); ++i) {
    const Vec3& c = corners[i];
    const double reach = rounding * std::max({std::abs(c.x), std::abs(c.y), std::abs(c.z)});
    if (std::abs(c.x - eye.x) <= reach && std::abs(c.y - eye.y) <= reach &&
        std::abs(c.z - eye.z) <= reach)
      return i + 1;
  }
  return 0;
}

// An edge that starts at the eye spans an angle however finely it is cut.
[[noreturn]] void throwEndlessSplitting(const Scene::Object& object, std::size_t regionIndex,
                                        std::size_t corner) {
  const std::string cause =
      corner == 0 ? "no splitting brings its pieces below the length limit"
                  : "the eye stands on its corner " + std::to_string(corner) +
                        ", so no splitting brings its pieces below the length limit: move the eye "
                        "off the corner";
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

std::vector<EdgeStartPoint3d*> ShotCreator::splitPoints(std::vector<int>* dockingEdges,
                                                        Polygon polygon, int segmentCount) {
  const std::vector<Vec3> corners = Utils::toVec3s(polygon);
  std::vector<std::pair<Vec3, bool>> split;
  std::vector<Vec3> edgePoints;
  for (std::size_t i = 0; i < corners.size(); ++i) {
    edgePoints.clear();
    const Vec3 next = corners[(i + 1) % corners.size()];
    if (!Kernel::appendSplitEdge(corners[i], next, segmentCount, edgePoints)) return {};
    const bool hasEdge = !holdsNumber(dockingEdges, static_cast<std::int64_t>(i) + 1);
    for (const Vec3& point : edgePoints) split.emplace_back(point, hasEdge);
  }

  std::vector<EdgeStartPoint3d*> result;
  result.reserve(split.size());
  for (const auto& [point, hasEdge] : split) {
    result.push_back(new EdgeStartPoint3d(point.x, point.y, point.z));
    result.back()->setHasEdge(hasEdge);
  }
  return result;
}

ShotCreator::ProjectedPolygon ShotCreator::projectPointsRadial(std::vector<int>* dockingEdges,
                                                               Polygon polygon,
                                                               Polygon regionPoints, Point eye,
                                                               Point right, Point forward,
                                                               int segmentCount) {
  if (polygon.empty() && numbersOf(dockingEdges).empty()) return {};  // reads nothing else
  return projectedAlone({ProjectionType::Radial, Utils::toVec3(eye), frameOf(right, forward),
                         dockingEdges, Utils::toVec3s(regionPoints), pointsPrecision},
                        polygon, segmentCount);
}

ShotCreator::ProjectedPolygon ShotCreator::projectPointsSquare(std::vector<int>* dockingEdges,
                                                               Polygon polygon,
                                                               Polygon regionPoints, Point eye,
                                                               Point right, Point forward,
                                                               int segmentCount) {
  if (polygon.empty() && numbersOf(dockingEdges).empty()) return {};  // reads nothing else
  return projectedAlone({ProjectionType::Square, Utils::toVec3(eye), frameOf(right, forward),
                         dockingEdges, Utils::toVec3s(regionPoints), pointsPrecision},
                        polygon, segmentCount);
}

ShotCreator::RegionProjections* edgeStartPoints(const PlaneRegions& regions) {
  auto* result = new ShotCreator::RegionProjections(regions.size());
  for (std::size_t r = 0; r < regions.size(); ++r) {
    for (const PlanePolygon& polygon : regions[r]) {
      (*result)[r].push_back(edgeStartPoints(polygon));
    }
  }
  return result;
}

ObjectProjection projectRegions(Scene::Object& object, const std::vector<PlainPolygons>& visible,
                                const ProjectionSetting& setting, ShotBudget& budget) {
  const Utils::StageScope stage(Utils::Stage::Projection);
  const std::optional<ProjectionType> acting = actingType(setting.type);
  ObjectProjection projected;
  projected.plane.resize(visible.size());
  projected.recipe.regions.resize(visible.size());
  RegionProjector projector;
  for (std::size_t r = 0; r < visible.size(); ++r) {
    const int index = static_cast<int>(r);
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
            object, r, cornerAt(eyeOf(*setting.view), regionPointsOf(region, setting.points)));
      budget.take(pointCount(result->polygons));
      projected.plane[r] = std::move(result->polygons);
      projected.recipe.regions[r] = {result->pieceCounts.empty() ? 0 : result->pieceCounts.front(),
                                     projector.takeSegments()};
    } catch (const RegionProjector::TooManyPoints& tooMany) {
      throwTooManyPoints(object, r, tooMany, budget);
    }
  }
  return projected;
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

ShotCreator::RegionProjections* ShotCreator::projectPoints(Scene::Object* object,
                                                           RegionPolygons* polygons,
                                                           ProjectionType type) {
  std::vector<PlainPolygons> plain;
  if (polygons != nullptr)
    for (const std::vector<Polygon>& region : *polygons) plain.push_back(plainPolygons(region));
  if (object->getRegions() == nullptr && !plain.empty()) Base::throwBadIndex(0);
  ShotBudget budget;
  const ProjectionSetting setting{type, view, points, pointsPrecision};
  return edgeStartPoints(projectRegions(*object, plain, setting, budget).plane);
}

std::vector<std::vector<int>> ShotCreator::getDockingEdges(std::vector<ProjectedPolygon> polygons) {
  return Kernel::dockingEdges(planeOutlines(polygons), pointsPrecision);
}

void ShotCreator::printPoints(Polygon polygon) {
  if (polygon.empty()) return;
  Cmd::logMessage("[\n");
  for (const Point& point : polygon) {
    Cmd::logMessage("[");
    for (const double coordinate : point) Cmd::logMessage("%g ", coordinate);
    Cmd::logMessage("]\n");
  }
  Cmd::logMessage("]\n");
}

}  // namespace Lumivane::Algorithm
