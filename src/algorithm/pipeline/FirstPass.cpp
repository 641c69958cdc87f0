// The first pass. What it finds stays on each object: the polygon data of the regions, their part
// in front of the eye, the polygons that are kept, and these on the plane. A polygon that is not
// kept leaves an empty one in its place, so that positions stay aligned.
//
// How: all is done on plain values, which the second pass goes on with. The lists of polygon data
// and of vectors that an object hands out are only made from them when somebody asks.

#include "algorithm/pipeline/FirstPass.h"

#include "algorithm/pipeline/HeldPolyData.h"
#include "algorithm/pipeline/ObjectProjection.h"
#include "algorithm/pipeline/PolygonClipper.h"
#include "algorithm/pipeline/RegionPolygon.h"
#include "algorithm/pipeline/RegionShapes.h"
#include "algorithm/pipeline/SceneAccess.h"
#include "base/Indices.h"
#include "kernel/Angle.h"
#include "kernel/ConvexArea.h"
#include "scene/Deferred.h"
#include "utils/Shapes.h"
#include "utils/StageScope.h"

#include <lumivane/base/View.h>
#include <lumivane/geometry/Point2d.h>
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
using Scene::DeferredAccess;

namespace {

// The polygons of each region, as an object hands them out.
using RegionPolygons = std::vector<std::vector<std::vector<std::vector<double>>>>;

// Where the eye is stepped to if it stands on a cell: nearer to its plane than `reach`, over it,
// and looking along it to within `tilt` degrees.
std::optional<Vec3> shiftedEye(const NormalCell& cell, Vec3 eye, Vec3 forward, double reach,
                               double tilt) {
  const Vec3 origin = cell.polygon.front();
  const Vec3 cellNormal = toVec3(cell.normal);
  double eyeAt[3] = {eye.x, eye.y, eye.z};
  double originAt[3] = {origin.x, origin.y, origin.z};
  double normal[3] = {cellNormal.x, cellNormal.y, cellNormal.z};
  double foot[3];
  vtkPlane::ProjectPoint(eyeAt, originAt, normal, foot);
  const Vec3 projected{foot[0], foot[1], foot[2]};

  if (!(reach > Kernel::length3(eye - projected))) return std::nullopt;
  const double angle = Kernel::roundD(Kernel::angleDegrees(cellNormal, forward), 5);
  if (!(tilt > std::abs(angle - 90.0))) return std::nullopt;
  if (!Kernel::isInConvexArea(projected, cell.polygon)) return std::nullopt;
  return projected - (reach * 5.0) * cellNormal;
}

// What is kept of a region: the cells whose normals point away from the eye.
PlainPolygons keptPolygons(const std::vector<NormalCell>& cells, Vec3 eye) {
  PlainPolygons result;
  result.reserve(cells.size());
  for (const NormalCell& cell : cells) {
    const Vec3 toCell = cell.polygon.front() - eye;
    if (Kernel::length3(toCell) == 0.0) {
      result.push_back(cell.polygon);
      continue;
    }
    const double angle = Kernel::roundD(Kernel::angleDegrees(toVec3(cell.normal), toCell), 2);
    // An angle that is not a number is neither: nothing is appended then.
    if (angle >= 90.0) result.emplace_back();
    if (angle < 90.0) result.push_back(cell.polygon);
  }
  return result;
}

RegionPolygons* regionPolygonsOf(const std::vector<PlainPolygons>& regions) {
  auto result = std::make_unique<RegionPolygons>(regions.size());
  for (std::size_t r = 0; r < regions.size(); ++r)
    for (const std::vector<Vec3>& polygon : regions[r])
      (*result)[r].push_back(Utils::toVectors(polygon));
  return result.release();
}

RegionShapes regionShapes(Geometry::Regions& regions, Geometry::Points3d* points) {
  RegionShapes shapes;
  if (regions.getRegions() == nullptr) return shapes;
  std::vector<Vec3> polygon;
  for (Geometry::Region* region : *regions.getRegions()) {
    readRegionPolygon(region, points, polygon);
    shapes.add(polygon);
  }
  return shapes;
}

// Takes the objects one by one. An eye that is shifted stays where it is for all that follow.
class FirstPass {
 public:
  FirstPass(const ProjectionSetting& projection, const EyeShift& shift)
      : setting(projection), reach(shift.reach), tilt(shift.tilt) {}

  PlaneRegions project(Scene::Object& object) {
    const Utils::StageScope stage(Utils::Stage::PolygonData);
    const auto shapes =
        std::make_shared<const RegionShapes>(regionShapes(*object.getRegions(), setting.points));
    DeferredAccess::setRegionsPolyData(object, [shapes] { return polyDataOf(*shapes); });

    const auto visible = std::make_shared<const std::vector<PlainPolygons>>(look(object, shapes));
    DeferredAccess::setRegionsVisiblePolygons(object,
                                              [visible] { return regionPolygonsOf(*visible); });

    ObjectProjection projection = projectRegions(object, *visible, setting, budget);
    auto recipe = std::make_shared<const PlaneRecipe>(std::move(projection.recipe));
    DeferredAccess::setRegionsProjectedPolygons(
        object, [visible, recipe] { return edgeStartPoints(recipe->carriedOut(*visible)); });
    return std::move(projection.plane);
  }

  // An object without a list of regions may hold polygon data all the same, from its host or from a
  // shot before it lost the list. It gets its lists like any other. The second pass makes nothing
  // of them: with no regions there are no brushes, faces and numbers.
  void projectHeld(Scene::Object& object) {
    const PolyDataList* const held = object.getRegionsPolyData();
    if (held == nullptr) return;
    const Vec3 eye = eyeOf(*setting.view);
    const Vec3 forward = forwardOf(*setting.view);
    auto clipped = std::make_unique<PolyDataList>();
    for (const vtkSmartPointer<vtkPolyData>& data : *held)
      clipped->push_back(
          Utils::VtkUtils::clip(data, {eye.x, eye.y, eye.z}, {forward.x, forward.y, forward.z}));
    std::vector<PlainPolygons> visible;
    for (std::size_t k = 0; k < clipped->size(); ++k)
      visible.push_back(analysed(object, k, normalCellsOf((*clipped)[k]), eye, forward));
    object.setRegionsClippedPolyData(clipped.release());
    object.setRegionsVisiblePolygons(regionPolygonsOf(visible));
    object.setRegionsProjectedPolygons(
        edgeStartPoints(projectRegions(object, visible, setting, budget).plane));
  }

 private:
  // Clips the regions, shifts the eye off those that it stands on and chooses what is kept.
  std::vector<PlainPolygons> look(Scene::Object& object,
                                  const std::shared_ptr<const RegionShapes>& shapes) {
    const Utils::StageScope stage(Utils::Stage::ClipAndCull);
    // Clipping and the camera shift of this object use the eye as it is now, whatever is shifted.
    const Vec3 eye = eyeOf(*setting.view);
    const Vec3 forward = forwardOf(*setting.view);
    DeferredAccess::setRegionsClippedPolyData(
        object, [shapes, eye, forward] { return clippedPolyDataOf(*shapes, eye, forward); });

    clipper.setPlane(eye, forward);
    std::vector<PlainPolygons> visible;
    visible.reserve(shapes->size());
    for (std::size_t k = 0; k < shapes->size(); ++k) {
      const auto& cells = clipper.clip(shapes->polygon(k), shapes->pointCount(k));
      visible.push_back(analysed(object, k, cells, eye, forward));
    }
    return visible;
  }

  // What is kept of the cells of a region, once the eye has been shifted off them.
  PlainPolygons analysed(Scene::Object& object, std::size_t region,
                         const std::vector<NormalCell>& cells, Vec3 eye, Vec3 forward) {
    for (const NormalCell& cell : cells) shift(object, region, cell, eye, forward);
    return keptPolygons(cells, eyeOf(*setting.view));
  }

  // Steps the eye off a cell that it stands on; of several, the last one wins.
  void shift(Scene::Object& object, std::size_t region, const NormalCell& cell, Vec3 eye,
             Vec3 forward) {
    const std::optional<Vec3> shifted = shiftedEye(cell, eye, forward, reach, tilt);
    if (!shifted) return;
    Geometry::Point3d* eyePosition = setting.view->getOrientation()->getEyePosition();
    eyePosition->setX(shifted->x);
    eyePosition->setY(shifted->y);
    eyePosition->setZ(shifted->z);
    object.setCameraInRegionIndex(static_cast<int>(region));
  }

  ProjectionSetting setting;
  double reach;
  double tilt;
  PolygonClipper clipper;
  ShotBudget budget{shotLimits(), Geometry::Point2d::Precision};
};

}  // namespace

ProjectedObjects projectObjects(const std::vector<Scene::Object*>& objects,
                                const ProjectionSetting& setting, const EyeShift& shift) {
  const double step = 15.0 / static_cast<double>(objects.size());
  ProjectedObjects result;
  FirstPass pass(setting, shift);
  for (std::size_t i = 0; i < objects.size(); ++i) {
    Utils::ProgressbarUtils::getInstance()->setProgress(static_cast<double>(i) * step);
    if (objects[i]->getRegions() == nullptr) {
      pass.projectHeld(*objects[i]);
      continue;
    }
    ProjectedObjects::Part& part = result.of[objects[i]];
    part.plane = pass.project(*objects[i]);
    ++part.uses;
  }
  return result;
}

}  // namespace Lumivane::Algorithm
