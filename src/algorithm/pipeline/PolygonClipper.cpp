// A polygon wholly in front of the plane, or behind it, is known by its points' heights, and needs
// no filter. What the plane cuts, VTK's own cell clips: its points and their order are those
// promised.

#include "algorithm/pipeline/PolygonClipper.h"

#include "utils/FewPointsLocator.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include <vtkCellArray.h>
#include <vtkCellData.h>
#include <vtkFloatArray.h>
#include <vtkNew.h>
#include <vtkPointData.h>
#include <vtkPolygon.h>
#include <vtkQuad.h>
#include <vtkTriangle.h>

namespace Lumivane::Algorithm {

using Kernel::Vec3;

namespace {

bool isSame(SinglePoint a, SinglePoint b) { return a.x == b.x && a.y == b.y && a.z == b.z; }

bool hasEqualPoints(const SinglePoint* polygon, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i)
    for (std::size_t j = i + 1; j < count; ++j)
      if (isSame(polygon[i], polygon[j])) return true;
  return false;
}

// The bounds as VTK has them; it would start its threads for a handful of points.
void readBounds(vtkPoints& points, double bounds[6]) {
  const double infinite = std::numeric_limits<double>::infinity();
  for (int side = 0; side < 6; ++side) bounds[side] = side % 2 == 0 ? infinite : -infinite;
  bool isFinite = true;
  for (vtkIdType i = 0; i < points.GetNumberOfPoints(); ++i) {
    double point[3];
    points.GetPoint(i, point);
    for (int axis = 0; axis < 3; ++axis) {
      bounds[2 * axis] = std::min(bounds[2 * axis], point[axis]);
      bounds[2 * axis + 1] = std::max(bounds[2 * axis + 1], point[axis]);
      isFinite = isFinite && std::isfinite(point[axis]);
    }
  }
  if (isFinite) return;
  points.Modified();
  points.GetBounds(bounds);
}

NormalCell normalCell(vtkPoints* points, vtkIdType count, const vtkIdType* ids) {
  NormalCell result;
  result.polygon.resize(static_cast<std::size_t>(count));
  for (vtkIdType i = 0; i < count; ++i) {
    double point[3];
    points->GetPoint(ids[i], point);
    result.polygon[static_cast<std::size_t>(i)] = {point[0], point[1], point[2]};
  }
  result.normal = cellNormal(points, count, ids);
  return result;
}

}  // namespace

SinglePoint cellNormal(vtkPoints* points, vtkIdType count, const vtkIdType* ids) {
  double normal[3];
  vtkPolygon::ComputeNormal(points, static_cast<int>(count), ids, normal);
  return toSingle({normal[0], normal[1], normal[2]});
}

// What vtkClipPolyData works with, for one polygon.
struct PolygonClipper::Filter {
  // The cell that polygon data has for a polygon.
  vtkCell& cellOf(const SinglePoint* polygon, std::size_t count) {
    vtkCell& cell = count == 3   ? static_cast<vtkCell&>(*triangle)
                    : count == 4 ? static_cast<vtkCell&>(*quad)
                                 : static_cast<vtkCell&>(*ring);
    const auto size = static_cast<vtkIdType>(count);
    cell.Points->SetNumberOfPoints(size);
    cell.PointIds->SetNumberOfIds(size);
    for (vtkIdType i = 0; i < size; ++i) {
      cell.Points->SetPoint(i, polygon[i].x, polygon[i].y, polygon[i].z);
      cell.PointIds->SetId(i, i);
    }
    return cell;
  }

  // Fills `kept` with the cells in front of the plane and `points` with their points.
  void clip(vtkCell& cell, const std::vector<float>& values) {
    double bounds[6];
    readBounds(*cell.Points, bounds);
    scalars->SetNumberOfTuples(static_cast<vtkIdType>(values.size()));
    std::copy(values.begin(), values.end(), scalars->GetPointer(0));
    points->Reset();
    kept->Reset();
    locator->InitPointInsertion(points, bounds);
    cell.Clip(0.0, scalars, locator, kept, noPointData, noPointData, noCellData, 0, noCellData, 0);
  }

  vtkNew<vtkTriangle> triangle;
  vtkNew<vtkQuad> quad;
  vtkNew<vtkPolygon> ring;
  vtkNew<vtkFloatArray> scalars;
  vtkNew<vtkPoints> points;
  vtkNew<vtkCellArray> kept;
  vtkNew<Utils::FewPointsLocator> locator;
  vtkNew<vtkPointData> noPointData;
  vtkNew<vtkCellData> noCellData;
};

PolygonClipper::PolygonClipper() : filter(std::make_unique<Filter>()) {}
PolygonClipper::~PolygonClipper() = default;

void PolygonClipper::setPlane(Vec3 origin, Vec3 normal) {
  planeOrigin = origin;
  planeNormal = normal;
}

// The heights of the points over the plane, times the length of its normal, in single precision.
void PolygonClipper::measure(const SinglePoint* polygon, std::size_t count) {
  const Vec3 n = planeNormal;
  heights.resize(count);
  for (std::size_t i = 0; i < count; ++i) {
    const Vec3 d = toVec3(polygon[i]) - planeOrigin;
    heights[i] = static_cast<float>(n.x * d.x + n.y * d.y + n.z * d.z);
  }
}

std::vector<NormalCell>& PolygonClipper::clip(const SinglePoint* polygon, std::size_t count) {
  result.clear();
  if (count < 3) return result;
  measure(polygon, count);
  const auto isInFront = [](float height) { return height > 0.0F; };
  if (std::none_of(heights.begin(), heights.end(), isInFront)) return result;

  vtkCell& cell = filter->cellOf(polygon, count);
  const bool isWhole = std::all_of(heights.begin(), heights.end(), isInFront);
  if (isWhole && count <= 4 && !hasEqualPoints(polygon, count)) {
    const vtkIdType* ids = cell.PointIds->GetPointer(0);
    result.push_back(normalCell(cell.Points, static_cast<vtkIdType>(count), ids));
    return result;
  }
  filter->clip(cell, heights);
  for (vtkIdType c = 0; c < filter->kept->GetNumberOfCells(); ++c) {
    vtkIdType size = 0;
    const vtkIdType* ids = nullptr;
    filter->kept->GetCellAtId(c, size, ids);
    result.push_back(normalCell(filter->points, size, ids));
  }
  return result;
}

}  // namespace Lumivane::Algorithm
