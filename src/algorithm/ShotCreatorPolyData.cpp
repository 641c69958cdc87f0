// The bridge from regions to polygon data: a region's point numbers become points, which become one
// polygon, its triangles or the poly-lines of its outline.

#include "algorithm/RegionPolygon.h"
#include "kernel/Outline.h"
#include "kernel/SamePoint.h"
#include "utils/PolygonData.h"
#include "utils/Shapes.h"

#include <lumivane/algorithm/ShotCreator.h>
#include <lumivane/cmd/Log.h>
#include <lumivane/geometry/Point2d.h>
#include <lumivane/geometry/Point3d.h>
#include <lumivane/geometry/Points2d.h>
#include <lumivane/geometry/Points3d.h>
#include <lumivane/geometry/Region.h>
#include <lumivane/geometry/Region2d.h>

#include <cstddef>
#include <vector>

#include <vtkPolyLine.h>
#include <vtkTriangleFilter.h>

namespace Lumivane::Algorithm {
namespace {

using Kernel::Vec3;

// The index of a number counted from 1, safe for the smallest int too.
int indexOfNumber(int number) { return number < 1 ? -1 : number - 1; }

// The point of a number: the list itself refuses a wrong one.
template <class Points>
auto* pointOfNumber(Points* points, int number) {
  static Points none;  // a missing list counts as an empty one
  auto* point = (points == nullptr ? &none : points)->getPoint(indexOfNumber(number));
  if (point == nullptr) Utils::throwInvalidSubscript();
  return point;
}

template <class AnyRegion>
std::size_t pointCount(AnyRegion* region) {
  if (region == nullptr || region->getPoints() == nullptr) return 0;
  return region->getPoints()->size();
}

void readPoints(Geometry::Region* region, Geometry::Points3d* points, std::vector<Vec3>& result) {
  result.clear();
  if (pointCount(region) == 0) return;
  for (const int number : *region->getPoints()) {
    const Geometry::Point3d* point = pointOfNumber(points, number);
    result.push_back({point->getX(), point->getY(), point->getZ()});
  }
}

std::vector<Vec3> regionPoints(Geometry::Region* region, Geometry::Points3d* points) {
  std::vector<Vec3> result;
  readPoints(region, points, result);
  return result;
}

std::vector<Vec3> regionPoints(Geometry::Region2d* region, Geometry::Points2d* points, double z) {
  std::vector<Vec3> result;
  if (pointCount(region) == 0) return result;
  for (const int number : *region->getPoints()) {
    const Geometry::Point2d* point = pointOfNumber(points, number);
    result.push_back({point->getX(), point->getY(), z});
  }
  return result;
}

void triangulate(vtkPolyData* source, vtkPolyData* target) {
  const vtkNew<vtkTriangleFilter> triangles;
  triangles->SetInputData(source);
  triangles->Update();
  target->ShallowCopy(triangles->GetOutput());
}

// The poly-lines of an outline without its docking edges, all points numbered through.
void fillOutline(vtkPolyData* result, const std::vector<Vec3>& points,
                 const std::vector<int>* dockingEdges) {
  const bool hasDocking = dockingEdges != nullptr && !dockingEdges->empty();
  const std::vector<Kernel::Chain> chains =
      Kernel::outlineChains(points.size(), hasDocking ? *dockingEdges : std::vector<int>());
  const vtkNew<vtkPoints> linePoints;
  const vtkNew<vtkCellArray> lines;
  for (const Kernel::Chain& chain : chains) {
    const vtkNew<vtkPolyLine> line;
    for (const std::size_t position : chain) {
      const Vec3& point = points[position];
      line->GetPointIds()->InsertNextId(linePoints->InsertNextPoint(point.x, point.y, point.z));
    }
    // Deliberate: the outline ends on its first point already, and is closed once more on id 0.
    if (!hasDocking) line->GetPointIds()->InsertNextId(0);
    lines->InsertNextCell(line);
  }
  result->SetPoints(linePoints);
  result->SetLines(lines);
}

}  // namespace

void readRegionPolygon(Geometry::Region* region, Geometry::Points3d* points,
                       std::vector<Vec3>& polygon) {
  polygon.clear();
  if (pointCount(region) < 3) {
    Cmd::logMessage("Error: region points size < 3 \n");
    return;
  }
  readPoints(region, points, polygon);
}

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
  vtkNew<vtkPolyData> result;
  const double z = static_cast<double>(depth) * depthShift;
  triangulate(Utils::polygonData(regionPoints(region, points, z)), result);
  return result;
}

vtkNew<vtkPolyData> ShotCreator::getRegionLinePolyData(Geometry::Region* region,
                                                       Geometry::Points3d* points) {
  vtkNew<vtkPolyData> result;
  if (pointCount(region) < 2) return result;
  fillOutline(result, regionPoints(region, points), region->getDockingEdges());
  return result;
}

vtkNew<vtkPolyData> ShotCreator::getRegionLinePolyData(Geometry::Region2d* region,
                                                       Geometry::Points2d* points, int depth) {
  vtkNew<vtkPolyData> result;
  if (pointCount(region) < 2) return result;
  const double z = static_cast<double>(depth) * depthShift;
  fillOutline(result, regionPoints(region, points, z), region->getDockingEdges());
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

}  // namespace Lumivane::Algorithm
