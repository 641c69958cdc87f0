// What only keeps the interface of ShotCreator: operations on containers, which a host or a
// subclass may call and the pipeline does not. Each checks shapes and calls what the pipeline
// calls, so that both give the same bits.

#include "algorithm/pipeline/ObjectProjection.h"
#include "algorithm/pipeline/RegionPolygon.h"
#include "algorithm/pipeline/SceneAccess.h"
#include "base/Indices.h"
#include "kernel/ConvexArea.h"
#include "kernel/Docking.h"
#include "kernel/SamePoint.h"
#include "kernel/Split.h"
#include "kernel/Vec.h"
#include "utils/PolygonData.h"
#include "utils/Reports.h"
#include "utils/Shapes.h"

#include <lumivane/algorithm/ShotCreator.h>
#include <lumivane/base/View.h>
#include <lumivane/cmd/Log.h>
#include <lumivane/geometry/EdgeStartPoint2d.h>
#include <lumivane/geometry/EdgeStartPoint3d.h>
#include <lumivane/scene/Object.h>
#include <lumivane/utils/LinearGeometryUtils.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include <vtkIdList.h>
#include <vtkOBBTree.h>
#include <vtkPoints.h>

namespace Lumivane::Algorithm {

using Geometry::EdgeStartPoint2d;
using Geometry::EdgeStartPoint3d;
using Kernel::Vec3;

namespace {

// How often a ray meets the surface, along a stretch that ends beyond all of it.
vtkIdType crossingCount(vtkPolyData* data, Vec3 eye, Vec3 direction) {
  double bounds[6];
  data->GetBounds(bounds);
  const double dx = bounds[1] - bounds[0];
  const double dy = bounds[3] - bounds[2];
  const double dz = bounds[5] - bounds[4];
  const double length = std::sqrt(dy * dy + dx * dx + dz * dz) + 10.0;
  const Vec3 end = eye + length * direction;

  const double from[3] = {eye.x, eye.y, eye.z};
  const double to[3] = {end.x, end.y, end.z};
  const vtkNew<vtkPoints> crossings;
  const vtkNew<vtkIdList> ids;
  const vtkNew<vtkOBBTree> tree;
  tree->SetDataSet(data);
  tree->BuildLocator();
  if (tree->IntersectWithLine(from, to, crossings, ids) == 0) return 0;
  return crossings->GetNumberOfPoints();
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

void fillOutline(vtkPolyData* result, const std::vector<Vec3>& polygon,
                 const std::vector<int>* dockingEdges) {
  const vtkNew<vtkPoints> points;
  const vtkNew<vtkCellArray> lines;
  appendOutline(polygon, dockingEdges, points, lines);
  result->SetPoints(points);
  result->SetLines(lines);
}

}  // namespace

vtkNew<vtkPolyData> ShotCreator::getRegionPolyData(Geometry::Region* region,
                                                   Geometry::Points3d* points) {
  vtkNew<vtkPolyData> result;
  std::vector<Vec3> polygon;
  readRegionPolygon(region, points, polygon);
  if (!polygon.empty()) result->ShallowCopy(Utils::polygonData(polygon));
  return result;
}

vtkNew<vtkPolyData> ShotCreator::getRegionPolyDataTriangulated(Geometry::Region* region,
                                                               Geometry::Points3d* points) {
  vtkNew<vtkPolyData> result = getRegionPolyData(region, points);
  triangulate(result, result);
  return result;
}

vtkNew<vtkPolyData> ShotCreator::getRegionPolyData(Geometry::Region2d* region,
                                                   Geometry::Points2d* points, int depth) {
  static_assert(depthShift == LayerHeight);
  vtkNew<vtkPolyData> result;
  std::vector<Vec3> polygon;
  readRegionPoints(region, points, depth, polygon);
  triangulate(Utils::polygonData(polygon), result);
  return result;
}

vtkNew<vtkPolyData> ShotCreator::getRegionLinePolyData(Geometry::Region* region,
                                                       Geometry::Points3d* points) {
  vtkNew<vtkPolyData> result;
  std::vector<Vec3> polygon;
  readRegionOutline(region, points, polygon);
  if (!polygon.empty()) fillOutline(result, polygon, region->getDockingEdges());
  return result;
}

vtkNew<vtkPolyData> ShotCreator::getRegionLinePolyData(Geometry::Region2d* region,
                                                       Geometry::Points2d* points, int depth) {
  vtkNew<vtkPolyData> result;
  if (region == nullptr || numbersOf(region->getPoints()).size() < 2) return result;
  std::vector<Vec3> polygon;
  readRegionPoints(region, points, depth, polygon);
  fillOutline(result, polygon, region->getDockingEdges());
  return result;
}

bool ShotCreator::isPoints3dEquals(std::vector<double> a, std::vector<double> b) {
  if (a.size() != 3 || b.size() != 3) return false;
  return Kernel::samePoint(Utils::toVec3(a), Utils::toVec3(b), pointsPrecision);
}

bool ShotCreator::isPoints2dEquals(std::vector<double> a, std::vector<double> b) {
  if (a.size() != 2 || b.size() != 2) return false;
  return Kernel::samePoint(Utils::toVec2(a), Utils::toVec2(b), pointsPrecision);
}

std::vector<std::vector<double>> ShotCreator::copyPoints(std::vector<std::vector<double>> points) {
  return points;
}

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

bool ShotCreator::isPointInArea3dConvex(Point point, Polygon polygon) {
  // By the public operation, which reports points of another size than 3.
  return Kernel::isInConvexArea(polygon.size(), [&](std::size_t i) {
    return Utils::toVec3(Utils::LinearGeometryUtils::getVector3D(point, polygon[i]));
  });
}

void ShotCreator::checkCameraOnPolygonAndShift(PolyDataList* polyData) {
  // Deliberate: an empty check. The shift is made later, for each clipped cell.
  static_cast<void>(polyData);
}

bool ShotCreator::isCameraInObject(PolyDataList* polyData) {
  if (polyData == nullptr || polyData->empty()) return false;
  if (view == nullptr || !hasOrientation(*view)) return false;  // no eye is in nothing
  const Vec3 eye = eyeOf(*view);
  const Vec3 direction = Utils::reported(Kernel::normalise(forwardOf(*view)));
  vtkIdType count = 0;
  for (vtkPolyData* data : *polyData) {
    if (data == nullptr || data->GetNumberOfPoints() == 0 || data->GetNumberOfCells() == 0) {
      continue;
    }
    count += crossingCount(data, eye, direction);
  }
  return count % 2 == 1;
}

}  // namespace Lumivane::Algorithm
