// How a shot is made, in two passes over the scene's objects and a sort, each a file of pipeline/:
// FirstPass looks at every region from the eye and projects what is seen of it, ShotBuilder makes
// the records of the shot from that, and the depth sort puts its faces into their order.

#include "algorithm/InteriorShot.h"
#include "algorithm/pipeline/FirstPass.h"
#include "algorithm/pipeline/SceneAccess.h"
#include "algorithm/pipeline/ShotBuilder.h"
#include "algorithm/pipeline/TypeProjection.h"
#include "base/Indices.h"

#include <lumivane/algorithm/DepthSortAlgorithmExecutor.h>
#include <lumivane/algorithm/ProjectionType.h>
#include <lumivane/algorithm/ShotCreator.h>
#include <lumivane/algorithm/ShotParameters.h>
#include <lumivane/base/View.h>
#include <lumivane/base/ViewCamera.h>
#include <lumivane/cmd/Log.h>
#include <lumivane/geometry/Regions.h>
#include <lumivane/scene/Object.h>
#include <lumivane/scene/Objects.h>
#include <lumivane/scene/Scene3D.h>
#include <lumivane/utils/ProgressbarUtils.h>

#include <optional>
#include <stdexcept>

namespace Lumivane::Algorithm {

ShotCreator::ShotCreator() = default;

Shot::Shot2d* ShotCreator::makeShot(Scene::Scene3D* shotScene, Base::View* shotView,
                                    ShotParameters* parameters) {
  if (shotScene == nullptr || shotView == nullptr || parameters == nullptr) return nullptr;
  scene = shotScene;
  brushes = shotScene->getBrushes();
  pens = shotScene->getPens();
  points = shotScene->getPoints();
  objects = shotScene->getObjects();
  properties = shotScene->getProperties();
  scales = shotScene->getScales();
  view = shotView;
  propertyNum = parameters->getPropertyNum();
  scaleNum = parameters->getScaleNum();
  D1 = parameters->getD1();
  D2 = parameters->getD2();

  if (view->getCamera() == nullptr || !hasOrientation(*view)) return nullptr;
  const std::optional<ProjectionType> type = typeOf(view->getCamera()->getKind());
  return type ? getProjection(*type) : nullptr;
}

Shot::Shot2d* ShotCreator::getProjection(ProjectionType type) {
  if (objects == nullptr) return nullptr;
  const bool hasObjects = Base::countOf(objects->getObjects()) > 0;
  if (hasObjects && (view == nullptr || !hasOrientation(*view))) return nullptr;
  checkObjects();

  Cmd::logMessage("Projecting objects\n\n");
  Utils::ProgressbarUtils::getInstance()->setProgress(0.0);
  if (cameraObject != nullptr)
    return buildInteriorShot(view, objects, cameraObject, camera, type).release();

  ProjectedObjects projections;
  if (hasObjects)
    projections =
        projectObjects(*objects->getObjects(), {type, view, points, pointsPrecision}, {D1, D2});
  UnfinishedShot shot = buildShot(
      {view, objects, brushes, pens, properties, scales, propertyNum, scaleNum, pointsPrecision},
      projections);
  DepthSortAlgorithmExecutor depthSort;
  depthSort.setScene(scene);
  depthSort.setShot(shot.get());
  depthSort.run();
  return shot.release();
}

// Finds out before any work what the second pass could not assemble.
void ShotCreator::checkObjects() {
  if (objects->getObjects() == nullptr) return;
  for (Scene::Object* object : *objects->getObjects()) {
    if (object == nullptr) throw std::invalid_argument("The scene's list of objects holds a null");
    Geometry::Regions* regions = object->getRegions();
    // An interior shot looks at no region.
    const bool hasRegions =
        cameraObject == nullptr && regions != nullptr && Base::countOf(regions->getRegions()) > 0;
    if (hasRegions && object->getFaces() == nullptr) {
      throw std::invalid_argument("Scene::Object \"" + object->getId() +
                                  "\" has regions but no list of faces");
    }
  }
}

}  // namespace Lumivane::Algorithm
