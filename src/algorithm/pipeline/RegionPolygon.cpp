// The bridge from regions to polygon data: a region's point numbers become points, which become one
// polygon, its triangles or the poly-lines of its outline.

#include "algorithm/pipeline/RegionPolygon.h"

#include "kernel/Outline.h"
#include "utils/Shapes.h"

#include <lumivane/cmd/Log.h>
#include <lumivane/geometry/Point2d.h>
#include <lumivane/geometry/Point3d.h>

#include <cstddef>
#include <vector>

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

}  // namespace

void readRegionPoints(Geometry::Region* region, Geometry::Points3d* points,
                      std::vector<Vec3>& polygon) {
  polygon.clear();
  if (pointCount(region) == 0) return;
  for (const int number : *region->getPoints()) {
    const Geometry::Point3d* point = pointOfNumber(points, number);
    polygon.push_back({point->getX(), point->getY(), point->getZ()});
  }
}

void readRegionPoints(Geometry::Region2d* region, Geometry::Points2d* points, int depth,
                      std::vector<Vec3>& polygon) {
  polygon.clear();
  if (pointCount(region) == 0) return;
  const double z = static_cast<double>(depth) * LayerHeight;
  for (const int number : *region->getPoints()) {
    const Geometry::Point2d* point = pointOfNumber(points, number);
    polygon.push_back({point->getX(), point->getY(), z});
  }
}

void readRegionOutline(Geometry::Region* region, Geometry::Points3d* points,
                       std::vector<Vec3>& polygon) {
  polygon.clear();
  if (pointCount(region) >= 2) readRegionPoints(region, points, polygon);
}

void triangulate(vtkPolyData* source, vtkPolyData* target) {
  const vtkNew<vtkTriangleFilter> triangles;
  triangles->SetInputData(source);
  triangles->Update();
  target->ShallowCopy(triangles->GetOutput());
}

void appendOutline(const std::vector<Vec3>& polygon, const std::vector<int>* dockingEdges,
                   vtkPoints* points, vtkCellArray* lines) {
  const bool hasDocking = dockingEdges != nullptr && !dockingEdges->empty();
  const std::vector<Kernel::Chain> chains =
      Kernel::outlineChains(polygon.size(), hasDocking ? *dockingEdges : std::vector<int>());
  const vtkIdType first = points->GetNumberOfPoints();
  for (const Kernel::Chain& chain : chains) {
    lines->InsertNextCell(static_cast<int>(chain.size()) + (hasDocking ? 0 : 1));
    for (const std::size_t position : chain) {
      const Vec3& point = polygon[position];
      lines->InsertCellPoint(points->InsertNextPoint(point.x, point.y, point.z));
    }
    // Deliberate: the outline ends on its first point already, and is closed once more on its first
    // id.
    if (!hasDocking) lines->InsertCellPoint(first);
  }
}

void readRegionPolygon(Geometry::Region* region, Geometry::Points3d* points,
                       std::vector<Vec3>& polygon) {
  polygon.clear();
  if (pointCount(region) < 3) {
    Cmd::logMessage("Error: region points size < 3 \n");
    return;
  }
  readRegionPoints(region, points, polygon);
}

}  // namespace Lumivane::Algorithm
