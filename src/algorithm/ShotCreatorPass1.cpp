// The first pass. What it finds stays on each object: the polygon data of the regions, their part
// in front of the eye, the polygons that are kept, and these on the plane. A polygon that is not
// kept leaves an empty one in its place, so that positions stay aligned.

#include "algorithm/CellNormals.h"
#include "algorithm/SceneAccess.h"
#include "base/Indices.h"
#include "kernel/Angle.h"
#include "kernel/ConvexArea.h"
#include "utils/Shapes.h"
#include "utils/StageScope.h"

#include <lumivane/algorithm/ShotCreator.h>
#include <lumivane/base/View.h>
#include <lumivane/geometry/Regions.h>
#include <lumivane/scene/Object.h>
#include <lumivane/scene/Objects.h>
#include <lumivane/utils/ProgressbarUtils.h>
#include <lumivane/utils/VtkUtils.h>

#include <cmath>
#include <cstddef>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include <vtkPlane.h>

namespace Lumivane::Algorithm {

using Kernel::Vec3;

namespace {

// Where the eye is stepped to if it stands on a cell: nearer to its plane than `reach`, over it,
// and looking along it to within `tilt` degrees.
std::optional<Vec3> shiftedEye(const NormalCell& cell, Vec3 eye, Vec3 forward, double reach,
                               double tilt) {
  const Vec3 origin = cell.polygon.front();
  double eyeAt[3] = {eye.x, eye.y, eye.z};
  double originAt[3] = {origin.x, origin.y, origin.z};
  double normal[3] = {cell.normal.x, cell.normal.y, cell.normal.z};
  double foot[3];
  vtkPlane::ProjectPoint(eyeAt, originAt, normal, foot);
  const Vec3 projected{foot[0], foot[1], foot[2]};

  if (!(reach > Kernel::length3(eye - projected))) return std::nullopt;
  const double angle = Kernel::roundD(Kernel::angleDegrees(cell.normal, forward), 5);
  if (!(tilt > std::abs(angle - 90.0))) return std::nullopt;
  if (!Kernel::isInConvexArea(projected, cell.polygon)) return std::nullopt;
  return projected - (reach * 5.0) * cell.normal;
}

// What is kept of a region: the cells whose normals point away from the eye.
std::vector<ShotCreator::Polygon> keptPolygons(const std::vector<NormalCell>& cells, Vec3 eye) {
  std::vector<ShotCreator::Polygon> result;
  for (const NormalCell& cell : cells) {
    const Vec3 toCell = cell.polygon.front() - eye;
    if (Kernel::length3(toCell) == 0.0) {
      result.push_back(Utils::toVectors(cell.polygon));
      continue;
    }
    const double angle = Kernel::roundD(Kernel::angleDegrees(cell.normal, toCell), 2);
    // An angle that is not a number is neither: nothing is appended then.
    if (angle >= 90.0) result.emplace_back();
    if (angle < 90.0) result.push_back(Utils::toVectors(cell.polygon));
  }
  return result;
}

}  // namespace

void ShotCreator::projectObjects(ProjectionType type) {
  const std::vector<Scene::Object*>& list = *objects->getObjects();
  const double step = 15.0 / static_cast<double>(list.size());
  for (std::size_t i = 0; i < list.size(); ++i) {
    Utils::ProgressbarUtils::getInstance()->setProgress(static_cast<double>(i) * step);
    if (cameraObject != nullptr) break;
    projectObject(list[i], type);
  }
}

void ShotCreator::projectObject(Scene::Object* object, ProjectionType type) {
  Geometry::Regions* regions = object->getRegions();
  if (regions == nullptr) return;

  const Utils::StageScope stage(Utils::Stage::PolygonData);
  auto polyData = std::make_unique<PolyDataList>();
  if (regions->getRegions() != nullptr) {
    for (Geometry::Region* region : *regions->getRegions()) {
      polyData->emplace_back(getRegionPolyData(region, points));
    }
  }
  object->setRegionsPolyData(polyData.release());

  const Utils::StageScope clipStage(Utils::Stage::ClipAndCull);
  // Clipping and the camera shift of this object use the eye as it is now, whatever is shifted.
  const Point eye = Utils::toVector(eyeOf(*view));
  const Point forward = Utils::toVector(forwardOf(*view));
  checkCameraOnPolygonAndShift(object->getRegionsPolyData());
  auto clipped = std::make_unique<PolyDataList>();
  for (const vtkSmartPointer<vtkPolyData>& data : *object->getRegionsPolyData()) {
    clipped->push_back(Utils::VtkUtils::clip(data, eye, forward));
  }
  object->setRegionsClippedPolyData(clipped.release());

  auto visible = std::make_unique<RegionPolygons>();
  for (std::size_t k = 0; k < object->getRegionsClippedPolyData()->size(); ++k) {
    visible->push_back(getVisiblePolygons(object, static_cast<int>(k), eye));
  }
  object->setRegionsVisiblePolygons(visible.release());
  object->setRegionsProjectedPolygons(
      projectPoints(object, object->getRegionsVisiblePolygons(), type));
}

// Steps the eye off every cell of the region that it stands on, the last one winning, and chooses
// with the eye as it is then.
std::vector<ShotCreator::Polygon> ShotCreator::getVisiblePolygons(Scene::Object* object,
                                                                  int regionIndex,
                                                                  const Point& eye) {
  const auto position = static_cast<std::size_t>(regionIndex);
  const std::vector<NormalCell> cells =
      normalCells((*object->getRegionsClippedPolyData())[position]);
  for (const NormalCell& cell : cells) {
    const auto shifted = shiftedEye(cell, Utils::toVec3(eye), forwardOf(*view), D1, D2);
    if (!shifted) continue;
    Geometry::Point3d* eyePosition = view->getOrientation()->getEyePosition();
    eyePosition->setX(shifted->x);
    eyePosition->setY(shifted->y);
    eyePosition->setZ(shifted->z);
    object->setCameraInRegionIndex(regionIndex);
  }
  return keptPolygons(cells, eyeOf(*view));
}

}  // namespace Lumivane::Algorithm
