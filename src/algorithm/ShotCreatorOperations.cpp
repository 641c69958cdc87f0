// Where the camera stands against the scene.

#include "algorithm/pipeline/SceneAccess.h"
#include "kernel/ConvexArea.h"
#include "kernel/Vec.h"
#include "utils/Reports.h"
#include "utils/Shapes.h"

#include <lumivane/algorithm/ShotCreator.h>
#include <lumivane/base/View.h>
#include <lumivane/utils/LinearGeometryUtils.h>

#include <cmath>
#include <cstddef>

#include <vtkIdList.h>
#include <vtkOBBTree.h>
#include <vtkPoints.h>

namespace Lumivane::Algorithm {

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

}  // namespace

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
